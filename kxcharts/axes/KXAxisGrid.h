#pragma once
// TKXAxisGrid: what an axis puts across and along the plot: major and minor grid lines,
// major and minor ticks, and one origin line. It chooses no positions of its own: the
// axis's label pass hands it the major interval and the highest major value, and it walks
// down from there through AxisToPixel, so grid lines and labels fall together. Its
// visibility is kept equal to the axis's aoShowGrid option, both ways.

#include <cstdint>

#include "kxcharts/core/KXChartGraphic.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

namespace kx {

class TKXChartAxis;

enum TAxisDrawGridOption : uint8_t {
  agoMajorGrid, // major grid lines
  agoMinorGrid, // minor grid lines
  agoTicks,     // major and minor ticks
  agoOrigin     // the origin line
};
KX_ENUM_NAMES(TAxisDrawGridOption, "agoMajorGrid", "agoMinorGrid", "agoTicks", "agoOrigin")
using TAxisDrawGridOptions = TSet<TAxisDrawGridOption>;

class TKXAxisGrid : public TKXChartGraphic {
  KX_CLASS(TKXAxisGrid, TKXChartGraphic)

  // The axis writes the interval, the start and the room of the axis line in its passes.
  friend class TKXChartAxis;

private:
  int32_t FInnerLength = 0;
  TOwned<TPen> FMinorGridPen;
  TOwned<TPen> FGridPen;
  int32_t FMinorTickCount = 3;
  TKXChartAxis* FAxis;
  int32_t FTickLength = 4;
  int32_t FMinorTickLength = 2;
  double FMajorGridInterval = 0.0;
  int32_t FAxisLine = 0;
  TAxisDrawGridOptions FDrawOptions{agoMajorGrid, agoTicks, agoOrigin};
  TOwned<TPen> FTicksPen;
  double FMajorGridStart = 0.0;
  double FOrigin = 0.0;
  TOwned<TPen> FOriginPen;

public:
  // AOwner is the axis that owns the grid (nil for a grid on its own: Clone, streaming).
  explicit TKXAxisGrid(TKXChartAxis* AOwner = nullptr) : FAxis(AOwner) {}

  // --- Properties ---

  TKXChartAxis* Axis() const { return FAxis; }
  // Minor divisions between two major marks, less one; at least 0.
  int32_t MinorTickCount() const { return FMinorTickCount; }
  void SetMinorTickCount(int32_t Value);
  TAxisDrawGridOptions DrawOptions() const { return FDrawOptions; }
  void SetDrawOptions(TAxisDrawGridOptions Value);
  TPen* GridPen() const { return FGridPen.get(); }
  void SetGridPen(const TPen* Value) { FGridPen->Assign(Value); }
  TPen* MinorGridPen() const { return FMinorGridPen.get(); }
  void SetMinorGridPen(const TPen* Value) { FMinorGridPen->Assign(Value); }
  TPen* TicksPen() const { return FTicksPen.get(); }
  void SetTicksPen(const TPen* Value) { FTicksPen->Assign(Value); }
  TPen* OriginPen() const { return FOriginPen.get(); }
  void SetOriginPen(const TPen* Value) { FOriginPen->Assign(Value); }
  // Pixels by which major ticks reach out of the plot; at least 0.
  int32_t TickLength() const { return FTickLength; }
  void SetTickLength(int32_t Value);
  // Pixels by which minor ticks reach out of the plot; at least 0.
  int32_t MinorTickLength() const { return FMinorTickLength; }
  void SetMinorTickLength(int32_t Value);
  // Pixels by which major ticks reach into the plot; at least 0.
  int32_t InnerLength() const { return FInnerLength; }
  void SetInnerLength(int32_t Value);
  // The value of the origin line.
  double Origin() const { return FOrigin; }
  void SetOrigin(double Value);
  // Outputs of the axis's last pass: the step between major marks and the highest major
  // value (both left alone by an axis without labels), and the room the axis line set
  // aside for ticks.
  double MajorGridInterval() const { return FMajorGridInterval; }
  double MajorGridStart() const { return FMajorGridStart; }
  int32_t AxisLine() const { return FAxisLine; }

  // --- Operations ---

  // Visible, agoTicks, and a major tick of some length (outside or inside the plot).
  bool ShouldDrawMajorTicks() const;
  // Visible, agoTicks, a minor tick length above 0 and at least one minor division.
  bool ShouldDrawMinorTicks() const;
  // agoOrigin, an axis, and Origin strictly inside the axis's zoomed range.
  virtual bool IsOriginVisible() const;

  // From another grid: tick count, draw options, the three lengths and the grid, minor grid
  // and tick pens; not Origin nor OriginPen.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // Walks one stretch of the axis, from Value down by the major interval while AMin <=
  // Value: major grid line and tick for values up to AMax, and the minor marks below each
  // major value that fall inside ARect. Point carries the axis line's position across the
  // axis; GridVector runs from it across the plot; the tick rectangles hold the two ends of
  // a tick as offsets from its mark. IncX and IncY carry the steps along the axis and are
  // not read here.
  virtual void DrawSegment(TCanvas* Canvas, const TRect& ARect, double AMin, double AMax,
                           double Value, double MinorStep, TPointF Point, TPoint GridVector,
                           bool MajorTicks, bool MinorTicks, const TRect& MajorTickRect,
                           const TRect& MinorTickRect, double IncX, double IncY);
  // Nothing without a zoomed range, a major interval or ticks due; otherwise the whole
  // zoomed range in one segment, or cycle by cycle from the top on a log-cycle axis (each
  // cycle with a step of its own), and the origin line.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // Reports the change, then puts aoShowGrid of the axis in step with Visible.
  void VisibleChanged() override;
  // Makes the four pens: the minor grid in system colour 11, the grid dotted, ticks gray.
  void Initialize() override;
  // Every pen reports to SenderChanged.
  void InitializeEvents() override;
  // MinorTickCount, DrawOptions, GridPen, MinorGridPen, TicksPen, TickLength,
  // MinorTickLength, InnerLength, Origin, OriginPen, Opacity, Visible.
  void DefineProperties(TFiler& Filer) override;

private:
  // Where the marks of a rectangle start and how far they reach (see DrawSegment).
  struct TGeometry {
    double MinorStep = 0.0;
    TPointF Point;
    TPoint GridVector;
    TRect MajorTickRect;
    TRect MinorTickRect;
    double IncX = 0.0;
    double IncY = 0.0;
  };
  TGeometry Geometry(const TRect& R, int32_t AxisLine) const;
  // The rectangle marks are mapped on: the whole rectangle of the pass, also while a
  // log-cycle pass hands DrawSegment the band of one cycle.
  TRect FMapRect;
};

} // namespace kx
