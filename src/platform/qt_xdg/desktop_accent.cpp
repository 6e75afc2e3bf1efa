// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/desktop_accent.h"

#include "platform/xdg/home_folder.h"
#include "platform/xdg/small_file.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <utility>

namespace tessarel::qt {

namespace {

/// Decodes a colour in KDE's settings: red, green and blue from 0 to 255, or "#rrggbb".
std::optional<QColor> kdeColor(const QString& text) {
    if (text.startsWith(QLatin1Char('#'))) {
        const QColor color(text);
        return color.isValid() ? std::optional(color) : std::nullopt;
    }
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() < 3)
        return std::nullopt;
    std::array<int, 3> levels{};
    auto part = parts.begin();
    for (int& level : levels) {
        bool isNumber = false;
        level = part++->toInt(&isNumber);
        if (!isNumber || level < 0 || level > 255)
            return std::nullopt;
    }
    return QColor(levels[0], levels[1], levels[2]);
}

/// The files of KDE's settings, the most important first.
std::vector<std::filesystem::path> kdeFiles() {
    constexpr const char* kName = "kdeglobals";
    std::vector<std::filesystem::path> files{xdg::configurationFolder() / kName};
    for (const std::filesystem::path& folder : xdg::systemConfigurationFolders())
        files.push_back(folder / kName);
    return files;
}

struct NamedAccent {
    std::string_view name;
    QRgb color;
};

/// The accents that GNOME's settings offer.
constexpr std::array kGnomeAccents = {
    NamedAccent{"blue", 0xff3584e4},   NamedAccent{"teal", 0xff2190a4},   NamedAccent{"green", 0xff3a944a},
    NamedAccent{"yellow", 0xffc88800}, NamedAccent{"orange", 0xffed5b00}, NamedAccent{"red", 0xffe62d42},
    NamedAccent{"pink", 0xffd56199},   NamedAccent{"purple", 0xff9141ac}, NamedAccent{"slate", 0xff6f8396}};

} // namespace

std::optional<QColor> kdeAccent(const std::string& content) {
    std::istringstream lines(content);
    std::optional<QColor> chosen;
    std::optional<QColor> selection;
    QString group;
    for (std::string line; std::getline(lines, line);) {
        const QString text = QString::fromStdString(line).trimmed();
        const QString value = text.section(QLatin1Char('='), 1).trimmed();
        const QString key = text.section(QLatin1Char('='), 0, 0).trimmed();
        if (text.startsWith(QLatin1Char('[')))
            group = text;
        else if (group == QLatin1String("[General]") && key == QLatin1String("AccentColor"))
            chosen = kdeColor(value);
        else if (group == QLatin1String("[Colors:Selection]") && key == QLatin1String("BackgroundNormal"))
            selection = kdeColor(value);
    }
    return chosen ? chosen : selection;
}

std::optional<QColor> gnomeAccent(const QByteArray& printed) {
    QByteArray name = printed.trimmed();
    name.replace('\'', "");
    const auto* const accent = std::ranges::find(kGnomeAccents, name.toStdString(), &NamedAccent::name);
    return accent == kGnomeAccents.end() ? std::nullopt : std::optional(QColor(accent->color));
}

DesktopAccent::DesktopAccent(std::vector<std::string> desktops, Found found)
    : m_desktops(std::move(desktops)), m_found(std::move(found)) {}

void DesktopAccent::read() {
    const auto isDesktop = [this](std::string_view name) {
        return std::ranges::find(m_desktops, name) != m_desktops.end();
    };
    if (isDesktop("KDE"))
        readKde();
    else if (isDesktop("GNOME"))
        readGnome();
}

void DesktopAccent::readKde() {
    for (const std::filesystem::path& file : kdeFiles()) {
        if (const auto accent = kdeAccent(xdg::readSmallFile(file).value_or("")))
            return m_found(*accent);
    }
}

/// Starts the program that prints the setting. Releases of GNOME without the setting let it fail.
void DesktopAccent::readGnome() {
    if (m_program)
        return;
    m_program = std::make_unique<QProcess>();
    QObject::connect(m_program.get(), &QProcess::finished, m_program.get(), [this] { finishGnome(); });
    QObject::connect(m_program.get(), &QProcess::errorOccurred, m_program.get(), [this](auto error) {
        if (error == QProcess::FailedToStart)
            m_program.release()->deleteLater();
    });
    m_program->start(QStringLiteral("gsettings"),
                     {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                      QStringLiteral("accent-color")},
                     QIODevice::ReadOnly);
}

void DesktopAccent::finishGnome() {
    QProcess* const program = m_program.release();
    program->deleteLater();
    if (const auto accent = gnomeAccent(program->readAllStandardOutput()))
        m_found(*accent);
}

} // namespace tessarel::qt
