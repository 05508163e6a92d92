#include "kxcharts/charts/bubbles/KXBubbleCharts.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <numbers>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXShapeCharts.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

double Radius(double Size) {
  return std::sqrt(Size / std::numbers::pi);
}

void StartBubbleChartsModule() {
  static std::once_flag Once;
  std::call_once(Once, [] { RegisterChart(ClassOf<TKXBubbleChart>()); });
}

// --- TKXBubbleChartValue ---

TKXBubbleChartValue::TKXBubbleChartValue(TCollection* Collection)
    : TKX2DImageChartValue(Collection) {
  if (!Collection || !Collection->InheritsFrom(TKXChartValues::StaticClass())) Resize(3);
}

TKXBubbleChartValues* TKXBubbleChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXBubbleChartValues::StaticClass())
             ? static_cast<TKXBubbleChartValues*>(C)
             : nullptr;
}

double TKXBubbleChartValue::GetDefValue() const {
  return TKXChartValue::Collection() ? inherited::GetDefValue() : GetValue(2);
}

void TKXBubbleChartValue::SetDefValue(double Value) {
  if (TKXChartValue::Collection())
    inherited::SetDefValue(Value);
  else
    TKXChartValue::SetValue(2, Value);
}

double TKXBubbleChartValue::Radius() const {
  const TKXBubbleChartValues* C = Collection();
  return C && C->SizeOption() == szArea ? kx::Radius(Size()) : Size() / 2.0;
}

bool TKXBubbleChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const TKXBubbleChartValues* C = Collection();
  double R = 0.0;
  if (const TKXBubbleChart* Chart = C ? C->Owner() : nullptr) {
    R = Chart->BubbleRadius(this);
  } else if (Size() > 0.0) {
    R = C && C->SizeOption() == szArea ? kx::Radius(Size()) / 2.0 : Size() / 2.0;
  }
  if (!std::isfinite(R)) R = 0.0;
  const double PX = X(), PY = Y();
  return TKXChartValue::Selectable(KXRect(PX - R, PY - R, PX + R, PY + R), SelRect, Action);
}

void TKXBubbleChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Size", this, &TKXBubbleChartValue::Size, &TKXBubbleChartValue::SetSize, 0.0);
}

// --- TKXBubbleChartValues ---

TKXBubbleChartValues::TKXBubbleChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKX2DImageChartValues(AOwner, ValueClass) {
  FNumDimensions = 3;
  FDefaultDimension = FSizeDim;
}

TKXBubbleChart* TKXBubbleChartValues::Owner() const {
  return dynamic_cast<TKXBubbleChart*>(TKXChartValues::Owner());
}

void TKXBubbleChartValues::SetSizeOption(TSizeOption Value) {
  if (FSizeOption == Value) return;
  FSizeOption = Value;
  Changed();
}

TKXBubbleChartValue* TKXBubbleChartValues::Add() {
  return Add(0.0, 0.0, 0.0);
}

TKXBubbleChartValue* TKXBubbleChartValues::Add(double X, double Y, const std::string& Caption,
                                               TColor Color, int32_t ImageIndex) {
  return Add(X, Y, 0.0, Caption, Color, ImageIndex);
}

TKXBubbleChartValue* TKXBubbleChartValues::Add(double X, double Y, double Size,
                                               const std::string& Caption, TColor Color,
                                               int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  const double Numbers[] = {X, Y, Size};
  auto* Value = static_cast<TKXBubbleChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
  Value->SetImageIndex(ImageIndex);
  return Value;
}

double TKXBubbleChartValues::EffectiveSize(const TKXChartValue* Value) const {
  const double V = Value->GetValue(FSizeDim);
  const TKXBubbleChart* Chart = Owner();
  return V >= 0.0 || (Chart && Chart->NegativeSizeVisible()) ? std::fabs(V) : 0.0;
}

double TKXBubbleChartValues::GetValueDimMaximum(const TKXChartValue* Value,
                                                int32_t Dimension) const {
  return Dimension == FSizeDim ? EffectiveSize(Value)
                               : inherited::GetValueDimMaximum(Value, Dimension);
}

