// SPDX-License-Identifier: MIT

#include "snap/snap_test.h"

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <tuple>

namespace tessarel {
namespace {

constexpr int kSequences = 25'000;
constexpr int kSteps = 10;

/// A zone on the overlay: its frame in accessibility coordinates, whether it is highlighted, and its label.
using Shown = std::tuple<double, double, double, double, bool, std::string>;

struct Put {
    MainQueuePort::TimePoint due;
    sim::WindowId window;
    Rect frame;
    std::optional<std::int64_t> zone;
};

/// State of a naive implementation of drag snapping, which receives the same mouse events.
struct NaiveDragSnap {
    bool candidate = false;
    sim::WindowId window{};
    Rect start;
    bool dragging = false;
    Point press;
    std::optional<Rect> sighting;
    std::optional<MainQueuePort::TimePoint> readAgain;
    MouseEvent latest;
    Point pressed;
    std::optional<MainQueuePort::TimePoint> lastRead;
    std::optional<Rect> target;
    std::optional<std::int64_t> zone;
    std::vector<Shown> overlay;
    std::vector<Put> puts;

    void reset() {
        candidate = dragging = false;
        sighting.reset();
        readAgain.reset();
        target.reset();
        zone.reset();
        overlay.clear();
    }
};

/// Returns the zone that a pointer at (`px`, `py`) gets at an edge of the screen `s`; its width is 0 when no
/// zone is offered.
Zone naiveEdgeZone(const Rect& s, double px, double py) {
    const bool top = py <= s.y + 6;
    const bool bottom = !top && py >= s.y + s.height - 7;
    const bool left = px <= s.x + 6;
    const bool right = !left && px >= s.x + s.width - 7;
    if (top || bottom) {
        const double y = top ? 0 : 50;
        if (px <= s.x + 80)
            return {true, 0, y, 50, 50};
        if (px >= s.x + s.width - 80)
            return {true, 50, y, 50, 50};
        return top ? Zone{true, 0, 0, 100, 100} : Zone{};
    }
    if (left || right) {
        const double x = left ? 0 : 50;
        if (py <= s.y + 80)
            return {true, x, 0, 50, 50};
        if (py >= s.y + s.height - 80)
            return {true, x, 50, 50, 50};
        return {true, x, 0, 50, 100};
    }
    return {};
}

class DragSnapRandomTest : public SnapTest {
protected:
    DragSnapRandomTest() {
        windows = {desktop.openWindow("org.example.viewer", at({700, 300, 500, 400})), window};
        ownWindow = desktop.openOwnWindow(at({1100, 40, 300, 200}));
        for (const auto kind : {MouseEventKind::LeftDown, MouseEventKind::LeftDragged, MouseEventKind::LeftUp,
                                MouseEventKind::Cancelled})
            monitors.push_back(
                mouse.addGlobalMonitor(kind, [this](const MouseEvent& event) { hear(event); }));
    }

