#include "kxcharts/toolkit/controls/KXListBox.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "kxcharts/toolkit/controls/KXControls_p.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

[[noreturn]] void IndexError(int32_t Index) {
  throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
}

int32_t Clamp32(int64_t V) {
  return static_cast<int32_t>(std::clamp<int64_t>(V, INT32_MIN / 2, INT32_MAX / 2));
}

} // namespace

// --- TListBoxStrings ---

TListBoxStrings::TItem& TListBoxStrings::Item(int32_t Index) {
  if (Index < 0 || Index >= Count()) IndexError(Index);
  return FItems[static_cast<size_t>(Index)];
}

const TListBoxStrings::TItem& TListBoxStrings::Item(int32_t Index) const {
  if (Index < 0 || Index >= Count()) IndexError(Index);
  return FItems[static_cast<size_t>(Index)];
}

std::string TListBoxStrings::Get(int32_t Index) const {
  return Item(Index).Text;
}

TObject* TListBoxStrings::GetObject(int32_t Index) const {
  return Item(Index).Object;
}

void TListBoxStrings::Put(int32_t Index, const std::string& S) {
  Item(Index).Text = S;
  Changed();
}

void TListBoxStrings::PutObject(int32_t Index, TObject* AObject) {
  Item(Index).Object = AObject;
}

void TListBoxStrings::Clear() {
  if (FItems.empty()) return;
  FItems.clear();
  FListBox->FItemIndex = -1;
  FListBox->FAnchor = -1;
  FListBox->FTopIndex = 0;
  Changed();
}

void TListBoxStrings::Delete(int32_t Index) {
  Item(Index);
  FItems.erase(FItems.begin() + Index);
  // The caret stays on its item; on the deleted one it goes.
  int32_t& Caret = FListBox->FItemIndex;
  if (Caret == Index)
    Caret = -1;
  else if (Caret > Index)
    --Caret;
  Changed();
}

void TListBoxStrings::Insert(int32_t Index, const std::string& S) {
  if (Index < 0 || Index > Count()) IndexError(Index);
  FItems.insert(FItems.begin() + Index, TItem{S});
  if (FListBox->FItemIndex >= Index) ++FListBox->FItemIndex;
  Changed();
}

void TListBoxStrings::Exchange(int32_t Index1, int32_t Index2) {
  std::swap(Item(Index1), Item(Index2));
  Changed();
}

void TListBoxStrings::SetUpdateState(bool Updating) {
  if (!Updating) FListBox->ItemsChanged();
}

void TListBoxStrings::Changed() {
  if (UpdateCount() == 0) FListBox->ItemsChanged();
}

// --- TCustomListBox: life ---

TCustomListBox::TCustomListBox(TComponent* AOwner)
    : TWinControl(AOwner), FItems(MakeOwned<TListBoxStrings>(this)) {
  InitSize(121, 97);
  InitColor(clWindow, false);
  SetTabStop(true);
}

TCustomListBox::~TCustomListBox() = default;

// --- TCustomListBox: properties ---

int32_t TCustomListBox::ClampIndex(int32_t Index) const {
  return std::clamp(Index, -1, Count() - 1);
}

void TCustomListBox::SetItemIndex(int32_t Value) {
  Value = ClampIndex(Value);
  if (Value == FItemIndex) return;
  FItemIndex = Value;
  if (Value >= 0) ScrollIntoView(Value);
  Invalidate();
}

void TCustomListBox::SetTopIndex(int32_t Value) {
  Value = std::clamp(Value, 0, MaxTopIndex());
  if (Value == FTopIndex) return;
  FTopIndex = Value;
  Invalidate();
}

void TCustomListBox::SetMultiSelect(bool Value) {
  if (Value == FMultiSelect) return;
  FMultiSelect = Value;
  // What was selected stays what shows: the caret item alone.
  for (int32_t I = 0; I < Count(); ++I)
    FItems->Item(I).Selected = Value && I == FItemIndex;
  FAnchor = FItemIndex;
  Invalidate();
}

bool TCustomListBox::Selected(int32_t Index) const {
  const TListBoxStrings::TItem& It = FItems->Item(Index);
  return FMultiSelect ? It.Selected : Index == FItemIndex;
}

