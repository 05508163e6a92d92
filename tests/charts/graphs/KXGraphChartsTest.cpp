#include "kxcharts/charts/graphs/KXGraphCharts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

class TGraphForm : public TComponent {
  KX_CLASS(TGraphForm, TComponent)
public:
  using TComponent::TComponent;
};

// Writes down the pen each link was drawn with.
class TRecGraphChart : public TKXGraphChart {
  KX_CLASS(TRecGraphChart, TKXGraphChart)
public:
  using TKXGraphChart::TKXGraphChart;
  struct TDrawnLink {
    std::string From, To;
    TColor Color;
    int32_t Width;
  };
  std::vector<TDrawnLink> Links;
  void DrawLink(TCanvas* Canvas, const TRect& ARect, TKXGraphChartValue* Value,
                TKXGraphChartLink* Link) override {
    TKXGraphChart::DrawLink(Canvas, ARect, Value, Link);
    Links.push_back({Value->Caption(), Link->Value()->Caption(), Canvas->Pen()->Color(),
                     Canvas->Pen()->Width()});
  }
};

// A graph chart alone whose new nodes are 100 x 50.
struct TGraph {
  TOwned<TGraphForm> Form{New<TGraphForm>(nullptr)};
  TRecGraphChart* Chart = New<TRecGraphChart>(Form.get());
  TGraph() {
    Chart->SetBounds(0, 0, 100, 100);
    Chart->DefaultShape()->SetWidth(100);
    Chart->DefaultShape()->SetHeight(50);
  }
  TKXGraphChartValue* Node(const std::string& Caption, int32_t Level) {
    TKXGraphChartValue* V = Chart->Values()->Add(0.0, Caption);
    V->SetLevel(Level);
    return V;
  }
  TKXGraphChartValue* Find(const std::string& Caption) const {
    for (TKXGraphChartValue* V : *Chart->Values())
      if (V->Caption() == Caption) return V;
    return nullptr;
  }
  static TKXGraphChartLink* Link(TKXGraphChartValue* From, TKXGraphChartValue* To) {
    TKXGraphChartLink* L = From->Links()->Add();
    L->SetValue(To);
    return L;
  }
  // Both axes on 0..Max over a 100 x 100 rectangle (X = x, Y = 100 - y at Max 100).
  void Axes(double Max = 100) {
    for (TKXChartAxis* A : {Chart->HorizontalAxis(), Chart->VerticalAxis()}) {
      A->SetOptions(A->Options() - aoAutoMinimum - aoAutoMaximum);
      A->SetMaximum(Max);
      A->SetMinimum(0.0);
    }
  }
  TOwned<TBitmap> Draw(int32_t Size = 100) {
    Chart->Links.clear();
    TOwned<TBitmap> B = test::MakeBitmap(Size, Size);
    Chart->Draw(B->Canvas(), {0, 0, Size, Size});
    return B;
  }
};

// --- Arrange ---

struct TPlaced {
  const char* Caption;
  double X, Y;
};
struct TArrangeCase {
  const char* Name;
  TKXChartOrientation Orientation;
  std::vector<std::pair<const char*, int32_t>> Nodes; // caption, level, in collection order
  std::vector<TPlaced> Expected;
};

class GraphArrange : public testing::TestWithParam<TArrangeCase> {};

TEST_P(GraphArrange, PlacesEachLevelAsARowOrAColumnCentredOnTheWidest) {
  const TArrangeCase& C = GetParam();
  TGraph G;
  G.Chart->SetOrientation(C.Orientation);
  // Added level by level with Sorted off, so that the order inside a level is this one.
  G.Chart->Values()->SetSorted(false);
  for (const auto& [Caption, Level] : C.Nodes)
    G.Node(Caption, Level);
  G.Chart->Values()->SetSorted(true);
  G.Chart->Arrange();
  for (const TPlaced& P : C.Expected) {
    SCOPED_TRACE(P.Caption);
    EXPECT_DOUBLE_EQ(G.Find(P.Caption)->X(), P.X);
    EXPECT_DOUBLE_EQ(G.Find(P.Caption)->Y(), P.Y);
  }
}

