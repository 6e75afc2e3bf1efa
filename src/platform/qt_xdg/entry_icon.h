// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

namespace tessarel::qt {

/// How the icon of an application is drawn.
struct EntryIconStyle {
    int size = 24;      ///< of each side, in device-independent pixels
    double scale = 1;   ///< device pixels per device-independent pixel
    QColor letterColor; ///< of the replacement for an icon that cannot be loaded
};

/// Returns the icon that a desktop entry names: the absolute path of a file, or a name in the icon theme. If
/// it cannot be loaded, or its file has more than 4 MiB, returns a tile with the first letter of `name`.
/// Reads files, so it may take some milliseconds.
[[nodiscard]] QPixmap entryIcon(const QString& icon, const QString& name, const EntryIconStyle& style);

} // namespace tessarel::qt
