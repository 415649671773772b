// SPDX-License-Identifier: MIT
#include "ui/panel/copied_text.h"

#include <vector>

namespace tarnwick {

namespace {

/// A line of the text for each kind of block. An empty first line separates a group.
struct Copier {
    std::vector<std::string> lines;

    void pair(const std::string& name, const std::string& value) {
        lines.push_back(name + ": " + value);
    }
    void group(const std::string& title) {
        lines.emplace_back();
        lines.push_back(title);
    }
    void rows(const std::vector<ProcessRow>& all) {
        for (const ProcessRow& row : all) {
            pair(row.process.name, row.valueText(row.process));
        }
        if (all.empty()) {
            lines.emplace_back(TopAppsList::kEmptyText);
        }
    }

    void operator()(const PanelHeader& header) { lines = {header.title, header.summary}; }
    void operator()(const StatusRow& row) { pair(row.title, row.value); }
    void operator()(const NoticeRow& row) { lines.push_back(row.text); }
    void operator()(const UsageBar& bar) { pair(bar.title, bar.detail); }
    void operator()(const SectionHeader& header) { group(header.title); }
    void operator()(const CaptionText& caption) { lines.push_back(caption.text); }
    void operator()(const InfoRow& row) { pair(row.label, row.value); }
    void operator()(const NavigationButton&) {}
    void operator()(const TopAppsSection& section) {
        group(section.title);
        rows(section.rows());
    }
    void operator()(const PanelDivider&) {}
    void operator()(const FooterRow&) {}
    void operator()(const DetailHeader& header) { lines.push_back(header.title); }
    void operator()(const GroupTitle& title) { group(title.title); }
    void operator()(const TrendRow& row) { pair(row.title, row.value); }
    void operator()(const TopAppsList& list) { rows(list.rows()); }
};

}  // namespace

std::string copiedText(const Page& page) {
    std::string text;
    for (const PageItem& item : page) {
        Copier copier;
        std::visit(copier, item.block);
        for (const std::string& line : copier.lines) {
            text += line + '\n';
        }
    }
    return text;
}

}  // namespace tarnwick
