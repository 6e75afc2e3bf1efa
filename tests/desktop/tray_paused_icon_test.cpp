// SPDX-License-Identifier: MIT

#include "desktop/status_notifier_panel.h"
#include "desktop/tray_desktop.h"
#include "look/contrast.h"
#include "support/x11/window_manager.h"

#include <QColor>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tessarel::x11test {
namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;
constexpr int kStrip = 30;
/// Least number of pixels that belong to an icon of 16 by 16 pixels.
constexpr int kGlyph = 100;

enum class Panel { Tint2, Xfce4 };

struct Place {
    Panel panel;
    PanelColour colour;
    bool isComposited;
};

/// A desktop with a panel at the bottom of the screen that shows nothing but the icon.
class TrayPausedIconTest : public testing::TestWithParam<Place> {
protected:
    TrayPausedIconTest() {
        const bool isTint2 = GetParam().panel == Panel::Tint2;
        environment["DBUS_SESSION_BUS_ADDRESS"] = isTint2 ? "disabled:" : bus.address();
        environment["GTK_THEME"] = GetParam().colour == PanelColour::Dark ? "Adwaita:dark" : "Adwaita";
        if (GetParam().isComposited)
            compositor = std::make_unique<ChildProcess>(
                std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
                server.environment());
        EXPECT_TRUE(observer.waitUntil(
            [&] { return !compositor || observer.selectionOwner("_NET_WM_CM_S0") != XCB_WINDOW_NONE; }));
        if (isTint2) {
            panel = startTint2(server, environment, GetParam().colour);
            return;
        }
        panel = startXfce4Panel(server, environment);
        // An icon that is shown before the panel is ready waits for it in steps of two seconds.
        StatusNotifierPanel desktop{environment};
        EXPECT_TRUE(observer.waitUntil([&] { return desktop.isThere(); })) << panel->errors();
    }

    /// Returns the pixels of the panel.
    std::vector<QColor> pixels() {
        XConnection& x = observer.x();
        const auto image = own(xcb_get_image_reply(x.get(),
                                                   xcb_get_image(x.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, x.root(),
                                                                 0, kHeight - kStrip, kWidth, kStrip, ~0U),
                                                   nullptr));
        std::vector<QColor> all;
        if (!image)
            return all;
        const std::uint8_t* const bytes = xcb_get_image_data(image.get());
        for (int i = 0; i + 3 < xcb_get_image_data_length(image.get()); i += 4)
            all.emplace_back(bytes[i + 2], bytes[i + 1], bytes[i]);
        return all;
    }

    /// Returns how many pixels have a contrast of at least 3:1 with the most frequent colour.
    static int standingOut(const std::vector<QColor>& pixels) {
        std::map<QRgb, int> counts;
        for (const QColor& pixel : pixels)
            ++counts[pixel.rgb()];
        if (counts.empty())
            return 0;
        const QColor background(
            std::ranges::max_element(counts, {}, &std::pair<const QRgb, int>::second)->first);
        int count = 0;
        for (const auto& [color, times] : counts)
            count += contrast(QColor(color), background) >= kOutlineContrast ? times : 0;
        return count;
    }

    /// Returns whether most of the panel is light.
    static bool isLight(std::vector<QColor> pixels) {
        const auto middle = pixels.begin() + static_cast<std::ptrdiff_t>(pixels.size() / 2);
        std::ranges::nth_element(pixels, middle, {}, &QColor::lightness);
        return middle->lightness() > 128;
    }

    XServer server{{.width = kWidth, .height = kHeight}};
    DesktopBus bus{server.environment()};
    Environment environment = server.environment();
    WindowManager manager{server, WindowManagerKind::Openbox};
    Observer observer{server.display()};
    std::unique_ptr<ChildProcess> compositor;
    std::unique_ptr<ChildProcess> panel;
};

TEST_P(TrayPausedIconTest, StandsOutFromThePanel) {
    StatusItemProbe probe(environment, observer);
    std::vector<QColor> normal;
    ASSERT_TRUE(observer.waitUntil([&] {
        normal = pixels();
        return isLight(normal) == (GetParam().colour == PanelColour::Light) && standingOut(normal) >= kGlyph;
    })) << "no icon appears";

    probe.tell("disabled yes");

    EXPECT_TRUE(observer.waitUntil([&] {
        const std::vector<QColor> paused = pixels();
        return paused != normal && standingOut(paused) >= kGlyph;
    })) << standingOut(pixels());
}

std::string nameOf(const testing::TestParamInfo<Place>& info) {
    return std::string(info.param.panel == Panel::Tint2 ? "Tint2" : "Xfce4") +
           (info.param.colour == PanelColour::Light ? "Light" : "Dark") +
           (info.param.isComposited ? "Composited" : "");
}

INSTANTIATE_TEST_SUITE_P(Panels, TrayPausedIconTest,
                         testing::Values(Place{Panel::Tint2, PanelColour::Light, false},
                                         Place{Panel::Tint2, PanelColour::Dark, false},
                                         Place{Panel::Tint2, PanelColour::Light, true},
                                         Place{Panel::Tint2, PanelColour::Dark, true},
                                         Place{Panel::Xfce4, PanelColour::Light, false},
                                         Place{Panel::Xfce4, PanelColour::Dark, false},
                                         Place{Panel::Xfce4, PanelColour::Light, true},
                                         Place{Panel::Xfce4, PanelColour::Dark, true}),
                         nameOf);

} // namespace
} // namespace tessarel::x11test
