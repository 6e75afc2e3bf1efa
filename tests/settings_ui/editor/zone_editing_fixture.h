// SPDX-License-Identifier: MIT

#pragma once

#include "model/presets.h"
#include "settings_ui/editor/zone_editing.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace tessarel {

/// Fixture: zone editing in a picture of 500 x 400 points. One percent is 5 points across and 4 down.
class ZoneEditingTest : public testing::Test {
protected:
    using Mode = ZoneEditing::Mode;
    using Snapping = ZoneEditing::Snapping;

    static constexpr Size kBounds{500, 400};

    ZoneEditingTest() { settings.gridStep = 0; }

    void put(std::vector<Zone> zones) { settings.zones = Presets::pad(std::move(zones)); }
    Zone& zone(std::size_t i) { return settings.zones.at(i); }

    static Point at(double xPercent, double yPercent) { return {xPercent * 5, yPercent * 4}; }
    bool press(double xPercent, double yPercent) { return editing.press(at(xPercent, yPercent), kBounds); }
    bool drag(double xPercent, double yPercent, Snapping snapping = Snapping::On) {
        return editing.drag(at(xPercent, yPercent), kBounds, snapping);
    }
    ZoneEdges edgesAt(const Point& point) { return editing.gripAt(point, kBounds).edges; }

    AppSettings settings;
    ZoneEditing editing{settings};
};

} // namespace tessarel
