// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_chooser.h"

#include "platform/qt_xdg/application_row.h"
#include "platform/qt_xdg/entry_icon.h"
#include "qt_values/text.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPalette>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace tessarel::qt {

namespace {

// In device-independent pixels.
constexpr QSize kSize(440, 480);
constexpr int kMargin = 16;
constexpr int kSpacing = 10;

/// How many files and folders are looked at per round of the event loop: a few milliseconds.
constexpr std::size_t kLooksAtATime = 40;

bool movesInList(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

/// Returns whether the key types or deletes text, in contrast to shortcuts.
bool editsText(const QKeyEvent& key) {
    const bool isShortcut =
        (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != Qt::NoModifier;
    const bool isPrintable = !key.text().isEmpty() && key.text().at(0).isPrint();
    return !isShortcut && (isPrintable || key.key() == Qt::Key_Backspace);
}

} // namespace

ApplicationChooser::ApplicationChooser(xdg::OfferedApplications applications, Options options)
    : m_applications(std::move(applications)), m_options(std::move(options)),
      m_all(m_options.running,
            [this](const QString& icon, const QString& name) {
                return entryIcon(icon, name,
                                 {.size = ApplicationRow::kIconSize,
                                  .scale = devicePixelRatioF(),
                                  .letterColor = palette().color(QPalette::Text)});
            }),
      m_label(new QLabel(QStringLiteral("Search:"), this)), m_field(new QLineEdit(this)),
      m_list(new QListView(this)), m_nothing(new QLabel(QStringLiteral("No application found"), m_list)),
      m_confirm(new QPushButton(this)) {
    setModal(true);
    setWindowTitle(QStringLiteral("Choose an application"));
    build(withoutMnemonics(toQString(m_options.prompt)));
    connect(&m_reading, &QTimer::timeout, this, [this] { readMore(); });
    m_reading.start(0);
    readMore();
}

void ApplicationChooser::build(const QString& prompt) {
    m_label->setBuddy(m_field);
    m_field->installEventFilter(this);
    connect(m_field, &QLineEdit::textChanged, this, [this](const QString& text) { search(text); });

    m_list->setModel(&m_found);
    m_list->setItemDelegate(new ApplicationRow(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QListView::NoEditTriggers);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setAccessibleName(QStringLiteral("Applications"));
    m_list->installEventFilter(this);
    connect(m_list, &QListView::doubleClicked, this, [this] { confirm(); });
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { showState(); });

    auto* const other = new QPushButton(QStringLiteral("Other..."), this);
    connect(other, &QPushButton::clicked, this, [this] { chooseOther(); });
    m_confirm->setText(prompt);
    m_confirm->setDefault(true);
    connect(m_confirm, &QPushButton::clicked, this, [this] { confirm(); });
    auto* const cancel = new QPushButton(QStringLiteral("Cancel"), this);
    connect(cancel, &QPushButton::clicked, this, [this] { reject(); });
    layOut(other, cancel);
    m_field->setFocus();
}

void ApplicationChooser::layOut(QPushButton* other, QPushButton* cancel) {
    auto* const search = new QHBoxLayout;
    search->addWidget(m_label);
    search->addWidget(m_field);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(other);
    buttons->addStretch();
    buttons->addWidget(m_confirm);
    buttons->addWidget(cancel);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kSpacing);
    column->addLayout(search);
    column->addWidget(m_list);
    column->addLayout(buttons);
    auto* const overlay = new QVBoxLayout(m_list->viewport());
    overlay->addWidget(m_nothing, 0, Qt::AlignCenter);
    setTabOrder(m_list, other);
    setTabOrder(other, m_confirm);
    setTabOrder(m_confirm, cancel);
    resize(kSize);
}

void ApplicationChooser::readMore() {
    m_all.append(m_applications.read(kLooksAtATime));
    if (m_applications.isAtEnd())
        m_reading.stop();
    selectFoundFirst();
    showState();
}

void ApplicationChooser::search(const QString& text) {
    m_list->clearSelection();
    m_found.search(text);
    selectFoundFirst();
    showState();
}

/// Selects what the user has most probably searched for. A selection stays as it is, because the user has
/// seen it and may be about to confirm it.
void ApplicationChooser::selectFoundFirst() {
    if (!m_field->text().trimmed().isEmpty() && !selected().isValid())
        selectFirst();
}

void ApplicationChooser::selectFirst() {
    m_list->setCurrentIndex(m_found.index(0, 0)); // none if nothing was found
    m_list->scrollToTop();
}

/// Shows what is selected and whether anything was found. The field describes it for screen readers, which
/// read the field while the user types.
void ApplicationChooser::showState() {
    const bool isEmpty = m_found.rowCount() == 0 && m_applications.isAtEnd();
    m_nothing->setVisible(isEmpty);
    m_confirm->setEnabled(selected().isValid());
    m_field->setAccessibleDescription(isEmpty ? m_nothing->text() : selected().data().toString());
}

bool ApplicationChooser::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && watched == m_list && !selected().isValid())
        selectFirst();
    if (event->type() == QEvent::KeyPress && watched == m_field)
        return keyInField(static_cast<QKeyEvent&>(*event));
    if (event->type() == QEvent::KeyPress && watched == m_list)
        return keyInList(static_cast<QKeyEvent&>(*event));
    return QDialog::eventFilter(watched, event);
}

/// Moves the focus to the list, where screen readers announce each application that the arrow keys reach.
/// Returns whether the field does not get the key.
bool ApplicationChooser::keyInField(QKeyEvent& key) {
    if (!movesInList(key.key()))
        return false;
    const bool wasSelected = selected().isValid();
    m_list->setFocus(); // selects the first application if there was no selection
    if (wasSelected)
        QCoreApplication::sendEvent(m_list, &key);
    return true;
}

/// Returns whether the list does not get the key. It would jump to the next row that begins with the letter.
bool ApplicationChooser::keyInList(QKeyEvent& key) {
    if (!editsText(key))
        return false;
    m_field->setFocus();
    QCoreApplication::sendEvent(m_field, &key);
    return true;
}

QModelIndex ApplicationChooser::selected() const {
    const QModelIndexList rows = m_list->selectionModel()->selectedIndexes();
    return rows.isEmpty() ? QModelIndex() : rows.first();
}

void ApplicationChooser::confirm() {
    if (!selected().isValid())
        return;
    m_chosen = selected().data(ApplicationList::Identifier).toString().toStdString();
    accept();
}

void ApplicationChooser::chooseOther() {
    m_chosen = m_options.chooseOther();
    if (m_chosen)
        accept();
}

std::optional<std::string> ApplicationChooser::run() {
    return exec() == Accepted ? m_chosen : std::nullopt;
}

} // namespace tessarel::qt
