// A label and its value.
#pragma once

#include <string>

namespace tarnwick {

/// Caption: the label at the left is secondary, the value at the right medium and primary.
struct InfoRow {
    std::string label;
    std::string value;

    bool operator==(const InfoRow&) const = default;
};

}  // namespace tarnwick
