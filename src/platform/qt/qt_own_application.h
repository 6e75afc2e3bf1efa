// SPDX-License-Identifier: MIT

#pragma once

#include "ports/application_port.h"

namespace tessarel::qt {

/// This program as a Qt application.
class QtOwnApplication : public ApplicationPort {
public:
    /// Raises and activates every visible window. Does nothing before the application object exists.
    void activate() override;
    /// Ends Qt's event loop with exit code 0.
    void terminate() override;
};

} // namespace tessarel::qt
