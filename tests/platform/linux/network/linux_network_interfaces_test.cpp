// SPDX-License-Identifier: MIT
#include "platform/linux/network/linux_network_interfaces.h"

#include <atomic>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "platform/testing/recording_log.h"
#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/files/descriptors.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::limitDescriptors;
using tarnwick::testing::openDescriptors;
using ::testing::ElementsAre;
using testing::MachineTree;
using ::testing::Optional;
using ::testing::Pair;
using testing::recordedMachine;

std::optional<InterfaceTable> recorded(const std::string& machine) {
    return LinuxNetworkInterfaces(recordedMachine(machine)).interfaceCounters();
}

TEST(LinuxNetworkInterfaces, TheLaptopHasAWirelessInterfaceBelowItsTunnel) {
    EXPECT_THAT(recorded("laptop"),
                Optional(InterfaceTable{{3, {18'734'092'881, 1'906'447'215, false}}}));
}

TEST(LinuxNetworkInterfaces, MayHangUntilAReadingHasSeenThatNoProgramServesTheFiles) {
    MachineTree tree;
    LinuxNetworkInterfaces interfaces(tree.root());
    EXPECT_TRUE(interfaces.mayHang());
    EXPECT_FALSE(interfaces.interfaceCounters());
    EXPECT_TRUE(interfaces.mayHang());

    LinuxNetworkInterfaces recordedFiles(recordedMachine("laptop"));
    EXPECT_TRUE(recordedFiles.mayHang());
    ASSERT_TRUE(recordedFiles.interfaceCounters());
    EXPECT_FALSE(recordedFiles.mayHang());
}

TEST(LinuxNetworkInterfaces, MayHangAgainAfterAReadingThatFailed) {
    MachineTree tree("laptop");
    LinuxNetworkInterfaces interfaces(tree.root());
    ASSERT_TRUE(interfaces.interfaceCounters());
    ASSERT_FALSE(interfaces.mayHang());
    // The one that comes in its place may be served by a program.
    tree.truncate("proc/net/dev", 10);
    EXPECT_FALSE(interfaces.interfaceCounters());
    EXPECT_TRUE(interfaces.mayHang());
}

