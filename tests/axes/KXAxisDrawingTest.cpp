// Axes measured and painted on bitmaps: lines, ticks and grid lines where AxisToPixel puts
// them, labels that keep apart, the grid's options, bad ranges, and a chart alone that
// paints its own axes.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "axes/KXAxesTestSupport.h"
#include "core/KXCoreTestSupport.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::Inf;
using test::NaN;
constexpr TColor GridBlue = clBlue, GridGreen = clGreen, TickRed = clRed;

using test::MakeAxis;

bool IsWhite(TColor C) {
  return test::Near(C, clWhite, 8);
}

// Runs of columns of Band that hold ink, joined across gaps of up to two blank columns
// (gaps inside a label); answers the middle of each run.
std::vector<int32_t> InkRunCentres(const TBitmap* Bmp, const TRect& Band) {
  std::vector<int32_t> Centres;
  int32_t Start = -1, LastInk = -10;
  for (int32_t X = Band.Left; X <= Band.Right; ++X) {
    bool Ink = false;
    for (int32_t Y = Band.Top; X < Band.Right && Y < Band.Bottom && !Ink; ++Y)
      Ink = !IsWhite(Bmp->Canvas()->Pixel(X, Y));
    if (Ink) {
      if (X - LastInk > 3) {
        if (Start >= 0) Centres.push_back((Start + LastInk) / 2);
        Start = X;
      }
      LastInk = X;
    }
  }
  if (Start >= 0) Centres.push_back((Start + LastInk) / 2);
  return Centres;
}

// A bottom and a left axis measured on the whole bitmap and painted around the plot they
// leave, as a panel does.
struct TAxesPicture {
  TOwned<TBitmap> Bmp = test::MakeBitmap(400, 300);
  TOwned<TKXChartAxis> Bottom = MakeAxis(calBottom, 0, 100);
  TOwned<TKXChartAxis> Left = MakeAxis(calLeft, -5, 50);
  TRect Plot, BottomRect, LeftRect;

  explicit TAxesPicture(bool Paint = true) {
    for (TKXChartAxis* A : {Bottom.get(), Left.get()}) {
      A->SetOptions(A->Options() - aoShowTitle);
      A->Grid()->GridPen()->SetStyle(psSolid);
      A->Grid()->TicksPen()->SetColor(TickRed);
    }
    Bottom->Grid()->GridPen()->SetColor(GridBlue);
    Left->Grid()->GridPen()->SetColor(GridGreen);
    if (Paint) Draw();
  }
  void Draw() {
    TCanvas* C = Bmp->Canvas();
    const TRect R{0, 0, 400, 300};
    Left->CalculateBounds(C, R);
    Bottom->CalculateBounds(C, R);
    Plot = {Left->Width(), 10, 390, 300 - Bottom->Height()};
    BottomRect = {Plot.Left, Plot.Top, Plot.Right, 300};
    LeftRect = {0, Plot.Top, Plot.Right, Plot.Bottom};
    Bottom->Draw(C, BottomRect);
    Left->Draw(C, LeftRect);
  }
  TColor At(int32_t X, int32_t Y) const { return Bmp->Canvas()->Pixel(X, Y); }
  // The major values the grid walked, from the top down.
  static std::vector<double> Majors(const TKXChartAxis* A) {
    std::vector<double> V;
    const double Step = A->Grid()->MajorGridInterval();
    for (double X = A->Grid()->MajorGridStart(); X >= A->ZoomMinimum(); X -= Step)
      V.push_back(X);
    return V;
  }
};

