#include "kxcharts/toolkit/objects/KXObjectRect.h"

#include <cmath>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXObjectRect ---

void TKXObjectRect::SetLeft(int32_t Value) {
  SetRect({Value, FTop, FRight, FBottom});
}

void TKXObjectRect::SetTop(int32_t Value) {
  SetRect({FLeft, Value, FRight, FBottom});
}

void TKXObjectRect::SetRight(int32_t Value) {
  SetRect({FLeft, FTop, Value, FBottom});
}

void TKXObjectRect::SetBottom(int32_t Value) {
  SetRect({FLeft, FTop, FRight, Value});
}

void TKXObjectRect::SetRect(const TRect& Value) {
  if (Value == Rect()) return;
  FLeft = Value.Left;
  FTop = Value.Top;
  FRight = Value.Right;
  FBottom = Value.Bottom;
  Changed();
}

void TKXObjectRect::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Other = dynamic_cast<const TKXObjectRect*>(Source)) {
    SetRect(Other->Rect());
    return;
  }
  inherited::Assign(Source);
}

void TKXObjectRect::Changed() {
  if (FOnChange) FOnChange(this);
}

void TKXObjectRect::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Left", this, &TKXObjectRect::Left, &TKXObjectRect::SetLeft, FStart.Left);
  Filer.Property("Top", this, &TKXObjectRect::Top, &TKXObjectRect::SetTop, FStart.Top);
  Filer.Property("Right", this, &TKXObjectRect::Right, &TKXObjectRect::SetRight, FStart.Right);
  Filer.Property("Bottom", this, &TKXObjectRect::Bottom, &TKXObjectRect::SetBottom, FStart.Bottom);
}

// --- TKXPosition ---

namespace {

double NotNaN(double V) {
  return std::isnan(V) ? 0.0 : V;
}

} // namespace

TKXPosition::TKXPosition(double X, double Y) : FX(NotNaN(X)), FY(NotNaN(Y)) {}

void TKXPosition::SetX(double Value) {
  SetPosition(Value, FY);
}

void TKXPosition::SetY(double Value) {
  SetPosition(FX, Value);
}

void TKXPosition::SetPosition(double X, double Y) {
  X = NotNaN(X);
  Y = NotNaN(Y);
  if (X == FX && Y == FY) return;
  FX = X;
  FY = Y;
  Changed();
}

void TKXPosition::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Other = dynamic_cast<const TKXPosition*>(Source)) {
    SetPosition(Other->FX, Other->FY);
    return;
  }
  inherited::Assign(Source);
}

void TKXPosition::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("X", this, &TKXPosition::X, &TKXPosition::SetX, 0.0);
  Filer.Property("Y", this, &TKXPosition::Y, &TKXPosition::SetY, 0.0);
}

void TKXPosition::Changed() {
  if (FOnChange) FOnChange(this);
}

} // namespace kx
