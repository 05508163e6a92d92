#include "kxcharts/charts/donuts/KXDonutChart.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

// --- TKXDonutChart ---

void TKXDonutChart::InitializeChart() {
  inherited::InitializeChart();
  SetInnerRadius(0.6f);
}

void TKXDonutChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("InnerRadius", this, &TKXDonutChart::InnerRadius, &TKXDonutChart::SetInnerRadius,
                 0.6f);
}

// --- TKXDonutChartExValue ---

TKXDonutChartExValue::TKXDonutChartExValue(TCollection* Collection)
    : TKXPieChartValue(Collection) {
  if (ValueCount() < 4) Resize(4);
  // Not in its collection yet: nobody hears of these.
  TKXChartValue::SetValue(2, StartInnerRadius);
  TKXChartValue::SetValue(3, StartOuterRadius);
}

TKXDonutChartExValues* TKXDonutChartExValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXDonutChartExValues::StaticClass())
             ? static_cast<TKXDonutChartExValues*>(Values)
             : nullptr;
}

void TKXDonutChartExValue::SetSweepAngle(double Value) {
  TKXChartValue::SetValue(1, std::isnan(Value) ? 0.0 : std::clamp(Value, 0.0, 360.0));
}

void TKXDonutChartExValue::SetInnerRadius(double Value) {
  if (std::isnan(Value)) return;
  TKXChartValue::SetValue(2, std::max(std::min(Value, OuterRadius()), 0.0));
}

void TKXDonutChartExValue::SetOuterRadius(double Value) {
  if (std::isnan(Value)) return;
  TKXChartValue::SetValue(3, std::min(std::max(Value, InnerRadius()), 1.0));
}

void TKXDonutChartExValue::GetDegrees(double& StartDegrees, double& EndDegrees) const {
  StartDegrees = StartAngle();
  EndDegrees = StartDegrees + SweepAngle();
}

void TKXDonutChartExValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  // Read back as written: a value added with its inner radius above the outer one keeps it.
  const auto Raw = [](int32_t Dimension) {
    return [Dimension](TKXDonutChartExValue* V, double N) { V->TKXChartValue::SetValue(Dimension, N); };
  };
  Filer.Property("StartAngle", this, &TKXDonutChartExValue::StartAngle, Raw(0), 0.0);
  Filer.Property("SweepAngle", this, &TKXDonutChartExValue::SweepAngle, Raw(1), 0.0);
  Filer.Property("InnerRadius", this, &TKXDonutChartExValue::InnerRadius, Raw(2),
                 StartInnerRadius);
  Filer.Property("OuterRadius", this, &TKXDonutChartExValue::OuterRadius, Raw(3),
                 StartOuterRadius);
}

// --- TKXDonutChartExValues ---

TKXDonutChartExValues::TKXDonutChartExValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKXPieChartValues(AOwner, ValueClass) {
  FNumDimensions = 4;
}

TKXDonutChartEx* TKXDonutChartExValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return Chart && Chart->InheritsFrom(TKXDonutChartEx::StaticClass())
             ? static_cast<TKXDonutChartEx*>(Chart)
             : nullptr;
}

TKXDonutChartExValue* TKXDonutChartExValues::Add(double SweepAngle, const std::string& Caption,
                                                 TColor Color) {
  double Start = 0.0;
  double Inner = TKXDonutChartExValue::StartInnerRadius;
  double Outer = TKXDonutChartExValue::StartOuterRadius;
  if (Count() > 0) {
    const TKXDonutChartExValue* L = Items(Count() - 1);
    const double End = L->StartAngle() + L->SweepAngle();
    // The next full turn above End.
    const double Limit = 360.0 * std::trunc(End / 360.0 + 1.0);
    if (End + SweepAngle <= Limit) {
      Start = End;
      Inner = L->InnerRadius();
      Outer = L->OuterRadius();
    } else {
      Inner = std::max(0.0, L->InnerRadius() - 0.2);
      Outer = std::max(0.0, L->OuterRadius() - 0.2);
    }
  }
  return Add(Start, SweepAngle, Inner, Outer, Caption, Color);
}

TKXDonutChartExValue* TKXDonutChartExValues::Add(double StartAngle, double SweepAngle,
                                                 double InnerRadius, double OuterRadius,
                                                 const std::string& Caption, TColor Color) {
  return static_cast<TKXDonutChartExValue*>(
      TKXChartValues::Add({StartAngle, SweepAngle, InnerRadius, OuterRadius}, Caption, Color));
}

// --- TKXDonutChartEx ---

TOwned<TKXChartValues> TKXDonutChartEx::CreateChartValues() {
  return MakeOwned<TKXDonutChartExValues>(this, ClassOf<TKXDonutChartExValue>());
}

void TKXDonutChartEx::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TFinally KeepPreview([this] { FPreview = true; });
  TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
  TKXDonutChartExValues* V = Values();
  const double In = TKXDonutChartExValue::StartInnerRadius;
  const double Out = TKXDonutChartExValue::StartOuterRadius;
  V->Add(0, 100, In, Out, "Lorem", TColor(-1));
  V->Add(100, 30, 0.6, 0.8, "ipsum", TColor(-1));
  V->Add(150, 70, 0, 0.6, "dolor", TColor(-1));
  V->Add(200, 30, 0.6, 0.8, "sit", TColor(-1));
  V->Add(290, 60, 0.1, 0.9, "consectetur", TColor(-1));
  V->Add(230, 80, 0.2, 0.4, "amet", TColor(-1));
  V->Add(10, 80, 0.4, 0.6, "adipiscing", TColor(-1));
}

void TKXDonutChartEx::GetRadius(const TKXPieChartValue* Value, float& Inner, float& Outer) const {
  if (!Value || !Value->InheritsFrom(TKXDonutChartExValue::StaticClass())) {
    inherited::GetRadius(Value, Inner, Outer);
    return;
  }
  const auto* V = static_cast<const TKXDonutChartExValue*>(Value);
  // A radius that is no number (stored so by the four-number Add) is no ring at all.
  const auto Fraction = [](double R) { return std::isfinite(R) ? std::clamp(R, -1e6, 1e6) : 0.0; };
  Inner = float(Fraction(V->InnerRadius()) * FOuterRadius);
  Outer = float(Fraction(V->OuterRadius()) * FOuterRadius);
}

void TKXDonutChartEx::DrawSlices(TCanvas* Canvas, const TRect& Rect, TPieSliceOptions Flags) {
  const TColor Saved = Canvas->Brush()->Color();
  for (const TKXDonutChartExValue* Value : *Values()) {
    double Start, End;
    Value->GetDegrees(Start, End);
    if (!std::isfinite(Start) || !std::isfinite(End)) continue;
    DrawSlice(Canvas, Rect, Value, Start, End, Flags, Saved);
  }
}

} // namespace kx
