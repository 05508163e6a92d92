// The reduced drawing of line and area charts against drawing every segment, pixel by
// pixel; the pixel map it draws with against the axes; and the summary it reads against
// the values themselves after every kind of change.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <random>
#include <string>

#include "axes/KXAxesTestSupport.h"
#include "charts/KXChartsTestSupport.h"
#include "kxcharts/charts/KXLineReduction_p.h"

namespace kx::test {
namespace {

// --- Reduced and full drawing give the same picture ---

enum TOddValue : uint8_t { ovNone, ovSelected, ovHidden, ovColor, ovNaN };

struct TReduceCase {
  std::string Name;
  int32_t Width, Height, Count;
  int32_t PenWidth;
  bool Antialias;
  bool Area;
  double ZoomFraction; // of the X range, about its middle; 1 for no zoom
  TOddValue Odd;
  TLineChartStyle Style = lsStraight;
  TPenStyle PenStyle = psSolid; // a pattern runs along the whole path: no reduction then
};

void PrintTo(const TReduceCase& C, std::ostream* Os) {
  *Os << C.Name;
}

// Without antialiasing both ways give the same pixels. With it, a reduced line of an even
// pen fills its runs up and down pixel columns as boxes and strokes only the rest, so a
// pixel may come out a little off (no channel by more than 2, on at most 1 % of the
// painted pixels); odd pens are stroked whole and come out the same. Antialiased areas differ where
// the full drawing blends an edge pixel once per polygon (each is filled on its own) and the
// reduced one fewer times: no channel of any pixel by more than this, on no more than this share of
// the painted pixels.
constexpr int AntialiasChannelTolerance = 64;
constexpr double AntialiasPixelShare = 0.03;

class ReducedDrawing : public testing::TestWithParam<TReduceCase> {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
  }

  // The chart of the case, drawn one way or the other; Segments gets the number of
  // segments that reached the canvas.
  TOwned<TBitmap> Render(bool Reduced, size_t& Segments) {
    const TReduceCase& C = GetParam();
    TKXCustomLineChart* Chart = nullptr;
    TDrawLog* Log = nullptr;
    if (C.Area) {
      auto* A = New<TRecAreaChart>(Form.get());
      Chart = A;
      Log = &A->Log;
    } else {
      auto* L = New<TRecLineChart>(Form.get());
      Chart = L;
      Log = &L->Log;
    }
    TFinally Drop([Chart] { Chart->Free(); });
    Chart->SetBounds(0, 0, C.Width, C.Height);
    TChartOptions Options = Chart->Options() - coValueColors - coValueLabels;
    if (C.Odd == ovColor) Options.Include(coValueColors);
    Chart->SetOptions(Options);
    Chart->SetLineStyle(C.Style);
    Chart->Pen()->SetWidth(C.PenWidth);
    Chart->Pen()->SetStyle(C.PenStyle);
    Chart->Pen()->SetColor(clNavy);
    if (C.Area) Chart->SetColor(clSkyBlue);
    Chart->SetReducedDrawing(Reduced);
    std::mt19937 Random(7);
    std::normal_distribution<double> Step(0.0, 1.0);
    double Y = 0;
    {
      TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
      for (int32_t I = 0; I < C.Count; ++I) {
        Y += Step(Random);
        TKX2DChartValue* V = Chart->Values()->Add(I, Y);
        V->SetColor(clNavy);
      }
    }
    const int32_t Mid = C.Count / 2;
    TKX2DChartValue* Odd = Chart->Values()->Items(Mid);
    switch (C.Odd) {
    case ovSelected:
      Odd->SetSelected(true);
      break;
    case ovHidden:
      Odd->SetVisible(false);
      break;
    case ovNaN:
      Odd->SetY(std::nan(""));
      break;
    case ovColor:
      for (int32_t I = Mid; I < Mid + C.Count / 10; ++I)
        Chart->Values()->Items(I)->SetColor(clMaroon);
      break;
    case ovNone:
      break;
    }
    Chart->HorizontalAxis()->UpdateAxisValues();
    Chart->VerticalAxis()->UpdateAxisValues();
    if (C.ZoomFraction < 1) {
      const double Half = C.Count * C.ZoomFraction / 2;
      Chart->HorizontalAxis()->SetZoomMinimum(Mid - Half);
      Chart->HorizontalAxis()->SetZoomMaximum(Mid + Half);
    }
    TOwned<TBitmap> B = MakeBitmap(C.Width, C.Height, C.Antialias);
    Log->Clear();
    Chart->Draw(B->Canvas(), {0, 0, C.Width, C.Height});
    Segments = Log->Segments.size();
    return B;
  }

