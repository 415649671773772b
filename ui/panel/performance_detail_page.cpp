// SPDX-License-Identifier: MIT
#include "ui/panel/performance_detail_page.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/records/percentage.h"
#include "core/records/text.h"
#include "services/rate_text.h"
#include "ui/panel/page_builder.h"
#include "ui/panel/panel_figures.h"

namespace tarnwick {

namespace {

void addTrend(PageBuilder& page, std::string id, std::string title, double value,
              const std::vector<UsageSample>& history, Tint color) {
    TrendRow row{std::move(title), percentText(value, 0), {}, color};
    // The latest samples, the oldest of them first.
    for (std::size_t i = history.size() - std::min(history.size(), kTrendSamples);
         i < history.size(); ++i) {
        row.values.push_back(history[i].value);
        row.times.push_back(history[i].timestamp);
    }
    std::string toolTip = row.toolTip();
    page.add(std::move(id), kBarSpacing, std::move(row), std::move(toolTip));
}

void addTrends(PageBuilder& page, const PerformanceDetailInputs& in) {
    page.add("trends", kBlockSpacing, GroupTitle{"Usage Trends"});
    addTrend(page, "trend.cpu", "CPU", clampedPercentage(in.cpuInfo.usagePercentage),
             in.cpuUsageHistory, cpuTint(in.cpuInfo, in.thresholds));
    if (in.gpuInfo.isAvailable) {
        addTrend(page, "trend.gpu", "GPU", clampedPercentage(in.gpuInfo.usagePercentage),
                 in.gpuUsageHistory, gpuTint(in.gpuInfo, in.thresholds));
    }
    addTrend(page, "trend.memory", "Memory", in.memoryInfo.usagePercentage(), in.memoryUsageHistory,
             memoryTint(in.memoryInfo, in.thresholds));
    const double storage = in.storageInfo.empty() ? 0 : in.storageInfo.front().usagePercentage();
    addTrend(page, "trend.storage", "Storage", storage, in.storageUsageHistory,
             storageTint(storage, in.thresholds));
}

void addGPU(PageBuilder& page, const GPUInfo& gpu) {
    page.add("gpu", kBlockSpacing, GroupTitle{gpu.displayName()});
    const auto addRow = [&page](const char* id, const char* label, double percentage) {
        page.add(id, kRowSpacing, InfoRow{label, percentText(clampedPercentage(percentage), 0)});
    };
    addRow("gpu.device", "Device", gpu.usagePercentage);
    addRow("gpu.renderer", "Renderer", gpu.rendererUtilizationPercentage);
    addRow("gpu.tiler", "Tiler", gpu.tilerUtilizationPercentage);
}

void addNetwork(PageBuilder& page, const NetworkInfo& network,
                const platform::ByteCountFormatter& formatter) {
    page.add("network", kBlockSpacing, GroupTitle{"Network Throughput"});
    if (!network.hasSample) {
        page.add("network.state", kRowSpacing, CaptionText{"Waiting for the next sample..."});
        return;
    }
    const auto addRow = [&](const char* id, const char* label, double bytesPerSecond,
                            std::string toolTip) {
        page.add(id, kRowSpacing, InfoRow{label, rateText(bytesPerSecond, formatter)},
                 std::move(toolTip));
    };
    addRow("network.download", "Download", network.downloadBytesPerSecond,
           totalToolTip("Received", network.totalReceivedBytes, formatter));
    addRow("network.upload", "Upload", network.uploadBytesPerSecond,
           totalToolTip("Sent", network.totalSentBytes, formatter));
    addRow(
        "network.total", "Total", network.downloadBytesPerSecond + network.uploadBytesPerSecond,
        totalToolTip("Received and sent",
                     saturatedSum(network.totalReceivedBytes, network.totalSentBytes), formatter));
}

}  // namespace

Page performanceDetailPage(const PerformanceDetailInputs& inputs,
                           const platform::ByteCountFormatter& formatter) {
    PageBuilder page(inputs.enabledActions);
    page.addDetailHeader("Performance");
    addTrends(page, inputs);
    page.addDivider("divider.gpu");
    addGPU(page, inputs.gpuInfo);
    page.addDivider("divider.network");
    addNetwork(page, inputs.networkInfo, formatter);
    page.addDivider("divider.thermal");
    page.add("thermal", kBlockSpacing,
             InfoRow{"Thermal State", thermalStateWord(inputs.thermalState)});
    return page.take();
}

}  // namespace tarnwick
