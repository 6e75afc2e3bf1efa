#pragma once

struct xcb_connection_t;

namespace tessarel::qt {

/// Qt's own connection to the X server, for requests about windows of Qt's: it never waits for events. Null
/// when Qt does not run on X11.
[[nodiscard]] xcb_connection_t* qtConnection();

} // namespace tessarel::qt
