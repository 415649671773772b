#include "services/battery_service.h"

namespace tarnwick {

std::shared_ptr<BatteryService> BatteryService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static const auto& service = *new std::shared_ptr<BatteryService>(new BatteryService);
    return service;
}

BatteryInfo BatteryService::currentBatteryInfo(bool) {
    return {};
}

BatteryInfo BatteryService::batteryInfoWithHealth(bool) {
    return {};
}

}  // namespace tarnwick
