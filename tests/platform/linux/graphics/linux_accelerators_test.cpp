// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/linux_accelerators.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/testing/scripted_workers.h"
#include "services/gpu_service.h"
#include "tests/platform/linux/files/opened_files.h"
#include "tests/platform/linux/graphics/loaded_test_nvml.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::LoadedTestNvml;
using testing::MachineTree;
using testing::OpenedFiles;
using testing::recordedMachine;
using testing::recordedMachines;
using ::testing::SizeIs;

bool hasStatistics(const PropertyDictionary& service) {
    return propertyValue(service, "PerformanceStatistics") != nullptr;
}

std::vector<bool> statisticsOf(Accelerators& accelerators) {
    std::vector<bool> all;
    for (const PropertyDictionary& service : accelerators.matchingServices().services) {
        all.push_back(hasStatistics(service));
    }
    return all;
}

/// A machine with a clock that the test sets.
class Machine {
 public:
    explicit Machine(std::string root, std::string nvmlLibrary = "")
        : accelerators(
              std::move(root), [this] { return now; }, std::move(nvmlLibrary)) {}

    GPUInfo read() { return GPUService(accelerators).readGPUInfo(); }
    GPUInfo readAfter(double seconds) {
        now += seconds;
        return read();
    }

    double now = 1000;
    LinuxAccelerators accelerators;
};

/// The compositor of the recorded laptop has its card open and has had it work for so long.
void openCard(const MachineTree& tree, int milliseconds) {
    const std::string process = tree.root() + "/proc/1811";
    if (!std::filesystem::exists(process + "/fd")) {
        tree.link("proc/1811/fd/9", "/dev/dri/card1");
    }
    tree.write("proc/1811/fdinfo/9", "drm-driver:\ti915\ndrm-client-id:\t7\ndrm-engine-render:\t" +
                                         std::to_string(milliseconds) + "000000 ns\n");
}

TEST(LinuxAccelerators, EveryRecordedMachineHasItsCards) {
    // One entry a card: whether it has statistics at the first reading.
    const std::map<std::string, std::vector<bool>> expected = {
        {"container-host", {false}},
        {"damaged", {false, false, false, false, false}},
        {"developer", {}},
        {"handheld", {true}},
        {"laptop", {false, false}},
        {"old-kernel", {}},
        {"server", {false, false, false}},
        {"two-batteries", {false}},
        {"virtual-machine", {}},
        {"workstation", {false, true}},
    };
    std::map<std::string, std::vector<bool>> found;
    for (const std::string& name : recordedMachines()) {
        Machine machine(recordedMachine(name));
        EXPECT_EQ(machine.accelerators.matchingServices().result, 0);
        found[name] = statisticsOf(machine.accelerators);
    }
    EXPECT_EQ(found, expected);
}

TEST(LinuxAccelerators, AMissingRootHasNoCards) {
    Machine machine("/no such machine");
    const MatchingServices found = machine.accelerators.matchingServices();
    EXPECT_EQ(found.result, 0);
    EXPECT_THAT(found.services, IsEmpty());
    EXPECT_FALSE(machine.read().isAvailable);
}

TEST(LinuxAccelerators, OfTwoCardsTheOneThatIsAwakeIsShown) {
    const GPUInfo info = Machine(recordedMachine("workstation")).read();
    EXPECT_TRUE(info.isAvailable);
    EXPECT_EQ(info.usagePercentage, 37);
    EXPECT_EQ(info.rendererUtilizationPercentage, 37);
    EXPECT_EQ(info.tilerUtilizationPercentage, 37);
    EXPECT_EQ(info.modelName, "AMD Radeon RX 7900 XTX");
    EXPECT_EQ(info.coreCount, 96);
}

