#include "kxcharts/axes/KXChartAxis.h"

#include <algorithm>
#include <vector>

#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/KXGraphics.h"
#include "kxcharts/toolkit/KXMath.h"
#include "kxcharts/toolkit/KXStreaming.h"

namespace kx {

// --- TKXChartAxis: life ---

TKXChartAxis::TKXChartAxis(TKXCustomChartPanel* AOwner) : FOwner(AOwner) {}

TKXChartAxis::~TKXChartAxis() = default;

void TKXChartAxis::AfterConstruction() {
  FCharts = MakeOwned<TKXChartList>(nullptr);
  inherited::AfterConstruction();
  FCharts->SetOnNotify([this](TObject* Sender, TKXCustomChart* Chart, TListNotification Action) {
    ChartListNotify(Sender, Chart, Action);
  });
}

void TKXChartAxis::BeforeDestruction() {
  inherited::BeforeDestruction();
  if (FCharts) {
    // The charts belong to others; they only stop pointing here.
    FCharts->SetOnNotify(nullptr);
    while (FCharts->Count() > 0) {
      TKXCustomChart* Chart = FCharts->Last();
      FCharts->Delete(FCharts->Count() - 1);
      if (Chart->HorizontalAxis() == this) Chart->SetHorizontalAxis(nullptr);
      if (Chart->VerticalAxis() == this) Chart->SetVerticalAxis(nullptr);
    }
  }
  FCharts.reset();
}

// --- TKXChartAxis: properties ---

void TKXChartAxis::SetLocation(TKXChartAxisLocation Value) {
  if (FLocation == Value) return;
  FLocation = Value;
  FDimension = IsVertical() ? 1 : 0;
  Changed();
}

void TKXChartAxis::SetFormat(const std::string& Value) {
  if (FFormat == Value) return;
  FFormat = Value;
  Changed();
}

void TKXChartAxis::SetOptions(TAxisOptions Value) {
  if (FOptions == Value) return;
  FOptions = Value;
  if (Value.Contains(aoAutoMinimum) || Value.Contains(aoAutoMaximum)) FNeedAxisUpdate = true;
  Changed();
}

void TKXChartAxis::UpdateZooming() {
  FZooming = !SameValue(FMaximum, FZoomMaximum) || !SameValue(FMinimum, FZoomMinimum);
}

void TKXChartAxis::SetMinimum(double Value) {
  if (Value == FMinimum) return;
  FMinimum = Value;
  if (FMaximum < FMinimum) SetMaximum(Value);
  if (FZoomMinimum < FMinimum || !FZooming) SetZoomMinimum(FMinimum);
  SetOptions(FOptions - aoAutoMinimum);
  Changed();
}

void TKXChartAxis::SetMaximum(double Value) {
  if (Value == FMaximum) return;
  FMaximum = Value;
  if (FMaximum < FMinimum) SetMinimum(Value);
  if (FMaximum < FZoomMaximum || !FZooming) SetZoomMaximum(FMaximum);
  SetOptions(FOptions - aoAutoMaximum);
  Changed();
}

void TKXChartAxis::SetZoomMinimum(double Value) {
  if (Value == FZoomMinimum) {
    UpdateZooming();
    return;
  }
  FZoomMinimum = Value < FMinimum ? FMinimum : Value;
  if (FZoomMaximum < FZoomMinimum) SetZoomMaximum(Value);
  UpdateZooming();
  Changed();
}

void TKXChartAxis::SetZoomMaximum(double Value) {
  if (Value == FZoomMaximum) {
    UpdateZooming();
    return;
  }
  FZoomMaximum = Value > FMaximum ? FMaximum : Value;
  if (FZoomMaximum < FZoomMinimum) SetZoomMinimum(Value);
  UpdateZooming();
  Changed();
}

void TKXChartAxis::SetStartPosition(int32_t Value) {
  if (FStartPosition == Value) return;
  FStartPosition = Value;
  if (FEndPosition < Value) FEndPosition = Value;
  Changed();
}

void TKXChartAxis::SetEndPosition(int32_t Value) {
  if (FEndPosition == Value) return;
  FEndPosition = Value;
  if (FStartPosition > Value) FStartPosition = Value;
  Changed();
}

void TKXChartAxis::SetInwardPosition(int32_t Value) {
  if (FInwardPosition == Value) return;
  FInwardPosition = Value;
  Changed();
}

double TKXChartAxis::ZoomAmount() const {
  const double Zoomed = SizeZoomed();
  return Zoomed == 0.0 ? 1.0 : SizeUnzoomed() / Zoomed;
}

// --- TKXChartAxis: mapping ---

void TKXChartAxis::Span(const TRect& R, int32_t& S, int32_t& E) const {
  const int32_t From = IsVertical() ? R.Top : R.Left;
  const double Extent = IsVertical() ? KXRectHeight(R) : KXRectWidth(R);
  S = CanvasRound(From + CanvasRound(Extent * (FStartPosition / 100.0)));
  E = CanvasRound(From + CanvasRound(Extent * (FEndPosition / 100.0)));
}

int32_t TKXChartAxis::AxisToPixel(double Value, const TRect& ChartRect) const {
  int32_t S, E;
  Span(ChartRect, S, E);
  const double Lo = FZoomMinimum, Hi = FZoomMaximum;
  const double Fraction = Hi == Lo ? Value - Lo : (Value - Lo) / (Hi - Lo);
  int32_t P = CanvasRound(Fraction * (static_cast<double>(E) - S) + S);
  // Mirroring in 64 bits: E - (P - S) of two clamped numbers always fits.
  const auto Mirror = [S, E](int32_t X) {
    return CanvasRound(static_cast<double>(E) - (static_cast<double>(X) - S));
  };
  if (IsVertical()) P = Mirror(P);
  if (FOptions.Contains(aoReversed)) P = Mirror(P);
  return P;
}

double TKXChartAxis::PixelToAxis(int32_t Pixel, const TRect& ChartRect, bool IgnoreZoom) const {
  int32_t SI, EI;
  Span(ChartRect, SI, EI);
  const double S = SI, E = EI;
  const double Lo = IgnoreZoom ? FMinimum : FZoomMinimum;
  const double Hi = IgnoreZoom ? FMaximum : FZoomMaximum;
  double P = Pixel;
  if (FOptions.Contains(aoReversed)) P = E - (P - S);
  double R;
  if (P <= S)
    R = Lo;
  else if (P >= E)
    R = Hi;
  else
    R = ((P - S) / (E - S)) * (Hi - Lo) + Lo;
  if (IsVertical()) R = Hi - (R - Lo);
  return R;
}

namespace {
constexpr TRect NoOwnerRect{0, 0, 100, 100};
}

int32_t TKXChartAxis::AxisToPixel(double Value) const {
  return AxisToPixel(Value, FOwner ? FOwner->ChartRect() : NoOwnerRect);
}

double TKXChartAxis::PixelToAxis(int32_t Pixel, bool IgnoreZoom) const {
  return PixelToAxis(Pixel, FOwner ? FOwner->ChartRect() : NoOwnerRect, IgnoreZoom);
}

// --- TKXChartAxis: range from the charts ---

void TKXChartAxis::UpdateAxisValues() {
  const bool AutoMin = FOptions.Contains(aoAutoMinimum);
  const bool AutoMax = FOptions.Contains(aoAutoMaximum);
  if (AutoMin) FMinimum = 0.0;
  if (AutoMax) FMaximum = 0.0;
  struct TGroupRecord {
    int32_t Group;
    TKXGroupStyle Style;
    int32_t ChartIndex;
  };
  std::vector<TGroupRecord> Groups;
  bool First = true;
  for (int32_t I = 0; I < FCharts->Count(); ++I) {
    TKXCustomChart* Chart = FCharts->Items(I);
    if (!Chart->Visible()) continue;
    const bool Stacks = FDimension == Chart->GetGroupDimension();
    if (Stacks) {
      auto It = std::find_if(Groups.begin(), Groups.end(),
                             [&](const TGroupRecord& G) { return G.Group == Chart->Group(); });
      if (It == Groups.end()) {
        Groups.push_back({Chart->Group(), Chart->GroupStyle(), I});
      } else if (It->Style != gsNone) {
        const TKXCustomChart* Below = FCharts->Items(It->ChartIndex);
        Chart->SetOptions(Chart->Options() + coOffsetVertical);
        Chart->SetOffsetVertical(Below->OffsetVertical() +
                                 Below->Values()->GetAxisMaximum(FDimension));
        It->ChartIndex = I;
      }
    }
    const double Offset =
        Stacks && Chart->Options().Contains(coOffsetVertical) && Chart->GroupStyle() != gsStacked100
            ? Chart->OffsetVertical()
            : 0.0;
    const bool Counts = !Chart->AxesHints().Contains(ahIgnoreAxes);
    const double Lo = Offset + Chart->Values()->GetAxisMinimum(FDimension);
    const double Hi = Offset + Chart->Values()->GetAxisMaximum(FDimension);
    if (First) {
      First = false;
      if (Counts) {
        if (AutoMin) FMinimum = Lo;
        if (AutoMax) FMaximum = Hi;
      }
    } else if (Counts) {
      if (AutoMin) FMinimum = std::min(FMinimum, Lo);
      if (AutoMax) FMaximum = std::max(FMaximum, Hi);
    }
  }
  if (!FZooming) {
    FZoomMinimum = FMinimum;
    FZoomMaximum = FMaximum;
  } else {
    FZoomMinimum = std::max(FZoomMinimum, FMinimum);
    FZoomMaximum = std::min(FZoomMaximum, FMaximum);
  }
  UpdateZooming();
  FNeedAxisUpdate = false;
  UpdateChartAxisInfo();
}

void TKXChartAxis::UpdateChartAxisInfo() {
  for (int32_t I = 0; I < FCharts->Count(); ++I)
    FCharts->Items(I)->UpdateAxisInfo(this);
}

void TKXChartAxis::CalculateBounds(TCanvas*, const TRect&) {
  FWidth = 0;
  FHeight = 0;
}

// --- TKXChartAxis: change handling ---

void TKXChartAxis::Changed() {
  inherited::Changed();
  // An axis that is being made or freed has no charts to tell.
  if (FCharts) UpdateChartAxisInfo();
}

void TKXChartAxis::ValueChanged(TKXCustomChart*) {
  if (FOptions.Contains(aoAutoMinimum) || FOptions.Contains(aoAutoMaximum)) FNeedAxisUpdate = true;
}

void TKXChartAxis::VisibleChanged(TKXCustomChart* Chart) {
  ValueChanged(Chart);
}

void TKXChartAxis::ChartListNotify(TObject*, TKXCustomChart*, TListNotification) {
  ValueChanged(nullptr);
}

void TKXChartAxis::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Format", this, &TKXChartAxis::Format, &TKXChartAxis::SetFormat,
                 std::string("#,##0.###"));
  Filer.Property("Maximum", this, &TKXChartAxis::Maximum, &TKXChartAxis::SetMaximum);
  Filer.Property("Minimum", this, &TKXChartAxis::Minimum, &TKXChartAxis::SetMinimum);
  Filer.Property("ZoomMaximum", this, &TKXChartAxis::ZoomMaximum, &TKXChartAxis::SetZoomMaximum);
  Filer.Property("ZoomMinimum", this, &TKXChartAxis::ZoomMinimum, &TKXChartAxis::SetZoomMinimum);
  Filer.Property("Options", this, &TKXChartAxis::Options, &TKXChartAxis::SetOptions,
                 TAxisOptions::FromBits(0x1F));
  Filer.Property("StartPosition", this, &TKXChartAxis::StartPosition,
                 &TKXChartAxis::SetStartPosition, 0);
  Filer.Property("EndPosition", this, &TKXChartAxis::EndPosition, &TKXChartAxis::SetEndPosition,
                 100);
  Filer.Property("InwardPosition", this, &TKXChartAxis::InwardPosition,
                 &TKXChartAxis::SetInwardPosition, 0);
}

// --- TKXLocalChartAxis ---

TKXLocalChartAxis::TKXLocalChartAxis(TKXCustomChart* AChart)
    : TKXChartAxis(nullptr), FChart(AChart) {}

int32_t TKXLocalChartAxis::AxisToPixel(double Value) const {
  return FChart ? AxisToPixel(Value, FChart->ClientRect()) : inherited::AxisToPixel(Value);
}

double TKXLocalChartAxis::PixelToAxis(int32_t Pixel, bool IgnoreZoom) const {
  return FChart ? PixelToAxis(Pixel, FChart->ClientRect(), IgnoreZoom)
                : inherited::PixelToAxis(Pixel, IgnoreZoom);
}

} // namespace kx
