// SPDX-License-Identifier: MIT
#include "platform/linux/network/linux_network_interfaces.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {

namespace {

constexpr std::size_t kUsualListSize = 4096;
constexpr double kLongestChoice = 30;
// More bytes than all interfaces together have moved. A driver that subtracts too much tells more,
// which would neither fit into the sum of all interfaces nor make a rate.
constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 62;
// A bit of the flags, and one of the hardware types of links.
constexpr std::uint32_t kPointToPoint = 0x10;
constexpr std::uint32_t kTypeOfPPP = 512;
// The forms in which a radio hands out all that it hears.
constexpr std::uint32_t kFirstTypeOfMonitor = 801;
constexpr std::uint32_t kLastTypeOfMonitor = 803;

// Room for a number and its line break. A full buffer would mean a longer text.
using NumberText = std::array<char, 32>;

std::size_t quarterOfDescriptors() {
    rlimit descriptors{};
    return ::getrlimit(RLIMIT_NOFILE, &descriptors) == 0
               ? static_cast<std::size_t>(descriptors.rlim_cur / 4)
               : 0;
}

// Content of an open file; empty if it cannot be read.
std::string_view textOf(const FileDescriptor& file, NumberText& buffer) {
    ssize_t size = -1;
    do {
        size = ::pread(file.get(), buffer.data(), buffer.size(), 0);
    } while (size < 0 && errno == EINTR);
    return std::string_view(buffer.data(), size < 0 ? 0 : static_cast<std::size_t>(size));
}

std::optional<std::uint32_t> flagsIn(const FileDescriptor& file) {
    if (!file.isOpen()) {
        return std::nullopt;
    }
    NumberText buffer;
    return parseInterfaceFlags(textOf(file, buffer));
}

// The number in a small file of an interface.
std::optional<std::uint32_t> numberInFile(const FileDescriptor& folder, const std::string& path) {
    const FileDescriptor file(folder, path.c_str());
    NumberText buffer;
    return file.isOpen() ? parseInterfaceNumber(textOf(file, buffer)) : std::nullopt;
}

// Whether the interface has a link to its device. The link is there as long as the device is.
bool hasDevice(const FileDescriptor& folder, const std::string& name) {
    struct stat link {};
    return ::fstatat(folder.get(), (name + "/device").c_str(), &link, AT_SYMLINK_NOFOLLOW) == 0;
}

// The last part of what a symbolic link leads to; empty if there is none.
std::string targetName(const FileDescriptor& folder, const std::string& path) {
    std::array<char, 512> target;
    const ssize_t size = ::readlinkat(folder.get(), path.c_str(), target.data(), target.size());
    const std::string_view text(target.data(), size < 0 ? 0 : static_cast<std::size_t>(size));
    return std::string(text.substr(text.rfind('/') + 1));
}

// Whether the bytes of an interface with a device are also those of another one: it listens to a
// radio beside the interface that uses it, or it is the host's end of a guest's interface (Xen).
bool isSecondOfDevice(const FileDescriptor& folder, const std::string& name,
                      std::optional<std::uint32_t> type) {
    return (type >= kFirstTypeOfMonitor && type <= kLastTypeOfMonitor) ||
           targetName(folder, name + "/device/subsystem") == "xen-backend";
}

}  // namespace

LinuxNetworkInterfaces::LinuxNetworkInterfaces(const std::string& root,
                                               std::function<double()> sinceBoot, Logger logger)
    : root_(root),
      sinceBoot_(std::move(sinceBoot)),
      logger_(logger),
      list_(belowRoot(root, "proc/net/dev"), kUsualListSize, KeptFile::Delivery::inParts) {}

std::optional<InterfaceTable> LinuxNetworkInterfaces::interfaceCounters() {
    const std::lock_guard guard(lock_);
    const auto text = list_.read();
    const auto devices = text ? parseNetworkDevices(*text) : std::nullopt;
    if (!devices || !follow(*devices)) {
        mayHang_ = true;
        return std::nullopt;
    }
    mayHang_ = list_.isServed() || isFolderServed_;
    const double age = sinceBoot_() - chosenAt_;
    if (readFlags() || age < 0 || age >= kLongestChoice) {
        choose();
    }
    InterfaceTable interfaces;
    interfaces.reserve(devices->size());
    std::uint64_t sum = 0;
    for (std::size_t place = 0; place < devices->size(); ++place) {
        const NetworkDevice& device = (*devices)[place];
        if (links_[place].counts && areTrue(device, sum, links_[place])) {
            sum += std::max(device.received, device.sent);
            interfaces[links_[place].index] = {
                .received = device.received, .sent = device.sent, .uses32BitCounters = false};
        }
    }
    return interfaces;
}

