#include "kxcharts/charts/KXPointCharts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXLineReduction_p.h"
#include "kxcharts/charts/KXValueSummary_p.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

// Runs of alike values shorter than this are drawn point by point: making a stamp costs
// about as much as drawing a few dozen points.
constexpr int32_t MinStampRun = 64;
// Larger points are drawn one by one: few of them share pixels, and a big stamp costs more
// than it saves.
constexpr int32_t MaxStampHalfSize = 64;

bool IsImageStyle(TKXShapeStyle Style) {
  return Style == shpImage || Style == shpImage3D;
}

} // namespace

// --- TKXPointChartValue ---

TKXPointChartValues* TKXPointChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXPointChartValues::StaticClass())
             ? static_cast<TKXPointChartValues*>(C)
             : nullptr;
}

bool TKXPointChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const TKXPointChartValues* C = Collection();
  const TKXCustomPointChart* Chart = C ? C->Owner() : nullptr;
  if (!Chart) return inherited::Selectable(SelRect, Action);
  const TKXCustomChartPointInfo* Info = Chart->PointsInfo();
  double HW = Info->Width() / 2.0, HH = Info->Height() / 2.0;
  if (Chart->FixedSizePoints()) {
    // Pixels on the axes' own plot rectangles, as the chart's points are sized there.
    const auto Span = [](const TKXChartAxis* Axis, int32_t Pixels) {
      return Axis ? std::fabs(Axis->PixelToAxis(Pixels, false) - Axis->PixelToAxis(0, false)) / 2.0
                  : 0.0;
    };
    HW = Span(Chart->HorizontalAxis(), Info->Width());
    HH = Span(Chart->VerticalAxis(), Info->Height());
  }
  const double PX = X(), PY = Y();
  return TKXChartValue::Selectable(KXRect(PX - HW, PY - HH, PX + HW, PY + HH), SelRect, Action);
}

// --- TKXPointChartValues ---

TKXCustomPointChart* TKXPointChartValues::Owner() const {
  return dynamic_cast<TKXCustomPointChart*>(TKXChartValues::Owner());
}

void TKXPointChartValues::PointMargins(double& HalfWidth, double& HalfHeight) const {
  HalfWidth = HalfHeight = 10.0;
  if (const TKXCustomPointChart* Chart = Owner()) {
    HalfWidth = Chart->PointsInfo()->Width() / 2.0;
    HalfHeight = Chart->PointsInfo()->Height() / 2.0;
  }
}

void TKXPointChartValues::CalculateMetaData() {
  inherited::CalculateMetaData();
  double HW, HH;
  PointMargins(HW, HH);
  const auto Widen = [this](int32_t Dim, double By) {
    const auto D = static_cast<size_t>(Dim);
    if (D >= FMaxValue.size()) return;
    FMaxValue[D] += By;
    FMinValue[D] -= By;
  };
  Widen(FXDim, HW);
  Widen(FYDim, HH);
}

bool TKXPointChartValues::GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const {
  if (!inherited::GetIndexedExtent(Dimension, Lo, Hi)) return false;
  double HW, HH;
  PointMargins(HW, HH);
  const double By = Dimension == FXDim ? HW : HH;
  Lo -= By;
  Hi += By;
  return true;
}

// --- TKXCustomPointChart: life and properties ---

TOwned<TKXCustomChartPointInfo> TKXCustomPointChart::CreatePointsInfo() {
  return MakeOwned<TKXChartPointInfo>(this);
}

void TKXCustomPointChart::InitializeChart() {
  FPointsInfo = CreatePointsInfo();
  inherited::InitializeChart();
  FEnforceSingleOption = false;
  SetOptions(FOptions + coReservedFlag);
  Values()->SetSorted(false);
}

void TKXCustomPointChart::InitializeChangeEvents() {
  inherited::InitializeChangeEvents();
  FPointsInfo->SetOnChange([this](TObject* Sender) {
    // The range holds the points whole: their size is part of it.
    Values()->ExtentsChanged();
    SenderChanged(Sender);
  });
}

TOwned<TKXChartValues> TKXCustomPointChart::CreateChartValues() {
  return MakeOwned<TKXPointChartValues>(this, ClassOf<TKXPointChartValue>());
}

void TKXCustomPointChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
    static constexpr double XY[][2] = {{97, 36}, {94, 74}, {68, 76}, {64, 87}, {68, 27},
                                       {74, 99}, {7, 93},  {51, 69}, {38, 23}, {57, 86}};
    for (const auto& P : XY)
      Values()->Add(P[0], P[1], "", TColor(-1), -1);
  }
  FPreview = true;
}

