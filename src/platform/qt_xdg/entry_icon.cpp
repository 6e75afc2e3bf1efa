// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/entry_icon.h"

#include "qt_values/color.h"

#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QIcon>
#include <QImageReader>
#include <QPainter>
#include <QRect>
#include <QSize>

#include <algorithm>

namespace tessarel::qt {

namespace {

constexpr qint64 kLargestFile = qint64{4} * 1024 * 1024; // bytes
constexpr double kTileOpacity = 0.15;
constexpr double kTileCorner = 0.2; // radius of a corner, as a share of the size
constexpr double kLetterShare = 0.55;

/// Returns the image in a file, scaled to fit; null if it cannot be loaded. Looks at the file first: opening
/// a pipe would wait for its writer.
QPixmap fromFile(const QString& path, const EntryIconStyle& style) {
    const QFileInfo file(path);
    if (!file.isFile() || file.size() > kLargestFile)
        return {};
    const int side = qRound(style.size * style.scale);
    QImageReader reader(path);
    if (reader.size().isValid())
        reader.setScaledSize(reader.size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    QPixmap pixmap = QPixmap::fromImageReader(&reader);
    pixmap.setDevicePixelRatio(style.scale);
    return pixmap;
}

/// Returns an icon of the theme, null if it has none of this name. Some entries append a suffix to the name.
QPixmap fromTheme(QString name, const EntryIconStyle& style) {
    for (const char* const suffix : {".png", ".svg", ".xpm"})
        if (name.endsWith(QLatin1String(suffix)))
            name.chop(4);
    if (name.isEmpty() || name.contains(QLatin1Char('/')))
        return {};
    return QIcon::fromTheme(name).pixmap(QSize(style.size, style.size), style.scale);
}

/// Returns the first character that the user sees as one, in upper case.
QString initial(const QString& name) {
    const QString text = name.trimmed();
    const bool isPair = text.size() > 1 && text.at(0).isHighSurrogate();
    return text.left(isPair ? 2 : 1).toUpper();
}

QPixmap letterTile(const QString& name, const EntryIconStyle& style) {
    QPixmap tile(QSize(style.size, style.size) * style.scale);
    tile.setDevicePixelRatio(style.scale);
    tile.fill(Qt::transparent);
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(translucent(style.letterColor, kTileOpacity));
    const QRect square(0, 0, style.size, style.size);
    painter.drawRoundedRect(square, kTileCorner * style.size, kTileCorner * style.size);
    QFont font = painter.font();
    font.setPixelSize(std::max(1, qRound(kLetterShare * style.size)));
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.setPen(style.letterColor);
    painter.drawText(square, Qt::AlignCenter, initial(name));
    return tile;
}

} // namespace

QPixmap entryIcon(const QString& icon, const QString& name, const EntryIconStyle& style) {
    const QPixmap pixmap = QDir::isAbsolutePath(icon) ? fromFile(icon, style) : fromTheme(icon, style);
    return pixmap.isNull() ? letterTile(name, style) : pixmap;
}

} // namespace tessarel::qt
