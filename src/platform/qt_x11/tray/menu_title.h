#pragma once

#include <QFontMetrics>
#include <QString>

#include <string_view>

namespace tessarel::qt {

/// Titles of menu rows, which may hold anything: names come from files and from other people.
namespace menu_title {

/// `title` on one line, without control characters, shortened with "…" when it is wider than a menu should
/// be, and closed in itself where it has characters that reorder their neighbours.
[[nodiscard]] QString oneLine(std::string_view title, const QFontMetrics& metrics);

/// `line` so that a menu of Qt's shows it as it stands, without mnemonics.
[[nodiscard]] QString forWidget(QString line);

/// `line` so that a panel that draws the menu itself shows it as it stands, after what Qt does to titles on
/// their way there.
[[nodiscard]] QString forPanel(QString line);

} // namespace menu_title

} // namespace tessarel::qt
