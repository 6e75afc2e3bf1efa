// SPDX-License-Identifier: MIT

#include "platform/qt/alert_dialog.h"

#include "qt_values/text.h"

#include <QCoreApplication>
#include <QFont>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSize>
#include <QVBoxLayout>

#include <algorithm>
#include <string>
#include <vector>

namespace tessarel::qt {

namespace {

// Sizes are in Qt's device-independent pixels.
constexpr int kTextWidth = 420;
constexpr QSize kFieldSize(260, 24);
constexpr int kMargin = 20;
constexpr int kSpacing = 12;
/// Added to the width that the style gives a button.
constexpr int kButtonPadding = 16;
/// A taller informative text scrolls. Share of the screen's available height.
constexpr double kLargestShareOfScreen = 0.5;
// Lengths in UTF-16 code units. Longer texts are cut, because laying them out would delay the dialog.
constexpr qsizetype kLongestMessage = 200;
constexpr qsizetype kLongestInformation = 10'000;

/// Returns `text` if it has at most `longest` code units, otherwise its beginning with an ellipsis.
QString plainText(const std::string& text, qsizetype longest) {
    const QString whole = toQString(text);
    return whole.size() <= longest ? whole : whole.left(longest - 1) + QChar(0x2026);
}

/// Inserts zero-width spaces into words of 40 or more characters. Qt does not break words, and one that is
/// wider than its label would be cut off at the edge.
QString breakable(QString text) {
    constexpr qsizetype kLongestWord = 40;
    qsizetype word = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        word = text.at(at).isSpace() ? 0 : word + 1;
        if (word < kLongestWord)
            continue;
        text.insert(at + 1, QChar(QChar::SpecialCharacter(0x200b))); // zero-width space
        word = 0;
    }
    return text;
}

QLabel* makeText(QDialog& dialog, const QString& text) {
    auto* const label = new QLabel(&dialog);
    label->setTextFormat(Qt::PlainText); // before setText(), which would look for markup in the text
    label->setText(breakable(text));
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

} // namespace

AlertDialog::AlertDialog(const Alert& alert, QWidget* window)
    : QDialog(window), m_message(makeText(*this, plainText(alert.messageText, kLongestMessage))),
      m_information(makeText(*this, plainText(alert.informativeText, kLongestInformation))) {
    setWindowTitle(QCoreApplication::applicationName());
    QFont heading = m_message->font();
    heading.setBold(true);
    m_message->setFont(heading);
    addButtons(alert);
    layOut();
}

void AlertDialog::addButtons(const Alert& alert) {
    std::vector<std::string> titles = alert.buttons;
    if (titles.empty())
        titles.emplace_back("OK");
    for (const std::string& title : titles) {
        auto* const button = new QPushButton(withoutMnemonics(toQString(title)), this);
        button->setMinimumWidth(button->sizeHint().width() + kButtonPadding);
        m_buttons.append(button);
        // Results count from 1, because 0 is QDialog::Rejected.
        connect(button, &QPushButton::clicked, this,
                [this, result = static_cast<int>(m_buttons.size())] { done(result); });
    }
    m_buttons.first()->setDefault(true);
    m_buttons.first()->setFocus();
}

void AlertDialog::layOut() {
    auto* const row = new QHBoxLayout;
    row->addStretch();
    for (QPushButton* const button : m_buttons)
        row->addWidget(button);
    auto* const column = new QVBoxLayout(this);
    m_texts = new QVBoxLayout;
    m_texts->setSpacing(kSpacing);
    column->addLayout(m_texts);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kSpacing);
    column->setSizeConstraint(QLayout::SetFixedSize);
    m_message->setFixedWidth(kTextWidth);
    m_texts->addWidget(m_message);
    if (m_information->text().isEmpty())
        m_information->hide();
    else
        m_texts->addWidget(scrolled(*m_information));
    column->addSpacing(kSpacing);
    column->addLayout(row);
}

/// Returns a scroll area that is as tall as the text of `label`, or half the available height of the screen,
/// with a vertical scroll bar, if the text is taller.
QWidget* AlertDialog::scrolled(QLabel& label) const {
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setWidget(&label);
    const int limit = static_cast<int>(screen()->availableSize().height() * kLargestShareOfScreen);
    const int whole = label.heightForWidth(kTextWidth);
    const int bar = whole > limit ? area->verticalScrollBar()->sizeHint().width() : 0;
    area->setFixedSize(kTextWidth + bar, std::min(whole, limit));
    // The Tab key reaches the area only if there is something to scroll.
    area->setFocusPolicy(whole > limit ? Qt::StrongFocus : Qt::NoFocus);
    return area;
}

QLineEdit& AlertDialog::addField() {
    auto* const field = new QLineEdit(this);
    field->setFixedSize(kFieldSize);
    field->setAccessibleName(m_information->text());
    m_texts->addWidget(field);
    setTabOrder(field, m_buttons.first());
    field->setFocus();
    return *field;
}

void AlertDialog::present(const std::function<void(QWidget&)>& shown) {
    // As an ordinary window that only looks like a dialog to the window manager. It would keep a real one
    // without a parent above all other windows of the program.
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    setAttribute(Qt::WA_X11NetWmWindowTypeDialog);
    bringUp(shown);
}

void AlertDialog::bringUp(const std::function<void(QWidget&)>& shown) {
    show();
    raise();
    activateWindow();
    shown(*this);
}

std::optional<std::size_t> AlertDialog::buttonOf(int result) {
    return result == Rejected ? std::nullopt : std::optional(static_cast<std::size_t>(result - 1));
}

std::optional<std::size_t> AlertDialog::run(const std::function<void(QWidget&)>& shown) {
    // Not modal to the whole application, which would block the menu of the tray icon.
    setWindowModality(Qt::WindowModal);
    bringUp(shown);
    return buttonOf(exec());
}

} // namespace tessarel::qt
