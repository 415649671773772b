#include "platform/linux/network/linux_network_interfaces.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

namespace tarnwick::platform {

namespace {

constexpr std::size_t kUsualListSize = 4096;

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

}  // namespace

LinuxNetworkInterfaces::LinuxNetworkInterfaces(const std::string& root)
    : folderPath_(belowRoot(root, "sys/class/net")),
      list_(belowRoot(root, "proc/net/dev"), kUsualListSize, KeptFile::Delivery::inParts) {}

std::optional<InterfaceTable> LinuxNetworkInterfaces::interfaceCounters() {
    const std::lock_guard guard(lock_);
    const auto text = list_.read();
    const auto devices = text ? parseNetworkDevices(*text) : std::nullopt;
    if (!devices || !follow(*devices)) {
        return std::nullopt;
    }
    InterfaceTable interfaces;
    interfaces.reserve(devices->size());
    for (std::size_t place = 0; place < devices->size(); ++place) {
        const auto flags = currentFlags(place);
        if (flags && isCounted(*flags)) {
            const NetworkDevice& device = (*devices)[place];
            interfaces[links_[place].index] = {
                .received = device.received, .sent = device.sent, .uses32BitCounters = false};
        }
    }
    return interfaces;
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
    folder_ = FileDescriptor(folderPath_);
    if (!folder_.isOpen()) {
        return false;
    }
    mostKept_ = quarterOfDescriptors();
    links_.reserve(devices.size());
    for (const NetworkDevice& device : devices) {
        links_.push_back({.name = std::string(device.name)});
    }
    return true;
}

void LinuxNetworkInterfaces::open(Link& link) const {
    link.flags.close();
    NumberText buffer;
    const FileDescriptor indexFile(folder_, (link.name + "/ifindex").c_str());
    const auto index = indexFile.isOpen() ? parseInterfaceIndex(textOf(indexFile, buffer))
                                          : std::optional<std::uint32_t>();
    if (index) {
        link.index = *index;
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
