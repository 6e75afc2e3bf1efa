// SPDX-License-Identifier: MIT

#pragma once

#include <QLatin1Char>
#include <QLatin1String>
#include <QString>

#include <string_view>

namespace tessarel {

/// Converts text of the core, which is UTF-8, to a string of Qt. Invalid bytes become replacement characters.
[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Returns `text` with every '&' doubled: Qt takes a single one for the mark of a mnemonic and hides it.
[[nodiscard]] inline QString withoutMnemonics(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace tessarel
