#pragma once

#include "ports/mouse_port.h"
#include "ports/process_id.h"
#include "ports/rect.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The Mac that the fake frameworks show to the back end. Plain C++: what a test sets up, what the user and
/// other programs do, and what the back end has asked the system for.
namespace tessarel::fakemac {

using WindowNumber = std::uint32_t;

struct Window {
    ProcessId pid = 0;
    Rect axFrame = {};
    Size minimum = {};
    std::optional<Size> maximum = {};
    std::optional<std::string> role = "AXWindow";
    std::optional<std::string> subrole = "AXStandardWindow";
    std::optional<std::string> partRole = {}; ///< of the part found at any point of it; empty: itself is
    bool minimized = false;
    bool fullScreen = false;
    int layer = 0;
    double alpha = 1;
    std::set<std::string> unlisted = {};  ///< keys that the window server's list leaves out
    std::set<std::string> mislisted = {}; ///< keys under which it has a text
    bool hasAttributes = true;            ///< false: it is so new that its program knows nothing of it
    double lateness = 0;                  ///< seconds that pass until it follows a write
    bool tellsItsEnd = true;              ///< false: observers are not told when it closes
};

struct Application {
    std::uint64_t startedAt = 0; ///< in microseconds; 0: at its launch
    std::optional<std::string> bundleIdentifier = {};
    bool isRegular = true;
    bool answers = true;         ///< false: whoever asks it something waits until the time limit
    bool allowsObservers = true; ///< false: it refuses to send notifications
    int failures = 0;            ///< how often more it cannot be observed, for it has not finished its launch
    std::optional<bool> enhancedInterface = {};
    std::map<std::string, double> numbers = {}; ///< attributes of its element that hold numbers
    WindowNumber focusedWindow = 0;
};

struct Display {
    std::uint32_t number = 0;
    Rect frame = {};
    Rect visibleFrame = {};
};

/// A run loop's turn as long as the user does something with our own program.
enum class LoopMode { Default, EventTracking };

struct Mac {
    ProcessId ownPid = 4242;
    std::optional<std::string> ownBundleIdentifier = {};
    bool trusted = true;
    bool allowsMonitors = true;
    bool windowServerAnswers = true;
    bool givesNothing = false;           ///< what is asked of other programs succeeds without a result
    bool listsAText = false;             ///< the window server's list ends with something that is no window
    bool notificationsComeTwice = false; ///< a second one is under way while the first is dealt with
    LoopMode loopMode = LoopMode::Default;
    std::vector<Display> displays;
    std::optional<std::vector<Display>> nextDisplays = {}; ///< the displays, once they have been asked for
    std::map<ProcessId, Application> applications;
    std::map<WindowNumber, Window> windows;
    std::vector<WindowNumber> stacking; ///< front to back
    ProcessId frontmost = 0;
    Point axPointer;
    std::uint64_t modifierFlags = 0;
    std::map<std::string, std::string> installed; ///< file names by bundle identifier
    std::map<std::string, std::string> defaults;
    long loginItemStatus = 0;
    std::optional<std::string> loginItemRefusal;
    std::optional<std::array<double, 3>> accent =
        {};                        ///< the user's red, green and blue; none: no such colour
    std::set<std::string> symbols; ///< names of the system's pictures
    bool hasStatusButtons = true;
    bool grantsActivation = true; ///< false: the program in front does not yield to one that asks for it
    std::optional<std::string> panelChoice;     ///< path that the user picks in a panel; none: cancels it
    std::map<std::string, std::string> bundles; ///< identifiers, which may be empty, by path

    std::vector<std::string> writes;                 ///< attributes written, as in "window 3 AXSize 640x480"
    int keysOfOwnWindows = 0;                        ///< pressed and not swallowed by a monitor
    int valuesGiven = 0;                             ///< to attributes, whether they could be written or not
    std::vector<double> waits;                       ///< seconds waited for applications that do not answer
    std::function<void(double seconds)> waited = {}; ///< called with each of these
    int observationRequests = 0;                     ///< of this program, made of other programs
    std::vector<std::string> prompted;               ///< options with which the permission was asked for
    std::vector<std::string> opened;                 ///< addresses
    std::vector<std::string> actions;                ///< sent to whatever has the keyboard focus
    int beeps = 0;
    int loginItemChanges = 0;
    int activationRequests = 0;                ///< of this program, to come to the front
    int activations = 0;                       ///< how often it has
    std::optional<long> activationPolicy = {}; ///< as this program has set it
    std::vector<std::string> panels;           ///< shown, with what they offered
    int pressesForOthers = 0;                  ///< of keys that another program has claimed
    std::vector<std::uint32_t> libraryHotKeys; ///< that have come to a library's own handler
};

[[nodiscard]] Mac& mac();
/// A Mac as it comes: no display, no program, nothing remembered.
void reset();
/// What the back end still holds of the system: a line each. Nothing, when all its objects have gone.
[[nodiscard]] std::vector<std::string> heldObjects();

void launch(ProcessId pid, const Application& application);
/// Its windows go without a word, its notifications with it. The system may not know its number any more when
/// it tells of the end.
void terminate(ProcessId pid, bool isNumbered = true);
WindowNumber openWindow(const Window& window);
void closeWindow(WindowNumber number);
void focus(WindowNumber number);
/// The window found at the point; 0 when there is none.
[[nodiscard]] WindowNumber windowAt(const Point& axPoint);

void movePointer(const Point& axPoint);
void pressLeftButton();
void releaseLeftButton();
void pressRightButton();
void releaseRightButton();
/// The modifier keys are held as in `flags` from now on, whichever those are that go down or up for it.
void holdModifiers(std::uint64_t flags);

/// A key, by virtual key code, with Carbon's modifier bits. `repeats`: it is held down.
void pressKeys(std::uint32_t keyCode, std::uint32_t mods, bool repeats = false);
/// Time passes for windows that are late.
void passTime(double seconds);
/// A turn of this program's loop: what comes only with one, comes.
void turn();
/// The user opens this program, which runs already, once more: false when it does not care.
bool openAgain();
/// This program's loop has begun, and with it what the system itself does about events.
void finishLaunching();
/// A library that this program uses has a handler of its own for hot keys, from before ours, and presses of
/// hot keys of its own.
void installLibraryHandler();
void pressLibraryHotKey(std::uint32_t signature, std::uint32_t id);
void claimForAnotherProgram(std::uint32_t keyCode, std::uint32_t mods);
/// Claims of this program, as "keyCode mods signature id".
[[nodiscard]] std::vector<std::string> claims();
/// How many global monitors this program has.
[[nodiscard]] std::size_t globalMonitors();

} // namespace tessarel::fakemac
