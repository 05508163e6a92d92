// The chart panel's layout and paint: where each element lands, in which order it paints,
// what a narrowed paint leaves out, the gradient's buffer, fonts reaching every element,
// construction and the stored form.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/KXCoreTestSupport.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::TTestForm;

// An axis that measures fixed extents, so that the layout can be checked to the pixel
// whatever the axis itself would need for its labels.
class TFixedAxis : public TKXChartAxis {
  KX_CLASS(TFixedAxis, TKXChartAxis)

public:
  using TKXChartAxis::TKXChartAxis;
  int32_t Extent = 0;
  std::vector<TRect> Measured;
  void CalculateBounds(TCanvas*, const TRect& ARect) override {
    Measured.push_back(ARect);
    FWidth = IsVertical() ? Extent : 0;
    FHeight = IsVertical() ? 0 : Extent;
  }
};

// A panel whose axes measure left 30, top 15, right 25, bottom 20.
class TFixedPanel : public TKXChartPanel {
  KX_CLASS(TFixedPanel, TKXChartPanel)

public:
  using TKXChartPanel::TKXChartPanel;

protected:
  TOwned<TKXChartAxis> CreateAxis(TKXChartAxisLocation Location) override {
    TOwned<TKXChartAxis> A = TKXChartPanel::CreateAxis(Location);
    auto Fixed = TOwned<TFixedAxis>(New<TFixedAxis>(this));
    Fixed->Assign(A.get());
    Fixed->SetLocation(Location);
    Fixed->SetVisible(A->Visible());
    Fixed->Extent = Location == calLeft    ? 30
                    : Location == calTop   ? 15
                    : Location == calRight ? 25
                                           : 20;
    Fixed->SetOnChange(A->OnChange());
    return Fixed;
  }
};

// A chart that notes the rectangle it was given and paints a square at each value (at its
// index across, its number up), plus a mark 3 pixels left of its rectangle to show whether
// the canvas was clipped.
class TMarkChart : public test::TTestChart {
  KX_CLASS(TMarkChart, test::TTestChart)

public:
  using test::TTestChart::TTestChart;
  std::vector<TRect> Given;

protected:
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override {
    Given.push_back(ARect);
    Canvas->Brush()->SetStyle(bsSolid);
    Canvas->Brush()->SetColor(GetColor());
    Canvas->FillRect({ARect.Left - 4, ARect.Top + 1, ARect.Left - 2, ARect.Top + 3});
    for (int32_t I = 0; I < Values()->Count(); ++I) {
      const TKXChartValue* V = Values()->Items(I);
      const int32_t X = HorizontalAxis()->AxisToPixel(static_cast<double>(I));
      const int32_t Y = VerticalAxis()->AxisToPixel(V->Value());
      Canvas->FillRect({X - 2, Y - 2, X + 3, Y + 3});
    }
  }
};

