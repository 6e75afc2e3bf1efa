// SPDX-License-Identifier: MIT

#pragma once

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace tessarel::xdg {

/// Calls `call` until no signal interrupts it, and returns its result.
template <typename Call>
auto retried(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

/// An open file that is closed on destruction.
class FileDescriptor {
public:
    /// Takes over an open file, or none if `descriptor` is negative.
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    FileDescriptor(const std::filesystem::path& path, int flags, mode_t mode = 0)
        : FileDescriptor(retried([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); })) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (isOpen())
            ::close(m_descriptor);
    }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Writes an open file to the disk. Returns false on failure.
bool sync(int descriptor);

/// Writes the names of new files in `folder` to the disk. Failures are ignored, because some file systems do
/// not support it.
void syncFolder(const std::filesystem::path& folder);

/// Creates `folder` and its missing parents for the owner only. Returns true if it exists already.
bool makeFolder(const std::filesystem::path& folder);

} // namespace tessarel::xdg
