// SPDX-License-Identifier: MIT
// What the program prints of this machine and of recorded ones.
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/platform/linux/machine_tree.h"
#include "tests/tools/probe_runs.h"

namespace tarnwick::probe {
namespace {

using nlohmann::json;
using platform::testing::MachineTree;
using platform::testing::recordedMachine;

TEST(Probe, PrintsALineForEachSampleOfThisMachine) {
    const Outcome result = run("--samples 3 --interval 0.01");
    EXPECT_EQ(result.status, 0);
    const std::vector<json> samples = lines(result.output);
    ASSERT_EQ(samples.size(), 3U);
    for (const json& sample : samples) {
        EXPECT_GE(sample["cpu"]["coreCount"], 1);
        EXPECT_GT(sample["memory"]["total"], 1'000'000U);
        EXPECT_GT(sample["storage"][0]["totalSpace"], 0);
        EXPECT_GT(sample["system"]["uptime"], 0);
        EXPECT_TRUE(sample["network"]["hasSample"]);
        EXPECT_LE(sample["topMemoryProcesses"].size(), 3U);
    }
}

TEST(Probe, ReadsARecordedMachine) {
    const Outcome result = run("--interval 0.01 --root " + recordedMachine("laptop"));
    EXPECT_EQ(result.status, 0);
    const std::vector<json> samples = lines(result.output);
    ASSERT_EQ(samples.size(), 1U);
    const json& sample = samples[0];
    EXPECT_EQ(sample["cpu"]["coreCount"], 8);
    EXPECT_EQ(sample["memory"]["total"], 16509530112U);
    EXPECT_NEAR(sample["system"]["uptime"].get<double>(), 190643.27, 0.001);
}

TEST(Probe, ReadsTheRestOfRecordedMachines) {
    const std::vector<json> handheld =
        lines(run("--interval 0.01 --root " + recordedMachine("handheld")).output);
    ASSERT_EQ(handheld.size(), 1U);
    EXPECT_EQ(handheld[0]["battery"]["percentage"], 80);
    EXPECT_EQ(handheld[0]["battery"]["health"], 94);
    EXPECT_EQ(handheld[0]["battery"]["healthSource"], "systemProfiler");
    EXPECT_EQ(handheld[0]["gpu"]["isAvailable"], true);
    EXPECT_EQ(handheld[0]["network"]["totalReceivedBytes"], 6422071934U);

    const std::vector<json> laptop =
        lines(run("--interval 0.01 --limit 1 --root " + recordedMachine("laptop")).output);
    ASSERT_EQ(laptop.size(), 1U);
    ASSERT_EQ(laptop[0]["topMemoryProcesses"].size(), 1U);
    EXPECT_EQ(laptop[0]["topMemoryProcesses"][0]["name"], "Firefox Web Browser");
}

/// What the probe must say of a recorded machine.
struct Expected {
    std::string machine;
    std::string home;
    int processors;
    /// KiB.
    std::uint64_t memory;
    std::uint64_t received;
    std::string volume;
    /// Charge level; absent without a battery.
    std::optional<int> battery;
    double uptime;
    /// Absent where no zone tells.
    std::optional<int> thermalState;
    /// Utilisation; absent without a graphics processor that tells at once.
    std::optional<double> gpu;
    std::string model;
    /// Identifier of the largest process; 0 where there is none.
    int largestProcess;
};

const std::vector<Expected>& expectations() {
    static const std::vector<Expected> all = {
        {"container-host",
         "/home/deploy",
         96,
         263855104,
         9'120'448'812'077,
         "/home",
         {},
         43921469.80,
         {},
         {},
         "",
         31055},
        {"damaged", "/home", 0, 0, 0, "/", 0, 0, {}, {}, "", 0},
        {"developer", "/home/kim", 4, 8052344, 0, "/", {}, 3120.55, {}, {}, "", 2300},
        {"handheld", "/home/deck", 8, 15221396, 6'422'071'934, "home", 80, 8190.44, 0, 88,
         "AMD Custom GPU 0405", 1502},
        {"laptop",
         "/home/ada",
         8,
         16122588,
         18'734'092'881,
         "Ada's Disk",
         63,
         190643.27,
         0,
         {},
         "",
         2301},
        {"old-kernel", "/home/bob", 2, 1035344, 3'812'044'817, "/", {}, 86399.99, {}, {}, "", 3402},
        {"server",
         "/home/ops",
         63,
         527985432,
         96'110'568'050'444,
         "/home",
         {},
         31546211.90,
         {},
         {},
         "",
         40110},
        {"two-batteries",
         "/home/mia",
         4,
         7980448,
         5'028'089'393,
         "/",
         92,
         61822.07,
         1,
         {},
         "",
         1400},
        {"virtual-machine",
         "/home/admin",
         2,
         2014432,
         88'120'443'127,
         "cloudimg-rootfs",
         {},
         2419206.55,
         {},
         {},
         "",
         844},
        {"workstation",
         "/home/grace",
         24,
         65758412,
         1'204'877'310'554,
         "/",
         {},
         262811.38,
         0,
         37,
         "AMD Radeon RX 7900 XTX",
         2200},
    };
    return all;
}

class ProbedRecording : public testing::TestWithParam<Expected> {};

TEST(ProbedRecordings, AreAllThereAre) {
    std::vector<std::string> names;
    for (const Expected& expected : expectations()) {
        names.push_back(expected.machine);
    }
    EXPECT_EQ(names, platform::testing::recordedMachines());
}

TEST_P(ProbedRecording, IsReadAsItIs) {
    const Expected& expected = GetParam();
    const Outcome result = run("--interval 0.01 --limit 1 --root " +
                               recordedMachine(expected.machine) + " --home " + expected.home);
    EXPECT_EQ(result.status, 0);
    const std::vector<json> samples = lines(result.output);
    ASSERT_EQ(samples.size(), 1U);
    const json& sample = samples[0];
    EXPECT_EQ(sample["cpu"]["coreCount"], expected.processors);
    EXPECT_EQ(sample["cpu"]["coreUsages"].size(), static_cast<std::size_t>(expected.processors));
    EXPECT_EQ(sample["memory"]["total"], expected.memory * 1024);
    EXPECT_EQ(sample["network"]["totalReceivedBytes"], expected.received);
    EXPECT_EQ(sample["battery"]["hasBattery"], expected.battery.has_value());
    EXPECT_EQ(sample["battery"]["percentage"], expected.battery.value_or(0));
    EXPECT_NEAR(sample["system"]["uptime"].get<double>(), expected.uptime, 0.001);
    EXPECT_EQ(sample["thermalState"],
              expected.thermalState ? json(*expected.thermalState) : json());
    EXPECT_EQ(sample["gpu"]["isAvailable"], expected.gpu.has_value());
    EXPECT_EQ(sample["gpu"]["usagePercentage"], expected.gpu.value_or(0));
    EXPECT_EQ(sample["gpu"]["modelName"], expected.model);
    const json& processes = sample["topMemoryProcesses"];
    ASSERT_EQ(processes.size(), expected.largestProcess == 0 ? 0U : 1U);
    if (expected.largestProcess != 0) {
        EXPECT_EQ(processes[0]["id"], expected.largestProcess);
    }
}

// A recording contains one moment only, so nothing moves, on any machine that reads it.
TEST_P(ProbedRecording, StandsStill) {
    const json sample =
        lines(run("--interval 0.01 --root " + recordedMachine(GetParam().machine)).output).at(0);
    EXPECT_EQ(sample["cpu"]["usagePercentage"], 0);
    EXPECT_EQ(sample["network"]["downloadBytesPerSecond"], 0);
    EXPECT_EQ(sample["network"]["uploadBytesPerSecond"], 0);
    for (const json& process : sample["topCPUProcesses"]) {
        EXPECT_EQ(process["cpuUsage"], 0);
    }
}

TEST_P(ProbedRecording, HasTheNameOfItsVolumeAndNoCapacityOfTheDiskItLiesOn) {
    const json sample = lines(run("--interval 0.01 --root " + recordedMachine(GetParam().machine) +
                                  " --home " + GetParam().home)
                                  .output)
                            .at(0);
    ASSERT_EQ(sample["storage"].size(), 1U);
    EXPECT_EQ(sample["storage"][0]["name"], GetParam().volume);
    EXPECT_EQ(sample["storage"][0]["totalSpace"], 0);
    EXPECT_EQ(sample["storage"][0]["usedSpace"], 0);
    EXPECT_EQ(sample["storage"][0]["availableSpace"], 0);
}

std::string nameOfMachine(const testing::TestParamInfo<Expected>& info) {
    std::string name = info.param.machine;
    std::erase(name, '-');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, ProbedRecording, testing::ValuesIn(expectations()), nameOfMachine);

// The laptop's second card is awake here, and this machine has its vendor's library.
TEST(Probe, AsksNoLibraryOfThisMachineAboutARecordedOne) {
    const MachineTree tree("laptop");
    tree.write("sys/class/drm/card0/device/power/runtime_status", "active\n");
    tree.link("library/libnvidia-ml.so.1", TEST_NVML);
    const json sample = lines(runShell("LD_LIBRARY_PATH=" + tree.root() +
                                       "/library " PROBE " --interval 0.01 --root " + tree.root())
                                  .output)
                            .at(0);
    EXPECT_EQ(sample["gpu"]["isAvailable"], false);
}

/// Runs the probe on a recorded machine on which all of `paths`, and the volume of `volume`, hang
/// for ever.
Outcome runStuck(const MachineTree& tree, const std::string& paths, const std::string& volume,
                 const std::string& arguments) {
    tree.write("stuck", "");
    std::string list;
    std::istringstream words(paths);
    for (std::string path; words >> path;) {
        list += tree.root() + path + ':';
    }
    return runShell("TARNWICK_STUCK_WHILE=" + tree.root() + "/stuck TARNWICK_STUCK_VOLUMES='" +
                    (volume.empty() ? "" : tree.root() + volume) + "' TARNWICK_STUCK_FILES='" +
                    list +
                    "' LD_PRELOAD=" STUCK_FILES " timeout 60 " PROBE " --interval 0.01 --root " +
                    tree.root() + " " + arguments + " 2>&1");
}

TEST(Probe, SaysNullForWhatDoesNotAnswerAndEnds) {
    if (*SANITIZED != '\0') {
        GTEST_SKIP() << "the sanitizers want to be loaded first";
    }
    const MachineTree tree("handheld");
    const Outcome result =
        runStuck(tree,
                 "/sys/class/drm/card0/device/gpu_busy_percent /sys/class/thermal "
                 "/sys/class/power_supply",
                 "/home", "--samples 2 --home /home/deck");
    EXPECT_EQ(result.status, 0) << result.output;
    const std::vector<json> samples = lines(result.output);
    ASSERT_EQ(samples.size(), 2U);
    for (const json& sample : samples) {
        EXPECT_TRUE(sample["gpu"].is_null());
        EXPECT_TRUE(sample["thermalState"].is_null());
        EXPECT_TRUE(sample["battery"].is_null());
        EXPECT_TRUE(sample["storage"].is_null());
        EXPECT_EQ(sample["cpu"]["coreCount"], 8);
        EXPECT_EQ(sample["memory"]["total"], std::uint64_t{15221396} * 1024);
        EXPECT_NEAR(sample["system"]["uptime"].get<double>(), 8190.44, 0.001);
        EXPECT_FALSE(sample["topMemoryProcesses"].empty());
    }
}

TEST(Probe, ASourceThatHangsHoldsUpNoOther) {
    if (*SANITIZED != '\0') {
        GTEST_SKIP() << "the sanitizers want to be loaded first";
    }
    const MachineTree tree("handheld");
    const Outcome result = runStuck(tree, "/sys/class/thermal", "", "--home /home/deck");
    EXPECT_EQ(result.status, 0) << result.output;
    const json sample = lines(result.output).at(0);
    EXPECT_TRUE(sample["thermalState"].is_null());
    EXPECT_EQ(sample["gpu"]["usagePercentage"], 88);
    EXPECT_EQ(sample["battery"]["percentage"], 80);
    EXPECT_EQ(sample["storage"][0]["name"], "home");
}

TEST(Probe, EntriesOfApplicationsThatHangHoldUpNothing) {
    if (*SANITIZED != '\0') {
        GTEST_SKIP() << "the sanitizers want to be loaded first";
    }
    const MachineTree tree("developer");
    const Outcome result = runStuck(tree, "/usr/share/applications", "", "--limit 9");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(lines(result.output).at(0)["topMemoryProcesses"].size(), 9U);
}

TEST(Probe, ABatteryThatBeginsToHangHoldsUpNothing) {
    if (*SANITIZED != '\0') {
        GTEST_SKIP() << "the sanitizers want to be loaded first";
    }
    const MachineTree tree("handheld");
    // It hangs from the first line on; while its last figures stand, nobody may ask it who it is.
    const std::string stuck = tree.root() + "/stuck";
    const Outcome result =
        runShell("TARNWICK_STUCK_WHILE=" + stuck + " TARNWICK_STUCK_FILES=" + tree.root() +
                 "/sys/class/power_supply LD_PRELOAD=" STUCK_FILES " timeout 60 " PROBE
                 " --interval 0.2 --samples 3 --root " +
                 tree.root() + " 2>&1 | { read -r line; echo \"$line\"; : >" + stuck + "; cat; }");
    const std::vector<json> samples = lines(result.output);
    ASSERT_EQ(samples.size(), 3U) << result.output;
    EXPECT_EQ(samples.back()["battery"]["percentage"], 80);
}

TEST(Probe, APipeInThePlaceOfASensorHoldsUpNothing) {
    const MachineTree tree("handheld");
    for (const char* file :
         {"/sys/class/thermal/thermal_zone0/temp", "/sys/class/power_supply/BAT1/capacity",
          "/sys/class/drm/card0/device/gpu_busy_percent"}) {
        const std::string path = tree.root() + file;
        ::unlink(path.c_str());
        ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0) << file;
    }
    const Outcome result =
        runShell("timeout 60 " PROBE " --interval 0.01 --root " + tree.root() + " 2>&1");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(lines(result.output).size(), 1U);
}

TEST(Probe, MeasuresTheVolumeThatItIsTold) {
    const json root = lines(run("--interval 0.01 --home /").output).at(0);
    EXPECT_GT(root["storage"][0]["totalSpace"], 0);
    const json missing = lines(run("--interval 0.01 --home /no/such/home").output).at(0);
    EXPECT_EQ(missing["storage"][0]["totalSpace"], 0);
}

TEST(Probe, NeedsNoToolkitAndNoVendorsLibrary) {
    // The loader lists what the program needs instead of starting it.
    const Outcome result = runShell("LD_TRACE_LOADED_OBJECTS=1 " PROBE);
    EXPECT_NE(result.output.find("libc.so"), std::string::npos);
    for (const char* library : {"libQt", "libnvidia", "libcuda", "libdrm", "libX11", "libdbus"}) {
        EXPECT_EQ(result.output.find(library), std::string::npos) << result.output;
    }
}

TEST(Probe, ListsAsManyProcessesAsItIsTold) {
    const std::vector<json> none =
        lines(run("--interval 0.01 --limit 0 --root " + recordedMachine("laptop")).output);
    ASSERT_EQ(none.size(), 1U);
    EXPECT_EQ(none[0]["topCPUProcesses"], json::array());
}

TEST(Probe, FindsNothingInAnEmptyFolder) {
    const MachineTree tree;
    const Outcome result = run("--interval 0.01 --root " + tree.root());
    EXPECT_EQ(result.status, 0);
    const std::vector<json> samples = lines(result.output);
    ASSERT_EQ(samples.size(), 1U);
    const json& sample = samples[0];
    EXPECT_EQ(sample["cpu"]["coreCount"], 0);
    EXPECT_EQ(sample["cpu"]["idlePercentage"], 100);
    EXPECT_EQ(sample["memory"]["used"], 0);
    EXPECT_EQ(sample["gpu"]["isAvailable"], false);
    EXPECT_EQ(sample["battery"]["hasBattery"], false);
    EXPECT_EQ(sample["network"]["totalReceivedBytes"], 0);
    EXPECT_EQ(sample["topCPUProcesses"], json::array());
    EXPECT_EQ(sample["topMemoryProcesses"], json::array());
    EXPECT_EQ(sample["system"]["uptime"], 0);
    EXPECT_TRUE(sample["thermalState"].is_null());
}

TEST(Probe, TakesOneReadingWithoutRates) {
    const json sample = lines(run("--interval 0 --home /").output).at(0);
    EXPECT_TRUE(sample["cpu"]["usagePercentage"].is_null());
    EXPECT_GE(sample["cpu"]["coreCount"], 1);
    EXPECT_EQ(sample["cpu"]["coreUsages"], json::array());
    EXPECT_EQ(sample["network"]["hasSample"], false);
    EXPECT_EQ(sample["topCPUProcesses"], json::array());
    EXPECT_TRUE(sample["topMemoryProcesses"][0]["cpuUsage"].is_null());
    EXPECT_GT(sample["storage"][0]["totalSpace"], 0);
}

TEST(Probe, TellsOfEveryGraphicsCard) {
    const json sample =
        lines(run("--interval 0.01 --root " + recordedMachine("laptop")).output).at(0);
    EXPECT_EQ(sample["gpus"], json::parse(R"([
        {"id": "card0", "modelName": "", "driver": "nvidia", "isAsleep": true,
         "usagePercentage": null},
        {"id": "card1", "modelName": "", "driver": "i915", "isAsleep": false,
         "usagePercentage": null}])"));
}

TEST(Probe, EndsWithOneLineAndStatusTwoForAWrongOption) {
    const Outcome result = run("--samples none");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "tarnwick-probe: --samples takes a number from 0 to 1000000\n");
}

TEST(Probe, EndsWithOneLineAndStatusTwoWithoutItsRoot) {
    const Outcome result = run("--root /no/such/folder");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "tarnwick-probe: there is no folder /no/such/folder\n");
}

TEST(Probe, ComplainsInOneLineOfWhatIsNoLine) {
    const Outcome result = run("--root \"$(printf '/no\\nsuch\\033[1m\\177f\\303\\266lder')\"");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "tarnwick-probe: there is no folder /no?such?[1m?f\xC3\xB6lder\n");
}

TEST(Probe, EndsWithStatusOneWhenNobodyTakesItsOutput) {
    const Outcome result = run("--interval 0.01", "2>&1 >/dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "tarnwick-probe: the output cannot be written\n");
}

TEST(Probe, TellsItsVersion) {
    const Outcome result = run("--version");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "tarnwick-probe " TARNWICK_VERSION "\n");
}

}  // namespace
}  // namespace tarnwick::probe
