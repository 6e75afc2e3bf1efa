#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tessarel::xdg {

/// One file that holds a document and is only ever replaced as a whole.
///
/// A symbolic link stays one: the file that it leads to is read and replaced.
class DocumentFile {
public:
    /// A larger file is not read.
    static constexpr std::size_t kLargest = std::size_t{16} << 20U;
    /// Copies beyond this number are not made.
    static constexpr int kMostCopies = 99;

    explicit DocumentFile(const std::filesystem::path& path);

    /// The whole file. None if there is no file, if it cannot be read, is larger than `kLargest` or is not a
    /// regular file; does not wait for the other end of a pipe.
    [[nodiscard]] std::optional<std::string> read() const;

    /// Whether anything stands at the path, readable or not.
    [[nodiscard]] bool exists() const;

    /// Keeps what the file holds under a further name beside it that ends in ".rejected", a number following
    /// if other documents have the name already. True if it is kept, now or before, or if there is nothing to
    /// keep.
    [[nodiscard]] bool keepRejected() const;

    /// Makes `bytes` the file's content, durably, and keeps its permissions; a new file is the user's alone.
    /// Missing folders are made. Whatever happens meanwhile, the file is the old or the new one, whole. False
    /// if it is still the old one.
    [[nodiscard]] bool replace(std::string_view bytes) const;

private:
    [[nodiscard]] bool copyTo(const std::filesystem::path& copy) const;
    [[nodiscard]] bool holdsTheSameAs(const std::filesystem::path& copy) const;

    /// Where this process writes what is to become the file. The name tells the process, so that what a
    /// killed one has left behind is known for it.
    [[nodiscard]] std::filesystem::path temporaryPath() const;
    [[nodiscard]] std::string temporaryPrefix() const;
    /// Process that writes the temporary file of this name; none if it is not the name of one.
    [[nodiscard]] std::optional<pid_t> temporaryWriter(std::string_view name) const;
    void removeStaleTemporaries() const;

    std::filesystem::path m_path;
};

} // namespace tessarel::xdg
