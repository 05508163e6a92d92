#pragma once
// Candlestick charts: for every position X the span from Low to High with a body from Open
// to Close inside it. A value whose Close lies above its Open is up, any other (a flat one
// too) down; the two kinds take brush, pen and bar style from two graphics, UpShape and
// DownShape. Positions, span rectangle, ranges, the drawing loop, labels and the hit test
// are the high-low-average chart's.
//
// A down value's body goes to DrawBar (and OnCustomDrawValue) with its ends swapped, so
// that an arrow body points toward Close; the shapes themselves draw it in normal form.

#include <cstdint>
#include <string>

#include "kxcharts/charts/bars/KXHighLowAverageChart.h"
#include "kxcharts/core/KXChartGraphicArea.h"

namespace kx {

class TKXCandleStickChartValues;
class TKXCandleStickChart;

// What a candle shows.
enum TCandleStickStyle : uint8_t {
  csBody,                // the body alone
  csCandle,              // the body and the two wicks
  csCappedCandle,        // the body, the wicks and a cross line at High and at Low
  csTicks,               // a line from High to Low with a tick at each end of the body
  csBodyAverage,         // each of the four with the average mark first
  csCandleAverage,
  csCappedCandleAverage,
  csTicksAverage
};
KX_ENUM_NAMES(TCandleStickStyle, "csBody", "csCandle", "csCappedCandle", "csTicks",
              "csBodyAverage", "csCandleAverage", "csCappedCandleAverage", "csTicksAverage")

// --- TKXCandleStickChartValue ---

// The high-low-average numbers with Close (dimension 4) and Open (dimension 5).
class TKXCandleStickChartValue : public TKXHighLowAverageChartValue {
  KX_CLASS(TKXCandleStickChartValue, TKXHighLowAverageChartValue)

public:
  explicit TKXCandleStickChartValue(TCollection* Collection);

