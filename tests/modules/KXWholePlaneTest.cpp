// Every chart kind drawn into the rectangle of the whole integer plane (INT32_MIN to
// INT32_MAX on both sides), alone and in a panel: the rectangle is as wide as an int32 can
// say, not -1, so the chart draws (its OnDraw is raised), and no pixel sum overflows on the
// way (UBSan); the dotted grid lines across it lay only the dashes that reach the bitmap.
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "kxcharts/KXChartModules.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace kx {
namespace {

class TPlaneForm : public TComponent {
  KX_CLASS(TPlaneForm, TComponent)
public:
  using TComponent::TComponent;
};

constexpr int32_t Lo = std::numeric_limits<int32_t>::min();
constexpr int32_t Hi = std::numeric_limits<int32_t>::max();
constexpr TRect Plane{Lo, Lo, Hi, Hi};

class WholePlane : public testing::TestWithParam<int> {};

TEST_P(WholePlane, EveryChartKindDrawsAloneAndInAPanel) {
  StartChartModules();
  const TKXCustomChartClass Class = GetChartClass(static_cast<TKXChartType>(GetParam()));
  if (!Class) GTEST_SKIP() << "no class registered for this kind";
  for (const bool InPanel : {false, true}) {
    SCOPED_TRACE(std::string(Class->ClassName()) + (InPanel ? " in a panel" : " alone"));
    TOwned<TPlaneForm> Form(New<TPlaneForm>(nullptr));
    auto* Chart = static_cast<TKXCustomChart*>(Class->Create(Form.get()));
    TKXChartPanel* Panel = nullptr;
    if (InPanel) {
      Panel = New<TKXChartPanel>(Form.get());
      Chart->SetPanel(Panel);
    }
    Chart->Values()->BeginUpdate();
    for (int32_t I = 0; I <= 4; ++I) {
      const double N[4] = {double(I), double(I), 1.0 + (I % 2), 1.0};
      Chart->Values()->Add(std::span<const double>(N, 4));
    }
    Chart->Values()->EndUpdate();
    int Drawn = 0;
    Chart->SetOnDraw([&Drawn](TObject*, TCanvas*, const TRect&) { ++Drawn; });
    TOwned<TBitmap> Bitmap(MakeOwned<TBitmap>());
    Bitmap->SetSize(8, 8);
    Bitmap->Canvas()->Brush()->SetColor(clWhite);
    Bitmap->Canvas()->FillRect({0, 0, 8, 8});
    EXPECT_EQ(Plane.Width(), Hi);
    if (Panel)
      Panel->Draw(Bitmap->Canvas(), Plane);
    else
      Chart->Draw(Bitmap->Canvas(), Plane);
    EXPECT_EQ(Drawn, 1);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, WholePlane,
                         testing::Range(1, int(TEnumCount<TKXChartType>)),
                         [](const auto& Info) {
                           return std::string(GetEnumName(static_cast<TKXChartType>(Info.param)));
                         });

} // namespace
} // namespace kx
