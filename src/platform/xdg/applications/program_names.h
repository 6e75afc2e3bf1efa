// SPDX-License-Identifier: MIT

#pragma once

#include "platform/xdg/applications/installed_applications.h"
#include "platform/xdg/applications/process_facts.h"

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace tessarel::xdg {

/// What a window says about its program. Strings are UTF-8, and empty where the window says nothing.
struct WindowNames {
    std::vector<std::string> announced; ///< application ids, the most specific first
    std::string instance;               ///< first half of WM_CLASS
    std::string windowClass;            ///< second half of WM_CLASS

    bool operator<(const WindowNames& other) const {
        return std::tie(announced, instance, windowClass) <
               std::tie(other.announced, other.instance, other.windowClass);
    }
};

/// What a program is called.
struct ProgramNames {
    std::string identifier;
    /// Further names under which settings may know it, the most specific first: announced ids, the window's
    /// class, and other entries for the same windows.
    std::vector<std::string> others;

    bool operator==(const ProgramNames&) const = default;
};

/// Returns the names of the program that a window belongs to; `std::nullopt` if nothing is known of it.
///
/// The identifier is that of a desktop entry where there is evidence for one. The first evidence that names
/// an installed entry decides:
/// 1. the ids that the window announces;
/// 2. the Flatpak or snap that the process belongs to, which chooses among its own entries by the class;
/// 3. the class: an entry whose StartupWMClass is the instance exactly, then one that names the class or is
///    named like it, then one that names the instance or is named like it;
/// 4. the program that the process runs.
///
/// Among several such entries, one that menus offer precedes one that they do not, and one that starts the
/// process's own program precedes one that starts another. Names that a toolkit or interpreter gives to all
/// its windows are no evidence. Without an entry, the identifier is the class, else an announced id, else the
/// program that the process runs.
///
/// `facts` returns what is known of the window's process, and is called only if needed.
[[nodiscard]] std::optional<ProgramNames> programNames(InstalledApplications& entries,
                                                       const WindowNames& window,
                                                       const std::function<ProcessFacts()>& facts);

} // namespace tessarel::xdg
