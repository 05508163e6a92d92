#include "kxcharts/core/KXCustomChart.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXCoreTestSupport.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/objects/KXObjectRect.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::TTestChart;
using test::TTestForm;

using ChartInPanel = test::PanelFixture;

// --- Joining, leaving, freeing ---

TEST_F(ChartInPanel, ChartOwnedByThePanelJoinsItsListAndBottomAndLeftAxes) {
  auto* C = New<TTestChart>(Panel);
  EXPECT_EQ(C->Panel(), Panel);
  EXPECT_EQ(Panel->Charts()->IndexOf(C), 0);
  EXPECT_EQ(C->HorizontalAxis(), Panel->BottomAxis());
  EXPECT_EQ(C->VerticalAxis(), Panel->LeftAxis());
  EXPECT_GE(Panel->BottomAxis()->Charts()->IndexOf(C), 0);
  EXPECT_GE(Panel->LeftAxis()->Charts()->IndexOf(C), 0);
  EXPECT_EQ(C->Parent(), Panel);
}

TEST_F(ChartInPanel, RemovingAChartFromTheListSendsItBackToItsLocalAxes) {
  TTestChart* C = AddChart("Chart1");
  std::vector<std::string> Deleted;
  Panel->SetOnDeleteChart([&](TObject*, TKXCustomChart* Ch) { Deleted.push_back(Ch->Name()); });
  Panel->Charts()->Remove(C);
  EXPECT_EQ(Deleted, std::vector<std::string>{"Chart1"});
  EXPECT_EQ(C->Panel(), nullptr);
  EXPECT_EQ(C->HorizontalAxis(), C->LocalHorizontalAxis());
  EXPECT_LT(Panel->BottomAxis()->Charts()->IndexOf(C), 0);
  EXPECT_EQ(Panel->Charts()->NumVisible(), 0);
}

TEST_F(ChartInPanel, FreeingAChartLeavesNoTraceInPanelOrAxes) {
  TTestChart* A = AddChart("A", {1});
  TTestChart* B = AddChart("B", {2});
  B->SetHorizAxis(haTop);
  A->Free();
  EXPECT_EQ(Panel->Charts()->Count(), 1);
  EXPECT_EQ(Panel->Charts()->NumVisible(), 1);
  EXPECT_EQ(Panel->Charts()->ActiveChart(), B);
  EXPECT_EQ(Panel->BottomAxis()->Charts()->Count(), 0);
  EXPECT_EQ(Panel->LeftAxis()->Charts()->Count(), 1);
  B->Free();
  EXPECT_EQ(Panel->TopAxis()->Charts()->Count(), 0);
  EXPECT_EQ(Panel->Charts()->ActiveChart(), nullptr);
}

TEST_F(ChartInPanel, FreeingThePanelFreesTheChartsPlacedOnIt) {
  AddChart("A", {1, 2});
  AddChart("B", {3});
  Panel->Free();
  EXPECT_EQ(Form->ComponentCount(), 0);
}

TEST(CustomChart, AtDesignTimeChartsOutliveTheirPanelOnTheirLocalAxes) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  Form->SetDesigning(true);
  auto* Panel = New<TKXChartPanel>(Form.get());
  auto* A = New<TTestChart>(Form.get());
  A->SetPanel(Panel);
  Panel->Free();
  EXPECT_EQ(A->Panel(), nullptr);
  EXPECT_EQ(A->Parent(), nullptr);
  EXPECT_EQ(A->HorizontalAxis(), A->LocalHorizontalAxis());
  EXPECT_EQ(A->VerticalAxis(), A->LocalVerticalAxis());
  A->Values()->Items(0)->SetValue(1, 5.0); // the road still runs, on the local axes
  EXPECT_TRUE(A->LocalVerticalAxis()->NeedAxisUpdate());
}

TEST(CustomChart, FormsFreeInEitherOrderOfCreation) {
  for (bool PanelFirst : {true, false}) {
    TOwned<TTestForm> Form(New<TTestForm>(nullptr));
    TKXChartPanel* P = nullptr;
    if (PanelFirst) P = New<TKXChartPanel>(Form.get());
    auto* C = New<TTestChart>(Form.get());
    C->Values()->Add({1, 2});
    if (!PanelFirst) P = New<TKXChartPanel>(Form.get());
    C->SetPanel(P);
    auto* Owned = New<TTestChart>(P);
    Owned->Values()->Add({3, 4});
    Form.reset();
  }
}

