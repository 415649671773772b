// SPDX-License-Identifier: MIT
// Kills a program that writes settings, at random moments, and looks at what is left:
//
//   settings_kill_writer [KILLS]
//
// A writer sets two values that belong together, and says each number that is written for good.
// Afterwards the file must be whole, hold both halves of one number, and not a smaller one than the
// last that was said. Prints the counts; the status says whether all of them are 0.
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/manual_dispatch.h"

namespace {

using tarnwick::platform::JsonUserDefaults;
using tarnwick::platform::SettingsDocument;
using tarnwick::platform::testing::ManualDispatch;

/// Microseconds; a write onto a disk takes some thousands.
constexpr int kLongestLife = 30'000;

[[noreturn]] void write(const std::filesystem::path& file, int said) {
    ManualDispatch dispatch;
    JsonUserDefaults store(file, dispatch);
    dispatch.runMain();
    for (std::int64_t number = store.integer("half1").value_or(0) + 1;; ++number) {
        store.set("half1", number);
        store.set("half2", number);
        dispatch.runMain();
        if (::write(said, &number, sizeof number) != sizeof number) {
            std::_Exit(EXIT_FAILURE);
        }
    }
}

/// The last number that came out of the pipe; `before` when there was none.
std::int64_t lastOf(int pipe, std::int64_t before) {
    std::int64_t number = before;
    while (::read(pipe, &before, sizeof before) == sizeof before) {
        number = before;
    }
    return number;
}

struct Counts {
    int torn = 0;
    int halves = 0;
    int lost = 0;
    int complaints = 0;
    std::int64_t writes = 0;
};

void look(const std::filesystem::path& file, std::int64_t said, Counts& counts) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const auto document = SettingsDocument::decode(text);
    if (!document) {
        // None at all is whole as long as nothing was said.
        counts.torn += std::filesystem::exists(file) ? 1 : 0;
        counts.lost += said > 0 ? 1 : 0;
        return;
    }
    ManualDispatch dispatch;
    JsonUserDefaults store(file, dispatch, [&counts](std::string_view) { ++counts.complaints; });
    dispatch.runMain();
    const auto half1 = store.integer("half1");
    counts.halves += half1 != store.integer("half2") ? 1 : 0;
    counts.lost += half1.value_or(0) < said ? 1 : 0;
    counts.writes = half1.value_or(0);
}

}  // namespace

int main(int argc, char** argv) {
    const int kills = argc > 1 ? std::atoi(argv[1]) : 1'000;
    std::string folder = (std::filesystem::temp_directory_path() / "tarnwick-XXXXXX").native();
    if (::mkdtemp(folder.data()) == nullptr) {
        return EXIT_FAILURE;
    }
    const std::filesystem::path file = std::filesystem::path(folder) / "tarnwick/settings.json";
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<long> life(0, kLongestLife);
    Counts counts;
    std::int64_t said = 0;
    for (int kill = 0; kill < kills; ++kill) {
        int ends[2];
        if (::pipe(ends) != 0) {
            return EXIT_FAILURE;
        }
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(ends[0]);
            write(file, ends[1]);
        }
        ::close(ends[1]);
        const timespec pause{0, life(random) * 1'000};
        ::nanosleep(&pause, nullptr);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        said = lastOf(ends[0], said);
        ::close(ends[0]);
        look(file, said, counts);
    }
    int others = 0;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
        const auto name = entry.path().filename();
        others += name != "settings.json" && name != ".settings.json.new" ? 1 : 0;
    }
    std::filesystem::remove_all(folder);
    std::printf(
        "%d kills of a writer, %lld writes: %d files torn, %d with one half only, %d finished "
        "values lost, %d lines said, %d other files left\n",
        kills, static_cast<long long>(counts.writes), counts.torn, counts.halves, counts.lost,
        counts.complaints, others);
    const bool isRight =
        counts.torn + counts.halves + counts.lost + counts.complaints + others == 0;
    return isRight && counts.writes > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
