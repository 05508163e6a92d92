// The donuts: the hole of TKXDonutChart; the free-form values of TKXDonutChartEx (their
// starting radii, clamps, chained adds into rings, radii against the chart's), their
// drawing as pixels (rings, gaps, full turns, pie slices of inner radius 0, slivers), the
// label point and the slice a point hits, the stored form and the module's registrations.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/charts/donuts/KXDonutCharts.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::CountPainted;
using test::CountPixels;
using test::MakeBitmap;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// A chart of class T alone on a form, 200 x 100, without an outline or labels.
template <class T> class DonutAlone : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<T>(Form.get());
    Chart->SetBounds(0, 0, 200, 100);
    Chart->Pen()->SetStyle(psClear);
    Chart->SetOptions(Chart->Options() - coValueLabels);
  }
  TBitmap* Draw() {
    Bitmap = MakeBitmap(200, 100);
    Chart->Draw(Bitmap->Canvas(), {0, 0, 200, 100});
    return Bitmap.get();
  }
  TColor At(int32_t X, int32_t Y) const { return Bitmap->Canvas()->Pixel(X, Y); }
  int32_t HitAt(int32_t X, int32_t Y) const { return test::SliceHitAt(Chart->Values(), X, Y); }

  TOwned<TChartsForm> Form;
  T* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
};

using DonutChart = DonutAlone<TKXDonutChart>;
using DonutEx = DonutAlone<TKXDonutChartEx>;

TEST_F(DonutChart, APieWithAHoleOfSixTenths) {
  EXPECT_FLOAT_EQ(Chart->InnerRadius(), 0.6f);
  EXPECT_EQ(TKXDonutChart::GetChartType(), ctDonut);
  Chart->Values()->Add(1, "a", clRed);
  Chart->Values()->Add(1, "b", clBlue);
  Draw();
  // The hole reaches 60 of the 100 pixels across; the band beyond it is painted.
  EXPECT_EQ(At(100, 50), clWhite);
  EXPECT_EQ(At(155, 50 - 5), clWhite);
  EXPECT_EQ(At(180, 45), clRed);
  EXPECT_EQ(At(20, 55), clBlue);
}

TEST_F(DonutEx, ANewValueHasTheStartingRadiiAndNoSweep) {
  auto* V = Chart->Values()->Add();
  Chart->Values()->Add();
  auto* W = Chart->Values()->Add();
  EXPECT_DOUBLE_EQ(V->InnerRadius(), 0.8);
  EXPECT_DOUBLE_EQ(V->OuterRadius(), 1.0);
  EXPECT_DOUBLE_EQ(V->SweepAngle(), 0.0);
  EXPECT_DOUBLE_EQ(W->StartAngle(), 2.0);
  TKXDonutChartExValue Loose(nullptr);
  EXPECT_EQ(Loose.ValueCount(), 4);
  EXPECT_DOUBLE_EQ(Loose.OuterRadius(), 1.0);
  Draw();
  EXPECT_EQ(CountPainted(Bitmap.get()), 0);
}

TEST_F(DonutEx, SettersClamp) {
  auto* V = Chart->Values()->Add(10, 90, 0.3, 0.7);
  struct TCase {
    void (TKXDonutChartExValue::*Set)(double);
    double (TKXDonutChartExValue::*Get)() const;
    double In, Out;
  };
  using V_ = TKXDonutChartExValue;
  const TCase Cases[] = {
      {&V_::SetSweepAngle, &V_::SweepAngle, -5, 0},     {&V_::SetSweepAngle, &V_::SweepAngle, 400, 360},
      {&V_::SetSweepAngle, &V_::SweepAngle, NaN, 0},    {&V_::SetInnerRadius, &V_::InnerRadius, 0.9, 0.7},
      {&V_::SetInnerRadius, &V_::InnerRadius, -1, 0},   {&V_::SetInnerRadius, &V_::InnerRadius, 0.2, 0.2},
      {&V_::SetOuterRadius, &V_::OuterRadius, 0.1, 0.2}, {&V_::SetOuterRadius, &V_::OuterRadius, 3, 1},
      {&V_::SetOuterRadius, &V_::OuterRadius, NaN, 1},
  };
  for (const TCase& C : Cases) {
    (V->*C.Set)(C.In);
    EXPECT_DOUBLE_EQ((V->*C.Get)(), C.Out) << "set to " << C.In;
  }
}

