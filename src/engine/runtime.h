#pragma once

namespace tessarel {

/// What holds for this run of the program only and is never saved.
struct Runtime {
    /// The user wants no window moved for now. Hot keys stay claimed.
    bool paused = false;
};

} // namespace tessarel
