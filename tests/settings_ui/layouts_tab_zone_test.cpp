// SPDX-License-Identifier: MIT

#include "model/action_id.h"
#include "settings_ui/layouts_tab_test.h"

#include <QEvent>
#include <QKeySequence>
#include <QObject>
#include <QShortcut>

#include <string>
#include <vector>

namespace tessarel {
namespace {

constexpr double kThird = 100.0 / 3;

// Selecting

TEST_F(LayoutsTabTest, ASegmentSelectsItsZoneEverywhere) {
    clickSegment(3);

    EXPECT_EQ(tab->selected(), 3);
    EXPECT_EQ(editor()->selected(), 3);
    EXPECT_EQ(recorder()->actionID(), ActionID::zone4);
    EXPECT_EQ(fullText(*recorder()), "Ctrl+Opt+4");
    EXPECT_EQ(y()->text(), "50");
    EXPECT_TRUE(enabledBox()->isChecked());
    EXPECT_EQ(saved(), std::nullopt);
}

TEST_F(LayoutsTabTest, ADisabledZoneCanBeSelectedButNotEdited) {
    clickSegment(8);

    EXPECT_FALSE(enabledBox()->isChecked());
    for (const QLineEdit* const field : {x(), y(), w(), h()})
        EXPECT_FALSE(field->isEnabled());
    EXPECT_EQ(x()->text(), "25");
}

TEST_F(LayoutsTabTest, AClickInTheEditorSelectsTheZoneEverywhere) {
    QTest::mouseClick(editor(), Qt::LeftButton, {}, QPoint(400, 250));

    EXPECT_EQ(tab->selected(), 4);
    EXPECT_EQ(segments()->selectedSegment(), 4);
    EXPECT_EQ(recorder()->actionID(), ActionID::zone5);
    EXPECT_EQ(x()->text(), "50");
}

TEST_F(LayoutsTabTest, TheSelectionSurvivesARefresh) {
    clickSegment(4);
    tab->refresh();

    EXPECT_EQ(tab->selected(), 4);
}

TEST_F(LayoutsTabTest, TheEditorsSelectionIsClampedToTheNineZones) {
    editor()->onSelect(-3);
    EXPECT_EQ(tab->selected(), 0);
    editor()->onSelect(12);
    EXPECT_EQ(tab->selected(), 8);
    EXPECT_EQ(editor()->selected(), 8);
}

// The editor

TEST_F(LayoutsTabTest, AFieldIsUpdatedDuringADragAndNothingIsSaved) {
    dragInEditor({400, 250}, {390, 250});

    EXPECT_EQ(zone(4).x, 48);
    EXPECT_EQ(x()->text(), "48");
    EXPECT_EQ(saved(), std::nullopt);
    EXPECT_EQ(announcements, 0);
    EXPECT_EQ(chosen(), "3 top + 2 bottom") << "until the drag ends";
}

TEST_F(LayoutsTabTest, DestroyingTheTabSavesAnUnfinishedDrag) {
    dragInEditor({400, 250}, {390, 250});

    tab.reset();

    EXPECT_EQ(saved()->zones[4].x, 48);
    EXPECT_EQ(announcements, 1);
}

TEST_F(LayoutsTabTest, ADragIsSavedAndAnnouncedAtItsEnd) {
    dragInEditor({400, 250}, {390, 250});
    releaseInEditor({390, 250});

    EXPECT_EQ(saved()->zones, settings.zones);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(chosen(), "Custom (current)");
}

TEST_F(LayoutsTabTest, DeleteInTheEditorDisablesTheZoneAndItsControls) {
    editor()->setFocus();
    QTest::keyClick(editor(), Qt::Key_Delete);

    EXPECT_EQ(saved()->zones[0], (Zone{false, 0, 0, kThird, 50}));
    EXPECT_EQ(announcements, 1);
    EXPECT_FALSE(enabledBox()->isChecked());
    EXPECT_FALSE(x()->isEnabled());
    EXPECT_EQ(tab->selected(), 0);
    EXPECT_EQ(chosen(), "Custom (current)");
}

TEST_F(LayoutsTabTest, DeleteDisablesAZoneThatASegmentHasSelected) {
    clickSegment(3);
    QTest::keyClick(segment(3), Qt::Key_Delete);
    EXPECT_FALSE(saved()->zones[3].enabled);

    clickSegment(1);
    QTest::keyClick(segment(1), Qt::Key_Backspace);
    EXPECT_FALSE(saved()->zones[1].enabled);
    EXPECT_EQ(announcements, 2);
    EXPECT_FALSE(x()->isEnabled());
}

TEST_F(LayoutsTabTest, DeleteDisablesAZoneThatHasJustBeenAdded) {
    addZone()->setFocus();
    click(addZone());
    ASSERT_TRUE(saved()->zones[5].enabled);

    QTest::keyClick(addZone(), Qt::Key_Delete);

    EXPECT_FALSE(saved()->zones[5].enabled);
}

TEST_F(LayoutsTabTest, DeleteDisablesTheSelectedZoneWhicheverControlHasTheFocus) {
    settings.userLayouts = {{"Mine", settings.zones}};
    for (QWidget* const control :
         {static_cast<QWidget*>(popUp()), static_cast<QWidget*>(saveAs()), static_cast<QWidget*>(editor()),
          static_cast<QWidget*>(gridPopUp()), static_cast<QWidget*>(enabledBox()),
          static_cast<QWidget*>(recorder()), static_cast<QWidget*>(clear())}) {
        zone(0).enabled = true;
        tab->refresh();
        control->setFocus(Qt::TabFocusReason);
        ASSERT_EQ(tab->view()->focusWidget(), control);

        QTest::keyClick(control, Qt::Key_Delete);

        EXPECT_FALSE(zone(0).enabled) << control->accessibleName().toStdString();
    }
}

TEST_F(LayoutsTabTest, DeleteInATextFieldEditsTheText) {
    for (QLineEdit* const field : {x(), y(), w(), h()}) {
        click(field);
        for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace})
            for (const Qt::KeyboardModifier modifier :
                 {Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier}) {
                QTest::keyClick(field, key, modifier);
                QTest::keyClick(field, key, modifier); // also in an empty field
            }
    }

