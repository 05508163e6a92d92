#include "kxcharts/legends/KXLegendControls.h"

#include <algorithm>

#include "kxcharts/core/KXChartList.h"
#include "kxcharts/core/KXChartValues.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

// Moves Listener's registration and Control's free notification from Slot to Value. An
// object on its way out may have let go of its listeners already.
template <class T>
bool Follow(TComponent* Control, IChartPanelListener* Listener, T*& Slot, T* Value) {
  if (Slot == Value) return false;
  if (Slot) {
    if (Slot->Listeners()) Slot->Listeners()->Remove(Listener);
    Control->RemoveFreeNotification(Slot);
  }
  Slot = Value;
  if (Value) {
    Value->Listeners()->Add(Listener);
    Control->FreeNotification(Value);
  }
  return true;
}

TKXCustomChart* ChartOfValue(const TObject* Sender) {
  const auto* V = dynamic_cast<const TKXChartValue*>(Sender);
  return V && V->Collection() ? V->Collection()->Owner() : nullptr;
}

// A line stands for what its object is: lsAuto reads as the chart or as the value.
TKXLegendStyle LineStyle(TKXLegendStyle Style, bool ForValue) {
  if (Style != lsAuto) return Style;
  return ForValue ? lsValues : lsCharts;
}

} // namespace

// --- TKXLegendLinks ---

bool TKXLegendLinks::SetPanel(TKXCustomChartPanel* Value) {
  return Follow(FControl, FListener, FPanel, Value);
}

bool TKXLegendLinks::SetChart(TKXCustomChart* Value) {
  return Follow(FControl, FListener, FChart, Value);
}

bool TKXLegendLinks::Forget(const TComponent* AComponent) {
  if (!AComponent) return false;
  if (AComponent == FPanel) return SetPanel(nullptr);
  if (AComponent == FChart) return SetChart(nullptr);
  return false;
}

TKXCustomChart* TKXLegendLinks::ActiveChart() const {
  return FPanel ? FPanel->Charts()->ActiveChart() : nullptr;
}

bool TKXLegendLinks::ShowsCharts(TKXLegendStyle Style) const {
  return IsLegendShowingCharts(FPanel, Style);
}

bool TKXLegendLinks::SenderConcerns(const TObject* Sender, const TKXCustomChart* Listed,
                                    bool Show) const {
  if (!Sender) return false;
  if (Sender == FChart || Sender == Listed) return true;
  if (Show) return dynamic_cast<const TKXCustomChart*>(Sender) != nullptr;
  const TKXCustomChart* Owner = ChartOfValue(Sender);
  return Owner && (Owner == FChart || Owner == Listed);
}

// --- TKXChartLegendBox: life ---

TKXChartLegendBox::TKXChartLegendBox(TComponent* AOwner) : TPaintBox(AOwner) {
  InitSize(100, 100);
}

TKXChartLegendBox::~TKXChartLegendBox() = default;

void TKXChartLegendBox::AfterConstruction() {
  inherited::AfterConstruction();
  FLegend = MakeOwned<TKXChartLegend>();
  FLegend->SetMaxColumns(1);
  FLegend->SetMaxWidthPct(100);
  FLegend->Shadow()->SetVisible(false);
  FLegend->SetRectStyle(lrsNone);
  FLegend->SetMaxRows(200);
  FLegend->SetResizeBounds(false);
  FLegend->SetOnGetLegendStrings(
      [this](TObject* Sender, TStrings* Strings) { GetLegendStrings(Sender, Strings); });
  FLegend->SetOnChange([this](TObject* Sender) { LegendChanged(Sender); });
}

void TKXChartLegendBox::BeforeDestruction() {
  FLinks.SetPanel(nullptr);
  FLinks.SetChart(nullptr);
  if (FLegend) {
    FLegend->SetOnChange(nullptr);
    FLegend->SetOnGetLegendStrings(nullptr);
  }
  inherited::BeforeDestruction();
}

