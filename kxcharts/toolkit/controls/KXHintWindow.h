#pragma once
// A small pop-up window that shows one line of text near a point of the screen (the
// crosshair hint of a chart panel).
//
// Placement. The window is sized to its text and placed by Corner: 0 below and to the
// right of the point, 1 below and to the left, 2 above and to the right, 3 above and to the
// left, always HintGap pixels clear of the point so that the pointer does not hide it.
// Interval is the delay in milliseconds before an activated hint shows; a host counts the
// time through Tick. Headless, the window still records its text, place and visibility, so
// that tests read what a user would see.

#include <cstdint>
#include <string>

#include "kxcharts/toolkit/controls/KXControls.h"

namespace kx {

class TKXHintWindow : public TWinControl {
  KX_CLASS(TKXHintWindow, TWinControl)

public:
  static constexpr int32_t HintGap = 4;
  // Room between the frame and the text, left and right, then top and bottom.
  static constexpr int32_t MarginX = 4;
  static constexpr int32_t MarginY = 2;

private:
  int32_t FCorner = 0;
  int32_t FInterval = 0;
  TPoint FHintPoint;
  bool FPending = false;
  int32_t FWaited = 0;

public:
  // Hidden; info colours.
  explicit TKXHintWindow(TComponent* AOwner);

  // --- Properties ---

  int32_t Corner() const { return FCorner; }
  // 0 to 3 (see the header comment); any other number is taken as 0. Moves a showing hint.
  void SetCorner(int32_t Value);
  int32_t Interval() const { return FInterval; }
  // Milliseconds, 0 or more.
  void SetInterval(int32_t Value);
  // The text of the last ActivateHint.
  const std::string& Text() const { return Caption(); }
  // The screen point of the last ActivateHint.
  TPoint HintPoint() const { return FHintPoint; }
  // Activated, and waiting for its interval to pass.
  bool Pending() const { return FPending; }

  // --- Operations ---

  // Sets the text, sizes and places the window by Corner at ScreenPoint, and shows it: at
  // once with an interval of 0, else when Tick has counted the interval. A hint already
  // showing moves and changes at once.
  void ActivateHint(TPoint ScreenPoint, const std::string& Text);
  // Hides the window and drops a pending activation.
  void Hide();
  // Counts Milliseconds of time passing; a pending hint shows once its interval is over.
  void Tick(int32_t Milliseconds);
  // The rectangle (screen coordinates) that ActivateHint gives for Text at ScreenPoint.
  TRect CalcHintRect(TPoint ScreenPoint, const std::string& Text);

  // A frame in clInfoText around the text on clInfoBk.
  void Paint() override;
  // Shows above the forms: adds itself to Screen's pop-ups and hides.
  void AfterConstruction() override;
  void BeforeDestruction() override;
};

} // namespace kx
