#pragma once
// What the axis tests share: the odd numbers they feed in, and an axis on a fixed range.

#include "kxcharts/axes/KXChartAxis.h"
#include "support/KXTestSupport.h"

namespace kx::test {

// An axis without owner at Location over Min..Max (both ends fixed); TAxis may be a test
// class that opens protected operations.
template <class TAxis = TKXChartAxis>
TOwned<TAxis> MakeAxis(TKXChartAxisLocation Location, double Min, double Max) {
  TOwned<TAxis> A(New<TAxis>(nullptr));
  A->SetLocation(Location);
  A->SetMaximum(Max);
  A->SetMinimum(Min);
  return A;
}

} // namespace kx::test
