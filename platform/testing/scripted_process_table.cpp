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

std::optional<std::size_t> ScriptedRawProcessTable::sysctl(
    std::span<const std::int32_t> name, std::optional<std::span<std::byte>> buffer) {
    std::string call = "sysctl";
    for (const std::int32_t part : name) {
        call += " " + std::to_string(part);
    }
    if (!buffer) {
        calls_.add(call);
        return size;
    }
    calls_.add(call + ", " + std::to_string(buffer->size()));
    if (!table) {
        return std::nullopt;
    }
    const std::size_t copied = std::min(table->size(), buffer->size());
    std::copy_n(table->begin(), copied, buffer->begin());
    return written.value_or(copied);
}

std::int32_t ScriptedRawProcessTable::procPidInfo(std::int32_t identifier, std::int32_t flavour,
                                                  std::uint64_t argument,
                                                  std::span<std::byte> buffer) {
    calls_.add("procPidInfo " + std::to_string(identifier) + " " + std::to_string(flavour) + " " +
               std::to_string(argument) + " " + std::to_string(buffer.size()));
    const auto task = found(tasks, identifier);
    if (!task) {
        return 0;
    }
    std::copy_n(task->begin(), std::min(task->size(), buffer.size()), buffer.begin());
    return static_cast<std::int32_t>(task->size());
}

std::int32_t ScriptedRawProcessTable::procPidPath(std::int32_t identifier,
                                                  std::span<std::byte> buffer) {
    calls_.add("procPidPath " + std::to_string(identifier) + " " + std::to_string(buffer.size()));
    const auto path = found(paths, identifier);
    if (!path) {
        return 0;
    }
    const auto bytes = std::as_bytes(std::span(*path));
    std::copy_n(bytes.begin(), std::min(bytes.size(), buffer.size()), buffer.begin());
    return static_cast<std::int32_t>(path->size());
}

}  // namespace tarnwick::platform::testing
