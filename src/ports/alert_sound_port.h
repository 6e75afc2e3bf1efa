#pragma once

namespace tessarel {

/// The system's alert sound.
class AlertSoundPort {
public:
    virtual ~AlertSoundPort() = default;

    virtual void beep() = 0;
};

} // namespace tessarel
