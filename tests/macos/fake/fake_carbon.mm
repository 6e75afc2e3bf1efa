// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"
#include "model/carbon_mods.h"

#import <Carbon/Carbon.h>
#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

// Carbon's hot keys. A combination is refused only if this process has registered it already; other processes
// may register it as well.

using namespace tessarel;
using namespace tessarel::fakemac;

struct OpaqueEventTargetRef {};
struct OpaqueEventRef {
    EventHotKeyID hotKey;
};
struct OpaqueEventHandlerRef {
    EventHandlerUPP function;
    void* userData;
};
struct OpaqueEventHotKeyRef {
    UInt32 keyCode;
    UInt32 modifiers;
    EventHotKeyID hotKey;
};

namespace {

constexpr OSStatus kParameterError = -50;

OpaqueEventTargetRef applicationTarget;
std::vector<std::unique_ptr<OpaqueEventHandlerRef>> handlers;
std::vector<std::unique_ptr<OpaqueEventHotKeyRef>> hotKeys;
std::set<std::pair<std::uint32_t, std::uint32_t>> claimsOfOthers;

/// Removes the entry; returns `missing` when it is not in the list.
template <class Entry>
OSStatus take(std::vector<std::unique_ptr<Entry>>& entries, Entry* entry, OSStatus missing) {
    const auto removed = std::erase_if(entries, [&](const auto& one) { return one.get() == entry; });
    return removed == 1 ? noErr : missing;
}

const OpaqueEventHotKeyRef* claimOf(std::uint32_t keyCode, std::uint32_t mods) {
    for (const auto& hotKey : hotKeys) {
        if (hotKey->keyCode == keyCode && hotKey->modifiers == mods)
            return hotKey.get();
    }
    return nullptr;
}

} // namespace

EventTargetRef GetApplicationEventTarget() {
    checkThread();
    return &applicationTarget;
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                             const EventTypeSpec* types, void* userData, EventHandlerRef* result) {
    checkThread();
    if (target != &applicationTarget || typeCount != 1 || types[0].eventClass != 0x6B657962 ||
        types[0].eventKind != 5)
        return kParameterError;
    handlers.push_back(std::make_unique<OpaqueEventHandlerRef>(OpaqueEventHandlerRef{handler, userData}));
    *result = handlers.back().get();
    return noErr;
}

OSStatus RemoveEventHandler(EventHandlerRef handler) {
    checkThread();
    return take(handlers, handler, kParameterError);
}

OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID hotKey, EventTargetRef target,
                             OptionBits options, EventHotKeyRef* result) {
    checkThread();
    if (target != &applicationTarget || options != 0)
        return kParameterError;
    if (claimOf(keyCode, modifiers))
        return eventHotKeyExistsErr;
    hotKeys.push_back(
        std::make_unique<OpaqueEventHotKeyRef>(OpaqueEventHotKeyRef{keyCode, modifiers, hotKey}));
    *result = hotKeys.back().get();
    return noErr;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey) {
    checkThread();
    return take(hotKeys, hotKey, eventHotKeyInvalidErr);
}

OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType type, EventParamType*,
                           ByteCount size, ByteCount*, void* result) {
    checkThread();
    if (name != 0x2D2D2D2D || type != 0x686B6964 || size != sizeof(EventHotKeyID))
        return kParameterError;
    *static_cast<EventHotKeyID*>(result) = event->hotKey;
    return noErr;
}

namespace tessarel::fakemac {

namespace {

/// Calls the handlers, the one installed last first, until one does not return `eventNotHandledErr`.
void dispatch(OpaqueEventRef& event) {
    checkThread();
    std::vector<OpaqueEventHandlerRef*> chain;
    for (const auto& handler : handlers)
        chain.insert(chain.begin(), handler.get());
    for (OpaqueEventHandlerRef* const handler : chain) {
        // A handler may have been removed by one called earlier.
        const bool isThere =
            std::ranges::any_of(handlers, [&](const auto& one) { return one.get() == handler; });
        if (isThere && handler->function(nullptr, &event, handler->userData) != eventNotHandledErr)
            return;
    }
}

OSStatus receiveForLibrary(EventHandlerCallRef, EventRef event, void*) {
    mac().libraryHotKeys.push_back(event->hotKey.id);
    return noErr;
}

} // namespace

void installLibraryHandler() {
    handlers.push_back(
        std::make_unique<OpaqueEventHandlerRef>(OpaqueEventHandlerRef{receiveForLibrary, nullptr}));
    std::rotate(handlers.begin(), std::prev(handlers.end()), handlers.end()); // called after ours
}

void pressLibraryHotKey(std::uint32_t signature, std::uint32_t id) {
    OpaqueEventRef event{{signature, id}};
    dispatch(event);
}

bool pressHotKey(std::uint32_t keyCode, std::uint32_t mods) {
    const bool isOthers = claimsOfOthers.contains({keyCode, mods});
    if (isOthers)
        ++mac().pressesForOthers;
    const OpaqueEventHotKeyRef* const claim = claimOf(keyCode, mods);
    if (!claim)
        return isOthers;
    OpaqueEventRef event{claim->hotKey};
    dispatch(event);
    return true;
}

void claimForAnotherProgram(std::uint32_t keyCode, std::uint32_t mods) {
    claimsOfOthers.insert({keyCode, mods});
}

std::vector<std::string> claims() {
    std::vector<std::string> lines;
    for (const auto& claim : hotKeys)
        lines.push_back(std::to_string(claim->keyCode) + ' ' + std::to_string(claim->modifiers) + ' ' +
                        std::to_string(claim->hotKey.signature) + ' ' + std::to_string(claim->hotKey.id));
    return lines;
}

void describeHotKeys(std::vector<std::string>& lines) {
    const auto left =
        std::ranges::count_if(handlers, [](const auto& one) { return one->function != receiveForLibrary; });
    if (left != 0)
        lines.push_back(std::to_string(left) + " event handlers");
    for (const std::string& claim : claims())
        lines.push_back("hot key " + claim);
}

void resetHotKeys() {
    handlers.clear();
    hotKeys.clear();
    claimsOfOthers.clear();
}

} // namespace tessarel::fakemac
