// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "ports/open_url_port.h"
#include "ports/trust_port.h"

#include <functional>

namespace tessarel::macos {

/// The permission that the user grants under Privacy & Security > Accessibility.
class MacTrust : public TrustPort {
public:
    /// `openUrl` must outlive this object.
    explicit MacTrust(OpenUrlPort& openUrl) : m_openUrl(openUrl) {}

    [[nodiscard]] bool isTrusted() override;
    /// Shows the system's own dialog, which also adds the application to the list. Does not wait for it.
    void prompt() override;
    /// Returns null, because the system does not report it.
    [[nodiscard]] SubscriptionPtr onLost(std::function<void()> /*lost*/) override { return nullptr; }
    [[nodiscard]] bool hasSettings() const override { return true; }
    /// Opens the system's settings at the list of permitted applications.
    void openSettings() override;

private:
    OpenUrlPort& m_openUrl;
};

} // namespace tessarel::macos
