// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel::qt {

/// Reads one request from the standard input, loads its URL, writes the response to the standard output and
/// exits; all in 15 s, whatever happens. What it does not understand ends it with a failure.
///
/// Requires the application object.
[[noreturn]] void serveUrlRequest();

} // namespace tessarel::qt