void TKXCustomPointChart::BeforeDestruction() {
  // The list is left without a change notice: nobody hears of a chart that goes.
  if (FImageList) RemoveFreeNotification(FImageList);
  FImageList = nullptr;
  inherited::BeforeDestruction();
  FStamp.reset();
  FPointsInfo.reset();
}

void TKXCustomPointChart::SetFixedSizePoints(bool Value) {
  if (FFixedSizePoints == Value) return;
  FFixedSizePoints = Value;
  Changed();
}

void TKXCustomPointChart::SetImageList(TImageList* Value) {
  if (FImageList == Value) return;
  if (FImageList) RemoveFreeNotification(FImageList);
  FImageList = Value;
  if (Value) {
    FreeNotification(Value);
    FPointsInfo->SetHeight(Value->Height());
    FPointsInfo->SetWidth(Value->Width());
  }
  Changed();
}

void TKXCustomPointChart::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && AComponent == FImageList) FImageList = nullptr;
  inherited::Notification(AComponent, Operation);
}

TColor TKXCustomPointChart::GetColor() const {
  return FPointsInfo->Brush()->Color();
}

void TKXCustomPointChart::SetColor(TColor Value) {
  if (FPointsInfo->Brush()->Color() != Value) FPointsInfo->Brush()->SetColor(Value);
}

void TKXCustomPointChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXCustomPointChart*>(Source)) {
    FFixedSizePoints = Src->FFixedSizePoints;
    SetImageList(Src->FImageList);
    FPointsInfo->Assign(Src->FPointsInfo.get());
  }
  inherited::Assign(Source);
}

void TKXCustomPointChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Options", DefaultChartOptions);
  inherited::DefineProperties(Filer);
}

// --- TKXCustomPointChart: canvas ---

void TKXCustomPointChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value,
                                             bool AdjustFont, bool AdjustPen) {
  SetCanvasResources(Canvas, FPointsInfo->Brush(), FPointsInfo->Pen(), FFont.get(), AdjustFont,
                     AdjustPen);
  if (Value) SetValueLook(Canvas, Value, AdjustPen);
}

void TKXCustomPointChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value,
                                    const TRect& ARect) {
  KeepCanvasResources(Canvas, [&] {
    SetCanvasResources(Canvas, Value, false, false);
    const auto* Image = dynamic_cast<const TKX2DImageChartValue*>(Value);
    FPointsInfo->DrawPoint(Canvas, ARect, FOpacity * (Value ? Value->Opacity() : 1.0f),
                           FImageList, Image ? Image->ImageIndex() : -1);
  });
}

// --- TKXCustomPointChart: drawing ---

void TKXCustomPointChart::PointHalfSize(const TRect& Rect, int32_t& HalfWidth,
                                        int32_t& HalfHeight) const {
  const int32_t W = FPointsInfo->Width(), H = FPointsInfo->Height();
  if (FFixedSizePoints || !FHorizontalAxis || !FVerticalAxis) {
    HalfWidth = CanvasDiv(W, 2);
    HalfHeight = CanvasDiv(H, 2);
    return;
  }
  // The pixels of a difference can reach twice the largest pixel: taken in 64 bits.
  const auto Half = [&Rect](const TKXChartAxis* Axis, int32_t Size) {
    const int64_t D = int64_t{Axis->AxisToPixel(Size, Rect)} - Axis->AxisToPixel(0.0, Rect);
    return static_cast<int32_t>(std::min<int64_t>(std::llabs(D / 2), KXMaxCanvasInt));
  };
  HalfWidth = Half(FHorizontalAxis, W);
  HalfHeight = Half(FVerticalAxis, H);
}

void TKXCustomPointChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const int32_t Count = FValues->Count();
  if (Count == 0 || FFirstIndex == -1 || !FHorizontalAxis || !FVerticalAxis) return;
  if (!FPointsInfo->Visible()) {
    inherited::InternalDraw(Canvas, ARect);
    return;
  }
  {
    // The points carry the labels; the lines under them must not write them a second time.
    const bool Labels = FOptions.Contains(coValueLabels);
    FOptions.Exclude(coValueLabels);
    TFinally Restore([this, Labels] {
      if (Labels) FOptions.Include(coValueLabels);
    });
    inherited::InternalDraw(Canvas, ARect);
  }
  // Values changed inside an update bracket leave the span stale; it must lie in the
  // collection before the walk.
  if (FFirstIndex >= Count || FLastIndex >= Count || FLastIndex < FFirstIndex)
    DoUpdateAxisInfo(FHorizontalAxis);
  if (FFirstIndex < 0 || FLastIndex >= Count || FLastIndex < FFirstIndex) return;
  DrawPoints(Canvas, ARect);
}