void TCustomListBox::SetSelected(int32_t Index, bool Value) {
  TListBoxStrings::TItem& It = FItems->Item(Index);
  if (!FMultiSelect) {
    if (Value)
      SetItemIndex(Index);
    else if (Index == FItemIndex)
      SetItemIndex(-1);
    return;
  }
  if (It.Selected == Value) return;
  It.Selected = Value;
  InvalidateItem(Index);
}

int32_t TCustomListBox::SelCount() const {
  if (!FMultiSelect) return FItemIndex >= 0 ? 1 : 0;
  int32_t N = 0;
  for (int32_t I = 0; I < Count(); ++I)
    N += FItems->Item(I).Selected ? 1 : 0;
  return N;
}

void TCustomListBox::SetStyle(TListBoxStyle Value) {
  if (Value == FStyle) return;
  FStyle = Value;
  ItemsChanged();
}

void TCustomListBox::SetItemHeight(int32_t Value) {
  Value = std::max(Value, 1);
  if (Value == FItemHeight) return;
  FItemHeight = Value;
  ItemsChanged();
}

void TCustomListBox::SetBorderStyle(TBorderStyle Value) {
  if (Value == FBorderStyle) return;
  FBorderStyle = Value;
  ItemsChanged();
}

// --- TCustomListBox: geometry ---

int32_t TCustomListBox::RowHeight() const {
  if (FStyle != lbStandard) return FItemHeight;
  if (FFontItemHeight <= 0) {
    TCanvas* C = Canvas();
    C->SetFont(Font());
    FFontItemHeight = std::max(1, C->TextHeight("Ag"));
  }
  return FFontItemHeight;
}

namespace {

// The inside of the sunken frame.
TRect InsideFrame(const TRect& Client, TBorderStyle Style) {
  const int32_t F = Style == bsSingle ? 2 : 0;
  return {Client.Left + F, Client.Top + F, std::max(Client.Left + F, Client.Right - F),
          std::max(Client.Top + F, Client.Bottom - F)};
}

} // namespace

int32_t TCustomListBox::PageSize() const {
  const TRect R = InsideFrame(ClientRect(), FBorderStyle);
  return std::max(1, R.Height() / RowHeight());
}

bool TCustomListBox::HasScrollBar() const {
  return Count() > PageSize();
}

int32_t TCustomListBox::MaxTopIndex() const {
  return std::max(0, Count() - PageSize());
}

TRect TCustomListBox::ItemsRect() const {
  TRect R = InsideFrame(ClientRect(), FBorderStyle);
  if (HasScrollBar()) R.Right = std::max(R.Left, R.Right - ScrollBarWidth);
  return R;
}

TRect TCustomListBox::ItemRect(int32_t Index) const {
  const TRect R = ItemsRect();
  const int64_t Top = R.Top + int64_t(Index - int64_t(FTopIndex)) * RowHeight();
  return {R.Left, Clamp32(Top), R.Right, Clamp32(Top + RowHeight())};
}

int32_t TCustomListBox::ItemAtPos(TPoint Pos, bool Existing) const {
  const TRect R = ItemsRect();
  if (!PtInRect(R, Pos)) return -1;
  const int64_t I = FTopIndex + int64_t(Pos.Y - R.Top) / RowHeight();
  if (I < Count()) return static_cast<int32_t>(I);
  return Existing ? -1 : Count();
}

void TCustomListBox::ScrollIntoView(int32_t Index) {
  if (Index < 0 || Index >= Count()) return;
  if (Index < FTopIndex)
    SetTopIndex(Index);
  else if (Index >= FTopIndex + PageSize())
    SetTopIndex(Index - PageSize() + 1);
}

void TCustomListBox::InvalidateItem(int32_t Index) {
  if (FItems->UpdateCount() > 0) return;
  TRect R;
  if (KXIntersectRect(R, ItemRect(Index), ItemsRect())) InvalidateRect(R);
}

void TCustomListBox::ItemsChanged() {
  FItemIndex = ClampIndex(FItemIndex);
  FAnchor = ClampIndex(FAnchor);
  FTopIndex = std::clamp(FTopIndex, 0, MaxTopIndex());
  Invalidate();
}

