#pragma once
// Controls: components with a place on a parent window, painted on a canvas and driven by
// the mouse.
//
// Owner and parent. A control is a component: its owner frees it. Its Parent, a
// TWinControl, is where it shows; the two need not be the same. Freeing a control takes it
// out of its parent first; freeing a window frees the controls placed on it (as the
// platform does), so no parent or child pointer is ever left dangling.
//
// Painting. Every TWinControl keeps a backing bitmap of its own size and one TCanvas on it
// for its whole life (code compares canvases by identity). A TGraphicControl has no pixels
// of its own: its Canvas is a canvas of its own (also kept for its life) bound to the part
// of its parent's backing bitmap under it, with the origin at the control's top left and
// drawing clipped to its bounds. So Canvas works the same inside and outside Paint, and a
// drawing made outside Paint (a rubber band, a crosshair) lands in the backing bitmap at
// once. A graphic control that lies wholly inside its parent shares the parent's pixels
// directly, pen modes and DrawFocusRect included; one that sticks out is drawn through a
// clipped view, on which vector drawing works but the pixel-combining pen modes do not.
// A graphic control without a parent paints on a private 1 x 1 scratch image (text can
// still be measured there).
//
// Invalidate marks the area of a control as needing paint; a host (KXHost.h) or Update
// paints it later, once however many times it was invalidated. Repaint paints at once. A
// window paints by filling the area with its Brush, calling its own Paint, then the Paint
// of each visible graphic control on it, bottom first. Child windows paint into their own
// bitmaps; a host composes them.
//
// Mouse. MouseDown, MouseMove, MouseUp, Click and the messages CMMouseEnter, CMMouseLeave
// are public virtual operations, so that a host or a test drives a control directly.
// CMHitTest lets a control decline the mouse at a point: the mouse then goes to what lies
// beneath it (its parent), as a chart inside a panel does.
//
// Keys. KeyDown (a key went down, by its virtual key number) and KeyPress (the character it
// made) go to the window that has the focus; a host gives the focus to the nearest window
// under a press that can take it (CanFocus), and tells it by CMEnter and CMExit.
//
// Persistence. TControl stores Parent (when it is not the owner), Left, Top, Width, Height,
// Align, Enabled, Visible, Cursor, Hint and ShowHint; descendants do not declare these
// again. Colour, font and caption are declared by the descendants that publish them
// (through DefineColorProperties, DefineFontProperties, DefineCaptionProperty), because
// some descendants keep their own.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TWinControl;

// --- Enumerations ---

enum TMouseButton : uint8_t { mbLeft, mbRight, mbMiddle };
KX_ENUM_NAMES(TMouseButton, "mbLeft", "mbRight", "mbMiddle")

// The keys and buttons held during a mouse event, in the platform's member order (stored
// defaults such as [ssAlt, ssLeft] = 10 depend on it).
enum TShiftStateItem : uint8_t { ssShift, ssAlt, ssCtrl, ssLeft, ssRight, ssMiddle, ssDouble };
KX_ENUM_NAMES(TShiftStateItem, "ssShift", "ssAlt", "ssCtrl", "ssLeft", "ssRight", "ssMiddle",
              "ssDouble")
using TShiftState = TSet<TShiftStateItem>;

// Cursor numbers of the platform; stored as numbers.
using TCursor = int16_t;
inline constexpr TCursor crDefault = 0;
inline constexpr TCursor crNone = -1;
inline constexpr TCursor crArrow = -2;
inline constexpr TCursor crCross = -3;
inline constexpr TCursor crIBeam = -4;
inline constexpr TCursor crSizeNESW = -6;
inline constexpr TCursor crSizeNS = -7;
inline constexpr TCursor crSizeNWSE = -8;
inline constexpr TCursor crSizeWE = -9;
inline constexpr TCursor crUpArrow = -10;
inline constexpr TCursor crHourGlass = -11;
inline constexpr TCursor crDrag = -12;
inline constexpr TCursor crNoDrop = -13;
inline constexpr TCursor crHSplit = -14;
inline constexpr TCursor crVSplit = -15;
inline constexpr TCursor crMultiDrag = -16;
inline constexpr TCursor crSQLWait = -17;
inline constexpr TCursor crNo = -18;
inline constexpr TCursor crAppStart = -19;
inline constexpr TCursor crHelp = -20;
inline constexpr TCursor crHandPoint = -21;
inline constexpr TCursor crSizeAll = -22;

