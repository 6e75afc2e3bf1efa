#include "platform/qt/qt_alerts.h"

#include "platform/qt/alert_dialog.h"
#include "platform/qt/qt_main_queue.h"
#include "support/main_queue.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSize>
#include <QTest>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::qt {
namespace {

class QtAlertsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    /// Runs `alert`, calls `use` with its box and returns the result of `runModal`.
    std::size_t runModal(const Alert& alert, const std::function<void(AlertDialog&)>& use) {
        async(queue, [&] { use(dynamic_cast<AlertDialog&>(*QApplication::activeModalWidget())); });
        return alerts.runModal(alert);
    }

    /// Like runModal(), for an alert that prompts for a text.
    std::optional<std::string> runModalForText(const std::function<void(AlertDialog&)>& use) {
        async(queue, [&] { use(dynamic_cast<AlertDialog&>(*QApplication::activeModalWidget())); });
        return alerts.runModalForText({"Save layout", "Name for this layout:", {"Save", "Cancel"}});
    }

    static QLabel& message(const AlertDialog& box) { return *box.findChildren<QLabel*>().at(0); }
    static QLabel& information(const AlertDialog& box) { return *box.findChildren<QLabel*>().at(1); }
    static QList<QPushButton*> buttons(const AlertDialog& box) { return box.findChildren<QPushButton*>(); }
    static const QScrollArea& areaOf(const AlertDialog& box) { return *box.findChild<QScrollArea*>(); }

