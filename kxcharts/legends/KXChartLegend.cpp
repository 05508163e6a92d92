#include "kxcharts/legends/KXChartLegend.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <vector>

#include "kxcharts/core/KXChartLayout.h"
#include "kxcharts/core/KXChartList.h"
#include "kxcharts/core/KXChartValues.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

namespace {

// The legend's pixel sums run in 64 bits and are clamped back, so that no rectangle, font
// or margin overflows.
int32_t Clamp32(int64_t V) {
  return static_cast<int32_t>(std::clamp<int64_t>(V, INT32_MIN, INT32_MAX));
}

// The gap between a glyph and its text.
constexpr int64_t GlyphGap = 10;

} // namespace

// --- Life ---

void TKXChartLegend::Initialize() {
  inherited::Initialize();
  FBrush = MakeOwned<TBrush>();
  FPen = MakeOwned<TPen>();
  FMargins = MakeOwned<TKXObjectRect>(DefaultMarginsRect());
  FLines = MakeOwned<TStringList>();
  FShadow = MakeOwned<TKXChartShadow>();
  SetAlignment(taLeftJustify);
}

void TKXChartLegend::InitializeEvents() {
  inherited::InitializeEvents();
  FBrush->SetOnChange(SenderChangedHandler());
  FPen->SetOnChange(SenderChangedHandler());
  FMargins->SetOnChange(SenderChangedHandler());
  FShadow->SetOnChange(SenderChangedHandler());
}

void TKXChartLegend::AfterConstruction() {
  inherited::AfterConstruction();
  if (!FOwner) return;
  Font()->Assign(FOwner->Font());
  Font()->SetBaseFont(FOwner->Font());
}

// --- Properties ---

void TKXChartLegend::SetMaxColumns(int32_t Value) {
  Value = std::max(Value, 1);
  if (Value == FMaxColumns) return;
  FMaxColumns = Value;
  Changed();
}

void TKXChartLegend::SetMaxRows(int32_t Value) {
  Value = std::max(Value, 1);
  if (Value == FMaxRows) return;
  FMaxRows = Value;
  // The gathered lines were cut at the old number.
  FNeedsUpdate = true;
  Changed();
}

void TKXChartLegend::SetBoxSize(int32_t Value) {
  Value = std::max(Value, 4);
  if (Value == FBoxSize) return;
  FBoxSize = Value;
  Changed();
}

void TKXChartLegend::SetFirstIndex(int32_t Value) {
  Value = std::max(Value, 0);
  if (Value == FFirstIndex) return;
  FFirstIndex = Value;
  FNeedsUpdate = true;
  Changed();
}

void TKXChartLegend::SetLegendStyle(TKXLegendStyle Value) {
  if (Value == FLegendStyle) return;
  FLegendStyle = Value;
  FNeedsUpdate = true;
  Changed();
}

void TKXChartLegend::SetTextStyle(TKXLegendTextStyle Value) {
  if (Value == FTextStyle) return;
  FTextStyle = Value;
  FNeedsUpdate = true;
  Changed();
}

void TKXChartLegend::SetAlign(TKXLegendAlignment Value) {
  if (Value == FAlign) return;
  FAlign = Value;
  Changed();
}

void TKXChartLegend::SetFixed(bool Value) {
  if (Value == FFixed) return;
  FFixed = Value;
  if (!Value) FNeedsUpdate = true;
  Changed();
}

TStrings* TKXChartLegend::Lines() {
  if (!FFixed && FNeedsUpdate) GetLegendStrings();
  return FLines.get();
}

void TKXChartLegend::SetLines(const TStrings* Value) {
  bool Differs = Value ? !FLines->Equals(Value) : FLines->Count() > 0;
  if (Value)
    FLines->Assign(Value);
  else
    FLines->Clear();
  if (FOwner && FOwner->ComponentState().Contains(csDesigning) && !FFixed) {
    FFixed = true;
    Differs = true;
  }
  if (Differs) Changed();
}

void TKXChartLegend::SetOverlay(bool Value) {
  if (Value == FOverlay) return;
  FOverlay = Value;
  Changed();
}

void TKXChartLegend::SetRectStyle(TKXLegendRectStyle Value) {
  if (Value == FRectStyle) return;
  FRectStyle = Value;
  MatchShadowToRectStyle();
  Changed();
}

void TKXChartLegend::MatchShadowToRectStyle() {
  if (FRectStyle == lrsRectangle)
    FShadow->SetStyle(shpRectangle);
  else if (FRectStyle == lrsRoundRect)
    FShadow->SetStyle(shpRoundRect);
}

