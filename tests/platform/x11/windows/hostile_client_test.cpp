// SPDX-License-Identifier: MIT

#include "platform/x11/x11_fixture.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

namespace tessarel::x11 {
namespace {

constexpr double kThickestDecoration = 60;

/// Sets malformed values for the window properties that the back end reads.
class HostileClientTest : public X11Test {
protected:
    static const std::vector<const char*>& properties() {
        static const std::vector<const char*> kNames = {"_NET_FRAME_EXTENTS", "_GTK_FRAME_EXTENTS",
                                                        "_NET_WM_STATE",      "_NET_WM_WINDOW_TYPE",
                                                        "WM_TRANSIENT_FOR",   "_NET_WM_PID",
                                                        "WM_CLASS",           "_GTK_APPLICATION_ID",
                                                        "WM_NORMAL_HINTS",    "_KDE_NET_WM_DESKTOP_FILE",
                                                        "_NET_WM_STRUT",      "_NET_WM_STRUT_PARTIAL"};
        return kNames;
    }

    [[nodiscard]] Rect actualFrameWithoutShadows(xcb_window_t window) {
        const auto frame = observer.clientFrame(window).value_or(x11test::Frame{});
        const auto border = observer.extents(window, "_NET_FRAME_EXTENTS").value_or(x11test::Extents{});
        const WindowFrame known{{static_cast<double>(frame.x), static_cast<double>(frame.y),
                                 static_cast<double>(frame.width), static_cast<double>(frame.height)},
                                {border.left, border.right, border.top, border.bottom},
                                {}};
        return known.outer();
    }

    /// Reads all attributes of the window.
    void readWindow(xcb_window_t window) {
        settle();
        const Element element = elementOf(window);
        for (const auto name : {attribute::kRole, attribute::kSubrole, attribute::kMinimized,
                                attribute::kFullScreen, attribute::kPosition, attribute::kSize})
            EXPECT_TRUE(accessibility.copyAttribute(element, name)) << name;
        EXPECT_EQ(accessibility.pid(element), client.pid());
        EXPECT_EQ(workspace.frontmostApplication()->processIdentifier, client.pid());
        for (const Screen& screen : displays.screens())
            EXPECT_GE(screen.visibleFrame.width * screen.visibleFrame.height, 1600 * 900 / 16);
        EXPECT_FALSE(connection.isLost());
    }

