// SPDX-License-Identifier: MIT

#include "platform/x11/input/key_names.h"

#include "platform/x11/input/active_layout.h"

#include <utility>

namespace tessarel::x11 {

std::string X11KeyNames::name(std::int64_t keyCode) {
    if (auto fixed = xkb::PrintedNames::fixedName(keyCode))
        return *std::move(fixed);
    watch();
    if (!m_names) {
        const ActiveLayout layout = m_connection.withReplies(activeLayout);
        m_names.emplace(layout.keymap, layout.index);
    }
    return m_names->name(keyCode);
}

SubscriptionPtr X11KeyNames::onChange(std::function<void()> changed) {
    watch();
    return m_changed.connect(std::move(changed));
}

void X11KeyNames::watch() {
    if (m_keyboard)
        return;
    m_keyboard.emplace(m_connection);
    m_keyboard->selectLayoutChanges(m_connection);
    m_events = m_connection.onEvent([this](const Connection::Event& event) { handle(event); });
}

void X11KeyNames::handle(const Connection::Event& event) {
    if (!m_keyboard->isMappingChange(event) && !m_keyboard->isLayoutChange(event))
        return;
    m_names.reset();
    m_changed.send();
}

} // namespace tessarel::x11
