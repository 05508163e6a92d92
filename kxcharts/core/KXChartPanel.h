#pragma once
// The chart core in one include: values, listeners, graphic elements, layers, the chart
// base, the list of charts, the chart registry, the layout rules and the chart panel.

#include "kxcharts/core/KXChartGraphic.h"
#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/core/KXChartLabel.h"
#include "kxcharts/core/KXChartLayer.h"
#include "kxcharts/core/KXChartLayout.h"
#include "kxcharts/core/KXChartList.h"
#include "kxcharts/core/KXChartListeners.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/core/KXChartValues.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/core/KXCustomChartPanel.h"
