// SPDX-License-Identifier: MIT

#include "settings_ui/kit/pop_up_button.h"

#include "support/offscreen_test.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QImage>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <string>

namespace tessarel {
namespace {

class PopUpButtonTest : public qt::OffscreenTest {
protected:
    PopUpButtonTest() {
        QApplication::setDoubleClickInterval(0); // the open list ignores clicks for this long
        popUp.append("Off", 0);
        popUp.appendSeparator();
        popUp.append("Halves", 7);
        popUp.append("Thirds", 8);
        window.resize(300, 200);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void sendWheel() {
        QWheelEvent wheel({5, 5}, popUp.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&popUp, &wheel);
    }

    QWidget window;
    int choices = 0;
    PopUpButton popUp{window, {10, 10, 250, 26}, [this] { ++choices; }};
};

TEST_F(PopUpButtonTest, ATitleIsChosenWithTheMouse) {
    QTest::mouseClick(&popUp, Qt::LeftButton);
    ASSERT_TRUE(popUp.view()->isVisible());
    QApplication::processEvents();
    const QRect row = popUp.view()->visualRect(popUp.model()->index(3, 0));
    QTest::mouseMove(popUp.view()->viewport(), row.center());
    QTest::mouseClick(popUp.view()->viewport(), Qt::LeftButton, {}, row.center());

    EXPECT_EQ(popUp.currentData(), 8);
    EXPECT_EQ(choices, 1);
}

TEST_F(PopUpButtonTest, ATitleIsChosenWithTheKeyboard) {
    QTest::keyClick(&popUp, Qt::Key_Down);
    ASSERT_TRUE(popUp.view()->isVisible());
    EXPECT_EQ(choices, 0) << "the first key only opens the list";
    QTest::keyClick(popUp.view(), Qt::Key_Down);
    EXPECT_EQ(choices, 0);
    QTest::keyClick(popUp.view(), Qt::Key_Return);

    EXPECT_EQ(popUp.currentData(), 7) << "past the separator";
    EXPECT_EQ(choices, 1);
}

TEST_F(PopUpButtonTest, TheArrowsSpaceAndF4OpenTheList) {
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Space, Qt::Key_F4}) {
        QTest::keyClick(&popUp, key);
        EXPECT_TRUE(popUp.view()->isVisible()) << key;
        popUp.hidePopup();
    }
    EXPECT_EQ(choices, 0);
}

TEST_F(PopUpButtonTest, EscapeChoosesNothing) {
    QTest::keyClick(&popUp, Qt::Key_Space);
    QTest::keyClick(popUp.view(), Qt::Key_Down);
    QTest::keyClick(popUp.view(), Qt::Key_Escape);

    EXPECT_FALSE(popUp.view()->isVisible());
    EXPECT_EQ(popUp.currentData(), 0);
    EXPECT_EQ(choices, 0);
}

TEST_F(PopUpButtonTest, TheWheelAndOtherKeysDoNotChoose) {
    sendWheel();
    QTest::keyClick(&popUp, Qt::Key_T);
    QTest::keyClick(&popUp, Qt::Key_PageDown);
    QTest::keyClick(&popUp, Qt::Key_End);

    EXPECT_EQ(popUp.currentData(), 0);
    EXPECT_EQ(choices, 0);
}

TEST_F(PopUpButtonTest, SelectReportsNoChoice) {
    popUp.select(8);
    EXPECT_EQ(popUp.currentText(), "Thirds");
    popUp.select(12345);
    EXPECT_EQ(popUp.currentText(), "Thirds") << "no title has this value";
    EXPECT_EQ(choices, 0);
}

TEST_F(PopUpButtonTest, TitlesStayOnOneLine) {
    popUp.append("one\ntwo\r\tthree", 20);

    EXPECT_EQ(popUp.itemText(popUp.findData(20)), "one two  three");
}

TEST_F(PopUpButtonTest, MarkupAndAmpersandsAreShownLiterally) {
    popUp.append("<b>Code</b> && &Mail", 20);

    EXPECT_EQ(popUp.itemText(popUp.findData(20)), "<b>Code</b> && &Mail");
}

TEST_F(PopUpButtonTest, VeryLongTitlesEndInAnEllipsis) {
    popUp.append(QString(1 << 20, 'x'), 20);

    const QString title = popUp.itemText(popUp.findData(20));
    EXPECT_TRUE(title.endsWith(QChar(0x2026)));
    EXPECT_LT(title.size(), 100);
    const QFontMetrics metrics = popUp.fontMetrics();
    EXPECT_LE(metrics.horizontalAdvance(title), 60 * metrics.averageCharWidth());
    EXPECT_GT(metrics.horizontalAdvance(title + "xx"), 60 * metrics.averageCharWidth());
    popUp.showPopup();
    EXPECT_LT(popUp.view()->window()->width(), 600);
    popUp.hidePopup();
}

TEST_F(PopUpButtonTest, ATitleWiderThanTheButtonHasATooltip) {
    const auto ask = [this] {
        QHelpEvent help(QEvent::ToolTip, {5, 5}, popUp.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&popUp, &help);
        return QToolTip::text();
    };
    EXPECT_EQ(ask(), "");

    popUp.append("Mine: Writing in the library <b>while</b> nobody is there", 20);
    popUp.select(20);
    EXPECT_TRUE(ask().contains("while")) << ask().toStdString();
    EXPECT_FALSE(ask().contains("<b>"));
}

TEST_F(PopUpButtonTest, TheChosenTitleIsPainted) {
    const QImage off = popUp.grab().toImage();

    popUp.select(7);

    EXPECT_NE(popUp.grab().toImage(), off);
}

TEST_F(PopUpButtonTest, ATitleKeepsTwoPointsFromBothEndsOfItsField) {
    popUp.append("Mine: Writing", 20);
    popUp.select(20);
    const auto hasTooltipAt = [this](int widthOfText) {
        QStyleOptionComboBox option;
        option.initFrom(&popUp);
        const QRect field =
            popUp.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &popUp);
        popUp.resize(popUp.width() - field.width() + 4 + widthOfText, popUp.height());
        QHelpEvent help(QEvent::ToolTip, {5, 5}, popUp.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&popUp, &help);
        return !QToolTip::text().isEmpty();
    };
    const int width = popUp.fontMetrics().horizontalAdvance("Mine: Writing");

    EXPECT_FALSE(hasTooltipAt(width));
    EXPECT_TRUE(hasTooltipAt(width - 1));
}

} // namespace
} // namespace tessarel
