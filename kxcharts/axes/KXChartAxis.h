#pragma once
// TKXChartAxis: the scale of one side of a chart panel, and the only place where a value
// becomes a pixel and back. It holds the whole range of one value dimension (Minimum,
// Maximum), the zoomed part of it that drawing uses (ZoomMinimum, ZoomMaximum), where it
// lies on the panel's plot rectangle, and the list of charts drawn on it. An automatic
// axis only raises NeedAxisUpdate when a chart changes; it finds its range again from its
// charts (UpdateAxisValues) before it is next drawn.
//
// Four scales: linear, logarithmic (stretched towards the low end), inverse logarithmic
// (stretched towards the high end) and two composites that split range and span at their
// middles and use a simple logarithmic type in each half (LogTypeParts). Each logarithmic
// scale may also be cut into log cycles, one band per power of LogBase.
//
// TKXLocalChartAxis is the invisible axis a chart owns for when it stands alone; it maps
// on the chart's own client rectangle.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kxcharts/core/KXChartLabel.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/objects/KXLists.h"
#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXAxisGrid;
class TKXChartList;
class TKXCustomChart;
class TKXCustomChartPanel;

// --- Enumerations ---

enum TAxisOption : uint8_t {
  aoAutoMinimum, // Minimum follows the charts
  aoAutoMaximum, // Maximum follows the charts
  aoShowLabels,  // kept equal to Labels.Visible
  aoShowGrid,    // kept equal to Grid.Visible
  aoShowTitle,   // kept equal to Title.Visible
  aoReversed,    // the direction of the axis is mirrored
  aoLogarithmic
};
KX_ENUM_NAMES(TAxisOption, "aoAutoMinimum", "aoAutoMaximum", "aoShowLabels", "aoShowGrid",
              "aoShowTitle", "aoReversed", "aoLogarithmic")
using TAxisOptions = TSet<TAxisOption>;

// The side of the plot rectangle; left and right axes are vertical, and run against the
// pixel direction (low values at the bottom).
enum TKXChartAxisLocation : uint8_t { calLeft, calRight, calBottom, calTop };
KX_ENUM_NAMES(TKXChartAxisLocation, "calLeft", "calRight", "calBottom", "calTop")

// What the labels of an axis show.
enum TAxisLabelStyle : uint8_t {
  alsAuto,    // captions when the active chart wants them, numbers otherwise
  alsValue,   // numbers
  alsCaption, // the captions of the active chart's values
  alsDateTime // dates and times
};
KX_ENUM_NAMES(TAxisLabelStyle, "alsAuto", "alsValue", "alsCaption", "alsDateTime")

// --- Log cycles ---

// One cycle of a log-cycle axis: the share of a full cycle it covers and its upper bound.
// Entry 0 of TLogCycles only carries the lower bound of the first cycle, with Weight 0.
struct TLogCycle {
  double Weight = 0.0;
  double Value = 0.0;
  friend bool operator==(const TLogCycle&, const TLogCycle&) = default;
};
using TLogCycles = std::vector<TLogCycle>;

// Cuts AMin..AMax into one cycle per power of Base: entry i holds the value
// Q / Base^(Count - i), Q being the first power at or above AMax; full cycles weigh 1, the
// first and last the fraction of their linear length that lies in the range. Raises
// Exception "Illegal Value entered for log cycles!" for a bound at or below 0, and also
// for bounds, a base or powers that no cycle can be cut from (not finite, a base below 2).
TLogCycles CalcLogCycles(double AMin, double AMax, int32_t Base);

// The extent of a label text along the axis (its width on a horizontal axis, its height on
// a vertical one), for the search of a label step.
using TGetTextDimMethod = std::function<int32_t(const std::string& Text)>;

// --- TKXChartAxis ---

// Where a linear axis (or one with an empty range) puts values on one rectangle, its
// constants taken once: the mapping AxisToPixel uses for such an axis, kept by callers
// that map many values.
class TKXLinearPixels {
public:
  TKXLinearPixels() = default;
  // The range Lo..Hi on the span S..E, mirrored for a vertical and for a reversed axis.
  TKXLinearPixels(double Lo, double Hi, int32_t S, int32_t E, bool Vertical, bool Reversed);

