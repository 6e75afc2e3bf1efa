// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/mouse_port.h"
#include "ports/desktop/process_id.h"
#include "ports/desktop/rect.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

/// The fake Mac behind the fake frameworks, in plain C++: the state that a test sets up, functions that act
/// as the user and as other programs, and a record of the back end's calls.
namespace tessarel::fakemac {

using WindowNumber = std::uint32_t;

/// A value of a type that is not the attribute's.
enum class Odd {
    Unknown,   ///< an object of a class that no attribute has
    Text,      ///< a string
    Rectangle, ///< of the type of points and sizes
    MixedList  ///< an array of a string, an unknown object and the window itself
};

/// A window of any application.
struct Window {
    ProcessId pid = 0;
    Rect axFrame = {}; ///< in accessibility coordinates
    Size minimum = {};
    std::optional<Size> maximum = {};
    std::optional<std::string> role = "AXWindow";
    std::optional<std::string> subrole = "AXStandardWindow";
    /// Role of the element found at any point of the window; empty: the window itself is found.
    std::optional<std::string> partRole = {};
    bool minimized = false;
    bool fullScreen = false;
    int layer = 0;
    double alpha = 1;
    std::set<std::string> unlisted = {};  ///< keys missing from its entry in the window server's list
    std::set<std::string> mislisted = {}; ///< keys whose value in that entry has the wrong type (a string)
    std::map<std::string, Odd> odd = {};  ///< attributes with a value of another type than usual
    bool hasAttributes = true;            ///< false: too new, its attributes cannot be used
    double lateness = 0;                  ///< seconds until a confirmed write is applied
    bool tellsItsEnd = true;              ///< false: its close sends no AXUIElementDestroyed
};

/// An application, running or launched by a test.
struct Application {
    std::uint64_t startedAt = 0; ///< start time in microseconds; 0: the time of the launch
    std::optional<std::string> bundleIdentifier = {};
    bool isRegular = true;
    bool answers = true;         ///< false: messages to it time out
    bool allowsObservers = true; ///< false: registering for notifications is refused
    /// Number of registrations for notifications that will still fail with kAXErrorCannotComplete.
    int failures = 0;
    std::optional<bool> enhancedInterface = {}; ///< its AXEnhancedUserInterface; empty: not supported
    std::map<std::string, double> numbers = {}; ///< further attributes of its element, with numbers as values
    WindowNumber focusedWindow = 0;             ///< 0: none
    /// Process id that it had before the system terminated and relaunched it, which still identifies its
    /// object; 0: it has not been relaunched.
    ProcessId relaunchedFrom = 0;
};

/// A connected display. Both frames are in screen coordinates.
struct Display {
    std::uint32_t number = 0;
    Rect frame = {};
    Rect visibleFrame = {};
};

/// Mode that the run loop is in: `EventTracking` while one of this program's menus is open.
enum class LoopMode { Default, EventTracking };

/// The state of the fake Mac. Tests set the first part; the second part records the back end's calls.
struct Mac {
    ProcessId ownPid = 4242;
    std::optional<std::string> ownBundleIdentifier = {};
    bool trusted = true;
    bool allowsMonitors = true;
    bool windowServerAnswers = true;
    bool givesNothing = false;           ///< accessibility calls succeed without a result
    bool listsAText = false;             ///< the window server's list ends with an entry that is a string
    bool notificationsComeTwice = false; ///< each notification is delivered again, as if already queued
    LoopMode loopMode = LoopMode::Default;
    std::vector<Display> displays;
    std::optional<std::vector<Display>> nextDisplays = {}; ///< replace `displays` during the next query
    /// Each replaces `displays` at the start of one further query.
    std::vector<std::vector<Display>> displayChanges = {};
    std::map<ProcessId, Application> applications;
    std::map<WindowNumber, Window> windows;
    std::vector<WindowNumber> stacking; ///< front to back
    ProcessId frontmost = 0;
    Point axPointer; ///< in accessibility coordinates
    std::uint64_t modifierFlags = 0;
    std::map<std::string, std::string> installed; ///< file names by bundle identifier
    std::map<std::string, std::string> defaults;
    long loginItemStatus = 0;
    std::optional<std::string> loginItemRefusal; ///< error text with which changes of the login item fail
    /// Accent colour as red, green and blue from 0 to 1; empty: it cannot be converted.
    std::optional<std::array<double, 3>> accent = {};
    std::set<std::string> symbols; ///< names of the available system symbols
    bool hasStatusButtons = true;
    bool grantsActivation = true;               ///< false: requests to activate this program are refused
    std::optional<std::string> panelChoice;     ///< path that the user picks in an open panel; empty: cancels
    std::map<std::string, std::string> bundles; ///< bundle identifiers by path; may be empty strings

