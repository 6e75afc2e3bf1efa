// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

namespace tessarel::qt {

/// Keeps Qt from deleting a window while its thread for frame callbacks handles one of that window, which
/// would crash the program (Qt 6.4). Needs the application object, and acts until it is destroyed.
class FrameThreadGuard final : public QObject {
public:
    FrameThreadGuard();

    /// Before a window is deleted, waits until that thread sleeps: microseconds as a rule, 0.1 s at most. Qt
    /// has hidden the window by then, so no further callback of it is handled.
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace tessarel::qt
