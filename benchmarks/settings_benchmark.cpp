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
#include <sqlite3.h>
#include <stdexcept>
#include <string_view>

#include "benchmarks/pairs.h"
#include "benchmarks/settings_drag.h"

namespace {

using tarnwick::benchmarks::Pair;
using tarnwick::benchmarks::SettingsDrag;

constexpr int kChanges = 500;
constexpr double kFrameMilliseconds = 8;

/// One value in a file, each write of which is on the disk when it returns.
class BareStore {
 public:
    BareStore() {
        if (sqlite3_open(folder_.filePath("bare.sqlite").toUtf8().constData(), &database_) !=
            SQLITE_OK) {
            throw std::runtime_error("the bare store cannot be opened");
        }
        execute(
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;"
            "CREATE TABLE defaults (key TEXT PRIMARY KEY, value) WITHOUT ROWID");
        if (sqlite3_prepare_v2(database_, "INSERT OR REPLACE INTO defaults VALUES ('key', ?1)", -1,
                               &write_, nullptr) != SQLITE_OK) {
            throw std::runtime_error("the bare store cannot be written");
        }
    }
    BareStore(const BareStore&) = delete;
    BareStore& operator=(const BareStore&) = delete;
    ~BareStore() {
        sqlite3_finalize(write_);
        sqlite3_close(database_);
    }

    void write() {
        sqlite3_bind_double(write_, 1, ++writes_);
        if (sqlite3_step(write_) != SQLITE_DONE || sqlite3_reset(write_) != SQLITE_OK) {
            throw std::runtime_error("the bare store does not keep what is written");
        }
    }

 private:
    void execute(const char* sql) {
        if (sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error("the bare store cannot be begun");
        }
    }

    QTemporaryDir folder_;
    sqlite3* database_ = nullptr;
    sqlite3_stmt* write_ = nullptr;
    double writes_ = 0;
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