bool LinuxNetworkInterfaces::areTrue(const NetworkDevice& device, std::uint64_t others,
                                     Link& link) const {
    const bool areTrue = std::max(device.received, device.sent) <= kMostBytes - others;
    if (!areTrue && !std::exchange(link.isReported, true)) {
        logger_.error("Impossible counters of network interface " + link.name);
    }
    return areTrue;
}

bool LinuxNetworkInterfaces::readFlags() {
    bool changed = false;
    for (std::size_t place = 0; place < links_.size(); ++place) {
        const std::optional<std::uint32_t> flags = currentFlags(place);
        Link& link = links_[place];
        changed = changed || flags != link.lastFlags;
        link.lastFlags = flags;
    }
    return changed;
}

LinkNature LinuxNetworkInterfaces::natureOf(const Link& link) const {
    LinkNature nature{.name = link.name,
                      .index = link.index,
                      .below = link.index,
                      .hasDevice = hasDevice(folder_, link.name),
                      .isPointToPoint = (*link.lastFlags & kPointToPoint) != 0};
    const std::optional<std::uint32_t> type = numberInFile(folder_, link.name + "/type");
    nature.hasDevice = nature.hasDevice && !isSecondOfDevice(folder_, link.name, type);
    if (nature.hasDevice) {
        // The name of the interface that has taken this one in.
        const std::string master = targetName(folder_, link.name + "/master");
        nature.isPartOfDevice = !master.empty() && hasDevice(folder_, master);
        nature.below = numberInFile(folder_, link.name + "/iflink").value_or(link.index);
    } else if (nature.isPointToPoint) {
        nature.isPPP = type == kTypeOfPPP;
    }
    return nature;
}

void LinuxNetworkInterfaces::choose() {
    std::vector<Link*> active;
    std::vector<LinkNature> natures;
    for (Link& link : links_) {
        link.counts = false;
        if (link.lastFlags && isCounted(*link.lastFlags)) {
            active.push_back(&link);
            natures.push_back(natureOf(link));
        }
    }
    std::string routes;
    std::string pppoe;
    if (needsRoutes(natures)) {
        routes = readWholeFile(belowRoot(root_, "proc/net/route")).value_or("");
        pppoe = readWholeFile(belowRoot(root_, "proc/net/pppoe")).value_or("");
    }
    const std::vector<bool> counts = linksThatCount(natures, routes, pppoe);
    for (std::size_t place = 0; place < active.size(); ++place) {
        active[place]->counts = counts[place];
    }
    chosenAt_ = sinceBoot_();
}

bool LinuxNetworkInterfaces::follow(const std::vector<NetworkDevice>& devices) {
    // An open file follows its interface to a new name. The kernel lists interfaces by index, so
    // interfaces that swapped their names have swapped their places. Therefore the same names in
    // the same order are the same interfaces, or new ones; for new ones reading the old files
    // fails.
    if (folder_.isOpen() &&
        std::ranges::equal(links_, devices, {}, &Link::name, &NetworkDevice::name)) {
        return true;
    }
    links_.clear();
    folder_ = FileDescriptor(belowRoot(root_, "sys/class/net"));
    if (!folder_.isOpen()) {
        return false;
    }
    isFolderServed_ = folder_.isServed();
    mostKept_ = isFolderServed_ ? 0 : quarterOfDescriptors();
    links_.reserve(devices.size());
    for (const NetworkDevice& device : devices) {
        links_.push_back({.name = std::string(device.name)});
    }
    return true;
}

void LinuxNetworkInterfaces::open(Link& link) const {
    link.flags.close();
    if (const auto index = numberInFile(folder_, link.name + "/ifindex")) {
        if (*index != std::exchange(link.index, *index)) {
            link.lastFlags.reset();
        }
        link.flags = FileDescriptor(folder_, (link.name + "/flags").c_str());
    }
}

std::optional<std::uint32_t> LinuxNetworkInterfaces::currentFlags(std::size_t place) {
    Link& link = links_[place];
    std::optional<std::uint32_t> flags = flagsIn(link.flags);
    if (!flags) {
        // The file is not open, or its interface is gone and another one may have its name and
        // place now.
        open(link);
        flags = flagsIn(link.flags);
    }
    if (place >= mostKept_) {
        link.flags.close();
    }
    return flags;
}

}  // namespace tarnwick::platform
