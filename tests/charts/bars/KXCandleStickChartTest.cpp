// Candlestick charts: the numbers of a candle and the Add forms that order them; bodies and
// wicks of up, down and flat candles in every style and both orientations (the rectangle
// handed to DrawBar, and pixels); whose brush fills a body; candles narrower than a pixel
// come out as drawing each would; bad numbers; the stored form.
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

using test::CountPixels;
using test::MakeBitmap;
using test::SetRange;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr TColor Up = TColor(32768), Down = TColor(255);

TEST(CandleStickValues, AddFormsTakeOpenFromTheLastCloseAndWidenHighAndLow) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXCandleStickChart>(Form.get());
  TKXCandleStickChartValues* V = C->Values();
  struct TWant {
    double X, Open, Close, High, Low, Average;
  };
  V->Add(10.0, "");                       // X 1; opens at its own close in an empty chart
  V->Add(3, 12, 15, 9, "");               // opens at the last close, average halfway
  V->Add(4, 14, 11, 13, 12, "");          // high rises to 14, low falls to 11
  V->Add(5, 20, 21, 25, 18, 30, "");      // the average stays outside of the span
  V->Add(16.0, "");                       // X 6; opens at 21, high and low widen to it
  const TWant Want[] = {{1, 10, 10, 10, 10, 10},  {3, 10, 12, 15, 9, 12},
                        {4, 14, 11, 14, 11, 12.5}, {5, 20, 21, 25, 18, 30},
                        {6, 21, 16, 21, 16, 16}};
  ASSERT_EQ(V->Count(), 5);
  for (int I = 0; I < 5; ++I) {
    const TKXCandleStickChartValue* Item = V->Items(I);
    EXPECT_EQ(Item->X(), Want[I].X) << I;
    EXPECT_EQ(Item->Open(), Want[I].Open) << I;
    EXPECT_EQ(Item->Close(), Want[I].Close) << I;
    EXPECT_EQ(Item->High(), Want[I].High) << I;
    EXPECT_EQ(Item->Low(), Want[I].Low) << I;
    EXPECT_EQ(Item->Average(), Want[I].Average) << I;
  }
  // Open above High raises High; the average stays where it was.
  TKXCandleStickChartValue* Last = V->Items(4);
  Last->SetOpen(40);
  EXPECT_EQ(Last->High(), 40.0);
  EXPECT_EQ(Last->Average(), 16.0);
  Last->SetClose(-1);
  EXPECT_EQ(Last->Low(), -1.0);
  EXPECT_EQ(V->MaxValue(1), 40.0) << "the span of all candles";
  EXPECT_EQ(V->MinValue(1), -1.0);
  // A flat candle is down.
  EXPECT_EQ(C->ShapeOf(V->Items(0)), C->DownShape());
  EXPECT_EQ(C->ShapeOf(V->Items(1)), C->UpShape());
}

// Candles at X 4 (the one under test) and 5 on the sparse bars' axes: X -1..9 on 100 pixels,
// the numbers -10..10. At 60 % the candle at 4 spans x 47..53; High 6 and Low -2 put its span
// at y 20..60, 5 pixels a unit, so Close or Open 5 lies at y 25, 2 at y 40 and 3 at y 35.
class Candles : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TChartsForm>(nullptr));
    Chart = New<TKXCandleStickChart>(Form.get());
    Chart->SetBarSizePct(60);
    Chart->SetOnCustomDrawValue([this](TObject*, TCanvas*, const TRect& R,
                                       const TKXBarChartValue* V, bool&) {
      if (V->Index() == 0) Bodies.push_back(R);
    });
  }
  void Candle(double Open, double Close, double High = 6, double Low = -2) {
    Chart->Values()->Clear();
    Chart->Values()->Add(4, Open, Close, High, Low, 0.0, "");
    Chart->Values()->Add(5, 0, 0, 0, 0, 0.0, "");
  }
  TBitmap* Draw(TBarOrientation O) {
    Chart->SetOrientation(O);
    SetRange(O == boVertical ? Chart->HorizontalAxis() : Chart->VerticalAxis(), -1, 9);
    SetRange(O == boVertical ? Chart->VerticalAxis() : Chart->HorizontalAxis(), -10, 10);
    Bodies.clear();
    Bitmap = MakeBitmap(100, 100);
    Chart->Draw(Bitmap->Canvas(), {0, 0, 100, 100});
    return Bitmap.get();
  }
  TColor At(int32_t X, int32_t Y) const { return Bitmap->Canvas()->Pixel(X, Y); }
  TOwned<TChartsForm> Form;
  TKXCandleStickChart* Chart = nullptr;
  TOwned<TBitmap> Bitmap;
  std::vector<TRect> Bodies;
};

