// TKXChartAxis on a canvas: label texts, the label step their size allows, measuring and painting.
#include <algorithm>
#include <cmath>
#include <optional>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartList.h"
#include "kxcharts/core/KXChartValues.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"
#include "kxcharts/toolkit/runtime/KXFormat.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXMath.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

namespace {

// Log10 of the width of AMin..AMax; a width beyond the double range (1e308 - -1e308) is
// taken in halves. NaN when an end is not finite.
double RangeLog10(double AMin, double AMax) {
  const double Width = std::fabs(AMax - AMin);
  if (std::isfinite(Width)) return std::log10(Width);
  if (!std::isfinite(AMin) || !std::isfinite(AMax)) return std::nan("");
  return std::log10(std::fabs(AMax / 2 - AMin / 2)) + std::log10(2.0);
}

// A label closer to 0 than this share of the step is the 0 that accumulated error missed.
constexpr double ZeroWithinStep = 1e-9;

bool UsableStep(double Step) {
  return Step > 0 && std::isfinite(Step);
}

// The box of a label of W x H at anchor P by alignment.
TRect LabelBox(const TPoint& P, int32_t W, int32_t H, TAlignment Alignment) {
  switch (Alignment) {
  case taLeftJustify:
    return {P.X - W, P.Y - H, P.X, P.Y};
  case taRightJustify:
    return {P.X, P.Y, P.X + W, P.Y + H};
  default:
    return {P.X - CanvasDiv(W, 2), P.Y - CanvasDiv(H, 2), P.X + CanvasDiv(W, 2),
            P.Y + CanvasDiv(H, 2)};
  }
}

int32_t Extent(int32_t From, int32_t To) {
  return static_cast<int32_t>(std::clamp<int64_t>(int64_t(To) - From, INT32_MIN, INT32_MAX));
}

} // namespace

// --- Label texts ---

std::string TKXChartAxis::FormatValue(double Value) const {
  if (IsDateTime() && Value >= MinDateTime && Value <= MaxDateTime)
    return FormatDateTime(FDateTimeFormat, Value);
  return FormatFloat(FFormat.empty() ? std::string_view("%.4f") : std::string_view(FFormat), Value);
}

TAxisLabelStyle TKXChartAxis::GetAxisLabelStyle() const {
  if (FLabelStyle != alsAuto) return FLabelStyle;
  const TKXCustomChart* Active = FCharts->ActiveChart();
  if (Active && !Active->AxesHints().Contains(ahIgnoreAxes) && Active->Values()->Count() > 0 &&
      Active->WantsCaptions(this))
    return alsCaption;
  return alsValue;
}

// --- Label steps ---

double TKXChartAxis::NewSpacing(double Value) {
  // Only a finite number above 0 has a next step; the ladder is climbed in a loop rather
  // than by recursion, which a subnormal number would take hundreds of levels deep.
  if (!UsableStep(Value)) return Value;
  int32_t Shift = 0;
  while (Value < 1) {
    Value *= 10;
    --Shift;
  }
  while (Value >= 25) {
    Value *= 0.1;
    ++Shift;
  }
  double Result = Value < 2 ? 2 : Value < 5 ? 5 : Value < 10 ? 10 : 25;
  // Scaled back a power at a time, as the recursive ladder does, to the same bits.
  for (; Shift < 0; ++Shift)
    Result *= 0.1;
  for (; Shift > 0; --Shift)
    Result *= 10;
  return Result;
}

double TKXChartAxis::GetMajorGridSpacing(double Spacing, double PixelSize, int32_t MaxPixel,
                                         int32_t MinPixel, double MinSeparation,
                                         const TGetTextDimMethod& GetTextDim) {
  if (FLabelIncrement != 0) return FLabelIncrement;
  // A negative separation (an inverted rectangle) would let a refit come back to the same
  // size; with none, every refit asks for a strictly longer step, bounded by the longest
  // label text, so the search ends.
  MinSeparation = std::max(MinSeparation, 0.0);
  const int64_t Length = std::max<int64_t>(int64_t(MaxPixel) - MinPixel, 0);
  for (;;) {
    double Value = FMaximum - Spacing;
    double Pos = MaxPixel - PixelSize;
    const double Advance = PixelSize + MinSeparation;
    bool Refit = false;
    // At most one label per pixel of the axis is worth measuring.
    for (int64_t Measured = 0; Measured <= Length; ++Measured) {
      const int32_t D = GetTextDim(FormatValue(Value));
      if (D > Advance) {
        // The labels do not fit: twice the step, which must reach at least this label.
        Spacing *= 2;
        PixelSize = D;
        Refit = true;
        break;
      }
      // Labels that take no room along an axis of no length: nothing moves the walk on.
      if (!(Advance > 0)) break;
      Value -= Spacing;
      Pos -= Advance;
      if (MinPixel >= Pos) break;
    }
    if (!Refit || !std::isfinite(Spacing)) return Spacing;
  }
}

