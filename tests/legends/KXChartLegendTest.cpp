#include "kxcharts/legends/KXChartLegends.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "core/KXCoreTestSupport.h"
#include "support/KXBitmapProbe.h"

namespace kx {

namespace {

using test::TTestChart;
using test::TTestForm;

// Opens the measuring operations to the tests.
class TProbeLegend : public TKXChartLegend {
public:
  using TKXChartLegend::LongestLine;
  using TKXChartLegend::Size;
  using TKXChartLegend::TKXChartLegend;
};

std::vector<std::string> TextsOf(TStrings* L) {
  std::vector<std::string> R;
  for (int32_t I = 0; I < L->Count(); ++I)
    R.push_back(L->Strings(I));
  return R;
}

void SetFixedLines(TKXChartLegend* L, const std::vector<std::string>& Texts,
                   const std::vector<TObject*>& Objects = {}) {
  auto S = MakeOwned<TStringList>();
  for (size_t I = 0; I < Texts.size(); ++I)
    S->AddObject(Texts[I], I < Objects.size() ? Objects[I] : nullptr);
  L->SetFixed(true);
  L->SetLines(S.get());
}

class LegendInPanel : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TTestForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetName("Panel1");
    Legend = Panel->Legend();
  }
  TTestChart* AddChart(const std::string& Caption, std::initializer_list<double> Ys = {}) {
    auto* C = New<TTestChart>(Form.get());
    C->SetCaption(Caption);
    C->SetPanel(Panel);
    double X = 0;
    for (double Y : Ys)
      C->Values()->Add({X++, Y});
    return C;
  }
  TOwned<TTestForm> Form;
  TKXChartPanel* Panel = nullptr;
  TKXChartLegend* Legend = nullptr;
};

// --- Gathering ---

TEST_F(LegendInPanel, OneChartListsItsValuesAndTwoListTheCharts) {
  TTestChart* A = AddChart("Sales", {1, 2.5, 3});
  EXPECT_FALSE(Legend->IsShowingCharts());
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"1", "2.5", "3"}));
  EXPECT_EQ(Legend->Lines()->Objects(1), A->Values()->Items(1));

  TTestChart* B = AddChart("");
  EXPECT_TRUE(Legend->NeedsUpdate()) << "a chart that joins raises the flag";
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"Sales", "TTestChart"}))
      << "a chart with no caption and no name goes by its class name";
  EXPECT_EQ(Legend->Lines()->Objects(0), A);
  EXPECT_EQ(Legend->Lines()->Objects(1), B);
}

TEST_F(LegendInPanel, ChartsOutOfTheLegendAreSkippedAndDoNotCountForAuto) {
  TTestChart* A = AddChart("A", {4, 5});
  TTestChart* B = AddChart("B");
  AddChart("C")->SetVisible(false);
  B->SetOptions(B->Options() - coShowInLegend);
  EXPECT_FALSE(Legend->IsShowingCharts());
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"4", "5"}));
  Legend->SetLegendStyle(lsCharts);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"A"}));
  Legend->SetLegendStyle(lsChartsLastValue);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"A 5"}));
  A->Values()->Items(1)->SetVisible(false);
  Legend->SetLegendStyle(lsValues);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"4"})) << "hidden values too";
}

TEST_F(LegendInPanel, EventLinesStandFirstAndCountTowardsMaxRows) {
  for (const char* C : {"A", "B", "C", "D", "E"})
    AddChart(C);
  Legend->SetOnGetLegendStrings([](TObject*, TStrings* S) { S->Add("legend"); });
  Panel->SetOnGetLegendStrings([](TObject*, TStrings* S) { S->Add("panel"); });
  Legend->SetMaxRows(4);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"legend", "panel", "A", "B"}));
  Legend->SetFirstIndex(3);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"legend", "panel", "D", "E"}));
  Legend->SetFirstIndex(9);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"legend", "panel"}));
}

TEST_F(LegendInPanel, ValuesFillOneRowFewerThanCharts) {
  AddChart("A", {1, 2, 3, 4, 5});
  Legend->SetMaxRows(3);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"1", "2"}));
  Legend->SetFirstIndex(3);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"4", "5"}));
  Legend->SetFirstIndex(5);
  EXPECT_EQ(Legend->Lines()->Count(), 0);
}

