// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// Sets the name and version of the program, and keeps the program running without windows. Call before
/// creating the application object.
void describeProgramToQt();

/// Sets the style of all windows, the same on every system; it takes its colours from the palette. Call after
/// creating the application object, which takes a style named in the environment (`QT_STYLE_OVERRIDE`).
void useControlStyle();

} // namespace tessarel
