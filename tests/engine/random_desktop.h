// SPDX-License-Identifier: MIT

#pragma once

#include "engine/dice.h"
#include "model/settings/app_settings.h"
#include "platform/sim/sim_desktop.h"

#include <vector>

namespace tessarel {

/// Returns a display of random size and position, with random bars on its sides. It usually adjoins or covers
/// one of `others`. Its id is 0.
[[nodiscard]] Screen randomScreen(Dice& dice, const std::vector<Screen>& others);

/// Returns a frame in accessibility coordinates that usually overlaps one of `screens`.
[[nodiscard]] Rect randomFrame(Dice& dice, const std::vector<Screen>& screens);

/// Returns `frame` moved or resized, slightly or a lot, often by an amount near the engine's tolerances.
[[nodiscard]] Rect randomlyMoved(Dice& dice, const Rect& frame);

/// Gives the window random traits: limits of its size, a role, minimised, full screen, slow to settle,
/// unreadable attributes and so on. Keeps its frame.
void giveRandomTraits(Dice& dice, sim::SimWindow& window);

/// Returns a window list entry that describes `window` slightly or completely wrongly.
[[nodiscard]] ListedWindow randomlyListed(Dice& dice, const sim::SimWindow& window);

[[nodiscard]] sim::SimApplication randomApplication(Dice& dice);

/// Randomly changes the settings that the engine reads.
void changeSettings(Dice& dice, AppSettings& settings);

} // namespace tessarel
