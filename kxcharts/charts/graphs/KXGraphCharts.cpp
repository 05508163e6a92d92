#include "kxcharts/charts/graphs/KXGraphCharts.h"

#include <mutex>

#include "kxcharts/core/KXChartRegistry.h"

namespace kx {

void StartGraphChartsModule() {
  static std::once_flag Once;
  std::call_once(Once, [] { RegisterChart(ClassOf<TKXGraphChart>()); });
}

} // namespace kx
