// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/nvml.h"

#include <array>
#include <dlfcn.h>
#include <utility>

namespace tarnwick::platform {

namespace {

constexpr int kSuccess = 0;

/// Percentages over the library's last sampling period.
struct UtilizationRates {
    unsigned int processor;
    unsigned int memory;
};

}  // namespace

/// The functions of the loaded library that the program calls, with its own declarations: the
/// vendor's header is not needed to build it.
class NvmlLibrary {
 public:
    /// Null if the library is missing or lacks a required function.
    static std::unique_ptr<NvmlLibrary> load(const std::string& name) {
        void* const handle = ::dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            return nullptr;
        }
        auto library = std::make_unique<NvmlLibrary>(handle);
        const bool isComplete = library->initialize && library->shutDown && library->deviceOfSlot &&
                                library->utilizationRates;
        return isComplete ? std::move(library) : nullptr;
    }

    explicit NvmlLibrary(void* handle) : handle_(handle) {
        find(initialize, "nvmlInit_v2");
        find(shutDown, "nvmlShutdown");
        find(deviceOfSlot, "nvmlDeviceGetHandleByPciBusId_v2");
        find(utilizationRates, "nvmlDeviceGetUtilizationRates");
        find(name, "nvmlDeviceGetName");
        find(coreCount, "nvmlDeviceGetNumGpuCores");
    }
    NvmlLibrary(const NvmlLibrary&) = delete;
    NvmlLibrary& operator=(const NvmlLibrary&) = delete;
    ~NvmlLibrary() { ::dlclose(handle_); }

    int (*initialize)() = nullptr;
    int (*shutDown)() = nullptr;
    int (*deviceOfSlot)(const char* slot, void** device) = nullptr;
    int (*utilizationRates)(void* device, UtilizationRates* rates) = nullptr;
    int (*name)(void* device, char* text, unsigned int size) = nullptr;
    int (*coreCount)(void* device, unsigned int* count) = nullptr;

 private:
    template <class Function>
    void find(Function& function, const char* symbol) {
        function = reinterpret_cast<Function>(::dlsym(handle_, symbol));
    }

    void* const handle_;
};

Nvml::Nvml(std::string library) : name_(std::move(library)) {}

Nvml::~Nvml() = default;

std::unique_ptr<Nvml::Session> Nvml::open(const std::string& slot) {
    const std::lock_guard guard(lock_);
    if (!library_ && !name_.empty()) {
        library_ = NvmlLibrary::load(name_);
    }
    if (!library_ || (sessions_ == 0 && library_->initialize() != kSuccess)) {
        return nullptr;
    }
    void* device = nullptr;
    if (library_->deviceOfSlot(slot.c_str(), &device) != kSuccess) {
        if (sessions_ == 0) {
            library_->shutDown();
        }
        return nullptr;
    }
    ++sessions_;
    return std::unique_ptr<Session>(new Session(*this, device));
}

Nvml::Session::~Session() {
    const std::lock_guard guard(owner_.lock_);
    if (--owner_.sessions_ == 0) {
        owner_.library_->shutDown();
    }
}

std::optional<double> Nvml::Session::utilization() const {
    const std::lock_guard guard(owner_.lock_);
    UtilizationRates rates{};
    if (owner_.library_->utilizationRates(device_, &rates) != kSuccess || rates.processor > 100) {
        return std::nullopt;
    }
    return rates.processor;
}

std::string Nvml::Session::name() const {
    const std::lock_guard guard(owner_.lock_);
    // Room for the longest name that the library gives, with its final zero.
    std::array<char, 96> text{};
    const auto function = owner_.library_->name;
    if (function == nullptr || function(device_, text.data(), text.size() - 1) != kSuccess) {
        return {};
    }
    return text.data();
}

std::optional<std::int64_t> Nvml::Session::coreCount() const {
    const std::lock_guard guard(owner_.lock_);
    unsigned int count = 0;
    const auto function = owner_.library_->coreCount;
    if (function == nullptr || function(device_, &count) != kSuccess) {
        return std::nullopt;
    }
    return count;
}

}  // namespace tarnwick::platform
