// Finding the graphics cards of a machine.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/graphics/graphics_card.h"

namespace tarnwick::platform {

/// The devices of the DRM cards below a root by their numbers, then the graphics processors of
/// NVIDIA's driver that have no DRM card, by their places on the bus. Wakes no card.
std::vector<GraphicsDevice> findGraphicsDevices(const std::string& root);

}  // namespace tarnwick::platform
