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

#include <algorithm>
#include <cstdint>

#include "kxcharts/charts/KXValueSummary.h"
#include "kxcharts/toolkit/KXGraphics.h"
#include "kxcharts/toolkit/KXTypes.h"

namespace kx {

class TKXChartAxis;

// Where a value's numbers land: the chart's two axes on Rect, Y lifted by YOffset (a
// stacking offset). The same arithmetic as the chart's own points. A reduction maps tens
// of numbers per pixel column, so a linear axis is mapped here, inline, by the axis's own
// expression evaluated in the same order (which gives its pixel to the bit); any other
// scale asks the axis.
class TKXPixelMap {
public:
  TKXPixelMap(const TKXChartAxis* Horizontal, const TKXChartAxis* Vertical, const TRect& Rect,
              double YOffset);

  int32_t PX(double X) const { return FX.Linear ? FX.Pixel(X) : OnAxis(FHorizontal, X); }
  int32_t PY(double Y) const {
    return FY.Linear ? FY.Pixel(FYOffset + Y) : OnAxis(FVertical, FYOffset + Y);
  }

private:
  // One axis's linear mapping, its constants taken once.
  struct TLinear {
    bool Linear = false;
    bool Empty = false;  // Lo == Hi: the fraction is the distance from Lo
    bool Halves = false; // a range wider than a double holds, measured in halves
    bool Vertical = false;
    bool Reversed = false;
    double Lo = 0, Size = 0, HalfLo = 0, HalfSize = 0, Start = 0, Length = 0;
    int64_t Ends = 0; // the span's start and end added up

    void Take(const TKXChartAxis* Axis, const TRect& Rect);
    int32_t Pixel(double Value) const {
      const double Fraction = Halves  ? (Value / 2 - HalfLo) / HalfSize
                              : Empty ? Value - Lo
                                      : (Value - Lo) / Size;
      int32_t P = CanvasRound(Fraction * Length + Start);
      if (Vertical) P = Mirror(P);
      if (Reversed) P = Mirror(P);
      return P;
    }
    // The axis mirrors by rounding E - (P - S) in doubles; that is a whole number held
    // exactly, so the rounding only saturates it, which integers do without conversions.
    int32_t Mirror(int32_t P) const {
      return static_cast<int32_t>(std::clamp<int64_t>(Ends - P, -KXMaxCanvasInt, KXMaxCanvasInt));
    }
  };

  int32_t OnAxis(const TKXChartAxis* Axis, double Value) const;

  const TKXChartAxis* FHorizontal;
  const TKXChartAxis* FVertical;
  TRect FRect;
  double FYOffset;
  TLinear FX, FY;
};

// Appends to Points the vertices that draw the values From..To of Summary (all plain, with
// finite numbers, sorted on X) after the point Points ends with (which Points must hold):
// a polyline through them covers the pixels of the polyline through every value. Equal
// neighbours are not repeated.
void ReduceLineRun(const TKXValueSummary& Summary, int32_t From, int32_t To, const TKXPixelMap& Map,
                   TCanvasPoints& Points);

} // namespace kx