    EXPECT_TRUE(zone(0).enabled);
    EXPECT_EQ(h()->text(), "");
}

TEST_F(LayoutsTabTest, DeleteInAnOpenListDisablesNoZone) {
    QTest::keyClick(popUp(), Qt::Key_Down);
    ASSERT_TRUE(popUp()->view()->isVisible());

    QTest::keyClick(popUp()->view(), Qt::Key_Delete);

    EXPECT_TRUE(zone(0).enabled);
}

TEST_F(LayoutsTabTest, AHeldDeleteKeyActsOnce) {
    for (const QShortcut* const shortcut : tab->view()->findChildren<QShortcut*>())
        EXPECT_FALSE(shortcut->autoRepeat()) << shortcut->key().toString().toStdString();
}

// Enabled and added zones

TEST_F(LayoutsTabTest, TheBoxDisablesAndEnablesTheZone) {
    toggleEnabled();
    EXPECT_FALSE(saved()->zones[0].enabled);
    EXPECT_FALSE(w()->isEnabled());
    EXPECT_EQ(chosen(), "Custom (current)");

    toggleEnabled();
    EXPECT_TRUE(saved()->zones[0].enabled);
    EXPECT_TRUE(w()->isEnabled());
    EXPECT_EQ(chosen(), "3 top + 2 bottom");
    EXPECT_EQ(announcements, 2);
}

TEST_F(LayoutsTabTest, AnAddedZoneTakesTheFirstDisabledSlotAndIsSelected) {
    zone(2) = {false, 1, 2, 3, 4};

    click(addZone());

    EXPECT_EQ(saved()->zones[2], Presets::z(25, 25, 50, 50));
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(tab->selected(), 2);
    EXPECT_EQ(segments()->selectedSegment(), 2);
    EXPECT_TRUE(enabledBox()->isChecked());
    EXPECT_EQ(chosen(), "Custom (current)");
    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(LayoutsTabTest, ATenthZoneIsRejected) {
    for (Zone& one : settings.zones)
        one.enabled = true;
    const AppSettings before = settings;

    click(addZone());

    EXPECT_EQ(desktop.alerts().shown,
              (std::vector<Alert>{
                  {"All 9 zones are in use", "Remove a zone first (select it and press Delete).", {"OK"}}}));
    EXPECT_EQ(desktop.ownApplication().activations, 1);
    EXPECT_EQ(settings, before);
    EXPECT_EQ(announcements, 0);
}

// Numbers

TEST_F(LayoutsTabTest, ATypedNumberTakesEffectAtOnceAndIsAnnouncedWhenEditingEnds) {
    type(x(), "12,5");

    EXPECT_EQ(zone(0).x, 12.5);
    EXPECT_EQ(saved()->zones[0].x, 12.5);
    EXPECT_EQ(announcements, 0);
    EXPECT_EQ(x()->text(), "12,5");

    QTest::keyClick(x(), Qt::Key_Return);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(x()->text(), "12.5");
    EXPECT_EQ(chosen(), "Custom (current)");
}

/// Counts how often a widget is painted.
class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget& widget) {
        QApplication::processEvents();
        widget.installEventFilter(this);
    }

    /// Processes events, a pending repaint included, and returns the number of paint events so far.
    int afterEvents() {
        QApplication::processEvents();
        return m_count;
    }

