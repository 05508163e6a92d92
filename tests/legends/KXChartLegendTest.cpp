#include "kxcharts/legends/KXChartLegends.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/KXCoreTestSupport.h"
#include "kxcharts/core/KXChartPanel.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

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
  return std::vector<std::string>(L->begin(), L->end());
}

void SetFixedLines(TKXChartLegend* L, const std::vector<std::string>& Texts,
                   const std::vector<TObject*>& Objects = {}) {
  auto S = MakeOwned<TStringList>();
  for (size_t I = 0; I < Texts.size(); ++I)
    S->AddObject(Texts[I], I < Objects.size() ? Objects[I] : nullptr);
  L->SetFixed(true);
  L->SetLines(S.get());
}

class LegendInPanel : public test::PanelFixture {
protected:
  void SetUp() override {
    PanelFixture::SetUp();
    Legend = Panel->Legend();
  }
  std::vector<std::string> Shown() { return TextsOf(Legend->Lines()); }
  TKXChartLegend* Legend = nullptr;
};

using Texts = std::vector<std::string>;

// --- Gathering ---

TEST_F(LegendInPanel, OneChartListsItsValuesAndTwoListTheCharts) {
  TTestChart* A = AddChart("Sales", {1, 2.5, 3});
  EXPECT_FALSE(Legend->IsShowingCharts());
  EXPECT_EQ(Shown(), (Texts{"1", "2.5", "3"}));
  EXPECT_EQ(Legend->Lines()->Objects(1), A->Values()->Items(1));

  TTestChart* B = AddChart("");
  EXPECT_TRUE(Legend->NeedsUpdate()) << "a chart that joins raises the flag";
  EXPECT_EQ(Shown(), (Texts{"Sales", "TTestChart"}))
      << "a chart with no caption and no name goes by its class name";
  EXPECT_EQ(Legend->Lines()->Objects(1), B);
  B->SetCaption("Costs");
  EXPECT_EQ(Shown(), (Texts{"Sales", "Costs"})) << "the caption before the name";
}

TEST_F(LegendInPanel, ChartsOutOfTheLegendAreSkippedAndDoNotCountForAuto) {
  TTestChart* A = AddChart("A", {4, 5});
  TTestChart* B = AddChart("B");
  AddChart("C")->SetVisible(false);
  B->SetOptions(B->Options() - coShowInLegend);
  EXPECT_FALSE(Legend->IsShowingCharts());
  EXPECT_EQ(Shown(), (Texts{"4", "5"}));
  Legend->SetLegendStyle(lsCharts);
  EXPECT_EQ(Shown(), (Texts{"A"}));
  Legend->SetLegendStyle(lsChartsLastValue);
  EXPECT_EQ(Shown(), (Texts{"A 5"}));
  A->Values()->Items(1)->SetVisible(false);
  Legend->SetLegendStyle(lsValues);
  EXPECT_EQ(Shown(), (Texts{"4"})) << "hidden values too";
}

TEST_F(LegendInPanel, EventLinesStandFirstAndCountTowardsMaxRowsAndValuesFillOneRowFewer) {
  for (const char* C : {"A", "B", "C", "D", "E"})
    AddChart(C);
  Legend->SetOnGetLegendStrings([](TObject*, TStrings* S) { S->Add("legend"); });
  Panel->SetOnGetLegendStrings([](TObject*, TStrings* S) { S->Add("panel"); });
  Legend->SetMaxRows(4);
  EXPECT_EQ(Shown(), (Texts{"legend", "panel", "A", "B"}));
  Legend->SetFirstIndex(3);
  EXPECT_EQ(Shown(), (Texts{"legend", "panel", "D", "E"}));
  Legend->SetFirstIndex(9);
  EXPECT_EQ(Shown(), (Texts{"legend", "panel"}));

  Legend->SetOnGetLegendStrings(nullptr);
  Panel->SetOnGetLegendStrings(nullptr);
  Legend->SetLegendStyle(lsValues);
  Panel->Charts()->Items(0)->Values()->Add({0, 1});
  Panel->Charts()->Items(0)->Values()->Add({1, 2});
  Legend->SetMaxRows(2);
  Legend->SetFirstIndex(0);
  EXPECT_EQ(Shown(), (Texts{"1"}));
  Legend->SetFirstIndex(1);
  EXPECT_EQ(Shown(), (Texts{"2"}));
}

