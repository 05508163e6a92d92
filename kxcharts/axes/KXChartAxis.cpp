// TKXChartAxis as a scale: parts, range, value-pixel mapping, log cycles, zoom, pan, storing.
#include "kxcharts/axes/KXChartAxis.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <vector>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXMath.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

constexpr TRect NoOwnerRect{0, 0, 100, 100};
constexpr char SIllegalLogCycles[] = "Illegal Value entered for log cycles!";

// A double as the nearest single, infinite beyond the single range (where the plain
// conversion is undefined).
float ToSingle(double V) {
  if (V > FLT_MAX) return INFINITY;
  if (V < -FLT_MAX) return -INFINITY;
  return static_cast<float>(V);
}

// E - (P - S): a pixel mirrored about the middle of the span, saturated.
int32_t MirrorPixel(int32_t P, int32_t S, int32_t E) {
  return CanvasRound(static_cast<double>(E) - (static_cast<double>(P) - S));
}

// The smaller and larger of a number and a bound, the bound winning over NaN, so that a
// NaN never lands in the zoomed range.
double AtMost(double V, double Bound) {
  return V < Bound ? V : Bound;
}
double AtLeast(double V, double Bound) {
  return V > Bound ? V : Bound;
}

// R within Lo..Hi. Only arithmetic on ranges too wide for a double (1e308 wide) or the
// last bit of rounding can take a value out; a NaN stays, and so does anything when the
// bounds are crossed (a pixel past the last log cycle).
double WithinRange(double R, double Lo, double Hi) {
  if (!(Lo <= Hi)) return R;
  return R < Lo ? Lo : R > Hi ? Hi : R;
}

// F * (Hi - Lo) + Lo, and R mirrored as Hi - (R - Lo): for ranges wider than a double
// holds (-1e308..1e308) the same in an order that does not overflow.
double Lerp(double F, double Lo, double Hi) {
  const double Width = Hi - Lo;
  return std::isfinite(Width) ? F * Width + Lo : Lo * (1 - F) + Hi * F;
}
double Middle(double Lo, double Hi) {
  const double M = (Hi - Lo) / 2 + Lo;
  return std::isfinite(M) ? M : Lo / 2 + Hi / 2;
}
// (V - Lo) / (Hi - Lo), in halves where the width overflows.
double Fraction(double V, double Lo, double Hi) {
  const double Width = Hi - Lo;
  return std::isfinite(Width) ? (V - Lo) / Width : (V / 2 - Lo / 2) / (Hi / 2 - Lo / 2);
}
double MirrorValue(double R, double Lo, double Hi) {
  const double V = Hi - (R - Lo);
  return std::isfinite(V) ? V : (Lo + Hi) - R;
}

// A rectangle's extent in 64 bits, so that no pair of edges overflows.
int64_t Extent64(int32_t From, int32_t To) {
  return int64_t(To) - From;
}

int32_t Clamp32(int64_t V) {
  return static_cast<int32_t>(std::clamp<int64_t>(V, INT32_MIN, INT32_MAX));
}

} // namespace

// --- Log cycles ---

TLogCycles CalcLogCycles(double AMin, double AMax, int32_t Base) {
  if (!(AMin > 0) || !(AMax > 0) || !std::isfinite(AMin) || !std::isfinite(AMax) || AMin > AMax ||
      Base < 2)
    throw Exception(SIllegalLogCycles);
  const double B = Base;
  // Powers in single precision, rounded to whole numbers when they are whole-number
  // powers; a fractional lower bound keeps its fractional power, so that a range from
  // below 1 still has its boundaries. A power beyond the single range (1e-300) stays in
  // double precision.
  const auto PowerOf = [B](double Exponent) {
    const double D = Power(B, Exponent);
    const double S = ToSingle(D);
    const double P = std::isfinite(S) && S > 0 ? S : D;
    if (!std::isfinite(P) || P <= 0) throw Exception(SIllegalLogCycles);
    return P >= 1 ? static_cast<double>(Round(P)) : P;
  };
  const double P = PowerOf(static_cast<double>(Floor(LogN(B, AMin))));
  const int64_t StartExp = Round(LogN(B, P));
  const double Q = PowerOf(static_cast<double>(Ceil(LogN(B, AMax))));
  const int64_t EndExp = Round(LogN(B, Q));
  const int64_t Count = std::max<int64_t>(EndExp - StartExp, 0);

  TLogCycles Cycles(static_cast<size_t>(Count) + 1);
  double V = B * Q;
  for (int64_t I = Count; I >= 0; --I) {
    V /= B;
    Cycles[I] = {1.0, V};
  }
  if (Count == 1) {
    Cycles[1].Weight = (AMax - AMin) / (Cycles[1].Value - Cycles[0].Value);
  } else if (Count > 1) {
    const size_t Last = static_cast<size_t>(Count);
    if (AMax != Cycles[Last].Value)
      Cycles[Last].Weight =
          (AMax - Cycles[Last - 1].Value) / (Cycles[Last].Value - Cycles[Last - 1].Value);
    if (AMin != Cycles[0].Value)
      Cycles[1].Weight = (Cycles[1].Value - AMin) / (Cycles[1].Value - Cycles[0].Value);
  }
  Cycles[0].Weight = 0.0;
  return Cycles;
}

