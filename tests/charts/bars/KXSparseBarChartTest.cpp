// Sparse bars and high-low-average charts: the smallest gap and the widths and ranges built
// on it, bars at uneven positions in both orientations (as rectangles, as pixels and as hit
// rectangles), the span in view under a zoom, captions, stacking by index; the ordered
// numbers of a high-low-average value, its metadata, its span rectangles and average marks
// in every style, and bad numbers.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include <nlohmann/json.hpp>

#include "charts/KXChartsTestSupport.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;
using test::SetRange;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();

// A chart of class T alone on a form, red with a black pen, drawn on 100 x 100 pixels. The
// axis of X shows -1..9 (10 pixels a unit), the value axis -10..10 (5 pixels a unit).
template <class T> class Alone : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<T>(Form.get());
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetColor(clRed);
    Chart->Pen()->SetColor(clBlack);
  }
  void Axes(TBarOrientation O) {
    Chart->SetOrientation(O);
    SetRange(O == boVertical ? Chart->HorizontalAxis() : Chart->VerticalAxis(), -1, 9);
    SetRange(O == boVertical ? Chart->VerticalAxis() : Chart->HorizontalAxis(), -10, 10);
  }
  TBitmap* Draw() {
    Bitmap = MakeBitmap(100, 100);
    Chart->Draw(Bitmap->Canvas(), Plot);
    return Bitmap.get();
  }
  TRect Rect(int32_t I) const { return Chart->GetBarRect(Plot, Chart->Values()->Items(I)); }
  const TRect Plot{0, 0, 100, 100};
  TOwned<TChartsForm> Form;
  T* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
};

using SparseAlone = Alone<TKXSparseBarChart>;
using HLAAlone = Alone<TKXHighLowAverageChart>;

// --- The smallest gap ---

TEST(SparseBarValues, TheSmallestGapIsThatOfNeighboursAndZeroWhenThereIsNone) {
  struct TCase {
    std::vector<double> X;
    double Diff;
  };
  const TCase Cases[] = {
      {{0, 3, 5, 6, 8, 9}, 1},   {{9, 0, 5, 3, 8, 6}, 1}, // sorted on the way in
      {{4}, 0},                  {{}, 0},                 // one value or none: no gap
      {{2, 2, 2}, 0},            {{1, 1, 4, 4.5}, 0.5},   // equal neighbours never count
      {{0, NaN, 2, 7, Inf}, 2},                           // no number is no gap
  };
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  for (const TCase& C : Cases) {
    auto* Chart = New<TKXSparseBarChart>(Form.get());
    for (double X : C.X)
      Chart->Values()->Add(X, 1.0, "");
    EXPECT_EQ(Chart->Values()->Diff(0), C.Diff) << C.X.size();
    Chart->Free();
  }
}

TEST(SparseBarValues, AddingANumberAloneAppendsOnePastTheGreatestX) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXSparseBarChart>(Form.get());
  EXPECT_EQ(C->Values()->Add(5.0, "a")->X(), 1.0) << "an empty collection starts at 1";
  C->Values()->Clear();
  C->Values()->Add(7, 1, "");
  C->Values()->Add(2, 1, "");
  TKXSparseBarChartValue* V = C->Values()->Add(4.0, "b");
  EXPECT_EQ(V->X(), 8.0);
  EXPECT_EQ(V->Value(), 4.0);
  EXPECT_EQ(C->Values()->Items(0)->X(), 2.0) << "values stay in ascending X";
  // A value made outside a collection of values still holds X and its number.
  TKXSparseBarChartValue Free(nullptr);
  Free.SetValue(3.0);
  EXPECT_EQ(Free.GetValue(1), 3.0);
  EXPECT_EQ(Free.X(), 0.0);
}

// --- Ranges ---

