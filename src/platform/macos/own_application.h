#pragma once

#include "ports/application_port.h"

#include <functional>
#include <utility>
#include <vector>

namespace tessarel::macos {

/// This program as the system runs it beside the toolkit of its windows, which owns the loop.
class MacOwnApplication : public ApplicationPort {
public:
    /// Returns the NSViews of the windows that are shown and can have the keyboard, the one that is to have
    /// it last.
    using Windows = std::function<std::vector<void*>()>;

    /// `toolkit` and all that `windows` uses outlive the application.
    MacOwnApplication(ApplicationPort& toolkit, Windows windows)
        : m_toolkit(toolkit), m_windows(std::move(windows)) {}

    /// Has the program do without a place in the Dock, as its bundle says anyway; a bare executable has
    /// nobody else to say so. The toolkit, which may think otherwise when it starts, has to be started.
    static void becomeAccessory();

    /// Brings the window of `nativeView` to the front, for the user to type into. Beside `activate`, which
    /// the system refuses while another program is in front and has not yielded, as it may be when the user
    /// has clicked on the status item only.
    static void bringToFront(void* nativeView);

    /// Also when no window is shown yet.
    void activate() override;
    /// The toolkit ends its loop; asked by the system it would do the same.
    void terminate() override;

private:
    ApplicationPort& m_toolkit;
    Windows m_windows;
};

} // namespace tessarel::macos
