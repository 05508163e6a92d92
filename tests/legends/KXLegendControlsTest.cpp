#include "kxcharts/legends/KXChartLegends.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/KXCoreTestSupport.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::TTestChart;
using Texts = std::vector<std::string>;
using Checks = std::vector<bool>;

// The screen point of list item I: its check box, or its text.
TPoint OnCheck(int32_t I) {
  return {2 + 7, 300 + 2 + 16 * I + 8};
}
TPoint OnText(int32_t I) {
  return {2 + 100, 300 + 2 + 16 * I + 8};
}

// A form at the screen's top left: a panel, and under it a legend list at (0, 300) of
// 200 x 100 (rows of 16 pixels inside a 2-pixel frame, check strip 15 wide) and a legend
// box beside it. Charts A, B, C are made by the tests, owned by the form.
class LegendControls : public testing::Test {
public:
  void SetUp() override {
    StartChartPanelModule();
    RegisterFormClasses();
    RegisterClasses({ClassOf<TTestChart>()});
    ColorListIndex = 0;
    Form = MakeOwned<TForm>(nullptr);
    Form->SetName("Form1");
    Form->SetBounds(0, 0, 500, 420);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetName("Panel1");
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, 400, 300);
    List = New<TKXLegendListBox>(Form.get());
    List->SetName("List1");
    List->SetParent(Form.get());
    List->SetBounds(0, 300, 200, 100);
    List->SetLegendTextStyle(ltsValue);
    Box = New<TKXChartLegendBox>(Form.get());
    Box->SetName("Box1");
    Box->SetParent(Form.get());
    Box->SetBounds(400, 0, 100, 300);
    Box->Legend()->SetTextStyle(ltsValue);
    Host = MakeOwned<TKXHost>();
    Host->AddWindow(Form.get());
  }
  TTestChart* AddChart(const std::string& Name, std::initializer_list<double> Ys) {
    auto* C = New<TTestChart>(Form.get());
    C->SetName(Name);
    C->SetOptions(C->Options() - coValueColors);
    C->SetPanel(Panel);
    double X = 0;
    for (double Y : Ys)
      C->Values()->Add({X++, Y});
    return C;
  }
  Texts Items() {
    List->RebuildLegend();
    return Texts(List->Items()->begin(), List->Items()->end());
  }
  Checks Checked() {
    List->RebuildLegend();
    Checks R;
    for (int32_t I = 0; I < List->Count(); ++I)
      R.push_back(List->Checked(I));
    return R;
  }
  Texts BoxLines() { return Texts(Box->Legend()->Lines()->begin(), Box->Legend()->Lines()->end()); }

  TOwned<TForm> Form;
  TKXChartPanel* Panel = nullptr;
  TKXLegendListBox* List = nullptr;
  TKXChartLegendBox* Box = nullptr;
  TOwned<TKXHost> Host;
};

// --- What is listed ---

struct TListCase {
  const char* Name;
  std::function<void(LegendControls&, TTestChart* A, TTestChart* B)> Arrange;
  Texts List;
  Checks Checked;
  Texts Box;
};

class LegendItems : public LegendControls, public testing::WithParamInterface<TListCase> {};