// Where a control docks inside its parent's client area.
enum TAlign : uint8_t { alNone, alTop, alBottom, alLeft, alRight, alClient, alCustom };
KX_ENUM_NAMES(TAlign, "alNone", "alTop", "alBottom", "alLeft", "alRight", "alClient", "alCustom")

enum TBevelCut : uint8_t { bvNone, bvLowered, bvRaised, bvSpace };
KX_ENUM_NAMES(TBevelCut, "bvNone", "bvLowered", "bvRaised", "bvSpace")

enum TBorderStyle : uint8_t { bsNone, bsSingle };
KX_ENUM_NAMES(TBorderStyle, "bsNone", "bsSingle")

// --- Events ---

using TMouseEvent = std::function<void(TObject* Sender, TMouseButton Button, TShiftState Shift,
                                       int32_t X, int32_t Y)>;
using TMouseMoveEvent =
    std::function<void(TObject* Sender, TShiftState Shift, int32_t X, int32_t Y)>;
// Key is a virtual key number; a handler that sets it to 0 keeps the control from it.
using TKeyEvent = std::function<void(TObject* Sender, uint16_t& Key, TShiftState Shift)>;
// Key is the character typed; a handler that sets it to 0 keeps the control from it.
using TKeyPressEvent = std::function<void(TObject* Sender, char& Key)>;

// Virtual key numbers of the platform (letters and digits are their upper-case characters).
inline constexpr uint16_t VK_BACK = 0x08;
inline constexpr uint16_t VK_TAB = 0x09;
inline constexpr uint16_t VK_RETURN = 0x0D;
inline constexpr uint16_t VK_ESCAPE = 0x1B;
inline constexpr uint16_t VK_SPACE = 0x20;
inline constexpr uint16_t VK_PRIOR = 0x21;
inline constexpr uint16_t VK_NEXT = 0x22;
inline constexpr uint16_t VK_END = 0x23;
inline constexpr uint16_t VK_HOME = 0x24;
inline constexpr uint16_t VK_LEFT = 0x25;
inline constexpr uint16_t VK_UP = 0x26;
inline constexpr uint16_t VK_RIGHT = 0x27;
inline constexpr uint16_t VK_DOWN = 0x28;
inline constexpr uint16_t VK_DELETE = 0x2E;

// Raised for operations a control cannot carry out ("A control cannot have itself as its
// parent").
class EInvalidOperation : public Exception {
public:
  using Exception::Exception;
};

// --- TControl ---

class TControl : public TComponent {
  KX_CLASS(TControl, TComponent)

public:
  // The largest width or height of a control: that of a backing bitmap.
  static constexpr int32_t MaxExtent = TBitmap::MaxExtent;

private:
  TWinControl* FParent = nullptr;
  int32_t FLeft = 0;
  int32_t FTop = 0;
  int32_t FWidth = 0;
  int32_t FHeight = 0;
  bool FVisible = true;
  bool FEnabled = true;
  TColor FColor = clWindow;
  bool FParentColor = true;
  TOwned<TFont> FFont;
  bool FParentFont = true;
  TCursor FCursor = crDefault;
  std::string FCaption;
  std::string FHint;
  bool FShowHint = false;
  TAlign FAlign = alNone;
  // While the control copies its parent's font or colour, so that the copy does not count
  // as a change of its own.
  bool FTakingFromParent = false;
  // The parent named by the document being read, resolved in Loaded ("" for none).
  std::optional<std::string> FReadParent;

