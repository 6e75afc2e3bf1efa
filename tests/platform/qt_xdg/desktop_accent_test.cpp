// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/desktop_accent.h"

#include "support/offscreen_test.h"
#include "support/scratch_folder.h"

#include <QTest>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace tessarel::qt {
namespace {

TEST(KdeAccentTest, IsTheColourThatTheUserHasChosen) {
    EXPECT_EQ(kdeAccent("[General]\nAccentColor=233,58,154\nName=Breeze\n\n"
                        "[Colors:Selection]\nBackgroundNormal=61,174,233\n"),
              QColor(233, 58, 154));
    EXPECT_EQ(kdeAccent("[General]\r\nAccentColor = #e93a9a\r\n"), QColor(233, 58, 154));
}

TEST(KdeAccentTest, IsTheSelectionOfTheColourSchemeIfTheUserHasChosenNone) {
    EXPECT_EQ(kdeAccent("[Colors:Selection]\nBackgroundNormal=61,174,233,255\n"
                        "[Colors:Selection][Inactive]\nBackgroundNormal=1,2,3\n"),
              QColor(61, 174, 233));
}

TEST(KdeAccentTest, IgnoresWhatIsNotAColour) {
    for (const auto* const value : {"", "1,2", "1,2,300", "-1,2,3", "a,b,c", "#12", "blue"})
        EXPECT_EQ(kdeAccent(std::string("[General]\nAccentColor=") + value + "\n"), std::nullopt) << value;
    EXPECT_EQ(kdeAccent("AccentColor=1,2,3\n[Other]\nAccentColor=1,2,3\n"), std::nullopt);
    EXPECT_EQ(kdeAccent(std::string("\0[\xff=", 4)), std::nullopt);
}

TEST(GnomeAccentTest, HasAColourForEachName) {
    EXPECT_EQ(gnomeAccent("'teal'\n"), QColor("#2190a4"));
    EXPECT_EQ(gnomeAccent("'slate'\n"), QColor("#6f8396"));
    EXPECT_EQ(gnomeAccent("'beige'\n"), std::nullopt);
    EXPECT_EQ(gnomeAccent(""), std::nullopt);
}

/// Settings of a desktop in a folder of their own.
class DesktopAccentTest : public OffscreenTest {
protected:
    DesktopAccentTest() {
        qputenv("XDG_CONFIG_HOME", at("home").c_str());
        qputenv("XDG_CONFIG_DIRS", at("first").append(":").append(at("second")).c_str());
        qputenv("GSETTINGS_SCHEMA_DIR", at("schemas").c_str());
        qputenv("GSETTINGS_BACKEND", "keyfile");
        for (const auto* const name : {"home", "first", "second", "schemas"})
            std::filesystem::create_directories(at(name));
    }
    ~DesktopAccentTest() override {
        for (const auto* const variable :
             {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "GSETTINGS_SCHEMA_DIR", "GSETTINGS_BACKEND"})
            qunsetenv(variable);
    }
    DesktopAccentTest(const DesktopAccentTest&) = delete;
    DesktopAccentTest& operator=(const DesktopAccentTest&) = delete;

    [[nodiscard]] std::string at(const std::string& name) const { return (folder.path() / name).string(); }
    void write(const std::string& file, const std::string& content) const {
        std::ofstream(at(file)) << content;
    }
    DesktopAccent& on(const std::string& desktop) {
        accent.emplace(std::vector<std::string>{"other", desktop},
                       [this](const QColor& color) { found = color; });
        return *accent;
    }
    /// Installs the setting, as GNOME does since release 47, with the user's choice.
    void chooseInGnome(const std::string& name) const {
        write("schemas/test.gschema.xml",
              "<schemalist><schema id='org.gnome.desktop.interface' path='/org/gnome/desktop/interface/'>"
              "<key name='accent-color' type='s'><default>\"blue\"</default></key></schema></schemalist>");
        ASSERT_EQ(QProcess::execute("glib-compile-schemas", {at("schemas").c_str()}), 0);
        std::filesystem::create_directories(at("home/glib-2.0/settings"));
        write("home/glib-2.0/settings/keyfile",
              "[org/gnome/desktop/interface]\naccent-color='" + name + "'\n");
    }

    ScratchFolder folder;
    std::optional<DesktopAccent> accent;
    std::optional<QColor> found;
};

TEST_F(DesktopAccentTest, TheUsersFileOfKdeComesFirst) {
    write("first/kdeglobals", "[General]\nAccentColor=1,1,1\n");
    write("home/kdeglobals", "[General]\nAccentColor=2,2,2\n");

    on("KDE").read();

    EXPECT_EQ(found, QColor(2, 2, 2));
}

TEST_F(DesktopAccentTest, TheSystemsFileOfKdeHasTheAccentThatTheUsersHasNot) {
    write("home/kdeglobals", "[General]\nName=Breeze\n");
    write("second/kdeglobals", "[General]\nAccentColor=3,3,3\n");

    on("KDE").read();

    EXPECT_EQ(found, QColor(3, 3, 3));
}

TEST_F(DesktopAccentTest, FilesOfKdeDoNotCountOnAnotherDesktop) {
    write("home/kdeglobals", "[General]\nAccentColor=2,2,2\n");

    on("XFCE").read();

    EXPECT_EQ(found, std::nullopt);
}

TEST_F(DesktopAccentTest, GnomesSettingIsReadWithoutWaiting) {
    chooseInGnome("orange");

    on("GNOME").read();

    EXPECT_EQ(found, std::nullopt);
    EXPECT_TRUE(QTest::qWaitFor([this] { return found.has_value(); }));
    EXPECT_EQ(found, QColor("#ed5b00"));
}

} // namespace
} // namespace tessarel::qt
