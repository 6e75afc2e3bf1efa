// SPDX-License-Identifier: MIT

#pragma once

#include "ports/application_port.h"

#include <functional>
#include <utility>
#include <vector>

namespace tessarel::macos {

/// This application. The toolkit that draws its windows owns the event loop; AppKit controls its activation.
class MacOwnApplication : public ApplicationPort {
public:
    /// Returns the NSViews of the visible windows that can become the key window. The last one becomes it.
    using Windows = std::function<std::vector<void*>()>;

    /// `toolkit`, and everything that `windows` refers to, must outlive this object.
    MacOwnApplication(ApplicationPort& toolkit, Windows windows)
        : m_toolkit(toolkit), m_windows(std::move(windows)) {}

    /// Sets the activation policy of an application without a Dock icon. The property list of the bundle sets
    /// it as well, but an executable outside a bundle has none. Call it after the toolkit has started,
    /// because its start may set another policy.
    static void becomeAccessory();

    /// Orders the window of `nativeView`, an NSView, to the front and makes it the key window. `activate`
    /// needs this in addition: the system may refuse to activate an application while another one is active
    /// and has not yielded, for example after a click on the status item.
    static void bringToFront(void* nativeView);

    /// Activates the application, whether or not a window is visible, and orders its windows to the front.
    void activate() override;
    /// Ends the toolkit's event loop. A termination through AppKit would be passed on to the toolkit anyway.
    void terminate() override;

private:
    ApplicationPort& m_toolkit;
    Windows m_windows;
};

} // namespace tessarel::macos
