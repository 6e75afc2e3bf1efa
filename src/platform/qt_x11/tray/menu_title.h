// SPDX-License-Identifier: MIT

#pragma once

#include <QFontMetrics>
#include <QString>

#include <string_view>

namespace tessarel::qt {

/// Makes titles of menu rows safe to show. Names in them come from files and may contain any character.
namespace menu_title {

/// Returns `title`, which is UTF-8, on one line: with spaces instead of line breaks and control characters,
/// shortened with "…" when it is too wide for a menu, and inside a bidirectional isolate when it contains
/// characters that reorder their neighbours. `metrics` is that of the menu's font.
[[nodiscard]] QString oneLine(std::string_view title, const QFontMetrics& metrics);

/// Escapes `line` so that a menu drawn by Qt shows it literally, without mnemonics.
[[nodiscard]] QString forWidget(QString line);

/// Escapes `line` so that a panel that draws the menu shows it literally. Panels take underscores for
/// mnemonics, and Qt converts ampersands when it exports the menu on the session bus.
[[nodiscard]] QString forPanel(QString line);

} // namespace menu_title

} // namespace tessarel::qt
