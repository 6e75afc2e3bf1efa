// SPDX-License-Identifier: MIT

#include "platform/qt/qt_open_url.h"

#include <QApplication>
#include <QDesktopServices>
#include <QStringList>
#include <QTextBrowser>
#include <QUrl>
#include <QVariant>
#include <gtest/gtest.h>

#include <array>

namespace tessarel::qt {
namespace {

/// Stands in for the user's browser: Qt calls its slot for URLs of two schemes.
class Browser : public QTextBrowser {
public:
    Browser() {
        QDesktopServices::setUrlHandler("https", this, "setSource");
        QDesktopServices::setUrlHandler("file", this, "setSource");
    }
    ~Browser() override {
        QDesktopServices::unsetUrlHandler("https");
        QDesktopServices::unsetUrlHandler("file");
    }

    QVariant loadResource(int, const QUrl& url) override {
        opened << url.toString();
        return "page";
    }

    QStringList opened;
};

class QtOpenUrlTest : public testing::Test {
protected:
    static void SetUpTestSuite() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    int argumentCount = 1;
    std::array<char, 5> programName{"test"};
    std::array<char*, 2> arguments{programName.data(), nullptr};
    QApplication application{argumentCount, arguments.data()};
    Browser browser;
    QtOpenUrl openUrl;
};

TEST_F(QtOpenUrlTest, OpensAUrl) {
    EXPECT_TRUE(openUrl.open("https://example.org/page?a=1#top"));

    EXPECT_EQ(browser.opened.value(0), "https://example.org/page?a=1#top");
}

TEST_F(QtOpenUrlTest, IgnoresTextThatIsNotAnAbsoluteUrl) {
    EXPECT_FALSE(openUrl.open(""));
    EXPECT_FALSE(openUrl.open("/etc/passwd"));
    EXPECT_FALSE(openUrl.open("example.org"));
    EXPECT_FALSE(openUrl.open("https://[not a host"));

    EXPECT_TRUE(browser.opened.isEmpty());
}

} // namespace
} // namespace tessarel::qt
