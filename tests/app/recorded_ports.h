// SPDX-License-Identifier: MIT

#pragma once

#include "app/app_delegate.h"
#include "model/call_on_end.h"
#include "platform/sim/sim_desktop.h"
#include "support/sim_ports.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarel {

/// Ports of a simulated desktop that record the program's calls in order, as short phrases.
/// Consecutive equal phrases are recorded once.
class RecordedPorts {
public:
    using Order = std::vector<std::string>;

    /// `settings` is the settings document that the program loads.
    RecordedPorts(sim::SimDesktop& desktop, std::string settings)
        : m_desktop(desktop), m_settings(std::move(settings)) {}

    [[nodiscard]] Ports ports() {
        Ports simulated = simPorts(m_desktop, m_instance);
        return {.accessibility = simulated.accessibility,
                .alertSound = simulated.alertSound,
                .alerts = m_alerts,
                .application = m_application,
                .displays = simulated.displays,
                .hotKeys = m_hotKeys,
                .keyNames = simulated.keyNames,
                .localKeys = simulated.localKeys,
                .loginItem = simulated.loginItem,
                .mainMenu = m_mainMenu,
                .mainQueue = simulated.mainQueue,
                .mouse = m_mouse,
                .openPanel = simulated.openPanel,
                .openUrl = simulated.openUrl,
                .overlay = simulated.overlay,
                .preferences = m_preferences,
                .singleInstance = m_instance,
                .statusItem = m_statusItem,
                .trust = m_trust,
                .urlLoading = m_urlLoading,
                .wallClock = simulated.wallClock,
                .windowList = simulated.windowList,
                .workspace = m_workspace,
                .words = kSimWords};
    }
    /// Returns a factory of settings windows that record the calls to them.
    [[nodiscard]] SettingsWindowFactory settingsWindow() {
        return [this](Services&, const Ports&) {
            note("make settings window");
            return std::make_unique<Window>(*this);
        };
    }

    [[nodiscard]] sim::SimAlerts& alerts() { return m_alerts; }
    [[nodiscard]] Order takeOrder() { return std::exchange(m_order, {}); }
    void note(const std::string& phrase) {
        if (m_order.empty() || m_order.back() != phrase)
            m_order.push_back(phrase);
    }

