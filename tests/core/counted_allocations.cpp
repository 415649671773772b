// SPDX-License-Identifier: MIT
#include "tests/core/counted_allocations.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> liveBlocks = 0;
std::atomic<std::int64_t> liveBytes = 0;

/// In front of every block; keeps the block aligned for every type.
struct alignas(std::max_align_t) Header {
    std::size_t size;
};

void* allocateOrNull(std::size_t size) noexcept {
    auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header) {
        return nullptr;
    }
    header->size = size;
    ++liveBlocks;
    liveBytes += static_cast<std::int64_t>(size);
    return header + 1;
}

void* allocate(std::size_t size) {
    void* block = allocateOrNull(size);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

void release(void* block) noexcept {
    if (block) {
        Header* header = static_cast<Header*>(block) - 1;
        --liveBlocks;
        liveBytes -= static_cast<std::int64_t>(header->size);
        std::free(header);
    }
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    release(block);
}

namespace tarnwick::platform::testing {

Alive Alive::now() {
    return {liveBlocks, liveBytes};
}

}  // namespace tarnwick::platform::testing
