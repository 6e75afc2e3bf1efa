#include "settings_ui/fitted_text.h"

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

constexpr const char* kWholeText = "tessarelWholeText";
constexpr const char* kLargestSize = "tessarelLargestSize";
constexpr int kEndless = 100'000;

/// Tells whether a text in a font is no larger than the control has room for.
using Fits = std::function<bool(const QString& text, const QFontMetrics& metrics)>;

/// `font`, smaller if that makes `text` fit.
QFont fittedFont(QFont font, const QString& text, const Fits& fits) {
    while (font.pixelSize() > kSmallest && !fits(text, QFontMetrics(font)))
        font.setPixelSize(font.pixelSize() - 1);
    return font;
}

QString ellipsis() {
    return QString(QChar(0x2026));
}

/// The longest beginning of `text` that fits with an ellipsis behind it; `text` if it fits as it is.
QString fittedText(const QString& text, const QFontMetrics& metrics, const Fits& fits) {
    if (fits(text, metrics))
        return text;
    qsizetype fitting = 0;
    for (qsizetype tooLong = text.size(); tooLong - fitting > 1;) {
        const qsizetype middle = (fitting + tooLong) / 2;
        (fits(text.first(middle).trimmed() + ellipsis(), metrics) ? fitting : tooLong) = middle;
    }
    if (fitting > 0 && text.at(fitting - 1).isHighSurrogate())
        --fitting;
    return text.first(fitting).trimmed() + ellipsis();
}

QSize wrappedSize(const QString& text, const QFontMetrics& metrics, int width) {
    return metrics.boundingRect(QRect(0, 0, width, kEndless), Qt::TextWordWrap, text).size();
}

/// Sets font, tooltip and name of `control`; answers what it is to show.
QString fit(QWidget& control, const QString& text, const Fits& fits) {
    QFont font = control.font();
    font.setPixelSize(control.property(kLargestSize).toInt());
    font = fittedFont(font, text, fits);
    control.setFont(font);
    QString shown = fittedText(text, QFontMetrics(font), fits);
    control.setProperty(kWholeText, text);
    control.setToolTip(shown == text ? QString() : toolTip(text));
    control.setAccessibleName(text);
    return shown;
}

void rememberLargestSize(QWidget& control) {
    control.setProperty(kLargestSize, control.font().pixelSize());
}

QSize contents(const QAbstractButton& button) {
    QStyleOptionButton option;
    option.initFrom(&button);
    const bool hasMark = button.inherits("QCheckBox") || button.inherits("QRadioButton");
    const auto element = hasMark ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents;
    return button.style()->subElementRect(element, &option, &button).size();
}

/// A single '&' would underline the next letter instead of showing itself.
QString withoutMnemonics(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
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

QString whole(const QWidget& control) {
    return control.property(kWholeText).toString();
}

} // namespace tessarel::fitted_text
