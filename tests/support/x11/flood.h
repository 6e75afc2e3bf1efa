// SPDX-License-Identifier: MIT

#pragma once

#include <atomic>
#include <thread>

namespace tessarel::x11test {

/// A client that sends messages at a rate, in a thread of its own, until it is destroyed.
class Flood {
public:
    Flood(const Flood&) = delete;
    Flood& operator=(const Flood&) = delete;
    virtual ~Flood() = default;

    /// Returns how many messages have been sent so far.
    [[nodiscard]] long sent() const { return m_sent; }

protected:
    Flood() = default;

    /// Starts to send `perSecond` messages a second, or as many as are taken. Constructors call it last.
    void start(int perSecond);
    /// Ends the thread. Destructors call it first.
    void stop();

private:
    void run(int perSecond);
    /// Sends one message.
    virtual void send() = 0;
    /// Passes on the messages that were due. It may wait until they have been taken.
    virtual void flush() = 0;

    std::atomic<long> m_sent = 0;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

} // namespace tessarel::x11test
