#pragma once
// TCheckListBox: a list box with a check box at the left of every item. A press on an
// item's check box, or a space while the item has the caret, turns the check (unchecked,
// checked, grayed when AllowGrayed, unchecked again) and raises ClickCheck; a press on the
// text only selects. Items that are not enabled draw their box dimmed and do not turn.

#include <cstdint>

#include "kxcharts/toolkit/controls/KXListBox.h"

namespace kx {

class TCheckListBox : public TCustomListBox {
  KX_CLASS(TCheckListBox, TCustomListBox)

public:
  // The side of the classic check box.
  static constexpr int32_t CheckSize = 13;

private:
  bool FAllowGrayed = false;
  TNotifyEvent FOnClickCheck;

public:
  using TCustomListBox::TCustomListBox;

  // --- Properties ---
  // (Each raises EListError outside 0..Count-1; setting from code raises no ClickCheck.)

  bool Checked(int32_t Index) const { return State(Index) == cbChecked; }
  void SetChecked(int32_t Index, bool Value) { SetState(Index, Value ? cbChecked : cbUnchecked); }
  TCheckBoxState State(int32_t Index) const { return Items()->Item(Index).State; }
  void SetState(int32_t Index, TCheckBoxState Value);
  bool ItemEnabled(int32_t Index) const { return Items()->Item(Index).Enabled; }
  void SetItemEnabled(int32_t Index, bool Value);
  // Whether the user's turn passes through cbGrayed.
  bool AllowGrayed() const { return FAllowGrayed; }
  void SetAllowGrayed(bool Value) { FAllowGrayed = Value; }

  // --- Events ---

  // After the user turned a check.
  const TNotifyEvent& OnClickCheck() const { return FOnClickCheck; }
  void SetOnClickCheck(TNotifyEvent Value) { FOnClickCheck = std::move(Value); }

  // --- Operations ---

  // The width of the check strip at the side of each item: the box and a pixel each side.
  int32_t GetCheckWidth() const { return CheckSize + 2; }
  // Turns the check of item Index as the user does and raises ClickCheck; nothing for an
  // index out of range or an item that is not enabled.
  void ToggleClickCheck(int32_t Index);

  // After the inherited press (which selects), a press inside the check strip of an
  // enabled item turns its check.
  void MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) override;
  // A space turns the check of the caret item.
  void KeyPress(char& Key) override;

protected:
  // Raises OnClickCheck.
  virtual void ClickCheck();
  // Draws a check box in AState at the centre of R, on R filled with the list's colour: the
  // classic sunken box, white inside with a black tick when checked, grey inside with a
  // grey tick when grayed, and grey with a grey tick when not AEnabled.
  void DrawCheck(const TRect& R, TCheckBoxState AState, bool AEnabled);
  // Leaves the check strip at the left of the item's rectangle to DrawItem.
  void DrawItemMessage(int32_t Index, TRect& Rect, TOwnerDrawState State) override;
  // The check box in the strip left of Rect, then the inherited drawing in Rect.
  void DrawItem(int32_t Index, const TRect& Rect, TOwnerDrawState State) override;
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
