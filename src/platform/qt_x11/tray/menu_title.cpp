// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/menu_title.h"

#include "qt_values/text.h"

#include <QChar>
#include <QList>

#include <algorithm>

namespace tessarel::qt::menu_title {

namespace {

/// The widest title, in characters of average width.
constexpr int kWidestInCharacters = 60;
/// Up to this many Latin letters always fit and are not measured: measuring a thousand titles is slow.
constexpr int kSurelyFits = 30;
/// In UTF-16 units. A longer title is truncated before it is measured; more of it is never shown.
constexpr int kLongestMeasured = 512;

// An isolate keeps right-to-left characters of a title from reordering the text around it.
constexpr QChar kFirstStrongIsolate(u'\u2068');
constexpr QChar kPopIsolate(u'\u2069');

bool isLineBreakOrControl(QChar character) {
    return character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
           character.category() == QChar::Separator_Paragraph;
}

bool isPlainLatin(QChar character) {
    constexpr char16_t kFirstBeyondLatin = 0x250;
    return character.unicode() < kFirstBeyondLatin;
}

/// Returns whether the character is one of the three that open an isolate (U+2066 to U+2068).
bool opensIsolate(QChar character) {
    return character >= QChar(u'\u2066') && character <= kFirstStrongIsolate;
}

/// Returns whether a character in `text` can change the display order. Plain Latin text is recognised without
/// decoding.
bool reorders(const QString& text) {
    if (std::ranges::all_of(text, isPlainLatin))
        return false;
    return std::ranges::any_of(text.toUcs4(), [](char32_t character) {
        switch (QChar::direction(character)) {
        case QChar::DirL:
        case QChar::DirEN:
        case QChar::DirES:
        case QChar::DirET:
        case QChar::DirCS:
        case QChar::DirNSM:
        case QChar::DirBN:
        case QChar::DirON:
        case QChar::DirWS:
            return false;
        default:
            return true;
        }
    });
}

/// Returns `text` inside an isolate. Isolates that `text` leaves open are closed, and closing characters
/// without an opening one are dropped, so that `text` cannot break out of the isolate.
QString isolated(const QString& text) {
    QString result(kFirstStrongIsolate);
    int open = 0;
    for (const QChar character : text) {
        if (character == kPopIsolate && open == 0)
            continue;
        open += opensIsolate(character) ? 1 : 0;
        open -= character == kPopIsolate ? 1 : 0;
        result += character;
    }
    return result + QString(open + 1, kPopIsolate);
}

/// Returns `text` with an ellipsis if it is wider than a menu row should be. Never splits a surrogate pair.
QString shortened(QString text, const QFontMetrics& metrics) {
    if (text.size() <= kSurelyFits && std::ranges::all_of(text, isPlainLatin))
        return text;
    if (text.size() > kLongestMeasured) {
        text.truncate(kLongestMeasured - (text.at(kLongestMeasured - 1).isHighSurrogate() ? 1 : 0));
        text += QChar(u'\u2026');
    }
    return metrics.elidedText(text, Qt::ElideRight, kWidestInCharacters * metrics.averageCharWidth());
}

} // namespace

QString oneLine(std::string_view title, const QFontMetrics& metrics) {
    QString text = toQString(title);
    std::ranges::replace_if(text, isLineBreakOrControl, QChar(u' '));
    text = shortened(std::move(text), metrics);
    return reorders(text) ? isolated(text) : text;
}

QString forWidget(QString line) {
    return withoutMnemonics(std::move(line));
}

QString forPanel(QString line) {
    line.replace(QChar(u'_'), QStringLiteral("__"));
    // On the way to the panel Qt converts only the first ampersand into a mnemonic marker. Doubling it makes
    // the ampersand itself the marked character, which shows it.
    if (const qsizetype first = line.indexOf(QChar(u'&')); first >= 0)
        line.insert(first, QChar(u'&'));
    return line;
}

} // namespace tessarel::qt::menu_title
