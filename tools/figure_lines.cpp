// SPDX-License-Identifier: MIT
#include "tools/figure_lines.h"

#include <cmath>
#include <initializer_list>
#include <string_view>

#include "core/records/text.h"
#include "platform/byte_count_text.h"
#include "platform/utf8.h"
#include "services/rate_text.h"
#include "services/system_uptime.h"
#include "tools/judged_metrics.h"
#include "ui/panel/panel_figures.h"

namespace tarnwick::probe {
namespace {

const platform::PlainByteCountFormatter kFormatter;

/// What is not empty, with commas between.
std::string joined(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() || part.empty() ? "" : ", ") + part;
    }
    return text;
}

std::string percent(std::optional<double> value) {
    return value && std::isfinite(*value) ? percentText(*value, 0) : "";
}

FigureLine processorLine(const CPUInfo& cpu, const JudgedMetric& judged) {
    const std::string count =
        std::to_string(cpu.coreCount) + (cpu.coreCount == 1 ? " processor" : " processors");
    FigureLine line{"CPU", percent(judged.usage), count, judged.severity};
    if (judged.usage) {
        line.detail = joined({percent(cpu.userPercentage) + " user",
                              percent(cpu.systemPercentage) + " system", count});
    }
    return line;
}

/// The verdict is on the busiest card; the others have none.
void addGraphics(std::vector<FigureLine>& lines, const MachineSample& sample,
                 const JudgedMetric& judged) {
    bool isJudged = false;
    for (const GraphicsCardSample& card : sample.gpus) {
        FigureLine line{"GPU", percent(card.usagePercentage), card.model};
        if (card.isAsleep == true) {
            line.value = "asleep";
        }
        if (line.detail.empty()) {
            line.detail = joined({card.id, card.driver});
        }
        line.detail = platform::repairedName(line.detail);
        if (!isJudged && judged.usage && card.usagePercentage == judged.usage) {
            line.severity = judged.severity;
            isJudged = true;
        }
        lines.push_back(std::move(line));
    }
}

std::string timeText(const BatteryInfo& battery) {
    if (battery.timeRemaining <= 0) {
        return "";
    }
    return uptimeText(static_cast<double>(battery.timeRemaining) * 60) +
           (battery.isCharging ? " until full" : " left");
}

FigureLine batteryLine(const BatteryInfo& battery) {
    const std::string health = percent(battery.health);
    const std::string cycles =
        battery.cycleCount ? std::to_string(*battery.cycleCount) + " cycles" : "";
    return {"Battery",
            battery.hasPercentage ? percent(static_cast<double>(battery.percentage)) : "",
            joined({battery.isCharging ? "charging" : "", timeText(battery),
                    health.empty() ? "" : health + " of its design", cycles})};
}

}  // namespace

std::vector<FigureLine> figureLines(const MachineSample& sample) {
    const auto [cpu, gpu, memory, storage] = judgedMetrics(sample);
    std::vector<FigureLine> lines;
    if (sample.cpu.coreCount > 0) {
        lines.push_back(processorLine(sample.cpu, cpu));
    }
    addGraphics(lines, sample, gpu);
    if (memory.usage) {
        lines.push_back({"Memory", percent(memory.usage),
                         memoryText(sample.memory.used, kFormatter) + " of " +
                             memoryText(sample.memory.total, kFormatter),
                         memory.severity});
    }
    if (storage.usage) {
        const StorageInfo& volume = sample.storage->front();
        lines.push_back({"Disk", percent(storage.usage),
                         fileText(volume.usedSpace, kFormatter) + " of " +
                             fileText(volume.totalSpace, kFormatter) + " on " +
                             platform::repairedName(volume.name),
                         storage.severity});
    }
    if (sample.battery && sample.battery->hasBattery) {
        lines.push_back(batteryLine(*sample.battery));
    }
    if (sample.thermalState) {
        lines.push_back({"Heat", thermalStateWord(*sample.thermalState)});
    }
    if (sample.network.hasSample) {
        lines.push_back({"Network", "",
                         rateText(sample.network.downloadBytesPerSecond, kFormatter) + " down, " +
                             rateText(sample.network.uploadBytesPerSecond, kFormatter) + " up"});
    }
    if (sample.system.uptime > 0) {
        lines.push_back({"Uptime", "", uptimeText(sample.system.uptime)});
    }
    return lines;
}

std::vector<FigureLine> processLines(const MachineSample& sample) {
    std::vector<FigureLine> lines;
    for (const AppProcessInfo& process : sample.topCPUProcesses) {
        lines.push_back(
            {"CPU", percentText(process.cpuUsage, 1), platform::repairedName(process.name)});
    }
    for (const AppProcessInfo& process : sample.topMemoryProcesses) {
        lines.push_back({"Memory", memoryText(process.memoryUsage, kFormatter),
                         platform::repairedName(process.name)});
    }
    return lines;
}

}  // namespace tarnwick::probe
