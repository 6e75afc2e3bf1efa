#include "platform/qt/qt_alerts.h"

#include "platform/qt/qt_main_queue.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QList>
#include <QMessageBox>
#include <QPushButton>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string>

namespace tessarel::qt {
namespace {

class QtAlertsTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    /// Runs `alert`, hands its box to `use` and answers what `runModal` does.
    std::size_t runModal(const Alert& alert, const std::function<void(QMessageBox&)>& use) {
        queue.async([&] { use(dynamic_cast<QMessageBox&>(*QApplication::activeModalWidget())); });
        return alerts.runModal(alert);
    }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QApplication application{argumentCount, arguments.data()};
    QtMainQueue queue;
    QtAlerts alerts;
};

TEST_F(QtAlertsTest, AnswersThePositionOfTheButtonThatWasChosen) {
    const Alert alert{"Question", "Why?", {"Continue", "Open Settings", "Later"}};

    for (int position = 0; position < 3; ++position) {
        const auto chosen = runModal(alert, [&](QMessageBox& box) { box.buttons().at(position)->click(); });
        EXPECT_EQ(chosen, static_cast<std::size_t>(position));
    }
}

TEST_F(QtAlertsTest, ButtonsStandInTheirOrderAndTheFirstIsTheDefault) {
    runModal({"Question", "", {"Continue", "Later"}}, [](QMessageBox& box) {
        EXPECT_EQ(box.buttons().first()->text(), "Continue");
        EXPECT_EQ(box.buttons().last()->text(), "Later");
        EXPECT_EQ(box.defaultButton(), box.buttons().first());
        box.close();
    });
}

TEST_F(QtAlertsTest, ClosingTheBoxCountsAsTheLastButton) {
    const auto chosen =
        runModal({"Question", "", {"Download", "Later"}}, [](QMessageBox& box) { box.close(); });

    EXPECT_EQ(chosen, 1U);
}

TEST_F(QtAlertsTest, TheEndOfTheProgramCountsAsTheLastButton) {
    const auto chosen =
        runModal({"Question", "", {"Download", "Later"}}, [](QMessageBox&) { QApplication::exit(); });

    EXPECT_EQ(chosen, 1U);
}

TEST_F(QtAlertsTest, AnAlertWithoutButtonsGetsOne) {
    const auto chosen = runModal({"Done", "", {}}, [](QMessageBox& box) {
        EXPECT_EQ(box.buttons().size(), 1);
        box.close();
    });

    EXPECT_EQ(chosen, 0U);
}

TEST_F(QtAlertsTest, MarkupIsShownAsItStands) {
    const Alert alert{"<b>bold</b>", "<img src=\"file:///x\"> & <i>more</i>", {"OK"}};

    runModal(alert, [](QMessageBox& box) {
        int texts = 0;
        for (const QLabel* label : box.findChildren<QLabel*>()) {
            if (label->text().isEmpty())
                continue;
            ++texts;
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
        }
        EXPECT_EQ(texts, 2);
        EXPECT_EQ(box.text(), "<b>bold</b>");
        EXPECT_EQ(box.informativeText(), "<img src=\"file:///x\"> & <i>more</i>");
        box.close();
    });
}

TEST_F(QtAlertsTest, AnAmpersandInAButtonIsNoMnemonic) {
    runModal({"Question", "", {"Save & Quit"}}, [](QMessageBox& box) {
        EXPECT_EQ(box.buttons().first()->text(), "Save && Quit");
        EXPECT_TRUE(box.buttons().first()->shortcut().isEmpty());
        box.close();
    });
}

} // namespace
} // namespace tessarel::qt
