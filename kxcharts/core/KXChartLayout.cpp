#include "kxcharts/core/KXChartLayout.h"

#include "kxcharts/toolkit/graphics/KXGraphics.h"

namespace kx {

TRect DefaultMarginsRect() {
  return {3, 4, 3, 4};
}

TRect ModifyRectByMargins(const TRect& ARect, const TKXObjectRect* Margins, bool Pixels) {
  if (!Margins) return ARect;
  int32_t L = Margins->Left(), T = Margins->Top(), R = Margins->Right(), B = Margins->Bottom();
  if (!Pixels) {
    const double W = KXRectWidth(ARect), H = KXRectHeight(ARect);
    L = CanvasRound(W * L / 100.0);
    R = CanvasRound(W * R / 100.0);
    T = CanvasRound(H * T / 100.0);
    B = CanvasRound(H * B / 100.0);
  }
  return CanvasRect(static_cast<double>(ARect.Left) + L, static_cast<double>(ARect.Top) + T,
                    static_cast<double>(ARect.Right) - R, static_cast<double>(ARect.Bottom) - B);
}

TRect MeasureAxisRoom(TCanvas* Canvas, const TRect& ARect,
                      std::initializer_list<TKXAxisSide> Axes) {
  // An axis drawn inside the plot, or none, leaves a gap that keeps the plot off the edge.
  constexpr int32_t Gap = 10;
  TRect Room{Gap, Gap, Gap, Gap};
  for (const TKXAxisSide& A : Axes) {
    if (!A.Axis) continue;
    A.Axis->CalculateBounds(Canvas, ARect);
    if (!A.Axis->Visible() || A.Axis->InwardPosition() != 0) continue;
    switch (A.Side) {
    case calLeft:
      Room.Left = A.Axis->Width();
      break;
    case calTop:
      Room.Top = A.Axis->Height();
      break;
    case calRight:
      Room.Right = A.Axis->Width();
      break;
    case calBottom:
      Room.Bottom = A.Axis->Height();
      break;
    }
  }
  return Room;
}

} // namespace kx
