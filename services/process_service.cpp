// SPDX-License-Identifier: MIT
#include "services/process_service.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/records/checked_math.h"
#include "platform/platform.h"
#include "platform/utf8.h"
#include "services/application_name.h"
#include "services/process_ranking.h"

namespace tarnwick {
namespace {

constexpr double kNanosecondsPerSecond = 1e9;
/// Times of a process that are this old or older are forgotten; seconds.
constexpr double kStaleAge = 60.0;
/// Bytes; a longer command is cut.
constexpr std::size_t kLongestCommand = 300;

/// A program chooses its name, also one that changes the text around it, or one of blanks.
std::string shownName(const std::string& name, std::int32_t identifier) {
    std::string shown = platform::repairedName(name);
    return name.empty() || platform::canBeSeen(shown) ? shown : "PID " + std::to_string(identifier);
}

}  // namespace

ProcessService::ProcessService(platform::ProcessTable& table, platform::Kernel& kernel,
                               platform::Logger logger)
    : table_(table), kernel_(kernel), logger_(logger) {}

ProcessService& ProcessService::shared() {
    // Never destroyed: background work may still use it while the process ends.
    static ProcessService& service =
        *new ProcessService(*platform::current().processTable, *platform::current().kernel);
    return service;
}

TopProcessLists ProcessService::readTopProcesses(int limit) {
    if (limit < 0) {
        std::abort();
    }
    std::vector<AppProcessInfo> samples = enumerate();
    if (samples.empty()) {
        samples = enumerate();
    }
    if (samples.empty()) {
        const std::lock_guard guard(lock);
        return previousTopLists;
    }
    TopProcessLists lists{.cpu = topByCPU(samples, limit), .memory = topByMemory(samples, limit)};
    nameRows(lists);
    addCommands(lists);
    const std::lock_guard guard(lock);
    previousTopLists = lists;
    return lists;
}

std::vector<AppProcessInfo> ProcessService::enumerate() {
    std::vector<AppProcessInfo> samples;
    const std::int32_t own = table_.ownIdentifier();
    const platform::ProcessListing listing =
        table_.forEachProcess([this, own, &samples](platform::ProcessEntry& process) {
            const std::int32_t identifier = process.identifier();
            if (identifier == 0 || identifier == own) {
                return;
            }
            const Measurement measured = measure(process);
            if (isWorthKeeping(measured.cpuUsage, measured.residentSize)) {
                samples.push_back({.id = identifier,
                                   .name = platform::repairedUTF8(process.command()),
                                   .cpuUsage = measured.cpuUsage,
                                   .memoryUsage = measured.residentSize});
            }
        });
    switch (listing) {
        case platform::ProcessListing::complete:
            break;
        case platform::ProcessListing::noBufferSize:
            logger_.error("Failed to get process list buffer size");
            break;
        case platform::ProcessListing::noList:
            logger_.error("Failed to get process list");
            break;
    }
    return samples;
}

ProcessService::Measurement ProcessService::measure(platform::ProcessEntry& process) {
    const std::optional<platform::TaskInformation> task = process.taskInformation();
    if (!task) {
        return {};
    }
    const CPUTimes current{
        .user = task->totalUser, .system = task->totalSystem, .time = kernel_.monotonicSeconds()};
    Measurement measured{.cpuUsage = 0, .residentSize = task->residentSize};
    const std::lock_guard guard(lock);
    const auto [entry, isNew] = previousProcessCPU.try_emplace(process.identifier(), current);
    if (!isNew) {
        measured.cpuUsage = percentage(entry->second, current);
        entry->second = current;
    }
    return measured;
}

double ProcessService::percentage(const CPUTimes& previous, const CPUTimes& current) {
    const double elapsed = current.time - previous.time;
    if (!(elapsed > 0)) {
        return 0;
    }
    const std::uint64_t used = checkedAdd(counterDelta(current.user, previous.user),
                                          counterDelta(current.system, previous.system));
    const double seconds =
        constants().timebaseRatio * static_cast<double>(used) / kNanosecondsPerSecond;
    const double share = seconds / elapsed / constants().processorCount * 100;
    return share > 100 ? 100 : share;
}

const ProcessService::Constants& ProcessService::constants() {
    std::call_once(constantsRead_, [this] {
        constants_.processorCount = std::max(static_cast<double>(table_.processorCount()), 1.0);
        const std::optional<platform::TimebaseInfo> timebase = table_.timebaseInfo();
        if (timebase && timebase->denom != 0) {
            constants_.timebaseRatio =
                static_cast<double>(timebase->numer) / static_cast<double>(timebase->denom);
        }
    });
    return constants_;
}

void ProcessService::nameRows(TopProcessLists& lists) {
    // A process in both lists is looked up once.
    std::unordered_map<std::int32_t, std::string> names;
    for (std::vector<AppProcessInfo>* list : {&lists.cpu, &lists.memory}) {
        for (AppProcessInfo& row : *list) {
            const auto [known, isNew] = names.try_emplace(row.id);
            if (isNew) {
                known->second =
                    shownName(applicationName(table_, row.id).value_or(row.name), row.id);
            }
            row.name = known->second;
        }
    }
}

void ProcessService::addCommands(TopProcessLists& lists) {
    // Numbers of processes are used again; the name tells another process, as a rule.
    std::map<std::pair<std::int32_t, std::string>, std::string> commands;
    {
        const std::lock_guard guard(lock);
        for (const auto* list : {&previousTopLists.cpu, &previousTopLists.memory}) {
            for (const AppProcessInfo& row : *list) {
                commands[{row.id, row.name}] = row.command;
            }
        }
    }
    for (std::vector<AppProcessInfo>* list : {&lists.cpu, &lists.memory}) {
        for (AppProcessInfo& row : *list) {
            const auto [known, isNew] = commands.try_emplace({row.id, row.name});
            if (isNew) {
                known->second = platform::repairedName(
                    std::string_view(table_.commandLine(row.id)).substr(0, kLongestCommand));
            }
            row.command = known->second;
        }
    }
}

void ProcessService::pruneStaleProcesses() {
    const std::lock_guard guard(lock);
    const double cutoff = kernel_.monotonicSeconds() - kStaleAge;
    std::erase_if(previousProcessCPU,
                  [cutoff](const auto& entry) { return !(entry.second.time > cutoff); });
}

void ProcessService::releaseCaches() {
    {
        const std::lock_guard guard(lock);
        previousProcessCPU = {};
    }
    table_.releaseCaches();
}

}  // namespace tarnwick
