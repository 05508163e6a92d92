// Bar charts without pixels: where each bar's rectangle lies (grouped, stacked, stacked to
// 100 %, both orientations), the axis ranges the values give, origin and offset taken from
// the first chart of a stack, the group walk of the orientation, captions, the span in view,
// the hit test and selection, and the stored form.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::SetRange;
using test::TChartsForm;

// A panel with bar charts of one group; rectangles are asked for on (0, 0, 100, 100).
class BarsInAPanel : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetBounds(0, 0, 300, 200);
  }
  TKXBarChart* AddBars(std::initializer_list<double> Numbers, int32_t Group = 0) {
    auto* C = New<TKXBarChart>(Form.get());
    C->SetPanel(Panel);
    C->SetGroup(Group);
    for (double N : Numbers)
      C->Values()->Add(N, "");
    return C;
  }
  TRect Bar(const TKXBarChart* C, int32_t I) const {
    return C->GetBarRect(Plot, C->Values()->Items(I));
  }
  const TRect Plot{0, 0, 100, 100};
  TOwned<TChartsForm> Form;
  TKXChartPanel* Panel = nullptr;
};

// --- Bar rectangles ---

// Charts A {2, -4}, H {3, 3} (hidden) and C {5, 1} of one group; the index axis shows
// -0.5..1.5 on 100 pixels (50 a step, bars of 60 % are 30 wide), the value axis VMin..VMax.
struct TRectCase {
  TKXGroupStyle Style;
  TBarOrientation Orientation;
  double VMin, VMax;
  TRect A0, A1, C0, C1;
};

class BarRectangles : public BarsInAPanel, public testing::WithParamInterface<TRectCase> {};

TEST_P(BarRectangles, StandWhereTheGroupStyleAndOrientationPutThem) {
  const TRectCase& P = GetParam();
  auto* A = AddBars({2, -4});
  auto* H = AddBars({3, 3});
  auto* C = AddBars({5, 1});
  H->SetVisible(false);
  A->SetGroupStyle(P.Style);
  for (TKXBarChart* X : {A, H, C}) {
    X->SetBarSizePct(60);
    X->SetOrientation(P.Orientation);
  }
  const bool Standing = P.Orientation == boVertical;
  SetRange(Standing ? Panel->BottomAxis() : Panel->LeftAxis(), -0.5, 1.5);
  SetRange(Standing ? Panel->LeftAxis() : Panel->BottomAxis(), P.VMin, P.VMax);
  EXPECT_EQ(Bar(A, 0), P.A0);
  EXPECT_EQ(Bar(A, 1), P.A1);
  EXPECT_EQ(Bar(C, 0), P.C0);
  EXPECT_EQ(Bar(C, 1), P.C1);
}

INSTANTIATE_TEST_SUITE_P(
    Bars, BarRectangles,
    testing::Values(
        // Over one another from the origin; a negative bar hangs below it.
        TRectCase{gsNone,
                  boVertical,
                  -10,
                  10,
                  {10, 40, 40, 50},
                  {60, 50, 90, 70},
                  {10, 25, 40, 50},
                  {60, 45, 90, 50}},
        TRectCase{gsNone,
                  boHorizontal,
                  -10,
                  10,
                  {50, 60, 60, 90},
                  {30, 10, 50, 40},
                  {50, 60, 75, 90},
                  {50, 10, 55, 40}},
        // C stands on A (the hidden chart adds nothing); on A's -4 its 1 runs from the
        // origin to the running sum -3.
        TRectCase{gsStacked,
                  boVertical,
                  -10,
                  10,
                  {10, 40, 40, 50},
                  {60, 50, 90, 70},
                  {10, 15, 40, 40},
                  {60, 50, 90, 65}},
        TRectCase{gsStacked,
                  boHorizontal,
                  -10,
                  10,
                  {50, 60, 60, 90},
                  {30, 10, 50, 40},
                  {60, 60, 85, 90},
                  {35, 10, 50, 40}},
        // Shares of the total, the hidden chart's 3 included (a gap at the top); the second
        // index adds up to 0 and has empty bars at the axis's minimum.
        TRectCase{gsStacked100,
                  boVertical,
                  0,
                  100,
                  {10, 80, 40, 100},
                  {60, 100, 90, 100},
                  {10, 30, 40, 80},
                  {60, 100, 90, 100}},
        TRectCase{gsStacked100,
                  boHorizontal,
                  0,
                  100,
                  {0, 60, 20, 90},
                  {0, 10, 0, 40},
                  {20, 60, 70, 90},
                  {0, 10, 0, 40}}));

