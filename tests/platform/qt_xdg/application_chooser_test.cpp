// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_chooser.h"

#include "platform/qt/qt_main_queue.h"
#include "platform/qt_xdg/application_panel.h"
#include "support/main_queue.h"
#include "support/offscreen_test.h"
#include "support/scratch_folder.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QString>
#include <QtTest/QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tessarel::qt {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;
using Chosen = std::optional<std::string>;

/// Stands in for the file dialog.
class OtherPanel : public OpenPanelPort {
public:
    Chosen chooseApplication(const std::string& prompt) override {
        prompts.push_back(prompt);
        return choice;
    }

    Names prompts;
    Chosen choice;
};

class ApplicationChooserTest : public OffscreenTest {
protected:
    ApplicationChooserTest() {
        for (const char* const name : {"Browser", "Calculator", "Editor", "Painter", "Viewer"})
            install(name);
    }

    void install(const std::string& name) const {
        std::ofstream(scratch.path() / ("org.example." + name + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=" << name << '\n';
    }

    /// Opens the dialog, waits until it is filled and active, calls `use` with it and returns the user's
    /// choice.
    Chosen choose(const std::function<void()>& use) {
        async(queue, [&] {
            dialog = dynamic_cast<ApplicationChooser*>(QApplication::activeModalWidget());
            field = dialog->findChild<QLineEdit*>();
            list = dialog->findChild<QListView*>();
            while (list->model()->rowCount() < installed || !dialog->isActiveWindow())
                QApplication::processEvents();
            use();
            if (dialog->isVisible())
                dialog->reject();
        });
        return panel.chooseApplication("Ignore");
    }

    [[nodiscard]] Names shown() const {
        Names names;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            names.push_back(list->model()->index(row, 0).data().toString().toStdString());
        return names;
    }
    [[nodiscard]] std::string selected() const {
        const auto rows = list->selectionModel()->selectedIndexes();
        return rows.isEmpty() ? "" : rows.first().data().toString().toStdString();
    }
    [[nodiscard]] QPushButton* button(const QString& title) const {
        for (auto* const button : dialog->findChildren<QPushButton*>())
            if (button->text() == title)
                return button;
        return nullptr;
    }
    /// Presses a key where the keyboard focus is.
    void press(Qt::Key key) const { QTest::keyClick(dialog->focusWidget(), key); }
    void type(const char* text) const { QTest::keyClicks(dialog->focusWidget(), text); }

    ScratchFolder scratch;
    int installed = 5;
    std::set<std::string> running;
    OtherPanel other;
    QtMainQueue queue;
    ApplicationPanel panel{
        {.folders = {scratch.path()}, .desktops = {}, .running = [this] { return running; }}, other};
    // Of the open dialog.
    ApplicationChooser* dialog = nullptr;
    QLineEdit* field = nullptr;
    QListView* list = nullptr;
};

TEST_F(ApplicationChooserTest, ShowsTheInstalledApplicationsThoseThatAreRunningFirst) {
    running = {"org.example.Viewer"};

    choose([this] {
        EXPECT_EQ(shown(), (Names{"Viewer", "Browser", "Calculator", "Editor", "Painter"}));
        EXPECT_EQ(selected(), "");
        EXPECT_FALSE(button("Ignore")->isEnabled());
        EXPECT_EQ(dialog->focusWidget(), field);
    });
}

TEST_F(ApplicationChooserTest, ReturnsTheFirstApplicationThatASearchFinds) {
    const Chosen chosen = choose([this] {
        type("er");
        EXPECT_EQ(shown(), (Names{"Browser", "Painter", "Viewer"}));
        EXPECT_EQ(selected(), "Browser");
        press(Qt::Key_Return);
    });

    EXPECT_EQ(chosen, "org.example.Browser");
}

TEST_F(ApplicationChooserTest, ArrowKeysInTheFieldGoToTheList) {
    const Chosen chosen = choose([this] {
        press(Qt::Key_Down);
        EXPECT_EQ(dialog->focusWidget(), list);
        EXPECT_EQ(selected(), "Browser");
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Up);
        EXPECT_EQ(selected(), "Calculator");
        press(Qt::Key_Return);
    });

    EXPECT_EQ(chosen, "org.example.Calculator");
}

TEST_F(ApplicationChooserTest, AnArrowKeyAfterASearchGoesToTheSecondResult) {
    choose([this] {
        type("er");
        press(Qt::Key_Down);
        EXPECT_EQ(selected(), "Painter");
    });
}

TEST_F(ApplicationChooserTest, WhatIsTypedInTheListGoesToTheField) {
    const Chosen chosen = choose([this] {
        press(Qt::Key_Down);
        type("pai");
        EXPECT_EQ(field->text(), "pai");
        EXPECT_EQ(dialog->focusWidget(), field);
        EXPECT_EQ(shown(), Names{"Painter"});
        press(Qt::Key_Down);
        press(Qt::Key_Backspace);
        EXPECT_EQ(field->text(), "pa");
        press(Qt::Key_Return);
    });

    EXPECT_EQ(chosen, "org.example.Painter");
}

TEST_F(ApplicationChooserTest, TheListSelectsItsFirstApplicationWhenItGetsTheFocus) {
    choose([this] {
        press(Qt::Key_Tab);
        EXPECT_EQ(dialog->focusWidget(), list);
        EXPECT_EQ(selected(), "Browser");
    });
}

TEST_F(ApplicationChooserTest, ReturnWithoutASelectionDoesNothing) {
    choose([this] {
        press(Qt::Key_Return);
        EXPECT_TRUE(dialog->isVisible());
        type("nothing of the kind");
        press(Qt::Key_Return);
        EXPECT_TRUE(dialog->isVisible());
    });
}

TEST_F(ApplicationChooserTest, EscapeCancels) {
    for (const auto& use :
         std::vector<std::function<void()>>{[] {}, [this] { type("er"); }, [this] { press(Qt::Key_Down); }}) {
        const Chosen chosen = choose([this, use] {
            use();
            press(Qt::Key_Escape);
            EXPECT_FALSE(dialog->isVisible());
        });
        EXPECT_EQ(chosen, std::nullopt);
    }
}

TEST_F(ApplicationChooserTest, ADoubleClickConfirms) {
    const Chosen chosen = choose([this] {
        const QPoint editor = list->visualRect(list->model()->index(2, 0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, editor);
        EXPECT_TRUE(button("Ignore")->isEnabled());
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, editor);
    });

    EXPECT_EQ(chosen, "org.example.Editor");
}

TEST_F(ApplicationChooserTest, TheButtonForOtherApplicationsOpensTheOtherPanel) {
    other.choice = "somewhere.else";

    const Chosen chosen = choose([this] { button("Other...")->click(); });

    EXPECT_EQ(other.prompts, Names{"Ignore"});
    EXPECT_EQ(chosen, "somewhere.else");
}

TEST_F(ApplicationChooserTest, CancellingTheOtherPanelReturnsToTheDialog) {
    const Chosen chosen = choose([this] {
        button("Other...")->click();
        EXPECT_TRUE(dialog->isVisible());
        type("edit");
        button("Ignore")->click();
    });

    EXPECT_EQ(chosen, "org.example.Editor");
}

TEST_F(ApplicationChooserTest, SaysWhenNothingIsFound) {
    choose([this] {
        const auto labels = dialog->findChildren<QLabel*>();
        const auto says = [&labels](const QString& text) {
            return std::ranges::any_of(
                labels, [&](const QLabel* label) { return label->isVisible() && label->text() == text; });
        };
        EXPECT_FALSE(says("No application found"));
        type("nothing of the kind");
        EXPECT_TRUE(says("No application found"));
    });
}

TEST_F(ApplicationChooserTest, ScreenReadersGetNamesAndTheResultOfASearch) {
    running = {"org.example.Viewer"};

    choose([this] {
        const auto* const listed = QAccessible::queryAccessibleInterface(list);
        const auto* const searched = QAccessible::queryAccessibleInterface(field);
        EXPECT_EQ(listed->text(QAccessible::Name), "Applications");
        EXPECT_EQ(searched->text(QAccessible::Name), "Search:");
        EXPECT_EQ(listed->child(0)->text(QAccessible::Name), "Viewer");
        EXPECT_EQ(listed->child(0)->text(QAccessible::Description), "Running");
        type("edit");
        EXPECT_EQ(searched->text(QAccessible::Description), "Editor");
        type("nothing");
        EXPECT_EQ(searched->text(QAccessible::Description), "No application found");
    });
}

TEST_F(ApplicationChooserTest, TheDialogOpensBeforeAllEntriesHaveBeenRead) {
    for (int number = 0; number < 500; ++number)
        install("Program" + std::to_string(number));
    int atFirst = 0;
    async(queue, [&] {
        atFirst = QApplication::activeModalWidget()->findChild<QListView*>()->model()->rowCount();
        QApplication::activeModalWidget()->close();
    });
    panel.chooseApplication("Ignore");

    EXPECT_GT(atFirst, 0);
    EXPECT_LT(atFirst, 505);
    installed = 505;
    choose([this] { EXPECT_EQ(shown().size(), 505U); });
}

} // namespace
} // namespace tessarel::qt
