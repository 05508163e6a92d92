#include "kxcharts/core/KXChartGraphic.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

// Integer rectangle arithmetic in 64 bits, clamped back, so that no caller's rectangle
// makes an edge overflow.
int32_t AddClamped(int32_t A, int64_t B) {
  return static_cast<int32_t>(std::clamp<int64_t>(int64_t(A) + B, INT32_MIN, INT32_MAX));
}

bool HasArea(const TRect& R) {
  return int64_t(R.Right) > R.Left && int64_t(R.Bottom) > R.Top;
}

// The extent of a side, within the range of CanvasRound's results.
int32_t Extent(int32_t From, int32_t To) {
  return static_cast<int32_t>(
      std::clamp<int64_t>(int64_t(To) - From, -KXMaxCanvasInt, KXMaxCanvasInt));
}

} // namespace

void FitProportionally(int32_t W, int32_t H, int32_t CW, int32_t CH, int32_t& DW, int32_t& DH) {
  // The longer side of the picture decides first; if the other side then overflows the
  // room, that side decides instead.
  const double Ratio = double(W) / H;
  if (W > H) {
    DH = CanvasTrunc(CW / Ratio);
    if (DH > CH) {
      DW = CanvasTrunc(CH * Ratio);
      DH = CH;
    }
  } else {
    DW = CanvasTrunc(CH * Ratio);
    if (DW > CW) {
      DH = CanvasTrunc(CW / Ratio);
      DW = CW;
    }
  }
}

// --- TKXChartGraphic ---

void TKXChartGraphic::AfterConstruction() {
  inherited::AfterConstruction();
  Initialize();
  InitializeEvents();
}

void TKXChartGraphic::BeforeDestruction() {
  FOnChange = nullptr;
  inherited::BeforeDestruction();
}

void TKXChartGraphic::Initialize() {}
void TKXChartGraphic::InitializeEvents() {}

void TKXChartGraphic::SetVisible(bool Value) {
  if (Value == FVisible) return;
  FVisible = Value;
  VisibleChanged();
}

void TKXChartGraphic::SetOpacity(float Value) {
  if (Value == FOpacity) return;
  FOpacity = std::isnan(Value) ? 0.0f : std::clamp(Value, 0.0f, 1.0f);
  Changed();
}

void TKXChartGraphic::VisibleChanged() {
  Changed();
}

void TKXChartGraphic::Changed() {
  if (FOnChange) FOnChange(this);
}

void TKXChartGraphic::SenderChanged(TObject*) {
  Changed();
}

void TKXChartGraphic::Draw(TCanvas* Canvas, const TRect& ARect) {
  if (!Canvas) throw Exception("Cannot draw a " + ClassName() + " without a canvas");
  if (!Drawing(Canvas, ARect)) return;
  InternalDraw(Canvas, ARect);
  Drawn(Canvas, ARect);
}

void TKXChartGraphic::Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis*, TKXChartAxis*) {
  Draw(Canvas, ARect);
}

bool TKXChartGraphic::Drawing(TCanvas* Canvas, const TRect& ARect) {
  bool DoDraw = HasArea(ARect);
  if (FOnDrawing) FOnDrawing(this, Canvas, ARect, DoDraw);
  return DoDraw;
}

void TKXChartGraphic::Drawn(TCanvas* Canvas, const TRect& ARect) {
  if (FOnDraw) FOnDraw(this, Canvas, ARect);
}

TOwned<TKXChartGraphic> TKXChartGraphic::Clone() const {
  return TOwned<TKXChartGraphic>(
      static_cast<TKXChartGraphic*>(ClonePersistentClass(this, ClassType())));
}

void TKXChartGraphic::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* G = dynamic_cast<const TKXChartGraphic*>(Source)) {
    FVisible = G->FVisible;
    FOpacity = G->FOpacity;
    return;
  }
  inherited::Assign(Source);
}

void TKXChartGraphic::DefineProperties(TFiler& Filer) {
  // A new default must come before any declaration, and every descendant declares its own
  // properties after this inherited call.
  if (!FStoredVisible) Filer.Redefault("Visible", false);
  inherited::DefineProperties(Filer);
}

// --- Tiles ---

void TKXChartGraphic::TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image, int32_t Left,
                                int32_t Top, float Opacity) {
  if (!Image) return;
  TiledDraw(Canvas, ARect, Image, Image->Width(), Image->Height(), Left, Top, Opacity);
}

