// SPDX-License-Identifier: MIT

#include "platform/macos/shell/open_panel.h"

#include "platform/macos/objects/conversions.h"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

namespace tessarel::macos {

std::optional<std::string> MacOpenPanel::chooseApplication(const std::string& prompt) {
    @autoreleasepool {
        NSOpenPanel* const panel = [NSOpenPanel openPanel];
        [panel setAllowedContentTypes:@[ UTTypeApplicationBundle ]];
        [panel setDirectoryURL:[NSURL fileURLWithPath:@"/Applications"]];
        [panel setCanChooseDirectories:NO]; // to the panel, a bundle is a file
        [panel setAllowsMultipleSelection:NO];
        [panel setPrompt:shownText(prompt).get()];
        NSURL* const chosen = [panel runModal] == NSModalResponseOK ? [[panel URLs] firstObject] : nil;
        return chosen ? optionalStringFrom([[NSBundle bundleWithURL:chosen] bundleIdentifier]) : std::nullopt;
    }
}

} // namespace tessarel::macos