class ChartPanelLayout : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TTestForm>(nullptr));
    Form->SetName("Form1");
    Panel = New<TFixedPanel>(Form.get());
    Panel->SetName("Panel1");
    Record(&Rects, nullptr);
  }

  // Notes, for every element the panel paints, the rectangle its OnDrawing receives
  // (into Into) and the order of their OnDraw events (into Order).
  void Record(std::map<std::string, TRect>* Into, std::vector<std::string>* Order) {
    auto Hook = [Into, Order](const std::string& Name) {
      return std::pair<TKXChartDrawingEvent, TKXChartDrawEvent>(
          [Into, Name](TObject*, TCanvas*, const TRect& R, bool&) {
            if (Into) (*Into)[Name] = R;
          },
          [Order, Name](TObject*, TCanvas*, const TRect&) {
            if (Order) Order->push_back(Name);
          });
    };
#define KX_HOOK(Element)                                                                           \
  {                                                                                                \
    auto H = Hook(#Element);                                                                       \
    Panel->SetOnDrawing##Element(H.first);                                                         \
    Panel->SetOnDraw##Element(H.second);                                                           \
  }
    KX_HOOK(Background)
    KX_HOOK(Gradient)
    KX_HOOK(Header)
    KX_HOOK(Footer)
    KX_HOOK(ChartBackground)
    KX_HOOK(BottomAxis)
    KX_HOOK(TopAxis)
    KX_HOOK(LeftAxis)
    KX_HOOK(RightAxis)
    KX_HOOK(Legend)
    KX_HOOK(Foreground)
    KX_HOOK(ChartShadow)
#undef KX_HOOK
  }

  void SetLegendLines(std::initializer_list<const char*> Lines) {
    auto L = MakeOwned<TStringList>();
    for (const char* S : Lines)
      L->Add(S);
    Panel->Legend()->SetFixed(true);
    Panel->Legend()->SetLines(L.get());
  }

  TMarkChart* AddChart(std::initializer_list<double> Ys) {
    auto* C = New<TMarkChart>(Form.get());
    C->SetPanel(Panel);
    for (double Y : Ys)
      C->Values()->Add({0, Y});
    return C;
  }

  // Paints the panel on a bitmap of its size (a foreign canvas).
  void Paint(TChartPanelAreas Areas = TChartPanelAreas::FromBits(0xFFF)) {
    Rects.clear();
    Bitmap = test::MakeBitmap(Panel->Width(), Panel->Height(), clFuchsia);
    Panel->Draw(Bitmap->Canvas(), Panel->ClientRect(), Areas);
  }

  TOwned<TTestForm> Form;
  TFixedPanel* Panel = nullptr;
  TOwned<TBitmap> Bitmap;
  std::map<std::string, TRect> Rects;
};

// --- Layout ---

struct TLayoutCase {
  const char* Name;
  std::function<void(TKXCustomChartPanel*)> Setup;
  TRect Plot;
  // Elements whose OnDrawing rectangle is checked, and those that must not paint.
  std::map<std::string, TRect> Expected;
  std::vector<std::string> Absent;
};

// Inside the default frame: the whole area (4, 5, 396, 295), the header band down to 29, the
// footer band up from 271, left axis 30 and bottom axis 20 wide, 10 on the hidden sides.
const TRect Whole{4, 5, 396, 295};

class PanelLayoutTable : public ChartPanelLayout,
                         public testing::WithParamInterface<TLayoutCase> {};

TEST_P(PanelLayoutTable, CutsTheClientRectangleIntoTheElementsAreas) {
  const TLayoutCase& C = GetParam();
  if (C.Setup) C.Setup(Panel);
  Paint();
  EXPECT_EQ(Panel->ChartRect(), C.Plot);
  for (const auto& [Name, R] : C.Expected) {
    ASSERT_TRUE(Rects.count(Name)) << Name << " was not drawn";
    EXPECT_EQ(Rects[Name], R) << Name;
  }
  for (const std::string& Name : C.Absent)
    EXPECT_FALSE(Rects.count(Name)) << Name << " was drawn";
}

using TPanelPtr = TKXCustomChartPanel*;