TEST_P(LegendItems, ListAndBoxShowChartsOrValuesWithTheirChecks) {
  const TListCase& C = GetParam();
  TTestChart* A = AddChart("A", {1, 2.5, 3});
  TTestChart* B = AddChart("B", {7, 8});
  C.Arrange(*this, A, B);
  EXPECT_EQ(Items(), C.List);
  EXPECT_EQ(Checked(), C.Checked);
  EXPECT_EQ(BoxLines(), C.Box);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, LegendItems, testing::Values(
    TListCase{"twoChartsListCharts",
              [](LegendControls& F, TTestChart*, TTestChart*) {
                F.List->SetPanel(F.Panel); F.Box->SetPanel(F.Panel); },
              {"A", "B"}, {true, true}, {"A", "B"}},
    TListCase{"aHiddenChartIsListedUncheckedByTheListOnly",
              [](LegendControls& F, TTestChart*, TTestChart* B) {
                F.List->SetLegendStyle(lsCharts); F.Box->Legend()->SetLegendStyle(lsCharts);
                F.List->SetPanel(F.Panel); F.Box->SetPanel(F.Panel); B->SetVisible(false); },
              {"A", "B"}, {true, false}, {"A"}},
    TListCase{"oneChartLeftGoesOverToItsValues",
              [](LegendControls& F, TTestChart*, TTestChart* B) {
                F.List->SetPanel(F.Panel); F.Box->SetPanel(F.Panel);
                F.List->RebuildLegend(); F.Box->Legend()->Lines();
                B->SetOptions(B->Options() - coShowInLegend); },
              {"1", "2.5", "3"}, {true, true, true}, {"1", "2.5", "3"}},
    TListCase{"aHiddenValueIsListedUncheckedByTheListOnly",
              [](LegendControls& F, TTestChart* A, TTestChart*) {
                F.List->SetLegendStyle(lsValues); F.Box->Legend()->SetLegendStyle(lsValues);
                F.List->SetPanel(F.Panel); F.Box->SetPanel(F.Panel);
                A->Values()->Items(1)->SetVisible(false); },
              {"1", "2.5", "3"}, {true, false, true}, {"1", "3"}},
    TListCase{"aChartWithoutPanelListsItsValues",
              [](LegendControls& F, TTestChart*, TTestChart* B) {
                F.List->SetChart(B); F.Box->SetChart(B); },
              {"7", "8"}, {true, true}, {"7", "8"}},
    TListCase{"valuesReadAsValuesWhateverTheChartsPanelHolds",
              [](LegendControls& F, TTestChart* A, TTestChart*) {
                F.List->SetChart(A); F.Box->SetChart(A); },
              {"1", "2.5", "3"}, {true, true, true}, {"1", "2.5", "3"}}),
    [](const auto& I) { return std::string(I.param.Name); });
// clang-format on

TEST_F(LegendControls, APanelGivesItsActiveChartOnceAndTheControlKeepsIt) {
  TTestChart* A = AddChart("A", {1});
  AddChart("B", {2});
  List->SetPanel(Panel);
  Box->SetPanel(Panel);
  EXPECT_EQ(List->Chart(), A);
  EXPECT_EQ(Box->Chart(), A);
  A->SetVisible(false);
  EXPECT_NE(Panel->Charts()->ActiveChart(), A);
  EXPECT_EQ(List->Chart(), A);
  EXPECT_EQ(Box->Chart(), A);
}

// --- What the user does ---

struct TUserCase {
  const char* Name;
  TKXLegendStyle Style;
  bool EnableSelection;
  std::vector<std::pair<TPoint, TShiftState>> Presses;
  Checks Checked;                 // of the rebuilt list
  std::vector<bool> ChartVisible; // A, B
  std::vector<bool> ValueVisible; // of A
  std::vector<bool> ValueSelected;
};

class LegendUser : public LegendControls, public testing::WithParamInterface<TUserCase> {};

TEST_P(LegendUser, ChecksSwitchChartsAndValuesAndSelectionReachesValuesWhenEnabled) {
  const TUserCase& C = GetParam();
  TTestChart* A = AddChart("A", {1, 2, 3});
  TTestChart* B = AddChart("B", {4, 5});
  List->SetLegendStyle(C.Style);
  List->SetEnableSelection(C.EnableSelection);
  List->SetPanel(Panel);
  Host->ProcessPaints();
  for (const auto& [At, Keys] : C.Presses)
    Host->Click(At, mbLeft, Keys);
  Host->ProcessPaints();
  EXPECT_FALSE(List->NeedsUpdate()) << "rebuilt before the paint";
  EXPECT_EQ(Checked(), C.Checked);
  EXPECT_EQ((std::vector<bool>{A->Visible(), B->Visible()}), C.ChartVisible);
  std::vector<bool> Vis, Sel;
  for (int32_t I = 0; I < A->Values()->Count(); ++I) {
    Vis.push_back(A->Values()->Items(I)->Visible());
    Sel.push_back(A->Values()->Items(I)->Selected());
  }
  EXPECT_EQ(Vis, C.ValueVisible);
  EXPECT_EQ(Sel, C.ValueSelected);
}