TEST(LinuxNetworkInterfaces, TheWorkstationHasACableBesideItsGuests) {
    EXPECT_THAT(recorded("workstation"),
                Optional(InterfaceTable{{2, {1'204'877'310'554, 96'620'448'817, false}}}));
}

TEST(LinuxNetworkInterfaces, TheHandheldHasAWirelessInterface) {
    EXPECT_THAT(recorded("handheld"),
                Optional(InterfaceTable{{2, {6'422'071'934, 301'922'846, false}}}));
}

TEST(LinuxNetworkInterfaces, TheOlderNotebookHasACounterBeyondThirtyTwoBits) {
    EXPECT_THAT(recorded("two-batteries"),
                Optional(InterfaceTable{{2, {4'294'968'512, 512'004'331, false}},
                                        {3, {733'120'881, 80'233'102, false}}}));
}

TEST(LinuxNetworkInterfaces, TheServerHasTwoSocketsBelowWhatBindsThem) {
    EXPECT_THAT(recorded("server"),
                Optional(InterfaceTable{{2, {48'120'447'713'340, 91'822'048'117'250, false}},
                                        {3, {47'990'120'337'104, 90'113'340'291'884, false}}}));
}

TEST(LinuxNetworkInterfaces, TheContainerHostHasOneSocketBesideItsContainers) {
    EXPECT_THAT(recorded("container-host"),
                Optional(InterfaceTable{{2, {9'120'448'812'077, 6'310'227'441'908, false}}}));
}

TEST(LinuxNetworkInterfaces, TheVirtualMachineHasOneInterface) {
    EXPECT_THAT(recorded("virtual-machine"),
                Optional(InterfaceTable{{2, {88'120'443'127, 12'044'813'300, false}}}));
}

TEST(LinuxNetworkInterfaces, TheOldKernelHasOneInterface) {
    EXPECT_THAT(recorded("old-kernel"),
                Optional(InterfaceTable{{2, {3'812'044'817, 812'044'813, false}}}));
}

TEST(LinuxNetworkInterfaces, TheDamagedMachineHasNoTable) {
    EXPECT_EQ(recorded("damaged"), std::nullopt);
}

/// The container host without its own sockets, so that every interface that is up counts; to be
/// changed.
class ChangedNetworkInterfaces : public ::testing::Test {
 protected:
    ChangedNetworkInterfaces() { unplug(tree); }

    static void unplug(const MachineTree& host) {
        host.write("sys/class/net/ens1f0np0/flags", "0x1002\n");
    }
    std::optional<InterfaceTable> read() {
        return LinuxNetworkInterfaces(tree.root()).interfaceCounters();
    }
    /// Further ones, 3000 and on, at the end of the list; all that are counted then.
    InterfaceTable addInterfaces(std::uint32_t count) {
        std::string text = testing::recordedFile("container-host", "proc/net/dev");
        InterfaceTable all = *read();
        for (std::uint32_t index = 3000; index < 3000 + count; ++index) {
            const std::string name = "veth" + std::to_string(index);
            text += "  " + name + ": " + std::to_string(index) + " 0 0 0 0 0 0 0 7 0 0 0 0 0 0 0\n";
            tree.write("sys/class/net/" + name + "/ifindex", std::to_string(index) + "\n");
            tree.write("sys/class/net/" + name + "/flags", "0x1103\n");
            all[index] = {index, 7, false};
        }
        tree.write("proc/net/dev", text);
        return all;
    }

    static constexpr const char* folder = "sys/devices/virtual/net/veth77d02bf/";
    MachineTree tree{"container-host"};
};

TEST_F(ChangedNetworkInterfaces, EveryReadIsFresh) {
    LinuxNetworkInterfaces interfaces(tree.root());
    ASSERT_EQ(interfaces.interfaceCounters()->at(4).received, 210'448'133'077U);
    std::string text = testing::recordedFile("container-host", "proc/net/dev");
    text.replace(text.find("210448133077"), 12, "210448133099");
    tree.write("proc/net/dev", text);
    EXPECT_EQ(interfaces.interfaceCounters()->at(4).received, 210'448'133'099U);
}

TEST_F(ChangedNetworkInterfaces, TheSameReaderSeesAnInterfaceComeAndGo) {
    LinuxNetworkInterfaces interfaces(tree.root());
    const InterfaceTable before = *interfaces.interfaceCounters();
    const std::string text = testing::recordedFile("container-host", "proc/net/dev");
    tree.write("sys/class/net/tun0/ifindex", "70000\n");
    tree.write("sys/class/net/tun0/flags", "0x1091\n");
    tree.write("proc/net/dev", text + "  tun0: 8 1 0 0 0 0 0 0 9 1 0 0 0 0 0 0\n");
    InterfaceTable expected = before;
    expected[70'000] = {8, 9, false};
    EXPECT_THAT(interfaces.interfaceCounters(), Optional(expected));
    // Another interface replaces it.
    tree.write("sys/class/net/tun1/ifindex", "70001\n");
    tree.write("sys/class/net/tun1/flags", "0x1091\n");
    tree.write("proc/net/dev", text + "  tun1: 3 1 0 0 0 0 0 0 4 1 0 0 0 0 0 0\n");
    expected.erase(70'000);
    expected[70'001] = {3, 4, false};
    EXPECT_THAT(interfaces.interfaceCounters(), Optional(expected));
    tree.write("proc/net/dev", text);
    EXPECT_THAT(interfaces.interfaceCounters(), Optional(before));
}

TEST_F(ChangedNetworkInterfaces, AnInterfaceKeepsItsCountersWhereverInTheListItIs) {
    LinuxNetworkInterfaces interfaces(tree.root());
    const InterfaceTable before = *interfaces.interfaceCounters();
    std::string text = testing::recordedFile("container-host", "proc/net/dev");
    const std::size_t lastLine = text.rfind('\n', text.size() - 2) + 1;
    const std::string last = text.substr(lastLine);
    text.erase(lastLine);
    text.insert(text.find("docker0"), last.substr(last.find_first_not_of(' ')) + " ");
    tree.write("proc/net/dev", text);
    EXPECT_THAT(interfaces.interfaceCounters(), Optional(before));
}

TEST_F(ChangedNetworkInterfaces, TheSameReaderSeesAnInterfaceGoDownAndUp) {
    LinuxNetworkInterfaces interfaces(tree.root());
    ASSERT_TRUE(interfaces.interfaceCounters()->contains(11));
    tree.write(std::string(folder) + "flags", "0x1102\n");
    EXPECT_FALSE(interfaces.interfaceCounters()->contains(11));
    tree.write(std::string(folder) + "flags", "0x1103\n");
    EXPECT_TRUE(interfaces.interfaceCounters()->contains(11));
}

TEST_F(ChangedNetworkInterfaces, FilesThatAppearLaterAreFound) {
    LinuxNetworkInterfaces interfaces(tree.root());
    for (const std::string file : {"ifindex", "flags"}) {
        tree.remove(folder + file);
    }
    ASSERT_FALSE(interfaces.interfaceCounters()->contains(11));
    tree.write(std::string(folder) + "ifindex", "11\n");
    tree.write(std::string(folder) + "flags", "0x1103\n");
    EXPECT_TRUE(interfaces.interfaceCounters()->contains(11));

    const MachineTree empty;
    LinuxNetworkInterfaces later(empty.root());
    EXPECT_EQ(later.interfaceCounters(), std::nullopt);
    empty.write("proc/net/dev", testing::recordedFile("laptop", "proc/net/dev"));
    EXPECT_EQ(later.interfaceCounters(), std::nullopt);
    empty.write("sys/class/net/tun0/ifindex", "7\n");
    empty.write("sys/class/net/tun0/flags", "0x1091\n");
    EXPECT_THAT(later.interfaceCounters(),
                Optional(InterfaceTable{{7, {734'119'208, 88'120'533, false}}}));
}

TEST_F(ChangedNetworkInterfaces, NothingIsOpenBeforeTheFirstReadAndNothingIsLeftOpen) {
    const std::size_t before = openDescriptors();
    {
        LinuxNetworkInterfaces interfaces(tree.root());
        EXPECT_EQ(openDescriptors(), before);
        for (int turn = 0; turn < 3; ++turn) {
            ASSERT_TRUE(interfaces.interfaceCounters());
            // The list, the folder and the flags of eight interfaces.
            EXPECT_EQ(openDescriptors(), before + 2 + 8);
        }
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(ChangedNetworkInterfaces, OnlyAQuarterOfTheDescriptorsIsUsedAndEveryInterfaceIsRead) {
    ChildProcess child([this] {
        limitDescriptors(40);
        const std::size_t before = openDescriptors();
        const InterfaceTable expected = addInterfaces(500);
        LinuxNetworkInterfaces interfaces(tree.root());
        for (int turn = 0; turn < 2; ++turn) {
            EXPECT_THAT(interfaces.interfaceCounters(), Optional(expected));
            EXPECT_EQ(openDescriptors(), before + 2 + 10);
        }
        tree.write(std::string(folder) + "flags", "0x1102\n");
        EXPECT_EQ(interfaces.interfaceCounters()->size(), expected.size() - 1);
        tree.write("sys/class/net/veth3400/flags", "0x1102\n");
        EXPECT_EQ(interfaces.interfaceCounters()->size(), expected.size() - 2);
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(ChangedNetworkInterfaces, CallsFromSeveralThreadsTakeTurns) {
    ChildProcess child([this] {
        // Most files are opened and closed at each call, so that threads have something to spoil.
        limitDescriptors(40);
        const InterfaceTable expected = addInterfaces(200);
        LinuxNetworkInterfaces interfaces(tree.root());
        std::atomic<int> wrong = 0;
        {
            std::vector<std::jthread> threads(4);
            for (std::jthread& thread : threads) {
                thread = std::jthread([&] {
                    for (int turn = 0; turn < 20; ++turn) {
                        wrong += interfaces.interfaceCounters() == expected ? 0 : 1;
                    }
                });
            }
        }
        EXPECT_EQ(wrong, 0);
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(ChangedNetworkInterfaces, AnInterfaceThatGoesDownIsLeftOut) {
    ASSERT_TRUE(read()->contains(11));
    tree.write(std::string(folder) + "flags", "0x1102\n");
    EXPECT_FALSE(read()->contains(11));
    EXPECT_EQ(read()->size(), 4U);
}

TEST_F(ChangedNetworkInterfaces, AnInterfaceWithoutAnIndexOrFlagsIsLeftOut) {
    for (const std::string file : {"ifindex", "flags"}) {
        MachineTree changed("container-host");
        unplug(changed);
        changed.remove(folder + file);
        const auto table = LinuxNetworkInterfaces(changed.root()).interfaceCounters();
        ASSERT_TRUE(table) << file;
        EXPECT_FALSE(table->contains(11)) << file;
        EXPECT_EQ(table->size(), 4U) << file;
    }
}

TEST_F(ChangedNetworkInterfaces, AnInterfaceWithADamagedIndexOrFlagsIsLeftOut) {
    for (const std::string file : {"ifindex", "flags"}) {
        MachineTree changed("container-host");
        unplug(changed);
        changed.write(folder + file, "x\n");
        const auto table = LinuxNetworkInterfaces(changed.root()).interfaceCounters();
        ASSERT_TRUE(table) << file;
        EXPECT_FALSE(table->contains(11)) << file;
    }
}

TEST_F(ChangedNetworkInterfaces, AnInterfaceWithCountersThatCannotBeTrueIsLeftOut) {
    InterfaceTable expected = *read();
    const std::string text = testing::recordedFile("container-host", "proc/net/dev");
    const auto writeTun = [this, &text](const std::string& received, const std::string& sent) {
        tree.write("proc/net/dev",
                   text + "  tun0: " + received + " 1 0 0 0 0 0 0 " + sent + " 1 0 0 0 0 0 0\n");
    };
    tree.write("sys/class/net/tun0/ifindex", "70000\n");
    tree.write("sys/class/net/tun0/flags", "0x1091\n");
    // A driver that subtracts too much.
    for (const char* const counter : {"18446744073709551615", "4611686018427387905"}) {
        writeTun(counter, "9");
        EXPECT_THAT(read(), Optional(expected)) << counter;
        writeTun("9", counter);
        EXPECT_THAT(read(), Optional(expected)) << counter;
    }
    writeTun("1152921504606846976", "9");
    expected[70'000] = {std::uint64_t{1} << 60, 9, false};
    EXPECT_THAT(read(), Optional(expected));
}

TEST_F(ChangedNetworkInterfaces, CountersThatAreOnlyTogetherTooLargeStillFitIntoTheirSum) {
    std::string text = testing::recordedFile("container-host", "proc/net/dev");
    for (int number = 0; number < 9; ++number) {
        const std::string name = "tun" + std::to_string(number);
        text += "  " + name + ": 4000000000000000000 1 0 0 0 0 0 0 9 1 0 0 0 0 0 0\n";
        tree.write("sys/class/net/" + name + "/ifindex", std::to_string(70'000 + number) + "\n");
        tree.write("sys/class/net/" + name + "/flags", "0x1091\n");
    }
    tree.write("proc/net/dev", text);
    const auto table = read();
    ASSERT_TRUE(table);
    std::uint64_t sum = 0;
    for (const auto& [index, counters] : *table) {
        ASSERT_FALSE(__builtin_add_overflow(sum, counters.received, &sum));
    }
    EXPECT_TRUE(table->contains(70'000));
    EXPECT_FALSE(table->contains(70'001));
}

TEST_F(ChangedNetworkInterfaces, AnImpossibleCounterIsLoggedOnce) {
    testing::RecordingLog log;
    LinuxNetworkInterfaces interfaces(tree.root(), sinceBootSeconds, Logger(log));
    tree.write("proc/net/dev", testing::recordedFile("container-host", "proc/net/dev") +
                                   "  tun0: 18446744073709551615 1 0 0 0 0 0 0 9 1 0 0 0 0 0 0\n");
    tree.write("sys/class/net/tun0/ifindex", "70000\n");
    tree.write("sys/class/net/tun0/flags", "0x1091\n");
    EXPECT_TRUE(interfaces.interfaceCounters());
    EXPECT_TRUE(interfaces.interfaceCounters());
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::error,
                                              "Impossible counters of network interface tun0")));
}

TEST_F(ChangedNetworkInterfaces, HundredsOfInterfacesAreAllThere) {
    const InterfaceTable expected = addInterfaces(500);
    EXPECT_THAT(read(), Optional(expected));
}

TEST_F(ChangedNetworkInterfaces, WithoutItsTableThereIsNone) {
    tree.remove("proc/net/dev");
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(ChangedNetworkInterfaces, WithoutTheFolderOfInterfacesThereIsNoTable) {
    tree.remove("sys/class/net");
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(ChangedNetworkInterfaces, ATableCutOffAnywhereButBehindALineIsNone) {
    const std::string text = testing::recordedFile("container-host", "proc/net/dev");
    for (std::size_t size = 0; size < text.size(); size += 7) {
        tree.write("proc/net/dev", text.substr(0, size));
        if (size > 0 && text[size - 1] == '\n') {
            continue;
        }
        EXPECT_EQ(read(), std::nullopt) << size;
    }
}

}  // namespace
}  // namespace tarnwick::platform
