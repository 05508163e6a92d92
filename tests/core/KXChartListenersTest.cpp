#include "kxcharts/core/KXChartListeners.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXCoreTestSupport.h"

namespace kx {
namespace {

using test::TRecordingListener;
using test::TTestChart;
using test::TTestForm;

// --- The list ---

TEST(ChartPanelListeners, AddingAListenerTwiceKeepsOneEntry) {
  auto List = MakeOwned<TChartPanelListeners>();
  TRecordingListener A, B;
  EXPECT_EQ(List->Add(&A), 0);
  EXPECT_EQ(List->Add(&B), 1);
  EXPECT_EQ(List->Add(&A), 0);
  EXPECT_EQ(List->Count(), 2);
  auto Copy = MakeOwned<TChartPanelListeners>();
  Copy->Assign(List.get());
  EXPECT_EQ(Copy->Count(), 2);
}

TEST(ChartPanelListeners, NestedBracketsDeliverOnePanelChangeAtTheOutermostEnd) {
  auto List = MakeOwned<TChartPanelListeners>();
  TRecordingListener L;
  List->Add(&L);
  List->BeginUpdate();
  List->BeginUpdate();
  List->ChartChanged(nullptr);
  List->ValueChanged(nullptr, nullptr);
  List->SelectionChanged(nullptr);
  List->EndUpdate();
  EXPECT_TRUE(L.Log().empty());
  List->EndUpdate();
  EXPECT_EQ(L.Log(), std::vector<std::string>{"PanelChange"});
  EXPECT_THROW(List->EndUpdate(), Exception);
}

// Takes itself out of the list it is told from: the round ends without reading past it.
class TLeavingListener : public TRecordingListener {
public:
  TChartPanelListeners* From = nullptr;
  void ChartChanged(TKXCustomChart* Chart) override {
    TRecordingListener::ChartChanged(Chart);
    From->Remove(this);
  }
};

TEST(ChartPanelListeners, AListenerThatLeavesDuringANoticeEndsTheRoundSafely) {
  auto List = MakeOwned<TChartPanelListeners>();
  TLeavingListener A;
  TRecordingListener B;
  A.From = List.get();
  List->Add(&A);
  List->Add(&B);
  List->ChartChanged(nullptr);
  EXPECT_EQ(List->Count(), 1);
  EXPECT_EQ(A.Count("ChartChanged nil"), 1);
}

// --- The road of a change ---

// A form with a panel and two charts, each chart and the panel with a listener, and every
// event of the road writing into one log.
class ChangeRoad : public testing::Test {
protected:
  void SetUp() override {
    Form.reset(New<TTestForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
    A = MakeChart("A");
    B = MakeChart("B");
    Panel->Listeners()->Add(&PanelL);
    A->Listeners()->Add(&AL);
    B->Listeners()->Add(&BL);
    Panel->SetOnChartValueChange([this](TObject*, TKXCustomChart* C, TKXChartValue*) {
      Log.push_back("OnChartValueChange " + C->Name());
    });
    Panel->SetOnChartChange(
        [this](TObject*, TKXCustomChart* C) { Log.push_back("OnChartChange " + C->Name()); });
    Panel->SetOnChange([this](TObject*) { Log.push_back("Panel.OnChange"); });
    A->SetOnValueChange([this](TObject*, TKXChartValue*) {
      Log.push_back(std::string("A.OnValueChange preview=") + (A->Preview() ? "1" : "0"));
    });
    A->SetOnChange([this](TObject*) { Log.push_back("A.OnChange"); });
    Log.clear();
    Panel->BottomAxis()->SetNeedAxisUpdate(false);
    Panel->LeftAxis()->SetNeedAxisUpdate(false);
  }
  void TearDown() override {
    for (TKXCustomChart* C : {A, B})
      C->Listeners()->Clear();
    Panel->Listeners()->Clear();
    // The panel's events write into the log, which goes before the form would.
    Form.reset();
  }
  TTestChart* MakeChart(const std::string& Name) {
    auto* C = New<TTestChart>(Form.get());
    C->SetName(Name);
    C->SetPanel(Panel);
    C->Values()->Add({0, 1});
    C->Values()->Add({1, 2});
    return C;
  }
  int Count(const std::string& Line) const {
    int N = 0;
    for (const std::string& S : Log)
      N += S == Line;
    return N;
  }

  TOwned<TTestForm> Form;
  TKXChartPanel* Panel = nullptr;
  TTestChart* A = nullptr;
  TTestChart* B = nullptr;
  std::vector<std::string> Log;
  TRecordingListener AL{&Log, "A: "};
  TRecordingListener BL{&Log, "B: "};
  TRecordingListener PanelL{&Log, "Panel: "};
};

TEST_F(ChangeRoad, OneNumberTravelsToListenersPanelAxesAndEventsInOrder) {
  A->SetPreview(true);
  Log.clear();
  A->Values()->Items(0)->SetValue(1, 5.0);
  const std::vector<std::string> Expected = {
      "A: ValueChanged A value",  "Panel: ValueChanged A value",
      "OnChartValueChange A",     "Panel: ChartChanged A",
      "OnChartChange A",          "Panel.OnChange",
      "A.OnValueChange preview=0"};
  EXPECT_EQ(Log, Expected);
  EXPECT_TRUE(Panel->BottomAxis()->NeedAxisUpdate());
  EXPECT_TRUE(Panel->LeftAxis()->NeedAxisUpdate());
  EXPECT_FALSE(A->Preview());
  EXPECT_EQ(BL.Count("ValueChanged A value"), 0);
}

TEST_F(ChangeRoad, AChartPropertyTravelsTheSameRoadAsChartChanged) {
  A->SetCaption("Sales");
  const std::vector<std::string> Expected = {"A: ChartChanged A", "Panel: ChartChanged A",
                                             "OnChartChange A", "Panel.OnChange", "A.OnChange"};
  EXPECT_EQ(Log, Expected);
}

TEST_F(ChangeRoad, InsideTheCollectionBracketTheChangeArrivesOnceAsTheWholeCollection) {
  A->Values()->BeginUpdate();
  for (int I = 0; I < 5; ++I)
    A->Values()->Items(1)->SetValue(1, I + 10.0);
  A->Values()->Add({3, 3});
  EXPECT_TRUE(Log.empty());
  A->Values()->EndUpdate();
  EXPECT_EQ(Count("A: ValueChanged A nil"), 1);
  EXPECT_EQ(Count("Panel: ValueChanged A nil"), 1);
  EXPECT_EQ(Count("A.OnValueChange preview=0"), 1);
  EXPECT_EQ(Log.size(), 7u);
}

TEST_F(ChangeRoad, InsideTheChartBracketNothingIsToldUntilOneChartChanged) {
  A->BeginUpdate();
  A->Values()->Items(0)->SetValue(1, 9.0);
  A->Values()->Items(0)->SetSelected(true);
  A->SetCaption("x");
  EXPECT_TRUE(Log.empty());
  A->EndUpdate();
  EXPECT_EQ(Count("A: ChartChanged A"), 1);
  EXPECT_EQ(Count("Panel: ChartChanged A"), 1);
  EXPECT_EQ(Count("A.OnChange"), 1);
  EXPECT_EQ(Count("A: ValueChanged A value"), 0);
}

TEST_F(ChangeRoad, InsideTheListenerBracketOnlyListenersAreSilent) {
  A->Listeners()->BeginUpdate();
  A->Listeners()->BeginUpdate();
  A->Values()->Items(0)->SetValue(1, 9.0);
  A->Values()->Items(1)->SetValue(1, 8.0);
  EXPECT_EQ(Count("A: ValueChanged A value"), 0);
  EXPECT_EQ(Count("Panel: ValueChanged A value"), 2);
  EXPECT_EQ(Count("A.OnValueChange preview=0"), 2);
  A->Listeners()->EndUpdate();
  EXPECT_EQ(Count("A: PanelChange"), 0);
  A->Listeners()->EndUpdate();
  EXPECT_EQ(Count("A: PanelChange"), 1);
}

TEST_F(ChangeRoad, SelectingAndHidingAValueTellTheirOwnNoticesFirst) {
  int PanelSel = 0, PanelVis = 0;
  Panel->SetOnChartValueSelectionChange(
      [&](TObject*, TKXCustomChart*, TKXChartValue*) { ++PanelSel; });
  Panel->SetOnChartValueVisibleChange(
      [&](TObject*, TKXCustomChart*, TKXChartValue*) { ++PanelVis; });
  A->Values()->Items(0)->SetSelected(true);
  ASSERT_GE(Log.size(), 3u);
  EXPECT_EQ(Log[0], "A: SelectionChanged TKXChartValue");
  EXPECT_EQ(Log[1], "Panel: SelectionChanged TKXChartValue");
  EXPECT_EQ(Log[2], "A: ValueChanged A value");
  A->Values()->Items(1)->SetVisible(false);
  EXPECT_EQ(Count("Panel: VisibleChanged TKXChartValue"), 1);
  EXPECT_EQ(PanelSel, 1);
  EXPECT_EQ(PanelVis, 1);
  EXPECT_EQ(A->Values()->VisibleCount(), 1);
}

TEST_F(ChangeRoad, HidingAChartReachesListenersPanelAxesAndTheCounts) {
  int Events = 0;
  A->SetOnVisibleChange([&](TObject*) { ++Events; });
  A->SetVisible(false);
  EXPECT_EQ(Count("A: VisibleChanged TTestChart"), 1);
  EXPECT_EQ(Count("Panel: VisibleChanged TTestChart"), 1);
  EXPECT_EQ(Count("Panel: ChartChanged A"), 1);
  EXPECT_EQ(Events, 1);
  EXPECT_EQ(Panel->Charts()->NumVisible(), 1);
  EXPECT_EQ(Panel->Charts()->ActiveChart(), B);
  EXPECT_TRUE(Panel->LeftAxis()->NeedAxisUpdate());
}

TEST_F(ChangeRoad, ChartsComingAndGoingAreTold) {
  auto* C = MakeChart("C");
  EXPECT_EQ(Count("Panel: ChartAdded C"), 1);
  EXPECT_TRUE(Panel->Legend()->NeedsUpdate());
  Panel->Legend()->SetNeedsUpdate(false);
  C->Free();
  EXPECT_EQ(Count("Panel: ChartDeleted C"), 1);
  EXPECT_TRUE(Panel->Legend()->NeedsUpdate());
}

TEST_F(ChangeRoad, TheLegendGathersAgainOnlyWhenWhatItListsChanged) {
  // Two charts for the legend: it lists charts, and any change of one counts.
  Panel->Legend()->SetNeedsUpdate(false);
  A->SetCaption("Sales");
  EXPECT_TRUE(Panel->Legend()->NeedsUpdate());
  // One chart for the legend: it lists the values of the active chart (A) alone.
  B->SetOptions(B->Options() - coShowInLegend);
  Panel->Legend()->SetNeedsUpdate(false);
  B->Values()->Items(0)->SetValue(1, 7.0);
  B->Values()->Items(0)->SetSelected(true);
  EXPECT_FALSE(Panel->Legend()->NeedsUpdate());
  A->Values()->Items(0)->SetSelected(true);
  EXPECT_TRUE(Panel->Legend()->NeedsUpdate());
}

} // namespace
} // namespace kx
