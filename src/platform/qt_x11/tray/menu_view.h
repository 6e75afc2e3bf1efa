#pragma once

#include "ports/menu.h"

#include <QKeyCombination>
#include <QMenu>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace tessarel::qt {

/// A menu of Qt's whose rows can also be chosen by keys while it is open; Qt's own shows those keys only.
class KeyMenu : public QMenu {
public:
    /// `choose` returns whether it knows the keys.
    explicit KeyMenu(std::function<bool(QKeyCombination)> choose) : m_choose(std::move(choose)) {}

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<bool(QKeyCombination)> m_choose;
};

/// A menu of Qt's that shows a `Menu`.
class MenuView {
public:
    /// Who draws the rows; it decides how a title must be written to show as it stands.
    enum class DrawnBy : std::uint8_t { Qt, Panel };

    /// Calls `chosen` with the row that was chosen, while the menu is still busy with it: no place to destroy
    /// this view or to show another menu.
    /// A submenu leaves keys that it does not know to `parent`, which outlives it.
    MenuView(DrawnBy drawnBy, std::function<void(const MenuItem&)> chosen, MenuView* parent = nullptr);

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
    [[nodiscard]] bool chooseByKeys(QKeyCombination keys);

    DrawnBy m_drawnBy;
    std::function<void(const MenuItem&)> m_chosen;
    MenuView* m_parent;
    KeyMenu m_widget{[this](QKeyCombination keys) { return chooseByKeys(keys); }};
    std::vector<std::unique_ptr<MenuView>> m_submenus; // made once: clearing a menu would leave them behind
    std::optional<Menu> m_shown;                       // none when a row has changed by itself
};

} // namespace tessarel::qt
