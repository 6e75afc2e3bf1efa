// SPDX-License-Identifier: MIT

#pragma once

#include "settings_ui/kit/kit.h"
#include "settings_ui/recorder_button.h"
#include "settings_ui/settings_ui_test.h"

#include <QColor>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

namespace tessarel {

inline constexpr KeyDown kEscape{53};
inline constexpr KeyDown kFree{11, kControlFlag | kOptionFlag};         // Ctrl+Opt+B
inline constexpr KeyDown kZone1Default{18, kControlFlag | kOptionFlag}; // Ctrl+Opt+1
inline constexpr KeyDown kCenterDefault{8, kControlFlag | kOptionFlag};
inline constexpr Binding kFreeBinding{11, kCtrlKey + kOptKey};

/// A recorder for the centre action, with the simulated desktop.
class RecorderButtonTest : public SettingsUiTest {
protected:
    std::unique_ptr<RecorderButton> makeRecorder(ActionID action) {
        auto made = std::make_unique<RecorderButton>(view, QRect(0, 0, 200, 26), context);
        made->configure(action);
        made->onChange = [this] { ++changes; };
        return made;
    }

    /// Presses a key in one of the program's windows. Returns whether a recorder consumed it.
    bool press(const KeyDown& key) { return desktop.localKeys().press(key); }
    [[nodiscard]] std::string title() const { return fullText(*recorder).toStdString(); }
    [[nodiscard]] std::optional<Binding> binding(ActionID action = ActionID::center) const {
        return services.store.binding(action);
    }

    /// Returns whether the button shows its text in the colour of warnings.
    [[nodiscard]] bool showsWarning() const {
        const QImage picture = recorder->grab().toImage();
        const QColor warning = warningColor(recorder->palette());
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                // No other part of the button has a colour.
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.hsvSaturation() > warning.hsvSaturation() / 2 &&
                    std::abs(pixel.hsvHue() - warning.hsvHue()) < 20)
                    return true;
            }
        }
        return false;
    }

    /// Returns the contrast of two colours as WCAG defines it.
    static double contrast(const QColor& one, const QColor& other) {
        const auto luminance = [](const QColor& color) {
            const auto part = [](double value) {
                return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
        };
        const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
        return (light + 0.05) / (dark + 0.05);
    }

    FlippedView view;
    int changes = 0;
    std::unique_ptr<RecorderButton> recorder = makeRecorder(ActionID::center);
};

} // namespace tessarel
