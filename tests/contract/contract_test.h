// SPDX-License-Identifier: MIT

#pragma once

#include "contract/contract_desktop.h"
#include "support/x11/deadline.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string_view>
#include <variant>

namespace tessarel::contract {

using namespace std::chrono_literals;

inline constexpr std::uint32_t kCtrlOpt = 4096 + 2048;
inline constexpr std::uint32_t kKey1 = 18;
inline constexpr std::uint32_t kKey2 = 19;
inline constexpr std::uint32_t kKeyC = 8;

/// Base of the contract tests: a new desktop for every test, with helpers to read and write windows.
class ContractTest : public ::testing::Test {
protected:
    /// Skips a test of combinations that another program has claimed, on a desktop where programs share them.
    void skipUnlessHotKeysAreExclusive() {
        if (!desktop->hotKeysAreExclusive())
            GTEST_SKIP() << "programs share their hot keys on this desktop";
    }

    [[nodiscard]] WindowHandle openWindow(const WindowOptions& options = {}) {
        return desktop->openWindow(desktop->launchApplication("org.example.editor"), options);
    }

    /// Returns the attribute's value; empty when it has none or is not of type `Value`.
    template <typename Value>
    [[nodiscard]] std::optional<Value> read(const Element& element, std::string_view attribute) {
        const auto value = desktop->accessibility().copyAttribute(element, attribute);
        const auto* typed = value ? std::get_if<Value>(&*value) : nullptr;
        return typed ? std::optional(*typed) : std::nullopt;
    }

    /// Returns the window's frame as the back end reads it, or the null rectangle if it cannot be read.
    [[nodiscard]] Rect readFrameOnce(const Element& window) {
        const auto position = read<Point>(window, attribute::kPosition);
        const auto size = read<Size>(window, attribute::kSize);
        return position && size ? Rect{position->x, position->y, size->width, size->height} : Rect::null();
    }

    /// Returns the frame of a window that has one. On a busy machine a window may take a written frame later
    /// than a read waits for; it cannot be read until then.
    [[nodiscard]] Rect readFrame(const Element& window) {
        Rect frame = readFrameOnce(window);
        for (const x11test::Deadline deadline; frame.isNull() && !deadline.passed();) {
            desktop->settle();
            frame = readFrameOnce(window);
        }
        EXPECT_FALSE(frame.isNull());
        return frame;
    }

    /// Writes size, position and size again, in the order in which the core places windows.
    void writeFrame(const Element& window, const Rect& axFrame) {
        AccessibilityPort& accessibility = desktop->accessibility();
        accessibility.setAttribute(window, attribute::kSize, axFrame.size());
        accessibility.setAttribute(window, attribute::kPosition, axFrame.origin());
        accessibility.setAttribute(window, attribute::kSize, axFrame.size());
    }

    std::unique_ptr<ContractDesktop> desktop = makeContractDesktop();
};

} // namespace tessarel::contract
