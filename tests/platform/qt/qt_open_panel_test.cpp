// SPDX-License-Identifier: MIT

#include "platform/qt/qt_open_panel.h"

#include "platform/qt/qt_main_queue.h"
#include "support/main_queue.h"
#include "support/offscreen_test.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QPushButton>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarel::qt {
namespace {

class QtOpenPanelTest : public OffscreenTest {
protected:
    QtOpenPanelTest() {
        QFile entry(file());
        EXPECT_TRUE(entry.open(QIODevice::WriteOnly));
    }

    [[nodiscard]] QString file() const { return folder.filePath("org.example.editor.desktop"); }

    /// Opens the panel, calls `use` with its dialog and returns the user's choice.
    std::optional<std::string> choose(const std::function<void(QFileDialog&)>& use) {
        async(queue, [&] { use(dynamic_cast<QFileDialog&>(*QApplication::activeModalWidget())); });
        return panel.chooseApplication("Ignore");
    }

    QTemporaryDir folder;
    std::vector<std::string> asked;
    std::optional<std::string> identifier = "org.example.editor";
    QtMainQueue queue;
    QtOpenPanel panel{{folder.path().toStdString(), "/nowhere"}, [this](const std::filesystem::path& entry) {
                          asked.push_back(entry.string());
                          return identifier;
                      }};
};

TEST_F(QtOpenPanelTest, OffersOnlyDesktopEntries) {
    choose([this](QFileDialog& dialog) {
        EXPECT_EQ(dialog.directory(), QDir(folder.path()));
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.nameFilters(), QStringList{"Applications (*.desktop)"});
        dialog.reject();
    });
}

TEST_F(QtOpenPanelTest, TheConfirmButtonHasTheGivenTitle) {
    choose([](QFileDialog& dialog) {
        const auto* const buttons = dialog.findChild<QDialogButtonBox*>();
        EXPECT_EQ(buttons->button(QDialogButtonBox::Open)->text(), "Ignore");
        dialog.reject();
    });
}

TEST_F(QtOpenPanelTest, ReturnsTheIdentifierOfTheConfirmedEntry) {
    const auto chosen = choose([this](QFileDialog& dialog) {
        dialog.selectFile(file());
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
    });

    EXPECT_EQ(chosen, "org.example.editor");
    EXPECT_EQ(asked, std::vector<std::string>{file().toStdString()});
}

TEST_F(QtOpenPanelTest, AnEntryWithoutAnIdentifierGivesAnEmptyResult) {
    identifier.reset();

    const auto chosen = choose([this](QFileDialog& dialog) {
        dialog.selectFile(file());
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
    });

    EXPECT_EQ(chosen, std::nullopt);
}

TEST_F(QtOpenPanelTest, ClosingThePanelGivesAnEmptyResult) {
    EXPECT_EQ(choose([](QFileDialog& dialog) { dialog.close(); }), std::nullopt);
    EXPECT_TRUE(asked.empty());
}

} // namespace
} // namespace tessarel::qt
