// The chart kinds of the line family as a user meets them: a panel with a new line chart, one
// with a new area chart, a chart alone on a form, and a dashboard that puts several charts,
// two axes and dates together. Then the line sheet: line and area charts in every style,
// alone on their own axes and stacked in a panel (which casts the charts' shadow), with value
// labels, a selected value and a gap.
#include <cmath>
#include <functional>
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr TColor Ink = static_cast<TColor>(0x403830);
constexpr TColor Frame = static_cast<TColor>(0xC8C0B8);
constexpr TColor Paper = static_cast<TColor>(0xFBF8F6);
constexpr TColor Rule = static_cast<TColor>(0xEDE6E0);
constexpr int32_t SheetWidth = 1200;
constexpr int32_t Columns = 3;
constexpr int32_t CellW = 390, CellH = 250;
constexpr int32_t Left = 15, Top = 15;

class TSheetForm : public TComponent {
  KX_CLASS(TSheetForm, TComponent)

public:
  using TComponent::TComponent;
};

TRect CellRect(int I) {
  const int32_t X = Left + (I % Columns) * CellW, Y = Top + (I / Columns) * CellH;
  return {X, Y, X + CellW, Y + CellH};
}

// The plot area of a cell, with a paper background, a frame and faint horizontal rules, so
// that a reader sees the rectangle the chart was given.
TRect PlotRect(TCanvas* C, int I) {
  const TRect Cell = CellRect(I);
  const TRect R{Cell.Left + 10, Cell.Top + 8, Cell.Right - 10, Cell.Bottom - 28};
  C->Pen()->SetWidth(1);
  C->Pen()->SetStyle(psSolid);
  C->Pen()->SetMode(pmCopy);
  C->Brush()->SetStyle(bsSolid);
  C->Brush()->SetColor(Paper);
  C->FillRect(R);
  C->Pen()->SetColor(Rule);
  for (int32_t K = 1; K < 5; ++K) {
    const int32_t Y = R.Top + (R.Bottom - R.Top) * K / 5;
    C->MoveTo(R.Left, Y);
    C->LineTo(R.Right, Y);
  }
  C->Brush()->SetColor(Frame);
  C->FrameRect({R.Left - 1, R.Top - 1, R.Right + 1, R.Bottom + 1});
  // The charts draw a little inside the frame.
  return {R.Left + 12, R.Top + 14, R.Right - 12, R.Bottom - 8};
}

void CaptionUnder(TCanvas* C, int I, const std::string& Text) {
  const TRect Cell = CellRect(I);
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetSize(9);
  C->Font()->SetColor(Ink);
  C->Font()->SetStyle({});
  DrawTextLabel(C, Text, DT_CENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX,
                {Cell.Left + 4, Cell.Bottom - 22, Cell.Right - 4, Cell.Bottom - 4});
  C->Brush()->SetStyle(bsSolid);
}

// A wave with some character, the same for every picture.
double Wave(double X, double Phase) {
  return 5 + 3 * std::sin(X * 0.55 + Phase) + 1.2 * std::sin(X * 1.7 + 2 * Phase);
}

template <class TChart> TChart* MakeChart(TComponent* Owner, int Count, double Phase) {
  auto* Chart = New<TChart>(Owner);
  TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
  for (int I = 0; I < Count; ++I)
    Chart->Values()->Add(I, Wave(I, Phase), "v" + std::to_string(I));
  return Chart;
}

// Draws a chart alone on its own (invisible) axes, found from its values.
void DrawAlone(TCanvas* C, TKXCustomChart* Chart, const TRect& R) {
  Chart->SetBounds(0, 0, R.Right - R.Left, R.Bottom - R.Top);
  Chart->HorizontalAxis()->UpdateAxisValues();
  Chart->VerticalAxis()->UpdateAxisValues();
  Chart->Draw(C, R);
}

void DrawPanel(TCanvas* C, TKXChartPanel* Panel, const TRect& R) {
  for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()})
    A->UpdateAxisValues();
  Panel->DrawCharts(C, R);
}

