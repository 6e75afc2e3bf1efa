// SPDX-License-Identifier: MIT

#include "settings_ui/about_tab.h"

#include "model/config.h"
#include "qt_values/text.h"

#include <string>

namespace tessarel {

AboutTab::AboutTab(const TabContext& context) : m_context(context) {
    m_view.resize(kTabSize);
    buildProgram();
    buildActions();
    buildPrivacy();
}

void AboutTab::buildProgram() {
    makeLabel(m_view, toQString(Config::appName), {16, 14, 400, 34}, {.bold = true, .size = 26});
    makeLabel(m_view, QStringLiteral("Version ") + toQString(Config::version), {16, 52, 300, 18},
              {.secondary = true});
    makeWrap(m_view, QStringLiteral("Snap windows into layouts you design."), {16, 82, 600, 22},
             {.size = 13});
}

void AboutTab::buildActions() {
    makeButton(m_view, QStringLiteral("Website"), {16, 120, 110, 28}, [this] { openSite(); });
    makeButton(m_view, QStringLiteral("Email support"), {134, 120, 120, 28}, [this] { emailSupport(); });
    // true: reports the result to the user, even if there is no update.
    makeButton(m_view, QStringLiteral("Check for updates"), {262, 120, 150, 28},
               [this] { m_context.services.updater.check(true); });
}

void AboutTab::buildPrivacy() {
    makeLabel(m_view, QStringLiteral("Privacy"), {16, 176, 200, 20}, {.bold = true, .size = 14});
    makeWrap(
        m_view,
        toQString(Config::appName) +
            QStringLiteral(" collects no analytics and sends no usage data. It contacts the network only to "
                           "look for new versions. Your layouts and settings stay on ") +
            toQString(m_context.ports.words.thisComputer) + QLatin1Char('.'),
        {16, 202, 740, 60});
}

void AboutTab::openSite() {
    m_context.ports.openUrl.open(std::string(Config::websiteURL));
}

void AboutTab::emailSupport() {
    m_context.ports.openUrl.open("mailto:" + std::string(Config::supportEmail) + "?subject=" +
                                 std::string(Config::appName) + "%20" + std::string(Config::version));
}

} // namespace tessarel
