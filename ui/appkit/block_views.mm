#include "ui/appkit/block_views.h"

#include <variant>
#include <vector>

#include "ui/appkit/charts.h"
#include "ui/appkit/style.h"
#include "ui/panel/spoken_text.h"

namespace tarnwick::appkit {
namespace {

/// Between a symbol and its text, and between a text at the left and one at the right.
constexpr CGFloat kSymbolGap = 8;
constexpr CGFloat kColumnGap = 12;
/// Between a bar and its label.
constexpr CGFloat kBarGap = 6;
constexpr CGFloat kTitleGap = 4;

NSStackView* row(NSArray<NSView*>* leading, NSArray<NSView*>* trailing, CGFloat gap) {
    NSStackView* stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    stack.alignment = NSLayoutAttributeCenterY;
    stack.spacing = gap;
    [stack setViews:leading inGravity:NSStackViewGravityLeading];
    [stack setViews:trailing inGravity:NSStackViewGravityTrailing];
    return stack;
}

NSStackView* column(NSArray<NSView*>* views, CGFloat gap) {
    NSStackView* stack = [NSStackView stackViewWithViews:views];
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeLeading;
    stack.distribution = NSStackViewDistributionFill;
    stack.spacing = gap;
    for (NSView* view in views) {
        [view.widthAnchor constraintLessThanOrEqualToAnchor:stack.widthAnchor].active = YES;
    }
    return stack;
}

/// Lets a view of a column be as wide as the column.
void fillWidth(NSView* view, NSStackView* column) {
    [view.widthAnchor constraintEqualToAnchor:column.widthAnchor].active = YES;
}

NSView* symbolRow(const std::string& icon, NSColor* iconColor, NSTextField* leading,
                  NSTextField* trailing, FontRole role) {
    NSArray<NSView*>* atTheEnd = trailing == nil ? @[] : @[ trailing ];
    return row(@[ symbolView(icon, iconColor, role), leading ], atTheEnd, kSymbolGap);
}

NSView* processRows(const std::vector<ProcessRow>& rows) {
    if (rows.empty()) {
        return label(std::string(TopAppsList::kEmptyText), FontRole::caption,
                     NSColor.secondaryLabelColor);
    }
    NSMutableArray<NSView*>* views = [NSMutableArray array];
    for (const ProcessRow& each : rows) {
        NSTextField* name = label(each.process.name, FontRole::caption, NSColor.labelColor);
        NSTextField* value =
            label(each.valueText(each.process), FontRole::caption, NSColor.secondaryLabelColor);
        [name setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                       forOrientation:NSLayoutConstraintOrientationHorizontal];
        [views addObject:row(@[ name ], @[ value ], kColumnGap)];
    }
    NSStackView* list = column(views, kRowSpacing);
    for (NSView* view in views) {
        fillWidth(view, list);
    }
    return list;
}

struct Maker {
    const PressHandler& press;

