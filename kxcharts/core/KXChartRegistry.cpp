#include "kxcharts/core/KXChartRegistry.h"

#include <mutex>

#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/legends/KXLegendControls.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/objects/KXLists.h"

namespace kx {

int32_t ColorListIndex = 0;

namespace {

TThreadList<TKXCustomChartClass>& ChartRegistry() {
  static TThreadList<TKXCustomChartClass> List;
  return List;
}

} // namespace

TColor NextPaletteColor(const TColorList& List) {
  if (ColorListIndex >= 10 || ColorListIndex < 0) ColorListIndex = 0;
  return List[static_cast<size_t>(ColorListIndex++)];
}

void RegisterChart(TKXCustomChartClass ChartClass) {
  if (!ChartClass) return;
  ChartRegistry().Add(ChartClass);
  RegisterClass(ChartClass);
}

TKXCustomChartClass GetChartClass(TKXChartType ChartType) {
  auto List = ChartRegistry().LockList();
  for (TKXCustomChartClass C : *List)
    if (C->GetChartType() == ChartType) return C;
  return nullptr;
}

TKXChartType GetChartType(const TKXCustomChart* Chart) {
  return Chart ? Chart->ChartClass()->GetChartType() : ctCustom;
}

void StartChartPanelModule() {
  static std::once_flag Once;
  std::call_once(Once, [] {
    RegisterChart(ClassOf<TKXChart>());
    RegisterClasses({ClassOf<TKXChartPanel>(), ClassOf<TKXChartLegendBox>(),
                     ClassOf<TKXLegendListBox>()});
  });
}

TColor GetChartColor() {
  return NextPaletteColor(DefaultColorList);
}

TColor GetChartColor(const TKXCustomChart* Chart) {
  return Chart ? Chart->GetColor() : GetChartColor();
}

} // namespace kx
