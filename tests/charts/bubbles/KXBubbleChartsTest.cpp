#include "kxcharts/charts/bubbles/KXBubbleCharts.h"

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();

class TBubbleForm : public TComponent {
  KX_CLASS(TBubbleForm, TComponent)
public:
  using TComponent::TComponent;
};

// A bubble chart alone, its axes fixed to 0..Max after the values came, drawn into
// 100 x 100.
struct TBubbles {
  TOwned<TBubbleForm> Form{New<TBubbleForm>(nullptr)};
  TKXBubbleChart* Chart = New<TKXBubbleChart>(Form.get());
  TBubbles() {
    Chart->SetBounds(0, 0, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueLabels);
  }
  void Axes(double Max) {
    for (TKXChartAxis* A : {Chart->HorizontalAxis(), Chart->VerticalAxis()}) {
      A->SetMaximum(Max);
      A->SetMinimum(0.0);
    }
  }
  // The rectangles and brush colours DrawBubble gave the event, in drawing order.
  struct TDrawn {
    TRect Rect;
    TColor Brush;
    double Size;
  };
  std::vector<TDrawn> Draw(TOwned<TBitmap>* Out = nullptr) {
    std::vector<TDrawn> Seen;
    Chart->SetOnCustomDrawValue([&](TObject*, TCanvas* C, const TRect& R, TKXBubbleChartValue* V,
                                    bool&) { Seen.push_back({R, C->Brush()->Color(), V->Size()}); });
    TOwned<TBitmap> B = test::MakeBitmap(100, 100);
    Chart->Draw(B->Canvas(), {0, 0, 100, 100});
    if (Out) *Out = std::move(B);
    return Seen;
  }
};

// --- Sizes ---

struct TRadiusCase {
  const char* Name;
  TSizeOption Option;
  std::vector<double> Sizes;
  double Size, Radius;
};

TEST(BubbleCharts, ASizeMapsBetweenTheSmallestAndTheLargestBubble) {
  // Axes of 0..100: the smallest bubble is 5 wide, the largest 25, each a quarter as radius.
  const TRadiusCase Cases[] = {
      {"the smallest size", szDiameter, {10, 20, 50}, 10, 1.25},
      {"the largest size", szDiameter, {10, 20, 50}, 50, 6.25},
      {"a quarter of the way, by diameter", szDiameter, {10, 20, 50}, 20, 2.5},
      {"a quarter of the way, by area: half the width", szArea, {10, 20, 50}, 20, 3.75},
      {"equal sizes are all the largest", szArea, {7, 7, 7}, 7, 6.25},
  };
  for (const TRadiusCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TBubbles B;
    B.Chart->SetSizeOption(C.Option);
    TKXBubbleChartValue* Asked = nullptr;
    for (double S : C.Sizes) {
      TKXBubbleChartValue* V = B.Chart->Values()->Add(1, 1, S);
      if (S == C.Size) Asked = V;
    }
    B.Axes(100);
    ASSERT_NE(Asked, nullptr);
    EXPECT_NEAR(B.Chart->BubbleRadius(Asked), C.Radius, 1e-5);
  }
}

TEST(BubbleCharts, TheRangeHoldsTheLargestBubble) {
  struct TCase {
    float MaxBubbleSize;
    double Margin;
  };
  for (const TCase& C : {TCase{0.25f, 1.25}, TCase{0.5f, 2.5}}) {
    TBubbles B;
    B.Chart->SetMaxBubbleSize(C.MaxBubbleSize);
    B.Chart->Values()->Add(0, 0, 3);
    B.Chart->Values()->Add(10, 20, 5);
    const TKXBubbleChartValues* V = B.Chart->Values();
    // The smaller of the two ranges (10) times the largest fraction, halved.
    EXPECT_DOUBLE_EQ(V->MinValue(0), -C.Margin);
    EXPECT_DOUBLE_EQ(V->MaxValue(0), 10 + C.Margin);
    EXPECT_DOUBLE_EQ(V->MaxValue(1), 20 + C.Margin);
    EXPECT_DOUBLE_EQ(V->MaxValue(2), 5) << "sizes are not widened";
  }
  auto Loose = MakeOwned<TKXBubbleChartValues>(nullptr, ClassOf<TKXBubbleChartValue>());
  Loose->Add(0, 0, 1);
  Loose->Add(4, 8, 2);
  EXPECT_DOUBLE_EQ(Loose->MaxValue(0), 4.5) << "without a chart the fraction is 0.25";
}