void TKXChartGraphic::TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image,
                                const TRect& ImageRect, float Opacity) {
  TiledDraw(Canvas, ARect, Image, Extent(ImageRect.Left, ImageRect.Right),
            Extent(ImageRect.Top, ImageRect.Bottom), ImageRect.Left, ImageRect.Top, Opacity);
}

void TKXChartGraphic::TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image,
                                int32_t ImageWidth, int32_t ImageHeight, int32_t Left, int32_t Top,
                                float Opacity) {
  if (!Canvas || !Image || Image->Empty() || ImageWidth < 1 || ImageHeight < 1 || !HasArea(ARect))
    return;
  TRect Visible;
  if (!KXIntersectRect(Visible, ARect, Canvas->ClipRect())) return;
  // The walk is from (Left, Top); tiles that end before the visible part are skipped
  // arithmetically, so the cost follows the visible tiles.
  auto FirstStep = [](int32_t From, int32_t Step, int32_t VisibleStart) {
    const int64_t Gap = int64_t(VisibleStart) - From;
    return Gap <= Step ? int64_t(From) : From + (Gap / Step - 1) * int64_t(Step);
  };
  const int64_t X0 = FirstStep(Left, ImageWidth, Visible.Left);
  const int64_t Y0 = FirstStep(Top, ImageHeight, Visible.Top);
  TCanvasClip Clip(Canvas, ARect);
  for (int64_t Y = Y0; Y < ARect.Bottom && Y < Visible.Bottom; Y += ImageHeight)
    for (int64_t X = X0; X < ARect.Right && X < Visible.Right; X += ImageWidth) {
      if (X + ImageWidth <= Visible.Left || Y + ImageHeight <= Visible.Top) continue;
      const TRect Tile{static_cast<int32_t>(X), static_cast<int32_t>(Y),
                       AddClamped(static_cast<int32_t>(X), ImageWidth),
                       AddClamped(static_cast<int32_t>(Y), ImageHeight)};
      Canvas->StretchDraw(Tile, Image, Opacity);
    }
}

// --- TKXChartGraphicArea ---

void TKXChartGraphicArea::Initialize() {
  inherited::Initialize();
  FBrush = MakeOwned<TBrush>();
  FBrush->SetColor(clBtnFace);
  FBrush->UseCurrentAsDefaults();
  FPen = MakeOwned<TPen>();
}

void TKXChartGraphicArea::InitializeEvents() {
  inherited::InitializeEvents();
  FBrush->SetOnChange(SenderChangedHandler());
  FPen->SetOnChange(SenderChangedHandler());
}

void TKXChartGraphicArea::BeforeDestruction() {
  inherited::BeforeDestruction();
  SetOnDrawing(nullptr);
  SetOnDraw(nullptr);
  FBrush.reset();
  FPen.reset();
}

void TKXChartGraphicArea::InternalDraw(TCanvas*, const TRect&) {}

bool TKXChartGraphicArea::Drawing(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetBrush(FBrush.get());
  Canvas->SetPen(FPen.get());
  return inherited::Drawing(Canvas, ARect);
}

void TKXChartGraphicArea::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* A = dynamic_cast<const TKXChartGraphicArea*>(Source)) {
    FBrush->Assign(A->FBrush.get());
    FPen->Assign(A->FPen.get());
  }
  inherited::Assign(Source);
}

// --- TKXCustomChartLabel ---

void TKXCustomChartLabel::Initialize() {
  inherited::Initialize();
  FFont = MakeOwned<TKXDeltaFont>();
  FFont->SetColor(clBlack);
  FFont->UseCurrentAsDefaults();
}

void TKXCustomChartLabel::InitializeEvents() {
  inherited::InitializeEvents();
  FFont->SetOnChange(SenderChangedHandler());
}

std::string TKXCustomChartLabel::GetText() const {
  return FText;
}

void TKXCustomChartLabel::SetText(const std::string& Value) {
  if (Value == FText) return;
  FText = Value;
  Changed();
}

void TKXCustomChartLabel::SetAlignment(TAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  Changed();
}

void TKXCustomChartLabel::SetAngle(int32_t Value) {
  if (Value != FAngle) {
    FAngle = Value % 360;
    RotateFont(FFont.get(), FAngle);
    Changed();
  } else if (FAngle != 0) {
    RotateFont(FFont.get(), FAngle);
  }
}