TEST_F(LegendInPanel, LinesAreGatheredOnceUntilTheFlagIsUpAgainAndAFailureTriesAgain) {
  AddChart("A");
  AddChart("B");
  int Gathered = 0;
  bool Raise = false;
  Legend->SetOnGetLegendStrings([&](TObject*, TStrings*) {
    ++Gathered;
    if (Raise) throw std::runtime_error("no lines today");
  });
  Legend->Lines();
  Legend->Lines();
  EXPECT_EQ(Gathered, 1);
  EXPECT_FALSE(Legend->NeedsUpdate());
  Raise = true;
  Panel->Charts()->Items(0)->SetCaption("Renamed");
  EXPECT_THROW(Legend->Lines(), std::runtime_error);
  EXPECT_TRUE(Legend->NeedsUpdate());
  Raise = false;
  TStrings* L = Legend->Lines();
  EXPECT_EQ(L->UpdateCount(), 0);
  EXPECT_EQ(TextsOf(L), (Texts{"Renamed", "B"}));
  EXPECT_EQ(Gathered, 3);
}

TEST_F(LegendInPanel, FixedLinesAreTheApplicationsAndSettingLinesAtDesignTimeFixesThem) {
  AddChart("A");
  AddChart("B");
  auto S = MakeOwned<TStringList>();
  S->Add("run time");
  Legend->SetLines(S.get());
  EXPECT_FALSE(Legend->Fixed());
  Form->SetDesigning(true);
  S->SetStrings(0, "design time");
  Legend->SetLines(S.get());
  EXPECT_TRUE(Legend->Fixed());
  AddChart("C");
  EXPECT_EQ(Shown(), (Texts{"design time"}));
  Legend->SetFixed(false);
  EXPECT_EQ(Shown(), (Texts{"A", "B", "C"}));
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
  auto Legend = MakeOwned<L>();
  int Changes = 0;
  Legend->SetOnChange([&](TObject*) { ++Changes; });
  Legend->Margins()->SetRect({-2, 5, 7, -1});
  EXPECT_EQ(Legend->Margins()->Rect(), (TRect{0, 5, 7, 0}));
  EXPECT_EQ(Changes, 1) << "negative margins become 0 with one change";
  // The box's shape reaches the shadow; no box keeps the shadow's shape.
  Legend->SetRectStyle(lrsRoundRect);
  Legend->SetRectStyle(lrsNone);
  EXPECT_EQ(Legend->Shadow()->Style(), shpRoundRect);
  Legend->SetRectStyle(lrsRectangle);
  EXPECT_EQ(Legend->Shadow()->Style(), shpRectangle);
}

TEST_F(LegendInPanel, TheLegendStartsWithThePanelsFont) {
  Panel->Font()->SetSize(11);
  EXPECT_EQ(MakeOwned<TKXChartLegend>(Panel)->Font()->Size(), 11);
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
  int32_t TW = 0, TH = 0, Longest = -1;
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
  // ml 3, mt 4, mr 3, mb 4, shadow 3, box 10, gap 10.
  const int32_t SideW = 3 + TW + 10 + 3 + 3 + 10, SideH = 4 + 3 * TH + 4 + 3;
  // A column steps over the text, the glyph, both side margins and the gap.
  const int32_t ColW = TW + 10 + 3 + 3 + 10, Cols = 400 / ColW, Rows = (3 + Cols - 1) / Cols;
  const int32_t FlowW = 3 + ColW * Cols + 3 + 3, FlowH = 4 + TH * Rows + 4 + 3;
  const struct {
    TKXLegendAlignment Align;
    TSize Size;
    TRect Bounds;
  } Cases[] = {
      {laLeft, {SideW, SideH}, {10, 20, 10 + SideW + 6, 20 + SideH + 8}},
      {laRight, {SideW, SideH}, {410 - SideW - 6, 20, 410, 20 + SideH + 8}},
      {laBottom, {FlowW, FlowH}, {210 - FlowW / 2, 320 - FlowH - 8, 210 + FlowW / 2, 320}},
      {laTop, {FlowW, FlowH}, {210 - FlowW / 2, 20, 210 + FlowW / 2, 20 + FlowH + 8}},
  };
  for (const auto& C : Cases) {
    SCOPED_TRACE(GetEnumName(C.Align));
    L->SetAlign(C.Align);
    EXPECT_EQ(L->Size(Canvas, Area, Longest), C.Size);
    EXPECT_EQ(Longest, TW);
    Longest = -1;
    EXPECT_EQ(L->BoundsRect(Canvas, Area, Longest), C.Bounds);
    EXPECT_EQ(Longest, TW);
  }
  L->SetAlign(laLeft);
  EXPECT_EQ(L->BoundsRect(Canvas, {0, 0, 300, 12}, Longest).Bottom, 12)
      << "a side legend is cut at the bottom of its rectangle";
  L->SetResizeBounds(false);
  EXPECT_EQ(L->BoundsRect(Canvas, Area, Longest), Area) << "without ResizeBounds: all of it";
}

