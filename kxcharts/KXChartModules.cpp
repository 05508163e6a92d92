// The one place that knows every module of the library: it starts them in their fixed
// order, so that each registers its chart classes before the registry is first read.

#include "kxcharts/KXChartModules.h"

#include <mutex>

#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/charts/bubbles/KXBubbleCharts.h"
#include "kxcharts/charts/donuts/KXDonutCharts.h"
#include "kxcharts/charts/graphs/KXGraphCharts.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/functions/KXChartFunction.h"

namespace kx {

void StartChartModules() {
  // A module's start-up registers; it never reads the registry, which would wait here.
  static std::once_flag Once;
  std::call_once(Once, [] {
    StartChartPanelModule();
    StartChartsModule();
    StartBarChartsModule();
    StartChartFunctionModule();
    StartBubbleChartsModule();
    StartDonutChartsModule();
    StartGraphChartsModule();
  });
}

} // namespace kx
