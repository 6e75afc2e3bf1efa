#include "icon.h"

#include <QDir>
#include <QString>

#include <cstdio>
#include <cstdlib>

namespace tessarel {

namespace {

/// Writes the picture of `points` at `scale` pixels for each, under the name that the maker of icons expects.
bool write(const QDir& folder, int points, int scale) {
    const QString suffix = scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale);
    const QString name = QStringLiteral("icon_%1x%1%2.png").arg(points).arg(suffix);
    return drawIcon(points * scale).save(folder.filePath(name), "PNG");
}

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

/// draw_icon FOLDER: the program's icon in all sizes that a Mac asks for, as an icon set.
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
