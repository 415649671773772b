// SPDX-License-Identifier: MIT
// What dragging a threshold in the settings window costs beside bare durable writes of the store.
//
//   settings_benchmark [--check] [options of the benchmark library]
//
// Times are processor times of the main thread, without a display: from the pointer's move until
// the value is on the disk and everything is painted. The program first prints the greatest cost
// among 500 changes in a row. Each change is one frame, and a frame may take 8 ms; with --check the
// program fails if one takes more. Only figures of an optimised build mean anything.
#include <QApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

#include "benchmarks/pairs.h"
#include "benchmarks/settings_drag.h"

namespace {

using tarnwick::benchmarks::Pair;
using tarnwick::benchmarks::SettingsDrag;

constexpr int kChanges = 500;
constexpr double kFrameMilliseconds = 8;

/// One value in a file, which each write replaces; it is on the disk when that returns.
class BareStore {
 public:
    BareStore(const BareStore&) = delete;
    BareStore& operator=(const BareStore&) = delete;
    BareStore() : directory_(::open(folder_.path().toUtf8().constData(), O_RDONLY | O_CLOEXEC)) {}
    ~BareStore() { ::close(directory_); }

    void write() {
        const std::string text = "{\n  \"key\": " + std::to_string(++writes_) + "\n}\n";
        const int file = ::openat(directory_, "new", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        const bool isWritten =
            ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
            ::fsync(file) == 0;
        ::close(file);
        if (!isWritten || ::renameat(directory_, "new", directory_, "settings.json") != 0 ||
            ::fsync(directory_) != 0) {
            throw std::runtime_error("the bare store does not keep what is written");
        }
    }

 private:
    QTemporaryDir folder_;
    const int directory_;
    int writes_ = 0;
};

void dragThreshold(benchmark::State& state) {
    SettingsDrag drag;
    for (auto iteration : state) {
        drag.change();
    }
}

void writeBare(benchmark::State& state) {
    BareStore store;
    for (auto iteration : state) {
        store.write();
    }
}

constexpr Pair kPairs[] = {
    {"a change of a threshold that is dragged", dragThreshold, writeBare, 8},
};

double threadMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

struct Costs {
    double total = 0;
    double greatest = 0;
};

template <class Work>
Costs costsOf(const Work& work) {
    Costs costs;
    for (int change = 0; change < kChanges; ++change) {
        const double before = threadMilliseconds();
        work();
        const double cost = threadMilliseconds() - before;
        costs.total += cost;
        costs.greatest = std::max(costs.greatest, cost);
    }
    return costs;
}

bool printDrag() {
    SettingsDrag drag;
    BareStore store;
    const Costs changes = costsOf([&drag] { drag.change(); });
    const Costs writes = costsOf([&store] { store.write(); });
    std::printf(
        "%d changes of a drag: greatest %.2f ms, mean %.3f ms, budget of a frame %.0f ms\n"
        "%d bare durable writes: greatest %.2f ms, mean %.3f ms; ratio of the sums %.2f\n",
        kChanges, changes.greatest, changes.total / kChanges, kFrameMilliseconds, kChanges,
        writes.greatest, writes.total / kChanges, changes.total / writes.total);
    return changes.greatest <= kFrameMilliseconds;
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_LOGGING_RULES", "*.warning=false", 1);
    // Makes the toolkit paint at once instead of a few milliseconds later.
    ::setenv("QT_QPA_UPDATE_IDLE_TIME", "0", 1);
    int none = 1;
    QApplication application(none, argv);
    const bool isWithin = printDrag();
    const int status = tarnwick::benchmarks::runPairs(argc, argv, kPairs);
    const bool isChecked = std::any_of(argv, argv + argc, [](const char* option) {
        return std::string_view(option) == "--check";
    });
    return status == 0 && isChecked && !isWithin ? EXIT_FAILURE : status;
}
