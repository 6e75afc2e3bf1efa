// SPDX-License-Identifier: MIT

#pragma once

#include "model/call_on_end.h"
#include "platform/xdg/document_watch.h"

#include <chrono>
#include <functional>
#include <memory>
#include <poll.h>

namespace tessarel::xdg {

/// An event loop for one file descriptor.
class ReadableLoop {
public:
    OnReadable onReadable() {
        return [this](int fd, std::function<void()> readable) {
            m_fd = fd;
            m_readable = std::move(readable);
            return callOnEnd([this] { m_readable = nullptr; });
        };
    }

    /// Runs until `holds` returns true. Returns false if it does not within ten seconds.
    [[nodiscard]] bool runUntil(const std::function<bool()>& holds) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!holds()) {
            if (std::chrono::steady_clock::now() > deadline)
                return false;
            turn(100);
        }
        return true;
    }

    /// Delivers what has already happened: the kernel queues events before the call that causes them returns.
    void deliver() {
        while (turn(0)) {
        }
    }

    /// Returns how often the file descriptor has been readable.
    [[nodiscard]] int wakeUps() const { return m_wakeUps; }

private:
    bool turn(int milliseconds) {
        if (!m_readable)
            return false;
        pollfd descriptor{m_fd, POLLIN, 0};
        if (::poll(&descriptor, 1, milliseconds) <= 0)
            return false;
        ++m_wakeUps;
        m_readable();
        return true;
    }

    int m_fd = -1;
    int m_wakeUps = 0;
    std::function<void()> m_readable;
};

} // namespace tessarel::xdg
