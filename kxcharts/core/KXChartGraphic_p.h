#pragma once
// Rectangle arithmetic the graphic elements share: in 64 bits and clamped back, so that no
// caller's rectangle makes an edge overflow.

#include <algorithm>
#include <cstdint>

#include "kxcharts/toolkit/graphics/KXGraphics.h"

namespace kx::graphic {

inline int32_t AddClamped(int32_t A, int64_t B) {
  return static_cast<int32_t>(std::clamp<int64_t>(int64_t(A) + B, INT32_MIN, INT32_MAX));
}

// The extent of a side, within the range of CanvasRound's results.
inline int32_t Extent(int32_t From, int32_t To) {
  return static_cast<int32_t>(
      std::clamp<int64_t>(int64_t(To) - From, -KXMaxCanvasInt, KXMaxCanvasInt));
}

} // namespace kx::graphic
