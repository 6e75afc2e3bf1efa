// SPDX-License-Identifier: MIT

#include "platform/plasma/keys/global_shortcuts.h"

#include "platform/wayland/bus_names.h"
#include "support/scratch_folder.h"
#include "support/x11/child_process.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <string>
#include <systemd/sd-bus.h>
#include <utility>
#include <vector>

namespace tessarel::plasma {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using wayland::BusLink;
using wayland::BusMessage;
using Delivery = BusLink::Delivery;

constexpr std::uint32_t kControlOption = 6144;
constexpr std::uint32_t kRight = 124;

/// Plays Plasma as far as key presses go. A `BusLink` sends no signals.
class FakeKeyboard {
public:
    explicit FakeKeyboard(const std::string& address) {
        EXPECT_GE(sd_bus_new(&m_bus), 0);
        EXPECT_GE(sd_bus_set_address(m_bus, address.c_str()), 0);
        EXPECT_GE(sd_bus_set_bus_client(m_bus, 1), 0);
        EXPECT_GE(sd_bus_start(m_bus), 0);
        EXPECT_GE(sd_bus_request_name(m_bus, "org.kde.kglobalaccel", 0), 0);
    }
    FakeKeyboard(const FakeKeyboard&) = delete;
    FakeKeyboard& operator=(const FakeKeyboard&) = delete;
    ~FakeKeyboard() { sd_bus_flush_close_unref(m_bus); }

    /// Presses the key of a shortcut so many times, as one that is held repeats, and releases it. Returns
    /// once the bus has passed that on.
    void press(const char* shortcut, int times) {
        for (int done = 0; done < times; ++done)
            emit("globalShortcutPressed", shortcut);
        emit("globalShortcutReleased", shortcut);
        EXPECT_GE(sd_bus_call_method(m_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                     "org.freedesktop.DBus", "GetId", nullptr, nullptr, ""),
                  0);
    }

private:
    void emit(const char* signal, const char* shortcut) {
        EXPECT_GE(sd_bus_emit_signal(m_bus, "/component/tessarel", "org.kde.kglobalaccel.Component", signal,
                                     "ssx", "tessarel", shortcut, std::int64_t{0}),
                  0);
    }

    sd_bus* m_bus = nullptr;
};

/// The shortcuts on a bus where the test plays Plasma, on the same thread.
class GlobalShortcutsTest : public testing::Test {
protected:
    GlobalShortcutsTest() {
        const auto note = [this](const BusMessage& call) {
            calls.push_back(call.member + (call.token == 0 ? "" : "?"));
            tokens.push_back(call.token);
        };
        service = plasma.serve("/kglobalaccel", note, Delivery::Urgent);
        component = plasma.serve("/component/tessarel", note, Delivery::Urgent);
        roundTrip(plasma, wayland::busCall("RequestName", "su",
                                           {std::string("org.kde.kglobalaccel"), std::int64_t{0}}));
        roundTrip(link, wayland::busCall("GetId", "", {}));
        link.dispatch(); // the start of the service, after which all shortcuts are registered again
    }

    static void roundTrip(BusLink& link, wayland::BusCall call) {
        bool hasReply = false;
        link.call(
            std::move(call), [&](const BusMessage&) { hasReply = true; }, Delivery::Urgent);
        EXPECT_TRUE(link.waitUntil([&] { return hasReply; }, x11test::kPatience));
    }

    [[nodiscard]] std::vector<SubscriptionPtr> claim() {
        return shortcuts.registerHotKeys(std::vector<HotKeyRequest>{{kRight, kControlOption, {0, 101}}});
    }

    /// Waits until Plasma has received as many calls since those that were taken last, and takes them.
    std::vector<std::string> takeCalls(std::size_t count) {
        EXPECT_TRUE(exchangeUntil([&] { return calls.size() >= count; }));
        return std::exchange(calls, {});
    }

    /// Replies to all calls with a text, which Plasma never does.
    void replyWithText() {
        for (const std::uint64_t token : std::exchange(tokens, {}))
            plasma.answer(token, "text");
    }

