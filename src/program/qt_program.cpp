#include "program/qt_program.h"

#include "model/config.h"

#include <QApplication>
#include <QString>

#include <cstdio>
#include <string_view>

namespace tessarel {

namespace {

QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

void say(const std::string& line) {
    std::fprintf(stderr, "tessarel: %s\n", line.c_str());
}

void describeProgramToQt() {
    // The same style on every system; it takes its colours from the palette.
    QApplication::setStyle("Fusion");
    QApplication::setApplicationName(qString(Config::appName));
    QApplication::setApplicationVersion(qString(Config::version));
    // The program goes on in the status area when its windows are closed.
    QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace tessarel
