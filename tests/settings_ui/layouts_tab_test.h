// SPDX-License-Identifier: MIT

#pragma once

#include "model/presets.h"
#include "settings_ui/editor/zone_editor_view.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/kit/pop_up_button.h"
#include "settings_ui/kit/segmented_control.h"
#include "settings_ui/layouts_tab.h"
#include "settings_ui/recorder_button.h"
#include "settings_ui/settings_ui_test.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace tessarel {

/// Fixture: the Layouts tab in a window of its own, and helpers that operate its controls like a user.
class LayoutsTabTest : public SettingsUiTest {
protected:
    LayoutsTabTest() {
        context.refreshAll = [this] {
            ++refreshes;
            tab->refresh();
        };
        tab = std::make_unique<LayoutsTab>(context);
        tab->view()->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(tab->view()));
    }

    /// Returns the control with this frame; without one, fails the test and returns null.
    template <typename Control>
    Control* at(int x, int y, int width, int height) {
        for (QWidget* const child : tab->view()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            auto* const control = dynamic_cast<Control*>(child);
            if (control && control->geometry() == QRect(x, y, width, height))
                return control;
        }
        ADD_FAILURE() << "nothing at " << x << ", " << y;
        return nullptr;
    }

    PopUpButton* popUp() { return at<PopUpButton>(70, 11, 250, 26); }
    QPushButton* saveAs() { return at<QPushButton>(330, 11, 90, 28); }
    QPushButton* deleteLayout() { return at<QPushButton>(426, 11, 70, 28); }
    ZoneEditorView* editor() { return at<ZoneEditorView>(16, 56, 500, 312); }
    PopUpButton* gridPopUp() { return at<PopUpButton>(110, 378, 90, 26); }
    QAbstractButton* segment(std::size_t i) {
        return segments()->findChildren<QAbstractButton*>().at(static_cast<qsizetype>(i));
    }
    SegmentedControl* segments() { return at<SegmentedControl>(540, 82, 230, 26); }
    QCheckBox* enabledBox() { return at<QCheckBox>(540, 120, 120, 20); }
    QLineEdit* x() { return at<QLineEdit>(558, 176, 76, 24); }
    QLineEdit* y() { return at<QLineEdit>(676, 176, 76, 24); }
    QLineEdit* w() { return at<QLineEdit>(558, 210, 76, 24); }
    QLineEdit* h() { return at<QLineEdit>(676, 210, 76, 24); }
    RecorderButton* recorder() { return at<RecorderButton>(540, 268, 150, 26); }
    QPushButton* clear() { return at<QPushButton>(698, 266, 60, 28); }
    QPushButton* addZone() { return at<QPushButton>(540, 316, 110, 28); }

    std::string chosen() { return popUp()->currentText().toStdString(); }
    Zone& zone(std::size_t i) { return settings.zones.at(i); }

    static void click(QWidget* control) { QTest::mouseClick(control, Qt::LeftButton); }
    void clickSegment(std::size_t i) { click(segment(i)); }
    void toggleEnabled() { QTest::mouseClick(enabledBox(), Qt::LeftButton, {}, QPoint(8, 10)); }

    static void choose(PopUpButton* from, const std::string& title) {
        QTest::keyClick(from, Qt::Key_Down);
        from->view()->setCurrentIndex(from->model()->index(from->findText(QString::fromStdString(title)), 0));
        QTest::keyClick(from->view(), Qt::Key_Return);
    }

    static void type(QLineEdit* into, const char* text) {
        click(into);
        into->selectAll();
        QTest::keyClick(into, Qt::Key_Backspace);
        QTest::keyClicks(into, text);
    }

    /// Presses the left button at `from` and drags to `to` without snapping, both in points of the editor.
    void dragInEditor(const QPoint& from, const QPoint& to) {
        QTest::mousePress(editor(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, editor()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         Qt::ShiftModifier);
        QApplication::sendEvent(editor(), &move);
    }
    void releaseInEditor(const QPoint& at) { QTest::mouseRelease(editor(), Qt::LeftButton, {}, at); }

    std::unique_ptr<LayoutsTab> tab;
};

} // namespace tessarel