  TNotifyEvent FOnClick;
  TNotifyEvent FOnResize;
  TNotifyEvent FOnMouseEnter;
  TNotifyEvent FOnMouseLeave;
  TMouseEvent FOnMouseDown;
  TMouseEvent FOnMouseUp;
  TMouseMoveEvent FOnMouseMove;
  TKeyEvent FOnKeyDown;
  TKeyPressEvent FOnKeyPress;

public:
  explicit TControl(TComponent* AOwner);
  ~TControl() override;

  // --- Properties ---

  TWinControl* Parent() const { return FParent; }
  // Moves the control onto Value (or off any window with nullptr): it leaves the old
  // parent's list, joins the end of the new one (on top), takes the parent's font and
  // colour when ParentFont and ParentColor say so, and both parents are realigned and
  // invalidated. Raises EInvalidOperation when Value is the control itself or one of its
  // own children.
  void SetParent(TWinControl* Value);

  int32_t Left() const { return FLeft; }
  void SetLeft(int32_t Value) { SetBounds(Value, FTop, FWidth, FHeight); }
  int32_t Top() const { return FTop; }
  void SetTop(int32_t Value) { SetBounds(FLeft, Value, FWidth, FHeight); }
  int32_t Width() const { return FWidth; }
  void SetWidth(int32_t Value) { SetBounds(FLeft, FTop, Value, FHeight); }
  int32_t Height() const { return FHeight; }
  void SetHeight(int32_t Value) { SetBounds(FLeft, FTop, FWidth, Value); }
  // The control's rectangle in its parent's client coordinates.
  TRect BoundsRect() const { return {FLeft, FTop, FLeft + FWidth, FTop + FHeight}; }
  void SetBoundsRect(const TRect& R) { SetBounds(R.Left, R.Top, R.Width(), R.Height()); }
  // (0, 0, Width, Height): a control's own coordinates start at its top left.
  TRect ClientRect() const { return {0, 0, FWidth, FHeight}; }
  int32_t ClientWidth() const { return FWidth; }
  int32_t ClientHeight() const { return FHeight; }

  bool Visible() const { return FVisible; }
  // Shows or hides the control; the parent repaints the area and realigns, then
  // CMVisibleChanged runs.
  void SetVisible(bool Value);
  // True when the control and every parent up to the top are visible.
  bool Showing() const;
  bool Enabled() const { return FEnabled; }
  void SetEnabled(bool Value);

  TColor Color() const { return FColor; }
  // Stores the colour and clears ParentColor; windows pass it on to the controls on them
  // that follow their parent's colour.
  void SetColor(TColor Value);
  bool ParentColor() const { return FParentColor; }
  // True takes the parent's colour at once (when there is a parent).
  void SetParentColor(bool Value);
  TFont* Font() const { return FFont.get(); }
  // Copies Value into the owned font (a change of the font clears ParentFont).
  void SetFont(const TFont* Value) { FFont->Assign(Value); }
  bool ParentFont() const { return FParentFont; }
  // True takes the parent's font at once (when there is a parent).
  void SetParentFont(bool Value);

  // The cursor shown over the control (see TScreen for the one that overrides it).
  TCursor Cursor() const { return FCursor; }
  void SetCursor(TCursor Value) { FCursor = Value; }
  const std::string& Caption() const { return FCaption; }
  // Stores the text and invalidates the control.
  void SetCaption(const std::string& Value);
  const std::string& Hint() const { return FHint; }
  void SetHint(const std::string& Value) { FHint = Value; }
  bool ShowHint() const { return FShowHint; }
  void SetShowHint(bool Value) { FShowHint = Value; }
  TAlign Align() const { return FAlign; }
  // Docks the control in its parent's client area and realigns the parent.
  void SetAlign(TAlign Value);

  // --- Events ---

