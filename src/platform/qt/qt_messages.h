#pragma once

#include <functional>

namespace tessarel::qt {

/// Has the program decide what becomes of Qt's messages, from now on.
///
/// What Qt cannot survive ends the program with exit code 1 and one line, where Qt would dump core. When Qt
/// says that its display has gone, and would end the program with words of others, `displayLost` is called.
/// Warnings are left out: they are for those who write programs, not for those who use them.
void installMessageHandler(std::function<void()> displayLost);

} // namespace tessarel::qt
