// SPDX-License-Identifier: MIT

#pragma once

#include <functional>

namespace tessarel::qt {

/// Installs the program's own handler for Qt's messages.
///
/// A fatal message is printed on stderr in one line and ends the process with exit code 1; Qt itself would
/// abort with a core dump. `displayLost` is called instead if `isDisplayLost` returns true then, and when Qt
/// reports that the connection to the X server broke, before Qt ends the process. All other messages are
/// dropped, because they address developers.
void installMessageHandler(std::function<void()> displayLost, std::function<bool()> isDisplayLost);

} // namespace tessarel::qt