// --- Grouping and stacking ---

TEST_F(ChartInPanel, GroupStyleReachesTheWholeGroupAndItsOffsetOption) {
  TTestChart* A = AddChart("A");
  TTestChart* B = AddChart("B");
  TTestChart* Other = AddChart("Other");
  Other->SetGroup(1);
  A->SetGroupStyle(gsStacked);
  for (TTestChart* C : {A, B}) {
    EXPECT_EQ(C->GroupStyle(), gsStacked);
    EXPECT_TRUE(C->Options().Contains(coOffsetVertical));
  }
  EXPECT_EQ(Other->GroupStyle(), gsNone);
  EXPECT_FALSE(Other->Options().Contains(coOffsetVertical));
  B->SetGroupStyle(gsNone);
  EXPECT_EQ(A->GroupStyle(), gsNone);
  EXPECT_FALSE(A->Options().Contains(coOffsetVertical));
  Other->SetGroup(-3);
  EXPECT_EQ(Other->Group(), 0);
}

TEST_F(ChartInPanel, AChartJoiningAnAxisTakesItsGroupsStyle) {
  TTestChart* A = AddChart("A");
  TTestChart* B = AddChart("B");
  B->SetVertAxis(vaRight);
  B->SetGroup(1);
  A->SetGroupStyle(gsStacked100);
  EXPECT_EQ(B->GroupStyle(), gsNone);
  B->SetGroup(0);
  B->SetVertAxis(vaLeft);
  EXPECT_EQ(B->GroupStyle(), gsStacked100);
  EXPECT_EQ(B->VertAxis(), vaLeft);
}

TEST_F(ChartInPanel, CumulativeValueSkipsHiddenChartsWhileTheTotalCountsThem) {
  TTestChart* A = AddChart("A", {1});
  TTestChart* B = AddChart("B", {2});
  TTestChart* C = AddChart("C", {4});
  AddChart("OtherGroup", {100})->SetGroup(1);
  EXPECT_EQ(C->GetCumulativeValue(0, 1), 7.0);
  EXPECT_EQ(A->GetCumulativeValue(0, 1), 1.0);
  B->SetVisible(false);
  EXPECT_EQ(C->GetCumulativeValue(0, 1), 5.0);
  EXPECT_EQ(C->GetCumulativeTotal(0, 1), 7.0);
  EXPECT_EQ(C->GetCumulativeValue(5, 1), 0.0); // no such value
  EXPECT_EQ(C->GetCumulativeValue(0, 1, ClassOf<TKXChart>()), 5.0);
}

// --- What lies in view ---

TEST_F(ChartInPanel, ZoomedSortedChartKeepsOneValueBeyondEachEdge) {
  TTestChart* C = AddChart("C");
  C->Values()->SetSorted(true);
  C->Values()->SetSortByDimension(0);
  for (int X = 0; X < 10; ++X)
    C->Values()->Add({double(X), 1});
  TKXChartAxis* Axis = Panel->BottomAxis();
  Axis->UpdateAxisValues();
  EXPECT_EQ(C->FirstIndex(), 0);
  EXPECT_EQ(C->LastIndex(), 9);
  Axis->SetZoomMinimum(2.5);
  Axis->SetZoomMaximum(6.5);
  ASSERT_TRUE(Axis->Zooming());
  EXPECT_EQ(C->FirstIndex(), 2);
  EXPECT_EQ(C->LastIndex(), 7);
  EXPECT_EQ(C->VisibleCount(), 4 + 2);
  Axis->SetZoomMinimum(-5); // clamped to the whole range: nothing before the first value
  EXPECT_EQ(C->FirstIndex(), 0);
  C->Values()->SetSorted(false);
  C->UpdateAxisInfo(Axis);
  EXPECT_EQ(C->LastIndex(), 9);
}

// --- Drawing and selection put their state back ---

struct TBoom : std::runtime_error {
  TBoom() : std::runtime_error("boom") {}
};

