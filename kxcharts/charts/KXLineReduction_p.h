#pragma once
// The reduced drawing of a line through many values: per pixel column, instead of every
// segment, the few vertices whose polyline covers the same pixels. All segments that fall
// in one column are vertical (their ends share the column's X), so together they cover the
// span from the highest to the lowest point there, and they meet the neighbouring columns
// only at the column's first and last point. The vertices kept are: the first point, the
// two ends of the span in the order that leaves the first point the way the first segment
// does, a third turn when needed so that the last point is reached from the side the last
// segment reaches it from, and the last point. The joins at the column's edges are then
// the same as those of the full polyline, and a turn back inside a column adds no pixel.

#include <cstdint>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXValueSummary_p.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// Where a value's numbers land: the chart's two axes on Rect, Y lifted by YOffset (a
// stacking offset). The same arithmetic as the chart's own points. A reduction maps tens
// of numbers per pixel column, so a linear axis's mapping is taken once and applied inline;
// any other scale asks the axis.
class TKXPixelMap {
public:
  TKXPixelMap(const TKXChartAxis* Horizontal, const TKXChartAxis* Vertical, const TRect& Rect,
              double YOffset);

  int32_t PX(double X) const { return FLinearX ? FX.Pixel(X) : OnAxis(FHorizontal, X); }
  int32_t PY(double Y) const {
    return FLinearY ? FY.Pixel(FYOffset + Y) : OnAxis(FVertical, FYOffset + Y);
  }

private:
  int32_t OnAxis(const TKXChartAxis* Axis, double Value) const;

  const TKXChartAxis* FHorizontal;
  const TKXChartAxis* FVertical;
  TRect FRect;
  double FYOffset;
  TKXLinearPixels FX, FY;
  bool FLinearX, FLinearY;
};

// Appends to Points the vertices that draw the values From..To of Summary (all plain, with
// finite numbers, sorted on X) after the point Points ends with (which Points must hold):
// a polyline through them covers the pixels of the polyline through every value. Equal
// neighbours are not repeated.
void ReduceLineRun(const TKXValueSummary& Summary, int32_t From, int32_t To, const TKXPixelMap& Map,
                   TCanvasPoints& Points);

} // namespace kx
