// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>
#include <QString>

#include <string_view>

namespace tessarel::qt {

/// Icons for the panel, drawn by the program so that no icon theme is needed. A light glyph with a dark edge
/// is legible on light and dark panels, and so is the grey one of a disabled icon. Each icon holds the sizes
/// that panels request, from 16 to 48 pixels.
namespace status_symbols {

/// How an icon is drawn; `Disabled` is dimmed.
enum class Appearance : bool { Normal, Disabled };

/// Returns whether there is a symbol of that name. The names are those of the macOS system symbols.
[[nodiscard]] bool exists(std::string_view symbolName);

/// Returns the symbol of that name, or a null icon when there is none.
[[nodiscard]] QIcon symbol(std::string_view name, Appearance appearance);

/// Returns an icon that shows `text` as large as it fits, or a null icon for an empty text.
[[nodiscard]] QIcon text(const QString& text, Appearance appearance);

} // namespace status_symbols

} // namespace tessarel::qt
