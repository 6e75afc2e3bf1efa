// SPDX-License-Identifier: MIT

#pragma once

#include "engine/geo.h"
#include "engine/screens.h"
#include "model/carbon_mods.h"
#include "model/settings/store.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/rect.h"
#include "snap/overlay_item.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tessarel {

/// What a drag offers for one pointer position: the rectangles to show, and the frame for the window.
struct SnapOffer {
    std::vector<OverlayItem> items;
    /// In accessibility coordinates; empty if the window would stay where it is dropped.
    std::optional<Rect> target;
    /// Index of the target among the user's zones, from 0; empty for a screen edge.
    std::optional<std::size_t> zoneNumber;
};

/// Decides what a drag offers. Depends only on the pointer, the modifiers and the current settings.
class SnapOffers {
public:
    /// `geo` and `store` must outlive this object.
    SnapOffers(const Geo& geo, const Store& store);

    /// Returns the offer for the pointer at `axPoint` of `screen`, one of `screens`, while the modifiers
    /// `modifierFlags` are held: the user's zones if the trigger is held, otherwise the zone of a screen edge
    /// if the user has enabled edge snapping.
    [[nodiscard]] SnapOffer offer(const Screens& screens, const Screen& screen, const Point& axPoint,
                                  ModifierFlags modifierFlags) const;

private:
    [[nodiscard]] SnapOffer zones(const Rect& axVisible, const Point& axPoint) const;
    [[nodiscard]] SnapOffer edge(const Rect& axFrame, const Rect& axVisible, const Point& axPoint) const;

    const Geo& m_geo;
    const Store& m_store;
};

} // namespace tessarel
