// SPDX-License-Identifier: MIT

#include "settings_ui/kit/segmented_control.h"

#include "settings_ui/kit/kit.h"
#include "settings_ui/recorded_painting.h"
#include "support/offscreen_test.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QImage>
#include <QPainterPath>
#include <QTest>

#include <vector>

namespace tessarel {
namespace {

using What = Painted::What;

class SegmentedControlTest : public qt::OffscreenTest {
protected:
    SegmentedControlTest() {
        window.resize(300, 60);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QAbstractButton& segment(std::size_t i) {
        return *control.findChildren<QAbstractButton*>().at(static_cast<qsizetype>(i));
    }
    /// Returns the fill colour of a segment, sampled beside its label.
    QColor fillOf(std::size_t i) { return segment(i).grab().toImage().pixelColor(4, 13); }

    std::vector<Painted> painted(std::size_t i, Painted::What what) {
        painting.painted.clear();
        segment(i).render(&painting, {}, {}, {});
        return painting.all(what);
    }
    static QPainterPath rounded(const QRectF& frame, double radius) {
        QPainterPath path;
        path.addRoundedRect(frame, radius, radius);
        return path;
    }

    RecordedPainting painting;
    QWidget window;
    int choices = 0;
    SegmentedControl control{
        window, {"1", "2", "3", "4", "5", "6", "7", "8", "9"}, {10, 10, 230, 26}, [this] { ++choices; }};
};

TEST_F(SegmentedControlTest, NineSegmentsFillTheFrameWithoutAGap) {
    ASSERT_EQ(control.findChildren<QAbstractButton*>().size(), 9);
    int left = 0;
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(segment(i).text(), QString::number(i + 1));
        EXPECT_EQ(segment(i).x(), left);
        EXPECT_EQ(segment(i).height(), 26);
        EXPECT_NEAR(segment(i).width(), 25.5, 0.5);
        left += segment(i).width();
    }
    EXPECT_EQ(left, 230);
}

TEST_F(SegmentedControlTest, OneSegmentIsSelectedAtATime) {
    EXPECT_EQ(control.selectedSegment(), 0);

    control.setSelectedSegment(5);

    EXPECT_EQ(control.selectedSegment(), 5);
    EXPECT_FALSE(segment(0).isChecked());
    EXPECT_EQ(choices, 0) << "a selection by the program is no choice";
}

TEST_F(SegmentedControlTest, AClickAnywhereInASegmentSelectsIt) {
    QTest::mouseClick(&segment(3), Qt::LeftButton, {}, QPoint(1, 1));
    EXPECT_EQ(control.selectedSegment(), 3);
    QTest::mouseClick(&segment(8), Qt::LeftButton, {}, QPoint(segment(8).width() - 1, 25));
    EXPECT_EQ(control.selectedSegment(), 8);
    EXPECT_EQ(choices, 2);
}

TEST_F(SegmentedControlTest, ArrowKeysSelectTheNeighbour) {
    segment(0).setFocus();
    QTest::keyClick(&segment(0), Qt::Key_Right);
    EXPECT_EQ(control.selectedSegment(), 1);
    QTest::keyClick(window.focusWidget(), Qt::Key_Right);
    EXPECT_EQ(control.selectedSegment(), 2);
    QTest::keyClick(window.focusWidget(), Qt::Key_Left);
    EXPECT_EQ(control.selectedSegment(), 1);
    EXPECT_EQ(choices, 3);
}

TEST_F(SegmentedControlTest, TheSelectedSegmentStandsOutInLightAndDark) {
    for (const bool isDark : {false, true}) {
        QPalette palette = window.palette();
        palette.setColor(QPalette::Button, isDark ? QColor(60, 60, 62) : QColor(239, 239, 239));
        palette.setColor(QPalette::ButtonText, isDark ? Qt::white : Qt::black);
        window.setPalette(palette);
        control.setSelectedSegment(4);

        EXPECT_EQ(fillOf(4), controlAccentColor(palette));
        EXPECT_EQ(fillOf(3), palette.color(QPalette::Button));
    }
}

TEST_F(SegmentedControlTest, TheSegmentsFormOneBarWithRoundEnds) {
    const int width = segment(0).width();
    const double last = segment(8).width();

    EXPECT_EQ(painted(0, What::Path)[0].path, rounded({0.5, 0.5, width - 1 + 8.0, 25}, 3.5));
    EXPECT_EQ(painted(4, What::Path)[0].path,
              rounded({0.5 - 8, 0.5, segment(4).width() - 1 + 16.0, 25}, 3.5));
    EXPECT_EQ(painted(8, What::Path)[0].path, rounded({0.5 - 8, 0.5, last - 1 + 8, 25}, 3.5));
    for (std::size_t i = 0; i < 9; ++i) {
        const Painted bar = painted(i, What::Path)[0];
        EXPECT_EQ(bar.stroke, separatorColor(window.palette()));
        EXPECT_EQ(bar.strokeWidth, 1);
        EXPECT_TRUE(bar.smooth);
    }
}

TEST_F(SegmentedControlTest, ALineSeparatesEachSegmentFromTheNext) {
    for (std::size_t i = 0; i < 8; ++i) {
        const std::vector<Painted> lines = painted(i, What::Line);
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].bounds,
                  QRectF(QPointF(segment(i).width() - 0.5, 1), QPointF(segment(i).width() - 0.5, 25)));
        EXPECT_EQ(lines[0].stroke, separatorColor(window.palette()));
    }
    EXPECT_TRUE(painted(8, What::Line).empty());
}

