#include "icon.h"

#include <QDir>
#include <QString>

#include <cstdio>
#include <cstdlib>

namespace tessarel {

namespace {

/// Writes the icon of `points` points at `scale` pixels per point, under the file name that iconutil expects.
bool write(const QDir& folder, int points, int scale) {
    const QString suffix = scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale);
    const QString name = QStringLiteral("icon_%1x%1%2.png").arg(points).arg(suffix);
    return drawIcon(points * scale).save(folder.filePath(name), "PNG");
}

/// Writes all sizes; returns false when a file cannot be written.
bool writeAll(const QDir& folder) {
    if (!folder.mkpath(QStringLiteral(".")))
        return false;
    for (const int points : {16, 32, 128, 256, 512}) {
        if (!write(folder, points, 1) || !write(folder, points, 2))
            return false;
    }
    return true;
}

} // namespace

} // namespace tessarel

/// draw_icon FOLDER: writes the program's icon as an icon set, in all sizes that macOS uses.
int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fputs("usage: draw_icon FOLDER\n", stderr);
        return EXIT_FAILURE;
    }
    if (tessarel::writeAll(QDir(QString::fromLocal8Bit(arguments[1]))))
        return EXIT_SUCCESS;
    std::fputs("draw_icon: cannot write the icon\n", stderr);
    return EXIT_FAILURE;
}
