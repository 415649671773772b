// SPDX-License-Identifier: MIT
#include "platform/log.h"

namespace tarnwick::platform {
namespace {

class DisabledLogHandle final : public LogHandle {
 public:
    void write(LogLevel, std::string_view) override {}
};

}  // namespace

LogHandle& LogHandle::disabled() {
    static DisabledLogHandle handle;
    return handle;
}

}  // namespace tarnwick::platform