TEST_F(LegendMeasure, ABottomLegendWiderThanItsRectangleKeepsOneColumn) {
  L->SetAlign(laBottom);
  L->SetMaxWidthPct(100);
  L->Shadow()->SetVisible(false);
  const TSize S = L->Size(Canvas, {0, 0, 30, 200}, Longest);
  EXPECT_EQ(Longest, std::min(TW, 30));
  EXPECT_EQ(S, (TSize{3 + Longest + 20 + 6 + 3, 4 + 3 * TH + 4}));
  L->SetMaxRows(2);
  EXPECT_EQ(L->Size(Canvas, {0, 0, 30, 200}, Longest).cy, 4 + 2 * TH + 4) << "MaxRows caps rows";
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
    Canvas->SetFont(Legend->Font());
    TH = Canvas->TextHeight("A");
    TW = Canvas->TextWidth("Bananas");
  }
  // Draws the legend on a fresh silver bitmap; answers its box, the bounds less the margins.
  TRect Draw(TCanvas* On = nullptr) {
    if (!On) {
      Bitmap = test::MakeBitmap(400, 300, clSilver);
      On = Canvas = Bitmap->Canvas();
    }
    int32_t Longest;
    const TRect B = Legend->BoundsRect(On, Area, Longest);
    Legend->Draw(On, Area);
    return {B.Left + 3, B.Top + 4, B.Right - 3, B.Bottom - 4};
  }
  TColor At(int32_t X, int32_t Y) const { return Canvas->Pixel(X, Y); }
  // The middle of the glyph of row Row of a box.
  TColor Glyph(const TRect& Box, int32_t Row) const {
    return At(Box.Left + 8, Box.Top + 4 + Row * TH + TH / 2);
  }
  TTestChart *A = nullptr, *B = nullptr;
  TOwned<TBitmap> Bitmap = test::MakeBitmap(400, 300, clSilver);
  TCanvas* Canvas = Bitmap->Canvas();
  int32_t TH = 0, TW = 0;
  const TRect Area{0, 0, 400, 300};
};

bool IsInk(TColor C) {
  return GetRValue(C) < 128 && GetGValue(C) < 128;
}

TEST_F(LegendDrawing, BoxGlyphsAndTextsStandWhereTheyWereMeasured) {
  const TRect R = Draw();
  EXPECT_EQ(R.Right, 400 - 3);
  EXPECT_EQ(At(R.Left, R.Top), clBlack) << "outline";
  EXPECT_EQ(At(R.Left + 1, R.Top + 1), clWhite) << "fill";
  EXPECT_EQ(At(R.Left - 1, R.Top), clSilver) << "nothing outside the box";
  // Glyph boxes: (x, y + 1, x + 10, y + TH - 2) in the chart's colour.
  const int32_t GX = R.Left + 3, GY = R.Top + 4;
  EXPECT_EQ(At(GX, GY + 1), clBlack) << "glyph outline in the legend's pen";
  EXPECT_EQ(Glyph(R, 0), clRed);
  EXPECT_EQ(Glyph(R, 1), clBlue);
  // The texts: ink between the glyph gap and the box's inner right edge, row by row.
  for (int32_t Row : {0, 1})
    EXPECT_GT(test::CountPixels(Bitmap.get(),
                                {GX + 20, GY + Row * TH, GX + 20 + TW, GY + (Row + 1) * TH}, IsInk),
              10);
  EXPECT_EQ(
      test::CountPixels(Bitmap.get(), {GX + 20, GY + 2 * TH, R.Right - 1, R.Bottom - 1}, IsInk), 0)
      << "nothing below the last line";
}

