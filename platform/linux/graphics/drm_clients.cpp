#include "platform/linux/graphics/drm_clients.h"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <memory>
#include <optional>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "platform/linux/processes/process_identifiers.h"

namespace tarnwick::platform {

namespace {

// Seconds.
constexpr double kShortestPause = 10;
constexpr double kLongestPauseOfSearches = 60;
constexpr double kLongestPauseOfProcess = 640;
constexpr double kPauseGrowth = 4;
/// Names of processes and descriptors that are read over time, at about a microsecond each.
constexpr double kNamesPerSecond = 20;
/// Far above what any desktop has. Bounds what the program keeps open.
constexpr std::size_t kMostClients = 512;

}  // namespace

DrmClients::DrmClients(const std::string& root, std::vector<std::string> nodes)
    : folder_(belowRoot(root, "proc")), nodes_(std::move(nodes)) {}

void DrmClients::search(double now) {
    if (nodes_.empty() || (now >= searchedAt_ && now < nextSearch_)) {
        return;
    }
    searchedAt_ = now;
    listProcessIdentifiers(folder_, listed_);
    std::size_t names = listed_.size();
    std::vector<Process> processes;
    processes.reserve(listed_.size());
    auto known = processes_.begin();
    for (const std::int32_t identifier : listed_) {
        while (known != processes_.end() && known->identifier < identifier) {
            ++known;
        }
        const bool isNew = known == processes_.end() || known->identifier != identifier;
        Process process =
            isNew ? Process{.identifier = identifier, .due = now, .pause = kShortestPause} : *known;
        // A clock that went back makes everything due.
        if (now >= process.due || process.due - now > process.pause) {
            names += look(identifier);
            process.due = now + process.pause;
            process.pause = std::min(process.pause * kPauseGrowth, kLongestPauseOfProcess);
        }
        processes.push_back(process);
    }
    processes_ = std::move(processes);
    nextSearch_ = now + std::clamp(static_cast<double>(names) / kNamesPerSecond, kShortestPause,
                                   kLongestPauseOfSearches);
}

std::size_t DrmClients::look(std::int32_t process) {
    struct Close {
        void operator()(DIR* opened) const { ::closedir(opened); }
    };
    const std::string folder = folder_ + "/" + std::to_string(process) + "/fd";
    const std::unique_ptr<DIR, Close> opened(::opendir(folder.c_str()));
    std::size_t count = 0;
    while (const dirent* entry = opened ? ::readdir(opened.get()) : nullptr) {
        ++count;
        // Longer than the name of any node of a card.
        std::array<char, 64> buffer;
        const ssize_t size =
            ::readlinkat(::dirfd(opened.get()), entry->d_name, buffer.data(), buffer.size());
        constexpr std::string_view prefix = "/dev/dri/";
        std::string_view target(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
        if (!target.starts_with(prefix)) {
            continue;
        }
        target.remove_prefix(prefix.size());
        if (std::ranges::count(nodes_, target) > 0) {
            add(process, entry->d_name, target.starts_with("card"));
        }
    }
    return count;
}

void DrmClients::add(std::int32_t process, const std::string& descriptor, bool isOnPrimaryNode) {
    KeptFile file(folder_ + "/" + std::to_string(process) + "/fdinfo/" + descriptor, 2048);
    const std::optional<ClientTimes> times = parseClientTimes(file.read().value_or(""));
    // A descriptor that was handed on belongs to the same client.
    if (times && !times->engines.empty() && clients_.size() < kMostClients &&
        !std::ranges::count(clients_, times->client, &Client::identifier)) {
        clients_.push_back({.identifier = times->client,
                            .process = process,
                            .isOnPrimaryNode = isOnPrimaryNode,
                            .times = std::move(file)});
    }
}

std::vector<ClientTimes> DrmClients::read() {
    std::vector<ClientTimes> all;
    std::erase_if(clients_, [this, &all](Client& client) {
        std::optional<ClientTimes> times = parseClientTimes(client.times.read().value_or(""));
        if (times && times->client == client.identifier) {
            all.push_back(std::move(*times));
            return false;
        }
        // The process may have another one now, and another process may hold the client.
        for (Process& process : processes_) {
            if (process.identifier == client.process) {
                process = {
                    .identifier = client.process, .due = searchedAt_, .pause = kShortestPause};
            }
        }
        nextSearch_ = std::min(nextSearch_, searchedAt_ + kShortestPause);
        return true;
    });
    return all;
}

bool DrmClients::hasScreenOwner() const {
    return std::ranges::any_of(clients_, &Client::isOnPrimaryNode);
}

}  // namespace tarnwick::platform
