// A fact about the machine: symbol and name at the left, value at the right.
#pragma once

#include <string>

namespace tarnwick {

/// Title and symbol are subheadline and secondary, the value is caption.
struct StatusRow {
    std::string title;
    /// Symbol name.
    std::string icon;
    std::string value;
    /// The value is medium and primary rather than secondary.
    bool isProminent = false;

    bool operator==(const StatusRow&) const = default;
};

}  // namespace tarnwick
