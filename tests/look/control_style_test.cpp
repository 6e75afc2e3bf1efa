// SPDX-License-Identifier: MIT

#include "look/control_style.h"

#include "look/contrast.h"
#include "look/palette.h"
#include "support/offscreen_test.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace tessarel {
namespace {

constexpr QRect kFrame(20, 20, 120, 28);

/// Controls in a window in light or dark, rendered at a scale.
class ControlStyleTest : public qt::OffscreenTest,
                         public testing::WithParamInterface<std::tuple<bool, double>> {
protected:
    ControlStyleTest() {
        QApplication::setStyle(new ControlStyle);
        QApplication::setPalette(colors);
        window.resize(160, 70);
        other.setGeometry(0, 0, 1, 1); // takes the focus first
    }

    void show(QWidget& control) {
        control.setGeometry(kFrame);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    /// Moves the focus from another control to the next one.
    void focusByKey() {
        other.setFocus();
        QTest::keyClick(&other, Qt::Key_Tab);
    }

    [[nodiscard]] static double scale() { return std::get<1>(GetParam()); }
    QImage rendered() { return rendered(window); }
    static QImage rendered(QWidget& shown) {
        QImage image((QSizeF(shown.size()) * scale()).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale());
        shown.render(&image);
        return image;
    }
    /// Returns the pixels from the left edge of the window to the right, in the middle of the control.
    std::vector<QColor> row() {
        const QImage image = rendered();
        const int y = static_cast<int>(kFrame.center().y() * scale());
        std::vector<QColor> pixels;
        for (int x = 0; x < image.width(); ++x)
            pixels.push_back(image.pixelColor(x, y));
        return pixels;
    }

    /// A run of pixels of one colour.
    struct Run {
        QColor color;
        int length = 0;
    };
    static std::vector<Run> runs(const std::vector<QColor>& pixels) {
        std::vector<Run> all;
        for (const QColor& pixel : pixels) {
            if (all.empty() || all.back().color != pixel)
                all.push_back({pixel});
            ++all.back().length;
        }
        return all;
    }
    [[nodiscard]] static int pixels(double points) {
        return std::max(1, static_cast<int>(std::round(points * scale())));
    }
    [[nodiscard]] QColor color(QPalette::ColorRole role) const { return colors.color(role); }

    /// Checks that the control begins with a sharp line of `width` points in `line`, with `inside` behind it.
    void expectLine(const QColor& line, double width, const QColor& inside) {
        const std::vector<Run> all = runs(row());
        ASSERT_GE(all.size(), 3U);
        EXPECT_EQ(all[0].color, color(QPalette::Window));
        EXPECT_NEAR(all[0].length, kFrame.left() * scale(), 1);
        EXPECT_EQ(all[1].color, line);
        EXPECT_EQ(all[1].length, pixels(width));
        EXPECT_EQ(all[2].color, inside);
        EXPECT_EQ(all[all.size() - 2].color, line);
        EXPECT_EQ(all[all.size() - 2].length, pixels(width));
    }

    QPalette colors = paletteOf({.isDark = std::get<0>(GetParam())});
    QWidget window;
    QPushButton other{&window};
};

TEST_P(ControlStyleTest, AButtonHasASharpOutlineAndAFocusRing) {
    QPushButton button(&window);
    show(button);
    other.setFocus();
    expectLine(color(QPalette::Mid), 1, color(QPalette::Button));

    focusByKey();
    ASSERT_TRUE(button.hasFocus());
    expectLine(color(QPalette::Highlight), 2, color(QPalette::Button));
}

TEST_P(ControlStyleTest, AClickedButtonHasNoFocusRing) {
    QPushButton button(&window);
    show(button);
    button.setFocus(Qt::MouseFocusReason);

    expectLine(color(QPalette::Mid), 1, color(QPalette::Button));
}

TEST_P(ControlStyleTest, APressedButtonIsFilledDifferently) {
    QPushButton button(&window);
    show(button);

    button.setDown(true);

    EXPECT_NE(runs(row())[2].color, color(QPalette::Button));
}

TEST_P(ControlStyleTest, ADefaultButtonHasALineInTheAccentColourWhileItIsEnabled) {
    QDialog dialog(&window); // only its buttons are default buttons
    dialog.setGeometry(window.rect());
    dialog.setWindowFlags(Qt::Widget);
    QPushButton button(&dialog);
    button.setDefault(true);
    show(button);
    dialog.show();
    other.setFocus();
    expectLine(color(QPalette::Highlight), 1, color(QPalette::Button));

    button.setEnabled(false);

    expectLine(QColor(colors.color(QPalette::Disabled, QPalette::Mid).rgb()), 1,
               colors.color(QPalette::Disabled, QPalette::Button));
}

TEST_P(ControlStyleTest, AListHasASharpOutline) {
    QListWidget list(&window);
    show(list);
    other.setFocus();

    expectLine(color(QPalette::Mid), 1, color(QPalette::Base));
}

TEST_P(ControlStyleTest, AListHasAFocusRing) {
    QListWidget list(&window);
    show(list);

    focusByKey();

    ASSERT_TRUE(list.hasFocus());
    expectLine(color(QPalette::Highlight), 2, color(QPalette::Base));
}

TEST_P(ControlStyleTest, AnOpenPopUpAndAMenuLookLikeLists) {
    QComboBox popUp(&window);
    popUp.addItems({"first", "second", "third"});
    show(popUp);
    popUp.showPopup();
    QMenu menu;
    menu.addAction("first");
    menu.addAction("second");
    menu.popup({});
    for (QWidget* const opened : {popUp.view()->window(), static_cast<QWidget*>(&menu)}) {
        const QImage image = rendered(*opened);
        const int middle = image.width() / 2;
        EXPECT_EQ(image.pixelColor(middle, 0), color(QPalette::Mid)) << opened->metaObject()->className();
        // A text is at the left, and the first row may be selected.
        EXPECT_EQ(image.pixelColor(image.width() - pixels(6), image.height() - pixels(6)),
                  color(QPalette::Base))
            << opened->metaObject()->className();
    }
    popUp.hidePopup();
}

TEST_P(ControlStyleTest, APopUpButtonHasASharpOutlineAndAFocusRing) {
    QComboBox popUp(&window);
    show(popUp);
    other.setFocus();
    expectLine(color(QPalette::Mid), 1, color(QPalette::Button));

    focusByKey();
    expectLine(color(QPalette::Highlight), 2, color(QPalette::Button));
}

TEST_P(ControlStyleTest, AFieldHasASharpOutlineAndARingWhileItHasTheFocus) {
    QLineEdit field(&window);
    show(field);
    other.setFocus();
    expectLine(color(QPalette::Mid), 1, color(QPalette::Base));

    field.setFocus(Qt::MouseFocusReason);
    expectLine(color(QPalette::Highlight), 2, color(QPalette::Base));
}

TEST_P(ControlStyleTest, ACheckBoxIsOutlinedAndFilledWithTheAccentColourWhenChecked) {
    QCheckBox box(&window);
    show(box);
    std::vector<Run> all = runs(row());
    ASSERT_GE(all.size(), 4U);
    EXPECT_EQ(all[1].color, color(QPalette::Mid));
    EXPECT_EQ(all[1].length, pixels(1));
    EXPECT_EQ(all[2].color, color(QPalette::Base));
    EXPECT_EQ(all[3].color, color(QPalette::Mid));

    box.setChecked(true);
    all = runs(row());
    EXPECT_EQ(all[1].color, color(QPalette::Highlight));
    double mark = 1;
    for (const Run& run : all)
        mark = std::max(mark, contrast(run.color, color(QPalette::Highlight)));
    EXPECT_GE(mark, kOutlineContrast) << "of the check mark";
}

TEST_P(ControlStyleTest, LinesInAnAccentColourLikeTheWindowStandOut) {
    const bool isDark = std::get<0>(GetParam());
    colors = paletteOf({.isDark = isDark, .accent = isDark ? "#5a1e78" : "#fac31e"});
    QApplication::setPalette(colors);
    const QColor line = accentLine(colors);
    ASSERT_NE(line, color(QPalette::Highlight));
    QCheckBox box(&window);
    QPushButton button(&window);
    QLineEdit field(&window);
    box.setChecked(true);
    const std::vector<QWidget*> all{&box, &button, &field};
    for (QWidget* const control : all) {
        for (QWidget* const one : all)
            one->setVisible(one == control);
        show(*control);
        if (control != &box)
            focusByKey();
        EXPECT_EQ(runs(row())[1].color, line) << control->metaObject()->className();
    }
}

TEST_P(ControlStyleTest, ACheckBoxHasAFocusRing) {
    QCheckBox box("A long enough title", &window);
    show(box);
    const auto ring = [this] {
        int count = 0;
        for (const QColor& pixel : row())
            count += pixel == color(QPalette::Highlight) ? 1 : 0;
        return count;
    };
    EXPECT_EQ(ring(), 0);

    focusByKey();

    EXPECT_EQ(ring(), 2 * pixels(2)) << "left and right";
}

TEST_P(ControlStyleTest, ASlidersGrooveStandsOutOnBothSidesOfTheHandle) {
    QSlider slider(Qt::Horizontal, &window);
    slider.setValue(50);
    show(slider);

    const QImage image = rendered();
    const auto strongest = [&](int x) {
        double found = 1;
        for (int y = 0; y < image.height(); ++y)
            found = std::max(
                found, contrast(image.pixelColor(static_cast<int>(x * scale()), y), color(QPalette::Window)));
        return found;
    };
    EXPECT_GE(strongest(kFrame.left() + 20), kOutlineContrast);
    EXPECT_GE(strongest(kFrame.right() - 20), kOutlineContrast);
    EXPECT_GE(strongest(kFrame.center().x() + 1), kOutlineContrast) << "the handle";
}

TEST_P(ControlStyleTest, ASlidersHandleIsItsFocusRing) {
    QSlider slider(Qt::Horizontal, &window);
    slider.setValue(slider.maximum());
    show(slider);
    focusByKey();

    const std::vector<Run> all = runs(row());
    int ring = 0;
    for (const Run& run : all)
        if (run.color == color(QPalette::Highlight) && run.length <= pixels(3))
            ++ring;
    EXPECT_GE(ring, 1) << "right of the handle";
}

TEST_P(ControlStyleTest, AScrollBarHasAThumbThatStandsOutFromTheList) {
    QScrollBar bar(Qt::Horizontal, &window);
    bar.setRange(0, 100);
    bar.setPageStep(100);
    show(bar);
    bar.setGeometry(kFrame.left(), kFrame.center().y() - 7, kFrame.width(), 14);

    const std::vector<QColor> pixels = row();
    const auto at = [&](int x) { return pixels.at(static_cast<std::size_t>(x * scale())); };
    EXPECT_GE(contrast(at(kFrame.left() + 20), color(QPalette::Base)), kOutlineContrast);
    EXPECT_EQ(at(kFrame.right() - 20), color(QPalette::Base));

    bar.setValue(100);
    EXPECT_EQ(row().at(static_cast<std::size_t>((kFrame.left() + 20) * scale())), color(QPalette::Base));
}

TEST_P(ControlStyleTest, AClickBesideTheThumbTurnsAPageAndADragMovesIt) {
    QScrollBar bar(Qt::Horizontal, &window);
    bar.setRange(0, 100);
    bar.setPageStep(40);
    show(bar);

    QTest::mouseClick(&bar, Qt::LeftButton, {}, {kFrame.width() - 2, 5});
    EXPECT_EQ(bar.value(), 40);

    QTest::mousePress(&bar, Qt::LeftButton, {}, {kFrame.width() / 2, 5});
    QTest::mouseMove(&bar, {kFrame.width(), 5});
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, {kFrame.width(), 5});
    EXPECT_EQ(bar.value(), 100);
}

std::string nameOf(const testing::TestParamInfo<std::tuple<bool, double>>& info) {
    return std::string(std::get<0>(info.param) ? "Dark" : "Light") +
           std::to_string(static_cast<int>(std::get<1>(info.param) * 100));
}

INSTANTIATE_TEST_SUITE_P(Appearances, ControlStyleTest,
                         testing::Combine(testing::Bool(), testing::Values(1, 1.25, 1.5, 2)), nameOf);

} // namespace
} // namespace tessarel
