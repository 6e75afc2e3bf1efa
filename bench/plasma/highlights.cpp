// SPDX-License-Identifier: MIT

#include "plasma/parts.h"
#include "support/clock.h"
#include "support/statistics.h"
#include "support/table.h"

#include <array>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tessarel::bench {

namespace {

using plasmatest::PlasmaSession;

constexpr Milliseconds kFrame{1000.0 / 60};
constexpr double kPressBelowTop = 10;
constexpr std::array<Point, 2> kInZones{Point{400, 300}, Point{1200, 300}};

constexpr const char* kSettings =
    R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"always","zones":[
    {"enabled":true,"x":0,"y":0,"w":50,"h":100},{"enabled":true,"x":50,"y":0,"w":50,"h":100}]})";

/// Reports the overlay, and each change of its content when the compositor has received it.
constexpr const char* kWatch = R"js(
function report() {
    callDBus("@NAME@", "/Overlay", "org.example.Overlay", "painted");
}
workspace.clientAdded.connect((window) => {
    if (window.layer <= 4)
        return;
    report();
    window.damaged.connect(report);
});
)js";

/// The overlay, as the compositor sees it.
class Overlay {
public:
    explicit Overlay(PlasmaSession& session)
        : m_session(session), m_reports(session.probe().link().serve(
                                  "/Overlay", [this](const wayland::BusMessage& /*call*/) { ++m_paintings; },
                                  wayland::BusLink::Delivery::Urgent)) {
        std::string script = kWatch;
        const std::string placeholder = "@NAME@";
        session.probe().run(script.replace(script.find(placeholder), placeholder.size(),
                                           session.probe().link().uniqueName()));
        session.probe().roundTrip();
    }

    void expectPainting() { m_before = m_paintings; }
    void awaitPainting() {
        if (!m_session.probe().waitUntil([this] { return m_paintings > m_before; }))
            throw std::runtime_error("the zones are not painted");
    }

private:
    PlasmaSession& m_session;
    int m_paintings = 0;
    int m_before = 0;
    SubscriptionPtr m_reports;
};

} // namespace

void measureHighlights(int steps) {
    PlasmaSession session;
    start(session, kSettings);
    session.open({"kwrite"}, plasmatest::kRealEditor);
    Overlay overlay(session);
    const Rect window = session.frame(plasmatest::kRealEditor).value_or(Rect::null());
    session.input().moveTo(window.midX(), window.minY() + kPressBelowTop);
    session.input().setLeftButton(true);
    session.input().moveTo(window.midX(), window.maxY()); // the program sees the drag with the next movement
    std::vector<double> taken;
    for (int step = -2; step < steps; ++step) { // the first ones show the overlay
        overlay.expectPainting();
        const Point& target = kInZones[static_cast<std::size_t>(step + 2) % kInZones.size()];
        const auto start = Clock::now();
        session.input().moveTo(target.x, target.y);
        overlay.awaitPainting();
        if (step >= 0)
            taken.push_back(Milliseconds(Clock::now() - start).count());
        std::this_thread::sleep_for(kQuiet);
    }
    session.input().setLeftButton(false);
    Table table({"pointer step to repainted highlight", "p50 ms", "p95 ms", "p95 with one frame"});
    table.add({std::to_string(steps) + " steps", number(median(taken)), number(percentile(taken, 95)),
               number(percentile(taken, 95) + kFrame.count())});
    table.print("A drag on Plasma: the compositor has received the zones with the new highlight");
}

} // namespace tessarel::bench