// clang-format off
INSTANTIATE_TEST_SUITE_P(Configurations, PanelLayoutTable, testing::Values(
    TLayoutCase{"Default", nullptr, {34, 39, 386, 251},
                {{"Background", Whole}, {"Gradient", {0, 0, 392, 290}}, {"Header", {4, 5, 396, 29}},
                 {"Footer", {4, 271, 396, 295}}, {"BottomAxis", {34, 39, 386, 271}},
                 {"LeftAxis", {4, 39, 386, 251}}},
                {"TopAxis", "RightAxis", "ChartBackground", "Foreground", "Legend", "ChartShadow"}},
    TLayoutCase{"AllAxesAndLayers",
                [](TPanelPtr P) {
                  for (TKXChartGraphic* G : std::initializer_list<TKXChartGraphic*>{
                           P->TopAxis(), P->RightAxis(), P->ChartBackground(), P->Foreground()})
                    G->SetVisible(true);
                },
                {34, 44, 371, 251},
                {{"ChartBackground", {34, 44, 371, 251}}, {"BottomAxis", {34, 44, 371, 271}},
                 {"TopAxis", {34, 29, 371, 251}}, {"LeftAxis", {4, 44, 371, 251}},
                 {"RightAxis", {34, 44, 396, 251}}, {"Foreground", Whole}}, {}},
    TLayoutCase{"HiddenAxesKeepTen",
                [](TPanelPtr P) {
                  P->LeftAxis()->SetVisible(false);
                  P->BottomAxis()->SetVisible(false);
                },
                {14, 39, 386, 261}, {}, {"LeftAxis", "BottomAxis"}},
    TLayoutCase{"InwardAxesKeepTen",
                [](TPanelPtr P) {
                  P->LeftAxis()->SetInwardPosition(50);
                  P->BottomAxis()->SetInwardPosition(20);
                },
                {14, 39, 386, 261},
                {{"LeftAxis", {4, 39, 386, 261}}, {"BottomAxis", {14, 39, 386, 271}}}, {}},
    TLayoutCase{"NoHeaderOrFooter",
                [](TPanelPtr P) { P->Header()->SetVisible(false); P->Footer()->SetVisible(false); },
                {34, 15, 386, 275}, {}, {"Header", "Footer"}},
    TLayoutCase{"TallHeaderAndFooter",
                [](TPanelPtr P) { P->Header()->SetHeight(40); P->Footer()->SetHeight(31); },
                {34, 55, 386, 244},
                {{"Header", {4, 5, 396, 45}}, {"Footer", {4, 264, 396, 295}}}, {}},
    TLayoutCase{"WiderMargins", [](TPanelPtr P) { P->Margins()->SetRect({10, 20, 30, 40}); },
                {41, 55, 359, 215},
                {{"Background", {11, 21, 369, 259}}, {"Header", {11, 21, 369, 45}}}, {}},
    TLayoutCase{"FrameOfBevelsAndBorder",
                [](TPanelPtr P) {
                  P->SetBevelInner(bvLowered);
                  P->SetBevelWidth(2);
                  P->SetBorderStyle(bsSingle);
                  P->SetBorderWidth(3);
                },
                {40, 45, 380, 245}, {{"Background", {10, 11, 390, 289}}}, {}},
    TLayoutCase{"BorderWidthWithoutBorderStyleTakesNoRoom",
                [](TPanelPtr P) { P->SetBorderWidth(5); }, {34, 39, 386, 251}, {}, {}},
    TLayoutCase{"HiddenLegendTakesNoRoom",
                [](TPanelPtr P) {
                  auto L = MakeOwned<TStringList>();
                  L->Add("One");
                  P->Legend()->SetFixed(true);
                  P->Legend()->SetLines(L.get());
                  P->Legend()->SetVisible(false);
                },
                {34, 39, 386, 251}, {}, {"Legend"}}),
    [](const testing::TestParamInfo<TLayoutCase>& I) { return std::string(I.param.Name); });
// clang-format on

