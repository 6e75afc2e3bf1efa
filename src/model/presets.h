#pragma once

#include "model/layout.h"
#include "model/zone.h"

#include <vector>

namespace tessarel {

/// The built-in layouts and the rule that brings any list of zones to nine.
class Presets {
public:
    /// An enabled zone, in percent of the usable area.
    [[nodiscard]] static constexpr Zone z(double x, double y, double w, double h) {
        return {true, x, y, w, h};
    }

    /// `zones` as a list of exactly nine: the first nine of a longer one; a shorter one is filled up with
    /// disabled, centred zones of half the width and height.
    [[nodiscard]] static std::vector<Zone> pad(std::vector<Zone> zones);

    /// The nine built-in layouts in the order of the menu, each padded to nine zones. The first one is the
    /// default active set.
    [[nodiscard]] static const std::vector<Layout>& all();
};

} // namespace tessarel
