#include "kxcharts/charts/bars/KXEQChart.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXEQChartValue ---

TKXEQChartValue::TKXEQChartValue(TCollection* Collection) : TKXBarChartValue(Collection) {
  if (!TKXChartValue::Collection()) Resize(2);
}

TKXEQChartValues* TKXEQChartValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXEQChartValues::StaticClass())
             ? static_cast<TKXEQChartValues*>(Values)
             : nullptr;
}

void TKXEQChartValue::ValueChanged(int32_t Dimension) {
  if (TKXChartValue::Collection() && High() < GetValue(0)) {
    if (Dimension == 0) StoreValue(1, GetValue(0));
    if (Dimension == 1) StoreValue(0, High());
  }
  inherited::ValueChanged(Dimension);
}

void TKXEQChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("High", this, &TKXEQChartValue::High, &TKXEQChartValue::SetHigh, 0.0);
}

// --- TKXEQChartValues ---

TKXEQChartValues::TKXEQChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKXBarChartValues(AOwner, ValueClass) {
  FNumDimensions = 2;
}

TKXEQChart* TKXEQChartValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return Chart && Chart->InheritsFrom(TKXEQChart::StaticClass()) ? static_cast<TKXEQChart*>(Chart)
                                                                  : nullptr;
}

TKXEQChartValue* TKXEQChartValues::Add() {
  return Add(0.0, 0.0, "");
}

TKXEQChartValue* TKXEQChartValues::Add(double Value, const std::string& Caption, TColor Color) {
  return Add(Value, Value, Caption, Color);
}

TKXEQChartValue* TKXEQChartValues::Add(double Value, double High, const std::string& Caption,
                                       TColor Color) {
  const double Numbers[] = {Value, High};
  return static_cast<TKXEQChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

void TKXEQChartValues::ResetHigh() {
  TUpdateScope<TKXChartValues> Scope(this);
  for (TKXEQChartValue* V : *this)
    V->ResetHigh();
}

double TKXEQChartValues::GetAxisMaximum(int32_t Dimension) const {
  const TKXEQChart* Chart = Owner();
  if (!Chart) return inherited::GetAxisMaximum(Dimension);
  return Dimension != Chart->Orientation() ? Count() - 0.5 : Chart->Max();
}

double TKXEQChartValues::GetAxisMinimum(int32_t Dimension) const {
  const TKXEQChart* Chart = Owner();
  if (!Chart) return inherited::GetAxisMinimum(Dimension);
  return Dimension != Chart->Orientation() ? -0.5 : Chart->Min();
}

// --- TKXEQChart: life and properties ---

void TKXEQChart::InitializeChart() {
  inherited::InitializeChart();
  FStyle = eqSegments;
  FSubdivisions = 20;
  FSpacing = 10;
  FMax = 100;
  FMin = 0;
  FMaxColor = TColor(65280);
  FMinColor = TColor(255);
  FEQOptions = TEQOptions::FromBits(5);
  FBarSizePct = 95;
}

TOwned<TKXChartValues> TKXEQChart::CreateChartValues() {
  return MakeOwned<TKXEQChartValues>(this, ClassOf<TKXEQChartValue>());
}

void TKXEQChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TFinally KeepPreview([this] { FPreview = true; });
  TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
  static std::minstd_rand Random(2014);
  for (int I = 0; I < 7; ++I)
    Values()->Add(double(Random() % 100), "", TColor(-1));
}

void TKXEQChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXEQChart*>(Source)) {
    FStyle = Src->FStyle;
    FOrientation = Src->FOrientation;
    FSubdivisions = Src->FSubdivisions;
    FSpacing = Src->FSpacing;
    FMax = Src->FMax;
    FMin = Src->FMin;
    FMaxColor = Src->FMaxColor;
    FMinColor = Src->FMinColor;
    FEQOptions = Src->FEQOptions;
  }
  inherited::Assign(Source);
}

void TKXEQChart::EQChanged() {
  Changed();
}

void TKXEQChart::SetStyle(TEQChartStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  EQChanged();
}

void TKXEQChart::SetSubdivisions(int32_t Value) {
  Value = std::clamp(Value, 1, MaxSubdivisions);
  if (FSubdivisions == Value) return;
  FSubdivisions = Value;
  EQChanged();
}

