#pragma once
// The charts that join their values by lines and fill under them: TKXCustomLineChart (the
// base of line, area, point, scatter and shape charts, with its point building and its two
// draw passes), TKXLineChart, TKXAreaChart, and the pen class of the line charts.
//
// A line or area chart keeps its values in rising X (its collection is sorted on X), so
// that a zoomed chart walks only the values from FirstIndex to LastIndex, one beyond each
// edge of the view. A value is joined to the one before it by a segment that has the later
// value's look (colour, selection, visibility, scale): a hidden value leaves a gap where
// the segment ending at it would be. A value whose X or Y is not a finite number has no
// place at all and breaks the line on both sides.
//
// Drawing runs in two passes over the same segments: the shadow (in the panel's
// ChartShadow brush and pen, on a shifted rectangle, without labels or value colours) when
// the chart is in a panel whose shadow is visible, then the chart itself.

#include <climits>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kxcharts/charts/KXXYChartValues.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// --- Enumerations ---

// How two neighbouring values are joined.
enum TLineChartStyle : uint8_t {
  lsStraight,       // a straight segment
  lsStepHorizontal, // across first: the corner at (X of the later, Y of the earlier)
  lsStepVertical,   // up or down first: the corner at (X of the earlier, Y of the later)
  lsSmooth,         // a smooth curve through the points, one piece per value in its look
  lsBezier          // one smooth curve over all points in the chart's colours
};
KX_ENUM_NAMES(TLineChartStyle, "lsStraight", "lsStepHorizontal", "lsStepVertical", "lsSmooth",
              "lsBezier")

enum TLineOrientation : uint8_t { loHorizontal, loVertical };
KX_ENUM_NAMES(TLineOrientation, "loHorizontal", "loVertical")
using TLineOrientations = TSet<TLineOrientation>;

// --- TKXLineChartPen ---

// The pen of the line charts: stored against a width of 2, the width they give it.
class TKXLineChartPen : public TPen {
  KX_CLASS(TKXLineChartPen, TPen)

public:
  TKXLineChartPen() = default;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXCustomLineChart ---

class TKXCustomLineChart : public TKXChart {
  KX_CLASS(TKXCustomLineChart, TKXChart)

public:
  // Where a value that is not a finite number lies: nowhere. GetValuePoint and BuildPoints
  // answer it for such a value; no pixel arithmetic produces it.
  static constexpr TPoint NoPoint{INT32_MIN, INT32_MIN};

protected:
  TLineChartStyle FLineStyle = lsStraight;
  // The last point joins back to the first; no property sets it (the scatter chart does).
  bool FCloseLine = false;
  TBasicCharts FLineChartElements;
  // While true, SetOptions drops coReservedFlag from every set.
  bool FEnforceSingleOption = true;
  bool FReducedDrawing = true;

private:
  // Polylines that continue one another with the same pen wait here to be stroked as one
  // path: a million segments cost one stroke per run of one look, not one each.
  struct TStrokeRun {
    TCanvas* Canvas = nullptr;
    TCanvasPoints Points;
    TColor Color = clBlack;
    int32_t Width = 1;
    TPenStyle Style = psSolid;
    // Part of it was reduced per pixel column: it runs mostly up and down columns.
    bool Columns = false;
  };
  TStrokeRun FRun;
  // The points of the segment being drawn, kept so that the walk allocates nothing.
  TCanvasPoints FSegment;
  // The vertices of a reduced run, kept for the same reason.
  TCanvasPoints FReduced;
  // How far a label stands above its value in this pass (the height of a line of the
  // pass's font); -1 until the first label of the pass measures it.
  int32_t FLabelLift = -1;

public:
  explicit TKXCustomLineChart(TComponent* AOwner) : TKXChart(AOwner) {}

  // --- Properties ---
  TLineChartStyle LineStyle() const { return FLineStyle; }
  void SetLineStyle(TLineChartStyle Value);
  // Which of line and area are drawn; both draws areas whose outline is the line.
  TBasicCharts LineChartElements() const { return FLineChartElements; }
  void SetLineChartElements(TBasicCharts Value);
  bool EnforceSingleOption() const { return FEnforceSingleOption; }
  void SetEnforceSingleOption(bool Value) { FEnforceSingleOption = Value; }
  bool CloseLine() const { return FCloseLine; }
  // Whether runs of values that look alike are drawn per pixel column (see DrawLine) rather
  // than segment by segment; the picture is the same (see the README for the antialiased
  // edges), the cost follows the columns. True by default; not stored.
  bool ReducedDrawing() const { return FReducedDrawing; }
  void SetReducedDrawing(bool Value);
  TKX2DChartValues* Values() const {
    return static_cast<TKX2DChartValues*>(TKXCustomChart::Values());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctLine; }

  // --- Operations ---

  // The pixel of a value in Rect: X on the horizontal axis, Y (with the stacking offset)
  // on the vertical one. NoPoint when either number is not finite or an axis is missing.
  TPoint GetValuePoint(const TKXChartValue* Value, const TRect& Rect) const;
  // The row an area fills down (or up) to: the bottom of Rect. Where the vertical axis
  // shows its origin, the origin's row.
  virtual int32_t AreaBaseline(const TRect& Rect) const;
  // One point per value from First to Last (FirstIndex to LastIndex, widened by one value
  // on each side where the collection has one when they are less than two apart, as a
  // curve needs neighbours), and the first point again when the line is closed. A value
  // that is not a finite number gives NoPoint.
  virtual TCanvasPoints BuildPoints(const TRect& Rect, int32_t& First, int32_t& Last) const;
  // The polyline or polygon of the segment from Prev to Cur into Points (2 to 5 points):
  // with the area element, from the baseline under Prev to the baseline under Cur; a step
  // style puts its corner between. The curve styles answer as the straight one.
  virtual void GetPoints(const TPoint& Prev, const TPoint& Cur, const TRect& Rect,
                         TCanvasPoints& Points) const;

