// SPDX-License-Identifier: MIT

#include "settings_ui/kit/kit.h"

#include "settings_ui/settings_ui_test.h"

#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPalette>
#include <QPixmap>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace tessarel {
namespace {

const QRect kFrame(16, 14, 200, 20);

class KitTest : public SettingsUiTest {
protected:
    FlippedView view;
};

std::string text(double value) {
    return fmtNum(value).toStdString();
}

TEST(FmtNumTest, WholeNumbersHaveNoDecimals) {
    EXPECT_EQ(text(0), "0");
    EXPECT_EQ(text(8), "8");
    EXPECT_EQ(text(100), "100");
}

TEST(FmtNumTest, RoundsToTwoDecimals) {
    EXPECT_EQ(text(7.999), "8");
    EXPECT_EQ(text(33.333333), "33.33");
    EXPECT_EQ(text(66.666667), "66.67");
}

TEST(FmtNumTest, AHalfIsRoundedAwayFromZero) {
    EXPECT_EQ(text(0.125), "0.13");
    EXPECT_EQ(text(-0.125), "-0.13");
    EXPECT_EQ(text(2.345), "2.35");
}

TEST(FmtNumTest, HasNoTrailingZeros) {
    EXPECT_EQ(text(12.5), "12.5");
    EXPECT_EQ(text(-1.5), "-1.5");
    EXPECT_EQ(text(12.50001), "12.5");
}

TEST(FmtNumTest, AZeroHasNoSign) {
    EXPECT_EQ(text(-0.0), "0");
    EXPECT_EQ(text(-0.004), "0");
    EXPECT_EQ(text(-0.005), "-0.01");
}

TEST(FmtNumTest, ShowsSixSignificantDigits) {
    EXPECT_EQ(text(1234.56), "1234.56");
    EXPECT_EQ(text(12345.67), "12345.7");
    EXPECT_EQ(text(1234567), "1.23457e+06");
}

TEST(FmtNumTest, FormatsInfinityAndNaN) {
    EXPECT_EQ(text(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST_F(KitTest, ALabelIsOneLineInThirteenPixelsByDefault) {
    const QLabel& label = *makeLabel(view, "Gap between windows", kFrame);

    EXPECT_EQ(label.parentWidget(), &view);
    EXPECT_EQ(label.text(), "Gap between windows");
    EXPECT_EQ(label.geometry(), kFrame);
    EXPECT_EQ(label.font().pixelSize(), 13);
    EXPECT_EQ(label.font().weight(), QFont::Normal);
    EXPECT_EQ(label.alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    EXPECT_FALSE(label.wordWrap());
}

TEST_F(KitTest, AHeadingIsBoldAndHasTheRequestedSize) {
    const QLabel& heading = *makeLabel(view, "Spacing", kFrame, {.bold = true, .size = 14});

    EXPECT_EQ(heading.font().pixelSize(), 14);
    EXPECT_EQ(heading.font().weight(), QFont::Bold);
}

TEST_F(KitTest, AWrappingLabelHasTwelvePixelsAndIsAlignedToTheTop) {
    const QLabel& note = *makeWrap(view, "Edges give halves, corners give quarters.", {0, 0, 120, 60});

    EXPECT_TRUE(note.wordWrap());
    EXPECT_EQ(note.font().pixelSize(), 12);
    EXPECT_EQ(note.font().weight(), QFont::Normal);
    EXPECT_EQ(note.alignment(), Qt::AlignLeft | Qt::AlignTop);
    EXPECT_EQ(note.foregroundRole(), QPalette::WindowText);
    EXPECT_EQ(note.text(), "Edges give halves, corners give quarters.");
}

TEST_F(KitTest, NotesOfOnePageShareTheSizeInWhichAllOfThemFit) {
    QLabel* const wide = makeWrap(view, "A note", {0, 0, 300, 40}, {.size = 13});
    QLabel* const narrow = makeWrap(view, "Incomprehensibility", {0, 40, 10, 40}, {.size = 13});
    QLabel* const heading = makeWrap(view, "A heading", {0, 80, 300, 40}, {.size = 20});
    const int smallest = narrow->font().pixelSize();
    ASSERT_LT(smallest, 13);

    unifyNotes(view);

    EXPECT_EQ(wide->font().pixelSize(), smallest);
    EXPECT_EQ(narrow->font().pixelSize(), smallest);
    EXPECT_EQ(heading->font().pixelSize(), 20) << "of another size";
    setFittedText(*wide, "Another note");
    EXPECT_EQ(wide->font().pixelSize(), smallest);
}

TEST_F(KitTest, LabelsShowTheirTextLiterally) {
    EXPECT_EQ(makeLabel(view, "<b>Work</b>", kFrame)->textFormat(), Qt::PlainText);
    EXPECT_EQ(makeWrap(view, "<b>Work</b>", kFrame)->textFormat(), Qt::PlainText);
}

TEST_F(KitTest, SecondaryLabelsFollowThePalette) {
    const QLabel& plain = *makeLabel(view, "8 px", kFrame);
    const QLabel& secondary = *makeLabel(view, "8 px", kFrame, {.secondary = true});
    QPalette palette;
    palette.setColor(QPalette::WindowText, Qt::red);
    palette.setColor(QPalette::PlaceholderText, Qt::green);

    view.setPalette(palette);

    EXPECT_EQ(plain.palette().color(plain.foregroundRole()), labelColor(palette));
    EXPECT_EQ(secondary.palette().color(secondary.foregroundRole()), secondaryLabelColor(palette));
    EXPECT_NE(labelColor(palette), secondaryLabelColor(palette));
}

TEST_F(KitTest, AButtonCallsItsAction) {
    int calls = 0;
    QPushButton& button = *makeButton(view, "Website", {0, 0, 110, 28}, [&] { ++calls; });

    QTest::mouseClick(&button, Qt::LeftButton);

    EXPECT_EQ(calls, 1);
    EXPECT_EQ(button.text(), "Website");
    EXPECT_EQ(button.geometry(), QRect(0, 0, 110, 28));
}

TEST_F(KitTest, AButtonWithoutAnActionDoesNothing) {
    QTest::mouseClick(makeButton(view, "Website", {0, 0, 110, 28}, nullptr), Qt::LeftButton);
}

TEST_F(KitTest, AButtonShowsAnAmpersandLiterally) {
    const QPushButton& button = *makeButton(view, "Save & close", {0, 0, 200, 28}, nullptr);

    EXPECT_EQ(button.text(), "Save && close");
    EXPECT_EQ(fullText(button), "Save & close");
    EXPECT_TRUE(button.shortcut().isEmpty());
}

TEST_F(KitTest, ACheckBoxReportsChangesByTheUserOnly) {
    std::vector<bool> states;
    QCheckBox& box = *makeCheckBox(view, "Remember", kFrame, [&](bool on) { states.push_back(on); });

    box.setChecked(true);
    QTest::mouseClick(&box, Qt::LeftButton, {}, {5, 10});
    QTest::mouseClick(&box, Qt::LeftButton, {}, {5, 10});

    EXPECT_EQ(states, (std::vector<bool>{false, true}));
}

TEST(FmtNumTest, ANumberThatRoundsToZeroHasNoDecimals) {
    EXPECT_EQ(text(0.004), "0");
    EXPECT_EQ(text(0.005), "0.01");
}

TEST_F(KitTest, AControlIsNamedAfterItsLabel) {
    QLabel& label = *makeLabel(view, "Gap & margin", kFrame);
    QWidget control(&view);

    nameAfter(label, control);

    EXPECT_EQ(label.buddy(), &control);
    EXPECT_EQ(control.accessibleName(), "Gap & margin");
}

TEST_F(KitTest, TheNamedColoursComeFromThePalette) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, QColor(1, 0, 0));
    palette.setColor(QPalette::PlaceholderText, QColor(2, 0, 0));
    palette.setColor(QPalette::Mid, QColor(3, 0, 0));
    palette.setColor(QPalette::Base, QColor(4, 0, 0));
    palette.setColor(QPalette::Highlight, QColor(5, 0, 0));

    EXPECT_EQ(labelColor(palette), QColor(1, 0, 0));
    EXPECT_EQ(secondaryLabelColor(palette), QColor(2, 0, 0));
    EXPECT_EQ(separatorColor(palette), QColor(3, 0, 0));
    EXPECT_EQ(controlBackgroundColor(palette), QColor(4, 0, 0));
    EXPECT_EQ(controlAccentColor(palette), QColor(5, 0, 0));
}

TEST_F(KitTest, AScrollAreaLiesInsideItsBorder) {
    QListWidget list(&view);

    setBezeled(list, {10, 20, 100, 50});

    EXPECT_EQ(list.geometry(), QRect(12, 22, 96, 46));
    EXPECT_EQ(list.frameShape(), QFrame::NoFrame);
    const QImage picture = view.grab().toImage();
    for (const QPoint edge : {QPoint(10, 45), QPoint(109, 45), QPoint(60, 20), QPoint(60, 69)})
        EXPECT_EQ(picture.pixel(edge), separatorColor(view.palette()).rgb());
    for (const QPoint inside : {QPoint(11, 45), QPoint(108, 45), QPoint(60, 21), QPoint(60, 68)})
        EXPECT_EQ(picture.pixel(inside), controlBackgroundColor(view.palette()).rgb());
    for (const QPoint outside : {QPoint(9, 45), QPoint(110, 45), QPoint(60, 19), QPoint(60, 70)})
        EXPECT_NE(picture.pixel(outside), separatorColor(view.palette()).rgb());
}

TEST_F(KitTest, TheBorderOfAScrollAreaBecomesARingWhenTheUserMovesTheFocusThere) {
    QPushButton before(&view);
    QListWidget list(&view);
    setBezeled(list, {10, 20, 100, 50});
    view.resize(200, 100);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    list.setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(view.grab().toImage().pixel(10, 45), separatorColor(view.palette()).rgb());

    before.setFocus();
    QTest::keyClick(&before, Qt::Key_Tab);

    ASSERT_TRUE(list.hasFocus());
    for (const int x : {9, 10, 109, 110})
        EXPECT_EQ(view.grab().toImage().pixel(x, 45), controlAccentColor(view.palette()).rgb()) << x;
}

TEST_F(KitTest, AMessageIsShownInFrontWithOneButton) {
    int activations = 0;
    desktop.alerts().whileShown = [&] { activations = desktop.ownApplication().activations; };

    showMessage(ports, "Name in use", "Choose another one.");

    EXPECT_EQ(activations, 1);
    EXPECT_EQ(desktop.alerts().shown, (std::vector<Alert>{{"Name in use", "Choose another one.", {"OK"}}}));
}

} // namespace
} // namespace tessarel