double TKXBubbleChartValues::GetValueDimMinimum(const TKXChartValue* Value,
                                                int32_t Dimension) const {
  return Dimension == FSizeDim ? EffectiveSize(Value)
                               : inherited::GetValueDimMinimum(Value, Dimension);
}

void TKXBubbleChartValues::SetMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                       int32_t Dimension) {
  const auto D = static_cast<size_t>(Dimension);
  if (Dimension != FSizeDim || D >= FSum.size()) {
    inherited::SetMetaData(Data, Value, Dimension);
    return;
  }
  const double E = EffectiveSize(Value);
  if (Data.Contains(mdMinimum)) FMinValue[D] = E;
  if (Data.Contains(mdMaximum)) FMaxValue[D] = E;
  if (Data.Contains(mdSum)) FSum[D] += E;
  if (Data.Contains(mdAbsSum)) FAbsSum[D] += std::fabs(Value->GetValue(Dimension));
}

void TKXBubbleChartValues::CalculateMetaData() {
  inherited::CalculateMetaData();
  const auto X = static_cast<size_t>(FXDim), Y = static_cast<size_t>(FYDim);
  if (std::max(X, Y) >= FMaxValue.size()) return;
  const double Smaller = std::min(FMaxValue[X] - FMinValue[X], FMaxValue[Y] - FMinValue[Y]);
  const TKXBubbleChart* Chart = Owner();
  const double Margin = (Chart ? Chart->MaxBubbleSize() : 0.25) * Smaller / 2.0;
  for (const size_t D : {X, Y}) {
    FMaxValue[D] += Margin;
    FMinValue[D] -= Margin;
  }
}

bool TKXBubbleChartValues::GetIndexedExtent(int32_t, double&, double&) const {
  return false;
}

void TKXBubbleChartValues::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXBubbleChartValues*>(Source))
    FSizeOption = Src->FSizeOption;
  inherited::Assign(Source);
}

void TKXBubbleChartValues::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("SizeOption", this, &TKXBubbleChartValues::SizeOption,
                 &TKXBubbleChartValues::SetSizeOption, szArea);
}

// --- TKXBubbleChart: life and properties ---

void TKXBubbleChart::InitializeChart() {
  inherited::InitializeChart();
  FNegativeSizeColor = clWhite;
  FNegativeSizeVisible = false;
  FAlignment = tdMiddleCenter;
  FStyle = shpEllipse;
  FMinBubbleSize = 0.05f;
  FMaxBubbleSize = 0.25f;
  TKXBubbleChartValues* V = Values();
  V->SetSortByDimension(V->SizeDim());
  V->SetSortOrder(soDescending);
  V->SetSorted(true);
  // The base made the samples before the values sorted by size.
  if (ComponentState().Contains(csDesigning)) {
    V->Clear();
    CreatePreviewValues();
  }
}

TOwned<TKXChartValues> TKXBubbleChart::CreateChartValues() {
  return MakeOwned<TKXBubbleChartValues>(this, ClassOf<TKXBubbleChartValue>());
}

void TKXBubbleChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
    static constexpr double Samples[][3] = {{97, 36, 79}, {94, 74, 60}, {68, 76, 58}, {64, 87, 56},
                                            {68, 27, 73}, {74, 99, 42}, {7, 93, 87},  {51, 69, 40},
                                            {38, 23, 33}, {57, 86, 31}};
    for (const auto& S : Samples)
      Values()->Add(S[0], S[1], S[2], "", TColor(-1), -1);
  }
  FPreview = true;
}

void TKXBubbleChart::BeforeDestruction() {
  if (FImageList) RemoveFreeNotification(FImageList);
  FImageList = nullptr;
  inherited::BeforeDestruction();
}

void TKXBubbleChart::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && AComponent == FImageList) FImageList = nullptr;
  inherited::Notification(AComponent, Operation);
}

void TKXBubbleChart::SetAlignment(T2DTextAlignment Value) {
  if (FAlignment == Value) return;
  FAlignment = Value;
  Changed();
}

