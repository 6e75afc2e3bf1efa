// SPDX-License-Identifier: MIT

#include "app/updates/update_feed.h"
#include "update_check_properties.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>

namespace tessarel {
namespace {

constexpr int kRounds = 20'000;

/// Damages texts at random, but in the same way in each run.
class Mutator {
public:
    std::string mutated(std::string text) {
        for (std::size_t change = 0; change <= below(4); ++change)
            spoil(text);
        return text;
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

private:
    void spoil(std::string& text) {
        const std::size_t place = below(text.size() + 1);
        switch (below(4)) {
        case 0:
            text.erase(place, below(5));
            return;
        case 1:
            text.insert(place, 1, static_cast<char>(below(256)));
            return;
        case 2:
            text.insert(place, text.substr(below(text.size() + 1), below(9)));
            return;
        default:
            text.insert(place, 1, "{}[]\",:.0123456789-+e\\"[below(22)]);
        }
    }

    std::mt19937 m_random;
};

TEST(UpdateFeedMutationTest, ADamagedFeedIsDecodedTheSameEachTimeOrRejected) {
    Mutator mutator;
    int feeds = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string document = mutator.mutated(
            R"({"version": "1.10.2", "notes": "a\u00e4\n", "url": "https://a.example/", "x": [1e3, {}]})");
        ASSERT_TRUE(fuzz::isReadTheSameAgain(document)) << document;
        feeds += decodeUpdateFeed(document) ? 1 : 0;
    }
    EXPECT_GT(feeds, 0);
    EXPECT_LT(feeds, kRounds);
}

TEST(UpdateFeedMutationTest, DamagedVersionsAreStillOrderedConsistently) {
    Mutator mutator;
    for (int round = 0; round < kRounds; ++round) {
        const std::string a = mutator.mutated("1.10.2");
        const std::string b = mutator.mutated("1.10.2");
        const std::string c = mutator.mutated("1.9.-3");
        ASSERT_TRUE(fuzz::areInAnOrder(a, b, c)) << a << " " << b << " " << c;
    }
}

} // namespace
} // namespace tessarel
