// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_list.h"

#include "qt_values/text.h"

#include <QModelIndex>
#include <QVariant>

#include <algorithm>
#include <utility>

namespace tessarel::qt {

namespace {

/// In UTF-16 code units. Longer names are cut, because laying them out would delay the view.
constexpr qsizetype kLongestName = 200;

} // namespace

ApplicationList::ApplicationList(std::set<std::string> running, LoadIcon loadIcon)
    : m_running(std::move(running)), m_loadIcon(std::move(loadIcon)) {
    QObject::connect(&m_loading, &QTimer::timeout, &m_loading, [this] { loadWantedIcon(); });
}

void ApplicationList::append(const std::vector<xdg::OfferedApplication>& applications) {
    if (applications.empty())
        return;
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(applications.size()) - 1);
    for (const xdg::OfferedApplication& application : applications)
        m_rows.push_back(rowOf(application));
    endInsertRows();
}

ApplicationList::Row ApplicationList::rowOf(const xdg::OfferedApplication& application) const {
    Row row;
    row.identifier = toQString(application.identifier);
    row.name = toQString(application.name).left(kLongestName);
    row.searchText =
        folded(row.name + QLatin1Char('\n') + toQString(application.genericName).left(kLongestName) +
               QLatin1Char('\n') + row.identifier);
    row.icon = toQString(application.icon);
    row.isRunning = m_running.contains(application.identifier);
    return row;
}

int ApplicationList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant ApplicationList::data(const QModelIndex& index, int role) const {
    const Row& row = m_rows.at(static_cast<std::size_t>(index.row()));
    switch (role) {
    case Qt::DisplayRole:
        return row.name;
    case Qt::DecorationRole:
        return iconOf(index.row());
    case Qt::ToolTipRole: // escaped, because a tooltip may be taken for markup
        return QStringLiteral("<span>%1</span>").arg(row.identifier.toHtmlEscaped());
    case Qt::AccessibleDescriptionRole:
        return row.isRunning ? QStringLiteral("Running") : QString();
    case Identifier:
        return row.identifier;
    case IsRunning:
        return row.isRunning;
    case SearchText:
        return row.searchText;
    default:
        return {};
    }
}

/// Returns the icon of a row, or an empty one of its size while it has not been loaded.
QIcon ApplicationList::iconOf(int row) const {
    const Row& wanted = m_rows[static_cast<std::size_t>(row)];
    if (!wanted.isIconWanted) {
        wanted.isIconWanted = true;
        m_wanted.push_back(row);
        m_loading.start(0);
    }
    return wanted.loadedIcon;
}

void ApplicationList::loadWantedIcon() {
    if (m_wanted.empty()) {
        m_loading.stop();
        return;
    }
    const int number = m_wanted.back();
    m_wanted.pop_back();
    const Row& row = m_rows[static_cast<std::size_t>(number)];
    row.loadedIcon = QIcon(m_loadIcon(row.icon, row.name));
    emit dataChanged(index(number), index(number), {Qt::DecorationRole});
}

QString ApplicationList::folded(const QString& text) {
    QString folded = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    folded.removeIf([](QChar character) { return character.category() == QChar::Mark_NonSpacing; });
    return folded;
}

FoundApplications::FoundApplications(ApplicationList& all) {
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    setSourceModel(&all);
    sort(0);
}

void FoundApplications::search(const QString& text) {
    m_words = ApplicationList::folded(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    invalidateFilter();
}

bool FoundApplications::filterAcceptsRow(int row, const QModelIndex& parent) const {
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    const QString text = index.data(ApplicationList::SearchText).toString();
    return std::ranges::all_of(m_words, [&text](const QString& word) { return text.contains(word); });
}

bool FoundApplications::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    const bool isRunning = left.data(ApplicationList::IsRunning).toBool();
    if (isRunning != right.data(ApplicationList::IsRunning).toBool())
        return isRunning;
    const int order = m_collator.compare(left.data().toString(), right.data().toString());
    if (order != 0)
        return order < 0;
    return left.data(ApplicationList::Identifier).toString() <
           right.data(ApplicationList::Identifier).toString();
}

} // namespace tessarel::qt
