#include "kxcharts/toolkit/controls/KXCheckListBox.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

TColor Rgb(TColor C) {
  return ColorToRGB(C);
}

// A form at the screen's top left with a check list at (10, 10) of 120 x 100: rows of 16
// pixels inside the 2-pixel frame, so six rows show; item I lies at screen row 12 + 16 I.
class CheckList : public testing::Test {
protected:
  void SetUp() override {
    Form = MakeOwned<TForm>(nullptr);
    Form->SetName("Form");
    Form->SetBounds(0, 0, 300, 200);
    List = New<TCheckListBox>(Form.get());
    List->SetName("List");
    List->SetParent(Form.get());
    List->SetBounds(10, 10, 120, 100);
    List->SetStyle(lbOwnerDrawFixed);
    for (const char* S : {"alpha", "beta", "gamma", "delta"})
      List->Items()->Add(S);
    List->SetOnClick([this](TObject*) { ++Clicks; });
    List->SetOnClickCheck([this](TObject*) { ++ClickChecks; });
    Host = MakeOwned<TKXHost>();
    Host->AddWindow(Form.get());
  }
  // The screen point of item Index: in its check box, or on its text.
  static TPoint OnCheck(int32_t Index) { return {12 + 7, 12 + 16 * Index + 8}; }
  static TPoint OnText(int32_t Index) { return {12 + 60, 12 + 16 * Index + 8}; }
  std::vector<int32_t> SelectedItems() const {
    std::vector<int32_t> R;
    for (int32_t I = 0; I < List->Count(); ++I)
      if (List->Selected(I)) R.push_back(I);
    return R;
  }

  TOwned<TForm> Form;
  TCheckListBox* List = nullptr;
  TOwned<TKXHost> Host;
  int Clicks = 0;
  int ClickChecks = 0;
};

// --- Selection by the mouse ---

struct TPress {
  int32_t Item; // -1: below the last item
  TShiftState Keys;
};
struct TSelectCase {
  const char* Name;
  bool MultiSelect;
  std::vector<TPress> Presses;
  std::vector<int32_t> Selected;
  int32_t ItemIndex;
  int Clicks;
};

class CheckListSelect : public CheckList, public testing::WithParamInterface<TSelectCase> {};

TEST_P(CheckListSelect, PressesSelectByTheirKeysAndClickOncePerChange) {
  const TSelectCase& C = GetParam();
  List->SetMultiSelect(C.MultiSelect);
  for (const TPress& P : C.Presses)
    Host->Click(P.Item < 0 ? TPoint{60, 100} : OnText(P.Item), mbLeft, P.Keys);
  EXPECT_EQ(SelectedItems(), C.Selected);
  EXPECT_EQ(List->ItemIndex(), C.ItemIndex);
  EXPECT_EQ(Clicks, C.Clicks) << "a list clicks on a change of selection, not on the release";
  EXPECT_EQ(ClickChecks, 0) << "a press on the text turns no check";
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, CheckListSelect, testing::Values(
    TSelectCase{"single", false, {{2, {}}}, {2}, 2, 1},
    TSelectCase{"singleTwiceOnOne", false, {{2, {}}, {2, {}}}, {2}, 2, 1},
    TSelectCase{"singleMoves", false, {{2, {}}, {0, {ssCtrl}}}, {0}, 0, 2},
    TSelectCase{"multiPlainReplaces", true, {{1, {}}, {3, {}}}, {3}, 3, 2},
    TSelectCase{"multiCtrlAdds", true, {{1, {}}, {3, {ssCtrl}}}, {1, 3}, 3, 2},
    TSelectCase{"multiCtrlTogglesOff", true, {{1, {}}, {1, {ssCtrl}}}, {}, 1, 2},
    TSelectCase{"multiShiftRuns", true, {{1, {}}, {3, {ssShift}}}, {1, 2, 3}, 3, 2},
    TSelectCase{"multiShiftRunsBack", true, {{3, {}}, {0, {ssShift}}, {1, {ssShift}}},
                {1, 2, 3}, 1, 3},
    TSelectCase{"belowTheItems", true, {{-1, {}}}, {}, -1, 0}),
    [](const auto& I) { return std::string(I.param.Name); });
// clang-format on

// --- Checks ---

struct TCheckCase {
  const char* Name;
  bool AllowGrayed;
  bool ItemEnabled;
  int Presses; // on item 1's check box
  TCheckBoxState State;
  int ClickChecks;
};

class CheckListCheck : public CheckList, public testing::WithParamInterface<TCheckCase> {};

TEST_P(CheckListCheck, APressOnTheBoxTurnsTheCheckInOrder) {
  const TCheckCase& C = GetParam();
  List->SetAllowGrayed(C.AllowGrayed);
  List->SetItemEnabled(1, C.ItemEnabled);
  for (int I = 0; I < C.Presses; ++I)
    Host->Click(OnCheck(1));
  EXPECT_EQ(List->State(1), C.State);
  EXPECT_EQ(ClickChecks, C.ClickChecks);
  EXPECT_EQ(List->ItemIndex(), 1) << "the press selects the item too, before the check turns";
  for (int32_t I : {0, 2, 3})
    EXPECT_EQ(List->State(I), cbUnchecked);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, CheckListCheck, testing::Values(
    TCheckCase{"once", false, true, 1, cbChecked, 1},
    TCheckCase{"twice", false, true, 2, cbUnchecked, 2},
    TCheckCase{"grayedSecond", true, true, 2, cbGrayed, 2},
    TCheckCase{"grayedThenOff", true, true, 3, cbUnchecked, 3},
    TCheckCase{"disabledItem", false, false, 1, cbUnchecked, 0}),
    [](const auto& I) { return std::string(I.param.Name); });
