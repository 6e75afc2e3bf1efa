#pragma once

#include "model/subscription.h"

#import <AppKit/AppKit.h>
#include <functional>

// For Objective-C++ sources only.

namespace tessarel::macos {

/// Calls `handler` with every event whose type is in `mask` and that goes to another program, until the
/// returned subscription is destroyed; `handler` may do that itself. Null when the system refuses.
[[nodiscard]] SubscriptionPtr monitorOthersEvents(NSEventMask mask, std::function<void(NSEvent*)> handler);

/// Calls `consumes` with every event whose type is in `mask` and that goes to this program. An event for
/// which it returns true, or throws, goes no further. Otherwise like `monitorOthersEvents`.
[[nodiscard]] SubscriptionPtr monitorOwnEvents(NSEventMask mask, std::function<bool(NSEvent*)> consumes);

} // namespace tessarel::macos
