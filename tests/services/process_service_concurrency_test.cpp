// SPDX-License-Identifier: MIT
#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <string>
#include <vector>

#include "platform/testing/joined_thread.h"
#include "platform/testing/scripted_kernel.h"
#include "platform/testing/scripted_process_table.h"
#include "services/process_service.h"

namespace tarnwick {
namespace {

TEST(ProcessServiceConcurrency, NothingOfTheServiceIsHeldWhileThePlatformWorks) {
    platform::testing::ScriptedProcessTable table;
    platform::testing::ScriptedKernel kernel;
    ProcessService service(table, kernel);
    table.processes = {{.identifier = 1, .command = "a", .task{{.residentSize = 2'000'000}}}};
    table.paths[1] = "/Applications/A.app/a";
    int pruned = 0;
    table.duringCall = [&](const std::string& call) {
        // It would wait for ever.
        if (call != "processorCount" && call != "timebaseInfo") {
            service.pruneStaleProcesses();
            ++pruned;
        }
    };
    service.readTopProcesses(3);
    kernel.advance(1);
    EXPECT_EQ(service.readTopProcesses(3).cpu.at(0).name, "A");
    // Own identifier, walk, task information, application, path, display name; twice.
    EXPECT_EQ(pruned, 12);
}

TEST(ProcessServiceConcurrency, OverlappingCallsGiveWholeLists) {
    constexpr int kThreads = 4;
    constexpr int kReads = 200;
    platform::testing::ScriptedProcessTable table;
    platform::testing::ScriptedKernel kernel;
    for (std::int32_t id = 1; id <= 20; ++id) {
        table.processes.push_back(
            {.identifier = id,
             .command = "p",
             .task{{.residentSize = static_cast<std::uint64_t>(id) * 1'000'000}}});
    }
    ProcessService service(table, kernel);
    std::latch start(kThreads);
    std::atomic<int> whole = 0;
    {
        std::vector<platform::testing::JoinedThread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int read = 0; read < kReads; ++read) {
                    const TopProcessLists lists = service.readTopProcesses(3);
                    service.pruneStaleProcesses();
                    service.releaseCaches();
                    if (lists.cpu.size() == 3 && lists.memory.size() == 3 &&
                        lists.memory[0].id == 20 && lists.cpu[0].cpuUsage == 0) {
                        ++whole;
                    }
                }
            });
        }
    }
    EXPECT_EQ(whole, kThreads * kReads);
}

}  // namespace
}  // namespace tarnwick
