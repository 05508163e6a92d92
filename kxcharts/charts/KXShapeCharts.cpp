#include "kxcharts/charts/KXShapeCharts.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

void DrawShapeLabel(TCanvas* Canvas, std::string_view Text, T2DTextAlignment Alignment,
                    const TRect& ARect) {
  if (Text.empty()) return;
  // Top, middle and bottom rows of left, centre and right, as the alignment's members run.
  static constexpr uint32_t Placement[] = {DT_TOP,     DT_CENTER,  DT_RIGHT,
                                           DT_VCENTER, DT_VCENTER | DT_CENTER,
                                           DT_VCENTER | DT_RIGHT,  DT_BOTTOM,
                                           DT_BOTTOM | DT_CENTER,  DT_BOTTOM | DT_RIGHT};
  const uint32_t Flags = DT_WORDBREAK | DT_END_ELLIPSIS | Placement[Alignment % 9];
  const TBrushStyle Saved = Canvas->Brush()->Style();
  TFinally Restore([Canvas, Saved] { Canvas->Brush()->SetStyle(Saved); });
  Canvas->Brush()->SetStyle(bsClear);
  DrawTextLabel(Canvas, Text, Flags, ARect);
}

// --- TKXShapeChartValue ---

TKXShapeChartValue::TKXShapeChartValue(TCollection* Collection)
    : TKXPointChartValue(Collection), FBrush(MakeOwned<TBrush>()), FPen(MakeOwned<TPen>()),
      FFont(MakeOwned<TFont>()) {
  // The value is not in the collection yet (it goes in once built), so the numbers set
  // here tell nobody.
  const TKXChartValues* Values =
      Collection && Collection->InheritsFrom(TKXChartValues::StaticClass())
          ? static_cast<const TKXChartValues*>(Collection)
          : nullptr;
  if (!Values) Resize(4);
  if (const auto* Chart = Values ? dynamic_cast<const TKXCustomPointChart*>(Values->Owner()) : nullptr) {
    const TKXCustomChartPointInfo* Info = Chart->PointsInfo();
    FBrush->Assign(Info->Brush());
    FPen->Assign(Info->Pen());
    FStyle = Info->Style();
    TKXChartValue::SetValue(2, Info->Width());
    TKXChartValue::SetValue(3, Info->Height());
    if (const auto* Shape = dynamic_cast<const TKXShapeChart*>(Chart)) {
      FFont->Assign(Shape->DefaultShape()->Font());
      FAlignment = Shape->DefaultShape()->Alignment();
    }
  }
  const TNotifyEvent Handler = [this](TObject* Sender) { Changed(Sender); };
  FBrush->SetOnChange(Handler);
  FPen->SetOnChange(Handler);
  FFont->SetOnChange(Handler);
}

void TKXShapeChartValue::BeforeDestruction() {
  FBrush->SetOnChange(nullptr);
  FPen->SetOnChange(nullptr);
  FFont->SetOnChange(nullptr);
  inherited::BeforeDestruction();
}

TKXShapeChartValues* TKXShapeChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXShapeChartValues::StaticClass())
             ? static_cast<TKXShapeChartValues*>(C)
             : nullptr;
}

void TKXShapeChartValue::Changed(TObject*) {
  Changed(false);
}

void TKXShapeChartValue::SetStyle(TKXShapeStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  Changed(false);
}

void TKXShapeChartValue::SetAlignment(T2DTextAlignment Value) {
  if (FAlignment == Value) return;
  FAlignment = Value;
  Changed(false);
}

void TKXShapeChartValue::SetColor(TColor Value) {
  inherited::SetColor(Value);
  FBrush->SetColor(Value);
}

double TKXShapeChartValue::Radius() const {
  const double S = Width() * Width() + Height() * Height();
  return S > 0.0 ? std::sqrt(S) : 0.0;
}

void TKXShapeChartValue::SetRadius(double Value) {
  const double Old = Radius();
  if (Value == Old) return;
  const double Factor = Old != 0.0 ? Value / Old : Value;
  TCollection* C = TKXChartValue::Collection();
  // One notice for both numbers.
  if (C) C->BeginUpdate();
  TFinally End([C] {
    if (C) C->EndUpdate();
  });
  SetWidth(Width() * Factor);
  SetHeight(Height() * Factor);
}

bool TKXShapeChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const double L = X(), T = Y();
  return TKXChartValue::Selectable(KXRect(L, T, L + Width(), T + Height()), SelRect, Action);
}

void TKXShapeChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXShapeChartValue*>(Source)) {
    FAlignment = Src->FAlignment;
    FStyle = Src->FStyle;
    FBrush->Assign(Src->FBrush.get());
    FPen->Assign(Src->FPen.get());
    FFont->Assign(Src->FFont.get());
  }
  inherited::Assign(Source);
}

void TKXShapeChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXShapeChartValue;
  Filer.Property("Style", this, &T::Style, &T::SetStyle, shpRectangle);
  Filer.Property("Brush", this, &T::Brush);
  Filer.Property("Pen", this, &T::Pen);
  Filer.Property("Alignment", this, &T::Alignment, &T::SetAlignment, tdMiddleCenter);
  Filer.Property("Font", this, &T::Font);
  Filer.Property("Width", this, &T::Width, &T::SetWidth, 0.0);
  Filer.Property("Height", this, &T::Height, &T::SetHeight, 0.0);
  // Written after the sizes it is made of, so that reading it back changes nothing.
  Filer.Property("Radius", this, &T::Radius, &T::SetRadius, 0.0);
}

// --- TKXShapeChartValues ---

TKXShapeChartValues::TKXShapeChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKXPointChartValues(AOwner, ValueClass) {
  FNumDimensions = 4;
}

TKXShapeChartValue* TKXShapeChartValues::Add(const TRectF& ARect, TKXShapeStyle Style,
                                             const std::string& Caption, TColor Color,
                                             int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  const double Numbers[] = {ARect.Left, ARect.Top, ARect.Right, ARect.Bottom};
  auto* Value = static_cast<TKXShapeChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
  Value->SetStyle(Style);
  Value->SetImageIndex(ImageIndex);
  return Value;
}

double TKXShapeChartValues::GetValueDimMaximum(const TKXChartValue* Value,
                                               int32_t Dimension) const {
  const double N = Value->GetValue(Dimension);
  if (Dimension == FXDim) return std::max(N, N + Value->GetValue(FWidthDim));
  if (Dimension == FYDim) return std::max(N, N + Value->GetValue(FHeightDim));
  return N;
}

double TKXShapeChartValues::GetValueDimMinimum(const TKXChartValue* Value,
                                               int32_t Dimension) const {
  const double N = Value->GetValue(Dimension);
  if (Dimension == FXDim) return std::min(N, N + Value->GetValue(FWidthDim));
  if (Dimension == FYDim) return std::min(N, N + Value->GetValue(FHeightDim));
  return N;
}

void TKXShapeChartValues::SetMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                      int32_t Dimension) {
  inherited::SetMetaData(Data, Value, Dimension);
  SetExtentMetaData(Data, Value, Dimension);
}

void TKXShapeChartValues::CalculateMetaData() {
  inherited::CalculateMetaData();
  double HW, HH;
  PointMargins(HW, HH);
  const auto Narrow = [this](int32_t Dim, double By) {
    const auto D = static_cast<size_t>(Dim);
    if (D >= FMaxValue.size()) return;
    FMaxValue[D] -= By;
    FMinValue[D] += By;
  };
  Narrow(FXDim, HW);
  Narrow(FYDim, HH);
}

bool TKXShapeChartValues::GetIndexedExtent(int32_t, double&, double&) const {
  return false;
}

// --- TKXCustomShapeChart ---

TOwned<TKXCustomChartPointInfo> TKXCustomShapeChart::CreatePointsInfo() {
  return MakeOwned<TKXDefaultShape>(this);
}

TOwned<TKXChartValues> TKXCustomShapeChart::CreateChartValues() {
  auto Values = MakeOwned<TKXShapeChartValues>(this, ClassOf<TKXShapeChartValue>());
  Values->SetOnNotify(
      [this](TKXChartValue* Value, TCollectionNotification Action) { ValueNotify(Value, Action); });
  return Values;
}

void TKXCustomShapeChart::InitializeChart() {
  inherited::InitializeChart();
  SetOptions((FOptions - coZoomFont) + coReservedFlag + coValueLabels);
}

void TKXCustomShapeChart::ValueNotify(TKXChartValue* Value, TCollectionNotification Action) {
  if (Action != cnAdded) return;
  if (auto* Shape = dynamic_cast<TKXShapeChartValue*>(Value)) Shape->Assign(DefaultShape());
}

void TKXCustomShapeChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
    struct TSample {
      double X, Y;
      const char* Caption;
      TKXShapeStyle Style;
      double W, H;
    };
    static constexpr TSample Samples[] = {{5, 13, "Research", shpEllipse, 75, 35},
                                          {15, 75, "Purchases", shpDiamond3D, 60, 60},
                                          {100, 200, "Manufacturing", shpOctagon, 50, 50},
                                          {300, 100, "Marketing", shpHexagon3D, 100, 50},
                                          {400, 500, "Development", shpPentagon, 40, 40}};
    for (const TSample& S : Samples)
      Values()->Add(KXRect(S.X, S.Y, S.W, S.H), S.Style, S.Caption);
  }
  FPreview = true;
}

TRect TKXCustomShapeChart::GetShapeRect(const TRect& Rect, const TKXShapeChartValue* Value) const {
  if (!FHorizontalAxis || !FVerticalAxis) return {};
  const double O = GetAdjOffsetVertical();
  const double X = Value->X(), Y = O + Value->Y();
  const double X2 = X + Value->Width(), Y2 = Y + Value->Height();
  if (!std::isfinite(X) || !std::isfinite(Y) || !std::isfinite(X2) || !std::isfinite(Y2))
    return {};
  TRect R{FHorizontalAxis->AxisToPixel(X, Rect), FVerticalAxis->AxisToPixel(Y, Rect),
          FHorizontalAxis->AxisToPixel(X2, Rect), FVerticalAxis->AxisToPixel(Y2, Rect)};
  if (R.Bottom < R.Top) std::swap(R.Top, R.Bottom);
  return R;
}

void TKXCustomShapeChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  SetCanvasResources(Canvas, nullptr, true, true);
  const int32_t Count = FValues->Count();
  const int32_t Last = std::min(FLastIndex, Count - 1);
  for (int32_t I = std::max(FFirstIndex, 0); I <= Last; ++I) {
    TKXShapeChartValue* Value = Values()->Items(I);
    if (Value->Visible() && Value->Opacity() > 0.0f) DrawShape(Canvas, ARect, Value);
  }
}

void TKXCustomShapeChart::DrawShape(TCanvas* Canvas, const TRect& Rect, TKXShapeChartValue* Value) {
  const TRect Place = GetShapeRect(Rect, Value);
  if (Place == TRect{}) return;
  const TRect R = Value->ScaledRect(Place);
  DrawShapeShadow(Canvas, R, Value->Style(), FOpacity * Value->Opacity());
  SetCanvasResources(Canvas, Value, true, true);
  bool DefaultDraw = true;
  if (FOnCustomDrawValue) FOnCustomDrawValue(this, Canvas, Rect, Value, DefaultDraw);
  if (!DefaultDraw) return;
  kx::DrawShape(Canvas, R, FImageList, Value->ImageIndex(), Value->Style(),
                FPointsInfo->DefaultStyle(), true, clBtnHighlight, clBtnShadow,
                ShapeBevelWidth(R));
  if (FOptions.Contains(coValueLabels)) DrawLabel(Canvas, Value, R);
}

void TKXCustomShapeChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value,
                                             bool AdjustFont, bool AdjustPen) {
  const auto* Shape = dynamic_cast<const TKXShapeChartValue*>(Value);
  if (!Shape) {
    SetCanvasResources(Canvas, FBrush.get(), FPen.get(), FFont.get(), true, true);
    return;
  }
  SetCanvasResources(Canvas, Shape->Brush(), Shape->Pen(), Shape->Font(), AdjustFont, AdjustPen);
  SetValueLook(Canvas, Value, AdjustPen);
}

void TKXCustomShapeChart::DrawLabel(TCanvas* Canvas, const TKXChartValue* Value,
                                    const TRect& ARect) {
  if (const auto* Shape = dynamic_cast<const TKXShapeChartValue*>(Value))
    DrawShapeLabel(Canvas, FormatValue(Value, FValueLabelStyle), Shape->Alignment(), ARect);
}

void TKXCustomShapeChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value,
                                    const TRect& ARect) {
  const auto* Shape = dynamic_cast<const TKXShapeChartValue*>(Value);
  if (!Shape) {
    inherited::DrawGlyph(Canvas, Value, ARect);
    return;
  }
  KeepCanvasResources(Canvas, [&] {
    SetCanvasResources(Canvas, Value, false, false);
    kx::DrawShape(Canvas, ARect, FImageList, Shape->ImageIndex(), Shape->Style(),
                  FPointsInfo->DefaultStyle(), true, clBtnHighlight, clBtnShadow,
                  ShapeBevelWidth(ARect));
  });
}

// --- TKXShapeChart ---

void TKXShapeChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("ImageList", this, &TKXShapeChart::ImageList, &TKXShapeChart::SetImageList);
  Filer.Property("DefaultShape", this, &TKXShapeChart::DefaultShape);
}

} // namespace kx
