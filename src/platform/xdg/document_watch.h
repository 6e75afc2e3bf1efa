// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "platform/xdg/files.h"
#include "platform/xdg/watch_plan.h"

#include <filesystem>
#include <functional>
#include <list>
#include <map>

struct inotify_event;

namespace tessarel::xdg {

/// Calls `readable` in every iteration of the event loop in which `fd` has data to read, until the returned
/// subscription is destroyed.
using OnReadable = std::function<SubscriptionPtr(int fd, std::function<void()> readable)>;

/// Calls a function when a file may have changed: written in place or replaced, by any program, also if a
/// folder on the way to it has been replaced or the file is a symbolic link. The system reports changes, so
/// an idle program is not woken. The release of the file's lock is reported, too.
///
/// Changes on another machine, to a file on a shared disk, are not reported.
class DocumentWatch : public Subscription {
public:
    /// Requires a running event loop.
    DocumentWatch(std::filesystem::path file, const OnReadable& onReadable, std::function<void()> changed);

private:
    /// Watches the present way to the file, and no longer any other.
    void follow();
    /// Watches these places, and no longer any other.
    void watchOnly(const std::list<WatchPlan::Place>& places);
    /// Reads all events, and calls `m_changed` if one of them matters.
    void readEvents();
    [[nodiscard]] bool matters(const inotify_event& event, const char* name) const;

    std::filesystem::path m_file;
    std::function<void()> m_changed;
    FileDescriptor m_inotify;
    /// What is watched, by watch descriptor.
    std::map<int, WatchPlan::Place> m_watches;
    SubscriptionPtr m_reading;
};

} // namespace tessarel::xdg
