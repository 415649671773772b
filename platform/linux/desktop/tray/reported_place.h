// SPDX-License-Identifier: MIT
// Where on the screen the item is, from the coordinates that a host reports with a click.
#pragma once

#include <QPoint>
#include <QRect>
#include <optional>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// A screen in the program's points, and how many pixels one point has.
struct ReportedScreen {
    QRect geometry;
    double scale = 1;
};

/// The item's point on the screens, in the program's points. `host` is the file name of the host's
/// executable, because hosts disagree about units.
///
/// Absent if the host reports no place, which is (0, 0), or one outside all screens.
std::optional<QPoint> reportedPoint(const QPoint& reported, std::string_view host,
                                    const std::vector<ReportedScreen>& screens);

/// Whether the bars of this host's desktop are usually at the bottom of the screen.
bool isUsuallyAtTheBottom(std::string_view host);

/// The screens of the running application. Main thread.
std::vector<ReportedScreen> reportedScreens();

}  // namespace tarnwick::platform