  int32_t Pixel(double Value) const {
    const double Fraction = FHalves  ? (Value / 2 - FHalfLo) / FHalfSize
                            : FEmpty ? Value - FLo
                                     : (Value - FLo) / FSize;
    int32_t P = CanvasRound(Fraction * FLength + FStart);
    if (FVertical) P = Mirror(P);
    if (FReversed) P = Mirror(P);
    return P;
  }

private:
  // E - (P - S) is a whole number held exactly: only its saturation is left to do.
  int32_t Mirror(int32_t P) const {
    const int64_t M = FEnds - P;
    return static_cast<int32_t>(M < -KXMaxCanvasInt ? -KXMaxCanvasInt
                                : M > KXMaxCanvasInt ? KXMaxCanvasInt
                                                     : M);
  }

  bool FEmpty = false;  // Lo == Hi: the fraction is the distance from Lo
  bool FHalves = false; // a range wider than a double holds (-1e308..1e308), in halves
  bool FVertical = false;
  bool FReversed = false;
  double FLo = 0, FSize = 0, FHalfLo = 0, FHalfSize = 0, FStart = 0, FLength = 0;
  int64_t FEnds = 0; // the span's start and end added up
};

class TKXChartAxis : public TKXChartGraphicArea {
  KX_CLASS(TKXChartAxis, TKXChartGraphicArea)

  // The grid walks the axis's steps and asks for a step per log cycle.
  friend class TKXAxisGrid;

protected:
  int32_t FLogBase = 10;
  std::string FFormat = "#,##0.###";
  std::string FDateTimeFormat;
  TAxisOptions FOptions = TAxisOptions::FromBits(0x1F);
  TOwned<TKXChartLabel> FTitle;
  TOwned<TKXChartLabelMetaData> FLabels;
  double FMinimum = 0.0;
  double FMaximum = 0.0;
  int32_t FEndPosition = 100;
  int32_t FStartPosition = 0;
  int32_t FInwardPosition = 0;
  TOwned<TKXChartList> FCharts;
  TKXChartAxisLocation FLocation = calLeft;
  int32_t FMinSeparationPct = 10;
  int32_t FHeight = 0;
  int32_t FWidth = 0;
  double FMinStepIncrement = 0.0;
  int32_t FDimension = 1;
  TKXCustomChartPanel* FOwner;
  TAxisLabelStyle FLabelStyle = alsAuto;
  int32_t FTitleMargin = 3;
  bool FNeedAxisUpdate = false;
  bool FZooming = false;
  double FZoomMaximum = 0.0;
  double FZoomMinimum = 0.0;
  TOwned<TKXAxisGrid> FGrid;
  bool FIsDrawing = false;
  bool FSnapGrid = true;
  double FLabelIncrement = 0.0;
  TKXLogarithmicType FLogarithmicType = ltLogarithmic;
  int32_t FMaxLabelWidth = 0;
  bool FLogCycles = false;

private:
  // LogN(LogBase, 1) and LogN(LogBase, 11) in single precision: the ends of the logarithmic
  // curve, worked out when the base changes rather than at every mapped value.
  double FLog1 = 0.0;
  double FLog11 = 0.0;
  // The natural logarithm of LogBase in the extended precision LogN works in, so that
  // LogN(LogBase, X) takes one logarithm per value instead of two, to the same bit.
  long double FLnBase = 0.0L;
  // The cycles of the last CalcLogCycles, kept while bounds and base stay, so that mapping
  // along a log-cycle axis does not cut them afresh for every value.
  mutable TLogCycles FCycleCache;
  mutable double FCycleMin = 0.0;
  mutable double FCycleMax = 0.0;
  mutable int32_t FCycleBase = 0;
  // The span of the last rectangle mapped on: charts map all their values on one
  // rectangle, and the span costs two divisions. Cleared when positions or side change.
  mutable TRect FSpanRect;
  mutable int32_t FSpanStart = 0;
  mutable int32_t FSpanEnd = 0;
  mutable bool FSpanKnown = false;

public:
  // AOwner is the panel (nil for an axis on its own).
  explicit TKXChartAxis(TKXCustomChartPanel* AOwner = nullptr);
  ~TKXChartAxis() override;

  // --- Properties ---