  TOwned<TChartsForm> Form;
};

TEST_P(ReducedDrawing, GivesThePictureOfEverySegment) {
  const TReduceCase& C = GetParam();
  size_t FullSegments = 0, ReducedSegments = 0;
  const TOwned<TBitmap> Full = Render(false, FullSegments);
  const TOwned<TBitmap> Reduced = Render(true, ReducedSegments);
  // The reduction took place where it may: fewer segments reached the canvas, far fewer
  // where many values share a column.
  if (C.PenStyle != psSolid) {
    EXPECT_EQ(ReducedSegments, FullSegments);
  } else {
    EXPECT_LT(ReducedSegments, FullSegments);
  }
  if (C.PenStyle == psSolid && C.Count * C.ZoomFraction / C.Width >= 10) {
    EXPECT_LT(ReducedSegments * 2, FullSegments);
  }
  const int32_t Painted = CountPainted(Full.get());
  ASSERT_GT(Painted, C.Width); // a line across the picture at the least
  const test::TPictureDifference D = test::ComparePictures(Full.get(), Reduced.get());
  const int ChannelTolerance = !C.Antialias ? 0 : C.Area ? AntialiasChannelTolerance : 2;
  const double PixelShare = !C.Antialias ? 0 : C.Area ? AntialiasPixelShare : 0.01;
  EXPECT_LE(D.Worst, ChannelTolerance) << "first at " << D.First.X << "," << D.First.Y;
  EXPECT_LE(D.Pixels, Painted * PixelShare) << "of " << Painted;
}

std::vector<TReduceCase> ReduceCases() {
  std::vector<TReduceCase> Cases;
  struct TSize3 {
    int32_t W, H, N;
  };
  const TSize3 Sizes[] = {{100, 80, 3000}, {240, 160, 3500}, {57, 300, 2500}};
  const TOddValue Odds[] = {ovNone, ovSelected, ovHidden, ovColor, ovNaN};
  const char* OddNames[] = {"Plain", "Selected", "Hidden", "ColorChange", "NaN"};
  int32_t K = 0;
  for (const bool Area : {false, true})
    for (const bool Aa : {false, true})
      for (const int32_t Pen : {1, 2, 3})
        for (const double Zoom : {1.0, 0.3}) {
          const TSize3 S = Sizes[K % 3];
          const TOddValue Odd = Odds[K % 5];
          ++K;
          Cases.push_back({std::string(Area ? "Area" : "Line") + (Aa ? "Aa" : "NoAa") + "Pen" +
                               std::to_string(Pen) + (Zoom < 1 ? "Zoomed" : "Whole") +
                               OddNames[Odd] + std::to_string(S.W) + "x" + std::to_string(S.H),
                           S.W, S.H, S.N, Pen, Aa, Area, Zoom, Odd});
        }
  // The step styles are not curves: they reduce as well.
  Cases.push_back(
      {"StepHorizontalNoAa", 120, 90, 3000, 1, false, false, 1, ovHidden, lsStepHorizontal});
  Cases.push_back(
      {"StepVerticalNoAa", 120, 90, 3000, 2, false, false, 1, ovSelected, lsStepVertical});
  Cases.push_back(
      {"DashedLineNoAa", 120, 90, 3000, 1, false, false, 1, ovNone, lsStraight, psDash});
  return Cases;
}

INSTANTIATE_TEST_SUITE_P(Charts, ReducedDrawing, testing::ValuesIn(ReduceCases()),
                         [](const auto& Info) { return Info.param.Name; });

// --- The shadow of a thinned line ---

// In a panel whose ChartShadow shows, a thinned line casts its shadow through whole pixel
// columns, which the canvas draws as boxes only with an even pen: an odd shadow pen is drawn
// a pixel wider there (the stroker took thirty times the line's time). A line whose values
// all show keeps the shadow's own pen, and the line its own, whatever the density.
struct TShadowCase {
  const char* Name;
  int32_t Count;
  int32_t ShadowPen;
  int32_t Expected; // the shadow segments' pen width
};

class ThinnedShadow : public testing::TestWithParam<TShadowCase> {};

TEST_P(ThinnedShadow, IsDrawnWithAnEvenPen) {
  const TShadowCase& C = GetParam();
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetBounds(0, 0, 200, 150);
  Panel->ChartShadow()->Pen()->SetColor(clBlack);
  Panel->ChartShadow()->Pen()->SetWidth(C.ShadowPen);
  auto* Chart = New<TRecLineChart>(Form.get());
  Chart->SetPanel(Panel);
  Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
  Chart->Pen()->SetColor(clNavy);
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (int32_t I = 0; I < C.Count; ++I)
      Chart->Values()->Add(I, (I * 37) % 101);
  }
  TOwned<TBitmap> B = MakeBitmap(200, 150);
  Panel->Draw(B->Canvas(), {0, 0, 200, 150});
  size_t Shadows = 0, Lines = 0;
  for (const test::TDrawnSegment& S : Chart->Log.Segments) {
    if (S.Pen == clBlack) {
      // The first value's own segment lies before the run that the reduction thins.
      if (Shadows++ > 0) {
        EXPECT_EQ(S.PenWidth, C.Expected);
      }
    } else {
      ++Lines;
      EXPECT_EQ(S.PenWidth, 2) << "the line keeps its own pen";
    }
  }
  EXPECT_GT(Shadows, 0u);
  EXPECT_EQ(Shadows, Lines);
}