// clang-format on

TEST_F(CheckList, TheItemUnderTheCheckWhenClickCheckRunsIsTheCaretItem) {
  int32_t Seen = -2;
  List->SetOnClickCheck([&](TObject*) { Seen = List->ItemIndex(); });
  Host->Click(OnCheck(2));
  EXPECT_EQ(Seen, 2);
}

// --- Keys ---

struct TKeyCase {
  const char* Name;
  std::vector<uint16_t> Keys;
  TShiftState Shift;
  int32_t ItemIndex;
  int32_t TopIndex;
  std::vector<int32_t> Selected;
};

class CheckListKeys : public CheckList, public testing::WithParamInterface<TKeyCase> {};

TEST_P(CheckListKeys, MoveTheCaretScrollAndSelect) {
  const TKeyCase& C = GetParam();
  List->SetMultiSelect(true);
  List->Items()->BeginUpdate();
  for (int I = 4; I < 20; ++I)
    List->Items()->Add("item " + std::to_string(I));
  List->Items()->EndUpdate();
  Host->Click(OnText(0)); // the focus, and the caret on item 0
  ASSERT_EQ(Host->FocusControl(), List);
  for (uint16_t K : C.Keys)
    Host->KeyDown(K, C.Shift);
  EXPECT_EQ(List->ItemIndex(), C.ItemIndex);
  EXPECT_EQ(List->TopIndex(), C.TopIndex);
  EXPECT_EQ(SelectedItems(), C.Selected);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, CheckListKeys, testing::Values(
    TKeyCase{"down", {VK_DOWN, VK_DOWN}, {}, 2, 0, {2}},
    TKeyCase{"upStopsAtTheTop", {VK_UP}, {}, 0, 0, {0}},
    TKeyCase{"endScrollsTheLastPageIn", {VK_END}, {}, 19, 14, {19}},
    TKeyCase{"pageDown", {VK_NEXT}, {}, 5, 0, {5}},
    TKeyCase{"pageDownTwiceScrolls", {VK_NEXT, VK_NEXT}, {}, 10, 5, {10}},
    TKeyCase{"shiftExtends", {VK_DOWN, VK_DOWN}, {ssShift}, 2, 0, {0, 1, 2}},
    TKeyCase{"ctrlMovesOnlyTheCaret", {VK_DOWN, VK_DOWN}, {ssCtrl}, 2, 0, {0}}),
    [](const auto& I) { return std::string(I.param.Name); });
// clang-format on

TEST_F(CheckList, SpaceTurnsTheCaretItemsCheckAndOnlyTheFocusedListHearsKeys) {
  EXPECT_FALSE(Host->KeyDown(VK_SPACE)) << "nothing has the focus yet";
  auto* Other = New<TPanel>(Form.get());
  Other->SetParent(Form.get());
  Other->SetBounds(200, 10, 50, 50);
  Host->Click(OnText(3));
  Host->Click({220, 30}); // a panel takes no focus: the list keeps it
  ASSERT_EQ(Host->FocusControl(), List);
  EXPECT_TRUE(List->Focused());
  Host->KeyDown(VK_SPACE);
  EXPECT_EQ(List->State(3), cbChecked);
  EXPECT_EQ(ClickChecks, 1);
  Host->KeyDown(VK_SPACE, {ssCtrl}); // Ctrl + space makes no character
  EXPECT_EQ(List->State(3), cbChecked);
}

TEST_F(CheckList, AFreedFocusedListLeavesNoFocusBehind) {
  Host->Click(OnText(0));
  List->Free();
  EXPECT_EQ(Host->FocusControl(), nullptr);
  EXPECT_FALSE(Host->KeyDown(VK_DOWN));
}

// --- Items ---

TEST_F(CheckList, ChecksAndTheCaretStayWithTheirItemsWhenOthersComeAndGo) {
  List->SetChecked(2, true);
  List->SetItemIndex(2);
  List->Items()->Insert(0, "first");
  EXPECT_TRUE(List->Checked(3));
  EXPECT_EQ(List->ItemIndex(), 3);
  List->Items()->Delete(1);
  EXPECT_TRUE(List->Checked(2));
  EXPECT_EQ(List->ItemIndex(), 2);
  List->Items()->Delete(2);
  EXPECT_EQ(List->ItemIndex(), -1) << "the caret goes with its item";
  List->Clear();
  EXPECT_EQ(List->Count(), 0);
  EXPECT_THROW(List->Checked(0), EListError);
}

