#pragma once
// Ring charts on the pie: TKXDonutChart (a pie with a hole) and TKXDonutChartEx, whose
// values (TKXDonutChartExValue, its collection and enumerator) each state their own start
// angle, sweep and radii, so that slices may leave gaps, overlap and stand in several rings.
// Both draw, label, explode and select through the pie's code; only where angles and radii
// come from differs.

#include <cstdint>
#include <string>

#include "kxcharts/charts/KXCharts.h"

namespace kx {

class TKXDonutChartExValues;
class TKXDonutChartEx;

// --- TKXDonutChart ---

// The pie with a hole of 0.6 of its radius; it stores InnerRadius.
class TKXDonutChart : public TKXPieChart {
  KX_CLASS(TKXDonutChart, TKXPieChart)

public:
  using TKXPieChart::TKXPieChart;

  static TKXChartType GetChartType() { return ctDonut; }

protected:
  // The pie's, then InnerRadius 0.6.
  void InitializeChart() override;
  // InnerRadius.
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXDonutChartExValue ---

// Dimension 0 is the start angle (the default number), 1 the sweep, 2 and 3 the inner and
// outer radius as fractions of the chart's OuterRadius, starting at 0.8 and 1.0.
class TKXDonutChartExValue : public TKXPieChartValue {
  KX_CLASS(TKXDonutChartExValue, TKXPieChartValue)

public:
  static constexpr double StartInnerRadius = 0.8;
  static constexpr double StartOuterRadius = 1.0;

  // Four numbers also outside a collection of values; the radii at their starting values.
  explicit TKXDonutChartExValue(TCollection* Collection);

  // --- Properties ---
  double StartAngle() const { return GetValue(0); }
  void SetStartAngle(double Value) { TKXChartValue::SetValue(0, Value); }
  // Clamped to 0..360 (NaN becomes 0).
  double SweepAngle() const { return GetValue(1); }
  void SetSweepAngle(double Value);
  // Clamped to 0..OuterRadius (NaN changes nothing).
  double InnerRadius() const { return GetValue(2); }
  void SetInnerRadius(double Value);
  // Clamped to InnerRadius..1 (NaN changes nothing).
  double OuterRadius() const { return GetValue(3); }
  void SetOuterRadius(double Value);
  // The collection, when it is a TKXDonutChartExValues; else nil.
  TKXDonutChartExValues* Collection() const;

  // --- Overrides ---
  // StartAngle to StartAngle + SweepAngle; no other value takes part.
  void GetDegrees(double& StartDegrees, double& EndDegrees) const override;

protected:
  // StartAngle, SweepAngle, InnerRadius (left out at 0.8), OuterRadius (left out at 1.0),
  // read back as stored, without the clamps.
  void DefineProperties(TFiler& Filer) override;
};

using TKXDonutChartExValuesEnumerator = TCollectionEnumeratorOf<TKXDonutChartExValue>;

// --- TKXDonutChartExValues ---

class TKXDonutChartExValues : public TKXPieChartValues {
  KX_CLASS(TKXDonutChartExValues, TKXPieChartValues)

public:
  // Four dimensions; the start angle is the default one.
  TKXDonutChartExValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXDonutChartExValue* Items(int32_t Index) const {
    return static_cast<TKXDonutChartExValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXDonutChartExValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  // The free-form donut that owns the collection, or nil.
  TKXDonutChartEx* Owner() const;

  // --- Operations ---
  using TKXChartValues::Add;
  // A value whose start angle is Count, of no sweep, the radii at their starting values.
  TKXDonutChartExValue* Add() { return static_cast<TKXDonutChartExValue*>(TKXChartValues::Add()); }
  // A slice of SweepAngle chained behind the last one in its ring; one that would pass the
  // next full turn starts at 0 in a ring 0.2 further in (radii not below 0).
  TKXDonutChartExValue* Add(double SweepAngle, const std::string& Caption = "",
                            TColor Color = TColor(-1));
  // All four numbers as given, without the clamps of the setters.
  TKXDonutChartExValue* Add(double StartAngle, double SweepAngle, double InnerRadius,
                            double OuterRadius, const std::string& Caption = "",
                            TColor Color = TColor(-1));
  TKXDonutChartExValue* Insert(int32_t Index) {
    return static_cast<TKXDonutChartExValue*>(TKXChartValues::Insert(Index));
  }
  TKXDonutChartExValue* FindItemID(int32_t ID) const {
    return static_cast<TKXDonutChartExValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXDonutChartExValuesEnumerator GetEnumerator() const {
    return TKXDonutChartExValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
};

// --- TKXDonutChartEx ---

class TKXDonutChartEx : public TKXDonutChart {
  KX_CLASS(TKXDonutChartEx, TKXDonutChart)

public:
  using TKXDonutChart::TKXDonutChart;

  TKXDonutChartExValues* Values() const {
    return static_cast<TKXDonutChartExValues*>(TKXCustomChart::Values());
  }
  void SetValues(const TKXDonutChartExValues* Value) { TKXCustomChart::SetValues(Value); }

  static TKXChartType GetChartType() { return ctDonutEx; }

  // --- Overrides ---
  // The value's own radii times the chart's OuterRadius (an inner one above the outer one
  // passes on as it is).
  void GetRadius(const TKXPieChartValue* Value, float& Inner, float& Outer) const override;
  // Each value from its StartAngle over its SweepAngle; no share of a sum is taken, so the
  // absolute sum plays no part.
  void DrawSlices(TCanvas* Canvas, const TRect& Rect, TPieSliceOptions Flags) override;

protected:
  // TKXDonutChartExValues of TKXDonutChartExValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Seven slices in three rings; nothing while loading.
  void CreatePreviewValues() override;
};

} // namespace kx
