// SPDX-License-Identifier: MIT
// What the panel costs beside a bare window of the same toolkit with as many texts.
//
//   panel_benchmark [--check] [options of the benchmark library]
//   panel_benchmark --rounds=10000
//
// Times are processor times of the main thread, without a display. Opening lasts from the click
// until everything is painted; closing lasts until the widgets are gone. A refresh lasts from the
// samplers' timers until the figures and every frame of the moving bars are painted; the samplers
// cost nothing.
//
// A person sees no delay below 60 ms, and a refresh may take 4 ms: with --check the program fails
// if a time is above its limit. With --rounds the panel is opened, refreshed and closed so many
// times, and the growth of the program's memory is printed; the program fails if the growth is more
// than a few objects. Only figures of an optimised build mean anything.
#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "benchmarks/pairs.h"
#include "benchmarks/turned_panel.h"

namespace {

using tarnwick::PanelAction;
using tarnwick::benchmarks::Pair;
using tarnwick::benchmarks::TurnedPanel;

/// A window of the panel's size with as many texts as the panel has: titles and values.
class BareWindow {
 public:
    static constexpr int kTexts = 28;

    BareWindow() : window_(nullptr, Qt::Popup | Qt::FramelessWindowHint) {
        auto* rows = new QVBoxLayout(&window_);
        for (QLabel*& label : labels_) {
            label = new QLabel(&window_);
            rows->addWidget(label);
        }
        turn();
        window_.setFixedSize(376, 616);
        window_.show();
        paint();
    }

    void turn() {
        ++round_;
        for (QLabel* label : labels_) {
            label->setText(QString("A text with a number, %1").arg(round_));
        }
    }
    void paint() {
        // One turn for the window itself, one for what the layout asked for.
        for (int turn = 0; turn < 2; ++turn) {
            QApplication::processEvents();
        }
    }

 private:
    QWidget window_;
    QLabel* labels_[kTexts];
    int round_ = 0;
};

void openBareWindow(benchmark::State& state) {
    for (auto iteration : state) {
        BareWindow window;
    }
}

void openPanel(benchmark::State& state) {
    TurnedPanel panel;
    for (auto iteration : state) {
        panel.open();
        panel.close();
    }
}

void turnBareWindow(benchmark::State& state) {
    BareWindow window;
    for (auto iteration : state) {
        window.turn();
        window.paint();
    }
}

void tickOn(benchmark::State& state, PanelAction page) {
    TurnedPanel panel;
    panel.open();
    if (page != PanelAction::goBack) {
        panel.press(page);
    }
    for (auto iteration : state) {
        panel.tick();
    }
    if (page == PanelAction::goBack && panel.frames() == 0) {
        state.SkipWithError("no bar has moved");
    }
    state.counters["frames"] =
        benchmark::Counter(panel.frames(), benchmark::Counter::kAvgIterations);
}

void tickOnHomePage(benchmark::State& state) {
    tickOn(state, PanelAction::goBack);
}

void tickOnMemoryPage(benchmark::State& state) {
    tickOn(state, PanelAction::showMemoryDetail);
}

void tickOnPerformancePage(benchmark::State& state) {
    tickOn(state, PanelAction::showPerformanceDetail);
}

// Milliseconds of the main thread's processor.
constexpr double kOpening = 60;
constexpr double kRefresh = 4;

constexpr Pair kPairs[] = {
    {"open and close the panel", openPanel, openBareWindow, 2, kOpening},
    {"all figures change on the home page", tickOnHomePage, turnBareWindow, 3, kRefresh},
    {"all figures change on the memory page", tickOnMemoryPage, turnBareWindow, 2, kRefresh},
    {"all figures change on the performance page", tickOnPerformancePage, turnBareWindow, 2,
     kRefresh},
};

struct Held {
    /// Bytes that the program has asked for and not given back.
    long long heap;
    /// Bytes in memory.
    long long resident;
};

Held held() {
    ::malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    long long pages = 0;
    statm >> pages >> pages;
    return {static_cast<long long>(::mallinfo2().uordblks) +
                static_cast<long long>(::mallinfo2().hblkhd),
            pages * ::sysconf(_SC_PAGESIZE)};
}

void openAndClose(TurnedPanel& panel, int rounds) {
    for (int round = 0; round < rounds; ++round) {
        panel.open();
        panel.tick();
        // Opens the other pages in every eighth round.
        if (round % 8 == 0) {
            panel.press(PanelAction::showMemoryDetail);
            panel.press(PanelAction::goBack);
            panel.press(PanelAction::showPerformanceDetail);
        }
        panel.close();
    }
}

/// Greatest growth of the heap in bytes, for any number of rounds. For 10,000 rounds that is less
/// than seven bytes each.
constexpr long long kMostGrowth = 65536;

int printGrowth(int rounds) {
    TurnedPanel panel;
    // After these rounds the histories are full and the toolkit's tables have their final size.
    openAndClose(panel, 1500);
    const Held before = held();
    openAndClose(panel, rounds);
    const Held after = held();
    std::printf(
        "%d times open and closed: heap %+lld bytes of %lld, resident %+lld kB of %lld kB\n",
        rounds, after.heap - before.heap, before.heap, (after.resident - before.resident) / 1024,
        before.resident / 1024);
    return after.heap - before.heap <= kMostGrowth ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_LOGGING_RULES", "*.warning=false", 1);
    // Makes the toolkit paint at once instead of a few milliseconds later.
    ::setenv("QT_QPA_UPDATE_IDLE_TIME", "0", 1);
    int none = 1;
    QApplication application(none, argv);
    constexpr std::string_view rounds = "--rounds=";
    if (argc == 2 && std::string_view(argv[1]).starts_with(rounds)) {
        return printGrowth(std::atoi(argv[1] + rounds.size()));
    }
    return tarnwick::benchmarks::runPairs(argc, argv, kPairs);
}
