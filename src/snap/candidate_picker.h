// SPDX-License-Identifier: MIT

#pragma once

#include "engine/ax.h"
#include "engine/window_engine.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/rect.h"

#include <optional>

namespace tessarel {

/// A window that the user may be about to drag.
struct Candidate {
    Element window;
    ProcessId pid = 0;
    /// Frame at the press, in accessibility coordinates.
    Rect axFrame;
};

/// Finds the window that a mouse press has grabbed by its title bar.
class CandidatePicker {
public:
    /// Both arguments must outlive the picker.
    CandidatePicker(const AX& ax, const WindowEngine& engine);

    /// Returns the window whose top 60 points contain `axPoint`. Empty if there is none, if it may not be
    /// moved, if its application is ignored, or if its program does not reply in time.
    [[nodiscard]] std::optional<Candidate> pick(const Point& axPoint);

private:
    const AX& m_ax;
    const WindowEngine& m_engine;
};

} // namespace tessarel