TEST_F(Candles, BodiesRunFromOpenToCloseWithADownBodyHandedOnWithItsEndsSwapped) {
  struct TCase {
    double Open, Close;
    TBarOrientation O;
    TRect Body;
    TColor Fill;
  };
  // Lying: High on the right at x 80, Low at 40; the span y 47..53.
  const TCase Cases[] = {
      {2, 5, boVertical, {47, 25, 53, 40}, Up},   {5, 2, boVertical, {47, 40, 53, 25}, Down},
      {3, 3, boVertical, {47, 35, 53, 35}, Down}, {2, 5, boHorizontal, {60, 47, 75, 53}, Up},
      {5, 2, boHorizontal, {75, 47, 60, 53}, Down},
  };
  for (const TCase& K : Cases) {
    SCOPED_TRACE(testing::Message() << K.Open << "->" << K.Close << " " << int(K.O));
    Candle(K.Open, K.Close);
    Draw(K.O);
    ASSERT_EQ(Bodies.size(), 1u);
    EXPECT_EQ(Bodies[0], K.Body);
    const TRect B = FixRect(K.Body);
    if (!B.IsEmpty()) {
      EXPECT_EQ(At(B.Left + 2, B.Top + 2), K.Fill);
      EXPECT_EQ(At(B.Left, B.Top), clBlack) << "the outline in the shape's pen";
    }
  }
  // High equal to Low: both body edges at the span's top (its right side lying).
  Candle(3, 3, 3, 3);
  Draw(boVertical);
  EXPECT_EQ(Bodies.at(0), (TRect{47, 35, 53, 35}));
  Draw(boHorizontal);
  EXPECT_EQ(Bodies.at(0), (TRect{65, 47, 65, 53}));
}

TEST_F(Candles, EveryStyleDrawsItsBodyWicksCapsTicksAndAverageMark) {
  struct TCase {
    TCandleStickStyle Style;
    bool Body, Wick, Cap, Tick, Mark;
  };
  const TCase Cases[] = {
      {csBody, true, false, false, false, false},
      {csCandle, true, true, false, false, false},
      {csCappedCandle, true, true, true, false, false},
      {csTicks, false, true, false, true, false},
      {csBodyAverage, true, false, false, false, true},
      {csCandleAverage, true, true, false, false, true},
      {csCappedCandleAverage, true, true, true, false, true},
      {csTicksAverage, false, true, false, true, true},
  };
  Candle(2, 5); // up: body y 25..40, the average 0 at y 50
  for (const TCase& K : Cases) {
    SCOPED_TRACE(K.Style);
    Chart->SetCandleStickStyle(K.Style);
    Draw(boVertical);
    EXPECT_EQ(Bodies.size(), K.Body ? 1u : 0u) << "DrawBar runs for a body only";
    EXPECT_EQ(At(49, 30) == Up, K.Body);
    // The line from High (the top wick, or the ticks' line) in the middle column 50.
    EXPECT_EQ(At(50, 22) != clWhite, K.Wick);
    EXPECT_EQ(At(50, 55) != clWhite, K.Wick) << "the bottom wick";
    EXPECT_EQ(At(48, 20) != clWhite, K.Cap);
    EXPECT_EQ(At(48, 60) != clWhite, K.Cap) << "the cap at Low lies on the span's bottom";
    // Ticks: the open's to the left at y 40... the greater one (close 5, y 25) left, the
    // smaller right; in the brush's colour.
    EXPECT_EQ(At(47, 25) == Up, K.Tick);
    EXPECT_EQ(At(52, 40) == Up, K.Tick);
    // The mark crosses the span at the average, 2 pixels beyond each side.
    EXPECT_EQ(At(45, 50) != clWhite, K.Mark);
    EXPECT_EQ(At(54, 50) != clWhite, K.Mark);
    EXPECT_EQ(At(44, 50), clWhite);
  }
}

TEST_F(Candles, ValueColoursAndTheSelectionFillTheBodyAndTheGlyph) {
  Candle(2, 5);
  Chart->Values()->Items(0)->SetColor(clBlue);
  Draw(boVertical);
  EXPECT_EQ(At(49, 30), Up) << "without coValueColors the shape's brush";
  Chart->SetOptions(Chart->Options() + coValueColors);
  Draw(boVertical);
  EXPECT_EQ(At(49, 30), clBlue);
  auto Glyph = MakeBitmap(20, 20);
  Chart->DrawGlyph(Glyph->Canvas(), Chart->Values()->Items(0), {2, 2, 18, 18});
  EXPECT_EQ(CountPixels(Glyph.get(), {4, 4, 16, 16}, [](TColor P) { return P == clBlue; }), 144);
  Chart->SetOptions(Chart->Options() - coValueColors + coSelectionFill);
  Chart->Values()->Items(0)->SetSelected(true);
  Draw(boVertical);
  EXPECT_EQ(At(49, 30), Chart->SelectionColor());
}

