// A native view as what a window shows. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "platform/windows.h"

namespace tarnwick::appkit {

/// Every view that a TitledWindow is given is one of these. Main thread.
class ViewHolder : public platform::View {
 public:
    explicit ViewHolder(NSView* view) : view_(view) {}

    NSView* view() const { return view_; }

 private:
    NSView* const view_;
};

}  // namespace tarnwick::appkit
