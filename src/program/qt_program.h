// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// Sets Qt's style, the name and version of the program, and keeps the program running without windows. Call
/// before creating the application object.
void describeProgramToQt();

} // namespace tessarel
