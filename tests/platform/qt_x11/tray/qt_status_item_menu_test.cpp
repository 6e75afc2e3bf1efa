// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/menu_title.h"
#include "platform/qt_x11/tray/menu_view.h"
#include "support/menu_rows.h"

#include <QAction>
#include <QApplication>
#include <QFontMetrics>
#include <QMenu>
#include <QObject>
#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarel::qt {
namespace {

using testing::ElementsAre;

class MenuViewTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    [[nodiscard]] QAction& action(int position) { return *view.widget().actions().at(position); }
    [[nodiscard]] QAction& action(int position, int inner) {
        return *action(position).menu()->actions().at(inner);
    }

    /// Converts the rows of `menu` back to a value, as far as a user can see them.
    static Menu seen(const QMenu& menu) {
        Menu rows;
        for (const QAction* action : menu.actions()) {
            MenuItem item = row(action->text().toStdString(), MenuCommand::None);
            item.isSeparator = action->isSeparator();
            item.isEnabled = action->isEnabled();
            item.isChecked = action->isCheckable() && action->isChecked();
            item.keyEquivalent = action->shortcut().toString().remove("Ctrl+").toLower().toStdString();
            if (action->menu() != nullptr)
                item.submenu = seen(*action->menu());
            rows.push_back(std::move(item));
        }
        return rows;
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QApplication application{argumentCount, arguments.data()};
    std::vector<MenuItem> chosen;
    MenuView view{MenuView::DrawnBy::Qt, [this](const MenuItem& item) { chosen.push_back(item); }};
};

Menu everyKindOfRow() {
    MenuItem title = row("Tessarel 1.0", MenuCommand::None);
    title.isEnabled = false;
    MenuItem pause = row("Pause Tessarel", MenuCommand::None);
    pause.isChecked = true;
    MenuItem settings = row("Settings...", MenuCommand::None);
    settings.keyEquivalent = ",";
    MenuItem quit = row("Quit Tessarel", MenuCommand::None);
    quit.keyEquivalent = "q";
    MenuItem halves = row("Halves", MenuCommand::None);
    halves.isChecked = true;
    return {title,
            MenuItem::separator(),
            submenu("Layouts", {halves, MenuItem::separator(), row("Mine", MenuCommand::None)}),
            pause,
            settings,
            quit};
}

TEST_F(MenuViewTest, ShowsEveryKindOfRow) {
    view.show(everyKindOfRow());

    EXPECT_EQ(seen(view.widget()), everyKindOfRow());
}

TEST_F(MenuViewTest, AnEmptyMenuHasNoRows) {
    view.show(everyKindOfRow());

    view.show({});

    EXPECT_TRUE(view.widget().isEmpty());
}

TEST_F(MenuViewTest, RowsThatCannotBeChosenAreNotEvenIfAPanelReportsAClick) {
    view.show(everyKindOfRow());

    action(0).trigger(); // disabled
    action(1).trigger(); // a separator
    EXPECT_TRUE(chosen.empty());

    action(3).trigger();
    EXPECT_EQ(chosen.size(), 1U);
}

TEST_F(MenuViewTest, AnUncheckedRowHasNoCheckBox) {
    view.show({row("plain")});

    EXPECT_FALSE(action(0).isCheckable());
}

TEST_F(MenuViewTest, KeyEquivalentsAreShownAndBelongToTheOpenMenu) {
    view.show(everyKindOfRow());

    EXPECT_EQ(action(4).shortcut().toString(), "Ctrl+,");
    EXPECT_EQ(action(5).shortcut().toString(), "Ctrl+Q");
    EXPECT_TRUE(action(5).isShortcutVisibleInContextMenu());
    EXPECT_EQ(action(5).shortcutContext(), Qt::WidgetShortcut);
}

TEST_F(MenuViewTest, AKeyEquivalentChoosesItsRowInTheOpenMenu) {
    view.show(everyKindOfRow());
    view.widget().popup({});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view.widget()));

    QTest::keyClick(&view.widget(), Qt::Key_Comma, Qt::ControlModifier);

    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen[0].title, "Settings...");
    EXPECT_FALSE(view.widget().isVisible());
}

TEST_F(MenuViewTest, AKeyEquivalentWorksWhileASubmenuIsOpen) {
    view.show(everyKindOfRow());
    view.widget().popup({});
    view.widget().setActiveAction(&action(2));
    QMenu& submenu = *action(2).menu();
    submenu.popup({});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&submenu));

    QTest::keyClick(&submenu, Qt::Key_Q, Qt::ControlModifier);

    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen[0].title, "Quit Tessarel");
    EXPECT_FALSE(view.widget().isVisible());
    EXPECT_FALSE(submenu.isVisible());
}