  const TNotifyEvent& OnClick() const { return FOnClick; }
  void SetOnClick(TNotifyEvent Value) { FOnClick = std::move(Value); }
  const TNotifyEvent& OnResize() const { return FOnResize; }
  void SetOnResize(TNotifyEvent Value) { FOnResize = std::move(Value); }
  const TNotifyEvent& OnMouseEnter() const { return FOnMouseEnter; }
  void SetOnMouseEnter(TNotifyEvent Value) { FOnMouseEnter = std::move(Value); }
  const TNotifyEvent& OnMouseLeave() const { return FOnMouseLeave; }
  void SetOnMouseLeave(TNotifyEvent Value) { FOnMouseLeave = std::move(Value); }
  const TMouseEvent& OnMouseDown() const { return FOnMouseDown; }
  void SetOnMouseDown(TMouseEvent Value) { FOnMouseDown = std::move(Value); }
  const TMouseEvent& OnMouseUp() const { return FOnMouseUp; }
  void SetOnMouseUp(TMouseEvent Value) { FOnMouseUp = std::move(Value); }
  const TMouseMoveEvent& OnMouseMove() const { return FOnMouseMove; }
  void SetOnMouseMove(TMouseMoveEvent Value) { FOnMouseMove = std::move(Value); }
  const TKeyEvent& OnKeyDown() const { return FOnKeyDown; }
  void SetOnKeyDown(TKeyEvent Value) { FOnKeyDown = std::move(Value); }
  const TKeyPressEvent& OnKeyPress() const { return FOnKeyPress; }
  void SetOnKeyPress(TKeyPressEvent Value) { FOnKeyPress = std::move(Value); }

  // --- Operations ---

  // Sets all four at once. Width and height are clamped to 0..MaxExtent. Nothing happens
  // when nothing changes; otherwise the old and new areas are invalidated, the parent
  // realigns, and Resize runs when the size changed.
  virtual void SetBounds(int32_t ALeft, int32_t ATop, int32_t AWidth, int32_t AHeight);
  // Marks the control's area as needing paint.
  virtual void Invalidate() = 0;
  // Paints the control now (when it is visible), whatever was invalidated.
  virtual void Repaint() = 0;
  // The point in screen coordinates; the top-level window's Left and Top are its place on
  // the screen.
  TPoint ClientToScreen(TPoint Point) const;
  TPoint ScreenToClient(TPoint Point) const;
  // The top left of the client area in screen coordinates.
  TPoint ClientOrigin() const;
  // Puts the control on top of (or beneath) the other controls of its parent.
  void BringToFront();
  void SendToBack();

  // --- Mouse and messages ---
  // A host calls these with client coordinates; so may tests. Overrides call the inherited
  // one (which raises the event) unless they mean to swallow it.

  // A button went down at (X, Y); Shift holds that button too.
  virtual void MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y);
  // The mouse moved to (X, Y); Shift holds the buttons still down.
  virtual void MouseMove(TShiftState Shift, int32_t X, int32_t Y);
  // A button came up at (X, Y); Shift no longer holds it.
  virtual void MouseUp(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y);
  // A left button went down and up on the control (when ClickEvents says so).
  virtual void Click();
  // Whether a left press and release on the control is a Click; the host asks. The base
  // says yes; a list box says no, as it clicks when its selection changes.
  virtual bool ClickEvents() const { return true; }
  // A key went down while the control had the focus. Raises OnKeyDown; an override acts
  // on what the handler left of Key.
  virtual void KeyDown(uint16_t& Key, TShiftState Shift);
  // The key made the character Key. Raises OnKeyPress; the same rule.
  virtual void KeyPress(char& Key);
  // The mouse came over the control. Raises OnMouseEnter.
  virtual void CMMouseEnter();
  // The mouse left the control (or the host). Raises OnMouseLeave.
  virtual void CMMouseLeave();
  // Whether the control takes the mouse at the client point (X, Y). The base answers true
  // inside ClientRect; a control that answers false passes the mouse to what lies beneath
  // it, in the end to its parent.
  virtual bool CMHitTest(int32_t X, int32_t Y);
  // The wheel turned by WheelDelta (120 a notch, above 0 away from the user) with the mouse
  // at (X, Y). Answers whether the control used the turn; a host offers an unused one to
  // the parent. The base uses none.
  virtual bool MouseWheel(TShiftState Shift, int32_t WheelDelta, int32_t X, int32_t Y);
  // Runs after Visible changed and the parent has been told. The base does nothing.
  virtual void CMVisibleChanged();
  // Runs after the size changed. Raises OnResize.
  virtual void Resize();

  void BeforeDestruction() override;

