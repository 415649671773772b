// SPDX-License-Identifier: MIT
// A native view as the content of a window. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "platform/windows.h"

namespace tarnwick::appkit {

/// Every view that a TitledWindow is given is one of these. Main thread.
class ViewHolder : public platform::View {
 public:
    explicit ViewHolder(NSViewController* controller) : controller_(controller) {}

    NSViewController* controller() const { return controller_; }

 private:
    NSViewController* const controller_;
};

}  // namespace tarnwick::appkit