// --- TKXChartAxis: life ---

TKXChartAxis::TKXChartAxis(TKXCustomChartPanel* AOwner) : FOwner(AOwner) {}

TKXChartAxis::~TKXChartAxis() = default;

void TKXChartAxis::Initialize() {
  inherited::Initialize();
  FCharts = MakeOwned<TKXChartList>(nullptr);
  FTitle = MakeOwned<TKXChartLabel>();
  FLabels = MakeOwned<TKXChartLabelMetaData>();
  FGrid = TOwned<TKXAxisGrid>(New<TKXAxisGrid>(this));
  BaseChanged();
  Brush()->SetStyle(bsClear);
  Brush()->UseCurrentAsDefaults();
}

void TKXChartAxis::InitializeEvents() {
  inherited::InitializeEvents();
  const TNotifyEvent ToChanged = [this](TObject* Sender) { Changed(Sender); };
  FTitle->SetOnChange(ToChanged);
  FLabels->SetOnChange(ToChanged);
  FGrid->SetOnChange(SenderChangedHandler());
  FCharts->SetOnNotify([this](TObject* Sender, TKXCustomChart* Chart, TListNotification Action) {
    ChartListNotify(Sender, Chart, Action);
  });
}

namespace {
// Title and labels start in the font of whatever the axis belongs to, and follow it.
void TakeFont(TKXCustomChartLabel* Label, const TFont* Font) {
  Label->SetFont(Font);
  Label->Font()->SetBaseFont(Font);
}
} // namespace

void TKXChartAxis::AfterConstruction() {
  inherited::AfterConstruction();
  if (FOwner) {
    TakeFont(FTitle.get(), FOwner->Font());
    TakeFont(FLabels.get(), FOwner->Font());
  }
  FTitle->Font()->UseCurrentAsDefaults();
  FLabels->Font()->UseCurrentAsDefaults();
}

void TKXChartAxis::BeforeDestruction() {
  inherited::BeforeDestruction();
  if (FCharts) {
    // The charts belong to others; they only stop pointing here.
    FCharts->SetOnNotify(nullptr);
    while (FCharts->Count() > 0) {
      TKXCustomChart* Chart = FCharts->Last();
      FCharts->Delete(FCharts->Count() - 1);
      if (Chart->HorizontalAxis() == this) Chart->SetHorizontalAxis(nullptr);
      if (Chart->VerticalAxis() == this) Chart->SetVerticalAxis(nullptr);
    }
  }
  if (FTitle) FTitle->SetOnChange(nullptr);
  if (FLabels) FLabels->SetOnChange(nullptr);
  if (FGrid) FGrid->SetOnChange(nullptr);
  FCharts.reset();
  FTitle.reset();
  FLabels.reset();
  FGrid.reset();
}

// --- TKXChartAxis: properties ---

void TKXChartAxis::SetLocation(TKXChartAxisLocation Value) {
  if (FLocation == Value) return;
  FLocation = Value;
  FDimension = IsVertical() ? 1 : 0;
  FSpanKnown = false;
  Changed();
}

void TKXChartAxis::SetLogBase(int32_t Value) {
  if (FLogBase == Value) return;
  FLogBase = Value;
  BaseChanged();
  Changed();
}

void TKXChartAxis::BaseChanged() {
  FLog1 = ToSingle(LogN(ScaleBase(), 1.0));
  FLog11 = ToSingle(LogN(ScaleBase(), 11.0));
  FLnBase = std::log(static_cast<long double>(ScaleBase()));
}

void TKXChartAxis::SetFormat(const std::string& Value) {
  if (FFormat == Value) return;
  FFormat = Value;
  Changed();
}

void TKXChartAxis::SetDateTimeFormat(const std::string& Value) {
  if (FDateTimeFormat == Value) return;
  FDateTimeFormat = Value;
  Changed();
}

void TKXChartAxis::SetOptions(TAxisOptions Value) {
  if (FOptions == Value) return;
  // Stored first: the title, labels and grid report their new visibility back, and must
  // find it in the options already.
  FOptions = Value;
  FTitle->SetVisible(Value.Contains(aoShowTitle));
  FLabels->SetVisible(Value.Contains(aoShowLabels));
  FGrid->SetVisible(Value.Contains(aoShowGrid));
  if (Value.Contains(aoAutoMinimum) || Value.Contains(aoAutoMaximum)) FNeedAxisUpdate = true;
  Changed();
}

