// SPDX-License-Identifier: MIT

#include "snap/snap_offers.h"

#include "model/drag_trigger.h"
#include "snap/edge_zones.h"

#include <limits>
#include <string>
#include <utility>

namespace tessarel {

namespace {

/// How far beyond half the gap a zone still catches the pointer, so that rounding leaves no dead line between
/// adjacent zones. In points.
constexpr double kReach = 1;

/// The frame of an enabled zone, and the zone's index among the user's zones.
struct NumberedFrame {
    std::size_t number;
    Rect axFrame;
};

/// Returns the smallest frame that contains the point when extended by `reach` on every side; of equally
/// small ones the first. Null if there is none.
const NumberedFrame* hit(const std::vector<NumberedFrame>& frames, const Point& axPoint, double reach) {
    const NumberedFrame* best = nullptr;
    double bestArea = std::numeric_limits<double>::max();
    for (const NumberedFrame& candidate : frames) {
        const double area = candidate.axFrame.absWidth() * candidate.axFrame.absHeight();
        if (candidate.axFrame.inset(-reach, -reach).contains(axPoint) && area < bestArea) {
            best = &candidate;
            bestArea = area;
        }
    }
    return best;
}

} // namespace

SnapOffers::SnapOffers(const Geo& geo, const Store& store) : m_geo(geo), m_store(store) {}

SnapOffer SnapOffers::offer(const Screens& screens, const Screen& screen, const Point& axPoint,
                            ModifierFlags modifierFlags) const {
    const AppSettings& settings = m_store.settings;
    const Rect axVisible = screens.axVisible(screen);
    if (isHeld(dragTrigger(settings.dragTrigger), modifierFlags))
        return zones(axVisible, axPoint);
    return settings.edgeSnap ? edge(screens.axFrame(screen), axVisible, axPoint) : SnapOffer{};
}

/// Returns all enabled zones, with the one under the pointer as target.
SnapOffer SnapOffers::zones(const Rect& axVisible, const Point& axPoint) const {
    const AppSettings& settings = m_store.settings;
    std::vector<NumberedFrame> frames;
    for (std::size_t i = 0; i < settings.zones.size(); ++i) {
        if (settings.zones[i].enabled)
            frames.push_back({i, m_geo.zoneFrame(settings.zones[i], axVisible)});
    }
    const NumberedFrame* chosen = hit(frames, axPoint, settings.gap * 0.5 + kReach);
    SnapOffer offer;
    for (const NumberedFrame& frame : frames)
        offer.items.push_back({frame.axFrame, &frame == chosen, std::to_string(frame.number + 1)});
    if (chosen) {
        offer.target = chosen->axFrame;
        offer.zoneNumber = chosen->number;
    }
    return offer;
}

/// Returns the zone of the screen edge at the pointer, if there is one.
SnapOffer SnapOffers::edge(const Rect& axFrame, const Rect& axVisible, const Point& axPoint) const {
    const auto zone = edgeZone(axFrame, axPoint);
    if (!zone)
        return {};
    const Rect target = m_geo.zoneFrame(*zone, axVisible);
    return {.items = {{target, true, {}}}, .target = target, .zoneNumber = {}};
}

} // namespace tessarel
