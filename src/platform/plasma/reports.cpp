// SPDX-License-Identifier: MIT

#include "platform/plasma/reports.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
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

/// Returns the member if it is there and of type `Value`, or else `fallback`.
template <typename Value>
Value member(const Json& object, const char* name, Value fallback = {}) {
    const auto found = object.find(name);
    if (found == object.end())
        return fallback;
    if constexpr (std::is_same_v<Value, bool>)
        return found->is_boolean() ? found->get<bool>() : fallback;
    else if constexpr (std::is_same_v<Value, std::string>)
        return found->is_string() ? found->get<std::string>() : fallback;
    else if constexpr (std::is_same_v<Value, double>)
        return found->is_number() ? found->get<double>() : fallback;
    else
        return found->is_number_unsigned() &&
                       found->get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<Value>::max()}
                   ? found->get<Value>()
                   : fallback;
}

/// Returns the coordinates of the member if it is a list of `count` numbers that a desktop can have.
std::optional<std::vector<double>> coordinates(const Json& object, const char* name, std::size_t count) {
    constexpr double kFarthest = 1 << 20;
    const auto found = object.find(name);
    if (found == object.end() || !found->is_array() || found->size() != count)
        return std::nullopt;
    std::vector<double> all;
    for (const Json& number : *found) {
        if (!number.is_number() || std::abs(number.get<double>()) > kFarthest)
            return std::nullopt;
        all.push_back(number.get<double>());
    }
    return all;
}

std::optional<Rect> rect(const Json& object, const char* name) {
    const auto sides = coordinates(object, name, 4);
    return sides && (*sides)[2] >= 0 && (*sides)[3] >= 0
               ? std::optional(Rect{(*sides)[0], (*sides)[1], (*sides)[2], (*sides)[3]})
               : std::nullopt;
}

std::optional<Point> point(const Json& object, const char* name) {
    const auto parts = coordinates(object, name, 2);
    return parts ? std::optional(Point{(*parts)[0], (*parts)[1]}) : std::nullopt;
}

bool isList(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_array();
}

/// Returns the elements of a list; empty if there is none.
std::vector<Json> list(const Json& object, const char* name) {
    return isList(object, name) ? object.find(name)->get<std::vector<Json>>() : std::vector<Json>();
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

std::optional<wayland::WindowState> windowOf(const Json& object) {
    const auto name = object.is_object() ? member<std::string>(object, "name") : std::string();
    const auto frame = object.is_object() ? rect(object, "frame") : std::nullopt;
    if (name.empty() || !frame)
        return std::nullopt;
    std::string application = member<std::string>(object, "application");
    constexpr std::string_view kSuffix = ".desktop";
    if (application.ends_with(kSuffix))
        application.resize(application.size() - kSuffix.size());
    return wayland::WindowState{.name = name,
                                .pid = member<ProcessId>(object, "pid"),
                                .applicationId = std::move(application),
                                .windowClass = member<std::string>(object, "class"),
                                .frame = *frame,
                                .kind = kindOf(member<std::string>(object, "kind")),
                                .isMinimized = member<bool>(object, "minimized"),
                                .isFullScreen = member<bool>(object, "fullScreen"),
                                .isOnCurrentDesktop = member<bool>(object, "onCurrentDesktop"),
                                .opacity = member<double>(object, "opacity", 1)};
}

std::vector<wayland::DisplayState> displaysOf(const Json& report) {
    std::vector<wayland::DisplayState> displays;
    for (const Json& display : list(report, "displays")) {
        const auto frame = display.is_object() ? rect(display, "frame") : std::nullopt;
        if (frame && frame->width > 0 && frame->height > 0)
            displays.push_back({*frame, rect(display, "usable").value_or(*frame)});
    }
    return displays;
}

wayland::Mirror::Snapshot snapshotOf(const Json& report) {
    wayland::Mirror::Snapshot snapshot;
    for (const Json& one : list(report, "windows")) {
        if (auto window = windowOf(one))
            snapshot.windows.push_back(std::move(*window));
    }
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

void applyFrame(const std::string& name, const Json& report, wayland::Mirror& mirror) {
    if (const auto frame = rect(report, "frame"))
        mirror.setFrame(name, *frame);
}

/// A late window still has the frame from before its placement.
void applyPlaced(const std::string& name, const Json& report, wayland::Mirror& mirror) {
    const auto frame = rect(report, "frame");
    if (frame && member<bool>(report, "late"))
        mirror.setFrame(name, *frame);
    else if (frame)
        mirror.settle(name, *frame);
}

void applyMove(UserMove::Phase phase, const std::string& name, const Json& report, wayland::Mirror& mirror) {
    const auto pointer = point(report, "pointer");
    const auto frame = rect(report, "frame");
    if (pointer && frame)
        mirror.move(phase, name, member<bool>(report, "move"), *pointer, *frame);
}

} // namespace

std::optional<Settled> applyReport(const Json& report, wayland::Mirror& mirror) {
    if (!report.is_object())
        return std::nullopt;
    const auto event = member<std::string>(report, "event");
    const auto name = member<std::string>(report, "name");
    if (event == "everything" && isList(report, "windows") && isList(report, "displays"))
        mirror.reset(snapshotOf(report));
    else if (event == "window") {
        if (const auto window = windowOf(report.value("window", Json())))
            mirror.update(*window);
    } else if (event == "removed")
        mirror.remove(name);
    else if (event == "active")
        mirror.activate(name);
    else if (event == "frame")
        applyFrame(name, report, mirror);
    else if (event == "placed")
        applyPlaced(name, report, mirror);
    else if (event == "displays" && isList(report, "displays"))
        mirror.setDisplays(displaysOf(report));
    else if (event == "order")
        mirror.restack(strings(report, "names"));
    else if (const auto phase = phaseOf(event))
        applyMove(*phase, name, report, mirror);
    if (event != "placed" && event != "replaced")
        return std::nullopt;
    return Settled{mirror.named(name), member<std::uint64_t>(report, "serial"), member<bool>(report, "late"),
                   event == "replaced"};
}

} // namespace tessarel::plasma
