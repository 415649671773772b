// SPDX-License-Identifier: MIT
#include "ui/panel/spoken_text.h"

#include <string_view>
#include <vector>

namespace tarnwick {

namespace {

std::string joined(std::string_view first, std::string_view second) {
    std::string text(first);
    if (!second.empty()) {
        text += ", ";
        text += second;
    }
    return text;
}

/// The level in words; empty for a colour that is not a level.
std::string_view levelWord(Tint tint) {
    switch (tint) {
        case Tint::green:
            return "normal";
        case Tint::yellow:
            return "elevated";
        case Tint::red:
            return "high";
        case Tint::orange:
        case Tint::gray:
            break;
    }
    return {};
}

struct Speaker {
    std::string operator()(const PanelHeader& header) const {
        return joined(header.title, header.summary);
    }
    std::string operator()(const StatusRow& row) const { return joined(row.title, row.value); }
    std::string operator()(const NoticeRow& row) const { return row.text; }
    std::string operator()(const UsageBar& bar) const {
        return joined(joined(bar.title, bar.detail), levelWord(bar.tint));
    }
    std::string operator()(const SectionHeader& header) const { return header.title; }
    std::string operator()(const CaptionText& caption) const { return caption.text; }
    std::string operator()(const InfoRow& row) const { return joined(row.label, row.value); }
    std::string operator()(const NavigationButton&) const { return {}; }
    std::string operator()(const TopAppsSection& section) const { return section.title; }
    std::string operator()(const PanelDivider&) const { return {}; }
    std::string operator()(const FooterRow&) const { return {}; }
    std::string operator()(const DetailHeader& header) const { return header.title; }
    std::string operator()(const GroupTitle& group) const { return group.title; }
    std::string operator()(const TrendRow& row) const {
        return joined(joined(row.title, row.value), levelWord(row.color));
    }
    std::string operator()(const TopAppsList&) const { return {}; }
};

}  // namespace

std::string spokenText(const PanelBlock& block) {
    return std::visit(Speaker{}, block);
}

}  // namespace tarnwick
