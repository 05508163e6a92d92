#pragma once
// The charts that draw a shape or a picture at each value: TKXCustomPointChart (the base of
// the point, scatter and shape charts), TKXPointChart, TKXScatterChart, and the point values
// with their collection.
//
// A point chart is a line chart whose values stay in the order they were entered (its line
// may cross itself) and that puts a point, as its PointsInfo says, on every value: first the
// lines and areas of the line family, then the points over them. A point's size is in
// pixels with FixedSizePoints, else in axis units, so that points grow as the axes zoom.
// The range of a point chart holds its points whole.
//
// Drawing a point runs: the shadow (in a panel that casts one), OnCustomDrawValue, the
// point, its label. On an image, a long run of values that all look alike is stamped
// rather than drawn point by point: the picture of one point is made once and the canvas
// writes, at each pixel, the stamp that ends on top there (TCanvas::DrawStamps). This is
// the picture of drawing every point; it is taken only when each point is a picture of
// whole pixels (the flat, unrotated styles) and nothing runs per value (no event, no
// labels, no images).

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "kxcharts/charts/KXChartPointInfo.h"
#include "kxcharts/charts/KXLineCharts.h"
#include "kxcharts/charts/KXXYChartValues.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace kx {

class TKXCustomPointChart;
class TKXPointChartValues;

// --- TKXPointChartValue ---

class TKXPointChartValue : public TKX2DImageChartValue {
  KX_CLASS(TKXPointChartValue, TKX2DImageChartValue)

public:
  using TKX2DImageChartValue::TKX2DImageChartValue;

  // The collection, when it is a TKXPointChartValues; else nil.
  TKXPointChartValues* Collection() const;

  using TKX2DImageChartValue::Selectable;
  // In a point chart, the point's extent around (X, Y) meets SelRect: the size of
  // PointsInfo in axis units, or in pixels turned into axis units with FixedSizePoints.
  // Without a chart, the point (X, Y) alone. Scale does not enter.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;
};

using TKXPointChartValuesEnumerator = TCollectionEnumeratorOf<TKXPointChartValue>;

// --- TKXPointChartValues ---

class TKXPointChartValues : public TKX2DImageChartValues {
  KX_CLASS(TKXPointChartValues, TKX2DImageChartValues)

public:
  using TKX2DImageChartValues::TKX2DImageChartValues;

