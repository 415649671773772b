// SPDX-License-Identifier: MIT
// Runs the program itself.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <pty.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::probe {
namespace {

using nlohmann::json;
using platform::testing::MachineTree;
using platform::testing::recordedMachine;

struct Outcome {
    int status = -1;
    /// Standard output, then standard error.
    std::string output;
};

/// A command for the shell, in no particular language.
Outcome runShell(const std::string& command) {
    Outcome result;
    std::FILE* pipe = ::popen(("export LC_ALL=C LANGUAGE= XDG_DATA_HOME= XDG_DATA_DIRS= "
                               "XDG_CONFIG_HOME=/no/such/folder; " +
                               command)
                                  .c_str(),
                              "re");
    if (pipe == nullptr) {
        ADD_FAILURE() << "no child process";
        return result;
    }
    std::array<char, 4096> buffer{};
    std::size_t got = 0;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        result.output.append(buffer.data(), got);
    }
    const int status = ::pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

/// Arguments as the shell takes them.
Outcome run(const std::string& arguments, const std::string& redirection = "2>&1") {
    return runShell(PROBE " " + arguments + " " + redirection);
}

std::vector<json> lines(const std::string& text) {
    std::vector<json> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        result.push_back(json::parse(line));
    }
    return result;
}

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

TEST(Probe, SettingsThatHangAreDoneWithout) {
    if (*SANITIZED != '\0') {
        GTEST_SKIP() << "the sanitizers want to be loaded first";
    }
    const MachineTree home;
    home.write("tarnwick/settings.json", "{}");
    home.write("stuck", "");
    const std::string file = home.root() + "/tarnwick/settings.json";
    const std::string stuck = "TARNWICK_STUCK_WHILE=" + home.root() +
                              "/stuck TARNWICK_STUCK_FILES=" + file +
                              " LD_PRELOAD=" STUCK_FILES " timeout 60 " PROBE " --interval 0 ";
    const Outcome own =
        runShell("XDG_CONFIG_HOME=" + home.root() + " " + stuck + "2>&1 >" + home.root() + "/line");
    EXPECT_EQ(own.status, 0);
    EXPECT_EQ(own.output, "tarnwick-probe: the default thresholds count, not those of " + file +
                              ": the file system does not answer\n");
    EXPECT_EQ(lines(platform::readWholeFile(home.root() + "/line").value_or("")).size(), 1U);
    const Outcome named = runShell(stuck + "--thresholds " + file + " 2>&1");
    EXPECT_EQ(named.status, 2);
    EXPECT_EQ(named.output,
              "tarnwick-probe: no thresholds in " + file + ": the file system does not answer\n");
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

TEST(Probe, PrintsMetrics) {
    const Outcome prometheus =
        run("--interval 0.01 --format prometheus --limit 1 --root " + recordedMachine("handheld"));
    EXPECT_EQ(prometheus.status, 0);
    for (const char* line :
         {"tarnwick_severity{metric=\"gpu\"} 0\n",
          "tarnwick_gpu_info{gpu=\"card0\",model=\"AMD Custom GPU 0405\",driver=\"amdgpu\"} 1\n",
          "tarnwick_battery_charge_ratio{battery=\"system\"} 0.8\n",
          "tarnwick_application_memory_bytes{application=\"dungeon\"} 5368709120\n"}) {
        EXPECT_NE(prometheus.output.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(prometheus.output.find("tarnwick_cpu"), std::string::npos);
    const Outcome openMetrics =
        run("--interval 0.01 --format openmetrics --all --root " + recordedMachine("handheld"));
    EXPECT_EQ(openMetrics.status, 0);
    EXPECT_TRUE(
        openMetrics.output.ends_with("tarnwick_uptime_seconds 8190.4400000572205\n# EOF\n"));
}

TEST(Probe, PutsTheProcessesOfAnApplicationTogether) {
    const MachineTree tree("handheld");
    // The game a second time, with 4096 pages.
    tree.write(
        "proc/1503/stat",
        "1503 (dungeon) S 1 1503 1503 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 90000 90000000 4096 0 0 0 0 "
        "0 0 0 0 0 0 0 0 0 17 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    tree.write("proc/1503/cgroup", platform::testing::recordedFile("handheld", "proc/1502/cgroup"));
    tree.link("proc/1503/exe", "/home/deck/games/dungeon.app/bin/dungeon");
    const std::string text =
        run("--interval 0.01 --format prometheus --limit 1 --root " + tree.root()).output;
    const std::size_t pages = 4096 * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    EXPECT_NE(text.find("tarnwick_application_memory_bytes{application=\"dungeon\"} " +
                        std::to_string(5368709120 + pages) + "\n"),
              std::string::npos)
        << text;
}

TEST(Probe, JudgesByTheThresholdsOfTheUser) {
    const MachineTree home;
    home.write("tarnwick/settings.json",
               R"({"settings.memoryModerateThreshold": 1, "settings.memoryHighThreshold": 2})");
    const std::string mine = "XDG_CONFIG_HOME=" + home.root() + " " PROBE " --interval 0 ";
    const std::string high = "tarnwick_threshold_ratio{metric=\"memory\",level=\"high\"} 0.02\n";
    const auto says = [](const std::string& command, const std::string& line) {
        return runShell(command + " 2>&1").output.find(line) != std::string::npos;
    };
    EXPECT_TRUE(says(mine + "--format prometheus", high));
    // More than 2 % of any machine's memory are in use.
    EXPECT_EQ(lines(runShell(mine).output).at(0)["summary"]["severity"], 2);
    EXPECT_FALSE(says(mine + "--format prometheus --root " + recordedMachine("laptop"), high));
    const std::string named = " --thresholds " + home.root() + "/tarnwick/settings.json";
    EXPECT_TRUE(
        says(PROBE " --interval 0 --format prometheus --root " + recordedMachine("laptop") + named,
             high));
    home.write("tarnwick/settings.json", "damaged");
    const Outcome damaged = runShell(mine + "2>&1 >/dev/null");
    EXPECT_EQ(damaged.status, 0);
    EXPECT_EQ(damaged.output, "tarnwick-probe: the default thresholds count, not those of " +
                                  home.root() + "/tarnwick/settings.json: it holds no settings\n");
    const Outcome wrong = run("--interval 0" + named);
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.output, "tarnwick-probe: no thresholds in " + home.root() +
                                "/tarnwick/settings.json: it holds no settings\n");
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

TEST(Probe, EndsQuietlyWhenItsReaderHasGone) {
    // The status goes beside the pipe.
    const MachineTree folder;
    const std::string status = folder.root() + "/status";
    const auto readOneLine = [&status](const std::string& arguments) {
        const Outcome result = runShell("{ timeout 60 " PROBE " " + arguments + " 2>&1; echo $? >" +
                                        status + "; } | head -n 1; cat " + status);
        const std::size_t end = result.output.find('\n');
        return end == std::string::npos ? result.output : result.output.substr(end + 1);
    };
    EXPECT_EQ(readOneLine("--samples 0 --interval 0.01 --root " + recordedMachine("laptop")),
              "0\n");
    EXPECT_EQ(readOneLine("--help"), "0\n");
    // It does not wait for the next sample to notice.
    EXPECT_EQ(runShell("{ timeout 60 " PROBE " --interval 86400 2>&1; echo $? >" + status +
                       "; } | true; cat " + status)
                  .output,
              "0\n");
}

/// All that is in a folder, hidden files, too.
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
}

std::string contentOf(const std::string& file) {
    return platform::readWholeFile(file).value_or("");
}

TEST(Probe, ReplacesItsOutputFile) {
    const MachineTree folder;
    const std::string file = folder.root() + "/tarnwick.prom";
    const std::string command = "--interval 0.01 --samples 2 --format prometheus --root " +
                                recordedMachine("laptop") + " --output ";
    Outcome result = runShell("umask 022; " PROBE " " + command + file + " 2>&1");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    const std::string text = contentOf(file);
    EXPECT_TRUE(text.starts_with("# HELP tarnwick_probe_info")) << text;
    EXPECT_EQ(text.find("# HELP tarnwick_probe_info", 1), std::string::npos) << "one sample only";
    // Readable by the user of a node exporter.
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0644));
    folder.write("tarnwick.prom", "old");
    folder.makeFolder("other");
    folder.link("other/link", "../tarnwick.prom");
    result = run(command + folder.root() + "/other/link");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(contentOf(file), text);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.root() + "/other/link"));
    EXPECT_EQ(namesIn(folder.root()), (std::vector<std::string>{"other", "tarnwick.prom"}));
}

