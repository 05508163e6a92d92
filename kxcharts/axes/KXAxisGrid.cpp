#include "kxcharts/axes/KXAxisGrid.h"

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/KXStreaming.h"

namespace kx {

void TKXAxisGrid::InternalDraw(TCanvas*, const TRect&) {}

void TKXAxisGrid::VisibleChanged() {
  inherited::VisibleChanged();
  if (!FAxis) return;
  TAxisOptions Options = FAxis->Options();
  if (Visible())
    Options.Include(aoShowGrid);
  else
    Options.Exclude(aoShowGrid);
  FAxis->SetOptions(Options);
}

void TKXAxisGrid::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Opacity", this, &TKXAxisGrid::Opacity, &TKXAxisGrid::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXAxisGrid::Visible, &TKXAxisGrid::SetVisible, true);
}

} // namespace kx
