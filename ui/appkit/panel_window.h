// Opens and closes the panel.
#pragma once

#include <memory>
#include <optional>

#include "ui/appkit/screen_frame.h"
#include "ui/panel/menu_bar_view.h"

namespace tarnwick::appkit {

/// A borderless floating panel under the status item. It closes on a press elsewhere and on Escape.
/// Its views are made when it opens and let go when it closes; in between the view knows that it is
/// visible. Main thread.
class PanelWindow {
 public:
    /// `view` outlives the window.
    explicit PanelWindow(MenuBarView& view);
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;
    ~PanelWindow();

    bool isOpen() const;
    /// Opens under `anchor`, the status item's place, or in the corner where that is not known.
    void open(const std::optional<ScreenFrame>& anchor);
    void close();
    void toggle(const std::optional<ScreenFrame>& anchor);

 private:
    struct State;

    MenuBarView& view_;
    std::unique_ptr<State> state_;
};

}  // namespace tarnwick::appkit
