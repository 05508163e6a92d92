#include "kxcharts/core/KXCustomChartPanel.h"

#include <algorithm>
#include <limits>

#include "kxcharts/core/KXChartLayout.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

// Layout arithmetic saturates: margins and band heights are the application's numbers.
int32_t Sat(int64_t V) {
  return static_cast<int32_t>(std::clamp<int64_t>(V, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

bool HasArea(const TRect& R) {
  return int64_t(R.Right) - R.Left > 0 && int64_t(R.Bottom) - R.Top > 0;
}

// R less M on each side (M read as four margins, not as a rectangle).
TRect Inner(const TRect& R, const TRect& M) {
  return {Sat(int64_t(R.Left) + M.Left), Sat(int64_t(R.Top) + M.Top),
          Sat(int64_t(R.Right) - M.Right), Sat(int64_t(R.Bottom) - M.Bottom)};
}

} // namespace

// --- Life ---

TKXCustomChartPanel::TKXCustomChartPanel(TComponent* AOwner) : TCustomPanel(AOwner) {}

TKXCustomChartPanel::~TKXCustomChartPanel() = default;

void TKXCustomChartPanel::AfterConstruction() {
  inherited::AfterConstruction();
  if (!ComponentState().Contains(csDesigning)) {
    FHintWindow = New<TKXHintWindow>(this);
    FHintWindow->SetSubComponent(true);
    FHintWindow->SetCorner(2);
    FHintWindow->SetInterval(0);
  }
  // The panel's font reaches SenderChanged through FontChanged.
  SetCaption("");
  FDrawAreas = TChartPanelAreas::FromBits(0xFFF);
  FChartColorScheme = schDefault;
  FChartColorList = DefaultColorList;
  FBottomAxis = CreateAxis(calBottom);
  FLeftAxis = CreateAxis(calLeft);
  FRightAxis = CreateAxis(calRight);
  FTopAxis = CreateAxis(calTop);
  FBackground = CreateLayer(false);
  FChartBackground = CreateLayer(true);
  FForeground = CreateLayer(true);
  FFooter = CreateHeader("Footer", false);
  FHeader = CreateHeader("Chart", true);
  FMargins = MakeOwned<TKXObjectRect>(DefaultMarginsRect());
  FMargins->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  FLegend = CreateLegend();
  FChartShadow = CreateShadow();
  FGradient = CreateGradient();
  // The panel starts some elements hidden or transparent; a form read back into a new
  // panel must not take what was written for the element's own start.
  for (TKXChartGraphic* E : Elements())
    E->KeepStartAsStoredDefaults();
  FCharts = MakeOwned<TKXChartList>(this);
  FCharts->SetOnNotify([this](TObject* Sender, TKXCustomChart* Chart, TListNotification Action) {
    ChartListNotify(Sender, Chart, Action);
  });
  FListeners = MakeOwned<TChartPanelListeners>();
  FUserActions = TChartUserActions::FromBits(11);
  FUserZoom = TShiftState{ssLeft};
  FUserPan = TShiftState{ssAlt, ssLeft};
  FUserSelect = TShiftState{ssCtrl, ssLeft};
  FUserProportional = TShiftState{ssShift};
  FSelectionColor = TColor(0xD3D3D3);
  SetBounds(Left(), Top(), 400, 300);
}

TOwned<TKXChartAxis> TKXCustomChartPanel::CreateAxis(TKXChartAxisLocation Location) {
  TOwned<TKXChartAxis> Axis(New<TKXChartAxis>(this));
  if (Location == calLeft)
    Axis->Title()->SetAngle(90);
  else if (Location == calRight)
    Axis->Title()->SetAngle(270);
  Axis->SetLocation(Location);
  if (ComponentState().Contains(csDesigning)) Axis->Title()->SetText(GetEnumName(Location));
  // A panel made in code starts as one placed at design time and then run.
  Axis->SetVisible(Location == calLeft || Location == calBottom);
  Axis->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Axis;
}

TOwned<TKXChartLayer> TKXCustomChartPanel::CreateLayer(bool Transparent) {
  auto Layer = MakeOwned<TKXChartLayer>();
  Layer->SetTransparent(Transparent);
  Layer->SetVisible(!Transparent);
  Layer->Brush()->SetColor(Color());
  // The brush starts in the panel's colour: a layer brushed white must still write its colour.
  Layer->Brush()->UseCurrentAsDefaults();
  Layer->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Layer;
}

TOwned<TKXChartHeader> TKXCustomChartPanel::CreateHeader(const std::string& Text, bool IsHeader) {
  auto Header = MakeOwned<TKXChartHeader>(Font(), IsHeader);
  Header->SetText(Text);
  Header->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Header;
}

TOwned<TKXChartLegend> TKXCustomChartPanel::CreateLegend() {
  auto Legend = MakeOwned<TKXChartLegend>(this);
  Legend->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Legend;
}

TOwned<TKXChartShadow> TKXCustomChartPanel::CreateShadow() {
  auto Shadow = MakeOwned<TKXChartShadow>();
  Shadow->SetSize(2);
  Shadow->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Shadow;
}

TOwned<TKXChartGradient> TKXCustomChartPanel::CreateGradient() {
  auto Gradient = MakeOwned<TKXChartGradient>();
  Gradient->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Gradient;
}

void TKXCustomChartPanel::BeforeDestruction() {
  FOnChange = nullptr;
  FOnChartChange = nullptr;
  FOnChartValueChange = nullptr;
  FOnChartValueVisibleChange = nullptr;
  FOnChartValueSelectionChange = nullptr;
  FOnGetLegendStrings = nullptr;
  FOnDrawing = nullptr;
  FOnDraw = nullptr;
  FOnAddChart = nullptr;
  FOnDeleteChart = nullptr;
  FOnDrawCharts = nullptr;
  FOnDrawingCharts = nullptr;
  for (TKXChartGraphic* E : Elements()) {
    if (!E) continue;
    E->SetOnDrawing(nullptr);
    E->SetOnDraw(nullptr);
  }
  // Every chart leaves while the axes still stand, and falls back to its local axes.
  if (FCharts) FCharts->Clear();
  FGradient.reset();
  FBottomAxis.reset();
  FTopAxis.reset();
  FLeftAxis.reset();
  FRightAxis.reset();
  FBackground.reset();
  FChartBackground.reset();
  FForeground.reset();
  FFooter.reset();
  FHeader.reset();
  FMargins.reset();
  FLegend.reset();
  FCharts.reset();
  FListeners.reset();
  FChartShadow.reset();
  FGradientBuffer.reset();
  inherited::BeforeDestruction();
  FHintWindow = nullptr;
}

// --- Properties ---

std::array<TKXChartGraphic*, 12> TKXCustomChartPanel::Elements() const {
  return {FChartShadow.get(), FBackground.get(), FChartBackground.get(), FForeground.get(),
          FBottomAxis.get(),  FTopAxis.get(),    FLeftAxis.get(),        FRightAxis.get(),
          FGradient.get(),    FFooter.get(),     FHeader.get(),          FLegend.get()};
}

TKXChartAxis* TKXCustomChartPanel::GetAxis(THorizontalAxis Value) const {
  switch (Value) {
  case haBottom:
    return FBottomAxis.get();
  case haTop:
    return FTopAxis.get();
  default:
    return nullptr;
  }
}

TKXChartAxis* TKXCustomChartPanel::GetAxis(TVerticalAxis Value) const {
  switch (Value) {
  case vaLeft:
    return FLeftAxis.get();
  case vaRight:
    return FRightAxis.get();
  default:
    return nullptr;
  }
}

TColor TKXCustomChartPanel::GetChartColor() const {
  return NextPaletteColor(FChartColorList);
}

bool TKXCustomChartPanel::IsLegendShowingCharts() const {
  return FLegend && FLegend->IsShowingCharts();
}

void TKXCustomChartPanel::GetLegendStrings(TStrings* Strings) {
  if (FOnGetLegendStrings) FOnGetLegendStrings(this, Strings);
}

// --- Colours ---

void TKXCustomChartPanel::SetChartColorScheme(TKXColorScheme Value) {
  if (FChartColorScheme == Value) return;
  FChartColorScheme = Value;
  if (const TColorList* List = GetSchemeColorList(Value)) FChartColorList = *List;
  ColorListIndex = 0;
  UpdateChartColorScheme();
}

void TKXCustomChartPanel::SetChartColorList(const TColorList& Value) {
  FChartColorList = Value;
  FChartColorScheme = schCustom;
  ColorListIndex = 0;
  UpdateChartColorScheme();
}

void TKXCustomChartPanel::UpdateChartColorScheme() {
  for (int32_t I = 0; I < FCharts->Count(); ++I) {
    TKXCustomChart* Chart = FCharts->Items(I);
    Chart->SetColor(FChartColorList[static_cast<size_t>(I % 10)]);
    if (Chart->PanelColorScheme()) Chart->UpdateColorScheme();
  }
}

void TKXCustomChartPanel::SetSelectionColor(TColor Value) {
  if (FSelectionColor == Value) return;
  FSelectionColor = Value;
  SelectionColorChanged();
}

void TKXCustomChartPanel::SelectionColorChanged() {
  for (int32_t I = 0; I < FCharts->Count(); ++I)
    FCharts->Items(I)->SelectionColorChanged();
}

// --- Coordinates ---

TPoint TKXCustomChartPanel::AxesPointToPoint(const TPointF& Pt, const TKXChartAxis* XAxis,
                                             const TKXChartAxis* YAxis) {
  return {XAxis ? XAxis->AxisToPixel(double(Pt.X)) : 0, YAxis ? YAxis->AxisToPixel(double(Pt.Y)) : 0};
}

TRect TKXCustomChartPanel::AxesRectToRect(const TRectF& ARect, const TKXChartAxis* XAxis,
                                          const TKXChartAxis* YAxis) {
  const TPoint TopLeft = AxesPointToPoint({ARect.Left, ARect.Top}, XAxis, YAxis);
  const TPoint BottomRight = AxesPointToPoint({ARect.Right, ARect.Bottom}, XAxis, YAxis);
  return {TopLeft.X, TopLeft.Y, BottomRight.X, BottomRight.Y};
}

TPointF TKXCustomChartPanel::PointToAxesPoint(const TPoint& Pt, const TKXChartAxis* XAxis,
                                              const TKXChartAxis* YAxis) {
  return {static_cast<float>(XAxis ? XAxis->PixelToAxis(Pt.X, false) : 0.0),
          static_cast<float>(YAxis ? YAxis->PixelToAxis(Pt.Y, false) : 0.0)};
}

TRectF TKXCustomChartPanel::RectToAxesRect(const TRect& ARect, const TKXChartAxis* XAxis,
                                           const TKXChartAxis* YAxis) {
  const TPointF TopLeft = PointToAxesPoint({ARect.Left, ARect.Bottom}, XAxis, YAxis);
  const TPointF BottomRight = PointToAxesPoint({ARect.Right, ARect.Top}, XAxis, YAxis);
  return {TopLeft.X, TopLeft.Y, BottomRight.X, BottomRight.Y};
}

// --- Painting ---

void TKXCustomChartPanel::Paint() {
  inherited::Paint();
  Draw(Canvas(), ClientRect());
  // A paint in the middle of a drag wipes the box, which the next move would erase.
  if (FUserAction == uaxZoom || FUserAction == uaxSelect) DrawSelectionBox(FSelectionBox);
}

void TKXCustomChartPanel::Draw(TCanvas* Canvas, const TRect& ARect) {
  if (!Canvas) throw Exception("Cannot draw a " + ClassName() + " without a canvas");
  if (!Drawing(Canvas, ARect)) return;
  InternalDraw(Canvas, ARect);
  Drawn(Canvas, ARect);
}

void TKXCustomChartPanel::Draw(TCanvas* Canvas, const TRect& ARect,
                               TChartPanelAreas DrawPanelAreas) {
  const TChartPanelAreas Saved = FDrawAreas;
  FDrawAreas = DrawPanelAreas;
  TFinally Restore([this, Saved] { FDrawAreas = Saved; });
  Draw(Canvas, ARect);
}

bool TKXCustomChartPanel::Drawing(TCanvas* Canvas, const TRect& ARect) {
  bool DoDraw = HasArea(ARect);
  if (FOnDrawing) FOnDrawing(this, Canvas, ARect, DoDraw);
  return DoDraw;
}

void TKXCustomChartPanel::Drawn(TCanvas* Canvas, const TRect& ARect) {
  if (FOnDraw) FOnDraw(this, Canvas, ARect);
}

// --- Layout ---

void TKXCustomChartPanel::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  // The layout is cut in FChartRect itself, so that whatever an element asks of the panel
  // while it paints (an axis mapping a value) sees the layout as far as it has come.
  TRect& CR = FChartRect;
  FMouseTrackingOn = false;
  CR = ModifyRectByMargins(ARect, FMargins.get(), true);
  int32_t Inset = 0;
  if (BevelOuter() != bvNone) Inset += BevelWidth();
  if (BevelInner() != bvNone) Inset += BevelWidth();
  if (BorderStyle() != bsNone) Inset += BorderWidth();
  if (Inset > 0) CR = Inner(CR, {Inset, Inset, Inset, Inset});
  if (!HasArea(CR)) return;
  const TRect Whole = CR;
  const TChartPanelAreas Areas = FDrawAreas;

  if (FBackground->Visible() && Areas.Contains(paBackground)) FBackground->Draw(Canvas, Whole);
  if (FGradient->Visible() && Areas.Contains(paGradient)) DrawGradient(Canvas, Whole);
  if (FHeader->Visible()) {
    CR.Top = Sat(int64_t(CR.Top) + FHeader->Height());
    if (Areas.Contains(paHeader))
      FHeader->Draw(Canvas, TRect{Whole.Left, Whole.Top, CR.Right, CR.Top});
  }
  if (FFooter->Visible()) {
    CR.Bottom = Sat(int64_t(CR.Bottom) - FFooter->Height());
    if (Areas.Contains(paFooter))
      FFooter->Draw(Canvas, TRect{Whole.Left, CR.Bottom, Whole.Right, Whole.Bottom});
  }

  const TRect LegendArea = CR;
  const bool LegendShows = FLegend->Visible() && FLegend->Lines()->Count() > 0;
  if (LegendShows && !FLegend->Overlay()) {
    int32_t LongestWidth = 0;
    const TRect B = FLegend->BoundsRect(Canvas, CR, LongestWidth);
    switch (FLegend->Align()) {
    case laLeft:
      CR = {B.Right, B.Top, CR.Right, CR.Bottom};
      break;
    case laRight:
      CR = {CR.Left, B.Top, B.Left, CR.Bottom};
      break;
    case laBottom:
      CR = {CR.Left, CR.Top, CR.Right, B.Top};
      break;
    case laTop:
      CR = {CR.Left, B.Bottom, CR.Right, CR.Bottom};
      break;
    }
  }

  const TRect M = MeasureAxisRoom(Canvas, CR,
                                  {{FLeftAxis.get(), calLeft},
                                   {FTopAxis.get(), calTop},
                                   {FRightAxis.get(), calRight},
                                   {FBottomAxis.get(), calBottom}});

  const TRect Plot = Inner(CR, M);
  if (FChartBackground->Visible() && Areas.Contains(paChartBackground))
    FChartBackground->Draw(Canvas, Plot, FLeftAxis.get(), FBottomAxis.get());
  const int64_t L = CR.Left, T = CR.Top, R = CR.Right, B = CR.Bottom;
  if (FBottomAxis->Visible() && Areas.Contains(paBottomAxis))
    FBottomAxis->Draw(Canvas, TRect{Sat(L + M.Left), Sat(T + M.Top), Sat(R - M.Right), CR.Bottom});
  if (FTopAxis->Visible() && Areas.Contains(paTopAxis))
    FTopAxis->Draw(Canvas, TRect{Sat(L + M.Left), CR.Top, Sat(R - M.Right), Sat(B - M.Bottom)});
  if (FLeftAxis->Visible() && Areas.Contains(paLeftAxis))
    FLeftAxis->Draw(Canvas, TRect{CR.Left, Sat(T + M.Top), Sat(R - M.Right), Sat(B - M.Bottom)});
  if (FRightAxis->Visible() && Areas.Contains(paRightAxis))
    FRightAxis->Draw(Canvas, TRect{Sat(L + M.Left), Sat(T + M.Top), CR.Right, Sat(B - M.Bottom)});

  CR = Plot;
  if (Areas.Contains(paCharts)) DrawCharts(Canvas, CR);
  if (LegendShows && Areas.Contains(paLegend)) FLegend->Draw(Canvas, LegendArea);
  if (FForeground->Visible() && Areas.Contains(paForeground)) FForeground->Draw(Canvas, Whole);
}

void TKXCustomChartPanel::DrawGradient(TCanvas* Canvas, const TRect& Whole) {
  const int64_t W = int64_t(Whole.Right) - Whole.Left, H = int64_t(Whole.Bottom) - Whole.Top;
  // Larger than any bitmap can be (a foreign canvas): painted straight on.
  if (W > TBitmap::MaxExtent || H > TBitmap::MaxExtent) {
    FGradient->Draw(Canvas, Whole);
    return;
  }
  if (!FGradientBuffer || FGradientBuffer->Width() != W || FGradientBuffer->Height() != H) {
    FGradientBuffer.reset();
    auto Buffer = MakeOwned<TBitmap>();
    // An opaque buffer is copied at every paint instead of blended, at less than half the
    // cost for a panel's worth of pixels.
    if (FGradient->Opacity() >= 1.0f) Buffer->SetPixelFormat(pf24bit);
    Buffer->SetSize(static_cast<int32_t>(W), static_cast<int32_t>(H));
    if (FGradient->Opacity() < 1.0f) {
      // A translucent gradient must let what lies beneath show through the copy, so the
      // buffer starts clear rather than white.
      Buffer->Canvas()->ClearRect({0, 0, Buffer->Width(), Buffer->Height()});
    }
    FGradient->Draw(Buffer->Canvas(),
                    TRect{0, 0, static_cast<int32_t>(W), static_cast<int32_t>(H)});
    // Kept only once painted whole: a handler that raised leaves no half-made buffer.
    FGradientBuffer = std::move(Buffer);
  }
  Canvas->Draw(Whole.Left, Whole.Top, FGradientBuffer.get());
}

// --- Drawing the charts ---

void TKXCustomChartPanel::DrawCharts(TCanvas* Canvas, const TRect& ARect) {
  bool DoDraw = true;
  if (FOnDrawingCharts) FOnDrawingCharts(this, Canvas, ARect, DoDraw);
  if (!DoDraw) return;
  {
    // A foreign canvas (a bitmap, a file) is left unclipped.
    const bool Own = Canvas == TCustomPanel::Canvas();
    if (Own) Canvas->SetClipRect(ARect);
    TFinally Unclip([Canvas, Own] {
      if (Own) Canvas->RestoreClipRect();
    });
    for (int32_t I = 0; I < FCharts->Count(); ++I) {
      TKXCustomChart* Chart = FCharts->Items(I);
      if (!Chart->IsVisible()) continue;
      // A chart's drawing events may free it (it leaves the list) or others before it.
      const TKXCustomChart::TLifeWatch Life(Chart);
      Chart->FInPaintTo = true;
      TFinally Done([Chart, &Life] {
        if (Life.Alive()) Chart->FInPaintTo = false;
      });
      Chart->Draw(Canvas, ARect);
      if (!Life.Alive() || I >= FCharts->Count() || FCharts->Items(I) != Chart) {
        // The list changed under the pass: go on after the chart just drawn, or from
        // where it stood.
        const int32_t At = Life.Alive() ? FCharts->IndexOf(Chart) : -1;
        I = At >= 0 ? At : I - 1;
      }
    }
  }
  if (FOnDrawCharts) FOnDrawCharts(this, Canvas, ARect);
}

// --- The change road ---

void TKXCustomChartPanel::Changed() {
  if (FOnChange) FOnChange(this);
}

void TKXCustomChartPanel::Changed(TKXCustomChart* Chart) {
  FListeners->ChartChanged(Chart);
  if (FOnChartChange) FOnChartChange(this, Chart);
  UpdateLegend(Chart, nullptr);
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  FListeners->ValueChanged(Chart, Value);
  if (FOnChartValueChange) FOnChartValueChange(this, Chart, Value);
  Changed(Chart);
}

void TKXCustomChartPanel::ValueSelectionChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  FListeners->SelectionChanged(Value);
  UpdateLegend(Chart, Value);
  if (FOnChartValueSelectionChange) FOnChartValueSelectionChange(this, Chart, Value);
}

