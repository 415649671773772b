// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>
#include <utility>

#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {
namespace {

/// The clock that timers follow. Foundation gives and takes fire dates in the wall clock, so they
/// are converted.
double uptime() {
    return NSProcessInfo.processInfo.systemUptime;
}

class RunLoopTimer final : public Timer {
 public:
    explicit RunLoopTimer(NSTimer* timer) : timer_(timer) {}
    RunLoopTimer(const RunLoopTimer&) = delete;
    RunLoopTimer& operator=(const RunLoopTimer&) = delete;
    ~RunLoopTimer() override { [timer_ invalidate]; }

    double fireTime() const override { return uptime() + timer_.fireDate.timeIntervalSinceNow; }
    void setFireTime(double seconds) override {
        timer_.fireDate = [NSDate dateWithTimeIntervalSinceNow:seconds - uptime()];
    }
    double tolerance() const override { return timer_.tolerance; }
    void setTolerance(double seconds) override { timer_.tolerance = seconds; }
    void invalidate() override { [timer_ invalidate]; }

 private:
    NSTimer* const timer_;
};

}  // namespace

double MacDispatch::now() const {
    return uptime();
}

void MacDispatch::async(std::function<void()> work) {
    dispatch_async(dispatch_get_main_queue(), ^{
      work();
    });
}

void MacDispatch::asyncAfter(double seconds, std::function<void()> work) {
    const auto delay = static_cast<std::int64_t>(seconds * NSEC_PER_SEC);
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, delay), dispatch_get_main_queue(), ^{
      work();
    });
}

bool MacDispatch::detached(std::function<void()> work) {
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
      @autoreleasepool {
          work();
      }
    });
    return true;
}

std::unique_ptr<Timer> MacDispatch::scheduleRepeating(double interval,
                                                      std::function<void()> handler) {
    NSTimer* timer = [NSTimer scheduledTimerWithTimeInterval:interval
                                                     repeats:YES
                                                       block:^(NSTimer*) {
                                                         // Calls a copy: the handler may invalidate
                                                         // its timer.
                                                         const auto fired = handler;
                                                         fired();
                                                       }];
    return std::make_unique<RunLoopTimer>(timer);
}

}  // namespace tarnwick::platform
