// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/graphics_card.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

/// Answers what the test wrote down and counts what it was asked.
struct ScriptedSource final : GpuSource {
    struct Script {
        std::optional<GpuUtilization> answer{};
        std::string name{};
        std::optional<std::int64_t> cores{};
        bool touchesCard = true;
        int reads = 0;
        int rests = 0;
        int forgotten = 0;
        int names = 0;
    };

    explicit ScriptedSource(Script& answers) : script(answers) {}
    bool touchesCard() const override { return script.touchesCard; }
    std::optional<GpuUtilization> read(double) override {
        ++script.reads;
        return script.answer;
    }
    std::string modelName() override {
        ++script.names;
        return script.name;
    }
    std::optional<std::int64_t> coreCount() override { return script.cores; }
    void rest() override { ++script.rests; }
    void forget() override { ++script.forgotten; }

    Script& script;
};

class GraphicsCardTest : public ::testing::Test {
 protected:
    GraphicsCardTest() {
        setStatus("active");
        setControl("on");
    }

    void setStatus(std::string_view status) {
        tree.write("device/power/runtime_status", std::string(status) + "\n");
    }
    void setControl(std::string_view control) {
        tree.write("device/power/control", std::string(control) + "\n");
    }
    void setScreen(std::string_view enabled) {
        tree.write("drm/card1-DP-1/enabled", std::string(enabled) + "\n");
        tree.write("drm/card1-DP-1/dpms", "On\n");
    }
    std::optional<double> usageAt(double moment) {
        const PropertyDictionary properties = card.properties(moment);
        const PropertyValue* statistics = propertyValue(properties, "PerformanceStatistics");
        if (statistics == nullptr) {
            return std::nullopt;
        }
        const PropertyValue* device =
            propertyValue(std::get<PropertyDictionary>(*statistics), "Device Utilization %");
        return std::get<double>(*device);
    }

    const testing::MachineTree tree;
    ScriptedSource::Script script;
    GraphicsCard card{tree.root(),
                      {.folder = tree.root() + "/device",
                       .card = tree.root() + "/drm/card1",
                       .identity = {.driver = "scripted",
                                    .vendor = "1002",
                                    .device = "744c",
                                    .deviceClass = 0x0300}},
                      std::make_unique<ScriptedSource>(script)};
};

TEST_F(GraphicsCardTest, PublishesWhatItsSourceKnows) {
    script.answer = {.device = 50, .renderer = 40};
    script.name = "Graphics";
    script.cores = 96;
    const PropertyDictionary properties = card.properties(10);
    ASSERT_EQ(properties.size(), 3U);
    const auto& statistics =
        std::get<PropertyDictionary>(*propertyValue(properties, "PerformanceStatistics"));
    ASSERT_EQ(statistics.size(), 2U);
    EXPECT_EQ(std::get<double>(*propertyValue(statistics, "Device Utilization %")), 50);
    EXPECT_EQ(std::get<double>(*propertyValue(statistics, "Renderer Utilization %")), 40);
    EXPECT_EQ(std::get<std::string>(*propertyValue(properties, "model")), "Graphics");
    EXPECT_EQ(std::get<std::int64_t>(*propertyValue(properties, "gpu-core-count")), 96);
}

TEST_F(GraphicsCardTest, LeavesOutWhatIsUnknown) {
    EXPECT_TRUE(card.properties(10).empty());
    EXPECT_EQ(script.names, 0);
    script.answer = {.device = 50};
    const PropertyDictionary properties = card.properties(12);
    ASSERT_EQ(properties.size(), 1U);
    EXPECT_EQ(std::get<PropertyDictionary>(properties.front().value).size(), 1U);
}

TEST_F(GraphicsCardTest, TheNameIsLookedUpOnce) {
    script.answer = {.device = 50};
    card.properties(10);
    script.name = "Too late";
    card.properties(12);
    EXPECT_EQ(script.names, 1);
}

TEST_F(GraphicsCardTest, WithoutANameOfItsOwnTheCardHasTheOneOfTheDatabase) {
    tree.write("usr/share/misc/pci.ids", "1002  AMD\n\t744c  Navi 31 [Radeon RX 7900]\n");
    tree.write("usr/share/libdrm/amdgpu.ids", "744C,\tC8,\tAMD Radeon RX 7900 XTX\n");
    tree.write("device/revision", "0xc8\n");
    script.answer = {.device = 50};
    const PropertyDictionary properties = card.properties(10);
    EXPECT_EQ(std::get<std::string>(*propertyValue(properties, "model")), "AMD Radeon RX 7900 XTX");
}

TEST_F(GraphicsCardTest, ACardThatSleepsIsNotAsked) {
    script.answer = {.device = 50};
    for (const std::string_view status : {"suspended", "suspending", "resuming", "error"}) {
        setStatus(status);
        EXPECT_EQ(usageAt(10), std::nullopt) << status;
    }
    EXPECT_EQ(script.reads, 0);
    EXPECT_EQ(script.names, 0);
    EXPECT_EQ(script.forgotten, 4);
    setStatus("active");
    EXPECT_EQ(usageAt(12), 50);
}

