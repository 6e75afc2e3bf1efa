// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/xdg/files.h"

#include <chrono>
#include <filesystem>

namespace tessarel::xdg {

/// A lock between processes, held until it is destroyed. It is a lock of the kernel on a file, so it ends
/// with its process. The file exists only while the lock is held, or after its process was killed.
class DocumentLock : public Subscription {
public:
    /// How long `take` waits for another process.
    static constexpr std::chrono::milliseconds kPatience{100};

    /// Returns the file that locks `document`, beside it.
    [[nodiscard]] static std::filesystem::path pathFor(const std::filesystem::path& document);

    /// Takes the lock at `path`. Returns null if another process still holds it after `kPatience`. If the
    /// file cannot be created or the file system has no locks, the returned subscription has no effect.
    [[nodiscard]] static SubscriptionPtr take(const std::filesystem::path& path);

    explicit DocumentLock(std::filesystem::path path);
    /// Deletes the file, if the lock is held, and releases the lock.
    ~DocumentLock() override;

private:
    enum class State { Untried, Held, HeldByAnother, Impossible };

    /// Tries to lock the open file.
    [[nodiscard]] State attempt();
    /// Returns whether the path still names the open file, which the last holder may have deleted.
    [[nodiscard]] bool isInPlace() const;

    std::filesystem::path m_path;
    FileDescriptor m_descriptor;
    State m_state = State::Untried;
};

} // namespace tessarel::xdg
