// SPDX-License-Identifier: MIT

// Interrupts a save of a document that another copy has changed, or makes it fail, at each of its system
// calls in turn: reading, merging, locking and writing.

#include "model/settings/settings_codec.h"
#include "model/settings/store.h"
#include "platform/xdg/file_preferences.h"
#include "support/scratch_folder.h"
#include "system_call_tracer.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

const std::string kNameOfDocument = "tessarel.settings.v1.json";

/// Preferences of a folder whose document was still another one when it was first read.
class OlderDocument : public FilePreferences {
public:
    using FilePreferences::FilePreferences;

    std::optional<std::string> data(std::string_view key) override {
        return std::exchange(m_isFirst, false) ? R"({"future":1})" : FilePreferences::data(key);
    }

private:
    bool m_isFirst = true;
};

class InterruptedSharedSaveTest : public testing::Test {
protected:
    ScratchFolder scratch;
    fs::path folder = scratch.path() / "tessarel";
    std::string others; ///< the document that the other copy has stored

    void SetUp() override {
        AppSettings settings;
        settings.gap = 8;
        others = encodeSettings(settings, R"({"future":1})").value();
    }

    void prepare() const {
        scratch.clear();
        fs::create_directory(folder);
        ScratchFolder::write(folder / kNameOfDocument, others);
    }

    /// Saves another setting, with settings that were loaded before the other copy saved.
    void save(double margin) const {
        OlderDocument preferences(folder);
        Store store(preferences);
        store.settings.margin = margin;
        store.save();
    }

    std::optional<AppSettings> stored() const {
        const auto document = ScratchFolder::read(folder / kNameOfDocument);
        EXPECT_TRUE(document && document->find(R"("future":1)") != std::string::npos);
        return document ? decodeSettings(*document) : std::nullopt;
    }

    /// Expects the document with or without our change, and returns whether it has been stored.
    bool isStoredOrUntouched() const {
        const auto settings = stored();
        if (!settings) {
            ADD_FAILURE() << "the document is broken";
            return false;
        }
        EXPECT_EQ(settings->gap, 8) << "the change of the other copy";
        EXPECT_TRUE(settings->margin == 0 || settings->margin == 7);
        return settings->margin == 7;
    }

    void expectThatTheNextSaveWorks() const {
        save(3);

        EXPECT_EQ(stored()->margin, 3);
        EXPECT_EQ(stored()->gap, 8);
        EXPECT_EQ(ScratchFolder::names(folder), std::vector<std::string>{kNameOfDocument});
    }
};

TEST_F(InterruptedSharedSaveTest, KilledAtAnySystemCallBothChangesOrTheOtherOneAreStored) {
    std::set<bool> outcomes;
    bool isDone = false;
    for (int calls = 1; !isDone; ++calls) {
        SCOPED_TRACE(calls);
        prepare();
        TracedWork work([this] { save(7); });
        ASSERT_TRUE(work.isTraced());
        for (int call = 0; call < calls && !isDone; ++call)
            isDone = !nextBeginning(work);
        work.kill();

        outcomes.insert(isStoredOrUntouched());
        expectThatTheNextSaveWorks();
        ASSERT_FALSE(HasFailure());
    }

    EXPECT_EQ(outcomes, (std::set<bool>{false, true}));
}

#if defined(__x86_64__)

class FailingSharedSaveTest : public InterruptedSharedSaveTest, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(, FailingSharedSaveTest, testing::Values(ENOSPC, EIO, EROFS, EMFILE));

TEST_P(FailingSharedSaveTest, WhateverFailsBothChangesOrTheOtherOneAreStored) {
    std::set<bool> outcomes;
    bool hasFailed = true;
    prepare();
    save(7); // the sanitizer's first check of a type makes system calls of its own
    TracedWork work([this] { save(7); });
    ASSERT_TRUE(work.isTraced());
    for (int number = 1; hasFailed; ++number) {
        SCOPED_TRACE(number);
        prepare();
        hasFailed = failAt(number, GetParam(), work);
        EXPECT_TRUE(work.finish());

        outcomes.insert(isStoredOrUntouched());
        expectThatTheNextSaveWorks();
        ASSERT_FALSE(HasFailure());
        work.again();
    }

    EXPECT_EQ(outcomes, (std::set<bool>{false, true}));
}

#endif

} // namespace
} // namespace tessarel::xdg
