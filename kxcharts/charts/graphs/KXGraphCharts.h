#pragma once
// Node-link graph charts: the graph model (nodes with levels, links between them) and the
// chart that lays the nodes out by level and draws the links as arrows, and the start-up of
// their module.

#include "kxcharts/charts/graphs/KXGraphChart.h"
#include "kxcharts/charts/graphs/KXGraphChartValues.h"

namespace kx {

// Registers the chart classes of this module, once. StartChartModules runs it; call that
// rather than this.
void StartGraphChartsModule();

} // namespace kx
