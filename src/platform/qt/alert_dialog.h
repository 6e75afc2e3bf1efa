// SPDX-License-Identifier: MIT

#pragma once

#include "ports/alerts_port.h"

#include <QDialog>
#include <QList>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>

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
    /// Builds the dialog without showing it. `window` is the window that the alert is about, if any. An alert
    /// without buttons gets one titled "OK".
    explicit AlertDialog(const Alert& alert, QWidget* window = nullptr);

    /// Adds a one-line text field below the texts, gives it the keyboard focus and returns it. The dialog
    /// owns the field. Return presses the first button.
    QLineEdit& addField();

    /// Shows the dialog in front, as a window beside the program's others, and returns. `shown` is called
    /// with the visible dialog.
    void present(const std::function<void(QWidget&)>& shown);

    /// Returns the position of the button, from 0, that finished the dialog with `result`; `std::nullopt` if
    /// it was closed in another way.
    [[nodiscard]] static std::optional<std::size_t> buttonOf(int result);

    /// Shows the dialog and runs a nested event loop until it is closed; its parent accepts no input
    /// meanwhile. `shown` is called with the visible dialog before the loop starts. Returns the position of
    /// the clicked button, from 0; `std::nullopt` if the dialog was closed in another way.
    [[nodiscard]] std::optional<std::size_t> run(const std::function<void(QWidget&)>& shown);

private:
    void bringUp(const std::function<void(QWidget&)>& shown);
    void layOut();
    void addButtons(const Alert& alert);
    [[nodiscard]] QWidget* scrolled(QLabel& label) const;

    QLabel* m_message;
    QLabel* m_information;
    QVBoxLayout* m_texts;
    QList<QPushButton*> m_buttons;
};

} // namespace tessarel::qt
