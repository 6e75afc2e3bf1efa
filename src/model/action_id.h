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
/// Behaves like its enumeration: cases are written `ActionID::leftHalf`, compared, and used in a `switch`.
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

    /// All nineteen cases in the order of their declaration.
    static const std::array<ActionID, 19> allCases;
    /// `zone1` to `zone9`.
    static const std::array<ActionID, kZoneSlots> zoneActions;

    // NOLINTNEXTLINE(google-explicit-constructor): a case is an action
    constexpr ActionID(Case action) : m_case(action) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    constexpr operator Case() const { return m_case; }

    /// The case whose raw value equals `rawValue` exactly; none for any other string.
    [[nodiscard]] static std::optional<ActionID> fromRawValue(std::string_view rawValue);

    /// Name of the case as the settings document stores it.
    [[nodiscard]] std::string_view rawValue() const;

    /// Position in `zoneActions`; none for the actions that are not about a numbered zone.
    [[nodiscard]] std::optional<std::size_t> zoneIndex() const;

    /// Text shown to the user.
    [[nodiscard]] std::string_view title() const;

    /// The zone of the halves and of `maximize`, enabled and independent of the user's zones; none for all
    /// others.
    [[nodiscard]] std::optional<Zone> fixedZone() const;

    /// The hot key that the action has until the user changes it; no two actions share one.
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
