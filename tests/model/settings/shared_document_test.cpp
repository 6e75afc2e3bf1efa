// SPDX-License-Identifier: MIT

// Two stores, as two copies of the program have them, and an editor share one document.

#include "model/presets.h"
#include "model/settings/memory_preferences.h"
#include "model/settings/settings_codec.h"
#include "model/settings/store.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace tessarel {
namespace {

class SharedDocumentTest : public testing::Test {
protected:
    static constexpr const char* kBroken = R"({"gap": 8, "mar)";

    MemoryPreferences preferences;
    Store store{preferences};
    Store other{preferences};

    std::string& document() { return preferences.stored[std::string(Store::key)]; }
    AppSettings stored() { return decodeSettings(document()).value(); }
};

TEST_F(SharedDocumentTest, ASaveKeepsWhatAnotherCopyHasChanged) {
    other.settings.margin = 7;
    other.save();

    store.settings.gap = 5;
    store.save();

    EXPECT_EQ(stored().margin, 7);
    EXPECT_EQ(stored().gap, 5);
}

TEST_F(SharedDocumentTest, ASaveDoesNotChangeTheSettingsInMemory) {
    other.settings.margin = 7;
    other.save();

    store.settings.gap = 5;
    store.save();

    EXPECT_EQ(store.settings.margin, 0);
}

TEST_F(SharedDocumentTest, WhatASaveHasKeptIsTakenUpAfterwards) {
    other.settings.margin = 7;
    other.save();
    store.settings.gap = 5;
    store.save();

    EXPECT_TRUE(store.takeStored());
    EXPECT_EQ(store.settings.margin, 7);
    EXPECT_EQ(store.settings.gap, 5);
    EXPECT_TRUE(other.takeStored());
    EXPECT_EQ(other.settings, store.settings);
}

TEST_F(SharedDocumentTest, ChangesOfZonesBindingsAndLayoutsArePostedOnceTheyAreTakenUp) {
    std::vector<AppSettings> seen;
    const auto observer = store.tessarelSettingsChanged.connect([&] { seen.push_back(store.settings); });
    const auto takesUp = [&] {
        other.save();
        const int writes = preferences.writes;
        EXPECT_TRUE(store.takeStored());
        EXPECT_EQ(preferences.writes, writes);
        EXPECT_EQ(seen.back(), other.settings);
        return seen.size();
    };

    other.settings.zones[0].x = 1;
    EXPECT_EQ(takesUp(), 1U);
    other.settings.bindings.erase("center");
    EXPECT_EQ(takesUp(), 2U);
    other.settings.userLayouts = {{"mine", {}}};
    EXPECT_EQ(takesUp(), 3U);
}

TEST_F(SharedDocumentTest, OtherChangesAreTakenUpWithoutAPost) {
    int posts = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { ++posts; });
    other.settings.margin = 7;
    other.settings.appZones["org.example.editor"] = 3; // saved at every snap
    other.save();

    EXPECT_TRUE(store.takeStored());

    EXPECT_EQ(store.settings, other.settings);
    EXPECT_EQ(posts, 0);
}

TEST_F(SharedDocumentTest, AnEchoOfItsOwnSaveIsNotPosted) {
    int posts = 0;
    const auto observer = store.tessarelSettingsChanged.connect([&] { ++posts; });
    store.settings.gap = 5;
    store.save();

    EXPECT_FALSE(store.takeStored());
    EXPECT_EQ(posts, 0);
}

TEST_F(SharedDocumentTest, AnUnsavedChangeOutlastsAChangeFromOutside) {
    store.settings.zones[1].x = 11; // a zone that is being dragged
    other.settings.zones[3].x = 33;
    other.save();

    store.takeStored();
    EXPECT_EQ(store.settings.zones[1].x, 11);
    EXPECT_EQ(store.settings.zones[3].x, 33);

    store.save();
    EXPECT_EQ(stored().zones, store.settings.zones);
}

