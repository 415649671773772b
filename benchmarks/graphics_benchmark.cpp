// SPDX-License-Identifier: MIT
// What following the clients of a graphics card costs beside bare loops over the same files.
//
//   graphics_benchmark [--processes=N] [--check] [options of the benchmark library]
//
// Measures with the machine's own processes and N more (500 by default) that have 20 descriptors
// each, and, for the reading between searches, with 20 clients in a temporary folder. The added
// processes do nothing and are ended at the end. Only figures of an optimised build mean anything.
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "benchmarks/pairs.h"
#include "benchmarks/sleepers.h"
#include "platform/linux/events/process_limits.h"
#include "platform/linux/graphics/drm_clients.h"

namespace {

using tarnwick::benchmarks::Pair;
using tarnwick::platform::DrmClients;

// With the three that a process inherits.
constexpr int kDescriptorsOfEach = 17;
constexpr int kClients = 20;
// How often the program measures while nobody looks, seconds.
constexpr double kHiddenInterval = 10;

const std::vector<std::string> kNodes = {"card1", "renderD128"};

// Lists the folder and hands out the names that are numbers.
template <class Take>
void forEachNumber(const std::string& folder, Take take) {
    DIR* const opened = ::opendir(folder.c_str());
    while (const dirent* entry = opened != nullptr ? ::readdir(opened) : nullptr) {
        if (entry->d_name[0] >= '0' && entry->d_name[0] <= '9') {
            take(::dirfd(opened), entry->d_name);
        }
    }
    if (opened != nullptr) {
        ::closedir(opened);
    }
}

// Reads where all descriptors of all processes lead.
void bareSearch(benchmark::State& state) {
    for ([[maybe_unused]] const auto turn : state) {
        forEachNumber("/proc", [](int, const char* process) {
            forEachNumber("/proc/" + std::string(process) + "/fd", [](int folder,
                                                                      const char* name) {
                std::array<char, 64> target;
                benchmark::DoNotOptimize(::readlinkat(folder, name, target.data(), target.size()));
            });
        });
    }
}

void firstSearch(benchmark::State& state) {
    for ([[maybe_unused]] const auto turn : state) {
        DrmClients clients("/", kNodes);
        clients.search(0);
        benchmark::DoNotOptimize(clients.read());
    }
}

// All searches of an hour on a machine that does not tell who opens the card; where it does, there
// are none unless somebody opens it.
void hourOfSearches(benchmark::State& state) {
    DrmClients clients("/", kNodes);
    double moment = 0;
    for (; moment < 60; moment += kHiddenInterval) {
        clients.search(moment);
    }
    for ([[maybe_unused]] const auto turn : state) {
        for (const double end = moment + 3600; moment < end; moment += kHiddenInterval) {
            clients.search(moment);
        }
        benchmark::DoNotOptimize(clients.read());
    }
}

// A machine with clients, removed at the end.
class ClientFiles {
 public:
    ClientFiles() : root_(std::filesystem::temp_directory_path() / "graphics_benchmark_XXXXXX") {
        if (::mkdtemp(root_.data()) == nullptr) {
            std::perror("graphics_benchmark: no temporary folder");
            std::exit(1);
        }
        for (int number = 1; number <= kClients; ++number) {
            const std::string process = root_ + "/proc/" + std::to_string(number);
            std::filesystem::create_directories(process + "/fd");
            std::filesystem::create_directories(process + "/fdinfo");
            std::filesystem::create_symlink("/dev/dri/renderD128", process + "/fd/9");
            std::ofstream text(process + "/fdinfo/9");
            text << "pos:\t0\nflags:\t02100002\nmnt_id:\t26\nino:\t609\ndrm-driver:\ti915\n"
                 << "drm-client-id:\t" << number << "\ndrm-pdev:\t0000:00:02.0\n"
                 << "drm-total-system0:\t137160 KiB\ndrm-shared-system0:\t131200 KiB\n"
                 << "drm-active-system0:\t0\ndrm-resident-system0:\t137160 KiB\n"
                 << "drm-engine-render:\t25662044495 ns\ndrm-engine-copy:\t0 ns\n"
                 << "drm-engine-video:\t0 ns\ndrm-engine-capacity-video:\t2\n"
                 << "drm-engine-video-enhance:\t0 ns\n";
        }
    }
    ClientFiles(const ClientFiles&) = delete;
    ClientFiles& operator=(const ClientFiles&) = delete;
    ~ClientFiles() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }

    const std::string& root() const { return root_; }

 private:
    std::string root_;
};

void bareClients(benchmark::State& state) {
    const ClientFiles files;
    std::vector<int> opened;
    for (int number = 1; number <= kClients; ++number) {
        opened.push_back(
            ::open((files.root() + "/proc/" + std::to_string(number) + "/fdinfo/9").c_str(),
                   O_RDONLY | O_CLOEXEC));
    }
    std::array<char, 2048> text;
    for ([[maybe_unused]] const auto turn : state) {
        for (const int file : opened) {
            benchmark::DoNotOptimize(::pread(file, text.data(), text.size(), 0));
        }
    }
    for (const int file : opened) {
        ::close(file);
    }
}

void clients(benchmark::State& state) {
    const ClientFiles files;
    DrmClients known(files.root(), kNodes);
    known.search(0);
    for ([[maybe_unused]] const auto turn : state) {
        benchmark::DoNotOptimize(known.read());
    }
}

// An hour may take 0.003 % of a core.
constexpr Pair kPairs[] = {
    {"first search for clients", firstSearch, bareSearch, 1.4},
    {"hour of searches for clients", hourOfSearches, bareSearch, 3, 108},
    {"clients between searches", clients, bareClients, 6},
};

}  // namespace

int main(int argc, char** argv) {
    const int added = tarnwick::benchmarks::takeProcesses(argc, argv, 500);
    tarnwick::platform::raiseDescriptorLimit();
    const tarnwick::benchmarks::Sleepers sleepers(added, kDescriptorsOfEach);
    return tarnwick::benchmarks::runPairs(argc, argv, kPairs);
}