  TKXCustomChartPanel* Owner() const { return FOwner; }
  // The charts drawn on this axis (not owned).
  TKXChartList* Charts() const { return FCharts.get(); }
  TKXChartAxisLocation Location() const { return FLocation; }
  // Also sets Dimension: 1 for a vertical axis, 0 for a horizontal one.
  void SetLocation(TKXChartAxisLocation Value);
  bool IsVertical() const { return FLocation == calLeft || FLocation == calRight; }
  // The value dimension the axis shows.
  int32_t Dimension() const { return FDimension; }
  // The base of the logarithmic scales and of the log cycles, stored as given: what the
  // scale uses is ScaleBase.
  int32_t LogBase() const { return FLogBase; }
  // The base the logarithmic scale and its cycles use: LogBase, or 10 where LogBase (1 or
  // below) has no logarithm. The scale itself does not depend on the base, which cancels
  // out of it; a base without a logarithm would put every value nowhere.
  int32_t ScaleBase() const { return FLogBase > 1 ? FLogBase : 10; }
  void SetLogBase(int32_t Value);
  // The number format of labels.
  const std::string& Format() const { return FFormat; }
  void SetFormat(const std::string& Value);
  // The date and time format of labels.
  const std::string& DateTimeFormat() const { return FDateTimeFormat; }
  void SetDateTimeFormat(const std::string& Value);
  // Title.Visible, Labels.Visible and Grid.Visible follow aoShowTitle, aoShowLabels and
  // aoShowGrid (and the options follow them back). Either auto option in the new set
  // raises NeedAxisUpdate.
  TAxisOptions Options() const { return FOptions; }
  void SetOptions(TAxisOptions Value);
  TKXChartLabel* Title() const { return FTitle.get(); }
  void SetTitle(const TKXChartLabel* Value);
  // The appearance of the labels; their texts come from the axis.
  TKXChartLabelMetaData* Labels() const { return FLabels.get(); }
  void SetLabels(const TKXChartLabelMetaData* Value);
  TKXAxisGrid* Grid() const { return FGrid.get(); }
  void SetGrid(const TKXAxisGrid* Value);
  // The whole range. Setting an end stores it, keeps Minimum <= Maximum and the zoomed
  // range inside (following it while not zooming), and turns that end's auto option off.
  double Minimum() const { return FMinimum; }
  void SetMinimum(double Value);
  double Maximum() const { return FMaximum; }
  void SetMaximum(double Value);
  // The zoomed range drawing uses, kept inside the whole range and in order.
  double ZoomMinimum() const { return FZoomMinimum; }
  void SetZoomMinimum(double Value);
  double ZoomMaximum() const { return FZoomMaximum; }
  void SetZoomMaximum(double Value);
  // Whether the zoomed range differs from the whole range (SameValue).
  bool Zooming() const { return FZooming; }
  // Per cent of the rectangle's extent where the axis starts and ends; Start <= End.
  int32_t StartPosition() const { return FStartPosition; }
  void SetStartPosition(int32_t Value);
  int32_t EndPosition() const { return FEndPosition; }
  void SetEndPosition(int32_t Value);
  // Per cent of the perpendicular extent by which the axis moves inward (0: outside).
  int32_t InwardPosition() const { return FInwardPosition; }
  void SetInwardPosition(int32_t Value);
  // The least gap between labels, in per cent of the axis's length; at least 0.
  int32_t MinSeparationPct() const { return FMinSeparationPct; }
  void SetMinSeparationPct(int32_t Value);
  // The least label step; at least 0.
  double MinStepIncrement() const { return FMinStepIncrement; }
  void SetMinStepIncrement(double Value);
  // A fixed label step; 0 for one found from the room the labels need.
  double LabelIncrement() const { return FLabelIncrement; }
  void SetLabelIncrement(double Value);
  TAxisLabelStyle LabelStyle() const { return FLabelStyle; }
  void SetLabelStyle(TAxisLabelStyle Value);
  // Pixels around the title.
  int32_t TitleMargin() const { return FTitleMargin; }
  void SetTitleMargin(int32_t Value);
  bool SnapGrid() const { return FSnapGrid; }
  void SetSnapGrid(bool Value);
  TKXLogarithmicType LogarithmicType() const { return FLogarithmicType; }
  void SetLogarithmicType(TKXLogarithmicType Value);
  // Whether a logarithmic scale is cut into cycles.
  bool LogCycles() const { return FLogCycles; }
  void SetLogCycles(bool Value);
  // The extent the axis takes beside the plot, from the last CalculateBounds.
  int32_t Width() const { return FWidth; }
  int32_t Height() const { return FHeight; }
  // The range must be found again before the axis is next drawn.
  bool NeedAxisUpdate() const { return FNeedAxisUpdate; }
  void SetNeedAxisUpdate(bool Value) { FNeedAxisUpdate = Value; }

