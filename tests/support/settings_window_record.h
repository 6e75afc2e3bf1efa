// SPDX-License-Identifier: MIT

#pragma once

#include "app/settings_window.h"

#include <memory>

namespace tessarel {

/// Records the calls to a settings window that shows nothing.
struct SettingsWindowRecord {
    /// Returns a factory of recording windows. The record must outlive the windows.
    [[nodiscard]] SettingsWindowFactory factory() {
        return [this](Services&, const Ports&) {
            ++made;
            return std::make_unique<Window>(*this);
        };
    }

    int made = 0;
    int shown = 0;
    int refreshed = 0;
    int ended = 0;

private:
    class Window : public SettingsWindow {
    public:
        explicit Window(SettingsWindowRecord& record) : m_record(record) {}
        ~Window() override { ++m_record.ended; }

        void show() override { ++m_record.shown; }
        void refreshAll() override { ++m_record.refreshed; }

    private:
        SettingsWindowRecord& m_record;
    };
};

} // namespace tessarel
