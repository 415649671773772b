// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/drm_clients.h"
#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/runtime_power.h"

namespace tarnwick::platform {

namespace {

/// Percent. A card that is awake for less of the time is not asked what its engines did: the time
/// awake is at most this much above the use, and below every threshold that a user can set.
constexpr double kHardlyAwake = 5;
/// Seconds. In a shorter time the steps of the counters would be visible.
constexpr double kShortestWindow = 0.2;
constexpr double kSecondsBetweenCounterSearches = 60;
/// How far a counter may be ahead of the clock: both are read one after the other and run on two
/// oscillators.
constexpr double kToleratedLead = 1.02;
constexpr double kToleratedLeadSeconds = 0.02;
constexpr int kMostGroups = 8;

/// Share of the time in which a class of engines worked for one client, of all its engines.
double shareOf(const EngineTime& before, const EngineTime& now, double seconds) {
    const double window = now.total > 0
                              ? static_cast<double>(now.total) - static_cast<double>(before.total)
                              : seconds * 1e9;
    if (now.busy < before.busy || window <= 0) {
        return 0;
    }
    return static_cast<double>(now.busy - before.busy) / window / static_cast<double>(now.capacity);
}

struct Sample {
    double moment;
    std::vector<ClientTimes> clients;
};

/// How busy each class of engines was for all clients together, 1 for a class that always worked.
using Shares = std::map<std::string, double, std::less<>>;

/// Clients that are new add nothing yet.
Shares sharesSince(const Sample& before, const Sample& now) {
    Shares shares;
    for (const ClientTimes& client : now.clients) {
        const auto earlier = std::ranges::find(before.clients, client.client, &ClientTimes::client);
        if (earlier == before.clients.end()) {
            continue;
        }
        for (const EngineTime& engine : client.engines) {
            const auto start =
                std::ranges::find(earlier->engines, engine.engine, &EngineTime::engine);
            if (start != earlier->engines.end()) {
                shares[engine.engine] += shareOf(*start, engine, now.moment - before.moment);
            }
        }
    }
    return shares;
}

/// Absent if the counters did not fit the clock.
std::optional<GpuUtilization> useOf(const Shares& shares) {
    double busiest = 0;
    std::optional<double> renderer;
    for (const auto& [engine, share] : shares) {
        busiest = std::max(busiest, 100 * share);
        if (engine == "render" || engine == "rcs") {
            renderer = percentageOf(100 * share);
        }
    }
    const std::optional<double> device = percentageOf(busiest);
    return device ? std::optional(GpuUtilization{.device = *device, .renderer = renderer})
                  : std::nullopt;
}

class EngineTimeSource final : public GpuSource {
 public:
    EngineTimeSource(std::string root, const GraphicsDevice& device)
        : device_(device),
          queues_(device.folder + "/gpu_stats"),
          clients_(root, nodesOf(device.folder)) {}

    /// Graphics on the chip of the processor, which are on no bus, sleep between two pictures.
    /// Their drivers keep the times in memory and ask nothing.
    bool touchesCard() const override { return !device_.identity.slot.empty(); }

    std::optional<GpuUtilization> read(double now) override {
        const std::optional<double> awake = shareAwake(now);
        if (awake && *awake < kHardlyAwake) {
            sample_.reset();
            // A use that cannot be told stays untold, so that the figure does not come and go.
            answer_ = isHidden_ ? std::nullopt : std::optional(GpuUtilization{.device = *awake});
            return answer_;
        }
        if (sample_ && now >= sample_->moment && now - sample_->moment < kShortestWindow) {
            return answer_;
        }
        Sample sample{.moment = now, .clients = timesOfClients(now)};
        isHidden_ = sample.clients.empty();
        if (isHidden_) {
            answer_.reset();
        } else if (sample_) {
            // While all clients are new, the answer from before still stands.
            const Shares shares = sharesSince(*sample_, sample);
            answer_ = shares.empty() ? answer_ : useOf(shares);
        }
        sample_ = std::move(sample);
        return answer_;
    }

    void forget() override {
        groupsReadAt_.reset();
        sample_.reset();
        answer_.reset();
    }