void TKXChartAxis::SetTitle(const TKXChartLabel* Value) {
  FTitle->Assign(Value);
}

void TKXChartAxis::SetLabels(const TKXChartLabelMetaData* Value) {
  FLabels->Assign(Value);
}

void TKXChartAxis::SetGrid(const TKXAxisGrid* Value) {
  FGrid->Assign(Value);
}

void TKXChartAxis::UpdateZooming() {
  FZooming = !SameValue(FMaximum, FZoomMaximum) || !SameValue(FMinimum, FZoomMinimum);
}

void TKXChartAxis::SetMinimum(double Value) {
  if (Value == FMinimum) return;
  FMinimum = Value;
  if (FMaximum < FMinimum) SetMaximum(Value);
  if (FZoomMinimum < FMinimum || !FZooming) SetZoomMinimum(FMinimum);
  SetOptions(FOptions - aoAutoMinimum);
  Changed();
}

void TKXChartAxis::SetMaximum(double Value) {
  if (Value == FMaximum) return;
  FMaximum = Value;
  if (FMaximum < FMinimum) SetMinimum(Value);
  if (FMaximum < FZoomMaximum || !FZooming) SetZoomMaximum(FMaximum);
  SetOptions(FOptions - aoAutoMaximum);
  Changed();
}

void TKXChartAxis::SetZoomMinimum(double Value) {
  if (Value == FZoomMinimum) {
    UpdateZooming();
    return;
  }
  FZoomMinimum = Value < FMinimum ? FMinimum : Value;
  // The other end follows to the value as stored: a value beyond the whole range must not
  // leave the ends crossed once each is clamped to its own side.
  if (FZoomMaximum < FZoomMinimum) SetZoomMaximum(FZoomMinimum);
  UpdateZooming();
  Changed();
}

void TKXChartAxis::SetZoomMaximum(double Value) {
  if (Value == FZoomMaximum) {
    UpdateZooming();
    return;
  }
  FZoomMaximum = Value > FMaximum ? FMaximum : Value;
  if (FZoomMaximum < FZoomMinimum) SetZoomMinimum(FZoomMaximum);
  UpdateZooming();
  Changed();
}

void TKXChartAxis::SetStartPosition(int32_t Value) {
  if (FStartPosition == Value) return;
  FStartPosition = Value;
  if (FEndPosition < Value) FEndPosition = Value;
  FSpanKnown = false;
  Changed();
}

void TKXChartAxis::SetEndPosition(int32_t Value) {
  if (FEndPosition == Value) return;
  FEndPosition = Value;
  if (FStartPosition > Value) FStartPosition = Value;
  FSpanKnown = false;
  Changed();
}

void TKXChartAxis::SetInwardPosition(int32_t Value) {
  if (FInwardPosition == Value) return;
  FInwardPosition = Value;
  Changed();
}

void TKXChartAxis::SetMinSeparationPct(int32_t Value) {
  Value = std::max(Value, 0);
  if (FMinSeparationPct == Value) return;
  FMinSeparationPct = Value;
  Changed();
}

void TKXChartAxis::SetMinStepIncrement(double Value) {
  if (Value < 0) Value = 0;
  if (FMinStepIncrement == Value) return;
  FMinStepIncrement = Value;
  Changed();
}

void TKXChartAxis::SetLabelIncrement(double Value) {
  if (FLabelIncrement == Value) return;
  FLabelIncrement = Value;
  Changed();
}

void TKXChartAxis::SetLabelStyle(TAxisLabelStyle Value) {
  if (FLabelStyle == Value) return;
  FLabelStyle = Value;
  Changed();
}

void TKXChartAxis::SetTitleMargin(int32_t Value) {
  if (FTitleMargin == Value) return;
  FTitleMargin = Value;
  Changed();
}

void TKXChartAxis::SetSnapGrid(bool Value) {
  if (FSnapGrid == Value) return;
  FSnapGrid = Value;
  Changed();
}

void TKXChartAxis::SetLogarithmicType(TKXLogarithmicType Value) {
  if (FLogarithmicType == Value) return;
  FLogarithmicType = Value;
  Changed();
}

void TKXChartAxis::SetLogCycles(bool Value) {
  if (FLogCycles == Value) return;
  FLogCycles = Value;
  Changed();
}

double TKXChartAxis::ZoomAmount() const {
  const double Zoomed = SizeZoomed();
  return Zoomed == 0.0 ? 1.0 : SizeUnzoomed() / Zoomed;
}

bool TKXChartAxis::IsDateTime() const {
  if (FLabelStyle == alsDateTime) return true;
  const TKXCustomChart* Active = FCharts ? FCharts->ActiveChart() : nullptr;
  return Active && FDimension >= 0 && FDimension < 8 &&
         Active->Values()->DateTimeAxes().Contains(static_cast<uint8_t>(FDimension));
}

// --- TKXChartAxis: geometry ---

