#include "kxcharts/toolkit/controls/KXControls.h"

#include "kxcharts/toolkit/controls/KXCheckListBox.h"
#include "kxcharts/toolkit/controls/KXControls_p.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

cairo_user_data_key_t KeepTargetKey;

TRect Offset(const TRect& R, int32_t DX, int32_t DY) {
  return {R.Left + DX, R.Top + DY, R.Right + DX, R.Bottom + DY};
}

TRect Intersection(const TRect& A, const TRect& B) {
  TRect R;
  return KXIntersectRect(R, A, B) ? R : TRect{};
}

TRect Union(const TRect& A, const TRect& B) {
  if (A.IsEmpty()) return B;
  if (B.IsEmpty()) return A;
  return {std::min(A.Left, B.Left), std::min(A.Top, B.Top), std::max(A.Right, B.Right),
          std::max(A.Bottom, B.Bottom)};
}

// A surface that draws on Target within R (Target's pixels), with its origin at R's top left
// and clipped to R. Inside an ARGB32 image it shares the pixels themselves, so that the
// pixel-combining operations of the canvas work; elsewhere it is a Cairo view of the
// rectangle. The view keeps Target alive. Nullptr for an empty R.
cairo_surface_t* CreateViewSurface(cairo_surface_t* Target, const TRect& R) {
  if (!Target || R.IsEmpty()) return nullptr;
  if (cairo_surface_get_type(Target) == CAIRO_SURFACE_TYPE_IMAGE &&
      cairo_image_surface_get_format(Target) == CAIRO_FORMAT_ARGB32 && R.Left >= 0 && R.Top >= 0 &&
      R.Right <= cairo_image_surface_get_width(Target) &&
      R.Bottom <= cairo_image_surface_get_height(Target)) {
    cairo_surface_flush(Target);
    if (unsigned char* Data = cairo_image_surface_get_data(Target)) {
      const int Stride = cairo_image_surface_get_stride(Target);
      cairo_surface_t* View = cairo_image_surface_create_for_data(
          Data + static_cast<ptrdiff_t>(R.Top) * Stride + static_cast<ptrdiff_t>(R.Left) * 4,
          CAIRO_FORMAT_ARGB32, R.Width(), R.Height(), Stride);
      cairo_surface_set_user_data(
          View, &KeepTargetKey, cairo_surface_reference(Target),
          [](void* P) { cairo_surface_destroy(static_cast<cairo_surface_t*>(P)); });
      return View;
    }
  }
  return cairo_surface_create_for_rectangle(Target, R.Left, R.Top, R.Width(), R.Height());
}

// Binds Canvas to a view of Target within R, or to the scratch image.
void BindView(TCanvas* Canvas, cairo_surface_t* Target, const TRect& R) {
  cairo_surface_t* View = CreateViewSurface(Target, R);
  Canvas->Bind(View, R.Width(), R.Height());
  if (View) cairo_surface_destroy(View);
}

// Pixels written through a view must be seen by whatever reads the target next.
void MarkDirty(cairo_surface_t* Surface) {
  if (Surface) cairo_surface_mark_dirty(Surface);
}

template <class F> struct TScopeExit {
  F Fn;
  ~TScopeExit() { Fn(); }
};
template <class F> TScopeExit(F) -> TScopeExit<F>;

} // namespace

// --- TControl: life ---

TControl::TControl(TComponent* AOwner) : TComponent(AOwner), FFont(MakeOwned<TFont>()) {
  FFont->SetOnChange([this](TObject*) {
    if (!FTakingFromParent) FParentFont = false;
    FontChanged();
  });
}

TControl::~TControl() {
  // A control that was never freed through Free(), or whose BeforeDestruction threw.
  if (FParent) FParent->DropChild(this);
}

void TControl::BeforeDestruction() {
  if (FParent) {
    TWinControl* Old = FParent;
    const TRect Area = BoundsRect();
    Old->DropChild(this);
    FParent = nullptr;
    if (!Old->ComponentState().Contains(csDestroying)) {
      if (FVisible && !Is<TWinControl>(this)) Old->InvalidateRect(Area);
      if (FAlign != alNone) Old->Realign();
    }
  }
  inherited::BeforeDestruction();
}

// --- TControl: properties ---

