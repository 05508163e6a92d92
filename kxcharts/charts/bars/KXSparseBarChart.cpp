#include "kxcharts/charts/bars/KXSparseBarChart.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXSparseBarChartValue ---

TKXSparseBarChartValue::TKXSparseBarChartValue(TCollection* Collection)
    : TKXBarChartValue(Collection) {
  if (!TKXChartValue::Collection()) Resize(2);
}

TKXSparseBarChartValues* TKXSparseBarChartValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXSparseBarChartValues::StaticClass())
             ? static_cast<TKXSparseBarChartValues*>(Values)
             : nullptr;
}

double TKXSparseBarChartValue::GetDefValue() const {
  return TKXChartValue::Collection() ? inherited::GetDefValue() : GetValue(1);
}

void TKXSparseBarChartValue::SetDefValue(double Value) {
  if (TKXChartValue::Collection())
    inherited::SetDefValue(Value);
  else
    TKXChartValue::SetValue(1, Value);
}

void TKXSparseBarChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("X", this, &TKXSparseBarChartValue::X, &TKXSparseBarChartValue::SetX, 0.0);
}

// --- TKXSparseBarChartValues ---

TKXSparseBarChartValues::TKXSparseBarChartValues(TKXCustomChart* AOwner,
                                                 TKXChartValueClass ValueClass)
    : TKXBarChartValues(AOwner, ValueClass) {
  FNumDimensions = 2;
  FTimeDimension = 0;
  FDefaultDimension = 1;
  FSortByDimension = 0;
  FSorted = true;
}

TKXCustomSparseBarChart* TKXSparseBarChartValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return Chart && Chart->InheritsFrom(TKXCustomSparseBarChart::StaticClass())
             ? static_cast<TKXCustomSparseBarChart*>(Chart)
             : nullptr;
}

int32_t TKXSparseBarChartValues::GetSortByDimension() const {
  return FSortByDimension;
}

TKXSparseBarChartValue* TKXSparseBarChartValues::Add() {
  return Add(0.0, 0.0, "");
}

TKXSparseBarChartValue* TKXSparseBarChartValues::Add(double Value, const std::string& Caption,
                                                     TColor Color) {
  return Add(MaxValue(0) + 1.0, Value, Caption, Color);
}

TKXSparseBarChartValue* TKXSparseBarChartValues::Add(double X, double Y, const std::string& Caption,
                                                     TColor Color) {
  const double Numbers[] = {X, Y};
  return static_cast<TKXSparseBarChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

void TKXSparseBarChartValues::CalculateMetaData() {
  FDiff.assign(static_cast<size_t>(std::max(FNumDimensions, 0)), 0.0);
  inherited::CalculateMetaData();
  // The smallest positive gap between neighbours; equal neighbours and numbers that are no
  // numbers never count, and a dimension without a positive gap keeps 0 (so that positions
  // that all coincide give bars of BarSizePct of one unit, like a single value, instead of
  // an infinite width).
  for (size_t D = 0; D < FDiff.size(); ++D) {
    double Least = std::numeric_limits<double>::infinity();
    for (int32_t I = 0; I + 1 < Count(); ++I) {
      const double G = std::fabs(Items(I + 1)->GetValue(int32_t(D)) - Items(I)->GetValue(int32_t(D)));
      if (G > 0.0 && G < Least) Least = G;
    }
    FDiff[D] = std::isfinite(Least) ? Least : 0.0;
  }
}

double TKXSparseBarChartValues::Diff(int32_t Dimension) const {
  // Reading a maximum brings every piece of the metadata up to date, the gaps with it.
  (void)MaxValue(0);
  return static_cast<size_t>(Dimension) < FDiff.size() ? FDiff[size_t(Dimension)] : 0.0;
}

int32_t TKXSparseBarChartValues::ShownDimension(int32_t Dimension) const {
  const TKXCustomSparseBarChart* Chart = Owner();
  if (Chart && Chart->Orientation() == boHorizontal && (Dimension == 0 || Dimension == 1))
    return (Dimension + 1) % 2;
  return Dimension;
}

double TKXSparseBarChartValues::AxisEnd(int32_t Dimension, bool Max) const {
  if (Dimension < 0 || Dimension >= FNumDimensions) return 0.0;
  const TKXCustomSparseBarChart* Chart = Owner();
  if (!Chart) return Max ? MaxValue(Dimension) : MinValue(Dimension);
  const int32_t D = ShownDimension(Dimension);
  const double End = Max ? MaxValue(D) : MinValue(D);
  if (D == 0) {
    const double Margin = Diff(0) * Chart->BarSizePct() / 100.0;
    return Max ? End + Margin : End - Margin;
  }
  // A group stacked to 100 % shares its value axis out from 0 to 100.
  if (Chart->GroupStyle() == gsStacked100) return Max ? 100.0 : 0.0;
  return Max ? std::max(End, Chart->GetAdjOrigin()) : std::min(End, Chart->GetAdjOrigin());
}

double TKXSparseBarChartValues::GetAxisMaximum(int32_t Dimension) const {
  return AxisEnd(Dimension, true);
}

double TKXSparseBarChartValues::GetAxisMinimum(int32_t Dimension) const {
  return AxisEnd(Dimension, false);
}

void TKXSparseBarChartValues::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("SortByDimension", this, &TKXSparseBarChartValues::SortByDimension,
                 &TKXSparseBarChartValues::SetSortByDimension, 0);
  Filer.Property("DateTimeAxes", this, &TKXSparseBarChartValues::DateTimeAxes,
                 &TKXSparseBarChartValues::SetDateTimeAxes);
}

