// SPDX-License-Identifier: MIT

#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

SDK_SINCE(11.0)
@interface UTType : NSObject
@end

SDK_EXTERN UTType* const UTTypeApplicationBundle SDK_SINCE(11.0);
