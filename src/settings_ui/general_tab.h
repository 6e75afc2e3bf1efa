#pragma once

#include "settings_ui/kit.h"
#include "settings_ui/tab_context.h"

#include <string>

class QComboBox;
class QListWidget;
class QSlider;

namespace tessarel {

/// The options that hold for the whole program, and whether it is allowed to do its work.
///
/// A change is in the settings, and saved, at once. Nobody is told: what reads these settings reads them at
/// the moment of use.
class GeneralTab {
public:
    explicit GeneralTab(const TabContext& context);

    [[nodiscard]] FlippedView* view() { return &m_view; }

    /// Shows the present settings, and what the system says about login and permission.
    void refresh();

private:
    void buildLogin();
    void buildSpacing();
    void buildDragging();
    void buildPermission();
    void buildIgnored();
    void buildRemembering();
    void buildTriggerPopup(QLabel& label);
    QSlider* makeSlider(QLabel& label, const QRect& frame, int maximum);

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

    void showReadouts();
    void showDragging();
    void showRemembered();
    void showPermission();
    void reloadTable();
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] QString displayName(const std::string& bundleIdentifier) const;
    [[nodiscard]] AppSettings& settings() const;
    void save();

    TabContext m_context;
    FlippedView m_view;
    QCheckBox* m_loginBox = nullptr;
    QSlider* m_gapSlider = nullptr;
    QLabel* m_gapLabel = nullptr;
    QSlider* m_marginSlider = nullptr;
    QLabel* m_marginLabel = nullptr;
    QCheckBox* m_dragBox = nullptr;
    QComboBox* m_triggerPopup = nullptr;
    QCheckBox* m_edgeBox = nullptr;
    QListWidget* m_table = nullptr;
    QLabel* m_accLabel = nullptr;
    QCheckBox* m_rememberBox = nullptr;
    QPushButton* m_forgetButton = nullptr;
};

} // namespace tessarel