void TKXChartAxis::Span(const TRect& R, int32_t& S, int32_t& E) const {
  if (FSpanKnown && R == FSpanRect) {
    S = FSpanStart;
    E = FSpanEnd;
    return;
  }
  const bool Vertical = IsVertical();
  const int32_t From = Vertical ? R.Top : R.Left;
  const double Extent = Vertical ? double(R.Bottom) - R.Top : double(R.Right) - R.Left;
  S = CanvasRound(From + static_cast<double>(CanvasRound(Extent * (FStartPosition / 100.0))));
  E = CanvasRound(From + static_cast<double>(CanvasRound(Extent * (FEndPosition / 100.0))));
  FSpanRect = R;
  FSpanStart = S;
  FSpanEnd = E;
  FSpanKnown = true;
}

TRect TKXChartAxis::GetHalfRect(const TRect& ARect, bool LowHalf) const {
  TRect R = ARect;
  if (IsVertical()) {
    const int32_t Half = Clamp32(Extent64(ARect.Top, ARect.Bottom) / 2);
    if (LowHalf)
      R.Top = Clamp32(int64_t(R.Top) + Half);
    else
      R.Bottom = Clamp32(int64_t(R.Top) + Half);
  } else {
    const int32_t Half = Clamp32(Extent64(ARect.Left, ARect.Right) / 2);
    if (LowHalf)
      R.Right = Clamp32(int64_t(R.Left) + Half);
    else
      R.Left = Clamp32(int64_t(R.Left) + Half);
  }
  return R;
}

// --- TKXChartAxis: value to pixel ---

int32_t TKXChartAxis::AxisToPixel(double Value) const {
  return AxisToPixel(Value, FOwner ? FOwner->ChartRect() : NoOwnerRect);
}

int32_t TKXChartAxis::AxisToPixel(double Value, const TRect& ChartRect) const {
  TKXLinearPixels Linear;
  if (LinearPixels(ChartRect, Linear)) return Linear.Pixel(Value);
  return LogToPixel(Value, ChartRect, FZoomMinimum, FZoomMaximum);
}

bool TKXChartAxis::LinearPixels(const TRect& ChartRect, TKXLinearPixels& Out) const {
  const double Lo = FZoomMinimum, Hi = FZoomMaximum;
  if (Lo != Hi && FOptions.Contains(aoLogarithmic)) return false;
  int32_t S, E;
  Span(ChartRect, S, E);
  Out = TKXLinearPixels(Lo, Hi, S, E, IsVertical(), FOptions.Contains(aoReversed));
  return true;
}

TKXLinearPixels::TKXLinearPixels(double Lo, double Hi, int32_t S, int32_t E, bool Vertical,
                                 bool Reversed)
    : FEmpty(Lo == Hi), FHalves(!std::isfinite(Hi - Lo) && std::isfinite(Hi) && std::isfinite(Lo)),
      FVertical(Vertical), FReversed(Reversed), FLo(Lo), FSize(Hi - Lo), FHalfLo(Lo / 2),
      FHalfSize(Hi / 2 - Lo / 2), FStart(S), FLength(static_cast<double>(E) - S),
      FEnds(int64_t(S) + E) {}

int32_t TKXChartAxis::LogToPixel(double Value, const TRect& ChartRect, double Lo, double Hi) const {
  TRect R = ChartRect;
  if (FLogCycles) R = GetLogCycleZoomChart(ChartRect, Value, Lo, Hi);
  if (FLogarithmicType == ltLogarithmic || FLogarithmicType == ltInverseLogarithmic)
    return SimpleLogToPixel(Value, FLogarithmicType, R, Lo, Hi);
  const auto& Parts = LogTypeParts[FLogarithmicType];
  const bool Reversed = FOptions.Contains(aoReversed);
  const double M = Middle(Lo, Hi);
  if (Value <= M) return SimpleLogToPixel(Value, Parts[0], GetHalfRect(R, !Reversed), Lo, M);
  return SimpleLogToPixel(Value, Parts[1], GetHalfRect(R, Reversed), M, Hi);
}

int32_t TKXChartAxis::SimpleLogToPixel(double Value, TKXLogarithmicType Type, const TRect& R,
                                       double A, double B) const {
  int32_t S, E;
  Span(R, S, E);
  if (A == B) return E;
  const bool Inverse = Type == ltInverseLogarithmic;
  double V = Inverse ? MirrorValue(Value, A, B) : Value;
  if (V < A) V = A;
  // The fraction of the range taken onto 1..11 before the logarithm, so that the range
  // itself need not be positive.
  const double L = static_cast<double>(
      std::log(static_cast<long double>(Fraction(V, A, B) * 10.0 + 1.0)) / FLnBase);
  int32_t P = CanvasRound(((L - FLog1) / (FLog11 - FLog1)) * (static_cast<double>(E) - S) + S);
  if (Inverse) P = MirrorPixel(P, S, E);
  if (IsVertical()) P = MirrorPixel(P, S, E);
  if (FOptions.Contains(aoReversed)) P = MirrorPixel(P, S, E);
  return P;
}

