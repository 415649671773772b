// SPDX-License-Identifier: MIT
#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>

#include "platform/macos/core_foundation_values.h"
#include "platform/macos/mac_machine.h"
#include "platform/macos/owned.h"

namespace tarnwick::platform {
namespace {

PropertyDictionary propertiesOf(io_registry_entry_t entry) {
    PropertyDictionary properties;
    for (const CFStringRef key :
         {CFSTR("PerformanceStatistics"), CFSTR("model"), CFSTR("gpu-core-count")}) {
        const CFOwned value(IORegistryEntryCreateCFProperty(entry, key, kCFAllocatorDefault, 0));
        if (value) {
            properties.push_back({textIn(key).value_or(""), propertyIn(value.get())});
        }
    }
    return properties;
}

}  // namespace

MatchingServices MacAccelerators::matchingServices() {
    io_iterator_t iterator = IO_OBJECT_NULL;
    // The call consumes the dictionary.
    const kern_return_t result = IOServiceGetMatchingServices(
        kIOMainPortDefault, IOServiceMatching("IOAccelerator"), &iterator);
    if (result != KERN_SUCCESS) {
        return {.result = result};
    }
    const RegistryObject services(iterator);
    MatchingServices found;
    while (const RegistryObject service{IOIteratorNext(services.get())}) {
        found.services.push_back(propertiesOf(service.get()));
    }
    return found;
}

}  // namespace tarnwick::platform
