#include "kxcharts/charts/bars/KXHighLowAverageFunction.h"

#include <cmath>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

using TFigures = TKXChartValueTypeArray (*)(TKXCustomChart* Source, int32_t Low, int32_t High,
                                            TDateTime Stamp, int32_t SourceDim);

// Runs Figures over the period and hands the stamp and the figures to AddValue.
void AddFigures(TFigures Figures, TKXCustomChart* Source, TKXCustomChart* Target, int32_t Low,
                int32_t High, TDateTime Stamp, int32_t SourceDim) {
  const TKXChartValueTypeArray F = Figures(Source, Low, High, Stamp, SourceDim);
  if (F.empty()) return;
  TKXChartValueTypeArray Values{Stamp};
  Values.insert(Values.end(), F.begin(), F.end());
  TKXHighLowAverageChartFunction::AddValue(Target, Values);
}

TKXChartValueTypeArray Summary(TKXCustomChart* Source, int32_t Low, int32_t High, int32_t Dim) {
  return TKXHighLowAverageChartFunction::HighLowAverageOpenClose(
      TKXCustomChartFunction::ToArray(Source, Low, High, Dim));
}

// The first N of a period's five figures (highest, lowest, mean, last, first).
template <size_t N>
TKXChartValueTypeArray Leading(TKXCustomChart* Source, int32_t Low, int32_t High, TDateTime,
                               int32_t Dim) {
  TKXChartValueTypeArray F = Summary(Source, Low, High, Dim);
  if (F.size() > N) F.resize(N);
  return F;
}

} // namespace

TKXHighLowAverageChartFunction::TKXHighLowAverageChartFunction(TComponent* AOwner)
    : TKXCustomChartFunction(AOwner) {
  FFunctionType = static_cast<TKXChartFunctionType>(hfHighLowAverageOpenClose);
}

// --- Class operations ---

TKXChartValueTypeArray TKXHighLowAverageChartFunction::HighLowAverageOpenClose(
    std::span<const double> Data) {
  if (Data.empty()) return {};
  double Highest = Data[0], Lowest = Data[0], Sum = Data[0];
  for (size_t I = 1; I < Data.size(); ++I) {
    const double X = Data[I];
    Sum += X;
    if (X < Lowest)
      Lowest = X;
    else if (X > Highest)
      Highest = X;
  }
  return {Highest, Lowest, Sum / double(Data.size()), Data.back(), Data.front()};
}

void TKXHighLowAverageChartFunction::AddValue(TKXCustomChart* Chart, std::span<const double> Values) {
  if (!Chart || Values.empty() || !Chart->InheritsFrom(TKXHighLowAverageChart::StaticClass()))
    return;
  const size_t N = Values.size();
  const double X = Values[0];
  const double High = N > 1 ? Values[1] : 0.0;
  const double Low = N > 2 ? Values[2] : 0.0;
  const double Middle = N < 4 ? Low + (High - Low) / 2 : Values[3];
  if (Chart->InheritsFrom(TKXCandleStickChart::StaticClass())) {
    // Without a close and an open of its own a candle closes at the high and opens at the low.
    const double Close = N >= 5 ? Values[4] : High;
    const double Open = N >= 6 ? Values[5] : Low;
    static_cast<TKXCandleStickChart*>(Chart)->Values()->Add(X, Open, Close, High, Low, Middle);
  } else {
    static_cast<TKXHighLowAverageChart*>(Chart)->Values()->Add(X, Middle, High, Low);
  }
}