void TKXEQChart::SetSpacing(int32_t Value) {
  Value = std::max(Value, 0);
  if (FSpacing == Value) return;
  FSpacing = Value;
  EQChanged();
}

void TKXEQChart::SetMax(double Value) {
  if (FMax == Value) return;
  FMax = Value;
  if (FMax < FMin) FMin = FMax;
  EQChanged();
}

void TKXEQChart::SetMin(double Value) {
  if (FMin == Value) return;
  FMin = Value;
  if (FMin > FMax) FMax = FMin;
  EQChanged();
}

void TKXEQChart::SetMaxColor(TColor Value) {
  if (FMaxColor == Value) return;
  FMaxColor = Value;
  EQChanged();
}

void TKXEQChart::SetMinColor(TColor Value) {
  if (FMinColor == Value) return;
  FMinColor = Value;
  EQChanged();
}

void TKXEQChart::SetEQOptions(TEQOptions Value) {
  if (FEQOptions == Value) return;
  FEQOptions = Value;
  EQChanged();
}

void TKXEQChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using C = TKXEQChart;
  Filer.Property("Style", this, &C::Style, &C::SetStyle, eqSegments);
  Filer.Property("Subdivisions", this, &C::Subdivisions, &C::SetSubdivisions, 20);
  Filer.Property("Spacing", this, &C::Spacing, &C::SetSpacing, 10);
  Filer.Property("Max", this, &C::Max, &C::SetMax, 100.0);
  Filer.Property("Min", this, &C::Min, &C::SetMin, 0.0);
  Filer.Property("MaxColor", this, &C::MaxColor, &C::SetMaxColor, TColor(65280));
  Filer.Property("MinColor", this, &C::MinColor, &C::SetMinColor, TColor(255));
  Filer.Property("EQOptions", this, &C::EQOptions, &C::SetEQOptions, TEQOptions::FromBits(5));
  Filer.Property("UseOrigin", this, &C::UseOrigin, &C::SetUseOrigin, true);
  Filer.Property("Orientation", this, &C::Orientation, &C::SetOrientation, boVertical);
}

// --- TKXEQChart: look ---

double TKXEQChart::Fraction(double Value) const {
  const double Span = FMax - FMin;
  if (!(Span > 0.0) || !std::isfinite(Span)) return Value > FMin ? 1.0 : 0.0;
  return std::clamp((Value - FMin) / Span, 0.0, 1.0);
}

void TKXEQChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                                    bool AdjustPen) {
  inherited::SetCanvasResources(Canvas, Value, AdjustFont, AdjustPen);
  const bool SelectionPainted = Value && Value->Selected() && FOptions.Contains(coSelectionFill);
  if (!SelectionPainted && !FOptions.Contains(coValueColors)) Canvas->Brush()->SetColor(FMaxColor);
}

TRect TKXEQChart::GetBarRect(const TRect& ARect, const TKXBarChartValue* Value,
                             const TKXCustomChart* PrevChart, double BarHalfSize, double Origin,
                             double Offset) const {
  TRect B = inherited::GetBarRect(ARect, Value, PrevChart, BarHalfSize, Origin, Offset);
  if (FStyle != eqTopSegment) return B;
  const bool Standing = FOrientation == boVertical;
  const int32_t Seg = CanvasTrunc((Standing ? KXRectHeight(ARect) : KXRectWidth(ARect)) /
                                  FSubdivisions);
  // A chart shorter than its segments has none to narrow to: the whole bar answers.
  if (Seg <= 0) return B;
  const int32_t L = CanvasTrunc(Standing ? KXRectHeight(B) : KXRectWidth(B));
  const bool Partial = FEQOptions.Contains(eoPartialSegment);
  if (Standing) {
    B.Bottom = B.Top + L % Seg;
    if (!Partial) B.Top = B.Bottom - Seg;
  } else {
    B.Left = B.Right - L % Seg;
    if (!Partial) B.Right = B.Left + Seg;
  }
  return B;
}

// --- TKXEQChart: drawing ---