TEST_F(DonutEx, ChainedAddsFillARingThenStartTheNextInside) {
  struct TSlice {
    double Start, Inner, Outer;
  };
  struct TCase {
    std::vector<double> Sweeps;
    std::vector<TSlice> Slices;
  };
  const TCase Cases[] = {
      {{150, 150, 150}, {{0, 0.8, 1.0}, {150, 0.8, 1.0}, {0, 0.6, 0.8}}},
      // Ending exactly on the turn stays in the ring; the next turn continues it.
      {{120, 120, 120, 120}, {{0, 0.8, 1}, {120, 0.8, 1}, {240, 0.8, 1}, {360, 0.8, 1}}},
      // Down to the centre, and on at radius 0.
      {{200, 200, 200, 200, 200, 200, 200},
       {{0, 0.8, 1}, {0, 0.6, 0.8}, {0, 0.4, 0.6}, {0, 0.2, 0.4}, {0, 0, 0.2}, {0, 0, 0}, {0, 0, 0}}},
  };
  for (const TCase& C : Cases) {
    Chart->Values()->Clear();
    for (double S : C.Sweeps)
      Chart->Values()->Add(S, "");
    for (size_t I = 0; I < C.Slices.size(); ++I) {
      SCOPED_TRACE(testing::Message() << "slice " << I << " of " << C.Sweeps.size());
      const TKXDonutChartExValue* V = Chart->Values()->Items(int32_t(I));
      EXPECT_DOUBLE_EQ(V->StartAngle(), C.Slices[I].Start);
      EXPECT_DOUBLE_EQ(V->SweepAngle(), C.Sweeps[I]);
      EXPECT_NEAR(V->InnerRadius(), C.Slices[I].Inner, 1e-12);
      EXPECT_NEAR(V->OuterRadius(), C.Slices[I].Outer, 1e-12);
    }
  }
}

TEST_F(DonutEx, RingRadiiAreTheValuesTimesTheChartsOuterRadius) {
  auto* A = Chart->Values()->Add(0, 90, 0.8, 1.0);
  auto* B = Chart->Values()->Add(0, 90, 0.9, 0.5); // inner above outer, as given
  // The chart's own inner radius (0.6, from the donut) holds its outer one up: lower it.
  Chart->SetInnerRadius(0.0f);
  struct TCase {
    float ChartOuter;
    const TKXDonutChartExValue* Value;
    float Inner, Outer;
  };
  for (const TCase& C : {TCase{1.0f, A, 0.8f, 1.0f}, TCase{0.5f, A, 0.4f, 0.5f},
                         TCase{0.5f, B, 0.45f, 0.25f}}) {
    Chart->SetOuterRadius(C.ChartOuter);
    float Inner, Outer;
    Chart->GetRadius(C.Value, Inner, Outer);
    EXPECT_FLOAT_EQ(Inner, C.Inner);
    EXPECT_FLOAT_EQ(Outer, C.Outer);
  }
}