TEST_F(ChartPanelLayout, ALegendTakesItsRoomAtEachSideAndAnOverlayTakesNone) {
  SetLegendLines({"Apples", "Bananas", "Cherries"});
  // Between the header and the footer: what the legend is given to place itself in.
  const TRect Area{4, 29, 396, 271};
  auto Canvas = test::MakeBitmap(400, 300);
  for (TKXLegendAlignment Side : {laLeft, laRight, laBottom, laTop}) {
    SCOPED_TRACE(GetEnumName(Side));
    Panel->Legend()->SetOverlay(false);
    Panel->Legend()->SetAlign(Side);
    int32_t LongestWidth = 0;
    const TRect B = Panel->Legend()->BoundsRect(Canvas->Canvas(), Area, LongestWidth);
    TRect Room = Area;
    if (Side == laLeft) Room.Left = B.Right;
    if (Side == laRight) Room.Right = B.Left;
    if (Side == laBottom) Room.Bottom = B.Top;
    if (Side == laTop) Room.Top = B.Bottom;
    ASSERT_LT(Room.Width() * Room.Height(), Area.Width() * Area.Height())
        << "the legend takes room";
    Paint();
    EXPECT_EQ(Panel->ChartRect(),
              (TRect{Room.Left + 30, Room.Top + 10, Room.Right - 10, Room.Bottom - 20}));
    EXPECT_EQ(Rects["Legend"], Area) << "the legend places itself in the whole area";

    Panel->Legend()->SetOverlay(true);
    Paint();
    EXPECT_EQ(Panel->ChartRect(), (TRect{34, 39, 386, 251}));
    EXPECT_EQ(Rects["Legend"], Area);
  }
}

TEST_F(ChartPanelLayout, EveryAxisIsMeasuredOnTheRectangleLeftByHeaderFooterAndLegend) {
  SetLegendLines({"Line"});
  Panel->Legend()->SetAlign(laTop);
  auto Canvas = test::MakeBitmap(400, 300);
  int32_t LongestWidth = 0;
  const TRect B = Panel->Legend()->BoundsRect(Canvas->Canvas(), {4, 29, 396, 271}, LongestWidth);
  Paint();
  // Hidden axes are measured too: the layout asks every side.
  for (TKXChartAxis* A :
       {Panel->LeftAxis(), Panel->TopAxis(), Panel->RightAxis(), Panel->BottomAxis()})
    EXPECT_EQ(static_cast<TFixedAxis*>(A)->Measured, (std::vector<TRect>{{4, B.Bottom, 396, 271}}));
}

// --- Narrowed paints and clipping ---

TEST_F(ChartPanelLayout, ChartsAloneStandWhereTheyStandInAFullPaint) {
  Panel->LeftAxis()->SetMinimum(0);
  Panel->LeftAxis()->SetMaximum(10);
  Panel->BottomAxis()->SetMinimum(-1);
  Panel->BottomAxis()->SetMaximum(10);
  SetLegendLines({"Legend"});
  Panel->Legend()->SetAlign(laLeft);
  TMarkChart* C = AddChart({3, 7});
  Paint();
  const TRect Full = Panel->ChartRect();
  const auto FullPixels = std::move(Bitmap);
  Paint({paCharts});
  EXPECT_EQ(Panel->ChartRect(), Full);
  ASSERT_EQ(C->Given.size(), 2u);
  EXPECT_EQ(C->Given[1], C->Given[0]);
  EXPECT_TRUE(Rects.empty()) << "no element paints in a charts-only paint";
  // Every pixel the chart painted alone is where the full paint has it.
  int32_t Painted = 0;
  for (int32_t Y = 0; Y < Bitmap->Height(); ++Y)
    for (int32_t X = 0; X < Bitmap->Width(); ++X)
      if (Bitmap->Canvas()->Pixel(X, Y) != clFuchsia) {
        ++Painted;
        ASSERT_EQ(Bitmap->Canvas()->Pixel(X, Y), FullPixels->Canvas()->Pixel(X, Y))
            << X << "," << Y;
      }
  EXPECT_EQ(Painted, 2 * 25 + 4);
  EXPECT_EQ(Panel->DrawAreas(), TChartPanelAreas::FromBits(0xFFF)) << "the areas are put back";
}

