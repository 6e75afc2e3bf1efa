// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/overlay_port.h"

#include <string>

namespace tessarel::qt {

/// Returns the figure of a zone, with the values that the overlay uses.
[[nodiscard]] inline OverlayFigure zoneFigure(const Rect& bounds, const std::string& label = {},
                                              bool highlighted = false) {
    return {.bounds = bounds,
            .shape = bounds.inset(2, 2),
            .cornerRadius = 10,
            .fillAlpha = highlighted ? 0.35 : 0.1,
            .strokeAlpha = highlighted ? 0.95 : 0.45,
            .strokeWidth = highlighted ? 3 : 1.5,
            .label = {.text = label,
                      .center = {bounds.midX(), bounds.midY()},
                      .fontSize = 28,
                      .fontWeight = 600,
                      .alpha = highlighted ? 0.95 : 0.6},
            .highlighted = highlighted};
}

} // namespace tessarel::qt
