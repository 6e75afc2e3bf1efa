// SPDX-License-Identifier: MIT

#include "platform/plasma/reports.h"

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace tessarel::plasma {

namespace {

using wayland::UserMove;
using wayland::WindowKind;

/// Returns the member if it is there and of type `Value`, or an empty value.
template <typename Value>
Value member(const Json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end())
        return Value();
    if constexpr (std::is_same_v<Value, bool>)
        return found->is_boolean() && found->get<bool>();
    else if constexpr (std::is_same_v<Value, std::string>)
        return found->is_string() ? found->get<std::string>() : Value();
    else
        return found->is_number() ? found->get<Value>() : Value();
}

std::vector<double> numbers(const Json& object, const char* name) {
    std::vector<double> all;
    if (const auto found = object.find(name); found != object.end() && found->is_array()) {
        for (const Json& number : *found)
            all.push_back(number.is_number() ? number.get<double>() : 0);
    }
    return all;
}

Rect rect(const Json& object, const char* name) {
    const auto sides = numbers(object, name);
    return sides.size() == 4 ? Rect{sides[0], sides[1], sides[2], sides[3]} : Rect();
}

Point point(const Json& object, const char* name) {
    const auto parts = numbers(object, name);
    return parts.size() == 2 ? Point{parts[0], parts[1]} : Point();
}

/// Returns the elements of a list; empty if there is none.
std::vector<Json> list(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_array() ? found->get<std::vector<Json>>() : std::vector<Json>();
}

/// Returns the member if it is an object, or an empty object.
Json object(const Json& report, const char* name) {
    const auto found = report.find(name);
    return found != report.end() && found->is_object() ? *found : Json::object();
}

std::vector<std::string> strings(const Json& object, const char* name) {
    std::vector<std::string> all;
    for (const Json& element : list(object, name))
        all.push_back(element.is_string() ? element.get<std::string>() : std::string());
    return all;
}

WindowKind kindOf(const std::string& name) {
    if (name == "standard")
        return WindowKind::Standard;
    if (name == "dialog")
        return WindowKind::Dialog;
    return name == "floating" ? WindowKind::Floating : WindowKind::Other;
}

wayland::WindowState windowOf(const Json& object) {
    std::string application = member<std::string>(object, "application");
    constexpr std::string_view kSuffix = ".desktop";
    if (application.ends_with(kSuffix))
        application.resize(application.size() - kSuffix.size());
    return {.name = member<std::string>(object, "name"),
            .pid = member<ProcessId>(object, "pid"),
            .applicationId = std::move(application),
            .windowClass = member<std::string>(object, "class"),
            .frame = rect(object, "frame"),
            .kind = kindOf(member<std::string>(object, "kind")),
            .isMinimized = member<bool>(object, "minimized"),
            .isFullScreen = member<bool>(object, "fullScreen"),
            .isOnCurrentDesktop = member<bool>(object, "onCurrentDesktop"),
            .opacity = member<double>(object, "opacity")};
}

std::vector<wayland::DisplayState> displaysOf(const Json& report) {
    std::vector<wayland::DisplayState> displays;
    for (const Json& display : list(report, "displays"))
        displays.push_back({rect(display, "frame"), rect(display, "usable")});
    return displays;
}

wayland::Mirror::Snapshot snapshotOf(const Json& report) {
    wayland::Mirror::Snapshot snapshot;
    for (const Json& window : list(report, "windows"))
        snapshot.windows.push_back(windowOf(window));
    snapshot.active = member<std::string>(report, "active");
    snapshot.displays = displaysOf(report);
    return snapshot;
}

std::optional<UserMove::Phase> phaseOf(const std::string& event) {
    if (event == "moveStarted")
        return UserMove::Phase::Started;
    if (event == "moveStepped")
        return UserMove::Phase::Stepped;
    if (event == "moveCancelled")
        return UserMove::Phase::Cancelled;
    return event == "moveFinished" ? std::optional(UserMove::Phase::Finished) : std::nullopt;
}

} // namespace

std::optional<Settled> applyReport(const Json& report, wayland::Mirror& mirror) {
    if (!report.is_object())
        return std::nullopt;
    const auto event = member<std::string>(report, "event");
    const auto name = member<std::string>(report, "name");
    if (event == "everything")
        mirror.reset(snapshotOf(report));
    else if (event == "window")
        mirror.update(windowOf(object(report, "window")));
    else if (event == "removed")
        mirror.remove(name);
    else if (event == "active")
        mirror.activate(name);
    else if (event == "frame" || event == "placed")
        mirror.setFrame(name, rect(report, "frame"));
    else if (event == "displays")
        mirror.setDisplays(displaysOf(report));
    else if (event == "order")
        mirror.restack(strings(report, "names"));
    else if (const auto phase = phaseOf(event))
        mirror.move(*phase, name, member<bool>(report, "move"), point(report, "pointer"),
                    rect(report, "frame"));
    if (event != "placed")
        return std::nullopt;
    return Settled{mirror.named(name), member<std::uint64_t>(report, "serial")};
}

} // namespace tessarel::plasma
