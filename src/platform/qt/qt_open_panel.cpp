// SPDX-License-Identifier: MIT

#include "platform/qt/qt_open_panel.h"

#include <QApplication>
#include <QFileDialog>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <system_error>
#include <utility>

namespace tessarel::qt {

namespace {

/// Returns the existing ones of `folders`.
QList<QUrl> places(const std::vector<std::filesystem::path>& folders) {
    QList<QUrl> places;
    for (const std::filesystem::path& folder : folders) {
        std::error_code failure;
        if (std::filesystem::is_directory(folder, failure))
            places.append(QUrl::fromLocalFile(QString::fromStdString(folder.string())));
    }
    return places;
}

} // namespace

QtOpenPanel::QtOpenPanel(std::vector<std::filesystem::path> folders, IdentifierOf identifierOf)
    : m_folders(std::move(folders)), m_identifierOf(std::move(identifierOf)) {}

std::optional<std::string> QtOpenPanel::chooseApplication(const std::string& prompt) {
    QFileDialog dialog(QApplication::activeWindow(), QStringLiteral("Choose an application"));
    // Native dialogs ignore the side bar. Read-only: the user cannot rename or delete files here.
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::ReadOnly);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(QStringLiteral("Applications (*.desktop)"));
    dialog.setLabelText(QFileDialog::Accept, QString::fromStdString(prompt));
    const QList<QUrl> offered = places(m_folders);
    dialog.setSidebarUrls(offered);
    if (!offered.isEmpty())
        dialog.setDirectoryUrl(offered.last());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return m_identifierOf(dialog.selectedFiles().first().toStdString());
}

} // namespace tessarel::qt
