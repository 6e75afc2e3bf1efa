#pragma once

namespace tessarel {

/// This program, as the system runs it.
class ApplicationPort {
public:
    virtual ~ApplicationPort() = default;

    /// Brings the program and its windows to the front.
    virtual void activate() = 0;

    /// Ends the program the way the system would at the end of a session, soon after this call has returned.
    virtual void terminate() = 0;
};

} // namespace tessarel