TEST_F(ChartPanelLayout, OnlyThePanelsOwnCanvasIsClippedToThePlot) {
  TMarkChart* C = AddChart({1});
  C->SetColor(clRed);
  Paint();
  const TRect Plot = Panel->ChartRect();
  EXPECT_EQ(Bitmap->Canvas()->Pixel(Plot.Left - 3, Plot.Top + 1), clRed) << "foreign: unclipped";

  Panel->Repaint();
  TCanvas* Own = Panel->Canvas();
  EXPECT_EQ(Panel->ChartRect(), Plot);
  EXPECT_NE(Own->Pixel(Plot.Left - 3, Plot.Top + 1), clRed) << "own canvas: clipped";
  EXPECT_EQ(Own->LayerDepth(), 0);
}

TEST_F(ChartPanelLayout, AHandlerThatRaisesLeavesAreasAndClipAsTheyWere) {
  Panel->SetOnDrawCharts([](TObject*, TCanvas*, const TRect&) { throw Exception("stop"); });
  EXPECT_THROW(Panel->Draw(Panel->Canvas(), Panel->ClientRect(), {paCharts}), Exception);
  EXPECT_EQ(Panel->DrawAreas(), TChartPanelAreas::FromBits(0xFFF));
  EXPECT_EQ(Panel->Canvas()->LayerDepth(), 0);
}

// --- Paint order ---

TEST_F(ChartPanelLayout, PixelAndAxisRectanglesTurnIntoEachOtherOnThePlot) {
  Panel->SetBounds(0, 0, 400, 300);
  for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()}) {
    A->SetMaximum(100);
    A->SetMinimum(0);
  }
  Paint();
  const TRect Plot = Panel->ChartRect();
  const TKXChartAxis* X = Panel->BottomAxis();
  const TKXChartAxis* Y = Panel->LeftAxis();
  // The lower left of the range is the plot's lower left: rows grow downward.
  EXPECT_EQ(TKXCustomChartPanel::AxesPointToPoint({0, 0}, X, Y), (TPoint{Plot.Left, Plot.Bottom}));
  const TRect Box{Plot.Left + 20, Plot.Top + 10, Plot.Left + 120, Plot.Top + 90};
  const TRectF Axes = TKXCustomChartPanel::RectToAxesRect(Box, X, Y);
  EXPECT_EQ(FixRect(TKXCustomChartPanel::AxesRectToRect(Axes, X, Y)), Box);
  EXPECT_EQ(TKXCustomChartPanel::AxesPointToPoint({5, 5}, nullptr, nullptr), (TPoint{0, 0}));
}

TEST_F(ChartPanelLayout, ElementsPaintInTheirFixedOrder) {
  std::vector<std::string> Order;
  Record(nullptr, &Order);
  Panel->TopAxis()->SetVisible(true);
  Panel->RightAxis()->SetVisible(true);
  Panel->ChartBackground()->SetVisible(true);
  Panel->Foreground()->SetVisible(true);
  SetLegendLines({"Line"});
  AddChart({1});
  Panel->SetOnDrawing([&](TObject*, TCanvas*, const TRect&, bool&) { Order.push_back("Panel?"); });
  Panel->SetOnDrawCharts([&](TObject*, TCanvas*, const TRect&) { Order.push_back("Charts"); });
  Panel->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { Order.push_back("Panel!"); });
  Paint();
  EXPECT_EQ(Order,
            (std::vector<std::string>{"Panel?", "Background", "Gradient", "Header", "Footer",
                                      "ChartBackground", "BottomAxis", "TopAxis", "LeftAxis",
                                      "RightAxis", "Charts", "Legend", "Foreground", "Panel!"}));
}

