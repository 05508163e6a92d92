// The pie family as a user meets it: a pie with its slices labelled, a pie with one slice
// pushed out and another selected, a donut, and free-form rings with gaps.
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/donuts/KXDonutCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetW = 640, SheetH = 400;

// A form holding one panel of the sheet's size, its axes hidden (a pie has no use for them)
// and a legend of values.
struct TPieForm {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  explicit TPieForm(const TRect& Area) {
    ColorListIndex = 0;
    Form->SetBounds(0, 0, Area.Right - Area.Left, Area.Bottom - Area.Top);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, Area.Right - Area.Left, Area.Bottom - Area.Top);
    for (TKXChartAxis* Axis : {Panel->BottomAxis(), Panel->LeftAxis()})
      Axis->SetVisible(false);
    Panel->Legend()->SetLegendStyle(lsValues);
    Panel->Legend()->SetTextStyle(ltsCaptionValue);
    Panel->Legend()->SetOverlay(false);
  }

  // A chart of Kind with the sample values of a budget.
  template <class T> T* Chart(const char* Caption) {
    auto* C = New<T>(Form.get());
    C->SetCaption(Caption);
    const char* Names[] = {"Rent", "Salaries", "Travel", "Equipment", "Training", "Other"};
    const double Numbers[] = {18, 42, 9, 14, 6, 11};
    for (int I = 0; I < 6; ++I)
      C->Values()->Add(Numbers[I], Names[I]);
    C->SetPanel(Panel);
    return C;
  }
};

// Each slice labelled with its share, the legend beside it naming the values.
void PaintPie(TCanvas* C, const TRect& Area) {
  TPieForm F(Area);
  auto* Pie = F.Chart<TKXPieChart>("Budget");
  Pie->SetValueLabelStyle(ltsPercent);
  PaintPanel(C, F.Panel, Area);
}

// Salaries pushed 24 pixels out of the pie, Travel selected (in the selection colour); the
// pie turned by 30 degrees and drawn at 85 per cent, so that the pushed slice stays inside.
void PaintExploded(TCanvas* C, const TRect& Area) {
  TPieForm F(Area);
  auto* Pie = F.Chart<TKXPieChart>("Budget");
  Pie->SetOffset(30);
  Pie->SetOuterRadius(0.85f);
  Pie->SetOptions(Pie->Options() + coSelectable);
  Pie->Values()->Items(1)->SetExplode(24);
  Pie->Values()->Items(2)->SetSelected(true);
  PaintPanel(C, F.Panel, Area);
}

// The budget as a ring (TKXDonutChart), labelled with the captions.
void PaintDonut(TCanvas* C, const TRect& Area) {
  TPieForm F(Area);
  F.Chart<TKXDonutChart>("Budget");
  PaintPanel(C, F.Panel, Area);
}

// Two rings of free-form slices: the outer one the four quarters of a year with a gap
// between each, the inner one the first half of the year month by month.
void PaintDonutEx(TCanvas* C, const TRect& Area) {
  TPieForm F(Area);
  auto* Rings = New<TKXDonutChartEx>(F.Form.get());
  Rings->SetCaption("Year");
  const char* Quarters[] = {"Q1", "Q2", "Q3", "Q4"};
  for (int I = 0; I < 4; ++I)
    Rings->Values()->Add(90.0 * I + 4, 82, 0.72, 1.0, Quarters[I]);
  const char* Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun"};
  // 60 degrees a month, with a gap of 4.
  for (int I = 0; I < 6; ++I)
    Rings->Values()->Add(60.0 * I + 2, 56, 0.38, 0.66, Months[I]);
  Rings->SetPanel(F.Panel);
  // A free-form value's number is its start angle: the legend names the slices only.
  F.Panel->Legend()->SetTextStyle(ltsCaption);
  F.Panel->Legend()->SetMaxRows(12);
  PaintPanel(C, F.Panel, Area);
}

} // namespace

void AddPieSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"pie",
                    "TKXPieChart: each value a slice of its share of the whole, labelled "
                    "with its per cent (ltsPercent); the legend lists the values",
                    SheetW, SheetH, PaintPie});
  Sheets.push_back({"pie-exploded",
                    "A pie turned by 30 degrees (Offset), OuterRadius 0.85, with Salaries "
                    "pushed out (Explode 24) and Travel selected",
                    SheetW, SheetH, PaintExploded});
  Sheets.push_back({"donut",
                    "TKXDonutChart: the pie with a hole (InnerRadius 0.6), labelled with the "
                    "captions",
                    SheetW, SheetH, PaintDonut});
  Sheets.push_back({"donut-ex",
                    "TKXDonutChartEx: free-form slices, each with its own start, sweep and "
                    "radii, in two rings with gaps",
                    SheetW, SheetH, PaintDonutEx});
}

} // namespace kx::gallery
