// SPDX-License-Identifier: MIT

// Measures the time from the request for the settings window until it is painted, for the first time, which
// creates all widgets, and for later times.

#include "app/services.h"
#include "look/control_style.h"
#include "platform/sim/sim_desktop.h"
#include "settings_ui/settings_window_controller.h"
#include "support/sim_ports.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QObject>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <optional>
#include <vector>

namespace tessarel::bench {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr Milliseconds kFirstBudget{100};
constexpr Milliseconds kLaterBudget{30};
constexpr int kLaterTimes = 21;

/// Records whether any top-level window has been painted.
class PaintWatch : public QObject {
public:
    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* const widget = qobject_cast<QWidget*>(object);
        if (widget && widget->isWindow() && event->type() == QEvent::Paint)
            painted = true;
        return false;
    }

    bool painted = false;
};

Milliseconds untilPainted(PaintWatch& watch, const std::function<void()>& show) {
    watch.painted = false;
    const auto start = std::chrono::steady_clock::now();
    show();
    while (!watch.painted)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return std::chrono::steady_clock::now() - start;
}

void closeAll() {
    for (QWidget* const window : QApplication::topLevelWidgets())
        window->close();
    QApplication::processEvents();
}

void print(const char* what, Milliseconds taken, Milliseconds budget) {
    std::printf("%-28s %6.1f ms   budget %3.0f ms   %.2f of it\n", what, taken.count(), budget.count(),
                taken / budget);
}

} // namespace

int run(int argumentCount, char** arguments) {
    QApplication::setStyle(new ControlStyle);
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    PaintWatch watch;
    application.installEventFilter(&watch);
    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    const Ports ports = simPorts(desktop, copy);
    Services services(ports);

    std::optional<SettingsWindowController> controller;
    const Milliseconds first = untilPainted(watch, [&] { controller.emplace(services, ports).show(); });
    std::vector<Milliseconds> later;
    for (int time = 0; time < kLaterTimes; ++time) {
        closeAll();
        later.push_back(untilPainted(watch, [&] { controller->show(); }));
    }
    std::ranges::nth_element(later, later.begin() + kLaterTimes / 2);
    print("settings window, first time", first, kFirstBudget);
    print("settings window, later", later[kLaterTimes / 2], kLaterBudget);
    return 0;
}

} // namespace tessarel::bench

int main(int argumentCount, char** arguments) {
    return tessarel::bench::run(argumentCount, arguments);
}
