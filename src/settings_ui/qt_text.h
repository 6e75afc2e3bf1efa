#pragma once

#include <QString>

#include <string_view>

namespace tessarel {

/// Converts text of the core, which is UTF-8, to a string of Qt.
[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace tessarel
