#include "platform/qt_x11/tray/menu_title.h"

#include <QChar>
#include <QList>

#include <algorithm>

namespace tessarel::qt::menu_title {

namespace {

constexpr int kWidestInCharacters = 60; // of average width
constexpr int kSurelyFits = 30;         // Latin letters: measuring a thousand titles takes its time
constexpr int kLongestMeasured = 512;   // UTF-16 units; more of them are never shown

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

bool opensIsolate(QChar character) {
    return character >= QChar(u'\u2066') && character <= kFirstStrongIsolate;
}

/// Whether `text` may be shown in another order than it is stored.
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

/// `text` between isolates of which none is left open, and none closed that was not opened.
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
    QString text = QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size()));
    std::ranges::replace_if(text, isLineBreakOrControl, QChar(u' '));
    text = shortened(std::move(text), metrics);
    return reorders(text) ? isolated(text) : text;
}

QString forWidget(QString line) {
    return line.replace(QChar(u'&'), QStringLiteral("&&"));
}

QString forPanel(QString line) {
    line.replace(QChar(u'_'), QStringLiteral("__"));
    // Qt turns the first ampersand into the mark of a mnemonic and leaves the others alone. Marking the
    // ampersand itself shows it.
    if (const qsizetype first = line.indexOf(QChar(u'&')); first >= 0)
        line.insert(first, QChar(u'&'));
    return line;
}

} // namespace tessarel::qt::menu_title
