// SPDX-License-Identifier: MIT

#include "platform/macos/shell/services.h"

#include "platform/macos/objects/conversions.h"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

namespace tessarel::macos {

void MacAlertSound::beep() {
    @autoreleasepool {
        NSBeep();
    }
}

bool MacOpenUrl::open(const std::string& url) {
    @autoreleasepool {
        const auto text = nsString(url);
        NSURL* const address = text ? [NSURL URLWithString:text.get()] : nil;
        return [address scheme] && [[NSWorkspace sharedWorkspace] openURL:address];
    }
}

LoginItemPort::Status MacLoginItem::status() {
    @autoreleasepool {
        switch ([[SMAppService mainAppService] status]) {
        case SMAppServiceStatusEnabled:
            return Status::Enabled;
        case SMAppServiceStatusRequiresApproval:
            return Status::RequiresApproval;
        case SMAppServiceStatusNotFound:
            return Status::NotFound;
        default:
            return Status::NotRegistered;
        }
    }
}

std::optional<std::string> MacLoginItem::registerItem() {
    @autoreleasepool {
        NSError* error = nil;
        if ([[SMAppService mainAppService] registerAndReturnError:&error])
            return {};
        return stringFrom([error localizedDescription]);
    }
}

std::optional<std::string> MacLoginItem::unregisterItem() {
    @autoreleasepool {
        const Status before = status();
        if (before == Status::NotRegistered || before == Status::NotFound)
            return {};
        NSError* error = nil;
        if ([[SMAppService mainAppService] unregisterAndReturnError:&error])
            return {};
        return stringFrom([error localizedDescription]);
    }
}

} // namespace tessarel::macos