// --- TKXChartAxis: pixel to value ---

double TKXChartAxis::PixelToAxis(int32_t Pixel, bool IgnoreZoom) const {
  return PixelToAxis(Pixel, FOwner ? FOwner->ChartRect() : NoOwnerRect, IgnoreZoom);
}

double TKXChartAxis::PixelToAxis(int32_t Pixel, const TRect& ChartRect, bool IgnoreZoom) const {
  const double Lo = IgnoreZoom ? FMinimum : FZoomMinimum;
  const double Hi = IgnoreZoom ? FMaximum : FZoomMaximum;
  if (Lo != Hi && FOptions.Contains(aoLogarithmic)) return PixelToLog(Pixel, ChartRect, Lo, Hi);
  int32_t SI, EI;
  Span(ChartRect, SI, EI);
  const double S = SI, E = EI;
  double P = Pixel;
  if (FOptions.Contains(aoReversed)) P = E - (P - S);
  double R;
  if (P <= S)
    R = Lo;
  else if (P >= E)
    R = Hi;
  else
    R = Lerp((P - S) / (E - S), Lo, Hi);
  if (IsVertical()) R = MirrorValue(R, Lo, Hi);
  return WithinRange(R, Lo, Hi);
}

double TKXChartAxis::PixelToLog(int32_t Pixel, const TRect& ChartRect, double Lo, double Hi) const {
  TRect R = ChartRect;
  if (FLogCycles) R = GetLogCycleAxis(ChartRect, Pixel, Lo, Hi);
  if (FLogarithmicType == ltLogarithmic || FLogarithmicType == ltInverseLogarithmic)
    return SimplePixelToLog(Pixel, FLogarithmicType, R, Lo, Hi);
  const auto& Parts = LogTypeParts[FLogarithmicType];
  int32_t S, E;
  Span(R, S, E);
  const double M = Middle(Lo, Hi);
  // A pixel on the middle counts to the first half of the span.
  const bool FirstHalf = Pixel <= (static_cast<double>(E) - S) / 2 + S;
  const bool HoldingLowHalf = FirstHalf ? !IsVertical() : IsVertical();
  const TRect Half = GetHalfRect(R, HoldingLowHalf);
  // The half that AxisToPixel gives to the values up to the middle.
  if (HoldingLowHalf == !FOptions.Contains(aoReversed))
    return SimplePixelToLog(Pixel, Parts[0], Half, Lo, M);
  return SimplePixelToLog(Pixel, Parts[1], Half, M, Hi);
}

double TKXChartAxis::SimplePixelToLog(double Pixel, TKXLogarithmicType Type, const TRect& R,
                                      double A, double B) const {
  int32_t SI, EI;
  Span(R, SI, EI);
  const double S = SI, E = EI;
  const bool Inverse = Type == ltInverseLogarithmic;
  double P = Pixel;
  if (Inverse) P = E - (P - S);
  if (FOptions.Contains(aoReversed)) P = E - (P - S);
  if (IsVertical()) P = E - (P - S);
  double Result;
  if (P <= S) {
    Result = A;
  } else if (P >= E) {
    Result = B;
  } else {
    const double T = (P - S) / (E - S);
    Result = Lerp((Power(ScaleBase(), T * (FLog11 - FLog1) + FLog1) - 1.0) / 10.0, A, B);
  }
  if (Inverse) Result = MirrorValue(Result, A, B);
  return WithinRange(Result, A, B);
}

double TKXChartAxis::UnboundPixelToAxis(int32_t Pixel, const TRect& ChartRect) const {
  const double Lo = FZoomMinimum, Hi = FZoomMaximum;
  if (FOptions.Contains(aoLogarithmic)) return PixelToLog(Pixel, ChartRect, Lo, Hi);
  int32_t S, E;
  Span(ChartRect, S, E);
  const double Length = static_cast<double>(E) - S;
  return Length == 0 ? 0.0 : (Pixel / Length) * (Hi - Lo);
}

// --- TKXChartAxis: log cycles ---

const TLogCycles& TKXChartAxis::Cycles(double AMin, double AMax) const {
  if (FCycleCache.empty() || AMin != FCycleMin || AMax != FCycleMax || ScaleBase() != FCycleBase) {
    FCycleCache = CalcLogCycles(AMin, AMax, ScaleBase());
    FCycleMin = AMin;
    FCycleMax = AMax;
    FCycleBase = ScaleBase();
  }
  return FCycleCache;
}

