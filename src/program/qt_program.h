#pragma once

#include <string>

namespace tessarel {

/// Writes a line to the standard error stream, prefixed with the program's name.
void say(const std::string& line);

/// Sets Qt's style, the name and version of the program, and keeps the program running without windows. Call
/// before creating the application object.
void describeProgramToQt();

} // namespace tessarel
