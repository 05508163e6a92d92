#pragma once
// TCustomListBox: a window that lists strings, one item a row of ItemHeight pixels, drawn by
// the list itself or by its owner (DrawItem, OnDrawItem), with a sunken frame and, when the
// items do not fit, a scroll bar at the right.
//
// Selection. ItemIndex is the item with the caret (-1 for none). Without MultiSelect the
// selected item is the one at ItemIndex. With MultiSelect each item keeps its own Selected
// flag: a press selects the item alone, Ctrl + press toggles it, Shift + press selects the
// run from the last item pressed; the arrow keys, Home, End, Page Up and Page Down move the
// caret and select the same way. Setting ItemIndex from code moves only the caret of a
// multi-selecting list, as the platform's does. Every selection the user makes raises
// Click (and OnClick) once, at the press or key.
//
// The items are kept in the list's own TStrings: each item carries its text, an object
// (not owned), its Selected flag, its check state and whether it is enabled, which stay
// with the item when others are inserted or deleted.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/objects/KXLists.h"

namespace kx {

class TCustomListBox;

enum TListBoxStyle : uint8_t {
  lbStandard,
  lbOwnerDrawFixed,
  lbOwnerDrawVariable,
  lbVirtual,
  lbVirtualOwnerDraw
};
KX_ENUM_NAMES(TListBoxStyle, "lbStandard", "lbOwnerDrawFixed", "lbOwnerDrawVariable", "lbVirtual",
              "lbVirtualOwnerDraw")

// The state an item is drawn in, in the platform's member order.
enum TOwnerDrawStateItem : uint8_t {
  odSelected,
  odGrayed,
  odDisabled,
  odChecked,
  odFocused,
  odDefault,
  odHotLight,
  odInactive,
  odNoAccel,
  odNoFocusRect,
  odReserved1,
  odReserved2,
  odComboBoxEdit
};
KX_ENUM_NAMES(TOwnerDrawStateItem, "odSelected", "odGrayed", "odDisabled", "odChecked", "odFocused",
              "odDefault", "odHotLight", "odInactive", "odNoAccel", "odNoFocusRect", "odReserved1",
              "odReserved2", "odComboBoxEdit")
using TOwnerDrawState = TSet<TOwnerDrawStateItem>;

enum TCheckBoxState : uint8_t { cbUnchecked, cbChecked, cbGrayed };
KX_ENUM_NAMES(TCheckBoxState, "cbUnchecked", "cbChecked", "cbGrayed")

using TDrawItemEvent = std::function<void(TWinControl* Control, int32_t Index, const TRect& Rect,
                                          TOwnerDrawState State)>;

// --- TListBoxStrings ---

// The items of a list box. Changes outside BeginUpdate / EndUpdate repaint the list at
// once; inside, once at the end.
class TListBoxStrings : public TStrings {
  KX_CLASS(TListBoxStrings, TStrings)

public:
  struct TItem {
    std::string Text;
    TObject* Object = nullptr;
    bool Selected = false;
    TCheckBoxState State = cbUnchecked;
    bool Enabled = true;
  };

private:
  TCustomListBox* FListBox;
  std::vector<TItem> FItems;

public:
  explicit TListBoxStrings(TCustomListBox* AListBox) : FListBox(AListBox) {}

  int32_t Count() const override { return static_cast<int32_t>(FItems.size()); }
  void Clear() override;
  void Delete(int32_t Index) override;
  void Insert(int32_t Index, const std::string& S) override;
  void Exchange(int32_t Index1, int32_t Index2) override;
  // Raises EListError outside 0..Count-1.
  TItem& Item(int32_t Index);
  const TItem& Item(int32_t Index) const;

protected:
  std::string Get(int32_t Index) const override;
  TObject* GetObject(int32_t Index) const override;
  void Put(int32_t Index, const std::string& S) override;
  void PutObject(int32_t Index, TObject* AObject) override;
  void SetUpdateState(bool Updating) override;

private:
  void Changed();
};

// --- TCustomListBox ---

class TCustomListBox : public TWinControl {
  KX_CLASS(TCustomListBox, TWinControl)

public:
  // The width of the scroll bar shown when the items do not fit.
  static constexpr int32_t ScrollBarWidth = 16;

private:
  friend class TListBoxStrings;
  TOwned<TListBoxStrings> FItems;
  int32_t FItemIndex = -1;
  int32_t FTopIndex = 0;
  // Where a Shift selection runs from.
  int32_t FAnchor = -1;
  bool FMultiSelect = false;
  TListBoxStyle FStyle = lbStandard;
  int32_t FItemHeight = 16;
  TBorderStyle FBorderStyle = bsSingle;
  // The row height of lbStandard, measured in the font; 0 until measured again.
  mutable int32_t FFontItemHeight = 0;
  TDrawItemEvent FOnDrawItem;

public:
  // 121 x 97, white (clWindow), taking the focus.
  explicit TCustomListBox(TComponent* AOwner);
  ~TCustomListBox() override;

