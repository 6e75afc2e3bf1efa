// SPDX-License-Identifier: MIT

#pragma once

#include "ports/trust_port.h"

namespace tessarel {

/// The user's permission to see and move other programs' windows, without which no action works.
class Permissions {
public:
    explicit Permissions(TrustPort& trust) : m_trust(trust) {}

    /// Returns whether the permission is granted now.
    [[nodiscard]] bool isTrusted() const { return m_trust.isTrusted(); }
    /// Lets the system explain to the user how to grant it.
    void prompt() { m_trust.prompt(); }
    /// Returns whether the system has a place where the user grants it.
    [[nodiscard]] bool hasSettings() const { return m_trust.hasSettings(); }
    /// Opens the place where the user can grant it, if the system has one.
    void openSettings() { m_trust.openSettings(); }

private:
    TrustPort& m_trust;
};

} // namespace tessarel