constexpr bool T = true, F = false;
// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, LegendUser, testing::Values(
    TUserCase{"checkHidesAChart", lsCharts, false, {{OnCheck(1), {}}},
              {T, F}, {T, F}, {T, T, T}, {F, F, F}},
    TUserCase{"checkTwiceShowsItAgain", lsCharts, false, {{OnCheck(1), {}}, {OnCheck(1), {}}},
              {T, T}, {T, T}, {T, T, T}, {F, F, F}},
    TUserCase{"textOnlySelectsTheItem", lsCharts, true, {{OnText(1), {}}},
              {T, T}, {T, T}, {T, T, T}, {F, F, F}},
    TUserCase{"checkHidesAValue", lsValues, false, {{OnCheck(2), {}}},
              {T, T, F}, {T, T}, {T, T, F}, {F, F, F}},
    TUserCase{"selectionReachesValuesWhenEnabled", lsValues, true,
              {{OnText(0), {}}, {OnText(2), {ssCtrl}}},
              {T, T, T}, {T, T}, {T, T, T}, {T, F, T}},
    TUserCase{"selectionStaysInTheListWhenNot", lsValues, false,
              {{OnText(0), {}}, {OnText(2), {ssCtrl}}},
              {T, T, T}, {T, T}, {T, T, T}, {F, F, F}},
    TUserCase{"aPressBelowTheItemsDoesNothing", lsValues, true, {{{50, 395}, {}}},
              {T, T, T}, {T, T}, {T, T, T}, {F, F, F}}),
    [](const auto& I) { return std::string(I.param.Name); });
// clang-format on

TEST_F(LegendControls, SpaceOnTheCaretItemSwitchesItsChart) {
  AddChart("A", {1});
  TTestChart* B = AddChart("B", {2});
  List->SetPanel(Panel);
  Host->Click(OnText(0));
  Host->KeyDown(VK_DOWN);
  Host->KeyDown(VK_SPACE);
  EXPECT_FALSE(B->Visible());
}

// --- How many rebuilds ---

struct TBatchCase {
  const char* Name;
  TKXLegendStyle Style;
  std::function<void(TTestChart* A, TTestChart* B, TKXChartPanel* P)> Change;
  int ListRebuilds;
  bool BoxMarked;
};

class LegendBatch : public LegendControls, public testing::WithParamInterface<TBatchCase> {};

TEST_P(LegendBatch, ChangesBetweenTwoPaintsCostAtMostOneRebuild) {
  const TBatchCase& C = GetParam();
  TTestChart* A = AddChart("A", {1, 2, 3});
  TTestChart* B = AddChart("B", {4, 5});
  List->SetLegendStyle(C.Style);
  Box->Legend()->SetLegendStyle(C.Style);
  List->SetPanel(Panel);
  Box->SetPanel(Panel);
  Host->ProcessPaints();
  Box->Legend()->Lines();
  const int32_t Before = List->Rebuilds();
  C.Change(A, B, Panel);
  EXPECT_EQ(Box->NeedsUpdate(), C.BoxMarked);
  Host->ProcessPaints();
  EXPECT_EQ(List->Rebuilds() - Before, C.ListRebuilds);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, LegendBatch, testing::Values(
    TBatchCase{"tenValueChangesUnbatched", lsValues,
               [](TTestChart* A, TTestChart*, TKXChartPanel*) {
                 for (int I = 0; I < 10; ++I) A->Values()->Items(0)->SetValue(1, I); },
               1, true},
    TBatchCase{"tenInTheCollectionsBracket", lsValues,
               [](TTestChart* A, TTestChart*, TKXChartPanel*) {
                 TUpdateScope<TKXChartValues> S(A->Values());
                 for (int I = 0; I < 10; ++I) A->Values()->Items(I % 3)->SetValue(1, I); },
               1, true},
    TBatchCase{"inThePanelListenersBracket", lsCharts,
               [](TTestChart* A, TTestChart* B, TKXChartPanel* P) {
                 TUpdateScope<TChartPanelListeners> S(P->Listeners());
                 A->SetCaption("A2"); B->SetCaption("B2"); },
               1, true},
    TBatchCase{"aValueOfAnotherChartWhileValuesShow", lsValues,
               [](TTestChart*, TTestChart* B, TKXChartPanel*) { B->Values()->Items(0)->SetValue(1, 9); },
               1, false},
    TBatchCase{"aValueOfAnyChartWhileChartsShow", lsCharts,
               [](TTestChart*, TTestChart* B, TKXChartPanel*) { B->Values()->Items(0)->SetValue(1, 9); },
               1, true},
    TBatchCase{"aSelectionOfAnotherChartsValueWhileValuesShow", lsValues,
               [](TTestChart*, TTestChart* B, TKXChartPanel*) { B->Values()->Items(0)->SetSelected(true); },
               1, false},
    TBatchCase{"nothing", lsValues, [](TTestChart*, TTestChart*, TKXChartPanel*) {}, 0, false}),
    [](const auto& I) { return std::string(I.param.Name); });
