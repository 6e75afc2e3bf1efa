#include "macos/fake/fake_objects.h"

#import <Foundation/Foundation.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <utility>

// The run loop of this program: what is delivered only by an iteration, what must not happen between a menu's
// close and the next iteration, and the notification centres.

using namespace tessarel;
using namespace tessarel::fakemac;

namespace {

bool menuIsFading = false;
std::vector<std::string> faults;

/// Distributed notifications that wait for the next iteration. Another thread adds them, as in the system.
struct Inbox {
    std::mutex mutex;
    std::vector<std::string> names;
} inbox;

std::vector<id> listeners; // registered observers; one entry for each registration

/// Returns whether the observer belongs to the back end and not to GNUstep.
bool isOfBackEnd(id observer) {
    return [NSStringFromClass([observer class]) hasPrefix:@"TSL"];
}

} // namespace

/// A notification centre that counts the back end's observers.
@interface TSLFakeCenter : NSNotificationCenter
@end
@implementation TSLFakeCenter
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(id)object {
    if (isOfBackEnd(observer)) {
        checkThread();
        listeners.push_back(observer);
    }
    [super addObserver:observer selector:selector name:name object:object];
}
- (void)removeObserver:(id)observer {
    checkThread();
    std::erase(listeners, observer);
    [super removeObserver:observer];
}
@end

/// The distributed notification centre. All copies of the program are in this process.
@interface TSLFakeDistributedCenter : TSLFakeCenter
@end
@implementation TSLFakeDistributedCenter
- (void)postNotificationName:(NSString*)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)immediately {
    checkThread();
    (void)object;
    (void)userInfo;
    if (!immediately) // not delivered to an inactive application
        return;
    std::thread([text = std::string([name UTF8String])] {
        const std::scoped_lock lock(inbox.mutex);
        inbox.names.push_back(text);
    }).join();
}
@end

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@interface NSNotificationCenter (TSLFake)
@end
@implementation NSNotificationCenter (TSLFake)
+ (NSNotificationCenter*)defaultCenter {
    static TSLFakeCenter* const center = [[TSLFakeCenter alloc] init];
    return center;
}
@end

@interface NSDistributedNotificationCenter (TSLFake)
@end
@implementation NSDistributedNotificationCenter (TSLFake)
+ (id)defaultCenter {
    checkThread();
    static TSLFakeDistributedCenter* const center = [[TSLFakeDistributedCenter alloc] init];
    return center;
}
@end

#pragma clang diagnostic pop

namespace tessarel::fakemac {

void checkThread() {
    if (gettid() == getpid())
        return;
    std::fputs("a framework is called off the main thread\n", stderr);
    std::abort();
}

NSNotificationCenter* newCenter() {
    return [[TSLFakeCenter alloc] init];
}

void turn() {
    menuIsFading = false;
    std::vector<std::string> names;
    {
        const std::scoped_lock lock(inbox.mutex);
        names = std::exchange(inbox.names, {});
    }
    @autoreleasepool {
        for (const std::string& name : names)
            [[NSDistributedNotificationCenter defaultCenter] postNotificationName:autoreleased(name)
                                                                           object:nil];
    }
}

void letMenuFade() {
    menuIsFading = true;
}

void checkMenusAreGone(const char* what) {
    if (menuIsFading || mac().loopMode == LoopMode::EventTracking)
        faults.push_back(std::string("the program ") + what + " before a menu has gone");
}

void noteFault(const std::string& fault) {
    faults.push_back(fault);
}

void describeLoop(std::vector<std::string>& lines) {
    lines.insert(lines.end(), faults.begin(), faults.end());
    if (!listeners.empty())
        lines.push_back(std::to_string(listeners.size()) + " observers of notifications");
}

void resetLoop() {
    menuIsFading = false;
    faults.clear();
    inbox.names.clear();
}

} // namespace tessarel::fakemac
