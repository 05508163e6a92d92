// One form in each theme: the same panel of three lines over a year of dates, once as a new
// panel looks (classic) and once with ApplyChartTheme for light and for dark.
#include <cmath>
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/core/KXChartThemes.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx::gallery {

namespace {

constexpr int32_t PanelW = 480, PanelH = 340;

void PaintThemed(TCanvas* C, const TRect& Area, const std::string& Theme) {
  ColorListIndex = 0;
  TOwned<TForm> Form(New<TForm>(nullptr));
  Form->SetBounds(0, 0, PanelW, PanelH);
  auto* P = New<TKXChartPanel>(Form.get());
  P->SetParent(Form.get());
  P->SetBounds(0, 0, PanelW, PanelH);
  P->Header()->SetText("Visitors per week, 2024 (" + Theme + ")");
  P->Footer()->SetText("Source: site logs");
  P->Legend()->SetLegendStyle(lsCharts);
  P->Legend()->SetAlign(laBottom);
  TKXChartAxis* Bottom = P->BottomAxis();
  Bottom->SetLabelStyle(alsDateTime);
  Bottom->SetDateTimeFormat("mmm");
  const TDateTime Start = EncodeDate(2024, 1, 1);
  const char* Names[] = {"Shop", "Blog", "Help centre"};
  for (int K = 0; K < 3; ++K) {
    auto* L = New<TKXLineChart>(Form.get());
    L->SetCaption(Names[K]);
    TUpdateScope<TKXChartValues> Scope(L->TKXCustomChart::Values());
    L->Values()->SetDateTimeAxes({xyX});
    for (int W = 0; W < 52; ++W) {
      const double Season = std::sin((W + 8 * K) / 52.0 * 2 * M_PI);
      L->Values()->Add(Start + 7 * W, 900 - 220 * K + 160 * Season + 40 * std::sin(W * 1.7 + K));
    }
    L->SetPanel(P);
  }
  ApplyChartTheme(P, Theme);
  PaintPanel(C, P, {Area.Left, Area.Top, Area.Left + PanelW, Area.Top + PanelH});
}

void PaintThemes(TCanvas* C, const TRect& Area) {
  const char* Themes[] = {"classic", "light", "dark"};
  for (int I = 0; I < 3; ++I)
    PaintThemed(C, {Area.Left + I * PanelW, Area.Top, Area.Right, Area.Bottom}, Themes[I]);
}

} // namespace

void AddThemeSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"themes",
                    "ApplyChartTheme(Panel, \"classic\" | \"light\" | \"dark\"): one form in "
                    "each theme; light and dark are flat, without the chart shadow, each line "
                    "in one colour of a colour-blind-safe palette, without value labels",
                    3 * PanelW, PanelH, PaintThemes});
}

} // namespace kx::gallery
