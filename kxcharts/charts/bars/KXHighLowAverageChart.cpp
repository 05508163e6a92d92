#include "kxcharts/charts/bars/KXHighLowAverageChart.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {

// --- TKXHighLowAverageChartValue ---

TKXHighLowAverageChartValue::TKXHighLowAverageChartValue(TCollection* Collection)
    : TKXSparseBarChartValue(Collection) {
  if (!TKXChartValue::Collection()) Resize(4);
}

TKXHighLowAverageChartValues* TKXHighLowAverageChartValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXHighLowAverageChartValues::StaticClass())
             ? static_cast<TKXHighLowAverageChartValues*>(Values)
             : nullptr;
}

void TKXHighLowAverageChartValue::SetOrdered(int32_t Dimension, double V,
                                             std::initializer_list<int32_t> Above,
                                             std::initializer_list<int32_t> Below) {
  const double Now = GetValue(Dimension);
  if (Now == V || (std::isnan(Now) && std::isnan(V))) return;
  for (const int32_t D : Above)
    if (GetValue(D) > V) StoreValue(D, V);
  for (const int32_t D : Below)
    if (GetValue(D) < V) StoreValue(D, V);
  TKXChartValue::SetValue(Dimension, V);
}

void TKXHighLowAverageChartValue::SetAverage(double Value) {
  SetOrdered(1, Value, {3}, {2});
}

void TKXHighLowAverageChartValue::SetHigh(double Value) {
  SetOrdered(2, Value, {1, 3}, {});
}

void TKXHighLowAverageChartValue::SetLow(double Value) {
  SetOrdered(3, Value, {}, {1, 2});
}

void TKXHighLowAverageChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using V = TKXHighLowAverageChartValue;
  Filer.Property("Average", this, &V::Average, &V::SetAverage, 0.0);
  Filer.Property("High", this, &V::High, &V::SetHigh, 0.0);
  Filer.Property("Low", this, &V::Low, &V::SetLow, 0.0);
}

// --- TKXHighLowAverageChartValues ---

TKXHighLowAverageChartValues::TKXHighLowAverageChartValues(TKXCustomChart* AOwner,
                                                           TKXChartValueClass ValueClass)
    : TKXSparseBarChartValues(AOwner, ValueClass) {
  FNumDimensions = 4;
  FSortByDimension = 0;
  FSorted = true;
}

TKXHighLowAverageChart* TKXHighLowAverageChartValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return Chart && Chart->InheritsFrom(TKXHighLowAverageChart::StaticClass())
             ? static_cast<TKXHighLowAverageChart*>(Chart)
             : nullptr;
}

TKXHighLowAverageChartValue* TKXHighLowAverageChartValues::Add() {
  return Add(0.0, 0.0, 0.0, 0.0, "");
}

TKXHighLowAverageChartValue* TKXHighLowAverageChartValues::Add(double Average,
                                                               const std::string& Caption,
                                                               TColor Color) {
  return Add(MaxValue(0) + 1.0, Average, Average, Average, Caption, Color);
}

TKXHighLowAverageChartValue* TKXHighLowAverageChartValues::Add(double X, double High, double Low,
                                                               const std::string& Caption,
                                                               TColor Color) {
  return Add(X, Low + (High - Low) / 2, High, Low, Caption, Color);
}

TKXHighLowAverageChartValue* TKXHighLowAverageChartValues::Add(double X, double Average,
                                                               double High, double Low,
                                                               const std::string& Caption,
                                                               TColor Color) {
  if (Average > High) High = Average;
  if (Low > Average) Low = Average;
  const double Numbers[] = {X, Average, High, Low};
  return static_cast<TKXHighLowAverageChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

double TKXHighLowAverageChartValues::GetValueDimMaximum(const TKXChartValue* Value,
                                                        int32_t Dimension) const {
  return Dimension == 1 ? Value->GetValue(2) : inherited::GetValueDimMaximum(Value, Dimension);
}

double TKXHighLowAverageChartValues::GetValueDimMinimum(const TKXChartValue* Value,
                                                        int32_t Dimension) const {
  return Dimension == 1 ? Value->GetValue(3) : inherited::GetValueDimMinimum(Value, Dimension);
}

void TKXHighLowAverageChartValues::SetMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                               int32_t Dimension) {
  inherited::SetMetaData(Data, Value, Dimension);
  if (Dimension != 1 || FMaxValue.size() < 2) return;
  // Both ends whenever either is asked: a value that brings a new lowest Low and a new
  // highest High at once is asked for its minimum only.
  if (Data.Contains(mdMinimum) || Data.Contains(mdMaximum)) {
    const bool First = Data.Contains(mdMinimum) && Data.Contains(mdMaximum);
    FMaxValue[1] = First ? Value->GetValue(2) : std::max(FMaxValue[1], Value->GetValue(2));
    FMinValue[1] = First ? Value->GetValue(3) : std::min(FMinValue[1], Value->GetValue(3));
  }
}

