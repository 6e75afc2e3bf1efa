// SPDX-License-Identifier: MIT

#include "platform/qt_web/memory_limit.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace tessarel::qt {
namespace {

constexpr qsizetype kMiB = 1024LL * 1024;

/// Limits the memory and ends the process with success once it has `size` bytes more.
[[noreturn]] void exitWith(qsizetype size) {
    limitMemory();
    std::thread([size] {
        const QByteArray bytes(size, 'x');
        std::_Exit(bytes.back() == 'x' ? EXIT_SUCCESS : EXIT_FAILURE);
    }).join();
    std::_Exit(EXIT_FAILURE);
}

TEST(MemoryLimitTest, AMultipleOfWhatARequestTakesIsLeft) {
    EXPECT_EXIT(exitWith(64 * kMiB), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(MemoryLimitTest, AProcessThatExceedsTheLimitEndsWithAFailure) {
    EXPECT_EXIT(exitWith(100 * kMiB), testing::ExitedWithCode(EXIT_FAILURE), "");
}

} // namespace
} // namespace tessarel::qt
