// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace tessarel::x11 {

/// The atoms that the back end uses: EWMH hints, their values, the toolkits' own properties, and those of
/// the command line.
///
/// Sorted by name. Atoms whose name depends on the screen or the desktop are interned at runtime instead.
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
    TessarelCommand,
    Utf8String,
    WmState,
    kCount
};

/// Returns the name of the atom on the X server, such as `_NET_WM_PID`.
[[nodiscard]] std::string_view nameOf(Atom atom);

/// The server's atom for every `Atom`.
class Atoms {
public:
    /// Interns all atoms in one round trip. If the connection is lost, all are XCB_ATOM_NONE.
    explicit Atoms(xcb_connection_t* xcb);
    /// Has these values, in the order of `Atom`.
    explicit Atoms(const std::array<xcb_atom_t, static_cast<std::size_t>(Atom::kCount)>& values)
        : m_atoms(values) {}

    /// Returns the server's atom from memory, without a request.
    [[nodiscard]] xcb_atom_t operator[](Atom atom) const { return m_atoms[static_cast<std::size_t>(atom)]; }

private:
    std::array<xcb_atom_t, static_cast<std::size_t>(Atom::kCount)> m_atoms{};
};

} // namespace tessarel::x11
