// SPDX-License-Identifier: MIT

#include "desktop/settings_fixture.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11test {
namespace {

constexpr xcb_keycode_t kTab = 23;

/// The settings window as used with the keyboard or a screen reader, one tab per parameter.
class SettingsAccessTest : public SettingsDesktopTest, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SettingsDesktopTest::SetUp());
        ASSERT_NO_FATAL_FAILURE(showTab(GetParam()));
    }

    /// Returns the parts of the window that can take the focus now. The tabs are left out: the row of tabs
    /// has the focus instead of them, and Qt reports the current one as focused all the time.
    std::vector<Accessible> controls() {
        std::vector<Accessible> showing;
        std::ranges::copy_if(reader.read("Tessarel"), std::back_inserter(showing),
                             [](const Accessible& part) {
                                 return part.isFocusable && part.isShowing && part.role != "page tab";
                             });
        return showing;
    }

    static std::string name(const Accessible& part) { return part.role + " \"" + part.name + "\""; }
};

INSTANTIATE_TEST_SUITE_P(, SettingsAccessTest, testing::Values("Layouts", "Shortcuts", "General", "About"),
                         [](const auto& tab) { return std::string(tab.param); });

TEST_P(SettingsAccessTest, EveryControlHasARoleAndANameOfItsOwn) {
    const std::vector<Accessible> all = controls();
    std::set<std::string> names;

    EXPECT_FALSE(all.empty());
    for (const Accessible& control : all) {
        EXPECT_NE(control.name, "") << control.role << " at " << control.frame.x << ", " << control.frame.y;
        EXPECT_NE(control.role, "") << control.name;
        EXPECT_NE(control.role, "unknown") << control.name;
        EXPECT_NE(control.role, "filler") << control.name;
        EXPECT_TRUE(names.insert(name(control)).second) << name(control);
    }
}

TEST_P(SettingsAccessTest, TheWindowIsAFrame) {
    EXPECT_TRUE(reader.find("Tessarel", "frame", "Tessarel Settings"));
}

TEST_P(SettingsAccessTest, EveryPopUpSliderAndFieldHasALabel) {
    static const std::set<std::string> kLabelled = {"combo box", "slider", "text"};
    for (const Accessible& control : controls()) {
        if (!kLabelled.contains(control.role))
            continue;
        const std::vector<Accessible> labels = reader.labels(control);
        ASSERT_EQ(labels.size(), 1U) << name(control);
        EXPECT_EQ(labels[0].role, "label");
        EXPECT_TRUE(labels[0].isShowing) << name(control);
    }
}

TEST_P(SettingsAccessTest, TheTabKeyReachesEveryControl) {
    static const std::set<std::string> kReachedByArrows = {"radio button", "list item", "table cell"};
    const std::vector<Accessible> all = controls();
    ASSERT_EQ(std::ranges::count(all, "page tab list", &Accessible::role), 1) << "the row of tabs";
    std::map<std::string, std::string> missing;
    for (const Accessible& control : all)
        if (control.isEnabled && !kReachedByArrows.contains(control.role))
            missing[control.path] = name(control);

    std::string focused;
    const auto hasMoved = [&] {
        const auto found =
            std::ranges::find_if(all, [&](const Accessible& one) { return reader.look(one).isFocused; });
        return found != all.end() && std::exchange(focused, found->path) != found->path;
    };
    ASSERT_TRUE(waitUntil(hasMoved));
    for (std::size_t steps = all.size(); steps > 0 && !missing.empty(); --steps) {
        keyboard.press({kTab, 0});
        ASSERT_TRUE(waitUntil(hasMoved)) << "the focus stays on " << missing[focused];
        missing.erase(focused);
    }

    EXPECT_TRUE(missing.empty()) << testing::PrintToString(missing);
}

TEST_F(SettingsDesktopTest, NoControlSpeaksOfAPermissionWhereNoneIsNeeded) {
    ASSERT_NO_FATAL_FAILURE(showTab("General"));

    EXPECT_TRUE(reader.find("Tessarel", "label", "Moving windows"));
    EXPECT_TRUE(reader.find("Tessarel", "label", "Tessarel can move and resize windows."));
    for (const Accessible& part : reader.read("Tessarel")) {
        if (!part.isShowing)
            continue;
        for (const char* const word : {"ccessibility", "ranted", "missing"})
            EXPECT_EQ(part.name.find(word), std::string::npos) << part.name;
    }
}

/// The picture of the zones as a screen reader describes it.
class ZonePictureAccessTest : public SettingsDesktopTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SettingsDesktopTest::SetUp());
        ASSERT_TRUE(waitUntil([this] {
            for (const Accessible& one : reader.read("Tessarel"))
                if (one.name == "Zones")
                    picture = one;
            return picture.isShowing;
        }));
    }

    /// Clicks a part and waits until it has the focus: a window manager may pass on a click later than a key.
    void focus(const Accessible& target) {
        click(target);
        ASSERT_TRUE(waitUntil([&] { return reader.look(target).isFocused; })) << target.name;
    }

    /// Waits until the description ends in `zones`.
    testing::AssertionResult comesToEndIn(const std::string& zones) {
        if (waitUntil([&] { return reader.look(picture).description.ends_with(zones); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << reader.look(picture).description;
    }

    Accessible picture;
};

TEST_F(ZonePictureAccessTest, TheDescriptionFollowsEveryChange) {
    constexpr xcb_keycode_t kDelete = 119;
    EXPECT_TRUE(comesToSay(picture, "Zone 1: left 0 %, top 0 %, 33.33 % wide, 50 % high. "
                                    "Zone 2: left 33.33 %, top 0 %, 33.33 % wide, 50 % high. "
                                    "Zone 3: left 66.67 %, top 0 %, 33.33 % wide, 50 % high. "
                                    "Zone 4: left 0 %, top 50 %, 50 % wide, 50 % high. "
                                    "Zone 5: left 50 %, top 50 %, 50 % wide, 50 % high"));

    click(button("Add zone"));
    EXPECT_TRUE(comesToEndIn("50 % high. Zone 6: left 25 %, top 25 %, 50 % wide, 50 % high"));

    ASSERT_NO_FATAL_FAILURE(focus(part("text", "X")));
    keyboard.press({key::kA, XCB_MOD_MASK_CONTROL});
    keyboard.press({key::kDigit1, 0});
    EXPECT_TRUE(comesToEndIn("Zone 6: left 1 %, top 25 %, 50 % wide, 50 % high"));

    ASSERT_NO_FATAL_FAILURE(focus(part("radio button", "5")));
    keyboard.press({kDelete, 0});
    EXPECT_TRUE(comesToEndIn("Zone 4: left 0 %, top 50 %, 50 % wide, 50 % high. "
                             "Zone 6: left 1 %, top 25 %, 50 % wide, 50 % high"));
}

} // namespace
} // namespace tessarel::x11test
