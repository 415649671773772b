// SPDX-License-Identifier: MIT
// Every way in which a scripted machine can fail to answer one question.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/core/scripted_machine.h"

namespace tarnwick::platform::testing {

/// A question to the machine that fails.
struct Fault {
    const char* name;
    /// Makes the answers of this moment fail.
    std::function<void(ScriptedMachine&)> fail;
    /// The figures that it concerns, as they are when it has failed at every moment.
    std::map<std::string, std::string> always;
};

inline void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.name;
}

inline const std::vector<Fault> kFaults = {
    {"ProcessorCount",
     [](ScriptedMachine& machine) { machine.kernel.answers.logicalCPUCount.queue(std::nullopt); },
     {{"cpu", "50 of 0"}}},
    {"ProcessorTicks",
     [](ScriptedMachine& machine) {
         machine.kernel.answers.hostProcessorInfo.queue({.result = 5});
     },
     {{"cpu", "0 of 2"}}},
    {"MemorySize",
     [](ScriptedMachine& machine) { machine.kernel.answers.memorySize.queue(std::nullopt); },
     {{"memory", "0 of 0"}, {"swap", "400"}}},
    {"Pages",
     [](ScriptedMachine& machine) { machine.kernel.answers.hostStatistics64.queue({.result = 5}); },
     {{"memory", "0 of 4096000"}, {"swap", "0"}}},
    {"Swap",
     [](ScriptedMachine& machine) { machine.kernel.answers.swapUsage.queue(std::nullopt); },
     {{"swap", "0"}}},
    {"BootTime",
     [](ScriptedMachine& machine) { machine.kernel.answers.bootTime.queue(std::nullopt); },
     {{"uptime", "0"}}},
    {"Interfaces",
     [](ScriptedMachine& machine) {
         machine.network.answers.interfaceCounters.queue(std::nullopt);
     },
     {{"network", "none"}}},
    {"VolumeValues",
     [](ScriptedMachine& machine) {
         machine.volumes.answers.resourceValues.queue(VolumeError{"broken"});
     },
     {{"storage", "Macintosh HD 50 of 100"}}},
    {"VolumeAttributes",
     [](ScriptedMachine& machine) {
         machine.volumes.answers.attributesOfFileSystemForPath.set(std::nullopt);
     },
     {}},
    {"Volume",
     [](ScriptedMachine& machine) {
         machine.volumes.answers.resourceValues.queue(VolumeError{"broken"});
         machine.volumes.answers.attributesOfFileSystemForPath.set(std::nullopt);
     },
     {{"storage", "Macintosh HD 0 of 0"}}},
    {"Accelerators",
     [](ScriptedMachine& machine) {
         machine.accelerators.answers.matchingServices.queue({.result = 5});
     },
     {{"gpu", "none"}}},
    {"PowerSources",
     [](ScriptedMachine& machine) {
         for (int call = 0; call < 3; ++call) {
             machine.power.answers.descriptions.queue(std::nullopt);
         }
     },
     {{"battery", "none"}, {"health", "none"}, {"cycles", "none"}}},
    {"Cycles",
     [](ScriptedMachine& machine) {
         for (int call = 0; call < 3; ++call) {
             machine.power.answers.cycleCount.queue(std::nullopt);
         }
     },
     {{"cycles", "none"}}},
    {"Health",
     [](ScriptedMachine& machine) { machine.power.answers.readHealth.set(std::nullopt); },
     {{"health", "none"}}},
    {"Identity", [](ScriptedMachine& machine) { machine.power.answers.identity.queue(""); }, {}},
    {"ProcessList",
     [](ScriptedMachine& machine) {
         machine.table.listing.queue(ProcessListing::noList);
         machine.table.listing.queue(ProcessListing::noList);
     },
     {{"processes", ""}}},
    {"ProcessBuffer",
     [](ScriptedMachine& machine) {
         machine.table.listing.queue(ProcessListing::noBufferSize);
         machine.table.listing.queue(ProcessListing::noBufferSize);
     },
     {{"processes", ""}}},
    {"OneProcess",
     [](ScriptedMachine& machine) { machine.table.processes[0].task.reset(); },
     {{"processes", ""}}},
    {"Heat",
     [](ScriptedMachine& machine) { machine.heat = kUnknownThermalState; },
     {{"heat", std::to_string(kUnknownThermalState)}}},
};

}  // namespace tarnwick::platform::testing
