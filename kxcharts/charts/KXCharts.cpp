#include "kxcharts/charts/KXCharts.h"

#include <mutex>

#include "kxcharts/charts/KXChartInChart.h"
#include "kxcharts/charts/KXPathCharts.h"
#include "kxcharts/core/KXChartRegistry.h"

namespace kx {

void StartChartsModule() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    StartChartPanelModule();
    // The order is the registry's answer for a kind that several classes share.
    RegisterChart(ClassOf<TKXChart>());
    RegisterChart(ClassOf<TKXPieChart>());
    RegisterChart(ClassOf<TKXPointChart>());
    RegisterChart(ClassOf<TKXLineChart>());
    RegisterChart(ClassOf<TKXAreaChart>());
    RegisterChart(ClassOf<TKXShapeChart>());
    RegisterChart(ClassOf<TKXGuideChart>());
    RegisterChart(ClassOf<TKXArrowChart>());
    RegisterChart(ClassOf<TKXPathChart>());
    RegisterChart(ClassOf<TKXChartInChart>());
    RegisterChart(ClassOf<TKXScatterChart>());
  });
}

} // namespace kx
