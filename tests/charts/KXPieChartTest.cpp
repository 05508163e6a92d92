// The pie: slice angles from the absolute sum (zero, negative, NaN values), the setters'
// clamps, the label point of each slice and what moves it, the explosion and scale of a
// slice as pixels, the slice a point or a rectangle hits (hole, outside, exploded part),
// selection in a panel, bad input, and the stored form.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::CountPainted;
using test::MakeBitmap;
using test::PaintedBounds;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();

// A pie that writes down where it puts each label.
class TRecPieChart : public TKXPieChart {
  KX_CLASS(TRecPieChart, TKXPieChart)

public:
  using TKXPieChart::TKXPieChart;
  std::vector<std::string> Labels; // "caption@x,y"
  using TKXPieChart::DrawLabel;
  void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, int32_t X, int32_t Y) override {
    Labels.push_back(Value->Caption() + "@" + std::to_string(X) + "," + std::to_string(Y));
    TKXPieChart::DrawLabel(Canvas, Value, X, Y);
  }
};

// A pie alone on a form, 200 x 100 (an ellipse, not a circle), without an outline.
class PieAlone : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<TRecPieChart>(Form.get());
    Chart->SetBounds(0, 0, 200, 100);
    Chart->Pen()->SetStyle(psClear);
  }
  void Fill(std::initializer_list<double> Numbers) {
    const TColor Colors[] = {clRed, clLime, clBlue, clYellow, clFuchsia, clAqua};
    int I = 0;
    for (double N : Numbers) {
      Chart->Values()->Add(N, std::string(1, char('A' + I)), Colors[I % 6]);
      ++I;
    }
  }
  TBitmap* Draw(const TRect& R = {0, 0, 200, 100}, int32_t W = 200, int32_t H = 100) {
    Chart->Labels.clear();
    Bitmap = MakeBitmap(W, H);
    Chart->Draw(Bitmap->Canvas(), R);
    return Bitmap.get();
  }
  int32_t HitAt(int32_t X, int32_t Y) const { return test::SliceHitAt(Chart->Values(), X, Y); }

  TOwned<TChartsForm> Form;
  TRecPieChart* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
};

TEST_F(PieAlone, SliceAnglesAreSharesOfTheAbsoluteSumWithTheirSign) {
  struct TCase {
    std::vector<double> Numbers;
    std::vector<std::pair<double, double>> Degrees;
  };
  const TCase Cases[] = {
      {{1, 1, 2}, {{0, 90}, {90, 180}, {180, 360}}},
      // 0 sweeps nothing; a negative value sweeps backwards but counts positive in the sum;
      // NaN and infinity are no share at all.
      {{1, 0, -1, NaN, 2, Inf, -Inf}, {{0, 90}, {90, 90}, {90, 0}, {0, 0}, {0, 180}, {180, 180},
                                        {180, 180}}},
      // Nothing to share: every slice stays at 0.
      {{0, 0}, {{0, 0}, {0, 0}}},
      // Numbers whose sum overflows share nothing either.
      {{1e308, 1e308}, {{0, 0}, {0, 0}}},
  };
  for (const TCase& C : Cases) {
    Chart->Values()->Clear();
    for (double N : C.Numbers)
      Chart->Values()->Add(N);
    for (size_t I = 0; I < C.Numbers.size(); ++I) {
      SCOPED_TRACE(testing::Message() << "value " << I << " of " << C.Numbers.size());
      const TKXPieChartValue* V = Chart->Values()->Items(int32_t(I));
      EXPECT_DOUBLE_EQ(V->StartDegrees(), C.Degrees[I].first);
      EXPECT_DOUBLE_EQ(V->EndDegrees(), C.Degrees[I].second);
    }
  }
}

TEST_F(PieAlone, HidingAValueKeepsItsGapAndTheAnglesBehindIt) {
  Fill({1, 1, 2});
  Chart->Values()->Items(1)->SetVisible(false);
  EXPECT_DOUBLE_EQ(Chart->Values()->Items(2)->StartDegrees(), 180.0);
  Draw();
  // The hidden slice (upper left quarter) stays white; the others are painted.
  EXPECT_EQ(Bitmap->Canvas()->Pixel(50, 30), clWhite);
  EXPECT_EQ(Bitmap->Canvas()->Pixel(150, 30), clRed);
  EXPECT_EQ(Bitmap->Canvas()->Pixel(100, 80), clBlue);
}

