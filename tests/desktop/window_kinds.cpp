// SPDX-License-Identifier: MIT

#include "desktop/window_kinds.h"

namespace tessarel::x11test {

const std::vector<WindowKind>& windowKinds() {
    static const std::vector<WindowKind> kinds = {
        {.name = "Plain"},
        {.name = "StaticGravity", .options = {.gravity = XCB_GRAVITY_STATIC}},
        {.name = "Undecorated", .options = {.decorated = false}},
        {.name = "ClientDecorated", .options = {.shadow = Extents{26, 26, 23, 29}, .decorated = false}},
        {.name = "WithoutProcessId", .options = {.processId = false}},
        {.name = "Dialog", .options = {.type = "_NET_WM_WINDOW_TYPE_DIALOG"}},
        {.name = "SmallMinimum", .options = {.minimum = WindowOptions::Pair{200, 150}}},
        {.name = "MaximizedBoth", .states = {"_NET_WM_STATE_MAXIMIZED_HORZ", "_NET_WM_STATE_MAXIMIZED_VERT"}},
        {.name = "MaximizedHorizontally", .states = {"_NET_WM_STATE_MAXIMIZED_HORZ"}},
        {.name = "MaximizedVertically", .states = {"_NET_WM_STATE_MAXIMIZED_VERT"}},
        {.name = "Shaded", .states = {"_NET_WM_STATE_SHADED"}},
        {.name = "Stepped",
         .options = {.step = WindowOptions::Pair{7, 13}, .base = WindowOptions::Pair{4, 4}},
         .rule = SizeRule::Stepped},
        {.name = "LargeMinimum",
         .options = {.minimum = WindowOptions::Pair{900, 600}},
         .rule = SizeRule::Minimum},
        {.name = "Fixed",
         .options = {.minimum = WindowOptions::Pair{500, 400}, .maximum = WindowOptions::Pair{500, 400}},
         .rule = SizeRule::Fixed},
    };
    return kinds;
}

SizeRule effectiveRule(WindowManagerKind manager, SizeRule rule) {
    using enum WindowManagerKind;
    const bool ignoresLimits = manager == Icewm || manager == Fluxbox || manager == WindowMaker ||
                               manager == Pekwm || manager == Blackbox;
    const bool ignoresSteps = manager == Xfwm4 || manager == Fluxbox || manager == Jwm ||
                              manager == WindowMaker || manager == Pekwm || manager == Blackbox;
    if (ignoresLimits && (rule == SizeRule::Minimum || rule == SizeRule::Fixed))
        return SizeRule::Exact;
    return ignoresSteps && rule == SizeRule::Stepped ? SizeRule::Exact : rule;
}

std::string limitOf(WindowManagerKind manager, const WindowKind& kind) {
    using enum WindowManagerKind;
    if (kind.name == "ClientDecorated" && (manager == Marco || manager == Icewm))
        return "keeps the client's shadow inside the screen";
    if (kind.name == "ClientDecorated" && manager >= Jwm)
        return "does not know shadows, so that toolkits draw none";
    const bool isMaximized = std::string_view(kind.name).starts_with("Maximized");
    if (isMaximized && manager == Awesome)
        return "does not let another program restore a maximised window";
    if (isMaximized && kind.states.size() == 1 && manager == Fvwm3)
        return "names both axes when one is maximised";
    if (kind.name == "Shaded" && manager == Awesome)
        return "rolls up no windows";
    if (kind.name == "Shaded" && manager == Blackbox)
        return "hides the height of the handle below a window that is rolled up";
    if (kind.name == "Shaded" && (manager == Mutter || manager == Icewm))
        return "takes the focus off a window that it rolls up";
    return {};
}

std::ostream& operator<<(std::ostream& stream, const WindowKind& kind) {
    return stream << kind.name;
}

} // namespace tessarel::x11test
