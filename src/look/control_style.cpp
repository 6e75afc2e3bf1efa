// SPDX-License-Identifier: MIT

#include "look/control_style.h"

#include "look/box.h"
#include "look/palette.h"

#include <QAbstractScrollArea>
#include <QComboBox>
#include <QLineF>
#include <QPainter>
#include <QPalette>
#include <QPen>
#include <QPointF>
#include <QPolygonF>
#include <QPushButton>
#include <QRectF>
#include <QStyleOption>

#include <algorithm>

namespace tessarel {

namespace {

// In device-independent pixels.
constexpr int kIndicatorSize = 15;
constexpr double kIndicatorRadius = 3;
constexpr int kSliderHandle = 16;
constexpr double kHandleRadius = 6; // leaves straight edges, which are sharp
constexpr double kGrooveThickness = 4;
constexpr int kScrollBarExtent = 14;
constexpr double kScrollThumbMargin = 3;
constexpr int kShortestThumb = 32;
constexpr double kMarkWidth = 2;
constexpr double kChevronWidth = 1.5;
constexpr QPointF kChevron(4, 2); // half the size of the mark on pop-up buttons
constexpr double kTabMarkThickness = 2;
constexpr int kAreaFrame = 3; // of scroll areas, which cover their focus ring in part at fractional scales
constexpr int kPageLine = 1;  // the selected tab covers the line of its page

bool isOn(const QStyleOption& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

QColor colorOf(const QStyleOption& option, QPalette::ColorRole role) {
    const auto group = isOn(option, QStyle::State_Enabled) ? QPalette::Active : QPalette::Disabled;
    return option.palette.color(group, role);
}

QColor outlineOf(const QStyleOption& option) {
    return colorOf(option, QPalette::Mid);
}

QColor accentOf(const QStyleOption& option) {
    return option.palette.color(QPalette::Active, QPalette::Highlight);
}

bool hasKeyboardFocus(const QStyleOption& option) {
    return isOn(option, QStyle::State_HasFocus) && isOn(option, QStyle::State_KeyboardFocusChange);
}

QColor pressed(const QColor& color) {
    constexpr int kDarker = 112;   // percent
    constexpr int kBrighter = 125; // percent
    constexpr int kMiddle = 128;
    return color.lightness() < kMiddle ? color.lighter(kBrighter) : color.darker(kDarker);
}

QColor buttonFill(const QStyleOption& option) {
    const QColor button = colorOf(option, QPalette::Button);
    return isOn(option, QStyle::State_Sunken) || isOn(option, QStyle::State_On) ? pressed(button) : button;
}

void paintRing(QPainter& painter, const QStyleOption& option, const QRectF& frame, double radius) {
    paintBox(painter, frame,
             {.line = accentLine(option.palette), .lineWidth = kFocusWidth, .radius = radius});
}

void paintButton(QPainter& painter, const QStyleOption& option) {
    const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    const bool isDefault = button && button->features.testFlag(QStyleOptionButton::DefaultButton) &&
                           isOn(option, QStyle::State_Enabled);
    paintBox(
        painter, option.rect,
        {.fill = buttonFill(option), .line = isDefault ? accentLine(option.palette) : outlineOf(option)});
    if (hasKeyboardFocus(option))
        paintRing(painter, option, option.rect, kCornerRadius);
}

void paintField(QPainter& painter, const QStyleOption& option, const QColor& fill) {
    const bool hasFocus = isOn(option, QStyle::State_HasFocus);
    paintBox(painter, option.rect,
             {.fill = fill,
              .line = hasFocus ? accentLine(option.palette) : outlineOf(option),
              .lineWidth = hasFocus ? kFocusWidth : kOutlineWidth});
}

/// Paints a line through points in shares of `frame`.
void paintMark(QPainter& painter, const QRectF& frame, const QPolygonF& shares, const QColor& color) {
    QPolygonF points;
    for (const QPointF& share : shares)
        points.append(frame.topLeft() + QPointF(share.x() * frame.width(), share.y() * frame.height()));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, kMarkWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(points);
    painter.restore();
}

void paintCheckBox(QPainter& painter, const QStyleOption& option) {
    const bool isChecked = isOn(option, QStyle::State_On);
    const bool isPartly = isOn(option, QStyle::State_NoChange);
    const bool isEnabled = isOn(option, QStyle::State_Enabled);
    const bool isFilled = (isChecked || isPartly) && isEnabled;
    const QColor base = colorOf(option, QPalette::Base);
    paintBox(painter, option.rect,
             {.fill = isFilled                             ? accentOf(option)
                      : isOn(option, QStyle::State_Sunken) ? pressed(base)
                                                           : base,
              .line = isFilled ? accentLine(option.palette) : outlineOf(option),
              .radius = kIndicatorRadius});
    const QColor mark = isFilled ? option.palette.color(QPalette::Active, QPalette::HighlightedText)
                                 : colorOf(option, QPalette::Text);
    if (isChecked)
        paintMark(painter, option.rect, {{0.24, 0.52}, {0.43, 0.7}, {0.76, 0.3}}, mark);
    else if (isPartly)
        paintMark(painter, option.rect, {{0.27, 0.5}, {0.73, 0.5}}, mark);
}

/// Paints a tab above its page. The selected one is open towards the page and has a line in the accent
/// colour at its top.
void paintTab(QPainter& painter, const QStyleOptionTab& option) {
    const bool isSelected = isOn(option, QStyle::State_Selected);
    const QRectF frame(option.rect);
    painter.save();
    painter.setClipRect(option.rect, Qt::IntersectClip);
    const double below = kCornerRadius + kOutlineWidth; // keeps the lower edge outside of the clip
    const QColor window = colorOf(option, QPalette::Window);
    if (isSelected) {
        paintBox(painter, frame.adjusted(0, 0, 0, below), {.fill = window, .line = outlineOf(option)});
        const QRectF mark(frame.left() + kCornerRadius, frame.top(), frame.width() - 2 * kCornerRadius,
                          kTabMarkThickness);
        paintBox(painter, mark, {.fill = accentLine(option.palette), .radius = 0});
    } else if (isOn(option, QStyle::State_MouseOver)) {
        paintBox(painter, frame.adjusted(2, 2, -2, below), {.fill = pressed(window)});
    }
    painter.restore();
}

} // namespace

void ControlStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    switch (element) {
    case PE_PanelButtonCommand:
        return paintButton(*painter, *option);
    case PE_FrameDefaultButton: // the line of the button shows which one is the default
    case PE_FrameTabBarBase:    // the page has a complete border
        return;
    case PE_PanelLineEdit: {
        const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame && frame->lineWidth > 0)
            return paintField(*painter, *option, colorOf(*option, QPalette::Base));
        break; // a part of another control
    }
    case PE_FrameLineEdit:
        return paintField(*painter, *option, {});
    case PE_Frame:
        paintBox(*painter, option->rect,
                 {.fill = colorOf(*option, QPalette::Base), .line = outlineOf(*option), .radius = 0});
        if (hasKeyboardFocus(*option))
            paintRing(*painter, *option, option->rect, 0);
        return;
    case PE_PanelMenu: // its option does not say that it is enabled
        return paintBox(*painter, option->rect,
                        {.fill = option->palette.color(QPalette::Active, QPalette::Base),
                         .line = option->palette.color(QPalette::Active, QPalette::Mid),
                         .radius = 0});
    case PE_FrameTabWidget:
        return paintBox(
            *painter, option->rect,
            {.fill = colorOf(*option, QPalette::Window), .line = outlineOf(*option), .radius = 0});
    case PE_IndicatorCheckBox:
        return paintCheckBox(*painter, *option);
    case PE_FrameFocusRect:
        // The panel of a button has its own ring.
        if (isOn(*option, State_KeyboardFocusChange) && !qobject_cast<const QPushButton*>(widget))
            paintRing(*painter, *option, option->rect, kCornerRadius);
        return;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ControlStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    const auto* const tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    if (element == CE_TabBarTabShape && tab && tab->shape == QTabBar::RoundedNorth)
        return paintTab(*painter, *tab);
    // The open list of a pop-up button, which Fusion would give the background of the window.
    if (element == CE_MenuEmptyArea || (element == CE_MenuItem && qobject_cast<const QComboBox*>(widget)))
        painter->fillRect(option->rect, colorOf(*option, QPalette::Base));
    QProxyStyle::drawControl(element, option, painter, widget);
}

void ControlStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    const auto* const comboBox = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ComboBox && comboBox && !comboBox->editable)
        return drawPopUp(*comboBox, *painter, widget);
    const auto* const slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_Slider && slider && slider->orientation == Qt::Horizontal)
        return drawSlider(*slider, *painter, widget);
    if (control == CC_ScrollBar && slider)
        return drawScrollBar(*slider, *painter, widget);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void ControlStyle::drawPopUp(const QStyleOptionComboBox& option, QPainter& painter,
                             const QWidget* widget) const {
    if (option.frame)
        paintButton(painter, option);
    const QPointF centre =
        QRectF(proxy()->subControlRect(CC_ComboBox, &option, SC_ComboBoxArrow, widget)).center();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colorOf(option, QPalette::ButtonText), kChevronWidth, Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF({centre + QPointF(-kChevron.x(), -kChevron.y()), centre + QPointF(0, kChevron.y()),
                   centre + QPointF(kChevron.x(), -kChevron.y())}));
    painter.restore();
}

