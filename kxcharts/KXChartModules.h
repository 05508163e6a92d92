#pragma once
// The start-up of the whole library: the umbrella target alone knows every chart module.

namespace kx {

// Starts every chart module of the library once, in the fixed order, so that each
// registers its chart classes with the chart registry and the form reader. Call it once
// before reading a form that holds charts or asking GetChartClass; safe from any thread.
void StartChartModules();

} // namespace kx
