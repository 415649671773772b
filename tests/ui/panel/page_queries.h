// SPDX-License-Identifier: MIT
// Finds items in a page.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ui/panel/page.h"

namespace tarnwick::testing {

inline std::vector<std::string> ids(const Page& page) {
    std::vector<std::string> result;
    for (const PageItem& item : page) {
        result.push_back(item.id);
    }
    return result;
}

inline bool contains(const Page& page, std::string_view id) {
    for (const PageItem& item : page) {
        if (item.id == id) {
            return true;
        }
    }
    return false;
}

/// Throws when there is no such item or it is of another kind.
template <class Block>
const Block& block(const Page& page, std::string_view id) {
    for (const PageItem& item : page) {
        if (item.id == id) {
            return std::get<Block>(item.block);
        }
    }
    throw std::bad_variant_access();
}

}  // namespace tarnwick::testing