// Nodes of 100 x 50, gap 50 %: StepW 150, StepH 75. One root and two children: L 1,
// Widest 2. Levels 0, 1 and 5: L 5, the spans count five steps, three are taken.
INSTANTIATE_TEST_SUITE_P(
    Levels, GraphArrange,
    testing::Values(
        TArrangeCase{"TopDown", orTopDown, {{"r", 0}, {"a", 1}, {"b", 1}},
                     {{"r", 175, 86.5}, {"a", 100, 11.5}, {"b", 250, 11.5}}},
        TArrangeCase{"BottomUp", orBottomUp, {{"r", 0}, {"a", 1}, {"b", 1}},
                     {{"r", 175, 12.5}, {"a", 100, 87.5}, {"b", 250, 87.5}}},
        TArrangeCase{"LeftRight", orLeftRight, {{"r", 0}, {"a", 1}, {"b", 1}},
                     {{"r", 25, 87.5}, {"a", 175, 50}, {"b", 175, 125}}},
        TArrangeCase{"RightLeft", orRightLeft, {{"r", 0}, {"a", 1}, {"b", 1}},
                     {{"r", 174, 87.5}, {"a", 24, 50}, {"b", 24, 125}}},
        TArrangeCase{"SkippedLevels", orTopDown, {{"r", 0}, {"a", 1}, {"z", 5}},
                     {{"r", 100, 382.5}, {"a", 100, 307.5}, {"z", 100, 232.5}}},
        TArrangeCase{"SkippedLevelsInColumns", orLeftRight, {{"r", 0}, {"a", 1}, {"z", 5}},
                     {{"r", 25, 50}, {"a", 175, 50}, {"z", 325, 50}}},
        TArrangeCase{"NegativeLevel", orBottomUp, {{"m", -1}, {"r", 0}},
                     {{"m", 100, 12.5}, {"r", 100, 87.5}}}),
    [](const testing::TestParamInfo<TArrangeCase>& I) { return std::string(I.param.Name); });

TEST(GraphCharts, ASmallerNodeIsCentredOnItsSlotAndTheLargestSetsTheSteps) {
  TGraph G;
  G.Node("r", 0);
  G.Node("a", 1)->SetWidth(40);
  G.Node("b", 1)->SetHeight(20);
  G.Chart->Arrange();
  // Level 1 as a row of two slots of 150 over 300; "a" stands where the sort put it.
  const TKXGraphChartValue* A = G.Find("a");
  const double Slot = A->Index() == 1 ? 75 : 225;
  EXPECT_DOUBLE_EQ(A->X(), Slot + (150 - 40) / 2.0);
  EXPECT_DOUBLE_EQ(G.Find("b")->Y(), -1 + (75 - 20) / 2.0);
}

TEST(GraphCharts, ArrangeNeedsSortedValuesAndTwoNodesAndRedoesManualConnections) {
  TGraph G;
  TKXGraphChartValue* R = G.Node("r", 0);
  R->SetX(7);
  G.Chart->Arrange();
  EXPECT_EQ(R->X(), 7);
  TKXGraphChartValue* A = G.Node("a", 1);
  TKXGraphChartLink* L = G.Link(R, A);
  L->SetConnectionPoint(cpLeft);
  G.Chart->Values()->SetSorted(false);
  G.Chart->Arrange();
  EXPECT_EQ(L->ConnectionPoint(), cpLeft);
  EXPECT_EQ(R->X(), 7);
  G.Chart->Values()->SetSorted(true);
  G.Chart->Arrange();
  EXPECT_EQ(L->ConnectionPoint(), cpBottom);
  EXPECT_NE(R->X(), 7);
}

