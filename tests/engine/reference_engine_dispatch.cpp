// SPDX-License-Identifier: MIT

#include "engine/reference_engine.h"
#include "engine/reference_rect.h"

#include <array>
#include <utility>

namespace tessarel {

using namespace reference;

namespace {

/// The actions in the order of their ids.
constexpr std::array<std::string_view, 19> kActions{
    "zone1",  "zone2",   "zone3",       "zone4",           "zone5",     "zone6",      "zone7",
    "zone8",  "zone9",   "leftHalf",    "rightHalf",       "topHalf",   "bottomHalf", "maximize",
    "center", "restore", "nextDisplay", "previousDisplay", "arrangeAll"};
constexpr std::size_t kZones = 9;
constexpr std::uint32_t kSignature = 0x47575744;

std::optional<Zone> fixedZone(std::string_view action) {
    if (action == "leftHalf")
        return Zone{true, 0, 0, 50, 100};
    if (action == "rightHalf")
        return Zone{true, 50, 0, 50, 100};
    if (action == "topHalf")
        return Zone{true, 0, 0, 100, 50};
    if (action == "bottomHalf")
        return Zone{true, 0, 50, 100, 50};
    if (action == "maximize")
        return Zone{true, 0, 0, 100, 100};
    return {};
}

} // namespace

// Arrange all

void ReferenceEngine::arrangeAll() {
    std::vector<Zone> zones;
    for (const Zone& zone : settings.zones) {
        if (zone.enabled)
            zones.push_back(zone);
    }
    if (zones.empty()) {
        took("arrange: no zone");
        return;
    }
    std::optional<Screen> screen;
    if (const auto focused = focusedWindow()) {
        if (const auto frame = frameOf(focused->window))
            screen = screenOf(*frame);
    }
    if (!screen) {
        took("arrange: main screen");
        screen = m_ports.displays.mainScreen();
    }
    if (!screen) {
        took("arrange: no screen");
        return;
    }
    const Rect visible = flipped(screen->visibleFrame);
    const auto found = visibleWindows(flipped(screen->frame), zones.size());
    took(found.size() > 1 ? "arrange: several windows" : "arrange: one window or none");
    for (std::size_t k = 0; k < found.size(); ++k)
        place(found[k].window, found[k].pid, zoneFrame(zones[k], visible), visible, {});
}

std::vector<ReferenceEngine::Found> ReferenceEngine::visibleWindows(const Rect& area, std::size_t limit) {
    std::vector<Found> found;
    std::set<std::uintptr_t> seen;
    for (const ListedWindow& listed : m_ports.windowList.onScreenWindows()) {
        if (found.size() == limit) {
            took("scan: enough");
            return found;
        }
        if (listed.layer != 0 || !listed.ownerPid || !listed.axBounds) {
            took("scan: layer, process or bounds");
            continue;
        }
        const ProcessId pid = static_cast<ProcessId>(*listed.ownerPid);
        const Rect& bounds = *listed.axBounds;
        if (pid == m_ports.workspace.ownProcessIdentifier()) {
            took("scan: this program");
            continue;
        }
        if (wide(bounds) < 120 || high(bounds) < 80) {
            took("scan: too small");
            continue;
        }
        if (listed.alpha && *listed.alpha < 0.05) {
            took("scan: transparent");
            continue;
        }
        const double midX = left(bounds) + wide(bounds) * 0.5;
        const double midY = top(bounds) + high(bounds) * 0.5;
        if (midX < left(area) || midX >= right(area) || midY < top(area) || midY >= bottom(area)) {
            took("scan: elsewhere");
            continue;
        }
        if (isIgnored(m_ports.workspace.runningApplication(pid))) {
            took("scan: ignored");
            continue;
        }
        if (const auto window = match(listed, seen)) {
            seen.insert(m_ports.accessibility.key(*window));
            found.push_back({*window, pid});
        } else {
            took("scan: no element");
        }
    }
    return found;
}

std::optional<Element> ReferenceEngine::match(const ListedWindow& listed,
                                              const std::set<std::uintptr_t>& seen) {
    for (const Element& window : windowsOf(static_cast<ProcessId>(*listed.ownerPid))) {
        if (!isUsable(window))
            continue;
        const auto frame = frameOf(window);
        if (!frame || !isNear(*frame, *listed.axBounds, 4))
            continue;
        if (!seen.contains(m_ports.accessibility.key(window)))
            return window;
        took("match: seen before");
    }
    return {};
}

// Hot keys

void ReferenceEngine::registerAll() {
    if (!m_handler)
        m_handler = m_ports.hotKeys.installHandler([this](std::uint32_t id) { handle(id); });
    for (SubscriptionPtr& hotKey : m_hotKeys)
        hotKey.reset();
    m_hotKeys.clear();
    for (std::size_t action = 0; action < kActions.size(); ++action) {
        if (action < kZones && !settings.zones[action].enabled) {
            took("register: disabled zone");
            continue;
        }
        const auto binding = settings.bindings.find(kActions[action]);
        if (binding == settings.bindings.end()) {
            took("register: unbound");
            continue;
        }
        const HotKeyRequest request{static_cast<std::uint32_t>(binding->second.keyCode),
                                    static_cast<std::uint32_t>(binding->second.mods),
                                    {kSignature, static_cast<std::uint32_t>(action)}};
        auto claims = m_ports.hotKeys.registerHotKeys({&request, 1});
        took(claims.at(0) ? "register: granted" : "register: refused");
        if (claims.at(0))
            m_hotKeys.push_back(std::move(claims.at(0)));
    }
}

void ReferenceEngine::handle(std::uint32_t id) {
    if (id < kActions.size())
        run(id);
    else
        took("handle: no such action");
}

void ReferenceEngine::run(std::size_t action) {
    if (paused) {
        took("run: paused");
        return;
    }
    if (!m_ports.trust.isTrusted()) {
        took("run: not trusted");
        m_ports.trust.prompt();
        return;
    }
    const std::string_view name = kActions.at(action);
    if (name == "center") {
        centerFocused();
    } else if (name == "restore") {
        restoreFocused();
    } else if (name == "nextDisplay") {
        moveFocused(1);
    } else if (name == "previousDisplay") {
        moveFocused(-1);
    } else if (name == "arrangeAll") {
        arrangeAll();
    } else if (const auto zone = fixedZone(name)) {
        snapFocused(*zone, {});
    } else if (settings.zones[action].enabled) {
        snapFocused(settings.zones[action], static_cast<int>(action));
    } else {
        took("run: disabled zone");
    }
}

} // namespace tessarel
