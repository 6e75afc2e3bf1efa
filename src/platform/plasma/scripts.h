// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::plasma {

/// The text of bridge.js. "@SERVICE@" in it stands for the bus name of the program, "@PID@" for its process
/// id.
extern const char* const kBridgeScript;

/// The text of modifier_effect.js. "@MODIFIER@" in it stands for Qt's number of a modifier key.
extern const char* const kModifierEffect;

} // namespace tessarel::plasma
