#pragma once

#include "engine/geo.h"
#include "model/store.h"
#include "ports/displays_port.h"
#include "ports/rect.h"
#include "snap/overlay_item.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tessarel {

/// What a drag offers with the pointer at one place: the rectangles to show, and where the window would go.
struct SnapOffer {
    std::vector<OverlayItem> items;
    std::optional<Rect> target;            ///< in accessibility coordinates; empty: the window stays
    std::optional<std::size_t> zoneNumber; ///< of the target among the user's zones, from 0; none at an edge
};

/// Decides by the settings of the moment, from the pointer alone.
class SnapOffers {
public:
    SnapOffers(const Geo& geo, const Store& store);

    /// The offer with the pointer at `axPoint` of `screen` and the modifiers `modifierFlags` held: the user's
    /// zones while the trigger is held, else, when the user wants it, what the screen's edges offer.
    [[nodiscard]] SnapOffer offer(const Screen& screen, const Point& axPoint,
                                  std::uint64_t modifierFlags) const;

private:
    [[nodiscard]] bool isTriggerHeld(std::uint64_t modifierFlags) const;
    [[nodiscard]] SnapOffer zones(const Rect& axVisible, const Point& axPoint) const;
    [[nodiscard]] SnapOffer edge(const Screen& screen, const Rect& axVisible, const Point& axPoint) const;

    const Geo& m_geo;
    const Store& m_store;
};

} // namespace tessarel
