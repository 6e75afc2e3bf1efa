#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarel {

/// An empty folder that is gone with this object, together with what is in it. It is in memory where the
/// system has a file system there, so that no test waits for a disk.
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

    /// Removes what is in it.
    void clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            std::filesystem::remove_all(entry.path());
    }

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    static void write(const std::filesystem::path& file, std::string_view bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
    }

    /// The file's content; none if there is no file.
    [[nodiscard]] static std::optional<std::string> read(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        if (!stream)
            return std::nullopt;
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }

    /// Names of what is in the folder, in order of the alphabet.
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
