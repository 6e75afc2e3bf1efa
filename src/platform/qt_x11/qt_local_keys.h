// SPDX-License-Identifier: MIT

#pragma once

#include "ports/desktop/local_keys_port.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tessarel::qt {

/// Monitors key presses in this program's Qt windows. Requires the application object from the first monitor
/// on.
///
/// While there is a monitor, the focused window of this program grabs the keyboard, so that combinations that
/// are registered as hot keys come to the monitor instead of triggering their action. The grab is released as
/// soon as the focus leaves; keys typed until then are discarded.
class QtLocalKeys : public LocalKeysPort {
public:
    /// Translates the X11 keycode and modifier mask of a key press. Returns `std::nullopt` for a key without
    /// a virtual key code.
    using Translation =
        std::function<std::optional<KeyDown>(std::uint32_t nativeScanCode, std::uint32_t nativeModifiers)>;

    /// Returns whether the key is physically down now, as the server reports it.
    using Look = std::function<bool(std::uint32_t nativeScanCode)>;

    /// What the functions use must outlive this object and every monitor.
    QtLocalKeys(Translation translation, Look isHeld);
    QtLocalKeys(const QtLocalKeys&) = delete;
    QtLocalKeys& operator=(const QtLocalKeys&) = delete;
    ~QtLocalKeys() override;

    /// Calls `handler` with every key press until the returned subscription is destroyed. Monitors may
    /// outlive this object.
    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override;

private:
    class Filter;
    class KeyboardGrab;
    class Monitor;

    Translation m_translation;
    Look m_isHeld;
    /// Null before the first monitor. Shared with the monitors, which may outlive this object.
    std::shared_ptr<Filter> m_filter;
};

} // namespace tessarel::qt
