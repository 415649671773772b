// Runs the program itself.
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

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

/// Arguments that need no quoting.
Outcome run(const std::string& arguments, const std::string& redirection = "2>&1") {
    Outcome result;
    std::FILE* pipe = ::popen((PROBE " " + arguments + " " + redirection).c_str(), "re");
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
    EXPECT_EQ(sample["thermalState"], 0);
}

TEST(Probe, EndsWithOneLineAndStatusTwoForAWrongOption) {
    const Outcome result = run("--samples none");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "tarnwick-probe: --samples takes a number from 1 to 1000000\n");
}

TEST(Probe, EndsWithOneLineAndStatusTwoWithoutItsRoot) {
    const Outcome result = run("--root /no/such/folder");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "tarnwick-probe: there is no folder /no/such/folder\n");
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