void TControl::SetParent(TWinControl* Value) {
  if (Value == FParent) return;
  if (Value) {
    if (Value == this) throw EInvalidOperation("A control cannot have itself as its parent");
    if (const auto* Self = dynamic_cast<const TWinControl*>(this);
        Self && Self->ContainsControl(Value))
      throw EInvalidOperation("A control cannot have one of its own children as its parent");
  }
  TWinControl* Old = FParent;
  if (Old) {
    if (FVisible && !Is<TWinControl>(this)) Old->InvalidateRect(BoundsRect());
    Old->DropChild(this);
    FParent = nullptr;
    if (FAlign != alNone) Old->Realign();
  }
  if (Value) {
    Value->AddChild(this);
    FParent = Value;
    if (FParentFont) TakeParentFont();
    if (FParentColor) TakeParentColor();
  }
  ParentChanged();
  if (FParent) {
    if (FAlign != alNone) FParent->Realign();
    Invalidate();
  }
}

void TControl::SetVisible(bool Value) {
  if (Value == FVisible) return;
  FVisible = Value;
  if (FParent) {
    if (!Is<TWinControl>(this)) FParent->InvalidateRect(BoundsRect());
    if (FAlign != alNone) FParent->Realign();
  }
  if (FVisible) Invalidate();
  CMVisibleChanged();
}

bool TControl::Showing() const {
  for (const TControl* C = this; C; C = C->FParent)
    if (!C->FVisible) return false;
  return true;
}

void TControl::SetEnabled(bool Value) {
  if (Value == FEnabled) return;
  FEnabled = Value;
  Invalidate();
}

void TControl::SetColor(TColor Value) {
  if (Value == FColor) return;
  FColor = Value;
  FParentColor = false;
  ColorChanged();
}

void TControl::SetParentColor(bool Value) {
  if (Value == FParentColor) return;
  FParentColor = Value;
  if (Value) TakeParentColor();
}

void TControl::SetParentFont(bool Value) {
  if (Value == FParentFont) return;
  FParentFont = Value;
  if (Value) TakeParentFont();
}

void TControl::SetCaption(const std::string& Value) {
  if (Value == FCaption) return;
  FCaption = Value;
  Invalidate();
}

void TControl::SetAlign(TAlign Value) {
  if (Value == FAlign) return;
  const bool WasAligned = FAlign != alNone;
  FAlign = Value;
  if (FParent && (WasAligned || Value != alNone)) FParent->Realign();
}

void TControl::TakeParentFont() {
  if (!FParent) return;
  FTakingFromParent = true;
  TScopeExit Done{[this] { FTakingFromParent = false; }};
  FFont->Assign(FParent->Font());
}

void TControl::TakeParentColor() {
  if (!FParent || FParent->Color() == FColor) return;
  FColor = FParent->Color();
  ColorChanged();
}

void TControl::InitSize(int32_t AWidth, int32_t AHeight) {
  FWidth = std::clamp(AWidth, 0, MaxExtent);
  FHeight = std::clamp(AHeight, 0, MaxExtent);
}

void TControl::InitColor(TColor Value, bool AParentColor) {
  FColor = Value;
  FParentColor = AParentColor;
}

void TControl::FontChanged() {
  Invalidate();
}

void TControl::ColorChanged() {
  Invalidate();
}

// --- TControl: operations ---

void TControl::SetBounds(int32_t ALeft, int32_t ATop, int32_t AWidth, int32_t AHeight) {
  AWidth = std::clamp(AWidth, 0, MaxExtent);
  AHeight = std::clamp(AHeight, 0, MaxExtent);
  if (ALeft == FLeft && ATop == FTop && AWidth == FWidth && AHeight == FHeight) return;
  const TRect Old = BoundsRect();
  const bool Sized = AWidth != FWidth || AHeight != FHeight;
  FLeft = ALeft;
  FTop = ATop;
  FWidth = AWidth;
  FHeight = AHeight;
  try {
    BoundsChanged();
  } catch (...) {
    // A window whose new backing bitmap cannot be had keeps its old place and size.
    FLeft = Old.Left;
    FTop = Old.Top;
    FWidth = Old.Width();
    FHeight = Old.Height();
    throw;
  }
  if (FParent && FVisible && !Is<TWinControl>(this)) FParent->InvalidateRect(Old);
  Invalidate();
  if (FParent && FAlign != alNone) FParent->Realign();
  if (Sized) Resize();
}

