#pragma once

#include "settings_ui/kit.h"
#include "settings_ui/tab_context.h"

namespace tessarel {

/// Tells what the program is, and where to turn to.
class AboutTab {
public:
    explicit AboutTab(const TabContext& context);

    [[nodiscard]] FlippedView* view() { return &m_view; }

private:
    void buildProgram();
    void buildActions();
    void buildPrivacy();

    void openSite();
    void emailSupport();

    TabContext m_context;
    FlippedView m_view;
};

} // namespace tessarel