void ControlStyle::drawSlider(const QStyleOptionSlider& option, QPainter& painter,
                              const QWidget* widget) const {
    const QRectF handle(proxy()->subControlRect(CC_Slider, &option, SC_SliderHandle, widget));
    const QRectF groove(option.rect.left() + kCornerRadius, handle.center().y() - kGrooveThickness / 2,
                        option.rect.width() - 2 * kCornerRadius, kGrooveThickness);
    const bool isEnabled = isOn(option, State_Enabled);
    const QColor line = isEnabled ? accentLine(option.palette) : outlineOf(option);
    constexpr double kRound = kGrooveThickness / 2;
    paintBox(painter, groove, {.fill = outlineOf(option), .radius = kRound});
    QRectF filled = groove;
    (option.upsideDown ? filled.setLeft(handle.center().x()) : filled.setRight(handle.center().x()));
    paintBox(painter, filled, {.fill = isEnabled ? accentOf(option) : line, .line = line, .radius = kRound});
    const bool hasFocus = hasKeyboardFocus(option);
    const bool isHeld = isOn(option, State_Sunken) && option.activeSubControls.testFlag(SC_SliderHandle);
    const QColor button = colorOf(option, QPalette::Button);
    paintBox(painter, handle,
             {.fill = isHeld ? pressed(button) : button,
              .line = hasFocus ? accentLine(option.palette) : outlineOf(option),
              .lineWidth = hasFocus ? kFocusWidth : kOutlineWidth,
              .radius = kHandleRadius});
}

