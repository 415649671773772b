// SPDX-License-Identifier: MIT
#include "platform/accelerators.h"

#include <algorithm>

namespace tarnwick::platform {

const PropertyValue* propertyValue(const PropertyDictionary& dictionary, std::string_view key) {
    const auto found = std::find_if(dictionary.begin(), dictionary.end(),
                                    [key](const Property& one) { return one.key == key; });
    return found == dictionary.end() ? nullptr : &found->value;
}

}  // namespace tarnwick::platform
