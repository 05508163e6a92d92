#include "kxcharts/charts/KXGuideCharts.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXGuideChartPen ---

void TKXGuideChartPen::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Style", psDashDot);
  inherited::DefineProperties(Filer);
}

// --- TKXGuideChartValue ---

TKXGuideChartValues* TKXGuideChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXGuideChartValues::StaticClass())
             ? static_cast<TKXGuideChartValues*>(C)
             : nullptr;
}

void TKXGuideChartValue::SetOrientation(TLineOrientations Value) {
  if (FOrientation == Value) return;
  FOrientation = Value;
  Changed(false);
}

TLineOrientations TKXGuideChartValue::SelectGuide(const TPointF& Point,
                                                  TLineOrientations Orientation,
                                                  const TRectF& Rect) {
  // The widening is in axis units whatever the scale: on an axis where a pixel is more
  // than 0.2 units, a click hits a guide only where the pixel maps that close to it.
  constexpr float Widen = 0.1f;
  TRectF R = Rect;
  if (R.Right - R.Left == 0) {
    R.Left -= Widen;
    R.Right += Widen;
  }
  if (R.Bottom - R.Top == 0) {
    R.Top -= Widen;
    R.Bottom += Widen;
  }
  if (!PtInKXRect(R, Point)) return {};
  return Orientation * TLineOrientations{loHorizontal, loVertical};
}

TLineOrientations TKXGuideChartValue::SelectGuide(const TPointF& Point, const TRectF& Rect) const {
  TLineOrientations Hit = SelectGuide(Point, FOrientation, Rect);
  if (Hit.Empty() && FOrientation.Contains(loHorizontal))
    Hit = SelectGuide(TPointF{Rect.Left, Point.Y}, FOrientation, Rect);
  if (Hit.Empty() && FOrientation.Contains(loVertical))
    Hit = SelectGuide(TPointF{Point.X, Rect.Top}, FOrientation, Rect);
  return Hit;
}

bool TKXGuideChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const TPointF P{static_cast<float>(X()), static_cast<float>(Y())};
  if (SelectGuide(P, SelRect).Empty()) return false;
  return Action == saSelect || (Action == saToggle && !Selected());
}

void TKXGuideChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXGuideChartValue*>(Source))
    FOrientation = Src->FOrientation;
  inherited::Assign(Source);
}

void TKXGuideChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Orientation", this, &TKXGuideChartValue::Orientation,
                 &TKXGuideChartValue::SetOrientation, TLineOrientations{loHorizontal});
}

// --- TKXGuideChartValues ---

TKXGuideChartValue* TKXGuideChartValues::Add(double X, const std::string& Caption, TColor Color,
                                             TLineOrientations Orientation) {
  TUpdateScope<TKXChartValues> Scope(this);
  auto* Value = static_cast<TKXGuideChartValue*>(TKX2DChartValues::Add(X, Caption, Color));
  Value->SetOrientation(Orientation);
  return Value;
}

TKXGuideChartValue* TKXGuideChartValues::Add(double X, double Y, const std::string& Caption,
                                             TColor Color, TLineOrientations Orientation) {
  TUpdateScope<TKXChartValues> Scope(this);
  auto* Value = static_cast<TKXGuideChartValue*>(TKX2DChartValues::Add(X, Y, Caption, Color));
  Value->SetOrientation(Orientation);
  return Value;
}

// --- TKXGuideChart ---

void TKXGuideChart::InitializeChart() {
  inherited::InitializeChart();
  SetOptions(FOptions + coZoomPen);
  FPen->SetStyle(psDashDot);
  FPen->SetWidth(1);
  FBrush->SetStyle(bsClear);
}

TOwned<TPen> TKXGuideChart::CreatePen() {
  return MakeOwned<TKXGuideChartPen>();
}

TOwned<TBrush> TKXGuideChart::CreateBrush() {
  return MakeOwned<TKXGuideChartBrush>();
}

