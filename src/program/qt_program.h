#pragma once

#include <string>

namespace tessarel {

/// A line on the standard error stream, under the program's name.
void say(const std::string& line);

/// Tells Qt what it has to know of this program. Call it before the application object is made.
void describeProgramToQt();

} // namespace tessarel