TEST(SparseBarValues, TheAxisOfXHasAWholeBarOfTheSmallestGapBeyondTheEndsAndTheOtherTheOrigin) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXSparseBarChart>(Form.get());
  C->SetBarSizePct(50);
  for (auto [X, Y] : {std::pair{1.0, 5.0}, {3.0, 9.0}, {7.0, 2.0}})
    C->Values()->Add(X, Y, "");
  struct TCase {
    TBarOrientation O;
    int32_t Dimension;
    double Min, Max;
  };
  // Gap 2 at 50 %: one unit of margin on X (0..8); the numbers widen to the origin (0..9).
  for (const TCase& K : {TCase{boVertical, 0, 0, 8}, TCase{boVertical, 1, 0, 9},
                         TCase{boHorizontal, 1, 0, 8}, TCase{boHorizontal, 0, 0, 9}}) {
    C->SetOrientation(K.O);
    EXPECT_EQ(C->Values()->GetAxisMinimum(K.Dimension), K.Min) << K.O << K.Dimension;
    EXPECT_EQ(C->Values()->GetAxisMaximum(K.Dimension), K.Max) << K.O << K.Dimension;
  }
  C->Values()->Items(0)->SetValue(-3);
  EXPECT_EQ(C->Values()->GetAxisMinimum(0), -3.0) << "the numbers on the lying axis";
  EXPECT_EQ(C->Values()->GetAxisMaximum(5), 0.0);
  C->SetGroupStyle(gsStacked100);
  EXPECT_EQ(C->Values()->GetAxisMaximum(0), 100.0) << "a percent group's value axis";
  EXPECT_EQ(C->Values()->GetAxisMaximum(1), 8.0) << "X as in the other styles";
  // A single value has no gap: no margin.
  C->Values()->Clear();
  C->Values()->Add(4, 2, "");
  EXPECT_EQ(C->Values()->GetAxisMinimum(1), 4.0);
  EXPECT_EQ(C->Values()->GetAxisMaximum(1), 4.0);
}

// --- Rectangles and pixels ---

// Positions 0, 2, 2.5 and 6 (smallest gap 0.5) with bars of 80 %: 0.4 units, 4 pixels.
TEST_F(SparseAlone, BarsAtUnevenPositionsAreAllAsWideAsTheSmallestGapAllowsInBothOrientations) {
  Chart->SetBarSizePct(80);
  for (auto [X, Y] : {std::pair{0.0, 4.0}, {2.0, 8.0}, {2.5, -6.0}, {6.0, 2.0}})
    Chart->Values()->Add(X, Y, "");
  struct TCase {
    TBarOrientation O;
    TRect R[4];
  };
  const TCase Cases[] = {
      {boVertical, {{8, 30, 12, 50}, {28, 10, 32, 50}, {33, 50, 37, 80}, {68, 40, 72, 50}}},
      {boHorizontal, {{50, 88, 70, 92}, {50, 68, 90, 72}, {20, 63, 50, 67}, {50, 28, 60, 32}}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.O);
    Axes(C.O);
    const TBitmap* B = Draw();
    EXPECT_EQ(std::abs(Chart->BarSize()), 4);
    for (int I = 0; I < 4; ++I) {
      EXPECT_EQ(Rect(I), C.R[I]) << I;
      // Filled inside its outline; nothing beside it.
      const TRect R = C.R[I];
      EXPECT_GT(CountPixels(B, {R.Left + 1, R.Top + 1, R.Right - 1, R.Bottom - 1},
                            [](TColor P) { return P == clRed; }),
                0);
    }
    EXPECT_EQ(test::CountPainted(B), 4 * 20 + 4 * 40 + 4 * 30 + 4 * 10);
  }
}

TEST_F(SparseAlone, ASingleValueIsAStepOfOneUnitWideWithABarSizeOfNone) {
  Chart->SetBarSizePct(60);
  Chart->Values()->Add(4, 6, "");
  Axes(boVertical);
  Draw();
  EXPECT_EQ(Chart->BarSize(), 0);
  EXPECT_EQ(Rect(0), (TRect{47, 20, 53, 50}));
  // Equal positions: no gap either, the same width.
  Chart->Values()->Add(4, 2, "");
  Draw();
  EXPECT_EQ(Chart->Values()->Diff(0), 0.0);
  for (int I = 0; I < 2; ++I)
    EXPECT_EQ(Rect(I).Width(), 6);
}