TEST_F(SharedDocumentTest, AChangeBackToAnEarlierValueIsTakenUp) {
    store.settings.gap = 5;
    store.save();
    other.takeStored();

    other.settings.gap = 0;
    other.save();
    store.takeStored();

    EXPECT_EQ(store.settings.gap, 0);
}

TEST_F(SharedDocumentTest, AChangeOfALoadedSettingIsTakenUp) {
    document() = R"({"gap": 5})";
    Store loaded(preferences);

    document() = R"({"gap": 7})";
    loaded.takeStored();

    EXPECT_EQ(loaded.settings.gap, 7);
}

TEST_F(SharedDocumentTest, TwoCopiesThatChangeTheSameSettingAgreeOnTheLaterOne) {
    store.settings.gap = 5;
    store.save();
    other.settings.gap = 7;
    other.save();

    for (int round = 0; round < 3; ++round) {
        store.takeStored();
        other.takeStored();
    }

    EXPECT_EQ(store.settings.gap, 7);
    EXPECT_EQ(other.settings.gap, 7);
    EXPECT_EQ(preferences.writes, 2) << "nobody repeats a save";
}

TEST_F(SharedDocumentTest, UnknownMembersSurviveSaves) {
    document() = R"({"future": {"a": [1, null]}, "gap": 1})";

    store.settings.margin = 3;
    store.save();

    EXPECT_NE(document().find(R"("future":{"a":[1,null]})"), std::string::npos) << document();
    EXPECT_EQ(stored().gap, 1);
    EXPECT_EQ(stored().margin, 3);
}

TEST_F(SharedDocumentTest, ADeletedDocumentIsIgnoredAndWrittenAgain) {
    document() = R"({"future": 1, "gap": 5})";
    store.takeStored();
    preferences.stored.clear();

    EXPECT_FALSE(store.takeStored());
    EXPECT_EQ(store.settings.gap, 5);
    store.settings.margin = 3;
    store.save();
    EXPECT_TRUE(preferences.stored.empty()) << "an editor may be about to create it again";
    store.saveOverBroken();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 3);
    EXPECT_NE(document().find("future"), std::string::npos);
}

TEST_F(SharedDocumentTest, ADocumentThatIsDeletedAndCreatedAgainIsMerged) {
    store.settings.gap = 5;
    store.save();
    preferences.stored.clear();
    store.settings.margin = 3;
    store.save();

    document() = R"({"gridStep": 10})";
    store.takeStored();

    EXPECT_EQ(stored().margin, 3);
    EXPECT_EQ(stored().gridStep, 10);
    EXPECT_EQ(stored().gap, 0) << "the editor has removed it";
}

TEST_F(SharedDocumentTest, ASaveThatChangesNothingDoesNotWrite) {
    store.settings.gap = 5;
    store.save();
    const int writes = preferences.writes;

    store.save();

    EXPECT_EQ(preferences.writes, writes);
}

TEST_F(SharedDocumentTest, TheDocumentIsLockedFromReadingToWritingOnly) {
    class Preferences : public MemoryPreferences {
    public:
        std::optional<std::string> data(std::string_view key) override {
            locksWhenRead.push_back(locks);
            return MemoryPreferences::data(key);
        }
        bool setData(std::string_view key, std::string_view bytes) override {
            locksWhenWritten.push_back(locks);
            return MemoryPreferences::setData(key, bytes);
        }
        std::vector<int> locksWhenRead;
        std::vector<int> locksWhenWritten;
    } watched;
    Store watching(watched);
    watched.locksWhenRead.clear();

    watching.save();

    EXPECT_EQ(watched.locksWhenRead, std::vector<int>{1});
    EXPECT_EQ(watched.locksWhenWritten, std::vector<int>{1});
    EXPECT_EQ(watched.locks, 0);
}

// A document that an editor has not completed yet

