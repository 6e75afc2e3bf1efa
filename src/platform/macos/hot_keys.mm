#include "platform/macos/hot_keys.h"

#include "model/carbon_mods.h"
#include "platform/macos/callback_edge.h"

#import <Carbon/Carbon.h>
#include <map>
#include <optional>
#include <utility>

namespace tessarel::macos {

namespace {

constexpr std::uint32_t kKeyCodes = 128;

/// The flags of an event for which `carbonMods` gives `mods`.
ModifierFlags modifierFlags(std::uint32_t mods) {
    ModifierFlags flags = 0;
    for (const ModifierFlags flag : {kShiftFlag, kControlFlag, kOptionFlag, kCommandFlag})
        flags |= (carbonMods(flag) & mods) != 0 ? flag : 0;
    return flags;
}

/// The system takes numbers that no key and no modifier has, and never presses them.
bool isPossible(const HotKeyRequest& request) {
    return request.keyCode < kKeyCodes && carbonMods(modifierFlags(request.mods)) == request.mods;
}

} // namespace

class MacHotKeys::Keyboard {
public:
    explicit Keyboard(MacLocalKeys& localKeys) : m_localKeys(localKeys) {}
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;
    ~Keyboard() { removeHandler(); }

    [[nodiscard]] SubscriptionPtr addHandler(std::function<void(std::uint32_t id)> pressed) {
        @autoreleasepool {
            const EventTypeSpec pressing{kEventClassKeyboard, kEventHotKeyPressed};
            if (!m_handler)
                InstallEventHandler(GetApplicationEventTarget(), receive, 1, &pressing, this, &m_handler);
            return m_handlers.add(std::move(pressed));
        }
    }

    void removeHandler() {
        @autoreleasepool {
            if (EventHandlerRef handler = std::exchange(m_handler, nullptr))
                RemoveEventHandler(handler);
        }
    }

    /// Null when the system refuses.
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
            return isOurs ? noErr : eventNotHandledErr; // a library may have hot keys of its own
        }
    }

    /// A press that was still under way when its claim ended finds none.
    [[nodiscard]] std::optional<HotKeyRequest> claimOf(const HotKeyId& hotKey) const {
        for (const auto& [claimed, request] : m_claims) {
            if (request.hotKey == hotKey)
                return request;
        }
        return {};
    }

    /// False when the hot key is none of ours.
    [[nodiscard]] bool press(const HotKeyId& hotKey) {
        const auto request = claimOf(hotKey);
        if (!request)
            return false;
        if (m_localKeys.takeHotKey({request->keyCode, modifierFlags(request->mods)}))
            return true;
        for (const auto& weak : m_handlers.present()) {
            if (const auto handler = weak.lock())
                (*handler)(hotKey.id);
        }
        return true;
    }

    MacLocalKeys& m_localKeys;
    EventHandlerRef m_handler = nullptr;
    Callbacks<void(std::uint32_t)> m_handlers;
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
    struct Claim : Subscription {
        Claim(std::shared_ptr<Keyboard> owner, EventHotKeyRef hotKey)
            : keyboard(std::move(owner)), claimed(hotKey) {}
        ~Claim() override { keyboard->letGo(claimed); }

        std::shared_ptr<Keyboard> keyboard;
        EventHotKeyRef claimed;
    };
    std::vector<SubscriptionPtr> claims;
    claims.reserve(requests.size());
    for (const HotKeyRequest& request : requests) {
        EventHotKeyRef const claimed = m_keyboard->claim(request);
        claims.push_back(claimed ? std::make_unique<Claim>(m_keyboard, claimed) : nullptr);
    }
    return claims;
}

} // namespace tessarel::macos