    /// Returns the keyboard, which has the name of the service from now on.
    FakeKeyboard takeOver() {
        roundTrip(plasma, wayland::busCall("ReleaseName", "s", {std::string("org.kde.kglobalaccel")}));
        return FakeKeyboard(address);
    }

    /// Presses the hot key so many times before its release, and waits until that has arrived.
    void press(FakeKeyboard& keyboard, int times = 1) {
        keyboard.press("hotkey101", times);
        roundTrip(link, wayland::busCall("GetId", "", {}));
        link.dispatch();
    }

    /// Handles what arrives at both ends until `holds` returns true. Returns false if it does not.
    bool exchangeUntil(const std::function<bool()>& holds) {
        const x11test::Deadline deadline;
        while (!holds() && !deadline.passed()) {
            plasma.waitUntil(holds, 1ms);
            link.dispatch();
        }
        return holds();
    }

    ScratchFolder folder;
    std::string address = "unix:path=" + (folder.path() / "bus").string();
    x11test::ChildProcess daemon{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address}};
    std::string printed = daemon.readLine(); // once the bus accepts connections
    BusLink link{address};
    BusLink plasma{address};
    std::vector<std::string> calls; ///< members, with a question mark if a reply is expected
    std::vector<std::uint64_t> tokens;
    SubscriptionPtr service;
    SubscriptionPtr component;
    KeyboardLayout layout{link, xkb::Keymap::us()};
    GlobalShortcuts shortcuts{link, layout};
    std::vector<std::uint32_t> pressed;
    SubscriptionPtr handler =
        shortcuts.installHandler([this](std::uint32_t hotKey) { pressed.push_back(hotKey); });
};

TEST_F(GlobalShortcutsTest, TheShortcutsOfTheProgramAreReadOnceTheRegistrationHasMadeTheirObject) {
    const auto claims = claim();
    shortcuts.releaseLeftovers(0ms);
    EXPECT_THAT(takeCalls(3), ElementsAre("doRegister", "setShortcut?", "blockGlobalShortcuts?"));

    replyWithText();

    EXPECT_THAT(takeCalls(1), ElementsAre("shortcutNames?"));
}

TEST_F(GlobalShortcutsTest, AServiceThatDoesNotReplyHoldsUpTheStartOnlySoLongAndTheKeyCountsAsGranted) {
    const auto claims = claim();

    shortcuts.releaseLeftovers(1ms);

    EXPECT_THAT(takeCalls(3), ElementsAre("doRegister", "setShortcut?", "blockGlobalShortcuts?"));
    EXPECT_THAT(shortcuts.taken(), IsEmpty());
}

TEST_F(GlobalShortcutsTest, AHotKeyThatRepeatsWhileItIsHeldIsReportedOnce) {
    const auto claims = claim();
    FakeKeyboard keyboard = takeOver();

    press(keyboard, 2);

    EXPECT_THAT(pressed, ElementsAre(101));
}

TEST_F(GlobalShortcutsTest, AHotKeyThatIsHeldBackIsReportedWhenItIsDelivered) {
    const auto claims = claim();
    FakeKeyboard keyboard = takeOver();
    shortcuts.holdBack();
    press(keyboard);
    EXPECT_THAT(pressed, IsEmpty());

    shortcuts.deliver();

    EXPECT_THAT(pressed, ElementsAre(101));
}

TEST_F(GlobalShortcutsTest, AHotKeyThatIsDroppedIsNeverReportedButFurtherOnesAreAtOnce) {
    const auto claims = claim();
    FakeKeyboard keyboard = takeOver();
    shortcuts.holdBack();
    press(keyboard);

    shortcuts.drop();
    EXPECT_THAT(pressed, IsEmpty());
    press(keyboard);

    EXPECT_THAT(pressed, ElementsAre(101));
    shortcuts.deliver();
    EXPECT_THAT(pressed, ElementsAre(101));
}

} // namespace
} // namespace tessarel::plasma
