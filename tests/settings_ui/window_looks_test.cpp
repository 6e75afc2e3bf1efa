// SPDX-License-Identifier: MIT

#include "look/contrast.h"
#include "look/control_style.h"
#include "look/palette.h"
#include "settings_ui/settings_ui_test.h"
#include "settings_ui/settings_window_controller.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTest>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace tessarel {
namespace {

/// The settings window in light or dark, rendered with two device pixels per point.
class WindowLooksTest : public SettingsUiTest, public testing::WithParamInterface<bool> {
protected:
    using Tab = SettingsWindowController::Tab;

    static constexpr int kScale = 2;

    WindowLooksTest() {
        QApplication::setStyle(new ControlStyle);
        QApplication::setPalette(colors);
        settings.ignoredApps = {"org.example.editor"};
        settings.appZones = {{"org.example.viewer", 1}};
        controller.show();
    }

    static QWidget& window() {
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (widget->findChild<QTabBar*>())
                return *widget;
        throw std::out_of_range("no window");
    }

    void open(Tab tab, double scale = kScale) {
        controller.show(tab);
        screen = QImage((QSizeF(window().size()) * scale).toSize(), QImage::Format_RGB32);
        screen.setDevicePixelRatio(scale);
        window().render(&screen);
    }

    /// Returns how often each colour occurs in a part of the window.
    [[nodiscard]] std::unordered_map<QRgb, int> colorsIn(const QRect& part) const {
        std::unordered_map<QRgb, int> counts;
        for (int y = part.top() * kScale; y <= part.bottom() * kScale; ++y)
            for (int x = part.left() * kScale; x <= part.right() * kScale; ++x)
                if (screen.valid(x, y))
                    ++counts[screen.pixel(x, y)];
        return counts;
    }
    /// Returns the highest contrast of a pixel with the most frequent colour of the part.
    [[nodiscard]] double contrastIn(const QRect& part) const {
        const auto counts = colorsIn(part);
        const auto most = std::ranges::max_element(counts, {}, &std::pair<const QRgb, int>::second);
        double highest = 1;
        for (const auto& [color, count] : counts)
            highest = std::max(highest, contrast(QColor(color), QColor(most->first)));
        return highest;
    }
    QRect frameOf(const QWidget& control) { return {control.mapTo(&window(), QPoint()), control.size()}; }

    template <class Control>
    std::vector<Control*> shown() {
        std::vector<Control*> all;
        for (Control* const control : window().findChildren<Control*>())
            if (control->isVisible() && control->isEnabled() && !control->visibleRegion().isEmpty())
                all.push_back(control);
        return all;
    }

    /// Returns the frames of all controls with an outline that are completely visible, in the window.
    std::vector<QRect> outlinedFrames() {
        std::vector<QRect> frames;
        const auto add = [&](const auto& controls) {
            for (const QWidget* const control : controls)
                if (control->visibleRegion() == QRegion(control->rect()))
                    frames.push_back(frameOf(*control));
        };
        add(shown<QPushButton>());
        add(shown<QLineEdit>());
        add(shown<QComboBox>());
        for (const QAbstractScrollArea* const area : shown<QAbstractScrollArea>())
            frames.push_back(frameOf(*area).adjusted(-2, -2, 2, 2)); // with its border
        return frames;
    }
    /// Returns the width of the first outline that is met from the pixel `at` in the direction of `step`.
    [[nodiscard]] int outlineFrom(QPoint at, const QPoint& step) const {
        constexpr int kReach = 8;
        const QRgb outline = colors.color(QPalette::Mid).rgb();
        int before = 0;
        for (; before < kReach && screen.pixel(at) != outline; ++before)
            at += step;
        int width = 0;
        for (; width < kReach && screen.pixel(at) == outline; ++width)
            at += step;
        return width;
    }

