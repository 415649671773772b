// SPDX-License-Identifier: MIT
// Checks the numbers and words that the portable code shares with the desktop against the system's
// headers. It has no code: the checks happen when it is compiled.
#import <AppKit/AppKit.h>
#import <Carbon/Carbon.h>
#include <IOKit/ps/IOPSKeys.h>
#include <string_view>

#include "platform/hot_keys.h"
#include "platform/login_service.h"
#include "platform/macos/login_item_service.h"
#include "platform/process_table.h"
#include "settings/hot_key_service.h"
#include "settings/key_codes.h"
#include "settings/shortcut.h"

namespace tarnwick {
namespace {

// Hot keys.
static_assert(platform::hot_key_status::kSuccess == noErr);
static_assert(platform::hot_key_status::kExists == eventHotKeyExistsErr);
static_assert(platform::hot_key_status::kEventNotHandled == eventNotHandledErr);
static_assert(platform::hot_key_status::kUnimplemented == unimpErr);
static_assert(platform::hot_key_modifier::kCommand == cmdKey);
static_assert(platform::hot_key_modifier::kShift == shiftKey);
static_assert(platform::hot_key_modifier::kOption == optionKey);
static_assert(platform::hot_key_modifier::kControl == controlKey);
static_assert(HotKeyService::kSignature == 'TRNW');
static_assert(kEventClassKeyboard == 'keyb' && kEventHotKeyPressed == 5);
static_assert(kEventParamDirectObject == '----' && typeEventHotKeyID == 'hkid');
static_assert(sizeof(EventHotKeyID) == 8);

// Modifiers in their stored form.
static_assert(modifier_flag::kShift == NSEventModifierFlagShift);
static_assert(modifier_flag::kControl == NSEventModifierFlagControl);
static_assert(modifier_flag::kOption == NSEventModifierFlagOption);
static_assert(modifier_flag::kCommand == NSEventModifierFlagCommand);
static_assert((modifier_flag::kMask & ~NSEventModifierFlagDeviceIndependentFlagsMask) == 0);
static_assert(NSEventModifierFlagDeviceIndependentFlagsMask == 0xFFFF0000);

// Keys.
static_assert(key_code::kReturn == kVK_Return && key_code::kL == kVK_ANSI_L);
static_assert(key_code::kTab == kVK_Tab && key_code::kSpace == kVK_Space);
static_assert(key_code::kCommand == kVK_Command && key_code::kRightCommand == kVK_RightCommand);
static_assert(key_code::kShift == kVK_Shift && key_code::kRightShift == kVK_RightShift);
static_assert(key_code::kOption == kVK_Option && key_code::kRightOption == kVK_RightOption);
static_assert(key_code::kControl == kVK_Control && key_code::kRightControl == kVK_RightControl);
static_assert(key_code::kCapsLock == kVK_CapsLock && key_code::kFunction == kVK_Function);
static_assert(key_code::kDelete == kVK_Delete && key_code::kForwardDelete == kVK_ForwardDelete);
static_assert(key_code::kEscape == kVK_Escape);
static_assert(key_code::kF1 == kVK_F1 && key_code::kF2 == kVK_F2 && key_code::kF3 == kVK_F3);
static_assert(key_code::kF4 == kVK_F4 && key_code::kF5 == kVK_F5 && key_code::kF6 == kVK_F6);
static_assert(key_code::kF7 == kVK_F7 && key_code::kF8 == kVK_F8 && key_code::kF9 == kVK_F9);
static_assert(key_code::kF10 == kVK_F10 && key_code::kF11 == kVK_F11 && key_code::kF12 == kVK_F12);
static_assert(key_code::kHome == kVK_Home && key_code::kEnd == kVK_End);
static_assert(key_code::kPageUp == kVK_PageUp && key_code::kPageDown == kVK_PageDown);
static_assert(key_code::kLeftArrow == kVK_LeftArrow && key_code::kRightArrow == kVK_RightArrow);
static_assert(key_code::kDownArrow == kVK_DownArrow && key_code::kUpArrow == kVK_UpArrow);

// Start at login.
static_assert(static_cast<NSInteger>(platform::LoginServiceStatus::notRegistered) ==
              SMAppServiceStatusNotRegistered);
static_assert(static_cast<NSInteger>(platform::LoginServiceStatus::enabled) ==
              SMAppServiceStatusEnabled);
static_assert(static_cast<NSInteger>(platform::LoginServiceStatus::requiresApproval) ==
              SMAppServiceStatusRequiresApproval);
static_assert(static_cast<NSInteger>(platform::LoginServiceStatus::notFound) ==
              SMAppServiceStatusNotFound);

// Applications and the machine.
static_assert(platform::RunningApplication::kRegularPolicy == NSApplicationActivationPolicyRegular);
static_assert(platform::RunningApplication::kAccessoryPolicy ==
              NSApplicationActivationPolicyAccessory);
static_assert(NSProcessInfoThermalStateNominal == 0 && NSProcessInfoThermalStateFair == 1 &&
              NSProcessInfoThermalStateSerious == 2 && NSProcessInfoThermalStateCritical == 3);

// Words of the power source descriptions.
static_assert(std::string_view(kIOPSTypeKey) == "Type");
static_assert(std::string_view(kIOPSInternalBatteryType) == "InternalBattery");
static_assert(std::string_view(kIOPSCurrentCapacityKey) == "Current Capacity");
static_assert(std::string_view(kIOPSIsChargingKey) == "Is Charging");
static_assert(std::string_view(kIOPSPowerSourceStateKey) == "Power Source State");
static_assert(std::string_view(kIOPSACPowerValue) == "AC Power");
static_assert(std::string_view(kIOPSTimeToEmptyKey) == "Time to Empty");
static_assert(std::string_view(kIOPSTimeToFullChargeKey) == "Time to Full Charge");
static_assert(std::string_view(kIOPSBatteryHealthConditionKey) == "BatteryHealthCondition");

}  // namespace
}  // namespace tarnwick
