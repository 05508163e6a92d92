#pragma once
// TKXChartAxis: the scale of one side of a chart panel, and the only place where a value
// becomes a pixel and back. It holds the whole range of one value dimension (Minimum,
// Maximum), the zoomed part of it that drawing uses (ZoomMinimum, ZoomMaximum), where it
// lies on the panel's plot rectangle, and the list of charts drawn on it. An automatic
// axis only raises NeedAxisUpdate when a chart changes; it finds its range again from its
// charts (UpdateAxisValues) before it is next drawn.
//
// TKXLocalChartAxis is the invisible axis a chart owns for when it stands alone; it maps
// on the chart's own client rectangle.

#include <cstdint>
#include <string>

#include "kxcharts/core/KXChartGraphic.h"
#include "kxcharts/toolkit/KXCanvas.h"
#include "kxcharts/toolkit/KXEnum.h"
#include "kxcharts/toolkit/KXLists.h"
#include "kxcharts/toolkit/KXObject.h"
#include "kxcharts/toolkit/KXSet.h"
#include "kxcharts/toolkit/KXTypes.h"

namespace kx {

class TKXChartList;
class TKXCustomChart;
class TKXCustomChartPanel;

// --- Enumerations ---

enum TAxisOption : uint8_t {
  aoAutoMinimum, // Minimum follows the charts
  aoAutoMaximum, // Maximum follows the charts
  aoShowLabels,
  aoShowGrid,
  aoShowTitle,
  aoReversed, // the direction of the axis is mirrored
  aoLogarithmic
};
KX_ENUM_NAMES(TAxisOption, "aoAutoMinimum", "aoAutoMaximum", "aoShowLabels", "aoShowGrid",
              "aoShowTitle", "aoReversed", "aoLogarithmic")
using TAxisOptions = TSet<TAxisOption>;

// The side of the plot rectangle; left and right axes are vertical, and run against the
// pixel direction (low values at the bottom).
enum TKXChartAxisLocation : uint8_t { calLeft, calRight, calBottom, calTop };
KX_ENUM_NAMES(TKXChartAxisLocation, "calLeft", "calRight", "calBottom", "calTop")

// --- TKXChartAxis ---

class TKXChartAxis : public TKXChartGraphicArea {
  KX_CLASS(TKXChartAxis, TKXChartGraphicArea)

protected:
  std::string FFormat = "#,##0.###";
  TAxisOptions FOptions = TAxisOptions::FromBits(0x1F);
  double FMinimum = 0.0;
  double FMaximum = 0.0;
  int32_t FEndPosition = 100;
  int32_t FStartPosition = 0;
  int32_t FInwardPosition = 0;
  TOwned<TKXChartList> FCharts;
  TKXChartAxisLocation FLocation = calLeft;
  int32_t FHeight = 0;
  int32_t FWidth = 0;
  int32_t FDimension = 1;
  TKXCustomChartPanel* FOwner;
  bool FNeedAxisUpdate = false;
  bool FZooming = false;
  double FZoomMaximum = 0.0;
  double FZoomMinimum = 0.0;

public:
  // AOwner is the panel (nil for a local axis).
  explicit TKXChartAxis(TKXCustomChartPanel* AOwner);
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
  // The number format of labels and value labels.
  const std::string& Format() const { return FFormat; }
  void SetFormat(const std::string& Value);
  TAxisOptions Options() const { return FOptions; }
  // Either auto option in the new set raises NeedAxisUpdate.
  void SetOptions(TAxisOptions Value);
  // The whole range. Setting an end stores it, keeps Minimum <= Maximum and the zoomed
  // range inside, and turns that end's auto option off.
  double Minimum() const { return FMinimum; }
  void SetMinimum(double Value);
  double Maximum() const { return FMaximum; }
  void SetMaximum(double Value);
  // The zoomed range drawing uses, kept inside the whole range.
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
  // The pixel of Value on ChartRect, on the zoomed range: linear, mirrored on a vertical
  // axis and again with aoReversed; values off the range give pixels off the span.
  int32_t AxisToPixel(double Value, const TRect& ChartRect) const;
  // The value at Pixel on the owner's plot rectangle (0, 0, 100, 100 without an owner).
  virtual double PixelToAxis(int32_t Pixel, bool IgnoreZoom) const;
  // The value at Pixel on ChartRect, on the whole range with IgnoreZoom, else on the
  // zoomed one; pixels off the span give the end on that side.
  double PixelToAxis(int32_t Pixel, const TRect& ChartRect, bool IgnoreZoom) const;

  // Finds the range of the automatic ends from the visible charts (stacking the groups
  // that stack), keeps a zoom inside it, clears NeedAxisUpdate and tells the charts.
  virtual void UpdateAxisValues();
  // UpdateAxisInfo of every chart of the axis, in list order.
  virtual void UpdateChartAxisInfo();
  // Measures the room the axis takes beside a plot in ARect (Width, Height). This form
  // draws no labels or title yet, so it takes none.
  virtual void CalculateBounds(TCanvas* Canvas, const TRect& ARect);

  // A chart of the axis changed its values or its visibility: an automatic axis must
  // find its range again.
  virtual void ValueChanged(TKXCustomChart* Chart);
  virtual void VisibleChanged(TKXCustomChart* Chart);
  // Brings the draw overloads of the base into view beside ours.
  using TKXChartGraphicArea::Draw;

  void AfterConstruction() override;
  void BeforeDestruction() override;

protected:
  using TKXChartGraphicArea::VisibleChanged;
  // Raises OnChange, then tells the charts (UpdateChartAxisInfo).
  void Changed() override;
  // The chart list's notice: a chart came or went.
  virtual void ChartListNotify(TObject* Sender, TKXCustomChart* Chart, TListNotification Action);
  // Format, Maximum, Minimum, ZoomMaximum, ZoomMinimum, Options, StartPosition,
  // EndPosition, InwardPosition.
  void DefineProperties(TFiler& Filer) override;

  // S and E of the span of R along the axis.
  void Span(const TRect& R, int32_t& S, int32_t& E) const;
  void UpdateZooming();
};

// --- TKXLocalChartAxis ---

// The axis a chart owns for when it stands alone: it maps on the chart's client rectangle.
class TKXLocalChartAxis : public TKXChartAxis {
  KX_CLASS(TKXLocalChartAxis, TKXChartAxis)

private:
  TKXCustomChart* FChart;

public:
  explicit TKXLocalChartAxis(TKXCustomChart* AChart);

  TKXCustomChart* Chart() const { return FChart; }

  using TKXChartAxis::AxisToPixel;
  using TKXChartAxis::PixelToAxis;
  int32_t AxisToPixel(double Value) const override;
  double PixelToAxis(int32_t Pixel, bool IgnoreZoom) const override;
};

} // namespace kx
