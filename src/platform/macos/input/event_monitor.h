// SPDX-License-Identifier: MIT

#pragma once

#include "model/subscription.h"

#import <AppKit/AppKit.h>
#include <functional>

// For Objective-C++ sources only.

namespace tessarel::macos {

/// Calls `handler` on the main thread with every event whose type is in `mask` and that is sent to another
/// application, until the returned subscription is destroyed; `handler` may destroy it. Returns null when the
/// system refuses.
[[nodiscard]] SubscriptionPtr monitorOthersEvents(NSEventMask mask, std::function<void(NSEvent*)> handler);

/// Calls `consumes` with every event whose type is in `mask` and that is sent to this application, before any
/// window receives it. The event is dropped when `consumes` returns true or throws. Otherwise like
/// `monitorOthersEvents`.
[[nodiscard]] SubscriptionPtr monitorOwnEvents(NSEventMask mask, std::function<bool(NSEvent*)> consumes);

} // namespace tessarel::macos
