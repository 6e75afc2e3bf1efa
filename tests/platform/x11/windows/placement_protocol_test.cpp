// SPDX-License-Identifier: MIT

#include "platform/x11/server/event.h"
#include "platform/x11/windows/placement.h"
#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace tessarel::x11 {
namespace {

using x11test::WindowOptions;
using Data = std::array<std::uint32_t, 5>;

struct Message {
    std::string type;
    xcb_window_t window = XCB_WINDOW_NONE;
    Data data{};

    bool operator==(const Message&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Message& message) {
    stream << message.type << " of " << message.window << ":";
    for (const std::uint32_t value : message.data)
        stream << ' ' << static_cast<std::int32_t>(value);
    return stream;
}

/// A window manager that announces all hints, records all requests and carries out none.
class DeafManager {
public:
    explicit DeafManager(const std::string& display) : m_x(display) {
        m_window = xcb_generate_id(m_x.get());
        xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, m_x.root(), -5, -5, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        for (const xcb_window_t window : {m_window, m_x.root()})
            setProperty(window, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {m_window});
        setProperty(m_x.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM,
                    {m_x.atom("_NET_MOVERESIZE_WINDOW"), m_x.atom("_NET_FRAME_EXTENTS"),
                     m_x.atom("_NET_ACTIVE_WINDOW"), m_x.atom("_NET_CLIENT_LIST"),
                     m_x.atom("_NET_CLIENT_LIST_STACKING"), m_x.atom("_NET_WM_STATE"),
                     m_x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), m_x.atom("_NET_WM_STATE_MAXIMIZED_VERT")});
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_x.get(), m_x.root(), XCB_CW_EVENT_MASK, &events);
        m_x.roundTrip();
    }
    DeafManager(const DeafManager&) = delete;
    DeafManager& operator=(const DeafManager&) = delete;
    ~DeafManager() {
        for (const char* name : {"_NET_SUPPORTING_WM_CHECK", "_NET_SUPPORTED"})
            xcb_delete_property(m_x.get(), m_x.root(), m_x.atom(name));
        m_x.roundTrip();
    }

    void setProperty(xcb_window_t window, const char* name, xcb_atom_t type,
                     const std::vector<std::uint32_t>& values) {
        xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, window, m_x.atom(name), type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
        m_x.roundTrip();
    }

    void move(xcb_window_t window, const std::array<std::uint32_t, 2>& origin) {
        xcb_configure_window(m_x.get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, origin.data());
        m_x.roundTrip();
    }

    [[nodiscard]] xcb_atom_t atom(const char* name) { return m_x.atom(name); }

    /// Returns the client messages to the root window since the last call.
    [[nodiscard]] std::vector<Message> heard() {
        m_x.roundTrip();
        std::vector<Message> messages;
        while (const auto event = x11test::own(xcb_poll_for_event(m_x.get()))) {
            if (eventType(*event) != XCB_CLIENT_MESSAGE)
                continue;
            const auto& message = eventAs<xcb_client_message_event_t>(*event);
            Data data{};
            std::copy_n(message.data.data32, data.size(), data.begin());
            messages.push_back({m_x.atomName(message.type), message.window, data});
        }
        return messages;
    }

private:
    x11test::XConnection m_x;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

/// The exact requests that a window manager receives.
class PlacementProtocolTest : public ::testing::Test {
protected:
    static constexpr std::uint32_t kNorthWestFromUser = 1 | 2U << 12;
    static constexpr std::uint32_t kOrigin = 3U << 8;
    static constexpr std::uint32_t kSize = 3U << 10;
    static constexpr std::uint32_t kUser = 2;
    static constexpr std::uint32_t kRemove = 0;
    static constexpr std::uint32_t kAdd = 1;
    static constexpr x11test::Frame kClient{100, 120, 500, 400};
    static constexpr WindowOptions::Pair kFixed{500, 400};

