// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::posix {

/// Lets writes fail that would otherwise end the process by a signal: to a pipe without a reader (SIGPIPE)
/// and beyond the permitted size of a file (SIGXFSZ). Programs that this one starts get the default effect,
/// unless the parent process has set the signal to be ignored.
void surviveFailedWrites();

} // namespace tessarel::posix
