// SPDX-License-Identifier: MIT
#include "ui/appkit/mac_status_item.h"

#import <AppKit/AppKit.h>
#import <CoreText/CoreText.h>
#include <utility>

#include "ui/appkit/grid.h"
#include "ui/appkit/status_bar_button.h"
#include "ui/appkit/style.h"

/// Icon and text; presses go through to the button below.
@interface TNWItemRow : NSStackView
@end

@implementation TNWItemRow

- (NSView*)hitTest:(NSPoint)point {
    (void)point;
    return nil;
}

@end

/// The button's target.
@interface TNWItemTarget : NSObject
@property(nonatomic) std::function<void()> pressed;
- (void)press:(id)sender;
@end

@implementation TNWItemTarget

- (void)press:(id)sender {
    (void)sender;
    const std::function<void()> pressed = self.pressed;
    if (pressed) {
        pressed();
    }
}

@end

namespace tarnwick::appkit {
namespace {

using platform::StatusItemContent;

/// All digits have the same width.
NSFont* itemFont() {
    NSFont* font = statusFont(StatusItemContent::kFontSize);
    NSDictionary* digits = @{
        NSFontFeatureTypeIdentifierKey : @(kNumberSpacingType),
        NSFontFeatureSelectorIdentifierKey : @(kMonospacedNumbersSelector),
    };
    NSFontDescriptor* descriptor = [font.fontDescriptor fontDescriptorByAddingAttributes:@{
        NSFontFeatureSettingsAttribute : @[ digits ]
    }];
    return [NSFont fontWithDescriptor:descriptor size:StatusItemContent::kFontSize];
}

NSTextField* textOf(const std::string& text) {
    NSTextField* field = [NSTextField labelWithString:string(text)];
    field.font = itemFont();
    field.alignment = NSTextAlignmentNatural;
    field.lineBreakMode = NSLineBreakByTruncatingTail;
    [field.widthAnchor constraintLessThanOrEqualToConstant:StatusItemContent::kTextWidth].active =
        YES;
    return field;
}

}  // namespace

struct MacStatusItem::State {
    NSStatusItem* item =
        [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    TNWItemTarget* target = [[TNWItemTarget alloc] init];
    TNWItemRow* row = nil;
    std::optional<StatusItemContent> content;
    platform::StatusItemActions actions;
    bool isProgramsClick = false;

    void pressed() {
        const std::function<void()> action = isProgramsClick ? actions.toggle : actions.click;
        if (action) {
            action();
        }
    }
};

MacStatusItem::MacStatusItem() : state_(std::make_unique<State>()) {
    state_->target.pressed = [state = state_.get()] { state->pressed(); };
    state_->item.button.target = state_->target;
    state_->item.button.action = @selector(press:);
}

MacStatusItem::~MacStatusItem() {
    state_->target.pressed = nullptr;
    [NSStatusBar.systemStatusBar removeStatusItem:state_->item];
}

void MacStatusItem::setContent(const StatusItemContent& content) {
    if (state_->content == content) {
        return;
    }
    state_->content = content;
    NSMutableArray<NSView*>* views =
        [NSMutableArray arrayWithObject:statusSymbolView(content.symbol, content.tint)];
    if (content.text) {
        [views addObject:textOf(*content.text)];
    }
    [state_->row removeFromSuperview];
    TNWItemRow* row = [TNWItemRow stackViewWithViews:views];
    row.alignment = NSLayoutAttributeCenterY;
    row.spacing = StatusItemContent::kSpacing;
    row.translatesAutoresizingMaskIntoConstraints = NO;
    row.accessibilityElement = NO;
    row.accessibilityChildren = @[];
    state_->row = row;

    NSStatusBarButton* button = state_->item.button;
    button.accessibilityLabel = string(content.accessibilityLabel);
    state_->item.length = row.fittingSize.width + 2 * grid::kItemPadding;
    [button addSubview:row];
    [row.centerXAnchor constraintEqualToAnchor:button.centerXAnchor].active = YES;
    [row.centerYAnchor constraintEqualToAnchor:button.centerYAnchor].active = YES;
}

void MacStatusItem::setActions(platform::StatusItemActions actions) {
    state_->actions = std::move(actions);
}

bool MacStatusItem::inTray() const {
    return statusBarButton() != nil;
}

bool MacStatusItem::performClick() {
    NSStatusBarButton* button = statusBarButton();
    if (button == nil) {
        return false;
    }
    state_->isProgramsClick = true;
    [button performClick:nil];
    state_->isProgramsClick = false;
    return true;
}

std::optional<ScreenFrame> MacStatusItem::frame() const {
    NSStatusBarButton* button = state_->item.button;
    if (button.window == nil) {
        return std::nullopt;
    }
    const NSRect rect = [button.window convertRectToScreen:[button convertRect:button.bounds
                                                                        toView:nil]];
    return ScreenFrame{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

}  // namespace tarnwick::appkit
