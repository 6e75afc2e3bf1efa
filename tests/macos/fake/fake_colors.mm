// SPDX-License-Identifier: MIT

#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#include <cstdlib>

using tessarel::fakemac::mac;

/// The accent colour. Reading its components before the conversion aborts, where the system raises an
/// exception.
@interface TSLFakeColor : NSColor {
@public
    BOOL isConverted;
}
@end

@implementation NSColorSpace
+ (NSColorSpace*)sRGBColorSpace {
    tessarel::fakemac::checkThread();
    return [[[NSColorSpace alloc] init] autorelease];
}
@end

@implementation NSColor
+ (NSColor*)controlAccentColor {
    tessarel::fakemac::checkThread();
    return [[[TSLFakeColor alloc] init] autorelease];
}
- (NSColor*)colorUsingColorSpace:(NSColorSpace*)space {
    tessarel::fakemac::checkThread();
    if (!space || !mac().accent)
        return nil;
    TSLFakeColor* const converted = [[[TSLFakeColor alloc] init] autorelease];
    converted->isConverted = YES;
    return converted;
}
- (CGFloat)part:(std::size_t)number {
    tessarel::fakemac::checkThread();
    if (!((TSLFakeColor*)self)->isConverted)
        abort();
    return mac().accent->at(number);
}
- (CGFloat)redComponent {
    tessarel::fakemac::checkThread();
    return [self part:0];
}
- (CGFloat)greenComponent {
    tessarel::fakemac::checkThread();
    return [self part:1];
}
- (CGFloat)blueComponent {
    tessarel::fakemac::checkThread();
    return [self part:2];
}
@end

@implementation TSLFakeColor
@end
