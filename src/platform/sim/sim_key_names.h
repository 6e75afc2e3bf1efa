// SPDX-License-Identifier: MIT

#pragma once

#include "model/key_names.h"
#include "model/signal.h"
#include "ports/desktop/key_names_port.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace tessarel::sim {

/// The keyboard of the simulated desktop: that of `KeyNames`, until a test changes it.
class SimKeyNames : public KeyNamesPort {
public:
    [[nodiscard]] std::string name(std::int64_t keyCode) override {
        const auto renamed = m_renamed.find(keyCode);
        return renamed == m_renamed.end() ? KeyNames::name(keyCode) : renamed->second;
    }
    [[nodiscard]] SubscriptionPtr onChange(std::function<void()> changed) override {
        return m_changed.connect(std::move(changed));
    }

    /// Switches to a layout that prints `name` on a key.
    void rename(std::int64_t keyCode, std::string name) {
        m_renamed[keyCode] = std::move(name);
        m_changed.send();
    }

private:
    std::map<std::int64_t, std::string> m_renamed;
    Signal<> m_changed;
};

} // namespace tessarel::sim
