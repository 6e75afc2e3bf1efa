// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::qt {

/// Limits the memory of this process to 96 MiB more than it has now. What exceeds the limit ends the process
/// with a failure, on any thread, without a word and without a core file. On macOS, whose kernel does not
/// enforce such limits, only the way of ending changes.
void limitMemory();

} // namespace tessarel::qt
