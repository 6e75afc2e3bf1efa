#pragma once

#include "ports/rect.h"

#include <memory>
#include <string>
#include <vector>

namespace tessarel {

/// White text in the middle of a figure, in the system's own font.
struct OverlayLabel {
    std::string text;    ///< plain; empty: nothing is drawn
    Point center;        ///< of the text as it is measured
    double fontSize = 0; ///< in points
    int fontWeight = 0;  ///< 400 is regular, 600 semibold, 700 bold
    double alpha = 0;

    bool operator==(const OverlayLabel&) const = default;
};

/// One zone as it is painted: a rounded rectangle, filled and then stroked in the accent colour, and its
/// label on top.
///
/// In local coordinates: origin at the top-left corner of the overlay window, y down. What reaches beyond the
/// window is clipped; nothing is moved.
struct OverlayFigure {
    Rect bounds; ///< the zone; all of the figure lies within, but for a label that is too large
    Rect shape;  ///< of the path; null: neither filled nor stroked
    double cornerRadius = 0;
    double fillAlpha = 0;
    double strokeAlpha = 0;
    double strokeWidth = 0; ///< half of it inside `shape`, half outside
    OverlayLabel label;
    /// The zone that the drag would snap to, for surfaces that have to tell it in another way than by alpha.
    bool highlighted = false;

    bool operator==(const OverlayFigure&) const = default;
};

/// A transparent window above all others, through which every click goes to the window below and which never
/// takes the focus. It is on no desktop in particular and in no list of windows.
///
/// It is made out of sight, without extent and without figures.
class OverlayWindow {
public:
    virtual ~OverlayWindow() = default;

    /// Lets the window cover `screenFrame`, in screen coordinates: origin at the bottom-left corner of the
    /// primary display, y up. What it shows stays at the same place of its top-left corner.
    virtual void setFrame(const Rect& screenFrame) = 0;

    /// From now on the window shows `figures`, painted in this order, and nothing anywhere else. `changed`
    /// holds the bounds of those that have come, gone or changed, as they were and as they are; all other
    /// figures look as before. Every number is finite, except for those of a null shape.
    virtual void setFigures(const std::vector<OverlayFigure>& figures, const std::vector<Rect>& changed) = 0;

    /// Shows the window in front of all others, or brings it there again. Nothing else loses its focus.
    virtual void orderFront() = 0;

    /// Takes the window off the screen at once; frame and figures are kept.
    virtual void orderOut() = 0;
};

/// Makes the window that zones are shown in during a drag.
class OverlayPort {
public:
    virtual ~OverlayPort() = default;

    /// Never null.
    [[nodiscard]] virtual std::unique_ptr<OverlayWindow> createWindow() = 0;
};

} // namespace tessarel
