// SPDX-License-Identifier: MIT

#pragma once

#include <QProxyStyle>

class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionSlider;
class QStyleOptionTab;

namespace tessarel {

/// The style of all controls: flat, with outlines that have enough contrast, whole device pixels at any
/// scale, and a ring in the accent colour around the control that has the keyboard focus.
///
/// The ring appears once the user has moved the focus with the keyboard, around a text field always. All
/// colours come from the palette: outlines are `QPalette::Mid`, the accent colour is `QPalette::Highlight`,
/// its lines are `accentLine`. What this style does not paint itself looks as in Fusion, whose sizes it
/// keeps.
class ControlStyle : public QProxyStyle {
public:
    ControlStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;

private:
    void drawPopUp(const QStyleOptionComboBox& option, QPainter& painter, const QWidget* widget) const;
    void drawSlider(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;
    void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;
};

} // namespace tessarel