TEST(GraphCharts, OrientationReplacesAtOnceAndLevelGapWaitsForArrange) {
  TGraph G;
  TKXGraphChartValue* R = G.Node("r", 0);
  TKXGraphChartLink* L = G.Link(R, G.Node("a", 1));
  G.Chart->Arrange();
  int Changes = 0;
  G.Chart->SetOnChange([&](TObject*) { ++Changes; });
  G.Chart->SetLevelGapPercent(100);
  EXPECT_EQ(Changes, 1);
  EXPECT_DOUBLE_EQ(R->Y(), 86.5);
  G.Chart->SetOrientation(orLeftRight);
  EXPECT_EQ(Changes, 1); // the orientation itself raises none; the values did move
  // StepW 200, StepH 100, one node per column of 100: X (200 - 100) / 2, Y 50 + 25.
  EXPECT_DOUBLE_EQ(R->X(), 50);
  EXPECT_DOUBLE_EQ(R->Y(), 75);
  EXPECT_EQ(L->ConnectionPoint(), cpRight);
  EXPECT_EQ(L->ValueConnectionPoint(), cpLeft);
}

// --- The model ---

TEST(GraphCharts, AddChildMakesADeeperNodeLinkedForTheChartsOrientation) {
  TOwned<TKXGraphChartValue> Alone(New<TKXGraphChartValue>(nullptr));
  EXPECT_EQ(Alone->AddChild("x"), nullptr);
  EXPECT_EQ(Alone->Links()->Count(), 0);
  EXPECT_EQ(Alone->ValueCount(), 5);
  const std::pair<TKXChartOrientation, std::pair<TConnectionPoint, TConnectionPoint>> Table[] = {
      {orTopDown, {cpBottom, cpTop}},
      {orBottomUp, {cpTop, cpBottom}},
      {orLeftRight, {cpRight, cpLeft}},
      {orRightLeft, {cpLeft, cpRight}}};
  for (const auto& [Orientation, Points] : Table) {
    TGraph G;
    G.Chart->SetOrientation(Orientation);
    TKXGraphChartValue* P = G.Node("p", 3);
    TKXGraphChartValue* C = P->AddChild("c");
    EXPECT_EQ(C->Level(), 4);
    EXPECT_EQ(C->Caption(), "c");
    ASSERT_EQ(P->Links()->Count(), 1);
    EXPECT_EQ(P->Links()->Items(0)->Value(), C);
    EXPECT_EQ(P->Links()->Items(0)->ConnectionPoint(), Points.first);
    EXPECT_EQ(P->Links()->Items(0)->ValueConnectionPoint(), Points.second);
  }
}

TEST(GraphCharts, RaisingALevelDeletesExactlyTheLinksThatNoLongerRunDownward) {
  struct TCase {
    int32_t NewLevel;
    std::vector<std::string> Kept;
  };
  // Children on levels 1, 2 and 3, a link to itself and one without a target.
  const TCase Cases[] = {{0, {"c1", "c2", "c3", ""}},
                         {1, {"c2", "c3", ""}},
                         {2, {"c3", ""}},
                         {5, {""}},
                         {-4, {"c1", "c2", "c3", ""}}};
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.NewLevel);
    TGraph G;
    TKXGraphChartValue* P = G.Node("p", -1);
    for (int32_t L = 1; L <= 3; ++L)
      G.Link(P, G.Node("c" + std::to_string(L), L));
    G.Link(P, P); // to itself: accepted, nothing searches for cycles
    P->Links()->Add();
    P->SetLevel(C.NewLevel);
    std::vector<std::string> Kept;
    for (TKXGraphChartLink* L : *P->Links())
      Kept.push_back(L->Value() ? L->Value()->Caption() : "");
    EXPECT_EQ(Kept, C.Kept);
  }
}

TEST(GraphCharts, ATargetsLevelChangeAndAnUpwardLinkCheckNothing) {
  TGraph G;
  TKXGraphChartValue* P = G.Node("p", 1);
  TKXGraphChartValue* C = G.Node("c", 2);
  G.Link(P, C);
  TKXGraphChartLink* Up = G.Link(C, P);
  C->SetLevel(0); // the target moves above its parent: the parent's link stays
  EXPECT_EQ(P->Links()->Count(), 1);
  EXPECT_EQ(C->Links()->Count(), 1); // and its own upward link is now downward
  EXPECT_EQ(Up->Value(), P);
}