void TKXChartLegend::SetMaxWidthPct(int32_t Value) {
  Value = std::clamp(Value, 1, 100);
  if (Value == FMaxWidthPct) return;
  FMaxWidthPct = Value;
  Changed();
}

void TKXChartLegend::SetResizeBounds(bool Value) {
  if (Value == FResizeBounds) return;
  FResizeBounds = Value;
  Changed();
}

void TKXChartLegend::SetOptions(TKXLegendOptions Value) {
  if (Value == FOptions) return;
  FOptions = Value;
  Changed();
}

void TKXChartLegend::SetTextVerticalAlign(TVerticalAlignment Value) {
  if (Value == FTextVerticalAlign) return;
  FTextVerticalAlign = Value;
  Changed();
}

void TKXChartLegend::SetFont(const TFont* Value) {
  inherited::SetFont(Value);
  if (FOwner) Font()->SetBaseFont(FOwner->Font());
}

void TKXChartLegend::SenderChanged(TObject* Sender) {
  if (Sender == FMargins.get()) {
    const TRect M = FMargins->Rect();
    if (M.Left < 0 || M.Top < 0 || M.Right < 0 || M.Bottom < 0) {
      // The write-back reports the change again, and this time it passes.
      FMargins->SetRect(
          {std::max(M.Left, 0), std::max(M.Top, 0), std::max(M.Right, 0), std::max(M.Bottom, 0)});
      return;
    }
  }
  inherited::SenderChanged(Sender);
}

void TKXChartLegend::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* L = dynamic_cast<const TKXChartLegend*>(Source)) {
    FBrush->Assign(L->FBrush.get());
    FPen->Assign(L->FPen.get());
    FMaxColumns = L->FMaxColumns;
    FMaxRows = L->FMaxRows;
    FBoxSize = L->FBoxSize;
    FFirstIndex = L->FFirstIndex;
    FLegendStyle = L->FLegendStyle;
    FRectStyle = L->FRectStyle;
    FTextStyle = L->FTextStyle;
    FAlign = L->FAlign;
    FTextVerticalAlign = L->FTextVerticalAlign;
    FOptions = L->FOptions;
    FLines->Assign(L->FLines.get());
    FFixed = L->FFixed;
    FNeedsUpdate = L->FNeedsUpdate;
    FMargins->Assign(L->FMargins.get());
    FShadow->Assign(L->FShadow.get());
    // The shadow copies no shape of its own; it takes the box's.
    MatchShadowToRectStyle();
    FOverlay = L->FOverlay;
    FMaxWidthPct = L->FMaxWidthPct;
    FResizeBounds = L->FResizeBounds;
  }
  inherited::Assign(Source);
}

// --- Legend texts ---

bool IsLegendShowingCharts(const TKXCustomChartPanel* Panel, TKXLegendStyle LegendStyle) {
  switch (LegendStyle) {
  case lsCharts:
  case lsChartsLastValue:
    return true;
  case lsAuto:
    return Panel && Panel->Charts()->NumLegendVisible() > 1;
  default:
    return false;
  }
}

std::string GetLegendText(const TKXCustomChart* Chart, const TKXChartValue* Value,
                          TKXLegendStyle LegendStyle, TKXLegendTextStyle TextStyle) {
  if (!Chart) return "";
  if (LegendStyle == lsAuto)
    LegendStyle = IsLegendShowingCharts(Chart->Panel(), lsAuto) ? lsCharts : lsValues;
  switch (LegendStyle) {
  case lsValues:
    return Value ? Chart->FormatValue(Value, TextStyle) : "";
  case lsCharts:
  case lsChartsLastValue: {
    std::string S = Chart->Caption();
    if (S.empty()) S = Chart->Name();
    if (S.empty()) S = Chart->ClassName();
    const TKXChartValues* V = Chart->Values();
    if (LegendStyle == lsChartsLastValue && V->Count() > 0)
      S += " " + Chart->FormatValue(V->Items(V->Count() - 1), TextStyle);
    return S;
  }
  default:
    return "";
  }
}

// --- Gathering ---

bool TKXChartLegend::IsShowingCharts() const {
  return IsLegendShowingCharts(FOwner, FLegendStyle);
}

std::string TKXChartLegend::FormatValue(const TKXCustomChart* Chart, int32_t Index) const {
  if (!Chart) return "";
  return Chart->FormatValue(Chart->Values()->Items(Index), FTextStyle);
}

