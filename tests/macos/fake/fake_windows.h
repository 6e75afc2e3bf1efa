// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/rect.h"

namespace tessarel::fakemac {

/// The properties of a window of this program.
struct WindowSight {
    long level = 0;
    unsigned long collectionBehavior = 0;
    bool ignoresMouseEvents = false;
    bool hasShadow = true;
    bool isVisible = false;
    bool isInFront = false;   ///< in front of all windows of its level, of any application
    bool hasKeyboard = false; ///< it is the key window; effective only while the program is active
    Rect frame = {};          ///< in screen coordinates
    bool operator==(const WindowSight&) const = default;
};

/// A view as a toolkit creates it, in a window of its own or not yet in one.
class View {
public:
    explicit View(bool isInWindow = true);
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View();

    [[nodiscard]] void* native() const { return m_view; }
    [[nodiscard]] WindowSight window() const;

    // The following functions act as the toolkit.

    /// Resets the window to the toolkit's own properties, as when the toolkit recreates it.
    void makeWindowAnew();
    /// Shows the window, in front only if the program is active. `makesKey`: it becomes the key window.
    void orderFront(bool makesKey);
    void orderOut();
    void setFrame(const Rect& screenFrame);

private:
    void* m_view;
};

/// Activates the program as `-[NSApplication activateIgnoringOtherApps:]` does; callable without AppKit.
void activateOwnProgram();

} // namespace tessarel::fakemac