double TKXChartAxis::GetLabelSpacing(TCanvas* Canvas, const TRect& ARect, double AMin,
                                     double AMax) {
  return LabelSpacing(Canvas, ARect, AMin, AMax, ARect);
}

double TKXChartAxis::CycleSpacing(TCanvas* Canvas, const TRect& Band, double AMin, double AMax,
                                  const TRect& MapRect) {
  return FitStepToPixels(LabelSpacing(Canvas, Band, AMin, AMax, MapRect), AMin, AMax, Band);
}

double TKXChartAxis::LabelSpacing(TCanvas* Canvas, const TRect& ARect, double AMin, double AMax,
                                  const TRect& MapRect) {
  if (AMin == AMax) return 1.0;
  TGetTextDimMethod Dim;
  int32_t MaxPixel, MinPixel;
  if (IsVertical()) {
    Dim = [Canvas](const std::string& Text) { return Canvas->TextHeight(Text); };
    MaxPixel = ARect.Bottom;
    MinPixel = ARect.Top;
  } else {
    Dim = [Canvas](const std::string& Text) { return Canvas->TextWidth(Text); };
    MaxPixel = ARect.Right;
    MinPixel = ARect.Left;
  }
  const double MinSeparation = double((int64_t(MaxPixel) - MinPixel) * FMinSeparationPct) / 100;
  const double Spacing = NewSpacing(Power(10.0, RangeLog10(AMin, AMax) - 1.0));
  double Result;
  if (UsableStep(Spacing)) {
    const double PixelSize =
        std::fabs(double(AxisToPixel(AMax, MapRect)) - AxisToPixel(AMax - Spacing, MapRect));
    Result = GetMajorGridSpacing(Spacing, PixelSize, MaxPixel, MinPixel, MinSeparation, Dim);
  } else {
    // A range without a usable step (NaN or infinite ends, a width whose tenth underflows)
    // only has the labels of a fixed increment.
    Result = FLabelIncrement;
  }
  if (std::isnan(Result)) Result = 0;
  if (std::fabs(Result) >= 1 && std::isfinite(Result)) Result = std::trunc(Result);
  return std::max(Result, FMinStepIncrement);
}

double TKXChartAxis::FitStepToPixels(double Step, double Lo, double Hi, const TRect& ARect) const {
  if (!UsableStep(Step)) return Step;
  const double Pixels = std::max(
      IsVertical() ? double(ARect.Bottom) - ARect.Top : double(ARect.Right) - ARect.Left, 1.0);
  // In halves, so that a range as wide as the doubles do not overflow.
  const double HalfWidth = std::fabs(Hi / 2 - Lo / 2);
  while (UsableStep(Step) && HalfWidth / Step > (Pixels + 1) / 2)
    Step *= 2;
  return Step;
}

double TKXChartAxis::SkipDown(double Value, double Limit, double Step) {
  if (!UsableStep(Step) || !std::isfinite(Value) || !std::isfinite(Limit)) return Value;
  if (Value > Limit) {
    // All but the last steps at once; the walk below finishes where single steps land.
    const double Steps = std::floor((Value / 2 - Limit / 2) / Step * 2);
    if (Steps > 2 && std::isfinite(Steps)) Value -= (Steps - 1) * Step;
  }
  while (Value > Limit) {
    const double Next = Value - Step;
    if (!(Next < Value)) break;
    Value = Next;
  }
  return Value;
}

// --- The two passes ---

void TKXChartAxis::CalculateBounds(TCanvas* Canvas, const TRect& ARect) {
  if (!Canvas) throw Exception("Cannot measure a " + ClassName() + " without a canvas");
  FIsDrawing = false;
  DrawAxis(Canvas, ARect);
}

void TKXChartAxis::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  FIsDrawing = true;
  TFinally Measuring([this] { FIsDrawing = false; });
  inherited::InternalDraw(Canvas, ARect);
  DrawAxis(Canvas, ARect);
}

