// SPDX-License-Identifier: MIT

// Measures how long the overlay takes to show and to move its highlight. The baseline is a bare widget that
// only fills rectangles of the same size. Needs an X server of at least 3840x2160 without a compositor.
//
//   overlay_bench [ROUNDS]

#include "platform/qt/qt_main_queue.h"
#include "platform/qt_x11/overlay/x11_overlay.h"
#include "support/clock.h"
#include "support/statistics.h"
#include "support/table.h"

#include <QApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>
#include <xcb/xcb.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessarel::bench {

namespace {

using namespace std::chrono_literals;

constexpr int kDefaultRounds = 100;
/// Longer than the interval in which the overlay coalesces changes.
constexpr auto kPause = 20ms;

xcb_connection_t* server() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

/// Waits until the server has processed all requests sent so far.
void roundTrip() {
    std::free(xcb_get_input_focus_reply(server(), xcb_get_input_focus(server()), nullptr));
}

/// Owns the selection of a compositing manager, so that programs assume a compositor, without the cost of
/// one.
class PretendedCompositor {
public:
    PretendedCompositor() : m_window(xcb_generate_id(server())) {
        const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(server())).data;
        xcb_create_window(server(), XCB_COPY_FROM_PARENT, m_window, screen.root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        const std::string name = "_NET_WM_CM_S0";
        const auto cookie =
            xcb_intern_atom(server(), 0, static_cast<std::uint16_t>(name.size()), name.data());
        auto* const reply = xcb_intern_atom_reply(server(), cookie, nullptr);
        if (reply == nullptr)
            throw std::runtime_error("the X server has gone");
        xcb_set_selection_owner(server(), m_window, reply->atom, XCB_CURRENT_TIME);
        std::free(reply);
        roundTrip();
    }
    PretendedCompositor(const PretendedCompositor&) = delete;
    PretendedCompositor& operator=(const PretendedCompositor&) = delete;
    ~PretendedCompositor() {
        xcb_destroy_window(server(), m_window);
        roundTrip();
    }

private:
    xcb_window_t m_window;
};

/// Waits until any widget of the application has been painted.
class PaintWatch : public QObject {
public:
    PaintWatch() { qApp->installEventFilter(this); }

    void reset() { m_hasPainted = false; }
    void await() const {
        while (!m_hasPainted)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::processEvents();
    }

private:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
        m_hasPainted = m_hasPainted || event->type() == QEvent::Paint;
        return false;
    }

    bool m_hasPainted = false;
};

/// Two halves of a display, one of which is highlighted.
class Contender {
public:
    Contender() = default;
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;
    virtual ~Contender() = default;

    virtual void show() = 0;
    virtual void hide() = 0;
    virtual void highlight(int half) = 0;
};

class BareWidget : public Contender, private QWidget {
public:
    BareWidget(const QSize& size, bool translucent)
        : QWidget(nullptr, Qt::FramelessWindowHint | Qt::BypassWindowManagerHint) {
        setAttribute(Qt::WA_TranslucentBackground, translucent);
        setGeometry(QRect(QPoint(), size));
    }

    void show() override { QWidget::show(); }
    void hide() override { QWidget::hide(); }
    void highlight(int half) override {
        m_highlighted = half;
        repaint(QRegion(rectangle(0)) + rectangle(1));
    }

private:
    [[nodiscard]] QRect rectangle(int half) const { return {half * width() / 2, 0, width() / 2, height()}; }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        for (int half = 0; half < 2; ++half)
            painter.fillRect(rectangle(half), QColor(10, 132, 255, half == m_highlighted ? 89 : 26));
    }

    int m_highlighted = 0;
};

class Overlay : public Contender {
public:
    Overlay(MainQueuePort& queue, const QSize& size)
        : m_width(size.width() / 2), m_height(size.height()),
          m_window(qt::X11Overlay(queue, [](const Rect& frame) { return frame; }).createWindow()) {
        m_window->setFrame({0, 0, 2 * m_width, m_height});
        highlight(0);
    }

