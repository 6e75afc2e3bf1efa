// SPDX-License-Identifier: MIT

#include "platform/xdg/utf8.h"

#include <QByteArray>
#include <QString>
#include <QStringDecoder>

namespace tessarel::xdg {

namespace {

bool isUtf8(const QByteArray& text) {
    // Stateless: an incomplete character at the end is an error instead of waiting for more input.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = decoder(text);
    return !decoder.hasError();
}

} // namespace

std::string toUtf8(const std::string& text) {
    const QByteArray untilNul(text.c_str());
    return isUtf8(untilNul) ? untilNul.toStdString() : QString::fromLatin1(untilNul).toStdString();
}

} // namespace tessarel::xdg
