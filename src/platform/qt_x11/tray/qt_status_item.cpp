// SPDX-License-Identifier: MIT

#include "platform/qt_x11/tray/qt_status_item.h"

#include "model/call_on_end.h"
#include "platform/qt_x11/tray/call_limit.h"
#include "platform/qt_x11/tray/item_as_menu.h"
#include "platform/qt_x11/tray/menu_view.h"
#include "platform/qt_x11/tray/status_symbols.h"
#include "platform/qt_x11/tray/tray_watch.h"
#include "ports/deferred_work.h"
#include "qt_values/text.h"

#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QString>
#include <QSystemTrayIcon>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tessarel::qt {

namespace {

/// How long `whenPlaced` waits for a session bus or a panel that does not reply.
constexpr std::chrono::seconds kPlacePatience{8};

} // namespace

/// One created status item: its content, and its icon once a panel has a place for it.
class QtStatusItem::Item {
public:
    Item(MainQueuePort& queue, SessionBus& bus, Delegate delegate, std::function<void()> beforeOpening)
        : m_delegate(std::move(delegate)), m_beforeOpening(std::move(beforeOpening)), m_queue(queue),
          m_bus(bus), m_calls(queue), m_later(queue) {
        m_later.async([this] { appear(); });
    }

    void whenPlaced(std::function<void(bool isShown)> placed) {
        m_placed = std::move(placed);
        m_later.asyncAfter(kPlacePatience, [this] { reportPlace(); });
    }

    void setSymbol(std::string_view name, std::string_view description) {
        m_symbol = name;
        m_description = toQString(description);
        refresh();
    }
    void clearSymbol() {
        m_symbol.clear();
        refresh();
    }
    void setTitle(std::string_view title) {
        m_title = toQString(title);
        refresh();
    }
    void setAppearsDisabled(bool appearsDisabled) {
        m_appearance =
            appearsDisabled ? status_symbols::Appearance::Disabled : status_symbols::Appearance::Normal;
        refresh();
    }

private:
    void appear() {
        m_busChanged = m_bus.onChanged([this] { takeDownWithoutBus(); });
        watch();
    }

    void watch() {
        m_watch = std::make_unique<TrayWatch>(m_bus, m_queue, [this](std::optional<TrayWatch::Place> place) {
            // Qt keeps to the kind of place of the first icon.
            if (place && !m_icon && m_place.value_or(*place) == *place)
                putUp(*place);
            reportPlace();
        });
    }

    void reportPlace() {
        if (const auto placed = std::exchange(m_placed, nullptr))
            placed(m_icon && m_icon->isVisible());
    }

    /// Creates a menu that is filled each time it is about to open.
    std::unique_ptr<MenuView> makeMenu(MenuView::DrawnBy drawnBy) {
        auto menu = std::make_unique<MenuView>(drawnBy, [this](const MenuItem& row) { choose(row); });
        QObject::connect(&menu->widget(), &QMenu::aboutToShow, &menu->widget(),
                         [this, opened = menu.get()] { fill(*opened); });
        return menu;
    }

    void putUp(TrayWatch::Place place) {
        m_place = place;
        if (place == TrayWatch::Place::SystemTray)
            m_bus.keepQtOff();
        m_menu = makeMenu(MenuView::DrawnBy::Qt);
        m_icon = std::make_unique<QSystemTrayIcon>();
        QObject::connect(m_icon.get(), &QSystemTrayIcon::activated, m_icon.get(),
                         [this](QSystemTrayIcon::ActivationReason reason) { activated(reason); });
        if (place == TrayWatch::Place::StatusNotifierHost) {
            handMenuToPanel();
            // There, no program can open a menu at a place of the screen.
            if (QGuiApplication::platformName() == QLatin1String("wayland"))
                m_itemAsMenu.emplace();
        }
        m_later.async([this] { stopWatching(); });
        refresh();
    }

    /// Qt itself handles a panel that restarts.
    void stopWatching() { m_watch.reset(); }

    /// Removes an icon whose bus was lost, so that a panel on the next bus gets a new one.
    void takeDownWithoutBus() {
        if (!m_icon || m_place != TrayWatch::Place::StatusNotifierHost || m_bus.connection())
            return;
        m_itemAsMenu.reset();
        m_icon.reset();
        m_panelMenu.reset();
        watch();
    }

