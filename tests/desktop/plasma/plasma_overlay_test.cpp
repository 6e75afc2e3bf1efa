// SPDX-License-Identifier: MIT

#include "support/plasma/plasma_session.h"
#include "support/plasma/screenshot.h"
#include "support/plasma/wayland_client.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessarel::plasmatest {
namespace {

constexpr Size kPixels{1500, 900};

constexpr const char* kAlwaysShown = R"({"hasOnboarded":true,"rememberApps":false,"dragTrigger":"always"})";

/// A zone on the default layout, as the drag highlights it. Lengths are in units, levels are of blue.
constexpr double kInset = 2;
constexpr double kLineWidth = 3;
constexpr double kAccentLevel = 0xe3;
constexpr double kLineAlpha = 0.95;
constexpr double kFillAlpha = 0.35;

/// Two black displays with a scale in percent, and a black window that is dragged.
class PlasmaOverlayTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        session.outputs().setUp(0, {.scale = scale});
        session.outputs().setUp(1, {.x = static_cast<int>(size.width), .scale = scale});
        session.writeSettings(kAlwaysShown);
        ASSERT_TRUE(session.startProgram()) << session.program().errors();
        client.open(1, {});
        ASSERT_TRUE(session.probe().waitUntil([this] {
            const auto& all = session.probe().windows();
            return std::any_of(all.begin(), all.end(), [](const SeenWindow& window) {
                return window.title == WaylandClient::titleOf(1) && window.isActive;
            });
        }));
    }

    /// Drags the window as Plasma lets users drag windows without a title bar.
    void drag(const Point& from, const Point& to) {
        FakeInput& input = session.input();
        input.moveTo(from.x, from.y);
        input.setKey(key::kLeftMeta, true);
        input.setLeftButton(true);
        constexpr int kSteps = 5;
        for (int step = 1; step <= kSteps; ++step)
            input.moveTo(from.x + (to.x - from.x) * step / kSteps, from.y + (to.y - from.y) * step / kSteps);
    }

    /// Returns the levels of the pixels from the edge of the highlighted zone inwards.
    [[nodiscard]] std::vector<double> expectedLevels() const {
        const double shape = std::ceil(kInset * scale);
        const double lineStart = shape - kLineWidth * scale / 2;
        const double lineEnd = shape + kLineWidth * scale / 2;
        std::vector<double> levels;
        for (double pixel = 0; pixel < lineEnd + 3; ++pixel) {
            const double covered =
                std::clamp(std::min(pixel + 1, lineEnd) - std::max(pixel, lineStart), 0.0, 1.0);
            const double fill = pixel < shape ? 0 : kFillAlpha;
            const double line = covered * kLineAlpha;
            levels.push_back(kAccentLevel * (line + (1 - line) * fill));
        }
        return levels;
    }

    const double scale = GetParam() / 100.0;
    const Size size{kPixels.width / scale, kPixels.height / scale};
    PlasmaSession session{Drawing::OpenGl, kPixels};
    WaylandClient client{session.environment()};
};

TEST_P(PlasmaOverlayTest, TheEdgesOfAZoneAreSharpOnThePixelsOfTheDisplay) {
    drag({size.width / 2, size.height / 2}, {size.width * 0.9, size.height * 0.2});

    const auto expected = expectedLevels();
    const auto left = static_cast<std::size_t>(std::round(std::round(size.width * 2 / 3) * scale));
    const auto bottom = static_cast<std::size_t>(kPixels.height / 2) - 1;
    std::vector<double> atLeft;
    std::vector<double> atBottom;
    const auto near = testing::Pointwise(testing::DoubleNear(4), expected);
    const bool isSharp = PlasmaSession::waitFor([&] {
        const Screenshot shot = takeScreenshot(session.environment().at("DBUS_SESSION_BUS_ADDRESS"),
                                               {0, 0, size.width, size.height});
        atLeft.clear();
        atBottom.clear();
        for (std::size_t depth = 0; depth < expected.size(); ++depth) {
            atLeft.push_back(shot.at(left + depth, shot.height / 8) & 0xff);
            atBottom.push_back(shot.at(left + shot.width / 12, bottom - depth) & 0xff);
        }
        return testing::Matches(near)(atLeft) && testing::Matches(near)(atBottom);
    });

    EXPECT_TRUE(isSharp);
    EXPECT_THAT(atLeft, near);
    EXPECT_THAT(atBottom, near);
}

INSTANTIATE_TEST_SUITE_P(AtScale, PlasmaOverlayTest, testing::Values(100, 125, 150, 200));

} // namespace
} // namespace tessarel::plasmatest