void TKXChartAxis::DrawAxis(TCanvas* Canvas, const TRect& ARect) {
  TRect R = ARect;
  if (FNeedAxisUpdate) UpdateAxisValues();
  FHeight = Extent(R.Top, R.Bottom);
  FWidth = Extent(R.Left, R.Right);
  if (FInwardPosition != 0) {
    const int32_t Across =
        CanvasTrunc((IsVertical() ? FWidth : FHeight) * (FInwardPosition / 100.0));
    switch (FLocation) {
    case calLeft:
      R.Left = CanvasRound(double(R.Left) + Across);
      break;
    case calRight:
      R.Right = CanvasRound(double(R.Right) - Across);
      break;
    case calBottom:
      R.Bottom = CanvasRound(double(R.Bottom) - Across);
      break;
    case calTop:
      R.Top = CanvasRound(double(R.Top) + Across);
      break;
    }
  }
  if (FOptions.Contains(aoShowTitle)) R = DrawTitle(Canvas, R);
  if (FOptions.Contains(aoShowLabels)) R = DrawLabels(Canvas, R);
  const TRect G = R;
  R = DrawAxisLine(Canvas, R);
  if (FGrid->Visible()) DrawGrid(Canvas, G);
  if (!FIsDrawing) {
    FHeight = CanvasRound(double(FHeight) - Extent(R.Top, R.Bottom));
    FWidth = CanvasRound(double(FWidth) - Extent(R.Left, R.Right));
  }
}

// --- The parts ---

TRect TKXChartAxis::DrawTitle(TCanvas* Canvas, TRect ARect) {
  TRect T = ARect, Result = ARect;
  Canvas->SetFont(FTitle->Font());
  const std::string Text = FTitle->Text();
  const TSize Size = GetRotatedTextExtent(Canvas, FTitle->Angle(), Text);
  const int32_t CX = Size.cx, CY = Size.cy, M = FTitleMargin;
  const auto At = [](int32_t V, double D) { return CanvasRound(double(V) + D); };
  switch (FLocation) {
  case calLeft:
    Result.Left = At(Result.Left, double(CX) + M);
    T.Right = At(Result.Left, -M);
    break;
  case calRight:
    Result.Right = At(Result.Right, -double(CX) - M);
    T.Left = At(Result.Right, M);
    break;
  case calBottom:
    Result.Bottom = At(Result.Bottom, -double(CY) - 2.0 * M);
    T.Top = At(Result.Bottom, M);
    break;
  case calTop:
    Result.Top = At(Result.Top, double(CY) + M);
    T.Bottom = At(Result.Top, -M);
    break;
  }
  // Along a vertical axis the title's alignment names the end it keeps to, seen as the
  // text reads: at the left from the bottom up, at the right from the top down.
  const TAlignment Align = FTitle->Alignment();
  if (FLocation == calLeft) {
    if (Align == taLeftJustify) T.Top = At(T.Bottom, -CY);
    if (Align == taRightJustify) T.Bottom = At(T.Top, CY);
  } else if (FLocation == calRight) {
    if (Align == taLeftJustify) T.Bottom = At(T.Top, CY);
    if (Align == taRightJustify) T.Top = At(T.Bottom, -CY);
  }
  if (FIsDrawing) FTitle->Draw(Canvas, T);
  return Result;
}

