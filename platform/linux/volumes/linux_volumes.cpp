// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/linux_volumes.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/volumes/volume_label.h"
#include "platform/utf8.h"

namespace tarnwick::platform {

namespace {

constexpr double kLongestAgeOfName = 60;

std::string homeFromPasswordDatabase() {
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found)) ==
               ERANGE &&
           buffer.size() < std::size_t{1} << 20) {
        buffer.resize(buffer.size() * 2);
    }
    if (error != 0 || found == nullptr || entry.pw_dir == nullptr || entry.pw_dir[0] != '/') {
        return "/";
    }
    return entry.pw_dir;
}

std::string homeDirectory(const std::optional<std::string>& choice) {
    if (choice) {
        return choice->starts_with('/') ? *choice : homeFromPasswordDatabase();
    }
    const char* const variable = std::getenv("HOME");
    return variable != nullptr && variable[0] == '/' ? variable : homeFromPasswordDatabase();
}

FileSystemCalls noCalls() {
    return {.label = [](const std::string&) { return std::nullopt; },
            .userQuota = [](const std::string&) { return std::nullopt; }};
}

}  // namespace

LinuxVolumes::LinuxVolumes(std::string root, std::optional<std::string> home,
                           std::function<double()> sinceBoot, std::optional<FileSystemCalls> calls)
    : root_(std::move(root)),
      home_(homeDirectory(home)),
      sinceBoot_(std::move(sinceBoot)),
      calls_(calls          ? *std::move(calls)
             : root_ == "/" ? systemCalls()
                            : noCalls()) {}

std::string LinuxVolumes::homeDirectoryForCurrentUser() {
    return home_;
}

std::variant<VolumeResourceValues, VolumeError> LinuxVolumes::resourceValues(
    const std::string& path) {
    const std::optional<VolumeCapacity> capacity = capacityOf(path);
    if (!capacity) {
        return VolumeResourceValues{.name = volumeOf(path, 0).name};
    }
    const Volume volume = volumeOf(path, capacity->fileSystem);
    return VolumeResourceValues{.name = volume.name,
                                .totalCapacity = capacity->total,
                                .availableCapacityForImportantUsage = std::nullopt,
                                .availableCapacity = capacity->available,
                                .mountPoint = volume.mountPoint};
}

std::optional<FileSystemAttributes> LinuxVolumes::attributesOfFileSystemForPath(
    const std::string& path) {
    const std::optional<VolumeCapacity> capacity = capacityOf(path);
    if (!capacity) {
        return std::nullopt;
    }
    return FileSystemAttributes{.size = capacity->total, .freeSize = capacity->available};
}

std::optional<VolumeCapacity> LinuxVolumes::capacityOf(const std::string& path) {
    struct statvfs figures {};
    int result = 0;
    do {
        result = ::statvfs(belowRoot(root_, path).c_str(), &figures);
    } while (result != 0 && errno == EINTR);
    if (result != 0) {
        return std::nullopt;
    }
    const VolumeCapacity capacity = volumeCapacity(figures);
    const std::string device = volumeOf(path, capacity.fileSystem).quotaDevice;
    const std::optional<UserQuota> quota = device.empty() ? std::nullopt : calls_.userQuota(device);
    return quota ? withinQuota(capacity, *quota) : capacity;
}

LinuxVolumes::Volume LinuxVolumes::volumeOf(const std::string& path, unsigned long fileSystem) {
    const std::lock_guard guard(lock_);
    const double now = sinceBoot_();
    if (!known_ || known_->path != path || known_->fileSystem != fileSystem ||
        now < known_->foundAt || now - known_->foundAt >= kLongestAgeOfName) {
        // Falls back to "/": every path lies below the root, even if the mount table does not show
        // it.
        known_ = Volume{.path = path, .fileSystem = fileSystem, .foundAt = now, .name = "/"};
        if (const std::optional<Mount> mount = findMount(path)) {
            known_->name = mount->mountPoint;
            known_->mountPoint = mount->mountPoint;
            if (mount->source.starts_with('/')) {
                std::optional<std::string> label = labelOf(root_, *mount);
                // Of a file system on several devices only one may be listed.
                label = label ? label : calls_.label(mount->mountPoint);
                if (label && canBeSeen(repairedUTF8(*label))) {
                    known_->name = *label;
                }
                known_->quotaDevice = hasUserQuota(*mount) ? mount->source : "";
            }
        }
        known_->name = repairedName(known_->name);
    }
    return *known_;
}

std::optional<Mount> LinuxVolumes::findMount(const std::string& path) const {
    const std::optional<std::string> mountInfo =
        readWholeFile(belowRoot(root_, "proc/self/mountinfo"));
    if (!mountInfo) {
        return std::nullopt;
    }
    // Mount points contain no symbolic links, so the path is resolved. The tree's own root is
    // removed from it.
    std::error_code error;
    const std::filesystem::path root = std::filesystem::canonical(root_, error);
    const std::filesystem::path real =
        std::filesystem::weakly_canonical(belowRoot(root_, path), error).lexically_relative(root);
    if (error || real.empty()) {
        return std::nullopt;
    }
    return mountOf(*mountInfo, real == "." ? "/" : "/" + real.native());
}

}  // namespace tarnwick::platform