TEST_F(SegmentedControlTest, LabelsHaveThirteenPixelsAndTheTextColourOfTheirBackground) {
    QPalette palette = window.palette();
    palette.setColor(QPalette::ButtonText, QColor(1, 2, 3));
    palette.setColor(QPalette::HighlightedText, QColor(4, 5, 6));
    window.setPalette(palette);

    const Painted selected = painted(0, What::Text).at(0);
    const Painted other = painted(1, What::Text).at(0);

    EXPECT_EQ(selected.text, "1");
    EXPECT_EQ(selected.stroke, QColor(4, 5, 6));
    EXPECT_EQ(other.text, "2");
    EXPECT_EQ(other.stroke, QColor(1, 2, 3));
    EXPECT_EQ(other.fontSize, 13);
    EXPECT_NEAR(other.bounds.x(), segment(1).width() / 2.0, 6);
}

TEST_F(SegmentedControlTest, APressedSegmentIsDarkerUntilItIsReleased) {
    QTest::mousePress(&segment(2), Qt::LeftButton);
    EXPECT_EQ(painted(2, What::Path)[0].fill, window.palette().color(QPalette::Button).darker(115));

    QTest::mouseRelease(&segment(2), Qt::LeftButton);
    EXPECT_EQ(painted(2, What::Path)[0].fill, controlAccentColor(window.palette()));
}

TEST_F(SegmentedControlTest, KeyboardFocusIsARingOfTwoPointsWithTheSegmentSmallerInsideOfIt) {
    QTest::mouseClick(&segment(0), Qt::LeftButton);
    EXPECT_EQ(painted(0, What::Path).size(), 1U) << "after a click";

    QTest::keyClick(&segment(0), Qt::Key_Right);
    QTest::keyClick(&segment(1), Qt::Key_Left);
    ASSERT_TRUE(segment(0).hasFocus());
    const std::vector<Painted> shapes = painted(0, What::Path);

    ASSERT_EQ(shapes.size(), 3U);
    EXPECT_EQ(shapes[1].path, rounded({1, 1, segment(0).width() - 2.0, 24}, 3));
    EXPECT_EQ(shapes[1].stroke, controlAccentColor(window.palette()));
    EXPECT_EQ(shapes[1].strokeWidth, 2);
    EXPECT_FALSE(shapes[1].fill.isValid());
    EXPECT_EQ(shapes[2].path, rounded({4, 4, segment(0).width() - 8.0, 18}, 2));
    EXPECT_EQ(shapes[2].fill, controlAccentColor(window.palette()));
}

TEST_F(SegmentedControlTest, ASegmentIsAccessibleAsARadioButton) {
    const QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&segment(1));
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::RadioButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), "2");
}

} // namespace
} // namespace tessarel
