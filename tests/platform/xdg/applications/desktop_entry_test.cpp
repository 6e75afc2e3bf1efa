// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/desktop_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tessarel::xdg {
namespace {

std::optional<std::string> nameOf(const std::string& lines) {
    const auto entry = DesktopEntry::parse("[Desktop Entry]\n" + lines);
    return entry ? entry->name() : std::nullopt;
}

TEST(DesktopEntryName, IsReadFromTheMainGroup) {
    EXPECT_EQ(nameOf("Name=Text Editor\n[Desktop Action New]\nName=New\n"), "Text Editor");
    EXPECT_EQ(nameOf("Name = Text Editor \r\n"), "Text Editor");
}

TEST(DesktopEntryName, IsEmptyWithoutAText) {
    EXPECT_EQ(nameOf("GenericName=Editor\n"), std::nullopt);
    EXPECT_EQ(nameOf("Name=\n"), std::nullopt);
    EXPECT_EQ(nameOf("[Desktop Action New]\nName=New\n"), std::nullopt);
}

TEST(DesktopEntryName, IsUnescaped) {
    EXPECT_EQ(nameOf(R"(Name=\sEditor\\2)"), R"( Editor\2)");
}

TEST(DesktopEntryName, WithAnEscapeThatDoesNotEndIsReadWithoutAWarning) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(nameOf("Name=a\\qb\\"), "a\\qb");
    EXPECT_EQ(nameOf("Name=a\\qb\\\nIcon=c\n"), "a\\qb");
    EXPECT_EQ(nameOf("Name=a\\qb\\\r\n"), "a\\qb");
    EXPECT_EQ(nameOf(std::string("Name=a\\qb\\\0c\n", 13)), "a\\qb");
    EXPECT_EQ(nameOf("Name=a\\\\\nIcon=c\n"), "a\\") << "a whole escape";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(DesktopEntryName, IsOneLine) {
    EXPECT_EQ(nameOf(R"(Name=Text\nEditor\t2)"), "Text Editor 2");
}

TEST(DesktopEntryName, IsEmptyUnlessItIsUtf8) {
    EXPECT_EQ(nameOf("Name=Caf\xC3\xA9"), "Caf\xC3\xA9");
    EXPECT_EQ(nameOf("Name=Caf\xE9"), std::nullopt);
}

TEST(DesktopEntryTest, AnIndentedGroupEndsTheMainGroupAlsoWithoutTranslations) {
    const auto entry = DesktopEntry::parseUntranslated(
        " [Desktop Entry]\nIcon=a\n \t\f[Desktop Action New]\nIcon=b\nName[de]=c\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->icon(), "a");
}

TEST(DesktopEntryTest, ContentThatIsNoDesktopEntryIsRejected) {
    for (const std::string_view content :
         {"", "=", "[", "\n\n", "Hidden=true", "\xff\xfe=", "[Desktop Action New]\nName=New\n"})
        EXPECT_FALSE(DesktopEntry::parse(content)) << content;
}

TEST(DesktopEntryTest, APlainPathIsUnchanged) {
    EXPECT_EQ(DesktopEntry::execWord("/usr/bin/tessarel-1.0_x"), "/usr/bin/tessarel-1.0_x");
}

TEST(DesktopEntryTest, ReservedCharactersAreQuoted) {
    EXPECT_EQ(DesktopEntry::execWord("/my programs/it's"), R"("/my programs/it's")");
    EXPECT_EQ(DesktopEntry::execWord("/a(b)&c;d"), R"("/a(b)&c;d")");
    EXPECT_EQ(DesktopEntry::execWord(""), R"("")");
}

TEST(DesktopEntryTest, CharactersSpecialInQuotesAreEscapedForTheWordAndForTheFile) {
    EXPECT_EQ(DesktopEntry::execWord(R"(/a"b)"), R"("/a\"b")");
    EXPECT_EQ(DesktopEntry::execWord("/a$b`c"), R"("/a\$b\`c")");
    EXPECT_THAT(DesktopEntry::autostart("A", R"(/a"b)"), testing::HasSubstr(R"(Exec="/a\\"b")"));
    EXPECT_THAT(DesktopEntry::autostart("A", R"(/a\b)"), testing::HasSubstr(R"(Exec="/a\\\\b")"));
}

TEST(DesktopEntryTest, APercentSignIsDoubled) {
    EXPECT_EQ(DesktopEntry::execWord("/100%u"), "/100%%u");
}

TEST(DesktopEntryTest, ALineFeedIsEscaped) {
    EXPECT_THAT(DesktopEntry::autostart("A\nHidden=true", "/a\nHidden=true\tb"),
                testing::HasSubstr("\nName=A\\nHidden=true\nExec=\"/a\\nHidden=true\tb\"\n"));
}

} // namespace
} // namespace tessarel::xdg
