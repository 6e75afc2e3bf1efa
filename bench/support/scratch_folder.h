#pragma once

#include <filesystem>

namespace tessarel::bench {

/// A temporary folder, removed with its contents in the destructor.
class ScratchFolder {
public:
    /// Throws std::runtime_error if the folder cannot be created.
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace tessarel::bench
