// SPDX-License-Identifier: MIT
// Owners of system resources: each destructor gives its resource back.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <cstddef>
#include <cstdint>
#include <mach/mach.h>
#include <span>

namespace tarnwick::platform {

/// A send right to the host's port.
class HostPort {
 public:
    HostPort() : port_(mach_host_self()) {}
    HostPort(const HostPort&) = delete;
    HostPort& operator=(const HostPort&) = delete;
    ~HostPort() { mach_port_deallocate(mach_task_self(), port_); }

    host_t get() const { return port_; }

 private:
    const host_t port_;
};

/// An array of words that the kernel has put into this process's memory; the pointer may be null.
class KernelWords {
 public:
    KernelWords(integer_t* words, std::size_t count) : words_(words), count_(count) {}
    KernelWords(const KernelWords&) = delete;
    KernelWords& operator=(const KernelWords&) = delete;
    ~KernelWords() {
        if (words_ != nullptr) {
            vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(words_),
                          count_ * sizeof(integer_t));
        }
    }

    std::span<const integer_t> get() const { return {words_, count_}; }

 private:
    integer_t* const words_;
    const std::size_t count_;
};

/// An object of the device registry, or an iterator over some; may be none.
class RegistryObject {
 public:
    explicit RegistryObject(io_object_t object) : object_(object) {}
    RegistryObject(const RegistryObject&) = delete;
    RegistryObject& operator=(const RegistryObject&) = delete;
    ~RegistryObject() {
        if (object_ != IO_OBJECT_NULL) {
            IOObjectRelease(object_);
        }
    }

    explicit operator bool() const { return object_ != IO_OBJECT_NULL; }
    io_object_t get() const { return object_; }

 private:
    const io_object_t object_;
};

/// A reference that a function with Create or Copy in its name has given; may be null.
template <class Reference>
class CFOwned {
 public:
    explicit CFOwned(Reference reference) : reference_(reference) {}
    CFOwned(const CFOwned&) = delete;
    CFOwned& operator=(const CFOwned&) = delete;
    ~CFOwned() {
        if (reference_ != nullptr) {
            CFRelease(reference_);
        }
    }

    explicit operator bool() const { return reference_ != nullptr; }
    Reference get() const { return reference_; }

 private:
    const Reference reference_;
};

}  // namespace tarnwick::platform
