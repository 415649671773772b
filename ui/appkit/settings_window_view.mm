#include "ui/appkit/settings_window_view.h"

#import <AppKit/AppKit.h>
#include <optional>
#include <string>

#include "ui/appkit/press_button.h"
#include "ui/appkit/settings_page_view.h"
#include "ui/appkit/style.h"
#include "ui/appkit/view_holder.h"
#include "ui/settings/settings_view.h"

/// The tabs above the page of the selected one, which scrolls.
@interface TNWSettingsRoot : NSStackView
- (instancetype)initWithView:(tarnwick::SettingsView*)view;
@end

@implementation TNWSettingsRoot {
    tarnwick::SettingsView* _view;
    NSSegmentedControl* _tabs;
    NSScrollView* _scroll;
    TNWSettingsPageView* _page;
}

- (instancetype)initWithView:(tarnwick::SettingsView*)view {
    self = [super initWithFrame:NSZeroRect];
    if (self != nil) {
        _view = view;
        self.orientation = NSUserInterfaceLayoutOrientationVertical;
        self.distribution = NSStackViewDistributionFill;
        self.edgeInsets = NSEdgeInsetsMake(12, 0, 0, 0);
        [self addTabs];
        _page = [[TNWSettingsPageView alloc] initWithView:view];
        _scroll = [[NSScrollView alloc] initWithFrame:NSZeroRect];
        _scroll.hasVerticalScroller = YES;
        _scroll.drawsBackground = NO;
        _scroll.documentView = _page;
        [self addArrangedSubview:_scroll];
        [_scroll.widthAnchor constraintEqualToAnchor:self.widthAnchor].active = YES;
        NSClipView* visible = _scroll.contentView;
        [_page.topAnchor constraintEqualToAnchor:visible.topAnchor].active = YES;
        [_page.leadingAnchor constraintEqualToAnchor:visible.leadingAnchor].active = YES;
        [_page.widthAnchor constraintEqualToAnchor:visible.widthAnchor].active = YES;
        [self showContent:view->content()];
        __weak TNWSettingsRoot* weakSelf = self;
        view->setObserver([weakSelf](const tarnwick::SettingsView::Content& content) {
            [weakSelf showContent:content];
        });
    }
    return self;
}

- (void)addTabs {
    using tarnwick::appkit::string;
    const auto count = static_cast<NSInteger>(tarnwick::kTabs.size());
    _tabs = [[NSSegmentedControl alloc] initWithFrame:NSZeroRect];
    _tabs.segmentCount = count;
    _tabs.trackingMode = NSSegmentSwitchTrackingSelectOne;
    for (NSInteger i = 0; i < count; ++i) {
        const tarnwick::TabItem& item = tarnwick::kTabs[static_cast<std::size_t>(i)];
        [_tabs setLabel:string(item.label) forSegment:i];
        [_tabs setImage:[NSImage imageWithSystemSymbolName:string(item.icon)
                                  accessibilityDescription:nil]
             forSegment:i];
    }
    _tabs.target = self;
    _tabs.action = @selector(tabSelected:);
    [self addArrangedSubview:_tabs];
}

- (void)tabSelected:(id)sender {
    (void)sender;
    const auto index = static_cast<std::size_t>(_tabs.selectedSegment);
    _view->selectTab(tarnwick::kTabs[index].tab);
}

- (void)showContent:(const tarnwick::SettingsView::Content&)content {
    for (std::size_t i = 0; i < tarnwick::kTabs.size(); ++i) {
        if (tarnwick::kTabs[i].tab == content.tab) {
            _tabs.selectedSegment = static_cast<NSInteger>(i);
        }
    }
    [_page setPage:content.page];
}

@end

namespace tarnwick::appkit {
namespace {

std::optional<std::string> informationText(NSString* key) {
    id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    if (![value isKindOfClass:NSString.class]) {
        return std::nullopt;
    }
    return std::string(static_cast<NSString*>(value).UTF8String);
}

SettingsViewEnvironment environment(platform::Dispatch& dispatch,
                                    platform::KeyboardLayout& keyboardLayout) {
    return {
        .dispatch = dispatch,
        .keyboardLayout = keyboardLayout,
        .program = {.shortVersion = informationText(@"CFBundleShortVersionString"),
                    .buildVersion = informationText(@"CFBundleVersion")},
        .openAddress =
            [](const std::string& address) {
                [NSWorkspace.sharedWorkspace openURL:[NSURL URLWithString:string(address)]];
            },
        .keyboardNavigationEnabled =
            static_cast<bool>(NSApplication.sharedApplication.fullKeyboardAccessEnabled),
    };
}

/// The native view lies in the window and reads from the view of values; both go together.
class SettingsHolder final : public ViewHolder {
 public:
    explicit SettingsHolder(std::unique_ptr<SettingsView> settingsView)
        : ViewHolder([[TNWSettingsRoot alloc] initWithView:settingsView.get()]),
          settingsView_(std::move(settingsView)) {}
    SettingsHolder(const SettingsHolder&) = delete;
    SettingsHolder& operator=(const SettingsHolder&) = delete;
    ~SettingsHolder() override {
        settingsView_->setObserver(nullptr);
        // A control that is let go of later has nothing to call any more.
        settingsView_->shortcutField().makeFirstResponder = nullptr;
        settingsView_->shortcutField().onRefresh = nullptr;
    }

 private:
    std::unique_ptr<SettingsView> settingsView_;
};

}  // namespace

std::unique_ptr<platform::View> makeSettingsView(UserSettings& settings,
                                                 platform::Dispatch& dispatch,
                                                 platform::KeyboardLayout& keyboardLayout) {
    return std::make_unique<SettingsHolder>(
        std::make_unique<SettingsView>(settings, environment(dispatch, keyboardLayout)));
}

}  // namespace tarnwick::appkit
