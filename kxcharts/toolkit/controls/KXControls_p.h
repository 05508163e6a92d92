#pragma once
// What the controls' own sources share.

#include <cstdint>

#include "kxcharts/toolkit/graphics/KXCanvas.h"

namespace kx {

// Width rings of a lit frame just inside R: top and left edges in Top, right and bottom
// edges in Bottom (which owns both far corners). R shrinks by Width on each side.
void Frame3D(TCanvas* Canvas, TRect& R, TColor Top, TColor Bottom, int32_t Width);

} // namespace kx
