#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstddef>

namespace tessarel::x11 {

/// Names that clients and window managers speak by.
enum class Atom : std::size_t {
    GtkApplicationId,
    GtkFrameExtents,
    KdeNetWmDesktopFile,
    NetActiveWindow,
    NetClientList,
    NetClientListStacking,
    NetCurrentDesktop,
    NetFrameExtents,
    NetMoveResizeWindow,
    NetSupported,
    NetSupportingWmCheck,
    NetWmDesktop,
    NetWmName,
    NetWmPid,
    NetWmState,
    NetWmStateFullscreen,
    NetWmStateHidden,
    NetWmStateMaximizedHorz,
    NetWmStateMaximizedVert,
    NetWmStateShaded,
    NetWmStrut,
    NetWmStrutPartial,
    NetWmWindowOpacity,
    NetWmWindowType,
    NetWmWindowTypeCombo,
    NetWmWindowTypeDesktop,
    NetWmWindowTypeDialog,
    NetWmWindowTypeDnd,
    NetWmWindowTypeDock,
    NetWmWindowTypeDropdownMenu,
    NetWmWindowTypeMenu,
    NetWmWindowTypeNormal,
    NetWmWindowTypeNotification,
    NetWmWindowTypePopupMenu,
    NetWmWindowTypeSplash,
    NetWmWindowTypeToolbar,
    NetWmWindowTypeTooltip,
    NetWmWindowTypeUtility,
    NetWorkarea,
    Utf8String,
    kCount
};

/// The server's number of every `Atom`.
class Atoms {
public:
    /// Asks the server for all of them in one round trip. Without a server all are XCB_ATOM_NONE.
    explicit Atoms(xcb_connection_t* xcb);

    [[nodiscard]] xcb_atom_t operator[](Atom atom) const { return m_atoms[static_cast<std::size_t>(atom)]; }

private:
    std::array<xcb_atom_t, static_cast<std::size_t>(Atom::kCount)> m_atoms{};
};

} // namespace tessarel::x11
