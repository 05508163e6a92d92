#pragma once
// The GTK window host: the headless host's work (mouse delivery with capture, hover and
// leave, paints of what waits, the cursor the screen shows) done for real windows. Each
// form shown gets a GTK window whose drawing area shows the form's backing bitmaps; the
// screen's pop-ups (hint windows) get pop-up windows of their own, placed where they say.
//
// What reaches the screen. After every event it delivers (and every timer tick) the host
// paints the windows waiting for paint and asks GTK to show again only the parts that
// changed: what was painted, and what code drew outside Paint and reported (a rubber band,
// a crosshair). Showing is a copy of the backing bitmaps; nothing is repainted for it.
//
// Keys. A key pressed in a form's window goes to the window with the focus (KeyDown of the
// headless host), when it is one the controls know.
//
// Coordinates. A form's Left and Top follow where its drawing area lies on the screen, so
// that ClientToScreen gives real screen points and a hint shows next to the pointer.
//
// The library stays headless: only this host includes GTK.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"

namespace kx {

class TKXGtkHost : public TKXHost {
  KX_CLASS(TKXGtkHost, TKXHost)

public:
  // Opens the display (once per process); false when there is none to open.
  static bool Open();

  explicit TKXGtkHost(TComponent* AOwner = nullptr);
  ~TKXGtkHost() override;

  // Shows Form in a window of its own titled Title, at the form's size; the window's size
  // becomes the form's when the user changes it. Closing the window takes the form off the
  // host; the form itself stays the caller's. Raises EInvalidOperation when the display is
  // not open.
  void ShowForm(TForm* Form, const std::string& Title);
  // Runs the main loop until the last window is closed or Quit is called.
  void Run();
  void Quit();
  // Calls Tick every Interval milliseconds on the main loop while it answers true, and
  // shows what it changed. The host stops the timer when it goes.
  void AddTimer(int32_t Interval, std::function<bool()> Tick);
  // Lets the main loop handle what comes for Milliseconds (tests, screenshots).
  void ProcessEvents(int32_t Milliseconds);
  // Paints what waits for paint and shows what changed, the cursor and the pop-ups: what
  // the host does after every event. For code that changes controls between events.
  void Sync();
  // Reads what the screen shows where Form's window lies (pop-ups over it included) and
  // saves it as a PNG file. Raises Exception naming the file when it cannot.
  void SaveScreenshot(TForm* Form, const std::filesystem::path& FileName);

  void BeforeDestruction() override;

protected:
  void Notification(TComponent* AComponent, TOperation Operation) override;

private:
  struct TImpl;
  std::unique_ptr<TImpl> FImpl;
  friend struct TImpl;
};

} // namespace kx
