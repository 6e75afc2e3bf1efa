// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_fields.h"

#include "model/presets.h"
#include "support/offscreen_test.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QList>
#include <QLocale>
#include <QMimeData>
#include <QString>
#include <QTest>

#include <cmath>
#include <limits>
#include <string>

namespace tessarel {
namespace {

class ZoneFieldsTest : public qt::OffscreenTest {
protected:
    ZoneFieldsTest() {
        fields.onType = [this] { zone = fields.typed(zone); };
        fields.onEnd = [this] {
            ++ends;
            fields.show(zone);
        };
        window.resize(780, 480);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        fields.show(zone);
    }

    QLineEdit& field(int index) { return *window.findChildren<QLineEdit*>().at(index); }
    QLineEdit& x() { return field(0); }
    QLineEdit& w() { return field(2); }

    void type(QLineEdit& into, const char* text) {
        QTest::mouseClick(&into, Qt::LeftButton);
        into.selectAll();
        QTest::keyClick(&into, Qt::Key_Backspace);
        QTest::keyClicks(&into, text);
    }

    QWidget window;
    ZoneFields fields{window};
    Zone zone = Presets::z(20, 30, 40, 50);
    int ends = 0;
};

TEST_F(ZoneFieldsTest, TheFieldsHaveTheirFramesNamesAndOrder) {
    const QRect frames[] = {{558, 176, 76, 24}, {676, 176, 76, 24}, {558, 210, 76, 24}, {676, 210, 76, 24}};
    const char* const names[] = {"X", "Y", "W", "H"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(field(i).geometry(), frames[i]);
        EXPECT_EQ(field(i).accessibleName(), names[i]);
    }
}

TEST_F(ZoneFieldsTest, NumbersAreShownWithoutTrailingZeros) {
    fields.show(Presets::z(100.0 / 3, 12.5, 8, 0));

    EXPECT_EQ(field(0).text(), "33.33");
    EXPECT_EQ(field(1).text(), "12.5");
    EXPECT_EQ(field(2).text(), "8");
    EXPECT_EQ(field(3).text(), "0");
}

TEST_F(ZoneFieldsTest, OnlyAnEnabledZoneCanBeEdited) {
    fields.show({false, 25, 25, 50, 50});
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(field(i).isEnabled());

    fields.show(Presets::z(25, 25, 50, 50));
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(field(i).isEnabled());
}

TEST_F(ZoneFieldsTest, ADecimalCommaIsAccepted) {
    type(x(), "12,5");

    EXPECT_EQ(zone, Presets::z(12.5, 30, 40, 50));
}

TEST_F(ZoneFieldsTest, TextThatIsNotANumberLeavesTheValue) {
    type(x(), "abc");
    EXPECT_EQ(zone.x, 20);
    type(x(), "12 %");
    EXPECT_EQ(zone.x, 12) << "the value after the first two characters";
    type(x(), "");
    EXPECT_EQ(zone.x, 12);
}

TEST_F(ZoneFieldsTest, ATooLargePositionIsClampedAndTheZoneLosesItsWidth) {
    type(x(), "150");

    EXPECT_EQ(zone, Presets::z(100, 30, 0, 50));
}

TEST_F(ZoneFieldsTest, ANegativeNumberIsClampedToZero) {
    type(x(), "-5");

    EXPECT_EQ(zone.x, 0);
}

TEST_F(ZoneFieldsTest, ANumberOfAnyLengthIsClamped) {
    const std::string digits(400, '9');
    type(x(), digits.c_str());
    EXPECT_EQ(zone.x, 100);
    type(x(), ("-" + digits).c_str());
    EXPECT_EQ(zone.x, 0);
    type(w(), "1e400");
    EXPECT_EQ(zone.w, 100);
    type(x(), "50");
    type(x(), "1e-400");
    EXPECT_EQ(zone.x, 0);
}

TEST_F(ZoneFieldsTest, AZeroHasNoSign) {
    for (const char* const text : {"-0", "-0.0", "-5", "-1e-400", "-,0"}) {
        type(x(), text);
        EXPECT_FALSE(std::signbit(zone.x)) << text;
        QTest::keyClick(&x(), Qt::Key_Return);
        EXPECT_EQ(x().text(), "0") << text;
    }
}

TEST_F(ZoneFieldsTest, AZoneIsAtLeastOnePercentWideAndHigh) {
    type(w(), "0");
    type(field(3), "0.2");

    EXPECT_EQ(zone, Presets::z(20, 30, 1, 1));
}

TEST_F(ZoneFieldsTest, AZoneIsClampedToTheScreen) {
    type(w(), "90");
    EXPECT_EQ(zone, Presets::z(20, 30, 80, 50));
    type(field(1), "60");
    EXPECT_EQ(zone, Presets::z(20, 60, 80, 40));
}

TEST_F(ZoneFieldsTest, TypedTextStaysAsTypedUntilEditingEnds) {
    type(x(), "007,50");
    fields.show(zone);
    EXPECT_EQ(x().text(), "007,50");
    EXPECT_EQ(ends, 0);

    QTest::keyClick(&x(), Qt::Key_Return);
    EXPECT_EQ(x().text(), "7.5");
    EXPECT_EQ(ends, 1);
}

TEST_F(ZoneFieldsTest, TheOtherFieldsAreUpdatedWhileOneIsTypedInto) {
    type(x(), "70");
    fields.show(zone);

    EXPECT_EQ(x().text(), "70");
    EXPECT_EQ(w().text(), "30");
}

TEST_F(ZoneFieldsTest, LeavingAChangedFieldEndsEditingOnce) {
    type(x(), "10");
    QTest::keyClick(&x(), Qt::Key_Tab);

    EXPECT_TRUE(field(1).hasFocus());
    EXPECT_EQ(ends, 1);
    QTest::keyClick(&field(1), Qt::Key_Tab);
    EXPECT_EQ(ends, 1) << "nothing has been typed there";
}

TEST_F(ZoneFieldsTest, LeavingAFieldWhoseTextHasBeenUndoneEndsEditingToo) {
    zone.w = 100.0 / 3;
    fields.show(zone);
    QTest::mouseClick(&x(), Qt::LeftButton);
    QTest::keyClick(&x(), Qt::Key_5);
    QTest::keyClick(&x(), Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(x().text(), "20");
    ASSERT_EQ(zone.w, 33.33) << "typing has stored the numbers as they are shown";

    QTest::keyClick(&x(), Qt::Key_Tab);

    EXPECT_EQ(ends, 1);
}

TEST_F(ZoneFieldsTest, TextThatIsDroppedIntoAFieldWithoutTheFocusEndsEditingAtOnce) {
    QTest::mouseClick(&w(), Qt::LeftButton);
    QMimeData text;
    text.setText("5");
    QDragEnterEvent enter({0, 10}, Qt::CopyAction, &text, Qt::LeftButton, {});
    QApplication::sendEvent(&x(), &enter);
    QDropEvent drop({0, 10}, Qt::CopyAction, &text, Qt::LeftButton, {});

    QApplication::sendEvent(&x(), &drop);

    EXPECT_EQ(zone.x, 100) << "520, which is beyond the screen";
    EXPECT_EQ(x().text(), "100");
    EXPECT_EQ(ends, 1);
    fields.show(Presets::z(1, 2, 3, 4));
    EXPECT_EQ(x().text(), "1");
}

TEST_F(ZoneFieldsTest, AFocusedFieldWithoutTypedTextIsUpdated) {
    x().setFocus();

    fields.show(Presets::z(50, 50, 50, 50));

    EXPECT_EQ(x().text(), "50");
}

TEST_F(ZoneFieldsTest, ANumberThatIsShownAgainStaysSelected) {
    x().setFocus();
    QTest::keyClick(&x(), Qt::Key_Tab);
    ASSERT_EQ(field(1).selectedText(), "30");

    fields.show(Presets::z(21, 30, 40, 50));
    QTest::keyClick(&field(1), Qt::Key_7);

    EXPECT_EQ(field(1).text(), "7") << "the key replaces the selection";
    EXPECT_EQ(x().text(), "21");
}

TEST_F(ZoneFieldsTest, ATextIsParsedAsAWholeOrRejected) {
    EXPECT_EQ(ZoneFields::number("12.5"), 12.5);
    EXPECT_EQ(ZoneFields::number(" 12,5\t"), 12.5);
    EXPECT_EQ(ZoneFields::number("-3"), -3);
    EXPECT_EQ(ZoneFields::number("+3"), 3);
    EXPECT_EQ(ZoneFields::number(".5"), 0.5);
    EXPECT_EQ(ZoneFields::number("5."), 5);
    EXPECT_EQ(ZoneFields::number("1e1"), 10);
    EXPECT_EQ(ZoneFields::number("1E+1"), 10);
    for (const char* const text : {"", " ", ",", "1,2,3", "1 2", "12x", "+-3", "++3", "0x10", "inf", "-inf",
                                   "nan", ".", "1e", "e1", "1e1.5", "1 e1", "1e1x", "\xd9\xa1\xd9\xa2"})
        EXPECT_EQ(ZoneFields::number(text), std::nullopt) << text;
}

TEST_F(ZoneFieldsTest, ANumberMayHaveAnyLengthAndSize) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const QString nines(30'000, QLatin1Char('9'));
    EXPECT_EQ(ZoneFields::number(nines), kInfinity);
    EXPECT_EQ(ZoneFields::number(QLatin1Char('-') + nines), -kInfinity);
    EXPECT_EQ(ZoneFields::number(QStringLiteral("12.5") + QString(30'000, QLatin1Char('0'))), 12.5);
    EXPECT_EQ(ZoneFields::number(QString(400, QLatin1Char('0')) + QStringLiteral("7")), 7);
    EXPECT_EQ(ZoneFields::number("1e999"), kInfinity);
    EXPECT_EQ(ZoneFields::number("-1e99999999999999999999"), -kInfinity);
    EXPECT_EQ(ZoneFields::number("1e-400"), 0);
    EXPECT_EQ(ZoneFields::number("1e-99999999999999999999"), 0);
    EXPECT_EQ(ZoneFields::number("0e99999999999999999999"), 0);
}

TEST_F(ZoneFieldsTest, TheLocaleDoesNotMatter) {
    QLocale::setDefault(QLocale::German);
    fields.show(Presets::z(12.5, 30, 40, 50));
    EXPECT_EQ(x().text(), "12.5");
    type(x(), "1.5");
    EXPECT_EQ(zone.x, 1.5);
    QLocale::setDefault(QLocale::c());
}

} // namespace
} // namespace tessarel
