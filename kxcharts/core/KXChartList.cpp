#include "kxcharts/core/KXChartList.h"

namespace kx {

TKXChartList::TKXChartList(TKXCustomChartPanel* AOwner) : TComponentList(false), FOwner(AOwner) {}

int32_t TKXChartList::Add(TKXCustomChart* Chart) {
  return TComponentList::Add(Chart);
}

int32_t TKXChartList::AddOne(TKXCustomChart* Chart) {
  const int32_t Index = IndexOf(Chart);
  return Index >= 0 ? Index : Add(Chart);
}

void TKXChartList::Insert(int32_t Index, TKXCustomChart* Chart) {
  TComponentList::Insert(Index, Chart);
}

int32_t TKXChartList::Remove(const TKXCustomChart* Chart) {
  return TComponentList::Remove(Chart);
}

TKXCustomChart* TKXChartList::Extract(const TKXCustomChart* Chart) {
  return static_cast<TKXCustomChart*>(TComponentList::Extract(Chart));
}

int32_t TKXChartList::IndexOf(const TKXCustomChart* Chart) const {
  return TComponentList::IndexOf(Chart);
}

TKXCustomChart* TKXChartList::FindVisible() const {
  for (int32_t I = 0; I < Count(); ++I)
    if (Items(I)->Visible()) return Items(I);
  return nullptr;
}

TKXCustomChart* TKXChartList::FindGroupPrevious(const TKXCustomChart* AChart) const {
  TKXCustomChart* Found = nullptr;
  for (int32_t I = 0; I < Count(); ++I) {
    TKXCustomChart* C = Items(I);
    if (C == AChart) return Found;
    if (C->Visible() && C->Group() == AChart->Group()) Found = C;
  }
  return Found;
}

TKXCustomChart* TKXChartList::ActiveChart() const {
  return FOwner ? FActiveChart : FindVisible();
}

int32_t TKXChartList::NumVisible() const {
  if (FOwner) return FNumVisible;
  int32_t N = 0;
  for (int32_t I = 0; I < Count(); ++I)
    if (Items(I)->Visible()) ++N;
  return N;
}

int32_t TKXChartList::NumLegendVisible() const {
  int32_t N = 0;
  for (int32_t I = 0; I < Count(); ++I) {
    const TKXCustomChart* C = Items(I);
    if (C->Visible() && C->Options().Contains(coShowInLegend)) ++N;
  }
  return N;
}

void TKXChartList::Recount(TKXCustomChart* Chart, int32_t Sign) {
  if (Chart->Visible()) FNumVisible += Sign;
  FActiveChart = FindVisible();
}

void TKXChartList::Notify(void* Ptr, TListNotification Action) {
  if (!Ptr) return;
  inherited::Notify(Ptr, Action);
  auto* Chart = static_cast<TKXCustomChart*>(static_cast<TComponent*>(Ptr));
  if (FOwner) {
    if (Action == lnAdded) {
      Chart->SetPanel(FOwner);
      Recount(Chart, +1);
    } else if (Action == lnDeleted) {
      Chart->SetPanel(nullptr);
      Recount(Chart, -1);
    } else {
      // A chart that is freed while in the list leaves it this way; the counts follow.
      Recount(Chart, -1);
    }
  }
  if (FOnNotify) FOnNotify(this, Chart, Action);
}

void TKXChartList::VisibleChanged(TKXCustomChart* Chart) {
  FNumVisible += Chart->Visible() ? 1 : -1;
  FActiveChart = FindVisible();
}

} // namespace kx
