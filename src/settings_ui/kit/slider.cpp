// SPDX-License-Identifier: MIT

#include "settings_ui/kit/slider.h"

#include <QWheelEvent>

namespace tessarel {

void Slider::wheelEvent(QWheelEvent* event) {
    if (!hasFocus())
        return event->ignore();
    QSlider::wheelEvent(event);
}

} // namespace tessarel
