// SPDX-License-Identifier: MIT

#include "platform/xdg/environment.h"

#include <cstdlib>
#include <sstream>

namespace tessarel::xdg {

std::vector<std::string> listFrom(const char* variable) {
    const char* const text = std::getenv(variable);
    std::istringstream parts(text == nullptr ? "" : text);
    std::vector<std::string> list;
    for (std::string part; std::getline(parts, part, ':');)
        list.push_back(part);
    return list;
}

std::vector<std::string> currentDesktops() {
    return listFrom("XDG_CURRENT_DESKTOP");
}

} // namespace tessarel::xdg
