#pragma once

#include "engine/ax.h"
#include "engine/window_engine.h"
#include "ports/accessibility_port.h"
#include "ports/process_id.h"
#include "ports/rect.h"
#include "ports/workspace_port.h"

#include <optional>

namespace tessarel {

/// A window that the user may be about to drag.
struct Candidate {
    Element window;
    ProcessId pid = 0;
    Rect axFrame; ///< where it stood when it was grabbed
};

/// Finds the window that a press of the mouse has grabbed by its title bar.
class CandidatePicker {
public:
    CandidatePicker(AccessibilityPort& accessibility, WorkspacePort& workspace, const AX& ax,
                    const WindowEngine& engine);

    /// The usable, not ignored window whose upper end is at `axPoint`; none when there is no such window or
    /// its program does not answer in time.
    [[nodiscard]] std::optional<Candidate> pick(const Point& axPoint);

private:
    [[nodiscard]] std::optional<Element> windowAt(const Point& axPoint);

    AccessibilityPort& m_accessibility;
    WorkspacePort& m_workspace;
    const AX& m_ax;
    const WindowEngine& m_engine;
};

} // namespace tessarel
