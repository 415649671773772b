// SPDX-License-Identifier: MIT
#include "platform/macos/mac_workspace.h"

#import <AppKit/AppKit.h>

namespace tarnwick::platform {

void openActivityMonitor() {
    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
    NSURL* url = [workspace URLForApplicationWithBundleIdentifier:@"com.apple.ActivityMonitor"];
    if (url != nil) {
        [workspace openURL:url];
    }
}

struct WakeNotification::Observer {
    id token;
};

WakeNotification::WakeNotification(std::function<void()> didWake)
    : observer_(std::make_unique<Observer>()) {
    observer_->token = [NSWorkspace.sharedWorkspace.notificationCenter
        addObserverForName:NSWorkspaceDidWakeNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification*) {
                  didWake();
                }];
}

WakeNotification::~WakeNotification() {
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer_->token];
}

}  // namespace tarnwick::platform