TEST(AxisPainting, LinesTicksAndGridLinesLieWhereAxisToPixelPutsThem) {
  TAxesPicture P;
  const int32_t Label = P.Bmp->Canvas()->TextHeight("A");
  // The two passes agree: the axis line is where the measured room ends.
  const TRect BG{P.BottomRect.Left, P.BottomRect.Top, P.BottomRect.Right, 300 - Label};
  const int32_t LineY = BG.Bottom - 4;
  ASSERT_EQ(LineY, P.Plot.Bottom);
  EXPECT_EQ(P.At(P.Plot.Left + 50, LineY), clBlack);
  EXPECT_EQ(P.At(P.Plot.Right - 2, LineY), clBlack);
  const int32_t LineX = P.Plot.Left;
  EXPECT_EQ(P.At(LineX, P.Plot.Top + 20), clBlack);

  const auto BottomMajors = TAxesPicture::Majors(P.Bottom.get());
  ASSERT_GE(BottomMajors.size(), 3u);
  for (double V : BottomMajors) {
    const int32_t X = P.Bottom->AxisToPixel(V, BG);
    if (X == LineX) continue; // under the left axis's line
    // Four pixels long, outward from the line.
    EXPECT_EQ(P.At(X, LineY + 1), TickRed) << V;
    EXPECT_EQ(P.At(X, LineY + 4), TickRed) << V;
    EXPECT_NE(P.At(X, LineY + 5), TickRed) << V;
    if (X < P.Plot.Right) {
      EXPECT_EQ(P.At(X, LineY - 2), GridBlue) << V;
      EXPECT_EQ(P.At(X, P.Plot.Top + 1), GridBlue) << V;
    }
  }
  const TRect LG{P.Left->MaxLabelWidth(), P.LeftRect.Top, P.LeftRect.Right, P.LeftRect.Bottom};
  const auto LeftMajors = TAxesPicture::Majors(P.Left.get());
  ASSERT_GE(LeftMajors.size(), 3u);
  for (double V : LeftMajors) {
    const int32_t Y = P.Left->AxisToPixel(V, LG);
    if (V == 0) continue; // under the origin line
    EXPECT_EQ(P.At(LineX - 4, Y), TickRed) << V;
    EXPECT_EQ(P.At(LineX - 1, Y), TickRed) << V;
    EXPECT_EQ(P.At(LineX + 2, Y), GridGreen) << V;
  }
}

TEST(AxisPainting, EachLabelStandsApartCentredOnItsOwnTick) {
  TAxesPicture P;
  const int32_t Label = P.Bmp->Canvas()->TextHeight("A");
  const TRect BG{P.BottomRect.Left, P.BottomRect.Top, P.BottomRect.Right, 300 - Label};
  const auto Runs = InkRunCentres(P.Bmp.get(), {0, P.Plot.Bottom + 5, 400, 300});
  ASSERT_EQ(P.Plot.Bottom + 4, 300 - Label);
  std::vector<int32_t> Ticks;
  for (double V : TAxesPicture::Majors(P.Bottom.get()))
    Ticks.push_back(P.Bottom->AxisToPixel(V, BG));
  ASSERT_EQ(Runs.size(), Ticks.size());
  // Runs come left to right, ticks from the top value down.
  for (size_t I = 0; I < Runs.size(); ++I)
    EXPECT_NEAR(Runs[I], Ticks[Ticks.size() - 1 - I], 3);
}

TEST(AxisPainting, OfTwoOverlappingLabelsTheLowerIsDroppedAndTheNextTestedAgainstTheLastDrawn) {
  auto Bmp = test::MakeBitmap(200, 40);
  TCanvas* C = Bmp->Canvas();
  auto A = MakeAxis(calBottom, 0, 20);
  A->SetOptions(A->Options() - aoShowTitle);
  A->SetLabelIncrement(10);
  C->SetFont(A->Labels()->Font());
  const int32_t W20 = C->TextWidth("20"), W10 = C->TextWidth("10"), W0 = C->TextWidth("0");
  // S pixels a step: "10" overlaps "20", "0" would overlap "10" but clears "20".
  const int32_t S = ((W20 + W0) / 2 + 5) / 2 + 1;
  ASSERT_LT(S, (W20 + W10) / 2);
  ASSERT_LT(S, (W10 + W0) / 2);
  const TRect R{50, 0, 50 + 2 * S, 40};
  A->Draw(C, R);
  const auto Runs = InkRunCentres(Bmp.get(), {0, 40 - C->TextHeight("A") + 1, 200, 40});
  ASSERT_EQ(Runs.size(), 2u);
  EXPECT_NEAR(Runs[0], A->AxisToPixel(0, R), 2);
  EXPECT_NEAR(Runs[1], A->AxisToPixel(20, R), 2);
}

