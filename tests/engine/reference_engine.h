// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/app_settings.h"
#include "model/subscription.h"
#include "ports/alert_sound_port.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/hot_key_port.h"
#include "ports/desktop/window_list_port.h"
#include "ports/desktop/workspace_port.h"
#include "ports/trust_port.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// A naive second implementation of the engine in one class: placement with its restore memory, the actions
/// on the focused window, arrange all and the hot keys.
///
/// It shares no code with `src/engine`, not even the rectangle arithmetic, so that the two are unlikely to
/// contain the same mistake. Window rectangles are in accessibility coordinates unless a name says otherwise.
class ReferenceEngine {
public:
    struct Ports {
        AccessibilityPort& accessibility;
        AlertSoundPort& alertSound;
        DisplaysPort& displays;
        HotKeyPort& hotKeys;
        TrustPort& trust;
        WindowListPort& windowList;
        WorkspacePort& workspace;
        /// Stores the settings.
        std::function<void(const AppSettings&)> save;
    };
    using Branches = std::map<std::string_view, long>;

    explicit ReferenceEngine(Ports ports);

    AppSettings settings;
    bool paused = false;

    void registerAll();
    /// Runs the action at index `id` in the list of all actions; ignores an `id` beyond the list.
    void handle(std::uint32_t id);
    void place(const Element& window, ProcessId pid, const Rect& frame, const std::optional<Rect>& within,
               const std::optional<Rect>& previous);

    /// Returns how often each branch was taken, by the name of the branch.
    [[nodiscard]] const Branches& branches() const { return m_branches; }

private:
    struct Focused {
        Element window;
        RunningApplication application;
    };
    struct Found {
        Element window;
        ProcessId pid = 0;
    };
    /// A placement that the desktop has not carried out in time.
    struct Late {
        ProcessId pid = 0;
        Rect frame;
        std::optional<Rect> within;
        int requests = 1;
        std::optional<Rect> droppedFrom = {}; ///< the frame before the drag
    };
    /// A restore that the desktop has not carried out in time.
    struct LateRestore {
        ProcessId pid = 0;
        std::optional<Rect> from;
        Rect to;
        int requests = 1;
    };

    void took(std::string_view branch) { ++m_branches[branch]; }
    void beep(std::string_view why);

    // Coordinates.
    [[nodiscard]] Rect flipped(const Rect& rect);
    [[nodiscard]] std::optional<Screen> screenOf(const Rect& frame);
    [[nodiscard]] Rect zoneFrame(const Zone& zone, const Rect& area);

    // Other programs' windows.
    [[nodiscard]] std::optional<Point> point(const Element& element, std::string_view attribute);
    [[nodiscard]] std::optional<Size> size(const Element& element, std::string_view attribute);
    [[nodiscard]] std::optional<bool> truth(const Element& element, std::string_view attribute);
    [[nodiscard]] std::optional<Rect> frameOf(const Element& window);
    [[nodiscard]] std::vector<Element> windowsOf(ProcessId pid);
    [[nodiscard]] std::optional<Focused> focusedWindow();
    [[nodiscard]] bool isUsable(const Element& window);
    [[nodiscard]] bool isIgnored(const std::optional<RunningApplication>& application) const;
    void setFrame(const Element& window, ProcessId pid, const Rect& frame, const std::optional<Rect>& within);
    void writeFrame(const Element& window, const Rect& frame, const std::optional<Rect>& within);

    // The restore memory.
    void noteFrame(const Element& window, const Late& requested, const std::optional<Rect>& before);
    void corrected(const Element& window, const Rect& frame);
    void complete(const Element& window, Late late, const Rect& frame);
    void completeRestore(const Element& window, LateRestore restore, const Rect& frame);
    void replaceLate(std::uintptr_t key);
    [[nodiscard]] bool isAtEarlierCorner(std::uintptr_t key, const Rect& frame);

    // Actions.
    [[nodiscard]] std::optional<Focused> focusedUsableWindow();
    void run(std::size_t action);
    void snapFocused(const Zone& zone, std::optional<int> zoneNumber);
    void centerFocused();
    void restoreFocused();
    void moveFocused(int step);
    void remember(const std::optional<std::string>& bundleIdentifier, int zoneNumber);
    void arrangeAll();
    [[nodiscard]] std::vector<Found> visibleWindows(const Rect& area, std::size_t limit);
    [[nodiscard]] std::optional<Element> match(const ListedWindow& listed,
                                               const std::set<std::uintptr_t>& seen);

    Ports m_ports;
    std::map<std::uintptr_t, Rect> m_original;
    std::map<std::uintptr_t, Rect> m_lastSnapped;            ///< without late placements
    std::map<std::uintptr_t, std::vector<Rect>> m_ownPlaces; ///< where a window counts as unmoved
    std::map<std::uintptr_t, Late> m_late;
    std::map<std::uintptr_t, LateRestore> m_lateRestores;
    std::map<std::uintptr_t, std::vector<Rect>> m_replaced; ///< late ones before the last late one
    SubscriptionPtr m_corrections;
    SubscriptionPtr m_handler;
    std::vector<SubscriptionPtr> m_hotKeys;
    Branches m_branches;
};

} // namespace tessarel