namespace {

// The walk over the bands that GetLogCycleZoomChart and GetLogCycleAxis share. Bands run
// from S along the whole extent of the rectangle, each full cycle taking an equal share;
// Holds(I, Pos, Width) picks the band. On a mirrored axis (vertical, or reversed) the
// bands are mirrored about the span, so that low cycles lie where low values lie.
template <class THolds>
TRect CycleBand(const TRect& ARect, int32_t S, int32_t E, bool Vertical, bool Mirrored,
                const TLogCycles& Cycles, double& AMin, double& AMax, THolds Holds) {
  const size_t N = Cycles.size() - 1;
  double Total = 0;
  for (size_t I = 1; I <= N; ++I)
    Total += Cycles[I].Weight;
  if (!(Total > 0) || !std::isfinite(Total)) return ARect;
  const double X = Vertical ? KXRectHeight(ARect) : KXRectWidth(ARect);
  double Pos = S;
  for (size_t I = 1; I <= N; ++I) {
    const double Width = X * (Cycles[I].Weight / Total);
    if (Holds(I, Pos, Width)) {
      if (I < N) AMax = Cycles[I].Value;
      int32_t Low = CanvasRound(Pos), High = CanvasRound(Pos + Width);
      if (Mirrored) {
        const int32_t MLow = MirrorPixel(High, S, E);
        High = MirrorPixel(Low, S, E);
        Low = MLow;
      }
      TRect Result = ARect;
      if (Vertical) {
        Result.Top = Low;
        Result.Bottom = High;
      } else {
        Result.Left = Low;
        Result.Right = High;
      }
      return Result;
    }
    Pos += Width;
    AMin = Cycles[I].Value;
  }
  return ARect;
}

} // namespace

TRect TKXChartAxis::GetLogCycleZoomChart(const TRect& ARect, double Value, double& AMin,
                                         double& AMax) const {
  int32_t S, E;
  Span(ARect, S, E);
  const TLogCycles& C = Cycles(AMin, AMax);
  return CycleBand(ARect, S, E, IsVertical(), Mirrored(), C, AMin, AMax,
                   [&](size_t I, double, double) { return Value <= C[I].Value; });
}

TRect TKXChartAxis::GetLogCycleAxis(const TRect& ARect, double Pixel, double& AMin,
                                    double& AMax) const {
  int32_t S, E;
  Span(ARect, S, E);
  const TLogCycles& C = Cycles(AMin, AMax);
  // The walk runs in the direction of growing values.
  const double P = Mirrored() ? static_cast<double>(E) - (Pixel - S) : Pixel;
  return CycleBand(ARect, S, E, IsVertical(), Mirrored(), C, AMin, AMax,
                   [&](size_t, double Pos, double Width) { return P <= Pos + Width; });
}

// --- TKXChartAxis: zoom and pan ---

void TKXChartAxis::Zoom(double Center, float Amount) {
  if (!(Amount > 1.0f)) {
    Unzoom();
    return;
  }
  const double Half = ToSingle((SizeUnzoomed() / Amount) / 2);
  // Both ends inside the range and in order, also for a centre off the range.
  FZoomMaximum = AtMost(AtLeast(Center + Half, FMinimum), FMaximum);
  SetZoomMinimum(AtMost(AtLeast(Center - Half, FMinimum), FZoomMaximum));
  Changed();
}

void TKXChartAxis::Zoom(const TRectF& ChartRect) {
  const double A = IsVertical() ? ChartRect.Top : ChartRect.Left;
  const double B = IsVertical() ? ChartRect.Bottom : ChartRect.Right;
  // Kept inside the whole range, which the rectangle may reach beyond.
  FZoomMaximum = AtMost(AtLeast(std::max(A, B), FMinimum), FMaximum);
  SetZoomMinimum(AtMost(AtLeast(std::min(A, B), FMinimum), FZoomMaximum));
  Changed();
}

void TKXChartAxis::ZoomPixelArea(const TRect& ClientRect) {
  double A, B;
  if (IsVertical()) {
    A = PixelToAxis(ClientRect.Top, false);
    B = PixelToAxis(ClientRect.Bottom, false);
  } else {
    A = PixelToAxis(ClientRect.Right, false);
    B = PixelToAxis(ClientRect.Left, false);
  }
  FZoomMaximum = AtMost(AtLeast(std::max(A, B), FMinimum), FMaximum);
  SetZoomMinimum(AtMost(AtLeast(std::min(A, B), FMinimum), FZoomMaximum));
  Changed();
}

void TKXChartAxis::Unzoom() {
  FZoomMaximum = FMaximum;
  SetZoomMinimum(FMinimum);
  Changed();
}

void TKXChartAxis::Pan(double Amount) {
  double D = std::isnan(Amount) ? 0.0 : Amount;
  if (FZoomMinimum + D < FMinimum)
    D = FMinimum - FZoomMinimum;
  else if (FZoomMaximum + D > FMaximum)
    D = FMaximum - FZoomMaximum;
  // Both ends from the range before the step, the leading end first: a step longer than
  // the zoomed range would otherwise push the far end along as the near one crosses it,
  // and the range would not keep its size.
  const double Lo = FZoomMinimum + D, Hi = FZoomMaximum + D;
  if (D > 0) {
    SetZoomMaximum(Hi);
    SetZoomMinimum(Lo);
  } else {
    SetZoomMinimum(Lo);
    SetZoomMaximum(Hi);
  }
  Changed();
}

