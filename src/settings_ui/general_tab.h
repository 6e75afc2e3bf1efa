// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"
#include "settings_ui/kit/kit.h"
#include "settings_ui/tab_context.h"

#include <string>

class QListWidget;
class QSlider;

namespace tessarel {

class PopUpButton;

/// The "General" tab: start at login, spacing, drag to snap, permission, ignored applications, and remembered
/// positions.
///
/// Every change is saved at once. No notification is sent, because these settings are read at the moment of
/// use.
class GeneralTab {
public:
    /// Builds the controls. Everything that `context` refers to must outlive the tab.
    explicit GeneralTab(const TabContext& context);

    /// Returns the tab's view, which the tab owns.
    [[nodiscard]] FlippedView* view() { return &m_view; }

    /// Shows the current settings, and what `refreshSystemStates` shows.
    void refresh();
    /// Shows the states of the login item and the permission, which the user may have changed elsewhere.
    void refreshSystemStates();

private:
    void buildLogin();
    void buildSpacing();
    void buildDragging();
    void buildPermission();
    void buildIgnored();
    void buildRemembering();
    void buildTriggerPopup(QLabel& label);
    QSlider* makeSlider(QLabel& label, const QRect& frame, int maximum);

    // Called when the user changes a control.
    void loginToggled(bool on);
    void spacingChanged();
    void dragToggled(bool on);
    void triggerChosen();
    void edgeToggled(bool on);
    void rememberToggled(bool on);
    void forgetApps();
    void openAccessibility();
    void addIgnored();
    void removeIgnored();

    // Update parts of the tab from the settings and the system.
    void showReadouts();
    void showDragging();
    void showRemembered();
    void showEdgeNote();
    void showPermission();
    void reloadTable();
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] QString displayName(const std::string& bundleIdentifier) const;
    [[nodiscard]] AppSettings& settings() const;
    void save();

    TabContext m_context;
    FlippedView m_view; // owns the controls
    QCheckBox* m_loginBox = nullptr;
    QSlider* m_gapSlider = nullptr;
    QLabel* m_gapLabel = nullptr;
    QSlider* m_marginSlider = nullptr;
    QLabel* m_marginLabel = nullptr;
    QCheckBox* m_dragBox = nullptr;
    PopUpButton* m_triggerPopup = nullptr;
    QCheckBox* m_edgeBox = nullptr;
    QLabel* m_edgeNote = nullptr;
    QListWidget* m_table = nullptr;
    QLabel* m_accLabel = nullptr;
    QPushButton* m_accButton = nullptr;
    QCheckBox* m_rememberBox = nullptr;
    QPushButton* m_forgetButton = nullptr;
    SubscriptionPtr m_noteObserver;
};

} // namespace tessarel
