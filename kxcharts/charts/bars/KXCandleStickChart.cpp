#include "kxcharts/charts/bars/KXCandleStickChart.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {

// --- TKXCandleStickChartValue ---

TKXCandleStickChartValue::TKXCandleStickChartValue(TCollection* Collection)
    : TKXHighLowAverageChartValue(Collection) {
  if (!TKXChartValue::Collection()) Resize(6);
}

TKXCandleStickChartValues* TKXCandleStickChartValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXCandleStickChartValues::StaticClass())
             ? static_cast<TKXCandleStickChartValues*>(Values)
             : nullptr;
}

void TKXCandleStickChartValue::SetClose(double Value) {
  SetOrdered(4, Value, {3}, {2});
}

void TKXCandleStickChartValue::SetOpen(double Value) {
  SetOrdered(5, Value, {3}, {2});
}

void TKXCandleStickChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using V = TKXCandleStickChartValue;
  Filer.Property("Close", this, &V::Close, &V::SetClose, 0.0);
  Filer.Property("Open", this, &V::Open, &V::SetOpen, 0.0);
}

// --- TKXCandleStickChartValues ---

TKXCandleStickChartValues::TKXCandleStickChartValues(TKXCustomChart* AOwner,
                                                     TKXChartValueClass ValueClass)
    : TKXHighLowAverageChartValues(AOwner, ValueClass) {
  FNumDimensions = 6;
}

TKXCandleStickChart* TKXCandleStickChartValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return Chart && Chart->InheritsFrom(TKXCandleStickChart::StaticClass())
             ? static_cast<TKXCandleStickChart*>(Chart)
             : nullptr;
}

double TKXCandleStickChartValues::LastClose(double Fallback) const {
  return Count() > 0 ? Items(Count() - 1)->Close() : Fallback;
}

TKXCandleStickChartValue* TKXCandleStickChartValues::Add() {
  return Add(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, "");
}

TKXCandleStickChartValue* TKXCandleStickChartValues::Add(double Close, const std::string& Caption,
                                                         TColor Color) {
  return Add(MaxValue(0) + 1.0, LastClose(Close), Close, Close, Close, Close, Caption, Color);
}

TKXCandleStickChartValue* TKXCandleStickChartValues::Add(double X, double Close, double High,
                                                         double Low, const std::string& Caption,
                                                         TColor Color) {
  return Add(X, LastClose(Close), Close, High, Low, Low + (High - Low) / 2, Caption, Color);
}

TKXCandleStickChartValue* TKXCandleStickChartValues::Add(double X, double Open, double Close,
                                                         double High, double Low,
                                                         const std::string& Caption, TColor Color) {
  return Add(X, Open, Close, High, Low, Low + (High - Low) / 2, Caption, Color);
}

TKXCandleStickChartValue* TKXCandleStickChartValues::Add(double X, double Open, double Close,
                                                         double High, double Low, double Average,
                                                         const std::string& Caption, TColor Color) {
  High = std::max(High, std::max(Open, Close));
  Low = std::min(Low, std::min(Open, Close));
  const double Numbers[] = {X, Average, High, Low, Close, Open};
  return static_cast<TKXCandleStickChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

// --- TKXCandleStickGraphic ---

void TKXCandleStickGraphic::Initialize() {
  inherited::Initialize();
  FStyle = bsRectangle;
}

void TKXCandleStickGraphic::SetStyle(TBarChartStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  Changed();
}

void TKXCandleStickGraphic::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXCandleStickGraphic*>(Source)) FStyle = Src->FStyle;
  inherited::Assign(Source);
}

void TKXCandleStickGraphic::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using G = TKXCandleStickGraphic;
  Filer.Property("Brush", this, &G::Brush);
  Filer.Property("Pen", this, &G::Pen);
  Filer.Property("Style", this, &G::Style, &G::SetStyle, bsRectangle);
}

// --- TKXCandleStickChart: life ---

void TKXCandleStickChart::InitializeChart() {
  inherited::InitializeChart();
  const auto Shape = [](TColor Color) {
    auto G = MakeOwned<TKXCandleStickGraphic>();
    G->Brush()->SetColor(Color);
    G->Brush()->UseCurrentAsDefaults();
    return G;
  };
  FDownShape = Shape(TColor(255));
  FUpShape = Shape(TColor(32768));
  FStyle = csCandle;
  SetOptions(FOptions - coValueColors);
}

void TKXCandleStickChart::InitializeChangeEvents() {
  inherited::InitializeChangeEvents();
  for (TKXCandleStickGraphic* G : {FUpShape.get(), FDownShape.get()})
    G->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
}

void TKXCandleStickChart::BeforeDestruction() {
  FDownShape.reset();
  FUpShape.reset();
  inherited::BeforeDestruction();
}

void TKXCandleStickChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXCandleStickChart*>(Source)) {
    FUpShape->Assign(Src->FUpShape.get());
    FDownShape->Assign(Src->FDownShape.get());
  }
  inherited::Assign(Source);
}

void TKXCandleStickChart::SetCandleStickStyle(TCandleStickStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  Changed();
}

