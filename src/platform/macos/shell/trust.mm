// SPDX-License-Identifier: MIT

#include "platform/macos/shell/trust.h"

#include <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

namespace tessarel::macos {

bool MacTrust::isTrusted() {
    @autoreleasepool {
        return AXIsProcessTrusted() != 0;
    }
}

void MacTrust::prompt() {
    @autoreleasepool {
        NSDictionary* const options =
            @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : [NSNumber numberWithBool:YES]};
        AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
    }
}

void MacTrust::openSettings() {
    m_openUrl.open("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
}

} // namespace tessarel::macos
