#pragma once

namespace tessarel {

/// The system's permission to see and move other programs' windows.
class TrustPort {
public:
    virtual ~TrustPort() = default;

    /// Returns whether the program has the permission now. The state may change at any time.
    [[nodiscard]] virtual bool isTrusted() = 0;

    /// Explains to the user, in the system's own way, how to grant the permission. Does nothing if the
    /// program is trusted.
    virtual void prompt() = 0;

    /// Opens the place where the user can grant the permission or read how to; does nothing if there is none.
    virtual void openSettings() = 0;
};

} // namespace tessarel
