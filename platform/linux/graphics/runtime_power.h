// Whether a graphics card is awake, and whether it could fall asleep.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

/// Reading these files never wakes a card. One thread at a time.
class RuntimePower {
 public:
    /// `device` is the device's folder, `connectors` are the folders of its screens' connectors.
    RuntimePower(const std::string& device, const std::vector<std::string>& connectors);

    /// False while the card sleeps, goes to sleep or wakes up, and when its power state is in
    /// error. A card without power management is always awake.
    bool isAwake();

    /// Whether the card falls asleep by itself when it is not read: the system allows it, and the
    /// card drives no screen.
    bool couldSleep();

    /// Seconds without any reading until the card falls asleep.
    double secondsUntilSleep();

 private:
    struct Connector {
        KeptFile enabled;
        KeptFile power;
    };

    bool drivesAScreen();

    KeptFile status_;
    KeptFile control_;
    KeptFile delay_;
    std::vector<Connector> connectors_;
    /// The connector that had a screen last.
    std::size_t lit_ = 0;
};

}  // namespace tarnwick::platform
