#pragma once

#include "engine/dice.h"
#include "model/app_settings.h"
#include "platform/sim/sim_desktop.h"

#include <vector>

namespace tessarel {

/// A display of any size anywhere, beside or on top of one of `others` more often than not, with bars at any
/// of its sides. It has no id yet.
[[nodiscard]] Screen randomScreen(Dice& dice, const std::vector<Screen>& others);

/// A frame that touches one of `screens` more often than not, in accessibility coordinates.
[[nodiscard]] Rect randomFrame(Dice& dice, const std::vector<Screen>& screens);

/// `frame`, a little or a lot moved or resized; often right at the tolerances of the engine.
[[nodiscard]] Rect randomlyMoved(Dice& dice, const Rect& frame);

/// Makes the window of one of the kinds that there are: small, of fixed size, a dialog, minimised, late,
/// unreadable and so on. Its frame stays.
void giveRandomTraits(Dice& dice, sim::SimWindow& window);

/// An entry of the window list that is a little or entirely wrong about `window`.
[[nodiscard]] ListedWindow randomlyListed(Dice& dice, const sim::SimWindow& window);

[[nodiscard]] sim::SimApplication randomApplication(Dice& dice);

/// Changes one or several of the settings that the engine reads.
void changeSettings(Dice& dice, AppSettings& settings);

} // namespace tessarel
