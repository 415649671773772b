// SPDX-License-Identifier: MIT
#include "tools/machine_sample.h"

#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace tarnwick::probe {
namespace {

using nlohmann::json;

MachineSample busyLaptop() {
    MachineSample sample;
    sample.cpu = {.usagePercentage = 92.75,
                  .userPercentage = 60,
                  .systemPercentage = 32.5,
                  .idlePercentage = 7.5,
                  .coreCount = 2,
                  .coreUsages = {100, 85}};
    sample.gpu = GPUInfo{.usagePercentage = 37,
                         .rendererUtilizationPercentage = 36,
                         .tilerUtilizationPercentage = 35,
                         .modelName = "Card",
                         .coreCount = 8,
                         .isAvailable = true};
    sample.gpus = {{.id = "card0", .model = "Card", .driver = "i915", .usagePercentage = 37},
                   {.id = "card1", .driver = "amdgpu", .isAsleep = true}};
    sample.memory = {.total = 100,
                     .used = 85,
                     .free = 5,
                     .app = 60,
                     .wired = 20,
                     .compressed = 5,
                     .cached = 10,
                     .swapUsed = 1,
                     .swapTotal = 2};
    sample.network = {.downloadBytesPerSecond = 1.5,
                      .uploadBytesPerSecond = 2.5,
                      .totalReceivedBytes = 18446744073709551615U,
                      .totalSentBytes = 3,
                      .hasSample = true};
    StorageInfo volume;
    volume.id.bytes = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef,
                       0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef};
    volume.name = "Home";
    volume.totalSpace = 1000;
    volume.usedSpace = 400;
    volume.availableSpace = 600;
    sample.storage = std::vector{volume};
    sample.battery = BatteryInfo{.percentage = 81,
                                 .isCharging = true,
                                 .isPluggedIn = true,
                                 .health = 93,
                                 .healthSource = BatteryHealthSource::systemProfiler,
                                 .healthCondition = "Normal",
                                 .cycleCount = 212,
                                 .timeRemaining = 35,
                                 .hasBattery = true};
    sample.system.uptime = 61.25;
    sample.topCPUProcesses = {{.id = 7, .name = "cc1plus", .cpuUsage = 50, .memoryUsage = 4096}};
    sample.topMemoryProcesses = {{.id = 8, .name = "editor", .cpuUsage = 0, .memoryUsage = 8192}};
    sample.thermalState = 1;
    return sample;
}

TEST(ReportLine, NamesEveryFieldOfEveryRecord) {
    const json expected = json::parse(R"({
        "cpu": {"usagePercentage": 92.75, "userPercentage": 60.0, "systemPercentage": 32.5,
                "idlePercentage": 7.5, "coreCount": 2, "coreUsages": [100.0, 85.0]},
        "gpu": {"usagePercentage": 37.0, "rendererUtilizationPercentage": 36.0,
                "tilerUtilizationPercentage": 35.0, "modelName": "Card", "coreCount": 8,
                "isAvailable": true},
        "gpus": [{"id": "card0", "modelName": "Card", "driver": "i915", "isAsleep": null,
                  "usagePercentage": 37.0},
                 {"id": "card1", "modelName": "", "driver": "amdgpu", "isAsleep": true,
                  "usagePercentage": null}],
        "memory": {"total": 100, "used": 85, "free": 5, "app": 60, "wired": 20, "compressed": 5,
                   "cached": 10, "swapUsed": 1, "swapTotal": 2},
        "network": {"downloadBytesPerSecond": 1.5, "uploadBytesPerSecond": 2.5,
                    "totalReceivedBytes": 18446744073709551615, "totalSentBytes": 3,
                    "hasSample": true},
        "storage": [{"id": "01234567-89AB-CDEF-0123-456789ABCDEF", "name": "Home",
                     "totalSpace": 1000, "usedSpace": 400, "availableSpace": 600}],
        "battery": {"percentage": 81, "isCharging": true, "isPluggedIn": true, "health": 93,
                    "healthSource": "systemProfiler", "healthCondition": "Normal",
                    "cycleCount": 212, "timeRemaining": 35, "hasBattery": true},
        "system": {"uptime": 61.25},
        "topCPUProcesses": [{"id": 7, "name": "cc1plus", "cpuUsage": 50.0, "memoryUsage": 4096}],
        "topMemoryProcesses": [{"id": 8, "name": "editor", "cpuUsage": 0.0, "memoryUsage": 8192}],
        "thermalState": 1,
        "summary": {"severity": 2, "menuBarText": "CPU 93%",
                    "popoverText": "CPU usage is at 93%, above the high threshold."}})");
    EXPECT_EQ(json::parse(reportLine(busyLaptop())), expected);
}

