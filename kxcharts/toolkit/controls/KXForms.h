#pragma once
// The root of a window tree (TForm) and the screen (Screen): the cursor that overrides every
// control's, and the top-level pop-ups (hint windows) a host shows above the forms.

#include <cstdint>
#include <vector>

#include "kxcharts/toolkit/controls/KXControls.h"

namespace kx {

// --- TForm ---

// A top-level window that owns the components placed on it. Its Left and Top are its place
// on the screen.
class TForm : public TWinControl {
  KX_CLASS(TForm, TWinControl)

private:
  TNotifyEvent FOnPaint;

public:
  // 320 x 240, colour clBtnFace.
  explicit TForm(TComponent* AOwner);

  const TNotifyEvent& OnPaint() const { return FOnPaint; }
  void SetOnPaint(TNotifyEvent Value) { FOnPaint = std::move(Value); }

  // Raises OnPaint, with the canvas font set to Font and its brush colour to Color.
  void Paint() override;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// --- TScreen ---

// The one screen. Not thread-safe: the user interface runs on one thread.
class TScreen {
private:
  TCursor FCursor = crDefault;
  std::vector<TWinControl*> FPopups;

public:
  constexpr TScreen() = default;
  TScreen(const TScreen&) = delete;
  TScreen& operator=(const TScreen&) = delete;

  // The cursor shown whatever lies under the mouse; crDefault leaves it to the control
  // there.
  TCursor Cursor() const { return FCursor; }
  void SetCursor(TCursor Value) { FCursor = Value; }

  // Top-level windows that show above the forms (hint windows), in the order they were
  // made. A pop-up adds itself when made and removes itself when freed.
  int32_t PopupCount() const { return static_cast<int32_t>(FPopups.size()); }
  // Raises EListError outside 0..PopupCount-1.
  TWinControl* Popups(int32_t Index) const;
  void AddPopup(TWinControl* Window);
  void RemovePopup(TWinControl* Window);
};

extern TScreen Screen;

// Registers TForm for the form reader, beside the controls of RegisterControlClasses.
void RegisterFormClasses();

} // namespace kx
