// SPDX-License-Identifier: MIT

#pragma once

#include <QComboBox>
#include <QRect>
#include <QString>
#include <QVariant>

#include <functional>

namespace tessarel {

/// A button that shows the chosen one of several titles and opens a list of them.
///
/// The user cannot choose by accident: the mouse wheel does not choose, and keys only open the list, where
/// Return chooses. Titles are plain text on one line; long ones end in an ellipsis.
class PopUpButton : public QComboBox {
public:
    /// Calls `action` when the user chooses a title, even if it is the one that is shown already, but not
    /// when the program chooses one.
    PopUpButton(QWidget& parent, const QRect& frame, std::function<void()> action);

    /// Appends a title. While it is chosen, `currentData()` returns `value`.
    void append(const QString& title, const QVariant& value);
    void appendSeparator();

    /// Chooses the first title that was appended with `value`. Does nothing if there is none.
    void select(const QVariant& value);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QString shownText() const;
};

} // namespace tessarel
