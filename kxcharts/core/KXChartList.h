#pragma once
// TKXChartList: the charts of a panel, or of an axis.

#include <cstdint>
#include <functional>

#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/objects/KXLists.h"

namespace kx {

class TKXCustomChartPanel;

using TChartListNotifyEvent =
    std::function<void(TObject* Sender, TKXCustomChart* Chart, TListNotification Action)>;

class TKXChartList;
using TKXChartListEnumerator = TIndexIterator<TKXChartList, TKXCustomChart*>;

// The charts of a panel (owned by the panel, which its charts join and leave through it)
// or of an axis (no owner). The list does not own the charts; a chart that is freed
// leaves it.
class TKXChartList : public TComponentList {
  KX_CLASS(TKXChartList, TComponentList)

private:
  TKXCustomChartPanel* FOwner;
  int32_t FNumVisible = 0;
  TKXCustomChart* FActiveChart = nullptr;
  TChartListNotifyEvent FOnNotify;

public:
  explicit TKXChartList(TKXCustomChartPanel* AOwner);

  // --- Properties ---
  TKXCustomChart* Items(int32_t Index) const {
    return static_cast<TKXCustomChart*>(TComponentList::Items(Index));
  }
  TKXCustomChartPanel* Owner() const { return FOwner; }
  // With a panel as owner the chart kept up to date by the list; else the first visible.
  TKXCustomChart* ActiveChart() const;
  // With an owner the count kept by the list; else a count of the visible charts.
  int32_t NumVisible() const;
  // The visible charts that show in the legend (coShowInLegend).
  int32_t NumLegendVisible() const;

  // --- Events ---
  // Raised last for every lnAdded, lnExtracted and lnDeleted.
  const TChartListNotifyEvent& OnNotify() const { return FOnNotify; }
  void SetOnNotify(TChartListNotifyEvent Value) { FOnNotify = std::move(Value); }

  // --- Operations ---
  int32_t Add(TKXCustomChart* Chart);
  // Adds Chart unless it is there; answers its index either way.
  int32_t AddOne(TKXCustomChart* Chart);
  void Insert(int32_t Index, TKXCustomChart* Chart);
  int32_t Remove(const TKXCustomChart* Chart);
  TKXCustomChart* Extract(const TKXCustomChart* Chart);
  int32_t IndexOf(const TKXCustomChart* Chart) const;
  TKXCustomChart* First() const { return Items(0); }
  TKXCustomChart* Last() const { return Items(Count() - 1); }
  // The first visible chart, or nil.
  TKXCustomChart* FindVisible() const;
  // The last visible chart of AChart's group before AChart in the list (before the end
  // when AChart is not in the list), or nil.
  TKXCustomChart* FindGroupPrevious(const TKXCustomChart* AChart) const;
  // Keeps the visible count and the active chart after Chart's visibility changed.
  virtual void VisibleChanged(TKXCustomChart* Chart);

  TKXChartListEnumerator GetEnumerator() const { return {this, 0}; }
  TKXChartListEnumerator begin() const { return {this, 0}; }
  TKXChartListEnumerator end() const { return {this, 0}; }

protected:
  // With a panel as owner, a chart that comes in joins the panel and one that goes leaves
  // it; the visible count and the active chart follow.
  void Notify(void* Ptr, TListNotification Action) override;

private:
  void Recount(TKXCustomChart* Chart, int32_t Sign);
};

} // namespace kx