// Margins take 6 across and 8 down, the bevel 1 more on each side.
TEST_F(ChartPanelLayout, APanelTooSmallPaintsNothingButStillEndsTheDraw) {
  const struct {
    int32_t Width, Height;
    bool Paints;
  } Cases[] = {{5, 300, false}, {8, 300, false}, {9, 300, true}, {400, 10, false}, {400, 11, true}};
  std::vector<std::string> Order;
  Record(nullptr, &Order);
  int Drawn = 0;
  Panel->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { ++Drawn; });
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(C.Width) + " x " + std::to_string(C.Height));
    Order.clear();
    Drawn = 0;
    Panel->SetBounds(0, 0, C.Width, C.Height);
    Paint();
    EXPECT_EQ(Drawn, 1);
    EXPECT_EQ(Order.empty(), !C.Paints);
    if (!C.Paints) {
      EXPECT_EQ(test::CountPainted(Bitmap.get(), clFuchsia), 0);
    }
  }
}

// --- The gradient buffer ---

TEST_F(ChartPanelLayout, TheGradientIsPaintedOnceAndReusedUntilItsSizeOrItChanges) {
  int Painted = 0;
  Panel->SetOnDrawGradient([&](TObject*, TCanvas*, const TRect&) { ++Painted; });
  Panel->Header()->SetVisible(false);
  Panel->Footer()->SetVisible(false);
  Paint();
  EXPECT_EQ(Painted, 1);
  const auto First = test::PixelBytes(Bitmap.get());
  Paint();
  EXPECT_EQ(Painted, 1) << "the buffer is copied again";
  EXPECT_EQ(test::PixelBytes(Bitmap.get()), First);
  Paint({paCharts});
  EXPECT_EQ(Painted, 1);

  Panel->Header()->SetVisible(true);
  Paint();
  EXPECT_EQ(Painted, 1) << "the header takes no room from the gradient";

  Panel->SetBounds(0, 0, 300, 300);
  Paint();
  EXPECT_EQ(Painted, 2);
  ASSERT_NE(Panel->GradientBuffer(), nullptr);
  EXPECT_EQ(Panel->GradientBuffer()->Width(), 292);

  Panel->Gradient()->SetEndColor(clAqua);
  EXPECT_EQ(Panel->GradientBuffer(), nullptr);
  Paint();
  EXPECT_EQ(Painted, 3);
  Panel->Gradient()->SetEndColor(clAqua);
  Paint();
  EXPECT_EQ(Painted, 3) << "setting the same colour changes nothing";
}

TEST_F(ChartPanelLayout, ATranslucentGradientLetsTheBackgroundThrough) {
  Panel->Background()->Brush()->SetColor(clBlack);
  Panel->Gradient()->SetStartColor(clWhite);
  Panel->Gradient()->SetOpacity(0.5f);
  Paint();
  const TColor Mid = Bitmap->Canvas()->Pixel(200, 150);
  EXPECT_TRUE(test::Near(Mid, TColor(0x808080), 3)) << std::hex << Mid;
}

// --- Fonts and change ---

TEST_F(ChartPanelLayout, ThePanelsFontReachesEveryElementWithOneChange) {
  int Changes = 0;
  Panel->SetOnChange([&](TObject*) { ++Changes; });
  Panel->Font()->SetSize(12);
  EXPECT_EQ(Changes, 1);
  EXPECT_EQ(Panel->Header()->Font()->Size(), 12);
  EXPECT_EQ(Panel->Header()->Font()->Color(), clBlue) << "the header keeps its own colour";
  EXPECT_EQ(Panel->Footer()->Font()->Color(), clRed);
  EXPECT_EQ(Panel->Footer()->Font()->Size(), 12);
  EXPECT_EQ(Panel->Legend()->Font()->Size(), 12);
  for (TKXChartAxis* A :
       {Panel->BottomAxis(), Panel->TopAxis(), Panel->LeftAxis(), Panel->RightAxis()}) {
    EXPECT_EQ(A->Labels()->Font()->Size(), 12);
    EXPECT_EQ(A->Title()->Font()->Size(), 12);
  }
}

