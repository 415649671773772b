// SPDX-License-Identifier: MIT
// Opens and closes the panel.
#pragma once

#include <memory>
#include <optional>

#include "platform/dispatch.h"
#include "ui/appkit/screen_frame.h"
#include "ui/panel/menu_bar_view.h"
#include "ui/panel/motion.h"

namespace tarnwick::appkit {

/// A borderless floating panel under the status item. It closes on a press elsewhere, on Command-W,
/// when another application comes to the front, when the screens sleep and when another user takes
/// over. Escape leads back from a
/// detail page, and closes the panel on the home page.
///
/// Makes its views when it opens and frees them when it closes. Between the two the view knows that
/// it is visible. Main thread.
class PanelWindow {
 public:
    /// Both must outlive the window.
    PanelWindow(MenuBarView& view, platform::Dispatch& dispatch);
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;
    ~PanelWindow();

    bool isOpen() const;
    /// Opens under `anchor`, the status item's frame, or in the corner if it is unknown.
    void open(const std::optional<ScreenFrame>& anchor);
    void close();
    void toggle(const std::optional<ScreenFrame>& anchor);

 private:
    struct State;

    void pageChanged(const Page& page);
    void watchPresses();
    void watchSession();
    void cancel();

    MenuBarView& view_;
    std::shared_ptr<Motion> motion_;
    std::unique_ptr<State> state_;
};

}  // namespace tarnwick::appkit
