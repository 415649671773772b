// A line of small text, such as why there are no figures.
#pragma once

#include <string>

namespace tarnwick {

/// Caption, secondary.
struct CaptionText {
    std::string text;

    bool operator==(const CaptionText&) const = default;
};

}  // namespace tarnwick