TEST_F(SparseAlone, BadNumbersLeaveNoBarAndAHugeOneStaysOnTheCanvas) {
  for (auto [X, Y] : {std::pair{0.0, 4.0}, {1.0, NaN}, {NaN, 3.0}, {3.0, 1e308}, {4.0, -Inf}})
    Chart->Values()->Add(X, Y, "");
  Axes(boVertical);
  const TBitmap* B = Draw();
  EXPECT_GT(CountPixels(B, {0, 0, 20, 100}, [](TColor P) { return P == clRed; }), 0);
  EXPECT_EQ(CountPixels(B, {17, 0, 35, 100}, [](TColor P) { return P != clWhite; }), 0);
  // 1e308 runs off the top, clamped.
  EXPECT_GT(CountPixels(B, {38, 0, 43, 50}, [](TColor P) { return P == clRed; }), 0);
  EXPECT_EQ(CountPixels(B, {46, 0, 100, 100}, [](TColor P) { return P != clWhite; }), 0);
}

// --- The span in view, captions, stacking, hits ---

TEST(SparseBarChart, AZoomDrawsFromOneValueBeforeTheRangeToOnePastIt) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXSparseBarChart>(Form.get());
  C->SetPreview(true);
  TKXChartAxis* X = C->HorizontalAxis();
  SetRange(X, -1, 10);
  struct TCase {
    double Lo, Hi;
    int32_t First, Last;
  };
  // X: 0, 3, 5, 6, 8, 9.
  for (const TCase& K : {TCase{4.5, 5.5, 1, 3}, TCase{9.5, 10, 0, 5}, TCase{-1, -0.5, 0, 0},
                         TCase{0, 9, 0, 5}, TCase{3, 3.5, 0, 2}}) {
    X->SetZoomMinimum(K.Lo);
    X->SetZoomMaximum(K.Hi);
    C->UpdateAxisInfo(X);
    EXPECT_EQ(C->FirstIndex(), K.First) << K.Lo;
    EXPECT_EQ(C->LastIndex(), K.Last) << K.Lo;
    EXPECT_EQ(C->VisibleCount(), K.Last - K.First + 1);
  }
}

TEST(SparseBarChart, TheAxisOfXShowsTheCaptionOfTheLastValueAtOrBeforeThePosition) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* C = New<TKXSparseBarChart>(Form.get());
  C->SetPanel(Panel);
  C->SetPreview(true);
  struct TCase {
    int32_t Index;
    double At;
    const char* Caption;
    int32_t IndexAfter;
  };
  for (const TCase& K : {TCase{5, 4.0, "Marketing", 1}, TCase{9, 8.5, "Development", 4},
                         TCase{2, 5.0, "Research", 2}, TCase{3, -1.0, "Manufacturing", 0}}) {
    int32_t Index = K.Index;
    EXPECT_EQ(C->GetAxisCaption(Panel->BottomAxis(), Index, K.At), K.Caption);
    EXPECT_EQ(Index, K.IndexAfter);
  }
  int32_t Index = 0;
  EXPECT_EQ(C->GetAxisCaption(Panel->LeftAxis(), Index, 2.5), Panel->LeftAxis()->FormatValue(2.5));
}

TEST(SparseBarChart, StackedSparseBarsPairTheirValuesByIndexWhateverTheirX) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetBounds(0, 0, 300, 200);
  auto* A = New<TKXSparseBarChart>(Form.get());
  auto* B = New<TKXSparseBarChart>(Form.get());
  for (auto* C : {A, B}) {
    C->SetPanel(Panel);
    C->SetGroupStyle(gsStacked);
  }
  A->Values()->Add(0, 2, "");
  A->Values()->Add(4, 3, "");
  B->Values()->Add(1, 5, "");
  B->Values()->Add(9, 1, "");
  SetRange(A->HorizontalAxis(), -1, 9);
  SetRange(A->VerticalAxis(), -10, 10);
  const TRect Plot{0, 0, 100, 100};
  // B's second bar stands on A's second (3), at its own X.
  const TRect R = B->GetBarRect(Plot, B->Values()->Items(1));
  EXPECT_EQ(R.Top, 50 - 5 * 4);
  EXPECT_EQ(R.Bottom, 50 - 5 * 3);
  EXPECT_EQ((R.Left + R.Right) / 2, 100);
}

