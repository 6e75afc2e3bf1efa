// SPDX-License-Identifier: MIT

#pragma once

#include "settings_ui/kit/fitted_text.h"
#include "settings_ui/kit/kit.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <string>

namespace tessarel {

/// Returns the look of a control's text: its font size when there is enough room, whether it is bold, its
/// colour, and the text. Resizes the control.
template <class Control>
std::string textLook(Control& control) {
    const QString text = fullText(control);
    control.resize(5000, 500); // in its own frame the text may be set smaller, depending on the font
    fitted_text::change(control, text);
    std::string look = " " + std::to_string(fitted_text::largestSize(control));
    if (control.font().weight() != QFont::Normal)
        look += control.font().weight() == QFont::Bold ? " bold" : " of another weight";
    if (control.foregroundRole() == QPalette::PlaceholderText)
        look += " secondary";
    else if (qobject_cast<QLabel*>(&control) && control.foregroundRole() != QPalette::WindowText)
        look += " in another colour";
    return look + ": " + text.toStdString();
}

/// Returns a line for each control directly on `view`, in the order of their creation: its frame, its kind
/// and its look. Resizes the controls that have a text.
inline std::string looks(QWidget& view) {
    std::string all;
    for (QWidget* const control : view.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        const QRect frame = control->geometry();
        std::string kind = "control";
        std::string look;
        if (auto* const label = qobject_cast<QLabel*>(control)) {
            kind = label->wordWrap() ? "wrap" : "label";
            look = textLook(*label);
        } else if (qobject_cast<QPushButton*>(control) || qobject_cast<QCheckBox*>(control)) {
            kind = qobject_cast<QCheckBox*>(control) ? "box" : "button";
            look = textLook(dynamic_cast<QAbstractButton&>(*control));
        } else if (control->font().pixelSize() > 0) {
            look = " " + std::to_string(control->font().pixelSize());
        }
        all += std::to_string(frame.x()) + " " + std::to_string(frame.y()) + " " +
               std::to_string(frame.width()) + "x" + std::to_string(frame.height()) + " " + kind + look +
               "\n";
    }
    return all;
}

} // namespace tessarel