double TKXHighLowAverageChartValues::GetAxisMaximum(int32_t Dimension) const {
  if (Dimension < 0 || Dimension >= 4) return 0.0;
  const TKXHighLowAverageChart* Chart = Owner();
  if (!Chart) return MaxValue(Dimension);
  const int32_t D = ShownDimension(Dimension);
  return D == 0 ? MaxValue(0) + Diff(0) * Chart->BarSizePct() / 100.0 : MaxValue(D);
}

double TKXHighLowAverageChartValues::GetAxisMinimum(int32_t Dimension) const {
  if (Dimension < 0 || Dimension >= 4) return 0.0;
  const TKXHighLowAverageChart* Chart = Owner();
  if (!Chart) return MinValue(Dimension);
  const int32_t D = ShownDimension(Dimension);
  return D == 0 ? MinValue(0) - Diff(0) * Chart->BarSizePct() / 100.0 : MinValue(D);
}

// --- TKXHighLowAverageChart: properties ---

void TKXHighLowAverageChart::SetStyle(THighLowAverageStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  Changed();
}

void TKXHighLowAverageChart::SetAverageLinePct(int32_t Value) {
  FAverageLinePct = Value;
}

void TKXHighLowAverageChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXHighLowAverageChart*>(Source)) {
    FAverageLinePct = Src->FAverageLinePct;
    FStyle = Src->FStyle;
  }
  inherited::Assign(Source);
}

TOwned<TKXChartValues> TKXHighLowAverageChart::CreateChartValues() {
  return MakeOwned<TKXHighLowAverageChartValues>(this, ClassOf<TKXHighLowAverageChartValue>());
}

void TKXHighLowAverageChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TKXChartValues* All = TKXCustomChart::Values();
  TFinally KeepPreview([this] { FPreview = true; });
  TUpdateScope<TKXChartValues> Scope(All);
  TFinally Dates([All] { All->SetIsDateTime(true); });
  const auto Sine = [](int Degrees) { return std::sin(Degrees * std::numbers::pi / 180.0); };
  TDateTime Date = EncodeDate(2014, 10, 1);
  double Avg = Sine(30) * 100 + 300;
  Values()->Add(Date, Avg, Avg + 10, Avg - 20, "", TColor(-1));
  for (int I = 2; I <= 14; ++I) {
    Avg = Sine(I * 30) * 100 + 300;
    Date += 1;
    const int32_t Day = DayOfWeek(Date);
    if (Day != 6 && Day != 7) Values()->Add(Date, Avg, Avg + 2 * I + 1, Avg - I / 2.0 - 10, "", TColor(-1));
  }
}

void TKXHighLowAverageChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using C = TKXHighLowAverageChart;
  Filer.Property("Style", this, &C::Style, &C::SetStyle, hlaBar);
  Filer.Property("AverageLinePct", this, &C::AverageLinePct, &C::SetAverageLinePct, 30);
  Filer.Property("BarSizePct", this, &C::BarSizePct, &C::SetBarSizePct, 70);
  Filer.Property("ImageList", this, &C::ImageList, &C::SetImageList);
  Filer.Property("Orientation", this, &C::Orientation, &C::SetOrientation, boVertical);
}

// --- TKXHighLowAverageChart: geometry ---

TRect TKXHighLowAverageChart::GetBarRect(const TRect& ARect, const TKXBarChartValue* Value,
                                         const TKXCustomChart*, double BarHalfSize, double,
                                         double) const {
  return SpanRect(ARect, GetBarCentre(Value), BarHalfSize, Value->GetValue(2), Value->GetValue(3));
}

bool TKXHighLowAverageChart::WantsCaptions(const TKXChartAxis*) const {
  return false;
}

bool TKXHighLowAverageChart::PaintsInsideRect(const TKXBarChartValue*) const {
  return false;
}

int32_t TKXHighLowAverageChart::PlaceOf(const TRect& R, const TKXHighLowAverageChartValue* Value,
                                        double Number) const {
  const double Span = Value->High() - Value->Low();
  const bool Flat = !(Span != 0.0) || !std::isfinite(Span);
  if (FOrientation == boVertical)
    return Flat ? R.Top : R.Top + CanvasRound(KXRectHeight(R) * (Value->High() - Number) / Span);
  return Flat ? R.Right : R.Right - CanvasRound(KXRectWidth(R) * (Value->High() - Number) / Span);
}