void TKXCustomPointChart::DrawPoints(TCanvas* Canvas, const TRect& Rect) {
  int32_t HW, HH;
  PointHalfSize(Rect, HW, HH);
  const TKXPointChartValues* V = Values();
  const TKXValueSummary* Summary = CanStamp(Canvas) && HW <= MaxStampHalfSize &&
                                           HH <= MaxStampHalfSize
                                       ? &V->Summary()
                                       : nullptr;
  const bool OneColor = !FOptions.Contains(coValueColors);
  const auto DrawOne = [&](int32_t I) {
    TKXPointChartValue* Value = V->Items(I);
    if (!Value->Visible() || Value->Opacity() == 0.0f) return;
    const TPoint P = GetValuePoint(Value, Rect);
    if (P == NoPoint) return;
    DrawPoint(Canvas, CanvasRect(double(P.X) - HW, double(P.Y) - HH, double(P.X) + HW,
                                 double(P.Y) + HH),
              Value);
  };
  for (int32_t I = FFirstIndex; I <= FLastIndex;) {
    if (Summary && Summary->Plain(I)) {
      int32_t End = Summary->NextNotPlain(I, FLastIndex) - 1;
      if (!OneColor) End = Summary->NextOtherColor(I, End, Summary->Color(I)) - 1;
      if (End - I + 1 >= MinStampRun) {
        if (StampRun(Canvas, Rect, I, End, HW, HH)) {
          I = End + 1;
          continue;
        }
        // The canvas or the point's picture refuses stamps; it will for the rest too.
        Summary = nullptr;
      }
    }
    DrawOne(I);
    ++I;
  }
}

bool TKXCustomPointChart::CanStamp(const TCanvas* Canvas) const {
  if (Canvas->SurfaceKind() != skImage || FOnCustomDrawValue ||
      FOptions.Contains(coValueLabels) || IsImageStyle(FPointsInfo->Style()) ||
      FPointsInfo->Pen()->Mode() != pmCopy || !(FOpacity > 0.0f))
    return false;
  // A shadow drawn in another pen mode combines with what lies under it.
  const bool Shadow = !FOptions.Contains(coNoChartShadow) && FPanel &&
                      FPanel->ChartShadow()->Visible();
  return !Shadow || FPanel->ChartShadow()->Pen()->Mode() == pmCopy;
}

bool TKXCustomPointChart::StampRun(TCanvas* Canvas, const TRect& Rect, int32_t From, int32_t To,
                                   int32_t HalfWidth, int32_t HalfHeight) {
  // Room around the point for its outline, its bevel and its shadow.
  int32_t Margin = 4 + 2 * std::max(1, FPointsInfo->Pen()->Width());
  if (FPanel && FPanel->ChartShadow()->Visible())
    Margin += std::abs(FPanel->ChartShadow()->Size());
  if (Margin > MaxStampHalfSize) return false;
  if (!FStamp) FStamp = MakeOwned<TBitmap>();
  FStamp->SetSize(2 * (HalfWidth + Margin), 2 * (HalfHeight + Margin));
  TCanvas* S = FStamp->Canvas();
  S->ClearRect({0, 0, FStamp->Width(), FStamp->Height()});
  // The first value of the run stands for all: they are plain and look alike.
  const int32_t X0 = HalfWidth + Margin, Y0 = HalfHeight + Margin;
  DrawPoint(S, {X0 - HalfWidth, Y0 - HalfHeight, X0 + HalfWidth, Y0 + HalfHeight},
            Values()->Items(From));
  const TKXValueSummary& Summary = Values()->Summary();
  const TKXPixelMap Map{FHorizontalAxis, FVerticalAxis, Rect, GetAdjOffsetVertical()};
  // In parts that stay in the cache. A copy at the place of the one before it covers that
  // one exactly: it takes its slot, without a branch that a cloud would mispredict.
  constexpr size_t Part = 4096;
  FStampAt.resize(Part);
  TPoint* Out = FStampAt.data();
  size_t N = 0;
  // No pixel arithmetic gives NoPoint: the first copy of a part always takes a slot.
  TPoint Prev = NoPoint;
  // Where a block of values lies within one pixel column (values in the order of their X),
  // that column is taken for all of them: the summary knows the block's extent.
  constexpr int32_t Block = 256;
  for (int32_t Start = From; Start <= To; Start += Block) {
    const int32_t End = std::min(To, Start + Block - 1);
    double Lo, Hi;
    bool OneColumn = Summary.XMinMax(Start, End, Lo, Hi);
    const int32_t Column = OneColumn ? Map.PX(Lo) : 0;
    OneColumn = OneColumn && Map.PX(Hi) == Column;
    for (int32_t I = Start; I <= End; ++I) {
      const TPoint At{(OneColumn ? Column : Map.PX(Summary.X(I))) - X0,
                      Map.PY(Summary.Y(I)) - Y0};
      N -= static_cast<size_t>(At == Prev);
      Out[N++] = At;
      Prev = At;
      if (N == Part) {
        if (!Canvas->DrawStamps(FStamp.get(), FStampAt)) return false;
        N = 0;
        Prev = NoPoint;
      }
    }
  }
  return Canvas->DrawStamps(FStamp.get(), std::span(FStampAt).first(N));
}

