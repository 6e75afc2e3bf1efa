// SPDX-License-Identifier: MIT

#pragma once

#include "engine/engine_test.h"
#include "ports/desktop/mouse_port.h"
#include "snap/drag_snap.h"
#include "snap/overlay_controller.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

using namespace std::chrono_literals;

/// Fixture: drag snapping of one window, with the two halves of its screen as zones.
class SnapTest : public EngineTest {
protected:
    static constexpr std::uint64_t kShift = kShiftFlag;

    SnapTest() {
        settings.zones = zones({kLeftHalf, kRightHalf});
        dragSnap->start();
    }

    /// Returns nine zones: those given, then disabled ones.
    static std::vector<Zone> zones(std::vector<Zone> given) {
        given.resize(kZoneSlots);
        return given;
    }

    /// Presses the button with the pointer at `grip`, measured from the top-left corner of the window.
    void grab(sim::WindowId id, const Point& grip = {320, 10}) {
        const Rect frame = desktop.frame(id);
        mouse.moveTo({frame.x + grip.x, frame.y + grip.y});
        mouse.press();
    }
    /// Moves the pointer to `local`, measured from the top-left corner of the screen.
    void moveTo(const Point& local) { mouse.moveTo(at(local.x, local.y)); }
    /// Lets 30 ms pass, so that the window's frame may be read again, and calls `moveTo`.
    void dragTo(const Point& local) {
        desktop.advance(30ms);
        moveTo(local);
    }
    /// Releases the button and lets 30 ms pass, after which the window is placed.
    void drop() {
        mouse.release();
        desktop.advance(30ms);
    }

    /// `kLeft` and `kRight` in overlay coordinates, whose origin is the top-left corner of the screen.
    static constexpr Rect kLeftShown{40, 25, 650, 820};
    static constexpr Rect kRightShown{690, 25, 650, 820};

    /// Returns the frames of the figures on the overlay, in overlay coordinates; empty while it is hidden.
    std::vector<Rect> shown() {
        std::vector<Rect> frames;
        for (const OverlayFigure& figure : figures())
            frames.push_back(figure.bounds);
        return frames;
    }
    /// Returns the labels on the overlay, concatenated, the highlighted one in brackets; empty if hidden.
    std::string labels() {
        std::string all;
        for (const OverlayFigure& figure : figures())
            all += figure.highlighted ? "[" + figure.label.text + "]" : figure.label.text;
        return all;
    }

    Screen screen = addScreens();
    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
    sim::SimMouse& mouse = desktop.mouse();
    sim::SimOverlay& picture = desktop.overlay();
    OverlayController overlay{picture};
    std::unique_ptr<DragSnap> dragSnap =
        std::make_unique<DragSnap>(DragSnap::Uses{.mouse = mouse,
                                                  .mainQueue = desktop.mainQueue(),
                                                  .store = store,
                                                  .runtime = runtime,
                                                  .permissions = permissions,
                                                  .geo = geo,
                                                  .ax = ax,
                                                  .engine = engine,
                                                  .overlay = overlay});

private:
    std::vector<OverlayFigure> figures() {
        return picture.isVisible ? picture.figures : std::vector<OverlayFigure>{};
    }
};

} // namespace tessarel