TEST(AxisPainting, MeasuringPaintsNothingAndTakesTitleLabelsAndTicks) {
  TAxesPicture P(false);
  P.Left->Title()->SetText("Value");
  P.Left->Title()->SetAngle(90);
  P.Left->Title()->SetVisible(true);
  P.Left->CalculateBounds(P.Bmp->Canvas(), {0, 0, 400, 300});
  EXPECT_EQ(test::CountPainted(P.Bmp.get()), 0);
  TCanvas* C = P.Bmp->Canvas();
  C->SetFont(P.Left->Title()->Font());
  const int32_t TitleW = GetRotatedTextExtent(C, 90, "Value").cx;
  EXPECT_EQ(P.Left->Width(), TitleW + 3 + P.Left->MaxLabelWidth() + 4);
  EXPECT_EQ(P.Left->Height(), 0);
  // Without a range: no labels, no room for them; the title and the line remain.
  auto Empty = MakeAxis(calLeft, 5, 5);
  Empty->Title()->SetText("Value");
  Empty->Title()->SetAngle(90);
  Empty->CalculateBounds(C, {0, 0, 400, 300});
  EXPECT_EQ(Empty->Width(), TitleW + 3 + 4);
}

TEST(AxisPainting, AnInwardAxisMovesIntoTheRectangle) {
  auto Bmp = test::MakeBitmap(200, 200);
  auto A = MakeAxis(calBottom, 0, 10);
  A->SetOptions(A->Options() - aoShowLabels - aoShowTitle);
  A->SetInwardPosition(50);
  A->Draw(Bmp->Canvas(), {0, 0, 200, 200});
  EXPECT_EQ(Bmp->Canvas()->Pixel(100, 100 - 4), clBlack);
  EXPECT_EQ(Bmp->Canvas()->Pixel(100, 199), clWhite);
}

// --- The grid ---

TEST(AxisGrid, TicksAreDueOnlyWithTicksOfSomeLength) {
  const TAxisDrawGridOptions All{agoMajorGrid, agoMinorGrid, agoTicks, agoOrigin};
  const struct {
    bool Visible;
    TAxisDrawGridOptions Options;
    int32_t Tick, Inner, Minor, MinorCount;
    bool Major, MinorDue;
  } Cases[] = {{true, All, 4, 0, 2, 3, true, true},
               {false, All, 4, 0, 2, 3, false, false},
               {true, {agoMajorGrid}, 4, 0, 2, 3, false, false},
               {true, All, 0, 0, 2, 3, false, true},
               {true, All, -5, 2, 2, 0, true, false},
               {true, All, 4, 0, -1, 3, true, false}};
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(C.Tick) + " " + std::to_string(C.Inner) + " " +
                 std::to_string(C.Minor) + " " + std::to_string(C.MinorCount));
    auto A = MakeAxis(calBottom, 0, 10);
    TKXAxisGrid* G = A->Grid();
    G->SetVisible(C.Visible);
    G->SetDrawOptions(C.Options);
    G->SetTickLength(C.Tick);
    G->SetInnerLength(C.Inner);
    G->SetMinorTickLength(C.Minor);
    G->SetMinorTickCount(C.MinorCount);
    EXPECT_EQ(G->ShouldDrawMajorTicks(), C.Major);
    EXPECT_EQ(G->ShouldDrawMinorTicks(), C.MinorDue);
    EXPECT_EQ(A->Options().Contains(aoShowGrid), C.Visible);
  }
}

TEST(AxisGrid, OriginIsVisibleStrictlyInsideTheZoomedRange) {
  auto A = MakeAxis(calBottom, -10, 10);
  TKXAxisGrid* G = A->Grid();
  for (auto [Origin, Visible] :
       {std::pair{0.0, true}, {-10.0, false}, {10.0, false}, {NaN, false}}) {
    G->SetOrigin(Origin);
    EXPECT_EQ(G->IsOriginVisible(), Visible) << Origin;
  }
  G->SetOrigin(0);
  G->SetDrawOptions(G->DrawOptions() - agoOrigin);
  EXPECT_FALSE(G->IsOriginVisible());
}

// Columns of row Y holding Colour between X0 and X1.
int32_t Marks(const TBitmap* Bmp, int32_t Y, int32_t X0, int32_t X1, TColor Colour) {
  return test::CountPixels(Bmp, {X0, Y, X1, Y + 1}, [Colour](TColor C) { return C == Colour; });
}

