#pragma once

#include "model/preferences_port.h"
#include "model/subscription.h"
#include "ports/accessibility_port.h"
#include "ports/alert_sound_port.h"
#include "ports/displays_port.h"
#include "ports/hot_key_port.h"
#include "ports/local_keys_port.h"
#include "ports/main_queue_port.h"
#include "ports/mouse_port.h"
#include "ports/single_instance_port.h"
#include "ports/trust_port.h"
#include "ports/workspace_port.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarel::contract {

/// An application started on the desktop under test.
struct AppHandle {
    int number = 0;
};

/// A window opened on the desktop under test.
struct WindowHandle {
    int number = 0;
};

struct WindowOptions {
    Rect axFrame{200, 150, 640, 480}; ///< visible outer frame
    Size minimumSize{};               ///< outer size below which the window does not shrink; none when empty
    bool resizable = true;            ///< false: the size never changes
};

/// A desktop, fresh for every case, that one back end works on: the back end's ports, and what a person and
/// other programs can do to the desktop without them.
///
/// It has two displays, `kPrimary` and to its right `kSecond`, no panel, no window and no focus. Everything
/// done through the calls of the lower half has happened, and the back end has heard of it, when the call
/// returns. Rectangles are in accessibility coordinates.
class ContractDesktop {
public:
    static constexpr Rect kPrimary{0, 0, 1440, 900};
    static constexpr Rect kSecond{1440, 0, 1120, 1024};

    ContractDesktop() = default;
    ContractDesktop(const ContractDesktop&) = delete;
    ContractDesktop& operator=(const ContractDesktop&) = delete;
    virtual ~ContractDesktop() = default;

    virtual AccessibilityPort& accessibility() = 0;
    virtual AlertSoundPort& alertSound() = 0;
    virtual DisplaysPort& displays() = 0;
    virtual HotKeyPort& hotKeys() = 0;
    virtual LocalKeysPort& localKeys() = 0;
    virtual MousePort& mouse() = 0;
    virtual TrustPort& trust() = 0;
    virtual WorkspacePort& workspace() = 0;
    /// A main queue of its own, on the clock that `advance` turns.
    [[nodiscard]] virtual std::unique_ptr<MainQueuePort> makeMainQueue() = 0;
    /// The preferences as a start of the program finds them; all of them share what is stored.
    [[nodiscard]] virtual std::unique_ptr<PreferencesPort> makePreferences() = 0;
    /// One more copy of the program on this desktop.
    [[nodiscard]] virtual std::unique_ptr<SingleInstancePort> makeCopy() = 0;

    /// Installs an application that goes by `displayName`.
    virtual void installApplication(const std::string& bundleIdentifier, const std::string& displayName) = 0;
    /// A program whose windows carry `bundleIdentifier`, or nothing to know it by. It counts as running once
    /// it has a window.
    virtual AppHandle launchApplication(const std::optional<std::string>& bundleIdentifier) = 0;
    virtual ProcessId pid(AppHandle application) = 0;
    /// The window's element as the back end under test knows it; may be asked for while the window exists.
    virtual Element element(WindowHandle window) = 0;
    /// Where the window really is, seen without the back end.
    virtual Rect actualFrame(WindowHandle window) = 0;

    /// Opens a window on top of the others. Which window has the focus afterwards is not said.
    virtual WindowHandle openWindow(AppHandle application, const WindowOptions& options) = 0;
    /// Gives the window the keyboard focus and brings it to the front.
    virtual void focus(WindowHandle window) = 0;
    /// Gives the keyboard focus to a window of the program under test, which is opened when there is none.
    virtual void focusOwnWindow() = 0;
    virtual void minimize(WindowHandle window) = 0;
    virtual void enterFullScreen(WindowHandle window) = 0;
    virtual void closeWindow(WindowHandle window) = 0;
    /// Ends the process without a chance to tidy up.
    virtual void killApplication(AppHandle application) = 0;

    /// A bar `height` high along the top edge of the primary display, which windows are to leave free.
    virtual void addPanel(double height) = 0;
    virtual void disconnectSecondDisplay() = 0;

    /// Presses and releases a key, given as in `HotKeyRequest`.
    virtual void pressKeys(std::uint32_t keyCode, std::uint32_t mods) = 0;
    /// Moves the pointer, with whatever buttons are down. At first none is, nor any modifier.
    virtual void movePointer(const Point& axPoint) = 0;
    virtual void pressLeftButton() = 0;
    virtual void releaseLeftButton() = 0;
    /// Holds exactly the modifiers of `modifierFlags`, the flags of `ModifierFlags`.
    virtual void holdModifiers(std::uint64_t modifierFlags) = 0;
    /// Whether a combination that one program has claimed is then that program's alone.
    [[nodiscard]] virtual bool hotKeysAreExclusive() const { return true; }
    /// Another program claims the combination, until the answer ends.
    [[nodiscard]] virtual SubscriptionPtr holdByAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) = 0;

    /// The bytes that the preferences have kept as a copy of a rejected document; empty when there is none.
    virtual std::optional<std::string> rejectedCopy(std::string_view key) = 0;

    /// Runs the loop until all that was asked for has been done and heard of.
    virtual void settle() = 0;
    /// Runs the loop for `duration` of the main queues' time, and what falls due in it.
    virtual void advance(MainQueuePort::Duration duration) = 0;
};

/// The desktop of the back end under test. Each program that runs the suite defines it once.
[[nodiscard]] std::unique_ptr<ContractDesktop> makeContractDesktop();

} // namespace tessarel::contract