    /// Reads and moves the window. It must reach the target, except for the width of a decoration whose
    /// extents the client has overwritten.
    void useWindow(xcb_window_t window) {
        readWindow(window);
        const Element element = elementOf(window);
        writeFrame(element, kTarget);
        EXPECT_NEAR(readFrame(element).x, kTarget.x, kThickestDecoration);
        EXPECT_NEAR(readFrame(element).y, kTarget.y, kThickestDecoration);
    }
};

TEST_F(HostileClientTest, PropertiesOfTheWrongTypeAreIgnored) {
    const xcb_window_t window = open();
    for (const char* name : properties())
        client.setProperty(window, name, "PIXMAP", 32, std::string(72, '\x7F'));

    useWindow(window);
}

TEST_F(HostileClientTest, PropertiesOfTheWrongFormatAreIgnored) {
    for (const int format : {8, 16}) {
        const xcb_window_t window = open();
        for (const char* name : properties())
            client.setProperty(window, name, "CARDINAL", format, std::string(72, '\x7F'));
        useWindow(window);
    }
}

TEST_F(HostileClientTest, PropertiesOfTheWrongLengthAreIgnored) {
    for (const std::size_t length : {0U, 4U, 12U, 20U, 4000U}) {
        const xcb_window_t window = open();
        for (const char* name : properties())
            client.setProperty(window, name, "CARDINAL", 32, std::string(length, '\0'));
        useWindow(window);
    }
}

TEST_F(HostileClientTest, NegativeAndHugeValuesAreIgnored) {
    for (const char byte : {'\xFF', '\x7F', '\x80'}) {
        const xcb_window_t window = open();
        for (const char* name : properties())
            if (std::string_view(name) != "_GTK_FRAME_EXTENTS") // window managers may use it
                client.setProperty(window, name, "CARDINAL", 32, std::string(16, byte));
        client.setProperty(window, "WM_TRANSIENT_FOR", "WINDOW", 32, std::string(4, byte));
        useWindow(window);
    }
}

TEST_F(HostileClientTest, AbsurdShadowsAreIgnoredWhateverTheWindowManagerDoes) {
    for (const char byte : {'\xFF', '\x7F', '\x80'}) {
        const xcb_window_t window = open();
        client.setProperty(window, "_GTK_FRAME_EXTENTS", "CARDINAL", 32, std::string(16, byte));
        readWindow(window);
        const Element element = elementOf(window);
        writeFrame(element, kTarget);
        const Rect frame = readFrame(element); // waits until the placement has taken effect
        EXPECT_EQ(frame, actualFrameWithoutShadows(window));
    }
}

TEST_F(HostileClientTest, VeryLongListsOfStatesAndTypesDoNoHarm) {
    const xcb_window_t window = open();
    for (const char* name : {"_NET_WM_STATE", "_NET_WM_WINDOW_TYPE"})
        client.setProperty(window, name, "ATOM", 32, std::string(8000, '\1'));

    useWindow(window);
}

TEST_F(HostileClientTest, ShadowsThatCoverTheWindowAreIgnored) {
    const xcb_window_t window = open({.client = {300, 200, 600, 400}});
    client.setCardinals(window, "_GTK_FRAME_EXTENTS", {300, 300, 200, 200});

    useWindow(window);
}

TEST_F(HostileClientTest, MalformedRootPropertiesGiveNoWindows) {
    SharedDesktop& bare = SharedDesktop::withoutManager();
    x11test::TestClient liar(bare.server);
    ConnectionDriver listener(bare.server.display());
    ClientWindows clientWindows(listener.connection());
    const std::vector<const char*> names = {"_NET_ACTIVE_WINDOW",        "_NET_CLIENT_LIST",
                                            "_NET_CLIENT_LIST_STACKING", "_NET_SUPPORTED",
                                            "_NET_SUPPORTING_WM_CHECK",  "_NET_WORKAREA"};
    for (const int format : {8, 16, 32}) {
        for (const char* name : names)
            liar.setProperty(bare.observer.root(), name, "CARDINAL", format, std::string(40, '\x7F'));
        listener.hear();
        EXPECT_EQ(clientWindows.activeWindow(), xcb_window_t{XCB_WINDOW_NONE});
        EXPECT_TRUE(clientWindows.frontToBack().empty());
    }
    for (const char* name : names)
        liar.setProperty(bare.observer.root(), name, "WINDOW", 32, "");
    listener.hear();
}

TEST_F(HostileClientTest, NonexistentWindowsGiveEmptyResults) {
    SharedDesktop& bare = SharedDesktop::withoutManager();
    x11test::TestClient liar(bare.server);
    ConnectionDriver listener(bare.server.display());
    ClientWindows clientWindows(listener.connection());
    Placement placement(listener.connection(), clientWindows);
    constexpr xcb_window_t kNoSuchWindow = 0x7F7F7F7F;
    for (const char* name : {"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST"})
        liar.setProperty(bare.observer.root(), name, "WINDOW", 32, "\x7F\x7F\x7F\x7F");
    listener.hear();

    EXPECT_EQ(clientWindows.activeWindow(), kNoSuchWindow);
    EXPECT_FALSE(clientWindows.frame(kNoSuchWindow));
    EXPECT_FALSE(clientWindows.pid(kNoSuchWindow));
    EXPECT_EQ(clientWindows.traits(kNoSuchWindow).type, WindowType::Unspecified);
    placement.place(kNoSuchWindow, {.origin = Point{1, 2}, .size = Size{3, 4}});

    for (const char* name : {"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST"})
        liar.setProperty(bare.observer.root(), name, "WINDOW", 32, "");
}

/// A desktop whose _NET_CLIENT_LIST has ten thousand entries.
class LongListTest : public HostileClientTest {
protected:
    LongListTest() : last(liar.open()) {
        std::vector<xcb_window_t> ids(10'000);
        std::iota(ids.begin(), ids.end(), xcb_window_t{0x7F000000});
        ids.push_back(last);
        listWindows({reinterpret_cast<const char*>(ids.data()), ids.size() * sizeof(xcb_window_t)});
    }
    ~LongListTest() override { listWindows(""); }

    void listWindows(const std::string& bytes) {
        liar.setProperty(bare.observer.root(), "_NET_CLIENT_LIST", "WINDOW", 32, bytes);
        listener.hear();
    }

    SharedDesktop& bare = SharedDesktop::withoutManager();
    x11test::TestClient liar{bare.server};
    ConnectionDriver listener{bare.server.display()};
    ClientWindows clientWindows{listener.connection()};
    xcb_window_t last;
};

TEST_F(LongListTest, AllItsWindowsAreRead) {
    EXPECT_EQ(clientWindows.managed().size(), 10'001U);
    EXPECT_EQ(clientWindows.frontToBack().size(), 10'001U);
    EXPECT_EQ(clientWindows.windowsOf(liar.pid()), std::vector{last});
}

} // namespace
} // namespace tessarel::x11