TEST(SparseBarChart, TheHitRectangleIsTheDrawnBarOfTheSmallestGap) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetBounds(0, 0, 300, 200);
  auto* C = New<TKXSparseBarChart>(Form.get());
  C->SetPanel(Panel);
  // A gap of 10 units: a bar of 70 % is 7 units wide, not 0.7.
  for (auto [X, Y] : {std::pair{0.0, 5.0}, {10.0, 5.0}, {20.0, 5.0}})
    C->Values()->Add(X, Y, "");
  Panel->Draw(MakeBitmap(300, 200)->Canvas(), Panel->ClientRect());
  const TRect Bar = C->GetBarRect(Panel->ChartRect(), C->Values()->Items(1));
  EXPECT_GT(Bar.Width(), 10);
  // A point near the bar's left edge, far off the middle.
  const TPoint P{Bar.Left + 1, Bar.Bottom - 2};
  C->Select({P.X, P.Y, P.X, P.Y}, saSelect);
  EXPECT_TRUE(C->Values()->Items(1)->Selected());
  EXPECT_FALSE(C->Values()->Items(0)->Selected());
}

// --- High-low-average values ---

TEST(HighLowAverageValues, SettersKeepLowBelowAverageBelowHighByDraggingTheOthers) {
  struct TCase {
    int Which; // 0 Average, 1 High, 2 Low
    double Set;
    double Average, High, Low;
  };
  // Starting from Average 5, High 8, Low 2 each time.
  const TCase Cases[] = {
      {0, 9, 9, 9, 2}, {0, 1, 1, 8, 1}, {0, 6, 6, 8, 2},  // average
      {1, 1, 1, 1, 1}, {1, 4, 4, 4, 2}, {1, 10, 5, 10, 2}, // high
      {2, 9, 9, 9, 9}, {2, 6, 6, 8, 6}, {2, 0, 5, 8, 0},   // low
  };
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXHighLowAverageChart>(Form.get());
  for (const TCase& K : Cases) {
    C->Values()->Clear();
    TKXHighLowAverageChartValue* V = C->Values()->Add(1, 5, 8, 2, "");
    const auto Set = K.Which == 0   ? &TKXHighLowAverageChartValue::SetAverage
                     : K.Which == 1 ? &TKXHighLowAverageChartValue::SetHigh
                                    : &TKXHighLowAverageChartValue::SetLow;
    (V->*Set)(K.Set);
    EXPECT_EQ(V->Average(), K.Average) << K.Which << " " << K.Set;
    EXPECT_EQ(V->High(), K.High) << K.Which << " " << K.Set;
    EXPECT_EQ(V->Low(), K.Low) << K.Which << " " << K.Set;
    EXPECT_EQ(V->Value(), V->Average());
  }
}

TEST(HighLowAverageValues, AddFormsOrderTheirNumbersAndTheMetadataSpansLowToHigh) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXHighLowAverageChart>(Form.get());
  TKXHighLowAverageChartValues* V = C->Values();
  struct TExpect {
    double X, Average, High, Low;
  };
  V->Add(3, 12, 4, 9, ""); // an average above High raises it
  V->Add(1, 10, 2, "");    // the average halfway
  V->Add(7.0, "");         // one past the greatest X, all three equal
  V->Add(5, 3, 6, 4, "");  // a Low above the average falls to it
  const TExpect Want[] = {{1, 6, 10, 2}, {3, 12, 12, 9}, {4, 7, 7, 7}, {5, 3, 6, 3}};
  ASSERT_EQ(V->Count(), 4);
  for (int I = 0; I < 4; ++I) {
    const TKXHighLowAverageChartValue* Item = V->Items(I);
    EXPECT_EQ(Item->X(), Want[I].X) << I;
    EXPECT_EQ(Item->Average(), Want[I].Average) << I;
    EXPECT_EQ(Item->High(), Want[I].High) << I;
    EXPECT_EQ(Item->Low(), Want[I].Low) << I;
  }
  EXPECT_EQ(V->MaxValue(1), 12.0);
  EXPECT_EQ(V->MinValue(1), 2.0);
  // One value that brings both a new lowest Low and a new highest High.
  V->Add(8, 5, 40, -30, "");
  EXPECT_EQ(V->MaxValue(1), 40.0);
  EXPECT_EQ(V->MinValue(1), -30.0);
  EXPECT_EQ(V->GetAxisMaximum(1), 40.0) << "no origin takes part";
  C->Values()->Clear();
  V->Add(2, 35, 40, 30, "");
  V->Add(3, 33, 38, 31, "");
  EXPECT_EQ(V->GetAxisMinimum(1), 30.0) << "no origin takes part";
  EXPECT_FALSE(C->WantsCaptions(C->HorizontalAxis()));
  EXPECT_FALSE(C->WantsCaptions(C->VerticalAxis()));
}