TEST_F(CheckList, OutOfRangeNumbersAreMovedToTheirLimits) {
  List->SetItemIndex(1000000000);
  EXPECT_EQ(List->ItemIndex(), 3);
  List->SetItemIndex(-7);
  EXPECT_EQ(List->ItemIndex(), -1);
  List->SetTopIndex(50);
  EXPECT_EQ(List->TopIndex(), 0) << "four items fit: nothing to scroll";
  List->SetItemHeight(0);
  EXPECT_EQ(List->ItemHeight(), 1);
  List->SetBounds(10, 10, -5, -5);
  EXPECT_EQ(List->PageSize(), 1);
  EXPECT_EQ(List->ItemAtPos({0, 0}, true), -1);
}

TEST_F(CheckList, AHundredThousandItemsScrollAndPaintOnlyWhatShows) {
  List->Items()->BeginUpdate();
  List->Clear();
  for (int I = 0; I < 100000; ++I)
    List->Items()->Add(std::to_string(I));
  List->Items()->EndUpdate();
  int Drawn = 0;
  List->SetOnDrawItem([&](TWinControl*, int32_t, const TRect&, TOwnerDrawState) { ++Drawn; });
  Host->Click(OnText(0));
  Host->KeyDown(VK_END);
  EXPECT_EQ(List->TopIndex(), 100000 - 6);
  Host->ProcessPaints();
  EXPECT_LE(Drawn, 7);
  EXPECT_TRUE(Host->MouseWheel({60, 50}, 120));
  EXPECT_EQ(List->TopIndex(), 100000 - 9);
  Host->Click({10 + 120 - 2 - 8, 12 + 2}); // the scroll bar's track above the thumb
  EXPECT_EQ(List->TopIndex(), 100000 - 15);
}

// --- Pixels ---

TEST_F(CheckList, PaintsTheClassicBoxTickSelectionAndDimmedItems) {
  List->SetChecked(0, true);
  List->SetState(1, cbGrayed);
  List->SetItemEnabled(3, false);
  List->SetChecked(3, true);
  List->SetItemIndex(2);
  auto Bmp = test::MakeBitmap(120, 100);
  List->PaintTo(Bmp->Canvas(), 0, 0);
  TCanvas* C = Bmp->Canvas();
  // Item I's box: 13 pixels at (3, 2 + 16 I + 1); its tick's lowest column at x = 3 + 2 + 2.
  const auto Box = [](int32_t I) { return TPoint{3, 2 + 16 * I + 1}; };
  for (int32_t I = 0; I < 4; ++I) {
    const TPoint B = Box(I);
    EXPECT_EQ(C->Pixel(B.X, B.Y), Rgb(clBtnShadow)) << "outer frame, item " << I;
    EXPECT_EQ(C->Pixel(B.X + 1, B.Y + 1), Rgb(cl3DDkShadow)) << "inner frame, item " << I;
    EXPECT_EQ(C->Pixel(B.X + 12, B.Y + 12), Rgb(clBtnHighlight)) << "lit edge, item " << I;
  }
  const auto Tick = [&](int32_t I) { return C->Pixel(Box(I).X + 2 + 3, Box(I).Y + 2 + 6); };
  EXPECT_EQ(Tick(0), Rgb(clWindowText));
  EXPECT_EQ(Tick(1), Rgb(clBtnShadow)) << "grayed: a grey tick";
  EXPECT_EQ(C->Pixel(Box(1).X + 3, Box(1).Y + 3), Rgb(clBtnFace)) << "grayed: a grey face";
  EXPECT_EQ(Tick(2), Rgb(clWindow)) << "unchecked: no tick";
  EXPECT_EQ(Tick(3), Rgb(clBtnShadow)) << "a disabled item's tick is dimmed";
  // The selected row fills in the highlight right of the check strip only.
  EXPECT_EQ(C->Pixel(2 + 15 + 40, 2 + 16 * 2 + 1), Rgb(clHighlight));
  EXPECT_EQ(C->Pixel(2, 2 + 16 * 2 + 1), Rgb(clWindow)) << "the check strip keeps the list colour";
  EXPECT_EQ(C->Pixel(2 + 15 + 40, 2 + 16 * 1 + 1), Rgb(clWindow));
}

// --- Persistence ---

TEST_F(CheckList, ReadsBackItemsAndSettingsFromJson) {
  RegisterFormClasses();
  List->SetMultiSelect(true);
  List->SetAllowGrayed(true);
  List->SetItemHeight(20);
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TForm> Copy = MakeOwned<TForm>(nullptr);
  LoadFormFromString(Copy.get(), Json);
  auto* Read = dynamic_cast<TCheckListBox*>(Copy->FindComponent("List"));
  ASSERT_NE(Read, nullptr);
  EXPECT_EQ(Read->Items()->Text(), "alpha\nbeta\ngamma\ndelta\n");
  EXPECT_TRUE(Read->MultiSelect());
  EXPECT_TRUE(Read->AllowGrayed());
  EXPECT_EQ(Read->ItemHeight(), 20);
  EXPECT_EQ(Read->Style(), lbOwnerDrawFixed);
  EXPECT_EQ(Read->Parent(), Copy.get());
}

} // namespace
} // namespace kx