TEST(Probe, LeavesTheOldFileWhereItCannotWrite) {
    const MachineTree folder;
    folder.write("old.prom", "old");
    const std::string file = folder.root() + "/old.prom";
    const std::string command = PROBE " --interval 0 --format prometheus --output ";
    // As if the disk were full after the first kilobyte.
    const Outcome full = runShell("trap '' XFSZ; ulimit -f 1; " + command + file + " 2>&1");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.output, "tarnwick-probe: " + file + " cannot be written: File too large\n");
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(namesIn(folder.root()), std::vector<std::string>{"old.prom"});
    const auto complaint = [&command](const std::string& name) {
        const Outcome result = runShell(command + name + " 2>&1");
        EXPECT_EQ(result.status, 1) << result.output;
        const std::string head = "tarnwick-probe: " + name + " cannot be written: ";
        EXPECT_TRUE(result.output.starts_with(head)) << result.output;
        return result.output.substr(std::min(head.size(), result.output.size()));
    };
    EXPECT_EQ(complaint(folder.root() + "/none/new.prom"), "No such file or directory\n");
    EXPECT_EQ(complaint(file + "/new.prom"), "Not a directory\n");
    // Here nobody makes files, be it root.
    EXPECT_NE(complaint("/sys/tarnwick.prom"), "");
    // Neither a device nor a folder is taken away.
    EXPECT_EQ(complaint("/dev/null"), "Invalid argument\n");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_EQ(complaint(folder.root()), "Invalid argument\n");
}

