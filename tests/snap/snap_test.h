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

/// Drag snapping of one window, whose zones are the two halves of its screen.
class SnapTest : public EngineTest {
protected:
    static constexpr std::uint64_t kShift = kShiftFlag;

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
    /// The user moves the pointer to a place of the screen, measured from its top-left corner.
    void moveTo(const Point& local) { mouse.moveTo(at(local.x, local.y)); }
    /// A display's frame later the pointer is somewhere else, measured in the same way.
    void dragTo(const Point& local) {
        desktop.advance(30ms);
        moveTo(local);
    }
    /// The button goes up, and what follows from it has happened.
    void drop() {
        mouse.release();
        desktop.advance(30ms);
    }

    /// What the overlay shows of `kLeft` and `kRight`, in its own coordinates.
    static constexpr Rect kLeftShown{40, 25, 650, 820};
    static constexpr Rect kRightShown{690, 25, 650, 820};

    /// The frames that the overlay shows, in its own coordinates; empty when it is not to be seen.
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

    Screen screen = addScreens();
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
