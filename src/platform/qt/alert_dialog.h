#pragma once

#include "ports/alerts_port.h"

#include <QDialog>
#include <QList>
#include <QString>

#include <cstddef>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace tessarel::qt {

/// The window of an alert: its message, what informs about it, its buttons from left to right.
///
/// However long the texts are, the dialog stays within its screen with all its buttons: the message ends in
/// an ellipsis, the rest scrolls. Texts are plain.
class AlertDialog : public QDialog {
public:
    explicit AlertDialog(const Alert& alert);

    /// Adds a line to type into below the texts, with the keyboard. Return presses the first button.
    QLineEdit& addField();

    /// Shows the dialog until it is closed: the position of the button, or of the one that closing it in
    /// another way counts as. `shown` is called with it before its loop begins.
    [[nodiscard]] std::size_t run(const std::function<void(QWidget&)>& shown);

    [[nodiscard]] const QLabel& message() const { return *m_message; }
    [[nodiscard]] const QLabel& information() const { return *m_information; }
    [[nodiscard]] const QList<QPushButton*>& buttons() const { return m_buttons; }

private:
    void layOut();
    void addButtons(const Alert& alert);
    [[nodiscard]] QWidget* scrolled(QLabel& label) const;

    QLabel* m_message;
    QLabel* m_information;
    QVBoxLayout* m_texts;
    QList<QPushButton*> m_buttons;
    std::size_t m_dismissedAs;
};

} // namespace tessarel::qt