protected:
  // Runs when the font changed: by a setter (which clears ParentFont) or by a copy from
  // the parent. The base invalidates.
  virtual void FontChanged();
  // Runs when Color changed, by the setter or from the parent. The base invalidates.
  virtual void ColorChanged();
  // Runs after Left, Top, Width or Height changed, before the parent realigns.
  virtual void BoundsChanged() {}
  // Runs after the control moved to another parent (or off any).
  virtual void ParentChanged() {}
  // For C++ constructors, where the setters' virtual calls cannot run yet: store a starting
  // size, or a starting colour and whether it follows the parent's.
  void InitSize(int32_t AWidth, int32_t AHeight);
  void InitColor(TColor Value, bool AParentColor);

  // Declare the stored properties that only some descendants publish, in the caller's
  // order: Color and ParentColor (Color stored only when ParentColor is false), Font and
  // ParentFont (Font stored only when ParentFont is false), Caption.
  void DefineColorProperties(TFiler& Filer, TColor DefaultColor, bool DefaultParentColor);
  void DefineFontProperties(TFiler& Filer);
  void DefineCaptionProperty(TFiler& Filer);

  void DefineProperties(TFiler& Filer) override;
  void Loaded() override;

private:
  friend class TWinControl;
  void TakeParentFont();
  void TakeParentColor();
};

// --- TGraphicControl ---

// A control without pixels of its own, painted on its parent's backing bitmap after the
// parent's own Paint (see the header comment for its Canvas).
class TGraphicControl : public TControl {
  KX_CLASS(TGraphicControl, TControl)

private:
  TOwned<TCanvas> FCanvas;

public:
  explicit TGraphicControl(TComponent* AOwner);
  ~TGraphicControl() override;

  // --- Properties ---

  // The canvas on the parent's pixels under the control, origin at its top left; the same
  // object for the control's life.
  TCanvas* Canvas() const { return FCanvas.get(); }

  // --- Operations ---

  // Paints the control on Canvas. The parent calls it with Canvas clipped to the part being
  // repainted. The base does nothing.
  virtual void Paint() {}
  // Paints the control (and what lies under it) on Target with its top left at (X, Y),
  // without touching the parent's pixels. Any canvas will do: a bitmap, SVG or PDF.
  void PaintTo(TCanvas* Target, int32_t X, int32_t Y);

  // Invalidates the control's area of the parent.
  void Invalidate() override;
  // Repaints the control's area of the parent now: the parent's Paint and every graphic
  // control there, clipped to it.
  void Repaint() override;

protected:
  void BoundsChanged() override;
  void ParentChanged() override;

private:
  friend class TWinControl;
  // Binds Canvas to the parent's pixels under the control (or to the scratch image).
  void BindCanvas();
};

// --- TWinControl ---

// A control with a backing bitmap of its own that other controls can be placed on.
class TWinControl : public TControl {
  KX_CLASS(TWinControl, TControl)

private:
  // Bottom first: the last one lies on top.
  std::vector<TControl*> FControls;
  TOwned<TBrush> FBrush;
  TOwned<TBitmap> FBitmap;
  TOwned<TCanvas> FCanvas;
  TRect FInvalidRect;
  // What changed in the backing bitmap since a host last showed it: a few rectangles, so
  // that two thin lines across a window do not become the whole window.
  std::vector<TRect> FScreenDamage;
  bool FDoubleBuffered = false;
  int32_t FAlignDisabled = 0;
  // The windows being painted on the stack, so that a handler that repaints from inside
  // Paint cannot recurse without end.
  bool FPainting = false;
  bool FTabStop = false;
  bool FFocused = false;

public:
  explicit TWinControl(TComponent* AOwner);
  ~TWinControl() override;

  // --- Properties ---

