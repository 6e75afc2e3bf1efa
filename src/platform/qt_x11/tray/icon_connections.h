// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QList>

namespace tessarel::qt {

/// Returns the connections to the session bus on which Qt may have put the StatusNotifierItem of an icon:
/// Qt gives each icon of the process a connection of its own. Some may not be connected.
[[nodiscard]] QList<QDBusConnection> iconConnections();

} // namespace tessarel::qt