    /// Called while the program lists the running applications; may be empty.
    std::function<void()> whileListingPrograms;
    /// Called while the program starts an update check; may be empty.
    std::function<void()> whileAskingTheWeb;

private:
    struct Instance : SingleInstancePort {
        explicit Instance(RecordedPorts& record) : record(record) {}
        SubscriptionPtr claim(std::function<void()> reopened, std::function<void()> lost) override {
            record.note("claim the desktop");
            return copy.claim(std::move(reopened), std::move(lost));
        }
        Reaction awaitReaction() override { return copy.awaitReaction(); }
        RecordedPorts& record;
        sim::SimSingleInstance copy = record.m_desktop.makeCopy();
    };
    struct Preferences : PreferencesPort {
        explicit Preferences(RecordedPorts& record) : record(record) {}
        std::optional<std::string> data(std::string_view) override {
            record.note("read settings");
            return record.m_settings;
        }
        bool setData(std::string_view, std::string_view) override {
            record.note("save settings");
            return true;
        }
        void keepRejected(std::string_view) override {}
        SubscriptionPtr lock(std::string_view) override {
            return callOnEnd([] {});
        }
        SubscriptionPtr watch(std::string_view, std::function<void()>) override {
            record.note("watch settings");
            return nullptr;
        }
        RecordedPorts& record;
    };
    struct Menus : MainMenuPort {
        explicit Menus(RecordedPorts& record) : record(record) {}
        void setMainMenu(const std::vector<MainMenu>&) override { record.note("set main menu"); }
        RecordedPorts& record;
    };
    struct Item : sim::SimStatusItem {
        explicit Item(RecordedPorts& record) : record(record) {}
        SubscriptionPtr create(Delegate delegate) override {
            record.note("create status item");
            return SimStatusItem::create(std::move(delegate));
        }
        void setAppearsDisabled(bool disabled) override {
            record.note(disabled ? "dim icon" : "show icon");
            SimStatusItem::setAppearsDisabled(disabled);
        }
        RecordedPorts& record;
    };
    struct Keys : HotKeyPort {
        explicit Keys(RecordedPorts& record) : record(record) {}
        SubscriptionPtr installHandler(std::function<void(std::uint32_t)>) override {
            record.note("listen to hot keys");
            return nullptr;
        }
        std::vector<SubscriptionPtr> registerHotKeys(std::span<const HotKeyRequest> requests) override {
            record.note("claim hot keys");
            return std::vector<SubscriptionPtr>(requests.size());
        }
        [[nodiscard]] std::vector<std::uint32_t> taken() const override { return {}; }
        void retryTaken() override { record.note("retry taken hot keys"); }
        SubscriptionPtr onTakenChange(std::function<void()>) override { return nullptr; }
        RecordedPorts& record;
    };
    struct Mouse : MousePort {
        explicit Mouse(RecordedPorts& record) : record(record) {}
        SubscriptionPtr addGlobalMonitor(MouseEventKind, std::function<void(const MouseEvent&)>) override {
            record.note("watch the mouse");
            return nullptr;
        }
        RecordedPorts& record;
    };
    struct Workspace : sim::SimWorkspace {
        Workspace(RecordedPorts& record, sim::SimState& state) : SimWorkspace(state), record(record) {}
        std::vector<RunningApplication> runningApplications() override {
            record.note("list programs");
            if (record.whileListingPrograms)
                record.whileListingPrograms();
            return {};
        }
        SubscriptionPtr addObserver(ApplicationEvent event,
                                    std::function<void(const RunningApplication&)> handler) override {
            record.note("watch programs");
            return SimWorkspace::addObserver(event, std::move(handler));
        }
        RecordedPorts& record;
    };
    struct Trust : TrustPort {
        explicit Trust(RecordedPorts& record) : record(record) {}
        bool isTrusted() override {
            record.note("ask for trust");
            return false;
        }
        void prompt() override { record.note("prompt"); }
        [[nodiscard]] SubscriptionPtr onLost(std::function<void()> /*lost*/) override { return nullptr; }
        [[nodiscard]] bool hasSettings() const override { return true; }
        void openSettings() override { record.note("open the system's settings"); }
        RecordedPorts& record;
    };
    struct Web : UrlLoadingPort {
        explicit Web(RecordedPorts& record) : record(record) {}
        SubscriptionPtr load(const UrlRequest&, Done) override {
            record.note("ask the web");
            if (record.whileAskingTheWeb)
                record.whileAskingTheWeb();
            return nullptr;
        }
        RecordedPorts& record;
    };
    struct Alerts : sim::SimAlerts {
        explicit Alerts(RecordedPorts& record) : record(record) {}
        SubscriptionPtr show(const Alert& alert, Closed closed) override {
            record.note(alert.messageText);
            return SimAlerts::show(alert, std::move(closed));
        }
        RecordedPorts& record;
    };
    struct Application : ApplicationPort {
        explicit Application(RecordedPorts& record) : record(record) {}
        void activate() override { record.note("come to the front"); }
        void terminate() override { record.note("terminate"); }
        RecordedPorts& record;
    };
    struct Window : SettingsWindow {
        explicit Window(RecordedPorts& record) : record(record) {}
        void show() override { record.note("show settings window"); }
        void refreshAll() override { record.note("refresh settings window"); }
        RecordedPorts& record;
    };

    sim::SimDesktop& m_desktop;
    std::string m_settings;
    Order m_order;
    sim::SimState m_programs; // stays empty, whatever runs on the desktop
    Instance m_instance{*this};
    Preferences m_preferences{*this};
    Menus m_mainMenu{*this};
    Item m_statusItem{*this};
    Keys m_hotKeys{*this};
    Mouse m_mouse{*this};
    Workspace m_workspace{*this, m_programs};
    Trust m_trust{*this};
    Web m_urlLoading{*this};
    Alerts m_alerts{*this};
    Application m_application{*this};
};

} // namespace tessarel
