// The panel sheet: whole chart panels, laid out and painted as a window paints them. A new
// panel with no charts; one with its own gradient, header and footer; panels whose legend
// (with lines of the application's own, Fixed) stands at each side, and one whose legend lies
// over the plot.
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetWidth = 1320;
constexpr int32_t PanelW = 400;
constexpr int32_t PanelH = 300;

class TSheetForm : public TComponent {
  KX_CLASS(TSheetForm, TComponent)

public:
  using TComponent::TComponent;
};

// Three line charts in the panel, on fixed axis ranges, and a plot background that shows
// where the layout put the plot rectangle.
void AddLines(TSheetForm* Form, TKXChartPanel* Panel) {
  Panel->ChartShadow()->SetVisible(false);
  Panel->ChartBackground()->SetVisible(true);
  Panel->ChartBackground()->SetTransparent(false);
  Panel->ChartBackground()->Brush()->SetColor(clWhite);
  for (int K = 0; K < 3; ++K) {
    auto* L = New<TKXLineChart>(Form);
    L->SetOptions(L->Options() - coValueColors - coValueLabels);
    L->SetColor(DefaultColorList[static_cast<size_t>(K + 1)]);
    L->Pen()->SetWidth(2);
    for (int I = 0; I <= 12; ++I)
      L->Values()->Add(I, 5 + 3 * std::sin(I * 0.6 + K * 1.7) + K);
    L->SetPanel(Panel);
  }
  for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()})
    A->UpdateAxisValues();
}

// The legend shows lines the application wrote itself, each still naming its chart.
void FixLegend(TKXChartPanel* Panel, TKXLegendAlignment Side) {
  static const char* Names[] = {"North (fixed text)", "South", "East"};
  auto Lines = MakeOwned<TStringList>();
  for (int32_t I = 0; I < Panel->Charts()->Count(); ++I)
    Lines->AddObject(Names[I % 3], Panel->Charts()->Items(I));
  Panel->Legend()->SetFixed(true);
  Panel->Legend()->SetLines(Lines.get());
  Panel->Legend()->SetAlign(Side);
}

void PaintPanels(TCanvas* C, const TRect&) {
  ColorListIndex = 0;
  TOwned<TSheetForm> Form(New<TSheetForm>(nullptr));
  ResetCanvas(C, clWhite);
  C->FillRect({0, 0, SheetWidth, 2000});
  int32_t Y = SectionTitle(C, 10, "Chart panels of 400 x 300, painted as their window paints them",
                           SheetWidth, clWhite);
  const TGrid G{10, Y, 436, 340, 3};
  int Cell = 0;
  const auto Next = [&](const std::string& Caption,
                        const std::function<void(TKXChartPanel*)>& Setup) {
    auto* Panel = New<TKXChartPanel>(Form.get());
    Panel->SetBounds(0, 0, PanelW, PanelH);
    if (Setup) Setup(Panel);
    const TRect Body = G.Body(Cell);
    Panel->PaintTo(C, Body.Left + 6, Body.Top);
    CaptionUnder(C, G, Cell, Caption, clWhite);
    ++Cell;
  };

  Next("A new panel: gradient, header, footer, no charts", nullptr);
  Next("Own gradient, header and footer, with charts", [&](TKXChartPanel* P) {
    AddLines(Form.get(), P);
    P->Gradient()->SetStartColor(static_cast<TColor>(0x6B3A1F));
    P->Gradient()->SetEndColor(static_cast<TColor>(0xE8D2B8));
    P->Gradient()->SetDirection(gdTopLeftToBottomRight);
    P->Header()->SetText("Quarterly output");
    P->Header()->Font()->SetSize(12);
    P->Header()->Font()->SetStyle({fsBold});
    P->Header()->Font()->SetColor(clWhite);
    P->Header()->SetHeight(34);
    P->Footer()->SetText("Footer, left aligned");
    P->Footer()->SetAlignment(taLeftJustify);
    P->Footer()->Font()->SetColor(static_cast<TColor>(0x402010));
    P->Legend()->SetVisible(false);
  });
  const TKXLegendAlignment Sides[] = {laLeft, laRight, laBottom, laTop};
  for (TKXLegendAlignment Side : Sides)
    Next(std::string("A Fixed legend at ") + GetEnumName(Side), [&](TKXChartPanel* P) {
      AddLines(Form.get(), P);
      FixLegend(P, Side);
    });
  Next("A Fixed legend over the plot (Overlay)", [&](TKXChartPanel* P) {
    AddLines(Form.get(), P);
    FixLegend(P, laRight);
    P->Legend()->SetOverlay(true);
  });
}

} // namespace

void AddPanelSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"panels", "Chart panels: layout of header, footer, legend, axes and plot",
                    SheetWidth, 1110, PaintPanels});
}

} // namespace kx::gallery