    std::vector<std::string> writes; ///< attributes written, as in "window 3 AXSize 640 480"
    int keysOfOwnWindows = 0;        ///< keys and modifier changes that no monitor has consumed
    int valuesGiven = 0;             ///< attribute writes, including those that fail
    std::vector<double> waits;       ///< seconds waited for each message that timed out
    std::function<void(double seconds)> waited = {}; ///< called for each entry of `waits`
    int observationRequests = 0;       ///< registrations for notifications, including failed ones
    std::vector<std::string> prompted; ///< options of the requests for the permission
    std::vector<std::string> opened;   ///< URLs
    std::vector<std::string> actions;  ///< actions sent along the responder chain
    int beeps = 0;
    int loginItemChanges = 0;
    int activationRequests = 0;                ///< requests to activate this program
    int activations = 0;                       ///< requests that were granted
    std::optional<long> activationPolicy = {}; ///< last policy that this program has set
    std::vector<std::string> panels;           ///< open panels shown, with their properties
    int pressesForOthers = 0;                  ///< presses of hot keys that another program has registered
    std::vector<std::uint32_t> libraryHotKeys; ///< ids of the hot keys that reached the library's handler
};

/// Returns the fake Mac, of which there is one.
[[nodiscard]] Mac& mac();
/// Restores the initial state: no displays, no applications, no records.
void reset();
/// Returns a line for each kind of system object or registration that the back end still holds, and for each
/// fault noted since the last reset. Empty when everything has been released.
[[nodiscard]] std::vector<std::string> heldObjects();

/// Adds a running application and posts the workspace's notification.
void launch(ProcessId pid, const Application& application);
/// Kills the application: its windows close without notifications. `isNumbered` false: the object in the
/// workspace's notification has no process id any more.
void terminate(ProcessId pid, bool isNumbered = true);
/// Opens a window in front of all others and notifies observers.
WindowNumber openWindow(const Window& window);
/// Closes a window and, unless `tellsItsEnd` is false, notifies observers.
void closeWindow(WindowNumber number);
/// Gives the window the keyboard focus, and makes its application frontmost.
void focus(WindowNumber number);
/// Returns the topmost window at the point that is not minimised; 0 when there is none.
[[nodiscard]] WindowNumber windowAt(const Point& axPoint);

void movePointer(const Point& axPoint);
void pressLeftButton();
void releaseLeftButton();
void pressRightButton();
void releaseRightButton();
/// Holds exactly these modifier keys: one event for the change, none if nothing changes.
void holdModifiers(std::uint64_t flags);

/// Presses a key, given by virtual key code and Carbon's modifier bits. `repeats` true: the key is held down.
void pressKeys(std::uint32_t keyCode, std::uint32_t mods, bool repeats = false);
/// Moves the time on by which late windows apply confirmed frames.
void passTime(double seconds);
/// Runs one iteration of this program's run loop: closed menus disappear, distributed notifications arrive.
void turn();
/// A value in a distributed notification.
struct NotificationValue {
    std::variant<std::string, double, std::vector<NotificationValue>> value;
};
using NotificationContents = std::map<std::string, NotificationValue>;
/// Posts a distributed notification as another process.
void postFromOutside(const std::string& name, const NotificationContents& contents);
/// Returns the names of the distributed notifications that wait for the next iteration.
std::vector<std::string> notificationsOnTheWay();
/// Opens this running program again, as from the Finder. Returns false when the program handles no such
/// event.
bool openAgain();
/// Completes the launch of this program, in the course of which AppKit sets its own Apple event handlers.
void finishLaunching();
/// Installs a hot key handler of a library used by this program, as if before the back end's own handler.
void installLibraryHandler();
/// Presses a hot key that the library has registered.
void pressLibraryHotKey(std::uint32_t signature, std::uint32_t id);
void claimForAnotherProgram(std::uint32_t keyCode, std::uint32_t mods);
/// Returns the hot keys registered by this program, as "keyCode mods signature id".
[[nodiscard]] std::vector<std::string> claims();
/// Returns the number of this program's global event monitors.
[[nodiscard]] std::size_t globalMonitors();

} // namespace tessarel::fakemac
