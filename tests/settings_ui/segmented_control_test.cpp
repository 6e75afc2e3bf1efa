#include "settings_ui/segmented_control.h"

#include "platform/qt/offscreen_test.h"
#include "settings_ui/kit.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QImage>
#include <QTest>

namespace tessarel {
namespace {

class SegmentedControlTest : public qt::OffscreenTest {
protected:
    SegmentedControlTest() {
        window.resize(300, 60);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QAbstractButton& segment(std::size_t i) { return *control.segments().at(i); }
    /// The colour beside the label of a segment.
    QColor fillOf(std::size_t i) { return segment(i).grab().toImage().pixelColor(4, 13); }

    QWidget window;
    int choices = 0;
    SegmentedControl control{
        window, {"1", "2", "3", "4", "5", "6", "7", "8", "9"}, {10, 10, 230, 26}, [this] { ++choices; }};
};

TEST_F(SegmentedControlTest, NineSegmentsFillTheFrameWithoutAGap) {
    ASSERT_EQ(control.segments().size(), 9U);
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
    EXPECT_EQ(choices, 0) << "the program's own doing";
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

TEST_F(SegmentedControlTest, ScreenReadersMeetOneChoiceOfSeveral) {
    const QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&segment(1));
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::RadioButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), "2");
}

} // namespace
} // namespace tessarel
