#include "kxcharts/charts/KXArrowCharts.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXArrowChartValue ---

TKXArrowChartValue::TKXArrowChartValue(TCollection* Collection) : TKX2DChartValue(Collection) {
  if (!Collection || !Collection->InheritsFrom(TKXChartValues::StaticClass())) Resize(4);
}

TKXArrowChartValues* TKXArrowChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXArrowChartValues::StaticClass())
             ? static_cast<TKXArrowChartValues*>(C)
             : nullptr;
}

void TKXArrowChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXArrowChartValue;
  Filer.Property("EndX", this, &T::EndX, &T::SetEndX, 0.0);
  Filer.Property("EndY", this, &T::EndY, &T::SetEndY, 0.0);
}

// --- TKXArrowChartValues ---

TKXArrowChartValues::TKXArrowChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKX2DChartValues(AOwner, ValueClass) {
  FNumDimensions = 4;
}

TKXArrowChartValue* TKXArrowChartValues::Add(double StartX, double StartY, double EndX, double EndY,
                                             const std::string& Caption, TColor Color) {
  const double Numbers[] = {StartX, StartY, EndX, EndY};
  return static_cast<TKXArrowChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

bool TKXArrowChartValues::GetIndexedExtent(int32_t, double&, double&) const {
  return false;
}

double TKXArrowChartValues::GetValueDimMaximum(const TKXChartValue* Value,
                                               int32_t Dimension) const {
  const double N = Value->GetValue(Dimension);
  if (Dimension == FXDim) return std::max(N, Value->GetValue(FEndXDim));
  if (Dimension == FYDim) return std::max(N, Value->GetValue(FEndYDim));
  return N;
}

double TKXArrowChartValues::GetValueDimMinimum(const TKXChartValue* Value,
                                               int32_t Dimension) const {
  const double N = Value->GetValue(Dimension);
  if (Dimension == FXDim) return std::min(N, Value->GetValue(FEndXDim));
  if (Dimension == FYDim) return std::min(N, Value->GetValue(FEndYDim));
  return N;
}

void TKXArrowChartValues::SetMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                      int32_t Dimension) {
  inherited::SetMetaData(Data, Value, Dimension);
  SetExtentMetaData(Data, Value, Dimension);
}

// --- TKXArrowChart ---

void TKXArrowChart::InitializeChart() {
  inherited::InitializeChart();
  SetOptions(FOptions + coNoChartShadow + coZoomPen);
  SetArrowOptions(TArrowOptions{arEndHead, arFilledHead, arText});
  FArrowHeadSize = 5;
}

TOwned<TKXChartValues> TKXArrowChart::CreateChartValues() {
  return MakeOwned<TKXArrowChartValues>(this, ClassOf<TKXArrowChartValue>());
}

void TKXArrowChart::SetArrowOptions(TArrowOptions Value) {
  if (FArrowOptions == Value) return;
  FArrowOptions = Value;
  // SetOptions finds arText already in place and does not come back here.
  SetOptions(Value.Contains(arText) ? FOptions + coValueLabels : FOptions - coValueLabels);
  Changed();
}

void TKXArrowChart::SetOptions(TChartOptions Value) {
  if (FOptions == Value) return;
  if (Value.Contains(coValueLabels))
    FArrowOptions.Include(arText);
  else
    FArrowOptions.Exclude(arText);
  inherited::SetOptions(Value);
}

void TKXArrowChart::SetArrowHeadSize(int32_t Value) {
  if (FArrowHeadSize == Value) return;
  FArrowHeadSize = Value;
  Changed();
}

void TKXArrowChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXArrowChart*>(Source)) {
    FArrowOptions = Src->FArrowOptions;
    FArrowHeadSize = Src->FArrowHeadSize;
  }
  inherited::Assign(Source);
}

void TKXArrowChart::DoUpdateAxisInfo(TKXChartAxis*) {
  FFirstIndex = 0;
  FLastIndex = FValues->Count() - 1;
  // Every arrow is walked, so every arrow counts as in view.
  FVisibleCount = FValues->Count();
}

void TKXArrowChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                                       bool AdjustPen) {
  SetCanvasResources(Canvas, FBrush.get(), FPen.get(), FFont.get(), AdjustFont, AdjustPen);
  if (!Value) return;
  const bool Selected = Value->Selected();
  if (AdjustPen && Selected && FOptions.Contains(coSelectionPen))
    Canvas->Pen()->SetWidth(Canvas->Pen()->Width() + 1);
  const TColor Color =
      Selected && FOptions.Contains(coSelectionFill) ? FSelectionColor : GetColor(Value);
  Canvas->Pen()->SetColor(Color);
  // The head is filled in the colour of its line.
  Canvas->Brush()->SetColor(Color);
}

int32_t TKXArrowChart::ZoomedHeadSize() const {
  const bool H = FHorizontalAxis && FHorizontalAxis->Zooming();
  const bool V = FVerticalAxis && FVerticalAxis->Zooming();
  if (!H && !V) return FArrowHeadSize;
  const double ZH = FHorizontalAxis ? FHorizontalAxis->ZoomAmount() : 1.0;
  const double ZV = FVerticalAxis ? FVerticalAxis->ZoomAmount() : 1.0;
  return CanvasRound(FArrowHeadSize * std::sqrt(ZH * ZH + ZV * ZV));
}

void TKXArrowChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  inherited::InternalDraw(Canvas, ARect);
  const int32_t Last = std::min(FLastIndex, FValues->Count() - 1);
  for (int32_t I = std::max(FFirstIndex, 0); I <= Last; ++I) {
    TKXArrowChartValue* Value = Values()->Items(I);
    if (Value->Visible() && Value->Opacity() > 0.0f) DrawArrow(Canvas, ARect, Value);
  }
}

void TKXArrowChart::DrawArrow(TCanvas* Canvas, const TRect& ARect, TKXArrowChartValue* Value) {
  if (!FHorizontalAxis || !FVerticalAxis) return;
  const double O = GetAdjOffsetVertical();
  const double X1 = Value->X(), Y1 = O + Value->Y(), X2 = Value->EndX(), Y2 = O + Value->EndY();
  // An arrow with an end that is not a number has no place.
  if (!std::isfinite(X1) || !std::isfinite(Y1) || !std::isfinite(X2) || !std::isfinite(Y2)) return;
  TRect R = Value->ScaledRect(ARect);
  const auto Draw = [&](const TRect& In, int32_t HeadSize, float Opacity) {
    kx::DrawArrow(Canvas, FHorizontalAxis->AxisToPixel(X1, In), FVerticalAxis->AxisToPixel(Y1, In),
                  FHorizontalAxis->AxisToPixel(X2, In), FVerticalAxis->AxisToPixel(Y2, In),
                  HeadSize, FormatValue(Value, FValueLabelStyle), FArrowOptions, 1, Opacity);
  };
  if (!FOptions.Contains(coNoChartShadow) && FPanel && FPanel->ChartShadow()->Visible()) {
    TKXChartShadow* Shadow = FPanel->ChartShadow();
    SetCanvasResources(Canvas, Shadow->Brush(), Shadow->Pen(), nullptr, true, true);
    Draw(R, FArrowHeadSize, 1.0f);
    R = Shadow->NonShadowRect(R, true);
  }
  SetCanvasResources(Canvas, Value, true, true);
  Draw(R, ZoomedHeadSize(), FOpacity * Value->Opacity());
}

void TKXArrowChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(FValues.get());
    struct TSample {
      double X, Y, EndX, EndY;
      const char* Caption;
    };
    static constexpr TSample Samples[] = {
        {55, 5, -20, -20, "Research"},   {10, 10, 20, 30, "Manufacturing"},
        {15, 20, 20, 15, "Purchases"},   {30, -10, 35, 20, "Marketing"},
        {40, 40, 60, 20, "Development"}, {50, 50, 70, 60, "Testing"}};
    for (const TSample& S : Samples)
      Values()->Add(S.X, S.Y, S.EndX, S.EndY, S.Caption);
  }
  FPreview = true;
}

void TKXArrowChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Options", TChartOptions::FromBits(1975));
  inherited::DefineProperties(Filer);
  using T = TKXArrowChart;
  Filer.Property("ArrowOptions", this, &T::ArrowOptions, &T::SetArrowOptions,
                 TArrowOptions::FromBits(6));
  Filer.Property("ArrowHeadSize", this, &T::ArrowHeadSize, &T::SetArrowHeadSize, 5);
}

} // namespace kx
