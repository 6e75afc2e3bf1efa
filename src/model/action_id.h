// SPDX-License-Identifier: MIT

#pragma once

#include "model/binding.h"
#include "model/zone.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tessarel {

/// A command that the user can give by hot key or from the menu.
///
/// Behaves like its enumeration: write a case as `ActionID::leftHalf`, compare it, use it in a `switch`. The
/// order of the cases is the order of the settings window and fixes the ids of hot keys and the tags of menu
/// rows.
class ActionID {
public:
    enum Case : std::uint8_t {
        zone1,
        zone2,
        zone3,
        zone4,
        zone5,
        zone6,
        zone7,
        zone8,
        zone9,
        leftHalf,
        rightHalf,
        topHalf,
        bottomHalf,
        maximize,
        center,
        restore,
        nextDisplay,
        previousDisplay,
        arrangeAll,
    };

    /// All cases in the order of declaration.
    static const std::array<ActionID, 19> allCases;
    /// `zone1` to `zone9`.
    static const std::array<ActionID, kZoneSlots> zoneActions;

    // NOLINTNEXTLINE(google-explicit-constructor): a case is an action
    constexpr ActionID(Case action) : m_case(action) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    constexpr operator Case() const { return m_case; }

    /// Returns the case whose raw value is exactly `rawValue`, or `std::nullopt` for any other string.
    [[nodiscard]] static std::optional<ActionID> fromRawValue(std::string_view rawValue);

    /// Returns the name of the case as stored in the settings document.
    [[nodiscard]] std::string_view rawValue() const;

    /// Returns the index in `zoneActions`, from 0, or `std::nullopt` for actions without a numbered zone.
    [[nodiscard]] std::optional<std::size_t> zoneIndex() const;

    /// Returns the text that is shown to the user.
    [[nodiscard]] std::string_view title() const;

    /// Returns the zone of a half or of `maximize`, which is enabled and independent of the user's zones, or
    /// `std::nullopt` for any other action.
    [[nodiscard]] std::optional<Zone> fixedZone() const;

    /// Returns the hot key that the action has until the user changes it. No two actions share one.
    [[nodiscard]] Binding defaultBinding() const;

private:
    Case m_case;
};

inline constexpr std::array<ActionID, kZoneSlots> ActionID::zoneActions{zone1, zone2, zone3, zone4, zone5,
                                                                        zone6, zone7, zone8, zone9};

inline constexpr std::array<ActionID, 19> ActionID::allCases{
    zone1,  zone2,   zone3,       zone4,           zone5,     zone6,      zone7,
    zone8,  zone9,   leftHalf,    rightHalf,       topHalf,   bottomHalf, maximize,
    center, restore, nextDisplay, previousDisplay, arrangeAll};

} // namespace tessarel
