// SPDX-License-Identifier: MIT

#include "platform/macos/shell/command_channel.h"

#include "model/config.h"
#include "platform/macos/objects/conversions.h"
#include "platform/macos/objects/notification_observer.h"

#import <AppKit/AppKit.h>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace tessarel::macos {

namespace {

constexpr std::size_t kLongestToken = 256;

NSString* const kWordsKey = @"words";
NSString* const kTokenKey = @"token";
NSString* const kExitCodeKey = @"exitCode";
NSString* const kTextKey = @"text";

NSDistributedNotificationCenter* center() {
    return [NSDistributedNotificationCenter defaultCenter];
}

ObjcRef<NSString*> requestName() {
    return nsString(std::string(Config::bundleID) + ".command");
}

ObjcRef<NSString*> answerName() {
    return nsString(std::string(Config::bundleID) + ".answer");
}

/// Posts a notification also to applications that are not active, as ours nearly always is.
void post(const ObjcRef<NSString*>& name, NSDictionary* contents) {
    [center() postNotificationName:name.get() object:nil userInfo:contents deliverImmediately:YES];
}

/// Returns the words of a request; no words if they are too long or not all texts.
std::vector<std::string> wordsIn(NSDictionary* request) {
    std::vector<std::string> words;
    std::size_t bytes = 0;
    for (id word in as<NSArray>([request objectForKey:kWordsKey])) {
        words.push_back(stringFrom(as<NSString>(word)));
        bytes += words.back().size() + 1;
        if (bytes > kLongestCommand || !as<NSString>(word))
            return {};
    }
    return words;
}

ObjcRef<NSArray*> arrayOf(const std::vector<std::string>& words) {
    std::vector<ObjcRef<NSString*>> owners;
    std::vector<id> objects;
    for (const std::string& word : words) {
        owners.push_back(shownText(word));
        objects.push_back(owners.back().get());
    }
    return ObjcRef<NSArray*>::share([NSArray arrayWithObjects:objects.data() count:objects.size()]);
}

void handle(NSDictionary* request, const std::function<CommandAnswer(const std::vector<std::string>&)>& run) {
    NSString* const token = as<NSString>([request objectForKey:kTokenKey]);
    if (!token || stringFrom(token).size() > kLongestToken)
        return;
    const CommandAnswer answer = run(wordsIn(request));
    const auto text = nsString(answer.text);
    post(answerName(), @{
        kTokenKey : token,
        kExitCodeKey : [NSNumber numberWithDouble:answer.exitCode],
        kTextKey : text ? text.get() : @""
    });
}

/// Returns the answer to the request with this token; `std::nullopt` if the notification is something else.
std::optional<CommandAnswer> answerTo(NSString* token, NSDictionary* contents) {
    NSNumber* const exitCode = as<NSNumber>([contents objectForKey:kExitCodeKey]);
    NSString* const text = as<NSString>([contents objectForKey:kTextKey]);
    if (![token isEqual:[contents objectForKey:kTokenKey]] || !exitCode || !text)
        return std::nullopt;
    return CommandAnswer{static_cast<std::uint8_t>([exitCode longLongValue]), stringFrom(text)};
}

/// Returns whether a copy runs, by its bundle identifier: this process may have been started by a link from
/// outside the bundle. A process that only sends a command is not an application to the system.
bool anotherCopyRuns() {
    const auto identifier = nsString(Config::bundleID);
    const pid_t own = [[NSProcessInfo processInfo] processIdentifier];
    for (NSRunningApplication* copy in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier.get()]) {
        if ([copy processIdentifier] != own)
            return true;
    }
    return false;
}

/// Runs the event loop of this process until `isDone` returns true, at most for `kCommandPatience`.
template <class Condition>
void runLoopUntil(Condition isDone) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + kCommandPatience;
    while (!isDone()) {
        const std::chrono::duration<double> left = end - Clock::now();
        // Anything but a handled source means that the time is over, or that nothing can arrive.
        if (left.count() <= 0 ||
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, left.count(), true) != kCFRunLoopRunHandledSource)
            return;
    }
}

} // namespace

MacCommandChannel::MacCommandChannel(
    std::function<CommandAnswer(const std::vector<std::string>& words)> run) {
    @autoreleasepool {
        m_requests = std::make_unique<NotificationObserver>(
            center(), requestName().get(),
            [run = std::move(run)](NSNotification* request) { handle([request userInfo], run); });
    }
}

SentCommand sendCommand(const std::vector<std::string>& words) {
    @autoreleasepool {
        if (!anotherCopyRuns())
            return {SentCommand::Outcome::NoReceiver};
        NSString* const token = [[NSProcessInfo processInfo] globallyUniqueString];
        std::optional<CommandAnswer> answer;
        const NotificationObserver answers(center(), answerName().get(),
                                           [&answer, token](NSNotification* arrived) {
                                               if (!answer)
                                                   answer = answerTo(token, [arrived userInfo]);
                                           });
        post(requestName(), @{kTokenKey : token, kWordsKey : arrayOf(words).get()});
        runLoopUntil([&answer] { return answer.has_value(); });
        if (!answer)
            return {SentCommand::Outcome::NoAnswer};
        return {SentCommand::Outcome::Answered, *std::move(answer)};
    }
}

} // namespace tessarel::macos