TEST_F(MenuViewTest, OtherKeysOfTheOpenMenuChooseNothing) {
    Menu menu = everyKindOfRow();
    menu[5].isEnabled = false;
    view.show(menu);
    view.widget().popup({});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view.widget()));

    QTest::keyClick(&view.widget(), Qt::Key_Q, Qt::ControlModifier); // the row is disabled
    QTest::keyClick(&view.widget(), Qt::Key_Comma);
    QTest::keyClick(&view.widget(), Qt::Key_Comma, Qt::ControlModifier | Qt::ShiftModifier);

    EXPECT_TRUE(chosen.empty());
    EXPECT_TRUE(view.widget().isVisible());
    QTest::keyClick(&view.widget(), Qt::Key_Escape);
    EXPECT_FALSE(view.widget().isVisible()) << "keys that Qt knows still work";
}

TEST_F(MenuViewTest, ChoosingARowReportsIt) {
    view.show({row("one", MenuCommand::ApplyLayout, 1000), row("two", MenuCommand::ApplyLayout, 1001)});

    action(1).trigger();

    EXPECT_THAT(chosen, ElementsAre(row("two", MenuCommand::ApplyLayout, 1001)));
}

TEST_F(MenuViewTest, ChoosingARowOfASubmenuReportsItOnce) {
    view.show({submenu("Move window", {row("Left half", MenuCommand::RunMenuAction, 9)})});

    action(0, 0).trigger();

    EXPECT_THAT(chosen, ElementsAre(row("Left half", MenuCommand::RunMenuAction, 9)));
}

TEST_F(MenuViewTest, ADisabledRowCannotBeChosen) {
    Menu menu{row("title")};
    menu[0].isEnabled = false;
    view.show(menu);

    action(0).trigger();

    EXPECT_TRUE(chosen.empty());
}

TEST_F(MenuViewTest, ChoosingARowDoesNotChangeItsCheckMark) {
    view.show(everyKindOfRow());
    action(3).trigger();
    action(2, 0).trigger();

    view.show(everyKindOfRow());

    EXPECT_EQ(seen(view.widget()), everyKindOfRow());
}

TEST_F(MenuViewTest, ShowingTheSameMenuAgainKeepsItsRows) {
    view.show(everyKindOfRow());
    const QAction* const before = &action(4);
    bool destroyed = false;
    QObject::connect(before, &QObject::destroyed, [&destroyed] { destroyed = true; });

    view.show(everyKindOfRow());

    EXPECT_FALSE(destroyed);
    EXPECT_EQ(&action(4), before);
}

TEST_F(MenuViewTest, EveryDifferenceIsShown) {
    view.show(everyKindOfRow());
    Menu menu = everyKindOfRow();
    menu[2].submenu[0].isChecked = false;
    menu[3].isChecked = false;
    menu.erase(menu.begin() + 1);

    view.show(menu);

    EXPECT_EQ(seen(view.widget()), menu);
}

TEST_F(MenuViewTest, SubmenusThatComeAndGoShowTheirOwnRows) {
    const Menu two{submenu("A", {row("a")}), submenu("B", {row("b1"), row("b2")})};
    const Menu one{submenu("B", {row("b1"), row("b2")})};

    for (const Menu& menu : {two, one, two}) {
        view.show(menu);
        ASSERT_EQ(view.widget().actions().size(), static_cast<qsizetype>(menu.size()));
        EXPECT_EQ(view.widget().actions().last()->text(), "B");
        EXPECT_EQ(view.widget().actions().last()->menu()->actions().size(), 2);
    }
}

TEST_F(MenuViewTest, ShowingOftenLeaksNoObjects) {
    view.show(everyKindOfRow());
    const auto before = QApplication::allWidgets().size();
    const auto children = view.widget().findChildren<QObject*>().size();

    for (int i = 0; i < 10; ++i) {
        view.show({});
        view.show(everyKindOfRow());
    }

    EXPECT_EQ(QApplication::allWidgets().size(), before);
    EXPECT_EQ(view.widget().findChildren<QObject*>().size(), children);
}

class MenuTitleTest : public MenuViewTest {
protected:
    [[nodiscard]] QString oneLine(std::string_view title) const {
        return menu_title::oneLine(title, QFontMetrics(application.font()));
    }
    /// Returns the text that the menu shows for `title`.
    QString shown(const std::string& title) {
        view.show({row(title)});
        return action(0).text();
    }
};

TEST_F(MenuTitleTest, AnOrdinaryTitleIsUnchanged) {
    for (const char* title : {"Snap to Zone 1   (Ctrl+Opt+1)", "Größe – ½", "日本語", "🪟 Fenster", "a  b"})
        EXPECT_EQ(oneLine(title), QString::fromUtf8(title));
}

TEST_F(MenuTitleTest, AnAmpersandIsNoMnemonic) {
    EXPECT_EQ(shown("Code & Docs && more &x"), "Code && Docs &&&& more &&x");
}

TEST_F(MenuTitleTest, MarkupIsShownAsPlainText) {
    EXPECT_EQ(shown("<b>bold</b><br>"), "<b>bold</b><br>");
}

TEST_F(MenuTitleTest, LineFeedsTabsAndControlCharactersBecomeSpaces) {
    EXPECT_EQ(oneLine("a\nb\r\nc\td\x01\x7f\xe2\x80\xa8"), "a b  c d   ");
    EXPECT_EQ(oneLine(std::string_view("a\0b", 3)), "a b");
}

