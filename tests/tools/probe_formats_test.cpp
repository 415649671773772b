// SPDX-License-Identifier: MIT
// The formats of the program, and where its output goes.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "tests/platform/linux/machine_tree.h"
#include "tests/tools/probe_runs.h"

namespace tarnwick::probe {
namespace {

using nlohmann::json;
using platform::testing::MachineTree;
using platform::testing::recordedMachine;

TEST(ProbeFormats, PrintsMetrics) {
    const Outcome prometheus =
        run("--interval 0.01 --format prometheus --limit 1 --root " + recordedMachine("handheld"));
    EXPECT_EQ(prometheus.status, 0);
    for (const char* line :
         {"tarnwick_severity{metric=\"gpu\"} 0\n",
          "tarnwick_gpu_info{gpu=\"card0\",model=\"AMD Custom GPU 0405\",driver=\"amdgpu\"} 1\n",
          "tarnwick_battery_charge_ratio{battery=\"system\"} 0.8\n",
          "tarnwick_application_memory_bytes{application=\"dungeon\"} 5368709120\n"}) {
        EXPECT_NE(prometheus.output.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(prometheus.output.find("tarnwick_cpu"), std::string::npos);
    const Outcome openMetrics =
        run("--interval 0.01 --format openmetrics --all --root " + recordedMachine("handheld"));
    EXPECT_EQ(openMetrics.status, 0);
    EXPECT_TRUE(
        openMetrics.output.ends_with("tarnwick_uptime_seconds 8190.4400000572205\n# EOF\n"));
}

TEST(ProbeFormats, PutsTheProcessesOfAnApplicationTogether) {
    const MachineTree tree("handheld");
    // The game a second time, with 4096 pages.
    tree.write(
        "proc/1503/stat",
        "1503 (dungeon) S 1 1503 1503 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 90000 90000000 4096 0 0 0 0 "
        "0 0 0 0 0 0 0 0 0 17 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    tree.write("proc/1503/cgroup", platform::testing::recordedFile("handheld", "proc/1502/cgroup"));
    tree.link("proc/1503/exe", "/home/deck/games/dungeon.app/bin/dungeon");
    const std::string text =
        run("--interval 0.01 --format prometheus --limit 1 --root " + tree.root()).output;
    const std::size_t pages = 4096 * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    EXPECT_NE(text.find("tarnwick_application_memory_bytes{application=\"dungeon\"} " +
                        std::to_string(5368709120 + pages) + "\n"),
              std::string::npos)
        << text;
}

TEST(ProbeFormats, JudgesByTheThresholdsOfTheUser) {
    const MachineTree home;
    home.write("tarnwick/settings.json",
               R"({"settings.memoryModerateThreshold": 1, "settings.memoryHighThreshold": 2})");
    const std::string mine = "XDG_CONFIG_HOME=" + home.root() + " " PROBE " --interval 0 ";
    const std::string high = "tarnwick_threshold_ratio{metric=\"memory\",level=\"high\"} 0.02\n";
    const auto says = [](const std::string& command, const std::string& line) {
        return runShell(command + " 2>&1").output.find(line) != std::string::npos;
    };
    EXPECT_TRUE(says(mine + "--format prometheus", high));
    // An idle machine with much memory uses less than one percent of it.
    const nlohmann::json sample = lines(runShell(mine).output).at(0);
    const double percent =
        100 * sample["memory"]["used"].get<double>() / sample["memory"]["total"].get<double>();
    EXPECT_GE(sample["summary"]["severity"], percent >= 2 ? 2 : percent >= 1 ? 1 : 0);
    EXPECT_FALSE(says(mine + "--format prometheus --root " + recordedMachine("laptop"), high));
    const std::string named = " --thresholds " + home.root() + "/tarnwick/settings.json";
    EXPECT_TRUE(
        says(PROBE " --interval 0 --format prometheus --root " + recordedMachine("laptop") + named,
             high));
    home.write("tarnwick/settings.json", "damaged");
    const Outcome damaged = runShell(mine + "2>&1 >/dev/null");
    EXPECT_EQ(damaged.status, 0);
    EXPECT_EQ(damaged.output, "tarnwick-probe: the default thresholds count, not those of " +
                                  home.root() + "/tarnwick/settings.json: it holds no settings\n");
    const Outcome wrong = run("--interval 0" + named);
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.output, "tarnwick-probe: no thresholds in " + home.root() +
                                "/tarnwick/settings.json: it holds no settings\n");
}

TEST(ProbeFormats, SettingsThatHangAreDoneWithout) {
    if (*SANITIZED != '\0') {
        GTEST_SKIP() << "the sanitizers want to be loaded first";
    }
    const MachineTree home;
    home.write("tarnwick/settings.json", "{}");
    home.write("stuck", "");
    const std::string file = home.root() + "/tarnwick/settings.json";
    const std::string stuck = "TARNWICK_STUCK_WHILE=" + home.root() +
                              "/stuck TARNWICK_STUCK_FILES=" + file +
                              " LD_PRELOAD=" STUCK_FILES " timeout 60 " PROBE " --interval 0 ";
    const Outcome own =
        runShell("XDG_CONFIG_HOME=" + home.root() + " " + stuck + "2>&1 >" + home.root() + "/line");
    EXPECT_EQ(own.status, 0);
    EXPECT_EQ(own.output, "tarnwick-probe: the default thresholds count, not those of " + file +
                              ": the file system does not answer\n");
    EXPECT_EQ(lines(platform::readWholeFile(home.root() + "/line").value_or("")).size(), 1U);
    const Outcome named = runShell(stuck + "--thresholds " + file + " 2>&1");
    EXPECT_EQ(named.status, 2);
    EXPECT_EQ(named.output,
              "tarnwick-probe: no thresholds in " + file + ": the file system does not answer\n");
}

TEST(ProbeFormats, EndsQuietlyWhenItsReaderHasGone) {
    // The status goes beside the pipe.
    const MachineTree folder;
    const std::string status = folder.root() + "/status";
    const auto readOneLine = [&status](const std::string& arguments) {
        const Outcome result = runShell("{ timeout 60 " PROBE " " + arguments + " 2>&1; echo $? >" +
                                        status + "; } | head -n 1; cat " + status);
        const std::size_t end = result.output.find('\n');
        return end == std::string::npos ? result.output : result.output.substr(end + 1);
    };
    EXPECT_EQ(readOneLine("--samples 0 --interval 0.01 --root " + recordedMachine("laptop")),
              "0\n");
    EXPECT_EQ(readOneLine("--help"), "0\n");
    // It does not wait for the next sample to notice.
    EXPECT_EQ(runShell("{ timeout 60 " PROBE " --interval 86400 2>&1; echo $? >" + status +
                       "; } | true; cat " + status)
                  .output,
              "0\n");
}

/// All that is in a folder, hidden files, too.
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::ranges::sort(names);
    return names;
}

std::string contentOf(const std::string& file) {
    return platform::readWholeFile(file).value_or("");
}

TEST(ProbeFormats, ReplacesItsOutputFile) {
    const MachineTree folder;
    const std::string file = folder.root() + "/tarnwick.prom";
    const std::string command = "--interval 0.01 --samples 2 --format prometheus --root " +
                                recordedMachine("laptop") + " --output ";
    Outcome result = runShell("umask 022; " PROBE " " + command + file + " 2>&1");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    const std::string text = contentOf(file);
    EXPECT_TRUE(text.starts_with("# HELP tarnwick_probe_info")) << text;
    EXPECT_EQ(text.find("# HELP tarnwick_probe_info", 1), std::string::npos) << "one sample only";
    // Readable by the user of a node exporter.
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0644));
    folder.write("tarnwick.prom", "old");
    folder.makeFolder("other");
    folder.link("other/link", "../tarnwick.prom");
    result = run(command + folder.root() + "/other/link");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(contentOf(file), text);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.root() + "/other/link"));
    EXPECT_EQ(namesIn(folder.root()), (std::vector<std::string>{"other", "tarnwick.prom"}));
}

