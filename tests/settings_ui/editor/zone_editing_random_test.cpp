// SPDX-License-Identifier: MIT

#include "model/presets.h"
#include "settings_ui/editor/zone_editing.h"
#include "support/long_run.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

/// A naive implementation of the zone editor, with four numbers per zone.
struct NaiveEditor {
    struct Z {
        bool on;
        double x, y, w, h;
    };

    std::vector<Z> zones;
    double grid = 0;
    double width = 0;
    double height = 0;
    int selected = 0;
    char mode = '-'; ///< '-' none, 'm' move, 'r' resize
    bool left = false, right = false, top = false, bottom = false;
    Z from{true, 0, 0, 10, 10};
    double fromX = 0, fromY = 0;
    int selections = 0;
    int commits = 0;

    void down(double px, double py) {
        fromX = px;
        fromY = py;
        mode = '-';
        if (selected >= 0 && selected < static_cast<int>(zones.size()) && zone().on && grabs(px, py)) {
            mode = 'r';
            from = zone();
            return;
        }
        std::map<std::pair<double, int>, int> hits; // by area, then by index
        for (int i = 0; i < static_cast<int>(zones.size()); ++i) {
            const Z& z = zones[static_cast<std::size_t>(i)];
            const double x0 = z.x / 100 * width, y0 = z.y / 100 * height;
            const double ww = z.w / 100 * width, hh = z.h / 100 * height;
            if (z.on && px >= x0 && px < x0 + ww && py >= y0 && py < y0 + hh)
                hits[{ww * hh, i}] = i;
        }
        if (hits.empty())
            return;
        if (hits.begin()->second != selected) {
            selected = hits.begin()->second;
            ++selections;
        }
        mode = 'm';
        from = zone();
    }

    void dragged(double px, double py, bool shift) {
        if (mode == '-' || selected < 0 || selected >= static_cast<int>(zones.size()))
            return;
        const double dx = (px - fromX) / width * 100;
        const double dy = (py - fromY) / height * 100;
        Z z = from;
        if (mode == 'm') {
            const double nx = from.x + dx, ny = from.y + dy;
            z.x = shift ? nx : magnet(nx, from.w, true);
            z.y = shift ? ny : magnet(ny, from.h, false);
            z.x = z.x > 0 ? z.x : 0;
            z.x = z.x < 100 - z.w ? z.x : 100 - z.w;
            z.y = z.y > 0 ? z.y : 0;
            z.y = z.y < 100 - z.h ? z.y : 100 - z.h;
        } else {
            double l = from.x, r = from.x + from.w, t = from.y, b = from.y + from.h;
            if (left)
                l = shift ? l + dx : snap(l + dx, true);
            if (right)
                r = shift ? r + dx : snap(r + dx, true);
            if (top)
                t = shift ? t + dy : snap(t + dy, false);
            if (bottom)
                b = shift ? b + dy : snap(b + dy, false);
            if (l < 0)
                l = 0;
            if (l > r - 2)
                l = r - 2;
            if (r > 100)
                r = 100;
            if (r < l + 2)
                r = l + 2;
            if (t < 0)
                t = 0;
            if (t > b - 2)
                t = b - 2;
            if (b > 100)
                b = 100;
            if (b < t + 2)
                b = t + 2;
            z = {from.on, l, t, r - l, b - t};
        }
        zone() = {from.on, hundredths(z.x), hundredths(z.y), hundredths(z.w), hundredths(z.h)};
    }

    void up() {
        if (mode != '-')
            ++commits;
        mode = '-';
    }

    void remove() {
        if (selected >= 0 && selected < static_cast<int>(zones.size())) {
            zone().on = false;
            ++commits;
        }
    }

private:
    Z& zone() { return zones[static_cast<std::size_t>(selected)]; }

    bool grabs(double px, double py) {
        const double x0 = zone().x / 100 * width, x1 = x0 + zone().w / 100 * width;
        const double y0 = zone().y / 100 * height, y1 = y0 + zone().h / 100 * height;
        const bool across = x0 - 8 <= px && px <= x1 + 8;
        const bool down = y0 - 8 <= py && py <= y1 + 8;
        left = down && std::fabs(px - x0) <= 8;
        right = down && std::fabs(px - x1) <= 8;
        top = across && std::fabs(py - y0) <= 8;
        bottom = across && std::fabs(py - y1) <= 8;
        if (left && right)
            (std::fabs(px - x0) <= std::fabs(px - x1) ? right : left) = false;
        if (top && bottom)
            (std::fabs(py - y0) <= std::fabs(py - y1) ? bottom : top) = false;
        return left || right || top || bottom;
    }

    double magnet(double start, double size, bool horizontal) {
        const double a = snap(start, horizontal);
        const double b = snap(start + size, horizontal);
        return std::fabs((b - size) - start) < std::fabs(a - start) ? b - size : a;
    }

