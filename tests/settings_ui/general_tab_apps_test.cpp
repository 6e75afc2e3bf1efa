// SPDX-License-Identifier: MIT

#include "settings_ui/general_tab_fixture.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tessarel {
namespace {

using Identifiers = std::vector<std::string>;

constexpr const char* kEditor = "org.example.editor";
constexpr const char* kViewer = "org.example.viewer";

/// Tests the lists of ignored applications and of applications whose zone is remembered.
class GeneralTabAppsTest : public GeneralTabTest {
protected:
    void ignore(const Identifiers& applications) {
        settings.ignoredApps = applications;
        tab.refresh();
    }

    void add(const std::optional<std::string>& chosen) {
        desktop.openPanel().choices.push_back(chosen);
        addButton.click();
    }

    std::vector<std::string> rows() {
        std::vector<std::string> rows;
        for (int row = 0; row < table.count(); ++row)
            rows.push_back(table.item(row)->text().toStdString());
        return rows;
    }
};

TEST_F(GeneralTabAppsTest, ListsTheIgnoredApplicationsByNameAndIdentifier) {
    desktop.install(kEditor, "Editor");

    ignore({kEditor, kViewer});

    EXPECT_EQ(rows(), (Identifiers{"Editor  (org.example.editor)", "org.example.viewer"}));
}

TEST_F(GeneralTabAppsTest, ANameIsShownWithoutTheExtensionOfBundles) {
    desktop.install(kEditor, "My.app Editor.app");

    ignore({kEditor});

    EXPECT_EQ(rows(), (Identifiers{"My Editor  (org.example.editor)"}));
}

TEST_F(GeneralTabAppsTest, LongRowsAreElidedInTheMiddle) {
    ignore({kEditor});

    EXPECT_EQ(table.item(0)->sizeHint().height(), 22);
    EXPECT_EQ(table.textElideMode(), Qt::ElideMiddle);
    EXPECT_EQ(table.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

TEST_F(GeneralTabAppsTest, AfterARemovalTheNextApplicationIsSelected) {
    ignore({kEditor, kViewer, "org.example.third"});
    table.setCurrentRow(1);

    removeButton.click();
    EXPECT_EQ(table.currentRow(), 1);
    removeButton.click();
    EXPECT_EQ(table.currentRow(), -1) << "nothing follows the last one";
}

TEST_F(GeneralTabAppsTest, AddingOpensAPanelToChooseAnApplication) {
    add(std::nullopt);

    EXPECT_EQ(desktop.openPanel().prompts, (Identifiers{"Ignore"}));
}

TEST_F(GeneralTabAppsTest, AnAddedApplicationIsAppendedAndSavedWithoutANotification) {
    ignore({kViewer});

    add(kEditor);

    EXPECT_EQ(settings.ignoredApps, (Identifiers{kViewer, kEditor}));
    EXPECT_EQ(rows(), (Identifiers{kViewer, kEditor}));
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabAppsTest, CancellingThePanelChangesNothing) {
    add(std::nullopt);

    EXPECT_TRUE(settings.ignoredApps.empty());
    EXPECT_EQ(saved(), std::nullopt);
    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(GeneralTabAppsTest, AddingAnIgnoredApplicationAgainChangesNothing) {
    ignore({kEditor});

    add(kEditor);

    EXPECT_EQ(settings.ignoredApps, (Identifiers{kEditor}));
    EXPECT_EQ(saved(), std::nullopt);
    EXPECT_TRUE(desktop.alerts().shown.empty());
}

TEST_F(GeneralTabAppsTest, RemovingDeletesTheSelectedApplicationFromTheList) {
    ignore({kEditor, kViewer});
    table.setCurrentRow(0);

    removeButton.click();

    EXPECT_EQ(settings.ignoredApps, (Identifiers{kViewer}));
    EXPECT_EQ(rows(), (Identifiers{kViewer}));
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabAppsTest, RemovingWithoutASelectionDoesNothing) {
    ignore({kEditor});

    removeButton.click();

    EXPECT_EQ(settings.ignoredApps, (Identifiers{kEditor}));
    EXPECT_EQ(saved(), std::nullopt);
}

TEST_F(GeneralTabAppsTest, AFocusedRowThatIsNotSelectedIsNotRemoved) {
    ignore({kEditor});
    table.setCurrentRow(0, QItemSelectionModel::NoUpdate);

    removeButton.click();

    EXPECT_EQ(settings.ignoredApps, (Identifiers{kEditor}));
}

TEST_F(GeneralTabAppsTest, AnApplicationThatIsNoLongerInstalledCanBeRemoved) {
    ignore({kEditor});
    ASSERT_EQ(rows(), (Identifiers{kEditor}));
    table.setCurrentRow(0);

    removeButton.click();

    EXPECT_TRUE(settings.ignoredApps.empty());
}

TEST_F(GeneralTabAppsTest, ARowRemovedMeanwhileIsNotRemovedAgain) {
    ignore({kEditor, kViewer});
    table.setCurrentRow(1);
    settings.ignoredApps.pop_back();

    removeButton.click();

    EXPECT_EQ(settings.ignoredApps, (Identifiers{kEditor}));
}

TEST_F(GeneralTabAppsTest, ARefreshKeepsTheSelection) {
    ignore({kEditor, kViewer});
    table.setCurrentRow(1);

    tab.refresh();

    EXPECT_EQ(table.currentRow(), 1);
    EXPECT_TRUE(table.item(1)->isSelected());
}

TEST_F(GeneralTabAppsTest, TheRememberBoxIsSavedAndForgetsNothing) {
    settings.appZones[kEditor] = 2;

    toggle(rememberBox);

    EXPECT_FALSE(settings.rememberApps);
    EXPECT_EQ(settings.appZones.size(), 1U);
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
}

TEST_F(GeneralTabAppsTest, WithNothingRememberedTheForgetButtonIsDisabled) {
    EXPECT_EQ(fullText(forgetButton), "Forget remembered apps (0)");
    EXPECT_FALSE(forgetButton.isEnabled());
}

TEST_F(GeneralTabAppsTest, TheForgetButtonShowsHowManyAreRemembered) {
    settings.appZones = {{kEditor, 0}, {kViewer, 8}};

    tab.refresh();

    EXPECT_EQ(fullText(forgetButton), "Forget remembered apps (2)");
    EXPECT_TRUE(forgetButton.isEnabled());
}

TEST_F(GeneralTabAppsTest, ForgettingNeedsNoConfirmationAndIsSaved) {
    settings.appZones = {{kEditor, 0}};
    tab.refresh();

    forgetButton.click();

    EXPECT_TRUE(settings.appZones.empty());
    EXPECT_EQ(saved(), settings);
    EXPECT_EQ(announcements, 0);
    EXPECT_TRUE(desktop.alerts().shown.empty());
    EXPECT_EQ(fullText(forgetButton), "Forget remembered apps (0)");
    EXPECT_FALSE(forgetButton.isEnabled());
}

} // namespace
} // namespace tessarel