TEST_F(SharedDocumentTest, ABrokenDocumentIsNotTakenUp) {
    store.settings.gap = 5;
    store.save();
    document() = kBroken;

    EXPECT_FALSE(store.takeStored());
    EXPECT_EQ(store.settings.gap, 5);
}

TEST_F(SharedDocumentTest, ASaveWaitsUntilTheDocumentIsWhole) {
    int delays = 0;
    const auto observer = store.saveDelayed.connect([&] { ++delays; });
    document() = kBroken;

    store.settings.gap = 5;
    store.save();
    EXPECT_EQ(document(), kBroken);
    EXPECT_EQ(delays, 1);

    document() = R"({"margin": 7})";
    EXPECT_TRUE(store.takeStored());
    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 7);
    EXPECT_EQ(store.settings, stored());
    EXPECT_TRUE(preferences.rejected.empty());
}

TEST_F(SharedDocumentTest, ACompletedSaveIsNotRepeated) {
    document() = kBroken;
    store.settings.gap = 5;
    store.save();
    document() = "{}";
    store.takeStored();
    const int writes = preferences.writes;

    document() = R"({"gap": 7})";
    store.takeStored();

    EXPECT_EQ(store.settings.gap, 7);
    EXPECT_EQ(preferences.writes, writes);
}

TEST_F(SharedDocumentTest, ADocumentThatStaysBrokenIsReplacedAndKept) {
    document() = R"({"future": 1})";
    store.takeStored();
    document() = kBroken;
    store.settings.gap = 5;
    store.save();

    store.saveOverBroken();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_NE(document().find("future"), std::string::npos);
    EXPECT_EQ(preferences.rejected, std::vector<std::string>{std::string(Store::key)});
    const int writes = preferences.writes;
    store.saveOverBroken();
    EXPECT_EQ(preferences.writes, writes) << "the save is complete";
}

TEST_F(SharedDocumentTest, WithoutADelayedSaveABrokenDocumentStays) {
    document() = kBroken;

    store.saveOverBroken();

    EXPECT_EQ(document(), kBroken);
}

TEST_F(SharedDocumentTest, ADelayedSaveIsCompletedWhenTheBrokenDocumentIsGone) {
    document() = kBroken;
    store.settings.gap = 5;
    store.save();
    preferences.stored.clear();

    store.saveOverBroken();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_TRUE(preferences.rejected.empty());
}

// Failures

TEST_F(SharedDocumentTest, AChangeThatCouldNotBeStoredIsNeitherUndoneNorLost) {
    preferences.isFull = true;
    store.settings.gap = 5;
    store.save();
    preferences.isFull = false;
    other.settings.margin = 7;
    other.save();

    store.takeStored();
    EXPECT_EQ(store.settings.gap, 5);
    store.settings.gridStep = 10;
    store.save();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 7);
    EXPECT_EQ(stored().gridStep, 10);
}

TEST_F(SharedDocumentTest, ARepeatedSaveThatFailsIsLeftToTheNextSave) {
    document() = kBroken;
    store.settings.gap = 5;
    store.save();
    preferences.isFull = true;
    document() = R"({"margin": 7})";
    store.takeStored();
    const int locks = preferences.locksTaken;

    store.takeStored();
    EXPECT_EQ(preferences.locksTaken, locks) << "the release of the lock is reported as a change";

    preferences.isFull = false;
    store.save();
    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 7);
}

TEST_F(SharedDocumentTest, AChangeThatCannotBeEncodedIsNotUndone) {
    store.settings.gap = std::numeric_limits<double>::infinity();
    store.save();
    other.settings.margin = 7;
    other.save();

    store.takeStored();
    store.settings.gap = 5;
    store.save();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 7);
}

// Another copy that was stopped while it held the lock