TOwned<TKXChartValues> TKXCandleStickChart::CreateChartValues() {
  return MakeOwned<TKXCandleStickChartValues>(this, ClassOf<TKXCandleStickChartValue>());
}

void TKXCandleStickChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TKXChartValues* All = TKXCustomChart::Values();
  TFinally KeepPreview([this] { FPreview = true; });
  TUpdateScope<TKXChartValues> Scope(All);
  TFinally Dates([All] { All->SetIsDateTime(true); });
  const auto Deg = [](double D) { return D * std::numbers::pi / 180.0; };
  TKXCandleStickChartValues* V = Values();
  TDateTime Date = EncodeDate(2014, 10, 1);
  double Mid = std::sin(Deg(10)) * 100 + 200;
  V->Add(Date, Mid - 5, Mid, Mid + std::sin(Deg(10)) * 10 + 30, Mid + std::cos(Deg(10)) * 10 - 30,
         "", TColor(-1));
  for (int I = 2; I <= 31; ++I) {
    const double A = Deg(I * 10);
    Mid = std::sin(A) * 100 + 200;
    const double H = Mid + std::sin(A) * 10 + 30, L = Mid + std::cos(A) * 10 - 30;
    Date += 1;
    const int32_t Day = DayOfWeek(Date);
    if (Day == 6 || Day == 7) continue;
    V->Add(Date, V->Items(V->Count() - 1)->Close(), Mid, H, L, L + (H - L) * Day / 6, "",
           TColor(-1));
  }
}

void TKXCandleStickChart::DefineProperties(TFiler& Filer) {
  // Not the high-low-average chart's: its style is another type, its mark length not stored.
  TKXCustomSparseBarChart::DefineProperties(Filer);
  using C = TKXCandleStickChart;
  Filer.Property("Style", this, &C::CandleStickStyle, &C::SetCandleStickStyle, csCandle);
  Filer.Property("BarSizePct", this, &C::BarSizePct, &C::SetBarSizePct, 70);
  Filer.Property("ImageList", this, &C::ImageList, &C::SetImageList);
  Filer.Property("Orientation", this, &C::Orientation, &C::SetOrientation, boVertical);
  Filer.Property("DownShape", this, &C::DownShape);
  Filer.Property("UpShape", this, &C::UpShape);
}

// --- TKXCandleStickChart: look ---

TKXCandleStickGraphic* TKXCandleStickChart::ShapeOf(const TKXBarChartValue* Value) const {
  const bool Up = Value->GetValue(4) > Value->GetValue(5);
  return Up ? FUpShape.get() : FDownShape.get();
}

TBarChartStyle TKXCandleStickChart::GetBarStyle(const TKXBarChartValue* Value) const {
  return Value->ParentStyle() ? ShapeOf(Value)->Style() : Value->Style();
}

TColor TKXCandleStickChart::GetColor(const TKXChartValue* Value) const {
  if (!Value || FOptions.Contains(coValueColors) ||
      !Value->InheritsFrom(TKXBarChartValue::StaticClass()))
    return inherited::GetColor(Value);
  return ShapeOf(static_cast<const TKXBarChartValue*>(Value))->Brush()->Color();
}

void TKXCandleStickChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value,
                                             bool AdjustFont, bool AdjustPen) {
  if (!Value || !Value->InheritsFrom(TKXBarChartValue::StaticClass())) {
    inherited::SetCanvasResources(Canvas, nullptr, true, true);
    return;
  }
  const TKXCandleStickGraphic* S = ShapeOf(static_cast<const TKXBarChartValue*>(Value));
  SetCanvasResources(Canvas, S->Brush(), S->Pen(), Font(), AdjustFont, AdjustPen);
  const bool Selected = Value->Selected();
  if (AdjustPen && Selected && FOptions.Contains(coSelectionPen))
    Canvas->Pen()->SetWidth(Canvas->Pen()->Width() + 1);
  if (Selected && FOptions.Contains(coSelectionFill))
    Canvas->Brush()->SetColor(FSelectionColor);
  else if (FOptions.Contains(coValueColors))
    Canvas->Brush()->SetColor(Value->Color());
}

bool TKXCandleStickChart::PaintsInsideRect(const TKXBarChartValue* Value) const {
  // Caps and ticks paint across a flat span, the average mark beyond it.
  return (FStyle == csBody || FStyle == csCandle) && GetBarStyle(Value) != bsArrow;
}

