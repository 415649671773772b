#include "ui/appkit/panel_window.h"

#import <AppKit/AppKit.h>
#include <algorithm>

#include "ui/appkit/page_view.h"
#include "ui/appkit/status_bar_button.h"

/// Takes the keyboard although it has no title bar.
@interface TNWPanel : NSPanel
@property(nonatomic) std::function<void()> cancelled;
@end

@implementation TNWPanel

- (BOOL)canBecomeKeyWindow {
    return YES;
}

- (void)cancelOperation:(id)sender {
    (void)sender;
    const std::function<void()> cancelled = self.cancelled;
    if (cancelled) {
        cancelled();
    }
}

@end

namespace tarnwick::appkit {
namespace {

constexpr CGFloat kCorner = 12;
/// Between the panel and the item, and the edges of the screen.
constexpr CGFloat kMargin = 4;
constexpr NSEventMask kPresses =
    NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown;

TNWPanel* makePanel(TNWPageView* page) {
    TNWPanel* panel = [[TNWPanel alloc]
        initWithContentRect:NSZeroRect
                  styleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel
                    backing:NSBackingStoreBuffered
                      defer:NO];
    panel.releasedWhenClosed = NO;
    panel.autorecalculatesKeyViewLoop = YES;
    panel.floatingPanel = YES;
    panel.level = NSPopUpMenuWindowLevel;
    panel.hidesOnDeactivate = NO;
    panel.opaque = NO;
    panel.backgroundColor = NSColor.clearColor;
    panel.hasShadow = YES;
    panel.collectionBehavior =
        NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
    panel.accessibilityLabel = @"Tarnwick";

    NSVisualEffectView* ground = [[NSVisualEffectView alloc] initWithFrame:NSZeroRect];
    ground.material = NSVisualEffectMaterialPopover;
    ground.state = NSVisualEffectStateActive;
    ground.wantsLayer = YES;
    ground.layer.cornerRadius = kCorner;
    ground.layer.masksToBounds = YES;
    page.translatesAutoresizingMaskIntoConstraints = NO;
    [ground addSubview:page];
    [page.topAnchor constraintEqualToAnchor:ground.topAnchor].active = YES;
    [page.leadingAnchor constraintEqualToAnchor:ground.leadingAnchor].active = YES;
    panel.contentView = ground;
    return panel;
}

}  // namespace

struct PanelWindow::State {
    TNWPageView* page;
    TNWPanel* panel;
    /// The panel's upper edge stays where it is, whatever the page.
    NSPoint topLeft;
    id ownEvents = nil;
    id otherEvents = nil;

    void setPage(const Page& next) {
        [page setPage:next];
        [panel setContentSize:page.fittingSize];
        [panel setFrameTopLeftPoint:topLeft];
    }

    void placeUnder(const std::optional<ScreenFrame>& anchor) {
        NSScreen* screen = NSScreen.mainScreen;
        if (anchor) {
            const NSPoint middle = NSMakePoint(anchor->x + anchor->width / 2, anchor->y);
            for (NSScreen* each in NSScreen.screens) {
                screen = NSPointInRect(middle, each.frame) ? each : screen;
            }
        }
        const NSRect room = NSInsetRect(screen.visibleFrame, kMargin, kMargin);
        const CGFloat furthest = std::max(NSMinX(room), NSMaxX(room) - kPanelWidth);
        const CGFloat wanted = anchor ? anchor->x + anchor->width / 2 - kPanelWidth / 2 : furthest;
        const CGFloat top = anchor ? anchor->y - kMargin : NSMaxY(room);
        topLeft = NSMakePoint(std::clamp(wanted, NSMinX(room), furthest), top);
    }
};

PanelWindow::PanelWindow(MenuBarView& view) : view_(view) {
    view_.setPageObserver([this](const Page& page) {
        if (state_) {
            state_->setPage(page);
        }
    });
}

PanelWindow::~PanelWindow() {
    view_.setPageObserver(nullptr);
    close();
}

bool PanelWindow::isOpen() const {
    return state_ != nullptr;
}

void PanelWindow::open(const std::optional<ScreenFrame>& anchor) {
    if (isOpen()) {
        return;
    }
    state_ = std::make_unique<State>();
    state_->page =
        [[TNWPageView alloc] initWithPress:[this](PanelAction action) { view_.perform(action); }];
    state_->panel = makePanel(state_->page);
    state_->panel.cancelled = [this] { close(); };
    state_->placeUnder(anchor);
    state_->setPage(view_.appear());

    TNWPanel* panel = state_->panel;
    state_->ownEvents =
        [NSEvent addLocalMonitorForEventsMatchingMask:kPresses
                                              handler:^NSEvent*(NSEvent* event) {
                                                // A press of the item closes the panel by itself.
                                                NSWindow* window = event.window;
                                                if (window != panel &&
                                                    statusBarButtonIn(window.contentView) == nil) {
                                                    close();
                                                }
                                                return event;
                                              }];
    state_->otherEvents = [NSEvent addGlobalMonitorForEventsMatchingMask:kPresses
                                                                 handler:^(NSEvent*) {
                                                                   close();
                                                                 }];
    [panel makeKeyAndOrderFront:nil];
}

void PanelWindow::close() {
    if (!isOpen()) {
        return;
    }
    const std::unique_ptr<State> closing = std::move(state_);
    [NSEvent removeMonitor:closing->ownEvents];
    [NSEvent removeMonitor:closing->otherEvents];
    [closing->panel orderOut:nil];
    view_.disappear();
    // Whatever is being pressed in it is still running.
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
