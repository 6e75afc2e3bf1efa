#include "platform/qt/qt_url_loading_module.h"

#include "web_test.h"

#include <QByteArray>
#include <QFile>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>

namespace tessarel::qt {
namespace {

TEST_F(WebTest, TheFirstRequestLoadsTheModuleAndGetsAResponse) {
    WebServer server;
    server.at("/", reply("200 OK", "x"));
    QtUrlLoadingModule loading;
    std::optional<UrlResponse> answer;

    const auto load = loading.load({.url = server.url("/"),
                                    .userAgent = "Test/1.0",
                                    .timeLimit = std::chrono::seconds(15),
                                    .largestBody = 10},
                                   [&](const auto& response) { answer = response; });

    EXPECT_TRUE(loopUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer, (UrlResponse{200, "x"}));
}

TEST_F(WebTest, WithoutTheModuleARequestHasNoResponse) {
    QtUrlLoadingModule loading({"no/such/folder"});
    int answers = 0;
    std::optional<UrlResponse> answer;

    const auto load =
        loading.load({.url = "https://127.0.0.1/", .userAgent = "Test/1.0"}, [&](const auto& response) {
            ++answers;
            answer = response;
        });
    EXPECT_EQ(answers, 0) << "not before the call has returned";

    EXPECT_TRUE(loopUntil([&] { return answers == 1; }));
    EXPECT_EQ(answer, std::nullopt);
}

} // namespace
} // namespace tessarel::qt