void TKXCustomChartPanel::ValueVisibleChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  FListeners->VisibleChanged(Value);
  UpdateLegend(Chart, Value);
  if (FOnChartValueVisibleChange) FOnChartValueVisibleChange(this, Chart, Value);
}

void TKXCustomChartPanel::KXVisibleChanged(TKXCustomChart* Chart) {
  FListeners->VisibleChanged(Chart);
  FCharts->VisibleChanged(Chart);
  UpdateLegend(Chart, nullptr);
  if (Chart->UpdateLevel() == 0) Changed(Chart);
}

void TKXCustomChartPanel::ChartListNotify(TObject*, TKXCustomChart* Chart,
                                          TListNotification Action) {
  if (Action == lnAdded)
    ChartAdded(Chart);
  else if (Action == lnDeleted)
    ChartDeleted(Chart);
}

void TKXCustomChartPanel::ChartAdded(TKXCustomChart* Chart) {
  FListeners->ChartAdded(Chart);
  if (FOnAddChart) FOnAddChart(this, Chart);
  if (FLegend) FLegend->SetNeedsUpdate(true);
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::ChartDeleted(TKXCustomChart* Chart) {
  FListeners->ChartDeleted(Chart);
  if (FOnDeleteChart) FOnDeleteChart(this, Chart);
  if (FLegend) FLegend->SetNeedsUpdate(true);
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::UpdateLegend(TKXCustomChart* Chart, TKXChartValue* Value) {
  if (!FLegend || FLegend->NeedsUpdate()) return;
  if (FLegend->IsShowingCharts())
    FLegend->SetNeedsUpdate(Value == nullptr);
  else
    FLegend->SetNeedsUpdate(Chart && Chart == FCharts->ActiveChart());
}

void TKXCustomChartPanel::SenderChanged(TObject* Sender) {
  if (Sender == Font() && FLegend) {
    // Each delta font reports its own change on the way; one repaint and one OnChange for
    // the whole pass are enough, so those reports are let through only after it.
    TNotifyEvent Held = std::move(FOnChange);
    FOnChange = nullptr;
    {
      TFinally Back([this, &Held] { FOnChange = std::move(Held); });
      FHeader->Font()->ChangeBaseFont(Font());
      FFooter->Font()->ChangeBaseFont(Font());
      FLegend->Font()->ChangeBaseFont(Font());
      for (TKXChartAxis* A :
           {FBottomAxis.get(), FTopAxis.get(), FLeftAxis.get(), FRightAxis.get()}) {
        A->Labels()->Font()->ChangeBaseFont(Font());
        A->Title()->Font()->ChangeBaseFont(Font());
      }
    }
  } else if (Sender == FGradient.get()) {
    FGradientBuffer.reset();
  }
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::FontChanged() {
  inherited::FontChanged();
  SenderChanged(Font());
}

void TKXCustomChartPanel::Resize() {
  inherited::Resize();
  if (!FCharts) return;
  for (int32_t I = 0; I < FCharts->Count(); ++I)
    FCharts->Items(I)->Resize();
}

void TKXCustomChartPanel::Notification(TComponent* AComponent, TOperation Operation) {
  inherited::Notification(AComponent, Operation);
  if (AComponent == FHintWindow && Operation == opRemove) FHintWindow = nullptr;
  if (Operation == opRemove && FCharts && !ComponentState().Contains(csDestroying) &&
      FCharts->TComponentList::IndexOf(AComponent) >= 0)
    Invalidate();
}

// --- TKXChartPanel ---

void TKXChartPanel::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("ChartColorScheme", this, &TKXChartPanel::ChartColorScheme,
                 &TKXChartPanel::SetChartColorScheme, schDefault);
  Filer.Property("ChartShadow", this, &TKXChartPanel::ChartShadow);
  Filer.Property("Background", this, &TKXChartPanel::Background);
  Filer.Property("ChartBackground", this, &TKXChartPanel::ChartBackground);
  Filer.Property("Foreground", this, &TKXChartPanel::Foreground);
  Filer.Property("BottomAxis", this, &TKXChartPanel::BottomAxis);
  Filer.Property("TopAxis", this, &TKXChartPanel::TopAxis);
  Filer.Property("LeftAxis", this, &TKXChartPanel::LeftAxis);
  Filer.Property("RightAxis", this, &TKXChartPanel::RightAxis);
  Filer.Property("Gradient", this, &TKXChartPanel::Gradient);
  Filer.Property("Footer", this, &TKXChartPanel::Footer);
  Filer.Property("Header", this, &TKXChartPanel::Header);
  Filer.Property("Legend", this, &TKXChartPanel::Legend);
  // The margins write only the sides that differ from (3, 4, 3, 4), and nothing at all
  // while none does.
  Filer.Property("Margins", this, &TKXChartPanel::Margins);
  Filer.Property("SelectionColor", this, &TKXChartPanel::SelectionColor,
                 &TKXChartPanel::SetSelectionColor, clActiveBorder);
  Filer.Property("UserActions", this, &TKXChartPanel::UserActions, &TKXChartPanel::SetUserActions,
                 TChartUserActions::FromBits(11));
  Filer.Property("UserZoom", this, &TKXChartPanel::UserZoom, &TKXChartPanel::SetUserZoom,
                 TShiftState::FromBits(8));
  Filer.Property("UserPan", this, &TKXChartPanel::UserPan, &TKXChartPanel::SetUserPan,
                 TShiftState::FromBits(10));
  Filer.Property("UserProportional", this, &TKXChartPanel::UserProportional,
                 &TKXChartPanel::SetUserProportional, TShiftState::FromBits(1));
  Filer.Property("UserSelect", this, &TKXChartPanel::UserSelect, &TKXChartPanel::SetUserSelect,
                 TShiftState::FromBits(12));
  Filer.Property("WheelZoom", this, &TKXChartPanel::WheelZoom, &TKXChartPanel::SetWheelZoom, false);
}

} // namespace kx