  // --- Properties ---
  double Close() const { return GetValue(4); }
  // High rises to it, Low falls to it where they must.
  void SetClose(double Value);
  double Open() const { return GetValue(5); }
  void SetOpen(double Value);
  // Close above Open.
  bool IsUp() const { return Close() > Open(); }
  TKXCandleStickChartValues* Collection() const;

protected:
  // Close, Open.
  void DefineProperties(TFiler& Filer) override;
};

using TKXCandleStickChartValuesEnumerator = TCollectionEnumeratorOf<TKXCandleStickChartValue>;

// --- TKXCandleStickChartValues ---

class TKXCandleStickChartValues : public TKXHighLowAverageChartValues {
  KX_CLASS(TKXCandleStickChartValues, TKXHighLowAverageChartValues)

public:
  TKXCandleStickChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXCandleStickChartValue* Items(int32_t Index) const {
    return static_cast<TKXCandleStickChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXCandleStickChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  TKXCandleStickChart* Owner() const;

  // --- Operations ---
  using TKXChartValues::Add;
  TKXCandleStickChartValue* Add();
  // One past the greatest X; Close, High, Low and Average the number, Open the last
  // value's Close (the number in an empty collection).
  TKXCandleStickChartValue* Add(double Close, const std::string& Caption, TColor Color = TColor(-1));
  // Open the last value's Close (Close in an empty collection); Average halfway.
  TKXCandleStickChartValue* Add(double X, double Close, double High, double Low,
                                const std::string& Caption = "", TColor Color = TColor(-1));
  // Average halfway between High and Low.
  TKXCandleStickChartValue* Add(double X, double Open, double Close, double High, double Low,
                                const std::string& Caption = "", TColor Color = TColor(-1));
  // High rises to the greater of Open and Close, Low falls to the smaller; Average as given.
  TKXCandleStickChartValue* Add(double X, double Open, double Close, double High, double Low,
                                double Average, const std::string& Caption = "",
                                TColor Color = TColor(-1));
  TKXCandleStickChartValue* Insert(int32_t Index) {
    return static_cast<TKXCandleStickChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXCandleStickChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXCandleStickChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXCandleStickChartValuesEnumerator GetEnumerator() const {
    return TKXCandleStickChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

private:
  // The last value's Close, or Fallback in an empty collection.
  double LastClose(double Fallback) const;
};

// --- TKXCandleStickGraphic ---

// The look of one kind of candle: brush, pen and the bar style of its body.
class TKXCandleStickGraphic : public TKXChartGraphicArea {
  KX_CLASS(TKXCandleStickGraphic, TKXChartGraphicArea)

private:
  TBarChartStyle FStyle = bsRectangle;

public:
  TKXCandleStickGraphic() = default;

  TBarChartStyle Style() const { return FStyle; }
  void SetStyle(TBarChartStyle Value);
  // From another candlestick graphic: Style, then brush and pen.
  void Assign(const TPersistent* Source) override;

protected:
  void Initialize() override;
  // Brush, Pen, Style.
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXCandleStickChart ---

class TKXCandleStickChart : public TKXHighLowAverageChart {
  KX_CLASS(TKXCandleStickChart, TKXHighLowAverageChart)

private:
  TOwned<TKXCandleStickGraphic> FUpShape;
  TOwned<TKXCandleStickGraphic> FDownShape;

public:
  using TKXHighLowAverageChart::TKXHighLowAverageChart;

  // --- Properties ---
  // The look of up values (green) and of down values (red); setting assigns.
  TKXCandleStickGraphic* UpShape() const { return FUpShape.get(); }
  void SetUpShape(const TKXCandleStickGraphic* Value) { FUpShape->Assign(Value); }
  TKXCandleStickGraphic* DownShape() const { return FDownShape.get(); }
  void SetDownShape(const TKXCandleStickGraphic* Value) { FDownShape->Assign(Value); }
  TCandleStickStyle CandleStickStyle() const { return static_cast<TCandleStickStyle>(FStyle); }
  void SetCandleStickStyle(TCandleStickStyle Value);
  TCandleStickStyle Style() const { return CandleStickStyle(); }
  void SetStyle(TCandleStickStyle Value) { SetCandleStickStyle(Value); }
  TKXCandleStickChartValues* Values() const {
    return static_cast<TKXCandleStickChartValues*>(TKXCustomChart::Values());
  }
  void SetValues(const TKXCandleStickChartValues* Value) { TKXCustomChart::SetValues(Value); }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctCandleStick; }

  // --- Operations ---
  // The graphic of Value's kind: DownShape for a down value, UpShape for an up one.
  TKXCandleStickGraphic* ShapeOf(const TKXBarChartValue* Value) const;

  // --- Overrides ---
  // The value's own style unless it takes its parent's: then its graphic's.
  TBarChartStyle GetBarStyle(const TKXBarChartValue* Value) const override;
  using TKXHighLowAverageChart::GetColor;
  // With coValueColors the value's colour; else its graphic's brush colour.
  TColor GetColor(const TKXChartValue* Value) const override;
  using TKXHighLowAverageChart::SetCanvasResources;
  // For a value: the chart's font with its graphic's brush and pen, then the selection
  // look (pen one wider, the selection colour) or the value's colour with coValueColors.
  void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                          bool AdjustPen) override;
  // The candle of the chart's style in ARect (High to Low).
  void DrawHLABar(TCanvas* Canvas, const TRect& ARect, const TKXHighLowAverageChartValue* Value,
                  bool Shadow) override;
  using TKXHighLowAverageChart::DrawGlyph;
  // A rectangle in GetColor(Value) with the canvas's pen.
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // From another candlestick chart: both graphics, then the high-low-average copy.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // The graphics, the style csCandle, the options without coValueColors.
  void InitializeChart() override;
  void InitializeChangeEvents() override;
  TOwned<TKXChartValues> CreateChartValues() override;
  // A month of weekdays from 2014-10-01 on a sine, as dates.
  void CreatePreviewValues() override;
  // A plain body and wicks paint only inside the span.
  bool PaintsInsideRect(const TKXBarChartValue* Value) const override;
  // A body, or a body with its wicks, of a plain rectangle in a pen one pixel wide: the
  // body and the wick above it, then the wick below, which leaves out the pixel where it
  // ends at the body.
  int32_t ColumnSpans(const TKXBarChartValue* Value, const TRect& R, const TColumnPen& Pen,
                      TRect (&Spans)[2], TColor& Color) const override;
  // Style, BarSizePct, ImageList, Orientation, Options, DownShape, UpShape.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
