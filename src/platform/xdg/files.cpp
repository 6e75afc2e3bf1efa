// SPDX-License-Identifier: MIT

#include "platform/xdg/files.h"

#include <sys/stat.h>

namespace tessarel::xdg {

bool sync(int descriptor) {
    return retried([&] { return ::fsync(descriptor); }) == 0;
}

void syncFolder(const std::filesystem::path& folder) {
    const FileDescriptor descriptor(folder, O_RDONLY | O_DIRECTORY);
    if (descriptor.isOpen())
        sync(descriptor.get());
}

bool makeFolder(const std::filesystem::path& folder) {
    constexpr mode_t kOwnerOnly = 0700;
    int result = ::mkdir(folder.c_str(), kOwnerOnly);
    if (result != 0 && errno == ENOENT && folder.has_relative_path() && makeFolder(folder.parent_path()))
        result = ::mkdir(folder.c_str(), kOwnerOnly);
    if (result != 0)
        return errno == EEXIST;
    syncFolder(folder.parent_path());
    return true;
}

} // namespace tessarel::xdg
