#pragma once

#include "support/scratch_folder.h"

#include <filesystem>

namespace tessarel::bench {

/// A folder with desktop entries like those that programs install, translations and all: 1.8 kB each, most
/// of them in subfolders.
class EntryFolder {
public:
    explicit EntryFolder(int count);

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    /// The folder of data, as in XDG_DATA_HOME, whose entries these are.
    [[nodiscard]] const std::filesystem::path& dataHome() const { return m_scratch.path(); }

private:
    void write(int number) const;

    ScratchFolder m_scratch;
    std::filesystem::path m_path = m_scratch.path() / "applications";
};

} // namespace tessarel::bench