// --- TKXChartLegendBox: properties ---

void TKXChartLegendBox::SetPanel(TKXCustomChartPanel* Value) {
  if (!FLinks.SetPanel(Value)) return;
  // A form being read names the chart itself, or none.
  if (Value && !FLinks.Chart() && !ComponentState().Contains(csLoading))
    FLinks.SetChart(FLinks.ActiveChart());
  SetNeedsUpdate(true);
  Invalidate();
}

void TKXChartLegendBox::SetChart(TKXCustomChart* Value) {
  if (!FLinks.SetChart(Value)) return;
  SetNeedsUpdate(true);
  Invalidate();
}

TKXCustomChart* TKXChartLegendBox::Listed() const {
  return FLinks.Panel() ? FLinks.ActiveChart() : FLinks.Chart();
}

bool TKXChartLegendBox::GetNeedsUpdate() const {
  return FLegend->NeedsUpdate();
}

void TKXChartLegendBox::SetNeedsUpdate(bool Value) {
  FLegend->SetNeedsUpdate(Value);
}

// --- TKXChartLegendBox: lines ---

void TKXChartLegendBox::GetLegendStrings(TObject*, TStrings* Strings) {
  const TKXLegendStyle Style = FLegend->LegendStyle();
  const TKXLegendTextStyle TextStyle = FLegend->TextStyle();
  const int32_t MaxRows = FLegend->MaxRows();
  FShownCharts = Show();
  const auto ListValues = [&](TKXCustomChart* Chart) {
    if (!Chart) return;
    const TKXChartValues* Values = Chart->Values();
    for (int32_t I = FLegend->FirstIndex(); Strings->Count() < MaxRows - 1 && I < Values->Count();
         ++I) {
      TKXChartValue* Value = Values->Items(I);
      if (Value->Visible())
        Strings->AddObject(GetLegendText(Chart, Value, LineStyle(Style, true), TextStyle), Value);
    }
  };
  if (!FLinks.Panel()) {
    ListValues(FLinks.Chart());
  } else if (FShownCharts) {
    const TKXChartList* Charts = FLinks.Panel()->Charts();
    for (int32_t I = FLegend->FirstIndex(); Strings->Count() < MaxRows && I < Charts->Count();
         ++I) {
      TKXCustomChart* Chart = Charts->Items(I);
      if (Chart->Visible() && Chart->Options().Contains(coShowInLegend))
        Strings->AddObject(GetLegendText(Chart, nullptr, LineStyle(Style, false), TextStyle),
                           Chart);
    }
  } else {
    ListValues(FLinks.ActiveChart());
  }
}

// --- TKXChartLegendBox: what it hears ---

void TKXChartLegendBox::Mark(bool Raise) {
  if (!Raise && Show() == FShownCharts) return;
  if (GetNeedsUpdate()) return;
  SetNeedsUpdate(true);
  Invalidate();
}

void TKXChartLegendBox::LegendChanged(TObject*) {
  Invalidate();
}

void TKXChartLegendBox::PanelChange() {
  Mark(true);
}

void TKXChartLegendBox::ChartAdded(TKXCustomChart*) {
  Mark(true);
}

void TKXChartLegendBox::ChartDeleted(TKXCustomChart* Item) {
  Mark(FLinks.ChartConcerns(Item, Show()));
}

void TKXChartLegendBox::ChartChanged(TKXCustomChart* Item) {
  Mark(FLinks.ChartConcerns(Item, Show()));
}

void TKXChartLegendBox::ValueChanged(TKXCustomChart* Item, TKXChartValue*) {
  Mark((Item == FLinks.Chart() || Item == Listed()) && !Show());
}

void TKXChartLegendBox::SelectionChanged(TObject* Sender) {
  Mark(FLinks.SenderConcerns(Sender, Listed(), Show()));
}

