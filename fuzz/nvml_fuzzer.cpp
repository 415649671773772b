// SPDX-License-Identifier: MIT
// Any results and values as the answers of NVIDIA's management library.
//
// Each nine bytes of an input are one set of answers, and what is asked of the reader then. The
// whole input is also the name of the card.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>

#include "fuzz/fuzzer.h"
#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/nvml.h"
#include "tests/platform/linux/graphics/loaded_test_nvml.h"

using tarnwick::fuzz::require;
using tarnwick::platform::GpuSource;

namespace {

constexpr std::size_t kAnswers = 9;

/// Mostly success, which lets the conversation go on.
int resultIn(std::uint8_t byte, unsigned bit) {
    return ((byte >> bit) & 1) != 0 ? byte : 0;
}

void check(GpuSource& source, double now, const std::string& name) {
    const auto utilization = source.read(now);
    if (utilization) {
        require(utilization->device >= 0 && utilization->device <= 100);
        require(!utilization->renderer);
    }
    const std::string model = source.modelName();
    require(name.starts_with(model));
    require(model.find('\0') == std::string::npos);
    require(source.coreCount().value_or(0) >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::span bytes(data, size);
    // The library cuts it where the caller's room ends.
    const std::string name(reinterpret_cast<const char*>(data), size);
    // Stays loaded, and with it what counts its edges.
    static const tarnwick::platform::testing::LoadedTestNvml library;
    *library.operator->() = {};
    library->name = name.c_str();
    {
        tarnwick::platform::Nvml nvml(TARNWICK_TEST_NVML);
        const std::unique_ptr<GpuSource> sources[] = {makeNvidiaSource(nvml, "0000:01:00.0"),
                                                      makeNvidiaSource(nvml, "0000:02:00.0")};
        double now = 0;
        for (; bytes.size() >= kAnswers; bytes = bytes.subspan(kAnswers)) {
            library->initializeResult = resultIn(bytes[0], 7);
            library->deviceResult = resultIn(bytes[0], 6);
            library->utilizationResult = resultIn(bytes[0], 5);
            library->nameResult = resultIn(bytes[0], 4);
            library->coreCountResult = resultIn(bytes[0], 3);
            std::memcpy(&library->utilization, &bytes[1], sizeof(library->utilization));
            std::memcpy(&library->coreCount, &bytes[4], sizeof(library->coreCount));
            now += bytes[8];
            GpuSource& source = *sources[bytes[0] & 1U];
            if ((bytes[0] & 2U) != 0) {
                source.rest();
            }
            check(source, now, name);
            require(library->connections() <= 1);
        }
    }
    // Nothing keeps the card awake.
    require(library->connections() == 0);
    return 0;
}
