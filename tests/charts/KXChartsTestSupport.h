#pragma once
// What the chart tests share: a form to own charts, line and area charts that write down
// every segment and label they hand to the canvas, and a fixture that puts a chart alone on
// known axes (0..10 on a 100 x 100 rectangle: X = 10 x, Y = 100 - 10 y).

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "support/KXBitmapProbe.h"

namespace kx::test {

class TChartsForm : public TComponent {
  KX_CLASS(TChartsForm, TComponent)

public:
  using TComponent::TComponent;
};

// One segment as it reached the canvas, with the pen and brush it had.
struct TDrawnSegment {
  TCanvasPoints Points;
  bool Fill = false;
  TColor Pen = clNone;
  TColor Brush = clNone;
  int32_t PenWidth = 0;
};

// Writes down what a chart hands to the canvas, then lets it draw.
struct TDrawLog {
  std::vector<TDrawnSegment> Segments;
  std::vector<std::string> Labels; // "caption@x,y"

  void Segment(TCanvas* Canvas, std::span<const TPoint> Points, bool Fill) {
    Segments.push_back({TCanvasPoints(Points.begin(), Points.end()), Fill, Canvas->Pen()->Color(),
                        Canvas->Brush()->Color(), Canvas->Pen()->Width()});
  }
  void Label(const TKXChartValue* Value, int32_t X, int32_t Y) {
    Labels.push_back(Value->Caption() + "@" + std::to_string(X) + "," + std::to_string(Y));
  }
  void Clear() {
    Segments.clear();
    Labels.clear();
  }
};

#define KX_RECORDING_CHART(Name, Base)                                                             \
  class Name : public Base {                                                                       \
    KX_CLASS(Name, Base)                                                                           \
                                                                                                   \
  public:                                                                                          \
    using Base::Base;                                                                              \
    TDrawLog Log;                                                                                  \
    using Base::DrawLabel;                                                                         \
    void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, int32_t X, int32_t Y) override {   \
      Log.Label(Value, X, Y);                                                                      \
      Base::DrawLabel(Canvas, Value, X, Y);                                                        \
    }                                                                                              \
                                                                                                   \
  protected:                                                                                       \
    void DrawSegment(TCanvas* Canvas, std::span<const TPoint> Points, bool Fill) override {        \
      Log.Segment(Canvas, Points, Fill);                                                           \
      Base::DrawSegment(Canvas, Points, Fill);                                                     \
    }                                                                                              \
  };

KX_RECORDING_CHART(TRecLineChart, TKXLineChart)
KX_RECORDING_CHART(TRecAreaChart, TKXAreaChart)

#undef KX_RECORDING_CHART

// Fixes an axis on Lo..Hi, whatever range it had.
inline void SetRange(TKXChartAxis* Axis, double Lo, double Hi) {
  Axis->SetOptions(Axis->Options() - aoAutoMinimum - aoAutoMaximum);
  Axis->SetMaximum(Hi);
  Axis->SetMinimum(Lo);
  Axis->SetMaximum(Hi);
}

// Puts both axes of the chart on 0..10.
inline void FixAxes(TKXCustomChart* Chart, double Max = 10.0) {
  for (TKXChartAxis* A : {Chart->HorizontalAxis(), Chart->VerticalAxis()}) {
    A->SetMaximum(Max);
    A->SetMinimum(0.0);
  }
}

// A chart alone on a form, on axes of 0..10, drawn into a 100 x 100 rectangle.
template <class TChart> class ChartAlone : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<TChart>(Form.get());
    Chart->SetBounds(0, 0, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->Pen()->SetWidth(1);
    Chart->Pen()->SetColor(clBlack);
    FixAxes(Chart);
  }
  // Adds the values (x, y) in order.
  void AddValues(std::initializer_list<std::pair<double, double>> XY) {
    for (const auto& [X, Y] : XY)
      Chart->Values()->Add(X, Y);
  }
  // Draws the chart on a fresh white bitmap; the log holds this draw alone.
  TBitmap* Draw() {
    Chart->Log.Clear();
    Bitmap = MakeBitmap(100, 100);
    Chart->Draw(Bitmap->Canvas(), Rect);
    return Bitmap.get();
  }
  const TRect Rect{0, 0, 100, 100};
  TOwned<TChartsForm> Form;
  TChart* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
};

// The index of the one slice of Values that a click at (X, Y) selects, or -1; a click that
// hits two slices fails the test.
inline int32_t SliceHitAt(const TKXPieChartValues* Values, int32_t X, int32_t Y) {
  int32_t Found = -1;
  for (int32_t I = 0; I < Values->Count(); ++I)
    if (Values->Items(I)->Selectable(KXRect(X, Y, X, Y), saSelect)) {
      EXPECT_EQ(Found, -1) << "two slices hit at " << X << "," << Y;
      Found = I;
    }
  return Found;
}

} // namespace kx::test