  // --- Overrides ---
  // Drops coReservedFlag while EnforceSingleOption holds.
  void SetOptions(TChartOptions Value) override;
  // From another line chart: line style and elements, then what the base copies.
  void Assign(const TPersistent* Source) override;

protected:
  // The segments of the whole chart: the curve styles through DrawSmoothline; else the
  // first value (which places its label and, with an area, the left edge), then an area or
  // a line segment for each later value in view, and the closing segment. With
  // ReducedDrawing, a run of values that all look alike (plain in the sense of
  // TKXValueSummary, one colour, no labels, the pen in pmCopy) is drawn through the few
  // vertices per pixel column that ReduceLineRun keeps, each pair of them as a segment of
  // the run's look; the values between such runs go segment by segment.
  virtual void DrawLine(TCanvas* Canvas, const TRect& Rect, bool Shadow);
  // The line segment from (X, Y) to Value in its look, and its label; (X, Y) becomes the
  // value's point, drawn or not.
  void DrawLine(TCanvas* Canvas, const TKX2DChartValue* Value, const TRect& Rect, int32_t& X,
                int32_t& Y, bool Shadow);
  // The same as an area polygon down to the baseline, filled in the value's look and
  // outlined in the chart's pen.
  virtual void DrawArea(TCanvas* Canvas, const TKX2DChartValue* Value, const TRect& Rect,
                        int32_t& X, int32_t& Y, bool Shadow);
  // The curve styles: lsBezier one curve in the chart's colours, lsSmooth one piece of the
  // curve per value in its look. Nothing with no elements.
  virtual void DrawSmoothline(TCanvas* Canvas, const TRect& Rect, bool Shadow);
  // One piece of the smooth curve for Value, its label at LabelPoint.
  void DrawSmoothSegment(TCanvas* Canvas, const TKX2DChartValue* Value, const TPoint& LabelPoint,
                         std::span<const TPoint> Piece, bool Shadow);
  // Where every segment and piece reaches the canvas: Polygon of Points when Fill, else
  // Polyline, in the canvas's present pen and brush. A polyline that starts where the one
  // before ended, in the same pen (pmCopy), joins it into one path, which is stroked when
  // the look changes, the line breaks, a fill or a label comes, or the pass ends
  // (FlushSegments). An override that draws by itself calls FlushSegments first.
  virtual void DrawSegment(TCanvas* Canvas, std::span<const TPoint> Points, bool Fill);
  // Strokes the joined polylines that wait, in the pen they were given.
  void FlushSegments();

  // Pen width 2, EnforceSingleOption, Options without coReservedFlag, values sorted on X.
  void InitializeChart() override;
  // A TKXLineChartPen.
  TOwned<TPen> CreatePen() override;
  // TKX2DChartValues of TKX2DChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Five values with captions, in one bracket; nothing while loading.
  void CreatePreviewValues() override;
  // Nothing unless the collection holds more than one value; the shadow pass, then the
  // chart's own.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // Options against 1811.
  void DefineProperties(TFiler& Filer) override;
  // The same span as the base finds, by halving rather than a walk over the values, when
  // they are sorted rising on the axis's dimension (NaNs last).
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;

private:
  // The pen (and, with Fill, the brush) of Value's segment, outside the shadow pass.
  void ApplyValueLook(TCanvas* Canvas, const TKX2DChartValue* Value, bool Fill, bool Shadow);
  // Whether this pass may reduce runs at all.
  bool CanReduce(const TCanvas* Canvas, bool Shadow) const;
  // The values From..To (plain, one look) reduced, from (X, Y) on; (X, Y) becomes the
  // point of To.
  void DrawReducedRun(TCanvas* Canvas, const TKXValueSummary& Summary, int32_t From, int32_t To,
                      const TRect& Rect, int32_t& X, int32_t& Y, bool Fill, bool Shadow);
  // Steps 2 to 4 of a value's segment, shared by DrawLine and DrawArea.
  void DrawValueSegment(TCanvas* Canvas, const TKX2DChartValue* Value, TPoint Prev,
                        const TPoint& Cur, const TRect& Rect, bool Fill, bool Shadow);
  // The value's label above Point, after what waits to be stroked.
  void DrawValueLabel(TCanvas* Canvas, const TKX2DChartValue* Value, const TPoint& Point);
  // The smooth pieces of the unbroken run Points[From..To) of what BuildPoints gave from
  // value First.
  void DrawSmoothRun(TCanvas* Canvas, std::span<const TPoint> Points, size_t From, size_t To,
                     int32_t First, const TRect& Rect, bool Shadow);
};

// --- TKXLineChart ---

// A line through the values; its Color is the colour of its pen.
class TKXLineChart : public TKXCustomLineChart {
  KX_CLASS(TKXLineChart, TKXCustomLineChart)

public:
  using TKXCustomLineChart::TKXCustomLineChart;

  using TKXCustomLineChart::GetColor;
  TColor GetColor() const override;
  void SetColor(TColor Value) override;

protected:
  // The line element, coZoomPen.
  void InitializeChart() override;
  // Options against 1939, LineStyle.
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXAreaChart ---

// The area under the values, filled in the brush colour (or each value's).
class TKXAreaChart : public TKXCustomLineChart {
  KX_CLASS(TKXAreaChart, TKXCustomLineChart)

public:
  using TKXCustomLineChart::TKXCustomLineChart;

  static TKXChartType GetChartType() { return ctArea; }

protected:
  // The area element.
  void InitializeChart() override;
  // LineStyle.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
