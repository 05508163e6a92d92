#pragma once
// TKXAxisGrid: what an axis puts across and along the plot, drawn from the major interval
// and start that the axis's label pass hands it. Its visibility is kept equal to the
// axis's aoShowGrid option, both ways.

#include "kxcharts/core/KXChartGraphic.h"

namespace kx {

class TKXChartAxis;

class TKXAxisGrid : public TKXChartGraphic {
  KX_CLASS(TKXAxisGrid, TKXChartGraphic)

private:
  TKXChartAxis* FAxis;

public:
  // AOwner is the axis that owns the grid (nil for a grid on its own: Clone, streaming).
  explicit TKXAxisGrid(TKXChartAxis* AOwner = nullptr) : FAxis(AOwner) {}

  // --- Properties ---

  TKXChartAxis* Axis() const { return FAxis; }

protected:
  // Grid lines and ticks come with the axis drawing; until then the grid paints nothing.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // Reports the change, then puts aoShowGrid of the axis in step with Visible.
  void VisibleChanged() override;
  // Opacity, Visible.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
