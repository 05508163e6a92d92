#pragma once
// The chart kinds that place values by coordinates and the pie: everything of the charts
// folder, and the start-up of its module.

#include "kxcharts/charts/KXArrowCharts.h"
#include "kxcharts/charts/KXChartInChart.h"
#include "kxcharts/charts/KXChartPointInfo.h"
#include "kxcharts/charts/KXGuideCharts.h"
#include "kxcharts/charts/KXLineCharts.h"
#include "kxcharts/charts/KXPathCharts.h"
#include "kxcharts/charts/KXPointCharts.h"
#include "kxcharts/charts/KXShapeCharts.h"
#include "kxcharts/charts/KXPieChart.h"
#include "kxcharts/charts/KXXYChartValues.h"

namespace kx {

// Registers the chart classes of this module, in their fixed order, once. StartChartModules
// runs it; call that rather than this.
void StartChartsModule();

} // namespace kx