  // --- Properties ---

  TListBoxStrings* Items() const { return FItems.get(); }
  // Copies the strings and their objects.
  void SetItems(const TStrings* Value) { FItems->Assign(Value); }
  int32_t Count() const { return FItems->Count(); }
  // The caret item, -1 for none. A value outside -1..Count-1 is moved to Count-1 (or -1).
  // Without MultiSelect it is also the selected item; setting it scrolls it into view.
  int32_t ItemIndex() const { return FItemIndex; }
  void SetItemIndex(int32_t Value);
  // The first item shown; clamped so that the last page stays full.
  int32_t TopIndex() const { return FTopIndex; }
  void SetTopIndex(int32_t Value);
  bool MultiSelect() const { return FMultiSelect; }
  // Turning it off keeps only the caret item selected.
  void SetMultiSelect(bool Value);
  // Raises EListError outside 0..Count-1.
  bool Selected(int32_t Index) const;
  void SetSelected(int32_t Index, bool Value);
  int32_t SelCount() const;
  TListBoxStyle Style() const { return FStyle; }
  void SetStyle(TListBoxStyle Value);
  // The row height of the owner-drawn styles (lbStandard rows follow the font); at least 1.
  int32_t ItemHeight() const { return FItemHeight; }
  void SetItemHeight(int32_t Value);
  TBorderStyle BorderStyle() const { return FBorderStyle; }
  void SetBorderStyle(TBorderStyle Value);

  // --- Events ---

  // Draws an item instead of the list (see DrawItem).
  const TDrawItemEvent& OnDrawItem() const { return FOnDrawItem; }
  void SetOnDrawItem(TDrawItemEvent Value) { FOnDrawItem = std::move(Value); }

  // --- Operations ---

  // The height of one row as drawn.
  int32_t RowHeight() const;
  // The area the rows are drawn in: inside the frame, less the scroll bar when one shows.
  TRect ItemsRect() const;
  // How many whole rows ItemsRect holds (at least 1).
  int32_t PageSize() const;
  // Whether the scroll bar shows: more items than whole rows.
  bool HasScrollBar() const;
  // The rectangle of item Index in client coordinates, wherever it lies (also outside the
  // list when it is scrolled away).
  TRect ItemRect(int32_t Index) const;
  // The item under the client point Pos, -1 for none; without Existing a point below the
  // last item answers Count.
  int32_t ItemAtPos(TPoint Pos, bool Existing) const;
  void Clear() { FItems->Clear(); }
  // Scrolls the least that brings item Index into view.
  void ScrollIntoView(int32_t Index);

  // Paints the frame, the rows from TopIndex (each through DrawItemMessage) and the scroll
  // bar.
  void Paint() override;
  bool PaintsWholeClient() const override { return true; }
  // A left press selects as the header comment tells (a press below the items selects
  // nothing); in the scroll bar it pages. Then the inherited event.
  void MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) override;
  // Three rows a notch.
  bool MouseWheel(TShiftState Shift, int32_t WheelDelta, int32_t X, int32_t Y) override;
  // The arrow keys, Home, End, Page Up and Page Down move the caret and select.
  void KeyDown(uint16_t& Key, TShiftState Shift) override;
  bool ClickEvents() const override { return false; }

protected:
  // The platform's draw-item message for item Index: sets the canvas up for State (the
  // list's font; the selection's colours for a selected item, grey text for a disabled
  // one), runs DrawItem, then the focus frame for the caret item of a focused list.
  // Overrides may move Rect before the inherited handling.
  virtual void DrawItemMessage(int32_t Index, TRect& Rect, TOwnerDrawState State);
  // Draws item Index in Rect: OnDrawItem when assigned, otherwise the rectangle filled with
  // the canvas's brush and the text at its left, centred in the row.
  virtual void DrawItem(int32_t Index, const TRect& Rect, TOwnerDrawState State);
  // The items changed (outside a bracket, or at its end): the caret, the anchor and the
  // first row are kept in range, and the list repaints.
  virtual void ItemsChanged();
  // Moves the caret to Index and selects by Shift as a press or key does; raises Click when
  // the caret or a selection changed.
  void SelectByUser(int32_t Index, TShiftState Shift);
  void FontChanged() override;
  void DefineProperties(TFiler& Filer) override;
  // Whether Items are written with the form; a list that builds its items itself says no.
  virtual bool StoresItems() const { return true; }
  // The Style a form need not write.
  virtual TListBoxStyle DefaultStyle() const { return lbStandard; }

private:
  void InvalidateItem(int32_t Index);
  int32_t ClampIndex(int32_t Index) const;
  int32_t MaxTopIndex() const;
  void PaintScrollBar(TCanvas* C);
};

} // namespace kx