// --- High-low-average pictures ---

// One value at X 4 from High 6 to Low -2 with its Average at 4, 60 % wide (6 pixels); a
// second at X 5 so that the gap is 1. Standing: the span is x 47..53 and y 20..60, the
// average at y 30.
class HLAShapes : public HLAAlone {
protected:
  void SetUp() override {
    HLAAlone::SetUp();
    Chart->SetBarSizePct(60);
    Chart->Values()->Add(4, 4, 6, -2, "");
    Chart->Values()->Add(5, 0, 1, -1, "");
  }
  bool Painted(int32_t X, int32_t Y) const {
    return CountPixels(Bitmap.get(), {X, Y, X + 1, Y + 1}, [](TColor P) { return P != clWhite; }) > 0;
  }
};

TEST_F(HLAShapes, TheSpanRunsFromHighToLowAtXInBothOrientations) {
  Axes(boVertical);
  EXPECT_EQ(Rect(0), (TRect{47, 20, 53, 60}));
  Axes(boHorizontal);
  // High on the right: x = 50 + 5 v, X on the vertical axis: y = 90 - 10 x.
  EXPECT_EQ(Rect(0), (TRect{40, 47, 80, 53}));
}

TEST_F(HLAShapes, TheAverageMarkLiesWhereTheAverageIsInEveryStyle) {
  struct TCase {
    THighLowAverageStyle Style;
    int32_t AverageLinePct;
    // The mark reaches from Left - Ext to Right + Ext on row 30.
    bool BodyFilled, CapTop;
    int32_t Ext;
  };
  // Full step 10 pixels: Ext = max(2, 10 * pct / 200).
  const TCase Cases[] = {{hlaBar, 30, true, false, 2},
                         {hlaBar, 100, true, false, 5},
                         {hlaBar, 0, true, false, 2},
                         {hlaLine, 60, false, false, 3},
                         {hlaCappedLine, 60, false, true, 3}};
  Axes(boVertical);
  for (const TCase& K : Cases) {
    SCOPED_TRACE(K.Style);
    SCOPED_TRACE(K.AverageLinePct);
    Chart->SetStyle(K.Style);
    Chart->SetAverageLinePct(K.AverageLinePct);
    Draw();
    // The stubs: painted Ext pixels beyond each side on the mark's row, not one further.
    EXPECT_TRUE(Painted(47 - K.Ext, 30));
    EXPECT_FALSE(Painted(47 - K.Ext - 1, 30));
    EXPECT_TRUE(Painted(53 + K.Ext - 1, 30));
    EXPECT_FALSE(Painted(53 + K.Ext, 30));
    EXPECT_EQ(Painted(48, 25), K.BodyFilled) << "the bar's inside";
    EXPECT_TRUE(Painted(50, 25)) << "the line (or the bar) in the middle";
    EXPECT_EQ(Painted(48, 20), K.BodyFilled || K.CapTop) << "the cap at High";
    EXPECT_TRUE(Painted(48, 30)) << "the mark across the span";
    EXPECT_FALSE(Painted(50, 15)) << "nothing above High";
  }
}

TEST_F(HLAShapes, LyingCappedLinesHaveTheirCapsAtTheEndsAndAFlatValueItsMarkOnIt) {
  Chart->SetStyle(hlaCappedLine);
  Axes(boHorizontal);
  Draw();
  // Span x 40..80 at y 47..53, middle row 50; average 4 at x = 70.
  EXPECT_TRUE(Painted(80, 48)) << "cap at High on the right";
  EXPECT_TRUE(Painted(40, 48)) << "cap at Low on the left";
  EXPECT_TRUE(Painted(60, 50)) << "the line";
  EXPECT_FALSE(Painted(60, 48));
  EXPECT_TRUE(Painted(70, 48)) << "the mark crosses the line";
  EXPECT_FALSE(Painted(70, 45)) << "by Ext = 2 pixels";
  // High equal to Low: an empty span; the mark still shows on it.
  Chart->Values()->Items(0)->SetLow(6);
  Chart->SetStyle(hlaBar);
  Axes(boVertical);
  Draw();
  EXPECT_EQ(Rect(0).Height(), 0);
  EXPECT_TRUE(Painted(46, 20)) << "the stub on the flat span";
}

