// SPDX-License-Identifier: MIT

#include "platform/qt/focus_editing.h"

#include "app/main_menu.h"
#include "support/offscreen_test.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

#include <string_view>

namespace tessarel::qt {
namespace {

class FocusEditingTest : public OffscreenTest {
protected:
    FocusEditingTest() {
        layout.addWidget(&field);
        layout.addWidget(&button);
    }

    void showWindow() {
        window.show();
        window.activateWindow();
        while (QApplication::focusWindow() == nullptr)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        field.setFocus();
    }

    /// Chooses the row with this action in the main menu. Returns true if the focused window handled it.
    static bool choose(std::string_view action) {
        for (const MainMenu& menu : mainMenu()) {
            for (const MainMenuItem& row : menu.items) {
                if (row.action == action)
                    return editInFocus(row);
            }
        }
        ADD_FAILURE() << "no row for " << action;
        return false;
    }

    QWidget window;
    QVBoxLayout layout{&window};
    QLineEdit field;
    QPushButton button;
};

TEST_F(FocusEditingTest, TextIsSelectedCutAndPasted) {
    showWindow();
    field.setText("zones");

    EXPECT_TRUE(choose("selectAll:"));
    EXPECT_EQ(field.selectedText(), "zones");

    EXPECT_TRUE(choose("cut:"));
    EXPECT_EQ(field.text(), "");
    EXPECT_EQ(QApplication::clipboard()->text(), "zones");

    EXPECT_TRUE(choose("paste:"));
    EXPECT_TRUE(choose("paste:"));
    EXPECT_EQ(field.text(), "zoneszones");
}

TEST_F(FocusEditingTest, TextIsCopied) {
    showWindow();
    field.setText("halves");
    field.selectAll();

    EXPECT_TRUE(choose("copy:"));

    EXPECT_EQ(field.text(), "halves");
    EXPECT_EQ(QApplication::clipboard()->text(), "halves");
}

TEST_F(FocusEditingTest, TypingIsUndoneAndRedone) {
    showWindow();
    field.insert("typed");

    EXPECT_TRUE(choose("undo:"));
    EXPECT_EQ(field.text(), "");

    EXPECT_TRUE(choose("redo:"));
    EXPECT_EQ(field.text(), "typed");
}

TEST_F(FocusEditingTest, EditingActionsAreHandledEvenIfTheFocusedWidgetCannotEdit) {
    showWindow();
    field.setText("zones");
    button.setFocus();

    EXPECT_TRUE(choose("selectAll:"));
    EXPECT_EQ(field.selectedText(), "");

    button.clearFocus();
    EXPECT_TRUE(choose("copy:"));
}

TEST_F(FocusEditingTest, ActionsOfTheWindowOrTheProgramAreLeftToTheSystem) {
    showWindow();

    EXPECT_FALSE(choose("performClose:"));
    EXPECT_FALSE(choose("terminate:"));

    EXPECT_TRUE(window.isVisible());
}

TEST_F(FocusEditingTest, ActionsAreLeftToTheSystemWithoutAFocusedWindow) {
    for (const char* action : {"undo:", "redo:", "cut:", "copy:", "paste:", "selectAll:"})
        EXPECT_FALSE(choose(action));
}

} // namespace
} // namespace tessarel::qt
