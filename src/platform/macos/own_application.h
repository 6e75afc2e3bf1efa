#pragma once

#include "ports/application_port.h"

namespace tessarel::macos {

/// This program as the system runs it beside the toolkit of its windows, which owns the loop.
class MacOwnApplication : public ApplicationPort {
public:
    /// `toolkit` outlives the application.
    explicit MacOwnApplication(ApplicationPort& toolkit) : m_toolkit(toolkit) {}

    /// Has the program do without a place in the Dock, as its bundle says anyway; a bare executable has
    /// nobody else to say so. The toolkit, which may think otherwise when it starts, has to be started.
    static void becomeAccessory();

    /// Also when no window is shown yet.
    void activate() override;
    /// The toolkit ends its loop; asked by the system it would do the same.
    void terminate() override;

private:
    ApplicationPort& m_toolkit;
};

} // namespace tessarel::macos
