#include "kxcharts/charts/KXPieChart.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

namespace {

constexpr double DegToRad = std::numbers::pi / 180.0;

// The sweep of Number in a pie whose absolute sum is Sum. A sum that is 0 or not finite has
// no shares (the sum of huge numbers overflows to infinity and would give every slice 0
// anyway); a number that is not finite has none either, as the sum leaves it out.
double SweepOfNumber(double Number, double Sum) {
  if (!std::isfinite(Number) || !(Sum > 0.0) || !std::isfinite(Sum)) return 0.0;
  return Number / Sum * 360.0;
}

// R moved by (DX, DY), the sum taken in double so that no coordinate overflows.
TRect MovedRect(const TRect& R, double DX, double DY) {
  return {CanvasRound(R.Left + DX), CanvasRound(R.Top + DY), CanvasRound(R.Right + DX),
          CanvasRound(R.Bottom + DY)};
}

// The answer of a selection test once the hit is known: select takes a hit, toggle takes
// a hit that is not selected yet, unselect takes nothing.
bool SelectionAnswer(bool Hit, TKXChartSelectionAction Action, bool Selected) {
  if (!Hit) return false;
  return Action == saSelect || (Action == saToggle && !Selected);
}

} // namespace

// --- TKXPieChartValue ---

void TKXPieChartValue::SetExplode(float Value) {
  if (!(Value > 0.0f)) Value = 0.0f;
  if (FExplode == Value) return;
  FExplode = Value;
  Changed(false);
}

TKXPieChartValues* TKXPieChartValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXPieChartValues::StaticClass())
             ? static_cast<TKXPieChartValues*>(Values)
             : nullptr;
}

double TKXPieChartValue::StartDegrees() const {
  double Start, End;
  GetDegrees(Start, End);
  return Start;
}

double TKXPieChartValue::EndDegrees() const {
  double Start, End;
  GetDegrees(Start, End);
  return End;
}

void TKXPieChartValue::GetDegrees(double& StartDegrees, double& EndDegrees) const {
  StartDegrees = EndDegrees = 0.0;
  const TKXChartValues* Values = TKXChartValue::Collection();
  if (!Values) return;
  const double Sum = Values->AbsSum(0);
  const int32_t Own = Index();
  for (int32_t I = 0; I <= Own; ++I) {
    StartDegrees = EndDegrees;
    EndDegrees += SweepOfNumber(Values->Items(I)->Value(), Sum);
  }
}

bool TKXPieChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const TKXPieChartValues* Values = Collection();
  const TKXPieChart* Pie = Values ? Values->Owner() : nullptr;
  if (!Pie) return inherited::Selectable(SelRect, Action);
  const std::unique_ptr<TKXPathData> Path = Pie->GetSlicePath(Pie->SelectionArea(), this);
  // A slice of no sweep has no outline, and the bounds of nothing are not a place.
  if (!Path || Path->IsEmpty()) return false;
  const TRectF Sel = FixRect(SelRect);
  const bool Hit = Sel.Left == Sel.Right && Sel.Top == Sel.Bottom
                       ? Path->PointInPath(Sel.Left, Sel.Top)
                       : KXIntersectRect(Sel, Path->GetBounds());
  return SelectionAnswer(Hit, Action, Selected());
}

void TKXPieChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXPieChartValue*>(Source)) FExplode = Src->FExplode;
  inherited::Assign(Source);
}

void TKXPieChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Explode", this, &TKXPieChartValue::Explode, &TKXPieChartValue::SetExplode, 0.0f);
}

// --- TKXPieChartValues ---

TKXPieChart* TKXPieChartValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return Chart && Chart->InheritsFrom(TKXPieChart::StaticClass()) ? static_cast<TKXPieChart*>(Chart)
                                                                   : nullptr;
}

// --- TKXPieChart: life ---

void TKXPieChart::InitializeChart() {
  FOrigin = MakeOwned<TKXPosition>(0.0, 0.0);
  FOrigin->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  inherited::InitializeChart();
  SetOptions((FOptions - coZoomFont - coZoomPen) + coValueLabels);
  FBrush->SetStyle(bsSolid);
  SetAxesHints(TAxisHints{ahIgnoreAxes});
  FInnerRadius = 0.0f;
  FOuterRadius = 1.0f;
}

void TKXPieChart::BeforeDestruction() {
  if (FOrigin) FOrigin->SetOnChange(nullptr);
  inherited::BeforeDestruction();
}

TOwned<TKXChartValues> TKXPieChart::CreateChartValues() {
  return MakeOwned<TKXPieChartValues>(this, ClassOf<TKXPieChartValue>());
}

void TKXPieChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TFinally KeepPreview([this] { FPreview = true; });
  TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
  TKXPieChartValues* V = Values();
  V->Add(1000, "Manufacturing", TColor(-1));
  V->Add(3000, "Marketing", TColor(-1));
  V->Add(500, "Research", TColor(-1));
  V->Add(4000, "Development", TColor(-1));
  V->Add(1500, "Purchases", TColor(-1));
}

void TKXPieChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXPieChart*>(Source)) {
    FInnerRadius = Src->FInnerRadius;
    FOuterRadius = Src->FOuterRadius;
    FOffset = Src->FOffset;
    FOrigin->Assign(Src->FOrigin.get());
  }
  inherited::Assign(Source);
}

void TKXPieChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Origin", this, &TKXPieChart::Origin);
  Filer.Property("OuterRadius", this, &TKXPieChart::OuterRadius, &TKXPieChart::SetOuterRadius,
                 1.0f);
  Filer.Property("Offset", this, &TKXPieChart::Offset, &TKXPieChart::SetOffset, 0);
}

// --- TKXPieChart: properties ---

void TKXPieChart::SetOrigin(const TKXPosition* Value) {
  FOrigin->Assign(Value);
}

void TKXPieChart::SetOuterRadius(float Value) {
  if (std::isnan(Value)) return;
  Value = std::min(std::max(Value, FInnerRadius), 1.0f);
  if (FOuterRadius == Value) return;
  FOuterRadius = Value;
  Changed();
}

void TKXPieChart::SetInnerRadius(float Value) {
  if (std::isnan(Value)) return;
  Value = std::max(std::min(Value, FOuterRadius), 0.0f);
  if (FInnerRadius == Value) return;
  FInnerRadius = Value;
  Changed();
}

void TKXPieChart::SetOffset(int32_t Value) {
  Value %= 360;
  if (FOffset == Value) return;
  FOffset = Value;
  Changed();
}

void TKXPieChart::SetOptions(TChartOptions Value) {
  inherited::SetOptions(Value + coValueColors);
}

// --- TKXPieChart: geometry ---

double TKXPieChart::SweepOf(const TKXChartValue* Value) const {
  return SweepOfNumber(Value->Value(), FValues->AbsSum(0));
}

void TKXPieChart::GetRadius(const TKXPieChartValue*, float& Inner, float& Outer) const {
  Inner = FInnerRadius;
  Outer = FOuterRadius;
}

TRect TKXPieChart::OriginRect(const TRect& Rect) const {
  if (FOrigin->X() == 0.0 && FOrigin->Y() == 0.0) return Rect;
  return MovedRect(Rect, CanvasRound(KXRectWidth(Rect) * FOrigin->X()),
                   CanvasRound(KXRectHeight(Rect) * FOrigin->Y()));
}

TRect TKXPieChart::SelectionArea() const {
  return FPanel ? FPanel->ChartRect() : ClientRect();
}

std::unique_ptr<TKXPathData> TKXPieChart::GetSlicePath(const TRect& Rect,
                                                       const TKXPieChartValue* Value) const {
  auto Path = std::make_unique<TKXPathData>();
  float Inner, Outer;
  GetRadius(Value, Inner, Outer);
  TRect R = OriginRect(Rect);
  double Start, End;
  Value->GetDegrees(Start, End);
  // A free-form slice may start at no number; it is drawn nowhere, so it has no outline.
  if (!std::isfinite(Start) || !std::isfinite(End)) return Path;
  R = Value->ScaledRect(R);
  // Path angles turn the other way round than screen angles.
  Path->Arc(-Start, -End, Inner * 100.0, Outer * 100.0, -FOffset);
  // Built in the square from (-100, -100) to (100, 100), laid onto R.
  TKXMatrix M = CreateTranslateKXMatrix(100.0, 100.0);
  M = KXMatrixMultiply(M, CreateScaleKXMatrix(KXRectWidth(R) / 200.0, KXRectHeight(R) / 200.0));
  M = KXMatrixMultiply(M, CreateTranslateKXMatrix(R.Left, R.Top));
  Path->ApplyMatrix(M);
  return Path;
}

// --- TKXPieChart: drawing ---

