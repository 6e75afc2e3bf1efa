// SPDX-License-Identifier: MIT

#pragma once

namespace tessarel {

/// State of this run of the program. Never saved.
struct Runtime {
    /// While true, no window is moved. Hot keys stay registered.
    bool paused = false;
};

} // namespace tessarel