TEST_F(DonutEx, RingsWithGapsAsPixels) {
  // An outer ring of two parts with gaps, and a pie slice (inner 0) inside.
  Chart->Values()->Add(0, 80, 0.7, 1.0, "a", clRed);
  Chart->Values()->Add(180, 80, 0.7, 1.0, "b", clBlue);
  Chart->Values()->Add(90, 90, 0.0, 0.5, "c", clLime);
  // A sliver under a rounded degree, and a slice of no number.
  Chart->Values()->Add(300, 0.2, 0.0, 1.0, "d", clYellow);
  Chart->Values()->Add(NaN, 90, 0.0, 1.0, "e", clYellow);
  Draw();
  EXPECT_EQ(At(190, 45), clRed);      // a, just above 0 degrees, in the band
  EXPECT_EQ(At(100, 3), clWhite);     // the gap at 90 degrees in the outer band
  EXPECT_EQ(At(15, 55), clBlue);      // b, just past 180 degrees
  EXPECT_EQ(At(90, 40), clLime);      // c, reaching the centre
  EXPECT_EQ(CountPixels(Bitmap.get(), [](TColor C) { return C == clYellow; }), 0);
}

TEST_F(DonutEx, AFullTurnIsAWholeRingHitAllAround) {
  Chart->Values()->Add(30, 360, 0.5, 1.0, "ring", clRed);
  Draw();
  for (const TPoint P : {TPoint{185, 50}, TPoint{15, 50}, TPoint{100, 5}, TPoint{100, 95}}) {
    EXPECT_EQ(At(P.X, P.Y), clRed) << P.X << "," << P.Y;
    EXPECT_EQ(HitAt(P.X, P.Y), 0) << P.X << "," << P.Y;
  }
  EXPECT_EQ(At(100, 50), clWhite);
  EXPECT_EQ(HitAt(100, 50), -1);
}

TEST_F(DonutEx, LabelsAndHitsFollowEachValuesOwnRing) {
  auto* A = Chart->Values()->Add(0, 90, 0.5, 1.0, "a", clRed);
  Chart->Values()->Add(0, 90, 0.0, 0.4, "b", clBlue);
  Chart->Values()->Add(180, 90, 0.5, 1.0, "c", clLime);
  struct TCase {
    int32_t X, Y, Slice;
  };
  for (const TCase& C : {TCase{153, 23, 0}, TCase{110, 45, 1}, TCase{47, 77, 2},
                         TCase{60, 20, -1}, TCase{170, 10, -1}})
    EXPECT_EQ(HitAt(C.X, C.Y), C.Slice) << C.X << "," << C.Y;
  // Between the radii, mid-sweep: 0.75 of the way out for the outer ring.
  Chart->SetOptions(Chart->Options() + coValueLabels);
  Bitmap = MakeBitmap(200, 100);
  const TPoint P = Chart->DrawPieSlice(Bitmap->Canvas(), {0, 0, 200, 100}, 0, 90, A,
                                       TPieSliceOptions{});
  EXPECT_EQ(P, (TPoint{153, 23}));
}