protected:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int m_count = 0;
};

TEST_F(LayoutsTabTest, ATypedNumberIsShownInTheEditorAtOnce) {
    click(x());
    x()->selectAll();
    PaintCount paintings(*editor());
    ASSERT_EQ(paintings.afterEvents(), 0);

    QTest::keyClick(x(), Qt::Key_7);

    EXPECT_EQ(paintings.afterEvents(), 1);
}

TEST_F(LayoutsTabTest, SelectingAnotherZoneEndsEditingForThePreviousZone) {
    type(x(), "7");
    clickSegment(1);

    EXPECT_EQ(zone(0).x, 7);
    EXPECT_EQ(zone(1).x, kThird);
    EXPECT_EQ(x()->text(), "33.33");
    EXPECT_EQ(announcements, 1);
}

TEST_F(LayoutsTabTest, ClosingTheWindowEndsEditing) {
    type(x(), "12,5");

    tab->view()->close();

    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(x()->text(), "12.5");
    EXPECT_EQ(chosen(), "Custom (current)");
}

TEST_F(LayoutsTabTest, ARefreshKeepsTextThatIsBeingTyped) {
    type(x(), "1");
    settings.zones = Presets::all()[8].zones;
    tab->refresh();

    EXPECT_EQ(x()->text(), "1");
    EXPECT_EQ(w()->text(), "25") << "the other fields are updated";
}

TEST_F(LayoutsTabTest, TheDescriptionOfThePictureFollowsATypedNumber) {
    type(x(), "7");

    EXPECT_TRUE(editor()->accessibleDescription().startsWith("Zone 1: left 7 %, top 0 %, "))
        << editor()->accessibleDescription().toStdString();
}

// Hot keys

TEST_F(LayoutsTabTest, ClearRemovesTheHotKeyOfTheZoneAndRefreshesAllTabs) {
    clickSegment(1);
    int refreshesBefore = -1;
    const auto order = services.store.tessarelSettingsChanged.connect([&] {
        refreshesBefore = refreshes;
        EXPECT_FALSE(saved()->bindings.contains("zone2"));
    });
    click(clear());
    EXPECT_EQ(refreshesBefore, 0) << "saved and announced first";

    EXPECT_FALSE(saved()->bindings.contains("zone2"));
    EXPECT_TRUE(saved()->bindings.contains("zone1"));
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(fullText(*recorder()), "None");
}

TEST_F(LayoutsTabTest, ARecordedHotKeyRefreshesAllTabs) {
    recorder()->onChange();

    EXPECT_EQ(refreshes, 1);
}

TEST_F(LayoutsTabTest, SelectingAnotherZoneEndsARecording) {
    click(recorder());
    ASSERT_TRUE(recorder()->isRecording());

    clickSegment(1);

    EXPECT_FALSE(recorder()->isRecording());
    EXPECT_EQ(fullText(*recorder()), "Ctrl+Opt+2");
}

// Settings with extreme values

TEST_F(LayoutsTabTest, ExtremeZonesAreShownAndCanBeRepaired) {
    settings.zones[0] = {true, -1e300, 1e308, 1e308, -1};
    settings.gridStep = -1e308;
    tab->refresh();
    (void)tab->view()->grab();
    dragInEditor({100, 100}, {200, 200});
    releaseInEditor({200, 200});

    clickSegment(0);
    for (QLineEdit* const field : {x(), y(), w(), h()})
        type(field, "10");

    EXPECT_EQ(zone(0), Presets::z(10, 10, 10, 10));
}

} // namespace
} // namespace tessarel
