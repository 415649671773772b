// NVIDIA's management library, loaded while the program runs.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tarnwick::platform {

class NvmlLibrary;

/// The library may be missing, and may fail at any time; both are normal. One thread at a time.
class Nvml {
 public:
    /// `library` is the name or path that the dynamic loader takes; empty for none.
    explicit Nvml(std::string library);
    Nvml(const Nvml&) = delete;
    Nvml& operator=(const Nvml&) = delete;
    ~Nvml();

    /// A card while it is asked. Sessions of one library share its connection to the driver, which
    /// ends with the last of them, so that nothing of the program keeps a card awake.
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

    /// Loads the library on first use and connects to the driver. Null where that fails or there is
    /// no such card. No session may outlive this object.
    std::unique_ptr<Session> open(const std::string& slot);

 private:
    const std::string name_;
    std::unique_ptr<NvmlLibrary> library_;
    int sessions_ = 0;
};

}  // namespace tarnwick::platform
