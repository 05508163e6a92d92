#pragma once
// The legends in one include.

#include "kxcharts/legends/KXChartLegend.h"