TEST(CandleStickChart, CandlesNarrowerThanAPixelComeOutAsDrawingEachOfThemWould) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXCandleStickChart>(Form.get());
  C->SetOptions(C->Options() - coValueLabels);
  double Close = 0;
  for (int I = 0; I < 20000; ++I) {
    const double Next = 6 * std::sin(I * 0.011) + 2 * std::sin(I * 0.37);
    C->Values()->Add(I, Close, Next, std::max(Close, Next) + 1.5, std::min(Close, Next) - 1, "");
    Close = Next;
  }
  SetRange(C->HorizontalAxis(), -1, 20000);
  SetRange(C->VerticalAxis(), -10, 10);
  for (TCandleStickStyle Style : {csBody, csCandle}) {
    SCOPED_TRACE(Style);
    C->SetCandleStickStyle(Style);
    C->SetOnCustomDrawValue(nullptr);
    auto Quick = MakeBitmap(100, 100);
    C->Draw(Quick->Canvas(), {0, 0, 100, 100});
    int32_t Calls = 0;
    C->SetOnCustomDrawValue(
        [&](TObject*, TCanvas*, const TRect&, const TKXBarChartValue*, bool&) { ++Calls; });
    auto Each = MakeBitmap(100, 100);
    C->Draw(Each->Canvas(), {0, 0, 100, 100});
    EXPECT_GT(Calls, 19000);
    EXPECT_GT(test::CountPainted(Each.get()), 300);
    EXPECT_EQ(test::PixelBytes(Quick.get()), test::PixelBytes(Each.get()));
  }
}

TEST(CandleStickChart, BadNumbersLeaveNoCandle) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* C = New<TKXCandleStickChart>(Form.get());
  C->Values()->Add(0, NaN, 1, 2, 0, "");
  C->Values()->Add(1, 1, NaN, 2, 0, "");
  C->Values()->Add(2, 1, 1.5, 2, 0, "");
  C->Values()->Items(2)->SetHigh(-5); // a high below the low drags the rest down
  EXPECT_EQ(C->Values()->Items(2)->Low(), -5.0);
  EXPECT_EQ(C->Values()->Items(2)->Open(), 1.0) << "open and close are not dragged";
  SetRange(C->HorizontalAxis(), -1, 9);
  SetRange(C->VerticalAxis(), -10, 10);
  auto B = MakeBitmap(100, 100);
  C->Draw(B->Canvas(), {0, 0, 100, 100});
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 25, 100}, [](TColor P) { return P != clWhite; }), 0);
}

TEST(CandleStickChart, RegistersAndRoundTripsItsShapesStyleAndOptions) {
  StartBarChartsModule();
  EXPECT_EQ(GetChartClass(ctCandleStick), ClassOf<TKXCandleStickChart>());
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* C = New<TKXCandleStickChart>(Form.get());
  C->SetName("Candles1");
  EXPECT_EQ(C->CandleStickStyle(), csCandle);
  EXPECT_FALSE(C->Options().Contains(coValueColors));
  C->SetCandleStickStyle(csTicksAverage);
  C->UpShape()->Brush()->SetColor(clAqua);
  C->DownShape()->SetStyle(bsGradient);
  C->Values()->Add(3, 1, 2, 4, 0, 1.5, "a");
  const std::string Text = SaveFormToString(Form.get());
  EXPECT_NE(Text.find("Options"), std::string::npos) << "the options differ from the default";
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Text);
  auto* C2 = dynamic_cast<TKXCandleStickChart*>(Copy->FindComponent("Candles1"));
  ASSERT_NE(C2, nullptr);
  EXPECT_EQ(C2->CandleStickStyle(), csTicksAverage);
  EXPECT_EQ(C2->UpShape()->Brush()->Color(), clAqua);
  EXPECT_EQ(C2->DownShape()->Brush()->Color(), Down);
  EXPECT_EQ(C2->DownShape()->Style(), bsGradient);
  EXPECT_FALSE(C2->Options().Contains(coValueColors));
  ASSERT_EQ(C2->Values()->Count(), 1);
  EXPECT_EQ(C2->Values()->Items(0)->Open(), 1.0);
  EXPECT_EQ(C2->Values()->Items(0)->Close(), 2.0);
  EXPECT_EQ(C2->Values()->Items(0)->Average(), 1.5);
  // The preview: a month of weekdays, each candle opening at the close before it.
  auto* P = New<TKXCandleStickChart>(Form.get());
  P->SetPreview(true);
  ASSERT_GT(P->Values()->Count(), 15);
  for (int I = 1; I < P->Values()->Count(); ++I)
    EXPECT_EQ(P->Values()->Items(I)->Open(), P->Values()->Items(I - 1)->Close());
}

} // namespace
} // namespace kx