    [[nodiscard]] Message moveResize(std::uint32_t flags, const std::array<std::uint32_t, 4>& frame) const {
        return {"_NET_MOVERESIZE_WINDOW",
                window,
                {kNorthWestFromUser | flags, frame[0], frame[1], frame[2], frame[3]}};
    }
    [[nodiscard]] Message removeMaximizedVertically() {
        return {
            "_NET_WM_STATE", window, {kRemove, manager.atom("_NET_WM_STATE_MAXIMIZED_VERT"), 0, kUser, 0}};
    }
    [[nodiscard]] Message changeMaximized(std::uint32_t change) {
        return {"_NET_WM_STATE",
                window,
                {change, manager.atom("_NET_WM_STATE_MAXIMIZED_HORZ"),
                 manager.atom("_NET_WM_STATE_MAXIMIZED_VERT"), kUser, 0}};
    }
    void setStates(const std::vector<const char*>& names) {
        std::vector<std::uint32_t> states;
        for (const char* name : names)
            states.push_back(manager.atom(name));
        manager.setProperty(window, "_NET_WM_STATE", XCB_ATOM_ATOM, states);
    }
    void setExtents(const char* name, const std::vector<std::uint32_t>& extents) {
        manager.setProperty(window, name, XCB_ATOM_CARDINAL, extents);
    }

    SharedDesktop& desktop = SharedDesktop::withoutManager();
    DeafManager manager{desktop.server.display()};
    x11test::TestClient client{desktop.server};
    // A window of fixed size: a window manager that keeps its size is not asked again.
    xcb_window_t window = client.open({.client = kClient, .minimum = kFixed, .maximum = kFixed});
    ConnectionDriver driver{desktop.server.display()};
    ClientWindows windows{driver.connection()};
    Placement placement{driver.connection(), windows};
};

TEST_F(PlacementProtocolTest, AFrameIsOneRequestWithTheFrameOriginAndTheClientSize) {
    setExtents("_NET_FRAME_EXTENTS", {1, 2, 20, 4});

    placement.place(window, {.origin = Point{99, 100}, .size = Size{600, 450}}); // the current origin

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kOrigin | kSize, {99, 100, 597, 426})}));
}

TEST_F(PlacementProtocolTest, ShadowsAreAddedToTheRequestedFrame) {
    setExtents("_GTK_FRAME_EXTENTS", {10, 11, 12, 13});

    placement.place(window, {.origin = Point{110, 132}, .size = Size{600, 450}});

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kOrigin | kSize, {100, 120, 621, 475})}));
}

TEST_F(PlacementProtocolTest, BothKindsOfExtentsNeverAddUp) {
    setExtents("_NET_FRAME_EXTENTS", {1, 2, 20, 4});
    setExtents("_GTK_FRAME_EXTENTS", {10, 11, 12, 13});

    placement.place(window, {.origin = Point{110, 132}, .size = Size{600, 450}});

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kOrigin | kSize, {100, 120, 621, 475})}));
}

TEST_F(PlacementProtocolTest, ASizeAloneRequestsNoPosition) {
    placement.place(window, {.origin = std::nullopt, .size = Size{300, 200}});

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kSize, {0, 0, 300, 200})}));
}

TEST_F(PlacementProtocolTest, APositionAloneRequestsTheCurrentSize) {
    window = client.open({.client = kClient});
    setExtents("_NET_FRAME_EXTENTS", {1, 2, 20, 4});

    placement.place(window, {.origin = Point{100, 101}, .size = std::nullopt});

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kOrigin | kSize, {100, 101, 500, 400})}));
}

TEST_F(PlacementProtocolTest, APositionAloneRequestsNoSizeForAWindowOfFixedSize) {
    placement.place(window, {.origin = Point{101, 121}, .size = std::nullopt});

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kOrigin, {101, 121, 0, 0})}));
}

TEST_F(PlacementProtocolTest, APositionAloneRequestsNoSizeForAMaximisedWindow) {
    setStates({"_NET_WM_STATE_MAXIMIZED_VERT"});

    placement.place(window, {.origin = Point{101, 121}, .size = std::nullopt});

    EXPECT_EQ(manager.heard(),
              (std::vector{removeMaximizedVertically(), moveResize(kOrigin, {101, 121, 0, 0})}));
}

TEST_F(PlacementProtocolTest, NegativePositionsAreSentUnchanged) {
    placement.place(window, {.origin = Point{-700, -20}, .size = Size{300, 200}});

    const auto heard = manager.heard();

    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard[0], moveResize(kOrigin | kSize, {static_cast<std::uint32_t>(-700),
                                                     static_cast<std::uint32_t>(-20), 300, 200}));
}

