// SPDX-License-Identifier: MIT

#include "platform/xdg/document_watch.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <sys/inotify.h>
#include <utility>

namespace tessarel::xdg {

DocumentWatch::DocumentWatch(std::filesystem::path file, const OnReadable& onReadable,
                             std::function<void()> changed)
    : m_file(std::move(file)), m_changed(std::move(changed)),
      m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!m_inotify.isOpen())
        return;
    follow();
    m_reading = onReadable(m_inotify.get(), [this] { readEvents(); });
}

void DocumentWatch::follow() {
    constexpr int kMostLooks = 16; // a way that always changes must not hold up the program
    // Again if a part of the way has appeared before its folder was watched.
    std::list<WatchPlan::Place> seen;
    for (int look = 0; look < kMostLooks; ++look) {
        auto places = WatchPlan(m_file).places();
        if (places == seen)
            return;
        watchOnly(places);
        seen = std::move(places);
    }
}

void DocumentWatch::watchOnly(const std::list<WatchPlan::Place>& places) {
    std::map<int, WatchPlan::Place> watches;
    for (const WatchPlan::Place& place : places) {
        const int watch =
            ::inotify_add_watch(m_inotify.get(), place.path.c_str(), place.events | IN_DONT_FOLLOW);
        if (watch >= 0)
            watches.emplace(watch, place);
    }
    for (const auto& [watch, place] : m_watches)
        if (!watches.contains(watch))
            ::inotify_rm_watch(m_inotify.get(), watch);
    m_watches = std::move(watches);
}

void DocumentWatch::readEvents() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    bool hasChanged = false;
    ssize_t size = 0;
    while ((size = retried([&] { return ::read(m_inotify.get(), buffer.data(), buffer.size()); })) > 0) {
        for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(size);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            hasChanged = matters(event, buffer.data() + at + sizeof event) || hasChanged;
            at += sizeof event + event.len;
        }
    }
    if (!hasChanged)
        return;
    follow();
    m_changed(); // last, because it may destroy this object
}

bool DocumentWatch::matters(const inotify_event& event, const char* name) const {
    if ((event.mask & IN_Q_OVERFLOW) != 0)
        return true;
    const auto watch = m_watches.find(event.wd);
    if (watch == m_watches.end())
        return false;
    const WatchPlan::Place& place = watch->second;
    // An event without a name is about the folder or link itself.
    return event.len == 0 || place.names.contains(name) ||
           ((event.mask & IN_DELETE) != 0 && place.locks.contains(name));
}

} // namespace tessarel::xdg
