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
#include "platform/linux/volumes/mountinfo.h"
#include "platform/linux/volumes/volume_capacity.h"
#include "platform/linux/volumes/volume_label.h"

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

std::optional<VolumeCapacity> capacityOf(const std::string& path) {
    struct statvfs figures {};
    int result = 0;
    do {
        result = ::statvfs(path.c_str(), &figures);
    } while (result != 0 && errno == EINTR);
    return result != 0 ? std::nullopt : std::optional(volumeCapacity(figures));
}

}  // namespace

LinuxVolumes::LinuxVolumes(std::string root, std::optional<std::string> home,
                           std::function<double()> sinceBoot)
    : root_(std::move(root)), home_(homeDirectory(home)), sinceBoot_(std::move(sinceBoot)) {}

std::string LinuxVolumes::homeDirectoryForCurrentUser() {
    return home_;
}

std::variant<VolumeResourceValues, VolumeError> LinuxVolumes::resourceValues(
    const std::string& path) {
    const std::optional<VolumeCapacity> capacity = capacityOf(belowRoot(root_, path));
    if (!capacity) {
        return VolumeResourceValues{.name = nameOfVolume(path, 0)};
    }
    return VolumeResourceValues{.name = nameOfVolume(path, capacity->fileSystem),
                                .totalCapacity = capacity->total,
                                .availableCapacityForImportantUsage = std::nullopt,
                                .availableCapacity = capacity->available};
}

std::optional<FileSystemAttributes> LinuxVolumes::attributesOfFileSystemForPath(
    const std::string& path) {
    const std::optional<VolumeCapacity> capacity = capacityOf(belowRoot(root_, path));
    if (!capacity) {
        return std::nullopt;
    }
    return FileSystemAttributes{.size = capacity->total, .freeSize = capacity->available};
}

std::string LinuxVolumes::nameOfVolume(const std::string& path, unsigned long fileSystem) {
    const std::lock_guard guard(lock_);
    const double now = sinceBoot_();
    if (!known_ || known_->path != path || known_->fileSystem != fileSystem ||
        now < known_->foundAt || now - known_->foundAt >= kLongestAgeOfName) {
        // Falls back to "/": every path lies below the root, even if the mount table does not show
        // it.
        known_ = KnownName{.path = path,
                           .fileSystem = fileSystem,
                           .foundAt = now,
                           .name = findName(path).value_or("/")};
    }
    return known_->name;
}

std::optional<std::string> LinuxVolumes::findName(const std::string& path) const {
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
    const std::optional<Mount> mount = mountOf(*mountInfo, real == "." ? "/" : "/" + real.native());
    if (!mount) {
        return std::nullopt;
    }
    if (mount->source.starts_with('/')) {
        if (std::optional<std::string> label = labelOfDevice(root_, mount->source)) {
            return label;
        }
    }
    return mount->mountPoint;
}

}  // namespace tarnwick::platform
