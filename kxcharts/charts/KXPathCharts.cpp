#include "kxcharts/charts/KXPathCharts.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXShapeCharts.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXPathChartValue ---

TKXPathChartValue::TKXPathChartValue(TCollection* Collection)
    : TKX2DChartValue(Collection), FBrush(MakeOwned<TBrush>()), FPen(MakeOwned<TPen>()),
      FFont(MakeOwned<TFont>()), FCurrent(MakeOwned<TKXPathData>()),
      FData(MakeOwned<TKXPathData>()) {
  if (!Collection || !Collection->InheritsFrom(TKXChartValues::StaticClass())) Resize(4);
  const TNotifyEvent Handler = [this](TObject* Sender) { Changed(Sender); };
  FData->SetOnChange(Handler);
  FBrush->SetOnChange(Handler);
  FPen->SetOnChange(Handler);
  FFont->SetOnChange(Handler);
}

void TKXPathChartValue::BeforeDestruction() {
  FData->SetOnChange(nullptr);
  FBrush->SetOnChange(nullptr);
  FPen->SetOnChange(nullptr);
  FFont->SetOnChange(nullptr);
  inherited::BeforeDestruction();
}

TKXPathChartValues* TKXPathChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXPathChartValues::StaticClass())
             ? static_cast<TKXPathChartValues*>(C)
             : nullptr;
}

void TKXPathChartValue::Changed(TObject* Sender) {
  if (Sender == FData.get()) FNeedPathUpdate = true;
  Changed(false);
}

void TKXPathChartValue::ValueChanged(int32_t Dimension) {
  FNeedPathUpdate = true;
  inherited::ValueChanged(Dimension);
}

void TKXPathChartValue::SetAlignment(T2DTextAlignment Value) {
  if (FAlignment == Value) return;
  FAlignment = Value;
  Changed(false);
}

void TKXPathChartValue::SetColor(TColor Value) {
  inherited::SetColor(Value);
  FBrush->SetColor(Value);
}

TRectF TKXPathChartValue::ShapeRect() const {
  return KXRect(X(), Y(), X() + Width(), Y() + Height());
}

void TKXPathChartValue::SetShapeRect(const TRectF& Value) {
  TCollection* C = TKXChartValue::Collection();
  if (C) C->BeginUpdate();
  TFinally End([C] {
    if (C) C->EndUpdate();
  });
  SetX(Value.Left);
  SetY(Value.Top);
  SetWidth(KXRectWidth(Value));
  SetHeight(KXRectHeight(Value));
}

void TKXPathChartValue::UpdatePath(const TRectF& ARect, bool PreserveAspectRatio) {
  FCurrent->Assign(FData.get());
  FNeedPathUpdate = false;
  TRectF B = FData->GetBounds();
  const double BW = KXRectWidth(B), BH = KXRectHeight(B);
  // A line or a point has no shape to fit: it keeps its own coordinates.
  if (BW * BH == 0) return;
  if (PreserveAspectRatio) {
    FitRect(B, ARect, false);
    FCurrent->FitToRect(B);
    return;
  }
  FCurrent->BeginUpdate();
  TFinally End([this] { FCurrent->EndUpdate(); });
  FCurrent->Translate(-B.Left, -B.Top);
  FCurrent->Scale(KXRectWidth(ARect) / BW, KXRectHeight(ARect) / BH);
  FCurrent->Translate(ARect.Left, ARect.Top);
}

bool TKXPathChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const bool Click = KXRectWidth(SelRect) == 0 && KXRectHeight(SelRect) == 0;
  const bool Hit = Click ? FData->PointInPath(SelRect.Left, SelRect.Top)
                         : KXIntersectRect(SelRect, FixRect(ShapeRect()));
  return Hit && (Action == saSelect || (Action == saToggle && !Selected()));
}

void TKXPathChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXPathChartValue*>(Source)) {
    FAlignment = Src->FAlignment;
    FBrush->Assign(Src->FBrush.get());
    FPen->Assign(Src->FPen.get());
    FFont->Assign(Src->FFont.get());
    FData->Assign(Src->FData.get());
  }
  inherited::Assign(Source);
}

void TKXPathChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXPathChartValue;
  Filer.Property("Brush", this, &T::Brush);
  Filer.Property("Pen", this, &T::Pen);
  Filer.Property("Alignment", this, &T::Alignment, &T::SetAlignment, tdMiddleCenter);
  Filer.Property("Font", this, &T::Font);
  Filer.Property(
      "Data", this, [](T* V) { return V->Data()->PathString(); },
      [](T* V, const std::string& Text) { V->Data()->SetPathString(Text); });
  Filer.Property("Width", this, &T::Width, &T::SetWidth, 0.0);
  Filer.Property("Height", this, &T::Height, &T::SetHeight, 0.0);
}

