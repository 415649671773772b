#include "platform/linux/network/recorded_interfaces.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using ::testing::Optional;
using testing::recordedMachine;

std::optional<InterfaceTable> recorded(const std::string& machine) {
    return RecordedInterfaces(recordedMachine(machine)).interfaceCounters();
}

TEST(RecordedInterfaces, TheLaptopHasAWirelessInterfaceAndATunnel) {
    EXPECT_THAT(recorded("laptop"),
                Optional(InterfaceTable{{3, {18'734'092'881, 1'906'447'215, false}},
                                        {7, {734'119'208, 88'120'533, false}}}));
}

TEST(RecordedInterfaces, TheWorkstationHasACableAndABridge) {
    EXPECT_THAT(recorded("workstation"),
                Optional(InterfaceTable{{2, {1'204'877'310'554, 96'620'448'817, false}},
                                        {4, {51'240'812, 7'733'045'210, false}}}));
}

TEST(RecordedInterfaces, TheHandheldHasAWirelessInterface) {
    EXPECT_THAT(recorded("handheld"),
                Optional(InterfaceTable{{2, {6'422'071'934, 301'922'846, false}}}));
}

TEST(RecordedInterfaces, TheOlderNotebookHasACounterBeyondThirtyTwoBits) {
    EXPECT_THAT(recorded("two-batteries"),
                Optional(InterfaceTable{{2, {4'294'968'512, 512'004'331, false}},
                                        {3, {733'120'881, 80'233'102, false}}}));
}

TEST(RecordedInterfaces, TheServerHasTwoSocketsAndWhatBindsThem) {
    EXPECT_THAT(recorded("server"),
                Optional(InterfaceTable{{2, {48'120'447'713'340, 91'822'048'117'250, false}},
                                        {3, {47'990'120'337'104, 90'113'340'291'884, false}},
                                        {4, {96'110'568'050'444, 181'935'388'409'134, false}}}));
}

TEST(RecordedInterfaces, TheContainerHostHasTheEndsOfItsContainers) {
    EXPECT_THAT(recorded("container-host"),
                Optional(InterfaceTable{{2, {9'120'448'812'077, 6'310'227'441'908, false}},
                                        {4, {210'448'133'077, 702'218'840'312, false}},
                                        {5, {0, 0, false}},
                                        {9, {80'112'004'431, 301'220'448'119, false}},
                                        {11, {130'336'128'646, 400'998'392'193, false}},
                                        {2048, {0, 4'410, false}}}));
}

TEST(RecordedInterfaces, TheVirtualMachineHasOneInterface) {
    EXPECT_THAT(recorded("virtual-machine"),
                Optional(InterfaceTable{{2, {88'120'443'127, 12'044'813'300, false}}}));
}

TEST(RecordedInterfaces, TheOldKernelHasOneInterface) {
    EXPECT_THAT(recorded("old-kernel"),
                Optional(InterfaceTable{{2, {3'812'044'817, 812'044'813, false}}}));
}

TEST(RecordedInterfaces, TheDamagedMachineHasNoTable) {
    EXPECT_EQ(recorded("damaged"), std::nullopt);
}

/// The container host, to be changed.
class ChangedInterfaces : public ::testing::Test {
 protected:
    std::optional<InterfaceTable> read() {
        return RecordedInterfaces(tree.root()).interfaceCounters();
    }
    static constexpr const char* folder = "sys/devices/virtual/net/veth77d02bf/";
    MachineTree tree{"container-host"};
};

TEST_F(ChangedInterfaces, EveryReadIsFresh) {
    RecordedInterfaces interfaces(tree.root());
    ASSERT_EQ(interfaces.interfaceCounters()->at(4).received, 210'448'133'077U);
    std::string text = testing::recordedFile("container-host", "proc/net/dev");
    text.replace(text.find("210448133077"), 12, "210448133099");
    tree.write("proc/net/dev", text);
    EXPECT_EQ(interfaces.interfaceCounters()->at(4).received, 210'448'133'099U);
}

TEST_F(ChangedInterfaces, AnInterfaceThatGoesDownIsLeftOut) {
    ASSERT_TRUE(read()->contains(11));
    tree.write(std::string(folder) + "flags", "0x1102\n");
    EXPECT_FALSE(read()->contains(11));
    EXPECT_EQ(read()->size(), 5U);
}

TEST_F(ChangedInterfaces, AnInterfaceWithoutAnIndexOrFlagsIsLeftOut) {
    for (const std::string file : {"ifindex", "flags"}) {
        MachineTree changed("container-host");
        changed.remove(folder + file);
        const auto table = RecordedInterfaces(changed.root()).interfaceCounters();
        ASSERT_TRUE(table) << file;
        EXPECT_FALSE(table->contains(11)) << file;
        EXPECT_EQ(table->size(), 5U) << file;
    }
}

TEST_F(ChangedInterfaces, AnInterfaceWithADamagedIndexOrFlagsIsLeftOut) {
    for (const std::string file : {"ifindex", "flags"}) {
        MachineTree changed("container-host");
        changed.write(folder + file, "x\n");
        const auto table = RecordedInterfaces(changed.root()).interfaceCounters();
        ASSERT_TRUE(table) << file;
        EXPECT_FALSE(table->contains(11)) << file;
    }
}

TEST_F(ChangedInterfaces, HundredsOfInterfacesAreAllThere) {
    std::string text = testing::recordedFile("container-host", "proc/net/dev");
    InterfaceTable expected = *read();
    for (std::uint32_t index = 3000; index < 3500; ++index) {
        const std::string name = "veth" + std::to_string(index);
        text += "  " + name + ": " + std::to_string(index) + " 0 0 0 0 0 0 0 7 0 0 0 0 0 0 0\n";
        tree.write("sys/class/net/" + name + "/ifindex", std::to_string(index) + "\n");
        tree.write("sys/class/net/" + name + "/flags", "0x1103\n");
        expected[index] = {index, 7, false};
    }
    tree.write("proc/net/dev", text);
    EXPECT_THAT(read(), Optional(expected));
}

TEST_F(ChangedInterfaces, WithoutItsTableThereIsNone) {
    tree.remove("proc/net/dev");
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(ChangedInterfaces, WithoutTheFolderOfInterfacesThereIsNoTable) {
    tree.remove("sys/class/net");
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(ChangedInterfaces, ATableCutOffAnywhereButBehindALineIsNone) {
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