TEST(Probe, PrintsAPageForPeople) {
    const Outcome result =
        run("--format text --interval 0.01 --limit 1 --root " + recordedMachine("handheld"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              "No metrics are above thresholds.\n"
              "\n"
              "CPU            0%    0% user, 0% system, 8 processors\n"
              "GPU           88%    AMD Custom GPU 0405\n"
              "Memory        67%    9.77 GB of 14.52 GB\n"
              "Battery       80%    charging, 27m until full, 94% of its design, 156 cycles\n"
              "Heat      Nominal\n"
              "Network              0 B/s down, 0 B/s up\n"
              "Uptime               2h 16m\n"
              "\n"
              "CPU          0.0%    systemd\n"
              "Memory       5 GB    dungeon\n");
    // A terminal's sequences are for terminals.
    const Outcome pages =
        run("--format text --watch --samples 2 --interval 0.01 --limit 1 --root " +
            recordedMachine("handheld"));
    EXPECT_EQ(pages.output, result.output + "\n" + result.output + "\n");
}

/// What the probe shows on a terminal until it has shown `enough`, then it is interrupted.
std::string watched(const std::string& arguments, const std::string& enough) {
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        const std::string command = "unset NO_COLOR; TERM=xterm exec " + arguments;
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    std::string shown;
    std::array<char, 4096> buffer{};
    ssize_t got = 1;
    while (got > 0 && shown.find(enough) == std::string::npos) {
        got = ::read(terminal, buffer.data(), buffer.size());
        shown.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    ::kill(child, SIGINT);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status << shown;
    ::close(terminal);
    return shown;
}

TEST(Probe, DrawsThePageOfATerminalAgain) {
    const std::string arguments =
        " --format text --watch --interval 0.01 --limit 0 --root " + recordedMachine("handheld");
    const std::string clear = "\033[H\033[2J";
    const std::string shown =
        watched(PROBE + arguments, "2h 16m\r\n" + clear + "\033[32mNo metrics");
    EXPECT_TRUE(shown.starts_with(clear)) << shown;
    EXPECT_NE(shown.find("GPU           \033[32m88%\033[0m    AMD"), std::string::npos) << shown;
    const std::string plain =
        watched("env NO_COLOR=1 " PROBE + arguments, "2h 16m\r\n" + clear + "No metrics");
    EXPECT_EQ(plain.find("\033[3"), std::string::npos) << plain;
}

TEST(Probe, PrintsALineForWaybar) {
    const Outcome result =
        run("--format waybar --interval 0.01 --root " + recordedMachine("handheld"));
    EXPECT_EQ(result.status, 0);
    const json line = lines(result.output).at(0);
    EXPECT_EQ(line["alt"], "ok");
    EXPECT_EQ(line["percentage"], 88);
}

TEST(Probe, TellsItsVersion) {
    const Outcome result = run("--version");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "tarnwick-probe " TARNWICK_VERSION "\n");
}

}  // namespace
}  // namespace tarnwick::probe
