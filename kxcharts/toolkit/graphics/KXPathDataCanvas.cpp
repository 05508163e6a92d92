// The painting half of TKXPathData, kept apart so that path data itself needs no canvas.
#include "kxcharts/toolkit/graphics/KXPathData.h"

#include <cmath>

#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"

namespace kx {

namespace {

// Puts the path on the canvas's Cairo context, moved by Off and clamped to the safe range.
void TracePath(const TKXPathData& Path, cairo_t* Cr, double Off) {
  cairo_new_path(Cr);
  auto X = [&](const TKXPathPoint& P) { return ClampCanvasCoord(P.X) + Off; };
  auto Y = [&](const TKXPathPoint& P) { return ClampCanvasCoord(P.Y) + Off; };
  Path.ForEachSegment([&](const TKXPathSegment& S) {
    switch (S.Command) {
    case pcMoveTo:
      cairo_move_to(Cr, X(S.Points[0]), Y(S.Points[0]));
      break;
    case pcLineTo:
      cairo_line_to(Cr, X(S.Points[0]), Y(S.Points[0]));
      break;
    case pcCurveTo:
      cairo_curve_to(Cr, X(S.Points[0]), Y(S.Points[0]), X(S.Points[1]), Y(S.Points[1]),
                     X(S.Points[2]), Y(S.Points[2]));
      break;
    case pcClose:
      cairo_close_path(Cr);
      break;
    }
  });
}

void Paint(const TKXPathData& Path, TCanvas* Canvas, float Opacity, bool Fill) {
  if (!Canvas || Path.IsEmpty() || std::isnan(Opacity) || Opacity <= 0) return;
  const bool Layer = Opacity < 1.0f;
  if (Layer) Canvas->BeginOpacity(Opacity);
  const double Off = !Fill && Canvas->EffectivePenWidth() % 2 == 1 ? 0.5 : 0.0;
  TracePath(Path, Canvas->Handle(), Off);
  Canvas->PaintPath(Fill, !Fill, true);
  if (Layer) Canvas->EndOpacity();
}

} // namespace

void TKXPathData::FillPath(TCanvas* Canvas, float Opacity) const {
  Paint(*this, Canvas, Opacity, true);
}

void TKXPathData::DrawPath(TCanvas* Canvas, float Opacity) const {
  Paint(*this, Canvas, Opacity, false);
}

} // namespace kx