INSTANTIATE_TEST_SUITE_P(Charts, ThinnedShadow,
                         testing::Values(TShadowCase{"DenseOnePixel", 5000, 1, 2},
                                         TShadowCase{"DenseThreePixels", 5000, 3, 4},
                                         TShadowCase{"DenseTwoPixels", 5000, 2, 2},
                                         TShadowCase{"SparseOnePixel", 40, 1, 1}),
                         [](const auto& Info) { return std::string(Info.param.Name); });

// --- The pixel map lands where the axes do ---

struct TMapCase {
  const char* Name;
  TKXChartAxisLocation Location;
  TAxisOptions Options;
  double Min, Max;
  double ZoomMin, ZoomMax; // NaN: the whole range
  int32_t Start, End;      // per cent of the rectangle
  TRect Rect;
  double YOffset;
};

// The numbers a map is tried on: odd ones, the range's ends, half pixels of the span and
// their neighbours (where the rounding turns), and numbers scattered on and around the
// range.
std::vector<double> MapNumbers(const TKXChartAxis& Axis, const TRect& Rect) {
  const double Lo = Axis.ZoomMinimum(), Hi = Axis.ZoomMaximum();
  std::vector<double> N = {Lo,       Hi,           0.0,           -0.0,  NaN,    Inf, -Inf, DBL_MAX,
                           -DBL_MAX, DBL_TRUE_MIN, -DBL_TRUE_MIN, 1e300, -1e300, 2e9, -2e9};
  N.insert(N.end(), {std::nextafter(Lo, -Inf), std::nextafter(Hi, Inf)});
  const int32_t Pixels =
      std::max(std::abs(Rect.Right - Rect.Left), std::abs(Rect.Bottom - Rect.Top)) + 1;
  const double Step = Hi / Pixels - Lo / Pixels; // finite on the widest range
  // Every pixel of a panel's span; on far larger ones, every pixel of a few thousand spread.
  for (int32_t K = -3; K <= Pixels + 3; K += std::max(1, Pixels / 3000)) {
    const double Half = Lo + (K + 0.5) * Step;
    N.insert(N.end(), {Half, std::nextafter(Half, Inf), std::nextafter(Half, -Inf), Lo + K * Step});
  }
  std::mt19937 Random(static_cast<unsigned>(Pixels));
  std::uniform_real_distribution<double> Along(-1.5, 2.5);
  for (int K = 0; K < 2000; ++K)
    N.push_back(Lo + Along(Random) * Step * Pixels);
  return N;
}