    int whole(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
    bool oneIn(int n) { return whole(1, n) == 1; }
    template <class Value, std::size_t kSize>
    Value anyOf(const std::array<Value, kSize>& values) {
        return values[static_cast<std::size_t>(whole(0, kSize - 1))];
    }

    // The naive implementation.

    void hear(const MouseEvent& event) {
        const double px = event.screenLocation.x;
        const double py = primaryHeight() - event.screenLocation.y;
        if (event.kind == MouseEventKind::LeftDown)
            naiveDown(event.screenLocation, px, py);
        else if (event.kind == MouseEventKind::LeftDragged)
            naiveDragged(event, px, py);
        else if (event.kind == MouseEventKind::LeftUp)
            naiveUp();
        else
            naive.reset();
    }

    void naiveDown(const Point& screenPoint, double px, double py) {
        naive.reset();
        naive.pressed = screenPoint;
        if (!settings.dragEnabled || runtime.paused || !desktop.trust().trusted)
            return;
        for (const sim::WindowId id : windows) {
            const Rect frame = desktop.frame(id);
            const bool holds =
                px >= frame.x && px < frame.x + frame.width && py >= frame.y && py < frame.y + frame.height;
            if (!holds || desktop.window(id).minimized)
                continue;
            const bool isIgnored = !settings.ignoredApps.empty() &&
                                   *desktop.applicationOf(id).bundleIdentifier == settings.ignoredApps[0];
            naive.candidate = !isIgnored && py - frame.y <= 60;
            naive.window = id;
            naive.start = frame;
            naive.press = {px, py};
            return;
        }
    }

    void naiveDragged(const MouseEvent& event, double px, double py) {
        naive.latest = event;
        if (!naive.candidate || (!naive.dragging && !naiveSeesMove()))
            return;
        naive.dragging = true;
        naive.readAgain.reset();
        naive.target.reset();
        naive.overlay.clear();
        for (const Screen& one : desktop.displays().screens()) {
            const Rect& f = one.frame;
            if (event.screenLocation.x >= f.x && event.screenLocation.x < f.x + f.width &&
                event.screenLocation.y > f.y && event.screenLocation.y <= f.y + f.height)
                return naiveOffer(one, event.modifierFlags, px, py);
        }
    }

    bool naiveSeesMove() {
        const auto now = desktop.mainQueue().now();
        if (naive.lastRead && now - *naive.lastRead < 30ms)
            return false;
        naive.lastRead = now;
        const Rect g = desktop.frame(naive.window);
        const Rect& s = naive.start;
        const bool wide = std::abs(g.width - s.width) >= 3;
        const bool high = std::abs(g.height - s.height) >= 3;
        const bool leftStays = std::abs(g.x - s.x) <= 1;
        const bool topStays = std::abs(g.y - s.y) <= 1;
        const bool rightStays = std::abs(g.x + g.width - s.x - s.width) <= 1;
        const bool bottomStays = std::abs(g.y + g.height - s.y - s.height) <= 1;
        const bool byLeft = naive.press.x < s.x + 8;
        const bool byRight = naive.press.x >= s.x + s.width - 8;
        const bool byTop = naive.press.y < s.y + 8;
        const bool byBottom = naive.press.y >= s.y + s.height - 8;
        if ((wide && byLeft && rightStays) || (wide && byRight && leftStays) ||
            (high && byBottom && topStays) || (high && bottomStays && (byTop || !wide))) {
            naive.sighting.reset();
            return false;
        }
        const bool moved = std::abs(g.x - s.x) > 3 || std::abs(g.y - s.y) > 3;
        if (byLeft || byRight || byTop || byBottom) {
            if (!moved)
                return false;
            const auto before = std::exchange(naive.sighting, g);
            if (before && before->size() == g.size())
                return true;
            naive.readAgain = now + 30ms;
            return false;
        }
        if (!wide && !high)
            return moved;
        const Point& pointedAt = naive.latest.screenLocation;
        if (std::hypot(pointedAt.x - naive.pressed.x, pointedAt.y - naive.pressed.y) <= 3)
            return false;
        if (g.width < s.width + 3 && g.height < s.height + 3)
            return true;
        const auto before = std::exchange(naive.sighting, g);
        return before && before->size() == g.size() && before->origin() != g.origin();
    }

    void naiveOffer(const Screen& on, std::uint64_t flags, double px, double py) {
        const double height = primaryHeight();
        const Rect v{on.visibleFrame.x, height - on.visibleFrame.y - on.visibleFrame.height,
                     on.visibleFrame.width, on.visibleFrame.height};
        const Rect s{on.frame.x, height - on.frame.y - on.frame.height, on.frame.width, on.frame.height};
        const std::map<std::string, unsigned> bits = {{"shift", 17}, {"control", 18}, {"command", 20}};
        const auto bit = bits.find(settings.dragTrigger);
        const bool held =
            settings.dragTrigger == "always" || ((flags >> (bit == bits.end() ? 17 : bit->second)) & 1U) != 0;
        naive.zone.reset();
        if (held)
            return naiveZones(v, px, py);
        const Zone zone = naiveEdgeZone(s, px, py);
        if (!settings.edgeSnap || zone.w == 0)
            return;
        naive.target = geo.zoneFrame(zone, v);
        add(*naive.target, true, "");
    }

    void naiveZones(const Rect& v, double px, double py) {
        const double g = settings.gap / 2 + 1;
        std::map<std::pair<double, std::size_t>, Rect> hits;
        for (std::size_t i = 0; i < settings.zones.size(); ++i) {
            const Rect z = geo.zoneFrame(settings.zones[i], v);
            if (settings.zones[i].enabled && px >= z.x - g && px < z.x + z.width + g && py >= z.y - g &&
                py < z.y + z.height + g)
                hits[{z.width * z.height, i}] = z;
        }
        if (!hits.empty()) {
            naive.target = hits.begin()->second;
            naive.zone = static_cast<std::int64_t>(hits.begin()->first.second);
        }
        for (std::size_t i = 0; i < settings.zones.size(); ++i) {
            if (settings.zones[i].enabled)
                add(geo.zoneFrame(settings.zones[i], v), naive.zone == static_cast<std::int64_t>(i),
                    std::string(1, static_cast<char>('1' + i)));
        }
    }

    void add(const Rect& frame, bool highlighted, const std::string& label) {
        naive.overlay.emplace_back(frame.x, frame.y, frame.width, frame.height, highlighted, label);
    }

    void naiveUp() {
        if (naive.candidate && naive.dragging && naive.target)
            naive.puts.push_back({desktop.mainQueue().now() + 30ms, naive.window, *naive.target, naive.zone});
        naive.reset();
    }

    // Random steps, which affect both implementations.

    Point somewhere() {
        static constexpr std::array<double, 12> kXs = {-1,  0,   6,   7,      80,   81,
                                                       685, 690, 696, 1432.5, 1433, 1439};
        static constexpr std::array<double, 10> kYs = {-1, 0, 6, 7, 81, 450, 819, 892, 893, 899};
        switch (whole(0, 3)) {
        case 0: {
            const Rect frame = desktop.frame(anyOf(windows));
            return {frame.x + whole(0, 200), frame.y + whole(-2, 70)};
        }
        case 1:
            return {pointer.x + whole(-4, 4), pointer.y + whole(-4, 4)};
        case 2:
            return at(anyOf(kXs), anyOf(kYs));
        default:
            return {static_cast<double>(whole(-2700, 1400)), static_cast<double>(whole(-700, 900))};
        }
    }

    void moveMouse() { mouse.moveTo(pointer = somewhere()); }

    void pressSomewhere() {
        moveMouse();
        mouse.press();
    }

    void grabSomeWindow() {
        const Rect frame = desktop.frame(anyOf(windows));
        mouse.moveTo(pointer = {frame.x + whole(0, 300), frame.y + whole(3, 62)});
        mouse.press();
    }

    void pass(MainQueuePort::Duration duration) {
        const auto end = desktop.mainQueue().now() + duration;
        while (naive.readAgain && *naive.readAgain <= end) {
            passUndisturbed(*std::exchange(naive.readAgain, std::nullopt) - desktop.mainQueue().now());
            hear(MouseEvent(naive.latest));
        }
        passUndisturbed(end - desktop.mainQueue().now());
    }

    /// Lets time pass in which no frame is read.
    void passUndisturbed(MainQueuePort::Duration duration) {
        std::map<sim::WindowId, Rect> expected;
        for (const sim::WindowId id : windows)
            expected[id] = desktop.frame(id);
        desktop.advance(duration);
        while (!naive.puts.empty() && naive.puts.front().due <= desktop.mainQueue().now()) {
            const Put put = naive.puts.front();
            naive.puts.erase(naive.puts.begin());
            expected[put.window] = put.frame;
            if (put.zone && settings.rememberApps)
                appZones[*desktop.applicationOf(put.window).bundleIdentifier] = *put.zone;
            ++placements;
        }
        for (const sim::WindowId id : windows)
            ASSERT_EQ(desktop.frame(id), expected[id]);
    }

    void changeSettings() {
        static const std::array<std::string, 6> kTriggers = {"shift",  "control", "command",
                                                             "always", "option",  "shift"};
        Zone& zone = settings.zones[static_cast<std::size_t>(whole(0, 8))];
        switch (whole(0, 6)) {
        case 0:
            zone = {!oneIn(3), whole(0, 1) * 25.0, whole(0, 1) * 25.0, whole(1, 3) * 25.0,
                    whole(1, 3) * 25.0};
            break;
        case 1:
            settings.gap = whole(0, 4) * 5;
            break;
        case 2:
            settings.margin = whole(0, 2) * 4;
            break;
        case 3:
            settings.dragTrigger = anyOf(kTriggers);
            break;
        case 4:
            settings.edgeSnap = oneIn(2);
            break;
        case 5:
            settings.dragEnabled = !oneIn(12);
            settings.rememberApps = oneIn(2);
            break;
        default:
            settings.ignoredApps.clear();
            if (oneIn(4))
                settings.ignoredApps = {"org.example.viewer"};
        }
    }

    void changeDesktop() {
        const sim::WindowId id = anyOf(windows);
        switch (whole(0, 4)) {
        case 0: {
            const Rect frame = desktop.frame(id);
            desktop.drag(id, {frame.x + whole(-4, 4), frame.y, frame.width + whole(-4, 4), frame.height});
            break;
        }
        case 1:
            desktop.window(id).minimized = oneIn(4);
            break;
        case 2:
            runtime.paused = oneIn(12);
            break;
        case 3:
            desktop.trust().trusted = !oneIn(12);
            break;
        default:
            if (second)
                desktop.removeScreen(std::exchange(second, std::nullopt)->id);
            else
                second = desktop.addScreen(
                    {.frame = {-2560, 376, 1120, 1024}, .dock = 40, .leftBar = 30, .rightBar = 20});
        }
    }

    void stepOnce() {
        static constexpr std::array<std::uint64_t, 5> kFlags = {0, 1U << 17U, 1U << 18U, 1U << 19U,
                                                                1U << 20U};
        const int what = whole(0, 19);
        if (what < 9)
            moveMouse();
        else if (what < 10)
            oneIn(2) ? grabSomeWindow() : pressSomewhere();
        else if (what < 12)
            oneIn(6) ? mouse.cancel() : mouse.release();
        else if (what < 13)
            mouse.loseRelease();
        else if (what < 17)
            pass(whole(0, 3) * 10ms + whole(-1, 1) * 1ns);
        else if (what < 18)
            mouse.hold(anyOf(kFlags));
        else if (what < 19)
            changeSettings();
        else
            changeDesktop();
    }

    std::vector<Shown> seen() {
        std::vector<Shown> all;
        if (!picture.isVisible)
            return all;
        const double left = picture.screenFrame.x;
        const double top = heightWhenDrawn - picture.screenFrame.y - picture.screenFrame.height;
        for (const OverlayFigure& one : picture.figures)
            all.emplace_back(one.bounds.x + left, one.bounds.y + top, one.bounds.width, one.bounds.height,
                             one.highlighted, one.label.text);
        return all;
    }

    double primaryHeight() { return desktop.displays().screens().at(0).frame.height; }

    /// Releases the button, moves the windows to where they can be dragged, and grabs one of them.
    void beginSequence() {
        mouse.release();
        pass(1s);
        desktop.drag(windows[0], at({700, 300, 500, 400}));
        desktop.drag(windows[1], kStart);
        (void)desktop.takeRequests(); // the record of requests would grow without limit
        mouse.hold(oneIn(3) ? 0 : kShift);
        grabSomeWindow();
    }

    std::mt19937 random{20261121};
    const double heightWhenDrawn = kPrimary.height;
    std::array<sim::WindowId, 2> windows{};
    sim::WindowId ownWindow{};
    std::optional<Screen> second;
    Point pointer;
    NaiveDragSnap naive;
    std::map<std::string, std::int64_t, std::less<>> appZones;
    int placements = 0;
    std::vector<SubscriptionPtr> monitors;
};

TEST_F(DragSnapRandomTest, DragSnappingAgreesWithTheNaiveImplementation) {
    int overlays = 0;
    for (int sequence = 0; sequence < kSequences; ++sequence) {
        beginSequence();
        for (int step = 0; step < kSteps; ++step) {
            stepOnce();
            ASSERT_EQ(seen(), naive.overlay) << "sequence " << sequence << ", step " << step;
            ASSERT_EQ(settings.appZones, appZones) << "sequence " << sequence << ", step " << step;
            ASSERT_FALSE(HasFatalFailure());
            overlays += picture.isVisible ? 1 : 0;
        }
    }
    EXPECT_GT(placements, kSequences / 25);
    EXPECT_GT(overlays, kSequences / 4);
    EXPECT_EQ(picture.windows, 1);
}

} // namespace
} // namespace tessarel