TEST_F(ChartInPanel, DrawPutsTheStateBackWhenAHandlerRaises) {
  TTestChart* C = AddChart("C", {1, 2});
  auto Bmp = MakeOwned<TBitmap>();
  Bmp->SetSize(100, 100);
  TKXChartState Seen = stIdle;
  C->SetOnDraw([&](TObject*, TCanvas*, const TRect&) {
    Seen = C->State();
    throw TBoom();
  });
  EXPECT_THROW(C->Draw(Bmp->Canvas(), {0, 0, 100, 100}), TBoom);
  EXPECT_EQ(Seen, stDrawing);
  EXPECT_EQ(C->State(), stIdle);
  bool Drawn = false;
  C->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { Drawn = true; });
  C->Draw(Bmp->Canvas(), {0, 0, 0, 100}); // no area: no drawing
  EXPECT_FALSE(Drawn);
}

TEST_F(ChartInPanel, DrawOnForeignAxesRestoresAxesAndOnChangeEvenWhenAHandlerRaises) {
  TTestChart* C = AddChart("C", {1, 2});
  auto* Host = New<TKXChartPanel>(Form.get());
  TKXChartAxis* V = Host->RightAxis();
  TKXChartAxis* H = Host->TopAxis();
  ASSERT_FALSE(V->Visible());
  int Changes = 0;
  C->SetOnChange([&](TObject*) { ++Changes; });
  C->SetOnDraw([&](TObject*, TCanvas*, const TRect&) {
    EXPECT_EQ(C->VerticalAxis(), V);
    throw TBoom();
  });
  auto Bmp = MakeOwned<TBitmap>();
  Bmp->SetSize(200, 200);
  EXPECT_THROW(C->Draw(Bmp->Canvas(), {0, 0, 200, 200}, V, H, true, true), TBoom);
  EXPECT_EQ(Changes, 0);
  EXPECT_EQ(C->VerticalAxis(), Panel->LeftAxis());
  EXPECT_EQ(C->HorizontalAxis(), Panel->BottomAxis());
  EXPECT_EQ(V->Charts()->Count(), 0);
  EXPECT_FALSE(V->Visible());
  EXPECT_EQ(C->State(), stIdle);
  C->SetCaption("still wired");
  EXPECT_EQ(Changes, 1);
}

// A chart alone whose axes map 0..10 onto its 100 x 100 client area.
class SelectableChart : public testing::Test {
protected:
  void SetUp() override {
    Form.reset(New<TTestForm>(nullptr));
    Chart = New<TKXChart>(Form.get());
    Chart->SetBounds(0, 0, 100, 100);
    Chart->Values()->BeginUpdate();
    for (int I = 0; I <= 10; ++I)
      Chart->Values()->Add(I);
    Chart->Values()->EndUpdate();
    for (TKXChartAxis* A : {Chart->HorizontalAxis(), Chart->VerticalAxis()}) {
      A->SetMaximum(10);
      A->SetMinimum(0);
    }
    Chart->UpdateAxisInfo(Chart->HorizontalAxis());
  }
  std::string Selected() const {
    std::string S;
    for (int I = 0; I < Chart->Values()->Count(); ++I)
      if (Chart->Values()->Items(I)->Selected()) S += std::to_string(I);
    return S;
  }
  TOwned<TTestForm> Form;
  TKXChart* Chart = nullptr;
};

TEST_F(SelectableChart, SelectWritesTheAnswerIntoEveryVisibleValueInView) {
  Chart->Select({15, 0, 55, 100}, saSelect);
  EXPECT_EQ(Selected(), "2345");
  Chart->Select({35, 0, 75, 100}, saToggle);
  EXPECT_EQ(Selected(), "67");
  Chart->Values()->Items(9)->SetSelected(true);
  Chart->Values()->Items(9)->SetVisible(false); // hidden values keep their selection
  Chart->Select({0, 0, 100, 100}, saUnselect);
  EXPECT_EQ(Selected(), "9");
  EXPECT_TRUE(Chart->IsSelectable({15, 0, 25, 100}));
  Chart->SetOptions(Chart->Options() - coSelectable);
  EXPECT_FALSE(Chart->IsSelectable({15, 0, 25, 100}));
  Chart->Select({0, 0, 100, 100}, saSelect);
  EXPECT_EQ(Selected(), "9");
}