TPoint TControl::ClientOrigin() const {
  TPoint P{FLeft, FTop};
  for (const TControl* C = FParent; C; C = C->FParent) {
    P.X += C->FLeft;
    P.Y += C->FTop;
  }
  return P;
}

TPoint TControl::ClientToScreen(TPoint Point) const {
  const TPoint O = ClientOrigin();
  return {Point.X + O.X, Point.Y + O.Y};
}

TPoint TControl::ScreenToClient(TPoint Point) const {
  const TPoint O = ClientOrigin();
  return {Point.X - O.X, Point.Y - O.Y};
}

void TControl::BringToFront() {
  if (FParent) FParent->MoveChild(this, true);
}

void TControl::SendToBack() {
  if (FParent) FParent->MoveChild(this, false);
}

// --- TControl: mouse and messages ---

void TControl::MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  if (FOnMouseDown) FOnMouseDown(this, Button, Shift, X, Y);
}

void TControl::MouseMove(TShiftState Shift, int32_t X, int32_t Y) {
  if (FOnMouseMove) FOnMouseMove(this, Shift, X, Y);
}

void TControl::MouseUp(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  if (FOnMouseUp) FOnMouseUp(this, Button, Shift, X, Y);
}

void TControl::Click() {
  if (FOnClick) FOnClick(this);
}

void TControl::KeyDown(uint16_t& Key, TShiftState Shift) {
  if (FOnKeyDown) FOnKeyDown(this, Key, Shift);
}

void TControl::KeyPress(char& Key) {
  if (FOnKeyPress) FOnKeyPress(this, Key);
}

void TControl::CMMouseEnter() {
  if (FOnMouseEnter) FOnMouseEnter(this);
}

void TControl::CMMouseLeave() {
  if (FOnMouseLeave) FOnMouseLeave(this);
}

bool TControl::CMHitTest(int32_t X, int32_t Y) {
  return PtInRect(ClientRect(), TPoint{X, Y});
}

bool TControl::MouseWheel(TShiftState, int32_t, int32_t, int32_t) {
  return false;
}

void TControl::CMVisibleChanged() {}

void TControl::Resize() {
  if (FOnResize) FOnResize(this);
}

// --- TControl: persistence ---

namespace {

// The top of the owner chain: the form being written or read.
TComponent* FormOf(TComponent* C) {
  while (C && C->Owner())
    C = C->Owner();
  return C;
}

// A component's name path from the form, as references are written.
std::string PathFromForm(const TComponent* Target, const TComponent* Form) {
  if (Target == Form) {
    if (Target->Name().empty()) throw EFilerError("the form it is placed on has no name");
    return Target->Name();
  }
  std::string Path;
  for (const TComponent* C = Target; C != Form; C = C->Owner()) {
    if (!C)
      throw EFilerError("it is placed on " + Target->Name() + ", which is not part of the form");
    if (C->Name().empty()) throw EFilerError("it is placed on a component without a name");
    Path = Path.empty() ? C->Name() : C->Name() + "." + Path;
  }
  return Path;
}

TComponent* FindFromForm(TComponent* Form, std::string_view Path) {
  TComponent* C = Form;
  size_t Start = 0;
  while (C) {
    const size_t Dot = Path.find('.', Start);
    C = C->FindComponent(Path.substr(Start, Dot == std::string_view::npos ? Dot : Dot - Start));
    if (Dot == std::string_view::npos) break;
    Start = Dot + 1;
  }
  if (!C && Form && !Form->Name().empty() && SameText(Path, Form->Name())) return Form;
  return C;
}

} // namespace