TPoint TKXPieChart::DrawPieSlice(TCanvas* Canvas, const TRect& Rect, double Start, double End,
                                 const TKXPieChartValue* Value, TPieSliceOptions Flags) {
  float Inner, Outer;
  GetRadius(Value, Inner, Outer);
  TRect R = OriginRect(Rect);
  const double Mid = (Start + FOffset + (End - Start) / 2.0) * DegToRad;
  const double Ring = Inner + (Outer - Inner) / 2.0;
  const double Rx = Ring * KXRectWidth(R) / 2.0, Ry = Ring * KXRectHeight(R) / 2.0;
  const TPoint C = CanvasCenterPoint(R);
  // Taken before the explosion and the scale, which move the slice but not its label.
  const TPoint Label{CanvasRound(C.X + double(CanvasRound(Rx * std::cos(Mid)))),
                     CanvasRound(C.Y - double(CanvasRound(Ry * std::sin(Mid))))};
  if (Value->Explode() > 0.0f)
    R = MovedRect(R, CanvasTrunc(Value->Explode() * std::cos(Mid)),
                  CanvasTrunc(Value->Explode() * (0.0 - std::sin(Mid))));
  R = Value->ScaledRect(R);
  if (Flags.Contains(psSlice)) {
    const float Opacity = FOpacity * Value->Opacity();
    if (Inner == 0.0f)
      ::kx::DrawPieSlice(Canvas, R, Start, End, Outer, FOffset, Opacity);
    else
      DrawDonutSlice(Canvas, R, Start, End, FOffset, Inner, Outer, Opacity);
  }
  return Label;
}

void TKXPieChart::DrawSlice(TCanvas* Canvas, const TRect& Rect, const TKXPieChartValue* Value,
                            double Start, double End, TPieSliceOptions Flags, TColor Saved) {
  // A slice under one rounded degree is left out.
  if (!Value->Visible() || !(Value->Opacity() > 0.0f) || CanvasRound(Start) == CanvasRound(End))
    return;
  TBrush* Brush = Canvas->Brush();
  if (Flags.Contains(psSelection) && Value->Selected())
    Brush->SetColor(FSelectionColor);
  else
    Brush->SetColor(Flags.Contains(psColor) ? Value->Color() : Saved);
  const TPoint P = DrawPieSlice(Canvas, Rect, Start, End, Value, Flags);
  if (Flags.Contains(psLabel) && FOptions.Contains(coValueLabels)) {
    Brush->SetStyle(bsClear);
    DrawLabel(Canvas, Value, P.X, P.Y);
    Brush->SetStyle(FBrush->Style());
  }
}

void TKXPieChart::DrawSlices(TCanvas* Canvas, const TRect& Rect, TPieSliceOptions Flags) {
  const TKXPieChartValues* V = Values();
  const double Sum = V->AbsSum(0);
  if (!(Sum > 0.0) || !std::isfinite(Sum)) return;
  const TColor Saved = Canvas->Brush()->Color();
  double Start = 0.0;
  for (int32_t I = 0; I < V->Count(); ++I) {
    const TKXPieChartValue* Value = V->Items(I);
    const double End = Start + SweepOfNumber(Value->Value(), Sum);
    DrawSlice(Canvas, Rect, Value, Start, End, Flags, Saved);
    Start = End;
  }
}

void TKXPieChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  inherited::InternalDraw(Canvas, ARect);
  TRect R = ARect;
  const TKXChartShadow* Shadow =
      !FOptions.Contains(coNoChartShadow) && FPanel && FPanel->ChartShadow()->Visible()
          ? FPanel->ChartShadow()
          : nullptr;
  if (Shadow) {
    // Pie and shadow share the room: each takes its corner of it.
    SetCanvasResources(Canvas, Shadow->Brush(), Shadow->Pen(), FFont.get(), true, true);
    const TRect S = Shadow->ShadowRect(ARect, true);
    R = Shadow->NonShadowRect(ARect, true);
    DrawSlices(Canvas, S, TPieSliceOptions{psSlice});
    SetCanvasResources(Canvas, nullptr, true, true);
  }
  DrawSlices(Canvas, R, TPieSliceOptions{psColor, psSlice, psSelection});
  // Last, so that no slice covers a label.
  if (FOptions.Contains(coValueLabels)) DrawSlices(Canvas, R, TPieSliceOptions{psLabel});
}

// --- TKXPieChart: selection and the span in view ---

bool TKXPieChart::IsSelectable(const TRect& SelectionRect) const {
  if (!FOptions.Contains(coSelectable)) return false;
  const TRectF R = KXRect(SelectionRect);
  for (const TKXPieChartValue* V : *Values())
    if (V->Visible() && V->Selectable(R, saSelect)) return true;
  return false;
}

void TKXPieChart::InternalSelect(const TRect& ARect, TKXChartSelectionAction Action) {
  const TRectF R = KXRect(ARect);
  TUpdateScope<TChartPanelListeners> Scope(FListeners.get());
  for (TKXPieChartValue* V : *Values())
    if (V->Visible()) V->SetSelected(V->Selectable(R, Action));
}

void TKXPieChart::DoUpdateAxisInfo(TKXChartAxis*) {
  FFirstIndex = 0;
  FLastIndex = FValues->Count() - 1;
  FVisibleCount = FValues->Count();
}

} // namespace kx
