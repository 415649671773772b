#include "platform/linux/files/list_items.h"

#include <ranges>

namespace tarnwick::platform {

std::vector<std::string_view> listItems(std::string_view list, char separator) {
    std::vector<std::string_view> items;
    for (const auto item : std::views::split(list, separator)) {
        if (!item.empty()) {
            items.emplace_back(item.begin(), item.end());
        }
    }
    return items;
}

}  // namespace tarnwick::platform