  int32_t ControlCount() const { return static_cast<int32_t>(FControls.size()); }
  // The controls placed on this window, bottom first. Raises EListError outside
  // 0..ControlCount-1.
  TControl* Controls(int32_t Index) const;
  // Paints the background; its colour follows Color.
  TBrush* Brush() const { return FBrush.get(); }
  // The canvas on the backing bitmap; the same object for the control's life.
  TCanvas* Canvas() const { return FCanvas.get(); }
  // The backing bitmap: what the window showed after its last paint, with whatever was
  // drawn on it since.
  TBitmap* Bitmap() const { return FBitmap.get(); }
  // Stored only: every window here paints off screen.
  bool DoubleBuffered() const { return FDoubleBuffered; }
  void SetDoubleBuffered(bool Value) { FDoubleBuffered = Value; }
  // The part of the client area waiting for paint; empty when none is.
  TRect InvalidRect() const { return FInvalidRect; }
  bool NeedsPaint() const { return !FInvalidRect.IsEmpty(); }
  // Whether the window takes the focus when pressed (CanFocus). Not stored.
  bool TabStop() const { return FTabStop; }
  void SetTabStop(bool Value) { FTabStop = Value; }
  // Whether the window has the focus (between the host's CMEnter and CMExit).
  bool Focused() const { return FFocused; }

  // --- Operations ---

  // Same as Child->SetParent(this) and Child->SetParent(nullptr).
  void InsertControl(TControl* Child);
  void RemoveControl(TControl* Child);
  // True when Control is this window or lies on it, at any depth.
  bool ContainsControl(const TControl* Control) const;
  // The topmost control directly on this window under the client point P that is visible,
  // enabled (unless AllowDisabled) and takes the mouse there (CMHitTest); nullptr when
  // none does. With AllLevels it looks further into child windows.
  TControl* ControlAtPos(TPoint P, bool AllowDisabled = false, bool AllLevels = false) const;
  // Adds R (client coordinates) to the area waiting for paint.
  void InvalidateRect(const TRect& R);
  // Paints the area waiting for paint now, if any, and clears it.
  void Update();
  // Tells a host that R (client coordinates) of the backing bitmap changed without a paint
  // (drawing outside Paint: a rubber band, a crosshair), so that it shows R again without
  // repainting anything. Painting reports its own area.
  void InvalidateScreen(const TRect& R);
  // The parts of the backing bitmap changed since the last call, and forgets them: what a
  // host must show again.
  std::vector<TRect> TakeScreenDamage();
  // Paints the window itself on Canvas. The base does nothing beyond the background fill
  // that comes before it. Overrides call the inherited one first.
  virtual void Paint() {}
  // Whether Paint covers every pixel of the client area, so that the background fill
  // before it would be painted over whole and is left out. The base says no.
  virtual bool PaintsWholeClient() const { return false; }
  // Runs before the window paints what waits for paint (Update) and before it paints
  // itself elsewhere (PaintTo): a window that keeps content derived from what it follows
  // brings it up to date here, once however many changes came since. The base does
  // nothing.
  virtual void PrepareContent() {}
  // Whether the window can take the focus: TabStop, showing and enabled.
  virtual bool CanFocus() const;
  // The window got the focus; the base marks it Focused and invalidates.
  virtual void CMEnter();
  // The window lost the focus; the base marks it not Focused and invalidates.
  virtual void CMExit();
  // Shrinks Rect from the client rectangle to the area in which aligned controls are laid
  // out. The base leaves it as it is.
  virtual void AdjustClientRect(TRect& Rect) const;
  // Lays the aligned controls out: alTop, alBottom, alLeft, alRight, then alClient, each
  // group in list order, inside AdjustClientRect.
  virtual void AlignControls();
  void DisableAlign() { ++FAlignDisabled; }
  // Realigns when the last DisableAlign is matched.
  void EnableAlign();
  void Realign();
  // Paints the window with everything on it (child windows too) on Target with its top
  // left at (X, Y), freshly, without touching the backing bitmaps. Any canvas will do.
  void PaintTo(TCanvas* Target, int32_t X, int32_t Y);

