// SPDX-License-Identifier: MIT
// The panel over a recorded machine: the real sources, the real manager, a turned clock.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "ui/panel/menu_bar_view.h"
#include "ui/panel/page.h"

namespace tarnwick::testing {

/// Works on a private copy of the machine. The panel is on screen from the start.
class RecordedPanel {
 public:
    explicit RecordedPanel(std::string_view machine);
    ~RecordedPanel();

    /// Runs one refresh. Before it every processor was busy for the share `busy` of the time, and
    /// each process of `shares`, by identifier, used that share of all processors. Shares are from
    /// 0 to 1.
    void work(double busy, const std::map<int, double>& shares);

    /// From now on hardly any memory and little of the disk is left.
    void fill();

    /// Runs one refresh of everything, over the files as they are.
    void refresh();
    // The panel goes off the screen, and comes back.
    void close();
    void open();
    /// The folder of the copy, whose files a test may change.
    const std::string& root() const;

    /// Turns to another page, as the panel's buttons do.
    void show(MenuTab tab);
    Page page() const;

 private:
    struct Machine;
    std::unique_ptr<Machine> machine_;
};

}  // namespace tarnwick::testing
