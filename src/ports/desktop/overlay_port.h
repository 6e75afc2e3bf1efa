// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

#include <memory>
#include <string>
#include <vector>

namespace tessarel {

/// White text in the middle of a figure, in the system font.
struct OverlayLabel {
    std::string text;    ///< plain; empty: nothing is drawn
    Point center;        ///< of the text as measured
    double fontSize = 0; ///< in points
    int fontWeight = 0;  ///< 400 is regular, 600 semibold, 700 bold
    double alpha = 0;    ///< from 0, transparent, to 1, opaque

    bool operator==(const OverlayLabel&) const = default;
};

/// A zone as it is painted: a rounded rectangle, filled and then stroked in the accent colour, with its label
/// on top.
///
/// In local coordinates: origin at the top-left corner of the overlay window, y down. Parts beyond the window
/// are clipped; nothing is moved to fit.
struct OverlayFigure {
    Rect bounds; ///< the zone; contains the whole figure, except for an oversized label
    Rect shape;  ///< the path; if null, nothing is filled or stroked
    double cornerRadius = 0;
    double fillAlpha = 0;
    double strokeAlpha = 0;
    double strokeWidth = 0; ///< half inside `shape`, half outside
    OverlayLabel label;
    /// The zone that the drag would snap to. Back ends that cannot paint with alpha mark it in another way.
    bool highlighted = false;

    bool operator==(const OverlayFigure&) const = default;
};

/// A transparent window above all others. It passes every click to the window below and never takes the
/// keyboard focus. It appears on every virtual desktop and in no list of windows.
///
/// A new overlay window is hidden, has an empty frame and shows no figures.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    /// Makes the window cover `screenFrame`, in screen coordinates: origin at the bottom-left corner of the
    /// primary display, y up. The figures keep their position relative to the window's top-left corner.
    virtual void setFrame(const Rect& screenFrame) = 0;

    /// Replaces the content with `figures`, painted in this order. `changed` holds the old and the new bounds
    /// of all figures that were added, removed or changed; everything else stays as it is, so only these
    /// areas need repainting. All values are finite, except those of a null shape.
    virtual void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) = 0;

    /// Shows the window in front of all others, or raises it again. Does not change the keyboard focus.
    virtual void orderFront() = 0;

    /// Hides the window at once. Keeps the frame and the figures.
    virtual void orderOut() = 0;
};

/// Creates the window in which zones are shown during a drag.
class OverlayPort {
public:
    virtual ~OverlayPort() = default;

    /// Returns a new overlay window. Never null.
    [[nodiscard]] virtual std::unique_ptr<OverlayWindow> createWindow() = 0;

    /// Returns whether a window that is shown now has opaque outlines instead of translucent areas. Requires
    /// the event loop of the program.
    [[nodiscard]] virtual bool showsOutlines() const = 0;
};

} // namespace tessarel
