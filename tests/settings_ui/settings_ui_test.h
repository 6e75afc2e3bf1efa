#pragma once

#include "app/services.h"
#include "platform/sim/sim_desktop.h"
#include "settings_ui/tab_context.h"
#include "support/offscreen_test.h"
#include "support/sim_ports.h"

#include <QList>
#include <QRect>
#include <QWidget>

#include <optional>
#include <stdexcept>

namespace tessarel {

/// The running program on a simulated desktop, as a tab of the settings window sees it.
class SettingsUiTest : public qt::OffscreenTest {
protected:
    /// The settings as they would be found at the next start; none while nothing has been saved.
    std::optional<AppSettings> saved() {
        if (!desktop.preferences().data(Store::key))
            return std::nullopt;
        return Store(desktop.preferences()).settings;
    }

    /// The control of `view` that has this frame; there must be one.
    template <class Control>
    static Control& at(QWidget& view, const QRect& frame) {
        for (Control* const control : view.findChildren<Control*>())
            if (control->geometry() == frame)
                return *control;
        throw std::out_of_range("no such control");
    }

    sim::SimDesktop desktop;
    sim::SimSingleInstance copy = desktop.makeCopy();
    Ports ports = simPorts(desktop, copy);
    Services services{ports};
    AppSettings& settings = services.store.settings;
    int refreshes = 0; ///< how often a tab has asked for all tabs to be refreshed
    TabContext context{services, ports, [this] { ++refreshes; }};
    int announcements = 0; ///< how often changed settings have been announced
    SubscriptionPtr observer =
        services.store.tessarelSettingsChanged.addObserver([this] { ++announcements; });
};

} // namespace tessarel
