// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_workers.h"

#include <utility>

namespace tarnwick::platform::testing {

void ScriptedWorkers::comeBack() {
    for (const auto& work : std::exchange(hanging_, {})) {
        work();
    }
}

Workers::Outcome ScriptedWorkers::run(std::function<void()> work, double seconds) {
    if (refuses) {
        return Outcome::refused;
    }
    if (hangs || (hangNext > 0 && hangNext-- > 0)) {
        hanging_.push_back(std::move(work));
        waits.push_back(seconds);
        if (dispatch_ != nullptr) {
            dispatch_->sleep(seconds);
        }
        return Outcome::late;
    }
    work();
    return Outcome::ended;
}

}  // namespace tarnwick::platform::testing
