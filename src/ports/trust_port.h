#pragma once

namespace tessarel {

/// Whether the system lets this program see and move other programs' windows.
class TrustPort {
public:
    virtual ~TrustPort() = default;

    [[nodiscard]] virtual bool isTrusted() = 0;

    /// Tells the user, in the system's own way, what has to be done to be trusted. Does nothing when trusted.
    virtual void prompt() = 0;

    /// Opens the place where the user can change it; does nothing when there is none.
    virtual void openSettings() = 0;
};

} // namespace tessarel