    double snap(double v, bool horizontal) {
        std::vector<double> places = {0, 25, 100.0 / 3, 50, 200.0 / 3, 75, 100};
        for (int i = 0; i < static_cast<int>(zones.size()); ++i) {
            const Z& z = zones[static_cast<std::size_t>(i)];
            if (i == selected || !z.on)
                continue;
            places.push_back(horizontal ? z.x : z.y);
            places.push_back(horizontal ? z.x + z.w : z.y + z.h);
        }
        std::size_t best = 0;
        for (std::size_t i = 1; i < places.size(); ++i)
            if (std::fabs(places[i] - v) < std::fabs(places[best] - v))
                best = i;
        if (std::fabs(places[best] - v) < 1.6)
            return places[best];
        return grid > 0 ? grid * std::round(v / grid) : v;
    }

    static double hundredths(double v) { return std::round(v * 100) / 100; }
};

class ZoneEditingRandomTest : public testing::Test {
protected:
    int whole(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
    bool oneIn(int n) { return whole(1, n) == 1; }

    /// Returns mostly multiples of 5 and thirds, so that edges often coincide.
    double percent(int from, int to) {
        if (oneIn(8))
            return whole(1, 2) * 100.0 / 3;
        return oneIn(4) ? whole(from * 100, to * 100) / 100.0 : whole(from / 5, to / 5) * 5;
    }

    Zone anyZone() {
        if (oneIn(30))
            return {true, percent(-50, 50), percent(-50, 50), percent(1, 180), percent(1, 180)};
        const double x = percent(0, 90);
        const double y = percent(0, 90);
        return {!oneIn(4), x, y, percent(1, 60), percent(1, 60)};
    }

    void startAnew() {
        static constexpr std::array<double, 6> kSteps = {0, 1, 2.5, 5, 10, 3};
        static constexpr std::array<Size, 3> kSizes = {{{500, 312}, {500, 400}, {123.5, 77}}};
        settings.zones.clear();
        for (int i = whole(1, 9); i > 0; --i)
            settings.zones.push_back(anyZone());
        settings.gridStep = kSteps[static_cast<std::size_t>(whole(0, 5))];
        bounds = kSizes[static_cast<std::size_t>(whole(0, 2))];
        naive.zones.clear();
        for (const Zone& z : settings.zones)
            naive.zones.push_back({z.enabled, z.x, z.y, z.w, z.h});
        naive.grid = settings.gridStep;
        naive.width = bounds.width;
        naive.height = bounds.height;
        naive.selected = editing.selected = whole(-1, 9);
        naive.up();
        commits += editing.release() ? 1 : 0;
    }

    /// Returns a point that is often near an edge of the selected zone and sometimes outside the picture.
    Point somewhere() {
        const Zone* const zone = editing.selectedZone();
        if (!zone || oneIn(3))
            return {bounds.width * whole(-10, 110) / 100, bounds.height * whole(-10, 110) / 100};
        const Rect r = ZoneEditing::rect(*zone, bounds);
        return {r.x + r.width * whole(0, 2) / 2 + whole(-9, 9),
                r.y + r.height * whole(0, 2) / 2 + whole(-9, 9)};
    }

    void dragOnce() {
        const Point from = somewhere();
        selections += editing.press(from, bounds) ? 1 : 0;
        naive.down(from.x, from.y);
        Point to = from;
        for (int steps = whole(0, 3); steps > 0; --steps) {
            to = oneIn(3) ? somewhere() : Point{to.x + whole(-60, 60) / 2.0, to.y + whole(-60, 60) / 2.0};
            const bool shift = oneIn(5);
            editing.drag(to, bounds, shift ? ZoneEditing::Snapping::Off : ZoneEditing::Snapping::On);
            naive.dragged(to.x, to.y, shift);
        }
        commits += editing.release() ? 1 : 0;
        naive.up();
        if (!oneIn(15))
            return;
        commits += editing.disableSelected() ? 1 : 0;
        naive.remove();
    }

    void compare() {
        ASSERT_EQ(editing.selected, naive.selected);
        ASSERT_EQ(selections, naive.selections);
        ASSERT_EQ(commits, naive.commits);
        for (std::size_t i = 0; i < settings.zones.size(); ++i) {
            const NaiveEditor::Z& z = naive.zones[i];
            ASSERT_EQ(settings.zones[i], (Zone{z.on, z.x, z.y, z.w, z.h})) << "zone " << i;
        }
    }

    std::mt19937 random{20261121};
    AppSettings settings;
    ZoneEditing editing{settings};
    Size bounds;
    NaiveEditor naive;
    int selections = 0;
    int commits = 0;
};

TEST_F(ZoneEditingRandomTest, RandomDragsAgreeWithTheNaiveEditor) {
    const int drags = rounds(20'000, 1'000'000);
    int changed = 0;
    for (int i = 0; i < drags; ++i) {
        if (i % 20 == 0)
            startAnew();
        const std::vector<Zone> before = settings.zones;
        dragOnce();
        ASSERT_NO_FATAL_FAILURE(compare()) << "drag " << i;
        changed += settings.zones == before ? 0 : 1;
    }
    EXPECT_GT(changed, drags / 4) << "most drags grabbed nothing";
    EXPECT_GT(selections, drags / 20);
}

} // namespace
} // namespace tessarel
