#pragma once
// Reference lines across the whole plot: TKXGuideChart, the pen and brush it makes for
// itself, and the guide values with their collection.
//
// A guide value is a position (X, Y) and a set of orientations; each orientation draws one
// line through the position from edge to edge of the draw rectangle. Every guide is drawn
// and walked whatever the zoom. Inside a panel the guides are picked with the mouse: the
// panel asks IsSelectable and MouseHover of the chart, and the cursor shows which line of a
// guide lies under it.

#include <cstdint>
#include <string>

#include "kxcharts/charts/KXLineCharts.h"
#include "kxcharts/charts/KXXYChartValues.h"
#include "kxcharts/core/KXCustomChart.h"

namespace kx {

class TKXGuideChartValues;

// --- TKXGuideChartPen, TKXGuideChartBrush ---

// The pen of the guide chart: stored against the dash-dot style it gives it.
class TKXGuideChartPen : public TPen {
  KX_CLASS(TKXGuideChartPen, TPen)

public:
  TKXGuideChartPen() = default;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// The brush of the guide chart, clear from the start. It stores its style against the plain
// brush's solid one: a brush turns solid when it takes a colour, so a clear style left out
// of the stored form would read back solid after the colour.
class TKXGuideChartBrush : public TBrush {
  KX_CLASS(TKXGuideChartBrush, TBrush)

public:
  TKXGuideChartBrush() = default;
};

// --- TKXGuideChartValue ---

class TKXGuideChartValue : public TKX2DChartValue {
  KX_CLASS(TKXGuideChartValue, TKX2DChartValue)

private:
  TLineOrientations FOrientation{loHorizontal};

public:
  using TKX2DChartValue::TKX2DChartValue;

  // --- Properties ---
  // Which lines the value draws: a horizontal one through Y, a vertical one through X.
  TLineOrientations Orientation() const { return FOrientation; }
  void SetOrientation(TLineOrientations Value);
  // The collection, when it is a TKXGuideChartValues; else nil.
  TKXGuideChartValues* Collection() const;

  // --- Operations ---
  // Which of the value's lines Rect (axis units) catches, Point being the value's (X, Y):
  // the position itself answers all of the value's lines; else the horizontal line is
  // caught wherever Rect meets it, then the vertical one.
  TLineOrientations SelectGuide(const TPointF& Point, const TRectF& Rect) const;
  // The plain test: Orientation's lines when Point lies in Rect, else none. A side of Rect
  // of size 0 widens to 0.1 axis units on each side, so that a click can hit.
  static TLineOrientations SelectGuide(const TPointF& Point, TLineOrientations Orientation,
                                       const TRectF& Rect);

  // --- Overrides ---
  using TKX2DChartValue::Selectable;
  // A line of the value caught by SelRect (SelectGuide), then the action rule of the base.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;
  // From another guide value: the orientation, then the base's.
  void Assign(const TPersistent* Source) override;

protected:
  // X, Y, Orientation.
  void DefineProperties(TFiler& Filer) override;
};

using TKXGuideChartValuesEnumerator = TCollectionEnumeratorOf<TKXGuideChartValue>;

// --- TKXGuideChartValues ---

class TKXGuideChartValues : public TKX2DChartValues {
  KX_CLASS(TKXGuideChartValues, TKX2DChartValues)

public:
  using TKX2DChartValues::TKX2DChartValues;

  // --- Properties ---
  TKXGuideChartValue* Items(int32_t Index) const {
    return static_cast<TKXGuideChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXGuideChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }

  // --- Operations ---
  using TKXChartValues::Add;
  // A horizontal guide at the present largest X, at 0.
  TKXGuideChartValue* Add() { return static_cast<TKXGuideChartValue*>(TKX2DChartValues::Add()); }
  // Y = X (the argument) at the present largest X; one change notice.
  TKXGuideChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1),
                          TLineOrientations Orientation = {loHorizontal});
  // One change notice.
  TKXGuideChartValue* Add(double X, double Y, const std::string& Caption = "",
                          TColor Color = TColor(-1),
                          TLineOrientations Orientation = {loHorizontal});
  TKXGuideChartValue* Insert(int32_t Index) {
    return static_cast<TKXGuideChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXGuideChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXGuideChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXGuideChartValuesEnumerator GetEnumerator() const {
    return TKXGuideChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
};

// --- TKXGuideChart ---

class TKXGuideChart : public TKXChart {
  KX_CLASS(TKXGuideChart, TKXChart)

public:
  using TKXChart::TKXChart;

  TKXGuideChartValues* Values() const {
    return static_cast<TKXGuideChartValues*>(TKXCustomChart::Values());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctGuide; }

  // --- Operations ---
  // Draws one line of a guide through the pixel (X, Y) across ARect: loHorizontal from the
  // left edge to the right one, loVertical from the top to the bottom. The line is drawn in
  // the canvas's pen as it stands; Opacity is not applied.
  virtual void DrawGuide(TCanvas* Canvas, const TRect& ARect, int32_t X, int32_t Y,
                         TLineOrientation Orientation, float Opacity);

  // --- Overrides ---
  // The brush's colour; its clear style stays.
  void SetColor(TColor Value) override;
  // The cursor over the last visible guide that ARect catches: crCross on both its lines,
  // crHSplit on its vertical line, crVSplit on its horizontal one.
  void MouseHover(const TRect& ARect) override;
  // Every guide is walked, whatever the zoom.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;

protected:
  // coZoomPen, a dash-dot pen of width 1, a clear brush.
  void InitializeChart() override;
  TOwned<TPen> CreatePen() override;
  TOwned<TBrush> CreateBrush() override;
  // TKXGuideChartValues of TKXGuideChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Two horizontal guides; nothing while loading.
  void CreatePreviewValues() override;
  // Each visible guide's lines through DrawGuide, its label beside the position.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // Options against 1943.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
