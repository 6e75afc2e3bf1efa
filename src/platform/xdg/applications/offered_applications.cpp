// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/offered_applications.h"

#include "platform/xdg/applications/desktop_entry.h"
#include "platform/xdg/small_file.h"

#include <utility>

namespace tessarel::xdg {

OfferedApplications::OfferedApplications(std::vector<std::filesystem::path> folders,
                                         std::vector<std::string> desktops)
    : m_walk(std::move(folders)), m_desktops(std::move(desktops)) {}

std::vector<OfferedApplication> OfferedApplications::read(std::size_t looks) {
    std::vector<OfferedApplication> applications;
    for (; looks > 0 && !isAtEnd(); --looks) {
        const auto file = m_walk.look();
        if (auto application = file ? readEntry(*file) : std::nullopt)
            applications.push_back(std::move(*application));
    }
    return applications;
}

std::optional<OfferedApplication> OfferedApplications::readEntry(const EntryFile& file) const {
    const auto content = readSmallFile(file.path);
    const auto entry = content ? DesktopEntry::parse(*content) : std::nullopt;
    auto name = entry && entry->isOfferedIn(m_desktops) ? entry->name() : std::nullopt;
    if (!name)
        return std::nullopt;
    return OfferedApplication{file.identifier, std::move(*name), entry->genericName(), entry->icon()};
}

} // namespace tessarel::xdg
