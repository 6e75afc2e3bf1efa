// SPDX-License-Identifier: MIT

#include "settings_ui/shortcuts_tab.h"

#include "model/settings/app_settings.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/looks.h"
#include "settings_ui/settings_ui_test.h"

#include <QLabel>
#include <QPoint>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {
namespace {

constexpr int kActions = 19;

class ShortcutsTabTest : public SettingsUiTest {
protected:
    ShortcutsTabTest() {
        context.refreshAll = [this] {
            ++refreshes;
            tab->refresh();
        };
        tab = std::make_unique<ShortcutsTab>(context);
    }

    /// Returns the control with this frame, which in the rows is relative to the scrolled content. Without
    /// one, fails the test and returns null.
    template <typename Control>
    Control* at(int x, int y, int width, int height) {
        for (QWidget* const child : tab->view()->findChildren<QWidget*>()) {
            auto* const control = dynamic_cast<Control*>(child);
            if (control && control->geometry() == QRect(x, y, width, height))
                return control;
        }
        ADD_FAILURE() << "nothing at " << x << ", " << y;
        return nullptr;
    }
    RecorderButton* recorder(int row) { return at<RecorderButton>(330, 32 * row + 6, 200, 26); }
    QPushButton* clear(int row) { return at<QPushButton>(540, 32 * row + 5, 64, 28); }
    QPushButton* reset() { return at<QPushButton>(16, 436, 220, 28); }
    std::string title(int row) { return fullText(*recorder(row)).toStdString(); }

    static ActionID action(int row) { return ActionID::allCases.at(static_cast<std::size_t>(row)); }

