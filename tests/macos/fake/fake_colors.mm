#include "macos/fake/fake_objects.h"

#import <AppKit/AppKit.h>
#include <cstdlib>

using tessarel::fakemac::mac;

/// The user's colour, of which nothing can be told before it has been converted.
@interface TSLFakeColor : NSColor {
@public
    BOOL isConverted;
}
@end

@implementation NSColorSpace
+ (NSColorSpace*)sRGBColorSpace {
    return [[[NSColorSpace alloc] init] autorelease];
}
@end

@implementation NSColor
+ (NSColor*)controlAccentColor {
    return [[[TSLFakeColor alloc] init] autorelease];
}
- (NSColor*)colorUsingColorSpace:(NSColorSpace*)space {
    if (!space || !mac().accent)
        return nil;
    TSLFakeColor* const converted = [[[TSLFakeColor alloc] init] autorelease];
    converted->isConverted = YES;
    return converted;
}
- (CGFloat)part:(std::size_t)number {
    if (!((TSLFakeColor*)self)->isConverted)
        abort();
    return mac().accent->at(number);
}
- (CGFloat)redComponent {
    return [self part:0];
}
- (CGFloat)greenComponent {
    return [self part:1];
}
- (CGFloat)blueComponent {
    return [self part:2];
}
@end

@implementation TSLFakeColor
@end
