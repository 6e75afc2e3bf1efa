// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// This program, as the system runs it.
class ApplicationPort {
public:
    virtual ~ApplicationPort() = default;

    /// Brings the program and its windows to the front.
    virtual void activate() = 0;

    /// Quits the program in the same way as at the end of a session. The call returns first; the program ends
    /// soon afterwards.
    virtual void terminate() = 0;
};

} // namespace tessarel
