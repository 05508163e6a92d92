// EQ charts: the segments a value lights in each style, their colour run, the peak that
// follows the value and stays when it falls, the setters' rules, the range of the axes, the
// custom draw event, bad settings and the stored form.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::MakeBitmap;
using test::SetRange;
using test::TChartsForm;

// One meter alone, standing on 100 x 100 pixels: the index axis -0.5..0.5, the value axis
// 0..100 (a number v at y = 100 - v). With 20 segments of 5 and a spacing of 10 %, segment k
// covers 5 k to 5 k + 4.5: its middle row is y = 97 - 5 k.
class Meter : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<TKXEQChart>(Form.get());
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetEQOptions(Chart->EQOptions() - eoHighMark);
  }
  TBitmap* Draw(double Value) {
    Chart->Values()->Clear();
    Chart->Values()->Add(Value, "");
    SetRange(Chart->HorizontalAxis(), -0.5, 0.5);
    SetRange(Chart->VerticalAxis(), 0, 100);
    Bitmap = MakeBitmap(100, 100);
    Chart->Draw(Bitmap->Canvas(), {0, 0, 100, 100});
    return Bitmap.get();
  }
  TColor At(int32_t X, int32_t Y) const { return Bitmap->Canvas()->Pixel(X, Y); }
  // The segments whose middle row is painted.
  std::vector<int> Lit() const {
    std::vector<int> K;
    for (int S = 0; S < 20; ++S)
      if (At(50, 97 - 5 * S) != clWhite) K.push_back(S);
    return K;
  }
  TOwned<TChartsForm> Form;
  TKXEQChart* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
};

std::vector<int> Range(int From, int To) {
  std::vector<int> R;
  for (int K = From; K <= To; ++K)
    R.push_back(K);
  return R;
}

TEST_F(Meter, EachStyleLightsTheSegmentsItsValueReaches) {
  struct TCase {
    TEQChartStyle Style;
    bool Partial;
    double Value;
    std::vector<int> Lit;
  };
  const TCase Cases[] = {
      {eqSegments, false, 50, Range(0, 10)}, // 50 is not below the eleventh segment's start
      {eqSegments, false, 49, Range(0, 9)},
      {eqSegments, false, -20, {0}},         // the first segment always shows
      {eqSegments, false, 250, Range(0, 19)}, // above Max: every segment, no more
      {eqTopSegment, false, 55, {11}},
      {eqTopSegment, false, 250, {}},
      {eqSegments, true, 52, Range(0, 9)}, // the eleventh ends at 52, below its middle row
  };
  for (const TCase& K : Cases) {
    SCOPED_TRACE(testing::Message() << K.Style << " " << K.Value);
    Chart->SetStyle(K.Style);
    Chart->SetEQOptions(K.Partial ? Chart->EQOptions() + eoPartialSegment
                                  : Chart->EQOptions() - eoPartialSegment);
    Draw(K.Value);
    EXPECT_EQ(Lit(), K.Lit);
  }
  // A partial top segment ends at the value: 52 reaches y 48, not 46.
  EXPECT_NE(At(50, 49), clWhite);
  EXPECT_EQ(At(50, 46), clWhite);
  // The spacing leaves a gap between segments.
  Chart->SetEQOptions(Chart->EQOptions() - eoPartialSegment);
  Draw(80);
  EXPECT_EQ(At(50, 100 - 55), clWhite) << "between segment 10 and 11";
}

TEST_F(Meter, SegmentsRunFromMinColorTowardMaxColorInEvenSteps) {
  Draw(100);
  // Red 255 to green 255 in 20 steps: each step 12 less red and 12 more green.
  for (int K : {0, 1, 10, 19}) {
    SCOPED_TRACE(K);
    EXPECT_EQ(At(50, 97 - 5 * K), TColor((255 - 12 * K) | ((12 * K) << 8)));
  }
  Chart->SetEQOptions(Chart->EQOptions() - eoColorBands);
  Draw(100);
  EXPECT_EQ(At(50, 97), Chart->MaxColor()) << "without bands every segment is MaxColor";
  // The high mark: two rows at High in the colour of its place between the two colours.
  Chart->SetEQOptions(Chart->EQOptions() + eoColorBands + eoHighMark);
  Chart->SetColor(clBlue);
  Chart->Values()->Clear();
  Chart->Values()->Add(30, 60, "");
  Bitmap = MakeBitmap(100, 100);
  Chart->Draw(Bitmap->Canvas(), {0, 0, 100, 100});
  const TColor Mark = InterpolateColor(Chart->MinColor(), clBlue, 0.6);
  EXPECT_EQ(At(50, 40), Mark);
  EXPECT_EQ(At(50, 41), Mark);
  EXPECT_EQ(At(50, 39), clWhite);
}