TEST_F(BarsInAPanel, ClusteredBarsOfAGroupShareTheStepSideBySideOnlyWhenAskedTo) {
  auto* A = AddBars({4});
  auto* B = AddBars({2});
  auto* Other = AddBars({1}, 1);
  SetRange(Panel->BottomAxis(), -0.5, 0.5);
  SetRange(Panel->LeftAxis(), 0, 10);
  A->SetBarSizePct(80);
  B->SetBarSizePct(80);
  // Off by default: both take the whole 80 % of the step, one over the other.
  EXPECT_FALSE(A->Clustered());
  EXPECT_EQ(Bar(A, 0), (TRect{10, 60, 90, 100}));
  EXPECT_EQ(Bar(B, 0), (TRect{10, 80, 90, 100}));
  B->SetClustered(true);
  EXPECT_TRUE(A->Clustered()) << "the group is clustered as a whole";
  EXPECT_FALSE(Other->Clustered());
  EXPECT_EQ(Bar(A, 0), (TRect{10, 60, 50, 100}));
  EXPECT_EQ(Bar(B, 0), (TRect{50, 80, 90, 100}));
  // A stacked group stacks: clustering is for bars that would lie over one another.
  A->SetGroupStyle(gsStacked);
  EXPECT_EQ(Bar(B, 0), (TRect{10, 40, 90, 60}));
}

// --- Ranges, origin and offset ---

TEST_F(BarsInAPanel, TheIndexAxisRunsHalfAStepBeyondTheBarsAndTheValueAxisHoldsTheOrigin) {
  auto* C = AddBars({60, 80, 70});
  Panel->LeftAxis()->Grid()->SetOrigin(50);
  const TKXBarChartValues* V = C->Values();
  for (TBarOrientation O : {boVertical, boHorizontal}) {
    SCOPED_TRACE(O);
    C->SetOrientation(O);
    const int32_t Along = O, Across = 1 - O;
    EXPECT_EQ(V->GetAxisMinimum(Across), -0.5);
    EXPECT_EQ(V->GetAxisMaximum(Across), 2.5);
    // An origin of 50 under values above it stays the minimum, also for lying bars.
    EXPECT_EQ(V->GetAxisMinimum(Along), 50.0);
    EXPECT_EQ(V->GetAxisMaximum(Along), 80.0);
  }
  C->SetUseOrigin(false);
  EXPECT_EQ(V->GetAxisMinimum(0), 0.0);
  C->SetGroupStyle(gsStacked100);
  EXPECT_EQ(V->GetAxisMaximum(0), 100.0);
  C->Values()->Clear();
  EXPECT_EQ(V->GetAxisMinimum(1), -0.5);
  EXPECT_EQ(V->GetAxisMaximum(1), -0.5);
}

TEST_F(BarsInAPanel, TheFirstBarChartOfAStackDecidesOriginAndOffsetForAllOfIt) {
  auto* A = AddBars({5, 7});
  auto* B = AddBars({2, 1});
  A->SetGroupStyle(gsStacked);
  Panel->LeftAxis()->Grid()->SetOrigin(3);
  B->SetUseOrigin(false);
  A->SetOffsetVertical(1);
  Panel->LeftAxis()->UpdateAxisValues();
  // The axis stacks B on A's maximum; bars stack by their sums instead.
  EXPECT_EQ(B->OffsetVertical(), 8.0);
  EXPECT_EQ(B->GetAdjOffsetVertical(), 1.0);
  EXPECT_EQ(B->GetAdjOrigin(), 3.0);
  // A chart of another kind between them breaks the run: B decides for itself again.
  auto* Line = New<TKXLineChart>(Form.get());
  Line->SetPanel(Panel);
  Panel->Charts()->Move(Panel->Charts()->IndexOf(Line), 1);
  EXPECT_EQ(B->GetAdjOrigin(), 0.0);
  // Ungrouped bars keep their own.
  A->SetGroupStyle(gsNone);
  EXPECT_EQ(A->GetAdjOffsetVertical(), 0.0);
}

