// SPDX-License-Identifier: MIT
#include "ui/appkit/panel_window.h"

#import <AppKit/AppKit.h>
#include <utility>

#include "ui/appkit/panel_place.h"
#include "ui/appkit/panel_views.h"
#include "ui/appkit/status_bar_button.h"

namespace tarnwick::appkit {
namespace {

constexpr NSEventMask kPresses =
    NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown;

bool reducesMotion() {
    return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
}

/// `monitor` is nil where the system gave none.
void stopWatching(id monitor) {
    if (monitor != nil) {
        [NSEvent removeMonitor:monitor];
    }
}

NSRect rectOf(const std::optional<ScreenFrame>& frame) {
    return frame ? NSMakeRect(frame->x, frame->y, frame->width, frame->height) : NSZeroRect;
}

}  // namespace

struct PanelWindow::State {
    TNWPageView* page = nil;
    TNWPanel* panel = nil;
    MenuTab tab = MenuTab::home;
    /// The frame of the status item.
    NSRect anchor = NSZeroRect;
    PanelPlace place;
    /// True while Escape changes the page.
    bool isCancelling = false;
    id ownEvents = nil;
    id otherEvents = nil;
    NSArray<id>* notices = nil;

    void fit() {
        const CGFloat height = place.heightOf(page.fittingSize.height);
        [panel setContentSize:NSMakeSize(kPanelWidth, height)];
        [panel setFrameTopLeftPoint:NSMakePoint(place.x, place.top)];
    }

    void setPage(const Page& next) {
        [page setPage:next];
        fit();
    }

    /// Shows another page from its top. If the user navigates by keyboard, the button of `entry`
    /// gets the focus.
    void turnTo(const Page& next, std::optional<PanelAction> entry) {
        const bool isByKey =
            isCancelling || [panel.firstResponder isKindOfClass:TNWPressButton.class];
        setPage(next);
        [panel layoutIfNeeded];
        [panel.scroller scrollToTop];
        TNWPressButton* button = isByKey && entry ? [page buttonOf:*entry] : nil;
        if (button.acceptsFirstResponder) {
            [panel makeFirstResponder:button];
            [button scrollRectToVisible:button.bounds];
        }
    }

    void placeUnder(const std::optional<ScreenFrame>& item) {
        anchor = rectOf(item);
        NSScreen* screen = NSScreen.mainScreen;
        if (item) {
            for (NSScreen* each in NSScreen.screens) {
                const NSPoint middle = NSMakePoint(NSMidX(anchor), NSMinY(anchor));
                screen = NSPointInRect(middle, each.frame) ? each : screen;
            }
        }
        const NSRect visible = screen.visibleFrame;
        place = panelPlace(
            item, {visible.origin.x, visible.origin.y, visible.size.width, visible.size.height});
    }
};

PanelWindow::PanelWindow(MenuBarView& view, platform::Dispatch& dispatch)
    : view_(view), motion_(std::make_shared<Motion>(dispatch)) {
    view_.setPageObserver([this](const Page& page) { pageChanged(page); });
}

PanelWindow::~PanelWindow() {
    view_.setPageObserver(nullptr);
    close();
}

bool PanelWindow::isOpen() const {
    return state_ != nullptr;
}

void PanelWindow::pageChanged(const Page& page) {
    if (!isOpen()) {
        return;
    }
    motion_->setReduced(reducesMotion());
    if (std::exchange(state_->tab, view_.activeTab()) == view_.activeTab()) {
        state_->setPage(page);
    } else {
        state_->turnTo(page, view_.entryAction());
    }
}

void PanelWindow::open(const std::optional<ScreenFrame>& anchor) {
    if (isOpen()) {
        return;
    }
    state_ = std::make_unique<State>();
    state_->page = [[TNWPageView alloc]
        initWithEnvironment:{.press = [this](PanelAction action) { view_.perform(action); },
                             .motion = motion_,
                             .heightChanged =
                                 [this] {
                                     if (isOpen()) {
                                         state_->fit();
                                     }
                                 }}];
    state_->panel = [[TNWPanel alloc] initWithPage:state_->page];
    state_->panel.cancelled = [this] { cancel(); };
    state_->panel.closed = [this] { close(); };
    state_->placeUnder(anchor);
    motion_->setReduced(reducesMotion());
    state_->setPage(view_.appear());
    state_->tab = view_.activeTab();
    watchPresses();
    watchSession();
    [state_->panel makeKeyAndOrderFront:nil];
}

// Presses of the status item are ignored here, because the item's own action closes the panel.
void PanelWindow::watchPresses() {
    TNWPanel* panel = state_->panel;
    state_->ownEvents =
        [NSEvent addLocalMonitorForEventsMatchingMask:kPresses
                                              handler:^NSEvent*(NSEvent* event) {
                                                NSWindow* window = event.window;
                                                if (window != panel &&
                                                    statusBarButtonIn(window.contentView) == nil) {
                                                    close();
                                                }
                                                return event;
                                              }];
    const NSRect item = state_->anchor;
    state_->otherEvents =
        [NSEvent addGlobalMonitorForEventsMatchingMask:kPresses
                                               handler:^(NSEvent*) {
                                                 if (!NSPointInRect(NSEvent.mouseLocation, item)) {
                                                     close();
                                                 }
                                               }];
}

void PanelWindow::watchSession() {
    NSNotificationCenter* center = NSWorkspace.sharedWorkspace.notificationCenter;
    void (^closing)(NSNotification*) = ^(NSNotification*) {
      close();
    };
    state_->notices = @[
        // The user may change to another application without a press, for example by keyboard.
        [center addObserverForName:NSWorkspaceDidActivateApplicationNotification
                            object:nil
                             queue:nil
                        usingBlock:^(NSNotification* notification) {
                          NSRunningApplication* active =
                              notification.userInfo[NSWorkspaceApplicationKey];
                          if (![active isEqual:NSRunningApplication.currentApplication]) {
                              close();
                          }
                        }],
        // Nobody looks any more, so nothing need be measured at the pace of a visible panel.
        [center addObserverForName:NSWorkspaceScreensDidSleepNotification
                            object:nil
                             queue:nil
                        usingBlock:closing],
        [center addObserverForName:NSWorkspaceSessionDidResignActiveNotification
                            object:nil
                             queue:nil
                        usingBlock:closing],
    ];
}

void PanelWindow::cancel() {
    if (!isOpen()) {
        return;
    }
    state_->isCancelling = true;
    if (view_.cancel()) {
        state_->isCancelling = false;
    } else {
        close();
    }
}

void PanelWindow::close() {
    if (!isOpen()) {
        return;
    }
    const std::unique_ptr<State> closing = std::move(state_);
    stopWatching(closing->ownEvents);
    stopWatching(closing->otherEvents);
    for (id notice in closing->notices) {
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:notice];
    }
    [closing->panel orderOut:nil];
    view_.disappear();
    // Later, because a press inside the panel may still be running.
    TNWPanel* panel = closing->panel;
    dispatch_async(dispatch_get_main_queue(), ^{
      [panel close];
    });
}

void PanelWindow::toggle(const std::optional<ScreenFrame>& anchor) {
    if (isOpen()) {
        close();
    } else {
        open(anchor);
    }
}

}  // namespace tarnwick::appkit
