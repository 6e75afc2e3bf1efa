// SPDX-License-Identifier: MIT

#include "model/settings/store.h"

#include "model/settings/memory_preferences.h"
#include "model/settings/settings_codec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {
namespace {

class StoreTest : public testing::Test {
protected:
    static constexpr std::string_view kKey = "tessarel.settings.v1";

    MemoryPreferences preferences;

    AppSettings loaded(std::string document) {
        preferences.stored.insert_or_assign(std::string(kKey), std::move(document));
        return Store(preferences).settings;
    }

    AppSettings saved() { return decodeSettings(preferences.stored.at(std::string(kKey))).value(); }
};

TEST_F(StoreTest, KeepsTheDocumentUnderItsKey) {
    EXPECT_EQ(Store::key, kKey);
}

TEST_F(StoreTest, EmptyPreferencesGiveTheDefaults) {
    const Store store(preferences);

    EXPECT_EQ(store.settings, AppSettings());
    EXPECT_EQ(store.settings.zones.size(), 9U);
    EXPECT_EQ(std::count_if(store.settings.zones.begin(), store.settings.zones.end(),
                            [](const Zone& zone) { return zone.enabled; }),
              5);
    EXPECT_TRUE(preferences.rejected.empty());
}

TEST_F(StoreTest, AnEmptyDocumentGivesTheDefaults) {
    EXPECT_EQ(loaded("{}"), AppSettings());
    EXPECT_TRUE(preferences.rejected.empty());
}

TEST_F(StoreTest, LoadingWritesNothing) {
    EXPECT_EQ(loaded(R"({"zones": []})").zones.size(), 9U);

    EXPECT_EQ(preferences.writes, 0);
    EXPECT_EQ(preferences.stored.at(std::string(kKey)), R"({"zones": []})");
}

TEST_F(StoreTest, TwoStoredZonesArePaddedToNine) {
    const auto settings = loaded(R"({"zones": [{"enabled": true, "x": 1, "y": 2, "w": 3, "h": 4},
                                               {"enabled": false, "x": 5, "y": 6, "w": 7, "h": 8}]})");

    std::vector<Zone> expected{{true, 1, 2, 3, 4}, {false, 5, 6, 7, 8}};
    expected.resize(9, {false, 25, 25, 50, 50});
    EXPECT_EQ(settings.zones, expected);
}

TEST_F(StoreTest, OnlyTheFirstNineOfElevenStoredZonesAreUsed) {
    AppSettings stored;
    stored.zones.clear();
    for (int number = 0; number < 11; ++number)
        stored.zones.push_back({true, static_cast<double>(number), 0, 1, 1});

    const auto settings = loaded(encodeSettings(stored).value());

    EXPECT_EQ(settings.zones, std::vector<Zone>(stored.zones.begin(), stored.zones.begin() + 9));
}

TEST_F(StoreTest, TheZonesOfUserLayoutsAreKeptAsStored) {
    const auto settings = loaded(R"({"userLayouts": [{"name": "One", "zones": [
                                     {"enabled": true, "x": 0, "y": 0, "w": 100, "h": 100}]}]})");

    EXPECT_EQ(settings.userLayouts, (std::vector<Layout>{{"One", {{true, 0, 0, 100, 100}}}}));
}

TEST_F(StoreTest, ADocumentThatCannotBeDecodedGivesTheDefaultsAndIsKeptAtTheFirstSave) {
    preferences.stored[std::string(kKey)] =
        R"({"gap": "8", "zones": [], "bindings": {}, "appZones": {"a": 1}})";

    Store store(preferences);
    EXPECT_EQ(store.settings, AppSettings());
    EXPECT_EQ(preferences.writes, 0);

    store.save();
    EXPECT_EQ(preferences.rejected, std::vector<std::string>{"tessarel.settings.v1"});
    EXPECT_EQ(saved(), AppSettings());
}

