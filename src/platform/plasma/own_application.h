// SPDX-License-Identifier: MIT

#pragma once

#include "platform/plasma/bridge.h"
#include "ports/application_port.h"

namespace tessarel::plasma {

/// This program, whose windows KWin brings to the user.
class OwnApplication : public ApplicationPort {
public:
    /// `application` does the rest. Both must outlive this object.
    OwnApplication(ApplicationPort& application, Bridge& bridge)
        : m_application(application), m_bridge(bridge) {}

    void activate() override {
        m_application.activate();
        m_bridge.bringOwnWindows();
    }
    void terminate() override { m_application.terminate(); }

private:
    ApplicationPort& m_application;
    Bridge& m_bridge;
};

} // namespace tessarel::plasma