void TCustomListBox::FontChanged() {
  FFontItemHeight = 0;
  inherited::FontChanged();
}

// --- TCustomListBox: painting ---

void TCustomListBox::Paint() {
  inherited::Paint();
  TCanvas* C = Canvas();
  TRect R = ClientRect();
  if (FBorderStyle == bsSingle) {
    Frame3D(C, R, clBtnShadow, clBtnHighlight, 1);
    Frame3D(C, R, cl3DDkShadow, cl3DLight, 1);
  }
  C->Brush()->SetStyle(bsSolid);
  C->Brush()->SetColor(Color());
  C->FillRect(R);
  const TRect Area = ItemsRect();
  if (!Area.IsEmpty()) {
    TCanvasClip Clip(C, Area);
    for (int32_t I = FTopIndex; I < Count(); ++I) {
      TRect Row = ItemRect(I);
      if (Row.Top >= Area.Bottom) break;
      TOwnerDrawState State;
      if (Selected(I)) State.Include(odSelected);
      if (!Enabled() || !FItems->Item(I).Enabled) State.Include(odDisabled);
      if (I == FItemIndex && Focused()) State.Include(odFocused);
      DrawItemMessage(I, Row, State);
    }
  }
  if (HasScrollBar()) PaintScrollBar(C);
}

namespace {

// The track and the thumb of a scroll bar in Track for a list showing Page of Count rows
// from Top.
TRect ThumbRect(const TRect& Track, int32_t Count, int32_t Page, int32_t Top) {
  const int32_t H = Track.Height();
  const int32_t Thumb = std::clamp(int32_t(int64_t(H) * Page / std::max(1, Count)), 8, H);
  const int32_t Room = H - Thumb, Steps = std::max(1, Count - Page);
  const int32_t Y = Track.Top + int32_t(int64_t(Room) * Top / Steps);
  return {Track.Left, Y, Track.Right, Y + Thumb};
}

TRect TrackRect(const TRect& Items) {
  return {Items.Right, Items.Top, Items.Right + TCustomListBox::ScrollBarWidth, Items.Bottom};
}

} // namespace

void TCustomListBox::PaintScrollBar(TCanvas* C) {
  const TRect Track = TrackRect(ItemsRect());
  C->Brush()->SetColor(cl3DLight);
  C->FillRect(Track);
  TRect Thumb = ThumbRect(Track, Count(), PageSize(), FTopIndex);
  Frame3D(C, Thumb, clBtnHighlight, cl3DDkShadow, 1);
  C->Brush()->SetColor(clBtnFace);
  C->FillRect(Thumb);
}

void TCustomListBox::DrawItemMessage(int32_t Index, TRect& Rect, TOwnerDrawState State) {
  TCanvas* C = Canvas();
  C->SetFont(Font());
  C->Brush()->SetStyle(bsSolid);
  if (State.Contains(odSelected)) {
    C->Brush()->SetColor(clHighlight);
    C->Font()->SetColor(clHighlightText);
  } else {
    C->Brush()->SetColor(Color());
  }
  if (State.Contains(odDisabled)) C->Font()->SetColor(clGrayText);
  DrawItem(Index, Rect, State);
  if (State.Contains(odFocused) && !State.Contains(odNoFocusRect)) C->DrawFocusRect(Rect);
}

void TCustomListBox::DrawItem(int32_t Index, const TRect& Rect, TOwnerDrawState State) {
  if (FOnDrawItem) {
    FOnDrawItem(this, Index, Rect, State);
    return;
  }
  TCanvas* C = Canvas();
  C->FillRect(Rect);
  const std::string Text = FItems->Strings(Index);
  C->TextRect(Rect, Rect.Left + 2, Rect.Top + (Rect.Height() - C->TextHeight(Text)) / 2, Text);
}

// --- TCustomListBox: the user ---

