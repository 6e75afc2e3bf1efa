#include "platform/qt/qt_alerts.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFont>
#include <QLabel>
#include <QList>
#include <QMessageBox>
#include <QPushButton>
#include <QString>

#include <string>

namespace tessarel::qt {

namespace {

QString plainText(const std::string& text) {
    return QString::fromStdString(text);
}

/// A single '&' would underline the next letter instead of showing itself.
QString buttonText(const std::string& text) {
    return plainText(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

void addButtons(QMessageBox& box, const Alert& alert) {
    for (const std::string& text : alert.buttons)
        box.addButton(buttonText(text), QMessageBox::ActionRole);
    if (alert.buttons.empty())
        box.addButton(QMessageBox::Ok);
    const QList<QAbstractButton*> buttons = box.buttons();
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
    box.setEscapeButton(buttons.last());
}

/// The message stands out from what informs about it, as a heading does.
void emphasizeMessage(QMessageBox& box) {
    auto* const message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (!message)
        return;
    QFont font = message->font();
    font.setBold(true);
    message->setFont(font);
}

} // namespace

std::size_t QtAlerts::runModal(const Alert& alert) {
    QMessageBox box;
    box.setWindowTitle(QCoreApplication::applicationName());
    box.setText(plainText(alert.messageText));
    box.setInformativeText(plainText(alert.informativeText));
    // The box's own text format leaves out the informative text.
    for (QLabel* const label : box.findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    emphasizeMessage(box);
    addButtons(box, alert);
    const QList<QAbstractButton*> buttons = box.buttons();
    box.show();
    box.raise();
    box.activateWindow();
    box.exec();
    const auto clicked = buttons.indexOf(box.clickedButton());
    return static_cast<std::size_t>(clicked >= 0 ? clicked : buttons.size() - 1); // the program is ending
}

} // namespace tessarel::qt
