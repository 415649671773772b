// SPDX-License-Identifier: MIT
// A status item that records what it is shown.
#pragma once

#include <utility>
#include <vector>

#include "platform/desktop.h"

namespace tarnwick::platform::testing {

class ScriptedStatusItem final : public StatusItem {
 public:
    /// Every content that was set, in order.
    std::vector<StatusItemContent> contents;
    StatusItemActions actions;
    /// What inTray and performClick answer.
    bool isInTray = true;
    /// Number of calls of performClick(), including those that return false.
    int clicks = 0;
    /// Number of calls of toggleWithoutTray().
    int togglesWithoutTray = 0;

    void setContent(const StatusItemContent& content) override { contents.push_back(content); }
    void setActions(StatusItemActions newActions) override { actions = std::move(newActions); }
    bool inTray() const override { return isInTray; }
    bool performClick() override {
        ++clicks;
        if (isInTray && actions.toggle) {
            actions.toggle();
        }
        return isInTray;
    }
    void toggleWithoutTray() override { ++togglesWithoutTray; }
};

}  // namespace tarnwick::platform::testing
