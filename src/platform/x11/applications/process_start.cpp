// SPDX-License-Identifier: MIT

#include "platform/x11/applications/process_start.h"

#include <fstream>
#include <sstream>
#include <string>

namespace tessarel::x11 {

std::optional<std::uint64_t> processStart(ProcessId pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line, '\0');
    // The second field is the program's name in parentheses; the name may itself contain spaces and
    // parentheses.
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos)
        return std::nullopt;

    std::istringstream fields(line.substr(nameEnd + 1));
    char state = 0;
    fields >> state;
    const bool hasEnded = state == 'Z' || state == 'X'; // a zombie: its parent has not reaped it yet
    constexpr int kFieldsBetween = 18;                  // from `state` (3) to `starttime` (22)
    std::string skipped;
    for (int i = 0; i < kFieldsBetween; ++i)
        fields >> skipped;
    std::uint64_t start = 0;
    if (hasEnded || !(fields >> start))
        return std::nullopt;
    return start;
}

} // namespace tessarel::x11
