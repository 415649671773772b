// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/drm_clients.h"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <memory>
#include <optional>
#include <string_view>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/processes/linux_process_table.h"

namespace tarnwick::platform {

namespace {

/// Seconds between searches, and what the list of processes adds.
constexpr double kShortestPause = 10;
constexpr double kLongestPause = 60;
constexpr double kProcessesPerSecond = 20;
constexpr double kDescriptorsPerSecond = 3;
constexpr double kGreatestAllowance = 20'000;
/// A new process is looked at so often before it counts as one without the card.
constexpr int kFirstLooks = 2;
/// Far above what any desktop has. Bounds what the program keeps open.
constexpr std::size_t kMostClients = 512;

}  // namespace

DrmClients::DrmClients(const std::string& root, std::vector<std::string> nodes)
    : root_(root), folder_(belowRoot(root, "proc")), nodes_(std::move(nodes)) {}

bool DrmClients::wasOpened() {
    if (!isWatching_) {
        watch_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        isWatching_ = std::ranges::all_of(nodes_, [this](const std::string& node) {
            const std::string path = belowRoot(root_, "dev/dri/" + node);
            return ::inotify_add_watch(watch_.get(), path.c_str(), IN_OPEN) >= 0;
        });
    }
    bool seen = !isWatching_;
    // Events of watched files have no names, so all have the same size.
    std::array<inotify_event, 64> events;
    ssize_t size = 0;
    while ((size = ::read(watch_.get(), events.data(), sizeof events)) > 0) {
        seen = true;
        const std::size_t count = static_cast<std::size_t>(size) / sizeof events.front();
        // A node that has gone may come back as another file of the same name.
        if (std::any_of(events.begin(), events.begin() + count, [](const inotify_event& event) {
                return (event.mask & IN_IGNORED) != 0;
            })) {
            isWatching_ = false;
        }
    }
    return seen;
}

void DrmClients::search(double now) {
    if (nodes_.empty() || (now >= searchedAt_ && now < nextSearch_)) {
        return;
    }
    if (wasOpened()) {
        searchesDue_ = 2;
        isUnexplained_ = true;
    }
    if (!processes_.empty() && now > searchedAt_) {
        allowance_ =
            std::min(allowance_ + (now - searchedAt_) * kDescriptorsPerSecond, kGreatestAllowance);
    }
    searchedAt_ = now;
    if (searchesDue_ == 0 && !(isUnexplained_ && allowance_ > 0)) {
        return;
    }
    searchesDue_ = std::max(searchesDue_ - 1, 0);
    takeList();
    nextSearch_ = now + std::clamp(static_cast<double>(processes_.size()) / kProcessesPerSecond,
                                   kShortestPause, kLongestPause);

    const std::size_t knownClients = clients_.size();
    std::vector<Process*> others;
    for (Process& process : processes_) {
        if (process.looks < kFirstLooks || (process.hasCard && isWatching_)) {
            look(process);
        } else {
            others.push_back(&process);
        }
    }
    isUnexplained_ = isUnexplained_ && clients_.size() == knownClients;
    if (isUnexplained_ && allowance_ > 0) {
        for (Process* const process : others) {
            allowance_ -= static_cast<double>(look(*process));
        }
        isUnexplained_ = false;
    }
}

void DrmClients::takeList() {
    listProcessIdentifiers(folder_, listed_);
    std::vector<Process> processes;
    processes.reserve(listed_.size());
    auto known = processes_.begin();
    for (const std::int32_t identifier : listed_) {
        known = std::find_if(known, processes_.end(), [identifier](const Process& process) {
            return process.identifier >= identifier;
        });
        const bool isKnown = known != processes_.end() && known->identifier == identifier;
        processes.push_back(isKnown ? *known : Process{.identifier = identifier});
    }
    processes_ = std::move(processes);
}

std::size_t DrmClients::look(Process& process) {
    process.looks = std::min(process.looks + 1, kFirstLooks);
    process.hasCard = false;
    struct Close {
        void operator()(DIR* opened) const { ::closedir(opened); }
    };
    const std::string folder = folder_ + "/" + std::to_string(process.identifier) + "/fd";
    const std::unique_ptr<DIR, Close> opened(::opendir(folder.c_str()));
    // Opening the folder takes as long as reading a few links.
    std::size_t count = 3;
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
            process.hasCard = true;
            add(process.identifier, entry->d_name, target.starts_with("card"));
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
        // Another process may hold the client, and its own may have a new one.
        for (Process& process : processes_) {
            process.looks = process.hasCard ? kFirstLooks - 1 : process.looks;
        }
        searchesDue_ = std::max(searchesDue_, 1);
        nextSearch_ = std::min(nextSearch_, searchedAt_ + kShortestPause);
        return true;
    });
    return all;
}

bool DrmClients::hasScreenOwner() const {
    return std::ranges::any_of(clients_, &Client::isOnPrimaryNode);
}

}  // namespace tarnwick::platform
