// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// The date and time of day. It may jump in either direction when the user or a time server sets it; use the
/// main queue's clock to measure delays.
class WallClockPort {
public:
    virtual ~WallClockPort() = default;

    /// Returns Unix time: seconds since 1 January 1970, 00:00 UTC.
    [[nodiscard]] virtual double secondsSince1970() = 0;
};

} // namespace tessarel
