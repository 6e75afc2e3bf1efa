// SPDX-License-Identifier: MIT

#include "engine/engine_session.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string_view>

namespace tessarel {
namespace {

constexpr std::uint64_t kSteps = 100'000;
constexpr std::uint64_t kStepsOfOneSession = 250;
/// Minimum number of times that `kSteps` steps must take each branch.
constexpr long kEnough = 40;

/// Every branch of the reference engine.
constexpr std::array<std::string_view, 79> kBranches{
    "arrange: main screen",
    "arrange: no screen",
    "arrange: no zone",
    "arrange: one window or none",
    "arrange: several windows",
    "center: fits",
    "center: larger than the area",
    "center: no screen",
    "correction: growth",
    "correction: move",
    "correction: not placed",
    "focused window: ignored",
    "focused window: no application in front",
    "focused window: none",
    "focused window: this program in front",
    "frame: unreadable",
    "handle: no such action",
    "late: as requested",
    "late: pulled back",
    "late: requested again",
    "late: twice",
    "late: unusable by then",
    "late restore: done",
    "late restore: requested again",
    "late restore: unusable by then",
    "match: seen before",
    "move: fewer than two displays",
    "move: neighbour",
    "move: wraps",
    "place: chain begins",
    "place: chain goes on",
    "place: chain goes on after a late drop",
    "place: chain goes on after a late placement",
    "place: chain goes on after a late placement without its size",
    "place: chain goes on after an earlier late placement",
    "place: instead of a late restore",
    "place: unreadable after",
    "place: unreadable before",
    "register: disabled zone",
    "register: granted",
    "register: refused",
    "register: unbound",
    "remember: already",
    "remember: nameless application",
    "remember: off",
    "remember: saved",
    "restore: back",
    "restore: late",
    "restore: nothing remembered",
    "run: disabled zone",
    "run: not trusted",
    "run: paused",
    "scan: elsewhere",
    "scan: enough",
    "scan: ignored",
    "scan: layer, process or bounds",
    "scan: no element",
    "scan: this program",
    "scan: too small",
    "scan: transparent",
    "screen of a window: largest share",
    "screen of a window: no display",
    "screen of a window: off screen",
    "set frame: cannot be expressed",
    "set frame: enhanced interface on",
    "set frame: out at the bottom",
    "set frame: out at the right",
    "set frame: out by one point",
    "set frame: unreadable afterwards",
    "snap: fixed zone",
    "snap: no screen",
    "snap: numbered zone",
    "unusable: full screen",
    "unusable: minimised",
    "unusable: role",
    "windows of an application: unreadable",
    "zone: nothing left",
    "zone: something left",
    "zone: too small",
};

/// Returns the number in an environment variable, or `otherwise` when it is not set.
std::uint64_t numberFrom(const char* variable, std::uint64_t otherwise) {
    const char* const text = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): one thread
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

/// Runs random sessions with the seeds from `firstSeed` on for `steps` steps in all and fails at the first
/// difference. Adds to `branches` how often each branch of the reference engine was taken.
void run(std::uint64_t steps, std::uint64_t firstSeed, ReferenceEngine::Branches& branches) {
    std::uint64_t done = 0;
    for (std::uint64_t seed = firstSeed; done < steps; ++seed) {
        EngineSession session(seed);
        for (std::uint64_t step = 1; step <= kStepsOfOneSession && done < steps; ++step, ++done) {
            session.step();
            const auto difference = session.difference();
            ASSERT_FALSE(difference) << "seed " << seed << ", step " << step << ", " << *difference
                                     << "To repeat: TESSAREL_RANDOM_SEED=" << seed
                                     << " TESSAREL_RANDOM_STEPS=" << step << " engine_session_test";
        }
        for (const auto& [branch, times] : session.branches())
            branches[branch] += times;
    }
}

TEST(EngineSessionTest, TheEngineAgreesWithTheReferenceEngine) {
    const std::uint64_t steps = numberFrom("TESSAREL_RANDOM_STEPS", kSteps);
    ReferenceEngine::Branches branches;
    ASSERT_NO_FATAL_FAILURE(run(steps, numberFrom("TESSAREL_RANDOM_SEED", 1), branches));
    if (steps < kSteps)
        return; // a short run, for debugging, need not reach every branch
    EXPECT_EQ(branches.size(), kBranches.size());
    for (const std::string_view branch : kBranches)
        EXPECT_GE(branches[branch], kEnough) << branch;
}

} // namespace
} // namespace tessarel