    std::unique_ptr<ShortcutsTab> tab;
};

TEST_F(ShortcutsTabTest, EveryControlHasItsFrameTextAndStyle) {
    EXPECT_EQ(tab->view()->size(), QSize(780, 480));
    EXPECT_EQ(looks(*tab->view()),
              "16 14 300x22 label 16 bold: Keyboard shortcuts\n"
              "16 42 740x34 wrap 12 secondary: Click a shortcut, then press the new key combination (include "
              "Ctrl, Opt or Cmd). Zone shortcuts only work for zones that are enabled in the Layouts tab.\n"
              "15 83 742x342 control\n"
              "18 86 736x336 control\n"
              "16 436 220x28 button 13: Reset all shortcuts to defaults\n");
}

TEST_F(ShortcutsTabTest, HasARowForEachActionInOrder) {
    std::string rows;
    for (int row = 0; row < kActions; ++row) {
        EXPECT_EQ(recorder(row)->actionID(), action(row));
        const int top = 32 * row + 6;
        rows += "12 " + std::to_string(top + 4) + " 300x18 label 13: " + std::string(action(row).title()) +
                "\n330 " + std::to_string(top) +
                " 200x26 button 13: " + KeyNames::describe(action(row).defaultBinding()) + "\n540 " +
                std::to_string(top - 1) + " 64x28 button 13: Clear\n";
    }
    EXPECT_EQ(looks(*at<QScrollArea>(18, 86, 736, 336)->widget()), rows);
}

TEST_F(ShortcutsTabTest, ModifiersHaveTheNamesOfTheSystem) {
    PlatformWords words;
    words.modifierNames = {"Control", "Alt", "Umschalt", "Super"};
    const Ports here = simPorts(desktop, copy, words);
    tab = std::make_unique<ShortcutsTab>(TabContext{services, here, {}});

    EXPECT_EQ(fullText(*at<QLabel>(16, 42, 740, 34)),
              "Click a shortcut, then press the new key combination (include Control, Alt or Super). Zone "
              "shortcuts only work for zones that are enabled in the Layouts tab.");
    EXPECT_EQ(title(16), "Control+Alt+Super+Right");
    recorder(0)->click();
    desktop.localKeys().press({11});
    EXPECT_EQ(title(0), "Add Control, Alt or Super");
}

TEST_F(ShortcutsTabTest, RowsScrollOnlyVertically) {
    tab->view()->show();

    const auto* const scrollView = at<QScrollArea>(18, 86, 736, 336);
    EXPECT_EQ(scrollView->widget()->size(), QSize(720, 32 * kActions + 10));
    EXPECT_TRUE(scrollView->verticalScrollBar()->isVisible());
    EXPECT_FALSE(scrollView->horizontalScrollBar()->isVisible());
    EXPECT_EQ(scrollView->focusPolicy(), Qt::NoFocus) << "the Tab key moves from row to row";
    EXPECT_GE(scrollView->viewport()->width(), 720) << "part of the rows would be out of reach";
}

TEST_F(ShortcutsTabTest, RecordingShowsTheNewHotKeyEverywhere) {
    QTest::mouseClick(recorder(14), Qt::LeftButton);
    desktop.localKeys().press({11, kControlFlag});

    EXPECT_EQ(title(14), "Ctrl+B");
    EXPECT_EQ(services.store.binding(ActionID::center), (Binding{11, kCtrlKey}));
    EXPECT_EQ(refreshes, 1);
}

TEST_F(ShortcutsTabTest, TabsAreRefreshedAfterAChangeIsSavedAndAnnounced) {
    std::string order;
    const auto announced = services.store.tessarelSettingsChanged.connect([&] {
        order += saved()->bindings == settings.bindings ? "saved, announced; " : "not saved, announced; ";
    });
    context.refreshAll = [&] { order += "refreshed; "; };
    tab = std::make_unique<ShortcutsTab>(context);

    clear(9)->click();
    EXPECT_EQ(order, "saved, announced; refreshed; ");
    order.clear();
    reset()->click();
    EXPECT_EQ(order, "saved, announced; refreshed; ");
}

TEST_F(ShortcutsTabTest, ClearRemovesTheHotKey) {
    QTest::mouseClick(clear(9), Qt::LeftButton);

    EXPECT_EQ(services.store.binding(ActionID::leftHalf), std::nullopt);
    EXPECT_EQ(title(9), "None");
    EXPECT_FALSE(saved()->bindings.contains("leftHalf"));
    EXPECT_EQ(saved()->bindings.size(), 18U);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(refreshes, 1);
}

TEST_F(ShortcutsTabTest, EveryClearButtonClearsTheActionOfItsRow) {
    for (int row = 0; row < kActions; ++row) {
        clear(row)->click();
        EXPECT_EQ(services.store.binding(action(row)), std::nullopt) << row;
        EXPECT_EQ(settings.bindings.size(), static_cast<std::size_t>(kActions - row - 1));
    }
}

TEST_F(ShortcutsTabTest, ClearingAnUnboundActionIsHarmless) {
    clear(9)->click();
    clear(9)->click();

    EXPECT_EQ(title(9), "None");
    EXPECT_EQ(announcements, 2);
}

TEST_F(ShortcutsTabTest, ATagWithoutAnActionClearsNothing) {
    for (const int tag : {-1, kActions, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        tab->clearTapped(tag);

    EXPECT_EQ(settings.bindings, AppSettings::defaultBindings());
    EXPECT_EQ(announcements, 0);
    EXPECT_EQ(refreshes, 0);
    EXPECT_FALSE(saved());
}

TEST_F(ShortcutsTabTest, ResetRestoresEveryDefault) {
    services.store.setBinding(std::nullopt, ActionID::zone1);
    services.store.setBinding(Binding{11, kCmdKey}, ActionID::maximize);
    settings.bindings["nonsense"] = {1, 2};
    settings.gap = 8;

    QTest::mouseClick(reset(), Qt::LeftButton);

    EXPECT_EQ(settings.bindings, AppSettings::defaultBindings());
    EXPECT_EQ(saved()->bindings, AppSettings::defaultBindings());
    EXPECT_EQ(settings.gap, 8);
    EXPECT_EQ(title(0), "Ctrl+Opt+1");
    EXPECT_EQ(title(13), "Ctrl+Opt+Return");
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(refreshes, 1);
    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(ShortcutsTabTest, RefreshShowsHotKeysThatWereChangedElsewhere) {
    services.store.setBinding(Binding{11, kCmdKey}, ActionID::maximize);

    tab->refresh();

    EXPECT_EQ(title(13), "Cmd+B");
}

TEST_F(ShortcutsTabTest, ARecordingContinuesWhenAnotherRowIsCleared) {
    recorder(0)->click();

    tab->clearTapped(1);

    EXPECT_EQ(title(0), "Press keys...");
    EXPECT_EQ(title(1), "None");
    desktop.localKeys().press({19, kControlFlag | kOptionFlag});
    EXPECT_EQ(title(0), "Ctrl+Opt+2");
}

TEST_F(ShortcutsTabTest, EveryControlHasAnAccessibleNameOfItsOwn) {
    for (int row = 0; row < kActions; ++row) {
        const std::string name(action(row).title());
        EXPECT_EQ(recorder(row)->accessibleName().toStdString(), name);
        EXPECT_EQ(clear(row)->accessibleName().toStdString(), "Clear " + name);
    }
    EXPECT_EQ(reset()->accessibleName(), "Reset all shortcuts to defaults");
}

TEST_F(ShortcutsTabTest, TheTabKeyVisitsTheControlsInReadingOrder) {
    tab->view()->show();
    tab->view()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(tab->view()));
    recorder(0)->setFocus();

    for (int row = 0; row < kActions; ++row) {
        ASSERT_EQ(QApplication::focusWidget(), recorder(row));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_EQ(QApplication::focusWidget(), clear(row));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }

    EXPECT_EQ(QApplication::focusWidget(), reset());
}

TEST_F(ShortcutsTabTest, ARowThatGetsTheFocusScrollsIntoView) {
    tab->view()->show();
    tab->view()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(tab->view()));
    const auto* const scrollView = at<QScrollArea>(18, 86, 736, 336);

    recorder(0)->setFocus();
    for (int step = 0; step < 2 * (kActions - 1); ++step)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);

    ASSERT_EQ(QApplication::focusWidget(), recorder(kActions - 1));
    const QRect inSight = scrollView->viewport()->rect();
    EXPECT_TRUE(inSight.contains(recorder(kActions - 1)->mapTo(scrollView->viewport(), QPoint(0, 0))));
}

} // namespace
} // namespace tessarel
