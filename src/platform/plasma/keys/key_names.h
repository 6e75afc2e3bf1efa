// SPDX-License-Identifier: MIT

#pragma once

#include "platform/plasma/keys/keyboard_layout.h"
#include "platform/xkb/printed_names.h"
#include "ports/desktop/key_names_port.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace tessarel::plasma {

/// The names that are printed on the keys of the layout in use.
class LayoutKeyNames : public KeyNamesPort {
public:
    /// `layout` must outlive this object.
    explicit LayoutKeyNames(KeyboardLayout& layout)
        : m_layout(layout), m_layoutChanges(layout.onChange([this] {
              m_names.reset();
              m_changed.send();
          })) {}

    [[nodiscard]] std::string name(std::int64_t keyCode) override {
        if (!m_names)
            m_names.emplace(m_layout.keymap(), m_layout.index());
        return m_names->name(keyCode);
    }
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed) override {
        return m_changed.connect(std::move(changed));
    }

private:
    KeyboardLayout& m_layout;
    std::optional<xkb::PrintedNames> m_names; ///< empty until they are read
    Signal<> m_changed;
    SubscriptionPtr m_layoutChanges;
};

} // namespace tessarel::plasma
