#include "hosts/gtk/KXGtkHost.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <iostream>
#include <vector>

namespace kx {

namespace {

// The name of the GDK cursor for a cursor number; nullptr for the window's default.
const char* CursorName(TCursor Cursor) {
  switch (Cursor) {
  case crHandPoint:
    return "pointer";
  case crCross:
    return "crosshair";
  case crIBeam:
    return "text";
  case crSizeAll:
    return "move";
  case crSizeWE:
  case crHSplit:
    return "ew-resize";
  case crSizeNS:
  case crVSplit:
    return "ns-resize";
  case crSizeNESW:
    return "nesw-resize";
  case crSizeNWSE:
    return "nwse-resize";
  case crHourGlass:
  case crSQLWait:
    return "wait";
  case crAppStart:
    return "progress";
  case crNo:
  case crNoDrop:
    return "not-allowed";
  case crHelp:
    return "help";
  case crNone:
    return "none";
  default:
    return nullptr;
  }
}

TShiftState KeysOf(guint State) {
  TShiftState Keys;
  if (State & GDK_SHIFT_MASK) Keys.Include(ssShift);
  if (State & GDK_CONTROL_MASK) Keys.Include(ssCtrl);
  if (State & GDK_MOD1_MASK) Keys.Include(ssAlt);
  return Keys;
}

bool ButtonOf(guint Button, TMouseButton& Out) {
  switch (Button) {
  case 1:
    Out = mbLeft;
    return true;
  case 2:
    Out = mbMiddle;
    return true;
  case 3:
    Out = mbRight;
    return true;
  default:
    return false;
  }
}

// The platform's virtual key number of a GDK key, 0 for one the controls do not know.
uint16_t VirtualKey(guint KeyVal) {
  switch (KeyVal) {
  case GDK_KEY_BackSpace:
    return VK_BACK;
  case GDK_KEY_Tab:
    return VK_TAB;
  case GDK_KEY_Return:
  case GDK_KEY_KP_Enter:
    return VK_RETURN;
  case GDK_KEY_Escape:
    return VK_ESCAPE;
  case GDK_KEY_space:
    return VK_SPACE;
  case GDK_KEY_Page_Up:
    return VK_PRIOR;
  case GDK_KEY_Page_Down:
    return VK_NEXT;
  case GDK_KEY_End:
    return VK_END;
  case GDK_KEY_Home:
    return VK_HOME;
  case GDK_KEY_Left:
    return VK_LEFT;
  case GDK_KEY_Up:
    return VK_UP;
  case GDK_KEY_Right:
    return VK_RIGHT;
  case GDK_KEY_Down:
    return VK_DOWN;
  case GDK_KEY_Delete:
    return VK_DELETE;
  default:
    break;
  }
  const guint Upper = gdk_keyval_to_upper(KeyVal);
  if ((Upper >= 'A' && Upper <= 'Z') || (Upper >= '0' && Upper <= '9'))
    return static_cast<uint16_t>(Upper);
  return 0;
}

TPoint ScreenPoint(double XRoot, double YRoot) {
  return {static_cast<int32_t>(std::floor(XRoot)), static_cast<int32_t>(std::floor(YRoot))};
}

// GTK calls back through C: nothing may leave a handler by an exception. What an
// application's handler raises is reported and the host goes on.
template <class F> void Guarded(F&& Fn) {
  try {
    Fn();
  } catch (const std::exception& E) {
    std::cerr << "kx: an event handler raised: " << E.what() << "\n";
  }
}

// The offset of W's client area from the top left of the form it lies on.
TPoint OffsetInForm(const TWinControl* W, const TWinControl* Form) {
  TPoint P{0, 0};
  for (const TControl* C = W; C && C != Form; C = C->Parent()) {
    P.X += C->Left();
    P.Y += C->Top();
  }
  return P;
}

} // namespace

// One shown form or pop-up and the GTK widgets that show it.
struct TShownWindow {
  TKXGtkHost* Host = nullptr;
  TWinControl* Control = nullptr;
  GtkWidget* Window = nullptr;
  GtkWidget* Area = nullptr;
  bool Popup = false;
  const char* CursorShown = nullptr;
};

struct TKXGtkHost::TImpl {
  TKXGtkHost* Host;
  std::vector<std::unique_ptr<TShownWindow>> Shown;
  std::vector<guint> Timers;
  GMainLoop* Loop = nullptr;
  double WheelRest = 0; // the part of a smooth scroll short of a notch

  explicit TImpl(TKXGtkHost* AHost) : Host(AHost) {}

  TShownWindow* Find(const TComponent* C) const {
    for (const auto& S : Shown)
      if (S->Control == C) return S.get();
    return nullptr;
  }

