// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// The system's alert sound.
class AlertSoundPort {
public:
    virtual ~AlertSoundPort() = default;

    /// Plays the sound once, without waiting for it to end.
    virtual void beep() = 0;
};

} // namespace tessarel
