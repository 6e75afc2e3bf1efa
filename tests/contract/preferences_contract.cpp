// SPDX-License-Identifier: MIT

#include "contract/contract_test.h"

namespace tessarel::contract {
namespace {

constexpr std::string_view kKey = "tessarel.settings.v1";

class PreferencesContract : public ContractTest {
protected:
    std::unique_ptr<PreferencesPort> preferences = desktop->makePreferences();
};

TEST_F(PreferencesContract, NothingIsStoredAtFirst) {
    EXPECT_FALSE(preferences->data(kKey));
}

TEST_F(PreferencesContract, StoredBytesAreReadAfterARestart) {
    preferences->setData(kKey, "{\"gap\":8}");

    EXPECT_EQ(preferences->data(kKey), "{\"gap\":8}");
    EXPECT_EQ(desktop->makePreferences()->data(kKey), "{\"gap\":8}");
}

TEST_F(PreferencesContract, NewBytesReplaceTheOldOnes) {
    preferences->setData(kKey, "a long document that comes first");
    preferences->setData(kKey, "short");

    EXPECT_EQ(preferences->data(kKey), "short");
}

TEST_F(PreferencesContract, AnyBytesAreStoredUnchanged) {
    std::string bytes(100000, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 7);

    preferences->setData(kKey, bytes);

    EXPECT_EQ(preferences->data(kKey), bytes);
}

TEST_F(PreferencesContract, AnEmptyValueIsStored) {
    preferences->setData(kKey, "");

    EXPECT_EQ(preferences->data(kKey), "");
}

TEST_F(PreferencesContract, KeysAreIndependent) {
    preferences->setData(kKey, "first");
    preferences->setData("tessarel.other", "second");

    EXPECT_EQ(preferences->data(kKey), "first");
    EXPECT_EQ(preferences->data("tessarel.other"), "second");
    EXPECT_FALSE(preferences->data("tessarel.settings"));
}

TEST_F(PreferencesContract, ARejectedDocumentIsCopiedWhenItIsReplaced) {
    preferences->setData(kKey, "not a document");
    preferences = desktop->makePreferences();
    preferences->keepRejected(kKey);
    EXPECT_EQ(preferences->data(kKey), "not a document");

    preferences->setData(kKey, "{}");

    EXPECT_EQ(preferences->data(kKey), "{}");
    EXPECT_EQ(desktop->rejectedCopy(kKey), "not a document");
}

TEST_F(PreferencesContract, OnlyTheRejectedDocumentIsCopied) {
    preferences->setData(kKey, "not a document");
    preferences->keepRejected(kKey);
    preferences->setData(kKey, "{\"gap\":1}");
    preferences->setData(kKey, "{\"gap\":2}");

    EXPECT_EQ(desktop->rejectedCopy(kKey), "not a document");
}

TEST_F(PreferencesContract, WithoutARejectionNoCopyIsKept) {
    preferences->setData(kKey, "{\"gap\":1}");
    preferences->setData(kKey, "{\"gap\":2}");

    EXPECT_FALSE(desktop->rejectedCopy(kKey));
}

TEST_F(PreferencesContract, RejectingAMissingValueKeepsNoCopy) {
    preferences->keepRejected(kKey);
    preferences->setData(kKey, "{}");

    EXPECT_FALSE(desktop->rejectedCopy(kKey));
}

TEST_F(PreferencesContract, AnotherCopyWaitsForTheLockInVain) {
    const auto other = desktop->makePreferences();
    auto lock = preferences->lock(kKey);
    ASSERT_TRUE(lock);

    EXPECT_EQ(other->lock(kKey) == nullptr, desktop->copiesSharePreferences());
    EXPECT_TRUE(other->lock("tessarel.other")) << "another document";
    lock.reset();
    EXPECT_TRUE(other->lock(kKey));
}

TEST_F(PreferencesContract, ALockedDocumentCanBeReadAndStored) {
    const auto lock = preferences->lock(kKey);

    EXPECT_TRUE(preferences->setData(kKey, "{}"));

    EXPECT_EQ(preferences->data(kKey), "{}");
    EXPECT_EQ(desktop->makePreferences()->data(kKey), "{}");
}

TEST_F(PreferencesContract, AChangeByAnotherCopyIsReportedFromTheEventLoop) {
    const auto other = desktop->makePreferences();
    std::optional<std::string> seen;
    const auto watch = preferences->watch(kKey, [&] { seen = preferences->data(kKey); });

    other->setData(kKey, "{}");
    EXPECT_FALSE(seen);
    desktop->advance(1ms);
    EXPECT_EQ(seen.has_value(), desktop->copiesSharePreferences());

    other->setData(kKey, R"({"gap":8})");
    desktop->advance(1ms);
    EXPECT_EQ(seen, desktop->copiesSharePreferences() ? std::optional(R"({"gap":8})") : std::nullopt);
}

TEST_F(PreferencesContract, OnlyChangesOfTheWatchedDocumentAreReported) {
    int changes = 0;
    const auto watch = preferences->watch(kKey, [&] { ++changes; });

    preferences->setData("tessarel.other", "{}");
    desktop->advance(1ms);

    EXPECT_EQ(changes, 0);
}

TEST_F(PreferencesContract, NoChangeIsReportedOnceTheWatchHasEnded) {
    int changes = 0;
    auto watch = preferences->watch(kKey, [&] { ++changes; });
    preferences->setData(kKey, "{}");

    watch.reset();
    desktop->advance(1ms);

    EXPECT_EQ(changes, 0);
}

} // namespace
} // namespace tessarel::contract