void TControl::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  // The parent is the owner unless the document says otherwise; "" means no parent.
  auto* OwnerWindow = dynamic_cast<TWinControl*>(Owner());
  Filer.DefineProperty(
      "Parent", [this](TReader& Reader) { FReadParent = Reader.ReadString(); },
      [this, &Filer](TWriter& Writer) {
        Writer.WriteString(FParent ? PathFromForm(FParent, Filer.Root()) : std::string());
      },
      FParent != OwnerWindow);
  // Position and size are always written: each class has its own starting size.
  Filer.Property("Left", this, &TControl::Left, &TControl::SetLeft, INT32_MIN);
  Filer.Property("Top", this, &TControl::Top, &TControl::SetTop, INT32_MIN);
  Filer.Property("Width", this, &TControl::Width, &TControl::SetWidth, -1);
  Filer.Property("Height", this, &TControl::Height, &TControl::SetHeight, -1);
  Filer.Property("Align", this, &TControl::Align, &TControl::SetAlign, alNone);
  Filer.Property("Enabled", this, &TControl::Enabled, &TControl::SetEnabled, true);
  Filer.Property("Visible", this, &TControl::Visible, &TControl::SetVisible, true);
  Filer.Property("Cursor", this, &TControl::Cursor, &TControl::SetCursor, crDefault);
  Filer.Property("Hint", this, &TControl::Hint, &TControl::SetHint, std::string());
  Filer.Property("ShowHint", this, &TControl::ShowHint, &TControl::SetShowHint, false);
}

void TControl::DefineColorProperties(TFiler& Filer, TColor DefaultColor, bool DefaultParentColor) {
  Filer.Property("Color", this, &TControl::Color, &TControl::SetColor, DefaultColor,
                 [](TControl* C) { return !C->ParentColor(); });
  Filer.Property("ParentColor", this, &TControl::ParentColor, &TControl::SetParentColor,
                 DefaultParentColor);
}

void TControl::DefineFontProperties(TFiler& Filer) {
  // A font that follows the parent is not the control's own: reading it back would make it
  // so (any change of the font clears ParentFont).
  const bool Writing = Filer.IsWriting();
  Filer.Property("Font", this, [Writing](TControl* C) -> TFont* {
    return Writing && C->ParentFont() ? nullptr : C->Font();
  });
  Filer.Property("ParentFont", this, &TControl::ParentFont, &TControl::SetParentFont, true);
}

void TControl::DefineCaptionProperty(TFiler& Filer) {
  Filer.Property("Caption", this, &TControl::Caption, &TControl::SetCaption, std::string());
}

void TControl::Loaded() {
  inherited::Loaded();
  if (FReadParent) {
    const std::string Name = std::move(*FReadParent);
    FReadParent.reset();
    TWinControl* Target = nullptr;
    if (!Name.empty()) {
      Target = dynamic_cast<TWinControl*>(FindFromForm(FormOf(this), Name));
      if (!Target)
        throw EFilerError("The parent " + Name + " of " + this->Name() +
                          " is not a window of the form");
    }
    SetParent(Target);
  } else if (auto* OwnerWindow = dynamic_cast<TWinControl*>(Owner())) {
    SetParent(OwnerWindow);
  }
}

// --- TGraphicControl ---

TGraphicControl::TGraphicControl(TComponent* AOwner)
    : TControl(AOwner), FCanvas(MakeOwned<TCanvas>()) {}

TGraphicControl::~TGraphicControl() = default;

void TGraphicControl::BindCanvas() {
  TWinControl* P = Parent();
  BindView(FCanvas.get(), P ? P->Bitmap()->Surface() : nullptr, BoundsRect());
}

void TGraphicControl::BoundsChanged() {
  BindCanvas();
}

void TGraphicControl::ParentChanged() {
  BindCanvas();
}

void TGraphicControl::Invalidate() {
  if (Parent() && Visible()) Parent()->InvalidateRect(BoundsRect());
}

void TGraphicControl::Repaint() {
  TWinControl* P = Parent();
  if (!P || !Visible() || P->FPainting) return;
  const TRect Area = Intersection(BoundsRect(), P->ClientRect());
  if (!Area.IsEmpty()) P->PaintArea(Area);
}

void TGraphicControl::PaintTo(TCanvas* Target, int32_t X, int32_t Y) {
  if (!Target) return;
  TScopeExit Restore{[this] { BindCanvas(); }};
  BindView(FCanvas.get(), Target->Surface(), {X, Y, X + Width(), Y + Height()});
  if (!ClientRect().IsEmpty()) Paint();
  MarkDirty(Target->Surface());
}

// --- TWinControl: life ---

TWinControl::TWinControl(TComponent* AOwner)
    : TControl(AOwner), FBrush(MakeOwned<TBrush>()), FBitmap(MakeOwned<TBitmap>()),
      FCanvas(MakeOwned<TCanvas>()) {}

TWinControl::~TWinControl() {
  // Only for a window never freed through Free(): the children outlive it, parentless.
  for (TControl* C : FControls)
    C->FParent = nullptr;
}