void TKXChartAxis::Pan(int32_t Amount) {
  Pan(UnboundPixelToAxis(Amount, FOwner ? FOwner->ChartRect() : NoOwnerRect));
}

// --- TKXChartAxis: range from the charts ---

void TKXChartAxis::UpdateAxisValues() {
  const bool AutoMin = FOptions.Contains(aoAutoMinimum);
  const bool AutoMax = FOptions.Contains(aoAutoMaximum);
  if (AutoMin) FMinimum = 0.0;
  if (AutoMax) FMaximum = 0.0;
  struct TGroupRecord {
    int32_t Group;
    TKXGroupStyle Style;
    int32_t ChartIndex;
  };
  std::vector<TGroupRecord> Groups;
  bool First = true;
  for (int32_t I = 0; I < FCharts->Count(); ++I) {
    TKXCustomChart* Chart = FCharts->Items(I);
    if (!Chart->Visible()) continue;
    const bool Stacks = FDimension == Chart->GetGroupDimension();
    if (Stacks) {
      auto It = std::find_if(Groups.begin(), Groups.end(),
                             [&](const TGroupRecord& G) { return G.Group == Chart->Group(); });
      if (It == Groups.end()) {
        Groups.push_back({Chart->Group(), Chart->GroupStyle(), I});
      } else if (It->Style != gsNone) {
        const TKXCustomChart* Below = FCharts->Items(It->ChartIndex);
        Chart->SetOptions(Chart->Options() + coOffsetVertical);
        Chart->SetOffsetVertical(Below->OffsetVertical() +
                                 Below->Values()->GetAxisMaximum(FDimension));
        It->ChartIndex = I;
      }
    }
    const double Offset =
        Stacks && Chart->Options().Contains(coOffsetVertical) && Chart->GroupStyle() != gsStacked100
            ? Chart->OffsetVertical()
            : 0.0;
    const bool Counts = !Chart->AxesHints().Contains(ahIgnoreAxes);
    const double Lo = Offset + Chart->Values()->GetAxisMinimum(FDimension);
    const double Hi = Offset + Chart->Values()->GetAxisMaximum(FDimension);
    if (First) {
      First = false;
      if (Counts) {
        if (AutoMin) FMinimum = Lo;
        if (AutoMax) FMaximum = Hi;
      }
    } else if (Counts) {
      if (AutoMin) FMinimum = std::min(FMinimum, Lo);
      if (AutoMax) FMaximum = std::max(FMaximum, Hi);
    }
  }
  if (!FZooming) {
    FZoomMinimum = FMinimum;
    FZoomMaximum = FMaximum;
  } else {
    FZoomMinimum = std::max(FZoomMinimum, FMinimum);
    FZoomMaximum = std::min(FZoomMaximum, FMaximum);
  }
  UpdateZooming();
  FNeedAxisUpdate = false;
  UpdateChartAxisInfo();
}

void TKXChartAxis::UpdateChartAxisInfo() {
  for (int32_t I = 0; I < FCharts->Count(); ++I)
    FCharts->Items(I)->UpdateAxisInfo(this);
}

// --- TKXChartAxis: change handling ---

void TKXChartAxis::Changed() {
  inherited::Changed();
  // An axis that is being made or freed has no charts to tell.
  if (FCharts) UpdateChartAxisInfo();
}

void TKXChartAxis::Changed(TObject* Sender) {
  if (Sender == FTitle.get()) {
    if (FTitle->Visible())
      FOptions.Include(aoShowTitle);
    else
      FOptions.Exclude(aoShowTitle);
  } else if (Sender == FLabels.get()) {
    if (FLabels->Visible())
      FOptions.Include(aoShowLabels);
    else
      FOptions.Exclude(aoShowLabels);
  }
  Changed();
}

void TKXChartAxis::ValueChanged(TKXCustomChart*) {
  if (FOptions.Contains(aoAutoMinimum) || FOptions.Contains(aoAutoMaximum)) FNeedAxisUpdate = true;
}

void TKXChartAxis::VisibleChanged(TKXCustomChart* Chart) {
  ValueChanged(Chart);
}

void TKXChartAxis::ChartListNotify(TObject*, TKXCustomChart*, TListNotification) {
  ValueChanged(nullptr);
}

// --- TKXChartAxis: copying and storing ---

