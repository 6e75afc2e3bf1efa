// SPDX-License-Identifier: MIT

#include "plasma/parts.h"
#include "support/clock.h"
#include "support/plasma/plasma_session.h"
#include "support/statistics.h"
#include "support/table.h"

#include <array>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessarel::bench {

namespace {

using plasmatest::PlasmaSession;
namespace key = plasmatest::key;

constexpr Rect kLeftHalf{0, 0, 800, 900};
constexpr Rect kLowerHalf{0, 450, 1600, 450};

/// Shortcuts of the compositor, which do what the arrow keys with Ctrl and Alt do in the program.
constexpr const char* kMoves = R"js(
function move(frame) {
    const window = workspace.activeClient;
    window.setMaximize(false, false);
    window.tile = null;
    window.frameGeometry = frame;
}
registerShortcut("bench left", "bench left", "Ctrl+Alt+Home",
                 () => move({ x: 0, y: 0, width: 800, height: 900 }));
registerShortcut("bench lower", "bench lower", "Ctrl+Alt+End",
                 () => move({ x: 0, y: 450, width: 1600, height: 450 }));
)js";

/// The keys by which one side moves the window, as codes of the kernel.
struct Keys {
    std::uint32_t left;
    std::uint32_t lower;
};
constexpr Keys kOurs{key::kLeft, 108};
constexpr Keys kTheirs{102, 107};

/// The active window, moved between the left and the lower half of the first display with Ctrl and Alt held.
class Moved {
public:
    Moved(PlasmaSession& session, std::string windowClass)
        : m_session(session), m_class(std::move(windowClass)) {
        for (const std::uint32_t modifier : {key::kLeftControl, key::kLeftAlt})
            m_session.input().setKey(modifier, true);
    }
    Moved(const Moved&) = delete;
    Moved& operator=(const Moved&) = delete;
    ~Moved() {
        for (const std::uint32_t modifier : {key::kLeftControl, key::kLeftAlt})
            m_session.input().setKey(modifier, false);
    }

    /// Returns the milliseconds from the press of the key to the settled frame.
    double press(const Keys& keys) {
        const std::uint32_t code = m_isLeft ? keys.lower : keys.left;
        const Rect& expected = m_isLeft ? kLowerHalf : kLeftHalf;
        m_isLeft = !m_isLeft;
        const auto start = Clock::now();
        m_session.input().setKey(code, true);
        const bool hasSettled = m_session.settledFrame(m_class, expected) == expected;
        const double taken = Milliseconds(Clock::now() - start).count();
        m_session.input().setKey(code, false);
        if (!hasSettled)
            throw std::runtime_error("a window of " + m_class + " does not move");
        std::this_thread::sleep_for(kQuiet);
        return taken;
    }

private:
    PlasmaSession& m_session;
    std::string m_class;
    bool m_isLeft = false;
};

} // namespace

void measureKeys(const std::filesystem::path& programs, int presses) {
    PlasmaSession session;
    start(session, R"({"hasOnboarded":true,"rememberApps":false})");
    session.probe().run(kMoves);
    Table table({"window", "Tessarel p50 ms", "p95 ms", "in the compositor p50 ms", "p95 ms", "p50 ratio"});
    const std::vector<std::pair<std::string, std::string>> windows{{programs / "qt_target", "qt_target"},
                                                                   {"kwrite", plasmatest::kRealEditor},
                                                                   {"gtk4-demo", "org.gtk.Demo4"}};
    for (const auto& [command, windowClass] : windows) {
        session.open({command}, windowClass);
        Moved window(session, windowClass);
        for (const Keys& keys : {kOurs, kTheirs, kTheirs, kOurs})
            window.press(keys); // to warm up
        std::vector<double> ours;
        std::vector<double> theirs;
        while (static_cast<int>(ours.size()) < presses) {
            ours.push_back(window.press(kOurs));
            theirs.push_back(window.press(kTheirs));
            theirs.push_back(window.press(kTheirs));
            ours.push_back(window.press(kOurs));
        }
        table.add({windowClass, number(median(ours)), number(percentile(ours, 95)), number(median(theirs)),
                   number(percentile(theirs, 95)), number(median(ours) / median(theirs))});
    }
    table.print("Key press to settled window on Plasma, " + std::to_string(presses) + " presses each");
}

} // namespace tessarel::bench