  // --- Operations ---

  double SizeUnzoomed() const { return FMaximum - FMinimum; }
  double SizeZoomed() const { return FZoomMaximum - FZoomMinimum; }
  // SizeUnzoomed / SizeZoomed; 1 when the zoomed range is empty.
  double ZoomAmount() const;

  // The pixel of Value on the owner's plot rectangle (0, 0, 100, 100 without an owner).
  virtual int32_t AxisToPixel(double Value) const;
  // The pixel of Value on ChartRect, on the zoomed range, between the span's start S and
  // end E (StartPosition and EndPosition per cent along the rectangle); mirrored on a
  // vertical axis, and again with aoReversed. Linear without aoLogarithmic or on an empty
  // zoomed range: values off the range give pixels off the span. Logarithmic: values below
  // the range give its low end. Every input gives a defined pixel (NaN the start of the
  // span, huge values saturated). A log-cycle axis raises what CalcLogCycles raises.
  int32_t AxisToPixel(double Value, const TRect& ChartRect) const;
  // True for a linear scale or an empty range, with Out what AxisToPixel does on ChartRect.
  bool LinearPixels(const TRect& ChartRect, TKXLinearPixels& Out) const;
  // The value at Pixel on the owner's plot rectangle (0, 0, 100, 100 without an owner).
  virtual double PixelToAxis(int32_t Pixel, bool IgnoreZoom) const;
  // The value at Pixel on ChartRect, on the whole range with IgnoreZoom, else on the
  // zoomed one: the inverse of AxisToPixel, and pixels off the span give the end of the
  // range on that side.
  double PixelToAxis(int32_t Pixel, const TRect& ChartRect, bool IgnoreZoom) const;

  // Zooms around Center to the whole range's size divided by Amount, clamped to the
  // whole range (an end is cut, the other side stays); an Amount of 1 or less unzooms.
  void Zoom(double Center, float Amount);
  // Zooms to the values of ChartRect along this axis (Left and Right of a horizontal
  // axis, Top and Bottom of a vertical one), in either order and clamped to the range.
  void Zoom(const TRectF& ChartRect);
  // Zooms to the pixels of ClientRect along this axis, read through PixelToAxis.
  void ZoomPixelArea(const TRect& ClientRect);
  // Shows the whole range.
  void Unzoom();
  // Moves the zoomed range by Amount pixels, read on the owner's plot rectangle.
  void Pan(int32_t Amount);
  // Moves the zoomed range by Amount in axis units, keeping its size; a pan that would
  // leave the whole range stops at its end. NaN moves nothing.
  void Pan(double Amount);

  // Finds the range of the automatic ends from the visible charts (stacking the groups
  // that stack), keeps a zoom inside it, clears NeedAxisUpdate and tells the charts.
  virtual void UpdateAxisValues();
  // UpdateAxisInfo of every chart of the axis, in list order.
  virtual void UpdateChartAxisInfo();
  // The measuring pass: runs DrawAxis on ARect without painting, so that Width and Height
  // hold the room the axis takes beside the plot in each direction, and the widest label is
  // known to a right axis's paint pass. The paint pass is Draw(Canvas, ARect). Raises
  // Exception for a nil canvas, and what CalcLogCycles raises on a log-cycle axis over
  // data at or below 0.
  virtual void CalculateBounds(TCanvas* Canvas, const TRect& ARect);

  // The text of a label: FormatDateTime(DateTimeFormat) on a date and time axis (a number
  // that is no date of years 1 to 9999 reads as a number), else FormatFloat(Format), and
  // "%.4f" for an empty Format.
  std::string FormatValue(double Value) const;
  // alsDateTime, or the dimension of the axis is a date dimension of the active chart.
  bool IsDateTime() const;
  // The widest label of the last pass.
  int32_t MaxLabelWidth() const { return FMaxLabelWidth; }
  // True only while the axis paints (not while it measures).
  bool IsDrawing() const { return FIsDrawing; }

