// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/drm_clients.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/linux/files/opened_files.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OpenedFiles;

class DrmClientsTest : public ::testing::Test {
 protected:
    static std::string processFolder(int process) { return "proc/" + std::to_string(process); }
    void open(int process, int descriptor, std::string_view target) {
        tree.link(processFolder(process) + "/fd/" + std::to_string(descriptor), target);
    }
    void openCard(int process, int descriptor, int client,
                  std::string_view node = "/dev/dri/renderD128") {
        open(process, descriptor, node);
        setText(process, descriptor,
                "drm-client-id:\t" + std::to_string(client) + "\ndrm-engine-render:\t5 ns\n");
    }
    void setText(int process, int descriptor, std::string_view text) {
        tree.write(processFolder(process) + "/fdinfo/" + std::to_string(descriptor), text);
    }
    void end(int process) {
        // What is kept open of a process that has ended holds nothing.
        setText(process, 3, "");
        tree.remove(processFolder(process));
    }

    std::vector<std::uint64_t> at(double moment) {
        clients.search(moment);
        return known();
    }
    std::vector<std::uint64_t> known() {
        std::vector<std::uint64_t> all;
        for (const ClientTimes& times : clients.read()) {
            all.push_back(times.client);
        }
        return all;
    }

    const testing::MachineTree tree;
    DrmClients clients{tree.root(), {"card1", "renderD128"}};
};

TEST_F(DrmClientsTest, AreThoseThatHaveTheCardOpen) {
    open(7, 0, "/dev/null");
    open(7, 1, "socket:[123]");
    openCard(12, 3, 40);
    openCard(12, 9, 41, "/dev/dri/card1");
    openCard(300, 5, 42);
    EXPECT_THAT(at(100), ::testing::UnorderedElementsAre(40, 41, 42));
    EXPECT_EQ(clients.read()[0].engines,
              (std::vector<EngineTime>{{.engine = "render", .busy = 5}}));
}

TEST_F(DrmClientsTest, AreCountedOnceHoweverManyDescriptorsTheyHave) {
    openCard(12, 3, 40);
    openCard(12, 4, 40);
    openCard(13, 3, 40);
    EXPECT_THAT(at(100), ElementsAre(40));
}

TEST_F(DrmClientsTest, ThatTellNoTimesAreNone) {
    openCard(12, 3, 40);
    setText(12, 3, "drm-client-id:\t40\ndrm-total-vram:\t61 MiB\n");
    openCard(12, 4, 41);
    setText(12, 4, "pos:\t0\n");
    open(13, 3, "/dev/dri/renderD128");
    EXPECT_THAT(at(100), IsEmpty());
}

TEST_F(DrmClientsTest, OfOtherCardsAreNotRead) {
    openCard(12, 3, 40, "/dev/dri/renderD129");
    openCard(12, 4, 41, "/dev/dri/renderD12");
    openCard(12, 5, 42, "/dev/dri/by-path/pci-0000:00:02.0-render-and-some-more-and-more-card");
    OpenedFiles opened;
    if (!opened.watch(tree.root(), "proc/12/fdinfo/3")) {
        GTEST_SKIP() << "this machine does not tell which files are opened";
    }
    EXPECT_THAT(at(100), IsEmpty());
    EXPECT_FALSE(opened.any());
}

TEST_F(DrmClientsTest, OfProcessesThatMayNotBeSeenAreLeftOut) {
    tree.write("proc/7/fd", "");
    tree.makeFolder("proc/8");
    tree.makeFolder("proc/self/fd");
    openCard(12, 3, 40);
    EXPECT_THAT(at(100), ElementsAre(40));
}

TEST_F(DrmClientsTest, TheScreenIsDrivenThroughTheFirstNode) {
    openCard(12, 3, 40);
    at(100);
    EXPECT_FALSE(clients.hasScreenOwner());
    openCard(13, 3, 41, "/dev/dri/card1");
    at(110);
    EXPECT_TRUE(clients.hasScreenOwner());
    end(13);
    known();
    EXPECT_FALSE(clients.hasScreenOwner());
}

TEST_F(DrmClientsTest, ThatAreNewAreFoundAfterTenSeconds) {
    EXPECT_THAT(at(100), IsEmpty());
    openCard(12, 3, 40);
    EXPECT_THAT(at(109.9), IsEmpty());
    EXPECT_THAT(at(110), ElementsAre(40));
}

TEST_F(DrmClientsTest, ThatHaveGoneAreForgotten) {
    openCard(12, 3, 40);
    openCard(13, 3, 41);
    EXPECT_THAT(at(100), ElementsAre(40, 41));
    end(12);
    setText(13, 3, "drm-client-id:\t55\ndrm-engine-render:\t5 ns\n");
    EXPECT_THAT(known(), IsEmpty());
    // The descriptor belongs to another client now.
    EXPECT_THAT(at(110), ElementsAre(55));
}

TEST_F(DrmClientsTest, ThatWereHandedOnAreFoundWithTheirNewOwner) {
    openCard(12, 3, 40);
    openCard(13, 3, 40);
    EXPECT_THAT(at(100), ElementsAre(40));
    EXPECT_THAT(at(110), ElementsAre(40));
    end(12);
    EXPECT_THAT(at(112), IsEmpty());
    EXPECT_THAT(at(150), ElementsAre(40));
}