TEST(ProbeFormats, LeavesTheOldFileWhereItCannotWrite) {
    const MachineTree folder;
    folder.write("old.prom", "old");
    const std::string file = folder.root() + "/old.prom";
    const std::string command = PROBE " --interval 0 --format prometheus --output ";
    // As if the disk were full after the first kilobyte.
    const Outcome full = runShell("trap '' XFSZ; ulimit -f 1; " + command + file + " 2>&1");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.output, "tarnwick-probe: " + file + " cannot be written: File too large\n");
    EXPECT_EQ(contentOf(file), "old");
    EXPECT_EQ(namesIn(folder.root()), std::vector<std::string>{"old.prom"});
    const auto complaint = [&command](const std::string& name) {
        const Outcome result = runShell(command + name + " 2>&1");
        EXPECT_EQ(result.status, 1) << result.output;
        const std::string head = "tarnwick-probe: " + name + " cannot be written: ";
        EXPECT_TRUE(result.output.starts_with(head)) << result.output;
        return result.output.substr(std::min(head.size(), result.output.size()));
    };
    EXPECT_EQ(complaint(folder.root() + "/none/new.prom"), "No such file or directory\n");
    EXPECT_EQ(complaint(file + "/new.prom"), "Not a directory\n");
    // Here nobody makes files, be it root.
    EXPECT_NE(complaint("/sys/tarnwick.prom"), "");
    // Neither a device nor a folder is taken away.
    EXPECT_EQ(complaint("/dev/null"), "Invalid argument\n");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_EQ(complaint(folder.root()), "Invalid argument\n");
}