void TKXChartLegend::GetLegendStrings() {
  {
    TUpdateScope<TStrings> Scope(FLines.get());
    FLines->Clear();
    if (FOnGetLegendStrings) FOnGetLegendStrings(this, FLines.get());
    if (FOwner) {
      FOwner->GetLegendStrings(FLines.get());
      const TKXChartList* Charts = FOwner->Charts();
      if (IsShowingCharts()) {
        for (int32_t I = FFirstIndex; FLines->Count() < FMaxRows && I < Charts->Count(); ++I) {
          TKXCustomChart* Chart = Charts->Items(I);
          if (Chart->Visible() && Chart->Options().Contains(coShowInLegend))
            FLines->AddObject(GetLegendText(Chart, nullptr, FLegendStyle, FTextStyle), Chart);
        }
      } else if (TKXCustomChart* Active = Charts->ActiveChart()) {
        const TKXChartValues* Values = Active->Values();
        for (int32_t I = FFirstIndex; FLines->Count() < FMaxRows - 1 && I < Values->Count(); ++I) {
          TKXChartValue* Value = Values->Items(I);
          if (Value->Visible())
            FLines->AddObject(GetLegendText(Active, Value, FLegendStyle, FTextStyle), Value);
        }
      }
    }
  }
  // Only a complete gathering counts: after a handler raised, the next read tries again.
  FNeedsUpdate = false;
}

// --- Measuring ---

int32_t TKXChartLegend::LongestLine(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetFont(Font());
  const int32_t Cap = CanvasRound(KXRectWidth(ARect) * (FMaxWidthPct / 100.0));
  const TStrings* L = Lines();
  int32_t Result = 0;
  for (int32_t I = 0; I < L->Count(); ++I) {
    const int32_t W = Canvas->TextWidth(L->Strings(I));
    if (W >= Cap) return Cap;
    Result = std::max(Result, W);
  }
  return Result;
}

TSize TKXChartLegend::Size(TCanvas* Canvas, const TRect& ARect, int32_t& LongestWidth) {
  LongestWidth = LongestLine(Canvas, ARect);
  int64_t RowH = Canvas->TextHeight("A");
  if (FOptions.Contains(loLargeGlyphs)) RowH = std::max<int64_t>(RowH, FBoxSize);
  const int64_t Sh = FShadow->Visible() ? FShadow->Size() : 0;
  const int64_t ML = FMargins->Left(), MT = FMargins->Top();
  const int64_t MR = FMargins->Right(), MB = FMargins->Bottom();
  const int64_t Count = Lines()->Count();
  const int64_t LW = LongestWidth;
  int64_t CX, CY;
  if (FAlign == laLeft || FAlign == laRight) {
    CX = ML + LW + FBoxSize + MR + Sh + GlyphGap;
    // No more rows than the walk draws, so the box ends under the last line drawn.
    CY = MT + RowH * std::min<int64_t>(Count, FMaxRows) + MB + Sh;
  } else {
    // A column as wide as the walk steps (glyph, margins and gap with the text), so that
    // the last column ends inside the box.
    const int64_t ColW = ColumnStep(LW, RowH);
    const double Fit = ColW > 0 ? std::trunc(KXRectWidth(ARect) / double(ColW)) : 1.0;
    const int64_t Cols = Fit >= 1 ? static_cast<int64_t>(Fit) : 1;
    const int64_t Rows = std::min<int64_t>(FMaxRows, (Count + Cols - 1) / Cols);
    CX = ML + ColW * Cols + MR + Sh;
    CY = MT + RowH * Rows + MB + Sh;
  }
  return {Clamp32(CX), Clamp32(CY)};
}

TRect TKXChartLegend::BoundsRect(TCanvas* Canvas, const TRect& ARect, int32_t& LongestWidth) {
  const TSize S = Size(Canvas, ARect, LongestWidth);
  if (!FResizeBounds) return ARect;
  const int64_t ML = FMargins->Left(), MT = FMargins->Top();
  const int64_t MR = FMargins->Right(), MB = FMargins->Bottom();
  const int64_t W = S.cx + ML + MR, H = S.cy + MT + MB;
  const TPoint C = CanvasCenterPoint(ARect);
  const int64_t Half = CanvasDiv(S.cx, 2);
  switch (FAlign) {
  case laLeft:
    return {ARect.Left, ARect.Top, Clamp32(ARect.Left + W),
            Clamp32(std::min<int64_t>(ARect.Bottom, ARect.Top + H))};
  case laRight:
    return {Clamp32(ARect.Right - W), ARect.Top, ARect.Right,
            Clamp32(std::min<int64_t>(ARect.Bottom, ARect.Top + H))};
  case laBottom:
    return {Clamp32(C.X - Half), Clamp32(ARect.Bottom - H), Clamp32(C.X + Half), ARect.Bottom};
  case laTop:
  default:
    return {Clamp32(C.X - Half), ARect.Top, Clamp32(C.X + Half), Clamp32(ARect.Top + H)};
  }
}