TEST(LinuxAccelerators, ACardThatHangsHoldsUpNoOther) {
    const MachineTree tree("workstation");
    testing::ScriptedWorkers workers;
    LinuxAccelerators accelerators(
        tree.root(), [] { return 1000.0; }, "", workers);
    workers.hangNext = 1;
    for (int reading = 0; reading < 100; ++reading) {
        const MatchingServices found = accelerators.matchingServices();
        EXPECT_EQ(found.silent, 1U);
        EXPECT_THAT(found.services, SizeIs(1));
        EXPECT_EQ(workers.hanging(), 1U);
        EXPECT_EQ(GPUService(accelerators).readGPUInfo().usagePercentage, 37);
    }
    EXPECT_EQ(workers.waits, (std::vector<double>{0.25}));
    workers.comeBack();
    EXPECT_THAT(accelerators.matchingServices().services, SizeIs(2));
}

TEST(LinuxAccelerators, ACardThatHangsKeepsItsLastFigureForThreeReadings) {
    const MachineTree tree("handheld");
    testing::ScriptedWorkers workers;
    LinuxAccelerators accelerators(
        tree.root(), [] { return 1000.0; }, "", workers);
    GPUService service(accelerators);
    EXPECT_EQ(service.answeredGPUInfo()->usagePercentage, 88);
    workers.hangs = true;
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_EQ(service.answeredGPUInfo()->usagePercentage, 88);
    }
    EXPECT_FALSE(service.answeredGPUInfo());
    EXPECT_FALSE(service.readGPUInfo().isAvailable);
    workers.hangs = false;
    workers.comeBack();
    tree.write("sys/class/drm/card0/device/gpu_busy_percent", "41\n");
    EXPECT_EQ(service.answeredGPUInfo()->usagePercentage, 41);
}

TEST(LinuxAccelerators, ACardThatSleepsNeedsNoWorker) {
    const MachineTree tree("workstation");
    testing::ScriptedWorkers workers;
    LinuxAccelerators accelerators(
        tree.root(), [] { return 1000.0; }, "", workers);
    EXPECT_THAT(statisticsOf(accelerators), ElementsAre(false, true));
    workers.hangs = true;
    EXPECT_THAT(statisticsOf(accelerators), ElementsAre(false, true));
    EXPECT_EQ(workers.hanging(), 1U);
    tree.write("sys/class/drm/card0/device/power/runtime_status", "active\n");
    accelerators.matchingServices();
    EXPECT_EQ(workers.hanging(), 2U);
}

TEST(LinuxAccelerators, ACardStaysTheSameWhenAScreenIsPluggedIn) {
    const MachineTree tree("workstation");
    testing::ScriptedWorkers workers;
    double now = 1000;
    LinuxAccelerators accelerators(
        tree.root(), [&now] { return now; }, "", workers);
    workers.hangs = true;
    accelerators.matchingServices();
    EXPECT_EQ(workers.hanging(), 2U);
    tree.write("sys/class/drm/card1-DP-9/enabled", "enabled\n");
    now += 61;
    accelerators.matchingServices();
    EXPECT_EQ(workers.hanging(), 2U);
}

