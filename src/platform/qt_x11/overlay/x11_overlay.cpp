// SPDX-License-Identifier: MIT

#include "platform/qt_x11/overlay/x11_overlay.h"

#include "platform/qt_x11/overlay/compositor_watch.h"
#include "platform/qt_x11/overlay/palette_canvas.h"
#include "platform/qt_x11/overlay/x11_overlay_window.h"

#include <utility>

namespace tessarel::qt {

X11Overlay::X11Overlay(MainQueuePort& queue, Conversion desktopPixels, Accent accent)
    : m_queue(queue), m_desktopPixels(std::move(desktopPixels)), m_accent(std::move(accent)) {}

std::unique_ptr<OverlayWindow> X11Overlay::createWindow() {
    return std::make_unique<X11OverlayWindow>(m_queue, m_desktopPixels, m_accent);
}

bool X11Overlay::showsOutlines() const {
    return PaletteCanvas::isNeeded() || !CompositorWatch([] {}).isRunning();
}

} // namespace tessarel::qt