  void Drop(TShownWindow* S) {
    auto It = std::find_if(Shown.begin(), Shown.end(), [S](const auto& P) { return P.get() == S; });
    if (It == Shown.end()) return;
    std::unique_ptr<TShownWindow> Keep = std::move(*It);
    Shown.erase(It);
    if (Keep->Window) {
      g_signal_handlers_disconnect_matched(Keep->Window, G_SIGNAL_MATCH_DATA, 0, 0, nullptr,
                                           nullptr, Keep.get());
      g_signal_handlers_disconnect_matched(Keep->Area, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr,
                                           Keep.get());
      gtk_widget_destroy(Keep->Window);
    }
    if (!Keep->Popup && Loop &&
        std::none_of(Shown.begin(), Shown.end(), [](const auto& P) { return !P->Popup; }))
      g_main_loop_quit(Loop);
  }

  // A form's Left and Top are where its drawing area lies on the screen; an event tells it
  // (the root point less the point in the window).
  static void Place(TShownWindow* S, double XRoot, double YRoot, double X, double Y) {
    const TPoint Origin = ScreenPoint(XRoot - X, YRoot - Y);
    TWinControl* F = S->Control;
    if (F->Left() != Origin.X || F->Top() != Origin.Y)
      F->SetBounds(Origin.X, Origin.Y, F->Width(), F->Height());
  }

  GtkWidget* MakeWindow(TShownWindow* S, GtkWindowType Type) {
    S->Window = gtk_window_new(Type);
    S->Area = gtk_drawing_area_new();
    gtk_container_add(GTK_CONTAINER(S->Window), S->Area);
    g_signal_connect(S->Area, "draw", G_CALLBACK(OnDraw), S);
    return S->Window;
  }

  // --- Signals ---

  static gboolean OnDraw(GtkWidget*, cairo_t* Cr, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    Guarded([&] { TKXHost::Compose(S->Control, Cr, 0, 0); });
    return TRUE;
  }

  static gboolean OnButton(GtkWidget*, GdkEventButton* E, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    TMouseButton Button;
    // The platform's double click is a second press: GTK's extra 2BUTTON event is dropped,
    // so that presses and releases stay in pairs.
    if ((E->type != GDK_BUTTON_PRESS && E->type != GDK_BUTTON_RELEASE) ||
        !ButtonOf(E->button, Button))
      return FALSE;
    TKXGtkHost* Host = S->Host;
    Guarded([&] {
      Place(S, E->x_root, E->y_root, E->x, E->y);
      const TPoint P = ScreenPoint(E->x_root, E->y_root);
      if (E->type == GDK_BUTTON_PRESS)
        Host->MouseDown(P, Button, KeysOf(E->state));
      else
        Host->MouseUp(P, Button, KeysOf(E->state));
    });
    Host->Sync();
    return TRUE;
  }

  static gboolean OnMotion(GtkWidget*, GdkEventMotion* E, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    TKXGtkHost* Host = S->Host;
    Guarded([&] {
      Place(S, E->x_root, E->y_root, E->x, E->y);
      Host->MouseMove(ScreenPoint(E->x_root, E->y_root), KeysOf(E->state));
    });
    Host->Sync();
    return TRUE;
  }

  static gboolean OnLeave(GtkWidget*, GdkEventCrossing* E, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    if (E->detail == GDK_NOTIFY_INFERIOR) return FALSE;
    TKXGtkHost* Host = S->Host;
    Guarded([&] { Host->MouseExit(); });
    Host->Sync();
    return FALSE;
  }

  static gboolean OnScroll(GtkWidget*, GdkEventScroll* E, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    TKXGtkHost* Host = S->Host;
    TImpl* Self = Host->FImpl.get();
    int32_t Delta = 0;
    if (E->direction == GDK_SCROLL_UP) Delta = 120;
    if (E->direction == GDK_SCROLL_DOWN) Delta = -120;
    if (E->direction == GDK_SCROLL_SMOOTH) {
      Self->WheelRest -= E->delta_y * 120;
      Delta = static_cast<int32_t>(std::trunc(Self->WheelRest));
      Self->WheelRest -= Delta;
    }
    if (Delta == 0) return TRUE;
    Guarded([&] {
      Place(S, E->x_root, E->y_root, E->x, E->y);
      Host->MouseWheel(ScreenPoint(E->x_root, E->y_root), Delta, KeysOf(E->state));
    });
    Host->Sync();
    return TRUE;
  }

  static gboolean OnKey(GtkWidget*, GdkEventKey* E, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    const uint16_t Key = VirtualKey(E->keyval);
    if (Key == 0) return FALSE;
    TKXGtkHost* Host = S->Host;
    bool Taken = false;
    Guarded([&] { Taken = Host->KeyDown(Key, KeysOf(E->state)); });
    Host->Sync();
    return Taken;
  }

