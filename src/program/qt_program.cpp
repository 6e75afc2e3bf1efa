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
    QApplication::setStyle("Fusion");
    QApplication::setApplicationName(qString(Config::appName));
    QApplication::setApplicationVersion(qString(Config::version));
    QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace tessarel