void TKXHighLowAverageChartFunction::HighLow(TKXCustomChart* SourceChart,
                                             TKXCustomChart* TargetChart, int32_t IndexLow,
                                             int32_t IndexHigh, TDateTime TimeStamp,
                                             int32_t SourceDim, int32_t) {
  AddFigures(&Leading<2>, SourceChart, TargetChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
}

void TKXHighLowAverageChartFunction::HighLowAverage(TKXCustomChart* SourceChart,
                                                    TKXCustomChart* TargetChart, int32_t IndexLow,
                                                    int32_t IndexHigh, TDateTime TimeStamp,
                                                    int32_t SourceDim, int32_t) {
  AddFigures(&Leading<3>, SourceChart, TargetChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
}

void TKXHighLowAverageChartFunction::HighLowMedian(TKXCustomChart* SourceChart,
                                                   TKXCustomChart* TargetChart, int32_t IndexLow,
                                                   int32_t IndexHigh, TDateTime TimeStamp,
                                                   int32_t SourceDim, int32_t) {
  AddFigures(
      [](TKXCustomChart* S, int32_t L, int32_t H, TDateTime Stamp, int32_t D) {
        const TKXChartValueTypeArray F = Summary(S, L, H, D);
        // The median may move a copy of the stamp (on a source of dates); the value keeps
        // the period's.
        return F.empty() ? F : TKXChartValueTypeArray{F[0], F[1], Median(S, L, H, Stamp, D)};
      },
      SourceChart, TargetChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
}

void TKXHighLowAverageChartFunction::MeanStdDev(TKXCustomChart* SourceChart,
                                                TKXCustomChart* TargetChart, int32_t IndexLow,
                                                int32_t IndexHigh, TDateTime TimeStamp,
                                                int32_t SourceDim, int32_t) {
  AddFigures(
      [](TKXCustomChart* S, int32_t L, int32_t H, TDateTime, int32_t D) {
        const TKXChartValueTypeArray Data = ToArray(S, L, H, D);
        if (Data.empty()) return Data;
        double Sum = 0;
        for (double X : Data)
          Sum += X;
        const double M = Sum / double(Data.size());
        double Squares = 0;
        for (double X : Data)
          Squares += (X - M) * (X - M);
        // One value deviates by nothing: its span is the value itself.
        const double Dev = Data.size() > 1 ? std::sqrt(Squares / double(Data.size() - 1)) : 0.0;
        return TKXChartValueTypeArray{M + Dev, M - Dev, M};
      },
      SourceChart, TargetChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
}

void TKXHighLowAverageChartFunction::HighLowAverageOpenClose(
    TKXCustomChart* SourceChart, TKXCustomChart* TargetChart, int32_t IndexLow, int32_t IndexHigh,
    TDateTime TimeStamp, int32_t SourceDim, int32_t) {
  AddFigures(&Leading<5>, SourceChart, TargetChart, IndexLow, IndexHigh, TimeStamp, SourceDim);
}

// --- The function ---

void TKXHighLowAverageChartFunction::SetFunction() {
  switch (FunctionType()) {
  case hfHighLow: FChartFunction = &HighLow; break;
  case hfHighLowAverage: FChartFunction = &HighLowAverage; break;
  case hfHighLowMedian: FChartFunction = &HighLowMedian; break;
  case hfMeanStdDev: FChartFunction = &MeanStdDev; break;
  case hfHighLowAverageOpenClose:
    FChartFunction = static_cast<void (*)(TKXCustomChart*, TKXCustomChart*, int32_t, int32_t,
                                          TDateTime, int32_t, int32_t)>(&HighLowAverageOpenClose);
    break;
  default: FChartFunction = FOnCustomFunction;
  }
}

bool TKXHighLowAverageChartFunction::CalculatesPerPeriod() const {
  return FunctionType() != hfCustom && FunctionType() <= hfHighLowAverageOpenClose;
}

void TKXHighLowAverageChartFunction::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using F = TKXHighLowAverageChartFunction;
  Filer.Property("Enabled", this, &F::Enabled, &F::SetEnabled, true);
  Filer.Property("FunctionType", this, &F::FunctionType, &F::SetFunctionType,
                 hfHighLowAverageOpenClose);
  // A default of 0 that no instance has: the initial 0.1 is always written.
  Filer.Property("PeriodValue", this, &F::PeriodValue, &F::SetPeriodValue, 0.0);
  Filer.Property("Period", this, &F::Period, &F::SetPeriod, fpPercentRange);
  Filer.Property("SourceChart", this, &F::SourceChart, &F::SetSourceChart);
  Filer.Property("TargetChart", this, &F::TargetChart, &F::SetTargetChart);
}

} // namespace kx
