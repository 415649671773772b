// SPDX-License-Identifier: MIT
#include "tools/metrics_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace tarnwick::probe {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

/// The samples whose names begin so.
std::vector<std::string> samples(const MachineSample& sample, const std::string& beginning,
                                 MetricsScope scope = {}) {
    std::istringstream text(metricsReport(sample, Exposition::Format::prometheus, scope));
    std::vector<std::string> found;
    for (std::string line; std::getline(text, line);) {
        if (line.starts_with(beginning)) {
            found.push_back(line);
        }
    }
    return found;
}

MachineSample hotLaptop() {
    MachineSample sample;
    sample.cpu = {.usagePercentage = 92.5,
                  .userPercentage = 60,
                  .systemPercentage = 32.5,
                  .idlePercentage = 7.5,
                  .coreCount = 2,
                  .coreUsages = {100, 85}};
    sample.gpu->usagePercentage = 95;
    sample.gpu->isAvailable = true;
    sample.gpus = {{.id = "card0", .driver = "i915", .usagePercentage = 95},
                   {.id = "card1", .model = "Big \"One\"", .driver = "amdgpu", .isAsleep = true}};
    sample.memory.total = 1000;
    sample.memory.used = 500;
    sample.memory.compressed = 30;
    StorageInfo volume;
    volume.name = "home";
    volume.totalSpace = 1000;
    volume.usedSpace = 800;
    volume.availableSpace = 200;
    sample.storage = std::vector{volume};
    sample.network = {.downloadBytesPerSecond = 1.5,
                      .uploadBytesPerSecond = 2.5,
                      .totalReceivedBytes = 10,
                      .totalSentBytes = 20,
                      .hasSample = true};
    sample.battery->percentage = 81;
    sample.battery->isCharging = true;
    sample.battery->health = 93;
    sample.battery->cycleCount = 212;
    sample.battery->timeRemaining = 35;
    sample.battery->hasBattery = true;
    sample.system.uptime = 61.25;
    sample.applications = {{.name = "b", .cpuUsage = 10, .memoryUsage = 4096},
                           {.name = "a", .cpuUsage = 10, .memoryUsage = 1024},
                           {.name = "c", .cpuUsage = 0.5, .memoryUsage = 8192}};
    sample.thermalState = 2;
    return sample;
}

TEST(MetricsReport, JudgesEveryMetricByTheThresholdsOfTheSample) {
    MachineSample sample = hotLaptop();
    EXPECT_THAT(
        samples(sample, "tarnwick_severity{"),
        ElementsAre("tarnwick_severity{metric=\"cpu\"} 2", "tarnwick_severity{metric=\"gpu\"} 2",
                    "tarnwick_severity{metric=\"memory\"} 0",
                    "tarnwick_severity{metric=\"storage\"} 1"));
    sample.thresholds = {.cpuNormal = 93,
                         .cpuHigh = 96,
                         .gpuNormal = 95,
                         .gpuHigh = 96,
                         .memoryNormal = 40,
                         .memoryHigh = 50,
                         .storageNormal = 81,
                         .storageHigh = 82};
    EXPECT_THAT(
        samples(sample, "tarnwick_severity{"),
        ElementsAre("tarnwick_severity{metric=\"cpu\"} 0", "tarnwick_severity{metric=\"gpu\"} 1",
                    "tarnwick_severity{metric=\"memory\"} 2",
                    "tarnwick_severity{metric=\"storage\"} 0"));
    EXPECT_THAT(samples(sample, "tarnwick_threshold_ratio{metric=\"memory\""),
                ElementsAre("tarnwick_threshold_ratio{metric=\"memory\",level=\"normal\"} 0.4",
                            "tarnwick_threshold_ratio{metric=\"memory\",level=\"high\"} 0.5"));
}

TEST(MetricsReport, HasWhatANodeExporterLacks) {
    const MachineSample sample = hotLaptop();
    EXPECT_THAT(samples(sample, "tarnwick_gpu"),
                ElementsAre("tarnwick_gpu_utilization_ratio{gpu=\"card0\"} 0.95",
                            "tarnwick_gpu_asleep{gpu=\"card1\"} 1",
                            "tarnwick_gpu_info{gpu=\"card0\",model=\"\",driver=\"i915\"} 1",
                            "tarnwick_gpu_info{gpu=\"card1\",model=\"Big \\\"One\\\"\","
                            "driver=\"amdgpu\"} 1"));
    EXPECT_THAT(
        samples(sample, "tarnwick_memory"),
        ElementsAre("tarnwick_memory_used_ratio 0.5", "tarnwick_memory_compressed_bytes 30"));
    EXPECT_THAT(
        samples(sample, "tarnwick_battery"),
        ElementsAre("tarnwick_battery_charge_ratio{battery=\"system\"} 0.81",
                    "tarnwick_battery_health_ratio{battery=\"system\"} 0.93",
                    "tarnwick_battery_cycles{battery=\"system\"} 212",
                    "tarnwick_battery_time_left_seconds{battery=\"system\",state=\"charging\"} "
                    "2100"));
    EXPECT_THAT(samples(sample, "tarnwick_thermal_state"),
                ElementsAre("tarnwick_thermal_state{state=\"nominal\"} 0",
                            "tarnwick_thermal_state{state=\"fair\"} 0",
                            "tarnwick_thermal_state{state=\"serious\"} 1",
                            "tarnwick_thermal_state{state=\"critical\"} 0"));
    EXPECT_THAT(samples(sample, "tarnwick_probe_info"),
                ElementsAre("tarnwick_probe_info{version=\"" TARNWICK_VERSION "\"} 1"));
}

