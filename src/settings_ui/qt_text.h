#pragma once

#include <QString>

#include <string_view>

namespace tessarel {

/// The program's own text, which is UTF-8, as the toolkit takes it.
[[nodiscard]] inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace tessarel