void TKXCustomPointChart::DrawPoint(TCanvas* Canvas, const TRect& ARect,
                                    TKXPointChartValue* Value) {
  const float Opacity = FOpacity * Value->Opacity();
  if (Opacity == 0.0f) return;
  const TRect R = Value->ScaledRect(ARect);
  DrawShapeShadow(Canvas, R, FPointsInfo->Style(), 1.0f);
  SetCanvasResources(Canvas, Value, true, true);
  bool DefaultDraw = true;
  if (FOnCustomDrawValue) FOnCustomDrawValue(this, Canvas, R, Value, DefaultDraw);
  if (!DefaultDraw) return;
  FPointsInfo->DrawPoint(Canvas, R, Opacity, FImageList, Value->ImageIndex());
  if (FOptions.Contains(coValueLabels)) {
    const TPoint C = CanvasCenterPoint(R);
    DrawLabel(Canvas, Value, C.X, C.Y - Canvas->TextHeight("W"));
  }
}

// --- TKXPointChart ---

void TKXPointChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXPointChart;
  Filer.Property("FixedSizePoints", this, &T::FixedSizePoints, &T::SetFixedSizePoints, false);
  Filer.Property("ImageList", this, &T::ImageList, &T::SetImageList);
  Filer.Property("PointsInfo", this, &T::PointsInfo);
  Filer.Property("LineChartElements", this, &T::LineChartElements, &T::SetLineChartElements,
                 TBasicCharts{});
  Filer.Property("LineStyle", this, &T::LineStyle, &T::SetLineStyle, lsStraight);
}

// --- TKXScatterChart ---

void TKXScatterChart::InitializeChart() {
  inherited::InitializeChart();
  FCloseLine = true;
  FLineStyle = lsSmooth;
  FLineChartElements = TBasicCharts{bcArea};
}

void TKXScatterChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
    struct TCorner {
      double X, Y;
      const char* Caption;
    };
    static constexpr TCorner Star[] = {
        {350, 75, "Research, Domestic"},         {379, 161, "Marketing, Domestic"},
        {469, 161, "Development, Domestic"},     {397, 215, "Purchases, Domestic"},
        {423, 301, "Manufacturing, Domestic"},   {350, 250, "Research, International"},
        {277, 301, "Marketing, International"},  {303, 215, "Development, International"},
        {231, 161, "Purchases, International"},  {321, 161, "Manufacturing, International"}};
    for (const TCorner& C : Star)
      Values()->Add(C.X, C.Y, C.Caption, TColor(-1), -1);
  }
  FPreview = true;
}

void TKXScatterChart::DrawArea(TCanvas* Canvas, const TRect& ARect, bool Shadow) {
  int32_t First = 0, Last = -1;
  TCanvasPoints Points = BuildPoints(ARect, First, Last);
  // A value that has no place leaves the polygon rather than pulling it to a far corner.
  std::erase(Points, NoPoint);
  if (Points.size() < 3) return;
  if (!Shadow) Canvas->Brush()->SetColor(GetColor());
  FlushSegments();
  if (FLineStyle == lsSmooth || FLineStyle == lsBezier)
    DrawBezierPolygon(Canvas, Points, FLineStyle == lsBezier, false, true, 1, FOpacity);
  else
    Canvas->Polygon(Points);
}

void TKXScatterChart::DrawLine(TCanvas* Canvas, const TRect& Rect, bool Shadow) {
  const TBasicCharts Elements = FLineChartElements;
  const TLineChartStyle Style = FLineStyle;
  TFinally Restore([this, Elements, Style] {
    FLineChartElements = Elements;
    FLineStyle = Style;
  });
  if (Elements.Contains(bcArea)) DrawArea(Canvas, Rect, Shadow);
  FLineChartElements.Exclude(bcArea);
  // A scatter polygon has no steps.
  if (FLineStyle == lsStepHorizontal || FLineStyle == lsStepVertical) FLineStyle = lsStraight;
  inherited::DrawLine(Canvas, Rect, Shadow);
}

void TKXScatterChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("LineChartElements", TBasicCharts{bcArea});
  Filer.Redefault("LineStyle", lsSmooth);
  inherited::DefineProperties(Filer);
}

} // namespace kx
