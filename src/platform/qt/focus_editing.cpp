// SPDX-License-Identifier: MIT

#include "platform/qt/focus_editing.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <array>
#include <string_view>

namespace tessarel::qt {

namespace {

/// Names of the AppKit operations that Qt's text fields support.
constexpr std::array<std::string_view, 6> kEditing{"undo:", "redo:", "cut:", "copy:", "paste:", "selectAll:"};

/// Returns Qt's key for a letter from 'a' to 'z'.
int keyOf(char letter) {
    return Qt::Key_A + (letter - 'a');
}

} // namespace

bool editInFocus(const MainMenuItem& row) {
    if (QGuiApplication::focusWindow() == nullptr ||
        std::ranges::find(kEditing, row.action) == kEditing.end())
        return false;
    if (QWidget* const widget = QApplication::focusWidget()) {
        Qt::KeyboardModifiers modifiers = Qt::ControlModifier; // Qt's name for Command on a Mac
        modifiers.setFlag(Qt::ShiftModifier, row.withShift);
        QKeyEvent press(QEvent::KeyPress, keyOf(row.key), modifiers);
        QApplication::sendEvent(widget, &press);
    }
    return true;
}

} // namespace tessarel::qt
