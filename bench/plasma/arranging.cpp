// SPDX-License-Identifier: MIT

#include "plasma/parts.h"
#include "support/clock.h"
#include "support/statistics.h"
#include "support/table.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using plasmatest::PlasmaSession;
using plasmatest::SeenWindow;
namespace key = plasmatest::key;

constexpr int kWindows = 9;
constexpr int kColumns = 4;
constexpr Size kZone{400, 225}; ///< a quarter of the display in each direction
constexpr std::uint32_t kKeyA = 30;

/// Returns settings with as many zones as windows.
std::string settings() {
    std::string zones;
    for (int i = 0; i < kWindows; ++i)
        zones += std::string(i == 0 ? "" : ",") + R"({"enabled":true,"x":)" +
                 std::to_string(25 * (i % kColumns)) + R"(,"y":)" + std::to_string(25 * (i / kColumns)) +
                 R"(,"w":25,"h":25})";
    return R"({"hasOnboarded":true,"rememberApps":false,"zones":[)" + zones + "]}";
}

/// Windows of one process each, on the first display.
class Windows {
public:
    Windows(PlasmaSession& session, const std::string& program) : m_session(session) {
        for (int i = 0; i < kWindows; ++i)
            m_programs.push_back(
                std::make_unique<x11test::ChildProcess>(std::vector{program}, session.environment()));
        wait([](const SeenWindow& window) { return window.frame.width > 0; });
    }

    /// Moves all windows out of their zones.
    void scatter() {
        m_session.probe().run("workspace.clientList().forEach((c, i) => { c.frameGeometry = "
                              "{ x: 500 + 20 * i, y: 250 + 20 * i, width: 500, height: 400 }; });");
        wait([](const SeenWindow& window) { return window.frame.height == 400; });
        std::this_thread::sleep_for(kQuiet);
    }
    /// Returns the milliseconds from the press of the key with Ctrl and Alt until `count` windows have the
    /// size of a zone.
    double press(std::uint32_t code, int count) {
        const auto modifiers = {key::kLeftControl, key::kLeftAlt};
        for (const std::uint32_t modifier : modifiers)
            m_session.input().setKey(modifier, true);
        std::this_thread::sleep_for(kQuiet);
        const auto start = Clock::now();
        m_session.input().setKey(code, true);
        wait([](const SeenWindow& window) { return window.frame.size() == kZone; }, count);
        const double taken = Milliseconds(Clock::now() - start).count();
        m_session.input().setKey(code, false);
        for (const std::uint32_t modifier : modifiers)
            m_session.input().setKey(modifier, false);
        return taken;
    }

private:
    template <typename Holds>
    void wait(Holds holds, int count = kWindows) {
        const bool isReached = m_session.probe().waitUntil([&] {
            const auto& all = m_session.probe().windows();
            return std::count_if(all.begin(), all.end(), holds) >= count;
        });
        if (!isReached)
            throw std::runtime_error("the windows are not where they should be");
    }

    PlasmaSession& m_session;
    std::vector<std::unique_ptr<x11test::ChildProcess>> m_programs;
};

} // namespace

void measureArranging(const std::filesystem::path& programs, int presses) {
    PlasmaSession session;
    start(session, settings());
    Windows windows(session, programs / "qt_target");
    std::vector<double> all;
    std::vector<double> single;
    for (int i = 0; i < presses; ++i) {
        windows.scatter();
        all.push_back(windows.press(kKeyA, kWindows));
        windows.scatter();
        single.push_back(windows.press(key::kDigit1, 1));
    }
    const double nine = median(single) * kWindows;
    Table table({"what", "p50 ms", "p95 ms", "p50 / nine single"});
    table.add({"nine windows arranged", number(median(all)), number(percentile(all, 95)),
               number(median(all) / nine)});
    table.add({"one window", number(median(single)), number(percentile(single, 95)),
               number(median(single) / nine)});
    table.print("Nine Qt windows arranged at one press on Plasma, " + std::to_string(presses) + " presses");
}

} // namespace tessarel::bench