/// Paints a thumb without arrows on the background of lists.
void ControlStyle::drawScrollBar(const QStyleOptionSlider& option, QPainter& painter,
                                 const QWidget* widget) const {
    painter.fillRect(option.rect, colorOf(option, QPalette::Base));
    if (option.maximum <= option.minimum)
        return;
    const QRectF thumb(proxy()->subControlRect(CC_ScrollBar, &option, SC_ScrollBarSlider, widget));
    const QRectF inner =
        thumb.adjusted(kScrollThumbMargin, kScrollThumbMargin, -kScrollThumbMargin, -kScrollThumbMargin);
    const bool isHeld = isOn(option, State_Sunken) && option.activeSubControls.testFlag(SC_ScrollBarSlider);
    paintBox(painter, inner,
             {.fill = isHeld ? colorOf(option, QPalette::PlaceholderText) : outlineOf(option),
              .radius = std::min(inner.width(), inner.height()) / 2});
}

int ControlStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
        return kIndicatorSize;
    case PM_SliderLength:
    case PM_SliderThickness:
    case PM_SliderControlThickness:
        return kSliderHandle;
    case PM_DefaultFrameWidth:
        return qobject_cast<const QAbstractScrollArea*>(widget)
                   ? kAreaFrame
                   : QProxyStyle::pixelMetric(metric, option, widget);
    case PM_TabBarBaseOverlap:
        return kPageLine;
    case PM_ScrollBarExtent:
        return kScrollBarExtent;
    case PM_ScrollBarSliderMin:
        return kShortestThumb;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QRect ControlStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                   const QWidget* widget) const {
    const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, part, widget);
    const QRect all = bar->rect;
    const bool isHorizontal = bar->orientation == Qt::Horizontal;
    const int room = isHorizontal ? all.width() : all.height();
    const int range = bar->maximum - bar->minimum;
    const double share = static_cast<double>(bar->pageStep) / std::max(1, range + bar->pageStep);
    const int length = std::clamp(static_cast<int>(share * room), std::min(kShortestThumb, room), room);
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, room - length,
                                              bar->upsideDown);
    const auto between = [&](int from, int to) {
        return visualRect(bar->direction, all,
                          isHorizontal ? QRect(all.left() + from, all.top(), to - from, all.height())
                                       : QRect(all.left(), all.top() + from, all.width(), to - from));
    };
    switch (part) {
    case SC_ScrollBarSlider:
        return between(start, start + length);
    case SC_ScrollBarGroove:
        return all;
    case SC_ScrollBarSubPage:
        return between(0, start);
    case SC_ScrollBarAddPage:
        return between(start + length, room);
    default: // there are no arrows
        return {};
    }
}

} // namespace tessarel
