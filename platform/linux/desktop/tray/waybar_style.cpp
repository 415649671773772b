// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/waybar_style.h"

#include <QColor>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {
namespace {

/// A lightness from which on a colour counts as light, of 255.
constexpr int kLight = 128;

/// The colour of a text such as "#2b303b", "white", "rgb(43, 48, 59)" or "rgba(43, 48, 59, 0.5)";
/// invalid for anything else and for one that is mostly transparent.
QColor colorOf(const QString& text) {
    static const QRegularExpression call(R"(^rgba?\(\s*(\d+)\s*,\s*(\d+)\s*,\s*(\d+)\s*)"
                                         R"((?:,\s*([\d.]+)\s*)?\)$)");
    const QString word = text.trimmed();
    const QRegularExpressionMatch match = call.match(word);
    QColor color = match.hasMatch() ? QColor(match.captured(1).toInt(), match.captured(2).toInt(),
                                             match.captured(3).toInt())
                                    : QColor(word);
    if (match.hasMatch() && !match.captured(4).isEmpty()) {
        color.setAlphaF(std::clamp(match.captured(4).toFloat(), 0.0F, 1.0F));
    }
    constexpr int kMostlyTransparent = 64;
    return color.alpha() < kMostlyTransparent ? QColor() : color;
}

/// The last value of a property in the rules for one element alone.
QColor valueOf(const QString& sheet, const char* element, const char* property) {
    static const QRegularExpression rule(R"(([^{}]*)\{([^{}]*)\})");
    const QRegularExpression declaration(QString(R"((?:^|[;\s])%1\s*:\s*([^;]+))").arg(property));
    QColor found;
    for (auto rules = rule.globalMatch(sheet); rules.hasNext();) {
        const QRegularExpressionMatch each = rules.next();
        QStringList selectors = each.captured(1).split(',');
        std::ranges::transform(selectors, selectors.begin(),
                               [](const QString& selector) { return selector.trimmed(); });
        if (!selectors.contains(QLatin1String(element))) {
            continue;
        }
        for (auto all = declaration.globalMatch(each.captured(2)); all.hasNext();) {
            if (const QColor color = colorOf(all.next().captured(1)); color.isValid()) {
                found = color;
            }
        }
    }
    return found;
}

}  // namespace

std::optional<bool> wantsLightText(std::string_view styleSheet) {
    QString sheet = QString::fromUtf8(styleSheet.data(), static_cast<qsizetype>(styleSheet.size()));
    sheet.remove(
        QRegularExpression(R"(/\*.*?\*/)", QRegularExpression::DotMatchesEverythingOption));
    for (const char* element : {"#tray", "window#waybar", "*"}) {
        if (const QColor text = valueOf(sheet, element, "color"); text.isValid()) {
            return text.lightness() >= kLight;
        }
    }
    for (const char* element : {"#tray", "window#waybar"}) {
        for (const char* property : {"background-color", "background"}) {
            if (const QColor ground = valueOf(sheet, element, property); ground.isValid()) {
                return ground.lightness() < kLight;
            }
        }
    }
    return std::nullopt;
}

std::vector<std::string> waybarStyleFiles(
    const std::function<const char*(const char*)>& environment) {
    const auto value = [&](const char* name) {
        const char* text = environment(name);
        return std::string(text == nullptr ? "" : text);
    };
    const std::string home = value("HOME");
    std::string config = value("XDG_CONFIG_HOME");
    if (config.empty() && !home.empty()) {
        config = home + "/.config";
    }
    return {config + "/waybar/style.css", home + "/waybar/style.css", "/etc/xdg/waybar/style.css"};
}

std::string styleSheet(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        if (const auto sheet = readWholeFile(file)) {
            return *sheet;
        }
    }
    return {};
}

}  // namespace tarnwick::platform
