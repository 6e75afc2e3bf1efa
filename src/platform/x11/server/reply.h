#pragma once

#include <cstdlib>
#include <memory>

namespace tessarel::x11 {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply, an error or an event of xcb, which come from malloc; null when there is none.
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

} // namespace tessarel::x11
