// SPDX-License-Identifier: MIT
#include "tests/platform/linux/network/network_namespace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <sched.h>
#include <stdexcept>
#include <stdio.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace tarnwick::platform::testing {

namespace {

bool writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path);
    file << content;
    return static_cast<bool>(file.flush());
}

void require(bool holds, const std::string& what) {
    if (!holds) {
        throw std::runtime_error(what + ": " + std::strerror(errno));
    }
}

// The files of /sys show the network of the process that mounted them.
bool mountOwnSys() {
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("sysfs", "/sys", "sysfs", 0, nullptr) == 0;
}

// What a program prints; empty when it cannot be run or fails.
std::string outputOf(const char* command) {
    FILE* const pipe = ::popen(command, "r");
    require(pipe != nullptr, command);
    std::string text;
    std::array<char, 4096> part;
    while (const std::size_t size = ::fread(part.data(), 1, part.size(), pipe)) {
        text.append(part.data(), size);
    }
    return ::pclose(pipe) == 0 ? text : "";
}

}  // namespace

std::string enterEmptyNetwork() {
    if (outputOf("ip -V 2>&1").empty()) {
        return "ip is not installed";
    }
    if (::unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) {
        // Without that right a process may still do it as root of a user namespace of its own.
        const std::string user = std::to_string(::geteuid());
        const std::string group = std::to_string(::getegid());
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) != 0) {
            return std::string("this machine allows no private network: ") + std::strerror(errno);
        }
        writeFile("/proc/self/setgroups", "deny");
        if (!writeFile("/proc/self/uid_map", "0 " + user + " 1") ||
            !writeFile("/proc/self/gid_map", "0 " + group + " 1")) {
            return std::string("this machine allows no private users: ") + std::strerror(errno);
        }
    }
    if (!mountOwnSys()) {
        return std::string("this machine allows no private /sys: ") + std::strerror(errno);
    }
    // With IPv6, new interfaces would announce themselves, and their counters would be
    // unpredictable.
    writeFile("/proc/sys/net/ipv6/conf/default/disable_ipv6", "1");
    return "";
}

void ip(const std::string& commands) {
    FILE* const pipe = ::popen("ip -batch -", "w");
    require(pipe != nullptr, "ip");
    const std::size_t written = ::fwrite(commands.data(), 1, commands.size(), pipe);
    if (::pclose(pipe) != 0 || written != commands.size()) {
        throw std::runtime_error("ip: " + commands);
    }
}

std::string cable(const std::string& name, const std::string& peer) {
    return "link add \"" + name + "\" type veth peer name \"" + peer + "\"\nlink set \"" + name +
           "\" up\nlink set \"" + peer + "\" up\n";
}

std::uint32_t indexOf(const std::string& name) {
    const unsigned index = ::if_nametoindex(name.c_str());
    require(index != 0, name);
    return index;
}

void sendFrames(const std::string& name, std::size_t size, int count) {
    const int socket = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
    require(socket >= 0, "packet socket");
    // Straight to the interface: its queue drops what comes before the kernel has got round to
    // opening it, which may be a while after the interface went up.
    const int straight = 1;
    require(::setsockopt(socket, SOL_PACKET, PACKET_QDISC_BYPASS, &straight, sizeof straight) == 0,
            "packet socket");
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_ifindex = static_cast<int>(indexOf(name));
    address.sll_halen = 6;
    // To everybody, of the type that is kept free for experiments.
    std::vector<unsigned char> frame(size, 0);
    std::fill_n(frame.begin(), 6, static_cast<unsigned char>(0xFF));
    frame[12] = 0x88;
    frame[13] = 0xB5;
    bool sent = true;
    for (int turn = 0; turn < count; ++turn) {
        sent = sent && ::sendto(socket, frame.data(), frame.size(), 0,
                                reinterpret_cast<const sockaddr*>(&address),
                                sizeof address) == static_cast<ssize_t>(size);
    }
    ::close(socket);
    require(sent, "sending on " + name);
}

void sendToItself(std::size_t size) {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    require(socket >= 0, "socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    const std::vector<char> bytes(size, 'x');
    const bool sent =
        ::bind(socket, any, length) == 0 && ::getsockname(socket, any, &length) == 0 &&
        ::sendto(socket, bytes.data(), bytes.size(), 0, any, length) == static_cast<ssize_t>(size);
    ::close(socket);
    require(sent, "sending to the machine itself");
}

InterfaceTable toolsTable() {
    InterfaceTable table;
    for (const nlohmann::json& link : nlohmann::json::parse(outputOf("ip -json -s link"))) {
        const nlohmann::json& flags = link.at("flags");
        if (std::find(flags.begin(), flags.end(), "UP") == flags.end()) {
            continue;
        }
        const nlohmann::json& figures = link.at("stats64");
        table[link.at("ifindex").get<std::uint32_t>()] = {
            .received = figures.at("rx").at("bytes").get<std::uint64_t>(),
            .sent = figures.at("tx").at("bytes").get<std::uint64_t>(),
            .uses32BitCounters = false};
    }
    return table;
}

}  // namespace tarnwick::platform::testing
