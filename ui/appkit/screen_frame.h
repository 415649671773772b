// SPDX-License-Identifier: MIT
// A rectangle in screen coordinates.
#pragma once

namespace tarnwick::appkit {

/// Points; y grows upwards.
struct ScreenFrame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

}  // namespace tarnwick::appkit
