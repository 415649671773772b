// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_process_table.h"

#include <algorithm>

namespace tarnwick::platform::testing {

namespace {

template <class Map, class Key>
std::optional<typename Map::mapped_type> found(const Map& map, const Key& key) {
    const auto entry = map.find(key);
    return entry == map.end() ? std::nullopt : std::optional(entry->second);
}

}  // namespace

class ScriptedProcessTable::Entry final : public ProcessEntry {
 public:
    Entry(ScriptedProcessTable& table, const ScriptedProcess& process)
        : table_(table), process_(process) {}

    std::int32_t identifier() const override { return process_.identifier; }
    std::optional<TaskInformation> taskInformation() override {
        table_.record("taskInformation " + std::to_string(process_.identifier));
        return process_.task;
    }
    std::string_view command() override { return process_.command; }

 private:
    ScriptedProcessTable& table_;
    const ScriptedProcess& process_;
};

void ScriptedProcessTable::record(const std::string& call) {
    calls_.add(call);
    if (duringCall) {
        duringCall(call);
    }
}

ProcessListing ScriptedProcessTable::forEachProcess(const Visit& visit) {
    record("forEachProcess");
    const ProcessListing answer = listing.take();
    if (answer == ProcessListing::complete) {
        for (const ScriptedProcess& process : processes) {
            Entry entry(*this, process);
            visit(entry);
        }
    }
    return answer;
}

std::int32_t ScriptedProcessTable::ownIdentifier() {
    record("ownIdentifier");
    return own;
}

std::int64_t ScriptedProcessTable::processorCount() {
    record("processorCount");
    return processors;
}

std::optional<TimebaseInfo> ScriptedProcessTable::timebaseInfo() {
    record("timebaseInfo");
    return timebase;
}

std::optional<RunningApplication> ScriptedProcessTable::runningApplication(
    std::int32_t identifier) {
    record("runningApplication " + std::to_string(identifier));
    return found(applications, identifier);
}

std::string ScriptedProcessTable::commandLine(std::int32_t identifier) {
    ++commandLineReads;
    const auto found = commandLines.find(identifier);
    return found == commandLines.end() ? std::string() : found->second;
}

std::optional<std::string> ScriptedProcessTable::executablePath(std::int32_t identifier) {
    record("executablePath " + std::to_string(identifier));
    return found(paths, identifier);
}

std::string ScriptedProcessTable::displayName(const std::string& path) {
    record("displayName " + path);
    return found(displayNames, path).value_or(path.substr(path.rfind('/') + 1));
}

void ScriptedProcessTable::releaseCaches() {
    record("releaseCaches");
}

}  // namespace tarnwick::platform::testing
