// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/entry_walk.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

namespace tessarel::xdg {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEnding = ".desktop";

} // namespace

std::string identifierOf(const fs::path& file, const fs::path& folder) {
    std::string identifier = file.native().substr(folder.native().size());
    identifier.erase(0, identifier.find_first_not_of('/'));
    std::ranges::replace(identifier, '/', '-');
    identifier.resize(identifier.size() - kEnding.size());
    return identifier;
}

bool isNamedLikeEntry(const fs::path& file) {
    return file.extension() == kEnding;
}

std::optional<fs::file_time_type> changeOf(const fs::path& folder) {
    std::error_code failure;
    const auto time = fs::last_write_time(folder, failure);
    return failure ? std::nullopt : std::optional(time);
}

EntryWalk::EntryWalk(std::vector<fs::path> folders) : m_folders(std::move(folders)) {}

std::optional<EntryFile> EntryWalk::look() {
    if (m_file == fs::recursive_directory_iterator()) {
        enterFolder();
        return std::nullopt;
    }
    const fs::path path = m_file->path();
    std::error_code unreadable;
    const bool isFolder = m_file->is_directory(unreadable);
    advance();
    if (isFolder || !isNamedLikeEntry(path))
        return std::nullopt;
    std::string identifier = identifierOf(path, m_folders[m_entered - 1]);
    if (!m_identifiers.insert(identifier).second)
        return std::nullopt;
    return EntryFile{std::move(identifier), path};
}

bool EntryWalk::isAtEnd() const {
    return m_file == fs::recursive_directory_iterator() && m_entered == m_folders.size();
}

void EntryWalk::enterFolder() {
    if (m_entered == m_folders.size())
        return;
    std::error_code failure;
    m_file = fs::recursive_directory_iterator(m_folders[m_entered++],
                                              fs::directory_options::skip_permission_denied, failure);
}

/// Goes to the next file of the current folder and its subfolders.
void EntryWalk::advance() {
    std::error_code failure;
    m_file.increment(failure);
    if (failure)
        m_file = {};
}

} // namespace tessarel::xdg