  // The form takes the drawing area's place on the screen and its size.
  static void Track(TShownWindow* S, int32_t Width, int32_t Height) {
    TWinControl* F = S->Control;
    gint X = F->Left(), Y = F->Top();
    if (GdkWindow* W = gtk_widget_get_window(S->Area)) gdk_window_get_origin(W, &X, &Y);
    Guarded([&] { F->SetBounds(X, Y, Width, Height); });
    S->Host->Sync();
  }

  static void OnSize(GtkWidget*, GdkRectangle* A, gpointer Data) {
    Track(static_cast<TShownWindow*>(Data), A->width, A->height);
  }

  static gboolean OnConfigure(GtkWidget*, GdkEventConfigure*, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    Track(S, S->Control->Width(), S->Control->Height());
    return FALSE;
  }

  static gboolean OnDelete(GtkWidget*, GdkEvent*, gpointer Data) {
    auto* S = static_cast<TShownWindow*>(Data);
    TKXGtkHost* Host = S->Host;
    Host->RemoveWindow(S->Control);
    Host->FImpl->Drop(S);
    return TRUE; // dropped and destroyed already
  }

  static gboolean OnTimer(gpointer Data) {
    auto* T = static_cast<std::pair<TKXGtkHost*, std::function<bool()>>*>(Data);
    bool Again = false;
    Guarded([&] { Again = T->second(); });
    T->first->Sync();
    return Again ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
  }

  // --- Showing ---

  void QueueDamage(TShownWindow* S, TWinControl* W) {
    const TPoint O = OffsetInForm(W, S->Control);
    for (const TRect& R : W->TakeScreenDamage())
      gtk_widget_queue_draw_area(S->Area, R.Left + O.X, R.Top + O.Y, R.Width(), R.Height());
    for (int32_t I = 0; I < W->ControlCount(); ++I)
      if (auto* C = dynamic_cast<TWinControl*>(W->Controls(I)); C && C->Visible())
        QueueDamage(S, C);
  }

  void SyncPopups() {
    // Pop-ups that went away: their controls are gone, only the pointers are compared.
    for (size_t I = Shown.size(); I-- > 0;) {
      TShownWindow* S = Shown[I].get();
      if (!S->Popup) continue;
      bool Present = false;
      for (int32_t K = 0; K < Screen.PopupCount() && !Present; ++K)
        Present = Screen.Popups(K) == S->Control;
      if (!Present) Drop(S);
    }
    for (int32_t K = 0; K < Screen.PopupCount(); ++K) {
      TWinControl* P = Screen.Popups(K);
      TShownWindow* S = Find(P);
      if (!S) {
        if (!P->Visible()) continue;
        auto New = std::make_unique<TShownWindow>();
        S = New.get();
        S->Host = Host;
        S->Control = P;
        S->Popup = true;
        Shown.push_back(std::move(New));
        MakeWindow(S, GTK_WINDOW_POPUP);
        gtk_window_set_type_hint(GTK_WINDOW(S->Window), GDK_WINDOW_TYPE_HINT_TOOLTIP);
      }
      if (!P->Visible()) {
        gtk_widget_hide(S->Window);
        continue;
      }
      gtk_window_move(GTK_WINDOW(S->Window), P->Left(), P->Top());
      gtk_window_resize(GTK_WINDOW(S->Window), std::max(1, P->Width()), std::max(1, P->Height()));
      gtk_widget_set_size_request(S->Area, P->Width(), P->Height());
      gtk_widget_show_all(S->Window);
      QueueDamage(S, P);
    }
  }

  void SyncCursors() {
    const char* Name = CursorName(Host->Cursor());
    for (const auto& S : Shown) {
      if (S->Popup || S->CursorShown == Name) continue;
      GdkWindow* W = gtk_widget_get_window(S->Area);
      if (!W) continue;
      GdkCursor* C = Name ? gdk_cursor_new_from_name(gdk_window_get_display(W), Name) : nullptr;
      gdk_window_set_cursor(W, C);
      if (C) g_object_unref(C);
      S->CursorShown = Name;
    }
  }
};

// --- TKXGtkHost ---

bool TKXGtkHost::Open() {
  static const bool Opened = gtk_init_check(nullptr, nullptr);
  return Opened;
}

TKXGtkHost::TKXGtkHost(TComponent* AOwner)
    : TKXHost(AOwner), FImpl(std::make_unique<TImpl>(this)) {}

TKXGtkHost::~TKXGtkHost() = default;

void TKXGtkHost::BeforeDestruction() {
  for (guint Id : FImpl->Timers)
    g_source_remove(Id);
  FImpl->Timers.clear();
  while (!FImpl->Shown.empty())
    FImpl->Drop(FImpl->Shown.back().get());
  inherited::BeforeDestruction();
}

void TKXGtkHost::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && FImpl)
    if (TShownWindow* S = FImpl->Find(AComponent); S && !S->Popup) FImpl->Drop(S);
  inherited::Notification(AComponent, Operation);
}

