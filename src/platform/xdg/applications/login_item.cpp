// SPDX-License-Identifier: MIT

#include "platform/xdg/applications/login_item.h"

#include "platform/xdg/applications/command_line.h"
#include "platform/xdg/applications/desktop_entry.h"
#include "platform/xdg/environment.h"
#include "platform/xdg/home_folder.h"
#include "platform/xdg/small_file.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tessarel::xdg {

namespace {

namespace fs = std::filesystem;

constexpr const char* kNoHome = "There is no home folder.";
constexpr std::string_view kEntryName = "autostart/tessarel.desktop";

/// Returns the path of the running executable, as the kernel names it.
fs::path runningProgram() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error);
}

/// Removes the " (deleted)" that the kernel appends once a newer version has replaced the file: the path
/// without it names the newer version.
fs::path withoutDeleted(const fs::path& executable) {
    constexpr std::string_view kReplaced = " (deleted)";
    std::error_code error;
    std::string path = executable.string();
    if (path.ends_with(kReplaced) && !fs::exists(executable, error))
        path.resize(path.size() - kReplaced.size());
    return path;
}

/// Returns the lines of an autostart entry that lie within its first 256 KiB; `std::nullopt` if it cannot be
/// read. A session has no such limit, so an entry that is larger counts, too.
std::optional<std::string> linesOfEntry(const fs::path& file) {
    constexpr std::size_t kMost = std::size_t{256} * 1024;
    auto content = readStart(file, kMost + 1);
    if (content && content->size() > kMost)
        content->resize(content->rfind('\n') + 1); // the start of a line may not be valid
    return content;
}

/// Returns an error text for the user: "The <subject> <path> <what>: <reason>."
std::string sentence(std::string_view subject, const fs::path& path, std::string_view what, int error) {
    return std::string("The ").append(subject).append(" ").append(path.string()).append(" ").append(what) +
           ": " + std::generic_category().message(error) + ".";
}

/// Writes `content` to `fd`, durably and readable for everyone, and closes it in any case. Returns 0 or the
/// `errno` of the first failure.
int writeAndClose(int fd, std::string_view content) {
    int error = 0;
    while (!content.empty() && error == 0) {
        const ssize_t written = ::write(fd, content.data(), content.size());
        if (written >= 0)
            content.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            error = errno;
    }
    if (error == 0 && (::fchmod(fd, 0644) != 0 || ::fsync(fd) != 0))
        error = errno;
    if (::close(fd) != 0 && error == 0)
        error = errno;
    return error;
}

} // namespace

fs::path commandOf(const fs::path& executable) {
    const fs::path file = withoutDeleted(executable);
    const fs::path folder = file.parent_path();
    const fs::path launcher = folder.parent_path().parent_path() / "bin" / file.filename();
    const bool isInstalled = folder.filename() == "tessarel" && folder.parent_path().filename() == "libexec";
    return isInstalled && ::access(launcher.c_str(), X_OK) == 0 ? launcher : file;
}

XdgLoginItem::XdgLoginItem(Setup setup)
    : m_setup(std::move(setup)),
      m_entry(m_setup.configHome.empty() ? fs::path() : m_setup.configHome / kEntryName) {}

XdgLoginItem::Setup XdgLoginItem::ofThisProgram(std::string name) {
    return {.configHome = configurationFolder(),
            .configFolders = systemConfigurationFolders(),
            .program = commandOf(runningProgram()),
            .name = std::move(name),
            .desktops = currentDesktops()};
}

LoginItemPort::Status XdgLoginItem::status() {
    const auto own = linesOfEntry(m_entry);
    const bool enabled = own ? isStarted(*own) : startedForAllUsers();
    return enabled ? Status::Enabled : Status::NotRegistered;
}

/// Returns whether this session starts this copy of the program by the autostart entry `content`.
bool XdgLoginItem::isStarted(const std::string& content) const {
    const auto entry = DesktopEntry::parse(content);
    return entry && entry->isStartedBy(m_setup.desktops) && !isOtherCopy(entry->startedProgram());
}

/// Returns whether `started` is a program of the same name elsewhere. Any other program is one by which the
/// user starts this one, such as a script.
bool XdgLoginItem::isOtherCopy(const std::string& started) const {
    const fs::path file = fileStartedBy(started);
    const fs::path own = fileStartedBy(m_setup.program.string());
    return file.filename() == own.filename() && commandOf(file) != own;
}

bool XdgLoginItem::startedForAllUsers() const {
    for (const fs::path& folder : m_setup.configFolders)
        if (const auto entry = linesOfEntry(folder / kEntryName))
            return isStarted(*entry); // it hides the entries in all later folders
    return false;
}

std::optional<std::string> XdgLoginItem::registerItem() {
    if (m_entry.empty())
        return kNoHome;
    return write(DesktopEntry::autostart(m_setup.name, m_setup.program.string()));
}

std::optional<std::string> XdgLoginItem::unregisterItem() {
    const bool mustHide = startedForAllUsers();
    if (m_entry.empty())
        return mustHide ? std::optional<std::string>(kNoHome) : std::nullopt;
    if (mustHide)
        return write(DesktopEntry::hidden(m_setup.name));
    if (::unlink(m_entry.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR)
        return std::nullopt;
    return sentence("file", m_entry, "cannot be removed", errno);
}

std::optional<std::string> XdgLoginItem::write(const std::string& content) const {
    const fs::path folder = m_entry.parent_path();
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure || !fs::is_directory(folder, failure))
        return sentence("folder", folder, "cannot be created", failure ? failure.value() : ENOTDIR);

    // The entry is replaced atomically: a session that starts now reads the old one or the new one.
    std::string temporary = m_entry.string() + ".XXXXXX";
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return sentence("folder", folder, "cannot be written to", errno);
    int error = writeAndClose(fd, content);
    if (error == 0 && ::rename(temporary.c_str(), m_entry.c_str()) != 0)
        error = errno;
    if (error == 0)
        return std::nullopt;
    ::unlink(temporary.c_str());
    return sentence("file", m_entry, "cannot be written", error);
}

} // namespace tessarel::xdg
