// SPDX-License-Identifier: MIT

#pragma once

#include "platform/plasma/bridge.h"
#include "ports/trust_port.h"

namespace tessarel::plasma {

/// Trust on Plasma, which lets every program of the session move windows: whether KWin runs the script.
class Trust : public TrustPort {
public:
    /// `bridge` must outlive this object.
    explicit Trust(const Bridge& bridge) : m_bridge(bridge) {}

    [[nodiscard]] bool isTrusted() override { return m_bridge.isAccepted(); }
    void prompt() override {}
    [[nodiscard]] bool hasSettings() const override { return false; }
    void openSettings() override {}

private:
    const Bridge& m_bridge;
};

} // namespace tessarel::plasma
