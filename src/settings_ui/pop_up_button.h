#pragma once

#include <QComboBox>
#include <QRect>
#include <QString>
#include <QVariant>

#include <functional>

namespace tessarel {

/// A button that shows the chosen one of several titles and opens the list of them.
///
/// Nothing is chosen by accident: the wheel does not choose, and keys open the list, where Return chooses.
/// Titles are plain text, on one line; long ones end in an ellipsis.
class PopUpButton : public QComboBox {
public:
    /// `action` is called when the user chooses a title, also the one that is shown, not when the program
    /// does.
    PopUpButton(QWidget& parent, const QRect& frame, std::function<void()> action);

    /// `value` is what choosing the title stands for: `currentData()` while it is shown.
    void append(const QString& title, const QVariant& value);
    void appendSeparator();

    /// Shows the first title that stands for `value`; keeps the present one when there is none.
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
