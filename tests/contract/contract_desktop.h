// SPDX-License-Identifier: MIT

#pragma once

#include "model/settings/preferences_port.h"
#include "model/subscription.h"
#include "ports/alert_sound_port.h"
#include "ports/desktop/accessibility_port.h"
#include "ports/desktop/displays_port.h"
#include "ports/desktop/hot_key_port.h"
#include "ports/desktop/key_names_port.h"
#include "ports/desktop/local_keys_port.h"
#include "ports/desktop/mouse_port.h"
#include "ports/desktop/workspace_port.h"
#include "ports/main_queue_port.h"
#include "ports/single_instance_port.h"
#include "ports/trust_port.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel::contract {

/// Handle of an application on the desktop under test.
struct AppHandle {
    int number = 0;
};

/// Handle of a window on the desktop under test.
struct WindowHandle {
    int number = 0;
};

struct WindowOptions {
    Rect axFrame{200, 150, 640, 480}; ///< visible outer frame
    Size minimumSize{};               ///< smallest outer size; no limit when empty
    bool resizable = true;            ///< false: the size never changes
};

/// A desktop with the back end under test, new for every test: the back end's ports, and functions that act
/// as the user and as other programs.
///
/// At first it has two displays, `kPrimary` and to its right `second()`, but no panel, no window and no
/// focus. The functions that act on the desktop return once the change has happened and the back end has
/// received all events about it. Rectangles are in accessibility coordinates.
class ContractDesktop {
public:
    static constexpr Rect kPrimary{0, 0, 1440, 900};

    ContractDesktop() = default;
    ContractDesktop(const ContractDesktop&) = delete;
    ContractDesktop& operator=(const ContractDesktop&) = delete;
    virtual ~ContractDesktop() = default;

    virtual AccessibilityPort& accessibility() = 0;
    virtual AlertSoundPort& alertSound() = 0;
    virtual DisplaysPort& displays() = 0;
    virtual HotKeyPort& hotKeys() = 0;
    virtual KeyNamesPort& keyNames() = 0;
    virtual LocalKeysPort& localKeys() = 0;
    virtual MousePort& mouse() = 0;
    virtual TrustPort& trust() = 0;
    virtual WorkspacePort& workspace() = 0;
    /// Returns a new main queue on the clock that `advance` moves.
    [[nodiscard]] virtual std::unique_ptr<MainQueuePort> makeMainQueue() = 0;
    /// Returns the preferences as the program opens them at launch. All returned objects share one storage.
    [[nodiscard]] virtual std::unique_ptr<PreferencesPort> makePreferences() = 0;
    /// Returns the single-instance port of one more copy of the program on this desktop.
    [[nodiscard]] virtual std::unique_ptr<SingleInstancePort> makeCopy() = 0;

    /// Installs an application with this bundle identifier and display name.
    virtual void installApplication(const std::string& bundleIdentifier, const std::string& displayName) = 0;
    /// Starts an application with this bundle identifier, or with none. It may count as running only once it
    /// has a window.
    virtual AppHandle launchApplication(const std::optional<std::string>& bundleIdentifier) = 0;
    virtual ProcessId pid(AppHandle application) = 0;
    /// Returns the bundle identifier of an application that has been launched without one. Some desktops name
    /// it after its program.
    [[nodiscard]] virtual std::optional<std::string> identifierOfNameless() const { return std::nullopt; }
    /// Returns the back end's element for `window`, which must exist.
    virtual Element element(WindowHandle window) = 0;
    /// Returns the actual frame of the window, read without the back end.
    virtual Rect actualFrame(WindowHandle window) = 0;

    /// Opens a window on top of the others. It is unspecified which window has the focus afterwards.
    virtual WindowHandle openWindow(AppHandle application, const WindowOptions& options) = 0;
    /// Gives the window the keyboard focus and brings it to the front.
    virtual void focus(WindowHandle window) = 0;
    /// Gives the keyboard focus to a window of the program under test. Opens one if there is none.
    virtual void focusOwnWindow() = 0;
    virtual void minimize(WindowHandle window) = 0;
    virtual void enterFullScreen(WindowHandle window) = 0;
    virtual void closeWindow(WindowHandle window) = 0;
    /// Kills the process, which cannot close its windows itself.
    virtual void killApplication(AppHandle application) = 0;

    /// Adds a panel of this height along the top edge of the primary display, which reserves its area.
    virtual void addPanel(double height) = 0;
    /// Returns the frame of the second display, which ends further down than the primary one where the
    /// desktop can have displays of different sizes.
    [[nodiscard]] virtual Rect second() const { return {1440, 0, 1120, 1024}; }
    virtual void disconnectSecondDisplay() = 0;

    /// Presses and releases a key, given as in `HotKeyRequest`.
    virtual void pressKeys(std::uint32_t keyCode, std::uint32_t mods) = 0;
    /// Moves the pointer; buttons and modifiers stay as they are. At first none is held.
    virtual void movePointer(const Point& axPoint) = 0;
    virtual void pressLeftButton() = 0;
    virtual void releaseLeftButton() = 0;
    /// Holds exactly the modifiers of `modifierFlags`, the flags of `ModifierFlags`.
    virtual void holdModifiers(std::uint64_t modifierFlags) = 0;
    /// Returns whether only one program at a time can claim a combination.
    [[nodiscard]] virtual bool hotKeysAreExclusive() const { return true; }
    /// Has another program claim the combination until the returned subscription is destroyed. Null when that
    /// program's claim is refused.
    [[nodiscard]] virtual SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) = 0;

    /// Returns whether several copies of the program may share the preferences at a time. If not, nothing is
    /// locked and no change is reported.
    [[nodiscard]] virtual bool copiesSharePreferences() const { return true; }
    /// Returns the copy of the rejected document under `key`; empty when there is none.
    virtual std::optional<std::string> rejectedCopy(std::string_view key) = 0;

    /// Runs the loop until every pending request has been carried out and its events have been delivered.
    virtual void settle() = 0;
    /// Runs the loop for `duration` on the main queues' clock, with the work that becomes due.
    virtual void advance(MainQueuePort::Duration duration) = 0;
};

/// Returns the desktop of the back end under test. Every test program that links the suite defines it.
[[nodiscard]] std::unique_ptr<ContractDesktop> makeContractDesktop();

} // namespace tessarel::contract
