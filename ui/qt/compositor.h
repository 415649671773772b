// Whether windows may be see-through.
#pragma once

namespace tarnwick::qt {

/// Something mixes translucent windows with what lies behind them. On X11 that is so while somebody
/// owns the compositing manager's selection; asked anew at each call.
bool hasCompositor();

}  // namespace tarnwick::qt
