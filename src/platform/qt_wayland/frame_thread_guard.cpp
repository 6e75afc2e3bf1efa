// SPDX-License-Identifier: MIT

#include "platform/qt_wayland/frame_thread_guard.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPlatformSurfaceEvent>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

namespace tessarel::qt {
namespace {

constexpr std::chrono::microseconds kStep{200};
constexpr int kMostSteps = 500;

/// Returns whether one of Qt's threads for the compositor runs, or would if it had a processor. The system
/// cuts their name, "WaylandEventThread", to 15 characters.
bool isThreadBusy() {
    const std::string name = "(WaylandEventThr) ";
    std::error_code failure;
    for (std::filesystem::directory_iterator at("/proc/self/task", failure), end; !failure && at != end;
         at.increment(failure)) {
        std::string line; // number (name) state ...
        std::getline(std::ifstream(at->path() / "stat"), line);
        const auto found = line.find(name);
        if (found != std::string::npos && line.compare(found + name.size(), 1, "S") != 0)
            return true;
    }
    return false;
}

} // namespace

FrameThreadGuard::FrameThreadGuard() {
    QCoreApplication::instance()->installEventFilter(this);
}

bool FrameThreadGuard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::PlatformSurface &&
        static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
            QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed)
        for (int step = 0; step < kMostSteps && isThreadBusy(); ++step)
            std::this_thread::sleep_for(kStep);
    return QObject::eventFilter(watched, event);
}

} // namespace tessarel::qt