TEST(GraphCharts, DeletingANodeEmptiesTheLinksToItAndTakesItsOwn) {
  TGraph G;
  TKXGraphChartValue* R = G.Node("r", 0);
  TKXGraphChartValue* A = G.Node("a", 1);
  TKXGraphChartValue* B = G.Node("b", 2);
  TKXGraphChartLink* RA = G.Link(R, A);
  TKXGraphChartLink* RB = G.Link(R, B);
  G.Link(A, B);
  G.Chart->Values()->Delete(A->Index());
  EXPECT_EQ(RA->Value(), nullptr);
  EXPECT_EQ(RB->Value(), B);
  EXPECT_EQ(R->Links()->Count(), 2);
  G.Axes(400);
  G.Draw(); // the empty link draws nothing
  ASSERT_EQ(G.Chart->Links.size(), 1u);
  EXPECT_EQ(G.Chart->Links[0].To, "b");
  // A node freed with links both ways leaves nothing behind (ASan sees a dangling one).
  G.Link(B, R);
  R->Free();
  EXPECT_EQ(B->Links()->Items(0)->Value(), nullptr);
}

TEST(GraphCharts, ALinkMadeByAddKeepsItsNodesPenAndOneMovedInTakesTheArrowPen) {
  TGraph G;
  G.Chart->ArrowPen()->SetColor(clRed);
  TKXGraphChartValue* A = G.Node("a", 0);
  TKXGraphChartValue* B = G.Node("b", 0);
  A->Pen()->SetColor(clBlue);
  A->Pen()->SetWidth(3);
  TKXGraphChartLink* L = A->Links()->Add();
  EXPECT_EQ(L->Pen()->Color(), clBlue);
  EXPECT_EQ(L->Pen()->Width(), 3);
  L->SetCollection(B->Links());
  EXPECT_EQ(L->Pen()->Color(), clRed);
  EXPECT_EQ(L->Owner(), B);
  // Outside a chart nothing hands a pen over.
  TOwned<TKXGraphChartValue> Alone(New<TKXGraphChartValue>(nullptr));
  Alone->Pen()->SetColor(clGreen);
  EXPECT_EQ(Alone->Links()->Add()->Pen()->Color(), clGreen);
  EXPECT_EQ(Alone->Links()->Owner(), Alone.get());
}

TEST(GraphCharts, ALinkShowsItsCaptionAsItsNameAndCopiesAnotherLink) {
  TGraph G;
  TKXGraphChartValue* A = G.Node("a", 0);
  TKXGraphChartLink* L = G.Link(A, G.Node("b", 1));
  EXPECT_EQ(L->DisplayName(), "TKXGraphChartLink");
  L->SetCaption("reports to");
  EXPECT_EQ(L->DisplayName(), "reports to");
  L->SetLinePoints({{1, 2}, {3, 4}});
  L->Pen()->SetColor(clNavy);
  TKXGraphChartValue* C = G.Node("c", 0);
  C->Assign(A);
  ASSERT_EQ(C->Links()->Count(), 1);
  const TKXGraphChartLink* Copy = C->Links()->Items(0);
  EXPECT_EQ(Copy->Value(), L->Value());
  EXPECT_EQ(Copy->Caption(), "reports to");
  EXPECT_EQ(Copy->LinePoints(), L->LinePoints());
  EXPECT_EQ(Copy->Pen()->Color(), clNavy);
}

// --- Streaming ---

// A named graph chart on a named form, ready to be written and read.
struct TStoredGraph {
  TOwned<TGraphForm> Form;
  TKXGraphChart* Chart = nullptr;
  TStoredGraph() {
    StartChartPanelModule();
    StartGraphChartsModule();
    RegisterClasses({ClassOf<TGraphForm>()});
    Form.reset(New<TGraphForm>(nullptr));
    Form->SetName("Form1");
    Chart = New<TKXGraphChart>(Form.get());
    Chart->SetName("Graph1");
  }
};