// clang-format on

TEST_F(LegendControls, AChartHiddenSoThatChartsNoLongerShowRebuildsTheList) {
  AddChart("A", {1, 2});
  TTestChart* B = AddChart("B", {3});
  List->SetPanel(Panel);
  Box->SetPanel(Panel);
  List->SetChart(B);
  EXPECT_EQ(Items(), (Texts{"A", "B"}));
  EXPECT_EQ(BoxLines(), (Texts{"A", "B"}));
  // A hidden: one chart counts, so values show, though the event names neither control's
  // chart nor finds charts shown any more.
  Panel->Charts()->Items(0)->SetVisible(false);
  EXPECT_TRUE(List->NeedsUpdate());
  EXPECT_TRUE(Box->NeedsUpdate());
  EXPECT_EQ(Items(), (Texts{"3"}));
}

// --- Links that go ---

TEST_F(LegendControls, AFreedPanelOrChartLeavesTheControlsFollowingNothingOfIt) {
  TTestChart* A = AddChart("A", {1, 2});
  TTestChart* B = AddChart("B", {3});
  List->SetPanel(Panel);
  Box->SetChart(B);
  Host->ProcessPaints();
  ASSERT_EQ(List->Chart(), A);
  A->Free();
  EXPECT_EQ(List->Chart(), nullptr);
  EXPECT_TRUE(List->NeedsUpdate());
  EXPECT_EQ(Items(), (Texts{"3"})) << "one chart left: the panel's active chart's values";
  // The panel takes the charts placed on it with it.
  Panel->Free();
  EXPECT_EQ(List->Panel(), nullptr);
  EXPECT_EQ(Box->Chart(), nullptr);
  Host->ProcessPaints();
  EXPECT_EQ(List->Count(), 0);
  Host->Click(OnCheck(0));
  EXPECT_TRUE(BoxLines().empty());
}

TEST_F(LegendControls, AChartMovedToAnotherPanelIsStillFollowedAndItsOldPanelForgetsIt) {
  TTestChart* A = AddChart("A", {1, 2});
  AddChart("B", {3});
  List->SetLegendStyle(lsCharts);
  List->SetPanel(Panel);
  Host->ProcessPaints();
  auto* Other = New<TKXChartPanel>(Form.get());
  A->SetPanel(Other);
  EXPECT_EQ(Items(), (Texts{"B"}));
  List->SetLegendStyle(lsValues);
  EXPECT_EQ(Items(), (Texts{"1", "2"})) << "Chart is still A";
  A->Values()->Items(0)->SetValue(1, 5);
  EXPECT_EQ(Items(), (Texts{"5", "2"})) << "heard from the chart itself";
  Other->Free(); // and A, placed on it, with it
  EXPECT_EQ(List->Chart(), nullptr);
  EXPECT_EQ(Items(), (Texts{"3"}));
}

TEST_F(LegendControls, AFreedControlLeavesTheListenersItJoined) {
  AddChart("A", {1});
  List->SetPanel(Panel);
  Box->SetPanel(Panel);
  const int32_t Count = Panel->Listeners()->Count();
  List->Free();
  Box->Free();
  EXPECT_EQ(Panel->Listeners()->Count(), Count - 2);
  Panel->Charts()->Items(0)->Values()->Items(0)->SetValue(1, 2); // nobody dangling hears it
}

TEST_F(LegendControls, AHundredThousandValuesAreListedWhole) {
  TTestChart* A = AddChart("A", {});
  {
    TUpdateScope<TKXChartValues> S(A->Values());
    for (int I = 0; I < 100000; ++I)
      A->Values()->Add({double(I), double(I % 7)});
  }
  List->SetPanel(Panel);
  Host->ProcessPaints();
  EXPECT_EQ(List->Count(), 100000);
  Host->Click(OnText(0));
  Host->KeyDown(VK_END);
  Host->KeyDown(VK_SPACE);
  EXPECT_FALSE(A->Values()->Items(99999)->Visible());
  Host->ProcessPaints();
  EXPECT_FALSE(List->Checked(99999));
  Box->SetChart(A);
  EXPECT_EQ(Box->Legend()->Lines()->Count(), Box->Legend()->MaxRows() - 1);
}

// --- Pixels ---