// Every number lands on the pixel the axis gives it: through the inline linear mapping
// (horizontal or vertical, reversed, zoomed, spans of part of the rectangle, an empty
// range, ranges too wide for a double, rectangles that are empty, inverted or far out,
// pixels that saturate before a mirror) and through the axis itself for log scales.
TEST(PixelMap, LandsEveryNumberWhereTheAxisDoes) {
  const TAxisOptions Rev{aoReversed}, Log{aoLogarithmic}, LogRev{aoLogarithmic, aoReversed};
  // clang-format off
  const TMapCase Cases[] = {
      {"Bottom", calBottom, {}, 0, 100, NaN, NaN, 0, 100, {0, 0, 1237, 40}, 0},
      {"BottomReversed", calBottom, Rev, -3, 7.5, NaN, NaN, 0, 100, {13, 0, 700, 40}, 0},
      {"TopZoomed", calTop, {}, 0, 1e6, 499000, 501000, 0, 100, {5, 0, 1605, 40}, 0},
      {"Left", calLeft, {}, -244.5, 209.75, NaN, NaN, 0, 100, {0, 17, 40, 823}, 0},
      {"LeftReversed", calLeft, Rev, -244.5, 209.75, NaN, NaN, 0, 100, {0, 17, 40, 823}, -3.5},
      {"RightSpanOffset", calRight, {}, 0, 1, NaN, NaN, 10, 85, {0, 3, 40, 903}, 0.25},
      {"LeftZoomedReversed", calLeft, Rev, -50, 50, -1, 1.5, 0, 100, {0, 0, 40, 300}, 0.3},
      {"EmptyBottom", calBottom, {}, 5, 5, NaN, NaN, 0, 100, {10, 0, 110, 40}, 0},
      {"EmptyLeftReversed", calLeft, Rev, 5, 5, NaN, NaN, 0, 100, {0, 0, 40, 100}, 1},
      {"EmptyLogarithmic", calLeft, Log, 5, 5, NaN, NaN, 0, 100, {0, 0, 40, 100}, 0},
      {"HugeBottom", calBottom, {}, -1e308, 1e308, NaN, NaN, 0, 100, {0, 0, 1000, 40}, 0},
      {"HugeLeftReversed", calLeft, Rev, -1.5e308, 1.7e308, NaN, NaN, 0, 100, {0, 0, 40, 900}, 1e300},
      {"Tiny", calLeft, {}, 1e-300, 3e-300, NaN, NaN, 0, 100, {0, 0, 40, 500}, 0},
      {"InvertedRect", calBottom, {}, 0, 10, NaN, NaN, 0, 100, {500, 0, 100, 40}, 0},
      {"FlatRect", calLeft, {}, 0, 10, NaN, NaN, 0, 100, {0, 50, 40, 50}, 0},
      {"FarRect", calRight, Rev, 0, 10, NaN, NaN, 0, 100, {0, -900000, 40, 1200000}, 0},
      {"Logarithmic", calLeft, Log, 1, 1000, NaN, NaN, 0, 100, {0, 0, 40, 600}, 2},
      {"LogarithmicReversed", calBottom, LogRev, 1, 1000, 10, 500, 0, 100, {0, 0, 800, 40}, 0}};
  // clang-format on
  for (const TMapCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    auto A = MakeAxis(C.Location, C.Min, C.Max);
    A->SetOptions(A->Options() + C.Options);
    A->SetEndPosition(C.End);
    A->SetStartPosition(C.Start);
    if (!std::isnan(C.ZoomMin)) {
      A->SetZoomMaximum(C.ZoomMax);
      A->SetZoomMinimum(C.ZoomMin);
      ASSERT_EQ(A->ZoomMinimum(), C.ZoomMin);
      ASSERT_EQ(A->ZoomMaximum(), C.ZoomMax);
    }
    // One axis on both sides: the map reads each axis for what it is, not for its side.
    const TKXPixelMap Map{A.get(), A.get(), C.Rect, C.YOffset};
    int32_t Wrong = 0;
    std::string First;
    for (const double N : MapNumbers(*A, C.Rect)) {
      const int32_t X = A->AxisToPixel(N, C.Rect), Y = A->AxisToPixel(C.YOffset + N, C.Rect);
      if (Map.PX(N) == X && Map.PY(N) == Y) continue;
      if (Wrong++ == 0)
        First = testing::PrintToString(N) + ": " + std::to_string(Map.PX(N)) + " for " +
                std::to_string(X) + ", " + std::to_string(Map.PY(N)) + " for " + std::to_string(Y);
    }
    EXPECT_EQ(Wrong, 0) << "first " << First;
  }
}

