// SPDX-License-Identifier: MIT
// The item in the menu bar.
#pragma once

#include <memory>
#include <optional>

#include "platform/desktop.h"
#include "ui/appkit/screen_frame.h"

namespace tarnwick::appkit {

/// Main thread.
class MacStatusItem final : public platform::StatusItem {
 public:
    MacStatusItem();
    MacStatusItem(const MacStatusItem&) = delete;
    MacStatusItem& operator=(const MacStatusItem&) = delete;
    ~MacStatusItem() override;

    void setContent(const platform::StatusItemContent& content) override;
    /// A click by the user runs `click`; a click by the program runs `toggle`. The item has no
    /// menu.
    void setActions(platform::StatusItemActions actions) override;
    bool inTray() const override;
    bool performClick() override;

    /// The frame of the item's button on the screen; absent while it is not in a window.
    std::optional<ScreenFrame> frame() const;

 private:
    struct State;

    std::unique_ptr<State> state_;
};

}  // namespace tarnwick::appkit
