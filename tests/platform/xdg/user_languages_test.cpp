#include "platform/xdg/user_languages.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tessarel::xdg {
namespace {

using Languages = std::vector<std::string>;

/// An environment without locale variables, except those that a test sets.
class UserLanguagesTest : public ::testing::Test {
protected:
    UserLanguagesTest() { forgetAll(); }
    ~UserLanguagesTest() override { forgetAll(); }

    static void forgetAll() {
        for (const char* const variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
            ::unsetenv(variable);
    }
    static void set(const char* variable, const char* value) { ::setenv(variable, value, 1); }
};

TEST_F(UserLanguagesTest, WithoutALocaleThereAreNoLanguages) {
    EXPECT_EQ(userLanguages(), Languages{});
}

TEST_F(UserLanguagesTest, TheMostSpecificLanguageComesFirst) {
    set("LANG", "sr_RS.UTF-8@latin");

    EXPECT_EQ(userLanguages(), (Languages{"sr_RS@latin", "sr_RS", "sr@latin", "sr"}));
}

TEST_F(UserLanguagesTest, ALanguageWithoutACountryIsReturned) {
    set("LANG", "eo");

    EXPECT_EQ(userLanguages().front(), "eo");
}

TEST_F(UserLanguagesTest, TheMoreImportantVariableDecides) {
    set("LANG", "fr_FR.UTF-8");
    set("LC_MESSAGES", "de_DE.UTF-8");
    EXPECT_EQ(userLanguages(), (Languages{"de_DE", "de"}));

    set("LC_ALL", "it_IT.UTF-8");
    EXPECT_EQ(userLanguages(), (Languages{"it_IT", "it"}));
}

TEST_F(UserLanguagesTest, AListOfLanguagesComesBeforeTheLocale) {
    set("LANG", "de_DE.UTF-8");
    set("LANGUAGE", "pt_BR::fr");

    EXPECT_EQ(userLanguages(), (Languages{"pt_BR", "pt", "fr", "fr", "de_DE", "de"}));
}

TEST_F(UserLanguagesTest, TheCLocaleDisablesTranslations) {
    set("LANGUAGE", "de");
    for (const char* const locale : {"C", "C.UTF-8", "POSIX"}) {
        set("LANG", locale);
        EXPECT_EQ(userLanguages(), Languages{}) << locale;
    }
}

} // namespace
} // namespace tessarel::xdg
