// SPDX-License-Identifier: MIT
// A program of its own: it replaces the global allocation functions and counts what is alive.
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>

#include "core/stats_manager.h"
#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_login_service.h"
#include "tests/services/no_battery.h"

namespace {

std::atomic<std::int64_t> liveBlocks = 0;
std::atomic<std::int64_t> liveBytes = 0;

/// In front of every block; keeps the block aligned for every type.
struct alignas(std::max_align_t) Header {
    std::size_t size;
};

void* allocateOrNull(std::size_t size) noexcept {
    auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header) {
        return nullptr;
    }
    header->size = size;
    ++liveBlocks;
    liveBytes += static_cast<std::int64_t>(size);
    return header + 1;
}

void* allocate(std::size_t size) {
    void* block = allocateOrNull(size);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void release(void* block) noexcept {
    if (block) {
        Header* header = static_cast<Header*>(block) - 1;
        --liveBlocks;
        liveBytes -= static_cast<std::int64_t>(header->size);
        std::free(header);
    }
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}

namespace tarnwick {
namespace {

struct Alive {
    std::int64_t blocks;
    std::int64_t bytes;

    bool operator==(const Alive&) const = default;
    static Alive now() { return {liveBlocks, liveBytes}; }
};

class StatsManagerGrowth : public ::testing::Test {
 protected:
    MetricSources sources() {
        return {
            .readCPUInfo =
                [this] {
                    ++fast;
                    CPUInfo info;
                    info.usagePercentage = static_cast<double>(fast % 101);
                    info.coreCount = 16;
                    info.coreUsages.assign(16, info.usagePercentage);
                    return info;
                },
            .readGPUInfo =
                [] {
                    GPUInfo info;
                    info.modelName = "A name too long to fit into the text object itself";
                    return info;
                },
            .readMemoryInfo = [] { return MemoryInfo{.total = 100, .used = 50}; },
            .readNetworkInfo = [] { return NetworkInfo{}; },
            .readTopProcesses =
                [this](int limit) {
                    ++passes;
                    TopProcessLists processes;
                    for (int i = 0; i < limit; ++i) {
                        processes.cpu.push_back({.id = i, .name = std::string(40, 'c')});
                        processes.memory.push_back({.id = i, .name = std::string(40, 'm')});
                    }
                    return processes;
                },
            .pruneStaleProcesses = [] {},
            .releaseProcessCaches = [] {},
            .readStorageInfo =
                [] {
                    StorageInfo info;
                    info.name = "A volume with a name that is allocated";
                    info.totalSpace = 10;
                    info.usedSpace = 5;
                    return info;
                },
            .readThermalState = [] { return std::int64_t{0}; },
            .readUptime = [this] { return dispatch.now(); },
        };
    }

    void expectBounded(const StatsManager& manager) {
        EXPECT_EQ(manager.cpuUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.gpuUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.memoryUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.storageUsageHistory->size(), StatsManager::kHistoryLimit);
        EXPECT_EQ(manager.topCPUProcesses->size(), 3u);
        EXPECT_EQ(dispatch.mainPending() + dispatch.detachedPending(), 0u);
    }

    std::int64_t fast = 0;
    std::int64_t passes = 0;
    platform::testing::ManualDispatch dispatch;
    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    UserSettings settings{store, loginService};
};

TEST_F(StatsManagerGrowth, AHundredThousandRefreshesLeaveNotOneByteMoreThanTheFirstOnes) {
    StatsManager manager(
        &settings, noBattery(store), 30, 120,
        {dispatch, sources(), [this] { return dispatch.now(); }, platform::Logger()});
    const auto subscription = manager.objectWillChange([] {});
    // A cycle is ten minutes with the panel and an hour without.
    const auto cycle = [&] {
        manager.popoverDidAppear();
        dispatch.advance(600);
        manager.popoverDidDisappear();
        manager.refreshNow();
        manager.refreshNow();
        dispatch.advance(3600);
    };
    // Warm-up: until every history is full.
    cycle();
    cycle();
    cycle();
    expectBounded(manager);
    const Alive before = Alive::now();
    const std::int64_t start = fast;
    while (fast - start < 100000) {
        cycle();
        ASSERT_EQ(Alive::now(), before) << fast;
    }
    expectBounded(manager);
    EXPECT_GT(passes, 30000);
}

TEST_F(StatsManagerGrowth, AManagerThatGoesInMidFlightLeavesNothing) {
    const auto comeAndGo = [this] {
        auto manager = std::make_unique<StatsManager>(
            &settings, noBattery(store), 30, 120,
            StatsManagerEnvironment{dispatch, sources(), [this] { return dispatch.now(); },
                                    platform::Logger()});
        dispatch.advance(1000);
        manager->popoverDidAppear();
        manager->refreshNow();
        manager->refreshNow();
        manager.reset();
        dispatch.runMain();
    };
    // The first time the dispatch allocates room for its timers, and keeps it.
    comeAndGo();
    const Alive before = Alive::now();
    comeAndGo();
    EXPECT_EQ(Alive::now(), before);
}

}  // namespace
}  // namespace tarnwick