void TKXChartLegendBox::VisibleChanged(TObject* Sender) {
  SelectionChanged(Sender);
}

// --- TKXChartLegendBox: overrides ---

void TKXChartLegendBox::Paint() {
  FLegend->Draw(Canvas(), ClientRect());
  inherited::Paint();
}

void TKXChartLegendBox::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && FLinks.Forget(AComponent)) Mark(true);
  inherited::Notification(AComponent, Operation);
}

void TKXChartLegendBox::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Legend", this, &TKXChartLegendBox::Legend);
  Filer.Property("Panel", this, &TKXChartLegendBox::Panel, &TKXChartLegendBox::SetPanel);
  Filer.Property("Chart", this, &TKXChartLegendBox::Chart, &TKXChartLegendBox::SetChart);
}

// --- TKXLegendListBox: life ---

TKXLegendListBox::TKXLegendListBox(TComponent* AOwner) : TCheckListBox(AOwner) {}

TKXLegendListBox::~TKXLegendListBox() = default;

void TKXLegendListBox::AfterConstruction() {
  inherited::AfterConstruction();
  SetMultiSelect(true);
  SetStyle(lbOwnerDrawFixed);
}

void TKXLegendListBox::BeforeDestruction() {
  FLinks.SetPanel(nullptr);
  FLinks.SetChart(nullptr);
  inherited::BeforeDestruction();
}

// --- TKXLegendListBox: properties ---

TKXCustomChart* TKXLegendListBox::Listed() const {
  return FLinks.Chart() ? FLinks.Chart() : FLinks.ActiveChart();
}

void TKXLegendListBox::SetPanel(TKXCustomChartPanel* Value) {
  if (!FLinks.SetPanel(Value)) return;
  if (Value && !FLinks.Chart() && !ComponentState().Contains(csLoading))
    FLinks.SetChart(FLinks.ActiveChart());
  FNeedsUpdate = true;
  Invalidate();
}

void TKXLegendListBox::SetChart(TKXCustomChart* Value) {
  if (!FLinks.SetChart(Value)) return;
  FNeedsUpdate = true;
  Invalidate();
}

void TKXLegendListBox::SetLegendStyle(TKXLegendStyle Value) {
  if (Value == FLegendStyle) return;
  FLegendStyle = Value;
  Mark(true);
}

void TKXLegendListBox::SetLegendTextStyle(TKXLegendTextStyle Value) {
  if (Value == FLegendTextStyle) return;
  FLegendTextStyle = Value;
  Mark(true);
}

void TKXLegendListBox::SetOptions(TKXLegendOptions Value) {
  if (Value == FOptions) return;
  FOptions = Value;
  Invalidate();
}

void TKXLegendListBox::SetEnableSelection(bool Value) {
  FEnableSelection = Value;
}

void TKXLegendListBox::SetShowCheckBoxes(bool Value) {
  if (Value == FShowCheckBoxes) return;
  FShowCheckBoxes = Value;
  Invalidate();
}

// --- TKXLegendListBox: rebuilding ---