// --- The summary follows its values ---

class ValueSummary : public ChartAlone<TRecLineChart> {
protected:
  // Every question of the summary over many ranges, against the values themselves.
  void ExpectMatchesValues(const std::string& After) {
    SCOPED_TRACE(After);
    const TKX2DChartValues* V = Chart->Values();
    const TKXValueSummary& S = V->Summary();
    ASSERT_EQ(S.Count(), V->Count());
    const auto Same = [](double A, double B) { return A == B || (std::isnan(A) && std::isnan(B)); };
    const auto Plain = [](const TKX2DChartValue* Value) {
      return Value->Visible() && !Value->Selected() && Value->Opacity() > 0 &&
             Value->Scale() == 1 && std::isfinite(Value->X()) && std::isfinite(Value->Y());
    };
    for (int32_t I = 0; I < V->Count(); ++I) {
      ASSERT_TRUE(Same(S.Y(I), V->Items(I)->Y())) << I;
      ASSERT_TRUE(Same(S.X(I), V->Items(I)->X())) << I;
      ASSERT_EQ(S.Plain(I), Plain(V->Items(I))) << I;
    }
    // The collection's extents come from the summary: the finite numbers only, 0 for none.
    for (const int32_t Dim : {V->XDim(), V->YDim()}) {
      double ELo = INFINITY, EHi = -INFINITY;
      for (int32_t I = 0; I < V->Count(); ++I)
        if (const double N = V->Items(I)->GetValue(Dim); std::isfinite(N)) {
          ELo = std::min(ELo, N);
          EHi = std::max(EHi, N);
        }
      EXPECT_EQ(V->MinValue(Dim), ELo <= EHi ? ELo : 0.0) << "dimension " << Dim;
      EXPECT_EQ(V->MaxValue(Dim), ELo <= EHi ? EHi : 0.0) << "dimension " << Dim;
    }
    std::mt19937 Random(11);
    for (int K = 0; K < 60 && V->Count() > 0; ++K) {
      std::uniform_int_distribution<int32_t> Pick(0, V->Count() - 1);
      int32_t A = Pick(Random), B = Pick(Random);
      if (A > B) std::swap(A, B);
      double Lo = 0, Hi = 0, ELo = INFINITY, EHi = -INFINITY, EXLo = INFINITY, EXHi = -INFINITY;
      int32_t NotPlain = B + 1, OtherColor = B + 1, Above = -1, LastAbove = -1;
      const double Cut = V->Items(A)->Y();
      for (int32_t I = A; I <= B; ++I) {
        const TKX2DChartValue* Value = V->Items(I);
        if (std::isfinite(Value->X())) {
          EXLo = std::min(EXLo, Value->X());
          EXHi = std::max(EXHi, Value->X());
        }
        if (std::isfinite(Value->Y())) {
          ELo = std::min(ELo, Value->Y());
          EHi = std::max(EHi, Value->Y());
          if (Value->Y() > Cut) {
            if (Above < 0) Above = I;
            LastAbove = I;
          }
        }
        if (NotPlain > B && !Plain(Value)) NotPlain = I;
        if (OtherColor > B && Value->Color() != V->Items(A)->Color()) OtherColor = I;
      }
      const bool Any = S.MinMax(A, B, Lo, Hi);
      ASSERT_EQ(Any, ELo <= EHi) << A << ".." << B;
      if (Any) {
        EXPECT_EQ(Lo, ELo) << A << ".." << B;
        EXPECT_EQ(Hi, EHi) << A << ".." << B;
      }
      ASSERT_EQ(S.XMinMax(A, B, Lo, Hi), EXLo <= EXHi) << A << ".." << B;
      if (EXLo <= EXHi) {
        EXPECT_EQ(Lo, EXLo) << A << ".." << B;
        EXPECT_EQ(Hi, EXHi) << A << ".." << B;
      }
      EXPECT_EQ(S.NextNotPlain(A, B), NotPlain) << A << ".." << B;
      EXPECT_EQ(S.NextOtherColor(A, B, V->Items(A)->Color()), OtherColor) << A << ".." << B;
      const auto IsAbove = [Cut](double, double H) { return H > Cut; };
      EXPECT_EQ(S.FirstWhere(A, B, IsAbove), Above) << A << ".." << B;
      EXPECT_EQ(S.LastWhere(A, B, IsAbove), LastAbove) << A << ".." << B;
    }
  }

