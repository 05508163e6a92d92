#include "kxcharts/core/KXChartThemes.h"

#include <algorithm>
#include <mutex>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/legends/KXChartLegend.h"

namespace kx {

namespace {

// Ten hues told apart with every common kind of colour blindness, dark enough for white.
const std::vector<TColor> ColorBlindSafe = {
    RGBToColor(0x01, 0x73, 0xB2), RGBToColor(0xDE, 0x8F, 0x05), RGBToColor(0x02, 0x9E, 0x73),
    RGBToColor(0xD5, 0x5E, 0x00), RGBToColor(0xCC, 0x78, 0xBC), RGBToColor(0xCA, 0x91, 0x61),
    RGBToColor(0xFB, 0xAF, 0xE4), RGBToColor(0x94, 0x94, 0x94), RGBToColor(0xEC, 0xE1, 0x33),
    RGBToColor(0x56, 0xB4, 0xE9)};

// The same hues lifted for a dark background.
const std::vector<TColor> ColorBlindSafeOnDark = {
    RGBToColor(0x4C, 0xA8, 0xE8), RGBToColor(0xF5, 0xB0, 0x41), RGBToColor(0x3C, 0xC8, 0x9C),
    RGBToColor(0xF2, 0x83, 0x36), RGBToColor(0xE0, 0x9C, 0xD4), RGBToColor(0xDD, 0xB0, 0x86),
    RGBToColor(0xFB, 0xC8, 0xEC), RGBToColor(0xB8, 0xB8, 0xB8), RGBToColor(0xF2, 0xE8, 0x6A),
    RGBToColor(0x8C, 0xCF, 0xF4)};

TKXChartTheme Modern(const std::string& Name, bool Dark) {
  TKXChartTheme T;
  T.Name = Name;
  T.Background = Dark ? RGBToColor(0x1E, 0x1F, 0x24) : clWhite;
  T.PlotBackground = Dark ? RGBToColor(0x26, 0x28, 0x2E) : clWhite;
  T.TextColor = Dark ? RGBToColor(0xDC, 0xDE, 0xE3) : RGBToColor(0x33, 0x33, 0x33);
  T.FontName = "DejaVu Sans";
  T.FontSize = 9;
  T.HeaderSize = 12;
  T.HeaderBold = true;
  T.FooterVisible = false;
  T.GridColor = Dark ? RGBToColor(0x3A, 0x3D, 0x45) : RGBToColor(0xE3, 0xE5, 0xE8);
  T.GridStyle = psSolid;
  T.AxisColor = Dark ? RGBToColor(0x6B, 0x70, 0x7A) : RGBToColor(0x9A, 0x9E, 0xA6);
  T.LegendColor = T.Background;
  T.LegendFrameColor = T.GridColor;
  T.LegendShadow = false;
  T.ChartShadow = false;
  T.Margins = {3, 5, 5, 5};
  T.Palette = Dark ? ColorBlindSafeOnDark : ColorBlindSafe;
  T.PlainCharts = true;
  return T;
}

struct TThemeRegistry {
  std::mutex Lock;
  std::vector<TKXChartTheme> Themes;
  TThemeRegistry() {
    TKXChartTheme Classic;
    Classic.Name = "classic";
    Themes = {Classic, Modern("light", false), Modern("dark", true)};
  }
};

TThemeRegistry& Registry() {
  static TThemeRegistry R;
  return R;
}

std::string KnownNames() {
  std::string S;
  for (const std::string& N : ChartThemeNames())
    S += (S.empty() ? "" : ", ") + N;
  return S;
}

void SetPenLook(TPen* Pen, TColor Color, TPenStyle Style) {
  Pen->SetColor(Color);
  Pen->SetStyle(Style);
}

// The look a new panel has, on Panel: the elements' styles, never their texts or ranges.
void ApplyClassic(TKXCustomChartPanel* Panel) {
  TOwned<TKXChartPanel> Fresh(New<TKXChartPanel>(nullptr));
  Panel->SetColor(Fresh->Color());
  Panel->Font()->Assign(Fresh->Font());
  Panel->SetGradient(Fresh->Gradient());
  for (auto [Mine, Theirs] : {std::pair{Panel->Background(), Fresh->Background()},
                              std::pair{Panel->ChartBackground(), Fresh->ChartBackground()}}) {
    Mine->Brush()->Assign(Theirs->Brush());
    Mine->SetTransparent(Theirs->Transparent());
    Mine->SetVisible(Theirs->Visible());
  }
  for (auto [Mine, Theirs] : {std::pair{Panel->Header(), Fresh->Header()},
                              std::pair{Panel->Footer(), Fresh->Footer()}}) {
    Mine->SetFont(Theirs->Font());
    Mine->SetVisible(Theirs->Visible());
  }
  const TKXChartAxis* FreshAxes[] = {Fresh->BottomAxis(), Fresh->LeftAxis(), Fresh->RightAxis(),
                                     Fresh->TopAxis()};
  TKXChartAxis* Axes[] = {Panel->BottomAxis(), Panel->LeftAxis(), Panel->RightAxis(),
                          Panel->TopAxis()};
  for (size_t I = 0; I < 4; ++I) {
    Axes[I]->Pen()->Assign(FreshAxes[I]->Pen());
    Axes[I]->Grid()->SetGridPen(FreshAxes[I]->Grid()->GridPen());
    Axes[I]->Grid()->SetTicksPen(FreshAxes[I]->Grid()->TicksPen());
    Axes[I]->Labels()->Font()->Assign(FreshAxes[I]->Labels()->Font());
    Axes[I]->Title()->Font()->Assign(FreshAxes[I]->Title()->Font());
  }
  TKXChartLegend* Legend = Panel->Legend();
  Legend->SetBrush(Fresh->Legend()->Brush());
  Legend->SetPen(Fresh->Legend()->Pen());
  Legend->SetFont(Fresh->Legend()->Font());
  Legend->Shadow()->SetVisible(Fresh->Legend()->Shadow()->Visible());
  Panel->ChartShadow()->SetVisible(Fresh->ChartShadow()->Visible());
  Panel->SetMargins(Fresh->Margins());
  Panel->SetChartColorList(Fresh->ChartColorList());
  Panel->SetChartColorScheme(Fresh->ChartColorScheme());
}

bool IsLabelledKind(const TKXCustomChart* Chart, const TKXChartTheme& Theme) {
  for (const TMetaClass* C = Chart->ClassType(); C; C = C->ClassParent())
    if (std::find(Theme.LabelledKinds.begin(), Theme.LabelledKinds.end(), C->ClassName()) !=
        Theme.LabelledKinds.end())
      return true;
  return false;
}

void SetTextColor(TFont* Font, TColor Color) {
  if (Color != clNone) Font->SetColor(Color);
}

} // namespace

void RegisterChartTheme(const TKXChartTheme& Theme) {
  if (Theme.Name.empty()) throw EKXChartException("A chart theme needs a name");
  if (Theme.Palette.size() > 10)
    throw EKXChartException("The chart theme \"" + Theme.Name + "\" has " +
                            std::to_string(Theme.Palette.size()) +
                            " colours: a palette holds at most 10");
  TThemeRegistry& R = Registry();
  std::lock_guard Guard(R.Lock);
  auto It = std::find_if(R.Themes.begin(), R.Themes.end(),
                         [&](const TKXChartTheme& T) { return T.Name == Theme.Name; });
  if (It != R.Themes.end())
    *It = Theme;
  else
    R.Themes.push_back(Theme);
}

const TKXChartTheme& GetChartTheme(const std::string& Name) {
  TThemeRegistry& R = Registry();
  {
    std::lock_guard Guard(R.Lock);
    // A theme once registered keeps its place: a reference to it stays good.
    for (const TKXChartTheme& T : R.Themes)
      if (T.Name == Name) return T;
  }
  throw EKXChartException("There is no chart theme \"" + Name + "\": the themes are " +
                          KnownNames() + " (RegisterChartTheme adds one)");
}

std::vector<std::string> ChartThemeNames() {
  TThemeRegistry& R = Registry();
  std::lock_guard Guard(R.Lock);
  std::vector<std::string> Names;
  for (const TKXChartTheme& T : R.Themes)
    Names.push_back(T.Name);
  return Names;
}

void ApplyChartTheme(TKXCustomChartPanel* Panel, const TKXChartTheme& Theme) {
  if (!Panel) throw EKXChartException("Cannot apply a chart theme to no panel (nullptr)");
  ApplyClassic(Panel);
  if (!Theme.Palette.empty()) {
    TColorList List = DefaultColorList;
    for (size_t I = 0; I < List.size(); ++I)
      List[I] = Theme.Palette[I % Theme.Palette.size()];
    Panel->SetChartColorList(List);
  }
  if (Theme.Background != clNone) {
    Panel->SetColor(Theme.Background);
    Panel->Gradient()->SetVisible(false);
    Panel->Background()->Brush()->SetColor(Theme.Background);
  }
  if (Theme.PlotBackground != clNone) {
    TKXChartLayer* Plot = Panel->ChartBackground();
    Plot->Brush()->SetColor(Theme.PlotBackground);
    Plot->SetTransparent(false);
    Plot->SetVisible(true);
  }
  TFont* Font = Panel->Font();
  if (!Theme.FontName.empty()) Font->SetName(Theme.FontName);
  if (Theme.FontSize > 0) Font->SetSize(Theme.FontSize);
  SetTextColor(Font, Theme.TextColor);
  if (Theme.HeaderSize > 0) Panel->Header()->Font()->SetSize(Theme.HeaderSize);
  if (Theme.HeaderBold)
    Panel->Header()->Font()->SetStyle(Panel->Header()->Font()->Style() + fsBold);
  SetTextColor(Panel->Header()->Font(), Theme.TextColor);
  SetTextColor(Panel->Footer()->Font(), Theme.TextColor);
  Panel->Footer()->SetVisible(Panel->Footer()->Visible() && Theme.FooterVisible);
  for (TKXChartAxis* Axis :
       {Panel->BottomAxis(), Panel->LeftAxis(), Panel->RightAxis(), Panel->TopAxis()}) {
    if (Theme.GridColor != clNone) SetPenLook(Axis->Grid()->GridPen(), Theme.GridColor, Theme.GridStyle);
    if (Theme.AxisColor != clNone) {
      Axis->Pen()->SetColor(Theme.AxisColor);
      Axis->Grid()->TicksPen()->SetColor(Theme.AxisColor);
    }
    SetTextColor(Axis->Labels()->Font(), Theme.TextColor);
    SetTextColor(Axis->Title()->Font(), Theme.TextColor);
  }
  TKXChartLegend* Legend = Panel->Legend();
  if (Theme.LegendColor != clNone) Legend->Brush()->SetColor(Theme.LegendColor);
  if (Theme.LegendFrameColor != clNone) Legend->Pen()->SetColor(Theme.LegendFrameColor);
  SetTextColor(Legend->Font(), Theme.TextColor);
  if (!Theme.LegendShadow) Legend->Shadow()->SetVisible(false);
  if (!Theme.ChartShadow) Panel->ChartShadow()->SetVisible(false);
  if (Theme.Margins != TRect{0, 0, 0, 0}) Panel->Margins()->SetRect(Theme.Margins);
  for (int32_t I = 0; I < Panel->Charts()->Count(); ++I)
    ApplyChartTheme(Panel->Charts()->Items(I), Theme);
}

void ApplyChartTheme(TKXCustomChartPanel* Panel, const std::string& Name) {
  ApplyChartTheme(Panel, GetChartTheme(Name));
}

void ApplyChartTheme(TKXCustomChart* Chart, const TKXChartTheme& Theme) {
  if (!Chart) throw EKXChartException("Cannot apply a chart theme to no chart (nullptr)");
  TChartOptions Options = Chart->Options();
  if (Theme.PlainCharts) {
    Options = Options - coValueColors;
    if (!IsLabelledKind(Chart, Theme)) Options = Options - coValueLabels;
  } else {
    // What a new chart of this kind starts with.
    TOwned<TComponent> Fresh(static_cast<TComponentClass>(Chart->ClassType())->Create(nullptr));
    const TChartOptions New = static_cast<TKXCustomChart*>(Fresh.get())->Options();
    for (const TChartOption O : {coValueColors, coValueLabels})
      Options = New.Contains(O) ? Options + O : Options - O;
  }
  Chart->SetOptions(Options);
  TKXCustomChartPanel* Panel = Chart->Panel();
  const int32_t Place = Panel ? std::max(Panel->Charts()->IndexOf(Chart), 0) : 0;
  if (Panel)
    Chart->SetColor(Panel->ChartColorList()[static_cast<size_t>(Place % 10)]);
  else if (!Theme.Palette.empty())
    Chart->SetColor(Theme.Palette.front());
}

void ApplyChartTheme(TKXCustomChart* Chart, const std::string& Name) {
  ApplyChartTheme(Chart, GetChartTheme(Name));
}

} // namespace kx