// --- TKXPathChartValues ---

TKXPathChartValues::TKXPathChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKX2DChartValues(AOwner, ValueClass) {
  FNumDimensions = 4;
}

TKXPathChartValue* TKXPathChartValues::AddPath(const double (&Numbers)[4], const TKXPathData& Path,
                                               const std::string& Caption, TColor Color) {
  TUpdateScope<TKXChartValues> Scope(this);
  auto* Value = static_cast<TKXPathChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
  Value->Data()->Assign(&Path);
  return Value;
}

TKXPathChartValue* TKXPathChartValues::Add(std::string_view Path, const std::string& Caption,
                                           TColor Color) {
  // Read first: bad text raises before anything is added.
  TKXPathData Parsed;
  Parsed.SetPathString(Path);
  const TRectF B = Parsed.GetBounds();
  const double Numbers[4] = {B.Left, B.Top, KXRectWidth(B), KXRectHeight(B)};
  return AddPath(Numbers, Parsed, Caption, Color);
}

TKXPathChartValue* TKXPathChartValues::Add(const TRectF& ARect, std::string_view Path,
                                           const std::string& Caption, TColor Color) {
  TKXPathData Parsed;
  Parsed.SetPathString(Path);
  const double Numbers[4] = {ARect.Left, ARect.Top, KXRectWidth(ARect), KXRectHeight(ARect)};
  return AddPath(Numbers, Parsed, Caption, Color);
}

bool TKXPathChartValues::GetIndexedExtent(int32_t, double&, double&) const {
  return false;
}

double TKXPathChartValues::GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const {
  const double N = Value->GetValue(Dimension);
  if (Dimension == FXDim) return std::max(N, N + Value->GetValue(FWidthDim));
  if (Dimension == FYDim) return std::max(N, N + Value->GetValue(FHeightDim));
  return N;
}

double TKXPathChartValues::GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const {
  const double N = Value->GetValue(Dimension);
  if (Dimension == FXDim) return std::min(N, N + Value->GetValue(FWidthDim));
  if (Dimension == FYDim) return std::min(N, N + Value->GetValue(FHeightDim));
  return N;
}

void TKXPathChartValues::SetMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                     int32_t Dimension) {
  inherited::SetMetaData(Data, Value, Dimension);
  SetExtentMetaData(Data, Value, Dimension);
}

// --- TKXPathChart ---

void TKXPathChart::InitializeChart() {
  inherited::InitializeChart();
  SetOptions(FOptions + coValueLabels);
}

TOwned<TKXChartValues> TKXPathChart::CreateChartValues() {
  return MakeOwned<TKXPathChartValues>(this, ClassOf<TKXPathChartValue>());
}

void TKXPathChart::SetPathOptions(TPathOptions Value) {
  if (FPathOptions == Value) return;
  FPathOptions = Value;
  Changed();
}

void TKXPathChart::Resize() {
  inherited::Resize();
  FUpdatePaths = true;
}

void TKXPathChart::DoUpdateAxisInfo(TKXChartAxis*) {
  FFirstIndex = 0;
  FLastIndex = FValues->Count() - 1;
  FVisibleCount = FValues->Count();
}

TRectF TKXPathChart::GetShapeRect(const TRect& Rect, const TKXPathChartValue* Value) const {
  if (!FHorizontalAxis || !FVerticalAxis) return {};
  const double O = GetAdjOffsetVertical();
  const double X = Value->X(), Y = O + Value->Y();
  const double X2 = X + Value->Width(), Y2 = Y + Value->Height();
  if (!std::isfinite(X) || !std::isfinite(Y) || !std::isfinite(X2) || !std::isfinite(Y2)) return {};
  TRectF R = KXRect(FHorizontalAxis->AxisToPixel(X, Rect), FVerticalAxis->AxisToPixel(Y, Rect),
                    FHorizontalAxis->AxisToPixel(X2, Rect), FVerticalAxis->AxisToPixel(Y2, Rect));
  if (R.Bottom < R.Top) std::swap(R.Top, R.Bottom);
  return R;
}

void TKXPathChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  SetCanvasResources(Canvas, nullptr, true, true);
  if (!EqualsRect(ARect, FDrawnRect)) FUpdatePaths = true;
  FDrawnRect = ARect;
  // The axes are told of every change of a value, a brush's too; the paths move only when
  // a range moved.
  if (FHorizontalAxis && FVerticalAxis) {
    const double Ranges[4] = {FHorizontalAxis->ZoomMinimum(), FHorizontalAxis->ZoomMaximum(),
                              FVerticalAxis->ZoomMinimum(), FVerticalAxis->ZoomMaximum()};
    if (!std::equal(std::begin(Ranges), std::end(Ranges), std::begin(FDrawnRanges)))
      FUpdatePaths = true;
    std::copy(std::begin(Ranges), std::end(Ranges), std::begin(FDrawnRanges));
  }
  const int32_t Last = std::min(FLastIndex, FValues->Count() - 1);
  for (int32_t I = std::max(FFirstIndex, 0); I <= Last; ++I) {
    TKXPathChartValue* Value = Values()->Items(I);
    if (Value->Visible() && Value->Opacity() > 0.0f) DrawPath(Canvas, ARect, Value);
  }
  FUpdatePaths = false;
}

void TKXPathChart::DrawPath(TCanvas* Canvas, const TRect& ARect, TKXPathChartValue* Value) {
  const TRectF R = GetShapeRect(ARect, Value);
  SetCanvasResources(Canvas, Value, true, true);
  if (FUpdatePaths || Value->NeedPathUpdate())
    Value->UpdatePath(R, FPathOptions.Contains(poPreserveAspectRatio));
  const float Opacity = FOpacity * Value->Opacity();
  Value->Current()->FillPath(Canvas, Opacity);
  Value->Current()->DrawPath(Canvas, Opacity);
  if (FOptions.Contains(coValueLabels)) DrawLabel(Canvas, Value, CanvasRect(R));
}

void TKXPathChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                                      bool AdjustPen) {
  const auto* Path = dynamic_cast<const TKXPathChartValue*>(Value);
  if (!Path) {
    SetCanvasResources(Canvas, FBrush.get(), FPen.get(), FFont.get(), true, true);
    return;
  }
  SetCanvasResources(Canvas, Path->Brush(), Path->Pen(), Path->Font(), AdjustFont, AdjustPen);
  SetValueLook(Canvas, Value, AdjustPen);
}

void TKXPathChart::DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  if (const auto* Path = dynamic_cast<const TKXPathChartValue*>(Value))
    DrawShapeLabel(Canvas, FormatValue(Value, FValueLabelStyle), Path->Alignment(), ARect);
}

void TKXPathChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  auto* Path = dynamic_cast<TKXPathChartValue*>(const_cast<TKXChartValue*>(Value));
  if (!Path) {
    inherited::DrawGlyph(Canvas, Value, ARect);
    return;
  }
  KeepCanvasResources(Canvas, [&] {
    SetCanvasResources(Canvas, Value, false, false);
    Path->UpdatePath(KXRect(ARect), FPathOptions.Contains(poPreserveAspectRatio));
    const float Opacity = FOpacity * Path->Opacity();
    Path->Current()->FillPath(Canvas, Opacity);
    Path->Current()->DrawPath(Canvas, Opacity);
  });
  // Current has the legend's size now.
  FUpdatePaths = true;
}

void TKXPathChart::CreatePreviewValues() {
  // Also while loading: the sample paths are never stored, and a path chart read from a
  // stream replaces them with its own values.
  BeginUpdate();
  {
    TFinally End([this] { EndUpdate(); });
    Values()->Add("M350,75 L379,161 L469,161 L397,215 L423,301 L350,250 L277,301 L303,215 "
                  "L231,161 L321,161 Z",
                  "Star");
    Values()->Add("M850,75 L958,137.5 L958,262.5 L850,325 L742,262.600006103516 L742,137.5 Z",
                  "Hexagon");
    Values()->Add(
        "M442.5,616.958369 L475.319456,584.138913 L508.138913,551.319456 L540.958369,518.5 "
        "L552.979185,530.520815 L565,542.541631 L532.180544,575.361087 L499.361087,608.180544 "
        "L466.541631,641 L515.770815,690.229185 L565,739.458369 L556.986123,747.472246 "
        "L548.972246,755.486123 L540.958369,763.5 L491.729185,714.270815 L442.5,665.041631 "
        "L409.680544,697.861087 L376.861087,730.680544 L344.041631,763.5 L332.020815,751.479185 "
        "L320,739.458369 L352.819456,706.638913 L385.638913,673.819456 L418.458369,641 "
        "L369.229185,591.770815 L320,542.541631 L332.020815,530.520815 L344.041631,518.5 "
        "L393.270815,567.729185 Z",
        "Cancel");
  }
  FPreview = true;
}

void TKXPathChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("PathOptions", this, &TKXPathChart::PathOptions, &TKXPathChart::SetPathOptions,
                 TPathOptions{});
}

} // namespace kx
