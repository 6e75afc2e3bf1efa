// SPDX-License-Identifier: MIT

#include "platform/plasma/keys/keyboard_layout.h"

#include <utility>

namespace tessarel::plasma {

namespace {

constexpr const char* kKeyboard = "org.kde.keyboard";
constexpr const char* kLayoutsPath = "/Layouts";
constexpr const char* kLayoutsInterface = "org.kde.KeyboardLayouts";

} // namespace

KeyboardLayout::KeyboardLayout(wayland::BusLink& link, xkb::Keymap keymap)
    : m_link(link), m_keymap(std::move(keymap)),
      m_signals(link.onSignal(
          {.sender = kKeyboard, .path = kLayoutsPath, .interface = kLayoutsInterface, .member = {}},
          [this](const wayland::BusMessage& signal) {
              if (signal.member == "layoutChanged")
                  setIndex(static_cast<std::uint32_t>(signal.value<std::int64_t>(0)));
          })) {
    read();
}

void KeyboardLayout::setKeymap(xkb::Keymap keymap) {
    m_keymap = std::move(keymap);
    m_changed.send();
    read();
}

/// KWin has the interface only while there are several layouts.
void KeyboardLayout::read() {
    m_link.call({kKeyboard, kLayoutsPath, kLayoutsInterface, "getLayout"},
                [this, alive = m_lifetime.watch()](const wayland::BusMessage& reply) {
                    if (!alive.expired())
                        setIndex(static_cast<std::uint32_t>(reply.value<std::int64_t>(0)));
                });
}

void KeyboardLayout::setIndex(std::uint32_t index) {
    if (std::exchange(m_index, index) != index)
        m_changed.send();
}

} // namespace tessarel::plasma
