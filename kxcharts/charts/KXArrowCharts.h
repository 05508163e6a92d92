#pragma once
// Arrows from a start point to an end point in axis units, each with its value's text beside
// it: TKXArrowChart, and the arrow values with their collection.
//
// A value's X and Y are the start, EndX and EndY (dimensions 2 and 3) the end. The range of
// the axes holds both ends of every arrow. Every arrow is drawn whatever the zoom, through
// DrawArrow of the toolkit; the head grows with the zoom. ArrowOptions' arText and the
// chart's coValueLabels are one switch kept in two sets.

#include <cstdint>
#include <string>

#include "kxcharts/charts/KXXYChartValues.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

class TKXArrowChartValues;

// --- TKXArrowChartValue ---

class TKXArrowChartValue : public TKX2DChartValue {
  KX_CLASS(TKXArrowChartValue, TKX2DChartValue)

public:
  // Four numbers also outside a collection of values.
  explicit TKXArrowChartValue(TCollection* Collection);

  // --- Properties ---
  double EndX() const { return GetValue(2); }
  void SetEndX(double Value) { TKXChartValue::SetValue(2, Value); }
  double EndY() const { return GetValue(3); }
  void SetEndY(double Value) { TKXChartValue::SetValue(3, Value); }
  // The collection, when it is a TKXArrowChartValues; else nil.
  TKXArrowChartValues* Collection() const;

protected:
  // X, Y, EndX, EndY.
  void DefineProperties(TFiler& Filer) override;
};

using TKXArrowChartValuesEnumerator = TCollectionEnumeratorOf<TKXArrowChartValue>;

// --- TKXArrowChartValues ---

class TKXArrowChartValues : public TKX2DChartValues {
  KX_CLASS(TKXArrowChartValues, TKX2DChartValues)

protected:
  const int32_t FEndXDim = 2;
  const int32_t FEndYDim = 3;

public:
  TKXArrowChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXArrowChartValue* Items(int32_t Index) const {
    return static_cast<TKXArrowChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXArrowChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  int32_t EndXDim() const { return FEndXDim; }
  int32_t EndYDim() const { return FEndYDim; }

  // --- Operations ---
  using TKX2DChartValues::Add;
  TKXArrowChartValue* Add() { return static_cast<TKXArrowChartValue*>(TKX2DChartValues::Add()); }
  // Y = X (the argument) at the present largest X; the end stays (0, 0).
  TKXArrowChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1)) {
    return static_cast<TKXArrowChartValue*>(TKX2DChartValues::Add(X, Caption, Color));
  }
  // The start only; the end stays (0, 0).
  TKXArrowChartValue* Add(double X, double Y, const std::string& Caption = "",
                          TColor Color = TColor(-1)) {
    return static_cast<TKXArrowChartValue*>(TKX2DChartValues::Add(X, Y, Caption, Color));
  }
  // All four numbers; one change notice.
  TKXArrowChartValue* Add(double StartX, double StartY, double EndX, double EndY,
                          const std::string& Caption = "", TColor Color = TColor(-1));
  TKXArrowChartValue* Insert(int32_t Index) {
    return static_cast<TKXArrowChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXArrowChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXArrowChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXArrowChartValuesEnumerator GetEnumerator() const {
    return TKXArrowChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

protected:
  // An arrow's extent is not its start: no indexed answer.
  bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const override;
  // X reaches from X to EndX, Y from Y to EndY, whichever is larger.
  double GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const override;
  double GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const override;
  // The base's, then the extent of X and Y.
  void SetMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension) override;
};

// --- TKXArrowChart ---

class TKXArrowChart : public TKXChart {
  KX_CLASS(TKXArrowChart, TKXChart)

private:
  TArrowOptions FArrowOptions;
  int32_t FArrowHeadSize = 5;

public:
  using TKXChart::TKXChart;

  // --- Properties ---
  // Passed to the toolkit's DrawArrow. arText is coValueLabels: setting one sets the other.
  TArrowOptions ArrowOptions() const { return FArrowOptions; }
  virtual void SetArrowOptions(TArrowOptions Value);
  // The length and width of a head in pixels at no zoom.
  int32_t ArrowHeadSize() const { return FArrowHeadSize; }
  void SetArrowHeadSize(int32_t Value);
  TKXArrowChartValues* Values() const {
    return static_cast<TKXArrowChartValues*>(TKXCustomChart::Values());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctArrow; }

  // --- Operations ---
  // Draws one value's arrow in ARect: its shadow on the whole of ARect (when the chart casts
  // one), then the arrow on the part beside the shadow, with the value's text. The frame
  // grows by the value's Scale first.
  virtual void DrawArrow(TCanvas* Canvas, const TRect& ARect, TKXArrowChartValue* Value);
  // The head size for this paint: ArrowHeadSize grown by the zoom of both axes.
  int32_t ZoomedHeadSize() const;

  // --- Overrides ---
  // Also keeps arText in ArrowOptions with coValueLabels.
  void SetOptions(TChartOptions Value) override;
  // The chart's brush, pen and font; for a value, one pixel more pen when it is selected
  // (coSelectionPen), and pen and brush in one colour: the selection colour, the value's
  // (coValueColors) or the chart's.
  using TKXChart::SetCanvasResources;
  void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                          bool AdjustPen) override;
  // Every arrow is in view, whatever the zoom.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;
  // From another arrow chart: ArrowOptions and ArrowHeadSize, then the base's.
  void Assign(const TPersistent* Source) override;

protected:
  // coNoChartShadow, coZoomPen, arEndHead, arFilledHead and arText, a head of 5.
  void InitializeChart() override;
  // TKXArrowChartValues of TKXArrowChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Six labelled arrows; nothing while loading.
  void CreatePreviewValues() override;
  // The base's, then every visible value through DrawArrow.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // ArrowOptions, ArrowHeadSize; Options against 1975.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