void TKXCustomChartLabel::SetFont(const TFont* Value) {
  FFont->Assign(Value);
  if (FAngle != 0) RotateFont(FFont.get(), FAngle);
}

bool TKXCustomChartLabel::Drawing(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetFont(FFont.get());
  return inherited::Drawing(Canvas, ARect);
}

void TKXCustomChartLabel::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const std::string Caption = GetText();
  if (Caption.empty() || !Visible() || Opacity() == 0) return;
  TPoint Offset;
  const TSize Size = GetRotatedTextExtent(Canvas, FAngle, Caption, Offset);
  TPoint Box;
  switch (FAlignment) {
  case taLeftJustify:
    Box = {ARect.Left, ARect.Top};
    break;
  case taRightJustify:
    Box = {AddClamped(ARect.Right, -int64_t(Size.cx)), ARect.Top};
    break;
  default: {
    const TPoint C = CanvasCenterPoint(ARect);
    Box = {AddClamped(C.X, -CanvasDiv(Size.cx, 2)), AddClamped(C.Y, -CanvasDiv(Size.cy, 2))};
  }
  }
  // A label has no brush of its own: whatever brush the canvas was left with must not box
  // the text in.
  Canvas->Brush()->SetStyle(bsClear);
  TCanvasOpacity Layer(Canvas, Opacity());
  Canvas->TextOut(AddClamped(Box.X, Offset.X), AddClamped(Box.Y, Offset.Y), Caption);
}

void TKXCustomChartLabel::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* L = dynamic_cast<const TKXCustomChartLabel*>(Source)) {
    FAngle = L->FAngle;
    FText = L->FText;
    FAlignment = L->FAlignment;
    FFont->Assign(L->FFont.get());
  }
  inherited::Assign(Source);
}

void TKXChartLabelMetaData::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Alignment", this, &TKXChartLabelMetaData::Alignment,
                 &TKXChartLabelMetaData::SetAlignment, taCenter);
  Filer.Property("Font", this, &TKXChartLabelMetaData::Font);
  Filer.Property("Angle", this, &TKXChartLabelMetaData::Angle, &TKXChartLabelMetaData::SetAngle, 0);
  Filer.Property("Opacity", this, &TKXChartLabelMetaData::Opacity,
                 &TKXChartLabelMetaData::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartLabelMetaData::Visible,
                 &TKXChartLabelMetaData::SetVisible, true);
}

void TKXChartLabel::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Text", this, &TKXChartLabel::Text, &TKXChartLabel::SetText);
}

// --- TKXChartShadow ---

void TKXChartShadow::Initialize() {
  inherited::Initialize();
  Brush()->SetColor(clBlack);
  Brush()->SetStyle(bsSolid);
  Brush()->UseCurrentAsDefaults();
}

void TKXChartShadow::SetSize(int32_t Value) {
  if (Value == FSize) return;
  FSize = Value;
  Changed();
}

void TKXChartShadow::SetDirection(TKXShadowDirection Value) {
  if (Value == FDirection) return;
  FDirection = Value;
  Changed();
}

void TKXChartShadow::SetStyle(TKXShapeStyle Value) {
  if (Value == shpImage) Value = shpRectangle;
  if (Value == FStyle) return;
  FStyle = Value;
  Changed();
}

int32_t TKXChartShadow::Offset(TCanvas* Canvas) const {
  if (!Canvas) return FSize;
  // A thick pen makes the thing larger, so its shadow reaches further.
  return CanvasRound(double(FSize) + TVclCanvasHelper::GetPenWidth(Canvas) - 1);
}

TRect TKXChartShadow::ShadowRect(const TRect& ARect, bool Constrained, TCanvas* Canvas) const {
  const int64_t S = Offset(Canvas);
  const auto& R = ARect;
  if (!Constrained) {
    const int64_t DX = FDirection == sdBottomRight || FDirection == sdTopRight ? S : -S;
    const int64_t DY = FDirection == sdBottomRight || FDirection == sdBottomLeft ? S : -S;
    return {AddClamped(R.Left, DX), AddClamped(R.Top, DY), AddClamped(R.Right, DX),
            AddClamped(R.Bottom, DY)};
  }
  switch (FDirection) {
  case sdBottomLeft:
    return {R.Left, AddClamped(R.Top, S), AddClamped(R.Right, -S), R.Bottom};
  case sdTopRight:
    return {AddClamped(R.Left, S), R.Top, R.Right, AddClamped(R.Bottom, -S)};
  case sdTopLeft:
    return {R.Left, R.Top, AddClamped(R.Right, -S), AddClamped(R.Bottom, -S)};
  default:
    return {AddClamped(R.Left, S), AddClamped(R.Top, S), R.Right, R.Bottom};
  }
}