void PaintLines(TCanvas* C, const TRect&) {
  ColorListIndex = 0;
  TOwned<TSheetForm> Form(New<TSheetForm>(nullptr));
  int Cell = 0;
  const auto Next = [&](const std::string& Caption,
                        const std::function<void(const TRect&)>& Paint) {
    const TRect R = PlotRect(C, Cell);
    Paint(R);
    CaptionUnder(C, Cell, Caption);
    ++Cell;
  };
  // Lines in one colour each (without value colours, which a line chart has by default).
  const auto Plain = [](TKXCustomLineChart* Chart, TColor Color) {
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetColor(Color);
    return Chart;
  };

  Next("lsStraight: one segment per value", [&](const TRect& R) {
    DrawAlone(C, Plain(MakeChart<TKXLineChart>(Form.get(), 14, 0), clNavy), R);
  });
  Next("lsStepHorizontal (blue), lsStepVertical (red)", [&](const TRect& R) {
    auto* H = Plain(MakeChart<TKXLineChart>(Form.get(), 10, 0.4), static_cast<TColor>(0xB06020));
    H->SetLineStyle(lsStepHorizontal);
    DrawAlone(C, H, R);
    auto* V = Plain(MakeChart<TKXLineChart>(Form.get(), 10, 2.4), static_cast<TColor>(0x3030C0));
    V->SetLineStyle(lsStepVertical);
    DrawAlone(C, V, R);
  });
  Next("lsSmooth with value colours, lsBezier (dark)", [&](const TRect& R) {
    auto* S = MakeChart<TKXLineChart>(Form.get(), 10, 1.0);
    S->SetOptions(S->Options() - coValueLabels);
    S->Pen()->SetWidth(3);
    S->SetLineStyle(lsSmooth);
    DrawAlone(C, S, R);
    auto* B = Plain(MakeChart<TKXLineChart>(Form.get(), 10, 3.0), Ink);
    B->SetLineStyle(lsBezier);
    DrawAlone(C, B, R);
  });
  Next("Stacked lines in a panel, with the chart shadow", [&](const TRect& R) {
    auto* Panel = New<TKXChartPanel>(Form.get());
    for (int K = 0; K < 3; ++K) {
      auto* L = Plain(MakeChart<TKXLineChart>(Form.get(), 12, K * 1.3), DefaultColorList[K + 2]);
      L->SetPanel(Panel);
      L->SetGroupStyle(gsStacked);
    }
    DrawPanel(C, Panel, R);
  });
  Next("Filled area, each value its own colour", [&](const TRect& R) {
    auto* A = MakeChart<TKXAreaChart>(Form.get(), 9, 0.7);
    A->SetOptions(A->Options() - coValueLabels);
    A->Pen()->SetColor(clWhite);
    DrawAlone(C, A, R);
  });
  Next("Stacked areas in a panel (the lower one listed last)", [&](const TRect& R) {
    auto* Panel = New<TKXChartPanel>(Form.get());
    Panel->ChartShadow()->SetVisible(false);
    TKXAreaChart* Areas[3];
    for (int K = 0; K < 3; ++K) {
      auto* A = MakeChart<TKXAreaChart>(Form.get(), 12, K * 0.9);
      A->SetOptions(A->Options() - coValueColors - coValueLabels);
      A->SetColor(DefaultColorList[5 + K]);
      A->Pen()->SetColor(Ink);
      A->Pen()->SetWidth(1);
      A->SetPanel(Panel);
      Areas[K] = A;
    }
    // Each area fills down to the baseline, so the panel draws the top of the stack first;
    // the vertical axis stacks them in the opposite order.
    for (int K = 0; K < 3; ++K)
      Areas[K]->SetGroupIndex(0);
    Areas[0]->SetGroupStyle(gsStacked);
    DrawPanel(C, Panel, R);
  });
  Next("Value labels (coValueLabels), stepped area", [&](const TRect& R) {
    auto* A = New<TKXAreaChart>(Form.get());
    const char* Names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun"};
    const double Ys[] = {3, 5, 4, 7, 6, 8};
    for (int I = 0; I < 6; ++I)
      A->Values()->Add(I, Ys[I], Names[I]);
    A->Values()->Add(6, 8);
    A->SetOptions(A->Options() - coValueColors);
    A->SetColor(static_cast<TColor>(0xE0C8A0));
    A->Pen()->SetColor(static_cast<TColor>(0x806040));
    A->Pen()->SetWidth(1);
    A->SetLineStyle(lsStepHorizontal);
    A->VerticalAxis()->SetOptions(A->VerticalAxis()->Options() - aoAutoMinimum);
    A->VerticalAxis()->SetMinimum(0);
    DrawAlone(C, A, R);
  });
  Next("A selected value (pink) and a hidden one (gap)", [&](const TRect& R) {
    auto* L = Plain(MakeChart<TKXLineChart>(Form.get(), 12, 0.2), clTeal);
    L->Pen()->SetWidth(3);
    L->SetSelectionColor(static_cast<TColor>(0x9090FF));
    L->Values()->Items(4)->SetSelected(true);
    L->Values()->Items(8)->SetVisible(false);
    DrawAlone(C, L, R);
  });
  Next("lsSmooth area with both elements: the outline is the area's", [&](const TRect& R) {
    auto* A = MakeChart<TKXAreaChart>(Form.get(), 10, 1.9);
    A->SetOptions(A->Options() - coValueColors - coValueLabels);
    A->SetLineChartElements({bcLine, bcArea});
    A->SetLineStyle(lsSmooth);
    A->SetColor(static_cast<TColor>(0xD8C0A8));
    A->Pen()->SetColor(static_cast<TColor>(0x805020));
    DrawAlone(C, A, R);
  });
}

} // namespace

void AddLineSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"line-styles",
                    "Line and area charts: styles, stacking, labels, selection, gaps", SheetWidth,
                    Top * 2 + 3 * CellH, PaintLines});
}

// --- The chart kinds ---

namespace {

constexpr int32_t KindW = 640, KindH = 400;

// A form holding one panel of the sheet's size.
struct TPanelForm {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  TPanelForm(int32_t W, int32_t H) {
    ColorListIndex = 0;
    Form->SetBounds(0, 0, W, H);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, W, H);
  }
};

// A panel with one new chart of the class: the sample values a chart shows before it has
// values of its own.
template <class TChart> void PaintKind(TCanvas* C, const TRect& Area, const char* Caption) {
  TPanelForm F(Area.Right - Area.Left, Area.Bottom - Area.Top);
  auto* Chart = New<TChart>(F.Form.get());
  Chart->SetCaption(Caption);
  Chart->SetPanel(F.Panel);
  Chart->SetPreview(true);
  PaintPanel(C, F.Panel, Area);
}

// A line chart alone on a form: no panel, its own invisible axes found from its values.
void PaintAlone(TCanvas* C, const TRect& Area) {
  ColorListIndex = 0;
  TOwned<TForm> Form(New<TForm>(nullptr));
  Form->SetBounds(0, 0, Area.Right - Area.Left, Area.Bottom - Area.Top);
  Form->SetColor(clWhite);
  auto* Line = New<TKXLineChart>(Form.get());
  Line->SetParent(Form.get());
  Line->SetBounds(30, 30, Form->Width() - 60, Form->Height() - 60);
  Line->SetOptions(Line->Options() - coValueColors);
  Line->SetColor(static_cast<TColor>(0x8A5A1E));
  const char* Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug"};
  const double Sales[] = {12, 19, 15, 24, 22, 31, 28, 35};
  for (int I = 0; I < 8; ++I)
    Line->Values()->Add(I, Sales[I], Months[I]);
  // A little room beyond the first and the last value, so that their labels show whole.
  Line->HorizontalAxis()->SetMinimum(-0.5);
  Line->HorizontalAxis()->SetMaximum(7.5);
  // The minimum is 0 already, so setting it would not end the automatic range.
  Line->VerticalAxis()->SetOptions(Line->VerticalAxis()->Options() - aoAutoMinimum);
  Line->VerticalAxis()->SetMaximum(40);
  Form->PaintTo(C, Area.Left, Area.Top);
}