TEST(BubbleCharts, SettersClampTheFractions) {
  TBubbles B;
  B.Chart->SetMinBubbleSize(0);
  EXPECT_FLOAT_EQ(B.Chart->MinBubbleSize(), 0.01f);
  B.Chart->SetMaxBubbleSize(20);
  EXPECT_FLOAT_EQ(B.Chart->MaxBubbleSize(), 10.0f);
  B.Chart->SetMinBubbleSize(0.5f);
  B.Chart->SetMaxBubbleSize(0.1f);
  EXPECT_FLOAT_EQ(B.Chart->MaxBubbleSize(), 0.5f);
  B.Chart->SetMinBubbleSize(NaN);
  EXPECT_FLOAT_EQ(B.Chart->MinBubbleSize(), 0.01f);
  B.Chart->SetMinBubbleSize(3);
  EXPECT_FLOAT_EQ(B.Chart->MinBubbleSize(), 0.5f) << "no larger than the largest";
}

TEST(BubbleCharts, ValuesStayInFallingSizeAndAValueReadsItsSize) {
  TBubbles B;
  for (double S : {1, 3, 2})
    B.Chart->Values()->Add(0, 0, S);
  const auto Sizes = [&] {
    std::vector<double> Out;
    for (const TKXBubbleChartValue* V : *B.Chart->Values())
      Out.push_back(V->Size());
    return Out;
  };
  EXPECT_EQ(Sizes(), (std::vector<double>{3, 2, 1}));
  B.Chart->Values()->Items(2)->SetSize(10);
  EXPECT_EQ(Sizes(), (std::vector<double>{10, 3, 2}));
  EXPECT_EQ(B.Chart->Values()->Items(0)->Value(), 10);
  auto Alone = MakeOwned<TKXBubbleChartValue>(nullptr);
  Alone->SetValue(4);
  EXPECT_EQ(Alone->Size(), 4);
  EXPECT_EQ(Alone->ValueCount(), 3);
}

// --- Geometry ---

TEST(BubbleCharts, TheRectangleOfEachBubbleOnKnownAxes) {
  // Axes of 0..10: bubbles of 0.5 to 2.5 wide, in pixels ten times that.
  TBubbles B;
  B.Chart->SetSizeOption(szDiameter);
  B.Chart->Values()->Add(2, 8, 2);
  B.Chart->Values()->Add(5, 5, 4);
  B.Axes(10);
  const auto Drawn = B.Draw();
  ASSERT_EQ(Drawn.size(), 2u);
  // The largest first, each in normal form although the vertical axis runs upward.
  EXPECT_EQ(Drawn[0].Rect, (TRect{44, 44, 56, 56}));
  EXPECT_EQ(Drawn[1].Rect, (TRect{19, 19, 21, 21}));
}

TEST(BubbleCharts, TheHitTestReachesTheRadiusWithAndWithoutAChart) {
  TBubbles B;
  B.Chart->SetSizeOption(szDiameter);
  TKXBubbleChartValue* V = B.Chart->Values()->Add(5, 5, 4);
  B.Axes(10);
  // Alone in the chart, the bubble is the largest: 2.5 / 4 = 0.625.
  EXPECT_TRUE(V->Selectable(KXRect(5.625, 5, 5.625, 5), saSelect));
  EXPECT_FALSE(V->Selectable(KXRect(5.63, 5, 5.63, 5), saSelect));
  struct TCase {
    TSizeOption Option;
    double Size, Edge;
  };
  // Without a chart: by area sqrt(Size / pi) / 2, by diameter Size / 2.
  for (const TCase& C : {TCase{szArea, 4 * std::numbers::pi, 1}, TCase{szDiameter, 4, 2}}) {
    auto Loose = MakeOwned<TKXBubbleChartValues>(nullptr, ClassOf<TKXBubbleChartValue>());
    Loose->SetSizeOption(C.Option);
    TKXBubbleChartValue* L = Loose->Add(0, 0, C.Size);
    EXPECT_TRUE(L->Selectable(KXRect(C.Edge, 0, C.Edge, 0), saSelect)) << C.Edge;
    EXPECT_FALSE(L->Selectable(KXRect(C.Edge + 0.01, 0, C.Edge + 0.01, 0), saSelect));
  }
}

// --- Drawing ---

