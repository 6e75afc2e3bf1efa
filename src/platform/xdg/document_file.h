// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tessarel::xdg {

/// A file that holds one document and is always replaced as a whole.
///
/// If the path is a symbolic link, its target is read and replaced, and the link stays.
class DocumentFile {
public:
    /// Largest file that is read, in bytes.
    static constexpr std::size_t kLargest = std::size_t{16} << 20U;
    /// Most rejected documents that are kept beside one file.
    static constexpr int kMostCopies = 99;

    /// Follows symbolic links now; links that change later are not noticed.
    explicit DocumentFile(const std::filesystem::path& path);

    /// Returns the content. Returns `std::nullopt` if the file does not exist, cannot be read, is larger than
    /// `kLargest` or is not a regular file. Does not block on a pipe.
    [[nodiscard]] std::optional<std::string> read() const;

    /// Returns whether anything exists at the path, readable or not. Returns true if that cannot be
    /// determined.
    [[nodiscard]] bool exists() const;

    /// Keeps the content in a further file beside this one, with the suffix ".rejected" or, if other
    /// documents have taken that name, ".rejected.2" and so on. Returns the path of that file, from now or an
    /// earlier call, empty if there is nothing to keep; `std::nullopt` if the content cannot be kept.
    [[nodiscard]] std::optional<std::filesystem::path> keepRejected() const;

    /// Replaces the content with `bytes`, atomically and durably: after a crash the file has the old or the
    /// new content. Keeps the permissions of an existing file; a new one is accessible to the user only.
    /// Creates missing folders. Returns false if the old content is still in place.
    [[nodiscard]] bool replace(std::string_view bytes) const;

    /// Locks the document against other copies of the program; see `DocumentLock::take`. Creates missing
    /// folders.
    [[nodiscard]] SubscriptionPtr lock() const;

private:
    [[nodiscard]] bool copyTo(const std::filesystem::path& copy) const;
    /// Returns whether `copy` is the same file as this one or has the same content.
    [[nodiscard]] bool holdsTheSameAs(const std::filesystem::path& copy) const;

    /// Returns the path at which this process writes the new content. The name contains the process id, so
    /// that a file left behind by a killed process can be recognised.
    [[nodiscard]] std::filesystem::path temporaryPath() const;
    [[nodiscard]] std::string temporaryPrefix() const;
    /// Returns the id of the process that writes the temporary file called `name`, `std::nullopt` if it is
    /// not a temporary file of this document.
    [[nodiscard]] std::optional<pid_t> temporaryWriter(std::string_view name) const;
    /// Deletes temporary files of this document whose process has exited.
    void removeStaleTemporaries() const;

    std::filesystem::path m_path;
};

} // namespace tessarel::xdg