 private:
    /// Engines of i915 and xe that go to sleep together.
    struct EngineGroup {
        KeptFile counter;
        /// Milliseconds of sleep.
        std::optional<std::uint64_t> slept{};
    };

    /// The names of the card's files in `/dev/dri`.
    static std::vector<std::string> nodesOf(const std::string& device) {
        std::vector<std::string> nodes;
        std::error_code error;
        std::filesystem::directory_iterator entry(device + "/drm", error);
        for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
            std::string name = entry->path().filename().native();
            if (name.starts_with("card") || name.starts_with("renderD")) {
                nodes.push_back(std::move(name));
            }
        }
        return nodes;
    }

    /// An upper bound of the use, percent. Absent where the driver does not tell.
    std::optional<double> shareAwake(double now) {
        if (groups_.empty() &&
            !(now >= groupsSoughtAt_ && now - groupsSoughtAt_ < kSecondsBetweenCounterSearches)) {
            findGroups();
            groupsSoughtAt_ = now;
        }
        const double seconds = groupsReadAt_ ? now - *groupsReadAt_ : 0;
        if (groupsReadAt_ && seconds >= 0 && seconds < kShortestWindow) {
            return awake_;
        }
        groupsReadAt_ = now;
        awake_.reset();
        bool areAllKnown = true;
        for (EngineGroup& group : groups_) {
            const std::optional<std::uint64_t> before = group.slept;
            group.slept = parseCount(group.counter.read().value_or(""));
            if (seconds <= 0 || !before || !group.slept || *group.slept < *before) {
                areAllKnown = false;
                continue;
            }
            const double slept = static_cast<double>(*group.slept - *before) / 1000;
            areAllKnown = areAllKnown && slept <= seconds * kToleratedLead + kToleratedLeadSeconds;
            awake_ = std::max(awake_, std::optional(std::max(0.0, 100 * (1 - slept / seconds))));
        }
        if (!areAllKnown) {
            awake_.reset();
        }
        return awake_;
    }

    void findGroups() {
        const auto add = [this](const std::string& counter) {
            std::error_code error;
            if (std::filesystem::exists(counter, error)) {
                groups_.push_back({.counter = KeptFile(counter, 64)});
            }
        };
        if (device_.identity.driver != "i915" && device_.identity.driver != "xe") {
            return;
        }
        for (int number = 0; number < kMostGroups; ++number) {
            add(device_.card + "/gt/gt" + std::to_string(number) + "/rc6_residency_ms");
        }
        // The xe driver has tiles, with their engine groups numbered across all tiles.
        for (int number = 0; number < kMostGroups * kMostGroups; ++number) {
            const std::string tile = std::to_string(number / kMostGroups);
            const std::string group = std::to_string(number % kMostGroups);
            add(device_.folder + "/tile" + tile + "/gt" + group + "/gtidle/idle_residency_ms");
        }
        // Kernels before 5.19 have one counter at the card.
        if (groups_.empty()) {
            add(device_.card + "/power/rc6_residency_ms");
        }
    }

    /// Empty where the work of the card's main user cannot be seen.
    std::vector<ClientTimes> timesOfClients(double now) {
        if (std::vector<EngineTime> queues = parseQueueTimes(queues_.read().value_or(""));
            !queues.empty()) {
            return {{.engines = std::move(queues)}};
        }
        clients_.search(now);
        std::vector<ClientTimes> times = clients_.read();
        // What draws the screen does most of the work. If it is not among the clients, it runs as
        // another user or outside of this container.
        if (!clients_.hasScreenOwner() &&
            RuntimePower(device_.folder, device_.card).drivesAScreen()) {
            times.clear();
        }
        return times;
    }

    const GraphicsDevice device_;
    KeptFile queues_;
    DrmClients clients_;
    std::vector<EngineGroup> groups_;
    double groupsSoughtAt_ = -std::numeric_limits<double>::infinity();
    std::optional<double> groupsReadAt_;
    std::optional<double> awake_;
    std::optional<Sample> sample_;
    std::optional<GpuUtilization> answer_;
    bool isHidden_ = false;
};

}  // namespace

std::unique_ptr<GpuSource> makeEngineTimeSource(std::string root, const GraphicsDevice& device) {
    return std::make_unique<EngineTimeSource>(std::move(root), device);
}

}  // namespace tarnwick::platform