    NSView* operator()(const PanelHeader& header) const {
        NSMutableArray<NSView*>* buttons = [NSMutableArray array];
        for (const PanelButton& button : header.buttons) {
            [buttons addObject:iconButton(button, press)];
        }
        NSTextField* title = label(header.title, FontRole::headline, NSColor.labelColor);
        NSTextField* summary = [NSTextField wrappingLabelWithString:string(header.summary)];
        summary.font = font(FontRole::caption);
        summary.textColor = NSColor.secondaryLabelColor;
        summary.selectable = NO;
        summary.preferredMaxLayoutWidth = kPanelWidth - 2 * kPagePadding;
        NSView* top = row(@[ title ], buttons, kSymbolGap);
        NSStackView* view = column(@[ top, summary ], kTitleGap);
        fillWidth(top, view);
        return view;
    }
    NSView* operator()(const StatusRow& status) const {
        NSTextField* title =
            label(status.title, FontRole::subheadline, NSColor.secondaryLabelColor);
        NSTextField* value =
            status.isProminent
                ? label(status.value, FontRole::captionMedium, NSColor.labelColor)
                : label(status.value, FontRole::caption, NSColor.secondaryLabelColor);
        return symbolRow(status.icon, NSColor.secondaryLabelColor, title, value,
                         FontRole::subheadline);
    }
    NSView* operator()(const NoticeRow& notice) const {
        NSTextField* text = label(notice.text, FontRole::caption, NSColor.secondaryLabelColor);
        return symbolRow(notice.icon, color(notice.tint), text, nil, FontRole::caption);
    }
    NSView* operator()(const UsageBar& bar) const {
        NSTextField* title = label(bar.title, FontRole::subheadline, NSColor.labelColor);
        [title setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                        forOrientation:NSLayoutConstraintOrientationHorizontal];
        NSTextField* detail = label(bar.detail, FontRole::caption, NSColor.secondaryLabelColor);
        NSView* top = symbolRow(bar.icon, NSColor.labelColor, title, detail, FontRole::subheadline);
        TNWBarView* filled = [[TNWBarView alloc] initWithFrame:NSZeroRect];
        [filled setBar:bar];
        NSStackView* view = column(@[ top, filled ], kBarGap);
        fillWidth(top, view);
        fillWidth(filled, view);
        return view;
    }
    NSView* operator()(const SectionHeader& header) const {
        NSTextField* title = label(header.title, FontRole::subheadline, NSColor.labelColor);
        return symbolRow(header.icon, NSColor.labelColor, title, nil, FontRole::subheadline);
    }
    NSView* operator()(const CaptionText& caption) const {
        return label(caption.text, FontRole::caption, NSColor.secondaryLabelColor);
    }
    NSView* operator()(const InfoRow& info) const {
        return row(@[ label(info.label, FontRole::caption, NSColor.secondaryLabelColor) ],
                   @[ label(info.value, FontRole::captionMedium, NSColor.labelColor) ], kColumnGap);
    }
    NSView* operator()(const NavigationButton& navigation) const {
        return navigationButton(navigation.button, press);
    }
    NSView* operator()(const TopAppsSection& section) const {
        NSView* rows = processRows(section.rows());
        NSStackView* view =
            column(@[ label(section.title, FontRole::subheadlineMedium, NSColor.labelColor), rows ],
                   kRowSpacing);
        fillWidth(rows, view);
        return view;
    }
    NSView* operator()(const PanelDivider&) const {
        NSBox* line = [[NSBox alloc] initWithFrame:NSZeroRect];
        line.boxType = NSBoxSeparator;
        return line;
    }
    NSView* operator()(const FooterRow& footer) const {
        NSMutableArray<NSView*>* leading = [NSMutableArray array];
        for (const PanelButton& button : footer.buttons) {
            [leading addObject:titledButton(button, press)];
        }
        NSMutableArray<NSView*>* trailing = [NSMutableArray array];
        if (leading.count > 1) {
            [trailing addObject:leading.lastObject];
            [leading removeLastObject];
        }
        return row(leading, trailing, FooterRow::kSpacing);
    }
    NSView* operator()(const DetailHeader& header) const {
        TNWPressButton* back = titledButton(header.back, press);
        back.bordered = NO;
        TNWPressButton* refresh = titledButton(header.refresh, press);
        refresh.bordered = NO;
        NSStackView* view = row(@[ back ], @[ refresh ], kColumnGap);
        [view addView:label(header.title, FontRole::headline, NSColor.labelColor)
            inGravity:NSStackViewGravityCenter];
        return view;
    }
    NSView* operator()(const GroupTitle& group) const {
        return label(group.title, FontRole::subheadlineMedium, NSColor.labelColor);
    }
    NSView* operator()(const TrendRow& trend) const {
        NSView* texts = column(
            @[
                label(trend.title, FontRole::caption, NSColor.secondaryLabelColor),
                label(trend.value, FontRole::captionMedium, NSColor.labelColor)
            ],
            TrendRow::kTextSpacing);
        TNWSparklineView* line = [[TNWSparklineView alloc] initWithFrame:NSZeroRect];
        [line setSparkline:trend.sparkline()];
        [line.widthAnchor constraintEqualToConstant:TrendRow::kSparklineWidth].active = YES;
        [line.heightAnchor constraintEqualToConstant:TrendRow::kSparklineHeight].active = YES;
        return row(@[ texts ], @[ line ], TrendRow::kSpacing);
    }
    NSView* operator()(const TopAppsList& list) const {
        NSView* rows = processRows(list.rows());
        NSStackView* view = column(@[ rows ], 0);
        view.edgeInsets = NSEdgeInsetsMake(0, list.indent, 0, 0);
        [rows.trailingAnchor constraintEqualToAnchor:view.trailingAnchor].active = YES;
        return view;
    }
};

/// Whether a block has buttons, which speak for themselves.
bool hasButtons(const PanelBlock& block) {
    return std::holds_alternative<PanelHeader>(block) ||
           std::holds_alternative<NavigationButton>(block) ||
           std::holds_alternative<FooterRow>(block) || std::holds_alternative<DetailHeader>(block);
}

void describe(NSView* view, const PanelBlock& block) {
    const std::string spoken = spokenText(block);
    if (spoken.empty() || std::holds_alternative<NavigationButton>(block)) {
        return;
    }
    view.accessibilityElement = YES;
    view.accessibilityLabel = string(spoken);
    if (hasButtons(block)) {
        view.accessibilityRole = NSAccessibilityGroupRole;
        return;
    }
    view.accessibilityRole = NSAccessibilityStaticTextRole;
    view.accessibilityChildren = @[];
}

}  // namespace

NSView* makeBlockView(const PanelBlock& block, const PressHandler& press) {
    NSView* view = std::visit(Maker{press}, block);
    describe(view, block);
    return view;
}

}  // namespace tarnwick::appkit