TEST_F(DonutEx, BadNumbersGiveADefinedPicture) {
  constexpr double Inf = std::numeric_limits<double>::infinity();
  // One value each; Inside is a pixel the slice covers and a click there hits it, Outside
  // one it leaves alone. Radii go to the drawing as the value holds them, a negative one as 0 and
  // an inner one above the outer one as the same band.
  struct TCase {
    const char* Name;
    double Start, Sweep, Inner, Outer;
    bool Painted;
    TPoint Inside, Outside;
  };
  const TCase Cases[] = {
      {"radii beyond the ellipse", 0, 90, 2, 3, false, {}, {}},
      {"a negative inner radius is a pie slice", 0, 90, -1, 0.5, true, {130, 40}, {170, 20}},
      {"inner above outer is the band between", 0, 90, 0.9, 0.5, true, {149, 25}, {121, 39}},
      {"a sweep of no number", 0, Inf, 0.5, 1, false, {}, {}},
      {"a huge sweep is a full ring", 0, 1e308, 0.5, 1, true, {15, 50}, {100, 50}},
      {"a start of no number", NaN, 90, 0.5, 1, false, {}, {}},
      {"radii of no number", 0, 90, NaN, Inf, false, {}, {}},
      {"a huge start leaves no rounded degree", 1e308, 90, 0.5, 1, false, {}, {}},
      // Radii are taken as at most a million times the chart's: the quarter fills.
      {"huge radii", 0, 90, -1e308, 1e308, true, {150, 25}, {50, 25}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    Chart->Values()->Clear();
    Chart->Values()->Add(C.Start, C.Sweep, C.Inner, C.Outer, "x", clRed);
    Draw();
    EXPECT_EQ(CountPainted(Bitmap.get()) > 0, C.Painted);
    // What is not drawn is not hit either, and asking raises nothing.
    if (!C.Painted) {
      EXPECT_EQ(HitAt(150, 25), -1);
      continue;
    }
    EXPECT_EQ(At(C.Inside.X, C.Inside.Y), clRed);
    EXPECT_EQ(At(C.Outside.X, C.Outside.Y), clWhite);
    EXPECT_EQ(HitAt(C.Inside.X, C.Inside.Y), 0);
  }
  // Ten thousand slices of 11/128 degree (exact in binary, and no divisor of 360): 4189 fill
  // a ring, and the chain goes on in three rings.
  constexpr double Sweep = 11.0 / 128.0;
  Chart->Values()->Clear();
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (int32_t I = 0; I < 10000; ++I)
      Chart->Values()->Add(Sweep, "", I % 2 ? clRed : clBlue);
  }
  const TKXDonutChartExValue* Last = Chart->Values()->Items(9999);
  EXPECT_DOUBLE_EQ(Last->StartAngle(), (9999 - 2 * 4189) * Sweep);
  EXPECT_NEAR(Last->InnerRadius(), 0.4, 1e-9);
  Draw();
  EXPECT_GT(CountPainted(Bitmap.get()), 0);
}

TEST_F(DonutEx, StoredValuesComeBackAsAdded) {
  StartDonutChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  Form->SetName("Form1");
  Chart->SetName("Ring1");
  Chart->Values()->Add(10, 50, 0.9, 0.5, "odd");
  Chart->Values()->Add(60, 30, 0.8, 1.0, "plain");
  const std::string Json = TWriter().WriteRootComponent(Form.get());
  TOwned<TChartsForm> Back(New<TChartsForm>(nullptr));
  TReader().ReadRootComponent(Back.get(), Json);
  auto* Read = dynamic_cast<TKXDonutChartEx*>(Back->Components(0));
  ASSERT_NE(Read, nullptr);
  ASSERT_EQ(Read->Values()->Count(), 2);
  const TKXDonutChartExValue* Odd = Read->Values()->Items(0);
  EXPECT_DOUBLE_EQ(Odd->StartAngle(), 10);
  EXPECT_DOUBLE_EQ(Odd->SweepAngle(), 50);
  EXPECT_DOUBLE_EQ(Odd->InnerRadius(), 0.9);
  EXPECT_DOUBLE_EQ(Odd->OuterRadius(), 0.5);
  EXPECT_DOUBLE_EQ(Read->Values()->Items(1)->OuterRadius(), 1.0);
  // The starting radii are left out of the stored form: only the odd value writes one.
  size_t Outers = 0;
  for (size_t Pos = Json.find("\"OuterRadius\""); Pos != std::string::npos;
       Pos = Json.find("\"OuterRadius\"", Pos + 1))
    ++Outers;
  EXPECT_EQ(Outers, 1u);
}

TEST(DonutModule, RegistersTheDonutThenTheFreeForm) {
  StartDonutChartsModule();
  ASSERT_NE(GetChartClass(ctDonut), nullptr);
  EXPECT_EQ(GetChartClass(ctDonut)->ClassName(), "TKXDonutChart");
  ASSERT_NE(GetChartClass(ctDonutEx), nullptr);
  EXPECT_EQ(GetChartClass(ctDonutEx)->ClassName(), "TKXDonutChartEx");
}

} // namespace
} // namespace kx
