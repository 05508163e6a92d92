#include "kxcharts/core/KXChartListeners.h"

namespace kx {

int32_t TChartPanelListeners::Add(IChartPanelListener* Listener) {
  const int32_t Index = IndexOf(Listener);
  return Index >= 0 ? Index : inherited::Add(Listener);
}

void TChartPanelListeners::EndUpdate() {
  if (FUpdateCount <= 0) throw Exception("EndUpdate without BeginUpdate on the chart listeners");
  if (--FUpdateCount == 0) Change();
}

template <class F> void TChartPanelListeners::Tell(F&& Call) {
  if (FUpdateCount > 0) return;
  const int32_t N = Count();
  for (int32_t I = 0; I < N && I < Count(); ++I)
    Call(Items(I));
}

void TChartPanelListeners::Change() {
  Tell([](IChartPanelListener* L) { L->PanelChange(); });
}

void TChartPanelListeners::ChartAdded(TKXCustomChart* Chart) {
  Tell([Chart](IChartPanelListener* L) { L->ChartAdded(Chart); });
}

void TChartPanelListeners::ChartDeleted(TKXCustomChart* Chart) {
  Tell([Chart](IChartPanelListener* L) { L->ChartDeleted(Chart); });
}

void TChartPanelListeners::ChartChanged(TKXCustomChart* Chart) {
  Tell([Chart](IChartPanelListener* L) { L->ChartChanged(Chart); });
}

void TChartPanelListeners::ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  Tell([Chart, Value](IChartPanelListener* L) { L->ValueChanged(Chart, Value); });
}

void TChartPanelListeners::SelectionChanged(TObject* Sender) {
  Tell([Sender](IChartPanelListener* L) { L->SelectionChanged(Sender); });
}

void TChartPanelListeners::VisibleChanged(TObject* Sender) {
  Tell([Sender](IChartPanelListener* L) { L->VisibleChanged(Sender); });
}

} // namespace kx
