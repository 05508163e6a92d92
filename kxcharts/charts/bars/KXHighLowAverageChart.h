#pragma once
// High-low-average charts: for every position X the span from a value's Low to its High,
// with a mark at its Average, on the sparse bars' positions, smallest gap, drawing loop and
// range in view. TKXHighLowAverageChart is also the base of the candlestick chart.
//
// The chart has no baseline: it neither stacks nor starts at an origin, whatever its group
// style says (a percent group draws and ranges as an ungrouped chart).

#include <cstdint>
#include <string>

#include "kxcharts/charts/bars/KXSparseBarChart.h"

namespace kx {

class TKXHighLowAverageChartValues;
class TKXHighLowAverageChart;

// How a value of a high-low-average chart is drawn.
enum THighLowAverageStyle : uint8_t {
  hlaBar,       // a bar from High to Low through DrawBar, the average mark outside of it
  hlaLine,      // one line from High to Low in the middle of the bar's width
  hlaCappedLine // the line, closed by a cross line of the bar's width at each end
};
KX_ENUM_NAMES(THighLowAverageStyle, "hlaBar", "hlaLine", "hlaCappedLine")

// --- TKXHighLowAverageChartValue ---

// X, Average (the value's number), High and Low in dimensions 0 to 3. The setters of the
// last three keep Low <= Average <= High by dragging the others along.
class TKXHighLowAverageChartValue : public TKXSparseBarChartValue {
  KX_CLASS(TKXHighLowAverageChartValue, TKXSparseBarChartValue)

public:
  // Four numbers also outside a collection of values.
  explicit TKXHighLowAverageChartValue(TCollection* Collection);

  // --- Properties ---
  double Average() const { return GetValue(1); }
  void SetAverage(double Value);
  double High() const { return GetValue(2); }
  void SetHigh(double Value);
  double Low() const { return GetValue(3); }
  void SetLow(double Value);
  TKXHighLowAverageChartValues* Collection() const;

protected:
  // X, Average, High, Low.
  void DefineProperties(TFiler& Filer) override;
  // Stores V in Dimension, first moving the numbers of the dimensions in Above down to V
  // where they lie above it and those in Below up to V where they lie below it: one
  // notice, for Dimension.
  void SetOrdered(int32_t Dimension, double V, std::initializer_list<int32_t> Above,
                  std::initializer_list<int32_t> Below);
};

using TKXHighLowAverageChartValuesEnumerator = TCollectionEnumeratorOf<TKXHighLowAverageChartValue>;

// --- TKXHighLowAverageChartValues ---

class TKXHighLowAverageChartValues : public TKXSparseBarChartValues {
  KX_CLASS(TKXHighLowAverageChartValues, TKXSparseBarChartValues)

public:
  TKXHighLowAverageChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXHighLowAverageChartValue* Items(int32_t Index) const {
    return static_cast<TKXHighLowAverageChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXHighLowAverageChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  TKXHighLowAverageChart* Owner() const;

  // --- Operations ---
  using TKXChartValues::Add;
  TKXHighLowAverageChartValue* Add();
  // One past the greatest X; Average, High and Low all Average.
  TKXHighLowAverageChartValue* Add(double Average, const std::string& Caption,
                                   TColor Color = TColor(-1));
  // The average halfway between High and Low.
  TKXHighLowAverageChartValue* Add(double X, double High, double Low, const std::string& Caption = "",
                                   TColor Color = TColor(-1));
  // An Average above High raises High; a Low above Average falls to it.
  TKXHighLowAverageChartValue* Add(double X, double Average, double High, double Low,
                                   const std::string& Caption = "", TColor Color = TColor(-1));
  TKXHighLowAverageChartValue* Insert(int32_t Index) {
    return static_cast<TKXHighLowAverageChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXHighLowAverageChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXHighLowAverageChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXHighLowAverageChartValuesEnumerator GetEnumerator() const {
    return TKXHighLowAverageChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

  // The positions with a whole bar of the smallest gap either side, and the smallest Low to
  // the greatest High; no origin.
  double GetAxisMaximum(int32_t Dimension) const override;
  double GetAxisMinimum(int32_t Dimension) const override;

protected:
  // The extent of dimension 1 is High over Low.
  double GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const override;
  double GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const override;
  void SetMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension) override;
};

// --- TKXHighLowAverageChart ---

class TKXHighLowAverageChart : public TKXCustomSparseBarChart {
  KX_CLASS(TKXHighLowAverageChart, TKXCustomSparseBarChart)

protected:
  // A THighLowAverageStyle here; the candlestick chart keeps its own style in it.
  uint8_t FStyle = hlaBar;
  int32_t FAverageLinePct = 30;

public:
  using TKXCustomSparseBarChart::TKXCustomSparseBarChart;

  // --- Properties ---
  THighLowAverageStyle Style() const { return static_cast<THighLowAverageStyle>(FStyle); }
  void SetStyle(THighLowAverageStyle Value);
  // The length of the average mark in per cent of a full step; stored as it comes (no
  // clamp, no repaint: it shows at the next one). The mark is 2 pixels at least.
  int32_t AverageLinePct() const { return FAverageLinePct; }
  void SetAverageLinePct(int32_t Value);
  TKXHighLowAverageChartValues* Values() const {
    return static_cast<TKXHighLowAverageChartValues*>(TKXCustomChart::Values());
  }
  void SetValues(const TKXHighLowAverageChartValues* Value) { TKXCustomChart::SetValues(Value); }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctHighLowAverage; }

  // --- Operations ---
  // The mark at the value's Average across ARect (the span High to Low): stubs outside the
  // bar under hlaBar, a line across the bar under the line styles.
  virtual void DrawAverageLine(TCanvas* Canvas, const TRect& ARect,
                               const TKXHighLowAverageChartValue* Value, THighLowAverageStyle Style,
                               bool Shadow);
  // One value in ARect (High to Low) in the chart's style; Shadow on the shadow pass.
  virtual void DrawHLABar(TCanvas* Canvas, const TRect& ARect,
                          const TKXHighLowAverageChartValue* Value, bool Shadow);

  // --- Overrides ---
  using TKXCustomBarChart::GetBarRect;
  // (X - BarHalfSize, High, X + BarHalfSize, Low) in normal form; no stack, origin or offset.
  TRect GetBarRect(const TRect& ARect, const TKXBarChartValue* Value, const TKXCustomChart* PrevChart,
                   double BarHalfSize, double Origin, double Offset) const override;
  // Never: no axis of this chart shows captions.
  bool WantsCaptions(const TKXChartAxis* Axis) const override;
  using TKXCustomSparseBarChart::DrawGlyph;
  // The value drawn by DrawHLABar in ARect.
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // From another high-low-average chart: AverageLinePct and Style, then the bar chart's copy.
  void Assign(const TPersistent* Source) override;

protected:
  TOwned<TKXChartValues> CreateChartValues() override;
  // Two weeks of weekdays from 2014-10-01 on a sine, as dates.
  void CreatePreviewValues() override;
  // DrawHLABar.
  void DrawBarValue(TCanvas* Canvas, const TRect& R, const TKXBarChartValue* Value,
                    bool Shadow) override;
  // Never: marks and lines reach beyond the rectangle and show for a flat one.
  bool PaintsInsideRect(const TKXBarChartValue* Value) const override;
  // Style, AverageLinePct, BarSizePct, ImageList, Orientation.
  void DefineProperties(TFiler& Filer) override;
  // Where Average lies along ARect (High at its top, or its right side for lying bars).
  int32_t PlaceOf(const TRect& R, const TKXHighLowAverageChartValue* Value, double Number) const;
};

} // namespace kx
