// Finding the graphics cards of a machine.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/graphics/graphics_card.h"

namespace tarnwick::platform {

/// The devices of the DRM cards below `root`, in the order of their numbers. Graphics processors of
/// NVIDIA's driver without a DRM card follow, in the order of their places on the bus. Wakes no
/// card.
std::vector<GraphicsDevice> findGraphicsDevices(const std::string& root);

}  // namespace tarnwick::platform