// --- TKXHighLowAverageChart: drawing ---

namespace {

// The pen in the brush's colour for the life of the object, also when drawing raises.
class TPenInBrushColor {
public:
  TPenInBrushColor(TCanvas* Canvas, bool Apply)
      : FCanvas(Canvas), FColor(Canvas->Pen()->Color()) {
    if (Apply) Canvas->Pen()->SetColor(Canvas->Brush()->Color());
  }
  ~TPenInBrushColor() { FCanvas->Pen()->SetColor(FColor); }
  TPenInBrushColor(const TPenInBrushColor&) = delete;
  TPenInBrushColor& operator=(const TPenInBrushColor&) = delete;

private:
  TCanvas* FCanvas;
  TColor FColor;
};

void Line(TCanvas* Canvas, double X1, double Y1, double X2, double Y2) {
  TVclCanvasHelper::DrawLine(Canvas, CanvasPoint(X1, Y1), CanvasPoint(X2, Y2));
}

} // namespace

void TKXHighLowAverageChart::DrawBarValue(TCanvas* Canvas, const TRect& R,
                                          const TKXBarChartValue* Value, bool Shadow) {
  DrawHLABar(Canvas, R, static_cast<const TKXHighLowAverageChartValue*>(Value), Shadow);
}

void TKXHighLowAverageChart::DrawHLABar(TCanvas* Canvas, const TRect& ARect,
                                        const TKXHighLowAverageChartValue* Value, bool Shadow) {
  const TRect R = FixRect(ARect);
  const THighLowAverageStyle S = Style();
  TPenInBrushColor Pen(Canvas, S != hlaBar);
  const bool Capped = S == hlaCappedLine;
  if (S == hlaBar) {
    DrawBar(Canvas, R, Value);
  } else if (FOrientation == boVertical) {
    const int32_t M = R.Left + CanvasDiv(R.Right - R.Left, 2);
    if (Capped) Line(Canvas, R.Left, R.Top, R.Right, R.Top);
    Line(Canvas, M, R.Top, M, R.Bottom);
    if (Capped) Line(Canvas, R.Left, R.Bottom, R.Right, R.Bottom);
  } else {
    const int32_t M = R.Top + CanvasDiv(R.Bottom - R.Top, 2);
    if (Capped) Line(Canvas, R.Right, R.Top, R.Right, R.Bottom);
    Line(Canvas, R.Left, M, R.Right, M);
    if (Capped) Line(Canvas, R.Left, R.Top, R.Left, R.Bottom);
  }
  DrawAverageLine(Canvas, R, Value, S, Shadow);
}

void TKXHighLowAverageChart::DrawAverageLine(TCanvas* Canvas, const TRect& ARect,
                                             const TKXHighLowAverageChartValue* Value,
                                             THighLowAverageStyle Style, bool) {
  TPenInBrushColor Pen(Canvas, true);
  const double L = ARect.Left, T = ARect.Top, Rt = ARect.Right, B = ARect.Bottom;
  const bool Standing = FOrientation == boVertical;
  const double Full = (Standing ? KXRectWidth(ARect) : KXRectHeight(ARect)) / (FBarSizePct / 100.0);
  const double Ext = std::max(2.0, Full * (FAverageLinePct / 100.0) / 2.0);
  const double P = PlaceOf(ARect, Value, Value->Average());
  if (Standing) {
    if (Style == hlaBar) {
      Line(Canvas, L - Ext, P, L, P);
      Line(Canvas, Rt, P, Rt + Ext, P);
    } else {
      const double M = L + CanvasDiv(ARect.Right - ARect.Left, 2);
      Line(Canvas, L - Ext, P, M, P);
      Line(Canvas, M, P, Rt + Ext, P);
    }
  } else if (Style == hlaBar) {
    Line(Canvas, P, T - Ext, P, T);
    Line(Canvas, P, B, P, B + Ext);
  } else {
    const double M = T + CanvasDiv(ARect.Bottom - ARect.Top, 2);
    Line(Canvas, P, M - Ext, P, M + Ext);
  }
}

void TKXHighLowAverageChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value,
                                       const TRect& ARect) {
  if (!Value || !Value->InheritsFrom(TKXHighLowAverageChartValue::StaticClass())) {
    inherited::DrawGlyph(Canvas, Value, ARect);
    return;
  }
  KeepCanvasResources(Canvas, [&] {
    SetCanvasResources(Canvas, Value, false, false);
    DrawHLABar(Canvas, ARect, static_cast<const TKXHighLowAverageChartValue*>(Value), false);
  });
}

} // namespace kx
