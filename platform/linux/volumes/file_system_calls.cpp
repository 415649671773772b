// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/file_system_calls.h"

#include <array>
#include <fcntl.h>
#include <linux/fs.h>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/quota.h>
#include <unistd.h>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

namespace {

// The unit of the kernel's limits, bytes.
constexpr std::uint64_t kQuotaBlock = 1024;

std::optional<std::string> readLabel(const std::string& mountPoint) {
    const FileDescriptor folder(mountPoint);
    std::array<char, FSLABEL_MAX> label{};
    if (!folder.isOpen() || ::ioctl(folder.get(), FS_IOC_GETFSLABEL, label.data()) != 0) {
        return std::nullopt;
    }
    return labelIn(std::string_view(label.data(), label.size()));
}

std::optional<UserQuota> readQuota(const std::string& device) {
    dqblk quota{};
    if (::quotactl(QCMD(Q_GETQUOTA, USRQUOTA), device.c_str(), static_cast<int>(::geteuid()),
                   reinterpret_cast<char*>(&quota)) != 0) {
        return std::nullopt;
    }
    return UserQuota{.softLimit = quota.dqb_bsoftlimit * kQuotaBlock,
                     .hardLimit = quota.dqb_bhardlimit * kQuotaBlock,
                     .used = quota.dqb_curspace};
}

}  // namespace

FileSystemCalls systemCalls() {
    return {.label = readLabel, .userQuota = readQuota};
}

std::optional<std::string> labelIn(std::string_view bytes) {
    const std::string_view label = bytes.substr(0, bytes.find('\0'));
    return label.empty() ? std::nullopt : std::optional(std::string(label));
}

}  // namespace tarnwick::platform