int64_t TKXChartLegend::ColumnStep(int64_t LongestWidth, int64_t TextHeight) const {
  const int64_t G =
      FOptions.Contains(loLargeGlyphs) ? std::max<int64_t>(FBoxSize, TextHeight) : FBoxSize;
  return LongestWidth + G + std::abs(int64_t(FMargins->Left())) +
         std::abs(int64_t(FMargins->Right())) + GlyphGap;
}

// --- Drawing ---

void TKXChartLegend::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetFont(Font());
  int32_t LongestWidth = 0;
  const TRect B = BoundsRect(Canvas, ARect, LongestWidth);
  TRect R = ModifyRectByMargins(B, FMargins.get(), true);
  if (FShadow->Visible() && FRectStyle != lrsNone) {
    FShadow->Draw(Canvas, R, FShadow->Style(), Opacity());
    R = FShadow->NonShadowRect(R, true, nullptr);
  }
  Canvas->SetBrush(FBrush.get());
  Canvas->SetPen(FPen.get());
  if (FRectStyle == lrsRectangle)
    Canvas->Rectangle(R);
  else if (FRectStyle == lrsRoundRect)
    Canvas->RoundRect(R, CanvasDiv(Clamp32(int64_t(R.Right) - R.Left), 5),
                      CanvasDiv(Clamp32(int64_t(R.Bottom) - R.Top), 5));

  const int64_t ML = FMargins->Left(), MT = FMargins->Top();
  const int64_t MR = FMargins->Right(), MB = FMargins->Bottom();
  const int64_t Right = R.Right - MR, Bottom = R.Bottom - MB;
  int64_t X = R.Left + ML, Y = R.Top + MT;
  int32_t Row = 0, Col = 1;
  // On the panel's own canvas nothing may reach outside the box's inside; a foreign
  // canvas (a picture being composed) is left as it is.
  std::optional<TCanvasClip> Clip;
  if (FOwner && Canvas == FOwner->Canvas())
    Clip.emplace(Canvas, TRect{Clamp32(X), Clamp32(Y), Clamp32(Right), Clamp32(Bottom)});
  const int64_t TH = Canvas->TextHeight("A");
  const bool Large = FOptions.Contains(loLargeGlyphs);
  // A large glyph is square and as high as its row, so rows step by the glyph too.
  const int64_t RowH = Large ? std::max<int64_t>(FBoxSize, TH) : TH;
  const int64_t Step = ColumnStep(LongestWidth, TH);
  const int32_t Count = Lines()->Count();
  for (int32_t I = 0; I < Count; ++I) {
    DrawLabel(Canvas, I, Clamp32(X), Clamp32(Y), LongestWidth);
    X += Step;
    ++Col;
    if (X >= Right || Col > FMaxColumns) {
      ++Row;
      Col = 1;
      Y += RowH;
      X = R.Left + ML;
      // MaxRows rows are drawn, as many as the lines gathered for charts.
      if (Row == FMaxRows || Y >= Bottom) break;
    }
  }
}

int32_t TKXChartLegend::DrawGlyph(TCanvas* Canvas, int32_t Index, int32_t X, int32_t Y) {
  const int32_t TH = Canvas->TextHeight("A");
  int32_t Result;
  TRect Box;
  if (!FOptions.Contains(loLargeGlyphs)) {
    Result = TH;
    Box = {X, Clamp32(Y + 1LL), Clamp32(int64_t(X) + FBoxSize), Clamp32(int64_t(Y) + TH - 2)};
  } else {
    const int32_t S = std::max(FBoxSize, TH);
    Result = S;
    Box = {X, Clamp32(Y + 1LL), Clamp32(int64_t(X) + S - 2), Clamp32(int64_t(Y) + S - 2)};
  }
  TObject* Obj = Lines()->Objects(Index);
  if (!Obj) return Result;
  auto* Chart = dynamic_cast<TKXCustomChart*>(Obj);
  auto* Value = dynamic_cast<TKXChartValue*>(Obj);
  TKXCustomChart* ValueChart =
      Value && Value->Collection() ? Value->Collection()->Owner() : nullptr;
  if (!FOptions.Contains(loChartGlyphs)) {
    const TColor Saved = Canvas->Brush()->Color();
    TFinally Restore([Canvas, Saved] { Canvas->Brush()->SetColor(Saved); });
    if (Chart)
      Canvas->Brush()->SetColor(Chart->GetColor());
    else if (ValueChart)
      Canvas->Brush()->SetColor(ValueChart->GetColor(Value));
    Canvas->Rectangle(Box);
  } else if (Chart) {
    Chart->DrawGlyph(Canvas, Box);
  } else if (ValueChart) {
    ValueChart->DrawGlyph(Canvas, Value, Box);
  } else {
    Canvas->Rectangle(Box);
  }
  return Result;
}

