#include "platform/xdg/desktop_entry.h"

#include <gtest/gtest.h>

namespace tessarel::xdg::desktop_entry {
namespace {

const std::vector<std::string> kNoLanguage;

std::optional<std::string> nameOf(const std::string& lines) {
    return name("[Desktop Entry]\n" + lines, kNoLanguage);
}

TEST(DesktopEntryName, IsReadFromTheMainGroup) {
    EXPECT_EQ(nameOf("Name=Text Editor\n[Desktop Action New]\nName=New\n"), "Text Editor");
    EXPECT_EQ(nameOf("Name = Text Editor \r\n"), "Text Editor");
}

TEST(DesktopEntryName, IsEmptyWithoutAText) {
    EXPECT_EQ(nameOf("GenericName=Editor\n"), std::nullopt);
    EXPECT_EQ(nameOf("Name=\n"), std::nullopt);
    EXPECT_EQ(nameOf("[Desktop Action New]\nName=New\n"), std::nullopt);
    EXPECT_EQ(name("", kNoLanguage), std::nullopt);
}

TEST(DesktopEntryName, IsUnescaped) {
    EXPECT_EQ(nameOf(R"(Name=\sEditor\\2\;)"), R"( Editor\2;)");
    EXPECT_EQ(nameOf("Name=Editor\\"), "Editor\\");
}

TEST(DesktopEntryName, IsOneLine) {
    EXPECT_EQ(nameOf(R"(Name=Text\nEditor\t2)"), "Text Editor 2");
}

TEST(DesktopEntryName, IsAlwaysValidUtf8) {
    EXPECT_EQ(nameOf("Name=Caf\xC3\xA9"), "Caf\xC3\xA9");
    EXPECT_EQ(nameOf("Name=Caf\xE9"), "Caf\xC3\xA9");
}

TEST(DesktopEntryName, IsInTheFirstLanguageThatTheEntryHas) {
    const std::string content = "[Desktop Entry]\nName=Files\nName[de]=Dateien\nName[pt]=Arquivos\n";

    EXPECT_EQ(name(content, {"fr", "pt", "de"}), "Arquivos");
    EXPECT_EQ(name(content, {"pt_BR"}), "Files");
}

} // namespace
} // namespace tessarel::xdg::desktop_entry
