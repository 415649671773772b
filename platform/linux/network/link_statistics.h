// 64-bit byte counters of all network links in one round trip to the kernel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "platform/network_interfaces.h"

struct mnl_socket;

namespace tarnwick::platform {

/// Asks rtnetlink. The socket is opened at the first question and kept until one fails. One thread
/// at a time.
class LinkStatistics final : public NetworkInterfaces {
 public:
    /// Asks up to three times while links come or go during the answer.
    std::optional<InterfaceTable> interfaceCounters() override;

 private:
    struct Close {
        void operator()(mnl_socket* socket) const;
    };

    bool open();
    bool ask();
    /// The next datagram of the answer; absent on failure, among them a buffer that is too small,
    /// which is then a larger one.
    std::optional<std::span<const std::byte>> receive();
    /// The whole answer to the last question; absent with `worthAnother` where asking again helps.
    std::optional<InterfaceTable> answer(bool& worthAnother);

    std::unique_ptr<mnl_socket, Close> socket_;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t bufferSize_ = 0;
    std::uint32_t sequence_ = 0;
    /// Links in the last table: the expected size of the next.
    std::size_t expected_ = 0;
};

}  // namespace tarnwick::platform
