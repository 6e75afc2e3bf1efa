// SPDX-License-Identifier: MIT

#include "macos/fake/fake_windows.h"
#include "macos/mac_test.h"
#include "platform/macos/shell/accent_color.h"
#include "platform/macos/shell/overlay_properties.h"
#include "platform/macos/shell/own_application.h"

namespace tessarel::macos {
namespace {

class MacOverlayTest : public MacTest {};

TEST_F(MacOverlayTest, TheWindowIsAtStatusLevelOnEverySpaceAndIgnoresTheMouse) {
    const fakemac::View view;

    becomeOverlay(view.native());

    EXPECT_EQ(view.window(),
              (fakemac::WindowSight{
                  .level = 25, .collectionBehavior = 337, .ignoresMouseEvents = true, .hasShadow = false}));
}

TEST_F(MacOverlayTest, TheWindowIsOrderedFrontWithoutActivatingTheProgram) {
    fakemac::View view;
    fakemac::focus(fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 400, 300}}));
    becomeOverlay(view.native());
    view.makeWindowAnew();
    view.orderFront(false);
    EXPECT_FALSE(view.window().isInFront);

    orderOverlayFront(view.native());

    EXPECT_TRUE(view.window().isInFront);
    EXPECT_EQ(view.window().level, 25);
    EXPECT_EQ(view.window().collectionBehavior, 337U);
    EXPECT_EQ(fakemac::mac().frontmost, kEditor);
}

TEST_F(MacOverlayTest, AViewWithoutAWindowIsLeftAlone) {
    const fakemac::View view(false);

    becomeOverlay(view.native());
    becomeOverlay(nullptr);
    orderOverlayFront(view.native());
    orderOverlayFront(nullptr);

    EXPECT_EQ(view.window().level, 0);
}

class MacOwnApplicationTest : public MacTest {
protected:
    struct Toolkit : ApplicationPort {
        void activate() override { ++activations; }
        void terminate() override { ++terminations; }

        int activations = 0;
        int terminations = 0;
    };

    Toolkit toolkit;
    std::vector<void*> windows;
    MacOwnApplication application{toolkit, [this] { return windows; }};
};

TEST_F(MacOwnApplicationTest, TheProgramIsActivatedWhenNoWindowIsShown) {
    application.activate();

    EXPECT_EQ(fakemac::mac().activations, 1);
    EXPECT_EQ(toolkit.activations, 1);
}

TEST_F(MacOwnApplicationTest, WindowsComeToTheFrontWhenActivationIsRefused) {
    fakemac::mac().grantsActivation = false;
    fakemac::focus(fakemac::openWindow({.pid = kEditor, .axFrame = {0, 0, 400, 300}}));
    const fakemac::View first;
    const fakemac::View second;
    windows = {first.native(), second.native()};

    application.activate();

    EXPECT_EQ(fakemac::mac().activationRequests, 1);
    EXPECT_EQ(fakemac::mac().frontmost, kEditor);
    EXPECT_TRUE(first.window().isInFront);
    EXPECT_TRUE(second.window().isInFront);
    EXPECT_TRUE(second.window().hasKeyboard) << "the last window is not the key window";
}

TEST_F(MacOwnApplicationTest, TerminatingEndsTheToolkitsLoop) {
    application.terminate();

    EXPECT_EQ(toolkit.terminations, 1);
}

TEST_F(MacOwnApplicationTest, TheProgramHasNoDockIcon) {
    EXPECT_EQ(fakemac::mac().activationPolicy, std::nullopt);

    MacOwnApplication::becomeAccessory();

    EXPECT_EQ(fakemac::mac().activationPolicy, 1);
}

class MacAccentColorTest : public MacTest {};

TEST_F(MacAccentColorTest, TheAccentColourIsTheUsers) {
    fakemac::mac().accent = {0.25, 0.5, 1};

    EXPECT_EQ(accentColor(), (Color{0.25, 0.5, 1}));
}

TEST_F(MacAccentColorTest, AColourThatCannotBeConvertedIsEmpty) {
    EXPECT_EQ(accentColor(), std::nullopt);
}

class MacOpenPanelTest : public MacTest {
protected:
    void SetUp() override {
        fakemac::mac().bundles = {{"/Applications/Editor.app", "org.example.editor"},
                                  {"/Applications/Nameless.app", ""}};
    }
};

TEST_F(MacOpenPanelTest, ThePanelOffersOneOfTheApplications) {
    (void)desktop->openPanel.chooseApplication("Ignore");

    EXPECT_EQ(fakemac::mac().panels, Lines{"one application in /Applications, Ignore"});
}

TEST_F(MacOpenPanelTest, TheIdentifierOfTheChosenApplicationIsReturned) {
    fakemac::mac().panelChoice = "/Applications/Editor.app";

    EXPECT_EQ(desktop->openPanel.chooseApplication("Ignore"), "org.example.editor");
}

TEST_F(MacOpenPanelTest, ACancelledPanelReturnsNoIdentifier) {
    EXPECT_EQ(desktop->openPanel.chooseApplication("Ignore"), std::nullopt);
}

TEST_F(MacOpenPanelTest, AChoiceThatHasNoIdentifierReturnsNone) {
    for (const char* path : {"/Applications/Nameless.app", "/Applications/Broken.app"}) {
        fakemac::mac().panelChoice = path;
        EXPECT_EQ(desktop->openPanel.chooseApplication("Ignore"), std::nullopt);
    }
}

} // namespace
} // namespace tessarel::macos
