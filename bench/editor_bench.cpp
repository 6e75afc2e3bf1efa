// SPDX-License-Identifier: MIT

// Measures a drag in the zone editor, from the mouse event until the server has painted the result. The
// baselines are a bare widget that repaints the same area with the same zones, and one that only fills that
// area. Needs an X server.
//
//   editor_bench [EVENTS]

#include "look/control_style.h"
#include "model/presets.h"
#include "settings_ui/editor/zone_editor_picture.h"
#include "settings_ui/editor/zone_editor_view.h"
#include "support/clock.h"
#include "support/statistics.h"
#include "support/table.h"

#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>
#include <QWindow>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <string>
#include <vector>

namespace tessarel::bench {

namespace {

constexpr int kDefaultEvents = 1000;
constexpr QSize kSize(500, 312);

/// Waits until the server has processed all requests sent so far.
void roundTrip() {
    auto* const server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    std::free(xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
}

/// A widget that repaints `part` at every mouse move.
class BareWidget : public QWidget {
public:
    /// Paints the zones of `settings`; with null, only fills the area.
    explicit BareWidget(const AppSettings* settings) : m_settings(settings) {}

    QRect part;

private:
    void mouseMoveEvent(QMouseEvent* /*event*/) override { update(part); }
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        if (m_settings)
            ZoneEditorPicture{m_settings->zones, 0, QSizeF(size()), palette()}.draw(painter,
                                                                                    QRectF(event->rect()));
        else
            painter.fillRect(event->rect(), palette().color(QPalette::Base));
    }

    const AppSettings* m_settings;
};

/// Records the area that the watched widget last repainted.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget& watched) { watched.installEventFilter(this); }

    QRect painted;

private:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            painted = dynamic_cast<QPaintEvent&>(*event).rect();
        return false;
    }
};

void show(QWidget& widget) {
    widget.setWindowFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    widget.setAttribute(Qt::WA_OpaquePaintEvent);
    widget.setFixedSize(kSize);
    widget.show();
    while (!widget.windowHandle()->isExposed())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::processEvents();
    roundTrip();
}

void send(QWidget& widget, QEvent::Type type, const QPointF& place) {
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, widget.mapToGlobal(place), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

/// Returns the milliseconds until a mouse move has been handled and painted.
double millisecondsOfMove(QWidget& widget, const QPointF& place) {
    const auto start = Clock::now();
    send(widget, QEvent::MouseMove, place);
    QApplication::processEvents();
    roundTrip();
    return Milliseconds(Clock::now() - start).count();
}

/// Measures moving the first of `zones` to and fro, in the editor and in both baselines.
void compare(Table& table, const std::string& name, std::vector<Zone> zones, int events) {
    AppSettings settings;
    settings.zones = Presets::pad(std::move(zones));
    settings.gridStep = 0;
    ZoneEditorView editor(settings);
    BareWidget bare(&settings);
    BareWidget fill(nullptr);
    PaintWatch watch(editor);
    for (QWidget* const widget : std::initializer_list<QWidget*>{&editor, &bare, &fill})
        show(*widget);
    std::vector<double> ofEditor;
    std::vector<double> ofBare;
    std::vector<double> ofFill;
    const QPointF start(60, 60);
    send(editor, QEvent::MouseButtonPress, start);
    for (int i = 0; i < events; ++i) {
        const QPointF place = start + QPointF(20 + i % 40, 10 + i % 7);
        ofEditor.push_back(millisecondsOfMove(editor, place));
        bare.part = fill.part = watch.painted;
        ofBare.push_back(millisecondsOfMove(bare, place));
        ofFill.push_back(millisecondsOfMove(fill, place));
    }
    send(editor, QEvent::MouseButtonRelease, start);
    table.add({name, std::to_string(watch.painted.width()) + "×" + std::to_string(watch.painted.height()),
               number(median(ofFill)), number(median(ofBare)), number(median(ofEditor)),
               number(median(ofEditor) / median(ofFill)), number(median(ofEditor) / median(ofBare)),
               number(percentile(ofEditor, 95))});
}

void measure(int events) {
    std::vector<Zone> grid;
    for (int i = 0; i < 9; ++i)
        grid.push_back(Presets::z(i % 3 * 33, i / 3 * 33, 33, 33));
    std::vector<Zone> stack(9, Presets::z(0, 0, 90, 90));
    stack.front() = Presets::z(0, 0, 80, 80);

    Table table({"zones", "repainted", "fill ms", "bare ms", "editor ms", "editor / fill", "editor / bare",
                 "editor p95 ms"});
    compare(table, "3 top + 2 bottom", Presets::all()[0].zones, events);
    compare(table, "nine in a grid", grid, events);
    compare(table, "nine, all above each other", stack, events);
    table.print("A drag in the zone editor, until the server has painted it (p50 of " +
                std::to_string(events) + ")");
}

} // namespace

} // namespace tessarel::bench

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QApplication::setStyle(new tessarel::ControlStyle);
    try {
        tessarel::bench::measure(count > 1 ? std::stoi(arguments[1]) : tessarel::bench::kDefaultEvents);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "editor_bench: %s\n", error.what());
        return 1;
    }
}