  // A chart of the axis changed its values or its visibility: an automatic axis must
  // find its range again.
  virtual void ValueChanged(TKXCustomChart* Chart);
  virtual void VisibleChanged(TKXCustomChart* Chart);
  // Brings the draw overloads of the base into view beside ours.
  using TKXChartGraphicArea::Draw;

  // From another axis: the range, zoom, positions, formats, options, log base and cycles,
  // label settings, the chart list (a plain copy), title, labels and grid; not
  // LabelIncrement, LogarithmicType or SnapGrid. No change is reported for the fields.
  void Assign(const TPersistent* Source) override;
  // With an owner, title and labels take its font as the base of their delta fonts.
  void AfterConstruction() override;
  void BeforeDestruction() override;

protected:
  using TKXChartGraphicArea::VisibleChanged;
  // Makes title, labels, grid and chart list; the brush is clear.
  void Initialize() override;
  // Title and labels report to Changed(Sender), the grid to SenderChanged, the chart list
  // to ChartListNotify.
  void InitializeEvents() override;
  // Raises OnChange, then tells the charts (UpdateChartAxisInfo).
  void Changed() override;
  // A change of the title or the labels: their visibility is copied into aoShowTitle or
  // aoShowLabels, then Changed().
  virtual void Changed(TObject* Sender);
  // The chart list's notice: a chart came or went.
  virtual void ChartListNotify(TObject* Sender, TKXCustomChart* Chart, TListNotification Action);
  // Format, DateTimeFormat, Grid, Labels, LabelIncrement, LabelStyle, LogBase, LogCycles,
  // LogarithmicType, Maximum, Minimum, ZoomMaximum, ZoomMinimum, MinStepIncrement,
  // Options, StartPosition, EndPosition, InwardPosition, MinSeparationPct, SnapGrid,
  // Title, TitleMargin, Brush, Pen, Opacity, Visible: Options after the range, so that the
  // auto options that reading an end turned off come back.
  void DefineProperties(TFiler& Filer) override;

  // An amount of Pixel pixels as an amount on the zoomed range, unclamped and unmirrored
  // (an empty span gives 0). On a logarithmic axis the value at Pixel, unclamped by the
  // test of an empty range.
  double UnboundPixelToAxis(int32_t Pixel, const TRect& ChartRect) const;
  // A half of ARect along the axis: with LowHalf the half where low values lie on an axis
  // that is not reversed (left, or bottom on a vertical axis).
  TRect GetHalfRect(const TRect& ARect, bool LowHalf) const;
  // The band of ARect where the log cycle that holds Value lies, with AMin and AMax
  // narrowed to that cycle's bounds. Bands follow the direction of growing values, so on a
  // vertical or reversed axis they are laid out from the far end of the span.
  virtual TRect GetLogCycleZoomChart(const TRect& ARect, double Value, double& AMin,
                                     double& AMax) const;
  // The same for the band that holds Pixel.
  virtual TRect GetLogCycleAxis(const TRect& ARect, double Pixel, double& AMin, double& AMax) const;

  // S and E of the span of R along the axis.
  void Span(const TRect& R, int32_t& S, int32_t& E) const;
  void UpdateZooming();

  // --- Drawing ---

  // Sets IsDrawing, then runs DrawAxis; IsDrawing is cleared again also when an exception
  // passes.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // Runs in both passes: finds the range when it is due, moves the axis inward by
  // InwardPosition, and peels title, labels and axis line off ARect from the outside in;
  // the grid gets the rectangle that still holds the ticks' room. After measuring, Width
  // and Height hold what was peeled off.
  virtual void DrawAxis(TCanvas* Canvas, const TRect& ARect);
  // These answer what is left of ARect; they paint only while IsDrawing.
  // The title beside ARect, aligned along a vertical axis by Title.Alignment.
  virtual TRect DrawTitle(TCanvas* Canvas, TRect ARect);
  // The labels, from high values to low, on whole multiples of the step with SnapGrid;
  // a label that would overlap the last one drawn is dropped. Hands the grid its interval
  // and start. Nothing without a zoomed range or a step.
  virtual TRect DrawLabels(TCanvas* Canvas, TRect ARect);
  // One label that DrawLabels keeps, its text's top left at At.
  virtual void DrawLabel(TCanvas* Canvas, double Value, const std::string& Text, const TPoint& At);
  // The line along the side of ARect, after the room of the major ticks.
  virtual TRect DrawAxisLine(TCanvas* Canvas, TRect ARect);
  // Draws Grid while painting; answers ARect.
  virtual TRect DrawGrid(TCanvas* Canvas, TRect ARect);

