// SPDX-License-Identifier: MIT

#include "model/config.h"

#include <QFile>
#include <QString>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

#include <map>
#include <string>

namespace tessarel {
namespace {

/// Reads the property list of the bundle: the values as texts, by key; those of an array in one line.
class InfoPlistTest : public testing::Test {
protected:
    void SetUp() override {
        QFile file(QStringLiteral(TESSAREL_INFO_PLIST));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QXmlStreamReader xml(&file);
        ASSERT_TRUE(xml.readNextStartElement() && xml.name() == QLatin1String("plist"));
        EXPECT_EQ(xml.attributes().value(QLatin1String("version")), QLatin1String("1.0"));
        ASSERT_TRUE(xml.readNextStartElement() && xml.name() == QLatin1String("dict"));
        while (xml.readNextStartElement())
            readEntry(xml);
        xml.readNext();
        EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    }

    std::map<std::string, std::string> values;

private:
    void readEntry(QXmlStreamReader& xml) {
        ASSERT_EQ(xml.name(), QLatin1String("key"));
        const std::string key = xml.readElementText().toStdString();
        ASSERT_TRUE(xml.readNextStartElement()) << key;
        const std::string type = xml.name().toString().toStdString();
        const std::string text =
            xml.readElementText(QXmlStreamReader::IncludeChildElements).simplified().toStdString();
        EXPECT_TRUE(values.emplace(key, text.empty() ? type : text).second) << key;
    }
};

TEST_F(InfoPlistTest, TheBundleDescribesThisProgram) {
    EXPECT_EQ(values["CFBundleIdentifier"], Config::bundleID);
    EXPECT_EQ(values["CFBundleShortVersionString"], Config::version);
    EXPECT_EQ(values["CFBundleVersion"], Config::version);
    EXPECT_EQ(values["CFBundleName"], Config::appName);
    EXPECT_EQ(values["CFBundleExecutable"], "Tessarel");
    EXPECT_EQ(values["CFBundlePackageType"], "APPL");
    EXPECT_EQ(values["CFBundleIconFile"], "Tessarel");
}

TEST_F(InfoPlistTest, TheAddressesOfCommandsBelongToTheProgram) {
    EXPECT_EQ(values["CFBundleURLTypes"],
              "CFBundleURLName " + std::string(Config::bundleID) + " CFBundleURLSchemes tessarel");
}

TEST_F(InfoPlistTest, TheProgramHasNoDockIcon) {
    EXPECT_EQ(values["LSUIElement"], "true");
}

TEST_F(InfoPlistTest, TheOldestSystemIsTheOneThatLoginItemsNeed) {
    EXPECT_EQ(values["LSMinimumSystemVersion"], "13.0");
}

TEST_F(InfoPlistTest, NoValueIsEmptyOrAPlaceholder) {
    for (const auto& [key, value] : values) {
        EXPECT_NE(value, "") << key;
        EXPECT_EQ(value.find_first_of("@$"), std::string::npos) << key;
    }
}

} // namespace
} // namespace tessarel
