// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QColor>
#include <QProcess>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::qt {

/// Returns the accent colour in the content of KDE's file of settings, `kdeglobals`: the one that the user
/// has chosen, otherwise the background of selected texts in the user's colour scheme.
[[nodiscard]] std::optional<QColor> kdeAccent(const std::string& content);

/// Returns the colour of one of GNOME's accents, by its name as `gsettings` prints it, as in "'teal'".
[[nodiscard]] std::optional<QColor> gnomeAccent(const QByteArray& printed);

/// The accent colour in the settings of KDE and GNOME, for where no portal announces it.
class DesktopAccent {
public:
    using Found = std::function<void(const QColor& accent)>;

    /// `desktops` are the names of the desktop, see `xdg::currentDesktops`.
    DesktopAccent(std::vector<std::string> desktops, Found found);
    DesktopAccent(const DesktopAccent&) = delete;
    DesktopAccent& operator=(const DesktopAccent&) = delete;

    /// Reads the settings and calls `found` if they have an accent colour: at once on KDE, later on GNOME,
    /// whose settings another program prints. Requires the application object.
    void read();

private:
    void readKde();
    void readGnome();
    void finishGnome();

    std::vector<std::string> m_desktops;
    Found m_found;
    std::unique_ptr<QProcess> m_program; // while it runs
};

} // namespace tessarel::qt
