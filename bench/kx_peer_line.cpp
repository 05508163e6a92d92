// The library's row of the peer harness (one N-point line at 1600 x 900, beside other chart
// libraries in the same run):
//
//   kx_peer_line N data.bin MODE RUNS [out.png]
//
// Loads N little-endian doubles (x[i] = i), builds a 1600 x 900 TKXChartPanel with one
// TKXLineChart of them (values added in one bracket; the panel's ChartShadow hidden, the
// chart without value colours and labels), paints the panel once to warm up and then RUNS
// times, each a full paint of the panel (frame, gradient, axes with labels and grid, the
// line) into its ARGB32 bitmap, timed. MODE "line" draws as the library
// does by default; "every-segment" turns the reduced drawing off. Prints
//
//   RESULT <tool> <N> <median ms> <png ms or -1> <min ms> <max ms> <note>
//
// tab-separated; a run longer than PEERS_SKIP_MS (60 s by default) reports SKIP.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "KXBenchSupport.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace {

using namespace kx;
using kx::bench::TBenchForm;

double NowMs() {
  using namespace std::chrono;
  return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

std::vector<double> LoadY(const char* Path, long N) {
  std::vector<double> Y(static_cast<size_t>(N));
  FILE* F = std::fopen(Path, "rb");
  if (!F || std::fread(Y.data(), sizeof(double), Y.size(), F) != Y.size()) {
    std::fprintf(stderr, "cannot read %ld values from %s\n", N, Path);
    std::exit(1);
  }
  std::fclose(F);
  return Y;
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fprintf(stderr, "usage: %s N data.bin line|every-segment RUNS [out.png]\n", argv[0]);
    return 2;
  }
  const long N = std::atol(argv[1]);
  const std::string Mode = argv[3];
  const int Runs = std::max(1, std::atoi(argv[4]));
  const char* Png = argc > 5 ? argv[5] : nullptr;
  const char* SkipEnv = std::getenv("PEERS_SKIP_MS");
  const double SkipMs = SkipEnv ? std::atof(SkipEnv) : 60000.0;
  const std::string Tool = Mode == "every-segment" ? "kx-every-segment" : "kx";
  const std::vector<double> Y = LoadY(argv[2], N);

  TOwned<TBenchForm> Form(New<TBenchForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetBounds(0, 0, 1600, 900);
  Panel->ChartShadow()->SetVisible(false);
  auto* Chart = New<TKXLineChart>(Form.get());
  Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
  Chart->SetReducedDrawing(Mode != "every-segment");
  Chart->SetPanel(Panel);
  {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    for (long I = 0; I < N; ++I)
      Chart->Values()->Add(static_cast<double>(I), Y[static_cast<size_t>(I)]);
  }
  std::vector<double> Times;
  for (int R = 0; R <= Runs; ++R) { // R == 0 is the warm-up
    const double T0 = NowMs();
    Panel->Repaint();
    cairo_surface_flush(Panel->Bitmap()->Surface());
    const double T = NowMs() - T0;
    if (T > SkipMs) {
      std::printf("RESULT\t%s\t%ld\tSKIP\t-1\t%.1f\t%.1f\tone run exceeded the limit\n",
                  Tool.c_str(), N, T, T);
      return 0;
    }
    if (R > 0) Times.push_back(T);
  }
  std::sort(Times.begin(), Times.end());
  const size_t M = Times.size();
  const double Median = M % 2 ? Times[M / 2] : (Times[M / 2 - 1] + Times[M / 2]) / 2;
  double PngMs = -1;
  if (Png) {
    const double T0 = NowMs();
    Panel->Bitmap()->SaveToFile(Png);
    PngMs = NowMs() - T0;
  }
  std::printf("RESULT\t%s\t%ld\t%.3f\t%.1f\t%.3f\t%.3f\tfull paint of the panel (%s)\n",
              Tool.c_str(), N, Median, PngMs, Times.front(), Times.back(), Mode.c_str());
  return 0;
}
