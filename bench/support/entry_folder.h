// SPDX-License-Identifier: MIT

#pragma once

#include "support/scratch_folder.h"

#include <filesystem>

namespace tessarel::bench {

/// A scratch folder with desktop entries like those of installed applications, with translations: 1.8 kB
/// each, most of them in subfolders.
class EntryFolder {
public:
    explicit EntryFolder(int count);

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    /// Returns the data folder that contains the entries, as for XDG_DATA_HOME.
    [[nodiscard]] const std::filesystem::path& dataHome() const { return m_scratch.path(); }

private:
    void write(int number) const;

    ScratchFolder m_scratch;
    std::filesystem::path m_path = m_scratch.path() / "applications";
};

} // namespace tessarel::bench
