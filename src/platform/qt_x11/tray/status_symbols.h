#pragma once

#include <QIcon>
#include <QString>

#include <string_view>

namespace tessarel::qt {

/// Pictures for the panel, drawn here so that no icon theme is needed: a light glyph with a dark edge, which
/// reads on light and on dark panels alike. Each icon holds the sizes that panels ask for, 16 to 48 pixels.
namespace status_symbols {

/// How an icon is drawn.
enum class Appearance : bool { Normal, Disabled };

[[nodiscard]] bool exists(std::string_view symbolName);

/// The symbol of that name; a null icon when there is none.
[[nodiscard]] QIcon symbol(std::string_view name, Appearance appearance);

/// `text` itself as an icon, as large as it fits; an empty text gives a null icon.
[[nodiscard]] QIcon text(const QString& text, Appearance appearance);

} // namespace status_symbols

} // namespace tessarel::qt