// Three lines (one on a logarithmic right axis), a stacked pair of areas, dates along the
// bottom and a legend of the charts.
void PaintDashboard(TCanvas* C, const TRect& Area) {
  TPanelForm F(Area.Right - Area.Left, Area.Bottom - Area.Top);
  TKXChartPanel* P = F.Panel;
  P->Legend()->SetLegendStyle(lsCharts);
  TKXChartAxis* Bottom = P->BottomAxis();
  Bottom->SetLabelStyle(alsDateTime);
  Bottom->SetDateTimeFormat("mmm d");
  // The minimum is 0 already, so setting it would not end the automatic range.
  P->LeftAxis()->SetOptions(P->LeftAxis()->Options() - aoAutoMinimum);
  P->RightAxis()->SetVisible(true);
  P->RightAxis()->SetOptions(P->RightAxis()->Options() + aoLogarithmic);

  const TDateTime Start = EncodeDate(2024, 1, 1);
  constexpr int Days = 120, Step = 4;
  const auto Fill = [&](TKXCustomLineChart* Chart, const std::function<double(int)>& Y) {
    TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
    Chart->Values()->SetDateTimeAxes({xyX});
    for (int D = 0; D <= Days; D += Step)
      Chart->Values()->Add(Start + D, Y(D));
  };
  const auto Line = [&](const char* Caption, TColor Color) {
    auto* L = New<TKXLineChart>(F.Form.get());
    L->SetCaption(Caption);
    L->SetOptions(L->Options() - coValueColors - coValueLabels);
    L->SetColor(Color);
    return L;
  };

  // The stacked pair comes first, so that the lines lie over it; the upper area is drawn
  // first, as each area fills down to the baseline, and the axis stacks in the other order.
  const char* AreaNames[] = {"Online orders", "Store orders"};
  const TColor AreaColors[] = {static_cast<TColor>(0xE8D2B4), static_cast<TColor>(0xB4D8C8)};
  TKXAreaChart* Areas[2];
  for (int K = 0; K < 2; ++K) {
    auto* A = New<TKXAreaChart>(F.Form.get());
    A->SetCaption(AreaNames[K]);
    A->SetOptions(A->Options() - coValueColors - coValueLabels);
    A->SetColor(AreaColors[K]);
    // Each value's piece is outlined: in the fill's colour the pieces join without seams.
    A->Pen()->SetColor(AreaColors[K]);
    A->Pen()->SetWidth(1);
    A->SetGroup(1);
    Fill(A, [K](int D) { return 20 + 6 * K + 5 * std::sin(D / (9.0 + 4 * K)) + D * 0.05; });
    A->SetPanel(P);
    Areas[K] = A;
  }
  for (TKXAreaChart* A : Areas)
    A->SetGroupIndex(0);
  Areas[0]->SetGroupStyle(gsStacked);

  auto* Revenue = Line("Revenue", static_cast<TColor>(0x3050C0));
  Fill(Revenue, [](int D) { return 70 + 12 * std::sin(D / 11.0) + D * 0.15; });
  Revenue->SetPanel(P);
  auto* Costs = Line("Costs", static_cast<TColor>(0x806020));
  Fill(Costs, [](int D) { return 60 + 6 * std::cos(D / 15.0) + D * 0.08; });
  Costs->SetPanel(P);
  auto* Visitors = Line("Visitors (right, log)", static_cast<TColor>(0x208040));
  Fill(Visitors, [](int D) { return 50 * std::pow(10.0, D / 45.0); });
  Visitors->SetPanel(P);
  Visitors->SetVertAxis(vaRight);
  PaintPanel(C, P, Area);
}

} // namespace

void AddChartKindSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"line", "TKXLineChart in a chart panel, with the values a new chart shows",
                    KindW, KindH,
                    [](TCanvas* C, const TRect& A) { PaintKind<TKXLineChart>(C, A, "Line"); }});
  Sheets.push_back({"area", "TKXAreaChart in a chart panel, with the values a new chart shows",
                    KindW, KindH,
                    [](TCanvas* C, const TRect& A) { PaintKind<TKXAreaChart>(C, A, "Area"); }});
  Sheets.push_back(
      {"line-alone", "A line chart alone on a form, on its own axes", KindW, KindH, PaintAlone});
  Sheets.push_back({"dashboard",
                    "Dashboard: three lines (one on a logarithmic right axis), a stacked pair "
                    "of areas, dates along the bottom, a legend of the charts",
                    1000, 600, PaintDashboard});
}

} // namespace kx::gallery
