#pragma once
// The high-low-average function: a chart function whose target is a high-low-average or
// candlestick chart. It cuts the source into periods as every function does, and turns each
// period into one value: a high, a low and a middle, and for candles an open and a close.

#include <cstdint>
#include <span>

#include "kxcharts/charts/bars/KXCandleStickChart.h"
#include "kxcharts/charts/bars/KXHighLowAverageChart.h"
#include "kxcharts/functions/KXChartFunction.h"

namespace kx {

// What one period of the source becomes.
enum TKXHiLoAvgChartFunctionType : uint8_t {
  hfCustom,                 // OnCustomFunction of the application
  hfHighLow,                // highest and lowest; the middle halfway between them
  hfHighLowAverage,         // highest, lowest, mean
  hfHighLowMedian,          // highest, lowest, the median by position
  hfMeanStdDev,             // mean plus and minus one sample standard deviation, mean
  hfHighLowAverageOpenClose // highest, lowest, mean, last value, first value
};
KX_ENUM_NAMES(TKXHiLoAvgChartFunctionType, "hfCustom", "hfHighLow", "hfHighLowAverage",
              "hfHighLowMedian", "hfMeanStdDev", "hfHighLowAverageOpenClose")

class TKXHighLowAverageChartFunction : public TKXCustomChartFunction {
  KX_CLASS(TKXHighLowAverageChartFunction, TKXCustomChartFunction)

public:
  explicit TKXHighLowAverageChartFunction(TComponent* AOwner);

  // --- Properties ---
  // hfHighLowAverageOpenClose for a new function.
  TKXHiLoAvgChartFunctionType FunctionType() const {
    return static_cast<TKXHiLoAvgChartFunctionType>(FFunctionType);
  }
  void SetFunctionType(TKXHiLoAvgChartFunctionType Value) {
    TKXCustomChartFunction::SetFunctionType(static_cast<TKXChartFunctionType>(Value));
  }
  TKXHighLowAverageChart* TargetChart() const {
    return static_cast<TKXHighLowAverageChart*>(TKXCustomChartFunction::TargetChart());
  }
  void SetTargetChart(TKXHighLowAverageChart* Value) { TKXCustomChartFunction::SetTargetChart(Value); }

  // --- Class operations ---
  // Each adds to TargetChart one value from the source values IndexLow..IndexHigh in
  // SourceDim, at TimeStamp; TargetDim is not read: the target's dimensions are fixed. A
  // target that is no high-low-average chart takes nothing.
  static void HighLow(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart, int32_t IndexLow,
                      int32_t IndexHigh, TDateTime TimeStamp, int32_t SourceDim, int32_t TargetDim);
  static void HighLowAverage(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                             int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                             int32_t SourceDim, int32_t TargetDim);
  static void HighLowMedian(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                            int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                            int32_t SourceDim, int32_t TargetDim);
  static void MeanStdDev(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                         int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                         int32_t SourceDim, int32_t TargetDim);
  static void HighLowAverageOpenClose(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                                      int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                                      int32_t SourceDim, int32_t TargetDim);
  // Highest, lowest, mean, last and first of Data; empty for empty Data.
  static TKXChartValueTypeArray HighLowAverageOpenClose(std::span<const double> Data);
  using TKXCustomChartFunction::AddValue;
  // Adds one value to Chart from Values: X, then High, Low, the middle (halfway between
  // High and Low when it is not given), Close and Open; a candle without Close and Open
  // closes at High and opens at Low. Nothing for a chart that is no high-low-average chart
  // or for no numbers.
  static void AddValue(TKXCustomChart* Chart, std::span<const double> Values);

protected:
  // The operation of the type; OnCustomFunction for hfCustom.
  void SetFunction() override;
  // True but for hfCustom.
  bool CalculatesPerPeriod() const override;
  // Enabled, FunctionType (5), PeriodValue, Period, SourceChart, TargetChart.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