TRect TKXChartShadow::NonShadowRect(const TRect& ARect, bool Constrained, TCanvas* Canvas) const {
  if (!Constrained) return ARect;
  const int64_t S = Offset(Canvas);
  const TRect R = ShadowRect(ARect, true, nullptr);
  const int64_t DX = FDirection == sdBottomRight || FDirection == sdTopRight ? -S : S;
  const int64_t DY = FDirection == sdBottomRight || FDirection == sdBottomLeft ? -S : S;
  return {AddClamped(R.Left, DX), AddClamped(R.Top, DY), AddClamped(R.Right, DX),
          AddClamped(R.Bottom, DY)};
}

void TKXChartShadow::Draw(TCanvas* Canvas, const TRect& ARect, TKXShapeStyle AStyle,
                          float AOpacity) {
  struct TRestore {
    TKXChartShadow* Self;
    TKXShapeStyle Style;
    float Opacity;
    ~TRestore() {
      Self->FStyle = Style;
      Self->FOpacity = Opacity;
    }
  } Restore{this, FStyle, FOpacity};
  FStyle = AStyle == shpImage ? shpRectangle : AStyle;
  FOpacity = std::isnan(AOpacity) ? 0.0f : std::clamp(AOpacity, 0.0f, 1.0f);
  Draw(Canvas, ARect);
}

void TKXChartShadow::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const TRect R = ShadowRect(ARect, true, nullptr);
  const auto Flat = static_cast<TKXShapeStyle>(FStyle >= shpRectangle3D ? FStyle - 12 : FStyle);
  DrawShape(Canvas, R, nullptr, Flat, true, clBtnHighlight, clBtnShadow, 3, Opacity());
}

void TKXChartShadow::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* S = dynamic_cast<const TKXChartShadow*>(Source)) {
    FSize = S->FSize;
    FDirection = S->FDirection;
  }
  inherited::Assign(Source);
}

void TKXChartShadow::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Brush", this, &TKXChartShadow::Brush);
  Filer.Property("Direction", this, &TKXChartShadow::Direction, &TKXChartShadow::SetDirection,
                 sdBottomRight);
  Filer.Property("Size", this, &TKXChartShadow::Size, &TKXChartShadow::SetSize, 3);
  Filer.Property("Opacity", this, &TKXChartShadow::Opacity, &TKXChartShadow::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartShadow::Visible, &TKXChartShadow::SetVisible, true);
}

// --- TKXChartGradient ---

void TKXChartGradient::SetDirection(TGradientDirection Value) {
  if (Value == FDirection) return;
  FDirection = Value;
  Changed();
}

void TKXChartGradient::SetCoarseness(int32_t Value) {
  Value = std::max(Value, 1);
  if (Value == FCoarseness) return;
  FCoarseness = Value;
  Changed();
}

void TKXChartGradient::SetStartColor(TColor Value) {
  if (Value == FStartColor) return;
  FStartColor = Value;
  Changed();
}

void TKXChartGradient::SetEndColor(TColor Value) {
  if (Value == FEndColor) return;
  FEndColor = Value;
  Changed();
}

void TKXChartGradient::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  DirectionGradient(Canvas, ARect, {FStartColor, FEndColor}, FDirection, FCoarseness, Opacity());
}

void TKXChartGradient::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* G = dynamic_cast<const TKXChartGradient*>(Source)) {
    FCoarseness = G->FCoarseness;
    FEndColor = G->FEndColor;
    FStartColor = G->FStartColor;
    FDirection = G->FDirection;
  }
  inherited::Assign(Source);
}

void TKXChartGradient::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Direction", this, &TKXChartGradient::Direction, &TKXChartGradient::SetDirection,
                 gdTopToBottom);
  Filer.Property("Coarseness", this, &TKXChartGradient::Coarseness,
                 &TKXChartGradient::SetCoarseness, 1);
  Filer.Property("StartColor", this, &TKXChartGradient::StartColor,
                 &TKXChartGradient::SetStartColor, clYellow);
  Filer.Property("EndColor", this, &TKXChartGradient::EndColor, &TKXChartGradient::SetEndColor,
                 clWhite);
  Filer.Property("Opacity", this, &TKXChartGradient::Opacity, &TKXChartGradient::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartGradient::Visible, &TKXChartGradient::SetVisible, true);
}