void TWinControl::AfterConstruction() {
  inherited::AfterConstruction();
  FBrush->SetColor(Color());
  FBitmap->SetSize(Width(), Height());
  FCanvas->Bind(FBitmap->Surface());
  Invalidate();
}

void TWinControl::BeforeDestruction() {
  // A window takes the controls placed on it with it. Those already on their way out (owned
  // by this window, or freed further up the stack) are only let go.
  while (!FControls.empty()) {
    TControl* C = FControls.back();
    if (C->ComponentState().Contains(csDestroying)) {
      FControls.pop_back();
      C->FParent = nullptr;
    } else {
      C->Free();
    }
  }
  inherited::BeforeDestruction();
}

// --- TWinControl: children ---

TControl* TWinControl::Controls(int32_t Index) const {
  if (Index < 0 || Index >= ControlCount())
    throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
  return FControls[Index];
}

void TWinControl::AddChild(TControl* Child) {
  FControls.push_back(Child);
}

void TWinControl::DropChild(TControl* Child) {
  auto It = std::find(FControls.begin(), FControls.end(), Child);
  if (It != FControls.end()) FControls.erase(It);
}

void TWinControl::MoveChild(TControl* Child, bool ToFront) {
  auto It = std::find(FControls.begin(), FControls.end(), Child);
  if (It == FControls.end()) return;
  if (ToFront)
    std::rotate(It, It + 1, FControls.end());
  else
    std::rotate(FControls.begin(), It, It + 1);
  Child->Invalidate();
  if (Child->Align() != alNone) Realign();
}

void TWinControl::InsertControl(TControl* Child) {
  if (Child) Child->SetParent(this);
}

void TWinControl::RemoveControl(TControl* Child) {
  if (Child && Child->Parent() == this) Child->SetParent(nullptr);
}

bool TWinControl::ContainsControl(const TControl* Control) const {
  for (const TControl* C = Control; C; C = C->Parent())
    if (C == this) return true;
  return false;
}

TControl* TWinControl::ControlAtPos(TPoint P, bool AllowDisabled, bool AllLevels) const {
  for (auto It = FControls.rbegin(); It != FControls.rend(); ++It) {
    TControl* C = *It;
    if (!C->Visible() || (!C->Enabled() && !AllowDisabled) || !PtInRect(C->BoundsRect(), P))
      continue;
    const TPoint Local{P.X - C->Left(), P.Y - C->Top()};
    if (!C->CMHitTest(Local.X, Local.Y)) continue;
    if (AllLevels)
      if (auto* W = dynamic_cast<TWinControl*>(C))
        if (TControl* Deeper = W->ControlAtPos(Local, AllowDisabled, true)) return Deeper;
    return C;
  }
  return nullptr;
}

// --- TWinControl: painting ---

void TWinControl::Invalidate() {
  InvalidateRect(ClientRect());
}

void TWinControl::InvalidateRect(const TRect& R) {
  FInvalidRect = Union(FInvalidRect, Intersection(R, ClientRect()));
}

bool TWinControl::CanFocus() const {
  return FTabStop && Showing() && Enabled();
}

void TWinControl::CMEnter() {
  FFocused = true;
  Invalidate();
}

void TWinControl::CMExit() {
  FFocused = false;
  Invalidate();
}

void TWinControl::Update() {
  if (FPainting || !Visible()) return;
  if (NeedsPaint()) PrepareContent();
  if (!NeedsPaint()) return;
  const TRect Area = FInvalidRect;
  FInvalidRect = {};
  PaintArea(Area);
}

void TWinControl::InvalidateScreen(const TRect& R) {
  const TRect Part = Intersection(R, ClientRect());
  if (Part.IsEmpty()) return;
  for (const TRect& D : FScreenDamage)
    if (Intersection(D, Part) == Part) return;
  // Past a handful the host gains nothing from the detail: one rectangle holds them all.
  constexpr size_t MaxRects = 16;
  if (FScreenDamage.size() >= MaxRects) {
    TRect All = Part;
    for (const TRect& D : FScreenDamage)
      All = Union(All, D);
    FScreenDamage.assign(1, All);
    return;
  }
  FScreenDamage.push_back(Part);
}

std::vector<TRect> TWinControl::TakeScreenDamage() {
  return std::exchange(FScreenDamage, {});
}