void TCustomListBox::SelectByUser(int32_t Index, TShiftState Shift) {
  Index = ClampIndex(Index);
  if (Index < 0) return;
  bool Changed = Index != FItemIndex;
  if (FMultiSelect) {
    const bool Range = Shift.Contains(ssShift) && FAnchor >= 0;
    const bool Toggle = Shift.Contains(ssCtrl);
    const int32_t Lo = Range ? std::min(FAnchor, Index) : Index;
    const int32_t Hi = Range ? std::max(FAnchor, Index) : Index;
    for (int32_t I = 0; I < Count(); ++I) {
      bool& S = FItems->Item(I).Selected;
      bool Now = S;
      if (I >= Lo && I <= Hi)
        Now = Range || !Toggle ? true : !S;
      else if (!Toggle)
        Now = false;
      Changed = Changed || Now != S;
      S = Now;
    }
    if (!Range) FAnchor = Index;
  }
  FItemIndex = Index;
  ScrollIntoView(Index);
  Invalidate();
  if (Changed) Click();
}

void TCustomListBox::MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  if (Button == mbLeft) {
    const TPoint P{X, Y};
    const TRect Track = TrackRect(ItemsRect());
    if (HasScrollBar() && PtInRect(Track, P)) {
      const TRect Thumb = ThumbRect(Track, Count(), PageSize(), FTopIndex);
      if (Y < Thumb.Top)
        SetTopIndex(FTopIndex - PageSize());
      else if (Y >= Thumb.Bottom)
        SetTopIndex(FTopIndex + PageSize());
    } else if (const int32_t Index = ItemAtPos(P, true); Index >= 0) {
      SelectByUser(Index, Shift);
    }
  }
  inherited::MouseDown(Button, Shift, X, Y);
}

bool TCustomListBox::MouseWheel(TShiftState Shift, int32_t WheelDelta, int32_t X, int32_t Y) {
  if (!HasScrollBar()) return inherited::MouseWheel(Shift, WheelDelta, X, Y);
  SetTopIndex(Clamp32(int64_t(FTopIndex) - int64_t(WheelDelta) * 3 / 120));
  return true;
}

void TCustomListBox::KeyDown(uint16_t& Key, TShiftState Shift) {
  inherited::KeyDown(Key, Shift);
  if (Count() == 0) return;
  const int64_t Caret = FItemIndex;
  int64_t To;
  switch (Key) {
  case VK_UP:
    To = Caret - 1;
    break;
  case VK_DOWN:
    To = Caret + 1;
    break;
  case VK_HOME:
    To = 0;
    break;
  case VK_END:
    To = Count() - 1;
    break;
  case VK_PRIOR:
    To = Caret - (PageSize() - 1);
    break;
  case VK_NEXT:
    To = Caret + (PageSize() - 1);
    break;
  default:
    return;
  }
  Key = 0;
  const int32_t Index = static_cast<int32_t>(std::clamp<int64_t>(To, 0, Count() - 1));
  if (FMultiSelect && Shift.Contains(ssCtrl)) {
    // Ctrl moves the caret alone, so that a space can then toggle what it lands on.
    FItemIndex = Index;
    ScrollIntoView(Index);
    Invalidate();
    return;
  }
  SelectByUser(Index, Shift);
}

// --- TCustomListBox: persistence ---

void TCustomListBox::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.DefineProperty(
      "Items",
      [this](TReader& Reader) {
        TUpdateScope<TStrings> Scope(FItems.get());
        FItems->Clear();
        for (const std::string& S : Reader.ReadStrings())
          FItems->Add(S);
      },
      [this](TWriter& Writer) {
        std::vector<std::string> Texts;
        Texts.reserve(static_cast<size_t>(Count()));
        for (int32_t I = 0; I < Count(); ++I)
          Texts.push_back(FItems->Strings(I));
        Writer.WriteStrings(Texts);
      },
      StoresItems() && Count() > 0);
  Filer.Property("ItemHeight", this, &TCustomListBox::ItemHeight, &TCustomListBox::SetItemHeight,
                 16);
  Filer.Property("MultiSelect", this, &TCustomListBox::MultiSelect, &TCustomListBox::SetMultiSelect,
                 false);
  Filer.Property("Style", this, &TCustomListBox::Style, &TCustomListBox::SetStyle, DefaultStyle());
  Filer.Property("BorderStyle", this, &TCustomListBox::BorderStyle, &TCustomListBox::SetBorderStyle,
                 bsSingle);
  DefineColorProperties(Filer, clWindow, false);
  DefineFontProperties(Filer);
}

} // namespace kx
