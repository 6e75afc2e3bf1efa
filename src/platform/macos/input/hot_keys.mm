// SPDX-License-Identifier: MIT

#include "platform/macos/input/hot_keys.h"

#include "model/call_on_end.h"
#include "model/carbon_mods.h"
#include "model/signal.h"
#include "platform/macos/objects/callback_edge.h"

#import <Carbon/Carbon.h>
#include <map>
#include <optional>
#include <utility>

namespace tessarel::macos {

namespace {

constexpr std::uint32_t kKeyCodes = 128; // virtual key codes are 0 to 127

/// Returns whether a keyboard can produce the combination. Carbon also registers key codes and modifier bits
/// that do not exist, and such a hot key never fires.
bool isPossible(const HotKeyRequest& request) {
    return request.keyCode < kKeyCodes && carbonMods(modifierFlags(request.mods)) == request.mods;
}

} // namespace

/// The Carbon event handler and the registered combinations. Every registered combination keeps it alive.
class MacHotKeys::Keyboard {
public:
    explicit Keyboard(MacLocalKeys& localKeys) : m_localKeys(localKeys) {}
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;
    ~Keyboard() = default;

    [[nodiscard]] SubscriptionPtr addHandler(std::function<void(std::uint32_t id)> pressed) {
        @autoreleasepool {
            const EventTypeSpec pressing{kEventClassKeyboard, kEventHotKeyPressed};
            // One handler for all subscriptions: Carbon calls no further handler once one has returned noErr.
            if (!m_handler)
                InstallEventHandler(GetApplicationEventTarget(), receive, 1, &pressing, this, &m_handler);
            return m_handlers.connect(std::move(pressed));
        }
    }

    void removeHandler() {
        @autoreleasepool {
            if (EventHandlerRef handler = std::exchange(m_handler, nullptr))
                RemoveEventHandler(handler);
        }
    }

    /// Registers the combination. Returns null when it is impossible or the system refuses; otherwise the
    /// caller has to pass the result to `letGo`.
    [[nodiscard]] EventHotKeyRef claim(const HotKeyRequest& request) {
        @autoreleasepool {
            EventHotKeyRef claimed = nullptr;
            const EventHotKeyID hotKey{request.hotKey.signature, request.hotKey.id};
            if (!isPossible(request) ||
                RegisterEventHotKey(request.keyCode, request.mods, hotKey, GetApplicationEventTarget(), 0,
                                    &claimed) != noErr)
                return nullptr;
            m_claims.emplace(claimed, request);
            return claimed;
        }
    }

    void letGo(EventHotKeyRef claimed) {
        @autoreleasepool {
            UnregisterEventHotKey(claimed);
            m_claims.erase(claimed);
        }
    }

private:
    /// Callback of the Carbon event handler; `keyboard` is the `Keyboard` that has installed it.
    static OSStatus receive(EventHandlerCallRef /*call*/, EventRef event, void* keyboard) {
        @autoreleasepool {
            EventHotKeyID hotKey{};
            if (GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, nullptr, sizeof hotKey,
                                  nullptr, &hotKey) != noErr)
                return eventNotHandledErr;
            bool isOurs = true;
            atCallbackEdge([&] {
                isOurs = static_cast<Keyboard*>(keyboard)->press({hotKey.signature, hotKey.id});
            });
            // Libraries in this process may have hot keys of their own, with their own handlers.
            return isOurs ? noErr : eventNotHandledErr;
        }
    }

    /// Returns the registered combination with this id; empty when a press was still queued when the
    /// registration ended.
    [[nodiscard]] std::optional<HotKeyRequest> claimOf(const HotKeyId& hotKey) const {
        for (const auto& [claimed, request] : m_claims) {
            if (request.hotKey == hotKey)
                return request;
        }
        return {};
    }

    /// Delivers a press to the local keys or else to the handlers. Returns false when no combination is
    /// registered with this id.
    [[nodiscard]] bool press(const HotKeyId& hotKey) {
        const auto request = claimOf(hotKey);
        if (!request)
            return false;
        if (m_localKeys.takeHotKey({request->keyCode, modifierFlags(request->mods)}))
            return true;
        m_handlers.send(hotKey.id);
        return true;
    }

    MacLocalKeys& m_localKeys;
    EventHandlerRef m_handler = nullptr;
    Signal<std::uint32_t> m_handlers;
    std::map<EventHotKeyRef, HotKeyRequest> m_claims;
};

MacHotKeys::MacHotKeys(MacLocalKeys& localKeys) : m_keyboard(std::make_shared<Keyboard>(localKeys)) {}

MacHotKeys::~MacHotKeys() {
    m_keyboard->removeHandler();
}

SubscriptionPtr MacHotKeys::installHandler(std::function<void(std::uint32_t id)> pressed) {
    return m_keyboard->addHandler(std::move(pressed));
}

std::vector<SubscriptionPtr> MacHotKeys::registerHotKeys(std::span<const HotKeyRequest> requests) {
    std::vector<SubscriptionPtr> claims;
    claims.reserve(requests.size());
    for (const HotKeyRequest& request : requests) {
        EventHotKeyRef const claimed = m_keyboard->claim(request);
        claims.push_back(claimed ? callOnEnd([keyboard = m_keyboard, claimed] { keyboard->letGo(claimed); })
                                 : nullptr);
    }
    return claims;
}

} // namespace tessarel::macos
