// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xdg/applications/offered_applications.h"

#include <QAbstractListModel>
#include <QCollator>
#include <QIcon>
#include <QPixmap>
#include <QSortFilterProxyModel>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace tessarel::qt {

/// Applications as rows of a view, in the order in which they were appended.
///
/// Icons are loaded once a view has asked for them, one per round of the event loop, the last asked for
/// first. So a view appears and scrolls without waiting for files.
class ApplicationList : public QAbstractListModel {
public:
    /// What a row has beside its name, which is its `Qt::DisplayRole`.
    enum Role {
        Identifier = Qt::UserRole, ///< as `xdg::OfferedApplication` has it
        IsRunning,
        SearchText, ///< what the user may type to find the application, as `folded` returns it
    };

    /// Returns the icon of an application, given the icon and the name of its entry.
    using LoadIcon = std::function<QPixmap(const QString& icon, const QString& name)>;

    /// `running` are the identifiers of the applications that are running.
    ApplicationList(std::set<std::string> running, LoadIcon loadIcon);

    void append(const std::vector<xdg::OfferedApplication>& applications);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    /// Returns `text` without differences that a search ignores: case and accents.
    [[nodiscard]] static QString folded(const QString& text);

private:
    struct Row {
        QString identifier;
        QString name;
        QString searchText;
        QString icon;
        bool isRunning = false;
        // A view asks for the icon in a const function.
        mutable bool isIconWanted = false;
        mutable QIcon loadedIcon = {};
    };

    [[nodiscard]] Row rowOf(const xdg::OfferedApplication& application) const;
    [[nodiscard]] QIcon iconOf(int row) const;
    void loadWantedIcon();

    std::set<std::string> m_running;
    LoadIcon m_loadIcon;
    std::vector<Row> m_rows;
    mutable std::vector<int> m_wanted; ///< rows whose icons are to be loaded, the next one last
    mutable QTimer m_loading;
};

/// Shows the applications of an `ApplicationList` that a search finds: those that are running first, each
/// part sorted by name.
class FoundApplications : public QSortFilterProxyModel {
public:
    explicit FoundApplications(ApplicationList& all);

    /// Shows the applications whose search text contains every word of `text`.
    void search(const QString& text);

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
    [[nodiscard]] bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    QStringList m_words;
    QCollator m_collator;
};

} // namespace tessarel::qt