    void show() override { m_window->orderFront(); }
    void hide() override { m_window->orderOut(); }
    void highlight(int half) override {
        m_window->setFigures({figure(0, half == 0), figure(1, half == 1)}, {bounds(0), bounds(1)});
    }

private:
    [[nodiscard]] Rect bounds(int half) const { return {half * m_width, 0, m_width, m_height}; }

    [[nodiscard]] OverlayFigure figure(int half, bool isHighlighted) const {
        const Rect zone = bounds(half);
        return {.bounds = zone,
                .shape = zone.inset(2, 2),
                .cornerRadius = 10,
                .fillAlpha = isHighlighted ? 0.35 : 0.1,
                .strokeAlpha = isHighlighted ? 0.95 : 0.45,
                .strokeWidth = isHighlighted ? 3 : 1.5,
                .label = {.text = std::to_string(half + 1),
                          .center = {zone.midX(), zone.midY()},
                          .fontSize = 28,
                          .fontWeight = 600,
                          .alpha = isHighlighted ? 0.95 : 0.6},
                .highlighted = isHighlighted};
    }

    double m_width;
    double m_height;
    std::unique_ptr<OverlayWindow> m_window;
};

template <class Work>
double milliseconds(const Work& work) {
    const auto start = Clock::now();
    work();
    return Milliseconds(Clock::now() - start).count();
}

struct Samples {
    std::vector<double> shows;
    std::vector<double> changes;
};

void sample(Contender& contender, PaintWatch& paints, int round, Samples& samples) {
    samples.shows.push_back(milliseconds([&] {
        paints.reset();
        contender.show();
        paints.await();
        roundTrip();
    }));
    for (const int half : {1 + round, round}) {
        std::this_thread::sleep_for(kPause);
        QApplication::processEvents();
        samples.changes.push_back(milliseconds([&] {
            contender.highlight(half % 2);
            roundTrip();
        }));
    }
    contender.hide();
    QApplication::processEvents();
    roundTrip();
}

void compare(Table& table, const QSize& size, bool translucent, int rounds) {
    const auto compositor = translucent ? std::make_unique<PretendedCompositor>() : nullptr;
    qt::QtMainQueue queue;
    PaintWatch paints;
    BareWidget bare(size, translucent);
    Overlay overlay(queue, size);
    Samples ofBare;
    Samples ofOverlay;
    sample(bare, paints, 0, ofBare); // the first show creates the windows
    sample(overlay, paints, 0, ofOverlay);
    ofBare = {};
    ofOverlay = {};
    for (int round = 0; round < rounds; ++round) {
        sample(bare, paints, round, ofBare);
        sample(overlay, paints, round, ofOverlay);
    }
    table.add({std::to_string(size.width()) + "×" + std::to_string(size.height()),
               translucent ? "translucent" : "outlined", number(median(ofBare.changes)),
               number(median(ofOverlay.changes)), number(median(ofOverlay.changes) / median(ofBare.changes)),
               number(percentile(ofOverlay.changes, 95)), number(median(ofBare.shows)),
               number(median(ofOverlay.shows)), number(median(ofOverlay.shows) - median(ofBare.shows))});
}

void measure(int rounds) {
    Table table({"display", "look", "bare repaint ms", "overlay repaint ms", "ratio", "overlay p95 ms",
                 "bare show ms", "overlay show ms", "difference ms"});
    for (const QSize& size : {QSize(1920, 1080), QSize(3840, 2160)})
        for (const bool translucent : {true, false})
            compare(table, size, translucent, rounds);
    table.print("The overlay, until the server has painted it (p50 of " + std::to_string(rounds) + ")");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    try {
        tessarel::bench::measure(count > 1 ? std::stoi(arguments[1]) : tessarel::bench::kDefaultRounds);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "overlay_bench: %s\n", error.what());
        return 1;
    }
}
