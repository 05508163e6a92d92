// Node-link graphs: one organisation of fifteen units on four levels, arranged by level in
// rows (top down) and in columns (left to right).
#include <algorithm>
#include <string>
#include <vector>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/graphs/KXGraphCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetW = 900, SheetH = 560;

struct TUnit {
  const char* Caption;
  const char* Parent; // nullptr for the root
};

// Breadth first, children after their parent's siblings, so that the order within a level
// follows the parents' order and no two links cross.
constexpr TUnit Units[] = {
    {"Chief Executive", nullptr}, {"Finance", "Chief Executive"},
    {"Operations", "Chief Executive"}, {"Technology", "Chief Executive"},
    {"Accounts", "Finance"},      {"Treasury", "Finance"},
    {"Logistics", "Operations"},  {"Purchasing", "Operations"},
    {"Quality", "Operations"},    {"Platform", "Technology"},
    {"Research", "Technology"},   {"Payroll", "Accounts"},
    {"Fleet", "Logistics"},       {"Cloud", "Platform"},
    {"Security", "Platform"}};

// One colour per level, dark to light; the dark ones carry white text.
constexpr TColor LevelFill[] = {static_cast<TColor>(0x5A3A1F), static_cast<TColor>(0x9A6A2E),
                                static_cast<TColor>(0xD8B27A), static_cast<TColor>(0xF2E3C8)};

void PaintOrganisation(TCanvas* C, const TRect& Area, TKXChartOrientation Orientation,
                       const char* Header) {
  ColorListIndex = 0;
  const int32_t W = Area.Right - Area.Left, H = Area.Bottom - Area.Top;
  TOwned<TForm> Form(New<TForm>(nullptr));
  Form->SetBounds(0, 0, W, H);
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetParent(Form.get());
  Panel->SetBounds(0, 0, W, H);
  Panel->Footer()->SetVisible(false);
  Panel->Legend()->SetVisible(false);
  Panel->Header()->SetText(Header);

  auto* Graph = New<TKXGraphChart>(Form.get());
  Graph->SetCaption("Organisation");
  Graph->SetOrientation(Orientation);
  Graph->DefaultShape()->SetWidth(100);
  Graph->DefaultShape()->SetHeight(40);
  Graph->DefaultShape()->SetStyle(shpRoundRect);
  Graph->DefaultShape()->Pen()->SetColor(static_cast<TColor>(0x404040));
  Graph->DefaultShape()->Font()->SetSize(9);
  TKXGraphChartValues* Nodes = Graph->Values();
  // Added level by level with the sort off, so the order within a level stays this one.
  Nodes->SetSorted(false);
  std::vector<TKXGraphChartValue*> Made;
  const auto Find = [&](const char* Caption) {
    return *std::find_if(Made.begin(), Made.end(),
                         [&](const TKXGraphChartValue* V) { return V->Caption() == Caption; });
  };
  for (const TUnit& U : Units) {
    TKXGraphChartValue* V =
        U.Parent ? Find(U.Parent)->AddChild(U.Caption) : Nodes->Add(0.0, 0.0, U.Caption);
    Made.push_back(V);
  }
  for (TKXGraphChartValue* V : Made) {
    const int32_t Level = std::clamp(V->Level(), 0, 3);
    V->SetColor(LevelFill[Level]);
    V->Font()->SetColor(Level < 2 ? clWhite : static_cast<TColor>(0x202020));
    if (Level == 0) V->Font()->SetStyle({fsBold});
  }
  // A dashed line across the tree, with its caption.
  TKXGraphChartLink* Audit = Find("Quality")->Links()->Add();
  Audit->SetValue(Find("Fleet"));
  Audit->SetCaption("audits");
  Audit->Pen()->SetColor(static_cast<TColor>(0x2020B0));
  Audit->Pen()->SetStyle(psDash);
  Nodes->SetSorted(true);
  Graph->Arrange();

  // Room around the hull of the nodes for the arrows, and no axes: the places mean nothing.
  double X0 = 1e300, X1 = -1e300, Y0 = 1e300, Y1 = -1e300;
  for (const TKXGraphChartValue* V : *Nodes) {
    X0 = std::min(X0, V->X());
    X1 = std::max(X1, V->X() + V->Width());
    Y0 = std::min(Y0, V->Y());
    Y1 = std::max(Y1, V->Y() + V->Height());
  }
  const double PadX = (X1 - X0) * 0.03, PadY = (Y1 - Y0) * 0.05;
  const std::pair<TKXChartAxis*, std::pair<double, double>> Ranges[] = {
      {Panel->BottomAxis(), {X0 - PadX, X1 + PadX}}, {Panel->LeftAxis(), {Y0 - PadY, Y1 + PadY}}};
  for (const auto& [Axis, Range] : Ranges) {
    Axis->SetOptions(Axis->Options() - aoAutoMinimum - aoAutoMaximum - aoShowGrid);
    Axis->SetVisible(false);
    Axis->SetMaximum(Range.second);
    Axis->SetMinimum(Range.first);
  }
  Graph->SetPanel(Panel);
  PaintPanel(C, Panel, Area);
}

void PaintGraph(TCanvas* C, const TRect& Area) {
  PaintOrganisation(C, Area, orTopDown,
                    "An organisation on four levels, arranged top down (Arrange, orTopDown)");
}

void PaintGraphColumns(TCanvas* C, const TRect& Area) {
  PaintOrganisation(C, Area, orLeftRight,
                    "The same organisation arranged in columns (orLeftRight)");
}

} // namespace

void AddGraphSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"graph", "TKXGraphChart: an organisation chart, arranged by level in rows",
                    SheetW, SheetH, PaintGraph});
  Sheets.push_back({"graph-columns", "TKXGraphChart: the same organisation in columns", SheetW,
                    SheetH, PaintGraphColumns});
}

} // namespace kx::gallery
