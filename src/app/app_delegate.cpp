// SPDX-License-Identifier: MIT

#include "app/app_delegate.h"

#include "app/main_menu.h"
#include "app/welcome.h"
#include "model/key_names.h"
#include "model/presets.h"

#include <utility>

namespace tessarel {

AppDelegate::AppDelegate(const Ports& ports, SettingsWindowFactory makeSettingsWindow)
    : m_ports(ports), m_makeSettingsWindow(std::move(makeSettingsWindow)), m_later(ports.mainQueue) {}

AppDelegate::~AppDelegate() = default;

AppDelegate::Launch AppDelegate::applicationDidFinishLaunching() {
    // First, because a second copy must not read, create or register anything.
    if (const Launch claimed = claimDesktop(); claimed != Launch::Running)
        return claimed;

    Services& services = m_services.emplace(m_ports);
    m_ports.mainMenu.setMainMenu(mainMenu());
    m_statusMenu.emplace(services.store, services.permissions, services.runtime, m_ports.words,
                         m_ports.keyNames,
                         [&services](ActionID action) { return services.hotKeys.isTaken(action); });
    m_statusItem.emplace(m_ports.statusItem, services.runtime,
                         StatusItemPort::Delegate{[this] { return currentMenu(); },
                                                  [this](const MenuItem& item) { itemSelected(item); }});
    m_commands.emplace(
        CommandRunner::Uses{.actions = services.actionRunner,
                            .geo = services.geo,
                            .permissions = services.permissions,
                            .runtime = services.runtime,
                            .store = services.store,
                            .displays = m_ports.displays,
                            .applyZones = [this](std::vector<Zone> zones) { applyZones(std::move(zones)); },
                            .setPaused = [this](bool paused) { setPaused(paused); },
                            // Later, so that the command is answered first.
                            .quit = [this] { m_later.async([this] { m_ports.application.terminate(); }); }});
    services.hotKeys.registerAll();
    services.dragSnap.start();
    services.appPlacer.start();
    m_settingsObserver = services.store.tessarelSettingsChanged.connect([this] {
        m_services->hotKeys.registerAll();
        m_statusItem->refreshStatusIcon();
    });
    m_settingsFollower.emplace(services.store, m_ports.preferences, m_ports.mainQueue,
                               [this] { refreshSettingsWindow(); });
    // From the event loop, which does not run yet.
    m_later.async([this] { m_services->updater.checkIfDue(); });
    greetUser();
    return Launch::Running;
}

/// Claims the desktop, also when the copy that has it quits meanwhile.
AppDelegate::Launch AppDelegate::claimDesktop() {
    using Kind = SingleInstancePort::Reaction::Kind;
    for (;;) {
        m_instance = m_ports.singleInstance.claim([this] { applicationShouldHandleReopen(); },
                                                  [this] { m_ports.application.terminate(); });
        if (m_instance)
            return Launch::Running;
        auto reaction = m_ports.singleInstance.awaitReaction();
        if (reaction.kind == Kind::Ended)
            continue;
        m_launchFailure = std::move(reaction.problem);
        return reaction.kind == Kind::Reopened ? Launch::AnotherCopyRuns : Launch::Failed;
    }
}

/// Shows the welcome message on the first run. On later runs, asks for the permission if it is missing, or
/// turns out later to be. Both happen after the update check has started.
void AppDelegate::greetUser() {
    if (!m_services->store.settings.hasOnboarded)
        m_ports.statusItem.whenPlaced(
            [this](bool isShown) { m_later.async([this, isShown] { welcome(isShown); }); });
    else
        m_later.async([this] {
            promptForPermission();
            promptOnLoss();
        });
}

void AppDelegate::promptForPermission() {
    if (!m_services->permissions.isTrusted())
        m_services->permissions.prompt();
}

/// Asks for the permission whenever it turns out to be missing. Not before the welcome message has been
/// closed, which a prompt follows.
void AppDelegate::promptOnLoss() {
    m_trustObserver = m_ports.trust.onLost([this] { promptForPermission(); });
}

void AppDelegate::welcome(bool isStatusItemShown) {
    m_ports.application.activate();
    const WelcomeFacts facts{.hasStatusItem = isStatusItemShown,
                             .showsOutlines = m_ports.overlay.showsOutlines(),
                             .takenShortcuts = m_ports.words.welcomeNamesTaken ? takenShortcuts()
                                                                               : std::vector<std::string>()};
    m_welcome = m_ports.alerts.show(welcomeAlert(m_ports.words, facts),
                                    [this](std::optional<std::size_t> button) { welcomed(button); });
}

/// Returns the combinations that other programs have, in the order of the actions.
std::vector<std::string> AppDelegate::takenShortcuts() {
    std::vector<std::string> shortcuts;
    for (const ActionID action : ActionID::allCases) {
        if (m_services->hotKeys.isTaken(action))
            shortcuts.push_back(
                KeyNames::describe(m_services->store.binding(action), m_ports.words.modifierNames,
                                   [this](std::int64_t keyCode) { return m_ports.keyNames.name(keyCode); }));
    }
    return shortcuts;
}

/// Continues after the welcome message. If the user has closed it without a button, it appears again at the
/// next start.
void AppDelegate::welcomed(std::optional<std::size_t> button) {
    m_welcome.reset();
    if (button) {
        m_services->store.settings.hasOnboarded = true;
        m_services->store.save();
    }
    m_services->permissions.prompt();
    promptOnLoss();
    if (button == kWelcomeOpenSettings)
        openSettings();
}

Menu AppDelegate::currentMenu() {
    // No desktop reports that a combination has become free.
    m_services->hotKeys.retryTaken();
    return m_statusMenu->rebuild();
}

void AppDelegate::applicationShouldHandleReopen() {
    openSettings();
}

CommandReply AppDelegate::runCommand(const std::vector<std::string>& words) {
    return m_commands->run(words);
}

void AppDelegate::itemSelected(const MenuItem& item) {
    switch (item.command) {
    case MenuCommand::None:
        return;
    case MenuCommand::GrantAccess:
        return grantAccess();
    case MenuCommand::RunMenuAction:
        return runMenuAction(item.tag);
    case MenuCommand::ApplyLayout:
        return applyLayout(item.tag);
    case MenuCommand::TogglePause:
        return setPaused(!m_services->runtime.paused);
    case MenuCommand::OpenSettings:
        return openSettings();
    case MenuCommand::CheckUpdates:
        return m_services->updater.check(true);
    case MenuCommand::Quit:
        return m_ports.application.terminate();
    }
}

void AppDelegate::runMenuAction(int tag) {
    if (const auto action = StatusMenu::action(tag))
        m_later.asyncAfter(kMenuActionDelay, [this, action] { m_services->actionRunner.run(*action); });
}

void AppDelegate::applyLayout(int tag) {
    if (auto zones = m_statusMenu->layoutZones(tag))
        applyZones(*std::move(zones));
}

void AppDelegate::applyZones(std::vector<Zone> zones) {
    m_services->store.settings.zones = Presets::pad(std::move(zones));
    m_services->store.saveAndNotify();
    refreshSettingsWindow();
}

void AppDelegate::setPaused(bool paused) {
    m_services->runtime.paused = paused;
    m_statusItem->refreshStatusIcon();
}

void AppDelegate::grantAccess() {
    m_services->permissions.prompt();
    m_services->permissions.openSettings();
}

void AppDelegate::openSettings() {
    if (!m_settingsWindow && m_makeSettingsWindow)
        m_settingsWindow = m_makeSettingsWindow(*m_services, m_ports);
    if (m_settingsWindow)
        m_settingsWindow->show();
}

void AppDelegate::refreshSettingsWindow() {
    if (m_settingsWindow)
        m_settingsWindow->refreshAll();
}

} // namespace tessarel
