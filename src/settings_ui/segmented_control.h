#pragma once

#include <QRect>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;

namespace tessarel {

/// A row of labelled segments, one of which is selected. Arrow keys select the neighbour.
class SegmentedControl : public QWidget {
public:
    /// Segments share the width of `frame`. `action` is called when the user selects another segment, not
    /// when the program does.
    SegmentedControl(QWidget& parent, const QStringList& labels, const QRect& frame,
                     const std::function<void()>& action);

    /// Position of the selected segment, the first one to begin with.
    [[nodiscard]] int selectedSegment() const;
    void setSelectedSegment(int segment);

    /// The segments from left to right.
    [[nodiscard]] const std::vector<QAbstractButton*>& segments() const { return m_segments; }

private:
    std::vector<QAbstractButton*> m_segments; ///< children
};

} // namespace tessarel
