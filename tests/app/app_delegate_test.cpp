#include "app/app_delegate.h"

#include "model/action_id.h"
#include "platform/sim/sim_desktop.h"
#include "support/sim_ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

using testing::ElementsAre;
using Launch = AppDelegate::Launch;

constexpr std::uint32_t kVirtual1 = 18;
constexpr std::uint32_t kCtrlOpt = 4096 + 2048;

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() { desktop.preferences().setData(Store::key, R"({"hasOnboarded": true})"); }

    [[nodiscard]] Ports ports(SingleInstancePort& instance) { return simPorts(desktop, instance); }

    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    std::unique_ptr<AppDelegate> delegate = std::make_unique<AppDelegate>(ports(copy), nullptr);
};

TEST_F(AppDelegateTest, LaunchingClaimsTheHotKeysOfAllActionsButThoseOfDisabledZones) {
    EXPECT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
    EXPECT_EQ(desktop.trust().prompts, 0);
}

TEST_F(AppDelegateTest, NothingIsClaimedBeforeLaunching) {
    EXPECT_TRUE(desktop.hotKeys().registered().empty());
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 0);
}

TEST_F(AppDelegateTest, AHotKeyPutsTheFocusedWindowIntoItsZone) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_TRUE(desktop.hotKeys().press(kVirtual1, kCtrlOpt));

    EXPECT_EQ(desktop.frame(editor), (Rect{0, 0, 400, 400}));
}

TEST_F(AppDelegateTest, TheStoreOfTheRunningProgramIsShared) {
    desktop.preferences().setData(Store::key, R"({"gap": 8, "hasOnboarded": true})");
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(Store::shared().settings.gap, 8);
}

TEST_F(AppDelegateTest, LaunchingWritesNoSettings) {
    const int before = desktop.preferencesStorage().writes;

    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.preferencesStorage().writes, before);
}

TEST_F(AppDelegateTest, ChangedSettingsClaimTheHotKeysAnew) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    Store& store = Store::shared();

    store.settings.bindings.clear();
    store.setBinding(Binding{kVirtual1, kCtrlOpt}, ActionID::center);
    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
    store.saveAndNotify();

    ASSERT_EQ(desktop.hotKeys().registered().size(), 1U);
    EXPECT_EQ(desktop.hotKeys().registered()[0].keyCode, kVirtual1);
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
}

TEST_F(AppDelegateTest, WithoutTrustTheUserIsAskedOnceAndTheHotKeysAreClaimedAllTheSame) {
    desktop.trust().trusted = false;

    EXPECT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    EXPECT_EQ(desktop.trust().prompts, 1);
    EXPECT_EQ(desktop.trust().settingsOpened, 0);
    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
}

TEST_F(AppDelegateTest, ASecondCopyEndsAtOnceAndLeavesTheFirstAlone) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.trust().trusted = false;
    Store& store = Store::shared();
    sim::SimSingleInstance secondCopy = desktop.makeCopy();
    AppDelegate second(ports(secondCopy), nullptr);

    EXPECT_EQ(second.applicationDidFinishLaunching(), Launch::AnotherCopyRuns);

    EXPECT_EQ(&Store::shared(), &store);
    EXPECT_EQ(desktop.hotKeys().registered().size(), 15U);
    EXPECT_EQ(desktop.hotKeys().handlersInstalled(), 1);
    EXPECT_EQ(desktop.trust().prompts, 0);
}

TEST_F(AppDelegateTest, TheEndLetsGoOfTheHotKeysAndOfTheDesktop) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    delegate.reset();

    EXPECT_TRUE(desktop.hotKeys().registered().empty());
    EXPECT_FALSE(desktop.hotKeys().press(kVirtual1, kCtrlOpt));
    sim::SimSingleInstance next = desktop.makeCopy();
    EXPECT_EQ(AppDelegate(ports(next), nullptr).applicationDidFinishLaunching(), Launch::Running);
}

TEST_F(AppDelegateTest, ADraggedWindowGoesIntoAZone) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    desktop.mouse().hold(modifier_flag::kShift);
    desktop.mouse().moveTo({500, 160});
    desktop.mouse().press();
    desktop.mouse().moveTo({400, 170});
    desktop.advance(std::chrono::milliseconds(30));
    desktop.mouse().moveTo({100, 100});
    desktop.mouse().release();
    desktop.advance(std::chrono::milliseconds(30));

    EXPECT_EQ(desktop.frame(editor), (Rect{0, 0, 400, 400}));
    EXPECT_EQ(Store::shared().settings.appZones.at("org.example.editor"), 0);
}

TEST_F(AppDelegateTest, LaunchingAsksForANewVersionWhenThatIsDueAndFailsInSilence) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    desktop.advance(std::chrono::seconds(0));
    ASSERT_EQ(desktop.urlLoading().requests.size(), 1U);

    desktop.urlLoading().answer(0, {});

    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(AppDelegateTest, ANewWindowOfARememberedApplicationOpensInItsZone) {
    desktop.addScreen({.frame = {0, 0, 1200, 800}});
    desktop.preferences().setData(Store::key,
                                  R"({"hasOnboarded": true, "appZones": {"org.example.editor": 1}})");
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);

    const auto editor = desktop.openWindow("org.example.editor", {200, 150, 640, 480});
    desktop.advance(std::chrono::seconds(1));

    EXPECT_EQ(desktop.frame(editor), (Rect{400, 0, 400, 400}));
}

TEST_F(AppDelegateTest, TheEndStopsWatchingTheMouse) {
    ASSERT_EQ(delegate->applicationDidFinishLaunching(), Launch::Running);
    ASSERT_EQ(desktop.mouse().monitored().size(), 3U);

    delegate.reset();

    EXPECT_TRUE(desktop.mouse().monitored().empty());
}