  void AddWalk(int32_t N, double FromX = 0) {
    std::mt19937 Random(static_cast<unsigned>(N));
    std::normal_distribution<double> Step(0.0, 1.0);
    double Y = 0;
    for (int32_t I = 0; I < N; ++I)
      Chart->Values()->Add(FromX + I, Y += Step(Random));
  }
};

TEST_F(ValueSummary, FollowsEveryKindOfChange) {
  TKX2DChartValues* V = Chart->Values();
  AddWalk(3000);
  ExpectMatchesValues("adding");
  AddWalk(700, 3000);
  ExpectMatchesValues("appending");

  using TChange = std::pair<const char*, std::function<void()>>;
  const TChange Changes[] = {
      {"a Y in the middle", [&] { V->Items(1234)->SetY(1e6); }},
      {"a hidden value", [&] { V->Items(77)->SetVisible(false); }},
      {"a selected value", [&] { V->Items(2500)->SetSelected(true); }},
      {"a scaled value", [&] { V->Items(1500)->SetScale(2); }},
      {"a transparent value", [&] { V->Items(40)->SetOpacity(0); }},
      {"a colour inside a bracket",
       [&] {
         TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
         V->Items(999)->SetColor(clRed);
       }},
      {"a value assigned", [&] { V->Items(10)->Assign(V->Items(2500)); }},
      {"a NaN", [&] { V->Items(3333)->SetY(std::nan("")); }},
      {"an infinite X", [&] { V->Items(2222)->SetX(INFINITY); }},
      {"an X that moves its value", [&] { V->Items(200)->SetX(2999.5); }},
      {"a delete in the middle", [&] { V->Items(1800)->Free(); }},
      {"a delete at the front", [&] { V->Items(0)->Free(); }},
      {"a delete at the end", [&] { V->Items(V->Count() - 1)->Free(); }},
      {"an insert", [&] { V->Insert(500)->SetY(-1e6); }},
      {"a limit", [&] { V->SetLimit(2000); }},
  };
  for (const auto& [What, Change] : Changes) {
    Change();
    ExpectMatchesValues(What);
  }
}

