#include "platform/x11/server/trust.h"

#include "model/config.h"

#include <string>
#include <string_view>
#include <vector>

namespace tessarel::x11 {

namespace {

/// Returns the words separated by commas.
std::string joined(const std::vector<std::string_view>& words) {
    std::string text;
    for (const std::string_view word : words) {
        if (!text.empty())
            text += ", ";
        text += word;
    }
    return text;
}

} // namespace

Session sessionOf(const char* waylandDisplay, const char* sessionType) {
    const std::string_view display = waylandDisplay ? waylandDisplay : "";
    const std::string_view type = sessionType ? sessionType : "";
    return type == "wayland" || !display.empty() ? Session::Wayland : Session::X11;
}

X11Trust::X11Trust(Connection& connection, Session session, MainQueuePort& queue, AlertsPort& alerts,
                   OpenUrlPort& openUrl)
    : m_windowManager(connection), m_session(session), m_queue(queue), m_alerts(alerts), m_openUrl(openUrl) {}

bool X11Trust::isTrusted() {
    return m_session == Session::X11 && m_windowManager.state().suffices();
}

void X11Trust::prompt() {
    if (!m_prompt && !isTrusted())
        m_prompt = m_queue.async([this] { explain(); });
}

void X11Trust::explain() {
    const auto alive = m_lifetime.watch(); // the nested event loop of the alert may destroy this object
    if (!isTrusted())
        m_alerts.runModal(explanation());
    if (!alive.expired())
        m_prompt.reset();
}

Alert X11Trust::explanation() {
    const std::string appName(Config::appName);
    Alert alert{appName + " cannot move windows yet", {}, {"OK"}};
    if (m_session == Session::Wayland) {
        alert.informativeText = "This is a Wayland session, in which no program may move the windows of "
                                "others. Log out, choose an X11 (Xorg) session and start " +
                                appName + " again.";
    } else if (!m_windowManager.state().running) {
        alert.informativeText = "No window manager is running on this display. " + appName +
                                " works as soon as one has been started.";
    } else {
        alert.informativeText = "The window manager of this display does not offer what " + appName +
                                " needs: " + joined(m_windowManager.state().missingHints) + ".";
    }
    return alert;
}

void X11Trust::openSettings() {
    m_openUrl.open(std::string(Config::websiteURL) + "docs/platforms");
}

} // namespace tessarel::x11