void TKXLegendListBox::RebuildLegend() {
  if (!FNeedsUpdate || FRebuilding || ComponentState().Contains(csDestroying)) return;
  FRebuilding = true;
  ++FRebuilds;
  const int32_t KeepIndex = ItemIndex(), KeepTop = TopIndex();
  TListBoxStrings* L = Items();
  L->BeginUpdate();
  const auto Finish = [&] {
    FRebuilding = false;
    FNeedsUpdate = false;
    SetItemIndex(KeepIndex);
    SetTopIndex(KeepTop);
    L->EndUpdate();
  };
  try {
    L->Clear();
    FShownCharts = Show();
    if (!FLinks.Panel() || !FShownCharts) {
      TKXCustomChart* Chart = Listed();
      const TKXChartValues* Values = Chart ? Chart->Values() : nullptr;
      for (int32_t I = 0; Values && I < Values->Count(); ++I) {
        TKXChartValue* Value = Values->Items(I);
        const int32_t At = L->AddObject(
            GetLegendText(Chart, Value, LineStyle(FLegendStyle, true), FLegendTextStyle), Value);
        L->Item(At).State = Value->Visible() ? cbChecked : cbUnchecked;
        L->Item(At).Selected = Value->Selected();
      }
    } else {
      const TKXChartList* Charts = FLinks.Panel()->Charts();
      for (int32_t I = 0; I < Charts->Count(); ++I) {
        TKXCustomChart* Chart = Charts->Items(I);
        if (!Chart->Options().Contains(coShowInLegend)) continue;
        const int32_t At = L->AddObject(
            GetLegendText(Chart, nullptr, LineStyle(FLegendStyle, false), FLegendTextStyle), Chart);
        L->Item(At).State = Chart->Visible() ? cbChecked : cbUnchecked;
      }
    }
  } catch (...) {
    // The first error is the one to see; the bracket still closes.
    try {
      Finish();
    } catch (...) {
    }
    throw;
  }
  Finish();
}

void TKXLegendListBox::PrepareContent() {
  RebuildLegend();
  inherited::PrepareContent();
}

// --- TKXLegendListBox: what it hears ---

void TKXLegendListBox::Mark(bool Raise) {
  if (!Raise && Show() == FShownCharts) return;
  if (FNeedsUpdate) return;
  FNeedsUpdate = true;
  Invalidate();
}

void TKXLegendListBox::PanelChange() {
  Mark(true);
}

void TKXLegendListBox::ChartAdded(TKXCustomChart*) {
  Mark(true);
}

void TKXLegendListBox::ChartDeleted(TKXCustomChart* Item) {
  Mark(FLinks.ChartConcerns(Item, Show()));
}

void TKXLegendListBox::ChartChanged(TKXCustomChart* Item) {
  Mark(FLinks.ChartConcerns(Item, Show()));
}

void TKXLegendListBox::ValueChanged(TKXCustomChart* Item, TKXChartValue*) {
  Mark(Item == FLinks.Chart() || !Show());
}

void TKXLegendListBox::SelectionChanged(TObject* Sender) {
  Mark(FLinks.SenderConcerns(Sender, Listed(), Show()));
}

void TKXLegendListBox::VisibleChanged(TObject* Sender) {
  SelectionChanged(Sender);
}

// --- TKXLegendListBox: the user ---

void TKXLegendListBox::MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  RebuildLegend();
  inherited::MouseDown(Button, Shift, X, Y);
}

void TKXLegendListBox::KeyDown(uint16_t& Key, TShiftState Shift) {
  RebuildLegend();
  inherited::KeyDown(Key, Shift);
}

void TKXLegendListBox::KeyPress(char& Key) {
  RebuildLegend();
  inherited::KeyPress(Key);
}

void TKXLegendListBox::Click() {
  inherited::Click();
  if (!FEnableSelection || Show()) return;
  FNeedsUpdate = true;
  for (int32_t I = 0; I < Count(); ++I)
    if (auto* Value = dynamic_cast<TKXChartValue*>(Items()->Objects(I)))
      Value->SetSelected(Selected(I));
}

void TKXLegendListBox::ClickCheck() {
  inherited::ClickCheck();
  const int32_t I = ItemIndex();
  if (I < 0 || I >= Count()) return;
  TObject* Object = Items()->Objects(I);
  if (auto* Value = dynamic_cast<TKXChartValue*>(Object))
    Value->SetVisible(Checked(I));
  else if (auto* Chart = dynamic_cast<TKXCustomChart*>(Object))
    Chart->SetVisible(Checked(I));
}

// --- TKXLegendListBox: drawing ---

