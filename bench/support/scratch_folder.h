#pragma once

#include <filesystem>

namespace tessarel::bench {

/// A folder of its own that goes, with all in it, when this does.
class ScratchFolder {
public:
    /// Throws std::runtime_error when there can be none.
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace tessarel::bench