TEST_F(BarsInAPanel, AnOrientationReachesTheBarChartsOfItsGroupAndKeepsThePreview) {
  auto* A = AddBars({}, 1);
  auto* B = AddBars({}, 1);
  auto* Other = AddBars({}, 2);
  A->SetGroupStyle(gsStacked);
  Other->SetGroupStyle(gsStacked);
  A->SetPreview(true);
  ASSERT_EQ(A->Values()->Count(), 5);
  A->SetOrientation(boHorizontal);
  EXPECT_EQ(B->Orientation(), boHorizontal);
  EXPECT_EQ(Other->Orientation(), boVertical);
  EXPECT_TRUE(A->Preview());
  EXPECT_EQ(A->GetGroupDimension(), 0);
}

// --- Properties ---

TEST(BarChart, SettersClampAndKeepTheirRules) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXBarChart>(Form.get());
  EXPECT_EQ(C->BarSizePct(), 70);
  EXPECT_EQ(C->Orientation(), boVertical);
  EXPECT_TRUE(C->UseOrigin());
  EXPECT_TRUE(C->AxesHints().Contains(ahBarScale));
  const std::pair<int32_t, int32_t> Clamps[] = {{0, 1}, {-5, 1}, {101, 100}, {100, 100}};
  for (auto [In, Out] : Clamps) {
    C->SetBarSizePct(In);
    EXPECT_EQ(C->BarSizePct(), Out) << In;
  }
  TKXBarChartValue* V = C->Values()->Add(3, "a", TColor(-1), -7);
  EXPECT_EQ(V->ImageIndex(), -1);
  V->SetStyle(bsRectangle);
  EXPECT_TRUE(V->ParentStyle()) << "the style already held leaves ParentStyle";
  C->SetBarStyle(bsGradient);
  EXPECT_EQ(C->GetBarStyle(V), bsGradient);
  V->SetStyle(bsArrow);
  EXPECT_FALSE(V->ParentStyle());
  EXPECT_EQ(C->GetBarStyle(V), bsArrow);
  // An image list that is freed is let go of.
  auto* Images = New<TImageList>(Form.get());
  C->SetImageList(Images);
  Images->Free();
  EXPECT_EQ(C->ImageList(), nullptr);
}

TEST(BarChart, CaptionsStandOnTheIndexAxisAndTheValueAxisFormatsItsNumbers) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* C = New<TKXBarChart>(Form.get());
  C->SetPanel(Panel);
  for (const char* Name : {"a", "b", "c", "d"})
    C->Values()->Add(1, Name);
  EXPECT_TRUE(C->WantsCaptions(Panel->BottomAxis()));
  EXPECT_FALSE(C->WantsCaptions(Panel->LeftAxis()));
  int32_t Index = 3;
  EXPECT_EQ(C->GetAxisCaption(Panel->BottomAxis(), Index, 1.5), "b");
  EXPECT_EQ(Index, 1);
  Index = 3;
  EXPECT_EQ(C->GetAxisCaption(Panel->LeftAxis(), Index, 2.5), Panel->LeftAxis()->FormatValue(2.5));
  C->SetOrientation(boHorizontal);
  EXPECT_TRUE(C->WantsCaptions(Panel->RightAxis()));
  EXPECT_FALSE(C->WantsCaptions(Panel->TopAxis()));
}

TEST(BarChart, AZoomedSortedIndexAxisCutsTheSpanByIndex) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXBarChart>(Form.get());
  for (int I = 0; I < 10; ++I)
    C->Values()->Add(I, "");
  TKXChartAxis* X = C->HorizontalAxis();
  SetRange(X, -0.5, 9.5);
  X->SetZoomMinimum(2.6);
  X->SetZoomMaximum(5.2);
  C->UpdateAxisInfo(X);
  EXPECT_EQ(C->FirstIndex(), 0) << "unsorted values are all drawn";
  C->Values()->SetSorted(true);
  C->Values()->Items(2)->SetValue(100);
  EXPECT_EQ(C->Values()->Items(2)->Value(), 100.0) << "a sorted bar never moves";
  C->UpdateAxisInfo(X);
  EXPECT_EQ(C->FirstIndex(), 2);
  EXPECT_EQ(C->LastIndex(), 6);
  EXPECT_EQ(C->VisibleCount(), 5);
  // The vertical axis is not the index axis of standing bars.
  C->UpdateAxisInfo(C->VerticalAxis());
  EXPECT_EQ(C->FirstIndex(), 2);
}