TEST_F(ChartPanelLayout, EveryOwnedElementReportsItsChangeThroughThePanel) {
  int Changes = 0;
  Panel->SetOnChange([&](TObject*) { ++Changes; });
  Panel->Background()->SetImageMode(imTile);
  Panel->ChartBackground()->SetVisible(true);
  Panel->Foreground()->SetZoomable(false);
  Panel->Header()->SetText("New");
  Panel->Footer()->SetAlignment(taLeftJustify);
  Panel->Margins()->SetLeft(9);
  Panel->Legend()->SetBoxSize(20);
  Panel->ChartShadow()->SetSize(5);
  Panel->Gradient()->SetCoarseness(3);
  Panel->RightAxis()->SetVisible(true);
  EXPECT_EQ(Changes, 10);
}

// --- Construction ---

TEST(ChartPanel, InDesignModeAxesNameTheirSideAndNoHintWindowIsMade) {
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  Form->SetDesigning(true);
  auto* Panel = New<TKXChartPanel>(Form.get());
  EXPECT_EQ(Panel->HintWindow(), nullptr);
  EXPECT_EQ(Panel->LeftAxis()->Title()->Text(), "calLeft");
  EXPECT_EQ(Panel->TopAxis()->Title()->Text(), "calTop");
  EXPECT_FALSE(Panel->TopAxis()->Visible());
  EXPECT_TRUE(Panel->BottomAxis()->Visible());
}

// --- Stored form ---

TEST(ChartPanel, StoresTheSelectionColourAlwaysAndMarginsOnlyWhenTheyDiffer) {
  RegisterClasses({ClassOf<TTestForm>()});
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  Form->SetName("Form1");
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetName("Panel1");
  std::string Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"SelectionColor\""), std::string::npos);
  EXPECT_EQ(Json.find("\"Margins\""), std::string::npos);
  EXPECT_EQ(Json.find("\"UserActions\""), std::string::npos);
  Panel->Margins()->SetTop(12);
  Panel->SetSelectionColor(clActiveBorder);
  Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"Margins\""), std::string::npos) << Json;
  EXPECT_NE(Json.find("\"Top\": 12"), std::string::npos) << Json;
  EXPECT_EQ(Json.find("\"SelectionColor\""), std::string::npos);
}

