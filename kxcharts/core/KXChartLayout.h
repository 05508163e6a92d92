#pragma once
// The layout rules that a panel and a chart standing alone share: margins, and the room the
// sides of a plot keep for its axes.

#include <initializer_list>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/objects/KXObjectRect.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// (3, 4, 3, 4): left, top, right, bottom.
TRect DefaultMarginsRect();
// ARect moved inward by the four sides, as pixels or as per cent of ARect's width
// (left, right) and height (top, bottom).
TRect ModifyRectByMargins(const TRect& ARect, const TKXObjectRect* Margins, bool Pixels);

// An axis and the side of the plot it takes room on.
struct TKXAxisSide {
  TKXChartAxis* Axis; // nil: the side keeps the room of no axis
  TKXChartAxisLocation Side;
};
// The room the sides of a plot in ARect keep for their axes, as margins (left, top, right,
// bottom): a visible axis outside the plot (InwardPosition 0) takes the width (left, right)
// or the height (top, bottom) it measures; every other side keeps 10 pixels. Each axis is
// measured in ARect first (CalculateBounds), in the order given.
TRect MeasureAxisRoom(TCanvas* Canvas, const TRect& ARect, std::initializer_list<TKXAxisSide> Axes);

} // namespace kx