void TKXEQChart::DrawBar(TCanvas* Canvas, TRect& ARect, const TRect& ChartRect,
                         const TKXEQChartValue* Value) {
  bool DefaultDraw = true;
  if (FOnCustomDrawValue) {
    FOnCustomDrawValue(this, Canvas, ChartRect, Value, DefaultDraw);
    if (!DefaultDraw) return;
  }
  const float Opacity = FOpacity * Value->Opacity();
  if (FStyle != eqSolid) {
    DrawEQBar(Canvas, ARect, ChartRect, Value->Value(),
              Value->Selected() ? FSelectionColor : Value->Color(), Opacity);
    return;
  }
  if (!FEQOptions.Contains(eoColorBands)) {
    DrawShape(Canvas, ARect, static_cast<const TBitmap*>(nullptr), shpRectangle, true,
              clBtnHighlight, clBtnShadow, 3, Opacity);
    return;
  }
  const TColor Level = InterpolateColor(FMinColor, Canvas->Brush()->Color(), Fraction(Value->Value()));
  // MinColor at the axis's low end.
  const bool MinFirst =
      FOrientation == boHorizontal
          ? !(FHorizontalAxis && FHorizontalAxis->Options().Contains(aoReversed))
          : (FVerticalAxis && FVerticalAxis->Options().Contains(aoReversed));
  const TColor Colors[2] = {MinFirst ? FMinColor : Level, MinFirst ? Level : FMinColor};
  LineGradient(Canvas, ARect, Colors, 1, 1, static_cast<TGradientOrientation>(FOrientation), Opacity);
}

void TKXEQChart::DrawEQBar(TCanvas* Canvas, TRect& ARect, const TRect& ChartRect, double Value,
                           TColor Color, float) {
  const bool Bands = FEQOptions.Contains(eoColorBands);
  int32_t Channel[3] = {0, 0, 0}, Delta[3] = {0, 0, 0};
  if (Bands) {
    const TColor Top = FOptions.Contains(coValueColors) ? Color : FMaxColor;
    const uint32_t Low = uint32_t(ColorToRGB(FMinColor)), High = uint32_t(ColorToRGB(Top));
    for (int K = 0; K < 3; ++K) {
      Channel[K] = int32_t((Low >> (8 * K)) & 0xFF);
      Delta[K] = (Channel[K] - int32_t((High >> (8 * K)) & 0xFF)) / FSubdivisions;
    }
    Canvas->Brush()->SetColor(FMinColor);
  }
  const double Step = (FMax - FMin) / FSubdivisions;
  // Max equal to Min: a meter of no height has no segment.
  if (!(Step > 0.0) || !std::isfinite(Step)) return;
  const TKXChartAxis* Axis = ValueAxis();
  if (!Axis) return;
  const auto Pixel = [&](double V) { return Axis->AxisToPixel(V, ChartRect); };
  const double Off = GetAdjOffsetVertical();
  const bool Partial = FEQOptions.Contains(eoPartialSegment);
  double Level = FMin;
  for (int32_t K = 0; K < FSubdivisions; ++K) {
    double SegEnd = Level + Step * ((100 - FSpacing) / 100.0);
    if (Partial && Value < SegEnd) SegEnd = Value;
    if (FStyle == eqSegments || Value < Level + Step) {
      const int32_t Start = Pixel(Level + Off), End = Pixel(SegEnd + Off);
      const int32_t Next = Pixel(Level + Off + Step);
      // A segment without spacing still leaves a pixel to the next.
      if (FOrientation == boHorizontal) {
        ARect.Left = Start;
        ARect.Right = End == Next ? End - 1 : End;
      } else {
        ARect.Bottom = Start;
        ARect.Top = End == Next ? End + 1 : End;
      }
      Canvas->FillRect(ARect);
    }
    Level += Step;
    if (Value < Level) break;
    if (Bands) {
      for (int C = 0; C < 3; ++C)
        Channel[C] = std::clamp(Channel[C] - Delta[C], 0, 255);
      Canvas->Brush()->SetColor(TColor(Channel[0] | (Channel[1] << 8) | (Channel[2] << 16)));
    }
  }
}

void TKXEQChart::DrawHighMark(TCanvas* Canvas, const TRect& ARect, const TRect& ChartRect,
                              double High) {
  Canvas->Brush()->SetColor(InterpolateColor(FMinColor, Canvas->Brush()->Color(), Fraction(High)));
  if (FOrientation == boHorizontal) {
    if (!FHorizontalAxis) return;
    const int32_t X = FHorizontalAxis->AxisToPixel(High, ChartRect);
    Canvas->FillRect(TRect{X, ARect.Top, X + 1, ARect.Bottom});
  } else {
    if (!FVerticalAxis) return;
    const int32_t Y = FVerticalAxis->AxisToPixel(High, ChartRect);
    Canvas->FillRect(TRect{ARect.Left, Y, ARect.Right, Y + 2});
  }
}

