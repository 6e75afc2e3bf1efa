// SPDX-License-Identifier: MIT

#include "model/action_id.h"

#include "model/presets.h"

#include <algorithm>

namespace tessarel {
namespace {

struct Entry {
    ActionID::Case action;
    std::string_view rawValue;
    std::string_view title;
    std::optional<Zone> fixedZone;
    Binding defaultBinding;
};

constexpr std::int64_t kCtrlOpt = kCtrlKey + kOptKey;
constexpr std::int64_t kCtrlOptCmd = kCtrlKey + kOptKey + kCmdKey;

constexpr std::array<Entry, 19> kEntries{{
    {ActionID::zone1, "zone1", "Snap to Zone 1", {}, {18, kCtrlOpt}},
    {ActionID::zone2, "zone2", "Snap to Zone 2", {}, {19, kCtrlOpt}},
    {ActionID::zone3, "zone3", "Snap to Zone 3", {}, {20, kCtrlOpt}},
    {ActionID::zone4, "zone4", "Snap to Zone 4", {}, {21, kCtrlOpt}},
    {ActionID::zone5, "zone5", "Snap to Zone 5", {}, {23, kCtrlOpt}},
    {ActionID::zone6, "zone6", "Snap to Zone 6", {}, {22, kCtrlOpt}},
    {ActionID::zone7, "zone7", "Snap to Zone 7", {}, {26, kCtrlOpt}},
    {ActionID::zone8, "zone8", "Snap to Zone 8", {}, {28, kCtrlOpt}},
    {ActionID::zone9, "zone9", "Snap to Zone 9", {}, {25, kCtrlOpt}},
    {ActionID::leftHalf, "leftHalf", "Left half", Presets::z(0, 0, 50, 100), {123, kCtrlOpt}},
    {ActionID::rightHalf, "rightHalf", "Right half", Presets::z(50, 0, 50, 100), {124, kCtrlOpt}},
    {ActionID::topHalf, "topHalf", "Top half", Presets::z(0, 0, 100, 50), {126, kCtrlOpt}},
    {ActionID::bottomHalf, "bottomHalf", "Bottom half", Presets::z(0, 50, 100, 50), {125, kCtrlOpt}},
    {ActionID::maximize, "maximize", "Maximize", Presets::z(0, 0, 100, 100), {36, kCtrlOpt}},
    {ActionID::center, "center", "Center", {}, {8, kCtrlOpt}},
    {ActionID::restore, "restore", "Restore previous size", {}, {51, kCtrlOpt}},
    {ActionID::nextDisplay, "nextDisplay", "Move to next display", {}, {124, kCtrlOptCmd}},
    {ActionID::previousDisplay, "previousDisplay", "Move to previous display", {}, {123, kCtrlOptCmd}},
    {ActionID::arrangeAll, "arrangeAll", "Arrange windows into zones", {}, {0, kCtrlOpt}},
}};

/// Returns whether both tables hold every action at the index of its case.
constexpr bool entriesStandAtTheirCase() {
    for (std::size_t index = 0; index < kEntries.size(); ++index) {
        if (kEntries[index].action != index || ActionID::allCases[index] != index)
            return false;
    }
    return true;
}
static_assert(entriesStandAtTheirCase());

const Entry& entryOf(ActionID action) {
    return kEntries[action];
}

} // namespace

std::optional<ActionID> ActionID::fromRawValue(std::string_view rawValue) {
    const auto entry = std::find_if(kEntries.begin(), kEntries.end(),
                                    [&](const Entry& candidate) { return candidate.rawValue == rawValue; });
    if (entry == kEntries.end())
        return std::nullopt;
    return entry->action;
}

std::string_view ActionID::rawValue() const {
    return entryOf(*this).rawValue;
}

std::optional<std::size_t> ActionID::zoneIndex() const {
    if (m_case >= kZoneSlots)
        return std::nullopt;
    return m_case;
}

std::string_view ActionID::title() const {
    return entryOf(*this).title;
}

std::optional<Zone> ActionID::fixedZone() const {
    return entryOf(*this).fixedZone;
}

Binding ActionID::defaultBinding() const {
    return entryOf(*this).defaultBinding;
}

} // namespace tessarel
