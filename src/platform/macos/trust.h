#pragma once

#include "ports/open_url_port.h"
#include "ports/trust_port.h"

namespace tessarel::macos {

/// The permission that the user gives under Privacy & Security > Accessibility.
class MacTrust : public TrustPort {
public:
    /// `openUrl` outlives the trust.
    explicit MacTrust(OpenUrlPort& openUrl) : m_openUrl(openUrl) {}

    [[nodiscard]] bool isTrusted() override;
    void prompt() override;
    void openSettings() override;

private:
    OpenUrlPort& m_openUrl;
};

} // namespace tessarel::macos
