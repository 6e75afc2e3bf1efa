// SPDX-License-Identifier: MIT

#include "platform/xdg/document_lock.h"

#include <ctime>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <utility>

namespace tessarel::xdg {
namespace {

/// Time between two attempts, which is about the duration of a save without a disk.
constexpr std::chrono::milliseconds kPause{1};

void pauseBriefly() {
    const std::timespec pause{0, std::chrono::nanoseconds(kPause).count()};
    ::nanosleep(&pause, nullptr);
}

} // namespace

std::filesystem::path DocumentLock::pathFor(const std::filesystem::path& document) {
    std::filesystem::path name(".");
    name += document.filename();
    name += ".lock";
    return document.parent_path() / name;
}

SubscriptionPtr DocumentLock::take(const std::filesystem::path& path) {
    for (auto waited = kPause - kPause; waited <= kPatience; waited += kPause) {
        auto lock = std::make_unique<DocumentLock>(path);
        const State state = lock->attempt();
        if (state == State::Held || state == State::Impossible)
            return lock;
        pauseBriefly();
    }
    return nullptr;
}

DocumentLock::DocumentLock(std::filesystem::path path)
    : m_path(std::move(path)), m_descriptor(m_path, O_RDWR | O_CREAT | O_NOFOLLOW, S_IRUSR | S_IWUSR) {}

DocumentLock::~DocumentLock() {
    // While the lock is held, so that the file of a later holder stays.
    if (m_state == State::Held || (m_state == State::Impossible && m_descriptor.isOpen()))
        ::unlink(m_path.c_str());
}

DocumentLock::State DocumentLock::attempt() {
    if (!m_descriptor.isOpen())
        return m_state = State::Impossible;
    if (::flock(m_descriptor.get(), LOCK_EX | LOCK_NB) != 0)
        return m_state = errno == EWOULDBLOCK ? State::HeldByAnother : State::Impossible;
    return m_state = isInPlace() ? State::Held : State::HeldByAnother;
}

bool DocumentLock::isInPlace() const {
    struct stat open {};
    struct stat named {};
    return ::fstat(m_descriptor.get(), &open) == 0 && ::lstat(m_path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace tessarel::xdg
