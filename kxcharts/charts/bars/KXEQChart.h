#pragma once
// EQ charts: each value as a level meter, in the manner of a graphic equaliser. The bar at
// the value's index is cut into Subdivisions segments between the chart's Min and Max; the
// lit segments run in colour from MinColor toward MaxColor, and each value keeps a High, a
// peak that rises with the value and stays until it is reset.
//
// A value above Max lights every segment and no more; Max equal to Min lights none (the
// meter has no height) while the high mark still shows.

#include <cstdint>
#include <string>

#include "kxcharts/charts/bars/KXBarChart.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

namespace kx {

class TKXEQChartValues;
class TKXEQChart;

// How a value is drawn.
enum TEQChartStyle : uint8_t {
  eqSegments,  // every segment from Min up to the value
  eqSolid,     // one solid bar
  eqTopSegment // only the segment in which the value lies
};
KX_ENUM_NAMES(TEQChartStyle, "eqSegments", "eqSolid", "eqTopSegment")

enum TEQOption : uint8_t {
  eoColorBands,     // segments step from MinColor toward the top colour; a solid bar is a gradient
  eoPartialSegment, // the top segment ends at the value
  eoHighMark        // a mark at each value's High
};
KX_ENUM_NAMES(TEQOption, "eoColorBands", "eoPartialSegment", "eoHighMark")
using TEQOptions = TSet<TEQOption>;

// --- TKXEQChartValue ---

// The value (dimension 0) and its peak, High (dimension 1).
class TKXEQChartValue : public TKXBarChartValue {
  KX_CLASS(TKXEQChartValue, TKXBarChartValue)

public:
  explicit TKXEQChartValue(TCollection* Collection);

  double High() const { return GetValue(1); }
  // A High below the value pulls the value down to it.
  void SetHigh(double Value) { TKXChartValue::SetValue(1, Value); }
  // High = Value.
  void ResetHigh() { TKXChartValue::SetValue(1, GetValue(0)); }
  TKXEQChartValues* Collection() const;

protected:
  // A value above High lifts High with it, without a notice of its own; a High set below
  // the value pulls the value down.
  void ValueChanged(int32_t Dimension) override;
  // High.
  void DefineProperties(TFiler& Filer) override;
};

using TKXEQChartValuesEnumerator = TCollectionEnumeratorOf<TKXEQChartValue>;

// --- TKXEQChartValues ---

class TKXEQChartValues : public TKXBarChartValues {
  KX_CLASS(TKXEQChartValues, TKXBarChartValues)

public:
  TKXEQChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  TKXEQChartValue* Items(int32_t Index) const {
    return static_cast<TKXEQChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXEQChartValue* Value) { TKXChartValues::SetItem(Index, Value); }
  TKXEQChart* Owner() const;
  int32_t HighDim() const { return 1; }
  int32_t ValueDim() const { return 0; }

  using TKXChartValues::Add;
  TKXEQChartValue* Add();
  // High = Value.
  TKXEQChartValue* Add(double Value, const std::string& Caption, TColor Color = TColor(-1));
  TKXEQChartValue* Add(double Value, double High, const std::string& Caption,
                       TColor Color = TColor(-1));
  TKXEQChartValue* Insert(int32_t Index) {
    return static_cast<TKXEQChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXEQChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXEQChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXEQChartValuesEnumerator GetEnumerator() const { return TKXEQChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
  // ResetHigh of every value, in one bracket.
  void ResetHigh();

  // With an owner the index axis runs from -0.5 to Count - 0.5 and the value axis exactly
  // from the chart's Min to its Max.
  double GetAxisMaximum(int32_t Dimension) const override;
  double GetAxisMinimum(int32_t Dimension) const override;
};

// --- TKXEQChart ---

class TKXEQChart : public TKXCustomBarChart {
  KX_CLASS(TKXEQChart, TKXCustomBarChart)

public:
  // The most segments a meter is cut into: finer ones are narrower than any pixel.
  static constexpr int32_t MaxSubdivisions = 10000;

private:
  TEQChartStyle FStyle = eqSegments;
  int32_t FSubdivisions = 20;
  int32_t FSpacing = 10;
  double FMax = 100;
  double FMin = 0;
  TColor FMaxColor = TColor(65280);
  TColor FMinColor = TColor(255);
  TEQOptions FEQOptions = TEQOptions::FromBits(5);

public:
  using TKXCustomBarChart::TKXCustomBarChart;

  // --- Properties ---
  TEQChartStyle Style() const { return FStyle; }
  void SetStyle(TEQChartStyle Value);
  // Clamped to 1..MaxSubdivisions.
  int32_t Subdivisions() const { return FSubdivisions; }
  void SetSubdivisions(int32_t Value);
  // The share of a segment's step left empty, in per cent; below 0 becomes 0.
  int32_t Spacing() const { return FSpacing; }
  void SetSpacing(int32_t Value);
  // A Max below Min pulls Min down to it; a Min above Max pushes Max up.
  double Max() const { return FMax; }
  void SetMax(double Value);
  double Min() const { return FMin; }
  void SetMin(double Value);
  TColor MaxColor() const { return FMaxColor; }
  void SetMaxColor(TColor Value);
  TColor MinColor() const { return FMinColor; }
  void SetMinColor(TColor Value);
  TEQOptions EQOptions() const { return FEQOptions; }
  void SetEQOptions(TEQOptions Value);
  TKXEQChartValues* Values() const {
    return static_cast<TKXEQChartValues*>(TKXCustomChart::Values());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctEQ; }

  // --- Operations ---
  // The lit segments of Value between Min and Max in ARect's width, each FillRect in the
  // brush; ARect holds the last segment drawn afterwards. Opacity has no effect.
  virtual void DrawEQBar(TCanvas* Canvas, TRect& ARect, const TRect& ChartRect, double Value,
                         TColor Color, float Opacity);
  // A line one pixel thick across ARect at High, in the colour of High between MinColor and
  // the brush's.
  virtual void DrawHighMark(TCanvas* Canvas, const TRect& ARect, const TRect& ChartRect,
                            double High);
  using TKXCustomBarChart::DrawBar;
  // One value: OnCustomDrawValue with ChartRect, then the bar of Style; ARect holds the last
  // segment drawn afterwards.
  void DrawBar(TCanvas* Canvas, TRect& ARect, const TRect& ChartRect, const TKXEQChartValue* Value);

  // --- Overrides ---
  using TKXCustomBarChart::GetBarRect;
  // The bar's rectangle, narrowed under eqTopSegment to the segment the value lies in.
  TRect GetBarRect(const TRect& ARect, const TKXBarChartValue* Value, const TKXCustomChart* PrevChart,
                   double BarHalfSize, double Origin, double Offset) const override;
  using TKXCustomBarChart::SetCanvasResources;
  // The chart's colour is MaxColor where a value is not in its own or the selection colour.
  void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                          bool AdjustPen) override;
  using TKXCustomBarChart::DrawGlyph;
  // A plain bar in the value's colour (MaxColor without coValueColors); a solid meter as
  // it is drawn.
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  void Assign(const TPersistent* Source) override;

protected:
  // BarSizePct 95 and the defaults above.
  void InitializeChart() override;
  TOwned<TKXChartValues> CreateChartValues() override;
  // Seven levels from 0 to 99.
  void CreatePreviewValues() override;
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void DefineProperties(TFiler& Filer) override;

private:
  // Where Value lies between Min and Max, 0 to 1 (0 or 1 when they are equal).
  double Fraction(double Value) const;
  // A property change: the axes follow Min and Max.
  void EQChanged();
};

} // namespace kx
