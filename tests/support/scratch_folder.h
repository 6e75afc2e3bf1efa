// SPDX-License-Identifier: MIT

#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// A temporary folder, removed with its contents in the destructor. It is in memory (/dev/shm) where
/// available, so that no test waits for a disk.
class ScratchFolder {
public:
    ScratchFolder() {
        for (const auto& parent :
             {std::filesystem::path("/dev/shm"), std::filesystem::temp_directory_path()}) {
            std::string name = (parent / "tessarel-test-XXXXXX").string();
            if (::mkdtemp(name.data())) {
                m_path = name;
                return;
            }
        }
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    /// Removes the contents of the folder.
    void clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            std::filesystem::remove_all(entry.path());
    }

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    static void write(const std::filesystem::path& file, std::string_view bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
    }

    /// Returns the content of the file; empty if there is no file.
    [[nodiscard]] static std::optional<std::string> read(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        if (!stream)
            return std::nullopt;
        std::ostringstream bytes;
        bytes << stream.rdbuf();
        return bytes.str();
    }

    /// Returns the names of the folder's entries, in alphabetical order.
    [[nodiscard]] static std::vector<std::string> names(const std::filesystem::path& folder) {
        std::vector<std::string> names;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(folder, error))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path m_path;
};

} // namespace tessarel
