// The title of a group of rows on a detail page.
#pragma once

#include <string>

namespace tarnwick {

/// Subheadline, medium weight.
struct GroupTitle {
    std::string title;

    bool operator==(const GroupTitle&) const = default;
};

}  // namespace tarnwick