    void handMenuToPanel() {
        m_panelMenu = makeMenu(MenuView::DrawnBy::Panel);
        m_icon->setContextMenu(&m_panelMenu->widget());
        // Some panels do not offer a menu that was empty when they first read it.
        m_later.async([this] { fill(*m_panelMenu); });
    }

    void fill(MenuView& menu) { menu.show(m_delegate.menuNeedsUpdate()); }

    void choose(const MenuItem& row) {
        // The callback is copied, because it may destroy this item.
        m_later.async([row, itemSelected = m_delegate.itemSelected] { itemSelected(row); });
    }

    /// Opens the menu for either mouse button. A panel that draws the menu itself does not report the second
    /// button.
    void activated(QSystemTrayIcon::ActivationReason reason) {
        if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::Context)
            return;
        m_beforeOpening();
        m_menu->widget().popup(QCursor::pos());
    }

    /// Returns the symbol or, without one, the title drawn as an icon; null when both are empty.
    [[nodiscard]] QIcon picture() const {
        return m_symbol.empty() ? status_symbols::text(m_title, m_appearance)
                                : status_symbols::symbol(m_symbol, m_appearance);
    }

    void refresh() {
        if (!m_icon)
            return;
        const QIcon icon = picture();
        m_icon->setIcon(icon);
        m_icon->setToolTip(m_description);
        m_icon->setVisible(!icon.isNull());
        if (m_itemAsMenu)
            m_itemAsMenu->refresh();
        if (m_place == TrayWatch::Place::StatusNotifierHost)
            m_calls.refresh();
    }

    Delegate m_delegate;
    std::function<void()> m_beforeOpening;
    std::function<void(bool isShown)> m_placed; // until it has been called
    std::string m_symbol;
    QString m_description;
    QString m_title;
    status_symbols::Appearance m_appearance = status_symbols::Appearance::Normal;
    MainQueuePort& m_queue;
    SessionBus& m_bus;
    std::optional<TrayWatch::Place> m_place; // of the first icon
    SubscriptionPtr m_busChanged;
    std::unique_ptr<TrayWatch> m_watch; // only while there is no icon
    std::unique_ptr<MenuView> m_menu;
    std::unique_ptr<MenuView> m_panelMenu;   // only where the panel draws the menu
    std::unique_ptr<QSystemTrayIcon> m_icon; // declared after the menus, to be destroyed before them
    std::optional<ItemAsMenu> m_itemAsMenu;
    CallLimit m_calls;
    DeferredWork m_later;
};

QtStatusItem::QtStatusItem(MainQueuePort& queue, SessionBus& bus, std::function<void()> beforeOpening)
    : m_queue(queue), m_bus(bus), m_beforeOpening(std::move(beforeOpening)) {}

QtStatusItem::~QtStatusItem() = default;

SubscriptionPtr QtStatusItem::create(Delegate delegate) {
    auto item = std::make_shared<Item>(m_queue, m_bus, std::move(delegate), m_beforeOpening);
    m_item = item;
    return callOnEnd([item = std::move(item)] {}); // owns the item
}

void QtStatusItem::whenPlaced(std::function<void(bool isShown)> placed) {
    if (const auto item = m_item.lock())
        item->whenPlaced(std::move(placed));
}

bool QtStatusItem::setSymbol(std::string_view symbolName, std::string_view accessibilityDescription) {
    if (!status_symbols::exists(symbolName))
        return false;
    if (const auto item = m_item.lock())
        item->setSymbol(symbolName, accessibilityDescription);
    return true;
}

void QtStatusItem::clearImage() {
    if (const auto item = m_item.lock())
        item->clearSymbol();
}

void QtStatusItem::setTitle(std::string_view title) {
    if (const auto item = m_item.lock())
        item->setTitle(title);
}

void QtStatusItem::setAppearsDisabled(bool appearsDisabled) {
    if (const auto item = m_item.lock())
        item->setAppearsDisabled(appearsDisabled);
}

} // namespace tessarel::qt
