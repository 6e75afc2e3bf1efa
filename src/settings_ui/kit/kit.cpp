// SPDX-License-Identifier: MIT

#include "settings_ui/kit/kit.h"

#include "look/box.h"
#include "look/palette.h"
#include "settings_ui/kit/fitted_text.h"

#include <QAbstractScrollArea>
#include <QByteArray>
#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QMap>
#include <QPainter>
#include <QPalette>
#include <QPushButton>

#include <cmath>
#include <utility>

namespace tessarel {
namespace {

// In device-independent pixels.
constexpr double kBezelRadius = 2; // rounder corners would lie under the area
constexpr int kBeyond = 1;         // how far the focus ring reaches beyond the frame of a scroll area
constexpr int kInset = 2; // of a scroll area in its frame: at least as wide as the line, at any scale

/// The border of a scroll area, painted behind it. At fractional scales, a line that the area paints itself
/// may lose a side.
class Bezel : public QWidget {
public:
    explicit Bezel(QAbstractScrollArea& area) : QWidget(area.parentWidget()), m_area(area) {
        area.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* area, QEvent* event) override {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            update();
        return QWidget::eventFilter(area, event);
    }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        if (showsKeyboardFocus(m_area))
            return paintBox(painter, rect(),
                            {.fill = controlBackgroundColor(palette()),
                             .line = accentLine(palette()),
                             .lineWidth = kFocusWidth});
        paintBox(painter, rect().adjusted(kBeyond, kBeyond, -kBeyond, -kBeyond),
                 {.fill = controlBackgroundColor(palette()),
                  .line = separatorColor(palette()),
                  .radius = kBezelRadius});
    }

private:
    QAbstractScrollArea& m_area;
};

/// Creates a label without text, which must be set after its font and frame.
QLabel* makePlainLabel(QWidget& parent, const QRect& frame, const QFont& font, bool secondary) {
    auto* const label = new QLabel(&parent);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setForegroundRole(secondary ? QPalette::PlaceholderText : QPalette::WindowText);
    label->setGeometry(frame);
    return label;
}

} // namespace

QLabel* makeLabel(QWidget& parent, const QString& text, const QRect& frame, const LabelStyle& style) {
    const QFont font = systemFont(style.size, style.bold ? QFont::Bold : QFont::Normal);
    QLabel* const label = makePlainLabel(parent, frame, font, style.secondary);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    fitted_text::init(*label, text);
    return label;
}

QLabel* makeWrap(QWidget& parent, const QString& text, const QRect& frame, const WrapStyle& style) {
    QLabel* const label = makePlainLabel(parent, frame, systemFont(style.size), style.secondary);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setWordWrap(true);
    fitted_text::init(*label, text);
    return label;
}

void unifyNotes(QWidget& view) {
    QMap<int, QList<QLabel*>> notes; // by the size that they are to have
    for (QLabel* const label : view.findChildren<QLabel*>(Qt::FindDirectChildrenOnly))
        if (label->wordWrap())
            notes[fitted_text::largestSize(*label)].append(label);
    for (const QList<QLabel*>& ofOneSize : std::as_const(notes))
        fitted_text::shareSize(ofOneSize);
}

QPushButton* makeButton(QWidget& parent, const QString& title, const QRect& frame,
                        std::function<void()> action) {
    auto* const button = new QPushButton(&parent);
    button->setFont(systemFont(13));
    button->setGeometry(frame);
    fitted_text::init(*button, title);
    if (action)
        QObject::connect(button, &QPushButton::clicked, button, [action = std::move(action)] { action(); });
    return button;
}

QCheckBox* makeCheckBox(QWidget& parent, const QString& title, const QRect& frame,
                        std::function<void(bool)> action) {
    auto* const box = new QCheckBox(&parent);
    box->setFont(systemFont(13));
    box->setGeometry(frame);
    fitted_text::init(*box, title);
    // clicked(), because the program's own changes emit toggled() as well.
    if (action)
        QObject::connect(box, &QCheckBox::clicked, box, std::move(action));
    return box;
}

void setBezeled(QAbstractScrollArea& area, const QRect& frame) {
    auto* const bezel = new Bezel(area);
    bezel->setGeometry(frame.adjusted(-kBeyond, -kBeyond, kBeyond, kBeyond));
    bezel->stackUnder(&area);
    area.setFrameShape(QFrame::NoFrame);
    area.setGeometry(frame.adjusted(kInset, kInset, -kInset, -kInset));
    // Also what lies in a scroll area, which would have the background of the window.
    area.viewport()->setBackgroundRole(QPalette::Base);
}

void nameAfter(QLabel& label, QWidget& control) {
    label.setBuddy(&control);
    control.setAccessibleName(fullText(label));
}

bool showsKeyboardFocus(const QWidget& control) {
    return control.hasFocus() && control.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void setFittedText(QLabel& label, const QString& text) {
    fitted_text::change(label, text);
}

void setFittedText(QPushButton& button, const QString& title) {
    fitted_text::change(button, title);
}

QString fullText(const QWidget& control) {
    return fitted_text::whole(control);
}

QString fmtNum(double value) {
    constexpr int kDigits = 6; // significant ones
    const double rounded = std::round(value * 100) / 100;
    return QString::fromLatin1(QByteArray::number(rounded, 'g', kDigits));
}

void showMessage(const Ports& ports, const QString& title, const QString& text) {
    ports.application.activate();
    ports.alerts.runModal({title.toStdString(), text.toStdString(), {"OK"}});
}

QFont systemFont(int size, QFont::Weight weight) {
    QFont font; // starts with the application's default font
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

QColor labelColor(const QPalette& palette) {
    return palette.color(QPalette::WindowText);
}

QColor secondaryLabelColor(const QPalette& palette) {
    return palette.color(QPalette::PlaceholderText);
}

QColor separatorColor(const QPalette& palette) {
    return palette.color(QPalette::Mid);
}

QColor controlBackgroundColor(const QPalette& palette) {
    return palette.color(QPalette::Base);
}

QColor controlAccentColor(const QPalette& palette) {
    return palette.color(QPalette::Highlight);
}

QColor warningColor(const QPalette& palette) {
    // Both have a contrast of more than 5:1 to the buttons of their palette.
    constexpr QRgb kOnLight = qRgb(0xb3, 0x26, 0x1e);
    constexpr QRgb kOnDark = qRgb(0xff, 0x8a, 0x80);
    constexpr int kMiddle = 128;
    return palette.color(QPalette::Button).lightness() < kMiddle ? kOnDark : kOnLight;
}

} // namespace tessarel
