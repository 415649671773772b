// SPDX-License-Identifier: MIT
// NVIDIA's management library, loaded at run time.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace tarnwick::platform {

class NvmlLibrary;

/// The library may be missing, and may fail at any time; both are normal. Any thread, also for
/// sessions; calls take turns, so they wait for a driver that hangs.
class Nvml {
 public:
    /// `library` is the name or path that the dynamic loader takes; empty for none.
    explicit Nvml(std::string library);
    Nvml(const Nvml&) = delete;
    Nvml& operator=(const Nvml&) = delete;
    ~Nvml();

    /// A card while it is read. All sessions of one library share its connection to the driver. The
    /// connection ends with the last session, so that the program keeps no card awake.
    class Session {
     public:
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;
        ~Session();

        /// Percent of the last sampling period in which something ran. Absent on failure.
        std::optional<double> utilization() const;
        /// Empty on failure.
        std::string name() const;
        /// Absent on failure and with drivers that do not tell.
        std::optional<std::int64_t> coreCount() const;

     private:
        friend class Nvml;
        Session(Nvml& owner, void* device) : owner_(owner), device_(device) {}

        Nvml& owner_;
        void* const device_;
    };

    /// Loads the library on the first call and connects to the driver. Null if that fails or there
    /// is no such card. Requires: this object outlives its sessions.
    std::unique_ptr<Session> open(const std::string& slot);

 private:
    const std::string name_;
    std::mutex lock_;
    // Guarded by lock_.
    std::unique_ptr<NvmlLibrary> library_;
    int sessions_ = 0;
};

}  // namespace tarnwick::platform
