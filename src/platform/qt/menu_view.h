#pragma once

#include "ports/menu.h"

#include <QMenu>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tessarel::qt {

/// A menu of Qt's that shows a `Menu`.
class MenuView {
public:
    /// Who draws the rows; it decides how a title must be written to show as it stands.
    enum class DrawnBy : std::uint8_t { Qt, Panel };

    /// Calls `chosen` with the row that was chosen, while the menu is still busy with it: no place to destroy
    /// this view or to show another menu.
    MenuView(DrawnBy drawnBy, std::function<void(const MenuItem&)> chosen);

    /// Makes the rows those of `menu`. Rows that are right already stay, so that a panel which asks again and
    /// again is not given another menu each time.
    void show(const Menu& menu);

    [[nodiscard]] QMenu& widget() { return m_widget; }

private:
    void rebuild(const Menu& menu);
    [[nodiscard]] QAction* add(const MenuItem& item, std::size_t& usedSubmenus);
    [[nodiscard]] QAction* addSubmenu(const MenuItem& item, std::size_t& usedSubmenus);
    [[nodiscard]] QString titleOf(const MenuItem& item) const;
    void choose(const MenuItem& item);

    DrawnBy m_drawnBy;
    std::function<void(const MenuItem&)> m_chosen;
    QMenu m_widget;
    std::vector<std::unique_ptr<MenuView>> m_submenus; // made once: clearing a menu would leave them behind
    std::optional<Menu> m_shown;                       // none when a row has changed by itself
};

} // namespace tessarel::qt
