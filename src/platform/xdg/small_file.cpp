// SPDX-License-Identifier: MIT

#include "platform/xdg/small_file.h"

#include <algorithm>
#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace tessarel::xdg {

namespace {

constexpr off_t kLargest = off_t{256} * 1024; // bytes

/// A file opened for reading, which is closed on destruction. O_NONBLOCK keeps open() from waiting for the
/// writer of a pipe.
class File {
public:
    explicit File(const std::filesystem::path& path)
        : m_descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] bool isRegular(struct stat& status) const {
        return ::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    }

private:
    int m_descriptor;
};

} // namespace

std::optional<std::string> readSmallFile(const std::filesystem::path& path) {
    const File file(path);
    struct stat status {};
    if (!file.isRegular(status) || status.st_size > kLargest)
        return std::nullopt;
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t length = ::read(file.get(), content.data(), content.size());
    if (length < 0)
        return std::nullopt;
    content.resize(static_cast<std::size_t>(length));
    return content;
}

std::optional<std::string> readStart(const std::filesystem::path& path, std::size_t most) {
    const File file(path);
    struct stat status {};
    if (!file.isRegular(status))
        return std::nullopt;
    std::string content(most, '\0');
    std::size_t length = 0;
    while (length < most) {
        const ssize_t more = ::read(file.get(), content.data() + length, most - length);
        if (more < 0 && length == 0)
            return std::nullopt;
        if (more <= 0)
            break;
        length += static_cast<std::size_t>(more);
    }
    content.resize(length);
    return content;
}

} // namespace tessarel::xdg
