// The interactive demo: a dashboard of chart panels in a real window.
//
//   kx_demo                      opens the window (needs a display)
//   kx_demo --screenshot FILE    shows it, zooms the million values, switches the live
//                                envelope off in its check list and moves the mouse over
//                                the first panel, saves what the screen shows, exits
#include <cstring>
#include <iostream>

#include "demo/KXDemo.h"
#include "hosts/gtk/KXGtkHost.h"
#include "kxcharts/KXChartModules.h"
#include "kxcharts/legends/KXChartLegends.h"

namespace {

using namespace kx;

// A drag on the last panel and a stop over the first, through the host as the mouse would.
void ShowTheMouse(TKXGtkHost& Host, demo::TDemo& Demo) {
  const auto At = [](const TKXChartPanel* P, double FX, double FY) {
    const TRect R = P->ChartRect();
    return P->ClientToScreen({R.Left + int32_t(FX * R.Width()), R.Top + int32_t(FY * R.Height())});
  };
  TKXChartPanel* Million = Demo.Panels.back();
  Host.Drag(At(Million, 0.45, 0.05), At(Million, 0.55, 0.95));
  Host.Sync();
  // The check box of the first item (rows of 18 pixels inside a frame of 2).
  for (int32_t I = 0; I < Demo.Form->ComponentCount(); ++I)
    if (auto* List = dynamic_cast<TKXLegendListBox*>(Demo.Form->Components(I)))
      Host.Click(List->ClientToScreen({2 + 7, 2 + 9}));
  Host.Sync();
  Host.ProcessEvents(200);
  Host.MouseMove(At(Demo.Panels.front(), 0.6, 0.4));
  Host.Sync();
}

} // namespace

int main(int argc, char** argv) {
  const char* Screenshot = nullptr;
  for (int I = 1; I < argc; ++I) {
    if (std::strcmp(argv[I], "--screenshot") == 0 && I + 1 < argc) {
      Screenshot = argv[++I];
    } else {
      std::cerr << "usage: kx_demo [--screenshot FILE]\n";
      return 2;
    }
  }
  if (!TKXGtkHost::Open()) {
    std::cerr << "kx_demo: there is no display to open a window on; run it on a desktop, or "
                 "use ./kx demo --screenshot FILE, which starts a virtual one\n";
    return 1;
  }
  try {
    StartChartModules();
    demo::TDemo Demo = demo::MakeDemo(1280, 800);
    TOwned<TKXGtkHost> Host = MakeOwned<TKXGtkHost>();
    for (const demo::TDemoTimer& T : Demo.Timers)
      Host->AddTimer(T.Interval, T.Tick);
    Host->ShowForm(Demo.Form.get(), "KX Charts demo");
    if (!Screenshot) {
      Host->Run();
      return 0;
    }
    Host->ProcessEvents(800);
    ShowTheMouse(*Host, Demo);
    Host->ProcessEvents(400);
    Host->SaveScreenshot(Demo.Form.get(), Screenshot);
    std::cout << "kx_demo: wrote " << Screenshot << "\n";
  } catch (const std::exception& E) {
    std::cerr << "kx_demo: " << E.what() << "\n";
    return 1;
  }
  return 0;
}
