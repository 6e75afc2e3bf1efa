// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::plasma {

/// The text of bridge.js. "@SERVICE@" in it stands for the bus name of the program.
extern const char* const kBridgeScript;

} // namespace tessarel::plasma
