// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/displays/usable_area.h"
#include "platform/x11/server/connection.h"

#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace tessarel::x11 {

/// Watches the space that panels and the window manager reserve on the current desktop.
///
/// The sources are the struts of all managed windows and the work areas that the window manager publishes on
/// the root window. A window manager that publishes none may have bars of its own, which are not managed:
/// then the struts of docks among the children of the root window count, too. All of these are cached and
/// read again only after a change.
class ReservedSpaceWatch {
public:
    /// `connection` must outlive this object.
    explicit ReservedSpaceWatch(Connection& connection);

    /// Returns the reserved space of the current desktop. Sends requests on the first call and after a
    /// change. The reference stays valid; later calls change the value.
    [[nodiscard]] const ReservedSpace& current();

private:
    class StrutRequest;
    class ManagersAreasRequest;
    using StrutCache = std::unordered_map<xcb_window_t, std::vector<Strut>>; ///< by window

    void note(const Connection::Event& event);
    void noteRoot(xcb_atom_t property);
    void follow();
    void refresh();
    enum class Managed { No, Yes };
    void dropAllBut(std::span<const xcb_window_t> windows, StrutCache& cache);
    void readStruts(StrutCache& cache, std::span<const xcb_window_t> windows, Managed managed);
    [[nodiscard]] std::vector<xcb_window_t> unmanagedWindows(std::span<const xcb_window_t> managed);
    [[nodiscard]] std::vector<xcb_window_t> childrenOf(std::span<const xcb_window_t> parents);
    [[nodiscard]] xcb_atom_t areasAtom(std::uint32_t desktop);

    Connection& m_connection;
    bool m_isWanted = false; // `current` was called at least once
    bool m_isCurrent = false;
    bool m_strutsOutdated = false;
    std::uint32_t m_desktop = 0; // the current desktop as last read
    ReservedSpace m_space;
    StrutCache m_struts;                                        // of every managed window
    StrutCache m_otherStruts;                                   // of other windows that count
    std::unordered_map<std::uint32_t, xcb_atom_t> m_areasAtoms; // by desktop
    SubscriptionPtr m_observer;
    SubscriptionPtr m_handler;
};

} // namespace tessarel::x11