void TKXChartAxis::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* A = dynamic_cast<const TKXChartAxis*>(Source)) {
    // The parts first: their change reports would otherwise copy their old visibility
    // over the options taken below.
    FTitle->Assign(A->FTitle.get());
    FLabels->Assign(A->FLabels.get());
    FGrid->Assign(A->FGrid.get());
    FCharts->Clear();
    for (int32_t I = 0; I < A->FCharts->Count(); ++I)
      FCharts->Add(A->FCharts->Items(I));
    FMinSeparationPct = A->FMinSeparationPct;
    FTitleMargin = A->FTitleMargin;
    FMinStepIncrement = A->FMinStepIncrement;
    FLabelStyle = A->FLabelStyle;
    FLogBase = A->FLogBase;
    FLog1 = A->FLog1;
    FLog11 = A->FLog11;
    FLnBase = A->FLnBase;
    FLogCycles = A->FLogCycles;
    FFormat = A->FFormat;
    FDateTimeFormat = A->FDateTimeFormat;
    FOptions = A->FOptions;
    FMinimum = A->FMinimum;
    FMaximum = A->FMaximum;
    FZoomMinimum = A->FZoomMinimum;
    FZoomMaximum = A->FZoomMaximum;
    FZooming = A->FZooming;
    FEndPosition = A->FEndPosition;
    FSpanKnown = false;
    FStartPosition = A->FStartPosition;
    FInwardPosition = A->FInwardPosition;
  }
  inherited::Assign(Source);
}

void TKXChartAxis::DefineProperties(TFiler& Filer) {
  using A = TKXChartAxis;
  inherited::DefineProperties(Filer);
  Filer.Property("Format", this, &A::Format, &A::SetFormat);
  Filer.Property("DateTimeFormat", this, &A::DateTimeFormat, &A::SetDateTimeFormat);
  Filer.Property("Grid", this, &A::Grid);
  Filer.Property("Labels", this, &A::Labels);
  Filer.Property("LabelIncrement", this, &A::LabelIncrement, &A::SetLabelIncrement);
  Filer.Property("LabelStyle", this, &A::LabelStyle, &A::SetLabelStyle);
  Filer.Property("LogBase", this, &A::LogBase, &A::SetLogBase, 10);
  Filer.Property("LogCycles", this, &A::LogCycles, &A::SetLogCycles);
  Filer.Property("LogarithmicType", this, &A::LogarithmicType, &A::SetLogarithmicType);
  Filer.Property("Maximum", this, &A::Maximum, &A::SetMaximum);
  Filer.Property("Minimum", this, &A::Minimum, &A::SetMinimum);
  Filer.Property("ZoomMaximum", this, &A::ZoomMaximum, &A::SetZoomMaximum);
  Filer.Property("ZoomMinimum", this, &A::ZoomMinimum, &A::SetZoomMinimum);
  Filer.Property("MinStepIncrement", this, &A::MinStepIncrement, &A::SetMinStepIncrement);
  Filer.Property("Options", this, &A::Options, &A::SetOptions);
  Filer.Property("StartPosition", this, &A::StartPosition, &A::SetStartPosition);
  Filer.Property("EndPosition", this, &A::EndPosition, &A::SetEndPosition, 100);
  Filer.Property("InwardPosition", this, &A::InwardPosition, &A::SetInwardPosition);
  Filer.Property("MinSeparationPct", this, &A::MinSeparationPct, &A::SetMinSeparationPct, 10);
  Filer.Property("SnapGrid", this, &A::SnapGrid, &A::SetSnapGrid, true);
  Filer.Property("Title", this, &A::Title);
  Filer.Property("TitleMargin", this, &A::TitleMargin, &A::SetTitleMargin, 3);
  Filer.Property("Brush", this, &A::Brush);
  Filer.Property("Pen", this, &A::Pen);
  Filer.Property("Opacity", this, &A::Opacity, &A::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &A::Visible, &A::SetVisible, true);
}

// --- TKXLocalChartAxis ---

TKXLocalChartAxis::TKXLocalChartAxis(TKXCustomChart* AChart)
    : TKXChartAxis(nullptr), FChart(AChart) {}

void TKXLocalChartAxis::AfterConstruction() {
  inherited::AfterConstruction();
  if (FChart && FChart->Font()) {
    TakeFont(FTitle.get(), FChart->Font());
    TakeFont(FLabels.get(), FChart->Font());
    FTitle->Font()->UseCurrentAsDefaults();
    FLabels->Font()->UseCurrentAsDefaults();
  }
}

int32_t TKXLocalChartAxis::AxisToPixel(double Value) const {
  return FChart ? AxisToPixel(Value, FChart->ClientRect()) : inherited::AxisToPixel(Value);
}

double TKXLocalChartAxis::PixelToAxis(int32_t Pixel, bool IgnoreZoom) const {
  return FChart ? PixelToAxis(Pixel, FChart->ClientRect(), IgnoreZoom)
                : inherited::PixelToAxis(Pixel, IgnoreZoom);
}

} // namespace kx
