#include "kxcharts/charts/donuts/KXDonutCharts.h"

#include <mutex>

namespace kx {

void StartDonutChartsModule() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    StartChartPanelModule();
    // The order is the registry's answer for a kind that several classes share.
    RegisterChart(ClassOf<TKXDonutChart>());
    RegisterChart(ClassOf<TKXDonutChartEx>());
  });
}

} // namespace kx
