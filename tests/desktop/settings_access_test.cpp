#include "desktop/settings_fixture.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

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

    /// Returns the parts of the window that can take the focus now.
    std::vector<Accessible> controls() {
        std::vector<Accessible> showing;
        std::ranges::copy_if(reader.read("Tessarel"), std::back_inserter(showing),
                             [](const Accessible& part) { return part.isFocusable && part.isShowing; });
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

TEST_P(SettingsAccessTest, TheTabKeyReachesEveryControl) {
    static const std::set<std::string> kReachedByArrows = {"page tab", "radio button", "list item",
                                                           "table cell"};
    const std::vector<Accessible> all = controls();
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

} // namespace
} // namespace tessarel::x11test
