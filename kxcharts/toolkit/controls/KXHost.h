#pragma once
// The headless host: what a window system does for the controls, without a screen. It
// keeps a set of top-level windows, paints the parts waiting for paint, delivers the mouse
// to the control under it, and composes what the screen would show into a bitmap (or a PNG
// file). Tests drive it; a real window host does the same from its own events.
//
// Mouse delivery. An event at a screen point goes to the topmost visible window there (the
// screen's pop-ups lie above the forms), then down to the deepest visible, enabled control
// under the point that accepts it (CMHitTest); a control that declines passes it to what
// lies beneath. A button press captures the mouse: until the last button is up, moves and
// the release go to the control that took the press, wherever the mouse is. When the mouse
// comes over another control, the one it left hears CMMouseLeave (after the capture ends,
// when it was captured) and the new one CMMouseEnter. Shift states hold the keys given
// plus the buttons down. A left press and release on the same control is also a Click
// (when the control's ClickEvents says so).
//
// Focus and keys. A press gives the focus to the nearest window under it, from the control
// pressed outward, that can take it (CanFocus); a press on nothing that can keeps the focus
// where it was. Keys go to the window with the focus.

#include <cairo.h>

#include <cstdint>
#include <filesystem>
#include <vector>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/controls/KXControls.h"

namespace kx {

class TKXHost : public TComponent {
  KX_CLASS(TKXHost, TComponent)

private:
  // Bottom first.
  std::vector<TWinControl*> FWindows;
  TControl* FMouseControl = nullptr;
  TControl* FCaptureControl = nullptr;
  TControl* FPressControl = nullptr;
  TControl* FFocusControl = nullptr;
  TShiftState FButtons;
  TPoint FMousePos;

public:
  explicit TKXHost(TComponent* AOwner = nullptr);

  // --- Windows ---

  // Shows Window as a top-level window, above those shown before. A window shown again
  // comes to the top. Raises EInvalidOperation for a window that has a parent.
  void AddWindow(TWinControl* Window);
  void RemoveWindow(TWinControl* Window);
  int32_t WindowCount() const { return static_cast<int32_t>(FWindows.size()); }
  // Raises EListError outside 0..WindowCount-1.
  TWinControl* Windows(int32_t Index) const;

  // --- Painting ---

  // Paints every visible window (the windows shown, the controls on them, the screen's
  // pop-ups) that waits for paint, each once; answers how many were painted.
  int32_t ProcessPaints();
  // What the screen shows of Control: a window's backing bitmap with its visible child
  // windows composed on top, or the part of its parent's picture under a graphic control
  // (a graphic control without a parent is painted alone). Nothing is painted for it:
  // call ProcessPaints first for a fresh picture.
  TOwned<TBitmap> Capture(TControl* Control) const;
  // Composes what the screen shows of Window (its backing bitmap and its visible child
  // windows) onto Cr with its top left at (X, Y). A real window host draws its windows so.
  static void Compose(TWinControl* Window, cairo_t* Cr, int32_t X, int32_t Y);
  // Capture(Control) as a PNG file. Raises EInvalidGraphic naming the file when it cannot
  // be written.
  void SaveToFile(TControl* Control, const std::filesystem::path& FileName) const;

  // --- Mouse (screen coordinates) ---

  void MouseMove(TPoint Point, TShiftState Keys = {});
  void MouseDown(TPoint Point, TMouseButton Button, TShiftState Keys = {},
                 bool DoubleClick = false);
  void MouseUp(TPoint Point, TMouseButton Button, TShiftState Keys = {});
  // A press and a release at Point.
  void Click(TPoint Point, TMouseButton Button = mbLeft, TShiftState Keys = {});
  // A press at From, Steps moves on the straight line to To, and the release there.
  void Drag(TPoint From, TPoint To, TShiftState Keys = {}, TMouseButton Button = mbLeft,
            int32_t Steps = 4);
  // The wheel turned by Delta (120 a notch) at Point: the control under the mouse (or the
  // capture) is offered the turn first, then each parent in turn until one uses it.
  // Answers whether one did.
  bool MouseWheel(TPoint Point, int32_t Delta, TShiftState Keys = {});
  // The mouse left the host's screen: the control under it hears CMMouseLeave.
  void MouseExit();

  // --- Keys ---

  // Gives Window the focus (nullptr takes it away): the old one hears CMExit, the new one
  // CMEnter. A window that cannot take it (CanFocus) leaves the focus as it is.
  void SetFocus(TWinControl* Window);
  TWinControl* FocusControl() const;
  // A key went down: KeyDown of the window with the focus, then, unless it took the key
  // (set it to 0), KeyPress with the character the key makes (space, return, letters in
  // the case Shift gives, digits). Answers whether a window had the focus.
  bool KeyDown(uint16_t Key, TShiftState Keys = {});

  // The control an event at Point would reach, leaving the capture aside; nullptr over no
  // window.
  TControl* ControlAt(TPoint Point) const;
  TControl* MouseControl() const { return FMouseControl; }
  TControl* CaptureControl() const { return FCaptureControl; }
  TPoint MousePos() const { return FMousePos; }
  // The cursor the screen shows: Screen's when it is not crDefault, else that of the
  // control under the mouse (or the capture), or of its nearest parent with one.
  TCursor Cursor() const;

  // --- Time ---

  // Lets Milliseconds pass for the screen's pop-ups (the interval of hint windows).
  void AdvanceTime(int32_t Milliseconds);

  void BeforeDestruction() override;

protected:
  void Notification(TComponent* AComponent, TOperation Operation) override;

private:
  void SetSlot(TControl*& Slot, TControl* Value);
  bool Refers(const TComponent* C) const;
  // Moves the hover to the control at the mouse, telling the old and the new one.
  void UpdateHover();
  TShiftState ShiftOf(TShiftState Keys) const;
  static TShiftState ButtonBit(TMouseButton Button);
};

} // namespace kx
