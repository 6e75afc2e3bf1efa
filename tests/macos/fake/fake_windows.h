#pragma once

#include "ports/rect.h"

namespace tessarel::fakemac {

struct WindowSight {
    long level = 0;
    unsigned long collectionBehavior = 0;
    bool ignoresMouseEvents = false;
    bool hasShadow = true;
    bool isVisible = false;
    bool isInFront = false;   ///< of the windows of its level, those of the program in front included
    bool hasKeyboard = false; ///< once its program is in front
    Rect frame = {};          ///< in screen coordinates
    bool operator==(const WindowSight&) const = default;
};

/// A view as a toolkit makes it, in a window of its own or in none yet.
class View {
public:
    explicit View(bool isInWindow = true);
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    ~View();

    [[nodiscard]] void* native() const { return m_view; }
    [[nodiscard]] WindowSight window() const;

    // What the toolkit does with the window.

    /// Gives the window the toolkit's own properties, as it does when it makes the window anew.
    void makeWindowAnew();
    /// Shows the window: in front only when its program is.
    void orderFront(bool makesKey);
    void orderOut();
    void setFrame(const Rect& screenFrame);

private:
    void* m_view;
};

/// What `-[NSApplication activateIgnoringOtherApps:]` does, whoever calls it.
void activateOwnProgram();

} // namespace tessarel::fakemac
