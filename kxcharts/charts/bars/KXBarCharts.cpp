#include "kxcharts/charts/bars/KXBarCharts.h"

#include <mutex>

#include "kxcharts/core/KXChartRegistry.h"

namespace kx {

void StartBarChartsModule() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    StartChartPanelModule();
    // The order is the registry's answer for a kind that several classes share: the bar,
    // EQ, sparse bar, high-low-average and candlestick charts.
    RegisterChart(ClassOf<TKXBarChart>());
    RegisterChart(ClassOf<TKXEQChart>());
    RegisterChart(ClassOf<TKXSparseBarChart>());
    RegisterChart(ClassOf<TKXHighLowAverageChart>());
    RegisterChart(ClassOf<TKXCandleStickChart>());
    RegisterClasses({ClassOf<TKXHighLowAverageChartFunction>()});
  });
}

} // namespace kx