TEST_F(SelectableChart, SelectionIsOneNoticeForListenersAndStateReturnsToIdleOnError) {
  test::TRecordingListener L;
  Chart->Listeners()->Add(&L);
  int Events = 0;
  Chart->SetOnValueSelectionChange([&](TObject*, TKXChartValue*) { ++Events; });
  Chart->Select({15, 0, 55, 100}, saSelect);
  EXPECT_EQ(L.Log(), std::vector<std::string>{"PanelChange"});
  EXPECT_EQ(Events, 4);
  TKXChartState Seen = stIdle;
  Chart->SetOnValueSelectionChange([&](TObject*, TKXChartValue*) {
    Seen = Chart->State();
    throw TBoom();
  });
  EXPECT_THROW(Chart->Select({0, 0, 100, 100}, saToggle), TBoom);
  EXPECT_EQ(Seen, stToggling);
  EXPECT_EQ(Chart->State(), stIdle);
  EXPECT_EQ(Chart->Listeners()->UpdateCount(), 0);
  Chart->Listeners()->Remove(&L);
}

// --- Texts ---

TEST(CustomChart, FormatValueInEveryTextStyle) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* C = New<TKXChart>(Form.get());
  C->Values()->Add(30, "a");
  TKXChartValue* V = C->Values()->Add(10, "b");
  C->VerticalAxis()->SetFormat("0.0");
  const std::pair<TKXLegendTextStyle, const char*> Cases[] = {{ltsCaption, "b"},
                                                              {ltsValue, "10.0"},
                                                              {ltsValueCaption, "10.0 b"},
                                                              {ltsCaptionValue, "b 10.0"},
                                                              {ltsPercent, "25.00 %"},
                                                              {ltsPercentCaption, "25.00 % b"},
                                                              {ltsCaptionPercent, "b 25.00 %"}};
  for (const auto& [Style, Text] : Cases)
    EXPECT_EQ(C->FormatValue(V, Style), Text) << GetEnumName(Style);
  V->SetValue(-30);
  C->Values()->Items(0)->SetValue(0);
  EXPECT_EQ(C->FormatValue(V, ltsPercent), "-100.00 %");
  V->SetValue(0);
  EXPECT_EQ(C->FormatValue(V, ltsPercent), "0.00 %"); // nothing to share
}

TEST(CustomChart, ModifyRectByMarginsInPixelsAndPerCent) {
  auto M = MakeOwned<TKXObjectRect>(TRect{10, 10, 10, 10});
  EXPECT_EQ(ModifyRectByMargins({0, 0, 200, 100}, M.get(), true), (TRect{10, 10, 190, 90}));
  EXPECT_EQ(ModifyRectByMargins({0, 0, 200, 100}, M.get(), false), (TRect{20, 10, 180, 90}));
  EXPECT_EQ(DefaultMarginsRect(), (TRect{3, 4, 3, 4}));
}

TEST(CustomChart, LabelWithAnEmptyCaptionDrawsNothing) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* C = New<TKXChart>(Form.get());
  auto Bmp = test::MakeBitmap(60, 40);
  C->DrawLabel(Bmp->Canvas(), std::string(), 30, 20, 1.0f);
  EXPECT_EQ(test::CountPainted(Bmp.get()), 0);
  Bmp->Canvas()->Brush()->SetStyle(bsClear);
  Bmp->Canvas()->Font()->SetColor(clBlack);
  C->DrawLabel(Bmp->Canvas(), std::string("W"), 30, 20, 1.0f);
  EXPECT_GT(test::CountPainted(Bmp.get()), 0);
}

// --- Canvas set-up ---

