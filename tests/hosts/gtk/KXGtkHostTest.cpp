// The GTK host in a real window on a virtual screen, driven by a real mouse (xdotool): a
// left drag zooms, an Alt drag pans, a move shows the crosshair and the hint, and the
// screen shows them. Run through kx-xvfb-run, which skips when Xvfb or xdotool is missing.
#include "hosts/gtk/KXGtkHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/legends/KXChartLegends.h"
#include "kxcharts/toolkit/controls/KXCheckListBox.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

// Runs xdotool with Args; the events it makes wait in the X server's queue for the host.
void Xdotool(const std::string& Args) {
  ASSERT_EQ(std::system(("xdotool " + Args).c_str()), 0) << "xdotool " << Args;
}

std::string At(TPoint P) {
  return std::to_string(P.X) + " " + std::to_string(P.Y);
}

class GtkHost : public testing::Test {
protected:
  void SetUp() override {
    if (!TKXGtkHost::Open()) GTEST_SKIP() << "no display: run under kx-xvfb-run";
    Form.reset(New<TForm>(nullptr));
    Form->SetBounds(60, 50, 520, 400);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetAlign(alClient);
    Panel->ChartShadow()->SetVisible(false);
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()}) {
      A->SetMinimum(-1);
      A->SetMaximum(100);
      A->SetMinimum(0);
    }
    auto* Line = New<TKXLineChart>(Form.get());
    Line->SetOptions(Line->Options() - coValueColors - coValueLabels);
    for (int I = 0; I <= 100; I += 5)
      Line->Values()->Add(I, 50 + 40 * std::sin(I * 0.1));
    Line->SetPanel(Panel);
    Host = MakeOwned<TKXGtkHost>();
    Host->ShowForm(Form.get(), "KX Charts host test");
    // Shown, laid out and painted once.
    for (int I = 0; I < 100 && Panel->ChartRect().IsEmpty(); ++I)
      Host->ProcessEvents(50);
    Host->ProcessEvents(300);
  }
  void TearDown() override { Screen.SetCursor(crDefault); }

  // The screen point at fractions of the plot rectangle.
  TPoint On(double FX, double FY) const {
    const TRect R = Panel->ChartRect();
    return Panel->ClientToScreen({R.Left + static_cast<int32_t>(std::lround(FX * R.Width())),
                                  R.Top + static_cast<int32_t>(std::lround(FY * R.Height()))});
  }
  // Lets the host take what the X server holds for it.
  void Settle() { Host->ProcessEvents(400); }

  TOwned<TForm> Form;
  TKXChartPanel* Panel = nullptr;
  TOwned<TKXGtkHost> Host;
};

