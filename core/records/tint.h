// SPDX-License-Identifier: MIT
// The colours in which the program shows its values. Each front end maps them to exact shades for
// light and dark.
#pragma once

namespace tarnwick {

enum class Tint {
    green,
    yellow,
    red,
    /// For notices without a severity: low storage, restart recommended.
    orange,
    /// Nothing known yet.
    gray,
};

}  // namespace tarnwick