// --- Hit test and selection ---

TEST_F(BarsInAPanel, SelectionHitsTheBarsItsRectangleTouchesAndSkipsHiddenValues) {
  auto* C = AddBars({4, 6, 8});
  Panel->Draw(test::MakeBitmap(300, 200)->Canvas(), Panel->ClientRect());
  const TRect Plot = Panel->ChartRect();
  const TRect Middle = C->GetBarRect(Plot, C->Values()->Items(1));
  const TPoint In{(Middle.Left + Middle.Right) / 2, Middle.Bottom - 2};
  // A point in the middle bar, then one above it.
  C->Select({In.X, In.Y, In.X, In.Y}, saSelect);
  EXPECT_FALSE(C->Values()->Items(0)->Selected());
  EXPECT_TRUE(C->Values()->Items(1)->Selected());
  C->Select({In.X, Middle.Top - 5, In.X, Middle.Top - 5}, saSelect);
  EXPECT_FALSE(C->Values()->Items(1)->Selected());
  // A box across all three; the hidden one is left as it was.
  C->Values()->Items(2)->SetVisible(false);
  C->Select({Plot.Left, In.Y - 1, Plot.Right, In.Y + 1}, saSelect);
  EXPECT_TRUE(C->Values()->Items(0)->Selected());
  EXPECT_TRUE(C->Values()->Items(1)->Selected());
  EXPECT_FALSE(C->Values()->Items(2)->Selected());
  // Toggling a selected bar answers false.
  C->Select({In.X, In.Y, In.X, In.Y}, saToggle);
  EXPECT_FALSE(C->Values()->Items(1)->Selected());
  EXPECT_TRUE(C->IsSelectable({In.X, In.Y, In.X, In.Y}));
}

// --- Stored form and registry ---

TEST(BarChart, RegistersAsTheBarKindAndRoundTripsItsSettingsButNotItsPreview) {
  StartBarChartsModule();
  EXPECT_EQ(GetChartClass(ctBar), ClassOf<TKXBarChart>());
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* C = New<TKXBarChart>(Form.get());
  C->SetName("Bars1");
  C->SetPreview(true);
  EXPECT_EQ(C->Values()->Items(3)->Caption(), "Development");
  EXPECT_EQ(SaveFormToString(Form.get()).find("Marketing"), std::string::npos);
  const auto Stored = nlohmann::ordered_json::parse(SaveFormToString(Form.get()));
  const auto& Own = Stored["Form"]["Components"][0];
  for (const char* Name : {"BarSizePct", "UseOrigin", "Orientation", "Clustered", "BarStyle"})
    EXPECT_FALSE(Own.contains(Name)) << Name << " is at its default";

  C->Values()->Clear();
  C->SetBarSizePct(40);
  C->SetOrientation(boHorizontal);
  C->SetUseOrigin(false);
  C->SetClustered(true);
  C->SetBarStyle(bsShape3);
  TKXBarChartValue* V = C->Values()->Add(-2.5, "x", TColor(-1), 4);
  V->SetStyle(bsArrow);
  V->SetParentStyle(true);
  C->Values()->Add(7, "y")->SetStyle(bsGradient);
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), SaveFormToString(Form.get()));
  auto* C2 = dynamic_cast<TKXBarChart*>(Copy->FindComponent("Bars1"));
  ASSERT_NE(C2, nullptr);
  EXPECT_EQ(C2->BarSizePct(), 40);
  EXPECT_EQ(C2->Orientation(), boHorizontal);
  EXPECT_FALSE(C2->UseOrigin());
  EXPECT_TRUE(C2->Clustered());
  EXPECT_EQ(C2->BarStyle(), bsShape3);
  ASSERT_EQ(C2->Values()->Count(), 2);
  const TKXBarChartValue* V0 = C2->Values()->Items(0);
  EXPECT_EQ(V0->Value(), -2.5);
  EXPECT_EQ(V0->ImageIndex(), 4);
  EXPECT_EQ(V0->Style(), bsArrow);
  EXPECT_TRUE(V0->ParentStyle()) << "a stored style does not undo a stored ParentStyle";
  EXPECT_FALSE(C2->Values()->Items(1)->ParentStyle());
  EXPECT_EQ(C2->Values()->Items(1)->Style(), bsGradient);
}

} // namespace
} // namespace kx
