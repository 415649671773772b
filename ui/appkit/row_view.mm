// SPDX-License-Identifier: MIT
#include "ui/appkit/row_view.h"

#include <variant>

#include "ui/appkit/grid.h"
#include "ui/panel/panel_figures.h"

namespace tarnwick::appkit {
namespace {

RowContent symbolTitle(const std::string& icon, NSColor* color, const std::string& title) {
    return {.icon = icon, .iconColor = color, .leading = {title, FontRole::subheadline, color}};
}

struct Contents {
    std::optional<RowContent> operator()(const StatusRow& row) const {
        RowContent content = symbolTitle(row.icon, NSColor.secondaryLabelColor, row.title);
        content.trailing = row.isProminent
                               ? RowText{row.value, FontRole::captionMedium, NSColor.labelColor}
                               : RowText{row.value, FontRole::caption, NSColor.secondaryLabelColor};
        return content;
    }
    std::optional<RowContent> operator()(const NoticeRow& row) const {
        return RowContent{.icon = row.icon,
                          .iconColor = color(row.tint),
                          .leading = {row.text, FontRole::caption, NSColor.secondaryLabelColor}};
    }
    std::optional<RowContent> operator()(const SectionHeader& header) const {
        return symbolTitle(header.icon, NSColor.labelColor, header.title);
    }
    std::optional<RowContent> operator()(const CaptionText& caption) const {
        return rowContent(caption);
    }
    std::optional<RowContent> operator()(const InfoRow& row) const {
        return RowContent{.leading = {row.label, FontRole::caption, NSColor.secondaryLabelColor},
                          .trailing = {row.value, FontRole::captionMedium, NSColor.labelColor}};
    }
    std::optional<RowContent> operator()(const GroupTitle& group) const {
        return RowContent{
            .leading = {group.title, FontRole::subheadlineMedium, NSColor.labelColor}};
    }
    template <class Block>
    std::optional<RowContent> operator()(const Block&) const {
        return std::nullopt;
    }
};

}  // namespace

std::optional<RowContent> rowContent(const PanelBlock& block) {
    return std::visit(Contents{}, block);
}

RowContent rowContent(const UsageBar& bar) {
    RowContent content = symbolTitle(bar.icon, NSColor.labelColor, bar.title);
    content.trailing = {bar.detail, FontRole::caption, NSColor.secondaryLabelColor};
    content.level = bar.tint;
    return content;
}

RowContent rowContent(const ProcessRow& process) {
    return {.leading = {process.process.name, FontRole::caption, NSColor.labelColor},
            .trailing = {process.valueText(process.process), FontRole::caption,
                         NSColor.secondaryLabelColor}};
}

RowContent rowContent(const CaptionText& caption) {
    return {.leading = {caption.text, FontRole::caption, NSColor.secondaryLabelColor}};
}

void showLevelMark(NSImageView* view, Tint level) {
    const std::string mark(levelMark(level));
    view.hidden = mark.empty();
    showSymbol(view, mark, color(level), FontRole::caption);
}

}  // namespace tarnwick::appkit

@implementation TNWRowView {
    NSImageView* _symbol;
    NSTextField* _leading;
    NSImageView* _mark;
    NSTextField* _trailing;
}

- (instancetype)initWithFrame:(NSRect)frame {
    using namespace tarnwick::appkit;
    self = [super initWithFrame:frame];
    if (self != nil) {
        _symbol = emptySymbolView();
        _leading = label({}, FontRole::caption, NSColor.labelColor);
        _mark = emptySymbolView();
        _trailing = label({}, FontRole::caption, NSColor.labelColor);
        // If there is no room for both texts, the name is cut, not the figure.
        [_leading setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                           forOrientation:NSLayoutConstraintOrientationHorizontal];
        self.orientation = NSUserInterfaceLayoutOrientationHorizontal;
        self.alignment = NSLayoutAttributeCenterY;
        self.spacing = grid::kSymbolGap;
        [self setViews:@[ _symbol, _leading ] inGravity:NSStackViewGravityLeading];
        [self setViews:@[ _mark, _trailing ] inGravity:NSStackViewGravityTrailing];
        [self setCustomSpacing:grid::kMarkGap afterView:_mark];
    }
    return self;
}

- (void)setContent:(const tarnwick::appkit::RowContent&)content {
    using namespace tarnwick::appkit;
    _symbol.hidden = content.icon.empty();
    showSymbol(_symbol, content.icon, content.iconColor, content.leading.role);
    // A row without text keeps its height.
    showText(_leading, content.leading.text, content.leading.role, content.leading.color);
    showLevelMark(_mark, content.level);
    _trailing.hidden = content.trailing.text.empty();
    showText(_trailing, content.trailing.text, content.trailing.role, content.trailing.color);
}

@end
