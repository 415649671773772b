// SPDX-License-Identifier: MIT
#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"

namespace {

/// A scroll view of the window's size that contains a page.
NSScrollView* scrollViewOf(TNWSettingsPageView* page) {
    NSScrollView* scroll = [[NSScrollView alloc] initWithFrame:NSZeroRect];
    scroll.hasVerticalScroller = YES;
    scroll.drawsBackground = NO;
    scroll.documentView = page;
    NSClipView* visible = scroll.contentView;
    [NSLayoutConstraint activateConstraints:@[
        [page.topAnchor constraintEqualToAnchor:visible.topAnchor],
        [page.leadingAnchor constraintEqualToAnchor:visible.leadingAnchor],
        [page.widthAnchor constraintEqualToAnchor:visible.widthAnchor],
    ]];
    return scroll;
}

}  // namespace

@implementation TNWSettingsTabs {
    tarnwick::SettingsView* _settings;
    NSMutableArray<TNWSettingsPageView*>* _pages;
}

- (instancetype)initWithView:(tarnwick::SettingsView*)view {
    self = [super initWithNibName:nil bundle:nil];
    if (self != nil) {
        _pages = [NSMutableArray array];
        self.tabStyle = NSTabViewControllerTabStyleToolbar;
        self.transitionOptions = NSViewControllerTransitionNone;
        // Off, because the window keeps a title of its own.
        self.canPropagateSelectedChildViewControllerTitle = NO;
        for (const tarnwick::TabItem& tab : tarnwick::kTabs) {
            TNWSettingsPageView* page = [[TNWSettingsPageView alloc] initWithView:view];
            [_pages addObject:page];
            [self addTab:tab page:page];
        }
        _settings = view;
        [self showContent:view->content()];
        __weak TNWSettingsTabs* weakSelf = self;
        view->setObserver([weakSelf](const tarnwick::SettingsView::Content& content) {
            [weakSelf showContent:content];
        });
    }
    return self;
}

- (void)addTab:(const tarnwick::TabItem&)tab page:(TNWSettingsPageView*)page {
    NSViewController* controller = [[NSViewController alloc] initWithNibName:nil bundle:nil];
    controller.view = scrollViewOf(page);
    NSTabViewItem* item = [NSTabViewItem tabViewItemWithViewController:controller];
    item.label = tarnwick::appkit::string(tab.label);
    item.image = tarnwick::appkit::symbol(tab.icon);
    [self addTabViewItem:item];
}

- (void)forgetView {
    _settings->setObserver(nullptr);
    _settings = nullptr;
}

/// Also brings a page up to date that was hidden before.
- (void)showContent:(const tarnwick::SettingsView::Content&)content {
    for (std::size_t i = 0; i < tarnwick::kTabs.size(); ++i) {
        if (tarnwick::kTabs[i].tab == content.tab) {
            [_pages[i] setPage:content.page];
            self.selectedTabViewItemIndex = static_cast<NSInteger>(i);
        }
    }
}

- (void)viewWillAppear {
    [super viewWillAppear];
    self.view.window.toolbarStyle = NSWindowToolbarStylePreference;
}

- (void)tabView:(NSTabView*)tabView didSelectTabViewItem:(NSTabViewItem*)item {
    [super tabView:tabView didSelectTabViewItem:item];
    const NSUInteger index = [self.tabViewItems indexOfObject:item];
    if (_settings != nullptr && index < tarnwick::kTabs.size()) {
        _settings->selectTab(tarnwick::kTabs[index].tab);
        [_pages[index] setPage:_settings->content().page];
    }
}

/// Escape, where nothing else uses it.
- (void)cancelOperation:(id)sender {
    [self.view.window performClose:sender];
}

@end
