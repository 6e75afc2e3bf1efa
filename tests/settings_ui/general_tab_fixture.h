// SPDX-License-Identifier: MIT

#pragma once

#include "settings_ui/general_tab.h"
#include "settings_ui/settings_ui_test.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QTest>

namespace tessarel {

/// Fixture: the General tab and its controls, found by their frames.
class GeneralTabTest : public SettingsUiTest {
protected:
    GeneralTabTest() { tab.refresh(); }

    QLabel& label(const QRect& frame) { return at<QLabel>(*tab.view(), frame); }
    static void toggle(QCheckBox& box) { QTest::mouseClick(&box, Qt::LeftButton, {}, {8, 10}); }
    /// Presses and releases a key on the control.
    static void press(QWidget& control, Qt::Key key) { QTest::keyClick(&control, key); }

    GeneralTab tab{context};
    QCheckBox& loginBox = at<QCheckBox>(*tab.view(), {16, 14, 320, 20});
    QSlider& gapSlider = at<QSlider>(*tab.view(), {190, 76, 190, 22});
    QLabel& gapLabel = label({390, 78, 60, 18});
    QSlider& marginSlider = at<QSlider>(*tab.view(), {190, 108, 190, 22});
    QLabel& marginLabel = label({390, 110, 60, 18});
    QCheckBox& dragBox = at<QCheckBox>(*tab.view(), {16, 182, 380, 20});
    QComboBox& triggerPopup = at<QComboBox>(*tab.view(), {222, 208, 150, 26});
    QCheckBox& edgeBox = at<QCheckBox>(*tab.view(), {16, 246, 380, 20});
    QLabel& accLabel = label({16, 374, 440, 18});
    QPushButton& accessButton = at<QPushButton>(*tab.view(), {16, 400, 210, 28});
    QListWidget& table = at<QListWidget>(*tab.view(), {472, 80, 286, 186});
    QPushButton& addButton = at<QPushButton>(*tab.view(), {470, 276, 100, 28});
    QPushButton& removeButton = at<QPushButton>(*tab.view(), {576, 276, 80, 28});
    QCheckBox& rememberBox = at<QCheckBox>(*tab.view(), {470, 376, 290, 20});
    QPushButton& forgetButton = at<QPushButton>(*tab.view(), {470, 402, 200, 28});
};

} // namespace tessarel
