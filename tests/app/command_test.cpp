// SPDX-License-Identifier: MIT

#include "app/command.h"

#include "app/running_program.h"
#include "model/json.h"
#include "model/presets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace tessarel {

inline void PrintTo(const CommandReply& reply, std::ostream* out) {
    *out << static_cast<int>(reply.exit) << " \"" << reply.text << '"';
}

namespace {

using namespace std::chrono_literals;
using Words = std::vector<std::string>;

TEST(CommandNameTest, ItIsTheRawValueInKebabCase) {
    EXPECT_EQ(commandName(ActionID::zone1), "zone-1");
    EXPECT_EQ(commandName(ActionID::leftHalf), "left-half");
    EXPECT_EQ(commandName(ActionID::maximize), "maximize");
    EXPECT_EQ(commandName(ActionID::previousDisplay), "previous-display");
}

TEST(ParseCommandTest, EveryActionIsACommand) {
    for (const ActionID action : ActionID::allCases) {
        const auto parsed = parseCommand({commandName(action)});
        ASSERT_TRUE(parsed.command) << parsed.problem;
        EXPECT_EQ(std::get<command::RunAction>(*parsed.command).action, action);
    }
}

TEST(ParseCommandTest, TheOtherCommandsHaveTheirArguments) {
    EXPECT_EQ(std::get<command::ApplyLayout>(*parseCommand({"layout", "My desk"}).command).name, "My desk");
    EXPECT_EQ(std::get<command::SetPause>(*parseCommand({"pause", "on"}).command).paused, true);
    EXPECT_EQ(std::get<command::SetPause>(*parseCommand({"pause", "off"}).command).paused, false);
    EXPECT_EQ(std::get<command::SetPause>(*parseCommand({"pause", "toggle"}).command).paused, std::nullopt);
    EXPECT_TRUE(std::holds_alternative<command::Quit>(*parseCommand({"quit"}).command));
    const auto list = std::get<command::List>(*parseCommand({"list", "zones", "--json"}).command);
    EXPECT_EQ(list.what, command::List::What::Zones);
    EXPECT_TRUE(list.asJson);
    EXPECT_FALSE(std::get<command::List>(*parseCommand({"list", "displays"}).command).asJson);
}

TEST(ParseCommandTest, NothingElseHasAMeaning) {
    for (const Words& words : {Words{},
                               {""},
                               {"zone1"},
                               {"Zone-1"},
                               {"zone-1 "},
                               {"zone-10"},
                               {"zone-1", "zone-2"},
                               {"layout"},
                               {"layout", "a", "b"},
                               {"pause"},
                               {"pause", "maybe"},
                               {"pause", "on", "on"},
                               {"quit", "now"},
                               {"list"},
                               {"list", "windows"},
                               {"list", "zones", "--xml"},
                               {"list", "--json", "zones"},
                               {"list", "zones", "--json", "--json"},
                               {"--json"},
                               {"quit\n"}}) {
        const auto parsed = parseCommand(words);
        EXPECT_FALSE(parsed.command) << testing::PrintToString(words);
        EXPECT_FALSE(parsed.problem.empty()) << testing::PrintToString(words);
    }
}

TEST(CommandFormsTest, EveryFormIsAccepted) {
    std::set<std::string> first;
    for (const CommandForm& form : commandForms()) {
        EXPECT_TRUE(first.insert(form.words).second) << form.words << " appears twice";
        EXPECT_FALSE(form.description.empty()) << form.words;
        Words words{form.words};
        if (!form.placeholder.empty())
            words.push_back(form.choices.empty() ? "anything" : "");
        if (form.choices.empty()) {
            EXPECT_TRUE(parseCommand(words).command) << form.words;
        }
        for (const std::string& choice : form.choices) {
            words.back() = choice;
            EXPECT_TRUE(parseCommand(words).command) << form.words << " " << choice;
        }
    }
    EXPECT_EQ(first.size(), ActionID::allCases.size() + 4);
}

/// Sends commands to the running program.
class CommandTest : public RunningProgramTest {
protected:
    CommandReply run(const Words& words) { return delegate->runCommand(words); }
    Json listed(const std::string& what) {
        return readJson(run({"list", what, "--json"}).text).value_or(Json());
    }