TEST(EQChart, HighFollowsTheValueUpAndStaysWhenItFalls) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXEQChart>(Form.get());
  TKXEQChartValue* V = C->Values()->Add(40, "");
  EXPECT_EQ(V->High(), 40.0);
  struct TStep {
    bool SetsHigh;
    double To, Value, High;
  };
  for (const TStep& S : {TStep{false, 70, 70, 70}, TStep{false, 20, 20, 70},
                         TStep{true, 10, 10, 10}, TStep{true, 90, 10, 90}}) {
    if (S.SetsHigh)
      V->SetHigh(S.To);
    else
      V->SetValue(S.To);
    EXPECT_EQ(V->Value(), S.Value) << S.To;
    EXPECT_EQ(V->High(), S.High) << S.To;
  }
  C->Values()->Add(5, 50, "");
  C->Values()->ResetHigh();
  EXPECT_EQ(C->Values()->Items(0)->High(), 10.0);
  EXPECT_EQ(C->Values()->Items(1)->High(), 5.0);
}

TEST(EQChart, SettersKeepMinBelowMaxAndClampTheirCounts) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXEQChart>(Form.get());
  EXPECT_EQ(C->BarSizePct(), 95);
  EXPECT_EQ(C->EQOptions(), (TEQOptions{eoColorBands, eoHighMark}));
  C->SetMax(-10);
  EXPECT_EQ(C->Min(), -10.0);
  C->SetMin(20);
  EXPECT_EQ(C->Max(), 20.0);
  const std::pair<int32_t, int32_t> Subdivisions[] = {{0, 1}, {-4, 1}, {7, 7}, {1 << 30, 10000}};
  for (auto [In, Out] : Subdivisions) {
    C->SetSubdivisions(In);
    EXPECT_EQ(C->Subdivisions(), Out);
  }
  C->SetSpacing(-5);
  EXPECT_EQ(C->Spacing(), 0);
  // The value axis is exactly Min to Max, the index axis half a step beyond the values.
  C->SetMin(-5);
  C->SetMax(15);
  C->Values()->Add(300, "");
  C->Values()->Add(1, "");
  EXPECT_EQ(C->Values()->GetAxisMinimum(1), -5.0);
  EXPECT_EQ(C->Values()->GetAxisMaximum(1), 15.0);
  EXPECT_EQ(C->Values()->GetAxisMinimum(0), -0.5);
  EXPECT_EQ(C->Values()->GetAxisMaximum(0), 1.5);
}

TEST_F(Meter, MinEqualToMaxAndACustomDrawThatSaysNoLeaveTheHighMarkAlone) {
  Chart->SetEQOptions(Chart->EQOptions() + eoHighMark);
  Chart->SetMin(100);
  Draw(100);
  EXPECT_EQ(Lit(), std::vector<int>{});
  Chart->SetMin(0);
  std::vector<TRect> Rects;
  Chart->SetOnCustomDrawValue([&](TObject*, TCanvas*, const TRect& R, const TKXBarChartValue*,
                                  bool& DefaultDraw) {
    Rects.push_back(R);
    DefaultDraw = false;
  });
  Draw(50);
  EXPECT_EQ(Lit(), std::vector<int>{});
  ASSERT_EQ(Rects.size(), 1u);
  EXPECT_EQ(Rects[0], (TRect{0, 0, 100, 100})) << "the chart's rectangle";
  EXPECT_NE(At(50, 50), clWhite) << "the high mark still shows";
}

TEST(EQChart, RegistersSecondAndRoundTripsItsSettings) {
  StartBarChartsModule();
  EXPECT_EQ(GetChartClass(ctEQ), ClassOf<TKXEQChart>());
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* C = New<TKXEQChart>(Form.get());
  C->SetName("EQ1");
  C->SetStyle(eqTopSegment);
  C->SetSubdivisions(12);
  C->SetMax(-1);
  C->SetMin(-8);
  C->SetEQOptions({eoPartialSegment});
  C->Values()->Add(-3, -2, "a");
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), SaveFormToString(Form.get()));
  auto* C2 = dynamic_cast<TKXEQChart*>(Copy->FindComponent("EQ1"));
  ASSERT_NE(C2, nullptr);
  EXPECT_EQ(C2->Style(), eqTopSegment);
  EXPECT_EQ(C2->Subdivisions(), 12);
  EXPECT_EQ(C2->Max(), -1.0);
  EXPECT_EQ(C2->Min(), -8.0);
  EXPECT_EQ(C2->EQOptions(), TEQOptions{eoPartialSegment});
  ASSERT_EQ(C2->Values()->Count(), 1);
  EXPECT_EQ(C2->Values()->Items(0)->Value(), -3.0);
  EXPECT_EQ(C2->Values()->Items(0)->High(), -2.0);
}

} // namespace
} // namespace kx
