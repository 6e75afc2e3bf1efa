// SPDX-License-Identifier: MIT

#include "icon.h"

#include <QDir>
#include <QFile>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tessarel {

namespace {

bool writePng(const QDir& folder, const QString& name, int size) {
    return folder.mkpath(QStringLiteral(".")) && drawIcon(size).save(folder.filePath(name), "PNG");
}

/// Writes the icon in all sizes that macOS uses, each at one and at two pixels per point, under the file
/// names that iconutil expects.
bool writeIconSet(const QDir& folder) {
    for (const int points : {16, 32, 128, 256, 512}) {
        const QString name = QStringLiteral("icon_%1x%1").arg(points);
        if (!writePng(folder, name + QStringLiteral(".png"), points) ||
            !writePng(folder, name + QStringLiteral("@2x.png"), points * 2))
            return false;
    }
    return true;
}

/// Writes the icon as `name` in all sizes that a hicolor theme has.
bool writeHicolor(const QDir& theme, const QString& name) {
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QDir folder(theme.filePath(QStringLiteral("%1x%1/apps").arg(size)));
        if (!writePng(folder, name + QStringLiteral(".png"), size))
            return false;
    }
    const QDir scalable(theme.filePath(QStringLiteral("scalable/apps")));
    QFile file(scalable.filePath(name + QStringLiteral(".svg")));
    const QByteArray document = svgIcon();
    return scalable.mkpath(QStringLiteral(".")) && file.open(QIODevice::WriteOnly) &&
           file.write(document) == document.size() && file.flush();
}

} // namespace

} // namespace tessarel

/// draw_icon iconset FOLDER: writes the program's icon as an icon set of macOS.
/// draw_icon hicolor FOLDER NAME: writes it as NAME into the hicolor theme in FOLDER.
int main(int argumentCount, char** arguments) {
    const auto argument = [arguments](int index) { return QString::fromLocal8Bit(arguments[index]); };
    const std::string_view format = argumentCount > 1 ? arguments[1] : "";
    bool isWritten = false;
    if (format == "iconset" && argumentCount == 3) {
        isWritten = tessarel::writeIconSet(QDir(argument(2)));
    } else if (format == "hicolor" && argumentCount == 4) {
        isWritten = tessarel::writeHicolor(QDir(argument(2)), argument(3));
    } else {
        std::fputs("usage: draw_icon iconset FOLDER | hicolor FOLDER NAME\n", stderr);
        return EXIT_FAILURE;
    }
    if (isWritten)
        return EXIT_SUCCESS;
    std::fputs("draw_icon: cannot write the icon\n", stderr);
    return EXIT_FAILURE;
}
