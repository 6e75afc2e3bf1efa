// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;

namespace tessarel {

/// A row of labelled segments, one of which is selected. Arrow keys select the neighbouring segment.
class SegmentedControl : public QWidget {
public:
    /// Divides `frame` equally among the segments; `labels` must not be empty. Calls `action` when the user
    /// clicks a segment or selects it with the keyboard, but not when the program selects one.
    SegmentedControl(QWidget& parent, const QStringList& labels, const QRect& frame,
                     const std::function<void()>& action);

    /// Returns the position of the selected segment, initially 0.
    [[nodiscard]] int selectedSegment() const;
    /// Selects the segment at a position. Throws `std::out_of_range` if there is none.
    void setSelectedSegment(int segment);

private:
    std::vector<QAbstractButton*> m_segments; ///< children
};

} // namespace tessarel