TEST_F(LegendInPanel, LinesAreGatheredOnlyWhenTheFlagIsUp) {
  AddChart("A");
  AddChart("B");
  int Gathered = 0;
  Legend->SetOnGetLegendStrings([&](TObject*, TStrings*) { ++Gathered; });
  Legend->Lines();
  Legend->Lines();
  EXPECT_EQ(Gathered, 1);
  EXPECT_FALSE(Legend->NeedsUpdate());
  Panel->Charts()->Items(0)->SetCaption("Renamed");
  EXPECT_EQ(Legend->Lines()->Strings(0), "Renamed");
  EXPECT_EQ(Gathered, 2);
}

TEST_F(LegendInPanel, FixedLinesAreTheApplicationsUntilFixedIsCleared) {
  AddChart("A");
  AddChart("B");
  SetFixedLines(Legend, {"mine"});
  AddChart("C");
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"mine"}));
  Legend->SetFixed(false);
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"A", "B", "C"}));
}

TEST_F(LegendInPanel, SettingLinesAtDesignTimeFixesThem) {
  AddChart("A");
  auto S = MakeOwned<TStringList>();
  S->Add("run time");
  Legend->SetLines(S.get());
  EXPECT_FALSE(Legend->Fixed());
  Form->SetDesigning(true);
  S->SetStrings(0, "design time");
  Legend->SetLines(S.get());
  EXPECT_TRUE(Legend->Fixed());
  EXPECT_EQ(TextsOf(Legend->Lines()), (std::vector<std::string>{"design time"}));
}

TEST_F(LegendInPanel, AFailedGatheringIsTriedAgainAtTheNextRead) {
  AddChart("A");
  AddChart("B");
  bool Raise = true;
  Legend->SetOnGetLegendStrings([&](TObject*, TStrings*) {
    if (Raise) throw std::runtime_error("no lines today");
  });
  EXPECT_THROW(Legend->Lines(), std::runtime_error);
  EXPECT_TRUE(Legend->NeedsUpdate());
  Raise = false;
  TStrings* L = Legend->Lines();
  EXPECT_EQ(L->UpdateCount(), 0);
  EXPECT_EQ(TextsOf(L), (std::vector<std::string>{"A", "B"}));
}

// --- Setters ---

// A number is clamped before it is compared: -3 for FirstIndex is the 0 it holds.
TEST(ChartLegend, SettersStoreTheNearestAllowedNumberAndReportIt) {
  using L = TKXChartLegend;
  const struct {
    const char* Name;
    void (L::*Set)(int32_t);
    int32_t (L::*Get)() const;
    int32_t Given, Stored;
    int Changes;
  } Cases[] = {{"BoxSize", &L::SetBoxSize, &L::BoxSize, 2, 4, 1},
               {"MaxRows", &L::SetMaxRows, &L::MaxRows, 0, 1, 1},
               {"MaxColumns", &L::SetMaxColumns, &L::MaxColumns, -5, 1, 1},
               {"MaxWidthHigh", &L::SetMaxWidthPct, &L::MaxWidthPct, 150, 100, 1},
               {"MaxWidthLow", &L::SetMaxWidthPct, &L::MaxWidthPct, 0, 1, 1},
               {"FirstIndex", &L::SetFirstIndex, &L::FirstIndex, -3, 0, 0}};
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Name);
    auto Legend = MakeOwned<L>();
    int Changes = 0;
    Legend->SetOnChange([&](TObject*) { ++Changes; });
    ((*Legend).*C.Set)(C.Given);
    EXPECT_EQ(((*Legend).*C.Get)(), C.Stored);
    EXPECT_EQ(Changes, C.Changes);
    ((*Legend).*C.Set)(C.Given);
    EXPECT_EQ(Changes, C.Changes) << "the same number again is no change";
  }
}

TEST(ChartLegend, NegativeMarginsBecomeZeroWithOneChange) {
  auto L = MakeOwned<TKXChartLegend>();
  int Changes = 0;
  L->SetOnChange([&](TObject*) { ++Changes; });
  L->Margins()->SetRect({-2, 5, 7, -1});
  EXPECT_EQ(L->Margins()->Rect(), (TRect{0, 5, 7, 0}));
  EXPECT_EQ(Changes, 1);
}