void TKXBubbleChart::SetNegativeSizeColor(TColor Value) {
  if (FNegativeSizeColor == Value) return;
  FNegativeSizeColor = Value;
  Changed();
}

void TKXBubbleChart::SetNegativeSizeVisible(bool Value) {
  if (FNegativeSizeVisible == Value) return;
  FNegativeSizeVisible = Value;
  // The sizes that count changed with it.
  Values()->ExtentsChanged();
  Changed();
}

void TKXBubbleChart::SetImageList(TImageList* Value) {
  if (FImageList == Value) return;
  if (FImageList) RemoveFreeNotification(FImageList);
  FImageList = Value;
  if (Value) FreeNotification(Value);
  Changed();
}

void TKXBubbleChart::SetMinBubbleSize(float Value) {
  if (!(Value > 0.01f)) Value = 0.01f;
  if (Value > FMaxBubbleSize) Value = FMaxBubbleSize;
  if (FMinBubbleSize == Value) return;
  FMinBubbleSize = Value;
  Changed();
}

void TKXBubbleChart::SetMaxBubbleSize(float Value) {
  if (!(Value > FMinBubbleSize)) Value = FMinBubbleSize;
  if (Value > 10.0f) Value = 10.0f;
  if (FMaxBubbleSize == Value) return;
  FMaxBubbleSize = Value;
  // The range holds the largest bubble.
  Values()->ExtentsChanged();
  Changed();
}

void TKXBubbleChart::SetStyle(TKXShapeStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  Changed();
}

void TKXBubbleChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXBubbleChart*>(Source)) {
    FNegativeSizeColor = Src->FNegativeSizeColor;
    FNegativeSizeVisible = Src->FNegativeSizeVisible;
    FAlignment = Src->FAlignment;
    FMaxBubbleSize = Src->FMaxBubbleSize;
    FMinBubbleSize = Src->FMinBubbleSize;
    FStyle = Src->FStyle;
    SetImageList(Src->FImageList);
  }
  inherited::Assign(Source);
}

void TKXBubbleChart::DoUpdateAxisInfo(TKXChartAxis*) {
  FFirstIndex = 0;
  FLastIndex = FValues->Count() - 1;
  FVisibleCount = FValues->Count();
}

void TKXBubbleChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXBubbleChart;
  Filer.Property("Alignment", this, &T::Alignment, &T::SetAlignment, tdMiddleCenter);
  Filer.Property("NegativeSizeColor", this, &T::NegativeSizeColor, &T::SetNegativeSizeColor,
                 clWhite);
  Filer.Property("NegativeSizeVisible", this, &T::NegativeSizeVisible, &T::SetNegativeSizeVisible,
                 false);
  Filer.Property("ImageList", this, &T::ImageList, &T::SetImageList);
  Filer.Property("MinBubbleSize", this, &T::MinBubbleSize, &T::SetMinBubbleSize);
  Filer.Property("MaxBubbleSize", this, &T::MaxBubbleSize, &T::SetMaxBubbleSize);
  Filer.Property("Style", this, &T::Style, &T::SetStyle, shpEllipse);
}

// --- TKXBubbleChart: sizes ---

TKXBubbleChart::TBubbleScale TKXBubbleChart::Scale() const {
  TBubbleScale S;
  if (!FHorizontalAxis || !FVerticalAxis) return S;
  // The whole ranges, not the zoomed ones: a bubble keeps its size in axis units.
  const double D = std::min(FHorizontalAxis->Maximum() - FHorizontalAxis->Minimum(),
                            FVerticalAxis->Maximum() - FVerticalAxis->Minimum());
  S.MaxB = FMaxBubbleSize * D;
  S.MinB = FMinBubbleSize * D;
  const TKXBubbleChartValues* V = Values();
  S.SMin = V->MinValue(V->SizeDim());
  S.SMax = V->MaxValue(V->SizeDim());
  S.Area = V->SizeOption() == szArea;
  return S;
}

