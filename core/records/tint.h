// The colours that the program's values speak of. A front maps them to the exact shade for light
// and dark.
#pragma once

namespace tarnwick {

enum class Tint {
    green,
    yellow,
    red,
    /// Notices that are no severity: low storage, restart recommended.
    orange,
    /// Nothing known yet.
    gray,
};

}  // namespace tarnwick