TEST(ChartLegend, RectStyleGivesTheShadowTheBoxsShape) {
  auto L = MakeOwned<TKXChartLegend>();
  L->SetRectStyle(lrsRoundRect);
  EXPECT_EQ(L->Shadow()->Style(), shpRoundRect);
  L->SetRectStyle(lrsNone);
  EXPECT_EQ(L->Shadow()->Style(), shpRoundRect);
  L->SetRectStyle(lrsRectangle);
  EXPECT_EQ(L->Shadow()->Style(), shpRectangle);
}

TEST_F(LegendInPanel, TheLegendStartsWithThePanelsFont) {
  Panel->Font()->SetSize(11);
  auto L = MakeOwned<TKXChartLegend>(Panel);
  EXPECT_EQ(L->Font()->Size(), 11);
}

// --- Measuring ---

class LegendMeasure : public testing::Test {
protected:
  void SetUp() override {
    L = MakeOwned<TProbeLegend>();
    SetFixedLines(L.get(), {"Alpha", "Be", "Gamma ray"});
    Canvas = Bitmap->Canvas();
    Canvas->SetFont(L->Font());
    TW = Canvas->TextWidth("Gamma ray");
    TH = Canvas->TextHeight("A");
    // Another font on the canvas: the legend must measure in its own.
    Canvas->Font()->SetSize(20);
  }
  TOwned<TBitmap> Bitmap = test::MakeBitmap(500, 400);
  TOwned<TProbeLegend> L;
  TCanvas* Canvas = nullptr;
  int32_t TW = 0, TH = 0;
  const TRect Area{10, 20, 410, 320};
};

TEST_F(LegendMeasure, LongestLineIsTheWidestTextUpToTheCap) {
  EXPECT_EQ(L->LongestLine(Canvas, Area), TW);
  L->SetMaxWidthPct(5); // 20 pixels of 400
  ASSERT_GT(TW, 20);
  EXPECT_EQ(L->LongestLine(Canvas, Area), 20);
  EXPECT_EQ(L->LongestLine(Canvas, {0, 0, 90, 10}), 5) << "5 % of 90, rounded";
}

