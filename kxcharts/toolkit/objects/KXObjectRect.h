#pragma once
// Two small persistent values that owners embed and watch: four sides (margins) and a
// position. Each reports a change of any of its numbers through OnChange, so the owner
// repaints, and copies itself by Assign.

#include <cstdint>

#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// Left, top, right and bottom, read as four independent sides (margins in pixels or per
// cent), not as a rectangle in normal form: no side is reordered or clamped.
//
// Stored as Left, Top, Right and Bottom against the sides it was made with: an owner that
// starts its margins at (3, 4, 3, 4) writes only the sides that differ from those, and
// nothing at all while none does, and reads them back into margins made the same way.
class TKXObjectRect : public TPersistent {
  KX_CLASS(TKXObjectRect, TPersistent)

public:
  TKXObjectRect() = default;
  explicit TKXObjectRect(const TRect& R)
      : FLeft(R.Left), FTop(R.Top), FRight(R.Right), FBottom(R.Bottom), FStart(R) {}

  int32_t Left() const { return FLeft; }
  void SetLeft(int32_t Value);
  int32_t Top() const { return FTop; }
  void SetTop(int32_t Value);
  int32_t Right() const { return FRight; }
  void SetRight(int32_t Value);
  int32_t Bottom() const { return FBottom; }
  void SetBottom(int32_t Value);
  // The four sides as one rectangle; setting them all raises one change at most.
  TRect Rect() const { return {FLeft, FTop, FRight, FBottom}; }
  void SetRect(const TRect& Value);

  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // From another TKXObjectRect: takes its four sides, with one change when any differs.
  void Assign(const TPersistent* Source) override;

protected:
  // Raises OnChange; runs after every effective change.
  virtual void Changed();
  // Left, Top, Right, Bottom, each with the side it was made with as its default.
  void DefineProperties(TFiler& Filer) override;

private:
  int32_t FLeft = 0;
  int32_t FTop = 0;
  int32_t FRight = 0;
  int32_t FBottom = 0;
  // The sides the owner made it with: what a stored form leaves out.
  TRect FStart;
  TNotifyEvent FOnChange;
};

// A point in free units (a fraction of a rectangle, an offset in axis units). NaN is
// stored as 0, so that a position always compares equal to itself.
class TKXPosition : public TPersistent {
  KX_CLASS(TKXPosition, TPersistent)

public:
  TKXPosition() = default;
  TKXPosition(double X, double Y);

  double X() const { return FX; }
  void SetX(double Value);
  double Y() const { return FY; }
  void SetY(double Value);
  // Both at once, with one change at most.
  void SetPosition(double X, double Y);

  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // From another TKXPosition: takes X and Y, with one change when either differs.
  void Assign(const TPersistent* Source) override;

protected:
  // Raises OnChange; runs after every effective change.
  virtual void Changed();
  // X, Y (each left out at 0).
  void DefineProperties(TFiler& Filer) override;

private:
  double FX = 0;
  double FY = 0;
  TNotifyEvent FOnChange;
};

} // namespace kx
