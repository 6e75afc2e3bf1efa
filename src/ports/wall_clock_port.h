#pragma once

namespace tessarel {

/// The date and time of day, as the user or a time server sets it: it may jump either way. What has to wait
/// goes by the main queue's clock.
class WallClockPort {
public:
    virtual ~WallClockPort() = default;

    /// Unix time: seconds since 1 January 1970, 00:00 UTC.
    [[nodiscard]] virtual double secondsSince1970() = 0;
};

} // namespace tessarel
