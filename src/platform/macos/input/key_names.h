// SPDX-License-Identifier: MIT

#pragma once

#include "model/key_names.h"
#include "ports/desktop/key_names_port.h"

namespace tessarel::macos {

/// The names of `KeyNames`, whatever the keyboard layout.
class MacKeyNames : public KeyNamesPort {
public:
    [[nodiscard]] std::string name(std::int64_t keyCode) override { return KeyNames::name(keyCode); }
    /// Returns null: the names never change.
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> /*changed*/) override { return nullptr; }
};

} // namespace tessarel::macos