TEST(BubbleCharts, NegativeSizesAreLeftOutOrDrawnInTheirOwnColour) {
  TBubbles B;
  B.Chart->SetOptions(B.Chart->Options() - coValueColors);
  B.Chart->SetColor(clBlue);
  B.Chart->SetNegativeSizeColor(clRed);
  B.Chart->Values()->Add(3, 3, 4);
  B.Chart->Values()->Add(7, 7, -8);
  B.Axes(10);
  EXPECT_DOUBLE_EQ(B.Chart->Values()->MaxValue(2), 4);
  EXPECT_DOUBLE_EQ(B.Chart->Values()->MinValue(2), 0) << "a hidden negative size counts as 0";
  auto Drawn = B.Draw();
  ASSERT_EQ(Drawn.size(), 1u);
  EXPECT_EQ(Drawn[0].Brush, clBlue);
  B.Chart->SetNegativeSizeVisible(true);
  EXPECT_DOUBLE_EQ(B.Chart->Values()->MaxValue(2), 8) << "its absolute size counts";
  Drawn = B.Draw();
  ASSERT_EQ(Drawn.size(), 2u);
  EXPECT_EQ(Drawn[1].Size, -8);
  EXPECT_EQ(Drawn[1].Brush, clRed);
}

TEST(BubbleCharts, NothingIsDrawnWhenAllSizesAre0OrAreBadNumbers) {
  TBubbles B;
  B.Chart->Values()->Add(1, 1, 0);
  B.Chart->Values()->Add(2, 2, 0);
  B.Axes(10);
  EXPECT_TRUE(B.Draw().empty());
  for (double Bad : {NaN, Inf, -Inf, 1e308})
    for (int Dim = 0; Dim < 3; ++Dim) {
      TKXBubbleChartValue* V = B.Chart->Values()->Add(5, 5, 1);
      V->SetValue(Dim, Bad);
    }
  B.Chart->Values()->Add(5, 5, 2);
  B.Axes(10);
  TOwned<TBitmap> Picture;
  const auto Drawn = B.Draw(&Picture);
  for (const auto& D : Drawn)
    EXPECT_TRUE(std::isfinite(D.Size));
  EXPECT_GE(Drawn.size(), 1u);
  // Whatever is drawn stays on the picture without wild strokes across it.
  EXPECT_LT(test::CountPainted(Picture.get()), 100 * 100);
}

TEST(BubbleCharts, ALabelLargerThanItsBubbleGetsRoom) {
  TBubbles B;
  B.Chart->SetOptions(B.Chart->Options() + coValueLabels - coValueColors);
  B.Chart->SetColor(clWhite);
  B.Chart->Pen()->SetStyle(psClear);
  B.Chart->Font()->SetColor(clBlack);
  B.Chart->SetSizeOption(szDiameter);
  B.Chart->Values()->Add(5, 5, 1, "A caption much wider");
  B.Chart->Values()->Add(0, 0, 100);
  B.Chart->Values()->Items(0)->SetVisible(false);
  B.Axes(10);
  TOwned<TBitmap> Picture;
  const auto Drawn = B.Draw(&Picture);
  ASSERT_EQ(Drawn.size(), 1u);
  const TRect Ink = test::PaintedBounds(Picture.get());
  EXPECT_GT(Ink.Right - Ink.Left, Drawn[0].Rect.Right - Drawn[0].Rect.Left + 20);
  EXPECT_LT(Ink.Left, Drawn[0].Rect.Left);
}

// --- Module and streaming ---

TEST(BubbleCharts, TheModuleRegistersTheChartAndSizeOptionTravelsWithTheValues) {
  StartBubbleChartsModule();
  EXPECT_EQ(GetChartClass(ctBubble), ClassOf<TKXBubbleChart>());
  RegisterClasses({ClassOf<TBubbleForm>()});
  TBubbles B;
  B.Form->SetName("Form1");
  B.Chart->SetName("Bubbles1");
  B.Chart->SetSizeOption(szDiameter);
  B.Chart->SetStyle(shpDiamond);
  B.Chart->Values()->Add(1, 2, 3, "c");
  const std::string Json = SaveFormToString(B.Form.get());
  TOwned<TBubbleForm> Copy(New<TBubbleForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  auto* Back = static_cast<TKXBubbleChart*>(Copy->FindComponent("Bubbles1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_EQ(Back->SizeOption(), szDiameter);
  EXPECT_EQ(Back->Style(), shpDiamond);
  EXPECT_EQ(Back->Values()->Items(0)->Size(), 3);
}

} // namespace
} // namespace kx
