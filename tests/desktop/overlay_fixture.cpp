// SPDX-License-Identifier: MIT

#include "desktop/overlay_fixture.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace tessarel::qt {

namespace {

bool isClose(const QColor& one, const QColor& other) {
    constexpr int kTolerance = 3; // the compositor's rounding adds to ours
    return std::abs(one.red() - other.red()) <= kTolerance &&
           std::abs(one.green() - other.green()) <= kTolerance &&
           std::abs(one.blue() - other.blue()) <= kTolerance;
}

std::vector<Rect> boundsOf(const std::vector<OverlayFigure>& list) {
    std::vector<Rect> bounds;
    for (const OverlayFigure& figure : list)
        bounds.push_back(figure.bounds);
    return bounds;
}

/// A black wallpaper, published in _XROOTPMAP_ID. Without it, compositors paint a background of their own.
class Wallpaper {
public:
    explicit Wallpaper(const x11test::XServer& server) : m_x(server.display()) {
        xcb_connection_t* const xcb = m_x.get();
        const xcb_pixmap_t pixmap = xcb_generate_id(xcb);
        const xcb_gcontext_t context = xcb_generate_id(xcb);
        const xcb_rectangle_t all{0, 0, 1, 1};
        const std::uint32_t black = m_x.screen().black_pixel;
        xcb_create_pixmap(xcb, m_x.screen().root_depth, pixmap, m_x.root(), 1, 1);
        xcb_create_gc(xcb, context, pixmap, XCB_GC_FOREGROUND, &black);
        xcb_poly_fill_rectangle(xcb, pixmap, context, 1, &all);
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, m_x.root(), m_x.atom("_XROOTPMAP_ID"),
                            XCB_ATOM_PIXMAP, 32, 1, &pixmap);
        m_x.roundTrip();
    }

private:
    x11test::XConnection m_x; // owns the pixmap
};

} // namespace

x11test::XServer& OverlayDesktopTest::server() {
    static x11test::XServer shared;
    static const Wallpaper wallpaper(shared);
    static const x11test::WindowManager manager(shared, x11test::WindowManagerKind::Openbox);
    return shared;
}

OverlayDesktopTest::OverlayDesktopTest(const std::string& scaleFactor) {
    for (const auto& [name, value] : server().environment())
        qputenv(name.c_str(), value.c_str());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    scaleFactor.empty() ? qunsetenv("QT_SCALE_FACTOR") : qputenv("QT_SCALE_FACTOR", scaleFactor.c_str());
    m_application.emplace(m_argumentCount, m_arguments.data());
    m_barrier.emplace(observer);
}

OverlayDesktopTest::~OverlayDesktopTest() {
    if (m_compositor)
        stopCompositor();
    window.reset();
    server().setMonitors({});
}

void OverlayDesktopTest::startCompositor() {
    m_compositor = std::make_unique<x11test::ChildProcess>(
        std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
        server().environment());
    ASSERT_TRUE(waitUntil([&] { return observer.selectionOwner("_NET_WM_CM_S0") != XCB_WINDOW_NONE; }))
        << m_compositor->errors();
}

void OverlayDesktopTest::stopCompositor() {
    m_compositor.reset();
    EXPECT_TRUE(waitUntil([&] { return observer.selectionOwner("_NET_WM_CM_S0") == XCB_WINDOW_NONE; }));
}

void OverlayDesktopTest::show(const Rect& rootFrame, const std::vector<OverlayFigure>& list) {
    window->setFrame(rootFrame);
    change(list);
    window->orderFront();
    turn();
}

void OverlayDesktopTest::change(const std::vector<OverlayFigure>& list) {
    std::vector<Rect> changed = boundsOf(list);
    changed.insert(changed.end(), shownBounds.begin(), shownBounds.end());
    window->setFigures(list, changed);
    shownBounds = boundsOf(list);
    turn();
}

void OverlayDesktopTest::hide() {
    window->orderOut();
    turn();
}

void OverlayDesktopTest::turn() {
    EXPECT_TRUE(m_barrier->pass());
    clock.advance(std::chrono::seconds(1));
}

void OverlayDesktopTest::catchUp() {
    EXPECT_TRUE(m_barrier->pass());
    clock.advance(std::chrono::seconds(0));
    EXPECT_TRUE(m_barrier->pass());
}

bool OverlayDesktopTest::waitUntil(const std::function<bool()>& holds) {
    return m_barrier->waitUntil(holds);
}

QImage OverlayDesktopTest::screen(const QRect& area) {
    xcb_connection_t* const xcb = observer.x().get();
    const auto cookie =
        xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, observer.root(), static_cast<std::int16_t>(area.x()),
                      static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
                      static_cast<std::uint16_t>(area.height()), ~0U);
    const auto image = x11test::own(xcb_get_image_reply(xcb, cookie, nullptr));
    if (!image)
        return {};
    return QImage(xcb_get_image_data(image.get()), area.width(), area.height(), QImage::Format_RGB32).copy();
}

QColor OverlayDesktopTest::screenPixel(int x, int y) {
    return screen({x, y, 1, 1}).pixelColor(0, 0);
}

QImage OverlayDesktopTest::settledScreen(const QRect& area) {
    turn();
    // The marker window is mapped last, so a compositor that shows it has painted everything drawn before.
    const QColor before = screenPixel(0, 0);
    const std::uint32_t values[] = {observer.x().screen().white_pixel, 1};
    xcb_connection_t* const xcb = observer.x().get();
    const xcb_window_t marker = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, marker, observer.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(xcb, marker);
    EXPECT_TRUE(waitUntil([&] { return screenPixel(0, 0) == QColor(Qt::white); }));
    xcb_destroy_window(xcb, marker);
    EXPECT_TRUE(waitUntil([&] { return screenPixel(0, 0) == before; }));
    return screen(area);
}

testing::AssertionResult OverlayDesktopTest::becomes(int x, int y, const QColor& color) {
    if (waitUntil([&] { return isClose(screenPixel(x, y), color); }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "pixel " << x << ", " << y << " is " << screenPixel(x, y).name().toStdString() << " and not "
           << color.name().toStdString();
}

X11OverlayWidget* OverlayDesktopTest::surface() {
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (auto* const found = dynamic_cast<X11OverlayWidget*>(widget); found && found->isVisible())
            return found;
    return nullptr;
}

xcb_window_t OverlayDesktopTest::surfaceWindow() {
    return surface() ? static_cast<xcb_window_t>(surface()->winId()) : xcb_window_t{XCB_WINDOW_NONE};
}

} // namespace tessarel::qt