int32_t TKXCandleStickChart::ColumnSpans(const TKXBarChartValue* Value, const TRect& R,
                                         const TColumnPen&, TRect (&Spans)[2],
                                         TColor& Color) const {
  if ((FStyle != csBody && FStyle != csCandle) || GetBarStyle(Value) != bsRectangle) return -1;
  const TKXCandleStickGraphic* S = ShapeOf(Value);
  const TPen* P = S->Pen();
  if (P->Mode() != pmCopy || P->Width() != 1 || FPen->Width() != 1) return -1;
  const bool Solid = P->Style() == psSolid;
  if (!Solid && !(P->Style() == psClear && S->Brush()->Style() == bsSolid)) return -1;
  Color = Solid ? P->Color() : GetColor(Value);
  const auto* V = static_cast<const TKXCandleStickChartValue*>(Value);
  const int32_t PHi = PlaceOf(R, V, std::max(V->Open(), V->Close()));
  const int32_t PLo = PlaceOf(R, V, std::min(V->Open(), V->Close()));
  const bool Standing = FOrientation == boVertical;
  // Along the column: the span A..B and the body C0..C1.
  const int32_t A = Standing ? R.Top : R.Left, B = Standing ? R.Bottom : R.Right;
  const int32_t C0 = Standing ? PHi : PLo, C1 = Standing ? PLo : PHi;
  // A body outside its span has wicks that turn back: drawn as they are.
  if (C0 < A || C1 > B || C1 < C0) return -1;
  const auto Span = [&](int32_t Lo, int32_t Hi) {
    return Standing ? TRect{R.Left, Lo, R.Right, Hi} : TRect{Lo, R.Top, Hi, R.Bottom};
  };
  int32_t N = 0;
  if (!Solid || FStyle == csBody) {
    if (C1 > C0) Spans[N++] = Span(C0, C1);
    return N;
  }
  // The wick toward A ends where the body starts; the one from B stops short of the body.
  if (C1 > A) Spans[N++] = Span(A, C1);
  if (B > C1) Spans[N++] = Span(C1 + 1, B + 1);
  return N;
}

// --- TKXCandleStickChart: drawing ---

namespace {

void Line(TCanvas* Canvas, int32_t X1, int32_t Y1, int32_t X2, int32_t Y2) {
  TVclCanvasHelper::DrawLine(Canvas, X1, Y1, X2, Y2);
}

} // namespace

void TKXCandleStickChart::DrawHLABar(TCanvas* Canvas, const TRect& ARect,
                                     const TKXHighLowAverageChartValue* HLA, bool Shadow) {
  const auto* Value = static_cast<const TKXCandleStickChartValue*>(HLA);
  const TCandleStickStyle Style = CandleStickStyle();
  const int Kind = Style % 4; // body, candle, capped candle, ticks
  TPen* Pen = Canvas->Pen();
  const TColor PenColor = Pen->Color();
  TFinally Restore([Pen, PenColor] { Pen->SetColor(PenColor); });
  if (Kind == csTicks) Pen->SetColor(Canvas->Brush()->Color());
  const TRect R = FixRect(ARect);
  const int32_t L = R.Left, T = R.Top, Rt = R.Right, B = R.Bottom;
  if (Style >= csBodyAverage) DrawAverageLine(Canvas, R, Value, hlaLine, Shadow);
  const double Hi = std::max(Value->Open(), Value->Close());
  const double Lo = std::min(Value->Open(), Value->Close());
  const int32_t PHi = PlaceOf(R, Value, Hi), PLo = PlaceOf(R, Value, Lo);
  const bool Up = Value->IsUp();
  const bool Standing = FOrientation == boVertical;
  // The body from Open to Close: a down value's with its ends swapped.
  TRect Body = Standing ? (Up ? TRect{L, PHi, Rt, PLo} : TRect{L, PLo, Rt, PHi})
                        : (Up ? TRect{PLo, T, PHi, B} : TRect{PHi, T, PLo, B});
  if (Kind == csTicks) {
    if (Standing) {
      const int32_t M = L + CanvasDiv(Rt - L, 2);
      Line(Canvas, M, T, M, B);
      Line(Canvas, L, PHi, M, PHi);
      Line(Canvas, M, PLo, Rt, PLo);
    } else {
      const int32_t M = T + CanvasDiv(B - T, 2);
      Line(Canvas, L, M, Rt, M);
      Line(Canvas, PHi, T, PHi, M);
      Line(Canvas, PLo, B, PLo, M);
    }
    return;
  }
  DrawBar(Canvas, Body, Value);
  if (Kind == csBody) return;
  Body = FixRect(Body);
  const bool Capped = Kind == csCappedCandle;
  if (Standing) {
    const int32_t M = L + CanvasDiv(Rt - L, 2);
    if (Capped) Line(Canvas, L, T, Rt, T);
    Line(Canvas, M, T, M, Body.Top);
    if (Capped) Line(Canvas, L, B, Rt, B);
    Line(Canvas, M, B, M, Body.Bottom);
  } else {
    const int32_t M = T + CanvasDiv(B - T, 2);
    if (Capped) Line(Canvas, Rt, T, Rt, B);
    Line(Canvas, Rt, M, Body.Right, M);
    if (Capped) Line(Canvas, L, T, L, B);
    Line(Canvas, L, M, Body.Left, M);
  }
}

void TKXCandleStickChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value,
                                    const TRect& ARect) {
  if (!Value || !Value->InheritsFrom(TKXCandleStickChartValue::StaticClass())) {
    inherited::DrawGlyph(Canvas, Value, ARect);
    return;
  }
  TBrush* Brush = Canvas->Brush();
  const TColor Kept = Brush->Color();
  TFinally Restore([Brush, Kept] { Brush->SetColor(Kept); });
  Brush->SetColor(GetColor(Value));
  Canvas->Rectangle(ARect);
}

} // namespace kx