// --- TKXChartImageArea ---

void TKXChartImageArea::Initialize() {
  inherited::Initialize();
  FImage = MakeOwned<TPicture>();
}

void TKXChartImageArea::InitializeEvents() {
  inherited::InitializeEvents();
  FImage->SetOnChange(SenderChangedHandler());
}

void TKXChartImageArea::SetImageOptions(TImageOptions Value) {
  if (Value == FImageOptions) return;
  const TImageOptions Old = FImageOptions;
  auto NewlyOn = [&](TImageOption O) { return Value.Contains(O) && !Old.Contains(O); };
  if (NewlyOn(ioCenter)) Value -= TImageOptions{ioStretch, ioTile};
  if (NewlyOn(ioTile)) Value -= TImageOptions{ioCenter, ioStretch};
  if (NewlyOn(ioStretch)) Value -= TImageOptions{ioCenter, ioProportional, ioTile};
  if (NewlyOn(ioProportional)) Value -= TImageOptions{ioStretch};
  FImageOptions = Value;
  // A picture loaded earlier takes the new transparency at once, not at its next change.
  if (Value.Contains(ioTransparent) != Old.Contains(ioTransparent)) ApplyTransparency();
  Changed();
}

void TKXChartImageArea::ApplyTransparency() {
  // Raises the picture's change when it differs, which comes back here through
  // SenderChanged and then finds nothing to change.
  if (TGraphic* G = FImage->Graphic()) G->SetTransparent(FImageOptions.Contains(ioTransparent));
}

void TKXChartImageArea::SenderChanged(TObject* Sender) {
  if (Sender == FImage.get()) ApplyTransparency();
  inherited::SenderChanged(Sender);
}

TRect TKXChartImageArea::DestRect(const TRect& ARect) const {
  const int32_t W = FImage->Width(), H = FImage->Height();
  const int32_t CW = Extent(ARect.Left, ARect.Right), CH = Extent(ARect.Top, ARect.Bottom);
  int32_t DW = W, DH = H;
  const bool Proportional = FImageOptions.Contains(ioProportional);
  if (FImageOptions.Contains(ioStretch) || (Proportional && (W > CW || H > CH))) {
    DW = CW;
    DH = CH;
    if (Proportional && W > 0 && H > 0) {
      FitProportionally(W, H, CW, CH, DW, DH);
    }
  }
  TRect D{ARect.Left, ARect.Top, AddClamped(ARect.Left, DW), AddClamped(ARect.Top, DH)};
  if (FImageOptions.Contains(ioCenter)) {
    const int32_t DX = CanvasDiv(Extent(DW, CW), 2), DY = CanvasDiv(Extent(DH, CH), 2);
    D = {AddClamped(D.Left, DX), AddClamped(D.Top, DY), AddClamped(D.Right, DX),
         AddClamped(D.Bottom, DY)};
  }
  return D;
}

void TKXChartImageArea::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  TGraphic* G = FImage->Graphic();
  if (!G || G->Empty()) return;
  const TRect D = DestRect(ARect);
  if (!FImageOptions.Contains(ioTile))
    Canvas->StretchDraw(D, G, Opacity());
  else
    TiledDraw(Canvas, ARect, G, Extent(D.Left, D.Right), Extent(D.Top, D.Bottom), ARect.Left,
              ARect.Top, Opacity());
}

void TKXChartImageArea::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* A = dynamic_cast<const TKXChartImageArea*>(Source)) {
    FImage->Assign(A->FImage.get());
    FImageOptions = A->FImageOptions;
  }
  inherited::Assign(Source);
}

// --- TKXChartHeader ---

void TKXChartHeader::Initialize() {
  inherited::Initialize();
  FFont = MakeOwned<TKXDeltaFont>();
  FHeight = CanvasRound(FFont->Size() * 3.0);
  FAlignment = taCenter;
  SetImageOptions(ImageOptions() - TImageOptions{ioCenter});
  SetImageOptions(ImageOptions() + TImageOptions{ioStretch});
  Brush()->SetStyle(bsClear);
  Brush()->UseCurrentAsDefaults();
}