TEST_F(ValueSummary, SlidesWithALimitAcrossManyCompactions) {
  TKX2DChartValues* V = Chart->Values();
  V->SetLimit(1500);
  AddWalk(1500);
  ExpectMatchesValues("full");
  for (int Round = 1; Round <= 6; ++Round) {
    AddWalk(1100, 1500.0 * Round);
    ExpectMatchesValues("round " + std::to_string(Round));
  }
  EXPECT_EQ(V->Count(), 1500);
}

// The walks over blocks against a plain pass over the values, on ranges that start and end
// on and beside the block edges of every level, also after the front of the series moved
// on (its first leaves are dead slots then, and index edges are not block edges). Numbers
// repeat, and zeros of both signs are among the lowest Ys and the highest Xs: of equal
// numbers the first is the one to report, as a pass from the left reports it.
TEST_F(ValueSummary, BlockWalksAgreeWithAPlainPassAtEveryBlockEdge) {
  TKX2DChartValues* V = Chart->Values();
  V->SetSorted(false);
  const double Ys[] = {-0.0, 0.0, 1, 2, NaN};
  const double Xs[] = {-0.0, 0.0, -1, -2, Inf};
  const int32_t N = 4096 + 300;
  std::mt19937 Random(5);
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (int32_t I = 0; I < N; ++I)
      V->Add(Xs[Random() % 5], Ys[Random() % 5]);
  }
  struct TExtent {
    bool Any = false;
    double Lo = 0, Hi = 0;
    void Take(double Number) {
      if (!std::isfinite(Number)) return;
      if (!Any || Number < Lo) Lo = Number;
      if (!Any || Number > Hi) Hi = Number;
      Any = true;
    }
  };
  const auto Same = [](bool Any, double Lo, double Hi, const TExtent& E) {
    return Any == E.Any &&
           (!Any || (Lo == E.Lo && Hi == E.Hi && std::signbit(Lo) == std::signbit(E.Lo) &&
                     std::signbit(Hi) == std::signbit(E.Hi)));
  };
  const auto High = [](double, double Hi) { return Hi > 1.5; };
  const auto Low = [](double Lo, double) { return Lo < 0.5; };
  for (const int32_t Front : {0, 37, 300}) {
    if (Front > 0) V->SetLimit(N - Front);
    SCOPED_TRACE(testing::Message() << Front << " values gone from the front");
    const TKXValueSummary& S = V->Summary();
    const int32_t Count = S.Count();
    ASSERT_EQ(Count, N - Front);
    std::vector<int32_t> Edges{0, 1, 2, Count - 2, Count - 1};
    for (const int32_t Block : {16, 256, 4096})
      for (int32_t M = 1; M <= 3; ++M)
        for (const int32_t D : {-1, 0, 1})
          if (const int32_t E = M * Block + D - Front; E >= 0 && E < Count) Edges.push_back(E);
    int32_t Wrong = 0;
    std::string First;
    for (const int32_t A : Edges)
      for (const int32_t B : Edges) {
        if (A > B) continue;
        TExtent EY, EX;
        int32_t FirstHigh = -1, LastHigh = -1, FirstLow = -1, LastLow = -1;
        for (int32_t I = A; I <= B; ++I) {
          const double Y = V->Items(I)->Y();
          EY.Take(Y);
          EX.Take(V->Items(I)->X());
          if (std::isfinite(Y) && Y > 1.5) {
            if (FirstHigh < 0) FirstHigh = I;
            LastHigh = I;
          }
          if (std::isfinite(Y) && Y < 0.5) {
            if (FirstLow < 0) FirstLow = I;
            LastLow = I;
          }
        }
        double Lo = 0, Hi = 0, XLo = 0, XHi = 0;
        const bool AnyY = S.MinMax(A, B, Lo, Hi), AnyX = S.XMinMax(A, B, XLo, XHi);
        const bool Right = Same(AnyY, Lo, Hi, EY) && Same(AnyX, XLo, XHi, EX) &&
                           S.FirstWhere(A, B, High) == FirstHigh &&
                           S.LastWhere(A, B, High) == LastHigh &&
                           S.FirstWhere(A, B, Low) == FirstLow && S.LastWhere(A, B, Low) == LastLow;
        if (!Right && Wrong++ == 0) First = std::to_string(A) + ".." + std::to_string(B);
      }
    EXPECT_EQ(Wrong, 0) << "first " << First;
  }
}