TEST_F(LegendDrawing, TheShadowAndTheRectangleStylesShapeTheBox) {
  Legend->Shadow()->SetVisible(true);
  TRect R = Draw();
  // The shadow takes 3 pixels at the bottom right; the box moves up and left by them.
  EXPECT_EQ(At(R.Right - 1, R.Bottom - 1), clBlack);
  EXPECT_EQ(At(R.Right - 4, R.Bottom - 4), clBlack) << "the box's outline";
  EXPECT_EQ(At(R.Right - 5, R.Bottom - 5), clWhite);
  EXPECT_EQ(At(R.Left + 1, R.Bottom - 2), clSilver) << "the shadow's own corner stays clear";
  Legend->Shadow()->SetVisible(false);
  Legend->SetRectStyle(lrsRoundRect);
  R = Draw();
  EXPECT_EQ(At(R.Left, R.Top), clSilver) << "a round corner";
  EXPECT_EQ(At(R.Left, (R.Top + R.Bottom) / 2), clBlack);
  Legend->SetRectStyle(lrsNone);
  R = Draw();
  EXPECT_EQ(At(R.Left, R.Top), clSilver);
  EXPECT_EQ(At(R.Left + 1, R.Top + 1), clSilver) << "no fill either";
  EXPECT_EQ(Glyph(R, 0), clRed) << "glyphs stay";
}

// Lines stand for charts (their colour), values (their own colours), other objects (a plain
// box in the brush the canvas has) and nothing (no glyph).
TEST_F(LegendDrawing, EachLineIsBoxedAsWhatItStandsFor) {
  A->SetOptions(A->Options() + coValueColors);
  TKXChartValue* Lime = A->Values()->Add({0, 1}, "", clLime);
  auto Foreign = MakeOwned<TStringList>();
  SetFixedLines(Legend, {"plain", "bare", "chart", "value"}, {Foreign.get(), nullptr, A, Lime});
  Legend->Brush()->SetColor(clYellow);
  const TRect R = Draw();
  const int32_t GX = R.Left + 3, GY = R.Top + 4;
  EXPECT_EQ(At(GX, GY + 1), clBlack) << "a box outline";
  EXPECT_EQ(Glyph(R, 0), clYellow);
  EXPECT_EQ(At(GX, GY + TH + 1), clYellow) << "no glyph at all";
  EXPECT_EQ(Glyph(R, 2), clRed);
  EXPECT_EQ(Glyph(R, 3), clLime);
}

TEST_F(LegendDrawing, ChartGlyphsAreDrawnByTheChart) {
  Legend->SetOptions({loChartGlyphs});
  const TRect R = Draw();
  const TRect G{R.Left + 3, R.Top + 5, R.Left + 13, R.Top + 4 + TH - 2};
  EXPECT_GT(test::CountPixels(Bitmap.get(), G, [](TColor C) { return test::Near(C, clRed); }), 0);
  EXPECT_EQ(test::CountPixels(Bitmap.get(), G, [](TColor C) { return C == clBlack; }), 0)
      << "no box outline of the legend's pen";
}

TEST_F(LegendDrawing, LargeGlyphsAreSquare) {
  Legend->SetOptions({loLargeGlyphs});
  Legend->SetBoxSize(TH + 8);
  const int32_t S = TH + 8;
  const TRect R = Draw();
  const TRect G{R.Left + 3, R.Top + 4 + 1, R.Left + 3 + S - 2, R.Top + 4 + S - 2};
  EXPECT_EQ(test::CountPixels(Bitmap.get(), G, [](TColor C) { return C != clRed; }),
            2 * (G.Right - G.Left) + 2 * (G.Bottom - G.Top) - 4)
      << "red inside a one-pixel outline";
  EXPECT_EQ(At(R.Left + 8, R.Top + 4 + S + S / 2), clBlue) << "the next row is BoxSize lower";
  // A box smaller than the text: the glyph grows to the text's height, and so does the row.
  Legend->SetBoxSize(4);
  const TRect R2 = Draw();
  EXPECT_EQ(Glyph(R2, 1), clBlue) << "rows do not overlap";
  EXPECT_EQ(Glyph(R2, 0), clRed);
}

