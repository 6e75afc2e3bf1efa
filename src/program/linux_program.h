// SPDX-License-Identifier: MIT

#pragma once

#include "app/app_delegate.h"
#include "platform/posix/termination_signals.h"
#include "platform/qt/qt_alerts.h"
#include "platform/qt/qt_main_queue.h"
#include "platform/qt/qt_open_panel.h"
#include "platform/qt/qt_open_url.h"
#include "platform/qt/system_wall_clock.h"
#include "platform/qt_web/process/qt_url_loading_process.h"
#include "platform/qt_x11/tray/qt_status_item.h"
#include "platform/qt_xdg/application_panel.h"
#include "platform/qt_xdg/input_method_probe.h"
#include "platform/qt_xdg/qt_appearance.h"
#include "platform/qt_xdg/session_bus.h"
#include "platform/xdg/applications/installed_applications.h"
#include "platform/xdg/environment.h"
#include "ports/command_exchange.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarel {

/// The program on Linux, without its back end: what is the same on X11 and on Wayland.
class LinuxProgram {
public:
    /// Something that ends when the last pointer to it is destroyed.
    using Scope = std::shared_ptr<void>;
    using RunCommand = std::function<CommandAnswer(const std::vector<std::string>& words)>;

    /// What differs between the back ends, beside the ports of their desktops.
    struct BackEnd {
        std::string qtPlatforms; ///< of Qt's plugins, the first that works is used
        int events = -1;         ///< readable when `dispatch` has something to do
        std::function<void()> dispatch;
        /// Called before Qt's application object is created; the result is kept until it exists.
        std::function<Scope()> beforeQt;
        /// Called once the application object exists; the result is kept until the event loop has ended.
        std::function<Scope()> withQt;
        /// Called after a successful launch. The result receives commands of other processes while it exists.
        std::function<Scope(RunCommand run)> receiveCommands;
    };
    /// The ports that need Qt and are not the same on every desktop.
    struct OwnPorts {
        AlertSoundPort& alertSound;
        ApplicationPort& application;
        LocalKeysPort& localKeys;
        OverlayPort& overlay;
    };

    explicit LinuxProgram(const char* programName);
    LinuxProgram(const LinuxProgram&) = delete;
    LinuxProgram& operator=(const LinuxProgram&) = delete;
    ~LinuxProgram() = default;

    [[nodiscard]] qt::QtMainQueue& queue() { return m_queue; }
    [[nodiscard]] qt::QtAlerts& alerts() { return m_alerts; }
    [[nodiscard]] qt::QtAppearance& appearance() { return m_appearance; }

    /// Runs the program on `desktop`, which has all ports of the back end, and returns the exit code.
    /// Registers with the desktop first and starts Qt, which takes longer, afterwards: hot keys pressed
    /// meanwhile wait until the event loop runs.
    template <typename Desktop>
    int run(Desktop& desktop, const OwnPorts& own, const BackEnd& backEnd);

    /// Shows why the program cannot run, as a window on whatever display there is, and returns when the user
    /// has closed it. Returns at once if there is no display.
    void showFailure(const Alert& alert);

private:
    int launch(const Ports& ports, const BackEnd& backEnd);
    int runLoop(const BackEnd& backEnd, std::optional<AppDelegate>& delegate);
    [[nodiscard]] Scope beforeQt();
    void beforeWindow();
    [[nodiscard]] std::vector<std::string> qtOptions(const std::string& platforms) const;

    const char* m_programName;
    qt::TerminationSignals m_terminationSignals;
    qt::QtMainQueue m_queue;
    qt::InputMethodProbe m_inputMethod;
    qt::SessionBus m_bus{m_queue};
    qt::QtAppearance m_appearance{[this] { return m_bus.connection(); }};
    SubscriptionPtr m_busChanges = m_bus.onChanged([this] { m_appearance.busChanged(); });
    qt::QtAlerts m_alerts{{.beforeMaking = [this] { beforeWindow(); }}};
    qt::QtOpenUrl m_openUrl;
    qt::QtStatusItem m_statusItem{m_queue, m_bus, [this] { m_appearance.apply(); }};
    qt::QtUrlLoadingProcess m_urlLoading;
    qt::SystemWallClock m_wallClock;
};

template <typename Desktop>
int LinuxProgram::run(Desktop& desktop, const OwnPorts& own, const BackEnd& backEnd) {
    const auto entryFolders = xdg::InstalledApplications::folders();
    qt::QtOpenPanel entryFiles(entryFolders, [&desktop](const std::filesystem::path& file) {
        return desktop.applications.identifierOfEntry(file);
    });
    qt::ApplicationPanel openPanel(
        {.folders = entryFolders,
         .desktops = xdg::currentDesktops(),
         .running = [&desktop] { return desktop.applications.identifiersInUse(); }},
        entryFiles);
    return launch(Ports{.accessibility = desktop.accessibility,
                        .alertSound = own.alertSound,
                        .alerts = m_alerts,
                        .application = own.application,
                        .displays = desktop.displays,
                        .hotKeys = desktop.hotKeys,
                        .keyNames = desktop.keyNames,
                        .localKeys = own.localKeys,
                        .loginItem = desktop.loginItem,
                        .mainMenu = desktop.mainMenu,
                        .mainQueue = m_queue,
                        .mouse = desktop.mouse,
                        .openPanel = openPanel,
                        .openUrl = m_openUrl,
                        .overlay = own.overlay,
                        .preferences = desktop.preferences,
                        .singleInstance = desktop.singleInstance,
                        .statusItem = m_statusItem,
                        .trust = desktop.trust,
                        .urlLoading = m_urlLoading,
                        .wallClock = m_wallClock,
                        .windowList = desktop.windowList,
                        .workspace = desktop.workspace,
                        .words = desktop.words},
                  backEnd);
}

} // namespace tessarel
