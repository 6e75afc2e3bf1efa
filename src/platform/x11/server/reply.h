// SPDX-License-Identifier: MIT

#pragma once

#include <cstdlib>
#include <memory>

namespace tessarel::x11 {

/// Releases memory with std::free(), because xcb allocates replies with malloc().
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// Owns a reply, an error or an event of xcb; null when there is none.
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

} // namespace tessarel::x11