void TKXEQChart::InternalDraw(TCanvas* Canvas, const TRect& ChartRect) {
  const TKXEQChartValues* V = Values();
  const int32_t Count = V->Count();
  TKXChartAxis* Index = IndexAxis();
  if (Count == 0 || !Index || !ValueAxis()) return;
  DoUpdateAxisInfo(Index);
  const int32_t First = std::max(FFirstIndex, 0), Last = std::min(FLastIndex, Count - 1);
  SetCanvasResources(Canvas, nullptr, true, true);
  const double Origin = GetAdjOrigin();
  const double Unit = double(Index->AxisToPixel(1.0, ChartRect)) - Index->AxisToPixel(0.0, ChartRect);
  FBarSize = CanvasRound(Unit * FBarSizePct / 100.0);
  const double Half = FBarSizePct / 200.0;
  const double Off = GetAdjOffsetVertical();
  const TKXChartShadow* Shadow =
      !FOptions.Contains(coNoChartShadow) && FPanel && FPanel->ChartShadow()->Visible()
          ? FPanel->ChartShadow()
          : nullptr;
  for (int32_t I = First; I <= Last; ++I) {
    const TKXEQChartValue* Value = V->Items(I);
    if (!Value->Visible() || !(Value->Opacity() > 0.0f) || !HasFiniteNumbers(Value)) continue;
    // EQ bars of a group do not stack: a stacked group only starts them at the origin.
    const double Base = FGroupStyle != gsNone             ? Origin + Off
                        : FOrientation == boVertical ? Off + Origin
                                                     : Off;
    TRect R = SpanRect(ChartRect, I, Half, Base + Value->Value(), Base);
    if (Value->Scale() != 1.0f) R = Value->ScaledRect(R);
    if (Shadow) {
      // The shadow is one colour: no bands.
      const TEQOptions Kept = FEQOptions;
      TFinally Restore([this, Kept] { FEQOptions = Kept; });
      FEQOptions.Exclude(eoColorBands);
      SetCanvasResources(Canvas, Shadow->Brush(), Shadow->Pen(), nullptr, true, true);
      TRect S = Shadow->ShadowRect(R, false, Canvas);
      DrawBar(Canvas, S, ChartRect, Value);
      R = Shadow->NonShadowRect(R, false, Canvas);
    }
    SetCanvasResources(Canvas, Value, true, true);
    DrawBar(Canvas, R, ChartRect, Value);
    if (FEQOptions.Contains(eoHighMark)) {
      Canvas->Brush()->SetColor(FOptions.Contains(coValueColors) ? Value->Color() : Color());
      DrawHighMark(Canvas, R, ChartRect, Value->High());
    }
    if (FOptions.Contains(coValueLabels)) {
      const std::string Text = FormatValue(Value, FValueLabelStyle);
      R.Bottom = R.Top + Canvas->TextHeight(Text);
      R = KXInflateRect(R, CanvasTrunc(Unit / 2.0 - 2.0), 0);
      const int32_t DX = FOrientation == boVertical ? 0 : Canvas->TextWidth("W");
      const int32_t DY = FOrientation == boVertical ? -Canvas->TextHeight("W")
                                                    : CanvasDiv(Canvas->TextHeight("W"), 2);
      R = {R.Left + DX, R.Top + DY, R.Right + DX, R.Bottom + DY};
      const TPoint P = CanvasCenterPoint(R);
      DrawLabel(Canvas, Value, P.X, P.Y);
    }
  }
}

void TKXEQChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  if (!Value || !Value->InheritsFrom(TKXEQChartValue::StaticClass())) {
    inherited::DrawGlyph(Canvas, Value, ARect);
    return;
  }
  KeepCanvasResources(Canvas, [&] {
    SetCanvasResources(Canvas, Value, false, false);
    if (FStyle == eqSolid) {
      TRect R = ARect;
      DrawBar(Canvas, R, ARect, static_cast<const TKXEQChartValue*>(Value));
      return;
    }
    Canvas->Brush()->SetColor(FOptions.Contains(coValueColors) ? Value->Color() : FMaxColor);
    TKXCustomBarChart::DrawBar(Canvas, ARect, static_cast<const TKXBarChartValue*>(Value));
  });
}

} // namespace kx
