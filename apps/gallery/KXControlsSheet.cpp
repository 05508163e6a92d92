// The controls sheet: a form laid out with aligned panels of every bevel and border kind,
// paint boxes that draw through OnPaint (one sticking out of its panel, so clipped), and a
// hint window beside them.
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHintWindow.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx::gallery {

namespace {

constexpr TColor Ink = static_cast<TColor>(0x403830);
constexpr TColor Steel = static_cast<TColor>(0xD8A05A);
constexpr TColor Amber = static_cast<TColor>(0x3C8CE6);
constexpr TColor Sage = static_cast<TColor>(0x8FBC8F);
constexpr TColor Paper = static_cast<TColor>(0xF4ECE4);
constexpr TColor Rose = static_cast<TColor>(0xC8B4F0);

TPanel* AddPanel(TForm* Form, TWinControl* Parent, const std::string& Caption, TAlign Align,
                 int32_t Size) {
  auto* P = New<TPanel>(Form);
  P->SetParent(Parent);
  P->SetCaption(Caption);
  if (Align == alTop || Align == alBottom)
    P->SetHeight(Size);
  else
    P->SetWidth(Size);
  P->SetAlign(Align);
  return P;
}

// One panel of the bevel grid, with its settings written as its caption.
struct TBevelCase {
  TBevelCut Outer, Inner;
  int32_t BevelWidth, BorderWidth;
  TBorderStyle Style;
  TColor Color;
};

// "raised / lowered, 2 + 4, single": the bevels without their "bv", then the bevel width and
// the border width where they are not the defaults, then a single border.
std::string Describe(const TBevelCase& B) {
  auto Cut = [](TBevelCut C) {
    std::string N = GetEnumName(C).substr(2);
    N[0] = static_cast<char>(N[0] - 'A' + 'a');
    return N;
  };
  std::string T = Cut(B.Outer) + " / " + Cut(B.Inner);
  if (B.BevelWidth != 1 || B.BorderWidth)
    T += ", " + std::to_string(B.BevelWidth) + " + " + std::to_string(B.BorderWidth);
  if (B.Style == bsSingle) T += ", single";
  return T;
}

// A paint box that draws a small bar chart of its own with OnPaint.
TPaintBox* AddBars(TForm* Form, TWinControl* Parent, TRect R) {
  auto* Box = New<TPaintBox>(Form);
  Box->SetParent(Parent);
  Box->SetBoundsRect(R);
  Box->SetOnPaint([Box](TObject*) {
    TCanvas* C = Box->Canvas();
    const TRect Area = Box->ClientRect();
    C->Brush()->SetColor(clWhite);
    C->Pen()->SetColor(Ink);
    C->Rectangle(Area);
    const int Values[] = {35, 60, 45, 80, 55, 70};
    const int32_t W = (Area.Width() - 12) / 6;
    for (int I = 0; I < 6; ++I) {
      const int32_t X = Area.Left + 6 + I * W, H = (Area.Height() - 14) * Values[I] / 100;
      C->Brush()->SetColor(I % 2 ? Steel : Amber);
      C->Pen()->SetColor(Ink);
      C->Rectangle(X + 2, Area.Bottom - 6 - H, X + W - 2, Area.Bottom - 6);
    }
  });
  return Box;
}

// A paint box with a ring and a label, to show text and antialiased shapes on the form.
TPaintBox* AddRing(TForm* Form, TWinControl* Parent, TRect R, TColor Fill) {
  auto* Box = New<TPaintBox>(Form);
  Box->SetParent(Parent);
  Box->SetBoundsRect(R);
  Box->SetOnPaint([Box, Fill](TObject*) {
    TCanvas* C = Box->Canvas();
    const TRect A = Box->ClientRect();
    const TRect Ring{A.Left + 4, A.Top + 4, A.Right - 4, A.Bottom - 4};
    C->Pen()->SetColor(Ink);
    C->Brush()->SetColor(Fill);
    DrawDonutSlice(C, Ring, 90, 331.2, 0, 0.55, 1.0);
    C->Brush()->SetColor(Paper);
    DrawDonutSlice(C, Ring, 331.2, 450, 0, 0.55, 1.0);
    C->Brush()->SetStyle(bsClear);
    C->Font()->SetColor(Ink);
    C->Font()->SetStyle({fsBold});
    const std::string Text = "67%";
    const TSize S = C->TextExtent(Text);
    C->TextOut(A.Left + (A.Width() - S.cx) / 2, A.Top + (A.Height() - S.cy) / 2, Text);
  });
  return Box;
}

void PaintControls(TCanvas* Canvas, const TRect& Area) {
  TOwned<TForm> Form = MakeOwned<TForm>(nullptr);
  Form->SetBounds(0, 0, Area.Width() - 40, Area.Height() - 40);
  Form->Font()->SetSize(9);

  TPanel* Title =
      AddPanel(Form.get(), Form.get(), "Controls: panels, bevels, paint boxes", alTop, 44);
  Title->Font()->SetSize(13);
  Title->Font()->SetStyle({fsBold});
  Title->SetColor(Paper);
  TPanel* Status =
      AddPanel(Form.get(), Form.get(), "  Ready: a form with aligned panels", alBottom, 24);
  Status->SetBevelOuter(bvLowered);
  Status->SetAlignment(taLeftJustify);
  TPanel* Side = AddPanel(Form.get(), Form.get(), "Left aligned", alLeft, 170);
  Side->SetBevelInner(bvLowered);
  Side->SetBorderWidth(4);
  Side->SetVerticalAlignment(taAlignTop);
  Side->SetColor(Sage);
  TPanel* Body = AddPanel(Form.get(), Form.get(), "", alClient, 0);
  Body->SetBevelOuter(bvNone);

  // The side panel holds two paint boxes; the second sticks out at the bottom and is cut.
  AddRing(Form.get(), Side, {20, 40, 150, 170}, Amber);
  AddBars(Form.get(), Side, {15, Side->Height() - 70, 155, Side->Height() + 30});

  const TBevelCase Cases[] = {
      {bvRaised, bvNone, 1, 0, bsNone, clBtnFace},  {bvLowered, bvNone, 1, 0, bsNone, clBtnFace},
      {bvRaised, bvLowered, 2, 0, bsNone, Paper},   {bvLowered, bvRaised, 1, 4, bsNone, Rose},
      {bvNone, bvNone, 1, 0, bsSingle, clWhite},    {bvRaised, bvRaised, 3, 2, bsSingle, Steel},
      {bvSpace, bvLowered, 2, 6, bsNone, Sage},     {bvNone, bvLowered, 1, 0, bsNone, clWindow},
      {bvRaised, bvSpace, 4, 0, bsSingle, clInfoBk}};
  const int32_t Columns = 3, Gap = 12;
  const int32_t CellW = (Body->Width() - Gap * (Columns + 1)) / Columns;
  const int32_t CellH = 86;
  for (int I = 0; I < 9; ++I) {
    const TBevelCase& B = Cases[I];
    auto* P = New<TPanel>(Form.get());
    P->SetParent(Body);
    const int32_t X = Gap + (I % Columns) * (CellW + Gap), Y = Gap + (I / Columns) * (CellH + Gap);
    P->SetBounds(X, Y, CellW, CellH);
    P->SetBevelOuter(B.Outer);
    P->SetBevelInner(B.Inner);
    P->SetBevelWidth(B.BevelWidth);
    P->SetBorderWidth(B.BorderWidth);
    P->SetBorderStyle(B.Style);
    P->SetColor(B.Color);
    P->SetCaption(Describe(B));
    P->Font()->SetSize(8);
    P->SetAlignment(I % 3 == 0 ? taLeftJustify : I % 3 == 1 ? taCenter : taRightJustify);
    P->SetVerticalAlignment(I / 3 == 0   ? taAlignTop
                            : I / 3 == 1 ? taVerticalCenter
                                         : taAlignBottom);
  }
  // A disabled panel greys its caption; a wide one below holds a chart-like paint box.
  auto* Wide = New<TPanel>(Form.get());
  Wide->SetParent(Body);
  const int32_t WideTop = Gap + 3 * (CellH + Gap);
  Wide->SetBounds(Gap, WideTop, Body->Width() - 2 * Gap, Body->Height() - WideTop - Gap);
  Wide->SetBevelInner(bvLowered);
  Wide->SetBorderWidth(3);
  Wide->SetCaption("Disabled panel: grey caption");
  Wide->SetAlignment(taRightJustify);
  Wide->SetVerticalAlignment(taAlignTop);
  Wide->SetEnabled(false);
  AddBars(Form.get(), Wide, {12, 12, 260, Wide->Height() - 12});
  AddRing(Form.get(), Wide, {272, 12, 272 + Wide->Height() - 24, Wide->Height() - 12}, Steel);

  const int32_t X = Area.Left + 20, Y = Area.Top + 20;
  Form->PaintTo(Canvas, X, Y);

  // A hint window, as a chart panel shows one beside its crosshair.
  TOwned<TKXHintWindow> Hint = MakeOwned<TKXHintWindow>(nullptr);
  Hint->Font()->SetSize(9);
  Hint->SetCorner(2);
  const TPoint At = Wide->ClientToScreen({140, Wide->Height() / 2});
  Hint->ActivateHint({X + At.X, Y + At.Y}, "Jun 2024, 80.0");
  Canvas->Pen()->SetColor(clRed);
  Canvas->MoveTo(X + At.X - 6, Y + At.Y);
  Canvas->LineTo(X + At.X + 7, Y + At.Y);
  Canvas->MoveTo(X + At.X, Y + At.Y - 6);
  Canvas->LineTo(X + At.X, Y + At.Y + 7);
  Hint->PaintTo(Canvas, Hint->Left(), Hint->Top());
}

} // namespace

void AddControlsSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"controls",
                    "Controls: a form with aligned panels, bevels, borders and paint boxes", 1000,
                    760, PaintControls});
}

} // namespace kx::gallery
