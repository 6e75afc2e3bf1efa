#pragma once

#include "macos/fake/fake_windows.h"

#include <QObject>

#include <map>
#include <memory>

class QWidget;

namespace tessarel {

/// What Qt does with the system's windows on a Mac, done with those of the fake one for the windows that Qt
/// shows here, as far as the program depends on it: a window that is shown or raised comes before the others
/// only if the program is in front, and raising it brings the program to the front unless Qt has been told
/// not to.
class CocoaWindows : public QObject {
public:
    /// Begins when the application object exists, and ends before it.
    CocoaWindows();

    /// The NSView that the widget stands for.
    [[nodiscard]] void* view(QWidget& widget);
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
