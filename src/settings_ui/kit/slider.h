// SPDX-License-Identifier: MIT

#pragma once

#include <QSlider>

namespace tessarel {

/// A horizontal slider that the mouse wheel moves only while the slider has the keyboard focus, so that
/// scrolling past it changes nothing.
class Slider : public QSlider {
public:
    explicit Slider(QWidget& parent) : QSlider(Qt::Horizontal, &parent) {}

protected:
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace tessarel