TEST(AxisGrid, MinorTickCountDividesEachIntervalEvenly) {
  for (int32_t Count : {0, 1, 3}) {
    auto Bmp = test::MakeBitmap(240, 100);
    auto A = MakeAxis(calBottom, 0, 100);
    A->SetOptions(A->Options() - aoShowTitle);
    A->SetLabelIncrement(25);
    TKXAxisGrid* G = A->Grid();
    G->TicksPen()->SetColor(TickRed);
    G->MinorGridPen()->SetColor(GridGreen);
    G->SetDrawOptions(G->DrawOptions() + agoMinorGrid);
    G->SetMinorTickCount(Count);
    A->Draw(Bmp->Canvas(), {20, 0, 220, 100});
    const int32_t LineY = 100 - Bmp->Canvas()->TextHeight("A") - 4;
    ASSERT_EQ(Bmp->Canvas()->Pixel(100, LineY - 1), clWhite);
    // Majors at 0, 25, ... 100 reach four pixels down, minors two; marks below 0 and above
    // 100 fall outside the rectangle and are dropped.
    EXPECT_EQ(Marks(Bmp.get(), LineY + 2, 0, 240, TickRed), 5) << Count;
    EXPECT_EQ(Marks(Bmp.get(), LineY + 1, 0, 240, TickRed), 5 + 4 * Count) << Count;
    EXPECT_EQ(Marks(Bmp.get(), LineY - 5, 0, 240, GridGreen), 4 * Count) << Count;
    const int32_t Quarter = A->AxisToPixel(25, {20, 0, 220, 100});
    if (Count == 3) {
      EXPECT_EQ(Bmp->Canvas()->Pixel(A->AxisToPixel(31.25, {20, 0, 220, 100}), LineY + 1), TickRed);
      EXPECT_EQ(Bmp->Canvas()->Pixel(Quarter, LineY + 3), TickRed);
    }
  }
}

TEST(AxisGrid, NoLabelsNoGrid) {
  auto Bmp = test::MakeBitmap(200, 100);
  auto A = MakeAxis(calBottom, 0, 10);
  A->SetOptions(A->Options() - aoShowLabels);
  A->Grid()->GridPen()->SetColor(GridBlue);
  A->Grid()->GridPen()->SetStyle(psSolid);
  A->Draw(Bmp->Canvas(), {0, 0, 200, 100});
  EXPECT_EQ(A->Grid()->MajorGridInterval(), 0);
  EXPECT_EQ(test::CountPixels(Bmp.get(), [](TColor C) { return C == GridBlue; }), 0);
}

// --- Bad input ---

TEST(AxisBadInput, BadRangesMeasureAndPaintInBoundedTime) {
  const struct {
    const char* Name;
    double Min, Max;
    bool Labels; // whether some label is expected
  } Cases[] = {{"NaN", NaN, NaN, false},       {"NaNMaximum", 0, NaN, false},
               {"Infinite", -Inf, Inf, false}, {"WidestDoubles", -1e308, 1e308, true},
               {"Huge", 1e308, 1.7e308, true}, {"Tiny", 0, 1e-300, true},
               {"Empty", 3, 3, false},         {"StepBelowResolution", 1e20, 1e20 + 25000, true},
               {"Subnormal", 0, 5e-324, false}};
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Name);
    TAxesPicture P(false);
    for (TKXChartAxis* A : {P.Bottom.get(), P.Left.get()}) {
      A->SetOptions(A->Options() - aoAutoMinimum - aoAutoMaximum);
      A->SetMaximum(C.Max);
      A->SetMinimum(C.Min);
      A->SetMaximum(C.Max);
    }
    ASSERT_NO_THROW(P.Draw());
    for (TKXChartAxis* A : {P.Bottom.get(), P.Left.get()}) {
      EXPECT_GE(A->Width(), 0);
      EXPECT_LE(A->Width(), 400);
      EXPECT_GE(A->Height(), 0);
      EXPECT_LE(A->Height(), 300);
    }
    // Below the ticks: only labels paint there.
    const auto Runs = InkRunCentres(P.Bmp.get(), {P.Plot.Left + 2, P.Plot.Bottom + 5, 398, 300});
    EXPECT_EQ(!Runs.empty(), C.Labels) << Runs.size();
  }
}

