// SPDX-License-Identifier: MIT

#include "platform/xdg/document_file.h"

#include "platform/xdg/document_lock.h"
#include "platform/xdg/files.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarel::xdg {
namespace {

namespace fs = std::filesystem;

/// The mode bits that are kept when a file is replaced.
constexpr mode_t kPermissions = 0777;
constexpr std::string_view kTemporarySuffix = ".tmp";

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = retried([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Follows the symbolic links that start at `path` and returns the last target, which need not exist. Returns
/// a link if they form a cycle.
fs::path followed(fs::path path) {
    constexpr int kMostLinks = 40;
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target;
    }
    return path;
}

/// A new file that is deleted on destruction, unless `become` has renamed it.
class TemporaryFile {
public:
    explicit TemporaryFile(fs::path path)
        : m_path(std::move(path)), m_descriptor(m_path, O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (m_descriptor.isOpen() && !m_hasBecome)
            ::unlink(m_path.c_str());
    }

    [[nodiscard]] bool write(std::string_view bytes) const {
        return m_descriptor.isOpen() && writeAll(m_descriptor.get(), bytes);
    }

    void setPermissions(mode_t permissions) const { ::fchmod(m_descriptor.get(), permissions); }

    /// Renames the file to `path`, atomically. The content is written to the disk first, so that a crash
    /// cannot leave an empty file under the new name.
    [[nodiscard]] bool become(const fs::path& path) {
        m_hasBecome = sync(m_descriptor.get()) && std::rename(m_path.c_str(), path.c_str()) == 0;
        return m_hasBecome;
    }

private:
    fs::path m_path;
    FileDescriptor m_descriptor;
    bool m_hasBecome = false;
};

/// Returns whether `process` exists. EPERM means that it belongs to another user.
bool isAlive(pid_t process) {
    return ::kill(process, 0) == 0 || errno == EPERM;
}

} // namespace

DocumentFile::DocumentFile(const fs::path& path) : m_path(followed(path)) {}

std::optional<std::string> DocumentFile::read() const {
    // O_NONBLOCK: opening a pipe would wait for its writer.
    const FileDescriptor descriptor(m_path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > static_cast<off_t>(kLargest))
        return std::nullopt;

    std::string bytes;
    std::vector<char> buffer(static_cast<std::size_t>(status.st_size) + 1);
    while (bytes.size() <= kLargest) { // another process may make the file larger meanwhile
        const ssize_t count = retried([&] { return ::read(descriptor.get(), buffer.data(), buffer.size()); });
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            return bytes;
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return std::nullopt;
}

bool DocumentFile::exists() const {
    struct stat status {};
    return ::lstat(m_path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::optional<fs::path> DocumentFile::keepRejected() const {
    struct stat status {};
    if (::lstat(m_path.c_str(), &status) != 0)
        return errno == ENOENT ? std::optional(fs::path()) : std::nullopt;
    if (!S_ISREG(status.st_mode))
        return std::nullopt;

    for (int number = 1; number <= kMostCopies; ++number) {
        fs::path copy = m_path;
        copy += number == 1 ? ".rejected" : ".rejected." + std::to_string(number);
        // A hard link needs neither disk space nor the permission to read the file.
        if (::link(m_path.c_str(), copy.c_str()) == 0)
            return copy;
        if (errno != EEXIST) // the file system may have no hard links
            return copyTo(copy) ? std::optional(copy) : std::nullopt;
        if (holdsTheSameAs(copy))
            return copy;
    }
    return std::nullopt;
}

bool DocumentFile::replace(std::string_view bytes) const {
    struct stat old {};
    const bool isNew = ::lstat(m_path.c_str(), &old) != 0;
    if (isNew ? errno != ENOENT : !S_ISREG(old.st_mode))
        return false;
    if (isNew && !makeFolder(m_path.parent_path()))
        return false;

    removeStaleTemporaries();
    TemporaryFile temporary(temporaryPath());
    if (!temporary.write(bytes))
        return false;
    // The owner must be able to read the file again, even if the old one was not readable.
    if (!isNew)
        temporary.setPermissions((old.st_mode & kPermissions) | S_IRUSR);
    if (!temporary.become(m_path))
        return false;
    syncFolder(m_path.parent_path());
    return true;
}

SubscriptionPtr DocumentFile::lock() const {
    makeFolder(m_path.parent_path()); // the lock of the first save, too, is in the folder
    return DocumentLock::take(DocumentLock::pathFor(m_path));
}

bool DocumentFile::copyTo(const fs::path& copy) const {
    const auto bytes = read();
    if (!bytes)
        return false;
    removeStaleTemporaries();
    TemporaryFile temporary(temporaryPath());
    return temporary.write(*bytes) && temporary.become(copy);
}

bool DocumentFile::holdsTheSameAs(const fs::path& copy) const {
    std::error_code error;
    if (fs::equivalent(m_path, copy, error))
        return true;
    const auto bytes = read();
    return bytes && bytes == DocumentFile(copy).read();
}

fs::path DocumentFile::temporaryPath() const {
    return m_path.parent_path() /
           (temporaryPrefix() + std::to_string(::getpid()) + std::string(kTemporarySuffix));
}

std::string DocumentFile::temporaryPrefix() const {
    std::string prefix(".");
    prefix += m_path.filename().string();
    prefix += '.';
    return prefix;
}

std::optional<pid_t> DocumentFile::temporaryWriter(std::string_view name) const {
    const std::string prefix = temporaryPrefix();
    if (!name.starts_with(prefix) || !name.ends_with(kTemporarySuffix))
        return std::nullopt;
    name.remove_prefix(prefix.size());

    pid_t writer = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), writer);
    if (error != std::errc() ||
        name.substr(static_cast<std::size_t>(end - name.data())) != kTemporarySuffix || writer <= 0)
        return std::nullopt;
    return writer;
}

void DocumentFile::removeStaleTemporaries() const {
    std::error_code error;
    for (fs::directory_iterator entry(m_path.parent_path(), error), last; !error && entry != last;
         entry.increment(error)) {
        const auto writer = temporaryWriter(entry->path().filename().string());
        // A file of this process is stale, too, because it writes only one at a time.
        if (writer && (*writer == ::getpid() || !isAlive(*writer)))
            ::unlink(entry->path().c_str());
    }
}

} // namespace tessarel::xdg
