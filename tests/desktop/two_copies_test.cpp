// SPDX-License-Identifier: MIT

#include "desktop/desktop.h"
#include "desktop/expected.h"
#include "support/x11/mouse.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarel::x11test {
namespace {

/// Two X displays of one user, each with a desktop, a copy of the program and a window. Both copies have the
/// same settings document, the second one through a symbolic link.
class TwoCopiesTest : public testing::Test {
protected:
    TwoCopiesTest() {
        std::filesystem::remove_all(second.server().configHome());
        std::filesystem::create_directory_symlink(first.server().configHome(), second.server().configHome());
    }

    void SetUp() override {
        ASSERT_TRUE(first.start());
        ASSERT_TRUE(second.start());
        firstWindow = first.open(firstClient, {.className = "First"});
        secondWindow = second.open(secondClient, {.className = "Second"});
        restAll();
    }

    void TearDown() override {
        EXPECT_TRUE(first.stop());
        EXPECT_TRUE(second.stop());
    }

    /// Waits until both copies wait in their event loops, and so have taken up what is on the disk.
    void restAll() {
        ASSERT_TRUE(first.waitUntilProgramRests());
        ASSERT_TRUE(second.waitUntilProgramRests());
    }

    /// Presses the hot key of a zone and expects the window in `share` of the usable area.
    static void expectSnap(Desktop& desktop, xcb_window_t window, int number, const Share& share,
                           const Spacing& spacing = {}) {
        const Frame wanted = frameIn(desktop.usableArea(), share, spacing);
        desktop.press(hotkey::zone(number));
        EXPECT_EQ(desktop.settledFrame(window, wanted), wanted) << "zone " << number;
    }

    std::filesystem::path file() { return settingsFile(first.server()); }
    /// Replaces the document as most editors do.
    void replaceDocument(std::string_view document) {
        const std::filesystem::path replacement = file().parent_path() / "new~";
        std::ofstream(replacement) << document;
        std::filesystem::rename(replacement, file());
    }

    Desktop first{{}};
    Desktop second{{}};
    TestClient firstClient{first.server()};
    TestClient secondClient{second.server()};
    xcb_window_t firstWindow = XCB_WINDOW_NONE;
    xcb_window_t secondWindow = XCB_WINDOW_NONE;
};

TEST_F(TwoCopiesTest, ALayoutChosenInTheSettingsWindowOfOneIsUsedByTheOther) {
    const xcb_window_t settings = openSettingsWindow(first.observer(), first.server().environment());
    ASSERT_NE(settings, xcb_window_t{XCB_WINDOW_NONE});
    const Frame frame = *first.observer().clientFrame(settings);
    Mouse mouse(first.observer());
    mouse.moveTo(frame.x + 20 + 195, frame.y + 40 + 24); // the pop-up button with the layouts
    mouse.click();
    ASSERT_TRUE(first.observer().waitUntil([&] { return !first.keyboard().isFree(); }));
    first.press({key::kDown, 0}); // from "3 top + 2 bottom" to "Halves"
    first.press({key::kReturn, 0});
    ASSERT_TRUE(waitUntilStored(first.observer(), first.server(), R"("h":100)"))
        << storedSettings(first.server());
    restAll();

    expectSnap(second, secondWindow, 2, kRightHalf);
}

TEST_F(TwoCopiesTest, WhatBothChangeAtOnceSurvives) {
    for (int round = 0; round < 10; ++round) {
        first.press(hotkey::zone(round % 2 + 1));
        second.press(hotkey::zone(round % 2 + 3));
    }

    EXPECT_TRUE(waitUntilStored(first.observer(), first.server(), R"("appZones":{"First":1,"Second":3})"))
        << storedSettings(first.server());
    restAll();
    EXPECT_NE(storedSettings(first.server()).find(R"("appZones":{"First":1,"Second":3})"), std::string::npos);
}

TEST_F(TwoCopiesTest, BothFollowAnEditorThatWritesInPlaceInTwoPieces) {
    replaceDocument(
        kNoHomes); // so that no snap is saved, which would end the wait for the editor after a while
    restAll();
    const std::string document = R"({"hasOnboarded":true,"rememberApps":false,"gap":40,"margin":20})";
    const std::string firstPiece = document.substr(0, document.size() / 2);
    std::ofstream editor(file());
    editor << firstPiece << std::flush;
    restAll();
    expectSnap(first, firstWindow, 5, kZones[4]);
    expectSnap(second, secondWindow, 5, kZones[4]);
    EXPECT_EQ(storedSettings(first.server()), firstPiece);

    editor << document.substr(firstPiece.size()) << std::flush;
    restAll();
    expectSnap(first, firstWindow, 1, kZones[0], {.gap = 40, .margin = 20});
    expectSnap(second, secondWindow, 1, kZones[0], {.gap = 40, .margin = 20});
    EXPECT_EQ(storedSettings(first.server()), document);
}

TEST_F(TwoCopiesTest, BothFollowAnEditorThatReplacesTheDocument) {
    replaceDocument(R"({"hasOnboarded":true,"gap":40,"margin":20})");
    restAll();

    expectSnap(first, firstWindow, 4, kZones[3], {.gap = 40, .margin = 20});
    expectSnap(second, secondWindow, 4, kZones[3], {.gap = 40, .margin = 20});
}

TEST_F(TwoCopiesTest, AStoppedCopyTakesUpWhatItHasMissed) {
    {
        const auto hold = first.program().hold();
        expectSnap(second, secondWindow, 3, kZones[2]);
        std::ofstream(file()) << R"({"hasOnboarded":true,"gap":40,"margin":20})";
    }
    restAll();

    expectSnap(first, firstWindow, 3, kZones[2], {.gap = 40, .margin = 20});
}

TEST_F(TwoCopiesTest, ASaveSurvivesACopyThatWasStoppedInTheMiddleOfItsOwn) {
    // The test acts as a third copy that has read the document and then is stopped.
    const std::filesystem::path lock = file().parent_path() / ".tessarel.settings.v1.json.lock";
    const int descriptor = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    ASSERT_EQ(::flock(descriptor, LOCK_EX | LOCK_NB), 0);

    expectSnap(first, firstWindow, 3, kZones[2]);
    EXPECT_TRUE(waitUntilStored(first.observer(), first.server(), R"("First":2)"));

    replaceDocument(R"({"hasOnboarded":true,"gap":40,"margin":20})");
    std::filesystem::remove(lock);
    ::close(descriptor);
    EXPECT_TRUE(waitUntilStored(first.observer(), first.server(), R"("First":2)"))
        << storedSettings(first.server());
    restAll();
    EXPECT_NE(storedSettings(first.server()).find(R"("gap":40)"), std::string::npos);
    expectSnap(second, secondWindow, 3, kZones[2], {.gap = 40, .margin = 20});
}

} // namespace
} // namespace tessarel::x11test
