// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/reported_place.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <qpa/qplatformscreen.h>

namespace tarnwick::platform {
namespace {

/// An item lies in a bar; no usual bar is wider than this, in points.
constexpr int kWidestBar = 64;

/// The programs that Plasma's tray consists of.
bool isPlasma(std::string_view host) {
    return host == "kded6" || host == "kded5" || host == "plasmashell";
}

const QRect* screenAt(const QPoint& point, const std::vector<ReportedScreen>& screens) {
    const auto found = std::ranges::find_if(
        screens, [&](const ReportedScreen& each) { return each.geometry.contains(point); });
    return found == screens.end() ? nullptr : &found->geometry;
}

bool isNearAnEdge(const QPoint& point, const QRect& screen) {
    const QRect middle = screen.adjusted(kWidestBar, kWidestBar, -kWidestBar, -kWidestBar);
    return !middle.contains(point);
}

/// Plasma multiplies with the scale of the screen, unless it is told that older programs scale
/// themselves. Of two possible points the one in a bar is meant.
std::optional<QPoint> plasmaPoint(const QPoint& reported,
                                  const std::vector<ReportedScreen>& screens) {
    std::vector<QPoint> candidates;
    for (const ReportedScreen& each : screens) {
        const QPoint point = (QPointF(reported) / each.scale).toPoint();
        if (each.geometry.contains(point)) {
            candidates.push_back(point);
        }
    }
    if (screenAt(reported, screens) != nullptr) {
        candidates.push_back(reported);
    }
    const auto inABar = std::ranges::find_if(candidates, [&](const QPoint& each) {
        return isNearAnEdge(each, *screenAt(each, screens));
    });
    if (inABar != candidates.end()) {
        return *inABar;
    }
    return candidates.empty() ? std::nullopt : std::optional(candidates.front());
}

/// Pixels of a point, also where the toolkit only knows the next whole number.
double scaleOf(const QScreen& screen) {
    const auto modes = screen.handle()->modes();
    const int current = screen.handle()->currentMode();
    const QSize points = screen.size();
    if (current < 0 || current >= modes.size() || points.isEmpty()) {
        return screen.devicePixelRatio();
    }
    // The mode of a turned screen is not turned.
    const QSize pixels = modes[current].size;
    const double scale = static_cast<double>(std::max(pixels.width(), pixels.height())) /
                         std::max(points.width(), points.height());
    return scale > 0 ? scale : screen.devicePixelRatio();
}

}  // namespace

std::optional<QPoint> reportedPoint(const QPoint& reported, std::string_view host,
                                    const std::vector<ReportedScreen>& screens) {
    if (reported.isNull()) {
        return std::nullopt;
    }
    if (isPlasma(host)) {
        return plasmaPoint(reported, screens);
    }
    return screenAt(reported, screens) == nullptr ? std::nullopt : std::optional(reported);
}

bool isUsuallyAtTheBottom(std::string_view host) {
    return isPlasma(host);
}

std::vector<ReportedScreen> reportedScreens() {
    std::vector<ReportedScreen> screens;
    for (const QScreen* each : QGuiApplication::screens()) {
        screens.push_back({each->geometry(), scaleOf(*each)});
    }
    return screens;
}

}  // namespace tarnwick::platform
