// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/entry_icon.h"

#include "support/offscreen_test.h"
#include "support/scratch_folder.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>

namespace tessarel::qt {
namespace {

namespace fs = std::filesystem;

class EntryIconTest : public OffscreenTest {
protected:
    EntryIconTest() { QIcon::setThemeSearchPaths({QString::fromStdString(scratch.path().string())}); }

    /// Writes an image of one colour and returns its path.
    [[nodiscard]] std::string write(const fs::path& file, int size, const QColor& color) const {
        const fs::path path = scratch.path() / file;
        fs::create_directories(path.parent_path());
        QImage image(size, size, QImage::Format_ARGB32);
        image.fill(color);
        EXPECT_TRUE(image.save(QString::fromStdString(path.string())));
        return path.string();
    }

    [[nodiscard]] static QImage icon(const std::string& icon, const std::string& name = "Editor",
                                     double scale = 1) {
        return entryIcon(QString::fromStdString(icon), QString::fromStdString(name),
                         {.size = 24, .scale = scale, .letterColor = Qt::blue})
            .toImage();
    }

    /// Returns whether this is the tile that replaces an icon: translucent, with an opaque letter.
    [[nodiscard]] static bool isTile(const QImage& image) {
        return image.pixelColor(3, 12).blue() == 255 && image.pixelColor(3, 12).alpha() < 64;
    }

    ScratchFolder scratch;
};

TEST_F(EntryIconTest, AFileIsScaledToTheSize) {
    const std::string file = write("large.png", 500, Qt::green);

    EXPECT_EQ(icon(file).size(), QSize(24, 24));
    EXPECT_EQ(icon(file).pixelColor(12, 12), QColor(Qt::green));
}

TEST_F(EntryIconTest, AnIconHasAllPixelsOfItsScale) {
    const QImage image = icon(write("large.png", 500, Qt::green), "Editor", 2);

    EXPECT_EQ(image.size(), QSize(48, 48));
    EXPECT_EQ(image.devicePixelRatio(), 2);
    EXPECT_EQ(icon("", "Editor", 2).size(), QSize(48, 48));
}

TEST_F(EntryIconTest, ANameIsLookedUpInTheTheme) {
    std::ofstream(fs::path(write("hicolor/24x24/apps/org.example.editor.png", 24, Qt::green))
                      .parent_path()
                      .parent_path()
                      .parent_path() /
                  "index.theme")
        << "[Icon Theme]\nName=Hicolor\nDirectories=24x24/apps\n\n[24x24/apps]\nSize=24\nType=Fixed\n";
    QIcon::setThemeName("hicolor");

    EXPECT_EQ(icon("org.example.editor").pixelColor(12, 12), QColor(Qt::green));
    EXPECT_EQ(icon("org.example.editor.png").pixelColor(12, 12), QColor(Qt::green));
    EXPECT_TRUE(isTile(icon("org.example.viewer")));
}

TEST_F(EntryIconTest, WhatCannotBeLoadedIsReplacedByTheFirstLetter) {
    ScratchFolder::write(scratch.path() / "text.png", "no image");
    const std::string pipe = (scratch.path() / "pipe.png").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string heavy = write("heavy.png", 24, Qt::green);
    fs::resize_file(heavy, 5 * 1024 * 1024);

    for (const std::string& file :
         {std::string(), (scratch.path() / "text.png").string(), (scratch.path() / "missing.png").string(),
          pipe, heavy, scratch.path().string(), std::string("../text")})
        EXPECT_TRUE(isTile(icon(file))) << file;
}

TEST_F(EntryIconTest, TheLetterIsThatOfTheName) {
    EXPECT_EQ(icon("", "editor"), icon("", "Emacs"));
    EXPECT_NE(icon("", "editor"), icon("", "viewer"));
    EXPECT_EQ(icon("", "\U0001F98A fox"), icon("", "\U0001F98A"));
    EXPECT_TRUE(isTile(icon("", "")));
}

} // namespace
} // namespace tessarel::qt
