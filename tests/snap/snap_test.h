#pragma once

#include "engine/engine_test.h"
#include "ports/mouse_port.h"
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

/// Drag snapping on a desktop with one display and one window, whose zones are the two halves.
class SnapTest : public EngineTest {
protected:
    static constexpr Rect kStart{200, 150, 640, 480};
    static constexpr Rect kLeft{0, 25, 720, 875};
    static constexpr Rect kRight{720, 25, 720, 875};
    static constexpr std::uint64_t kShift = modifier_flag::kShift;

    SnapTest() {
        settings.zones = zones({kLeftHalf, kRightHalf});
        dragSnap->start();
    }

    /// Nine zones, of which those not given are disabled.
    static std::vector<Zone> zones(std::vector<Zone> given) {
        given.resize(kZoneSlots);
        return given;
    }

    /// The user presses the button with the pointer at `grip` of the window.
    void grab(sim::WindowId id, const Point& grip = {320, 10}) {
        const Rect frame = desktop.frame(id);
        mouse.moveTo({frame.x + grip.x, frame.y + grip.y});
        mouse.press();
    }
    /// A display's frame later the pointer is somewhere else.
    void dragTo(const Point& axPoint) {
        desktop.advance(30ms);
        mouse.moveTo(axPoint);
    }
    /// The button goes up, and what follows from it has happened.
    void drop() {
        mouse.release();
        desktop.advance(30ms);
    }

    /// The frames that the overlay shows, in screen-local coordinates; empty when it is not to be seen.
    std::vector<Rect> shown() {
        std::vector<Rect> frames;
        for (const OverlayFigure& figure : figures())
            frames.push_back(figure.bounds);
        return frames;
    }
    /// The labels that the overlay shows, the highlighted one in brackets.
    std::string labels() {
        std::string all;
        for (const OverlayFigure& figure : figures())
            all += figure.highlighted ? "[" + figure.label.text + "]" : figure.label.text;
        return all;
    }

    Screen screen = addScreen();
    sim::WindowId window = desktop.openWindow("org.example.editor", kStart);
    sim::SimMouse& mouse = desktop.mouse();
    sim::SimOverlay& picture = desktop.overlay();
    OverlayController overlay{picture, geo};
    std::unique_ptr<DragSnap> dragSnap =
        std::make_unique<DragSnap>(DragSnap::Uses{.mouse = mouse,
                                                  .mainQueue = desktop.mainQueue(),
                                                  .accessibility = desktop.accessibility(),
                                                  .displays = desktop.displays(),
                                                  .workspace = desktop.workspace(),
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