TEST(CustomChart, CanvasResourcesGrowWithTheZoomAndMarkSelectedValues) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* C = New<TKXChart>(Form.get());
  C->SetOptions(C->Options() + coZoomPen + coZoomFont);
  C->Pen()->SetWidth(2);
  C->Font()->SetSize(10);
  TKXChartValue* V = C->Values()->Add(5);
  TKXChartAxis* H = C->HorizontalAxis();
  H->SetMaximum(10);
  H->SetZoomMaximum(5); // zoom amount 2 across, 1 up: factor sqrt(5)
  auto Bmp = MakeOwned<TBitmap>();
  Bmp->SetSize(10, 10);
  TCanvas* Canvas = Bmp->Canvas();
  C->SetCanvasResources(Canvas, nullptr, true, true);
  EXPECT_EQ(Canvas->Pen()->Width(), 4);  // round(2 * 2.236)
  EXPECT_EQ(Canvas->Font()->Size(), 22); // round(10 * 2.236)
  EXPECT_EQ(Canvas->Brush()->Color(), C->Color());
  V->SetSelected(true);
  C->SetCanvasResources(Canvas, V, false, true);
  EXPECT_EQ(Canvas->Pen()->Width(), 5);
  EXPECT_EQ(Canvas->Font()->Size(), 10);
  EXPECT_EQ(Canvas->Brush()->Color(), C->SelectionColor());
  V->SetSelected(false);
  V->SetColor(clRed);
  C->SetCanvasResources(Canvas, V, false, false);
  EXPECT_EQ(Canvas->Pen()->Width(), 2);
  EXPECT_EQ(Canvas->Brush()->Color(), clRed); // coValueColors
  TOwned<TBrush> B;
  TOwned<TPen> P;
  TOwned<TFont> F;
  C->SaveCanvasResources(Canvas, B, P, F);
  EXPECT_EQ(B->Color(), clRed);
  EXPECT_EQ(P->Width(), 2);
}

// --- Colours and preview ---

TEST_F(ChartInPanel, ChartsAndValuesWalkThroughThePaletteTogether) {
  TTestChart* A = AddChart("A");
  TTestChart* B = AddChart("B");
  EXPECT_EQ(A->Color(), DefaultColorList[0]);
  EXPECT_EQ(B->Color(), DefaultColorList[1]);
  TKXChartValue* V = A->Values()->Add({0, 1});
  EXPECT_EQ(V->Color(), DefaultColorList[2]);
  B->SetPanelColorScheme(false);
  Panel->SetChartColorScheme(schReds);
  EXPECT_EQ(A->Color(), RedsColorList[0]);
  EXPECT_EQ(B->Color(), RedsColorList[1]);
  EXPECT_EQ(V->Color(), RedsColorList[0]); // A follows the panel, so its values are recoloured
  B->SetColorScheme(schGreens);
  EXPECT_FALSE(B->PanelColorScheme());
  EXPECT_EQ(B->Values()->Add({0, 0})->Color(), GreensColorList[0]);
  ColorListIndex = 9;
  EXPECT_EQ(GetChartColor(), DefaultColorList[9]);
  EXPECT_EQ(GetChartColor(), DefaultColorList[0]); // the counter wraps at 10
}

TEST(CustomChart, DesignTimeChartShowsSamplesUntilItsFirstChange) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  Form->SetDesigning(true);
  auto* C = New<TTestChart>(Form.get());
  C->SetName("Chart1");
  EXPECT_TRUE(C->Preview());
  EXPECT_EQ(C->Values()->Count(), 3);
  EXPECT_EQ(C->PreviewCalls, 1);
  Form->SetDesigning(false);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_EQ(Json.find("\"Values\""), std::string::npos) << Json;
  C->Values()->Items(0)->SetValue(1, 7.0);
  EXPECT_FALSE(C->Preview());
  EXPECT_NE(SaveFormToString(Form.get()).find("\"Values\""), std::string::npos);
  C->SetColorScheme(schBlues); // recolouring keeps the flag as it was
  EXPECT_FALSE(C->Preview());
}

// --- Copies, captions, glyphs, painting alone ---

TEST_F(ChartInPanel, CloneCopiesSettingsAndValuesIntoTheSameClass) {
  TTestChart* A = AddChart("A", {1, 2, 3});
  A->SetCaption("Sales");
  A->SetVertAxis(vaRight);
  A->SetGroup(2);
  A->SetGroupStyle(gsStacked);
  A->SetValueLabelStyle(ltsPercent);
  A->Pen()->SetWidth(3);
  TKXCustomChart* B = A->Clone();
  EXPECT_EQ(B->ClassType(), A->ClassType());
  EXPECT_EQ(B->Owner(), Form.get());
  EXPECT_EQ(B->Panel(), nullptr); // the panel is not a setting: it is where a chart lives
  EXPECT_EQ(B->Caption(), "Sales");
  EXPECT_EQ(B->VertAxis(), vaRight);
  EXPECT_EQ(B->Group(), 2);
  EXPECT_EQ(B->GroupStyle(), gsStacked);
  EXPECT_EQ(B->ValueLabelStyle(), ltsPercent);
  EXPECT_EQ(B->Pen()->Width(), 3);
  EXPECT_EQ(test::NumbersOf(B->Values(), 1), (std::vector<double>{1, 2, 3}));
  EXPECT_THROW(B->Assign(Panel), EConvertError);
}