TEST(ProbeFormats, PrintsAPageForPeople) {
    const Outcome result =
        run("--format text --interval 0.01 --limit 1 --root " + recordedMachine("handheld"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              "No metrics are above thresholds.\n"
              "\n"
              "CPU            0%    0% user, 0% system, 8 processors\n"
              "GPU           88%    AMD Custom GPU 0405\n"
              "Memory        67%    9.77 GB of 14.52 GB\n"
              "Battery       80%    charging, 27m until full, 94% of its design, 156 cycles\n"
              "Heat      Nominal\n"
              "Network              0 B/s down, 0 B/s up\n"
              "Uptime               2h 16m\n"
              "\n"
              "CPU          0.0%    systemd\n"
              "Memory       5 GB    dungeon\n");
    // A terminal's sequences are for terminals.
    const Outcome pages =
        run("--format text --watch --samples 2 --interval 0.01 --limit 1 --root " +
            recordedMachine("handheld"));
    EXPECT_EQ(pages.output, result.output + "\n" + result.output + "\n");
}

/// What the probe shows on a terminal until it has shown `enough`, then it is interrupted.
std::string watched(const std::string& arguments, const std::string& enough) {
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        // Whoever starts the tests in the background may have it ignored.
        std::signal(SIGINT, SIG_DFL);
        const std::string command = "unset NO_COLOR; TERM=xterm exec " + arguments;
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    std::string shown;
    std::array<char, 4096> buffer{};
    ssize_t got = 1;
    while (got > 0 && shown.find(enough) == std::string::npos) {
        got = ::read(terminal, buffer.data(), buffer.size());
        shown.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    ::kill(child, SIGINT);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status << shown;
    ::close(terminal);
    return shown;
}

TEST(ProbeFormats, DrawsThePageOfATerminalAgain) {
    const std::string arguments =
        " --format text --watch --interval 0.01 --limit 0 --root " + recordedMachine("handheld");
    const std::string clear = "\033[H\033[2J";
    const std::string shown =
        watched(PROBE + arguments, "2h 16m\r\n" + clear + "\033[32mNo metrics");
    EXPECT_TRUE(shown.starts_with(clear)) << shown;
    EXPECT_NE(shown.find("GPU           \033[32m88%\033[0m    AMD"), std::string::npos) << shown;
    const std::string plain =
        watched("env NO_COLOR=1 " PROBE + arguments, "2h 16m\r\n" + clear + "No metrics");
    EXPECT_EQ(plain.find("\033[3"), std::string::npos) << plain;
}

TEST(ProbeFormats, PrintsALineForWaybar) {
    const Outcome result =
        run("--format waybar --interval 0.01 --root " + recordedMachine("handheld"));
    EXPECT_EQ(result.status, 0);
    const json line = lines(result.output).at(0);
    EXPECT_EQ(line["alt"], "ok");
    EXPECT_EQ(line["percentage"], 88);
}

}  // namespace
}  // namespace tarnwick::probe