TEST_F(MenuTitleTest, InvalidUtf8IsShownAsReplacementCharacters) {
    EXPECT_EQ(oneLine("a\xff\xfe b"), u"a\ufffd\ufffd b");
}

TEST_F(MenuTitleTest, ALongTitleIsShortenedToTheWidthOfAMenu) {
    const QFontMetrics metrics(application.font());
    const std::array<std::string, 3> units = {"W", "漢", "i "};
    for (const std::string& unit : units) {
        std::string title;
        for (int i = 0; i < 10'000; ++i)
            title += unit;

        const QString line = oneLine(title);

        EXPECT_TRUE(line.endsWith(u'\u2026')) << unit;
        EXPECT_GT(line.size(), 20) << unit;
        EXPECT_LE(metrics.horizontalAdvance(line), 60 * metrics.averageCharWidth()) << unit;
    }
}

TEST_F(MenuTitleTest, ATitleOfManyMarksOnOneLetterIsShortened) {
    std::string title = "a";
    for (int i = 0; i < 10'000; ++i)
        title += "\xcc\x81"; // combining acute accent

    EXPECT_LE(oneLine(title).size(), 600);
}

TEST_F(MenuTitleTest, ASurrogatePairIsNotSplit) {
    for (const char* padding : {"", "\xcc\x81"}) {
        std::string title = padding;
        for (int i = 0; i < 5'000; ++i)
            title += "\xf0\x9f\xaa\x9f\xcc\x81";

        const QString line = oneLine(title);

        EXPECT_EQ(QString::fromUtf8(line.toUtf8()), line);
        EXPECT_FALSE(line.contains(QChar::ReplacementCharacter));
    }
}

TEST_F(MenuTitleTest, RightToLeftTextIsWrappedInIsolates) {
    EXPECT_EQ(oneLine("חלון"), u"\u2068חלון\u2069");
    EXPECT_EQ(oneLine("نافذة 1"), u"\u2068نافذة 1\u2069");
}

TEST_F(MenuTitleTest, RightToLeftTextBeyond16BitsIsWrappedInIsolates) {
    EXPECT_EQ(oneLine("\xf0\x90\xa4\x80"), QString::fromUtf8("\u2068\xf0\x90\xa4\x80\u2069"));
}

TEST_F(MenuTitleTest, ADirectionalOverrideEndsWithItsTitle) {
    EXPECT_EQ(oneLine("a\u202eb"), u"\u2068a\u202eb\u2069");
}

TEST_F(MenuTitleTest, IsolatesLeftOpenAreClosed) {
    EXPECT_EQ(oneLine("a\u2067b\u2066c"), u"\u2068a\u2067b\u2066c\u2069\u2069\u2069");
}

TEST_F(MenuTitleTest, ATitleCannotCloseWhatItDidNotOpen) {
    EXPECT_EQ(oneLine("a\u2069\u2069\u202eb"), u"\u2068a\u202eb\u2069");
    EXPECT_EQ(oneLine("\u2067a\u2069\u2069b"), u"\u2068\u2067a\u2069b\u2069");
}

TEST_F(MenuTitleTest, AnEmptyTitleStaysEmpty) {
    EXPECT_EQ(oneLine(""), "");
    EXPECT_EQ(menu_title::forWidget(""), "");
    EXPECT_EQ(menu_title::forPanel(""), "");
}

TEST_F(MenuTitleTest, AnUnderscoreIsNotAMnemonicInThePanel) {
    EXPECT_EQ(menu_title::forPanel("my_layout__"), "my__layout____");
}

TEST_F(MenuTitleTest, TheFirstAmpersandForThePanelIsDoubledBecauseQtReplacesIt) {
    EXPECT_EQ(menu_title::forPanel("a & b & c"), "a && b & c");
    EXPECT_EQ(menu_title::forPanel("R&"), "R&&");
}

TEST_F(MenuViewTest, TheTimeToShowLayoutsGrowsNoFasterThanTheirNumber) {
    const auto medianTime = [this](int count) {
        std::array<Menu, 2> menus;
        for (std::size_t menu = 0; menu < menus.size(); ++menu) {
            Menu rows;
            for (int i = 0; i < count; ++i)
                rows.push_back(row("My layout " + std::to_string(i) + "/" + std::to_string(menu),
                                   MenuCommand::ApplyLayout, 1000 + i));
            menus.at(menu) = {submenu("Layouts", rows)};
        }
        std::array<std::clock_t, 9> times{}; // of the processor, which others may be using, too
        for (std::size_t i = 0; i < times.size(); ++i) {
            const std::clock_t start = std::clock();
            view.show(menus.at(i % 2));
            times.at(i) = std::clock() - start;
        }
        EXPECT_EQ(action(0).menu()->actions().size(), count);
        std::ranges::nth_element(times, times.begin() + 4);
        return static_cast<double>(times.at(4));
    };

    const double growth = medianTime(1000) / medianTime(100);

    EXPECT_LT(growth, 40) << "10 if proportional, 100 if quadratic";
}

} // namespace
} // namespace tessarel::qt
