// SPDX-License-Identifier: MIT

#include "desktop/status_notifier_panel.h"

#include <regex>
#include <stdexcept>

namespace tessarel::x11test {

namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
constexpr const char* kGetProperty = "org.freedesktop.DBus.Properties.Get";
constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kItemPath = "/StatusNotifierItem";
constexpr const char* kMenuPath = "/MenuBar";
const std::string kMenu = "com.canonical.dbusmenu.";

} // namespace

std::string StatusNotifierPanel::call(const std::string& destination, const std::string& path,
                                      const std::string& method,
                                      const std::vector<std::string>& arguments) const {
    const std::string patience = std::to_string(kPatience.count());
    std::vector<std::string> command = {"gdbus",  "call",     "--session", "--timeout",
                                        patience, "--dest",   destination, "--object-path",
                                        path,     "--method", method,      "--"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    try {
        return runToEnd(command, m_environment);
    } catch (const std::runtime_error&) {
        return {}; // the service does not exist yet
    }
}

bool StatusNotifierPanel::isThere() const {
    return call(kWatcher, kWatcherPath, kGetProperty, {kWatcher, "IsStatusNotifierHostRegistered"})
               .find("true") != std::string::npos;
}

std::string StatusNotifierPanel::item() const {
    const std::string items =
        call(kWatcher, kWatcherPath, kGetProperty, {kWatcher, "RegisteredStatusNotifierItems"});
    static const std::regex kName(R"(:\d+\.\d+)");
    std::smatch match;
    return std::regex_search(items, match, kName) ? match[0].str() : std::string();
}

std::string StatusNotifierPanel::property(std::string_view name) const {
    return call(item(), kItemPath, kGetProperty, {kItem, std::string(name)});
}

void StatusNotifierPanel::aboutToShowMenu() const {
    call(item(), kMenuPath, kMenu + "AboutToShow", {"0"});
}

std::string StatusNotifierPanel::menu() const {
    return call(item(), kMenuPath, kMenu + "GetLayout", {"0", "-1", "[]"});
}

bool StatusNotifierPanel::isMarked(const std::string& menu, const std::string& label) {
    const std::regex row("\\{[^{}]*'label': <'" + label + "'>[^{}]*\\}");
    std::smatch match;
    return std::regex_search(menu, match, row) &&
           match.str().find("'toggle-state': <1>") != std::string::npos;
}

bool StatusNotifierPanel::choose(const std::string& menu, std::string_view label) const {
    const std::regex row("\\((\\d+), \\{[^{}]*'label': <'" + std::string(label) + "'>");
    std::smatch match;
    if (!std::regex_search(menu, match, row))
        return false;
    call(item(), kMenuPath, kMenu + "Event", {match[1].str(), "clicked", "<''>", "0"});
    return true;
}

void StatusNotifierPanel::clickOn(std::string_view method, int x, int y) const {
    call(item(), kItemPath, std::string(kItem).append(".").append(method),
         {std::to_string(x), std::to_string(y)});
}

} // namespace tessarel::x11test
