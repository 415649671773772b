// SPDX-License-Identifier: MIT
// A row of a page: a symbol and a text at the left, a text at the right. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#include <optional>
#include <string>

#include "ui/appkit/style.h"
#include "ui/panel/page.h"

namespace tarnwick::appkit {

struct RowText {
    std::string text;
    FontRole role = FontRole::caption;
    NSColor* color = nil;
};

struct RowContent {
    /// Symbol name; may be empty.
    std::string icon;
    NSColor* iconColor = nil;
    RowText leading;
    /// Hidden if its text is empty.
    RowText trailing{};
    /// The level shown by a mark before the trailing text; see levelMark().
    Tint level = Tint::gray;
};

/// The content of a block that is one row; absent for any other block.
std::optional<RowContent> rowContent(const PanelBlock& block);
RowContent rowContent(const UsageBar& bar);
RowContent rowContent(const ProcessRow& process);
RowContent rowContent(const CaptionText& caption);

/// Shows the mark of the level in its colour; hides `view` if the level has no mark.
void showLevelMark(NSImageView* view, Tint level);

}  // namespace tarnwick::appkit

@interface TNWRowView : NSStackView
- (void)setContent:(const tarnwick::appkit::RowContent&)content;
@end
