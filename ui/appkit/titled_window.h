// SPDX-License-Identifier: MIT
// Windows with a title bar.
#pragma once

#include <memory>

#include "platform/windows.h"

namespace tarnwick::appkit {

/// Main thread.
class TitledWindows final : public platform::Windows {
 public:
    std::unique_ptr<platform::Window> makeWindow(const platform::WindowOptions& options) override;
    void activateIgnoringOtherApps() override;
};

}  // namespace tarnwick::appkit
