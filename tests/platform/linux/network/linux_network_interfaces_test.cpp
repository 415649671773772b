#include "platform/linux/network/linux_network_interfaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <utility>

#include "platform/testing/scripted_network_interfaces.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::IsEmpty;
using ::testing::Optional;
using testing::ScriptedNetworkInterfaces;
using ::testing::SizeIs;

class LinuxNetworkInterfacesTest : public ::testing::Test {
 protected:
    LinuxNetworkInterfacesTest() {
        LinuxNetworkInterfaces::Sources sources;
        for (ScriptedNetworkInterfaces** source : {&first, &second}) {
            auto made = std::make_unique<ScriptedNetworkInterfaces>();
            *source = made.get();
            sources.push_back(std::move(made));
        }
        interfaces = std::make_unique<LinuxNetworkInterfaces>(std::move(sources));
    }

    const InterfaceTable wide{{2, {5'000'000'000, 6'000'000'000, false}}};
    const InterfaceTable narrow{{2, {705'032'704, 1'705'032'704, true}}};
    ScriptedNetworkInterfaces* first = nullptr;
    ScriptedNetworkInterfaces* second = nullptr;
    std::unique_ptr<LinuxNetworkInterfaces> interfaces;
};

TEST_F(LinuxNetworkInterfacesTest, TheFirstSourceIsEnough) {
    first->answers.interfaceCounters.set(wide);
    second->answers.interfaceCounters.set(narrow);
    EXPECT_THAT(interfaces->interfaceCounters(), Optional(wide));
    EXPECT_THAT(second->calls(), IsEmpty());
}

TEST_F(LinuxNetworkInterfacesTest, AnEmptyTableIsAnAnswer) {
    first->answers.interfaceCounters.set(InterfaceTable{});
    second->answers.interfaceCounters.set(narrow);
    EXPECT_THAT(interfaces->interfaceCounters(), Optional(InterfaceTable{}));
}

TEST_F(LinuxNetworkInterfacesTest, TheSecondSourceStepsInForOneReading) {
    second->answers.interfaceCounters.set(narrow);
    EXPECT_THAT(interfaces->interfaceCounters(), Optional(narrow));
    first->answers.interfaceCounters.set(wide);
    EXPECT_THAT(interfaces->interfaceCounters(), Optional(wide));
    EXPECT_THAT(first->calls(), SizeIs(2));
    EXPECT_THAT(second->calls(), SizeIs(1));
}

TEST_F(LinuxNetworkInterfacesTest, WithoutAnySourceThereIsNoTable) {
    EXPECT_EQ(interfaces->interfaceCounters(), std::nullopt);
}

TEST(LinuxNetworkInterfaces, AnotherRootIsReadFromItsFilesAlone) {
    EXPECT_THAT(
        LinuxNetworkInterfaces(testing::recordedMachine("virtual-machine")).interfaceCounters(),
        Optional(InterfaceTable{{2, {88'120'443'127, 12'044'813'300, false}}}));
}

TEST(LinuxNetworkInterfaces, NothingOfTheRunningMachineStandsInForAnotherRoot) {
    const testing::MachineTree empty;
    EXPECT_EQ(LinuxNetworkInterfaces(empty.root()).interfaceCounters(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