// Charts on the panel and a chart alone come back where they were, with their settings and
// values, and the panel paints the same pixels.
TEST(ChartPanel, AFormSavedAndLoadedBackHoldsTheSameChartsAndPaintsTheSamePixels) {
  StartChartPanelModule();
  RegisterClasses({ClassOf<TTestForm>(), ClassOf<TMarkChart>()});
  ColorListIndex = 0;
  TOwned<TTestForm> Form(New<TTestForm>(nullptr));
  Form->SetName("Form1");
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetName("Panel1");
  Panel->SetBounds(0, 0, 360, 240);
  Panel->SetChartColorScheme(schPastels);
  Panel->Header()->SetText("Stored");
  Panel->Header()->SetHeight(30);
  Panel->Footer()->SetVisible(false);
  Panel->Gradient()->SetStartColor(clSkyBlue);
  Panel->Gradient()->SetDirection(gdLeftToRight);
  Panel->Margins()->SetRect({8, 8, 8, 8});
  Panel->Legend()->SetAlign(laBottom);
  Panel->Legend()->SetLegendStyle(lsCharts);
  Panel->ChartBackground()->SetVisible(true);
  Panel->ChartBackground()->SetTransparent(false);
  Panel->ChartBackground()->Brush()->SetColor(clCream);
  Panel->RightAxis()->SetVisible(true);
  for (TKXChartAxis* A : {Panel->LeftAxis(), Panel->RightAxis(), Panel->BottomAxis()}) {
    A->SetMinimum(0);
    A->SetMaximum(10);
  }
  for (int I = 0; I < 2; ++I) {
    auto* C = New<TMarkChart>(Form.get());
    C->SetName("Chart" + std::to_string(I));
    C->SetCaption(I ? "Second" : "First");
    C->SetPanel(Panel);
    C->Values()->Add({0, 2.0 + 3 * I});
    C->Values()->Add({0, 8.0 - I});
  }
  auto* C = New<TMarkChart>(Form.get());
  C->SetName("Sorted");
  C->SetPanel(Panel);
  C->SetVertAxis(vaRight);
  C->SetGroupStyle(gsStacked);
  C->Values()->SetSorted(true);
  C->Values()->Add({2, 6}, "b");
  C->Values()->Add({1, 3}, "a");
  auto* Alone = New<TKXChart>(Form.get());
  Alone->SetName("Alone");
  Alone->Values()->Add(42);
  Alone->HorizontalAxis()->SetMaximum(50);
  const std::string Json = SaveFormToString(Form.get());

  TOwned<TTestForm> Copy(New<TTestForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* P2 = dynamic_cast<TKXChartPanel*>(Copy->FindComponent("Panel1"));
  auto* C2 = dynamic_cast<TMarkChart*>(Copy->FindComponent("Sorted"));
  auto* A2 = dynamic_cast<TKXChart*>(Copy->FindComponent("Alone"));
  ASSERT_TRUE(P2 && C2 && A2) << Json;
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  EXPECT_EQ(P2->Charts()->IndexOf(C2), 2);
  EXPECT_EQ(C2->VerticalAxis(), P2->RightAxis());
  EXPECT_EQ(C2->Values()->Items(0)->Caption(), "a") << "sorted as stored";
  EXPECT_EQ(C2->GroupStyle(), gsStacked);
  EXPECT_EQ(A2->HorizontalAxis(), A2->LocalHorizontalAxis());
  EXPECT_EQ(A2->HorizontalAxis()->Maximum(), 50.0);

  auto A = test::MakeBitmap(360, 240);
  auto B = test::MakeBitmap(360, 240);
  Panel->Draw(A->Canvas(), Panel->ClientRect());
  P2->Draw(B->Canvas(), P2->ClientRect());
  EXPECT_EQ(P2->ChartRect(), Panel->ChartRect());
  EXPECT_EQ(test::PixelBytes(B.get()), test::PixelBytes(A.get()));
  // Something of each part is there to compare: the legend's lines, the chart background,
  // the charts' squares.
  EXPECT_EQ(P2->Legend()->Lines()->Count(), 3);
  EXPECT_GT(test::CountPixels(B.get(), [](TColor C) { return C == clCream; }), 1000);
}

// A header of 100 MB paints what a header of its first MaxTextLength characters paints (the
// rest lies far beyond any canvas), in the time and memory those characters take.
TEST(ChartPanel, AHeaderOfAHundredMegabytesPaintsAsItsShowablePart) {
  const std::string Word = "Quarterly revenue ";
  std::string Huge;
  Huge.reserve(100u << 20);
  while (Huge.size() + Word.size() <= (100u << 20))
    Huge += Word;
  const std::string Showable = Huge.substr(0, TCanvas::MaxTextLength);
  std::vector<TOwned<TBitmap>> Pictures;
  for (const std::string* Text : {&Showable, static_cast<const std::string*>(&Huge)}) {
    TOwned<TTestForm> Form(New<TTestForm>(nullptr));
    auto* Panel = New<TKXChartPanel>(Form.get());
    Panel->SetBounds(0, 0, 400, 200);
    Panel->Header()->SetText(*Text);
    Pictures.push_back(test::MakeBitmap(400, 200));
    Panel->Draw(Pictures.back()->Canvas(), {0, 0, 400, 200});
  }
  EXPECT_GT(test::CountPixels(Pictures[1].get(), {0, 0, 400, 40},
                              [](TColor C) { return GetRValue(C) < 100; }),
            100)
      << "the middle of the header's line shows";
  EXPECT_EQ(test::PixelBytes(Pictures[0].get()), test::PixelBytes(Pictures[1].get()));
}

} // namespace
} // namespace kx
