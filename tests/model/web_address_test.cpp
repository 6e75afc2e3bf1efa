// SPDX-License-Identifier: MIT

#include "model/web_address.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarel {
namespace {

TEST(WebAddressTest, AbsoluteHttpAndHttpsAddressesAreWebAddresses) {
    for (const char* text : {"https://example.org", "http://example.org/", "HTTPS://Example.ORG/a?b=c#d",
                             "https://user@example.org:8443/", "http://127.0.0.1:80", "https://[::1]/",
                             "https://m\xC3\xBCller.example/%20", "https://example.org?url=file:///etc",
                             "https://example.org/!a@b:c", "https://one@two@example.org", "http://[::1]:80"})
        EXPECT_TRUE(isWebAddress(text)) << text;
}

TEST(WebAddressTest, OtherSchemesAreRejected) {
    for (const char* text :
         {"file:///etc/passwd", "ftp://example.org/", "javascript:alert(1)", "mailto:a@example.org",
          "data:text/html,x", "httpx://example.org", "shttp://example.org", "x-https://example.org"})
        EXPECT_FALSE(isWebAddress(text)) << text;
}

TEST(WebAddressTest, RelativeAddressesAreRejected) {
    for (const char* text : {"", "example.org", "/page", "//example.org/", "https:", "https:/example.org",
                             "https:example.org", "?a=b"})
        EXPECT_FALSE(isWebAddress(text)) << text;
}

TEST(WebAddressTest, AnAddressNeedsAHost) {
    for (const char* text : {"https://", "https:///path", "http://?a", "http://#a", "https://:443/",
                             "https://user@/", "https://user@:1/", "https://one@two@/", "https://user@?a"})
        EXPECT_FALSE(isWebAddress(text)) << text;
}

TEST(WebAddressTest, CharactersThatMustBePercentEncodedAreRejected) {
    for (const char c : std::string(" \t\r\n\x7F\x01\"<>\\^`{|}"))
        EXPECT_FALSE(isWebAddress(std::string("https://example.org/a") + c + "b")) << int{c};
    EXPECT_FALSE(isWebAddress(std::string_view("https://example.org/\0", 21)));
    EXPECT_FALSE(isWebAddress(" https://example.org/"));
}

} // namespace
} // namespace tessarel