    static CommandReply nothingDone(std::string why) { return {CommandExit::NothingDone, std::move(why)}; }
};

TEST_F(CommandTest, AnActionMovesTheFocusedWindowAtOnce) {
    EXPECT_EQ(run({"left-half"}), CommandReply{});

    EXPECT_EQ(desktop.frame(window), kLeftHalf);
}

TEST_F(CommandTest, AnActionThatDoesNothingSaysWhy) {
    EXPECT_EQ(run({"restore"}), nothingDone("the window has not been placed"));
    EXPECT_EQ(run({"zone-9"}), nothingDone("the zone is disabled"));
    EXPECT_EQ(run({"next-display"}), nothingDone("there is no other display"));
    desktop.window(window).isTiled = true;
    EXPECT_EQ(run({"left-half"}), nothingDone("the desktop does not let the window be moved"));
    desktop.close(window);
    EXPECT_EQ(run({"left-half"}), nothingDone("there is no window to move"));
    EXPECT_EQ(run({"pause", "on"}), CommandReply{});
    EXPECT_EQ(run({"left-half"}), nothingDone("Tessarel is paused"));
}

TEST_F(CommandTest, WithoutPermissionNobodyIsAsked) {
    desktop.trust().trusted = false;

    EXPECT_EQ(run({"left-half"}), nothingDone("Tessarel cannot move windows; its settings say why"));

    EXPECT_EQ(desktop.trust().promptCalls, 0);
    EXPECT_EQ(desktop.frame(window), kSomewhere);
}

TEST_F(CommandTest, WordsOfAnotherProgramAreCheckedAgain) {
    EXPECT_EQ(run({"rm", "-rf"}).exit, CommandExit::Wrong);
    EXPECT_EQ(run({}).exit, CommandExit::Wrong);
}

TEST_F(CommandTest, ALayoutIsUsedByItsName) {
    const Layout& second = Presets::all()[1];

    EXPECT_EQ(run({"layout", second.name}), CommandReply{});

    EXPECT_EQ(settings().zones, Presets::pad(second.zones));
    EXPECT_EQ(Store(desktop.preferences()).settings.zones, settings().zones) << "and saved";
}

TEST_F(CommandTest, AnUnknownLayoutChangesNothing) {
    const auto before = settings().zones;

    EXPECT_EQ(run({"layout", "Nowhere"}), nothingDone("there is no layout \"Nowhere\""));

    EXPECT_EQ(settings().zones, before);
}

TEST_F(CommandTest, TheUsersLayoutComesBeforeABuiltInOneOfTheSameName) {
    const std::string name = Presets::all()[0].name;
    const std::vector<Zone> zones{Presets::z(10, 20, 30, 40)};
    Store::shared().settings.userLayouts = {{name, zones}};

    EXPECT_EQ(run({"layout", name}), CommandReply{});

    EXPECT_EQ(settings().zones, Presets::pad(zones));
}

TEST_F(CommandTest, PauseIsSetAndToggled) {
    for (const auto& [state, isPaused] :
         {std::pair("on", true), std::pair("on", true), std::pair("toggle", false), std::pair("toggle", true),
          std::pair("off", false)}) {
        EXPECT_EQ(run({"pause", state}), CommandReply{});
        EXPECT_EQ(run({"left-half"}).exit == CommandExit::NothingDone, isPaused) << state;
    }
}

TEST_F(CommandTest, QuitIsAnsweredBeforeTheProgramEnds) {
    EXPECT_EQ(run({"quit"}), CommandReply{});
    EXPECT_EQ(desktop.ownApplication().terminations, 0);

    desktop.advance(0ms);

    EXPECT_EQ(desktop.ownApplication().terminations, 1);
}

TEST_F(CommandTest, TheActionsAreListed) {
    EXPECT_TRUE(run({"list", "actions"}).text.starts_with("zone-1\tSnap to Zone 1\nzone-2\t"));
    const Json actions = listed("actions");
    ASSERT_EQ(actions.size(), ActionID::allCases.size());
    EXPECT_EQ(actions[9], (Json{{"name", "left-half"}, {"title", "Left half"}}));
}

TEST_F(CommandTest, TheLayoutsAreListed) {
    Store::shared().settings.userLayouts = {{"My \"desk\"\n", {}}};

    const Json layouts = listed("layouts");

    ASSERT_EQ(layouts.size(), Presets::all().size() + 1);
    EXPECT_EQ(layouts[0], (Json{{"name", Presets::all()[0].name}, {"builtIn", true}}));
    EXPECT_EQ(layouts.back(), (Json{{"name", "My \"desk\"\n"}, {"builtIn", false}}));
    EXPECT_TRUE(run({"list", "layouts"}).text.starts_with(Presets::all()[0].name + "\n"));
}

TEST_F(CommandTest, ALayoutsNameIsListedOnOneLineWithoutControlCharacters) {
    Store::shared().settings.userLayouts = {{"a\nb\x1B[2J\x7F\xC2\x9B"
                                             "c \xC3\xA9\xC2\xA0\xC2",
                                             {}}};

    const std::string text = run({"list", "layouts"}).text;

    EXPECT_TRUE(text.ends_with("\na b [2J  c \xC3\xA9\xC2\xA0\xC2")) << text;
}

TEST_F(CommandTest, TheZonesAreListedInPercent) {
    Store::shared().settings.zones = Presets::pad({Presets::z(0, 12.5, 100.0 / 3, 100)});

    EXPECT_TRUE(run({"list", "zones"})
                    .text.starts_with("1\tleft 0 %, top 12.5 %, width 33.33 %, height 100 %\n2\toff\n"))
        << run({"list", "zones"}).text;
    const Json zones = listed("zones");
    ASSERT_EQ(zones.size(), 9U);
    EXPECT_EQ(zones[0],
              (Json{{"number", 1}, {"enabled", true}, {"x", 0}, {"y", 12.5}, {"w", 100.0 / 3}, {"h", 100}}));
    EXPECT_EQ(zones[8]["enabled"], false);
}

TEST_F(CommandTest, TheDisplaysAreListedWithTheTopLeftCornerOfThePrimaryOneAsOrigin) {
    desktop.addScreen({.frame = {-1280, 100, 1280, 1024}});

    EXPECT_EQ(run({"list", "displays"}).text, "1\t1440x900+0+0\tusable 1300x820+40+25\n"
                                              "2\t1280x1024-1280-224\tusable 1280x1024-1280-224");
    const Json displays = listed("displays");
    ASSERT_EQ(displays.size(), 2U);
    EXPECT_EQ(displays[0], (Json{{"x", 0},
                                 {"y", 0},
                                 {"width", 1440},
                                 {"height", 900},
                                 {"usable", {{"x", 40}, {"y", 25}, {"width", 1300}, {"height", 820}}}}));
}

} // namespace
} // namespace tessarel
