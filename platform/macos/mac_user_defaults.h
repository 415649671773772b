// The user's defaults of this application.
#pragma once

#include "platform/user_defaults.h"

namespace tarnwick::platform {

/// `NSUserDefaults` `standardUserDefaults`.
class MacUserDefaults final : public UserDefaults {
 public:
    std::optional<DefaultsValue> object(std::string_view key) override;
    void set(std::string_view key, const DefaultsValue& value) override;
    bool contains(std::string_view key) override;
};

}  // namespace tarnwick::platform
