// SPDX-License-Identifier: MIT

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

/// Fixture: the program on a simulated desktop, with the context that the tabs of the settings window get.
class SettingsUiTest : public qt::OffscreenTest {
protected:
    /// Returns the settings that the next launch would load; empty while nothing has been saved.
    std::optional<AppSettings> saved() {
        if (!desktop.preferences().data(Store::key))
            return std::nullopt;
        return Store(desktop.preferences()).settings;
    }

    /// Returns the control of `view` with this frame. Throws when there is none.
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
    int refreshes = 0; ///< number of times that a tab has requested a refresh of all tabs
    TabContext context{services, ports, [this] { ++refreshes; }};
    int announcements = 0; ///< number of signals about changed settings
    SubscriptionPtr observer = services.store.tessarelSettingsChanged.connect([this] { ++announcements; });
};

} // namespace tessarel