TEST_F(LegendMeasure, SizeAndBoundsAtEverySide) {
  struct TCase {
    TKXLegendAlignment Align;
    TSize Size;
    TRect Bounds;
  };
  // ml 3, mt 4, mr 3, mb 4, shadow 3, box 10, gap 10.
  const int32_t SideW = 3 + TW + 10 + 3 + 3 + 10, SideH = 4 + 3 * TH + 4 + 3;
  // A column steps over the text, the glyph, both side margins and the gap.
  const int32_t ColW = TW + 10 + 3 + 3 + 10, Cols = 400 / ColW, Rows = (3 + Cols - 1) / Cols;
  const int32_t FlowW = 3 + ColW * Cols + 3 + 3, FlowH = 4 + TH * Rows + 4 + 3;
  const TCase Cases[] = {
      {laLeft, {SideW, SideH}, {10, 20, 10 + SideW + 6, 20 + SideH + 8}},
      {laRight, {SideW, SideH}, {410 - SideW - 6, 20, 410, 20 + SideH + 8}},
      {laBottom, {FlowW, FlowH}, {210 - FlowW / 2, 320 - FlowH - 8, 210 + FlowW / 2, 320}},
      {laTop, {FlowW, FlowH}, {210 - FlowW / 2, 20, 210 + FlowW / 2, 20 + FlowH + 8}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(GetEnumName(C.Align));
    L->SetAlign(C.Align);
    int32_t Longest = -1;
    EXPECT_EQ(L->Size(Canvas, Area, Longest), C.Size);
    EXPECT_EQ(Longest, TW);
    Longest = -1;
    EXPECT_EQ(L->BoundsRect(Canvas, Area, Longest), C.Bounds);
    EXPECT_EQ(Longest, TW);
  }
}

TEST_F(LegendMeasure, ASideLegendIsCutAtTheBottomOfItsRectangle) {
  L->SetAlign(laLeft);
  int32_t Longest;
  EXPECT_EQ(L->BoundsRect(Canvas, {0, 0, 300, 12}, Longest).Bottom, 12);
}

TEST_F(LegendMeasure, ABottomLegendWiderThanItsRectangleKeepsOneColumn) {
  L->SetAlign(laBottom);
  L->SetMaxWidthPct(100);
  L->Shadow()->SetVisible(false);
  int32_t Longest;
  const TSize S = L->Size(Canvas, {0, 0, 30, 200}, Longest);
  EXPECT_EQ(Longest, std::min(TW, 30));
  EXPECT_EQ(S, (TSize{3 + Longest + 20 + 6 + 3, 4 + 3 * TH + 4}));
  L->SetMaxRows(2);
  EXPECT_EQ(L->Size(Canvas, {0, 0, 30, 200}, Longest).cy, 4 + 2 * TH + 4) << "MaxRows caps rows";
}

TEST_F(LegendMeasure, WithoutResizeBoundsTheLegendTakesTheWholeRectangle) {
  L->SetResizeBounds(false);
  int32_t Longest = -1;
  EXPECT_EQ(L->BoundsRect(Canvas, Area, Longest), Area);
  EXPECT_EQ(Longest, TW);
}

// --- Drawing ---

class LegendDrawing : public LegendInPanel {
protected:
  void SetUp() override {
    LegendInPanel::SetUp();
    A = AddChart("Apples");
    B = AddChart("Bananas");
    A->SetColor(clRed);
    B->SetColor(clBlue);
    Legend->Shadow()->SetVisible(false);
    Legend->Pen()->SetColor(clBlack);
    Canvas = Bitmap->Canvas();
    Canvas->SetFont(Legend->Font());
    TH = Canvas->TextHeight("A");
    TW = Canvas->TextWidth("Bananas");
  }
  // The box: the bounds less the margins, as the legend draws it.
  TRect Box(TCanvas* On, const TRect& R) {
    int32_t Longest;
    const TRect B = Legend->BoundsRect(On, R, Longest);
    return {B.Left + 3, B.Top + 4, B.Right - 3, B.Bottom - 4};
  }
  TColor At(int32_t X, int32_t Y) const { return Bitmap->Canvas()->Pixel(X, Y); }
  TTestChart *A = nullptr, *B = nullptr;
  TOwned<TBitmap> Bitmap = test::MakeBitmap(400, 300, clSilver);
  TCanvas* Canvas = nullptr;
  int32_t TH = 0, TW = 0;
  const TRect Area{0, 0, 400, 300};
};

TEST_F(LegendDrawing, BoxGlyphsAndTextsStandWhereTheyWereMeasured) {
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  EXPECT_EQ(R.Right, 400 - 3);
  EXPECT_EQ(At(R.Left, R.Top), clBlack) << "outline";
  EXPECT_EQ(At(R.Left + 1, R.Top + 1), clWhite) << "fill";
  EXPECT_EQ(At(R.Left - 1, R.Top), clSilver) << "nothing outside the box";
  // Glyph boxes: (x, y + 1, x + 10, y + TH - 2) in the chart's colour.
  const int32_t GX = R.Left + 3, GY = R.Top + 4;
  EXPECT_EQ(At(GX, GY + 1), clBlack) << "glyph outline in the legend's pen";
  EXPECT_EQ(At(GX + 5, GY + TH / 2), clRed);
  EXPECT_EQ(At(GX + 5, GY + TH + TH / 2), clBlue);
  // The texts: ink between the glyph gap and the box's inner right edge, row by row.
  const TRect Text1{GX + 20, GY, GX + 20 + TW, GY + TH};
  const TRect Text2{GX + 20, GY + TH, GX + 20 + TW, GY + 2 * TH};
  auto Ink = [](TColor C) { return GetRValue(C) < 128 && GetGValue(C) < 128; };
  EXPECT_GT(test::CountPixels(Bitmap.get(), Text1, Ink), 10);
  EXPECT_GT(test::CountPixels(Bitmap.get(), Text2, Ink), 10);
  EXPECT_EQ(test::CountPixels(Bitmap.get(), {GX + 20, GY + 2 * TH, R.Right - 1, R.Bottom - 1}, Ink),
            0)
      << "nothing below the last line";
}

TEST_F(LegendDrawing, TheShadowLiesBesideTheBox) {
  Legend->Shadow()->SetVisible(true);
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  // The shadow takes 3 pixels at the bottom right; the box moves up and left by them.
  EXPECT_EQ(At(R.Right - 1, R.Bottom - 1), clBlack);
  EXPECT_EQ(At(R.Right - 4, R.Bottom - 4), clBlack) << "the box's outline";
  EXPECT_EQ(At(R.Right - 5, R.Bottom - 5), clWhite);
  EXPECT_EQ(At(R.Left + 1, R.Bottom - 2), clSilver) << "the shadow's own corner stays clear";
}

TEST_F(LegendDrawing, RectangleStylesShapeTheBox) {
  const TRect R = Box(Canvas, Area);
  Legend->SetRectStyle(lrsRoundRect);
  Legend->Draw(Canvas, Area);
  EXPECT_EQ(At(R.Left, R.Top), clSilver) << "a round corner";
  EXPECT_EQ(At(R.Left, (R.Top + R.Bottom) / 2), clBlack);
  Bitmap = test::MakeBitmap(400, 300, clSilver);
  Canvas = Bitmap->Canvas();
  Legend->SetRectStyle(lrsNone);
  Legend->Draw(Canvas, Area);
  EXPECT_EQ(At(R.Left, R.Top), clSilver);
  EXPECT_EQ(At(R.Left + 1, R.Top + 1), clSilver) << "no fill either";
  EXPECT_EQ(At(R.Left + 8, R.Top + 4 + TH / 2), clRed) << "glyphs stay";
}

TEST_F(LegendDrawing, ValuesAreBoxedInTheirOwnColours) {
  B->SetVisible(false);
  A->SetOptions(A->Options() + coValueColors);
  A->Values()->Add({0, 1}, "", clLime);
  A->Values()->Add({1, 2}, "", clFuchsia);
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  EXPECT_EQ(At(R.Left + 8, R.Top + 4 + TH / 2), clLime);
  EXPECT_EQ(At(R.Left + 8, R.Top + 4 + TH + TH / 2), clFuchsia);
}

TEST_F(LegendDrawing, OtherObjectsGetAPlainBoxAndLinesWithoutObjectNone) {
  auto Foreign = MakeOwned<TStringList>();
  SetFixedLines(Legend, {"plain", "bare", "chart"}, {Foreign.get(), nullptr, A});
  Legend->Brush()->SetColor(clYellow);
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  const int32_t GX = R.Left + 3, GY = R.Top + 4;
  EXPECT_EQ(At(GX, GY + 1), clBlack) << "a box outline";
  EXPECT_EQ(At(GX + 5, GY + TH / 2), clYellow) << "filled with the brush the canvas has";
  EXPECT_EQ(At(GX, GY + TH + 1), clYellow) << "no glyph at all";
  EXPECT_EQ(At(GX + 5, GY + 2 * TH + TH / 2), clRed);
}

TEST_F(LegendDrawing, ChartGlyphsAreDrawnByTheChart) {
  Legend->SetOptions({loChartGlyphs});
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  const TRect Glyph{R.Left + 3, R.Top + 5, R.Left + 13, R.Top + 4 + TH - 2};
  EXPECT_GT(test::CountPixels(Bitmap.get(), Glyph, [](TColor C) { return test::Near(C, clRed); }),
            0);
  EXPECT_EQ(test::CountPixels(Bitmap.get(), Glyph, [](TColor C) { return C == clBlack; }), 0)
      << "no box outline of the legend's pen";
}

TEST_F(LegendDrawing, LargeGlyphsAreSquare) {
  Legend->SetOptions({loLargeGlyphs});
  Legend->SetBoxSize(TH + 8);
  const int32_t S = TH + 8;
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  const TRect Glyph{R.Left + 3, R.Top + 4 + 1, R.Left + 3 + S - 2, R.Top + 4 + S - 2};
  EXPECT_EQ(test::CountPixels(Bitmap.get(), Glyph, [](TColor C) { return C != clRed; }),
            2 * (Glyph.Right - Glyph.Left) + 2 * (Glyph.Bottom - Glyph.Top) - 4)
      << "red inside a one-pixel outline";
  EXPECT_EQ(At(R.Left + 8, R.Top + 4 + S + S / 2), clBlue) << "the next row is BoxSize lower";

  // A box smaller than the text: the glyph grows to the text's height, and so does the row.
  Legend->SetBoxSize(4);
  Bitmap = test::MakeBitmap(400, 300, clSilver);
  Canvas = Bitmap->Canvas();
  const TRect R2 = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  EXPECT_EQ(At(R2.Left + 5, R2.Top + 4 + TH + TH / 2), clBlue) << "rows do not overlap";
  EXPECT_EQ(At(R2.Left + 5, R2.Top + 4 + TH / 2), clRed);
}

TEST_F(LegendDrawing, LinesFlowIntoColumnsAtTheBottom) {
  Legend->SetAlign(laBottom);
  const TRect R = Box(Canvas, Area);
  Legend->Draw(Canvas, Area);
  int32_t Longest;
  Legend->BoundsRect(Canvas, Area, Longest);
  const int32_t GY = R.Top + 4 + TH / 2;
  EXPECT_EQ(At(R.Left + 8, GY), clRed);
  EXPECT_EQ(At(R.Left + 3 + Longest + 10 + 3 + 3 + 10 + 5, GY), clBlue)
      << "the second line stands in the same row, one step to the right";
  EXPECT_LE(R.Left + 3 + 2 * (Longest + 26) - 10, R.Right - 3)
      << "the box holds the last column it measured";
}

TEST_F(LegendDrawing, TheRowWalkDrawsMaxRowsRowsInABoxOfThatHeight) {
  SetFixedLines(Legend, {"a", "b", "c", "d"}, {A, B, A, B});
  for (int32_t MaxRows : {3, 1}) {
    SCOPED_TRACE(MaxRows);
    Bitmap->Canvas()->Brush()->SetColor(clSilver);
    Bitmap->Canvas()->FillRect({0, 0, Bitmap->Width(), Bitmap->Height()});
    Legend->SetMaxRows(MaxRows);
    const TRect R = Box(Canvas, Area);
    EXPECT_EQ(R.Bottom - R.Top, 4 + MaxRows * TH + 4);
    Legend->Draw(Canvas, Area);
    const int32_t GX = R.Left + 8, GY = R.Top + 4 + TH / 2;
    EXPECT_EQ(At(GX, GY + (MaxRows - 1) * TH), MaxRows % 2 ? clRed : clBlue) << "the last row";
    EXPECT_NE(At(GX, GY + MaxRows * TH), MaxRows % 2 ? clBlue : clRed) << "no row beyond";
  }
}

TEST_F(LegendDrawing, OnThePanelsOwnCanvasNothingLeavesTheBoxsInside) {
  SetFixedLines(Legend, {"a very long line that the cap cuts well short"}, {A});
  Legend->SetMaxWidthPct(10);
  Legend->SetAlign(laLeft);
  TCanvas* Own = Panel->Canvas();
  Own->Brush()->SetColor(clSilver);
  Own->FillRect(Area);
  const TRect R = Box(Own, Area);
  Legend->Draw(Own, Area);
  const TRect Margin{R.Right - 3, R.Top + 4, R.Right - 1, R.Top + 4 + TH};
  const TRect Outside{R.Right, R.Top + 4, 400, R.Top + 4 + TH};
  auto Ink = [](TColor C) { return GetRValue(C) < 128 && GetGValue(C) < 128; };
  EXPECT_EQ(test::CountPixels(Panel->Bitmap(), Margin, Ink), 0);
  EXPECT_EQ(test::CountPixels(Panel->Bitmap(), Outside, Ink), 0);
  // The same on a foreign canvas runs on past the box.
  Legend->Draw(Canvas, Area);
  EXPECT_GT(test::CountPixels(Bitmap.get(), Outside, Ink), 0);
}

// --- Stored properties ---

TEST_F(LegendInPanel, StoredPropertiesRoundTripWithFixedLines) {
  StartChartPanelModule();
  RegisterClasses({ClassOf<TTestForm>(), ClassOf<TTestChart>()});
  Form->SetName("Form1");
  const std::string Plain = SaveFormToString(Form.get());
  EXPECT_EQ(Plain.find("\"Margins\""), std::string::npos) << "default margins stay out";
  EXPECT_EQ(Plain.find("\"Lines\""), std::string::npos);

  AddChart("A");
  Legend->Lines();
  EXPECT_EQ(SaveFormToString(Form.get()).find("\"Lines\""), std::string::npos)
      << "gathered lines are not stored";
  SetFixedLines(Legend, {"first", "two\nlines", ""});
  Legend->SetAlign(laBottom);
  Legend->Margins()->SetTop(0); // the fresh value of a side, yet not the legend's start
  Legend->SetOptions({loLargeGlyphs, loChartGlyphs});
  Legend->SetRectStyle(lrsRoundRect);
  Legend->SetTextStyle(ltsCaptionPercent);
  Legend->SetMaxWidthPct(60);
  Legend->SetTextVerticalAlign(taAlignTop);
  Legend->SetOverlay(true);
  Legend->SetMaxRows(3);
  Legend->Shadow()->SetSize(5);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_LT(Json.find("\"Fixed\""), Json.find("\"Lines\"")) << "Fixed is read first";

  TOwned<TTestForm> Copy(New<TTestForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* P = static_cast<TKXChartPanel*>(Copy->FindComponent("Panel1"));
  ASSERT_NE(P, nullptr);
  TKXChartLegend* L = P->Legend();
  EXPECT_TRUE(L->Fixed());
  EXPECT_EQ(TextsOf(L->Lines()), (std::vector<std::string>{"first", "two\nlines", ""}));
  EXPECT_EQ(L->Align(), laBottom);
  EXPECT_EQ(L->Margins()->Rect(), (TRect{3, 0, 3, 4}));
  EXPECT_EQ(L->Options(), (TKXLegendOptions{loLargeGlyphs, loChartGlyphs}));
  EXPECT_EQ(L->RectStyle(), lrsRoundRect);
  EXPECT_EQ(L->Shadow()->Style(), shpRoundRect);
  EXPECT_EQ(L->TextStyle(), ltsCaptionPercent);
  EXPECT_EQ(L->MaxWidthPct(), 60);
  EXPECT_EQ(L->TextVerticalAlign(), taAlignTop);
  EXPECT_TRUE(L->Overlay());
  EXPECT_EQ(L->Shadow()->Size(), 5);
  EXPECT_EQ(L->Alignment(), taLeftJustify);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);

  // Assign copies every stored setting, the fixed lines among them, and the box's shape
  // reaches the shadow.
  TOwned<TTestForm> Third(New<TTestForm>(nullptr));
  Third->SetName("Form1");
  auto* P3 = New<TKXChartPanel>(Third.get());
  P3->SetName("Panel1");
  ColorListIndex = 0; // the same colour as chart A
  auto* C3 = New<TTestChart>(Third.get());
  C3->SetCaption("A");
  C3->SetPanel(P3);
  P3->Legend()->Assign(Legend);
  EXPECT_EQ(P3->Legend()->Shadow()->Style(), shpRoundRect);
  EXPECT_EQ(SaveFormToString(Third.get()), Json);
}

TEST_F(LegendInPanel, LinesThatAreNotTextsAreRefusedByName) {
  StartChartPanelModule();
  RegisterClasses({ClassOf<TTestForm>(), ClassOf<TTestChart>()});
  Form->SetName("Form1");
  SetFixedLines(Legend, {"x"});
  std::string Json = SaveFormToString(Form.get());
  const size_t At = Json.find("\"x\"");
  ASSERT_NE(At, std::string::npos);
  Json.replace(At, 3, "7");
  TOwned<TTestForm> Copy(New<TTestForm>(nullptr));
  try {
    LoadFormFromString(Copy.get(), Json);
    FAIL() << "a number was read as a line";
  } catch (const EFilerError& E) {
    EXPECT_NE(E.Message().find("Legend.Lines"), std::string::npos) << E.Message();
  }
}

} // namespace
} // namespace kx