// Whole blocks without a finite number (at the leaves and a level up) add nothing to an
// extent: no 0 of their own, in Y and in X alike.
TEST_F(ValueSummary, BlocksWithoutANumberAddNothing) {
  TKX2DChartValues* V = Chart->Values();
  V->SetSorted(false);
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (int32_t I = 0; I < 1024; ++I) {
      const bool Gap = I >= 16 && I < 16 + 512;
      V->Add(Gap ? NaN : 3.0 + I % 2, Gap ? NaN : 5.0 + I % 2);
    }
  }
  const TKXValueSummary& S = V->Summary();
  double Lo = 0, Hi = 0;
  ASSERT_TRUE(S.MinMax(0, 1023, Lo, Hi));
  EXPECT_EQ(Lo, 5.0);
  EXPECT_EQ(Hi, 6.0);
  ASSERT_TRUE(S.XMinMax(0, 1023, Lo, Hi));
  EXPECT_EQ(Lo, 3.0);
  EXPECT_EQ(Hi, 4.0);
  EXPECT_FALSE(S.MinMax(16, 16 + 511, Lo, Hi));
  EXPECT_FALSE(S.XMinMax(16, 16 + 511, Lo, Hi));
}

TEST_F(ValueSummary, ReadsEverythingAgainAfterASort) {
  TKX2DChartValues* V = Chart->Values();
  V->SetSorted(false);
  std::mt19937 Random(3);
  std::uniform_real_distribution<double> Any(-50, 50);
  for (int I = 0; I < 900; ++I)
    V->Add(Any(Random), Any(Random));
  ExpectMatchesValues("unsorted");
  V->Sort();
  ExpectMatchesValues("sorted");
}

// --- The span in view of a zoomed, sorted chart ---

// The values in view are found by halving on a series sorted on X; they must be those the
// walk from the first value finds: one before the first X at or above the zoom's minimum,
// through the first X above its maximum. Repeated Xs put the edges inside runs of equals.
TEST_F(ValueSummary, AZoomedSortedSeriesShowsTheSpanTheWalkFinds) {
  TKX2DChartValues* V = Chart->Values();
  for (int32_t I = 0; I < 300; ++I)
    V->Add(I / 3, I % 7);
  TKXChartAxis* Axis = Chart->HorizontalAxis();
  Axis->SetMaximum(100);
  const std::pair<double, double> Zooms[] = {
      {0, 99}, {2.5, 6.5}, {3, 3}, {3, 4}, {0, 0.5}, {98.5, 99}, {99, 100}, {40, 60.25},
  };
  for (const auto& [Lo, Hi] : Zooms) {
    Axis->SetZoomMinimum(Lo);
    Axis->SetZoomMaximum(Hi);
    Chart->UpdateAxisInfo(Axis);
    const double ZLo = Axis->ZoomMinimum(), ZHi = Axis->ZoomMaximum();
    int32_t First = -1, Last = -1;
    for (int32_t I = 0; I < V->Count() && Last == -1; ++I) {
      if (First == -1 && V->Items(I)->X() >= ZLo) First = std::max(0, I - 1);
      if (V->Items(I)->X() > ZHi) Last = I;
    }
    SCOPED_TRACE(testing::Message() << "zoom " << ZLo << ".." << ZHi);
    ASSERT_TRUE(Axis->Zooming());
    EXPECT_EQ(Chart->FirstIndex(), First == -1 ? 0 : First);
    EXPECT_EQ(Chart->LastIndex(), Last == -1 ? V->Count() - 1 : Last);
  }
}

} // namespace
} // namespace kx::test