TEST(GraphCharts, AFormWithAGraphComesBackWithEveryLinkInPlace) {
  TStoredGraph Stored;
  TKXGraphChart* Chart = Stored.Chart;
  Chart->SetOrientation(orRightLeft);
  Chart->SetGraphOptions({goChildSelectionColor});
  TKXGraphChartValue* R = Chart->Values()->Add(0.0, "r");
  TKXGraphChartValue* A = R->AddChild("a");
  TKXGraphChartValue* B = R->AddChild("b");
  TKXGraphChartValue* C = A->AddChild("c");
  B->Links()->Add()->SetValue(C);
  B->Links()->Add()->SetCaption("nowhere"); // no target: no "ValueIndex"
  const std::string Json = SaveFormToString(Stored.Form.get());
  // One index per link with a target, none for the one without.
  size_t Indices = 0;
  for (size_t At = Json.find("\"ValueIndex\""); At != std::string::npos;
       At = Json.find("\"ValueIndex\"", At + 1))
    ++Indices;
  EXPECT_EQ(Indices, 4u);

  const auto Check = [](const TKXGraphChart* G) {
    std::vector<std::string> Edges;
    for (const TKXGraphChartValue* V : *G->Values())
      for (const TKXGraphChartLink* L : *V->Links())
        Edges.push_back(V->Caption() + ">" + (L->Value() ? L->Value()->Caption() : "-"));
    std::sort(Edges.begin(), Edges.end());
    return Edges;
  };
  const std::vector<std::string> Expected = {"a>c", "b>-", "b>c", "r>a", "r>b"};
  EXPECT_EQ(Check(Chart), Expected);

  TOwned<TGraphForm> Copy(New<TGraphForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* Back = static_cast<TKXGraphChart*>(Copy->FindComponent("Graph1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_EQ(Check(Back), Expected);
  EXPECT_EQ(Back->Orientation(), orRightLeft);
  EXPECT_EQ(Back->GraphOptions(), TGraphOptions{goChildSelectionColor});
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);

  // A node before the targets goes: the links still point at the same nodes, and the
  // next stream writes their new places.
  Back->Values()->Delete(Back->Values()->IndexOf(0, 4)); // the root, level 0
  const std::vector<std::string> Left = {"a>c", "b>-", "b>c"};
  EXPECT_EQ(Check(Back), Left);
  TOwned<TGraphForm> Again(New<TGraphForm>(nullptr));
  LoadFormFromString(Again.get(), SaveFormToString(Copy.get()));
  EXPECT_EQ(Check(static_cast<TKXGraphChart*>(Again->FindComponent("Graph1"))), Left);
}

TEST(GraphCharts, AnIndexThatNamesNoNodeLeavesTheLinkWithoutTarget) {
  TStoredGraph Stored;
  TKXGraphChart* Chart = Stored.Chart;
  TKXGraphChartValue* R = Chart->Values()->Add(0.0, "r");
  R->AddChild("a");
  std::string Json = SaveFormToString(Stored.Form.get());
  const size_t At = Json.find("\"ValueIndex\": 1");
  ASSERT_NE(At, std::string::npos) << Json;
  Json.replace(At, 15, "\"ValueIndex\": 9");
  TOwned<TGraphForm> Copy(New<TGraphForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* Back = static_cast<TKXGraphChart*>(Copy->FindComponent("Graph1"));
  EXPECT_EQ(Back->Values()->Items(0)->Links()->Items(0)->Value(), nullptr);
}

// --- Drawing ---

TEST(GraphCharts, ALinkRunsFromConnectionPointToConnectionPointThroughItsRoute) {
  TGraph G;
  G.Axes(100);
  // Two 20 x 10 nodes: (10, 70)-(30, 80) and (60, 10)-(80, 20) in axis units.
  TKXGraphChartValue* A = G.Chart->Values()->Add(KXRect(10, 70, 20, 10), shpRectangle, "a");
  TKXGraphChartValue* B = G.Chart->Values()->Add(KXRect(60, 10, 20, 10), shpRectangle, "b");
  B->SetLevel(1);
  TKXGraphChartLink* L = G.Link(A, B);
  struct TCase {
    TConnectionPoint From, To;
    TKXPoints Route;
    float Scale;
    TCanvasPoints Expected;
  };
  const TCase Cases[] = {
      {cpBottom, cpTop, {}, 1.0f, {{20, 30}, {70, 80}}},
      {cpRight, cpLeft, {}, 1.0f, {{30, 25}, {60, 85}}},
      {cpBottom, cpTop, {{20, 50}, {70, 50}}, 1.0f, {{20, 30}, {20, 50}, {70, 50}, {70, 80}}},
      {cpBottom, cpTop, {}, 2.0f, {{20, 35}, {70, 75}}},
  };
  for (const TCase& C : Cases) {
    L->SetConnectionPoint(C.From);
    L->SetValueConnectionPoint(C.To);
    L->SetLinePoints(C.Route);
    A->SetScale(C.Scale);
    B->SetScale(C.Scale);
    EXPECT_EQ(G.Chart->LinkRoute({0, 0, 100, 100}, A, L), C.Expected);
  }
  B->SetX(NaN);
  EXPECT_TRUE(G.Chart->LinkRoute({0, 0, 100, 100}, A, L).empty());
}

TEST(GraphCharts, TheArrowHeadGrowsWithTheZoomOfBothAxes) {
  TGraph G;
  G.Axes(100);
  struct TCase {
    double HSpan, VSpan;
    int32_t Size;
  };
  const TCase Cases[] = {{0, 0, 10}, {50, 100, 22}, {50, 50, 28}, {10, 100, 100}};
  for (const TCase& C : Cases) {
    G.Chart->HorizontalAxis()->Unzoom();
    G.Chart->VerticalAxis()->Unzoom();
    if (C.HSpan > 0) {
      G.Chart->HorizontalAxis()->SetZoomMaximum(C.HSpan);
      G.Chart->VerticalAxis()->SetZoomMaximum(C.VSpan);
    }
    EXPECT_EQ(G.Chart->ArrowHeadSize(), C.Size) << C.HSpan << " " << C.VSpan;
  }
}

TEST(GraphCharts, SelectionColoursAndWidensTheLinksTheOptionsName) {
  struct TCase {
    TGraphOptions Options;
    bool ParentSelected, ChildSelected;
    bool Coloured;
    int32_t Width;
  };
  const TCase Cases[] = {
      {TGraphOptions::FromBits(9), true, false, true, 2},
      {TGraphOptions::FromBits(9), false, true, false, 1},
      {{goChildSelectionColor, goChildSelectionWidth}, false, true, true, 2},
      {{goChildSelectionColor, goChildSelectionWidth}, true, false, false, 1},
      {{}, true, true, false, 1},
  };
  for (const TCase& C : Cases) {
    TGraph G;
    G.Axes(400);
    G.Chart->SetSelectionColor(clFuchsia);
    G.Chart->SetGraphOptions(C.Options);
    TKXGraphChartValue* P = G.Node("p", 0);
    TKXGraphChartValue* Q = P->AddChild("q");
    P->Links()->Items(0)->Pen()->SetColor(clBlack);
    G.Chart->Arrange();
    P->SetSelected(C.ParentSelected);
    Q->SetSelected(C.ChildSelected);
    G.Draw();
    ASSERT_EQ(G.Chart->Links.size(), 1u);
    EXPECT_EQ(G.Chart->Links[0].Color == clFuchsia, C.Coloured);
    EXPECT_EQ(G.Chart->Links[0].Width, C.Width);
  }
}

TEST(GraphCharts, ALinkLiesOverItsNodeAndUnderTheNodesDrawnAfterIt) {
  TGraph G;
  G.Axes(100);
  G.Chart->SetOptions(G.Chart->Options() - coValueLabels);
  // A route from the first node back over itself, then through the second node's box.
  TKXGraphChartValue* A = G.Chart->Values()->Add(KXRect(10, 60, 30, 30), shpRectangle);
  TKXGraphChartValue* B = G.Chart->Values()->Add(KXRect(60, 40, 30, 30), shpRectangle);
  TKXGraphChartValue* C = G.Chart->Values()->Add(KXRect(60, 0, 30, 10), shpRectangle);
  B->SetLevel(1);
  C->SetLevel(2);
  for (TKXGraphChartValue* V : {A, B, C})
    V->Brush()->SetColor(clYellow);
  TKXGraphChartLink* L = G.Link(A, C);
  L->Pen()->SetColor(clBlue);
  L->SetLinePoints({{25, 75}, {75, 75}, {75, 55}});
  auto Bmp = G.Draw();
  const auto Blue = [](TColor K) { return test::Near(K, clBlue, 40); };
  // Over A: the stretch from its bottom up to its middle shows.
  EXPECT_GT(test::CountPixels(Bmp.get(), {20, 26, 30, 38}, Blue), 4);
  // Inside B (drawn after A): covered.
  EXPECT_EQ(test::CountPixels(Bmp.get(), {70, 33, 80, 58}, Blue), 0);
  // A target that is hidden takes its incoming link along.
  C->SetVisible(false);
  G.Draw();
  EXPECT_TRUE(G.Chart->Links.empty());
}

TEST(GraphCharts, LinkCaptionsShowOnlyWithValueLabels) {
  TGraph G;
  G.Axes(100);
  TKXGraphChartValue* A = G.Chart->Values()->Add(KXRect(10, 80, 10, 10), shpRectangle);
  TKXGraphChartValue* B = G.Chart->Values()->Add(KXRect(80, 0, 10, 10), shpRectangle);
  B->SetLevel(1);
  G.Link(A, B)->SetCaption("MMMMMM");
  G.Chart->SetOptions(G.Chart->Options() - coValueLabels);
  const int32_t Without = test::CountPainted(G.Draw().get());
  G.Chart->SetOptions(G.Chart->Options() + coValueLabels);
  EXPECT_GT(test::CountPainted(G.Draw().get()), Without + 20);
}

// --- The chart ---

TEST(GraphCharts, PreviewIsASmallArrangedOrganisationAndRegistersAsAGraph) {
  StartChartPanelModule();
  StartGraphChartsModule();
  EXPECT_EQ(GetChartClass(ctGraph), ClassOf<TKXGraphChart>());
  TGraph G;
  G.Chart->SetPreview(true);
  EXPECT_TRUE(G.Chart->Preview());
  ASSERT_EQ(G.Chart->Values()->Count(), 7);
  std::vector<std::string> Edges;
  for (TKXGraphChartValue* V : *G.Chart->Values())
    for (TKXGraphChartLink* L : *V->Links())
      Edges.push_back(V->Caption() + ">" + L->Value()->Caption());
  std::sort(Edges.begin(), Edges.end());
  const std::vector<std::string> Expected = {
      "Development>Manufacturing", "Development>Marketing", "Development>Testing",
      "Manufacturing>Purchases",   "Marketing>Purchases",   "Research>Development",
      "Startup>Development",       "Startup>Research"};
  EXPECT_EQ(Edges, Expected);
  EXPECT_EQ(G.Find("Development")->Level(), 2);
  EXPECT_EQ(G.Find("Purchases")->Level(), 4);
  // Arranged top-down: deeper levels lower on the axis.
  EXPECT_GT(G.Find("Startup")->Y(), G.Find("Research")->Y());
  EXPECT_GT(G.Find("Research")->Y(), G.Find("Development")->Y());
}

TEST(GraphCharts, ZoomNeverNarrowsTheNodesDrawnAndAssignCopiesTheSettings) {
  TGraph G;
  for (int I = 0; I < 5; ++I)
    G.Node("n" + std::to_string(I), I);
  G.Chart->Arrange();
  G.Axes(400);
  G.Chart->HorizontalAxis()->SetZoomMaximum(10);
  ASSERT_TRUE(G.Chart->HorizontalAxis()->Zooming());
  EXPECT_EQ(G.Chart->FirstIndex(), 0);
  EXPECT_EQ(G.Chart->LastIndex(), 4);
  EXPECT_EQ(G.Chart->VisibleCount(), 5);

  TGraph H;
  G.Chart->SetOrientation(orBottomUp);
  G.Chart->SetLevelGapPercent(20);
  G.Chart->ArrowPen()->SetColor(clTeal);
  G.Chart->SetGraphOptions({goChildSelectionWidth});
  H.Chart->Assign(G.Chart);
  EXPECT_EQ(H.Chart->Orientation(), orBottomUp);
  EXPECT_EQ(H.Chart->LevelGapPercent(), 20);
  EXPECT_EQ(H.Chart->ArrowPen()->Color(), clTeal);
  EXPECT_EQ(H.Chart->GraphOptions(), TGraphOptions{goChildSelectionWidth});
  EXPECT_EQ(H.Chart->Values()->Count(), 5);
}

TEST(GraphCharts, SelectionHitsANodeByItsRectangle) {
  TGraph G;
  G.Axes(100);
  TKXGraphChartValue* A = G.Chart->Values()->Add(KXRect(10, 10, 20, 20), shpEllipse);
  TKXGraphChartValue* B = G.Chart->Values()->Add(KXRect(60, 60, 20, 20), shpEllipse);
  G.Chart->Select({11, 71, 13, 73}, saSelect); // pixels: the corner of A's box
  EXPECT_TRUE(A->Selected());
  EXPECT_FALSE(B->Selected());
}

// --- Bad input ---

TEST(GraphCharts, BadInputGivesADefinedGraphAndPicture) {
  TGraph G;
  G.Axes(400);
  TKXGraphChartValue* R = G.Node("r", 0);
  TKXGraphChartValue* A = R->AddChild("a");
  TKXGraphChartValue* B = A->AddChild("b");
  // A cycle attempted through the levels: the upward link stays until a level changes.
  G.Link(B, R);
  G.Link(A, A);
  TKXGraphChartValue* Lost = G.Node("lost", -1);
  G.Link(Lost, R);
  G.Chart->Arrange();
  for (TKXGraphChartValue* V : *G.Chart->Values()) {
    EXPECT_TRUE(std::isfinite(V->X()));
    EXPECT_TRUE(std::isfinite(V->Y()));
  }
  A->SetX(NaN);
  B->SetY(std::numeric_limits<double>::infinity());
  G.Draw();
  EXPECT_EQ(G.Chart->Links.size(), 5u); // asked for; those with no place draw nothing
  // A NaN level reads 0 and stands at the end of the sort: placed as a run of its own.
  R->SetValue(4, NaN);
  G.Chart->Arrange();
  EXPECT_TRUE(std::isfinite(R->X()));
  Lost->Free();
  G.Draw();
}

TEST(GraphCharts, TenThousandNodesOnOneLevelShareTheRowEvenly) {
  TGraph G;
  TKXGraphChartValues* V = G.Chart->Values();
  V->SetSorted(false);
  TKXGraphChartValue* R = G.Node("r", 0);
  for (int I = 0; I < 10000; ++I) {
    // Add() would place each at the largest X so far, a pass over all nodes each time.
    TKXGraphChartValue* C = V->Add(0.0, 0.0);
    C->SetLevel(1);
    G.Link(R, C);
  }
  V->SetSorted(true);
  G.Chart->Arrange();
  // Widest 10,000 slots of 150: the root in the middle, the row from 75 + 25 on.
  EXPECT_DOUBLE_EQ(R->X(), 750000 + 25);
  EXPECT_DOUBLE_EQ(V->Items(1)->X(), 75 + 25);
  EXPECT_DOUBLE_EQ(V->Items(10000)->X(), 75 + 25 + 150.0 * 9999);
  G.Draw();
  EXPECT_EQ(G.Chart->Links.size(), 10000u);
}

} // namespace
} // namespace kx
