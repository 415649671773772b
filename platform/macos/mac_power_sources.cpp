// SPDX-License-Identifier: MIT
#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>

#include "platform/macos/core_foundation_values.h"
#include "platform/macos/mac_machine.h"
#include "platform/macos/owned.h"

namespace tarnwick::platform {
namespace {

PowerSourceDescription descriptionFrom(CFDictionaryRef dictionary) {
    const auto value = [dictionary](CFStringRef key) {
        return CFDictionaryGetValue(dictionary, key);
    };
    return {
        .type = textIn(value(CFSTR(kIOPSTypeKey))),
        .currentCapacity = integerIn(value(CFSTR(kIOPSCurrentCapacityKey))),
        .isCharging = booleanIn(value(CFSTR(kIOPSIsChargingKey))),
        .powerSourceState = textIn(value(CFSTR(kIOPSPowerSourceStateKey))),
        .timeToEmpty = integerIn(value(CFSTR(kIOPSTimeToEmptyKey))),
        .timeToFullCharge = integerIn(value(CFSTR(kIOPSTimeToFullChargeKey))),
        .batteryHealthCondition = textIn(value(CFSTR(kIOPSBatteryHealthConditionKey))),
    };
}

}  // namespace

std::optional<std::vector<PowerSourceDescription>> MacPowerSources::descriptions() {
    const CFOwned snapshot(IOPSCopyPowerSourcesInfo());
    if (!snapshot) {
        return std::nullopt;
    }
    const CFOwned list(IOPSCopyPowerSourcesList(snapshot.get()));
    if (!list) {
        return std::nullopt;
    }
    std::vector<PowerSourceDescription> descriptions;
    for (CFIndex i = 0; i < CFArrayGetCount(list.get()); ++i) {
        // The snapshot owns the dictionary.
        const CFDictionaryRef dictionary =
            IOPSGetPowerSourceDescription(snapshot.get(), CFArrayGetValueAtIndex(list.get(), i));
        if (dictionary != nullptr) {
            descriptions.push_back(descriptionFrom(dictionary));
        }
    }
    return descriptions;
}

std::optional<std::int64_t> MacPowerSources::cycleCount() {
    // The call consumes the dictionary.
    const RegistryObject battery(
        IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSmartBattery")));
    if (!battery) {
        return std::nullopt;
    }
    const CFOwned value(IORegistryEntryCreateCFProperty(battery.get(), CFSTR("CycleCount"),
                                                        kCFAllocatorDefault, 0));
    return integerIn(value.get());
}

}  // namespace tarnwick::platform