    QPalette colors = paletteOf({.isDark = GetParam()});
    SettingsWindowController controller{services, ports};
    QImage screen;
};

TEST_P(WindowLooksTest, EveryTextIsReadable) {
    for (const Tab tab : {Tab::Layouts, Tab::Shortcuts, Tab::General, Tab::About}) {
        open(tab);
        for (QLabel* const label : shown<QLabel>())
            EXPECT_GE(contrastIn(frameOf(*label)), kTextContrast) << label->text().toStdString();
        for (QAbstractButton* const button : shown<QAbstractButton>()) {
            // Without the outline and the mark of a check box.
            const int left = button->inherits("QCheckBox") ? 20 : 3;
            EXPECT_GE(contrastIn(frameOf(*button).adjusted(left, 3, -3, -3)), kTextContrast)
                << button->text().toStdString();
        }
        for (QLineEdit* const field : shown<QLineEdit>())
            EXPECT_GE(contrastIn(frameOf(*field).adjusted(3, 3, -3, -3)), kTextContrast);
        for (QComboBox* const popUp : shown<QComboBox>())
            EXPECT_GE(contrastIn(frameOf(*popUp).adjusted(3, 3, -25, -3)), kTextContrast);
    }
}

TEST_P(WindowLooksTest, EveryTabTitleIsReadable) {
    auto& bar = *window().findChild<QTabBar*>();
    for (const Tab tab : {Tab::Layouts, Tab::General}) {
        open(tab);
        for (int i = 0; i < bar.count(); ++i)
            EXPECT_GE(contrastIn(bar.tabRect(i).translated(frameOf(bar).topLeft()).adjusted(4, 4, -4, -4)),
                      kTextContrast)
                << i;
    }
}

TEST_P(WindowLooksTest, ASelectedRowIsReadable) {
    auto& list = *window().findChild<QListWidget*>();
    list.setCurrentRow(0);
    open(Tab::General);

    const QRect row = list.visualItemRect(list.item(0)).translated(frameOf(*list.viewport()).topLeft());

    EXPECT_GE(contrastIn(row.adjusted(2, 2, -2, -2)), kTextContrast);
}

TEST_P(WindowLooksTest, EveryOutlineStandsOutOnBothSides) {
    for (const Tab tab : {Tab::Layouts, Tab::Shortcuts, Tab::General, Tab::About}) {
        open(tab);
        for (const QRect& frame : outlinedFrames()) {
            const int y = frame.center().y() * kScale;
            const QColor outside = screen.pixelColor((frame.left() - 2) * kScale, y);
            const QColor line = screen.pixelColor(frame.left() * kScale, y);
            const QColor inside = screen.pixelColor((frame.left() + 3) * kScale, y);
            EXPECT_GE(contrast(line, outside), kOutlineContrast) << frame.x() << " " << frame.y();
            EXPECT_GE(contrast(line, inside), kOutlineContrast) << frame.x() << " " << frame.y();
        }
    }
}

TEST_P(WindowLooksTest, EveryOutlineHasTwoPixelsOnAllSidesAtOneAndAHalf) {
    constexpr double kFraction = 1.5;
    for (const Tab tab : {Tab::Layouts, Tab::Shortcuts, Tab::General, Tab::About}) {
        open(tab, kFraction);
        for (const QRect& frame : outlinedFrames()) {
            const auto pixel = [](double x, double y) { return (QPointF(x, y) * kFraction).toPoint(); };
            const QPointF centre = QRectF(frame).center();
            const int left = outlineFrom(pixel(frame.left() - 2, centre.y()), {1, 0});
            const int top = outlineFrom(pixel(centre.x(), frame.top() - 2), {0, 1});
            const int right = outlineFrom(pixel(frame.right() + 3, centre.y()), {-1, 0});
            const int bottom = outlineFrom(pixel(centre.x(), frame.bottom() + 3), {0, -1});
            EXPECT_EQ((std::vector{left, top, right, bottom}), (std::vector{2, 2, 2, 2}))
                << frame.x() << " " << frame.y();
        }
    }
}

TEST_P(WindowLooksTest, ListsHaveTheirOwnBackground) {
    for (const Tab tab : {Tab::Shortcuts, Tab::General}) {
        open(tab);
        for (QAbstractScrollArea* const area : shown<QAbstractScrollArea>()) {
            const auto counts = colorsIn(frameOf(*area->viewport()));
            const auto most = std::ranges::max_element(counts, {}, &std::pair<const QRgb, int>::second);
            EXPECT_EQ(QColor(most->first), colors.color(QPalette::Base));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Appearances, WindowLooksTest, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Dark" : "Light"; });

} // namespace
} // namespace tessarel
