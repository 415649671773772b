// SPDX-License-Identifier: MIT
// The panel's root: which page is shown, what is on it, and what a press does.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "core/records/published.h"
#include "core/stats_manager.h"
#include "platform/byte_count_formatter.h"
#include "platform/dispatch.h"
#include "platform/next_turn.h"
#include "ui/panel/blocks.h"
#include "ui/panel/home_page.h"
#include "ui/panel/memory_detail_page.h"
#include "ui/panel/page.h"
#include "ui/panel/performance_detail_page.h"

namespace tarnwick {

/// The raw values are 0, 1 and 2.
enum class MenuTab {
    home = 0,
    memoryDetail = 1,
    performanceDetail = 2,
};

/// Functions outside the panel. If one is missing, its button is disabled.
struct PanelTargets {
    std::function<void()> showSettings{};
    std::function<void()> openActivityMonitor{};
    std::function<void()> quit{};
    /// Puts a text onto the clipboard. UTF-8.
    std::function<void(const std::string& text)> copyText{};
};

/// What a view runs on. All of it must outlive the view.
struct MenuBarViewEnvironment {
    platform::Dispatch& dispatch;
    const platform::ByteCountFormatter& byteCountFormatter;

    static MenuBarViewEnvironment shared();
};

/// Everything on the page comes from the manager's fields when it is built; the view keeps no
/// figures of its own. Main thread only.
class MenuBarView {
 public:
    /// `statsManager` must outlive the view.
    MenuBarView(StatsManager& statsManager, PanelTargets targets,
                MenuBarViewEnvironment environment = MenuBarViewEnvironment::shared());
    MenuBarView(const MenuBarView&) = delete;
    MenuBarView& operator=(const MenuBarView&) = delete;

    StatsManager& statsManager() const { return statsManager_; }
    MenuTab activeTab() const { return activeTab_; }

    /// The panel appears: tells the manager, and follows the manager's fields and the settings from
    /// now on. Returns the first page to show.
    const Page& appear();
    /// The panel has disappeared: tells the manager, and does no work until the panel appears
    /// again. It will then appear with the home page.
    void disappear();
    bool isVisible() const { return isVisible_; }

    /// The page to show now.
    Page page() const;
    /// While visible, calls `observer` with the page when it differs from the last one. After a
    /// change of the figures the call comes on a later turn of the main queue, once for any number
    /// of changed fields. After a press that leads to another page it comes at once.
    void setPageObserver(std::function<void(const Page&)> observer);

    bool canPerform(PanelAction action) const;
    /// Does nothing for an action that cannot be performed.
    void perform(PanelAction action);
    /// What Escape does: leads back from a detail page and returns true. On the home page does
    /// nothing and returns false; there Escape closes the panel.
    bool cancel();
    /// The button at which keyboard navigation goes on after a change of page: on a detail page the
    /// button that leads back; on the home page the button that led away last, absent if there was
    /// none.
    std::optional<PanelAction> entryAction() const;

 private:
    void rebuild();
    void show(MenuTab tab);
    std::set<PanelAction> enabledActions() const;
    HomePageInputs homePageInputs() const;
    MemoryDetailInputs memoryDetailInputs() const;
    PerformanceDetailInputs performanceDetailInputs() const;

    StatsManager& statsManager_;
    PanelTargets targets_;
    MenuBarViewEnvironment environment_;
    MenuTab activeTab_ = MenuTab::home;
    /// The detail page shown last; home before there was one.
    MenuTab lastDetail_ = MenuTab::home;
    bool isVisible_ = false;
    /// The page announced last; empty while not visible.
    Page lastPage_;
    std::function<void(const Page&)> observer_;
    platform::NextTurn nextRebuild_{environment_.dispatch, [this] { rebuild(); }};
    Subscription statsSubscription_;
    Subscription settingsSubscription_;
};

}  // namespace tarnwick
