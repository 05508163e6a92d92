// What the canvas costs on top of Cairo: the same random walk stroked through
// TCanvas::Polyline and directly with Cairo, on the same 1600 x 900 bitmap with a 1 px pen.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;

std::vector<TPoint> RandomWalk(int64_t N) {
  std::mt19937 Random(20240601);
  std::uniform_int_distribution<int> Step(-6, 6);
  std::vector<TPoint> Points(static_cast<size_t>(N));
  TPoint P{800, 450};
  for (TPoint& Q : Points) {
    P.X = std::clamp(P.X + Step(Random), 0, 1599);
    P.Y = std::clamp(P.Y + Step(Random), 0, 899);
    Q = P;
  }
  return Points;
}

void BM_PolylineCanvas(benchmark::State& State) {
  const std::vector<TPoint> Points = RandomWalk(State.range(0));
  TOwned<TBitmap> Bitmap = MakeOwned<TBitmap>();
  Bitmap->SetSize(1600, 900);
  TCanvas* Canvas = Bitmap->Canvas();
  Canvas->Pen()->SetWidth(1);
  Canvas->Pen()->SetColor(clNavy);
  for (auto _ : State) {
    Canvas->Polyline(Points);
    cairo_surface_flush(Bitmap->Surface());
  }
  State.SetItemsProcessed(State.iterations() * State.range(0));
}

void BM_PolylineCairoFloor(benchmark::State& State) {
  const std::vector<TPoint> Points = RandomWalk(State.range(0));
  cairo_surface_t* Surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1600, 900);
  cairo_t* Cr = cairo_create(Surface);
  cairo_set_source_rgb(Cr, 1, 1, 1);
  cairo_paint(Cr);
  cairo_set_line_width(Cr, 1);
  cairo_set_line_cap(Cr, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(Cr, CAIRO_LINE_JOIN_MITER);
  cairo_set_miter_limit(Cr, 2.0);
  cairo_set_source_rgb(Cr, 0, 0, 0.5);
  for (auto _ : State) {
    cairo_move_to(Cr, Points[0].X + 0.5, Points[0].Y + 0.5);
    for (size_t I = 1; I < Points.size(); ++I)
      cairo_line_to(Cr, Points[I].X + 0.5, Points[I].Y + 0.5);
    cairo_stroke(Cr);
    cairo_surface_flush(Surface);
  }
  State.SetItemsProcessed(State.iterations() * State.range(0));
  cairo_destroy(Cr);
  cairo_surface_destroy(Surface);
}

} // namespace

BENCHMARK(BM_PolylineCanvas)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PolylineCairoFloor)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
