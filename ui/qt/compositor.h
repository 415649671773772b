// Whether windows may be see-through.
#pragma once

namespace tarnwick::qt {

/// True if a compositor blends translucent windows with what is behind them. On X11: while any
/// program owns the compositing manager's selection; without X11 always. Checked at each call.
bool hasCompositor();

}  // namespace tarnwick::qt
