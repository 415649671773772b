// SPDX-License-Identifier: MIT
#include "services/process_ranking.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>

namespace tarnwick {
namespace {

/// Sorts only as many samples as are shown: the rest of some thousand processes stays unsorted.
template <class Key>
std::vector<AppProcessInfo> top(const std::vector<AppProcessInfo>& samples, int limit, Key key) {
    std::vector<const AppProcessInfo*> order;
    order.reserve(samples.size());
    for (const AppProcessInfo& sample : samples) {
        order.push_back(&sample);
    }
    const auto count =
        std::min(static_cast<std::ptrdiff_t>(limit), static_cast<std::ptrdiff_t>(order.size()));
    std::partial_sort(order.begin(), order.begin() + count, order.end(),
                      [&key](const AppProcessInfo* a, const AppProcessInfo* b) {
                          const auto keyA = key(*a);
                          const auto keyB = key(*b);
                          // Both lie in one array: the lower address is the earlier sample.
                          return keyA != keyB ? keyA > keyB : a < b;
                      });
    std::vector<AppProcessInfo> first;
    first.reserve(static_cast<std::size_t>(count));
    std::transform(order.begin(), order.begin() + count, std::back_inserter(first),
                   [](const AppProcessInfo* sample) { return *sample; });
    return first;
}

}  // namespace

bool isWorthKeeping(double cpuUsage, std::uint64_t memoryUsage) {
    return !(cpuUsage < kMinimumCPUUsage) || memoryUsage >= kMinimumMemoryUsage;
}

std::vector<AppProcessInfo> topByCPU(const std::vector<AppProcessInfo>& samples, int limit) {
    return top(samples, limit, [](const AppProcessInfo& sample) {
        return std::isnan(sample.cpuUsage) ? -std::numeric_limits<double>::infinity()
                                           : sample.cpuUsage;
    });
}

std::vector<AppProcessInfo> topByMemory(const std::vector<AppProcessInfo>& samples, int limit) {
    return top(samples, limit, [](const AppProcessInfo& sample) { return sample.memoryUsage; });
}

}  // namespace tarnwick
