// SPDX-License-Identifier: MIT

#pragma once

#include "model/layout.h"
#include "model/zone.h"

#include <vector>

namespace tessarel {

/// The built-in layouts, and the rule that pads any list of zones to nine.
class Presets {
public:
    /// Returns an enabled zone, in percent of the usable area.
    [[nodiscard]] static constexpr Zone z(double x, double y, double w, double h) {
        return {true, x, y, w, h};
    }

    /// Returns `zones` as a list of exactly nine. A longer list is truncated; a shorter one is padded with
    /// disabled, centred zones of half the width and height.
    [[nodiscard]] static std::vector<Zone> pad(std::vector<Zone> zones);

    /// Returns the nine built-in layouts in menu order, each padded to nine zones. The first one provides the
    /// default zones.
    [[nodiscard]] static const std::vector<Layout>& all();

    /// In menus a built-in layout has its index as tag; the layouts that the user has saved follow from here.
    static constexpr int kFirstUserTag = 1000;

    /// Returns the layout with that tag: a built-in one, or one of `userLayouts`; null if there is none.
    [[nodiscard]] static const Layout* layout(int tag, const std::vector<Layout>& userLayouts);
};

} // namespace tessarel