TEST_F(DrmClientsTest, OlderProcessesAreLookedAtRarely) {
    for (int descriptor = 0; descriptor < 300; ++descriptor) {
        open(7, descriptor, "/dev/null");
    }
    OpenedFiles opened;
    if (!opened.watch(tree.root(), "proc/7/fd")) {
        GTEST_SKIP() << "this machine does not tell which files are opened";
    }
    std::vector<int> looks;
    for (int moment = 0; moment < 400; moment += 10) {
        clients.search(moment);
        if (opened.any()) {
            looks.push_back(moment);
        }
    }
    // Three descriptors a second, after the first two looks.
    EXPECT_THAT(looks, ElementsAre(0, 10, 20, 110, 210, 310));
}

/// The system tells when the card is opened.
class WatchedDrmClientsTest : public DrmClientsTest {
 protected:
    WatchedDrmClientsTest() {
        tree.write("dev/dri/card1", "");
        tree.write("dev/dri/renderD128", "");
        open(7, 0, "/dev/null");
    }
    void SetUp() override {
        if (!opened.watch(tree.root(), "proc")) {
            GTEST_SKIP() << "this machine does not tell which files are opened";
        }
        clients.search(0);
        opened.any();
    }
    void openNode() const { FileDescriptor(tree.root() + "/dev/dri/renderD128"); }
    bool searchesAt(double moment) {
        clients.search(moment);
        return opened.any();
    }

    OpenedFiles opened;
};

TEST_F(WatchedDrmClientsTest, NobodyIsLookedAtWhileNobodyOpensTheCard) {
    for (double moment = 10; moment < 100'000; moment += 10) {
        ASSERT_FALSE(searchesAt(moment));
    }
}

TEST_F(WatchedDrmClientsTest, AnOpenedCardIsLookedForTwice) {
    openNode();
    EXPECT_FALSE(searchesAt(5));
    EXPECT_TRUE(searchesAt(20));
    EXPECT_FALSE(searchesAt(22));
    EXPECT_TRUE(searchesAt(30));
    EXPECT_FALSE(searchesAt(40));
}

TEST_F(WatchedDrmClientsTest, AnOldProcessThatOpensTheCardIsFoundAtOnce) {
    openNode();
    clients.search(10);
    clients.search(20);
    EXPECT_THAT(at(1000), IsEmpty());
    openCard(7, 3, 40);
    EXPECT_THAT(at(2000), IsEmpty());
    openNode();
    EXPECT_THAT(at(2002), ElementsAre(40));
}

TEST_F(WatchedDrmClientsTest, AnOldProcessIsFoundOnceItsManyDescriptorsMayBeLookedAt) {
    for (int descriptor = 1; descriptor < 300; ++descriptor) {
        open(7, descriptor, "/dev/null");
    }
    for (const double moment : {10, 20, 30}) {
        openNode();
        clients.search(moment);
    }
    openCard(7, 1000, 40);
    openNode();
    for (double moment = 40; moment <= 100; moment += 10) {
        ASSERT_THAT(at(moment), IsEmpty()) << moment;
    }
    EXPECT_THAT(at(110), ElementsAre(40));
}

TEST_F(WatchedDrmClientsTest, ANodeThatWasMadeAnewIsWatchedAgain) {
    tree.remove("dev/dri/renderD128");
    clients.search(10);
    tree.write("dev/dri/renderD128", "");
    for (const double moment : {20, 30, 40, 50}) {
        clients.search(moment);
    }
    opened.any();
    EXPECT_FALSE(searchesAt(60));
    openCard(12, 3, 40);
    openNode();
    EXPECT_THAT(at(70), ElementsAre(40));
}

TEST_F(WatchedDrmClientsTest, AClientThatHasGoneIsLookedForElsewhere) {
    openCard(12, 3, 40);
    openCard(13, 3, 40);
    openNode();
    EXPECT_THAT(at(10), ElementsAre(40));
    EXPECT_THAT(at(20), ElementsAre(40));
    end(12);
    EXPECT_THAT(at(30), IsEmpty());
    EXPECT_THAT(at(32), ElementsAre(40));
}

TEST_F(DrmClientsTest, BetweenSearchesOnlyTheirOwnFilesAreRead) {
    openCard(12, 3, 40);
    open(7, 0, "/dev/null");
    at(100);
    OpenedFiles opened;
    if (!opened.watch(tree.root(), "proc") || !opened.watch(tree.root(), "proc/7/fd") ||
        !opened.watch(tree.root(), "proc/12/fd")) {
        GTEST_SKIP() << "this machine does not tell which files are opened";
    }
    for (double moment = 100; moment < 110; moment += 0.5) {
        EXPECT_THAT(at(moment), ElementsAre(40));
    }
    EXPECT_FALSE(opened.any());
}

TEST_F(DrmClientsTest, MoreProcessesMakeSearchesRarer) {
    for (int process = 1; process <= 300; ++process) {
        tree.makeFolder(processFolder(process));
    }
    at(100);
    openCard(900, 3, 40);
    EXPECT_THAT(at(114.9), IsEmpty());
    EXPECT_THAT(at(115), ElementsAre(40));
}

TEST_F(DrmClientsTest, AClockThatWentBackStartsASearch) {
    at(1000);
    openCard(12, 3, 40);
    EXPECT_THAT(at(5), ElementsAre(40));
}

TEST_F(DrmClientsTest, OfAMachineWithoutProcessesThereAreNone) {
    EXPECT_THAT(at(100), IsEmpty());
    DrmClients nowhere("/no such machine", {"card1"});
    nowhere.search(1);
    EXPECT_TRUE(nowhere.read().empty());
}

}  // namespace
}  // namespace tarnwick::platform
