// The legend controls sheet: a form with a panel of three charts, a legend box beside it
// that follows the panel, a check list of the panel's charts under it with one chart
// switched off by a press on its check box, and a check list of one chart's values, one
// value switched off and two selected by the mouse, as a user would.
#include <string>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/legends/KXChartLegends.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetWidth = 960;
constexpr int32_t SheetHeight = 620;

TPanel* Label(TForm* Form, const std::string& Text, TRect R, bool Title = false) {
  auto* P = New<TPanel>(Form);
  P->SetParent(Form);
  P->SetBoundsRect(R);
  P->SetCaption(Text);
  P->SetBevelOuter(bvNone);
  P->SetColor(clWhite);
  P->SetAlignment(taLeftJustify);
  P->Font()->SetColor(SheetInk);
  P->Font()->SetSize(Title ? 13 : 9);
  if (Title) P->Font()->SetStyle({fsBold});
  return P;
}

// Rows of the lists are 18 pixels, inside a frame of 2; the check box is the first 15.
TPoint CheckOf(const TKXLegendListBox* L, int32_t Item) {
  return L->ClientToScreen({2 + 7, 2 + 18 * Item + 9});
}
TPoint TextOf(const TKXLegendListBox* L, int32_t Item) {
  return L->ClientToScreen({2 + 60, 2 + 18 * Item + 9});
}

void PaintLegendControls(TCanvas* Canvas, const TRect& Area) {
  ColorListIndex = 0;
  TOwned<TForm> Form = MakeOwned<TForm>(nullptr);
  Form->SetBounds(0, 0, Area.Width(), Area.Height());
  Form->SetColor(clWhite);
  Form->Font()->SetSize(9);
  Label(Form.get(), "  Legend controls: a legend box and check lists that follow a panel",
        {0, 0, Area.Width(), 40}, true);

  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetParent(Form.get());
  Panel->SetBounds(10, 44, 620, 360);
  Panel->Header()->SetText("Sales by month");
  Panel->Footer()->SetVisible(false);
  Panel->Legend()->SetVisible(false);
  Panel->ChartShadow()->SetVisible(false);
  static const char* const Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  auto* Units = New<TKXBarChart>(Form.get());
  Units->SetCaption("Units");
  for (int I = 0; I < 12; ++I)
    Units->Values()->Add(40 + 25 * ((I * 7) % 5) + 3 * I, Months[I]);
  Units->SetPanel(Panel);
  const auto AddLine = [&](const char* Caption, double Base, double Step) {
    auto* Line = New<TKXLineChart>(Form.get());
    Line->SetCaption(Caption);
    Line->SetOptions(Line->Options() - coValueColors - coValueLabels);
    Line->Pen()->SetWidth(2);
    for (int I = 0; I < 12; ++I)
      Line->Values()->Add(I, Base + Step * I + 12 * ((I * 3) % 4));
    Line->SetPanel(Panel);
    return Line;
  };
  AddLine("Revenue", 70, 6);
  AddLine("Forecast", 60, 8);

  Label(Form.get(), "Legend box: hidden charts leave it", {650, 44, 950, 64});
  auto* Box = New<TKXChartLegendBox>(Form.get());
  Box->SetParent(Form.get());
  Box->SetBounds(650, 66, 290, 100);
  Box->Legend()->SetLegendStyle(lsCharts);
  Box->Legend()->SetBoxSize(14);
  Box->Legend()->Font()->SetSize(10);
  Box->Legend()->Font()->SetColor(SheetInk);
  Box->SetPanel(Panel);

  Label(Form.get(), "Check list of the panel's charts: Forecast switched off here",
        {10, 414, 630, 434});
  auto* Charts = New<TKXLegendListBox>(Form.get());
  Charts->SetParent(Form.get());
  Charts->SetBounds(10, 436, 620, 2 * 2 + 3 * 18 + 2);
  Charts->SetItemHeight(18);
  Charts->SetLegendStyle(lsCharts);
  Charts->SetPanel(Panel);

  Label(Form.get(), "Units values: Apr off, Jun and Aug selected", {650, 180, 950, 200});
  auto* Values = New<TKXLegendListBox>(Form.get());
  Values->SetParent(Form.get());
  Values->SetBounds(650, 202, 290, 2 * 2 + 12 * 18);
  Values->SetItemHeight(18);
  Values->SetLegendStyle(lsValues);
  Values->SetLegendTextStyle(ltsCaptionValue);
  Values->SetEnableSelection(true);
  Values->SetChart(Units);

  Label(Form.get(), "Without check boxes, with the charts' own glyphs", {10, 510, 630, 530});
  auto* Glyphs = New<TKXLegendListBox>(Form.get());
  Glyphs->SetParent(Form.get());
  Glyphs->SetBounds(10, 532, 620, 2 * 2 + 3 * 18);
  Glyphs->SetItemHeight(18);
  Glyphs->SetLegendStyle(lsCharts);
  Glyphs->SetShowCheckBoxes(false);
  Glyphs->SetOptions({loChartGlyphs});
  Glyphs->SetPanel(Panel);

  // What a user does, through the host as the mouse would.
  TOwned<TKXHost> Host = MakeOwned<TKXHost>();
  Host->AddWindow(Form.get());
  Host->ProcessPaints();
  Host->Click(CheckOf(Charts, 2));
  Host->ProcessPaints();
  Host->Click(CheckOf(Values, 3));
  Host->Click(TextOf(Values, 5));
  Host->Click(TextOf(Values, 7), mbLeft, {ssCtrl});
  Host->SetFocus(nullptr);
  Host->ProcessPaints();
  Form->PaintTo(Canvas, Area.Left, Area.Top);
}

} // namespace

void AddLegendControlsSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"legend-controls",
                    "Legend controls: a legend box and check lists following a panel", SheetWidth,
                    SheetHeight, PaintLegendControls});
}

} // namespace kx::gallery
