// SPDX-License-Identifier: MIT
#include "ui/panel/held_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace tarnwick {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

AppProcessInfo process(int id, double usage = 0) {
    return {.id = id, .name = "app " + std::to_string(id), .cpuUsage = usage};
}

ProcessSlots rows(std::initializer_list<int> ids) {
    ProcessSlots all;
    for (const int id : ids) {
        all.emplace_back(process(id));
    }
    return all;
}

/// Numbers of the processes from top to bottom; 0 for an empty row.
std::vector<int> ids(const ProcessSlots& all) {
    std::vector<int> numbers;
    for (const auto& row : all) {
        numbers.push_back(row ? static_cast<int>(row->id) : 0);
    }
    return numbers;
}

TEST(HeldOrder, KeepsEveryProcessInItsRow) {
    EXPECT_THAT(ids(heldOrder(rows({1, 2, 3}), {process(3), process(1), process(2)})),
                ElementsAre(1, 2, 3));
}

TEST(HeldOrder, HasTheLatestFiguresOfEachName) {
    const ProcessSlots held = heldOrder(rows({1, 2}), {process(2, 90), process(1, 10)});
    EXPECT_EQ(*held[0], process(1, 10));
    EXPECT_EQ(*held[1], process(2, 90));
}

TEST(HeldOrder, NewcomersTakeTheRowsThatAreFree) {
    EXPECT_THAT(
        ids(heldOrder(rows({1, 2, 3, 4}), {process(8), process(4), process(9), process(2)})),
        ElementsAre(8, 2, 9, 4));
}

TEST(HeldOrder, MoreNewcomersThanFreeRowsWait) {
    EXPECT_THAT(ids(heldOrder(rows({1, 2}), {process(7), process(8), process(9), process(2)})),
                ElementsAre(7, 2));
}

TEST(HeldOrder, ARowThatNobodyTakesIsEmpty) {
    const ProcessSlots held = heldOrder(rows({1, 2, 3}), {process(3)});
    EXPECT_THAT(ids(held), ElementsAre(0, 0, 3));
    EXPECT_THAT(ids(heldOrder(held, {process(3), process(5)})), ElementsAre(5, 0, 3));
    EXPECT_THAT(ids(heldOrder(held, {})), ElementsAre(0, 0, 0));
}

TEST(HeldOrder, ANumberUsedAnewIsAnotherProcess) {
    AppProcessInfo other = process(1);
    other.name = "another";
    const ProcessSlots held = heldOrder(rows({1, 2}), {process(2), other});
    EXPECT_EQ(held[0]->name, "another");
    EXPECT_THAT(ids(heldOrder(rows({2, 1}), {process(3), process(2), other})), ElementsAre(2, 3));
}

TEST(HeldOrder, BeginsWithTheLatestOrder) {
    EXPECT_THAT(ids(heldOrder({}, {process(3), process(1)})), ElementsAre(3, 1));
    EXPECT_THAT(heldOrder({}, {}), IsEmpty());
}

}  // namespace
}  // namespace tarnwick