TEST(CustomChart, AxisCaptionsWalkDownToTheValueAtOrBelowThePosition) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* C = New<TTestChart>(Form.get());
  C->Values()->Add({0, 5}, "a");
  C->Values()->Add({10, 5}, "b");
  C->Values()->Add({20, 5}, "c");
  TKXChartAxis* Bottom = C->HorizontalAxis();
  int32_t Index = 2;
  EXPECT_EQ(C->GetAxisCaption(Bottom, Index, 15.0), "b");
  EXPECT_EQ(Index, 1);
  Index = 7;
  EXPECT_EQ(C->GetAxisCaption(Bottom, Index, 15.0), "");
  EXPECT_TRUE(C->WantsCaptions(Bottom));
  EXPECT_FALSE(C->WantsCaptions(C->VerticalAxis()));
}

TEST(CustomChart, GlyphsPaintInTheChartsColourAndLeaveTheCanvasAsItWas) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* C = New<TKXChart>(Form.get());
  C->SetColor(clRed);
  auto Bmp = test::MakeBitmap(40, 40);
  TCanvas* Canvas = Bmp->Canvas();
  Canvas->Brush()->SetColor(clWhite);
  Canvas->Pen()->SetWidth(4);
  C->DrawGlyph(Canvas, TRect{0, 0, 40, 40});
  EXPECT_GT(test::CountPixels(Bmp.get(), [](TColor P) { return P == clRed; }), 100);
  EXPECT_EQ(Canvas->Brush()->Color(), clWhite);
  EXPECT_EQ(Canvas->Pen()->Width(), 4);
  TKXChartValue* V = C->Values()->Add(1);
  V->SetColor(clBlue);
  C->DrawGlyph(Canvas, V, TRect{5, 5, 15, 15});
  EXPECT_EQ(Canvas->Pixel(10, 10), clBlue);
  EXPECT_EQ(Canvas->Brush()->Color(), clWhite);
}

// The room of the axes follows the panel's rule: a visible axis outside the plot keeps what
// it measures on the side its location names, every other side 10 pixels.
TEST(CustomChart, DrawAxesKeepsTheRoomOfVisibleOuterAxesOnTheirSidesAndTenElsewhere) {
  struct TCase {
    TKXChartAxisLocation V, H;
    bool Visible;
    int32_t Inward;
  };
  for (const TCase& K : {TCase{calLeft, calBottom, true, 0}, TCase{calRight, calTop, true, 0},
                         TCase{calLeft, calBottom, false, 0}, TCase{calRight, calTop, true, 50}}) {
    TOwned<TTestForm> Form(New<TTestForm>(nullptr));
    auto* C = New<TTestChart>(Form.get());
    TOwned<TKXChartAxis> V(New<TKXChartAxis>(nullptr)), H(New<TKXChartAxis>(nullptr));
    V->SetLocation(K.V);
    H->SetLocation(K.H);
    for (TKXChartAxis* A : {V.get(), H.get()}) {
      A->SetVisible(K.Visible);
      A->SetInwardPosition(K.Inward);
    }
    auto Bmp = MakeOwned<TBitmap>();
    Bmp->SetSize(300, 200);
    V->CalculateBounds(Bmp->Canvas(), {0, 0, 300, 200});
    H->CalculateBounds(Bmp->Canvas(), {0, 0, 300, 200});
    const bool Outer = K.Visible && K.Inward == 0;
    const int32_t Across = Outer ? V->Width() : 10, Along = Outer ? H->Height() : 10;
    const TRect Plot = C->DrawAxes(Bmp->Canvas(), {0, 0, 300, 200}, V.get(), H.get());
    const TRect Expected{K.V == calLeft ? Across : 10, K.H == calTop ? Along : 10,
                         300 - (K.V == calRight ? Across : 10),
                         200 - (K.H == calBottom ? Along : 10)};
    EXPECT_EQ(Plot, Expected) << GetEnumName(K.V) << " " << GetEnumName(K.H) << " visible "
                              << K.Visible << " inward " << K.Inward;
  }
}