TEST(MetricsReport, NamesTheLargestApplications) {
    EXPECT_THAT(samples(hotLaptop(), "tarnwick_application", {.limit = 2}),
                ElementsAre("tarnwick_application_cpu_ratio{application=\"a\"} 0.1",
                            "tarnwick_application_cpu_ratio{application=\"b\"} 0.1",
                            "tarnwick_application_memory_bytes{application=\"c\"} 8192",
                            "tarnwick_application_memory_bytes{application=\"b\"} 4096"));
    EXPECT_THAT(samples(hotLaptop(), "tarnwick_application", {.limit = 0}), ElementsAre());
    EXPECT_EQ(samples(hotLaptop(), "tarnwick_application", {.limit = 100}).size(), 6U);
}

TEST(MetricsReport, HasAllForMachinesWithoutANodeExporter) {
    const MachineSample sample = hotLaptop();
    EXPECT_THAT(samples(sample, "tarnwick_cpu"), ElementsAre());
    EXPECT_THAT(samples(sample, "tarnwick_cpu", {.all = true}),
                ElementsAre("tarnwick_cpu_cores 2", "tarnwick_cpu_used_ratio 0.925",
                            "tarnwick_cpu_mode_ratio{mode=\"user\"} 0.6",
                            "tarnwick_cpu_mode_ratio{mode=\"system\"} 0.325",
                            "tarnwick_cpu_mode_ratio{mode=\"idle\"} 0.075",
                            "tarnwick_cpu_core_used_ratio{cpu=\"0\"} 1",
                            "tarnwick_cpu_core_used_ratio{cpu=\"1\"} 0.85"));
    EXPECT_THAT(
        samples(sample, "tarnwick_", {.all = true}),
        IsSupersetOf(
            {"tarnwick_memory_size_bytes 1000", "tarnwick_memory_used_bytes 500",
             "tarnwick_swap_used_bytes 0", "tarnwick_storage_size_bytes{volume=\"home\"} 1000",
             "tarnwick_storage_used_bytes{volume=\"home\"} 800",
             "tarnwick_storage_available_bytes{volume=\"home\"} 200",
             "tarnwick_network_receive_bytes_per_second 1.5",
             "tarnwick_network_transmit_bytes_per_second 2.5", "tarnwick_network_received_bytes 10",
             "tarnwick_network_transmitted_bytes 20", "tarnwick_uptime_seconds 61.25"}));
}

TEST(MetricsReport, LeavesOutWhatIsUnknown) {
    MachineSample sample;
    sample.gpu.reset();
    sample.storage.reset();
    sample.battery.reset();
    for (int silence = 0; silence < 2; ++silence) {
        std::istringstream text(
            metricsReport(sample, Exposition::Format::prometheus, {.all = true}));
        for (std::string line; std::getline(text, line);) {
            EXPECT_TRUE(line.starts_with('#') || line.starts_with("tarnwick_probe_info") ||
                        line.starts_with("tarnwick_threshold_ratio"))
                << line;
        }
        // There they are, but know nothing.
        sample = MachineSample{};
        sample.storage->resize(1);
        sample.thermalState = 7;
    }
}

TEST(MetricsReport, LeavesOutWhatABatteryDoesNotTell) {
    MachineSample sample;
    sample.battery->hasBattery = true;
    EXPECT_THAT(samples(sample, "tarnwick_battery"),
                ElementsAre("tarnwick_battery_charge_ratio{battery=\"system\"} 0"));
    sample.battery->hasPercentage = false;
    EXPECT_THAT(samples(sample, "tarnwick_battery"), ElementsAre());
    sample.battery->timeRemaining = 1;
    EXPECT_THAT(samples(sample, "tarnwick_battery"),
                ElementsAre("tarnwick_battery_time_left_seconds{battery=\"system\","
                            "state=\"discharging\"} 60"));
}

TEST(MetricsReport, LeavesOutSharesThatOneReadingDoesNotHave) {
    MachineSample sample = hotLaptop();
    sample.cpu.usagePercentage = kUnknown;
    sample.cpu.coreUsages.clear();
    for (ApplicationSample& one : sample.applications) {
        one.cpuUsage = kUnknown;
    }
    EXPECT_THAT(samples(sample, "tarnwick_cpu", {.all = true}),
                ElementsAre("tarnwick_cpu_cores 2"));
    EXPECT_THAT(samples(sample, "tarnwick_severity{metric=\"cpu\""), ElementsAre());
    EXPECT_THAT(samples(sample, "tarnwick_application_cpu"), ElementsAre());
    EXPECT_EQ(samples(sample, "tarnwick_application_memory").size(), 3U);
}

TEST(MetricsReport, DiffersInOpenMetrics) {
    const std::string text =
        metricsReport(hotLaptop(), Exposition::Format::openMetrics, {.all = true});
    EXPECT_TRUE(text.ends_with("# EOF\n"));
    EXPECT_THAT(text, HasSubstr("# TYPE tarnwick_gpu info\n"));
    EXPECT_THAT(text, HasSubstr("# UNIT tarnwick_memory_used_ratio ratio\n"));
}

}  // namespace
}  // namespace tarnwick::probe
