#pragma once
// The bar family: everything of the bars folder (the high-low-average function with it), and
// the start-up of its module.

#include "kxcharts/charts/bars/KXBarChart.h"
#include "kxcharts/charts/bars/KXCandleStickChart.h"
#include "kxcharts/charts/bars/KXEQChart.h"
#include "kxcharts/charts/bars/KXHighLowAverageChart.h"
#include "kxcharts/charts/bars/KXHighLowAverageFunction.h"
#include "kxcharts/charts/bars/KXSparseBarChart.h"

namespace kx {

// Registers the chart classes of this module, in their fixed order, once. StartChartModules
// runs it; call that rather than this.
void StartBarChartsModule();

} // namespace kx
