#include "platform/qt/qt_overlay.h"

#include "platform/qt/overlay_window.h"

#include <utility>

namespace tessarel::qt {

QtOverlay::QtOverlay(MainQueuePort& queue, Conversion desktopPixels)
    : m_queue(queue), m_desktopPixels(std::move(desktopPixels)) {}

std::unique_ptr<OverlayWindow> QtOverlay::createWindow() {
    return std::make_unique<QtOverlayWindow>(m_queue, m_desktopPixels);
}

} // namespace tessarel::qt
