// SPDX-License-Identifier: MIT

#pragma once

#include "settings_ui/kit/kit.h"
#include "settings_ui/tab_context.h"

namespace tessarel {

/// The "About" tab: version, website, support, update check and privacy statement.
class AboutTab {
public:
    /// Builds the controls. Everything that `context` refers to must outlive the tab.
    explicit AboutTab(const TabContext& context);

    /// Returns the tab's view, which the tab owns.
    [[nodiscard]] FlippedView* view() { return &m_view; }

private:
    void buildProgram();
    void buildActions();
    void buildPrivacy();

    void openSite();
    /// Opens a new e-mail whose subject is the program's name and version.
    void emailSupport();

    TabContext m_context;
    FlippedView m_view;
};

} // namespace tessarel