TEST_F(LegendControls, AnItemDrawsItsCheckThenAGlyphInTheChartsColourThenItsText) {
  TTestChart* A = AddChart("A", {1});
  TTestChart* B = AddChart("B", {2});
  A->SetColor(TColor(0x2020C0)); // dark red: framed in itself
  B->SetColor(TColor(0xF0F0A0)); // light: framed black
  List->SetPanel(Panel);
  for (bool Boxes : {true, false}) {
    List->SetShowCheckBoxes(Boxes);
    auto Bmp = test::MakeBitmap(200, 100);
    List->PaintTo(Bmp->Canvas(), 0, 0);
    TCanvas* C = Bmp->Canvas();
    // Row I spans y 2 + 16 I .. + 16; the glyph box is 16 + 5 wide less a pixel each side.
    const int32_t Left = 2 + (Boxes ? 15 : 0);
    for (int32_t I : {0, 1}) {
      const int32_t Top = 2 + 16 * I;
      const TColor Fill = ColorToRGB(I == 0 ? A->GetColor() : B->GetColor());
      EXPECT_EQ(C->Pixel(Left + 10, Top + 8), Fill) << "glyph of row " << I;
      EXPECT_EQ(C->Pixel(Left + 1, Top + 1), I == 0 ? Fill : ColorToRGB(clBlack))
          << "frame of row " << I;
      EXPECT_EQ(C->Pixel(Left + 20, Top + 8), ColorToRGB(clWindow)) << "gap after the glyph";
    }
    EXPECT_EQ(C->Pixel(3, 2 + 1), ColorToRGB(Boxes ? clBtnShadow : A->GetColor()))
        << "the check box's frame, or without it the glyph's at the row's left";
    const auto Ink = [](TColor Cl) { return Cl != ColorToRGB(clWindow); };
    EXPECT_GT(test::CountPixels(Bmp.get(), {Left + 26, 2, 190, 18}, Ink), 10) << "the text";
    EXPECT_EQ(test::CountPixels(Bmp.get(), {Left + 21, 2, Left + 25, 34}, Ink), 0)
        << "5 pixels between glyph and text";
  }
}

// --- Stored form ---

TEST_F(LegendControls, AFormWithAPanelAndBothControlsReadsBackWithItsLinks) {
  AddChart("A", {1});
  TTestChart* B = AddChart("B", {2});
  Box->SetPanel(Panel);
  Box->Legend()->SetBoxSize(14);
  List->SetPanel(Panel);
  List->SetChart(B);
  List->SetLegendStyle(lsCharts);
  List->SetEnableSelection(true);
  List->SetShowCheckBoxes(false);
  List->SetOptions({loChartGlyphs});
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_EQ(Json.find("\"Items\""), std::string::npos) << "a legend list rebuilds its items";
  EXPECT_EQ(Json.find("\"Style\""), std::string::npos) << "owner-drawn is its default";
  TOwned<TForm> Copy = MakeOwned<TForm>(nullptr);
  LoadFormFromString(Copy.get(), Json);
  auto* P = dynamic_cast<TKXChartPanel*>(Copy->FindComponent("Panel1"));
  auto* L = dynamic_cast<TKXLegendListBox*>(Copy->FindComponent("List1"));
  auto* X = dynamic_cast<TKXChartLegendBox*>(Copy->FindComponent("Box1"));
  ASSERT_TRUE(P && L && X);
  EXPECT_EQ(L->Panel(), P);
  EXPECT_EQ(L->Chart(), Copy->FindComponent("B"));
  EXPECT_EQ(X->Panel(), P);
  EXPECT_EQ(X->Chart(), Copy->FindComponent("A"));
  EXPECT_EQ(L->LegendStyle(), lsCharts);
  EXPECT_EQ(L->LegendTextStyle(), ltsValue);
  EXPECT_TRUE(L->EnableSelection());
  EXPECT_FALSE(L->ShowCheckBoxes());
  EXPECT_EQ(L->Options(), TKXLegendOptions{loChartGlyphs});
  EXPECT_EQ(L->Style(), lbOwnerDrawFixed);
  EXPECT_EQ(X->Legend()->BoxSize(), 14);
  EXPECT_EQ(X->Legend()->MaxColumns(), 1);
  // The links work: the read list hears the read panel.
  L->RebuildLegend();
  EXPECT_EQ(L->Count(), 2);
  static_cast<TKXCustomChart*>(Copy->FindComponent("B"))->SetVisible(false);
  EXPECT_TRUE(L->NeedsUpdate());
  L->RebuildLegend();
  EXPECT_FALSE(L->Checked(1));
}

} // namespace
} // namespace kx
