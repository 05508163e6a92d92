#pragma once
// The legends in one include: the panel's legend and the stand-alone legend controls.

#include "kxcharts/legends/KXChartLegend.h"
#include "kxcharts/legends/KXLegendControls.h"