// --- TKXCustomSparseBarChart ---

TOwned<TKXChartValues> TKXCustomSparseBarChart::CreateChartValues() {
  return MakeOwned<TKXSparseBarChartValues>(this, ClassOf<TKXSparseBarChartValue>());
}

void TKXCustomSparseBarChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TFinally KeepPreview([this] { FPreview = true; });
  TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
  struct TSample {
    double X, Y;
    const char* Caption;
  };
  static constexpr TSample Samples[] = {{0, 1000, "Manufacturing"}, {3, 3000, "Marketing"},
                                        {5, 500, "Research"},       {6, 750, "Sales"},
                                        {8, 4000, "Development"},   {9, 1500, "Purchases"}};
  for (const TSample& S : Samples)
    Values()->Add(S.X, S.Y, S.Caption, TColor(-1));
}

double TKXCustomSparseBarChart::GetBarCentre(const TKXBarChartValue* Value) const {
  return Value->GetValue(0);
}

double TKXCustomSparseBarChart::GetBarStep() const {
  return Values()->Diff(0);
}

float TKXCustomSparseBarChart::LabelOpacity(const TKXBarChartValue* Value) const {
  return Value->Opacity();
}

std::string TKXCustomSparseBarChart::GetAxisCaption(const TKXChartAxis* Axis, int32_t& Index,
                                                    double Value) const {
  if (Axis && Axis->Dimension() == FOrientation) return Axis->FormatValue(Value);
  const TKXSparseBarChartValues* V = Values();
  const int32_t Count = V->Count();
  if (Count == 0) return "";
  Index = std::min(Index, Count - 1);
  while (Index > 0 && V->Items(Index)->X() > Value)
    --Index;
  if (Index < 0) return "";
  return V->Items(Index)->Caption();
}

void TKXCustomSparseBarChart::DoUpdateAxisInfo(TKXChartAxis* Axis) {
  const TKXSparseBarChartValues* V = Values();
  const int32_t Count = V->Count();
  FFirstIndex = 0;
  FLastIndex = Count - 1;
  if (Axis && Axis->Zooming() && V->Sorted() && Count > 0) {
    // The values ascend in X: two binary searches find what one pass would.
    const double Lo = Axis->ZoomMinimum(), Hi = Axis->ZoomMaximum();
    int32_t First = 0, Last = Count;
    for (int32_t L = 0, R = Count; L < R;) {
      const int32_t M = L + (R - L) / 2;
      if (V->Items(M)->X() >= Lo) R = First = M; else L = M + 1, First = L;
    }
    for (int32_t L = 0, R = Count; L < R;) {
      const int32_t M = L + (R - L) / 2;
      if (V->Items(M)->X() > Hi) R = Last = M; else L = M + 1, Last = L;
    }
    // One value before the zoomed range and one past it, so that bars across its edges draw.
    if (First < Count) FFirstIndex = std::max(0, First - 1);
    if (Last < Count) FLastIndex = Last;
  }
  FVisibleCount = FLastIndex - FFirstIndex + 1;
}

// --- TKXSparseBarChart ---

void TKXSparseBarChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("BarSizePct", this, &TKXSparseBarChart::BarSizePct,
                 &TKXSparseBarChart::SetBarSizePct, 70);
  Filer.Property("BarStyle", this, &TKXSparseBarChart::BarStyle, &TKXSparseBarChart::SetBarStyle,
                 bsRectangle);
  Filer.Property("ImageList", this, &TKXSparseBarChart::ImageList,
                 &TKXSparseBarChart::SetImageList);
  Filer.Property("UseOrigin", this, &TKXSparseBarChart::UseOrigin,
                 &TKXSparseBarChart::SetUseOrigin, true);
  Filer.Property("Orientation", this, &TKXSparseBarChart::Orientation,
                 &TKXSparseBarChart::SetOrientation, boVertical);
}

} // namespace kx
