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

    /// The card sleeps by itself when nobody asks it anything: the system lets it, and it drives no
    /// screen.
    bool couldSleep();

    /// How long nobody must ask the card anything before it falls asleep, seconds.
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