TEST_F(LegendDrawing, LinesFlowIntoColumnsAtTheBottom) {
  Legend->SetAlign(laBottom);
  const TRect R = Draw();
  int32_t Longest;
  Legend->BoundsRect(Canvas, Area, Longest);
  EXPECT_EQ(Glyph(R, 0), clRed);
  EXPECT_EQ(At(R.Left + 3 + Longest + 10 + 3 + 3 + 10 + 5, R.Top + 4 + TH / 2), clBlue)
      << "the second line stands in the same row, one step to the right";
  EXPECT_LE(R.Left + 3 + 2 * (Longest + 26) - 10, R.Right - 3)
      << "the box holds the last column it measured";
}

TEST_F(LegendDrawing, TheRowWalkDrawsMaxRowsRowsInABoxOfThatHeight) {
  SetFixedLines(Legend, {"a", "b", "c", "d"}, {A, B, A, B});
  for (int32_t MaxRows : {3, 1}) {
    SCOPED_TRACE(MaxRows);
    Legend->SetMaxRows(MaxRows);
    const TRect R = Draw();
    EXPECT_EQ(R.Bottom - R.Top, 4 + MaxRows * TH + 4);
    EXPECT_EQ(Glyph(R, MaxRows - 1), MaxRows % 2 ? clRed : clBlue) << "the last row";
    EXPECT_NE(Glyph(R, MaxRows), MaxRows % 2 ? clBlue : clRed) << "no row beyond";
  }
}

TEST_F(LegendDrawing, OnThePanelsOwnCanvasNothingLeavesTheBoxsInside) {
  SetFixedLines(Legend, {"a very long line that the cap cuts well short"}, {A});
  Legend->SetMaxWidthPct(10);
  Legend->SetAlign(laLeft);
  TCanvas* Own = Panel->Canvas();
  Own->Brush()->SetColor(clSilver);
  Own->FillRect(Area);
  const TRect R = Draw(Own);
  const TRect Margin{R.Right - 3, R.Top + 4, R.Right - 1, R.Top + 4 + TH};
  const TRect Outside{R.Right, R.Top + 4, 400, R.Top + 4 + TH};
  EXPECT_EQ(test::CountPixels(Panel->Bitmap(), Margin, IsInk), 0);
  EXPECT_EQ(test::CountPixels(Panel->Bitmap(), Outside, IsInk), 0);
  Draw(); // on a foreign canvas the text runs on past the box
  EXPECT_GT(test::CountPixels(Bitmap.get(), Outside, IsInk), 0);
}

// --- Stored properties ---

TEST_F(LegendInPanel, StoredPropertiesRoundTripWithFixedLines) {
  StartChartPanelModule();
  RegisterClasses({ClassOf<TTestForm>(), ClassOf<TTestChart>()});
  Form->SetName("Form1");
  const std::string Plain = SaveFormToString(Form.get());
  EXPECT_EQ(Plain.find("\"Margins\""), std::string::npos) << "default margins stay out";
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
  test::ExpectStored(Json, {"Align", "Margins", "Options", "RectStyle", "TextStyle", "MaxWidthPct",
                            "TextVerticalAlign", "Overlay", "MaxRows", "Size"});

  TOwned<TTestForm> Copy(New<TTestForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  TKXChartLegend* L = static_cast<TKXChartPanel*>(Copy->FindComponent("Panel1"))->Legend();
  EXPECT_TRUE(L->Fixed());
  EXPECT_EQ(TextsOf(L->Lines()), (Texts{"first", "two\nlines", ""}));
  EXPECT_EQ(L->Shadow()->Style(), shpRoundRect);

  // Assign copies every stored setting, the fixed lines among them, and the box's shape
  // reaches the shadow.
  TOwned<TTestForm> Third(New<TTestForm>(nullptr));
  Third->SetName("Form1");
  auto* P3 = New<TKXChartPanel>(Third.get());
  P3->SetName("Panel1");
  ColorListIndex = 0; // the same colour as chart A
  auto* C3 = New<TTestChart>(Third.get());
  C3->SetName("A");
  C3->SetPanel(P3);
  P3->Legend()->Assign(Legend);
  EXPECT_EQ(P3->Legend()->Shadow()->Style(), shpRoundRect);
  EXPECT_EQ(SaveFormToString(Third.get()), Json);

  // Lines that are not texts are refused by name.
  std::string Bad = Json;
  Bad.replace(Bad.find("\"first\""), 7, "7");
  EXPECT_NE(test::MessageOf<EFilerError>([&] {
              LoadFormFromString(Copy.get(), Bad);
            }).find("Legend.Lines"),
            std::string::npos);
}

} // namespace
} // namespace kx