  // --- Properties ---
  TKXPointChartValue* Items(int32_t Index) const {
    return static_cast<TKXPointChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXPointChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  // The chart, when it is a point chart; else nil.
  TKXCustomPointChart* Owner() const;

  // --- Operations ---
  using TKX2DImageChartValues::Add;
  TKXPointChartValue* Add() { return static_cast<TKXPointChartValue*>(TKX2DImageChartValues::Add()); }
  TKXPointChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1),
                          int32_t ImageIndex = -1) {
    return static_cast<TKXPointChartValue*>(
        TKX2DImageChartValues::Add(X, Caption, Color, ImageIndex));
  }
  TKXPointChartValue* Add(double X, double Y, const std::string& Caption = "",
                          TColor Color = TColor(-1), int32_t ImageIndex = -1) {
    return static_cast<TKXPointChartValue*>(
        TKX2DImageChartValues::Add(X, Y, Caption, Color, ImageIndex));
  }
  TKXPointChartValue* Insert(int32_t Index) {
    return static_cast<TKXPointChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXPointChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXPointChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXPointChartValuesEnumerator GetEnumerator() const { return TKXPointChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

  // Half the size of a point, by which the ranges of X and Y widen on each side: half of
  // PointsInfo's width and height (whether they are pixels or not), 10 without a chart.
  void PointMargins(double& HalfWidth, double& HalfHeight) const;

protected:
  // The base's, then X and Y widened by PointMargins.
  void CalculateMetaData() override;
  // The same widening of the base's indexed extents.
  bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const override;
};

// --- TKXCustomPointChart ---

using TKXPointChartValueDrawEvent = std::function<void(
    TObject* Sender, TCanvas* Canvas, const TRect& ARect, TKXPointChartValue* Value,
    bool& DefaultDraw)>;

class TKXCustomPointChart : public TKXCustomLineChart {
  KX_CLASS(TKXCustomPointChart, TKXCustomLineChart)

protected:
  TKXPointChartValueDrawEvent FOnCustomDrawValue;
  TOwned<TKXCustomChartPointInfo> FPointsInfo;
  bool FFixedSizePoints = false;
  TImageList* FImageList = nullptr;

private:
  // The stamp of one point and where it goes, kept so that a paint allocates once.
  TOwned<TBitmap> FStamp;
  TCanvasPoints FStampAt;

public:
  explicit TKXCustomPointChart(TComponent* AOwner) : TKXCustomLineChart(AOwner) {}

  // --- Properties ---
  // Size, shapes, brush and pen of every point; setting assigns into it.
  TKXCustomChartPointInfo* PointsInfo() const { return FPointsInfo.get(); }
  void SetPointsInfo(const TKXCustomChartPointInfo* Value) { FPointsInfo->Assign(Value); }
  // True: the points' width and height are pixels; false: axis units.
  bool FixedSizePoints() const { return FFixedSizePoints; }
  void SetFixedSizePoints(bool Value);
  // The pictures of the values' ImageIndex (not owned). A new list gives PointsInfo its
  // size; a list that is freed leaves the chart.
  TImageList* ImageList() const { return FImageList; }
  void SetImageList(TImageList* Value);
  TKXPointChartValues* Values() const {
    return static_cast<TKXPointChartValues*>(TKXCustomChart::Values());
  }

  // --- Events ---
  // Raised before each point is drawn, after its shadow; DefaultDraw false leaves out the
  // point and its label.
  const TKXPointChartValueDrawEvent& OnCustomDrawValue() const { return FOnCustomDrawValue; }
  void SetOnCustomDrawValue(TKXPointChartValueDrawEvent Value) {
    FOnCustomDrawValue = std::move(Value);
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctPoint; }

  // --- Operations ---

  // Draws one value in ARect (pixels): its shadow, OnCustomDrawValue, the point (grown by
  // the value's Scale) and its label above the centre. Nothing when the chart's and the
  // value's opacity make 0.
  virtual void DrawPoint(TCanvas* Canvas, const TRect& ARect, TKXPointChartValue* Value);
  // Half the width and height of a point in pixels on Rect.
  void PointHalfSize(const TRect& Rect, int32_t& HalfWidth, int32_t& HalfHeight) const;

  // --- Overrides ---
  // The colour of PointsInfo's brush.
  using TKXCustomLineChart::GetColor;
  TColor GetColor() const override;
  void SetColor(TColor Value) override;
  // PointsInfo's brush and pen with the chart's font; for a value, one pixel more pen when
  // it is selected (coSelectionPen), and the brush in the selection colour, the value's
  // colour (coValueColors) or the chart's.
  using TKXCustomLineChart::SetCanvasResources;
  void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                          bool AdjustPen) override;
  // The value's point in ARect.
  using TKXCustomLineChart::DrawGlyph;
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // From another point chart: FixedSizePoints, the image list, PointsInfo, then the base's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // A TKXChartPointInfo; descendants make their own kind.
  virtual TOwned<TKXCustomChartPointInfo> CreatePointsInfo();
  // PointsInfo first (the base sets the chart's colour, which is its brush's), then the
  // line chart's, the options of TKXChart, values in the order of entry.
  void InitializeChart() override;
  void InitializeChangeEvents() override;
  // TKXPointChartValues of TKXPointChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Ten points without captions; nothing while loading.
  void CreatePreviewValues() override;
  // The lines (their labels left to the points when the points show), then the points.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Notification(TComponent* AComponent, TOperation Operation) override;
  // Options against 1815.
  void DefineProperties(TFiler& Filer) override;

private:
  // The points of FirstIndex..LastIndex.
  void DrawPoints(TCanvas* Canvas, const TRect& Rect);
  // Whether runs of alike values may be stamped in this paint.
  bool CanStamp(const TCanvas* Canvas) const;
  // Stamps the plain values From..To (one look) on the canvas; false when the canvas or the
  // picture of the point does not allow it, having drawn nothing.
  bool StampRun(TCanvas* Canvas, const TRect& Rect, int32_t From, int32_t To, int32_t HalfWidth,
                int32_t HalfHeight);
};

// --- TKXPointChart ---

// A point at every value, with the line family's lines and areas under them when asked.
class TKXPointChart : public TKXCustomPointChart {
  KX_CLASS(TKXPointChart, TKXCustomPointChart)

public:
  using TKXCustomPointChart::TKXCustomPointChart;

  TKXChartPointInfo* PointsInfo() const {
    return static_cast<TKXChartPointInfo*>(TKXCustomPointChart::PointsInfo());
  }

protected:
  // FixedSizePoints, ImageList, PointsInfo, LineChartElements, LineStyle.
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXScatterChart ---

// A closed line through its points in the order of entry, filled as one polygon in the
// chart's colour (the area element) and drawn as a line (the line element) over it.
class TKXScatterChart : public TKXPointChart {
  KX_CLASS(TKXScatterChart, TKXPointChart)

public:
  using TKXPointChart::TKXPointChart;

  static TKXChartType GetChartType() { return ctScatter; }

protected:
  // The polygon through the points of FirstIndex..LastIndex, closed, in GetColor (the
  // shadow's brush in the shadow pass): a curve for lsSmooth and lsBezier. A value that is
  // not a finite number has no place in it.
  using TKXPointChart::DrawArea;
  virtual void DrawArea(TCanvas* Canvas, const TRect& ARect, bool Shadow);
  // The fill once, then the line element alone (steps drawn straight), closed.
  using TKXPointChart::DrawLine;
  void DrawLine(TCanvas* Canvas, const TRect& Rect, bool Shadow) override;

  // Closed line, lsSmooth, the area element.
  void InitializeChart() override;
  // The ten corners of a star, with captions.
  void CreatePreviewValues() override;
  // LineChartElements against the area element, LineStyle against lsSmooth.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