void TKXLegendListBox::DrawItemMessage(int32_t Index, TRect& Rect, TOwnerDrawState State) {
  if (ComponentState().Contains(csDestroying) || Count() == 0 || Index == -1) return;
  if (!FShowCheckBoxes) Rect.Left -= GetCheckWidth();
  inherited::DrawItemMessage(Index, Rect, State);
}

void TKXLegendListBox::DrawItem(int32_t Index, const TRect& Rect, TOwnerDrawState State) {
  if (Index < 0 || Index >= Count()) return;
  TCanvas* C = Canvas();
  if (FShowCheckBoxes)
    DrawCheck({Rect.Left - GetCheckWidth(), Rect.Top, Rect.Left, Rect.Bottom}, this->State(Index),
              Enabled() && ItemEnabled(Index));
  TBrush* B = C->Brush();
  C->FillRect(Rect);
  const TColor Keep = B->Color();
  const int32_t H = Rect.Height();
  const TRect Box{Rect.Left + 1, Rect.Top + 1, Rect.Left + H + 5 - 1, Rect.Bottom - 1};
  TObject* Object = Items()->Objects(Index);
  auto* Chart = dynamic_cast<TKXCustomChart*>(Object);
  auto* Value = dynamic_cast<TKXChartValue*>(Object);
  TKXCustomChart* Owner = Value ? ChartOfValue(Value) : nullptr;
  TColor Fill = Keep;
  if (Chart)
    Fill = Chart->GetColor();
  else if (Owner)
    Fill = Owner->GetColor(Value);
  if (FOptions.Contains(loChartGlyphs) && Chart) {
    Chart->DrawGlyph(C, Box);
  } else if (FOptions.Contains(loChartGlyphs) && Owner) {
    Owner->DrawGlyph(C, Value, Box);
  } else {
    B->SetStyle(bsSolid);
    B->SetColor(Fill);
    C->FillRect(Box);
  }
  // A light fill takes a black frame; a dark one is framed in itself, or white to stand
  // out of the selection.
  const TColor Rgb = ColorToRGB(Fill);
  const bool Light = GetRValue(Rgb) >= 193 || GetGValue(Rgb) >= 193 || GetBValue(Rgb) >= 193;
  B->SetStyle(bsSolid);
  B->SetColor(Light ? clBlack : State.Contains(odSelected) ? clWhite : Fill);
  C->FrameRect(Box);
  B->SetColor(Keep);
  const TRect TextArea{Box.Right + 5, Rect.Top, std::max(Box.Right + 5, Rect.Right), Rect.Bottom};
  const std::string Text = Items()->Strings(Index);
  C->TextRect(TextArea, TextArea.Left, Rect.Top + (H - C->TextHeight(Text)) / 2, Text);
}

// --- TKXLegendListBox: links and persistence ---

void TKXLegendListBox::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && FLinks.Forget(AComponent)) Mark(true);
  inherited::Notification(AComponent, Operation);
}

void TKXLegendListBox::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Options", this, &TKXLegendListBox::Options, &TKXLegendListBox::SetOptions,
                 TKXLegendOptions{});
  Filer.Property("EnableSelection", this, &TKXLegendListBox::EnableSelection,
                 &TKXLegendListBox::SetEnableSelection, false);
  Filer.Property("LegendStyle", this, &TKXLegendListBox::LegendStyle,
                 &TKXLegendListBox::SetLegendStyle, lsAuto);
  Filer.Property("LegendTextStyle", this, &TKXLegendListBox::LegendTextStyle,
                 &TKXLegendListBox::SetLegendTextStyle, ltsCaption);
  Filer.Property("Panel", this, &TKXLegendListBox::Panel, &TKXLegendListBox::SetPanel);
  Filer.Property("Chart", this, &TKXLegendListBox::Chart, &TKXLegendListBox::SetChart);
  Filer.Property("ShowCheckBoxes", this, &TKXLegendListBox::ShowCheckBoxes,
                 &TKXLegendListBox::SetShowCheckBoxes, true);
}

} // namespace kx
