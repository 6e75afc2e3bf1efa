#include "platform/qt/overlay_connection.h"

#include <QGuiApplication>

namespace tessarel::qt {

xcb_connection_t* qtConnection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

} // namespace tessarel::qt