  // --- Label steps ---

  // The label step for AMin..AMax on ARect in the canvas's current font: a tenth of the
  // range moved up the ladder of NewSpacing, doubled until the labels fit
  // (GetMajorGridSpacing), cut to a whole number when 1 or more, and at least
  // MinStepIncrement. 1 for an empty range; 0 (no labels) for a range whose step is no
  // finite number above 0, unless LabelIncrement is fixed.
  virtual double GetLabelSpacing(TCanvas* Canvas, const TRect& ARect, double AMin, double AMax);
  // LabelIncrement when fixed; otherwise Spacing, doubled as long as a label from the top of
  // the whole range down is longer (GetTextDim) than the pixels of a step and the least
  // separation. A walk whose labels take no room along an axis of no length ends at once.
  virtual double GetMajorGridSpacing(double Spacing, double PixelSize, int32_t MaxPixel,
                                     int32_t MinPixel, double MinSeparation,
                                     const TGetTextDimMethod& GetTextDim);
  // The next step strictly above Value on the ladder 1, 2, 5, 10, 25 at every power of ten
  // (25 gives 50, 0.25 gives 0.5). A number that is not finite or not above 0 is answered
  // as it is; a step may underflow to 0 or overflow to infinity, which callers refuse.
  virtual double NewSpacing(double Value);
  // LabelStyle, with alsAuto resolved: captions when the active chart counts for the axes,
  // has values and wants captions on this axis; numbers otherwise.
  TAxisLabelStyle GetAxisLabelStyle() const;

private:
  int32_t LogToPixel(double Value, const TRect& R, double Lo, double Hi) const;
  int32_t SimpleLogToPixel(double Value, TKXLogarithmicType Type, const TRect& R, double A,
                           double B) const;
  double PixelToLog(int32_t Pixel, const TRect& R, double Lo, double Hi) const;
  double SimplePixelToLog(double Pixel, TKXLogarithmicType Type, const TRect& R, double A,
                          double B) const;
  const TLogCycles& Cycles(double AMin, double AMax) const;
  void BaseChanged();
  double LabelSpacing(TCanvas* Canvas, const TRect& ARect, double AMin, double AMax,
                      const TRect& MapRect);
  // The step of one log cycle in Band, measured on the mapping of the whole rectangle.
  double CycleSpacing(TCanvas* Canvas, const TRect& Band, double AMin, double AMax,
                      const TRect& MapRect);
  // Step, doubled while more marks than the axis has pixels along ARect would fall into
  // Lo..Hi. Doubling keeps whole multiples whole multiples.
  double FitStepToPixels(double Step, double Lo, double Hi, const TRect& ARect) const;
  // Value less Step until it no longer exceeds Limit; far above it, by whole steps at once.
  // Stops where subtracting the step no longer moves the value.
  static double SkipDown(double Value, double Limit, double Step);
  // Whether bands and spans run against the pixel direction: on a vertical axis, and
  // again with aoReversed.
  bool Mirrored() const { return IsVertical() != FOptions.Contains(aoReversed); }
};

// --- TKXLocalChartAxis ---

// The axis a chart owns for when it stands alone: it maps on the chart's client rectangle.
class TKXLocalChartAxis : public TKXChartAxis {
  KX_CLASS(TKXLocalChartAxis, TKXChartAxis)

private:
  TKXCustomChart* FChart;

public:
  // Without a chart the axis maps as an axis without owner.
  explicit TKXLocalChartAxis(TKXCustomChart* AChart = nullptr);

  TKXCustomChart* Chart() const { return FChart; }

  using TKXChartAxis::AxisToPixel;
  using TKXChartAxis::PixelToAxis;
  int32_t AxisToPixel(double Value) const override;
  double PixelToAxis(int32_t Pixel, bool IgnoreZoom) const override;

  // Title and labels take the chart's font as the base of their delta fonts.
  void AfterConstruction() override;
};

} // namespace kx