TEST_F(SharedDocumentTest, WithoutTheLockASaveIsMadeAllTheSame) {
    preferences.isLockedByAnother = true;

    store.settings.gap = 5;
    store.save();

    EXPECT_EQ(stored().gap, 5);
}

TEST_F(SharedDocumentTest, ASaveWithoutTheLockIsRepeatedWhenTheHolderHasOverwrittenIt) {
    preferences.isLockedByAnother = true;
    store.settings.gap = 5;
    store.save();

    // The holder goes on with what it had read before.
    document() = R"({"margin": 7})";
    preferences.isLockedByAnother = false;
    store.takeStored();

    EXPECT_EQ(store.settings.gap, 5);
    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 7);
}

TEST_F(SharedDocumentTest, ASaveWithoutTheLockIsRepeatedAlsoIfItsEchoHasComeFirst) {
    preferences.isLockedByAnother = true;
    store.settings.gap = 5;
    store.save();
    store.takeStored();

    document() = R"({"gap": 3, "margin": 7})";
    preferences.isLockedByAnother = false;
    store.takeStored();

    EXPECT_EQ(stored().gap, 5);
    EXPECT_EQ(stored().margin, 7);
}

TEST_F(SharedDocumentTest, TheRepeatedSaveWaitsForTheLock) {
    preferences.isLockedByAnother = true;
    store.settings.gap = 5;
    store.save();
    const int writes = preferences.writes;

    document() = R"({"margin": 7})";
    store.takeStored();
    EXPECT_EQ(preferences.writes, writes);
    EXPECT_EQ(store.settings.gap, 5) << "the holder may have overwritten it";
    EXPECT_EQ(store.settings.margin, 7);

    preferences.isLockedByAnother = false;
    store.takeStored();
    EXPECT_EQ(stored().gap, 5);
}

TEST_F(SharedDocumentTest, AChangeBackToTheValueBeforeASaveWithoutTheLockIsSaved) {
    preferences.isLockedByAnother = true;
    for (const char* const meanwhile : {R"({"gap": 5})", R"({"gap": 7})"}) {
        store.settings.gap = 5;
        store.save();
        document() = meanwhile;

        store.settings.gap = 0;
        store.save();

        EXPECT_EQ(stored().gap, 0) << meanwhile;
        store.takeStored();
        EXPECT_EQ(store.settings.gap, 0) << meanwhile;
    }
}

TEST_F(SharedDocumentTest, AChangeToTheValueOfAnEditorAfterASaveWithoutTheLockIsSaved) {
    preferences.isLockedByAnother = true;
    store.settings.gap = 5;
    store.save();
    document() = R"({"gap": 3})";
    store.takeStored();
    EXPECT_EQ(store.settings.gap, 5);

    store.settings.gap = 3;
    document() = R"({"gap": 9})"; // the holder goes on
    store.save();

    EXPECT_EQ(stored().gap, 3);
}

TEST_F(SharedDocumentTest, EveryChangeFromOutsideAfterASaveWithoutTheLockIsTakenUp) {
    preferences.isLockedByAnother = true;
    store.settings.gap = 5;
    store.save();

    document() = R"({"gap": 5, "margin": 7})";
    store.takeStored();
    document() = R"({"gap": 5, "margin": 9})";
    store.takeStored();
    EXPECT_EQ(store.settings.margin, 9);

    preferences.isLockedByAnother = false;
    store.takeStored();
    EXPECT_EQ(stored().margin, 9);
    EXPECT_EQ(stored().gap, 5);
}

TEST_F(SharedDocumentTest, ASaveWithoutTheLockIsConfirmedOnlyOnce) {
    preferences.isLockedByAnother = true;
    store.settings.gap = 5;
    store.save();
    preferences.isLockedByAnother = false;
    store.takeStored(); // its own echo, now with the lock

    document() = R"({"gap": 7})";
    store.takeStored();

    EXPECT_EQ(store.settings.gap, 7);
}

} // namespace
} // namespace tessarel
