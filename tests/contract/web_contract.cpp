// SPDX-License-Identifier: MIT

#include "contract/contract_web.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace tessarel::contract {
namespace {

using namespace std::chrono_literals;

class UrlLoadingContract : public ::testing::Test {
protected:
    [[nodiscard]] SubscriptionPtr load(const std::string& url, std::chrono::milliseconds timeLimit = 15s) {
        return web->urlLoading().load(
            {.url = url, .userAgent = "Test/1.0", .timeLimit = timeLimit, .largestBody = 10},
            [this](const auto& response) { answers.push_back(response); });
    }

    /// Loads `url` and returns the response.
    [[nodiscard]] std::optional<UrlResponse> answerOf(const std::string& url,
                                                      std::chrono::milliseconds timeLimit = 15s) {
        const auto request = load(url, timeLimit);
        EXPECT_TRUE(web->runUntil([this] { return !answers.empty(); }));
        return answers.empty() ? UrlResponse{-1, "no response"} : answers.back();
    }

    std::unique_ptr<ContractWeb> web = makeContractWeb();
    std::vector<std::optional<UrlResponse>> answers;
};

TEST_F(UrlLoadingContract, TheResponseIsDeliveredOnceAndAfterTheCall) {
    const auto request = load(web->page({200, "hello"}));
    EXPECT_TRUE(answers.empty());

    EXPECT_TRUE(web->runUntil([this] { return !answers.empty(); }));
    web->advance(1ms);

    EXPECT_EQ(answers, (std::vector<std::optional<UrlResponse>>{{{200, "hello"}}}));
}

TEST_F(UrlLoadingContract, AnErrorStatusIsAResponse) {
    EXPECT_EQ(answerOf(web->page({404, "{}"})), (UrlResponse{404, "{}"}));
}

TEST_F(UrlLoadingContract, ABodyLargerThanTheLimitIsOmitted) {
    EXPECT_EQ(answerOf(web->page({200, "0123456789"})), (UrlResponse{200, "0123456789"}));
    answers.clear();
    EXPECT_EQ(answerOf(web->page({200, "0123456789a"})), (UrlResponse{200, std::nullopt}));
}

TEST_F(UrlLoadingContract, ARequestWithoutAServerHasNoResponse) {
    EXPECT_EQ(answerOf(web->nowhere()), std::nullopt);
}

TEST_F(UrlLoadingContract, ARequestTimesOut) {
    EXPECT_EQ(answerOf(web->silentPage(), 20ms), std::nullopt);
}

TEST_F(UrlLoadingContract, AFileUrlIsNotLoaded) {
    EXPECT_EQ(answerOf("file:///etc/hostname"), std::nullopt);
}

TEST_F(UrlLoadingContract, ADestroyedRequestIsNotCompleted) {
    const std::string page = web->page({200, "hello"});
    auto ended = load(page);
    ended.reset();

    (void)answerOf(page); // the first request would have been completed before this one

    EXPECT_EQ(answers.size(), 1U);
}

class WallClockContract : public ::testing::Test {
protected:
    std::unique_ptr<ContractWeb> web = makeContractWeb();
};

TEST_F(WallClockContract, TimeIsInSecondsSince1970) {
    constexpr double kYear2026 = 1'767'225'600;

    EXPECT_GT(web->wallClock().secondsSince1970(), kYear2026);
}

TEST_F(WallClockContract, TimePasses) {
    const double before = web->wallClock().secondsSince1970();

    web->advance(20ms);

    EXPECT_GT(web->wallClock().secondsSince1970(), before);
}

} // namespace
} // namespace tessarel::contract
