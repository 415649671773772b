// SPDX-License-Identifier: MIT
// The building blocks of the panel's pages, as plain values. The headers of the pages say in which
// order the blocks stand; each front end draws each kind of block in one place.
#pragma once

#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/records/metric_records.h"
#include "core/records/tint.h"
#include "ui/panel/sparkline_view.h"
#include "ui/panel/tool_tips.h"

namespace tarnwick {

enum class PanelAction {
    /// Measures everything anew.
    refresh,
    showSettings,
    /// Opens the system's own list of processes.
    openActivityMonitor,
    /// Ends the program.
    quit,
    showMemoryDetail,
    showPerformanceDetail,
    /// Leads back to the home page.
    goBack,
    /// Puts the page that is shown onto the clipboard, as text.
    copy,
};

/// An entry of the menu that a right click on the panel shows.
struct PanelMenuEntry {
    std::string_view title;
    PanelAction action;
};

/// From top to bottom, on every page.
inline constexpr std::array kPanelMenu = {PanelMenuEntry{"Copy", PanelAction::copy},
                                          PanelMenuEntry{"Refresh", PanelAction::refresh},
                                          PanelMenuEntry{"Settings", PanelAction::showSettings},
                                          PanelMenuEntry{"Quit", PanelAction::quit}};

/// In a panel's header a button shows its icon alone, and its title is its tool tip. Elsewhere the
/// icon, if any, stands before the title. The title is always the accessible name.
struct PanelButton {
    std::string title;
    /// Symbol name; may be empty.
    std::string icon;
    PanelAction action = PanelAction::refresh;
    /// False while there is nothing to run: the button is there and does nothing.
    bool isEnabled = false;

    bool operator==(const PanelButton&) const = default;
};

/// The title (headline) and the icon buttons in one row; under it the summary (caption, secondary).
struct PanelHeader {
    std::string title;
    std::vector<PanelButton> buttons;
    std::string summary;

    bool operator==(const PanelHeader&) const = default;
};

/// One row: the plain button that leads back, with a symbol before its title; the title of the page
/// (headline); the plain button that refreshes.
struct DetailHeader {
    std::string title;
    PanelButton back;
    PanelButton refresh;

    bool operator==(const DetailHeader&) const = default;
};

/// A row with the button's title and a symbol at its trailing end.
struct NavigationButton {
    static constexpr std::string_view kTrailingIcon = "chevron.right";

    PanelButton button;

    bool operator==(const NavigationButton&) const = default;
};

/// The first button stands at the leading edge, the last one at the trailing edge. The space
/// between two buttons is at least kSpacing points.
struct FooterRow {
    static constexpr int kSpacing = 12;

    std::vector<PanelButton> buttons;

    bool operator==(const FooterRow&) const = default;
};

/// A hairline across the page.
struct PanelDivider {
    bool operator==(const PanelDivider&) const = default;
};

/// Subheadline, with a symbol before it.
struct SectionHeader {
    std::string title;
    /// Symbol name.
    std::string icon;

    bool operator==(const SectionHeader&) const = default;
};

/// Subheadline, medium weight.
struct GroupTitle {
    std::string title;

    bool operator==(const GroupTitle&) const = default;
};

/// Caption, secondary.
struct CaptionText {
    std::string text;

    bool operator==(const CaptionText&) const = default;
};

/// A fact about the machine. Title and symbol are subheadline and secondary, the value is caption.
struct StatusRow {
    std::string title;
    /// Symbol name.
    std::string icon;
    std::string value;
    /// True: the value is medium and primary. False: it is secondary.
    bool isProminent = false;

    bool operator==(const StatusRow&) const = default;
};

/// Caption: the label at the left is secondary, the value at the right medium and primary.
struct InfoRow {
    std::string label;
    std::string value;

    bool operator==(const InfoRow&) const = default;
};

/// The text is caption, secondary.
struct NoticeRow {
    /// Symbol name.
    std::string icon;
    Tint tint = Tint::orange;
    std::string text;

    bool operator==(const NoticeRow&) const = default;
};

/// One metric. Title and symbol (subheadline) and the detail text (caption, secondary) in one row;
/// the bar under it.
struct UsageBar {
    std::string title;
    /// Symbol name.
    std::string icon;
    /// Percent, 0 to 100.
    double value = 0;
    std::string detail;
    Tint tint = Tint::green;

    bool operator==(const UsageBar&) const = default;

    /// The share of the bar that is filled, always within 0 to 1.
    double fraction() const {
        return !std::isfinite(value) || value < 0 ? 0 : std::fmin(value, 100) / 100;
    }
};

/// A metric's current value and its recent course. At the left the title (caption, secondary) over
/// the value (caption, medium), at the right the sparkline.
struct TrendRow {
    // All in points.
    /// The least space between the texts and the sparkline.
    static constexpr int kSpacing = 10;
    /// Between title and value.
    static constexpr int kTextSpacing = 2;
    static constexpr int kSparklineWidth = 120;
    static constexpr int kSparklineHeight = 28;

    std::string title;
    std::string value;
    std::vector<double> values;
    Tint color = Tint::green;
    /// When each of the values was measured, seconds of any clock. Only told in tool tips, so rows
    /// that differ in nothing else are equal.
    std::vector<double> times{};

    bool operator==(const TrendRow& other) const {
        return title == other.title && value == other.value && values == other.values &&
               color == other.color;
    }

    SparklineView sparkline() const { return {values, color}; }
    /// With `share` that of a place on the sparkline, 0 at its left end and 1 at its right end.
    std::string toolTip(std::optional<double> share = std::nullopt) const {
        return trendToolTip(values, times, share);
    }
};

/// Makes the text that a list shows for a process at the trailing side.
using ProcessValueText = std::function<std::string(const AppProcessInfo&)>;

/// Caption: the process's name at the left, `valueText` of it at the right.
struct ProcessRow {
    AppProcessInfo process;
    /// Never empty.
    ProcessValueText valueText;

    /// Equal when both show the same texts and fields of the same process.
    bool operator==(const ProcessRow& other) const {
        return process == other.process && valueText(process) == other.valueText(other.process);
    }

    std::string toolTip() const { return processToolTip(process); }
};

/// A list of processes without a title: a row for each, in list order.
struct TopAppsList {
    /// Shown instead of the rows while there is no process: caption, secondary.
    static constexpr std::string_view kEmptyText = "Collecting data...";

    std::vector<AppProcessInfo> processes;
    /// Points between the list's leading edge and that of its rows.
    double indent = 0;
    /// Never empty.
    ProcessValueText valueText;

    bool operator==(const TopAppsList& other) const {
        return indent == other.indent && rows() == other.rows();
    }

    /// One row for each process, in the order of the list.
    std::vector<ProcessRow> rows() const {
        std::vector<ProcessRow> rows;
        for (const AppProcessInfo& process : processes) {
            rows.push_back({process, valueText});
        }
        return rows;
    }
};

/// The title (subheadline, medium), then a row for each process in list order.
struct TopAppsSection {
    static constexpr std::string_view kEmptyText = TopAppsList::kEmptyText;

    std::string title;
    std::vector<AppProcessInfo> processes;
    /// Never empty.
    ProcessValueText valueText;

    bool operator==(const TopAppsSection& other) const {
        return title == other.title && rows() == other.rows();
    }

    /// One row for each process, in the order of the list.
    std::vector<ProcessRow> rows() const { return TopAppsList{processes, 0, valueText}.rows(); }
};

}  // namespace tarnwick