void TWinControl::Repaint() {
  Invalidate();
  Update();
}

void TWinControl::PaintArea(const TRect& Area) {
  FPainting = true;
  TScopeExit Done{[this, &Area] {
    FPainting = false;
    MarkDirty(FCanvas->Surface());
    InvalidateScreen(Area);
  }};
  {
    TCanvasClip Clip(FCanvas.get(), Area);
    FCanvas->SetBrush(FBrush.get());
    if (!PaintsWholeClient()) FCanvas->FillRect(Area);
    Paint();
  }
  // A handler may take controls away while others paint: walk a copy, and skip the gone.
  const std::vector<TControl*> Children = FControls;
  for (TControl* C : Children) {
    auto* G = dynamic_cast<TGraphicControl*>(C);
    if (G && G->Visible() && std::find(FControls.begin(), FControls.end(), C) != FControls.end())
      PaintGraphicChild(G, Area);
  }
}

void TWinControl::PaintGraphicChild(TGraphicControl* Child, const TRect& Area) {
  const TRect Part = Intersection(Area, Child->BoundsRect());
  if (Part.IsEmpty()) return;
  TCanvasClip Clip(Child->Canvas(), Offset(Part, -Child->Left(), -Child->Top()));
  Child->Paint();
}

void TWinControl::PaintTo(TCanvas* Target, int32_t X, int32_t Y) {
  if (!Target || FPainting) return;
  PrepareContent();
  cairo_surface_t* View = CreateViewSurface(Target->Surface(), {X, Y, X + Width(), Y + Height()});
  if (!View) return;
  TScopeExit Release{[View] { cairo_surface_destroy(View); }};
  // Every canvas involved goes back to the backing bitmaps afterwards, also on an error.
  TScopeExit Restore{[this] {
    FCanvas->Bind(FBitmap->Surface());
    for (TControl* C : FControls)
      if (auto* G = dynamic_cast<TGraphicControl*>(C)) G->BindCanvas();
  }};
  FCanvas->Bind(View, Width(), Height());
  for (TControl* C : FControls)
    if (auto* G = dynamic_cast<TGraphicControl*>(C)) BindView(G->Canvas(), View, G->BoundsRect());
  PaintArea(ClientRect());
  for (TControl* C : std::vector<TControl*>(FControls)) {
    auto* W = dynamic_cast<TWinControl*>(C);
    if (!W || !W->Visible()) continue;
    TCanvas Inner;
    Inner.Bind(View, Width(), Height());
    W->PaintTo(&Inner, W->Left(), W->Top());
  }
  MarkDirty(Target->Surface());
}

// --- TWinControl: alignment ---

void TWinControl::AdjustClientRect(TRect&) const {}

void TWinControl::EnableAlign() {
  if (FAlignDisabled > 0 && --FAlignDisabled == 0) Realign();
}

void TWinControl::Realign() {
  if (FAlignDisabled > 0 || ComponentState().Contains(csDestroying)) return;
  DisableAlign();
  TScopeExit Done{[this] { --FAlignDisabled; }};
  AlignControls();
}

void TWinControl::AlignControls() {
  TRect R = ClientRect();
  AdjustClientRect(R);
  for (TAlign A : {alTop, alBottom, alLeft, alRight, alClient}) {
    for (TControl* C : std::vector<TControl*>(FControls)) {
      if (C->Align() != A || !C->Visible()) continue;
      const int32_t W = std::max(0, R.Width()), H = std::max(0, R.Height());
      switch (A) {
      case alTop:
        C->SetBounds(R.Left, R.Top, W, C->Height());
        R.Top += C->Height();
        break;
      case alBottom:
        C->SetBounds(R.Left, R.Bottom - C->Height(), W, C->Height());
        R.Bottom -= C->Height();
        break;
      case alLeft:
        C->SetBounds(R.Left, R.Top, C->Width(), H);
        R.Left += C->Width();
        break;
      case alRight:
        C->SetBounds(R.Right - C->Width(), R.Top, C->Width(), H);
        R.Right -= C->Width();
        break;
      default:
        C->SetBounds(R.Left, R.Top, W, H);
        break;
      }
    }
  }
}

// --- TWinControl: overrides ---