TEST(AxisBadInput, BasesBelowTwoAndAZeroSeparationOnNoPixelsFinish) {
  for (int32_t Base : {0, 1}) {
    TAxesPicture P(false);
    P.Bottom->SetOptions(P.Bottom->Options() + aoLogarithmic);
    P.Bottom->SetLogBase(Base);
    EXPECT_NO_THROW(P.Draw()) << Base;
  }
  auto Bmp = test::MakeBitmap(10, 10);
  auto A = MakeAxis(calBottom, 0, 10);
  A->SetMinSeparationPct(0);
  EXPECT_NO_THROW(A->CalculateBounds(Bmp->Canvas(), {5, 5, 5, 5}));
  EXPECT_NO_THROW(A->Draw(Bmp->Canvas(), {5, 0, 5, 10}));
}

TEST(AxisBadInput, LogCyclesFromATinyMinimumFinish) {
  TAxesPicture P(false);
  P.Bottom->SetMaximum(1000);
  P.Bottom->SetMinimum(1e-300);
  P.Bottom->SetOptions(P.Bottom->Options() + aoLogarithmic);
  P.Bottom->SetLogCycles(true);
  EXPECT_NO_THROW(P.Draw());
}

TEST(AxisBadInput, LogCyclesOverDataAtZeroRaiseAndLeaveDrawingCleared) {
  auto Bmp = test::MakeBitmap(100, 100);
  auto A = MakeAxis(calBottom, 0, 1000);
  A->SetOptions(A->Options() + aoLogarithmic);
  A->SetLogCycles(true);
  for (bool Paint : {false, true}) {
    try {
      if (Paint)
        A->Draw(Bmp->Canvas(), {0, 0, 100, 100});
      else
        A->CalculateBounds(Bmp->Canvas(), {0, 0, 100, 100});
      ADD_FAILURE() << "no exception";
    } catch (const Exception& E) {
      EXPECT_STREQ(E.what(), "Illegal Value entered for log cycles!");
      EXPECT_EQ(E.Message(), "Illegal Value entered for log cycles!");
    }
    EXPECT_FALSE(A->IsDrawing());
  }
}

// --- A chart alone ---

TEST(ChartAlone, PaintsItsVisibleAxesAroundTheRectangleItIsLeft) {
  TOwned<test::TTestForm> Form(New<test::TTestForm>(nullptr));
  auto* Chart = New<test::TTestChart>(Form.get());
  Chart->Values()->Add({0, 1});
  Chart->Values()->Add({10, 5});
  TKXChartAxis* H = Chart->HorizontalAxis();
  TKXChartAxis* V = Chart->VerticalAxis();
  H->SetVisible(true);
  V->SetVisible(true);
  TRect Drawn{};
  Chart->SetOnDraw([&Drawn](TObject*, TCanvas*, const TRect& R) { Drawn = R; });
  auto Bmp = test::MakeBitmap(300, 200);
  Chart->Draw(Bmp->Canvas(), {0, 0, 300, 200}, V, H, true, true);
  // The room each axis takes is what it measures on the whole rectangle (painting leaves
  // the whole extents in Width and Height).
  V->CalculateBounds(Bmp->Canvas(), {0, 0, 300, 200});
  H->CalculateBounds(Bmp->Canvas(), {0, 0, 300, 200});
  ASSERT_GT(V->Width(), 10);
  ASSERT_GT(H->Height(), 10);
  EXPECT_EQ(Drawn, (TRect{V->Width(), 10, 290, 200 - H->Height()}));
  EXPECT_EQ(Bmp->Canvas()->Pixel(Drawn.Left, 100), clBlack);
  EXPECT_EQ(Bmp->Canvas()->Pixel(150, Drawn.Bottom), clBlack);
  EXPECT_TRUE(H->Visible());
  // A hidden axis keeps its margin of 10.
  V->SetVisible(false);
  Chart->Draw(Bmp->Canvas(), {0, 0, 300, 200}, V, H, true, true);
  EXPECT_EQ(Drawn.Left, 10);
}

} // namespace
} // namespace kx
