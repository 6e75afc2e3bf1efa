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

/// The window of an alert: a bold message, an informative text, and a row of buttons of which the first is
/// the default.
///
/// The dialog fits its screen however long the texts are: a long message ends in an ellipsis, and a tall
/// informative text scrolls. All texts are shown literally, without markup or mnemonics.
class AlertDialog : public QDialog {
public:
    /// Builds the dialog without showing it. An alert without buttons gets one titled "OK".
    explicit AlertDialog(const Alert& alert);

    /// Adds a one-line text field below the texts, gives it the keyboard focus and returns it. The dialog
    /// owns the field. Return presses the first button.
    QLineEdit& addField();

    /// Shows the dialog and runs a nested event loop until it is closed. `shown` is called with the visible
    /// dialog before the loop starts. Returns the position of the clicked button, from 0. If the dialog is
    /// closed in another way, returns `Alert::dismissedAs` or, without it, the position of the last button.
    [[nodiscard]] std::size_t run(const std::function<void(QWidget&)>& shown);

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
