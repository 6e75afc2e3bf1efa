// SPDX-License-Identifier: MIT

#include "snap/snap_offers.h"

#include "snap/snap_test.h"

#include <gmock/gmock.h>

namespace tessarel {
namespace {

using ::testing::ElementsAre;

class SnapOffersTest : public SnapTest {
protected:
    static constexpr Point kMiddle{690, 435}; // centre of the usable area

    SnapOffersTest() { settings.edgeSnap = false; }

    /// Returns the offer at `local`, measured from the top-left corner of the screen.
    SnapOffer offer(const Point& local, std::uint64_t modifierFlags = kShiftFlag) {
        return offerAt(at(local.x, local.y), modifierFlags);
    }
    SnapOffer offerAt(const Point& axPoint, std::uint64_t modifierFlags = kShiftFlag) {
        return SnapOffers(geo, store).offer(geo.screens(), screen, axPoint, modifierFlags);
    }
    bool isHeld(const std::string& trigger, std::uint64_t modifierFlags) {
        settings.dragTrigger = trigger;
        return !offer(kMiddle, modifierFlags).items.empty();
    }
};

TEST_F(SnapOffersTest, EachTriggerChecksItsOwnModifier) {
    for (const auto& [trigger, flag] :
         {std::pair("shift", kShiftFlag), {"control", kControlFlag}, {"command", kCommandFlag}}) {
        EXPECT_TRUE(isHeld(trigger, flag)) << trigger;
        EXPECT_TRUE(isHeld(trigger, ~std::uint64_t{0})) << trigger;
        EXPECT_FALSE(isHeld(trigger, ~flag)) << trigger;
    }
}

TEST_F(SnapOffersTest, WithTheTriggerAlwaysNoModifierIsNeeded) {
    EXPECT_TRUE(isHeld("always", 0));
    EXPECT_TRUE(isHeld("always", ~std::uint64_t{0}));
}

TEST_F(SnapOffersTest, AnUnknownTriggerMeansShiftAndOptionIsNoTrigger) {
    for (const char* const unknown : {"", "option", "Shift", "SHIFT", "nonsense"}) {
        EXPECT_TRUE(isHeld(unknown, kShiftFlag)) << unknown;
        EXPECT_FALSE(isHeld(unknown, kOptionFlag)) << unknown;
    }
}

TEST_F(SnapOffersTest, ThereIsOneItemPerEnabledZoneInTheirOrder) {
    const SnapOffer offered = offer({100, 450});

    EXPECT_THAT(offered.items, ElementsAre(OverlayItem{kLeft, true, "1"}, OverlayItem{kRight, false, "2"}));
    EXPECT_EQ(offered.target, kLeft);
    EXPECT_EQ(offered.zoneNumber, 0U);
}

TEST_F(SnapOffersTest, ADisabledZoneHasNoItemAndTheOthersKeepTheirNumbers) {
    settings.zones = zones({{false, 0, 0, 50, 100}, kRightHalf, {false, 0, 0, 100, 100}, kLeftHalf});

    const SnapOffer offered = offer({100, 450});

    EXPECT_THAT(offered.items, ElementsAre(OverlayItem{kRight, false, "2"}, OverlayItem{kLeft, true, "4"}));
    EXPECT_EQ(offered.zoneNumber, 3U);
}

TEST_F(SnapOffersTest, OutsideEveryZoneAllZonesAreShownAndNoneIsTheTarget) {
    settings.zones = zones({{true, 0, 0, 25, 25}, {true, 75, 75, 25, 25}});

    const SnapOffer offered = offer(kMiddle);

    EXPECT_EQ(offered.items.size(), 2U);
    EXPECT_FALSE(offered.target);
    EXPECT_FALSE(offered.zoneNumber);
    for (const OverlayItem& item : offered.items)
        EXPECT_FALSE(item.highlighted);
}

TEST_F(SnapOffersTest, OfOverlappingZonesTheSmallerOneWins) {
    settings.zones = zones({kWhole, {true, 25, 25, 50, 50}, kLeftHalf});

    EXPECT_EQ(offer({700, 450}).zoneNumber, 1U);
    EXPECT_EQ(offer({100, 100}).zoneNumber, 2U);
    EXPECT_EQ(offer({1300, 100}).zoneNumber, 0U);
}

TEST_F(SnapOffersTest, OfEqualZonesTheFirstWins) {
    settings.zones = zones({{}, {true, 25, 25, 50, 50}, {true, 25, 25, 50, 50}});

    const SnapOffer offered = offer(kMiddle);

    EXPECT_EQ(offered.zoneNumber, 1U);
    EXPECT_TRUE(offered.items.at(0).highlighted);
    EXPECT_FALSE(offered.items.at(1).highlighted);
}

TEST_F(SnapOffersTest, APointerBetweenTwoZonesHitsTheNearerOne) {
    settings.gap = 20;
    const Rect left = geo.zoneFrame(kLeftHalf, geo.axVisible(screen));
    const Rect right = geo.zoneFrame(kRightHalf, geo.axVisible(screen));
    ASSERT_EQ(right.minX() - left.maxX(), 20);

    EXPECT_EQ(offerAt({left.maxX() + 5, 0}).zoneNumber, 0U);
    EXPECT_EQ(offerAt({right.minX() - 5, 0}).zoneNumber, 1U);
}

TEST_F(SnapOffersTest, AZoneReachesHalfTheGapAndOnePointBeyondItself) {
    settings.gap = 20;
    settings.zones = zones({{true, 25, 25, 50, 50}});
    const Rect zone = geo.zoneFrame(settings.zones[0], geo.axVisible(screen));

    EXPECT_TRUE(offerAt({zone.minX() - 11, zone.midY()}).target);
    EXPECT_FALSE(offerAt({zone.minX() - 11.01, zone.midY()}).target);
    EXPECT_TRUE(offerAt({zone.maxX() + 10.99, zone.midY()}).target);
    EXPECT_FALSE(offerAt({zone.maxX() + 11, zone.midY()}).target);
    EXPECT_TRUE(offerAt({zone.midX(), zone.minY() - 11}).target);
    EXPECT_FALSE(offerAt({zone.midX(), zone.minY() - 11.01}).target);
    EXPECT_TRUE(offerAt({zone.midX(), zone.maxY() + 10.99}).target);
    EXPECT_FALSE(offerAt({zone.midX(), zone.maxY() + 11}).target);
}

TEST_F(SnapOffersTest, AGapLargerThanTheZonesLeavesNoTarget) {
    settings.gap = 5000;

    const SnapOffer offered = offer(kMiddle);

    EXPECT_EQ(offered.items.size(), 2U);
    EXPECT_FALSE(offered.target);
}

TEST_F(SnapOffersTest, WithoutTheTriggerAndEdgeSnappingNothingIsOffered) {
    for (const Point& pointer : {Point{0, 450}, kMiddle, Point{1439, 0}}) {
        const SnapOffer offered = offer(pointer, 0);
        EXPECT_TRUE(offered.items.empty());
        EXPECT_FALSE(offered.target);
    }
}

TEST_F(SnapOffersTest, AnEdgeOffersOneHighlightedItemWithoutALabel) {
    settings.edgeSnap = true;

    const SnapOffer offered = offer({0, 450}, 0);

    EXPECT_THAT(offered.items, ElementsAre(OverlayItem{kLeft, true, ""}));
    EXPECT_EQ(offered.target, kLeft);
    EXPECT_FALSE(offered.zoneNumber);
}

TEST_F(SnapOffersTest, EdgesObeyGapAndMargin) {
    settings.edgeSnap = true;
    settings.gap = 10;
    settings.margin = 8;

    EXPECT_EQ(offer({1439, 450}, 0).target, (Rect{-745, -567, 637, 804}));
    EXPECT_EQ(offer({720, 3}, 0).target, (Rect{-1392, -567, 1284, 804}));
}

TEST_F(SnapOffersTest, EdgesBelongToTheWholeScreenNotToItsUsableArea) {
    settings.edgeSnap = true;

    EXPECT_EQ(offer({720, 6}, 0).target, kUsable);
    EXPECT_FALSE(offer({720, 27}, 0).target);
    EXPECT_EQ(offer({6, 450}, 0).target, kLeft);
    EXPECT_FALSE(offer({42, 450}, 0).target);
    EXPECT_EQ(offer({1433, 450}, 0).target, kRight);
    EXPECT_FALSE(offer({1338, 450}, 0).target);
    EXPECT_EQ(offer({6, 893}, 0).target, (Rect{-1400, -165, 650, 410}));
    EXPECT_FALSE(offer({60, 843}, 0).target);
}

TEST_F(SnapOffersTest, WhileTheTriggerIsHeldEdgesDoNotSnap) {
    settings.edgeSnap = true;
    settings.zones = zones({{true, 25, 25, 50, 50}});

    EXPECT_FALSE(offer({0, 450}).target);
}

TEST_F(SnapOffersTest, OffersWorkOnThePrimaryDisplayToo) {
    settings.edgeSnap = true;
    screen = desktop.displays().screens().front();

    EXPECT_EQ(offerAt({100, 500}).target, (Rect{12, 31, 620, 725}));
    EXPECT_EQ(offerAt({1279, 500}, 0).target, (Rect{632, 31, 620, 725}));
}

} // namespace
} // namespace tessarel
