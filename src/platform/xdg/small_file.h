#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tessarel::xdg {

/// Returns the bytes of a desktop entry or a file like it. Returns `std::nullopt` when `path` is not a
/// regular file, cannot be read, or has more than 256 KiB. Never waits for the writer of a pipe.
[[nodiscard]] std::optional<std::string> readSmallFile(const std::filesystem::path& path);

} // namespace tessarel::xdg