TOwned<TKXChartValues> TKXGuideChart::CreateChartValues() {
  return MakeOwned<TKXGuideChartValues>(this, ClassOf<TKXGuideChartValue>());
}

void TKXGuideChart::SetColor(TColor Value) {
  const TBrushStyle Style = FBrush->Style();
  inherited::SetColor(Value);
  FBrush->SetStyle(Style);
}

void TKXGuideChart::DoUpdateAxisInfo(TKXChartAxis*) {
  FFirstIndex = 0;
  FLastIndex = FValues->Count() - 1;
  FVisibleCount = FValues->Count();
}

void TKXGuideChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  if (!FHorizontalAxis || !FVerticalAxis) return;
  const double O = GetAdjOffsetVertical();
  const int32_t Last = std::min(FLastIndex, FValues->Count() - 1);
  for (int32_t I = std::max(FFirstIndex, 0); I <= Last; ++I) {
    TKXGuideChartValue* Value = Values()->Items(I);
    if (!Value->Visible() || Value->Opacity() == 0.0f) continue;
    SetCanvasResources(Canvas, Value, true, true);
    // A guide at a number that is not finite has no line in that direction (the axis gives
    // such a number no pixel), and no place for its label.
    const bool HasX = std::isfinite(Value->X()), HasY = std::isfinite(O + Value->Y());
    const int32_t X = HasX ? FHorizontalAxis->AxisToPixel(Value->X(), ARect) : 0;
    const int32_t Y = HasY ? FVerticalAxis->AxisToPixel(O + Value->Y(), ARect) : 0;
    const float Opacity = FOpacity * Value->Opacity();
    for (TLineOrientation Line : {loHorizontal, loVertical})
      if (Value->Orientation().Contains(Line) && (Line == loHorizontal ? HasY : HasX))
        DrawGuide(Canvas, ARect, X, Y, Line, Opacity);
    if (FOptions.Contains(coValueLabels) && HasX && HasY)
      DrawLabel(Canvas, Value, X + CanvasDiv(Canvas->TextWidth(Value->Caption()), 2) + 5,
                Y - Canvas->TextHeight("A"));
  }
}

void TKXGuideChart::DrawGuide(TCanvas* Canvas, const TRect& ARect, int32_t X, int32_t Y,
                              TLineOrientation Orientation, float) {
  if (Orientation == loHorizontal)
    TVclCanvasHelper::DrawLine(Canvas, ARect.Left, Y, ARect.Right, Y);
  else
    TVclCanvasHelper::DrawLine(Canvas, X, ARect.Top, X, ARect.Bottom);
}

void TKXGuideChart::MouseHover(const TRect& ARect) {
  if (!FHorizontalAxis || !FVerticalAxis) return;
  const TRectF R =
      FixRect(TKXCustomChartPanel::RectToAxesRect(ARect, FHorizontalAxis, FVerticalAxis));
  for (int32_t I = FValues->Count() - 1; I >= 0; --I) {
    const TKXGuideChartValue* Value = Values()->Items(I);
    if (!Value->Visible() || !Value->Selectable(R, saSelect)) continue;
    const TLineOrientations Hit = Value->SelectGuide(
        TPointF{static_cast<float>(Value->X()), static_cast<float>(Value->Y())}, R);
    if (Hit == TLineOrientations{loHorizontal, loVertical})
      Screen.SetCursor(crCross);
    else if (Hit.Contains(loVertical))
      Screen.SetCursor(crHSplit);
    else if (Hit.Contains(loHorizontal))
      Screen.SetCursor(crVSplit);
    return;
  }
}

void TKXGuideChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(FValues.get());
    Values()->Add(50, 10, "10");
    Values()->Add(50, 75, "75");
  }
  FPreview = true;
}

void TKXGuideChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Options", TChartOptions::FromBits(1943));
  inherited::DefineProperties(Filer);
}

} // namespace kx