    static void expectOnScreen(const AlertDialog& box) {
        const QRect screen = box.screen()->availableGeometry();
        EXPECT_LE(box.width(), screen.width());
        EXPECT_LE(box.height(), screen.height());
        for (const QPushButton* const button : buttons(box))
            EXPECT_TRUE(box.rect().contains(button->geometry()));
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QApplication application{argumentCount, arguments.data()};
    QtMainQueue queue;
    QtAlerts alerts;
};

TEST_F(QtAlertsTest, TheShownHookGetsEachVisibleBoxBeforeItsEventLoopRuns) {
    std::vector<QWidget*> shown;
    QtAlerts watched({.shown = [&](QWidget& box) {
        EXPECT_TRUE(box.isVisible());
        shown.push_back(&box);
    }});
    const auto close = [&] {
        EXPECT_EQ(shown.back(), QApplication::activeModalWidget());
        QApplication::activeModalWidget()->close();
    };

    async(queue, close);
    (void)watched.runModal({"Question", "Why?", {}});
    async(queue, close);
    (void)watched.runModalForText({"Question", "Why?", {}});

    EXPECT_EQ(shown.size(), 2U);
}

TEST_F(QtAlertsTest, TheBeforeMakingHookRunsBeforeEachBox) {
    int done = 0;
    QtAlerts prepared({.beforeMaking = [&] { ++done; }});
    for (const int before : {1, 2}) {
        async(queue, [&] {
            EXPECT_EQ(done, before);
            QApplication::activeModalWidget()->close();
        });
        if (before == 1)
            (void)prepared.runModal({"Question", "Why?", {}});
        else
            (void)prepared.runModalForText({"Question", "Why?", {}});
    }
}

TEST_F(QtAlertsTest, ReturnsTheIndexOfTheChosenButton) {
    const Alert alert{"Question", "Why?", {"Continue", "Open Settings", "Later"}};

    for (int position = 0; position < 3; ++position) {
        const auto chosen = runModal(alert, [&](AlertDialog& box) { buttons(box).at(position)->click(); });
        EXPECT_EQ(chosen, static_cast<std::size_t>(position));
    }
}

TEST_F(QtAlertsTest, ButtonsAreInOrderAndTheFirstIsTheDefault) {
    runModal({"Question", "", {"Continue", "Later"}}, [](AlertDialog& box) {
        EXPECT_EQ(buttons(box).first()->text(), "Continue");
        EXPECT_EQ(buttons(box).last()->text(), "Later");
        EXPECT_TRUE(buttons(box).first()->isDefault());
        box.close();
    });
}

TEST_F(QtAlertsTest, ClosingTheBoxCountsAsTheLastButton) {
    const auto chosen =
        runModal({"Question", "", {"Download", "Later"}}, [](AlertDialog& box) { box.close(); });

    EXPECT_EQ(chosen, 1U);
}

TEST_F(QtAlertsTest, EscapeCountsAsTheButtonThatTheAlertNames) {
    const auto chosen = runModal({"Welcome", "", {"Continue", "Open Settings"}, 0},
                                 [](AlertDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });

    EXPECT_EQ(chosen, 0U);
}

TEST_F(QtAlertsTest, ReturnPressesTheFirstButton) {
    const auto chosen = runModal({"Question", "", {"Download", "Later"}},
                                 [](AlertDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });

    EXPECT_EQ(chosen, 0U);
}

TEST_F(QtAlertsTest, AShortTextIsShownWholeWithoutAScrollBar) {
    runModal({"Question", "One line.\nAnother one.", {"OK"}}, [](AlertDialog& box) {
        EXPECT_GE(areaOf(box).height(), information(box).heightForWidth(areaOf(box).width()));
        EXPECT_FALSE(areaOf(box).verticalScrollBar()->isVisible());
        box.close();
    });
}

TEST_F(QtAlertsTest, LongNotesScrollAndTheButtonsStayOnTheScreen) {
    std::string notes;
    for (int line = 0; line < 200; ++line)
        notes += "Something has become better.\n";

    runModal({"Tessarel 9.9 is available", notes, {"Download", "Later"}}, [](AlertDialog& box) {
        EXPECT_TRUE(areaOf(box).verticalScrollBar()->isVisible());
        expectOnScreen(box);
        box.close();
    });
}

TEST_F(QtAlertsTest, AHugeTextWithoutSpacesStaysOnTheScreen) {
    const std::string flood(1 << 20, 'x');

    runModal({flood, flood, {"Download", "Later"}}, [](AlertDialog& box) {
        expectOnScreen(box);
        EXPECT_TRUE(message(box).text().endsWith(QChar(0x2026)));
        EXPECT_LE(message(box).sizeHint().width(), message(box).width());
        box.close();
    });
}

TEST_F(QtAlertsTest, QuittingTheProgramCountsAsTheLastButton) {
    const auto chosen =
        runModal({"Question", "", {"Download", "Later"}}, [](AlertDialog&) { QApplication::exit(); });

    EXPECT_EQ(chosen, 1U);
}

TEST_F(QtAlertsTest, AnAlertWithoutButtonsGetsOne) {
    const auto chosen = runModal({"Done", "", {}}, [](AlertDialog& box) {
        EXPECT_EQ(buttons(box).size(), 1);
        box.close();
    });

    EXPECT_EQ(chosen, 0U);
}

TEST_F(QtAlertsTest, MarkupIsShownAsPlainText) {
    const Alert alert{"<b>bold</b>", "<img src=\"file:///x\"> & <i>more</i>", {"OK"}};

    runModal(alert, [](AlertDialog& box) {
        for (const QLabel* const label : {&message(box), &information(box)})
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        EXPECT_EQ(message(box).text(), "<b>bold</b>");
        EXPECT_EQ(information(box).text(), "<img src=\"file:///x\"> & <i>more</i>");
        box.close();
    });
}

TEST_F(QtAlertsTest, AnAmpersandInAButtonIsNoMnemonic) {
    runModal({"Question", "", {"Save & Quit"}}, [](AlertDialog& box) {
        EXPECT_EQ(buttons(box).first()->text(), "Save && Quit");
        EXPECT_TRUE(buttons(box).first()->shortcut().isEmpty());
        box.close();
    });
}

TEST_F(QtAlertsTest, TheFirstButtonReturnsTheTypedText) {
    const auto text = runModalForText([](AlertDialog& box) {
        QTest::keyClicks(box.findChild<QLineEdit*>(), "Coding & <b>more</b>");
        QTest::mouseClick(buttons(box).first(), Qt::LeftButton);
    });

    EXPECT_EQ(text, "Coding & <b>more</b>");
}

TEST_F(QtAlertsTest, TheFieldHasTheFocusAndReturnPressesTheFirstButton) {
    const auto text = runModalForText([](AlertDialog& box) {
        ASSERT_EQ(box.focusWidget(), box.findChild<QLineEdit*>());
        QTest::keyClicks(box.focusWidget(), "  Wide ");
        QTest::keyClick(box.focusWidget(), Qt::Key_Return);
    });

    EXPECT_EQ(text, "  Wide ");
}

TEST_F(QtAlertsTest, EscapeAndTheOtherButtonsReturnNoText) {
    for (const bool byKey : {true, false}) {
        const auto text = runModalForText([&](AlertDialog& box) {
            auto* const field = box.findChild<QLineEdit*>();
            QTest::keyClicks(field, "Wide");
            byKey ? QTest::keyClick(field, Qt::Key_Escape)
                  : QTest::mouseClick(buttons(box).last(), Qt::LeftButton);
        });
        EXPECT_EQ(text, std::nullopt);
    }
}

TEST_F(QtAlertsTest, AnEmptyFieldReturnsAnEmptyText) {
    const auto text =
        runModalForText([](AlertDialog& box) { QTest::keyClick(box.focusWidget(), Qt::Key_Return); });

    EXPECT_EQ(text, "");
}

TEST_F(QtAlertsTest, ThePromptShowsItsFieldWithAnAccessibleName) {
    runModalForText([](AlertDialog& box) {
        auto* const field = box.findChild<QLineEdit*>();
        EXPECT_EQ(field->size(), QSize(260, 24));
        EXPECT_EQ(field->accessibleName(), "Name for this layout:");
        EXPECT_TRUE(box.rect().contains(field->geometry()));
        EXPECT_GT(field->y(), message(box).geometry().bottom());
        EXPECT_LT(field->geometry().bottom(), buttons(box).first()->y());
        QTest::keyClick(field, Qt::Key_Tab);
        EXPECT_EQ(box.focusWidget(), buttons(box).first());
        box.close();
    });
}

TEST_F(QtAlertsTest, ADismissedAlertCountsAsClosedWithoutAButton) {
    const Alert alert{"Waiting", "", {"OK", "Later"}};

    const std::size_t chosen = runModal(alert, [&](AlertDialog&) {
        alerts.dismiss({"Another", "", {"OK"}});
        ASSERT_NE(QApplication::activeModalWidget(), nullptr);
        alerts.dismiss(alert);
    });

    EXPECT_EQ(chosen, 1U);
    alerts.dismiss(alert); // not shown any more
}

} // namespace
} // namespace tessarel::qt