TEST_F(GraphicsCardTest, ACardThatAskingDoesNotTouchIsAlwaysAsked) {
    script.touchesCard = false;
    script.name = "Graphics";
    setControl("auto");
    for (const std::string_view status : {"suspended", "active", "suspended"}) {
        setStatus(status);
        script.answer = {.device = script.reads / 10.0};
        EXPECT_EQ(usageAt(10), script.answer->device);
    }
    EXPECT_EQ(script.reads, 3);
    EXPECT_EQ(script.names, 1);
    EXPECT_EQ(script.rests, 0);
}

TEST_F(GraphicsCardTest, ACardThatFallsAsleepKeepsItsName) {
    script.answer = {.device = 50};
    script.name = "Graphics";
    card.properties(10);
    setStatus("suspended");
    const PropertyDictionary properties = card.properties(12);
    ASSERT_EQ(properties.size(), 1U);
    EXPECT_EQ(std::get<std::string>(*propertyValue(properties, "model")), "Graphics");
}

TEST_F(GraphicsCardTest, ACardThatCannotSleepIsAskedAtEveryTick) {
    script.answer = {.device = 0};
    usageAt(10);
    usageAt(12);
    setControl("auto");
    setScreen("enabled");
    usageAt(14);
    usageAt(16);
    EXPECT_EQ(script.reads, 4);
    EXPECT_EQ(script.rests, 0);
}

TEST_F(GraphicsCardTest, AnIdleCardThatCouldSleepIsLeftAlone) {
    setControl("auto");
    setScreen("disabled");
    tree.write("device/power/autosuspend_delay_ms", "5000\n");
    script.answer = {.device = 0.9};
    EXPECT_EQ(usageAt(10), 0.9);
    EXPECT_EQ(script.rests, 1);
    script.answer = {.device = 80};
    EXPECT_EQ(usageAt(12), 0.9);
    EXPECT_EQ(usageAt(16.9), 0.9);
    EXPECT_EQ(script.reads, 1);
    EXPECT_EQ(usageAt(17), 80);
    EXPECT_EQ(usageAt(19), 80);
    EXPECT_EQ(script.reads, 3);
}

TEST_F(GraphicsCardTest, ABusyCardThatCouldSleepIsAskedAtEveryTick) {
    setControl("auto");
    script.answer = {.device = 1};
    usageAt(10);
    usageAt(12);
    EXPECT_EQ(script.reads, 2);
    EXPECT_EQ(script.rests, 0);
}

TEST_F(GraphicsCardTest, ACardThatTellsNothingIsLeftAloneToo) {
    setControl("auto");
    tree.write("device/power/autosuspend_delay_ms", "5000\n");
    EXPECT_EQ(usageAt(10), std::nullopt);
    EXPECT_EQ(usageAt(12), std::nullopt);
    EXPECT_EQ(script.reads, 1);
    EXPECT_EQ(usageAt(17), std::nullopt);
    EXPECT_EQ(script.reads, 2);
}

TEST_F(GraphicsCardTest, ACardThatWakesUpIsAskedAtOnce) {
    setControl("auto");
    tree.write("device/power/autosuspend_delay_ms", "5000\n");
    script.answer = {.device = 0};
    EXPECT_EQ(usageAt(10), 0);
    setStatus("suspended");
    EXPECT_EQ(usageAt(12), std::nullopt);
    setStatus("active");
    script.answer = {.device = 90};
    EXPECT_EQ(usageAt(14), 90);
}

TEST_F(GraphicsCardTest, ARestEndsWhenSomebodyUsesTheCard) {
    setControl("auto");
    tree.write("device/power/autosuspend_delay_ms", "60000\n");
    tree.write("device/power/runtime_usage", "0\n");
    script.answer = {.device = 0};
    EXPECT_EQ(usageAt(10), 0);
    script.answer = {.device = 97};
    EXPECT_EQ(usageAt(12), 0);
    tree.write("device/power/runtime_usage", "1\n");
    EXPECT_EQ(usageAt(14), 97);
}

TEST_F(GraphicsCardTest, ARestEndsWhenTheCardSleptUnseen) {
    setControl("auto");
    tree.write("device/power/autosuspend_delay_ms", "60000\n");
    const auto awakeFor = [this](int milliseconds) {
        tree.write("device/power/runtime_active_time", std::to_string(milliseconds) + "\n");
    };
    awakeFor(50000);
    script.answer = {.device = 0};
    EXPECT_EQ(usageAt(10), 0);
    script.answer = {.device = 97};
    awakeFor(52000);
    EXPECT_EQ(usageAt(12), 0);
    awakeFor(61100);
    EXPECT_EQ(usageAt(22), 0);
    awakeFor(61900);
    EXPECT_EQ(usageAt(24), 97);
}

TEST_F(GraphicsCardTest, ARestEndsWhereNothingElseIsTold) {
    setControl("auto");
    tree.write("device/power/autosuspend_delay_ms", "60000\n");
    script.answer = {.device = 0};
    EXPECT_EQ(usageAt(10), 0);
    script.answer = {.device = 97};
    EXPECT_EQ(usageAt(71.9), 0);
    EXPECT_EQ(usageAt(72), 97);
}

TEST_F(GraphicsCardTest, WithoutASourceThereIsNothing) {
    GraphicsCard silent(tree.root(), {.folder = tree.root() + "/device"}, nullptr);
    EXPECT_FALSE(silent.hasSource());
    EXPECT_TRUE(silent.properties(10).empty());
}

}  // namespace
}  // namespace tarnwick::platform
