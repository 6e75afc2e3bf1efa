#pragma once

#include "ports/application_port.h"

namespace tessarel::qt {

/// This program as Qt runs it.
class QtOwnApplication : public ApplicationPort {
public:
    /// Does nothing before the application object exists.
    void activate() override;
    void terminate() override;
};

} // namespace tessarel::qt
