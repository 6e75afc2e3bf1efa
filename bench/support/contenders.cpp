// SPDX-License-Identifier: MIT

#include "support/contenders.h"

#include "support/keyboard.h"

namespace tessarel::bench {

std::vector<std::string> rawClientCommand(const std::filesystem::path& directory) {
    return {directory / "raw_xcb_client",
            std::to_string(key::kE),
            "0",
            "0",
            "800",
            "900",
            std::to_string(key::kR),
            "0",
            "450",
            "1600",
            "450"};
}

Contenders::Contenders(const std::filesystem::path& directory, pid_t windowManager) {
    const auto start = [this](const std::vector<std::string>& command) {
        return m_programs.emplace_back(std::make_unique<ChildProcess>(command))->pid();
    };
    const auto rawClient = start(rawClientCommand(directory));
    start({"sxhkd"});
    const auto tessarel = start({directory / "tessarel"});
    m_all = {
        {"openbox itself", {key::kQ, key::kW}, windowManager},
        {"raw xcb client", {key::kE, key::kR}, rawClient},
        {"tessarel, halves", {key::kLeft, key::kDown}, tessarel},
        {"tessarel, numbered zones", {key::kDigit1, key::kDigit2}, tessarel},
        {"sxhkd + xdotool", {key::kT, key::kY}},
        {"sxhkd + wmctrl", {key::kU, key::kI}},
    };
    std::vector<Combination> wanted;
    for (const auto& contender : m_all)
        for (const auto code : contender.keys)
            wanted.push_back({code, kControlAlt});
    waitUntilHeld(Connection(), wanted);
}

} // namespace tessarel::bench
