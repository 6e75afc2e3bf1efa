// SPDX-License-Identifier: MIT
//
// Loaded before a program, makes Qt's handling of each frame callback of a Wayland window take longer: the
// thread for these callbacks is busy between the moment in which it has found the window and that in which it
// tells the main thread.

#include <chrono>
#include <dlfcn.h>
#include <pthread.h>
#include <string_view>

namespace {

constexpr std::chrono::milliseconds kDuration{20};

bool isQtThreadForCompositor() {
    char name[16] = {};
    return pthread_getname_np(pthread_self(), name, sizeof name) == 0 &&
           std::string_view(name) == "WaylandEventThr";
}

} // namespace

extern "C" bool
_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
    void* object, void* slot, int type, void* result) {
    using Function = bool (*)(void*, void*, int, void*);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, __func__));
    if (isQtThreadForCompositor()) {
        const auto end = std::chrono::steady_clock::now() + kDuration;
        while (std::chrono::steady_clock::now() < end) {
            // Sleeping would not be the same: the program may see what its threads do.
        }
    }
    return original(object, slot, type, result);
}