void TKXChartHeader::InitializeEvents() {
  inherited::InitializeEvents();
  FFont->SetOnChange(SenderChangedHandler());
}

void TKXChartHeader::AfterConstruction() {
  inherited::AfterConstruction();
  const TFont* OwnerFont = FOwnerFont;
  FOwnerFont = nullptr;
  if (OwnerFont) FFont->Assign(OwnerFont);
  FFont->SetColor(FIsHeader ? clBlue : clRed);
  if (OwnerFont) FFont->SetBaseFont(OwnerFont);
  FFont->UseCurrentAsDefaults();
}

void TKXChartHeader::SetAlignment(TAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  Changed();
}

void TKXChartHeader::SetAngle(int32_t Value) {
  if (Value == FAngle) return;
  FAngle = Value % 360;
  RotateFont(FFont.get(), FAngle);
  Changed();
}

void TKXChartHeader::SetText(const std::string& Value) {
  if (Value == FText) return;
  FText = Value;
  Changed();
}

void TKXChartHeader::SetFont(const TFont* Value) {
  FFont->Assign(Value);
  if (FAngle != 0) RotateFont(FFont.get(), FAngle);
}

void TKXChartHeader::SetHeight(int32_t Value) {
  if (Value == FHeight) return;
  FHeight = std::max(Value, FFont->Height());
  Changed();
}

void TKXChartHeader::SetWidth(int32_t Value) {
  if (Value == FWidth) return;
  FWidth = Value;
  Changed();
}

bool TKXChartHeader::Drawing(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetFont(FFont.get());
  return inherited::Drawing(Canvas, ARect);
}

void TKXChartHeader::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  TRect R = ARect;
  if (FIsHeader)
    R.Bottom = AddClamped(R.Top, FHeight);
  else
    R.Top = AddClamped(R.Bottom, -int64_t(FHeight));
  inherited::InternalDraw(Canvas, R);
  Canvas->SetFont(FFont.get());
  const int32_t Turn = FAngle % 180;
  const bool Vertical = Turn >= 46 && Turn <= 134;
  const TSize Size = Canvas->TextExtent(FText);
  int32_t X, Y;
  switch (FAlignment) {
  case taLeftJustify:
    X = R.Left;
    Y = Vertical ? AddClamped(R.Bottom, -int64_t(Size.cy)) : R.Top;
    break;
  case taRightJustify:
    X = AddClamped(R.Right, -int64_t(Size.cx));
    Y = R.Top;
    break;
  default: {
    const TPoint C = CanvasCenterPoint(R);
    X = AddClamped(C.X, -CanvasDiv(Size.cx, 2));
    Y = AddClamped(C.Y, -CanvasDiv(Size.cy, 2));
  }
  }
  TCanvasOpacity Layer(Canvas, Opacity());
  Canvas->TextRect(R, X, Y, FText);
}

void TKXChartHeader::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* H = dynamic_cast<const TKXChartHeader*>(Source)) {
    FAngle = H->FAngle;
    FText = H->FText;
    FAlignment = H->FAlignment;
    FHeight = H->FHeight;
    FWidth = H->FWidth;
    FFont->Assign(H->FFont.get());
  }
  inherited::Assign(Source);
}

void TKXChartHeader::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Alignment", this, &TKXChartHeader::Alignment, &TKXChartHeader::SetAlignment,
                 taCenter);
  Filer.Property("Angle", this, &TKXChartHeader::Angle, &TKXChartHeader::SetAngle, 0);
  Filer.Property("Text", this, &TKXChartHeader::Text, &TKXChartHeader::SetText);
  Filer.Property("Font", this, &TKXChartHeader::Font);
  Filer.Property("Height", this, &TKXChartHeader::Height, &TKXChartHeader::SetHeight);
  Filer.Property("Width", this, &TKXChartHeader::Width, &TKXChartHeader::SetWidth, 0);
  Filer.Property("Brush", this, &TKXChartHeader::Brush);
  Filer.Property("Pen", this, &TKXChartHeader::Pen);
  Filer.Property("Image", this, &TKXChartHeader::Image);
  Filer.Property("ImageOptions", this, &TKXChartHeader::ImageOptions,
                 &TKXChartHeader::SetImageOptions, TImageOptions{ioStretch});
  Filer.Property("Opacity", this, &TKXChartHeader::Opacity, &TKXChartHeader::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartHeader::Visible, &TKXChartHeader::SetVisible, true);
}

} // namespace kx
