// SPDX-License-Identifier: MIT
// Checks every number that the portable code uses to call the kernel and to read its records
// against the system's headers. It has no code: the checks happen when it is compiled.
#include <cerrno>
#include <cstddef>
#include <libproc.h>
#include <mach/mach.h>
#include <net/if.h>
#include <net/if_var.h>
#include <net/route.h>
#include <sys/proc_info.h>
#include <sys/socket.h>
#include <sys/sysctl.h>
#include <sys/time.h>
#include <time.h>

#include "platform/macos/readers/interface_counter_reader.h"
#include "platform/macos/readers/kernel_records.h"
#include "platform/macos/readers/process_records.h"
#include "platform/macos/readers/routing_messages.h"
#include "platform/network_interfaces.h"
#include "services/processor_loads.h"

namespace tarnwick {
namespace {

static_assert(KERN_SUCCESS == 0);
static_assert(CLOCK_MONOTONIC_RAW == 4);

// Ticks of the processors.
static_assert(kProcessorCPULoadInfoFlavour == PROCESSOR_CPU_LOAD_INFO);
static_assert(kProcessorLoadSize == sizeof(::processor_cpu_load_info));
static_assert(kProcessorLoadSize == PROCESSOR_CPU_LOAD_INFO_COUNT * sizeof(integer_t));
static_assert(offsetof(::processor_cpu_load_info, cpu_ticks) == 0);
static_assert(CPU_STATE_MAX == 4 && CPU_STATE_USER == 0 && CPU_STATE_SYSTEM == 1 &&
              CPU_STATE_IDLE == 2 && CPU_STATE_NICE == 3);

// Page counts. The buffer has room for more than the record of today.
static_assert(kHostVMInfo64Flavour == HOST_VM_INFO64);
static_assert(kVMStatisticsSize >= sizeof(vm_statistics64));
static_assert(kHostVMInfo64Count >= HOST_VM_INFO64_COUNT);
static_assert(kVMStatisticsSize == kHostVMInfo64Count * sizeof(integer_t));
static_assert(kFreeCountOffset == offsetof(vm_statistics64, free_count));
static_assert(kWireCountOffset == offsetof(vm_statistics64, wire_count));
static_assert(kPurgeableCountOffset == offsetof(vm_statistics64, purgeable_count));
static_assert(kSpeculativeCountOffset == offsetof(vm_statistics64, speculative_count));
static_assert(kCompressorPageCountOffset == offsetof(vm_statistics64, compressor_page_count));
static_assert(kExternalPageCountOffset == offsetof(vm_statistics64, external_page_count));
static_assert(kInternalPageCountOffset == offsetof(vm_statistics64, internal_page_count));
static_assert(sizeof(vm_statistics64::free_count) == 4 && sizeof(vm_statistics64::wire_count) == 4);
static_assert(sizeof(vm_statistics64::purgeable_count) == 4 &&
              sizeof(vm_statistics64::speculative_count) == 4);
static_assert(sizeof(vm_statistics64::compressor_page_count) == 4);
static_assert(sizeof(vm_statistics64::external_page_count) == 4 &&
              sizeof(vm_statistics64::internal_page_count) == 4);

// Swap.
static_assert(kSwapUsageSize == sizeof(xsw_usage));
static_assert(kSwapTotalOffset == offsetof(xsw_usage, xsu_total));
static_assert(kSwapAvailableOffset == offsetof(xsw_usage, xsu_avail));
static_assert(kSwapUsedOffset == offsetof(xsw_usage, xsu_used));
static_assert(sizeof(xsw_usage::xsu_total) == 8 && sizeof(xsw_usage::xsu_avail) == 8 &&
              sizeof(xsw_usage::xsu_used) == 8);

// Boot time.
static_assert(kBootTimeName == std::array<std::int32_t, 2>{CTL_KERN, KERN_BOOTTIME});
static_assert(kTimeValueSize == sizeof(timeval));
static_assert(kTimeSecondsOffset == offsetof(timeval, tv_sec) && sizeof(timeval::tv_sec) == 8);
static_assert(kTimeMicrosecondsOffset == offsetof(timeval, tv_usec) &&
              sizeof(timeval::tv_usec) == 4);

// Process table.
static_assert(kProcessTableName ==
              std::array<std::int32_t, 4>{CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0});
static_assert(kProcessRecordSize == sizeof(kinfo_proc));
static_assert(kProcessIdentifierOffset == offsetof(kinfo_proc, kp_proc.p_pid) &&
              sizeof(extern_proc::p_pid) == 4);
static_assert(kProcessCommandOffset == offsetof(kinfo_proc, kp_proc.p_comm) &&
              kProcessCommandSize == sizeof(extern_proc::p_comm));
static_assert(kExecutablePathSize == PROC_PIDPATHINFO_MAXSIZE);
static_assert(kTaskInformationFlavour == PROC_PIDTASKINFO);
static_assert(kTaskInformationSize == sizeof(proc_taskinfo) &&
              kTaskInformationSize == PROC_PIDTASKINFO_SIZE);
static_assert(kResidentSizeOffset == offsetof(proc_taskinfo, pti_resident_size) &&
              sizeof(proc_taskinfo::pti_resident_size) == 8);
static_assert(kTotalUserOffset == offsetof(proc_taskinfo, pti_total_user) &&
              sizeof(proc_taskinfo::pti_total_user) == 8);
static_assert(kTotalSystemOffset == offsetof(proc_taskinfo, pti_total_system) &&
              sizeof(proc_taskinfo::pti_total_system) == 8);

// Interface list.
static_assert(kInterfaceListName ==
              std::array<std::int32_t, 6>{CTL_NET, PF_ROUTE, 0, 0, NET_RT_IFLIST2, 0});
static_assert(kMessageLengthOffset == offsetof(if_msghdr2, ifm_msglen) &&
              sizeof(if_msghdr2::ifm_msglen) == 2);
static_assert(kMessageVersionOffset == offsetof(if_msghdr2, ifm_version) &&
              sizeof(if_msghdr2::ifm_version) == 1);
static_assert(kMessageTypeOffset == offsetof(if_msghdr2, ifm_type) &&
              sizeof(if_msghdr2::ifm_type) == 1);
static_assert(kMessageHeaderSize == offsetof(if_msghdr2, ifm_addrs));
static_assert(kMessageVersion == RTM_VERSION);
static_assert(kInterfaceInfo2Type == RTM_IFINFO2);
static_assert(kInterfaceInfo2Size == sizeof(if_msghdr2));
static_assert(kInterfaceFlagsOffset == offsetof(if_msghdr2, ifm_flags) &&
              sizeof(if_msghdr2::ifm_flags) == 4);
static_assert(kInterfaceIndexOffset == offsetof(if_msghdr2, ifm_index) &&
              sizeof(if_msghdr2::ifm_index) == 2);
static_assert(offsetof(if_msghdr2, ifm_data) == 32);
static_assert(kInputBytesOffset == offsetof(if_msghdr2, ifm_data.ifi_ibytes) &&
              sizeof(if_data64::ifi_ibytes) == 8);
static_assert(kOutputBytesOffset == offsetof(if_msghdr2, ifm_data.ifi_obytes) &&
              sizeof(if_data64::ifi_obytes) == 8);
static_assert(kOutOfMemory == ENOMEM);

// Interface addresses.
static_assert(platform::kInterfaceUp == IFF_UP && platform::kInterfaceLoopback == IFF_LOOPBACK);
static_assert(kLinkLayerFamily == AF_LINK);
static_assert(sizeof(if_data::ifi_ibytes) == 4 && sizeof(if_data::ifi_obytes) == 4);

}  // namespace
}  // namespace tarnwick
