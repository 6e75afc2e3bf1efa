// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace tessarel::xdg {

/// Returns the bytes of a desktop entry or a file like it. Returns `std::nullopt` when `path` is not a
/// regular file, cannot be read, or has more than 256 KiB. Never waits for the writer of a pipe.
[[nodiscard]] std::optional<std::string> readSmallFile(const std::filesystem::path& path);

/// Returns at most the first `most` bytes of a regular file, even if its size is unknown, as below /proc.
/// Returns `std::nullopt` when `path` is not a regular file or cannot be read. Never waits for the writer of
/// a pipe.
[[nodiscard]] std::optional<std::string> readStart(const std::filesystem::path& path, std::size_t most);

} // namespace tessarel::xdg
