// Who frees a chart, in every order a program may free things: the panel first (it takes
// the charts placed on it), the chart first, the form alone, a chart freed from a drawing
// event, a chart moved between panels.
// Each ends with every survivor consistent (a chart in a panel's list names that panel, a
// chart in an axis's list stands on that axis) and painting, and the form freed; ASan
// catches what would dangle.
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "KXCoreTestSupport.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace kx {
namespace {

using test::TTestChart;
using test::TTestForm;

struct TWorld {
  TOwned<TTestForm> Form{New<TTestForm>(nullptr)};
  TKXChartPanel* A = nullptr;
  TKXChartPanel* B = nullptr;
  std::vector<TTestChart*> Charts; // made with the form as owner, on panel A
  TTestChart* Owned = nullptr;     // made with panel A as owner
  std::vector<std::string> Drawn;  // charts whose drawing finished (OnDraw ran)

  explicit TWorld(bool PanelsFirst) {
    if (PanelsFirst) MakePanels();
    for (const char* Name : {"C0", "C1", "C2"}) {
      auto* C = New<TTestChart>(Form.get());
      C->SetName(Name);
      C->Values()->Add({0.0, 1.0});
      Charts.push_back(C);
    }
    if (!PanelsFirst) MakePanels();
    for (TTestChart* C : Charts)
      C->SetPanel(A);
    Owned = New<TTestChart>(A);
    Owned->SetName("Owned");
    for (TTestChart* C : AllCharts())
      Watch(C);
  }
  void MakePanels() {
    A = New<TKXChartPanel>(Form.get());
    B = New<TKXChartPanel>(Form.get());
    for (TKXChartPanel* P : {A, B})
      P->SetBounds(0, 0, 200, 120);
  }
  std::vector<TTestChart*> AllCharts() const {
    std::vector<TTestChart*> R = Charts;
    R.push_back(Owned);
    return R;
  }
  void Watch(TTestChart* C) {
    C->SetOnDraw([this](TObject* Sender, TCanvas*, const TRect&) {
      Drawn.push_back(static_cast<TTestChart*>(Sender)->Name());
    });
  }
  // The charts the form still holds.
  std::vector<TKXCustomChart*> Living() const {
    std::vector<TKXCustomChart*> R;
    for (int32_t I = 0; I < Form->ComponentCount(); ++I)
      if (auto* C = dynamic_cast<TKXCustomChart*>(Form->Components(I))) R.push_back(C);
    for (TKXChartPanel* P : {A, B})
      if (P)
        for (int32_t I = 0; I < P->ComponentCount(); ++I)
          if (auto* C = dynamic_cast<TKXCustomChart*>(P->Components(I))) R.push_back(C);
    return R;
  }
};

bool Holds(const TKXChartList* List, const TKXCustomChart* C) {
  return List->IndexOf(C) >= 0;
}

// Every link both ways: a chart's panel lists it, its axes list it; a panel lists only
// charts that name it.
void ExpectConsistent(const TWorld& W, const std::vector<TKXChartPanel*>& Panels) {
  for (TKXCustomChart* C : W.Living()) {
    if (C->Panel()) {
      EXPECT_TRUE(Holds(C->Panel()->Charts(), C)) << C->Name();
    }
    EXPECT_TRUE(Holds(C->HorizontalAxis()->Charts(), C)) << C->Name();
    EXPECT_TRUE(Holds(C->VerticalAxis()->Charts(), C)) << C->Name();
  }
  for (TKXChartPanel* P : Panels)
    for (int32_t I = 0; I < P->Charts()->Count(); ++I)
      EXPECT_EQ(P->Charts()->Items(I)->Panel(), P);
}

struct TFreeOrder {
  std::string Name;
  bool PanelsFirst;
  std::function<void(TWorld&)> Act;
  // The panels left to paint and check, and how many charts the form still holds.
  std::function<std::vector<TKXChartPanel*>(TWorld&)> Survivors;
  int Living;
  std::vector<std::string> Drawn; // OnDraw calls during Act, in order
};

void PrintTo(const TFreeOrder& O, std::ostream* S) {
  *S << O.Name;
}

class ChartLifetime : public testing::TestWithParam<TFreeOrder> {};

// Frees Victim, once, from OnDrawing or OnDraw of Host during a paint of panel A.
void FreeDuringPaint(TWorld& W, TTestChart* Host, TTestChart* Victim, bool OnDrawing) {
  auto FreeIt = [&W, Victim]() mutable {
    if (!Victim) return;
    for (TTestChart*& C : W.Charts)
      if (C == Victim) C = nullptr;
    std::exchange(Victim, nullptr)->Free();
  };
  if (OnDrawing)
    Host->SetOnDrawing([FreeIt](TObject*, TCanvas*, const TRect&, bool&) mutable { FreeIt(); });
  else
    Host->SetOnDraw([&W, FreeIt](TObject* Sender, TCanvas*, const TRect&) mutable {
      W.Drawn.push_back(static_cast<TTestChart*>(Sender)->Name());
      FreeIt();
    });
  W.A->Repaint();
}

std::vector<TKXChartPanel*> Both(TWorld& W) {
  return {W.A, W.B};
}

TEST_P(ChartLifetime, LeavesEverySurvivorConsistentAndPainting) {
  const TFreeOrder& O = GetParam();
  TWorld W(O.PanelsFirst);
  W.Drawn.clear();
  O.Act(W);
  EXPECT_EQ(W.Drawn, O.Drawn);
  EXPECT_EQ(static_cast<int>(W.Living().size()), O.Living);
  const std::vector<TKXChartPanel*> Panels = O.Survivors(W);
  ExpectConsistent(W, Panels);
  for (TKXChartPanel* P : Panels)
    P->Repaint();
  TOwned<TBitmap> Bitmap(MakeOwned<TBitmap>());
  Bitmap->SetSize(200, 120);
  for (TKXCustomChart* C : W.Living())
    C->Draw(Bitmap->Canvas(), {0, 0, 200, 120}); // alone or in a panel, it still draws
  W.Form.reset();
}

const TFreeOrder FreeOrders[] = {
    // A panel takes the charts placed on it with it, as a window its controls, whoever
    // owns them.
    {"PanelFirstTakesItsCharts", true,
     [](TWorld& W) {
       W.A->Free();
       W.A = nullptr;
     },
     [](TWorld& W) { return std::vector<TKXChartPanel*>{W.B}; }, 0, {}},
    {"ChartFirstLeavesThePanelsList", true,
     [](TWorld& W) {
       W.Charts[1]->Free();
       W.Charts.erase(W.Charts.begin() + 1);
       EXPECT_EQ(W.A->Charts()->Count(), 3);
     },
     Both, 3, {}},
    {"FormOnlyPanelsMadeFirst", true, [](TWorld&) {}, Both, 4, {}},
    {"FormOnlyChartsMadeFirst", false, [](TWorld&) {}, Both, 4, {}},
    // Taken off the panel and out of it, a chart of the form outlives it on its own axes.
    {"ChartTakenOutOfThePanelOutlivesIt", true,
     [](TWorld& W) {
       TTestChart* C = W.Charts[0];
       C->SetPanel(nullptr);
       C->SetParent(nullptr);
       W.A->Free();
       W.A = nullptr;
       EXPECT_EQ(C->HorizontalAxis(), C->LocalHorizontalAxis());
       EXPECT_EQ(C->VerticalAxis(), C->LocalVerticalAxis());
     },
     [](TWorld& W) { return std::vector<TKXChartPanel*>{W.B}; }, 1, {}},
    {"ChartFreedFromItsOwnOnDrawing", true,
     [](TWorld& W) { FreeDuringPaint(W, W.Charts[1], W.Charts[1], true); }, Both, 3,
     {"C0", "C2", "Owned"}},
    {"ChartFreedFromItsOwnOnDraw", true,
     [](TWorld& W) { FreeDuringPaint(W, W.Charts[1], W.Charts[1], false); }, Both, 3,
     {"C0", "C1", "C2", "Owned"}},
    {"NextChartFreedFromOnDraw", true,
     [](TWorld& W) { FreeDuringPaint(W, W.Charts[0], W.Charts[1], false); }, Both, 3,
     {"C0", "C2", "Owned"}},
    {"EarlierChartFreedFromOnDrawing", true,
     [](TWorld& W) { FreeDuringPaint(W, W.Charts[2], W.Charts[0], true); }, Both, 3,
     {"C0", "C1", "C2", "Owned"}},
    {"ChartFreedFromThePanelsOnDrawCharts", true,
     [](TWorld& W) {
       TTestChart* Victim = W.Charts[2];
       W.A->SetOnDrawCharts([&W, Victim](TObject*, TCanvas*, const TRect&) {
         W.Charts.pop_back();
         Victim->Free();
         W.A->SetOnDrawCharts(nullptr);
       });
       W.A->Repaint();
     },
     Both, 3, {"C0", "C1", "C2", "Owned"}},
    // A chart moved to another panel goes with the panel it is on now.
    {"ChartMovedThenOldPanelFreed", true,
     [](TWorld& W) {
       TTestChart* C = W.Charts[0];
       C->SetPanel(W.B);
       EXPECT_FALSE(Holds(W.A->Charts(), C));
       EXPECT_EQ(C->HorizontalAxis(), W.B->BottomAxis());
       W.A->Free();
       W.A = nullptr;
       EXPECT_EQ(C->Panel(), W.B);
       EXPECT_EQ(W.B->Charts()->Count(), 1);
     },
     [](TWorld& W) { return std::vector<TKXChartPanel*>{W.B}; }, 1, {}},
    {"ChartMovedThenNewPanelFreed", true,
     [](TWorld& W) {
       W.Charts[0]->SetPanel(W.B);
       W.B->Free();
       W.B = nullptr;
       EXPECT_EQ(W.A->Charts()->Count(), 3);
     },
     [](TWorld& W) { return std::vector<TKXChartPanel*>{W.A}; }, 3, {}},
    // Its owner frees it too, wherever it stands: the other panel's list lets it go.
    {"OwnedChartMovedStillGoesWithItsOwner", true,
     [](TWorld& W) {
       W.Owned->SetPanel(W.B);
       W.A->Free();
       W.A = nullptr;
       EXPECT_EQ(W.B->Charts()->Count(), 0);
     },
     [](TWorld& W) { return std::vector<TKXChartPanel*>{W.B}; }, 0, {}},
};

INSTANTIATE_TEST_SUITE_P(EveryOrder, ChartLifetime, testing::ValuesIn(FreeOrders),
                         [](const auto& Info) { return Info.param.Name; });

} // namespace
} // namespace kx
