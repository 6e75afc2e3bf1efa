// SPDX-License-Identifier: MIT

#include "platform/qt/qt_alerts.h"

#include "platform/qt/alert_dialog.h"
#include "platform/qt/qt_main_queue.h"
#include "support/main_queue.h"

#include <QApplication>
#include <QEvent>
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
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::qt {
namespace {

/// What an alert has reported, in order.
using Reports = std::vector<std::optional<std::size_t>>;

class QtAlertsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    /// Deletes closed dialogs, as the event loop of the program does.
    ~QtAlertsTest() override { QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    /// Shows `alert` until `use` or the test ends, and calls `use` with its box. Returns the indices of the
    /// buttons that were reported meanwhile.
    Reports show(const Alert& alert, const std::function<void(AlertDialog&)>& use) {
        Reports reports;
        const auto shown =
            alerts.show(alert, [&](std::optional<std::size_t> button) { reports.push_back(button); });
        EXPECT_TRUE(reports.empty());
        use(*box());
        return reports;
    }

    /// Returns the alert that is shown; null if there is none.
    static AlertDialog* box() {
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (auto* const dialog = dynamic_cast<AlertDialog*>(window); dialog && dialog->isVisible())
                return dialog;
        return nullptr;
    }

    /// Runs an alert that prompts for a text and calls `use` with its box. Returns the text.
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

TEST_F(QtAlertsTest, TheHooksRunBeforeEachBoxIsMadeAndWhenItIsVisible) {
    std::vector<std::string> calls;
    QtAlerts watched({.beforeMaking = [&] { calls.emplace_back("make"); },
                      .shown =
                          [&](QWidget& box) {
                              EXPECT_TRUE(box.isVisible());
                              calls.emplace_back("shown");
                          }});
    const auto close = [&] { QApplication::activeModalWidget()->close(); };

    const auto standing = watched.show({"Question", "Why?", {}}, [](auto) {});
    async(queue, close);
    watched.runModal({"Question", "Why?", {}});
    async(queue, close);
    (void)watched.runModalForText({"Question", "Why?", {}});

    EXPECT_EQ(calls, (std::vector<std::string>{"make", "shown", "make", "shown", "make", "shown"}));
}

TEST_F(QtAlertsTest, ReportsTheIndexOfTheChosenButton) {
    const Alert alert{"Question", "Why?", {"Continue", "Open Settings", "Later"}};

    for (int position = 0; position < 3; ++position) {
        const auto reports = show(alert, [&](AlertDialog& box) { buttons(box).at(position)->click(); });
        EXPECT_EQ(reports, Reports{static_cast<std::size_t>(position)});
        EXPECT_EQ(box(), nullptr);
    }
}

TEST_F(QtAlertsTest, OtherWindowsCanBeUsedWhileAnAlertStands) {
    QWidget window;
    window.show();

    show({"Question", "", {"OK"}}, [](AlertDialog& box) {
        EXPECT_FALSE(box.isModal());
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    });
}

TEST_F(QtAlertsTest, AnAlertIsAWindowThatDoesNotBelongToAnother) {
    show({"Question", "", {"OK"}}, [](AlertDialog& box) {
        // Qt makes windows of its own dialog type transient for all windows of the program.
        EXPECT_EQ(box.windowType(), Qt::Window);
        EXPECT_TRUE(box.testAttribute(Qt::WA_X11NetWmWindowTypeDialog));
    });
}

TEST_F(QtAlertsTest, SeveralAlertsStandSideBySide) {
    Reports first;
    Reports second;
    const auto one = alerts.show({"One", "", {"OK"}}, [&](auto button) { first.push_back(button); });
    AlertDialog& boxOfOne = *box();
    const auto two = alerts.show({"Two", "", {"OK"}}, [&](auto button) { second.push_back(button); });

    buttons(boxOfOne).first()->click();

    EXPECT_EQ(first, Reports{0U});
    EXPECT_TRUE(second.empty());
    ASSERT_NE(box(), nullptr);
    EXPECT_EQ(message(*box()).text(), "Two");
}

TEST_F(QtAlertsTest, ButtonsAreInOrderAndTheFirstIsTheDefault) {
    show({"Question", "", {"Continue", "Later"}}, [](AlertDialog& box) {
        EXPECT_EQ(buttons(box).first()->text(), "Continue");
        EXPECT_EQ(buttons(box).last()->text(), "Later");
        EXPECT_TRUE(buttons(box).first()->isDefault());
    });
}

TEST_F(QtAlertsTest, ClosingTheBoxAndEscapeAreReportedAsNoButton) {
    const Alert alert{"Question", "", {"Download", "Later"}};

    EXPECT_EQ(show(alert, [](AlertDialog& box) { box.close(); }), Reports{std::nullopt});
    EXPECT_EQ(show(alert, [](AlertDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }),
              Reports{std::nullopt});
}

TEST_F(QtAlertsTest, ReturnPressesTheFirstButton) {
    const auto reports = show({"Question", "", {"Download", "Later"}},
                              [](AlertDialog& box) { QTest::keyClick(&box, Qt::Key_Return); });

    EXPECT_EQ(reports, Reports{0U});
}

TEST_F(QtAlertsTest, EndingTheSubscriptionRemovesTheAlertWithoutAReport) {
    Reports reports;
    auto shown = alerts.show({"Waiting", "", {"OK"}}, [&](auto button) { reports.push_back(button); });
    ASSERT_NE(box(), nullptr);

    shown.reset();

    EXPECT_EQ(box(), nullptr);
    EXPECT_TRUE(reports.empty());
}

TEST_F(QtAlertsTest, TheReportMayEndTheSubscriptionOrTheAlerts) {
    SubscriptionPtr shown;
    shown = alerts.show({"Question", "", {"OK"}}, [&](auto) { shown.reset(); });
    buttons(*box()).first()->click();
    EXPECT_EQ(box(), nullptr);

    auto own = std::make_unique<QtAlerts>();
    shown = own->show({"Question", "", {"OK"}}, [&](auto) { own.reset(); });
    buttons(*box()).first()->click();
    EXPECT_EQ(box(), nullptr);
    shown.reset();
}

TEST_F(QtAlertsTest, QuittingTheProgramRemovesTheAlertWithoutAReport) {
    Reports reports;
    const auto shown = alerts.show({"Question", "", {"OK"}}, [&](auto button) { reports.push_back(button); });
    async(queue, [] { QApplication::exit(); });

    QApplication::exec();

    EXPECT_EQ(box(), nullptr);
    EXPECT_TRUE(reports.empty());
}

TEST_F(QtAlertsTest, AShortTextIsShownWholeWithoutAScrollBar) {
    show({"Question", "One line.\nAnother one.", {"OK"}}, [](AlertDialog& box) {
        EXPECT_GE(areaOf(box).height(), information(box).heightForWidth(areaOf(box).width()));
        EXPECT_FALSE(areaOf(box).verticalScrollBar()->isVisible());
    });
}

TEST_F(QtAlertsTest, LongNotesScrollAndTheButtonsStayOnTheScreen) {
    std::string notes;
    for (int line = 0; line < 200; ++line)
        notes += "Something has become better.\n";

    show({"Tessarel 9.9 is available", notes, {"Download", "Later"}}, [](AlertDialog& box) {
        EXPECT_TRUE(areaOf(box).verticalScrollBar()->isVisible());
        expectOnScreen(box);
    });
}

TEST_F(QtAlertsTest, AHugeTextWithoutSpacesStaysOnTheScreen) {
    const std::string flood(1 << 20, 'x');

    show({flood, flood, {"Download", "Later"}}, [](AlertDialog& box) {
        expectOnScreen(box);
        EXPECT_TRUE(message(box).text().endsWith(QChar(0x2026)));
        EXPECT_LE(message(box).sizeHint().width(), message(box).width());
    });
}

TEST_F(QtAlertsTest, AnAlertWithoutButtonsGetsOne) {
    show({"Done", "", {}}, [](AlertDialog& box) { EXPECT_EQ(buttons(box).size(), 1); });
}

TEST_F(QtAlertsTest, MarkupIsShownAsPlainText) {
    const Alert alert{"<b>bold</b>", "<img src=\"file:///x\"> & <i>more</i>", {"OK"}};

    show(alert, [](AlertDialog& box) {
        for (const QLabel* const label : {&message(box), &information(box)})
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        EXPECT_EQ(message(box).text(), "<b>bold</b>");
        EXPECT_EQ(information(box).text(), "<img src=\"file:///x\"> & <i>more</i>");
    });
}

TEST_F(QtAlertsTest, AnAmpersandInAButtonIsNoMnemonic) {
    show({"Question", "", {"Save & Quit"}}, [](AlertDialog& box) {
        EXPECT_EQ(buttons(box).first()->text(), "Save && Quit");
        EXPECT_TRUE(buttons(box).first()->shortcut().isEmpty());
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

TEST_F(QtAlertsTest, AModalAlertBlocksTheSettingsWindowAndNoOther) {
    QWidget settings;
    settings.show();
    QWidget icon(nullptr, Qt::Window | Qt::FramelessWindowHint);
    icon.show();
    const auto standing = alerts.show({"Welcome", "", {"OK"}}, [](auto) {});
    async(queue, [&] {
        QWidget* const message = QApplication::activeModalWidget();
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(message->windowModality(), Qt::WindowModal);
        EXPECT_EQ(message->parentWidget(), &settings);
        message->close();
    });

    alerts.runModal({"All 9 zones are in use", "", {"OK"}});
}

TEST_F(QtAlertsTest, QuittingTheProgramEndsAModalAlert) {
    async(queue, [] { QApplication::exit(); });

    alerts.runModal({"Question", "", {"OK"}});

    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

} // namespace
} // namespace tessarel::qt