TEST_F(HLAAlone, BadNumbersLeaveNoSpanAndNothingCrashes) {
  for (auto [A, H, L] : {std::tuple{1.0, NaN, 0.0}, {NaN, 2.0, 0.0}, {1.0, 2.0, -Inf}})
    Chart->Values()->Add(Chart->Values()->Count(), A, H, L, "");
  Chart->Values()->Add(3, 1e308, 1e308, -1e308, "");
  Axes(boVertical);
  const TBitmap* B = Draw();
  EXPECT_EQ(CountPixels(B, {0, 0, 33, 100}, [](TColor P) { return P != clWhite; }), 0);
  EXPECT_GT(CountPixels(B, {37, 0, 45, 100}, [](TColor P) { return P == clRed; }), 0);
}

// --- Registry and stored form ---

TEST(SparseFamily, RegistersItsKindsAndRoundTripsItsNumbersAndSettings) {
  StartBarChartsModule();
  EXPECT_EQ(GetChartClass(ctSparseBar), ClassOf<TKXSparseBarChart>());
  EXPECT_EQ(GetChartClass(ctHighLowAverage), ClassOf<TKXHighLowAverageChart>());
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* S = New<TKXSparseBarChart>(Form.get());
  S->SetName("Sparse1");
  S->SetOrientation(boHorizontal);
  S->Values()->Add(2.5, -4, "a");
  auto* H = New<TKXHighLowAverageChart>(Form.get());
  H->SetName("HLA1");
  H->SetStyle(hlaCappedLine);
  H->SetAverageLinePct(55);
  H->Values()->Add(3, -1, 7, -5, "b");
  H->Values()->Add(1, 2, 3, 1, "c");
  const std::string Text = SaveFormToString(Form.get());
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Text);
  auto* S2 = dynamic_cast<TKXSparseBarChart*>(Copy->FindComponent("Sparse1"));
  auto* H2 = dynamic_cast<TKXHighLowAverageChart*>(Copy->FindComponent("HLA1"));
  ASSERT_TRUE(S2 && H2);
  EXPECT_EQ(S2->Orientation(), boHorizontal);
  ASSERT_EQ(S2->Values()->Count(), 1);
  EXPECT_EQ(S2->Values()->Items(0)->X(), 2.5);
  EXPECT_EQ(S2->Values()->Items(0)->Value(), -4.0);
  EXPECT_EQ(H2->Style(), hlaCappedLine);
  EXPECT_EQ(H2->AverageLinePct(), 55);
  ASSERT_EQ(H2->Values()->Count(), 2);
  const TKXHighLowAverageChartValue* V = H2->Values()->Items(1);
  EXPECT_EQ(V->X(), 3.0);
  EXPECT_EQ(V->Average(), -1.0);
  EXPECT_EQ(V->High(), 7.0);
  EXPECT_EQ(V->Low(), -5.0);
}

TEST(SparseFamily, PreviewValuesAreTheDepartmentsAndTwoWeeksOfWeekdays) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* S = New<TKXSparseBarChart>(Form.get());
  S->SetPreview(true);
  ASSERT_EQ(S->Values()->Count(), 6);
  EXPECT_EQ(S->Values()->Items(3)->Caption(), "Sales");
  EXPECT_EQ(S->Values()->Items(3)->X(), 6.0);
  auto* H = New<TKXHighLowAverageChart>(Form.get());
  H->SetPreview(true);
  EXPECT_TRUE(H->Values()->IsDateTime());
  // 2014-10-01 and thirteen days on, less the Fridays and Saturdays (3, 4, 10, 11).
  EXPECT_EQ(H->Values()->Count(), 10);
  for (const TKXHighLowAverageChartValue* V : *H->Values()) {
    EXPECT_LE(V->Low(), V->Average());
    EXPECT_LE(V->Average(), V->High());
  }
}

} // namespace
} // namespace kx
