#include "kxcharts/charts/bars/KXBarCharts.h"

#include <mutex>

#include "kxcharts/core/KXChartRegistry.h"

namespace kx {

void StartBarChartsModule() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    StartChartPanelModule();
    // The order is the registry's answer for a kind that several classes share. The other
    // kinds of the family follow the bar chart, in this order, as they are built: the EQ,
    // sparse bar, high-low-average and candlestick charts.
    RegisterChart(ClassOf<TKXBarChart>());
  });
}

} // namespace kx
