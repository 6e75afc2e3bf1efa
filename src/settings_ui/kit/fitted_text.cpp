// SPDX-License-Identifier: MIT

#include "settings_ui/kit/fitted_text.h"

#include "qt_values/text.h"

#include <QFont>
#include <QFontMetrics>
#include <QLatin1String>
#include <QRect>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTextDocument>
#include <QVariant>

#include <algorithm>
#include <functional>

namespace tessarel::fitted_text {
namespace {

// Dynamic properties that keep the full text and the largest font sizes with the control itself.
constexpr const char* kWholeText = "tessarelWholeText";
constexpr const char* kLargestSize = "tessarelLargestSize";
constexpr const char* kSharedSize = "tessarelSharedSize"; // only if the size is shared
/// Height in which wrapped text is measured, larger than that of any text.
constexpr int kEndless = 100'000;

/// Returns whether a text fits a control when it is set in the font of `metrics`.
using Fits = std::function<bool(const QString& text, const QFontMetrics& metrics)>;

/// Returns `font`, made smaller until `text` fits, but not smaller than `kSmallest`.
QFont fittedFont(QFont font, const QString& text, const Fits& fits) {
    while (font.pixelSize() > kSmallest && !fits(text, QFontMetrics(font)))
        font.setPixelSize(font.pixelSize() - 1);
    return font;
}

QString ellipsis() {
    return QString(QChar(0x2026));
}

/// Returns the position after the last whole word among the first `end` characters of `text`. If they are
/// part of a single word, returns `end`, or the position before a surrogate pair that `end` would divide.
qsizetype wordEnd(const QString& text, qsizetype end) {
    if (end == 0 || text.at(end).isSpace())
        return end;
    for (qsizetype i = end - 1; i > 0; --i)
        if (text.at(i).isSpace())
            return i;
    return text.at(end - 1).isHighSurrogate() ? end - 1 : end;
}

/// Returns `text` if it fits, otherwise its longest beginning of whole words that fits together with an
/// ellipsis. A first word that does not fit is cut.
QString fittedText(const QString& text, const QFontMetrics& metrics, const Fits& fits) {
    if (fits(text, metrics))
        return text;
    // A binary search: `fitting` code units fit, `tooLong` do not.
    qsizetype fitting = 0;
    for (qsizetype tooLong = text.size(); tooLong - fitting > 1;) {
        const qsizetype middle = (fitting + tooLong) / 2;
        (fits(text.first(middle).trimmed() + ellipsis(), metrics) ? fitting : tooLong) = middle;
    }
    return text.first(wordEnd(text, fitting)).trimmed() + ellipsis();
}

/// Returns the size of `text` if its lines are wrapped at `width`.
QSize wrappedSize(const QString& text, const QFontMetrics& metrics, int width) {
    return metrics.boundingRect(QRect(0, 0, width, kEndless), Qt::TextWordWrap, text).size();
}

/// Sets the font, tooltip and accessible name of `control`. Returns the text that it has to show.
QString fit(QWidget& control, const QString& text, const Fits& fits) {
    QFont font = control.font();
    const QVariant shared = control.property(kSharedSize);
    font.setPixelSize(shared.isValid() ? shared.toInt() : largestSize(control));
    font = fittedFont(font, text, fits);
    control.setFont(font);
    QString shown = fittedText(text, QFontMetrics(font), fits);
    control.setProperty(kWholeText, text);
    control.setToolTip(shown == text ? QString() : toolTip(text));
    control.setAccessibleName(text);
    return shown;
}

/// Stores the present font size of `control`, which must have been set in pixels.
void rememberLargestSize(QWidget& control) {
    control.setProperty(kLargestSize, control.font().pixelSize());
}

/// Returns the room for the text of `button`, without its frame or check mark.
QSize contents(const QAbstractButton& button) {
    QStyleOptionButton option;
    option.initFrom(&button);
    const bool hasMark = button.inherits("QCheckBox") || button.inherits("QRadioButton");
    const auto element = hasMark ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents;
    return button.style()->subElementRect(element, &option, &button).size();
}

} // namespace

void init(QLabel& label, const QString& text) {
    rememberLargestSize(label);
    change(label, text);
}

void init(QAbstractButton& button, const QString& text) {
    rememberLargestSize(button);
    change(button, text);
}

void change(QLabel& label, const QString& text) {
    const QSize room = label.size();
    const bool wraps = label.wordWrap();
    const Fits fits = [room, wraps](const QString& some, const QFontMetrics& metrics) {
        const QSize size = wraps ? wrappedSize(some, metrics, room.width())
                                 : QSize(metrics.horizontalAdvance(some), metrics.height());
        return size.width() <= room.width() && size.height() <= room.height();
    };
    label.setText(fit(label, text, fits));
}

void change(QAbstractButton& button, const QString& text) {
    const QSize room = contents(button);
    const Fits fits = [room](const QString& some, const QFontMetrics& metrics) {
        return metrics.horizontalAdvance(some) <= room.width();
    };
    button.setText(withoutMnemonics(fit(button, text, fits)));
}

QString toolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

void shareSize(const QList<QLabel*>& labels) {
    const auto sizeOf = [](const QLabel* label) { return label->font().pixelSize(); };
    const auto smallest = std::ranges::min_element(labels, {}, sizeOf);
    if (smallest == labels.end())
        return;
    const int size = sizeOf(*smallest);
    for (QLabel* const label : labels) {
        label->setProperty(kSharedSize, size);
        change(*label, whole(*label));
    }
}

int largestSize(const QWidget& control) {
    return control.property(kLargestSize).toInt();
}

QString whole(const QWidget& control) {
    return control.property(kWholeText).toString();
}

} // namespace tessarel::fitted_text
