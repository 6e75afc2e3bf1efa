// SPDX-License-Identifier: MIT

#pragma once

#include "model/call_on_end.h"
#include "model/key_names.h"
#include "ports/key_names_port.h"
#include "ports/main_menu_port.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tessarel::plasma {

/// A main menu that is not shown: Plasma's menu bars belong to windows.
class NoMainMenu : public MainMenuPort {
public:
    void setMainMenu(const std::vector<MainMenu>&) override {}
};

/// The names of keys, whatever the keyboard layout.
class FixedKeyNames : public KeyNamesPort {
public:
    [[nodiscard]] std::string name(std::int64_t keyCode) override { return KeyNames::name(keyCode); }
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()>) override {
        return callOnEnd([] {});
    }
};

} // namespace tessarel::plasma
