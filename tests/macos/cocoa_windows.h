// SPDX-License-Identifier: MIT

#pragma once

#include "macos/fake/fake_windows.h"

#include <QObject>

#include <map>
#include <memory>

class QWidget;

namespace tessarel {

/// Imitates Qt's Cocoa platform plug-in: gives every top-level widget a window of the fake Mac and applies to
/// it what Qt does with the widget.
///
/// A window that is shown or raised comes to the front only if the program is active. Raising a window also
/// activates the program, unless QT_MAC_SET_RAISE_PROCESS is 0.
class CocoaWindows : public QObject {
public:
    /// The application object must exist, and outlive this object.
    CocoaWindows();

    /// Returns the fake NSView of the widget.
    [[nodiscard]] void* view(QWidget& widget);
    /// Returns the state of the widget's window.
    [[nodiscard]] fakemac::WindowSight sight(QWidget& widget);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] fakemac::View& viewOf(QWidget& widget);
    void show(QWidget& widget);
    void raise(QWidget& widget);
    void resize(QWidget& widget);

    std::map<const QObject*, std::unique_ptr<fakemac::View>> m_views;
};

} // namespace tessarel
