// SPDX-License-Identifier: MIT
// Any bytes as the fixed-size kernel records: a record is decoded exactly when all its bytes are
// there, and its fields hold the numbers that lie at their places.
#include <cstring>
#include <span>

#include "fuzz/fuzzer.h"
#include "platform/macos/readers/kernel_records.h"

namespace {

using tarnwick::fuzz::require;

template <class T>
bool liesAt(std::span<const std::byte> bytes, std::size_t offset, T number) {
    return std::memcmp(bytes.data() + offset, &number, sizeof number) == 0;
}

void checkVMStatistics(std::span<const std::byte> bytes) {
    const auto pages = tarnwick::decodeVMStatistics(bytes);
    require(pages.has_value() == (bytes.size() >= 248));
    if (pages) {
        require(liesAt(bytes, 0, pages->free_count));
        require(liesAt(bytes, 12, pages->wire_count));
        require(liesAt(bytes, 88, pages->purgeable_count));
        require(liesAt(bytes, 92, pages->speculative_count));
        require(liesAt(bytes, 128, pages->compressor_page_count));
        require(liesAt(bytes, 136, pages->external_page_count));
        require(liesAt(bytes, 140, pages->internal_page_count));
    }
}

void checkSwapUsage(std::span<const std::byte> bytes) {
    const auto swap = tarnwick::decodeSwapUsage(bytes);
    require(swap.has_value() == (bytes.size() >= 32));
    if (swap) {
        require(liesAt(bytes, 0, swap->total));
        require(liesAt(bytes, 8, swap->available));
        require(liesAt(bytes, 16, swap->used));
    }
}

void checkTimeValue(std::span<const std::byte> bytes) {
    const auto time = tarnwick::decodeTimeValue(bytes);
    require(time.has_value() == (bytes.size() >= 16));
    if (time) {
        require(liesAt(bytes, 0, time->seconds));
        require(liesAt(bytes, 8, time->microseconds));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::byte> bytes = std::as_bytes(std::span(data, size));
    checkVMStatistics(bytes);
    checkSwapUsage(bytes);
    checkTimeValue(bytes);
    return 0;
}