TEST(ReportLine, IsOneLine) {
    MachineSample sample;
    sample.topCPUProcesses = {{.id = 1, .name = "two\nlines", .cpuUsage = 0, .memoryUsage = 0}};
    EXPECT_EQ(reportLine(sample).find('\n'), std::string::npos);
}

TEST(ReportLine, HasNullForWhatIsNotKnown) {
    MachineSample sample;
    sample.cpu.usagePercentage = std::numeric_limits<double>::quiet_NaN();
    const json report = json::parse(reportLine(sample));
    EXPECT_TRUE(report["cpu"]["usagePercentage"].is_null());
    EXPECT_TRUE(report["battery"]["health"].is_null());
    EXPECT_TRUE(report["battery"]["healthSource"].is_null());
    EXPECT_TRUE(report["battery"]["cycleCount"].is_null());
    EXPECT_TRUE(report["thermalState"].is_null());
    EXPECT_EQ(report["storage"], json::array());
    EXPECT_EQ(report["topCPUProcesses"], json::array());
}

TEST(ReportLine, HasNullForWhatDidNotAnswer) {
    MachineSample sample;
    sample.gpu.reset();
    sample.storage.reset();
    sample.battery.reset();
    const json report = json::parse(reportLine(sample));
    EXPECT_TRUE(report["gpu"].is_null());
    EXPECT_TRUE(report["storage"].is_null());
    EXPECT_TRUE(report["battery"].is_null());
    EXPECT_EQ(report["summary"]["popoverText"], "No metrics are above thresholds.");
}

TEST(ReportLine, NamesTheOtherSourcesOfHealth) {
    MachineSample sample;
    sample.battery->healthSource = BatteryHealthSource::ioRegistry;
    EXPECT_EQ(json::parse(reportLine(sample))["battery"]["healthSource"], "ioRegistry");
    sample.battery->healthSource = BatteryHealthSource::qualitative;
    EXPECT_EQ(json::parse(reportLine(sample))["battery"]["healthSource"], "qualitative");
}

TEST(ReportLine, ReplacesBytesThatAreNoText) {
    MachineSample sample;
    sample.topCPUProcesses = {{.id = 1, .name = "a\xff", .cpuUsage = 0, .memoryUsage = 0}};
    EXPECT_EQ(json::parse(reportLine(sample))["topCPUProcesses"][0]["name"], "a\uFFFD");
}

TEST(ReportLine, JudgesEveryMetric) {
    MachineSample sample;
    EXPECT_EQ(json::parse(reportLine(sample))["summary"],
              json::parse(R"({"severity": 0, "menuBarText": "",
                              "popoverText": "No metrics are above thresholds."})"));
    sample.storage->resize(1);
    sample.storage->at(0).totalSpace = 100;
    sample.storage->at(0).usedSpace = 81;
    EXPECT_EQ(json::parse(reportLine(sample))["summary"]["menuBarText"], "Disk 81%");
    sample.memory.total = 100;
    sample.memory.used = 85;
    EXPECT_EQ(json::parse(reportLine(sample))["summary"]["menuBarText"], "RAM 85%");
    sample.gpu->usagePercentage = 99;
    EXPECT_EQ(json::parse(reportLine(sample))["summary"]["menuBarText"], "RAM 85%");
    sample.gpu->isAvailable = true;
    EXPECT_EQ(json::parse(reportLine(sample))["summary"]["menuBarText"], "GPU 99%");
    EXPECT_EQ(json::parse(reportLine(sample))["summary"]["severity"], 2);
    sample.thresholds.gpuNormal = 99.5;
    EXPECT_EQ(json::parse(reportLine(sample))["summary"]["menuBarText"], "RAM 85%");
}

}  // namespace
}  // namespace tarnwick::probe