TEST_F(PieAlone, SettersClampAndKeepTheirRules) {
  Chart->SetOffset(400);
  EXPECT_EQ(Chart->Offset(), 40);
  Chart->SetOffset(-400);
  EXPECT_EQ(Chart->Offset(), -40);
  Chart->SetOuterRadius(0.5f);
  Chart->SetInnerRadius(0.7f);
  EXPECT_FLOAT_EQ(Chart->InnerRadius(), 0.5f);
  Chart->SetInnerRadius(0.2f);
  Chart->SetOuterRadius(0.1f);
  EXPECT_FLOAT_EQ(Chart->OuterRadius(), 0.2f);
  Chart->SetOuterRadius(7.0f);
  EXPECT_FLOAT_EQ(Chart->OuterRadius(), 1.0f);
  Chart->SetInnerRadius(-3.0f);
  EXPECT_FLOAT_EQ(Chart->InnerRadius(), 0.0f);
  Chart->SetInnerRadius(std::numeric_limits<float>::quiet_NaN());
  EXPECT_FLOAT_EQ(Chart->InnerRadius(), 0.0f);
  Chart->SetOptions(Chart->Options() - coValueColors);
  EXPECT_TRUE(Chart->Options().Contains(coValueColors));
  auto* V = Chart->Values()->Add();
  V->SetExplode(-5.0f);
  EXPECT_EQ(V->Explode(), 0.0f);
  V->SetExplode(std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(V->Explode(), 0.0f);
}

TEST_F(PieAlone, ANewPieIgnoresItsAxesAndShowsLabels) {
  EXPECT_TRUE(Chart->AxesHints().Contains(ahIgnoreAxes));
  EXPECT_TRUE(Chart->Options().Contains(coValueLabels));
  EXPECT_FALSE(Chart->Options().Contains(coZoomFont));
  EXPECT_EQ(TKXPieChart::GetChartType(), ctPie);
}

TEST_F(PieAlone, EachLabelStandsMidSliceAndOnlyTheOriginMovesIt) {
  Fill({1, 1, 1, 1});
  // Centre (100, 50); the label ring at half the radius: 50 across, 25 down.
  const std::vector<std::string> Plain = {"A@135,32", "B@65,32", "C@65,68", "D@135,68"};
  Draw();
  EXPECT_EQ(Chart->Labels, Plain);
  Chart->Values()->Items(0)->SetExplode(30);
  Chart->Values()->Items(1)->SetScale(0.5f);
  Draw();
  EXPECT_EQ(Chart->Labels, Plain);
  Chart->Origin()->SetPosition(0.1, 0.2);
  Draw();
  EXPECT_EQ(Chart->Labels,
            (std::vector<std::string>{"A@155,52", "B@85,52", "C@85,88", "D@155,88"}));
  Chart->Origin()->SetPosition(0, 0);
  Chart->SetOffset(90);
  Draw();
  EXPECT_EQ(Chart->Labels,
            (std::vector<std::string>{"A@65,32", "B@65,68", "C@135,68", "D@135,32"}));
  // A ring puts its labels between the radii: 0.75 of the way out here.
  Chart->SetOffset(0);
  Chart->SetInnerRadius(0.5f);
  Draw();
  EXPECT_EQ(Chart->Labels.front(), "A@153,23");
}

TEST_F(PieAlone, ExplosionScaleAndOriginMoveTheSliceAsPixels) {
  Fill({1, 1, 1, 1});
  Chart->SetOptions(Chart->Options() - coValueLabels);
  for (int32_t I = 1; I < 4; ++I)
    Chart->Values()->Items(I)->SetVisible(false);
  TKXPieChartValue* A = Chart->Values()->Items(0);
  struct TCase {
    const char* Name;
    float Explode, Scale;
    double OriginX;
    TRect Bounds; // of the first quarter, drawn in (50, 50, 250, 150)
  };
  const TCase Cases[] = {
      {"plain", 0, 1, 0, {150, 50, 250, 100}},
      // 20 pixels along 45 degrees: 14 right, 14 up, truncated.
      {"exploded", 20, 1, 0, {164, 36, 264, 86}},
      {"half size", 0, 0.5f, 0, {150, 75, 200, 100}},
      {"origin", 0, 1, 0.1, {170, 50, 270, 100}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    A->SetExplode(C.Explode);
    A->SetScale(C.Scale);
    Chart->Origin()->SetX(C.OriginX);
    Draw({50, 50, 250, 150}, 300, 200);
    const TRect B = PaintedBounds(Bitmap.get());
    EXPECT_NEAR(B.Left, C.Bounds.Left, 1);
    EXPECT_NEAR(B.Top, C.Bounds.Top, 1);
    EXPECT_NEAR(B.Right, C.Bounds.Right, 1);
    EXPECT_NEAR(B.Bottom, C.Bounds.Bottom, 1);
  }
}

TEST_F(PieAlone, APointHitsTheSliceUnderItAndNothingInTheHoleOrOutside) {
  Fill({1, 1, 1, 1});
  struct TCase {
    int32_t X, Y;
    float Inner;
    int32_t Slice;
  };
  const TCase Cases[] = {
      {150, 30, 0, 0}, {50, 30, 0, 1}, {50, 70, 0, 2}, {150, 70, 0, 3},
      // The corners lie outside the ellipse, which a circle of radius 50 would not reach
      // either; (180, 50) lies inside the ellipse but outside that circle.
      {198, 2, 0, -1}, {2, 98, 0, -1}, {180, 48, 0, 0},
      // The hole of a ring hits nothing; its band does.
      {100, 50, 0.5f, -1}, {120, 45, 0.5f, -1}, {153, 23, 0.5f, 0},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(testing::Message() << C.X << "," << C.Y << " inner " << C.Inner);
    Chart->SetInnerRadius(C.Inner);
    EXPECT_EQ(HitAt(C.X, C.Y), C.Slice);
  }
}

TEST_F(PieAlone, AnExplodedSliceIsHitWhereItLayNotWhereItIsDrawn) {
  Fill({1, 1, 1, 1});
  Chart->SetOptions(Chart->Options() - coValueLabels);
  Chart->Values()->Items(0)->SetExplode(40);
  Draw();
  // Pushed 28 pixels right and up: it paints beyond the pie's ellipse...
  EXPECT_EQ(Bitmap->Canvas()->Pixel(190, 10), clRed);
  // ...where a click hits nothing; its old place still hits it.
  EXPECT_EQ(HitAt(190, 10), -1);
  EXPECT_EQ(HitAt(110, 45), 0);
}

TEST_F(PieAlone, ARectangleSelectsTheSlicesWhoseBoundsItMeetsAndToggles) {
  Fill({1, 1, 1, 1});
  Chart->SetOptions(Chart->Options() + coSelectable);
  Chart->Select({160, 10, 170, 20}, saSelect);
  EXPECT_TRUE(Chart->Values()->Items(0)->Selected());
  EXPECT_EQ(Chart->Values()->SelCount(), 1);
  EXPECT_TRUE(Chart->IsSelectable({40, 60, 41, 61}));
  EXPECT_FALSE(Chart->IsSelectable({198, 2, 198, 2}));
  // A rectangle across the middle meets all four.
  Chart->Select({90, 40, 110, 60}, saSelect);
  EXPECT_EQ(Chart->Values()->SelCount(), 4);
  Chart->Select({150, 30, 150, 30}, saToggle);
  EXPECT_FALSE(Chart->Values()->Items(0)->Selected());
  EXPECT_EQ(Chart->Values()->SelCount(), 0);
  // The selected slice is painted in the selection colour.
  Chart->Select({150, 30, 150, 30}, saSelect);
  Draw();
  EXPECT_EQ(Bitmap->Canvas()->Pixel(150, 30), Chart->SelectionColor());
}

TEST_F(PieAlone, BadInputGivesADefinedPicture) {
  Chart->SetOptions(Chart->Options() - coValueLabels);
  // All zero: nothing at all.
  Fill({0, 0, 0});
  Draw();
  EXPECT_EQ(CountPainted(Bitmap.get()), 0);
  // One value: the whole ellipse in its colour.
  Chart->Values()->Clear();
  Fill({5});
  Draw();
  EXPECT_EQ(PaintedBounds(Bitmap.get()), (TRect{0, 0, 200, 100}));
  EXPECT_EQ(Bitmap->Canvas()->Pixel(10, 50), clRed);
  // Numbers that are no numbers leave their slice out and the rest whole.
  Chart->Values()->Clear();
  Fill({NaN, 1, Inf, 1, -Inf});
  Draw();
  EXPECT_EQ(Bitmap->Canvas()->Pixel(100, 20), clLime);
  EXPECT_EQ(Bitmap->Canvas()->Pixel(100, 80), clYellow);
  // A rectangle of no width and a huge explosion, origin and scale.
  Chart->Values()->Items(1)->SetExplode(1e30f);
  Chart->Values()->Items(3)->SetScale(1e30f);
  Chart->Origin()->SetPosition(1e300, -1e300);
  Draw({50, 0, 50, 100});
  EXPECT_EQ(CountPainted(Bitmap.get()), 0);
  // The slices went far away with the origin: the pie's place holds nothing to hit.
  EXPECT_EQ(HitAt(100, 50), -1);
  // Ten thousand slices, each under a degree: only those that cross a rounded degree are
  // drawn, and the angles still add up to the full turn.
  Chart->Origin()->SetPosition(0, 0);
  Chart->Values()->Clear();
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (int32_t I = 0; I < 10000; ++I)
      Chart->Values()->Add(1 + I % 7, "", TColor(0x10000 * (I % 200)));
  }
  Draw();
  const int32_t Painted = CountPainted(Bitmap.get());
  EXPECT_GT(Painted, 0);
  EXPECT_NEAR(Chart->Values()->Items(9999)->EndDegrees(), 360.0, 1e-9);
}

// In a panel the slices are hit in the panel's ChartRect, where they are drawn.
TEST(PieInPanel, AClickInThePaintedPanelSelectsTheSliceUnderIt) {
  ColorListIndex = 0;
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetBounds(0, 0, 400, 300);
  Panel->ChartShadow()->SetVisible(false);
  auto* Pie = New<TKXPieChart>(Form.get());
  Pie->SetOptions(Pie->Options() + coSelectable - coValueLabels);
  Pie->Values()->Add(1, "East", clRed);
  Pie->Values()->Add(3, "West", clBlue);
  Pie->SetPanel(Panel);
  Panel->Repaint();
  const TRect C = Panel->ChartRect();
  ASSERT_GT(C.Right - C.Left, 100);
  const TPoint Mid = CanvasCenterPoint(C);
  // East is the first quarter: up and right of the middle.
  const TPoint InEast{Mid.X + (C.Right - C.Left) / 6, Mid.Y - (C.Bottom - C.Top) / 6};
  EXPECT_EQ(Panel->Bitmap()->Canvas()->Pixel(InEast.X, InEast.Y), clRed);
  Pie->Select({InEast.X, InEast.Y, InEast.X, InEast.Y}, saSelect);
  EXPECT_TRUE(Pie->Values()->Items(0)->Selected());
  EXPECT_FALSE(Pie->Values()->Items(1)->Selected());
}

TEST(PieStored, RadiiOffsetOriginAndExplodeComeBack) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Pie = New<TKXPieChart>(Form.get());
  Pie->SetName("Pie1");
  Pie->SetOuterRadius(0.8f);
  Pie->SetOffset(30);
  Pie->Origin()->SetPosition(0.25, -0.5);
  Pie->Values()->Add(2, "a")->SetExplode(12);
  Pie->Values()->Add(3, "b");
  TWriter W;
  const std::string Json = W.WriteRootComponent(Form.get());
  TOwned<TChartsForm> Back(New<TChartsForm>(nullptr));
  TReader R;
  R.ReadRootComponent(Back.get(), Json);
  ASSERT_EQ(Back->ComponentCount(), 1);
  auto* Read = dynamic_cast<TKXPieChart*>(Back->Components(0));
  ASSERT_NE(Read, nullptr);
  EXPECT_FLOAT_EQ(Read->OuterRadius(), 0.8f);
  EXPECT_EQ(Read->Offset(), 30);
  EXPECT_DOUBLE_EQ(Read->Origin()->X(), 0.25);
  EXPECT_DOUBLE_EQ(Read->Origin()->Y(), -0.5);
  ASSERT_EQ(Read->Values()->Count(), 2);
  EXPECT_FLOAT_EQ(Read->Values()->Items(0)->Explode(), 12.0f);
  EXPECT_DOUBLE_EQ(Read->Values()->Items(1)->Value(), 3.0);
}

} // namespace
} // namespace kx
