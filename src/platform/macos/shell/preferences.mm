// SPDX-License-Identifier: MIT

#include "platform/macos/shell/preferences.h"

#include "model/call_on_end.h"
#include "platform/macos/objects/conversions.h"

namespace tessarel::macos {

namespace {

/// Stores `bytes` as data. Returns false when `key` is not valid UTF-8.
bool store(std::string_view key, std::string_view bytes) {
    const auto name = nsString(key);
    if (name)
        [[NSUserDefaults standardUserDefaults] setObject:[NSData dataWithBytes:bytes.data()
                                                                        length:bytes.size()]
                                                  forKey:name.get()];
    return static_cast<bool>(name);
}

} // namespace

std::optional<std::string> MacPreferences::data(std::string_view key) {
    @autoreleasepool {
        const auto name = nsString(key);
        NSData* const stored = name ? [[NSUserDefaults standardUserDefaults] dataForKey:name.get()] : nil;
        if (!stored)
            return {};
        return std::string(static_cast<const char*>([stored bytes]), [stored length]);
    }
}

bool MacPreferences::setData(std::string_view key, std::string_view bytes) {
    @autoreleasepool {
        const auto rejected = m_rejected.find(key);
        if (rejected != m_rejected.end()) {
            if (const auto before = data(key))
                store(*rejected + ".rejected", *before);
            m_rejected.erase(rejected);
        }
        return store(key, bytes);
    }
}

void MacPreferences::keepRejected(std::string_view key) {
    if (data(key))
        m_rejected.emplace(key);
}

SubscriptionPtr MacPreferences::lock(std::string_view /*key*/) {
    return callOnEnd([] {});
}

SubscriptionPtr MacPreferences::watch(std::string_view /*key*/, std::function<void()> /*changed*/) {
    return nullptr;
}

} // namespace tessarel::macos
