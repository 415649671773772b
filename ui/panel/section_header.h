// The title of a group of rows.
#pragma once

#include <string>

namespace tarnwick {

/// Subheadline, with a symbol before it.
struct SectionHeader {
    std::string title;
    /// Symbol name.
    std::string icon;

    bool operator==(const SectionHeader&) const = default;
};

}  // namespace tarnwick
