#include "tests/platform/linux/network/network_namespace.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <libmnl/libmnl.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <linux/rtnetlink.h>
#include <linux/veth.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sstream>
#include <stdexcept>
#include <stdio.h>
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

// A message about a link, and the kernel's word on it.
class LinkRequest {
 public:
    LinkRequest(std::uint16_t type, std::uint16_t flags) {
        header_ = mnl_nlmsg_put_header(space_.data());
        header_->nlmsg_type = type;
        header_->nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | NLM_F_ACK | flags);
        header_->nlmsg_seq = 1;
        link_ = static_cast<ifinfomsg*>(mnl_nlmsg_put_extra_header(header_, sizeof(ifinfomsg)));
    }

    nlmsghdr* header() { return header_; }
    ifinfomsg* link() { return link_; }

    /// 0, or the error code.
    int send() {
        const std::unique_ptr<mnl_socket, int (*)(mnl_socket*)> socket(
            mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC), mnl_socket_close);
        require(socket && mnl_socket_bind(socket.get(), 0, MNL_SOCKET_AUTOPID) == 0, "netlink");
        require(mnl_socket_sendto(socket.get(), header_, header_->nlmsg_len) > 0, "netlink");
        alignas(nlmsghdr) std::array<char, 8192> answer;
        const ssize_t size = mnl_socket_recvfrom(socket.get(), answer.data(), answer.size());
        require(size > 0, "netlink");
        const int result = mnl_cb_run(answer.data(), static_cast<std::size_t>(size), 1,
                                      mnl_socket_get_portid(socket.get()), nullptr, nullptr);
        return result < 0 ? errno : 0;
    }
    void mustSucceed(const std::string& what) {
        errno = send();
        require(errno == 0, what);
    }

 private:
    alignas(nlmsghdr) std::array<char, 1024> space_{};
    nlmsghdr* header_ = nullptr;
    ifinfomsg* link_ = nullptr;
};

void changeFlags(const std::string& name, unsigned flags) {
    LinkRequest request(RTM_NEWLINK, 0);
    request.link()->ifi_index = static_cast<int>(indexOf(name));
    request.link()->ifi_flags = flags;
    request.link()->ifi_change = IFF_UP;
    request.mustSucceed("changing " + name);
}

}  // namespace

std::string enterEmptyNetwork() {
    if (::unshare(CLONE_NEWNET) != 0) {
        // Whoever may not do that may do it as the ruler of a space of its own.
        const std::string user = std::to_string(::geteuid());
        const std::string group = std::to_string(::getegid());
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
            return std::string("this machine allows no private network: ") + std::strerror(errno);
        }
        writeFile("/proc/self/setgroups", "deny");
        if (!writeFile("/proc/self/uid_map", "0 " + user + " 1") ||
            !writeFile("/proc/self/gid_map", "0 " + group + " 1")) {
            return std::string("this machine allows no private users: ") + std::strerror(errno);
        }
    }
    // New interfaces would announce themselves, and nobody could foretell their counters.
    writeFile("/proc/sys/net/ipv6/conf/default/disable_ipv6", "1");
    return "";
}

bool addInterface(const std::string& name, const std::string& kind) {
    LinkRequest request(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
    mnl_attr_put_strz(request.header(), IFLA_IFNAME, name.c_str());
    nlattr* const information = mnl_attr_nest_start(request.header(), IFLA_LINKINFO);
    mnl_attr_put_strz(request.header(), IFLA_INFO_KIND, kind.c_str());
    mnl_attr_nest_end(request.header(), information);
    return request.send() == 0;
}

void addCable(const std::string& name, const std::string& peer) {
    LinkRequest request(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
    nlmsghdr* const header = request.header();
    mnl_attr_put_strz(header, IFLA_IFNAME, name.c_str());
    nlattr* const information = mnl_attr_nest_start(header, IFLA_LINKINFO);
    mnl_attr_put_strz(header, IFLA_INFO_KIND, "veth");
    nlattr* const data = mnl_attr_nest_start(header, IFLA_INFO_DATA);
    nlattr* const end = mnl_attr_nest_start(header, VETH_INFO_PEER);
    mnl_nlmsg_put_extra_header(header, sizeof(ifinfomsg));
    mnl_attr_put_strz(header, IFLA_IFNAME, peer.c_str());
    mnl_attr_nest_end(header, end);
    mnl_attr_nest_end(header, data);
    mnl_attr_nest_end(header, information);
    request.mustSucceed("adding " + name);
}

void removeInterface(const std::string& name) {
    LinkRequest request(RTM_DELLINK, 0);
    request.link()->ifi_index = static_cast<int>(indexOf(name));
    request.mustSucceed("removing " + name);
}

void renameInterface(const std::string& name, const std::string& newName) {
    LinkRequest request(RTM_NEWLINK, 0);
    request.link()->ifi_index = static_cast<int>(indexOf(name));
    mnl_attr_put_strz(request.header(), IFLA_IFNAME, newName.c_str());
    request.mustSucceed("renaming " + name);
}

void setUp(const std::string& name, bool up) {
    changeFlags(name, up ? static_cast<unsigned>(IFF_UP) : 0U);
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

InterfaceTable kernelsTable() {
    // Of this thread: the program's other threads may be in another network.
    std::ifstream file("/proc/thread-self/net/dev");
    std::string line;
    std::getline(file, line);
    std::getline(file, line);
    InterfaceTable table;
    while (std::getline(file, line)) {
        const std::size_t colon = line.find(':');
        const std::size_t start = line.find_first_not_of(' ');
        std::istringstream columns(line.substr(colon + 1));
        Counters counters;
        std::uint64_t other = 0;
        columns >> counters.received;
        for (int column = 1; column < 8; ++column) {
            columns >> other;
        }
        columns >> counters.sent;
        require(static_cast<bool>(columns), line);
        table[indexOf(line.substr(start, colon - start))] = counters;
    }
    return table;
}

std::optional<Counters> toolsCounters(const std::string& name) {
    FILE* const pipe = ::popen(("LC_ALL=C ip -s link show dev " + name + " 2>&1").c_str(), "r");
    require(pipe != nullptr, "ip");
    std::string text;
    std::array<char, 4096> part;
    while (const std::size_t size = ::fread(part.data(), 1, part.size(), pipe)) {
        text.append(part.data(), size);
    }
    if (::pclose(pipe) != 0) {
        return std::nullopt;
    }
    // Each direction is a line of headings and a line of figures, the bytes first.
    const auto behind = [&text](const char* heading) {
        const std::size_t line = text.find('\n', text.find(heading));
        require(line != std::string::npos, text);
        return std::strtoull(text.c_str() + line, nullptr, 10);
    };
    return Counters{.received = behind("RX:"), .sent = behind("TX:"), .uses32BitCounters = false};
}

}  // namespace tarnwick::platform::testing
