// The interaction sheet: a chart panel driven by the mouse through the headless host, each
// picture what the screen shows at one moment of a drag or a move (the rubber band and the
// crosshair are drawn by inversion straight onto the panel, the hint is a pop-up above it).
#include <cmath>
#include <functional>
#include <string>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetWidth = 1320;
constexpr int32_t PanelW = 400;
constexpr int32_t PanelH = 300;

// A form on the host's screen with one panel of two line charts over 0..60.
struct TScene {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());
  TOwned<TKXHost> Host = MakeOwned<TKXHost>();

  TScene() {
    ColorListIndex = 0;
    Form->SetBounds(100, 100, PanelW, PanelH);
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, PanelW, PanelH);
    Panel->ChartShadow()->SetVisible(false);
    Panel->Header()->SetText("Drag to zoom, Alt-drag to pan");
    Panel->Legend()->SetVisible(false);
    Panel->Footer()->SetVisible(false);
    for (int K = 0; K < 2; ++K) {
      auto* L = New<TKXLineChart>(Form.get());
      L->SetOptions(L->Options() - coValueColors - coValueLabels);
      L->Pen()->SetWidth(2);
      for (int I = 0; I <= 60; ++I)
        L->Values()->Add(I, 50 + 30 * std::sin(I * 0.15 + K * 2.0) + 8 * std::sin(I * 0.9));
      L->SetPanel(Panel);
    }
    Host->AddWindow(Form.get());
    Host->ProcessPaints();
  }
  // The screen point at fractions of the plot rectangle.
  TPoint At(double FX, double FY) const {
    const TRect R = Panel->ChartRect();
    return Panel->ClientToScreen({R.Left + static_cast<int32_t>(std::lround(FX * R.Width())),
                                  R.Top + static_cast<int32_t>(std::lround(FY * R.Height()))});
  }
  // What the screen shows of the form, with the pop-ups that lie over it.
  void PaintOn(TCanvas* C, int32_t X, int32_t Y) {
    C->Draw(X, Y, Host->Capture(Form.get()).get());
    for (int32_t I = 0; I < Screen.PopupCount(); ++I) {
      TWinControl* P = Screen.Popups(I);
      if (!P->Visible()) continue;
      TCanvasClip Clip(C, {X, Y - 40, X + PanelW + 40, Y + PanelH});
      C->Draw(X + P->Left() - Form->Left(), Y + P->Top() - Form->Top(), Host->Capture(P).get());
    }
  }
};

void PaintInteraction(TCanvas* C, const TRect&) {
  ResetCanvas(C, clWhite);
  int32_t Y = SectionTitle(C, 10, "The mouse on a chart panel (headless host, as a window shows it)",
                           SheetWidth, clWhite);
  const TGrid G{10, Y + 10, 436, 340, 3};
  int Cell = 0;
  const auto Next = [&](const std::string& Caption, const std::function<void(TScene&)>& Act) {
    TScene S;
    Act(S);
    S.Host->ProcessPaints();
    const TRect Body = G.Body(Cell);
    S.PaintOn(C, Body.Left + 6, Body.Top);
    CaptionUnder(C, G, Cell, Caption, clWhite);
    ++Cell;
  };

  Next("Left drag: the rubber band, inverted on the panel", [](TScene& S) {
    S.Host->MouseDown(S.At(0.3, 0.2), mbLeft);
    S.Host->MouseMove(S.At(0.65, 0.7));
  });
  Next("Released: both axes zoomed to the box", [](TScene& S) {
    S.Host->Drag(S.At(0.3, 0.2), S.At(0.65, 0.7));
    S.Host->MouseExit();
  });
  Next("Alt + drag on the zoomed chart: panned", [](TScene& S) {
    S.Host->Drag(S.At(0.3, 0.2), S.At(0.65, 0.7));
    S.Host->ProcessPaints();
    S.Host->Drag(S.At(0.7, 0.5), S.At(0.3, 0.4), {ssAlt});
    S.Host->MouseExit();
  });
  Next("The crosshair (XOR) and the hint with the axis values", [](TScene& S) {
    S.Host->MouseMove(S.At(0.55, 0.45));
  });
  Next("Shift + drag: the box keeps the plot's shape", [](TScene& S) {
    S.Host->MouseDown(S.At(0.2, 0.15), mbLeft, {ssShift});
    S.Host->MouseMove(S.At(0.6, 0.95), {ssShift});
  });
  Next("Ctrl + drag with uaSelect: values in the box toggled", [](TScene& S) {
    S.Panel->SetUserActions(S.Panel->UserActions() + uaSelect);
    S.Host->Drag(S.At(0.2, 0.05), S.At(0.5, 0.95), {ssCtrl});
    S.Host->MouseExit();
  });
}

} // namespace

void AddInteractionSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"interaction", "The mouse on a chart panel: zoom box, pan, crosshair, selection",
                    SheetWidth, 760, PaintInteraction});
}

} // namespace kx::gallery
