#include "kxcharts/core/KXChartThemes.h"

#include <gtest/gtest.h>

#include "core/KXCoreTestSupport.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/legends/KXChartLegend.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::TTestChart;
using test::TTestForm;

struct ThemedForm {
  TOwned<TTestForm> Form{New<TTestForm>(nullptr)};
  TKXChartPanel* Panel = New<TKXChartPanel>(Form.get());

  ThemedForm() {
    Form->SetName("Form1");
    Panel->SetName("Panel1");
    Panel->SetBounds(0, 0, 320, 220);
    Panel->Header()->SetText("Sales");
    for (TKXChartAxis* A : {Panel->LeftAxis(), Panel->BottomAxis()}) {
      A->SetMinimum(0);
      A->SetMaximum(5);
    }
    for (int I = 0; I < 3; ++I) AddChart();
  }
  TTestChart* AddChart() {
    auto* C = New<TTestChart>(Form.get());
    C->SetName("Chart" + std::to_string(Panel->Charts()->Count()));
    C->SetPanel(Panel);
    C->Values()->Add({0, 1.0 + Panel->Charts()->Count()});
    C->Values()->Add({1, 4});
    return C;
  }
  std::vector<uint8_t> Pixels() const {
    auto B = test::MakeBitmap(320, 220);
    Panel->Draw(B->Canvas(), Panel->ClientRect());
    return test::PixelBytes(B.get());
  }
};

class EveryTheme : public testing::TestWithParam<std::string> {
protected:
  void SetUp() override {
    StartChartPanelModule();
    RegisterClasses({ClassOf<TTestForm>(), ClassOf<TTestChart>()});
    ColorListIndex = 0;
  }
};

// A theme sets stored properties only: what it did survives the form's round trip, and
// the texts the user gave stay.
TEST_P(EveryTheme, ReadsBackFromTheFormAsTheSamePicture) {
  ThemedForm A;
  ApplyChartTheme(A.Panel, GetParam());
  EXPECT_EQ(A.Panel->Header()->Text(), "Sales");
  const std::string Json = SaveFormToString(A.Form.get());
  TOwned<TTestForm> Copy(New<TTestForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* P2 = dynamic_cast<TKXChartPanel*>(Copy->FindComponent("Panel1"));
  ASSERT_NE(P2, nullptr);
  auto B = test::MakeBitmap(320, 220);
  P2->Draw(B->Canvas(), P2->ClientRect());
  EXPECT_EQ(test::PixelBytes(B.get()), A.Pixels()) << Json;
}

// Every theme starts from classic, so the one applied last holds whatever came before it:
// classic after another gives a new panel's picture back.
TEST_P(EveryTheme, ReplacesTheThemeBeforeIt) {
  ThemedForm Direct, Over;
  ApplyChartTheme(Direct.Panel, GetParam());
  for (const std::string& Before : ChartThemeNames()) {
    ApplyChartTheme(Over.Panel, Before);
    ApplyChartTheme(Over.Panel, GetParam());
    EXPECT_EQ(Over.Pixels(), Direct.Pixels()) << Before << " then " << GetParam();
  }
}

INSTANTIATE_TEST_SUITE_P(Themes, EveryTheme, testing::Values("classic", "light", "dark"));

TEST(ChartThemes, ClassicIsANewPanelsLookAndTheOthersPlainCharts) {
  StartChartPanelModule();
  ThemedForm Fresh, Themed;
  // A new chart takes the next colour of a count shared by all panels; a theme colours
  // charts by their place, as a panel's colour list does.
  Fresh.Panel->SetChartColorList(DefaultColorList);
  ApplyChartTheme(Themed.Panel, "dark");
  ApplyChartTheme(Themed.Panel, "classic");
  EXPECT_EQ(Themed.Pixels(), Fresh.Pixels());

  ApplyChartTheme(Themed.Panel, "light");
  const TKXChartTheme& Light = GetChartTheme("light");
  EXPECT_FALSE(Themed.Panel->ChartShadow()->Visible());
  EXPECT_FALSE(Themed.Panel->Gradient()->Visible());
  EXPECT_EQ(Themed.Panel->LeftAxis()->Grid()->GridPen()->Style(), psSolid);
  for (int32_t I = 0; I < 3; ++I) {
    TKXCustomChart* C = Themed.Panel->Charts()->Items(I);
    EXPECT_FALSE(C->Options().Contains(coValueColors));
    EXPECT_FALSE(C->Options().Contains(coValueLabels));
    EXPECT_EQ(C->GetColor(), Light.Palette[static_cast<size_t>(I)]) << "chart " << I;
  }
  // A chart added later takes the colour of its place by the same call.
  TTestChart* Late = Themed.AddChart();
  ApplyChartTheme(Late, "light");
  EXPECT_EQ(Late->GetColor(), Light.Palette[3]);
  EXPECT_FALSE(Late->Options().Contains(coValueLabels));
  ApplyChartTheme(Late, "classic");
  EXPECT_TRUE(Late->Options().Contains(coValueColors));
  EXPECT_TRUE(Late->Options().Contains(coValueLabels));
}

TEST(ChartThemes, UsersAddThemesAndUnknownOnesSayWhichThereAre) {
  StartChartPanelModule();
  TKXChartTheme Mine = GetChartTheme("light");
  Mine.Name = "mine";
  Mine.Palette = {clRed};
  Mine.LabelledKinds = {"TKXChart"}; // what the test charts derive from
  RegisterChartTheme(Mine);
  ThemedForm F;
  ApplyChartTheme(F.Panel, "mine");
  for (int32_t I = 0; I < 3; ++I) {
    const TKXCustomChart* C = F.Panel->Charts()->Items(I);
    EXPECT_EQ(C->GetColor(), clRed) << "a short palette repeats";
    EXPECT_TRUE(C->Options().Contains(coValueLabels)) << "a labelled kind keeps its labels";
    EXPECT_FALSE(C->Options().Contains(coValueColors));
  }
  Mine.Palette = {clBlue};
  RegisterChartTheme(Mine);
  EXPECT_EQ(GetChartTheme("mine").Palette.front(), clBlue) << "same name replaces";

  EXPECT_NE(test::MessageOf<EKXChartException>([] { GetChartTheme("Light"); })
                .find("\"Light\": the themes are classic, light, dark, mine"),
            std::string::npos);
  Mine.Palette.assign(11, clRed);
  EXPECT_NE(test::MessageOf<EKXChartException>([&] { RegisterChartTheme(Mine); })
                .find("has 11 colours"),
            std::string::npos);
  Mine.Name.clear();
  EXPECT_THROW(RegisterChartTheme(Mine), EKXChartException);
}

} // namespace
} // namespace kx