TEST(CustomChart, AChartAlonePaintsItselfOnFreshAxes) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* Host = New<TPanel>(Form.get());
  Host->SetBounds(0, 0, 200, 150);
  auto* C = New<TTestChart>(Form.get());
  C->SetParent(Host);
  C->Values()->Add({2, 8});
  C->Values()->Add({4, 3});
  TRect Drawn;
  C->SetOnDraw([&](TObject*, TCanvas*, const TRect& R) { Drawn = R; });
  ASSERT_TRUE(C->VerticalAxis()->NeedAxisUpdate());
  C->Paint();
  EXPECT_EQ(Drawn, (TRect{0, 0, 100, 75}));
  EXPECT_FALSE(C->VerticalAxis()->NeedAxisUpdate());
  EXPECT_EQ(C->VerticalAxis()->Minimum(), 3.0);
  EXPECT_EQ(C->VerticalAxis()->Maximum(), 8.0);
  EXPECT_EQ(C->HorizontalAxis()->Maximum(), 4.0);
  EXPECT_TRUE(C->CMHitTest(10, 10));
  C->SetVisible(false);
  Drawn = {};
  C->Paint();
  EXPECT_EQ(Drawn, TRect{});
}

// --- Registry ---

TEST(ChartRegistry, AnswersClassesByKind) {
  StartChartPanelModule();
  EXPECT_EQ(GetChartClass(ctCustom), ClassOf<TKXChart>());
  EXPECT_EQ(GetChartClass(ctDonutEx), nullptr);
  EXPECT_EQ(GetChartType(nullptr), ctCustom);
  // A later class of a kind does not displace the one registered first (the library's own
  // line chart, when its module is built in).
  const TKXCustomChartClass FirstLine = GetChartClass(ctLine);
  RegisterChart(ClassOf<TTestChart>());
  RegisterChart(ClassOf<TTestChart>());
  EXPECT_EQ(GetChartClass(ctLine), FirstLine ? FirstLine : ClassOf<TTestChart>());
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  auto* C = static_cast<TKXCustomChart*>(GetChartClass(ctLine)->Create(Form.get()));
  EXPECT_EQ(GetChartType(C), ctLine);
  EXPECT_EQ(C->Values()->DimensionCount(), 2);
  EXPECT_EQ(GetClass("TKXChart"), ClassOf<TKXChart>());
}

// --- Chart list ---

TEST_F(ChartInPanel, ChartListFindsVisibleAndGroupPredecessors) {
  TTestChart* A = AddChart("A");
  TTestChart* B = AddChart("B");
  TTestChart* C = AddChart("C");
  B->SetGroup(1);
  TKXChartList* L = Panel->Charts();
  EXPECT_EQ(L->AddOne(B), 1);
  EXPECT_EQ(L->Count(), 3);
  EXPECT_EQ(L->FindGroupPrevious(C), A);
  EXPECT_EQ(L->FindGroupPrevious(A), nullptr);
  A->SetVisible(false);
  EXPECT_EQ(L->FindGroupPrevious(C), nullptr);
  EXPECT_EQ(L->FindVisible(), B);
  EXPECT_EQ(L->ActiveChart(), B);
  EXPECT_EQ(L->NumVisible(), 2);
  C->SetOptions(C->Options() - coShowInLegend);
  EXPECT_EQ(L->NumLegendVisible(), 1);
  Panel->LeftAxis()->SetNeedAxisUpdate(false);
  B->SetGroupIndex(0);
  EXPECT_EQ(Panel->LeftAxis()->Charts()->IndexOf(B), 0);
  EXPECT_EQ(B->GroupIndex(), 0);
  EXPECT_TRUE(Panel->LeftAxis()->NeedAxisUpdate());
}

TEST_F(ChartInPanel, DrawChartsRestoresClipAndPaintFlagWhenAChartRaises) {
  TTestChart* C = AddChart("C", {1});
  C->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { throw TBoom(); });
  TCanvas* Canvas = Panel->Canvas();
  const int32_t Depth = Canvas->LayerDepth();
  EXPECT_THROW(Panel->DrawCharts(Canvas, {10, 10, 100, 100}), TBoom);
  EXPECT_EQ(Canvas->LayerDepth(), Depth);
  // Outside the panel's paint the chart does not paint itself.
  bool Painted = false;
  C->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { Painted = true; });
  C->Paint();
  EXPECT_FALSE(Painted);
}

} // namespace
} // namespace kx