void TWinControl::BoundsChanged() {
  inherited::BoundsChanged();
  if (FBitmap->Width() == Width() && FBitmap->Height() == Height()) return;
  FBitmap->SetSize(Width(), Height());
  FCanvas->Bind(FBitmap->Surface());
  for (TControl* C : FControls)
    if (auto* G = dynamic_cast<TGraphicControl*>(C)) G->BindCanvas();
  Realign();
}

void TWinControl::FontChanged() {
  inherited::FontChanged();
  for (TControl* C : std::vector<TControl*>(FControls))
    if (C->ParentFont()) C->TakeParentFont();
}

void TWinControl::ColorChanged() {
  FBrush->SetColor(Color());
  inherited::ColorChanged();
  for (TControl* C : std::vector<TControl*>(FControls))
    if (C->ParentColor()) C->TakeParentColor();
}

// --- TCustomPanel ---

void Frame3D(TCanvas* Canvas, TRect& R, TColor Top, TColor Bottom, int32_t Width) {
  TBrush* B = Canvas->Brush();
  for (int32_t I = 0; I < Width && !R.IsEmpty(); ++I) {
    B->SetStyle(bsSolid);
    B->SetColor(Top);
    Canvas->FillRect({R.Left, R.Top, R.Right - 1, R.Top + 1});
    Canvas->FillRect({R.Left, R.Top + 1, R.Left + 1, R.Bottom - 1});
    B->SetColor(Bottom);
    Canvas->FillRect({R.Right - 1, R.Top, R.Right, R.Bottom});
    Canvas->FillRect({R.Left, R.Bottom - 1, R.Right - 1, R.Bottom});
    R = {R.Left + 1, R.Top + 1, R.Right - 1, R.Bottom - 1};
  }
}

namespace {

void BevelColors(TBevelCut Cut, TColor Face, TColor& Top, TColor& Bottom) {
  switch (Cut) {
  case bvLowered:
    Top = clBtnShadow;
    Bottom = clBtnHighlight;
    break;
  case bvRaised:
    Top = clBtnHighlight;
    Bottom = clBtnShadow;
    break;
  default:
    Top = Bottom = Face;
    break;
  }
}

} // namespace

TCustomPanel::TCustomPanel(TComponent* AOwner) : TWinControl(AOwner) {
  InitSize(185, 41);
  InitColor(clBtnFace, false);
}

void TCustomPanel::SetBevelInner(TBevelCut Value) {
  if (Value == FBevelInner) return;
  FBevelInner = Value;
  Realign();
  Invalidate();
}

void TCustomPanel::SetBevelOuter(TBevelCut Value) {
  if (Value == FBevelOuter) return;
  FBevelOuter = Value;
  Realign();
  Invalidate();
}

void TCustomPanel::SetBevelWidth(int32_t Value) {
  Value = std::clamp(Value, 1, MaxExtent);
  if (Value == FBevelWidth) return;
  FBevelWidth = Value;
  Realign();
  Invalidate();
}

void TCustomPanel::SetBorderWidth(int32_t Value) {
  Value = std::clamp(Value, 0, MaxExtent);
  if (Value == FBorderWidth) return;
  FBorderWidth = Value;
  Realign();
  Invalidate();
}

void TCustomPanel::SetBorderStyle(TBorderStyle Value) {
  if (Value == FBorderStyle) return;
  FBorderStyle = Value;
  Realign();
  Invalidate();
}

void TCustomPanel::SetAlignment(TAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  Invalidate();
}

void TCustomPanel::SetVerticalAlignment(TVerticalAlignment Value) {
  if (Value == FVerticalAlignment) return;
  FVerticalAlignment = Value;
  Invalidate();
}

void TCustomPanel::SetShowCaption(bool Value) {
  if (Value == FShowCaption) return;
  FShowCaption = Value;
  Invalidate();
}

int32_t TCustomPanel::FrameWidth() const {
  // Each term is at most MaxExtent: the sum stays far inside 32 bits.
  return (FBorderStyle == bsSingle ? 1 : 0) + (FBevelOuter != bvNone ? FBevelWidth : 0) +
         FBorderWidth + (FBevelInner != bvNone ? FBevelWidth : 0);
}

void TCustomPanel::AdjustClientRect(TRect& Rect) const {
  inherited::AdjustClientRect(Rect);
  const int32_t F = FrameWidth();
  Rect = {Rect.Left + F, Rect.Top + F, Rect.Right - F, Rect.Bottom - F};
}

