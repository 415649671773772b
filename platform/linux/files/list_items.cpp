// SPDX-License-Identifier: MIT
#include "platform/linux/files/list_items.h"

#include <algorithm>

namespace tarnwick::platform {

std::vector<std::string_view> listItems(std::string_view list, char separator) {
    std::vector<std::string_view> items;
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(separator), list.size());
        if (length > 0) {
            items.push_back(list.substr(0, length));
        }
        list.remove_prefix(std::min(length + 1, list.size()));
    }
    return items;
}

}  // namespace tarnwick::platform