TEST_F(StoreTest, WithAnEmptyBindingsMapEveryActionIsUnbound) {
    preferences.setData(kKey, R"({"bindings": {}})");
    const Store store(preferences);

    for (const ActionID action : ActionID::allCases)
        EXPECT_EQ(store.binding(action), std::nullopt) << action.rawValue();
}

TEST_F(StoreTest, ByDefaultEveryActionHasItsDefaultBinding) {
    const Store store(preferences);

    for (const ActionID action : ActionID::allCases)
        EXPECT_EQ(store.binding(action), action.defaultBinding()) << action.rawValue();
}

TEST_F(StoreTest, SettingABindingReplacesTheOldOne) {
    Store store(preferences);

    store.setBinding(Binding{7, 256}, ActionID::center);

    EXPECT_EQ(store.binding(ActionID::center), (Binding{7, 256}));
    EXPECT_EQ(store.settings.bindings.size(), 19U);
}

TEST_F(StoreTest, SettingABindingDoesNotCheckForConflicts) {
    Store store(preferences);

    store.setBinding(ActionID(ActionID::maximize).defaultBinding(), ActionID::center);

    EXPECT_EQ(store.binding(ActionID::center), store.binding(ActionID::maximize));
}

TEST_F(StoreTest, SettingNoBindingRemovesTheEntry) {
    Store store(preferences);

    store.setBinding(std::nullopt, ActionID::center);

    EXPECT_EQ(store.binding(ActionID::center), std::nullopt);
    EXPECT_EQ(store.settings.bindings.count("center"), 0U);
    EXPECT_EQ(store.settings.bindings.size(), 18U);
}

TEST_F(StoreTest, ABindingIsStoredOnlyWhenSaved) {
    Store store(preferences);
    int posts = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { ++posts; });

    store.setBinding(std::nullopt, ActionID::center);
    EXPECT_EQ(preferences.writes, 0);
    EXPECT_EQ(posts, 0);

    store.save();
    EXPECT_EQ(Store(preferences).binding(ActionID::center), std::nullopt);
}

TEST_F(StoreTest, SaveStoresTheSettingsAndPostsNoNotification) {
    Store store(preferences);
    int posts = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { ++posts; });

    store.settings.gap = 12;
    store.save();

    EXPECT_EQ(saved().gap, 12);
    EXPECT_EQ(posts, 0);
}

TEST_F(StoreTest, SaveAndNotifyPostsAfterTheDocumentIsStored) {
    Store store(preferences);
    double gapSeen = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { gapSeen = saved().gap; });

    store.settings.gap = 12;
    store.saveAndNotify();

    EXPECT_EQ(gapSeen, 12);
}

TEST_F(StoreTest, SettingsThatCannotBeEncodedLeaveTheStoredDocument) {
    Store store(preferences);
    store.save();
    const std::string before = preferences.stored.at(std::string(kKey));

    store.settings.gap = std::numeric_limits<double>::quiet_NaN();
    store.save();
    store.settings.gap = 0;
    store.settings.dragTrigger = "\xff";
    store.save();

    EXPECT_EQ(preferences.stored.at(std::string(kKey)), before);
    EXPECT_EQ(preferences.writes, 1);
}

TEST_F(StoreTest, SaveAndNotifyPostsEvenWhenNothingCouldBeStored) {
    Store store(preferences);
    int posts = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { ++posts; });

    store.settings.gap = std::numeric_limits<double>::infinity();
    store.saveAndNotify();

    EXPECT_EQ(posts, 1);
}

TEST_F(StoreTest, SharedReturnsAStoreUntilItsSubscriptionIsDestroyed) {
    Store outer(preferences);
    Store inner(preferences);
    const auto outerSharing = outer.share();

    auto innerSharing = inner.share();
    EXPECT_EQ(&Store::shared(), &inner);

    innerSharing.reset();
    EXPECT_EQ(&Store::shared(), &outer);
}

} // namespace
} // namespace tessarel
