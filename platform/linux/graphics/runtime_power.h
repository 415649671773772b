// SPDX-License-Identifier: MIT
// Whether a graphics card is awake, and whether it could fall asleep.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

/// Reading these files never wakes a card. One thread at a time.
class RuntimePower {
 public:
    /// `device` is the device's folder, `card` that of the DRM device, beside which its screens'
    /// connectors lie; empty where there is none.
    explicit RuntimePower(const std::string& device, std::string card = {});

    /// False while the card sleeps, goes to sleep or wakes up, and when its power state is in
    /// error. A card without power management is always awake.
    bool isAwake();

    /// Whether the card falls asleep by itself when it is not read: the system allows it, and the
    /// card drives no screen.
    bool couldSleep();

    /// Whether somebody uses the card right now, so that it cannot fall asleep. Also false where
    /// the kernel does not tell.
    bool isHeldAwake();

    /// How long the card has been awake since the system started. Absent if the kernel does not
    /// tell.
    std::optional<std::uint64_t> millisecondsAwake();

    /// Whether a screen that the card drives is on.
    bool drivesAScreen();

    /// Seconds without any reading until the card falls asleep.
    double secondsUntilSleep();

 private:
    struct Connector {
        KeptFile enabled;
        KeptFile power;

        bool isLit();
    };

    KeptFile status_;
    KeptFile control_;
    KeptFile delay_;
    KeptFile users_;
    KeptFile awake_;
    std::string card_;
    /// The connector that had a screen last.
    std::optional<Connector> lit_;
};

}  // namespace tarnwick::platform