TEST_F(GtkHost, ARealMouseZoomsPansAndTracksAndTheScreenShowsIt) {
  const TRect R = Panel->ChartRect();
  ASSERT_FALSE(R.IsEmpty());
  const double PX = 100.0 / R.Width(), PY = 100.0 / R.Height();

  // A left drag from 20 % to 60 % across and 20 % to 50 % down the plot.
  Xdotool("mousemove " + At(On(0.2, 0.2)) + " mousedown 1 mousemove " + At(On(0.4, 0.35)) +
          " mousemove " + At(On(0.6, 0.5)) + " mouseup 1");
  Settle();
  TKXChartAxis* B = Panel->BottomAxis();
  TKXChartAxis* L = Panel->LeftAxis();
  EXPECT_NEAR(B->ZoomMinimum(), 20, 1.5 * PX);
  EXPECT_NEAR(B->ZoomMaximum(), 60, 1.5 * PX);
  EXPECT_NEAR(L->ZoomMinimum(), 50, 1.5 * PY);
  EXPECT_NEAR(L->ZoomMaximum(), 80, 1.5 * PY);
  EXPECT_EQ(Panel->UserAction(), uaxNone);

  // Alt and a drag of a quarter of the plot to the right: the view moves a quarter of its
  // 40 units to the left.
  const TRect Z = Panel->ChartRect(); // the labels of the zoomed axes may move the plot
  const TPoint From = Panel->ClientToScreen({(Z.Left + Z.Right) / 2, (Z.Top + Z.Bottom) / 2});
  const TPoint To{From.X + Z.Width() / 4, From.Y};
  Xdotool("mousemove " + At(From) + " keydown alt mousedown 1 mousemove " +
          At({From.X + Z.Width() / 8, From.Y}) + " mousemove " + At(To) + " mouseup 1 keyup alt");
  Settle();
  EXPECT_NEAR(B->ZoomMinimum(), 10, 1.5 * 40.0 / Z.Width());
  EXPECT_NEAR(B->ZoomMaximum(), 50, 1.5 * 40.0 / Z.Width());
  EXPECT_NEAR(L->ZoomMinimum(), 50, 1.5 * PY) << "a level drag leaves the left axis";
  EXPECT_EQ(Host->Cursor(), crDefault) << "the hand went with the release";

  // A move over the plot: the crosshair and the hint, on the screen.
  Host->ProcessEvents(200);
  const TRect P = Panel->ChartRect();
  const TPoint Client{P.Left + P.Width() / 3, P.Top + P.Height() / 2};
  Xdotool("mousemove " + At(Panel->ClientToScreen(Client)));
  Settle();
  ASSERT_TRUE(Panel->MouseTrackingOn());
  EXPECT_EQ(Panel->MouseTrackingPoint(), Client);
  TKXHintWindow* Hint = Panel->HintWindow();
  ASSERT_TRUE(Hint->Visible());

  test::TTempDir Dir;
  const std::filesystem::path File = Dir.Path() / "screen.png";
  Host->SaveScreenshot(Form.get(), File);
  TOwned<TBitmap> Shot = MakeOwned<TBitmap>();
  Shot->LoadFromFile(File.string());
  ASSERT_EQ(Shot->Width(), Form->Width());
  // What the panel paints now, without the crosshair: the screen shows it XORed along the
  // crosshair's row and column, and as it is elsewhere.
  TOwned<TBitmap> Clean = MakeOwned<TBitmap>();
  Clean->SetSize(Panel->Width(), Panel->Height());
  Panel->PaintTo(Clean->Canvas(), 0, 0);
  const TPoint O = Panel->ClientToScreen({0, 0});
  const int32_t DX = O.X - Form->Left(), DY = O.Y - Form->Top();
  const auto Screen_ = [&](int32_t X, int32_t Y) { return Shot->Canvas()->Pixel(X + DX, Y + DY); };
  const auto Painted = [&](int32_t X, int32_t Y) { return Clean->Canvas()->Pixel(X, Y); };
  int32_t Crossed = 0;
  for (int32_t X = P.Left; X < P.Right; X += 7) {
    if (X == Client.X) continue;
    EXPECT_EQ(Screen_(X, Client.Y), TColor(Painted(X, Client.Y) ^ 0xA9A9A9)) << X;
    ++Crossed;
  }
  EXPECT_GT(Crossed, 20);
  for (int32_t Y = P.Top; Y < P.Bottom; Y += 7) {
    if (Y == Client.Y) continue;
    EXPECT_EQ(Screen_(Client.X, Y), TColor(Painted(Client.X, Y) ^ 0xA9A9A9)) << Y;
  }
  EXPECT_EQ(Screen_(P.Left + 3, P.Top + 3), Painted(P.Left + 3, P.Top + 3));
  // The hint is a window of its own above the form, with the axis values.
  const TPoint HintAt{Hint->Left() - Form->Left() + 2, Hint->Top() - Form->Top() + 2};
  EXPECT_EQ(Shot->Canvas()->Pixel(HintAt.X, HintAt.Y), ColorToRGB(clInfoBk));
  EXPECT_NE(Hint->Text().find(", "), std::string::npos);

  // Leaving the window takes both away.
  Xdotool("mousemove 5 5");
  Settle();
  EXPECT_FALSE(Panel->MouseTrackingOn());
  EXPECT_FALSE(Hint->Visible());
}

TEST_F(GtkHost, ACheckListTakesTheFocusFromARealPressAndTurnsChecksByKey) {
  auto* List = New<TCheckListBox>(Form.get());
  List->SetParent(Form.get());
  List->SetBounds(10, 10, 140, 100);
  List->SetStyle(lbOwnerDrawFixed);
  for (const char* S : {"one", "two", "three"})
    List->Items()->Add(S);
  Host->Sync();
  Settle();
  // A press on the first item's check box turns it; Down and a space turn the second.
  Xdotool("mousemove " + At(List->ClientToScreen({2 + 7, 2 + 8})) + " click 1");
  Settle();
  EXPECT_EQ(Host->FocusControl(), List);
  EXPECT_TRUE(List->Checked(0));
  Xdotool("key Down key space");
  Settle();
  EXPECT_EQ(List->ItemIndex(), 1);
  EXPECT_TRUE(List->Checked(1));
  EXPECT_FALSE(List->Checked(2));
}

TEST_F(GtkHost, ALegendListSwitchesAChartOfThePanelByARealPress) {
  auto* Second = New<TKXLineChart>(Form.get());
  Second->Values()->Add(0, 10);
  Second->Values()->Add(100, 90);
  Second->SetPanel(Panel);
  auto* List = New<TKXLegendListBox>(Form.get());
  List->SetParent(Form.get());
  List->SetBounds(300, 10, 180, 60);
  List->SetLegendStyle(lsCharts);
  List->SetPanel(Panel);
  Host->Sync();
  Settle();
  ASSERT_EQ(List->Count(), 2);
  Xdotool("mousemove " + At(List->ClientToScreen({2 + 7, 2 + 16 + 8})) + " click 1");
  Settle();
  EXPECT_FALSE(Second->Visible());
  EXPECT_FALSE(List->Checked(1)) << "rebuilt before the host painted it";
  EXPECT_FALSE(List->NeedsUpdate());
}

} // namespace
} // namespace kx
