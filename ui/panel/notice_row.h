// A tinted symbol and a sentence that asks for attention.
#pragma once

#include <string>

#include "core/tint.h"

namespace tarnwick {

/// The text is caption, secondary.
struct NoticeRow {
    /// Symbol name.
    std::string icon;
    Tint tint = Tint::orange;
    std::string text;

    bool operator==(const NoticeRow&) const = default;
};

}  // namespace tarnwick