void TCustomPanel::Paint() {
  inherited::Paint();
  TCanvas* C = Canvas();
  TRect R = ClientRect();
  TColor Top, Bottom;
  if (FBorderStyle == bsSingle) Frame3D(C, R, clWindowFrame, clWindowFrame, 1);
  if (FBevelOuter != bvNone) {
    BevelColors(FBevelOuter, Color(), Top, Bottom);
    Frame3D(C, R, Top, Bottom, FBevelWidth);
  }
  Frame3D(C, R, Color(), Color(), FBorderWidth);
  if (FBevelInner != bvNone) {
    BevelColors(FBevelInner, Color(), Top, Bottom);
    Frame3D(C, R, Top, Bottom, FBevelWidth);
  }
  C->Brush()->SetStyle(bsSolid);
  C->Brush()->SetColor(Color());
  C->FillRect(R);
  if (!FShowCaption || Caption().empty() || R.IsEmpty()) return;

  C->SetFont(Font());
  if (!Enabled()) C->Font()->SetColor(clGrayText);
  const TSize Size = C->TextExtent(Caption());
  int32_t X = R.Left, Y = R.Top;
  if (FAlignment == taCenter)
    X = R.Left + (R.Width() - Size.cx) / 2;
  else if (FAlignment == taRightJustify)
    X = R.Right - Size.cx;
  if (FVerticalAlignment == taVerticalCenter)
    Y = R.Top + (R.Height() - Size.cy) / 2;
  else if (FVerticalAlignment == taAlignBottom)
    Y = R.Bottom - Size.cy;
  C->Brush()->SetStyle(bsClear);
  C->TextRect(R, X, Y, Caption());
  C->Brush()->SetStyle(bsSolid);
}

void TCustomPanel::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  DefineCaptionProperty(Filer);
  Filer.Property("Alignment", this, &TCustomPanel::Alignment, &TCustomPanel::SetAlignment,
                 taCenter);
  Filer.Property("VerticalAlignment", this, &TCustomPanel::VerticalAlignment,
                 &TCustomPanel::SetVerticalAlignment, taVerticalCenter);
  Filer.Property("BevelInner", this, &TCustomPanel::BevelInner, &TCustomPanel::SetBevelInner,
                 bvNone);
  Filer.Property("BevelOuter", this, &TCustomPanel::BevelOuter, &TCustomPanel::SetBevelOuter,
                 bvRaised);
  Filer.Property("BevelWidth", this, &TCustomPanel::BevelWidth, &TCustomPanel::SetBevelWidth, 1);
  Filer.Property("BorderWidth", this, &TCustomPanel::BorderWidth, &TCustomPanel::SetBorderWidth, 0);
  Filer.Property("BorderStyle", this, &TCustomPanel::BorderStyle, &TCustomPanel::SetBorderStyle,
                 bsNone);
  DefineColorProperties(Filer, clBtnFace, false);
  DefineFontProperties(Filer);
  Filer.Property("DoubleBuffered", this, &TCustomPanel::DoubleBuffered,
                 &TCustomPanel::SetDoubleBuffered, false);
  Filer.Property("ShowCaption", this, &TCustomPanel::ShowCaption, &TCustomPanel::SetShowCaption,
                 true);
}

// --- TPaintBox ---

TPaintBox::TPaintBox(TComponent* AOwner) : TGraphicControl(AOwner) {
  InitSize(105, 105);
}

void TPaintBox::Paint() {
  TCanvas* C = Canvas();
  C->SetFont(Font());
  C->Brush()->SetColor(Color());
  if (ComponentState().Contains(csDesigning)) {
    // At design time an empty box still shows where it is.
    C->Pen()->SetStyle(psDash);
    C->Brush()->SetStyle(bsClear);
    C->Rectangle(ClientRect());
    C->Pen()->SetStyle(psSolid);
    C->Brush()->SetStyle(bsSolid);
  }
  if (FOnPaint) FOnPaint(this);
}

void TPaintBox::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  DefineColorProperties(Filer, clWindow, true);
  DefineFontProperties(Filer);
}

// --- Registration ---

void RegisterControlClasses() {
  RegisterClasses({ClassOf<TPanel>(), ClassOf<TPaintBox>(), ClassOf<TCheckListBox>()});
}

} // namespace kx