double TKXBubbleChart::RadiusOn(const TBubbleScale& S, double Size) {
  // Sizes that are all the same are all the largest.
  double F = S.SMax == S.SMin ? 1.0 : std::fabs((Size - S.SMin) / (S.SMax - S.SMin));
  if (!std::isfinite(F)) F = 0.0;
  if (S.Area) F = std::sqrt(F);
  return (S.MinB + F * (S.MaxB - S.MinB)) / 4.0;
}

double TKXBubbleChart::BubbleRadius(const TKXBubbleChartValue* Value) const {
  return RadiusOn(Scale(), Value->Size());
}

// --- TKXBubbleChart: drawing ---

void TKXBubbleChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const TKXBubbleChartValues* V = Values();
  if (V->Count() == 0 || V->MaxValue(V->SizeDim()) == 0.0 || !FHorizontalAxis || !FVerticalAxis)
    return;
  const TBubbleScale S = Scale();
  const double O = GetAdjOffsetVertical();
  for (int32_t I = 0; I < V->Count(); ++I) {
    TKXBubbleChartValue* Value = V->Items(I);
    const double Size = Value->Size(), X = Value->X(), Y = O + Value->Y();
    if (!Value->Visible() || Value->Opacity() == 0.0f || (Size < 0.0 && !FNegativeSizeVisible))
      continue;
    if (!std::isfinite(Size) || !std::isfinite(X) || !std::isfinite(Y)) continue;
    const double R = RadiusOn(S, Size);
    // An axis that runs upward gives the top a larger pixel than the bottom.
    const TRect B = FixRect(TRect{
        FHorizontalAxis->AxisToPixel(X - R, ARect), FVerticalAxis->AxisToPixel(Y - R, ARect),
        FHorizontalAxis->AxisToPixel(X + R, ARect), FVerticalAxis->AxisToPixel(Y + R, ARect)});
    DrawBubble(Canvas, B, Value);
  }
}

void TKXBubbleChart::DrawBubble(TCanvas* Canvas, const TRect& ARect, TKXBubbleChartValue* Value) {
  if (FOpacity * Value->Opacity() == 0.0f) return;
  TRect B = Value->ScaledRect(ARect);
  if (const TKXChartShadow* Shadow = DrawShapeShadow(Canvas, B, FStyle, 1.0f))
    B = Shadow->NonShadowRect(B, false, Canvas);
  SetCanvasResources(Canvas, Value, true, true);
  if (Value->Size() < 0.0 && !(Value->Selected() && FOptions.Contains(coSelectionFill)))
    Canvas->Brush()->SetColor(FNegativeSizeColor);
  bool DefaultDraw = true;
  if (FOnCustomDrawValue) FOnCustomDrawValue(this, Canvas, B, Value, DefaultDraw);
  if (!DefaultDraw) return;
  DrawShape(Canvas, B, static_cast<const TImageList*>(nullptr), -1, FStyle, shpEllipse, true,
            clBtnHighlight, clBtnShadow, ShapeBevelWidth(B));
  if (FOptions.Contains(coValueLabels)) DrawLabel(Canvas, Value, B);
}

void TKXBubbleChart::DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  const std::string Text = FormatValue(Value, FValueLabelStyle);
  if (Text.empty()) return;
  const TSize Extent = Canvas->TextExtent(Text);
  // A label larger than its bubble gets room: the excess on each side.
  const auto Excess = [](int32_t Need, double Have) {
    return static_cast<int32_t>(std::clamp(Need - Have, 0.0, double(KXMaxCanvasInt)));
  };
  const TRect L = KXInflateRect(ARect, Excess(Extent.cx, KXRectWidth(ARect)),
                                Excess(Extent.cy, KXRectHeight(ARect)));
  DrawShapeLabel(Canvas, Text, FAlignment, L);
}

void TKXBubbleChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  KeepCanvasResources(Canvas, [&] {
    SetCanvasResources(Canvas, Value, false, false);
    DrawShape(Canvas, ARect, static_cast<const TImageList*>(nullptr), -1, FStyle, shpEllipse, true,
              clBtnHighlight, clBtnShadow, ShapeBevelWidth(ARect));
  });
}

} // namespace kx
