// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_panel.h"

#include "platform/qt_xdg/application_chooser.h"
#include "platform/xdg/applications/offered_applications.h"

#include <utility>

namespace tessarel::qt {

ApplicationPanel::ApplicationPanel(Setup setup, OpenPanelPort& other)
    : m_setup(std::move(setup)), m_other(other) {}

std::optional<std::string> ApplicationPanel::chooseApplication(const std::string& prompt) {
    ApplicationChooser chooser(xdg::OfferedApplications(m_setup.folders, m_setup.desktops),
                               {.prompt = prompt, .running = m_setup.running(), .chooseOther = [&] {
                                    return m_other.chooseApplication(prompt);
                                }});
    return chooser.run();
}

} // namespace tessarel::qt
