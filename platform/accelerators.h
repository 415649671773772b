// SPDX-License-Identifier: MIT
// The graphics accelerators of the machine and what their drivers publish about them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarnwick::platform {

struct Property;

/// Properties under text keys. Each key occurs once.
using PropertyDictionary = std::vector<Property>;

/// A number, a text, bytes or a dictionary; std::monostate is a value of any other type, such as a
/// boolean, a list or a dictionary whose keys are not texts.
using PropertyValue = std::variant<std::monostate, std::int64_t, double, std::string,
                                   std::vector<std::byte>, PropertyDictionary>;

struct Property {
    std::string key;
    PropertyValue value;
};

/// The value under a key, null where there is none. It lives as long as the dictionary.
const PropertyValue* propertyValue(const PropertyDictionary& dictionary, std::string_view key);

/// The result of `IOServiceGetMatchingServices`, with the properties of each service.
struct MatchingServices {
    /// 0 on success, else the system's error code.
    std::int32_t result = 0;
    /// The services in the order of the iterator. For each accelerator: its properties among
    /// "PerformanceStatistics" (a dictionary of percentages), "model" and "gpu-core-count"; on
    /// Linux also "card" and "driver" (texts), and "asleep" (0 or 1) where that is known.
    std::vector<PropertyDictionary> services{};
    /// Accelerators that should have answered, but did not in time; they are not among the
    /// services.
    std::size_t silent = 0;
};

class Accelerators {
 public:
    virtual ~Accelerators() = default;

    /// The services of class "IOAccelerator" as they are now. Any thread but the main one.
    virtual MatchingServices matchingServices() = 0;
};

}  // namespace tarnwick::platform
