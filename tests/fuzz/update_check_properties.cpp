// SPDX-License-Identifier: MIT

#include "update_check_properties.h"

#include "app/updates/update_feed.h"
#include "app/updates/updater.h"

namespace tessarel::fuzz {

bool isReadTheSameAgain(const std::string& document) {
    return decodeUpdateFeed(document) == decodeUpdateFeed(document);
}

bool areInAnOrder(const std::string& a, const std::string& b, const std::string& c) {
    const auto newer = [](const std::string& one, const std::string& other) {
        return Updater::isNewer(one, other);
    };
    if (newer(a, a) || (newer(a, b) && newer(b, a)))
        return false;
    return !(newer(a, b) && newer(b, c)) || newer(a, c);
}

} // namespace tessarel::fuzz
