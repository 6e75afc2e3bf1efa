#pragma once

#include "ports/local_keys_port.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tessarel::qt {

/// The keys of Qt's windows. Needs the application object from the first monitor on.
///
/// While a monitor lives, the window of ours that has the focus has the whole keyboard, so that combinations
/// claimed as hot keys come to it. The keyboard is free for others whenever none of our windows has the
/// focus.
class QtLocalKeys : public LocalKeysPort {
public:
    /// What the numbers that the system knows a key and the held modifiers by mean; empty for a key without a
    /// virtual key code.
    using Translation =
        std::function<std::optional<KeyDown>(std::uint32_t nativeScanCode, std::uint32_t nativeModifiers)>;

    /// Tells whether the key is down at this moment.
    using Look = std::function<bool(std::uint32_t nativeScanCode)>;

    QtLocalKeys(Translation translation, Look isHeld);
    QtLocalKeys(const QtLocalKeys&) = delete;
    QtLocalKeys& operator=(const QtLocalKeys&) = delete;
    ~QtLocalKeys() override;

    [[nodiscard]] SubscriptionPtr monitorKeyDown(Handler handler) override;

private:
    class Filter;
    class KeyboardGrab;
    class Monitor;

    Translation m_translation;
    Look m_isHeld;
    std::shared_ptr<Filter>
        m_filter; // none before the first monitor; shared with monitors, which may outlive us
};

} // namespace tessarel::qt