void TKXChartLegend::DrawLabel(TCanvas* Canvas, int32_t Index, int32_t X, int32_t Y,
                               int32_t Width) {
  const int32_t H = DrawGlyph(Canvas, Index, X, Y);
  const int64_t TX = X + int64_t(FOptions.Contains(loLargeGlyphs) ? H : FBoxSize) + GlyphGap;
  const TBrushStyle Saved = Canvas->Brush()->Style();
  TFinally Restore([Canvas, Saved] { Canvas->Brush()->SetStyle(Saved); });
  Canvas->Brush()->SetStyle(bsClear);
  const int32_t TH = Canvas->TextHeight("A");
  int64_t TY;
  switch (FTextVerticalAlign) {
  case taAlignTop:
    TY = Y;
    break;
  case taAlignBottom:
    TY = int64_t(Y) + H - TH;
    break;
  default:
    TY = Y + int64_t(CanvasDiv(Clamp32(int64_t(H) - TH), 2));
  }
  const std::string Text = Lines()->Strings(Index);
  int64_t Left = TX;
  if (Alignment() == taRightJustify)
    Left = TX + Width - Canvas->TextWidth(Text);
  else if (Alignment() == taCenter)
    Left = TX + CanvasDiv(Clamp32(int64_t(Width) - Canvas->TextWidth(Text)), 2);
  Canvas->TextOut(Clamp32(Left), Clamp32(TY), Text);
}

// --- Stored properties ---

void TKXChartLegend::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Align", this, &TKXChartLegend::Align, &TKXChartLegend::SetAlign, laRight);
  Filer.Property("TextVerticalAlign", this, &TKXChartLegend::TextVerticalAlign,
                 &TKXChartLegend::SetTextVerticalAlign, taVerticalCenter);
  Filer.Property("BoxSize", this, &TKXChartLegend::BoxSize, &TKXChartLegend::SetBoxSize, 10);
  Filer.Property("Fixed", this, &TKXChartLegend::Fixed, &TKXChartLegend::SetFixed, false);
  Filer.Property("FirstIndex", this, &TKXChartLegend::FirstIndex, &TKXChartLegend::SetFirstIndex,
                 0);
  Filer.Property("Margins", this, &TKXChartLegend::Margins);
  Filer.Property("MaxColumns", this, &TKXChartLegend::MaxColumns, &TKXChartLegend::SetMaxColumns,
                 10);
  Filer.Property("MaxRows", this, &TKXChartLegend::MaxRows, &TKXChartLegend::SetMaxRows, 10);
  Filer.DefineProperty(
      "Lines",
      [this](TReader& Reader) {
        auto Read = MakeOwned<TStringList>();
        for (const std::string& S : Reader.ReadStrings())
          Read->Add(S);
        SetLines(Read.get());
      },
      [this](TWriter& Writer) {
        std::vector<std::string> Texts;
        Texts.reserve(static_cast<size_t>(FLines->Count()));
        for (int32_t I = 0; I < FLines->Count(); ++I)
          Texts.push_back(FLines->Strings(I));
        Writer.WriteStrings(Texts);
      },
      FFixed && FLines->Count() > 0);
  Filer.Property("Brush", this, &TKXChartLegend::Brush);
  Filer.Property("Pen", this, &TKXChartLegend::Pen);
  Filer.Property("Shadow", this, &TKXChartLegend::Shadow);
  Filer.Property("Overlay", this, &TKXChartLegend::Overlay, &TKXChartLegend::SetOverlay, false);
  Filer.Property("Options", this, &TKXChartLegend::Options, &TKXChartLegend::SetOptions,
                 TKXLegendOptions{});
  Filer.Property("LegendStyle", this, &TKXChartLegend::LegendStyle, &TKXChartLegend::SetLegendStyle,
                 lsAuto);
  Filer.Property("RectStyle", this, &TKXChartLegend::RectStyle, &TKXChartLegend::SetRectStyle,
                 lrsRectangle);
  Filer.Property("TextStyle", this, &TKXChartLegend::TextStyle, &TKXChartLegend::SetTextStyle,
                 ltsValue);
  Filer.Property("MaxWidthPct", this, &TKXChartLegend::MaxWidthPct, &TKXChartLegend::SetMaxWidthPct,
                 25);
}

} // namespace kx