/// Writes down in which order a launch asks for what.
class LaunchOrderTest : public AppDelegateTest {
protected:
    struct Instance : SingleInstancePort {
        explicit Instance(LaunchOrderTest& test) : m_test(test) {}
        SubscriptionPtr claim(std::function<void()> reopened) override {
            m_test.order.emplace_back("claim the desktop");
            return m_test.copy.claim(std::move(reopened));
        }
        LaunchOrderTest& m_test;
    };

    struct Preferences : PreferencesPort {
        explicit Preferences(LaunchOrderTest& test) : m_test(test) {}
        std::optional<std::string> data(std::string_view) override {
            m_test.order.emplace_back("read settings");
            return R"({"hasOnboarded": true})";
        }
        void setData(std::string_view, std::string_view) override {}
        void keepRejected(std::string_view) override {}
        LaunchOrderTest& m_test;
    };

    struct Menus : MainMenuPort {
        explicit Menus(LaunchOrderTest& test) : m_test(test) {}
        void setMainMenu(const std::vector<MainMenu>&) override {
            m_test.order.emplace_back("set main menu");
        }
        LaunchOrderTest& m_test;
    };

    struct Item : sim::SimStatusItem {
        explicit Item(LaunchOrderTest& test) : m_test(test) {}
        SubscriptionPtr create(Delegate delegate) override {
            m_test.order.emplace_back("create status item");
            return SimStatusItem::create(std::move(delegate));
        }
        LaunchOrderTest& m_test;
    };

    struct Keys : HotKeyPort {
        explicit Keys(LaunchOrderTest& test) : m_test(test) {}
        SubscriptionPtr installHandler(std::function<void(std::uint32_t)>) override { return nullptr; }
        std::vector<SubscriptionPtr> registerHotKeys(std::span<const HotKeyRequest> requests) override {
            m_test.order.emplace_back("claim hot keys");
            if (m_test.changesSettingsMeanwhile)
                Store::shared().tessarelSettingsChanged.post();
            return std::vector<SubscriptionPtr>(requests.size());
        }
        LaunchOrderTest& m_test;
    };

    struct Mouse : MousePort {
        explicit Mouse(LaunchOrderTest& test) : m_test(test) {}
        SubscriptionPtr addGlobalMonitor(MouseEventKind, std::function<void(const MouseEvent&)>) override {
            if (m_test.order.back() != "watch the mouse")
                m_test.order.emplace_back("watch the mouse");
            return nullptr;
        }
        LaunchOrderTest& m_test;
    };

    struct Trust : TrustPort {
        explicit Trust(LaunchOrderTest& test) : m_test(test) {}
        bool isTrusted() override {
            m_test.order.emplace_back("ask for trust");
            return false;
        }
        void prompt() override { m_test.order.emplace_back("prompt"); }
        void openSettings() override {}
        LaunchOrderTest& m_test;
    };

    [[nodiscard]] Launch launch() {
        const Ports all = ports(copy);
        const Ports recorded{.accessibility = all.accessibility,
                             .alertSound = all.alertSound,
                             .alerts = all.alerts,
                             .application = all.application,
                             .displays = all.displays,
                             .hotKeys = keys,
                             .localKeys = all.localKeys,
                             .loginItem = all.loginItem,
                             .mainMenu = mainMenu,
                             .mainQueue = all.mainQueue,
                             .mouse = mouse,
                             .openPanel = all.openPanel,
                             .openUrl = all.openUrl,
                             .overlay = all.overlay,
                             .preferences = preferences,
                             .singleInstance = instance,
                             .statusItem = statusItem,
                             .trust = trust,
                             .urlLoading = all.urlLoading,
                             .wallClock = all.wallClock,
                             .windowList = all.windowList,
                             .workspace = all.workspace,
                             .words = all.words};
        recording.emplace(recorded, nullptr);
        return recording->applicationDidFinishLaunching();
    }

    std::vector<std::string> order;
    bool changesSettingsMeanwhile = false;
    Instance instance{*this};
    Preferences preferences{*this};
    Menus mainMenu{*this};
    Item statusItem{*this};
    Keys keys{*this};
    Mouse mouse{*this};
    Trust trust{*this};
    std::optional<AppDelegate> recording;
};

TEST_F(LaunchOrderTest, TheDesktopComesFirstThenMenusThenTheHotKeysThenThePrompt) {
    EXPECT_EQ(launch(), Launch::Running);

    EXPECT_THAT(order,
                ElementsAre("claim the desktop", "read settings", "set main menu", "create status item",
                            "claim hot keys", "watch the mouse", "ask for trust", "prompt"));
}

TEST_F(LaunchOrderTest, ASecondCopyAsksForTheDesktopAndForNothingElse) {
    const auto other = copy.claim([] {});

    EXPECT_EQ(launch(), Launch::AnotherCopyRuns);

    EXPECT_THAT(order, ElementsAre("claim the desktop"));
}

TEST_F(LaunchOrderTest, SettingsAreWatchedOnlyAfterTheFirstClaim) {
    changesSettingsMeanwhile = true;
    EXPECT_EQ(launch(), Launch::Running);
    changesSettingsMeanwhile = false;

    EXPECT_THAT(order,
                ElementsAre("claim the desktop", "read settings", "set main menu", "create status item",
                            "claim hot keys", "watch the mouse", "ask for trust", "prompt"));
    Store::shared().tessarelSettingsChanged.post();
    EXPECT_EQ(order.back(), "claim hot keys");
}

} // namespace
} // namespace tessarel
