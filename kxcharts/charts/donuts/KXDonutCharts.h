#pragma once
// The donuts: everything of the donuts folder, and the start-up of its module.

#include "kxcharts/charts/donuts/KXDonutChart.h"

namespace kx {

// Registers the chart classes of this module, in their fixed order, once. StartChartModules
// runs it; call that rather than this.
void StartDonutChartsModule();

} // namespace kx