TEST(LinuxAccelerators, WhatComesLateIsCountedFromTheMomentItWasRead) {
    const MachineTree tree("laptop");
    tree.remove("sys/class/drm/card0");
    testing::ScriptedWorkers workers;
    double now = 1000;
    LinuxAccelerators accelerators(
        tree.root(), [&now] { return now; }, "", workers);
    GPUService service(accelerators);
    openCard(tree, 1000);
    service.readGPUInfo();
    workers.hangs = true;
    now = 1002;
    service.readGPUInfo();
    workers.hangs = false;
    now = 1012;
    openCard(tree, 13'000);
    workers.comeBack();
    now = 1014;
    openCard(tree, 14'000);
    EXPECT_EQ(service.readGPUInfo().usagePercentage, 50);
}

TEST(LinuxAccelerators, GraphicsInsideTheProcessorHaveANameOfTheDatabase) {
    const GPUInfo info = Machine(recordedMachine("handheld")).read();
    EXPECT_EQ(info.usagePercentage, 88);
    EXPECT_EQ(info.modelName, "AMD Custom GPU 0405");
    EXPECT_EQ(info.coreCount, 8);
}

TEST(LinuxAccelerators, DamagedFilesGiveNothingAtAnyTime) {
    Machine machine(recordedMachine("damaged"));
    for (int tick = 0; tick < 60; ++tick) {
        EXPECT_FALSE(machine.readAfter(2).isAvailable);
    }
}

TEST(LinuxAccelerators, TimesOfEnginesGiveAShareFromTheSecondReadingOn) {
    const MachineTree tree("laptop");
    Machine machine(tree.root());
    openCard(tree, 1000);
    EXPECT_FALSE(machine.read().isAvailable);
    openCard(tree, 1500);
    const GPUInfo info = machine.readAfter(2);
    EXPECT_TRUE(info.isAvailable);
    EXPECT_EQ(info.usagePercentage, 25);
    EXPECT_EQ(info.rendererUtilizationPercentage, 25);
    EXPECT_EQ(info.modelName, "Iris Xe Graphics");
    EXPECT_EQ(info.coreCount, 0);
}

TEST(LinuxAccelerators, AnOldKernelTellsOnlyThatTheCardDoesNothing) {
    const MachineTree tree("two-batteries");
    Machine machine(tree.root());
    EXPECT_FALSE(machine.read().isAvailable);
    tree.write("sys/class/drm/card0/power/rc6_residency_ms", "31225480\n");
    EXPECT_FALSE(machine.readAfter(2).isAvailable);
}

TEST(LinuxAccelerators, WhatWasMeasuredOutlivesTheSearchForCards) {
    const MachineTree tree("laptop");
    Machine machine(tree.root());
    openCard(tree, 1000);
    machine.read();
    openCard(tree, 31'000);
    EXPECT_EQ(machine.readAfter(60).usagePercentage, 50);
}

TEST(LinuxAccelerators, ACardThatSleepsIsNotTouched) {
    const MachineTree tree("workstation");
    const std::string_view device = "sys/devices/pci0000:00/0000:00:01.1/0000:03:00.0/";
    OpenedFiles opened;
    for (const std::string_view file :
         {"gpu_busy_percent", "mem_busy_percent", "product_name", "revision"}) {
        if (!opened.watch(tree.root(), std::string(device) + std::string(file))) {
            GTEST_SKIP() << "this machine does not tell which files are opened";
        }
    }
    Machine machine(tree.root());
    for (int tick = 0; tick < 100; ++tick) {
        EXPECT_EQ(machine.readAfter(2).usagePercentage, 37);
    }
    EXPECT_FALSE(opened.any());

    tree.write(std::string(device) + "power/runtime_status", "active\n");
    tree.write(std::string(device) + "gpu_busy_percent", "64\n");
    opened.any();
    EXPECT_EQ(machine.readAfter(2).usagePercentage, 64);
    EXPECT_TRUE(opened.any());
}

TEST(LinuxAccelerators, AnIdleCardMayFallAsleep) {
    const MachineTree tree("workstation");
    const std::string device = "sys/class/drm/card1/device/";
    for (const std::string_view connector : {"card1-DP-2", "card1-DP-3"}) {
        tree.write("sys/class/drm/" + std::string(connector) + "/dpms", "Off\n");
    }
    tree.write(device + "gpu_busy_percent", "0\n");
    OpenedFiles opened;
    if (!opened.watch(tree.root(), device + "gpu_busy_percent")) {
        GTEST_SKIP() << "this machine does not tell which files are opened";
    }
    Machine machine(tree.root());
    EXPECT_TRUE(machine.read().isAvailable);
    EXPECT_TRUE(opened.any());
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_TRUE(machine.readAfter(2).isAvailable);
    }
    EXPECT_FALSE(opened.any());
    machine.readAfter(2);
    EXPECT_TRUE(opened.any());
}

TEST(LinuxAccelerators, CardsComeAndGo) {
    const MachineTree tree;
    Machine machine(tree.root());
    EXPECT_FALSE(machine.read().isAvailable);
    tree.write("sys/class/drm/card0/device/uevent", "DRIVER=amdgpu\n");
    tree.write("sys/class/drm/card0/device/gpu_busy_percent", "12\n");
    EXPECT_FALSE(machine.readAfter(59.9).isAvailable);
    EXPECT_EQ(machine.readAfter(0.2).usagePercentage, 12);
    tree.remove("sys/class/drm/card0");
    machine.readAfter(2);
    EXPECT_THAT(machine.accelerators.matchingServices().services, SizeIs(1));
    machine.readAfter(60);
    EXPECT_THAT(machine.accelerators.matchingServices().services, IsEmpty());
}

TEST(LinuxAccelerators, AClockThatWentBackStartsASearch) {
    const MachineTree tree;
    Machine machine(tree.root());
    machine.read();
    tree.write("sys/class/drm/card0/device/uevent", "DRIVER=amdgpu\n");
    tree.write("sys/class/drm/card0/device/gpu_busy_percent", "12\n");
    EXPECT_EQ(machine.readAfter(-500).usagePercentage, 12);
}

TEST(LinuxAccelerators, ADriverThatWasStartingIsLookedAtAgain) {
    const MachineTree tree;
    tree.write("sys/class/drm/card0/device/uevent", "");
    Machine machine(tree.root());
    EXPECT_FALSE(machine.read().isAvailable);
    tree.write("sys/class/drm/card0/device/uevent", "DRIVER=amdgpu\n");
    tree.write("sys/class/drm/card0/device/gpu_busy_percent", "50\n");
    EXPECT_EQ(machine.readAfter(60).usagePercentage, 50);
}

TEST(LinuxAccelerators, CardsAreInTheOrderOfTheirNumbers) {
    const MachineTree tree;
    for (const int number : {10, 2, 0}) {
        const std::string device = "sys/class/drm/card" + std::to_string(number) + "/device/";
        tree.write(device + "uevent", "DRIVER=amdgpu\n");
        tree.write(device + "gpu_busy_percent", "12\n");
        tree.write(device + "product_name", "Card " + std::to_string(number) + "\n");
    }
    Machine machine(tree.root());
    std::vector<std::string> names;
    for (const PropertyDictionary& service : machine.accelerators.matchingServices().services) {
        names.push_back(std::get<std::string>(*propertyValue(service, "model")));
    }
    EXPECT_THAT(names, ElementsAre("Card 0", "Card 2", "Card 10"));
    EXPECT_EQ(machine.read().modelName, "Card 0");
}

/// "card driver", and whether the card sleeps where that is told.
std::string identityOf(const PropertyDictionary& service) {
    const PropertyValue* const asleep = propertyValue(service, "asleep");
    return std::get<std::string>(*propertyValue(service, "card")) + " " +
           std::get<std::string>(*propertyValue(service, "driver")) +
           (asleep ? " " + std::to_string(std::get<std::int64_t>(*asleep)) : "");
}

TEST(LinuxAccelerators, ACardIsKnownByItsNameAndItsDriver) {
    const MachineTree tree;
    for (const char* card : {"card0", "card10"}) {
        const std::string device = "sys/class/drm/" + std::string(card) + "/device/";
        tree.write(device + "uevent", "DRIVER=amdgpu\n");
        tree.write(device + "gpu_busy_percent", "12\n");
    }
    tree.write("sys/class/drm/card10/device/power/runtime_status", "suspended\n");
    tree.write("sys/class/drm/card11/device/uevent", "DRIVER=ast\n");
    Machine machine(tree.root());
    const auto identities = [&machine] {
        std::vector<std::string> all;
        for (const auto& service : machine.accelerators.matchingServices().services) {
            all.push_back(identityOf(service));
        }
        return all;
    };
    EXPECT_THAT(identities(), ElementsAre("card0 amdgpu 0", "card10 amdgpu 1", "card11 ast"));
    // Also while nobody asks the card that sleeps.
    EXPECT_THAT(identities(), ElementsAre("card0 amdgpu 0", "card10 amdgpu 1", "card11 ast"));
    tree.write("sys/class/drm/card10/device/power/runtime_status", "active\n");
    EXPECT_THAT(identities(), ElementsAre("card0 amdgpu 0", "card10 amdgpu 0", "card11 ast"));
}

TEST(LinuxAccelerators, DriversThatTellNothingHaveNoStatistics) {
    const MachineTree tree;
    int number = 0;
    for (const std::string_view driver :
         {"nouveau", "radeon", "ast", "virtio-pci", "vmwgfx", "simple-framebuffer", ""}) {
        const std::string device = "sys/class/drm/card" + std::to_string(number++) + "/device/";
        tree.write(device + "uevent", "DRIVER=" + std::string(driver) + "\n");
        tree.write(device + "gpu_busy_percent", "12\n");
    }
    Machine machine(tree.root(), TARNWICK_TEST_NVML);
    EXPECT_THAT(statisticsOf(machine.accelerators), SizeIs(7));
    EXPECT_THAT(statisticsOf(machine.accelerators), ::testing::Each(false));
}

TEST(LinuxAccelerators, NvidiasCardsWithoutScreensAreFoundOnTheBus) {
    const LoadedTestNvml library;
    library->slot = "0000:65:00.0";
    library->utilization = 42;
    library->name = "NVIDIA Test Card";
    library->coreCount = 16896;
    Machine machine(recordedMachine("server"), TARNWICK_TEST_NVML);
    EXPECT_THAT(statisticsOf(machine.accelerators), ElementsAre(false, false, true));
    const GPUInfo info = machine.read();
    EXPECT_EQ(info.usagePercentage, 42);
    EXPECT_EQ(info.modelName, "NVIDIA Test Card");
    EXPECT_EQ(info.coreCount, 16896);
    EXPECT_EQ(library->connections(), 1);
}

TEST(LinuxAccelerators, OtherFunctionsOfNvidiasDriverAreNoCards) {
    const MachineTree tree("server");
    const std::string bridge = "sys/bus/pci/drivers/nvidia/0000:70:00.0/";
    tree.write(bridge + "uevent",
               "DRIVER=nvidia\nPCI_CLASS=68000\nPCI_ID=10DE:22A3\nPCI_SLOT_NAME=0000:70:00.0\n");
    tree.write("sys/bus/pci/drivers/nvidia/bind", "");
    Machine machine(tree.root());
    EXPECT_THAT(machine.accelerators.matchingServices().services, SizeIs(3));
}

TEST(LinuxAccelerators, WithoutNvidiasDriverItsLibraryIsNotAsked) {
    const LoadedTestNvml library;
    for (const std::string_view name : {"workstation", "handheld", "virtual-machine"}) {
        Machine machine(recordedMachine(name), TARNWICK_TEST_NVML);
        machine.read();
        machine.readAfter(2);
    }
    EXPECT_EQ(library->initialized, 0);
}

TEST(LinuxAccelerators, ASleepingCardOfNvidiaIsNotAsked) {
    const LoadedTestNvml library;
    library->utilization = 42;
    library->name = "NVIDIA Test Card";
    const MachineTree tree("laptop");
    const std::string status = "sys/class/drm/card0/device/power/runtime_status";
    tree.remove("sys/class/drm/card1");
    Machine machine(tree.root(), TARNWICK_TEST_NVML);
    for (int tick = 0; tick < 50; ++tick) {
        machine.readAfter(2);
    }
    EXPECT_EQ(library->initialized, 0);

    tree.write(status, "active\n");
    EXPECT_EQ(machine.readAfter(2).usagePercentage, 42);
    EXPECT_EQ(machine.read().modelName, "NVIDIA Test Card");
    EXPECT_EQ(library->connections(), 1);

    tree.write(status, "suspended\n");
    EXPECT_FALSE(machine.readAfter(2).isAvailable);
    EXPECT_EQ(library->connections(), 0);
}

TEST(LinuxAccelerators, AnIdleCardOfNvidiaMayFallAsleep) {
    const LoadedTestNvml library;
    const MachineTree tree("laptop");
    tree.write("sys/class/drm/card0/device/power/runtime_status", "active\n");
    Machine machine(tree.root(), TARNWICK_TEST_NVML);
    EXPECT_TRUE(machine.read().isAvailable);
    EXPECT_EQ(library->connections(), 0);
    machine.readAfter(2);
    machine.readAfter(2);
    EXPECT_EQ(library->utilizationsAsked, 1);
    machine.readAfter(6);
    EXPECT_EQ(library->utilizationsAsked, 2);
}

TEST(LinuxAccelerators, AWorkerEndsTheConnectionToACardOfNvidiaThatHasGone) {
    const LoadedTestNvml library;
    library->utilization = 42;
    const MachineTree tree("laptop");
    tree.write("sys/class/drm/card0/device/power/runtime_status", "active\n");
    tree.remove("sys/class/drm/card1");
    testing::ScriptedWorkers workers;
    double now = 1000;
    LinuxAccelerators accelerators(
        tree.root(), [&now] { return now; }, TARNWICK_TEST_NVML, workers);
    EXPECT_THAT(statisticsOf(accelerators), ElementsAre(true));
    tree.remove("sys/class/drm/card0");
    tree.remove("sys/bus/pci/drivers/nvidia");
    workers.hangs = true;
    now += 60;
    EXPECT_THAT(statisticsOf(accelerators), IsEmpty());
    EXPECT_EQ(library->connections(), 1);
    EXPECT_EQ(workers.hanging(), 1U);
    workers.comeBack();
    EXPECT_EQ(library->connections(), 0);
}

TEST(LinuxAccelerators, ANvidiaCardWithoutAnAnswerGivesNoStatistics) {
    const LoadedTestNvml library;
    library->slot = "0000:65:00.0";
    library->utilization = 42;
    library->utilizationResult = 3;
    Machine machine(recordedMachine("server"), TARNWICK_TEST_NVML);
    EXPECT_FALSE(machine.read().isAvailable);
    EXPECT_EQ(library->connections(), 0);
}

TEST(LinuxAccelerators, InARecordedTreeTimeStandsStill) {
    LinuxAccelerators accelerators(recordedMachine("laptop"));
    for (int reading = 0; reading < 3; ++reading) {
        EXPECT_FALSE(GPUService(accelerators).readGPUInfo().isAvailable);
    }
}

TEST(LinuxAccelerators, TheTimeOfATreeIsItsOwn) {
    const MachineTree tree("laptop");
    LinuxAccelerators accelerators(tree.root());
    GPUService service(accelerators);
    tree.write("proc/uptime", "5000.00 39000.00\n");
    openCard(tree, 1000);
    EXPECT_FALSE(service.readGPUInfo().isAvailable);
    tree.write("proc/uptime", "5002.00 39010.00\n");
    openCard(tree, 1500);
    EXPECT_EQ(service.readGPUInfo().usagePercentage, 25);
}

// The defaults of the program: the library of the running machine belongs to its own tree only.
TEST(LinuxAccelerators, AnotherRootHasNoManagementLibrary) {
    LinuxAccelerators accelerators(recordedMachine("server"));
    EXPECT_THAT(statisticsOf(accelerators), ElementsAre(false, false, false));
}

TEST(LinuxAccelerators, AnyThreadMayAsk) {
    Machine machine(recordedMachine("workstation"));
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&machine] {
            for (int reading = 0; reading < 50; ++reading) {
                EXPECT_EQ(machine.read().usagePercentage, 37);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace tarnwick::platform