  void Invalidate() override;
  // Invalidates the whole client area and paints it now.
  void Repaint() override;
  void AfterConstruction() override;
  void BeforeDestruction() override;

protected:
  void BoundsChanged() override;
  void FontChanged() override;
  void ColorChanged() override;

private:
  friend class TControl;
  friend class TGraphicControl;
  void AddChild(TControl* Child);
  void DropChild(TControl* Child);
  void MoveChild(TControl* Child, bool ToFront);
  // Background, Paint and the graphic controls, clipped to Area, on the canvas as bound.
  void PaintArea(const TRect& Area);
  void PaintGraphicChild(TGraphicControl* Child, const TRect& Area);
};

// --- TCustomPanel ---

// A window with a bevelled frame and a caption: outer bevel, border of BorderWidth in the
// panel's colour, inner bevel, then the face. BorderStyle bsSingle adds a one-pixel frame
// outside them all.
class TCustomPanel : public TWinControl {
  KX_CLASS(TCustomPanel, TWinControl)

private:
  TBevelCut FBevelInner = bvNone;
  TBevelCut FBevelOuter = bvRaised;
  int32_t FBevelWidth = 1;
  int32_t FBorderWidth = 0;
  TBorderStyle FBorderStyle = bsNone;
  TAlignment FAlignment = taCenter;
  TVerticalAlignment FVerticalAlignment = taVerticalCenter;
  bool FShowCaption = true;

public:
  // 185 x 41, colour clBtnFace, raised outer bevel of width 1, caption centred.
  explicit TCustomPanel(TComponent* AOwner);

  // --- Properties ---
  // Every setter stores a changed value, realigns where the frame changed, and invalidates.

  TBevelCut BevelInner() const { return FBevelInner; }
  void SetBevelInner(TBevelCut Value);
  TBevelCut BevelOuter() const { return FBevelOuter; }
  void SetBevelOuter(TBevelCut Value);
  int32_t BevelWidth() const { return FBevelWidth; }
  // Clamped to 1..MaxExtent.
  void SetBevelWidth(int32_t Value);
  int32_t BorderWidth() const { return FBorderWidth; }
  // Clamped to 0..MaxExtent.
  void SetBorderWidth(int32_t Value);
  TBorderStyle BorderStyle() const { return FBorderStyle; }
  void SetBorderStyle(TBorderStyle Value);
  TAlignment Alignment() const { return FAlignment; }
  void SetAlignment(TAlignment Value);
  TVerticalAlignment VerticalAlignment() const { return FVerticalAlignment; }
  void SetVerticalAlignment(TVerticalAlignment Value);
  bool ShowCaption() const { return FShowCaption; }
  void SetShowCaption(bool Value);

  // --- Operations ---

  // The width of the whole frame on each side: the single border, the bevels and
  // BorderWidth.
  int32_t FrameWidth() const;

  // The frame, the face in Color, and the caption in Font within the face.
  void Paint() override;
  // The frame and the face cover the client area.
  bool PaintsWholeClient() const override { return true; }
  // Insets by FrameWidth on each side.
  void AdjustClientRect(TRect& Rect) const override;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// The panel as a form stores it.
class TPanel : public TCustomPanel {
  KX_CLASS(TPanel, TCustomPanel)

public:
  using TCustomPanel::TCustomPanel;
};

// --- TPaintBox ---

// A graphic control that leaves its painting to OnPaint.
class TPaintBox : public TGraphicControl {
  KX_CLASS(TPaintBox, TGraphicControl)

private:
  TNotifyEvent FOnPaint;

public:
  // 105 x 105, following its parent's colour and font.
  explicit TPaintBox(TComponent* AOwner);

  const TNotifyEvent& OnPaint() const { return FOnPaint; }
  void SetOnPaint(TNotifyEvent Value) { FOnPaint = std::move(Value); }

  // Sets the canvas font to Font and its brush colour to Color, then raises OnPaint.
  void Paint() override;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// Registers the control classes that a form reader makes by name (TPanel, TPaintBox,
// TCheckListBox).
// Safe to call more than once.
void RegisterControlClasses();

} // namespace kx
