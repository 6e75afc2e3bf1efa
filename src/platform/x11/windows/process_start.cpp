#include "platform/x11/windows/process_start.h"

#include <fstream>
#include <sstream>
#include <string>

namespace tessarel::x11 {

std::optional<std::uint64_t> processStart(ProcessId pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line, '\0');
    const std::size_t nameEnd = line.rfind(')'); // the name before may hold anything
    if (nameEnd == std::string::npos)
        return std::nullopt;

    std::istringstream fields(line.substr(nameEnd + 1));
    char state = 0;
    fields >> state;
    const bool hasEnded = state == 'Z' || state == 'X'; // its parent has not taken notice yet
    constexpr int kFieldsBetween = 18;
    std::string skipped;
    for (int i = 0; i < kFieldsBetween; ++i)
        fields >> skipped;
    std::uint64_t start = 0;
    if (hasEnded || !(fields >> start))
        return std::nullopt;
    return start;
}

} // namespace tessarel::x11