void TKXGtkHost::ShowForm(TForm* Form, const std::string& Title) {
  if (!Form) return;
  if (!Open()) throw EInvalidOperation("There is no display to show a window on");
  AddWindow(Form);
  if (FImpl->Find(Form)) return;
  auto New = std::make_unique<TShownWindow>();
  TShownWindow* S = New.get();
  S->Host = this;
  S->Control = Form;
  FImpl->Shown.push_back(std::move(New));
  GtkWidget* W = FImpl->MakeWindow(S, GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(W), Title.c_str());
  gtk_window_set_default_size(GTK_WINDOW(W), std::max(1, Form->Width()),
                              std::max(1, Form->Height()));
  gtk_window_move(GTK_WINDOW(W), Form->Left(), Form->Top());
  gtk_widget_add_events(S->Area, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK |
                                     GDK_POINTER_MOTION_MASK | GDK_LEAVE_NOTIFY_MASK |
                                     GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
  g_signal_connect(S->Area, "button-press-event", G_CALLBACK(TImpl::OnButton), S);
  g_signal_connect(S->Area, "button-release-event", G_CALLBACK(TImpl::OnButton), S);
  g_signal_connect(S->Area, "motion-notify-event", G_CALLBACK(TImpl::OnMotion), S);
  g_signal_connect(S->Area, "leave-notify-event", G_CALLBACK(TImpl::OnLeave), S);
  g_signal_connect(S->Area, "scroll-event", G_CALLBACK(TImpl::OnScroll), S);
  g_signal_connect(S->Area, "size-allocate", G_CALLBACK(TImpl::OnSize), S);
  g_signal_connect(W, "delete-event", G_CALLBACK(TImpl::OnDelete), S);
  g_signal_connect(W, "key-press-event", G_CALLBACK(TImpl::OnKey), S);
  g_signal_connect(W, "configure-event", G_CALLBACK(TImpl::OnConfigure), S);
  gtk_widget_show_all(W);
  Sync();
}

void TKXGtkHost::Run() {
  if (FImpl->Shown.empty()) return;
  FImpl->Loop = g_main_loop_new(nullptr, FALSE);
  g_main_loop_run(FImpl->Loop);
  g_main_loop_unref(FImpl->Loop);
  FImpl->Loop = nullptr;
}

void TKXGtkHost::Quit() {
  if (FImpl->Loop) g_main_loop_quit(FImpl->Loop);
}

void TKXGtkHost::AddTimer(int32_t Interval, std::function<bool()> Tick) {
  using TTimer = std::pair<TKXGtkHost*, std::function<bool()>>;
  auto* T = new TTimer(this, std::move(Tick));
  const guint Id =
      g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(std::max(1, Interval)),
                         TImpl::OnTimer, T, [](gpointer P) { delete static_cast<TTimer*>(P); });
  FImpl->Timers.push_back(Id);
}

void TKXGtkHost::ProcessEvents(int32_t Milliseconds) {
  const gint64 End = g_get_monotonic_time() + gint64(std::max(0, Milliseconds)) * 1000;
  do {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    g_usleep(2000);
  } while (g_get_monotonic_time() < End);
}

void TKXGtkHost::Sync() {
  Guarded([this] { ProcessPaints(); });
  // A timer that ran out is gone from GLib; its id may come back for another source, so
  // the list keeps only those still there.
  std::erase_if(FImpl->Timers,
                [](guint Id) { return !g_main_context_find_source_by_id(nullptr, Id); });
  for (const auto& S : FImpl->Shown)
    if (!S->Popup) FImpl->QueueDamage(S.get(), S->Control);
  FImpl->SyncPopups();
  FImpl->SyncCursors();
}

void TKXGtkHost::SaveScreenshot(TForm* Form, const std::filesystem::path& FileName) {
  TShownWindow* S = FImpl->Find(Form);
  GdkWindow* Area = S ? gtk_widget_get_window(S->Area) : nullptr;
  if (!Area) throw Exception("Cannot take a screenshot of a form that is not shown");
  gint X = 0, Y = 0;
  gdk_window_get_origin(Area, &X, &Y);
  GdkPixbuf* Shot = gdk_pixbuf_get_from_window(
      gdk_get_default_root_window(), X, Y, gdk_window_get_width(Area), gdk_window_get_height(Area));
  GError* Error = nullptr;
  const bool Saved = Shot && gdk_pixbuf_save(Shot, FileName.c_str(), "png", &Error, nullptr);
  if (Shot) g_object_unref(Shot);
  if (!Saved) {
    const std::string Why = Error ? Error->message : "the screen could not be read";
    if (Error) g_error_free(Error);
    throw Exception("Cannot write the file \"" + FileName.string() + "\": " + Why);
  }
}

} // namespace kx
