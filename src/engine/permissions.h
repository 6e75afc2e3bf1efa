#pragma once

#include "ports/trust_port.h"

namespace tessarel {

/// The user's permission to see and move other programs' windows, without which nothing works.
class Permissions {
public:
    explicit Permissions(TrustPort& trust) : m_trust(trust) {}

    [[nodiscard]] bool isTrusted() const { return m_trust.isTrusted(); }
    /// Lets the system ask the user for it.
    void prompt() { m_trust.prompt(); }
    /// Opens the place where the user gives it, if the system has one.
    void openSettings() { m_trust.openSettings(); }

private:
    TrustPort& m_trust;
};

} // namespace tessarel