TRect TKXChartAxis::DrawLabels(TCanvas* Canvas, TRect ARect) {
  TRect Result = ARect;
  if (FZoomMaximum == FZoomMinimum) return Result;
  Canvas->SetFont(FLabels->Font());
  const TAxisLabelStyle Style = GetAxisLabelStyle();
  double Step = GetLabelSpacing(Canvas, ARect, FZoomMinimum, FZoomMaximum);
  // A step finer than a pixel (a tiny fixed increment) would only draw labels over each
  // other, at a cost without bound.
  Step = FitStepToPixels(Step, FZoomMinimum, FZoomMaximum, ARect);
  FGrid->FMajorGridInterval = UsableStep(Step) ? Step : 0.0;
  if (!UsableStep(Step)) return Result;

  double Top;
  if (FSnapGrid) {
    // The whole-number part as a double: beyond 2^31 steps (1e20 in steps of 5000) a pixel
    // truncation would saturate and put the labels nowhere near the range.
    FGrid->FMajorGridStart = std::trunc(FZoomMaximum / Step) * Step;
    Top = FGrid->FMajorGridStart;
  } else {
    FGrid->FMajorGridStart = FZoomMaximum;
    Top = FMaximum;
  }
  Top = SkipDown(Top, FZoomMaximum, Step);
  // Each label is worked out from the first one and its count, never by subtracting the
  // step again and again: on a range as wide as the doubles the error that piles up would
  // read as a label (-9.98E291 where 0 belongs). What is 0 within the step's precision is 0.
  const auto LabelValue = [Top, Step](double K) {
    const double V = Top - K * Step;
    return std::fabs(V) < Step * ZeroWithinStep ? 0.0 : V;
  };

  TKXCustomChart* Active = FCharts->ActiveChart();
  const bool Captions = Style == alsCaption && Active;
  int32_t Index = Active ? Active->Values()->Count() - 1 : -1;
  int32_t MaxSize = 0;
  TRect Last{};
  bool First = true;
  const bool Vertical = IsVertical();
  const int32_t LabelHeight = Canvas->TextHeight("A");
  const TAlignment Align = FLabels->Alignment();
  std::optional<TCanvasOpacity> Layer;
  if (FIsDrawing) {
    Layer.emplace(Canvas, FLabels->Opacity());
    Canvas->Brush()->SetStyle(bsClear);
  }
  double V = LabelValue(0);
  for (double K = 0; FZoomMinimum <= V && V <= FZoomMaximum;) {
    const std::string Text = Captions ? Active->GetAxisCaption(this, Index, V) : FormatValue(V);
    TSize Size = Canvas->TextExtent(Text);
    MaxSize = std::max(MaxSize, Size.cx);
    if (FIsDrawing && FLabels->Visible()) {
      TPoint P;
      switch (FLocation) {
      case calLeft:
        P = {ARect.Left, AxisToPixel(V, ARect)};
        break;
      case calRight:
        P = {CanvasRound(double(ARect.Right) - FMaxLabelWidth), AxisToPixel(V, ARect)};
        break;
      case calBottom:
        P = {AxisToPixel(V, ARect), CanvasRound(double(ARect.Bottom) - LabelHeight)};
        break;
      case calTop:
        P = {AxisToPixel(V, ARect), ARect.Top};
        break;
      }
      const TRect B = LabelBox(P, Size.cx, Size.cy, Align);
      if (First || !KXIntersectRect(B, Last)) {
        Last = B;
        // Alignment moves a label only along its axis.
        if (Vertical)
          Size.cx = 0;
        else
          Size.cy = 0;
        const TRect At = LabelBox(P, Size.cx, Size.cy, Align);
        DrawLabel(Canvas, V, Text, {At.Left, At.Top});
        First = false;
      }
    }
    // A step below the resolution of the value (1e20 in steps of 5000) ends the walk.
    const double Next = LabelValue(++K);
    if (!(Next < V)) break;
    V = Next;
  }
  FMaxLabelWidth = MaxSize;
  switch (FLocation) {
  case calLeft:
    Result.Left = CanvasRound(double(Result.Left) + MaxSize);
    break;
  case calRight:
    Result.Right = CanvasRound(double(Result.Right) - MaxSize - 1);
    break;
  case calBottom:
    Result.Bottom = CanvasRound(double(Result.Bottom) - LabelHeight);
    break;
  case calTop:
    Result.Top = CanvasRound(double(Result.Top) + LabelHeight);
    break;
  }
  return Result;
}

void TKXChartAxis::DrawLabel(TCanvas* Canvas, double, const std::string& Text, const TPoint& At) {
  Canvas->TextOut(At.X, At.Y, Text);
}

TRect TKXChartAxis::DrawAxisLine(TCanvas* Canvas, TRect ARect) {
  TRect R = ARect;
  Canvas->SetPen(Pen());
  FGrid->FAxisLine = FGrid->ShouldDrawMajorTicks() ? FGrid->FTickLength : 0;
  const int32_t A = FGrid->FAxisLine;
  TPoint P1, P2;
  switch (FLocation) {
  case calLeft:
    R.Left = CanvasRound(double(R.Left) + A);
    P1 = CanvasPoint(R.Left, R.Top);
    P2 = CanvasPoint(R.Left, R.Bottom);
    break;
  case calRight:
    R.Right = CanvasRound(double(R.Right) - A);
    P1 = CanvasPoint(R.Right, R.Top);
    P2 = CanvasPoint(R.Right, R.Bottom);
    break;
  case calBottom:
    R.Bottom = CanvasRound(double(R.Bottom) - A);
    P1 = CanvasPoint(R.Left, R.Bottom);
    P2 = CanvasPoint(R.Right, R.Bottom);
    break;
  case calTop:
    R.Top = CanvasRound(double(R.Top) + A);
    P1 = CanvasPoint(R.Left, R.Top);
    P2 = CanvasPoint(R.Right, R.Top);
    break;
  }
  if (FIsDrawing) TVclCanvasHelper::DrawLine(Canvas, P1, P2);
  return R;
}

TRect TKXChartAxis::DrawGrid(TCanvas* Canvas, TRect ARect) {
  if (FIsDrawing) FGrid->Draw(Canvas, ARect);
  return ARect;
}

} // namespace kx
