// SPDX-License-Identifier: MIT
#include "platform/linux/files/kept_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <signal.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;

std::size_t openDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

TEST(KeptFile, ReadsTheFileAgainFromItsStart) {
    const MachineTree tree;
    tree.write("file", "first");
    KeptFile file(tree.root() + "/file");
    EXPECT_EQ(file.read(), "first");
    tree.write("file", "next");
    EXPECT_EQ(file.read(), "next");
    EXPECT_EQ(file.error(), 0);
}

TEST(KeptFile, KeepsOneDescriptorOpenAndClosesIt) {
    const MachineTree tree;
    tree.write("file", "text");
    const std::size_t before = openDescriptors();
    {
        KeptFile file(tree.root() + "/file");
        EXPECT_EQ(openDescriptors(), before);
        for (int turn = 0; turn < 3; ++turn) {
            EXPECT_EQ(file.read(), "text");
            EXPECT_EQ(openDescriptors(), before + 1);
        }
        KeptFile moved = std::move(file);
        EXPECT_EQ(moved.read(), "text");
        EXPECT_EQ(openDescriptors(), before + 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(FileDescriptor, IsClosedWhenAnotherProgramIsStarted) {
    const FileDescriptor file("/proc/self/stat");
    ASSERT_TRUE(file.isOpen());
    EXPECT_NE(::fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(KeptFile, GrowsWithAFileLargerThanExpected) {
    const MachineTree tree;
    KeptFile file(tree.root() + "/file", 16);
    for (const std::size_t size : {15U, 16U, 17U, 95U, 96U, 97U, 100'000U, 3U}) {
        const std::string content(size, 'x');
        tree.write("file", content);
        EXPECT_EQ(file.read(), content) << size;
    }
}

// The kernel's list of what is mapped into this process is longer than a page, and the stack is
// behind all libraries.
TEST(KeptFile, AFileThatComesInPartsIsReadToItsEnd) {
    for (const std::size_t expectedSize : {16U, 4096U, 1'000'000U}) {
        KeptFile file("/proc/self/smaps", expectedSize, KeptFile::Delivery::inParts);
        for (int turn = 0; turn < 2; ++turn) {
            const auto text = file.read();
            ASSERT_TRUE(text);
            EXPECT_TRUE(text->find("[stack]") != std::string_view::npos) << expectedSize;
            EXPECT_TRUE(text->ends_with('\n')) << expectedSize;
        }
    }
    KeptFile cutShort("/proc/self/smaps", 1'000'000);
    EXPECT_TRUE(cutShort.read().value().find("[stack]") == std::string_view::npos);
}

TEST(KeptFile, AFileInPartsThatShrinksHasNothingLeftOfWhatItWas) {
    const MachineTree tree;
    KeptFile file(tree.root() + "/file", 16, KeptFile::Delivery::inParts);
    for (const std::size_t size : {0U, 15U, 16U, 17U, 100'000U, 3U, 0U}) {
        const std::string content(size, 'x');
        tree.write("file", content);
        EXPECT_EQ(file.read(), content) << size;
    }
}

TEST(KeptFile, AnEmptyFileIsEmptyText) {
    const MachineTree tree;
    tree.write("file", "");
    KeptFile file(tree.root() + "/file");
    EXPECT_EQ(file.read(), "");
}

TEST(KeptFile, AMissingFileSaysWhyAndMayAppearLater) {
    const MachineTree tree;
    KeptFile file(tree.root() + "/file");
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_EQ(file.error(), ENOENT);
    tree.write("file", "here");
    EXPECT_EQ(file.read(), "here");
}

TEST(KeptFile, AFolderIsNoFile) {
    const MachineTree tree;
    tree.makeFolder("file");
    KeptFile file(tree.root() + "/file");
    const std::size_t before = openDescriptors();
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_EQ(file.error(), EISDIR);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(KeptFile, APipeIsNoFileAndHoldsNobodyUp) {
    const MachineTree tree;
    const std::string path = tree.root() + "/file";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    KeptFile file(path);
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_EQ(file.error(), ESPIPE);
    EXPECT_EQ(readWholeFile(path), "");
}

TEST(KeptFile, AFileTooLargeToBeTrueIsNotRead) {
    const MachineTree tree;
    tree.write("file", "");
    tree.truncate("file", std::size_t{64} << 20);
    KeptFile file(tree.root() + "/file");
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_EQ(file.error(), EFBIG);
    EXPECT_EQ(readWholeFile(tree.root() + "/file"), std::nullopt);
    tree.truncate("file", 0);
    tree.write("file", "small again");
    EXPECT_EQ(file.read(), "small again");
}

// The status file of a process that ended fails on an open descriptor, as a device does that went
// away. The path then leads to another file.
TEST(KeptFile, AFileThatFailsIsOpenedAgain) {
    const MachineTree tree;
    const pid_t child = ::fork();
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    ASSERT_GT(child, 0);
    tree.link("file", "/proc/" + std::to_string(child) + "/statm");
    KeptFile file(tree.root() + "/file");
    EXPECT_TRUE(file.read());
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    tree.remove("file");
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_EQ(file.error(), ENOENT);
    tree.write("file", "back");
    EXPECT_EQ(file.read(), "back");
}

TEST(ReadWholeFile, GivesTheContentOrNothing) {
    const MachineTree tree;
    const std::string content(10'000, 'y');
    tree.write("file", content);
    tree.write("empty", "");
    EXPECT_EQ(readWholeFile(tree.root() + "/file"), content);
    EXPECT_EQ(readWholeFile(tree.root() + "/empty"), "");
    EXPECT_EQ(readWholeFile(tree.root() + "/missing"), std::nullopt);
    EXPECT_EQ(readWholeFile(tree.root()), std::nullopt);
}

TEST(BelowRoot, JoinsWithOneSlash) {
    EXPECT_EQ(belowRoot("/", "proc/stat"), "/proc/stat");
    EXPECT_EQ(belowRoot("/", "/home/me"), "/home/me");
    EXPECT_EQ(belowRoot("/tree", "proc/stat"), "/tree/proc/stat");
    EXPECT_EQ(belowRoot("/tree/", "/home/me"), "/tree/home/me");
}

}  // namespace
}  // namespace tarnwick::platform