TEST_F(PlacementProtocolTest, MaximisedAndShadedStatesAreRemovedFirst) {
    setStates({"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_SHADED"});

    placement.place(window, {.origin = Point{100, 120}, .size = Size{300, 200}});

    const Message unshade{
        "_NET_WM_STATE", window, {kRemove, manager.atom("_NET_WM_STATE_SHADED"), 0, kUser, 0}};
    EXPECT_EQ(manager.heard(), (std::vector{removeMaximizedVertically(), unshade,
                                            moveResize(kOrigin | kSize, {100, 120, 300, 200})}));
}

TEST_F(PlacementProtocolTest, TheFullScreenStateIsNotRemoved) {
    setStates({"_NET_WM_STATE_FULLSCREEN"});

    placement.place(window, {.origin = Point{100, 120}, .size = Size{300, 200}});

    EXPECT_EQ(manager.heard(), (std::vector{moveResize(kOrigin | kSize, {100, 120, 300, 200})}));
}

TEST_F(PlacementProtocolTest, AnIgnoredRequestIsRepeatedOnceAfterMaximisingAndUnmaximising) {
    window = client.open({.client = kClient});
    const Message request = moveResize(kOrigin | kSize, {300, 200, 600, 450});

    placement.place(window, {.origin = Point{300, 200}, .size = Size{600, 450}});

    EXPECT_EQ(manager.heard(),
              (std::vector{request, changeMaximized(kAdd), changeMaximized(kRemove), request}));
}

TEST_F(PlacementProtocolTest, AnIgnoredSizeIsRequestedOnceMoreAfterMaximisingAndUnmaximising) {
    window = client.open({.client = kClient, .step = {{10, 10}}, .minimum = {{500, 100}}});
    const Message request = moveResize(kOrigin | kSize, {100, 120, 500, 385});

    placement.place(window, {.origin = Point{100, 120}, .size = Size{500, 385}});

    EXPECT_EQ(manager.heard(),
              (std::vector{request, changeMaximized(kAdd), changeMaximized(kRemove), request}));
}

TEST_F(PlacementProtocolTest, AWindowTiledDuringAPlacementIsUntiled) {
    window = client.open({.client = kClient});
    const Message request = moveResize(kOrigin | kSize, {300, 200, 600, 450});
    bool isTiled = false;
    const auto tiler = driver.connection().onRead([&](const Connection::Event&) {
        if (!std::exchange(isTiled, true))
            manager.move(window, {404, 4});
    });

    placement.place(window, {.origin = Point{300, 200}, .size = Size{600, 450}});

    EXPECT_EQ(manager.heard(),
              (std::vector{request, request, changeMaximized(kAdd), changeMaximized(kRemove), request}));
}

TEST_F(PlacementProtocolTest, SizesThatFollowTheClientsHintsAreAccepted) {
    const WindowOptions fixed{.client = kClient, .minimum = kFixed, .maximum = kFixed};
    const WindowOptions atMinimum{.client = kClient, .minimum = kFixed};
    const WindowOptions atMaximum{.client = kClient, .maximum = kFixed};
    const WindowOptions inSteps{.client = kClient, .step = {{100, 100}}};
    const std::vector<std::pair<WindowOptions, Size>> kept{
        {fixed, {600, 300}}, {atMinimum, {300, 200}}, {atMaximum, {1600, 870}}, {inSteps, {550, 480}}};
    for (const auto& [options, size] : kept) {
        window = client.open(options);
        (void)manager.heard();

        placement.place(window, {.origin = Point{100, 120}, .size = size});

        EXPECT_EQ(manager.heard().size(), 1U) << size.width;
    }
}

TEST_F(PlacementProtocolTest, ADeviationOfAFewPixelsIsAccepted) {
    placement.place(window, {.origin = Point{103, 117}, .size = Size{600, 450}});

    EXPECT_EQ(manager.heard().size(), 1U);
}

TEST_F(PlacementProtocolTest, AFixedSizeIsAccepted) {
    placement.place(window, {.origin = std::nullopt, .size = Size{600, 450}});

    EXPECT_EQ(manager.heard().size(), 1U);
}

} // namespace
} // namespace tessarel::x11
