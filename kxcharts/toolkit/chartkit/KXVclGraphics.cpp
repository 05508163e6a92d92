#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace kx {

namespace {

constexpr double Pi = std::numbers::pi;

// R with its corners in order and within the canvas's safe range.
TRect Ordered(const TRect& R) {
  const TRect F = FixRect(R);
  return {TCanvas::Safe(F.Left), TCanvas::Safe(F.Top), TCanvas::Safe(F.Right),
          TCanvas::Safe(F.Bottom)};
}

bool Visible(float Opacity) {
  return !std::isnan(Opacity) && Opacity > 0;
}

int32_t PenWidthOf(const TCanvas* Canvas) {
  return Canvas->Pen()->Style() == psClear ? 0 : Canvas->EffectivePenWidth();
}

struct TPt {
  double X = 0, Y = 0;
};

} // namespace

// --- Lines and pens ---

void TVclCanvasHelper::DrawLine(TCanvas* Canvas, const TPoint& P1, const TPoint& P2) {
  Canvas->MoveTo(P1.X, P1.Y);
  Canvas->LineTo(P2.X, P2.Y);
}

void TVclCanvasHelper::DrawLine(TCanvas* Canvas, int32_t X1, int32_t Y1, int32_t X2, int32_t Y2) {
  DrawLine(Canvas, TPoint{X1, Y1}, TPoint{X2, Y2});
}

int32_t TVclCanvasHelper::GetPenWidth(const TCanvas* Canvas) {
  return Canvas->EffectivePenWidth();
}

void TVclCanvasHelper::SetPenWidth(TCanvas* Canvas, int32_t Width) {
  Canvas->Pen()->SetWidth(Width);
}

// --- Shapes ---
//
// The polygonal shapes are kept in a unit box (0..1 both ways) with the largest convenient
// rectangle inside them; drawing maps both into the shape's box less half the pen.

namespace {

struct TShapeGeometry {
  std::vector<TPt> Outline; // empty for the shapes Cairo draws itself
  TPt InnerTopLeft, InnerBottomRight;
};

// Points on a circle, normalised into the unit box by their own bounds.
TShapeGeometry RegularShape(int Corners, double InnerRatio, double StartDegrees) {
  TShapeGeometry G;
  const int N = InnerRatio > 0 ? 2 * Corners : Corners;
  for (int I = 0; I < N; ++I) {
    const double A = (StartDegrees + I * 360.0 / N) * Pi / 180;
    const double R = (InnerRatio > 0 && I % 2 == 1) ? InnerRatio : 1.0;
    G.Outline.push_back({R * std::cos(A), -R * std::sin(A)});
  }
  double X0 = 1e9, Y0 = 1e9, X1 = -1e9, Y1 = -1e9;
  for (const TPt& P : G.Outline) {
    X0 = std::min(X0, P.X), X1 = std::max(X1, P.X);
    Y0 = std::min(Y0, P.Y), Y1 = std::max(Y1, P.Y);
  }
  auto Map = [&](TPt P) { return TPt{(P.X - X0) / (X1 - X0), (P.Y - Y0) / (Y1 - Y0)}; };
  for (TPt& P : G.Outline)
    P = Map(P);
  if (InnerRatio > 0) {
    // Between the two inner corners beside the side arms, from the arms' upper edges down to
    // the level of those corners: the widest rectangle the star's body holds.
    const double A = (StartDegrees - 360.0 / N * 3) * Pi / 180;
    const double HalfWidth = InnerRatio * std::cos(A), Low = -InnerRatio * std::sin(A);
    const double High = -std::sin((StartDegrees - 360.0 / Corners) * Pi / 180);
    G.InnerTopLeft = Map({-HalfWidth, High});
    G.InnerBottomRight = Map({HalfWidth, Low});
  } else {
    // Pentagon: between the bottom corners, from the height of the side corners down.
    const TPt& Side = G.Outline[1];
    const TPt& BottomLeft = G.Outline[2];
    const TPt& BottomRight = G.Outline[3];
    G.InnerTopLeft = {std::min(BottomLeft.X, BottomRight.X), Side.Y};
    G.InnerBottomRight = {std::max(BottomLeft.X, BottomRight.X), 1.0};
  }
  return G;
}

const TShapeGeometry& Geometry(TKXShapeStyle Base) {
  static const std::array<TShapeGeometry, 12> Table = [] {
    std::array<TShapeGeometry, 12> T;
    const double Ellipse = 0.5 - 0.5 / std::sqrt(2.0);
    T[shpRectangle] = {{}, {0, 0}, {1, 1}};
    T[shpEllipse] = {{}, {Ellipse, Ellipse}, {1 - Ellipse, 1 - Ellipse}};
    T[shpImage] = T[shpRectangle];
    T[shpDiamond] = {{{0.5, 0}, {1, 0.5}, {0.5, 1}, {0, 0.5}}, {0.25, 0.25}, {0.75, 0.75}};
    T[shpTriangleUp] = {{{0.5, 0}, {1, 1}, {0, 1}}, {0.25, 0.5}, {0.75, 1}};
    T[shpTriangleDown] = {{{0, 0}, {1, 0}, {0.5, 1}}, {0.25, 0}, {0.75, 0.5}};
    T[shpHexagon] = {
        {{0, 0.5}, {0.25, 0}, {0.75, 0}, {1, 0.5}, {0.75, 1}, {0.25, 1}}, {0.25, 0}, {0.75, 1}};
    T[shpStar] = RegularShape(5, 0.382, 90);
    // The corner is a quarter ellipse of a fifth of the box, like the legend's rounded box.
    const double Corner = 0.1 * (1 - 1 / std::sqrt(2.0));
    T[shpRoundRect] = {{}, {Corner, Corner}, {1 - Corner, 1 - Corner}};
    const double A = 1.0 / 3, B = 2.0 / 3;
    T[shpCross] = {{{A, 0},
                    {B, 0},
                    {B, A},
                    {1, A},
                    {1, B},
                    {B, B},
                    {B, 1},
                    {A, 1},
                    {A, B},
                    {0, B},
                    {0, A},
                    {A, A}},
                   {0, A},
                   {1, B}};
    const double C = 1 - 1 / std::sqrt(2.0);
    T[shpOctagon] = {
        {{C, 0}, {1 - C, 0}, {1, C}, {1, 1 - C}, {1 - C, 1}, {C, 1}, {0, 1 - C}, {0, C}},
        {C / 2, C / 2},
        {1 - C / 2, 1 - C / 2}};
    T[shpPentagon] = RegularShape(5, 0, 90);
    return T;
  }();
  return Table[Base];
}

// The flat style and whether it is lit.
TKXShapeStyle BaseStyle(TKXShapeStyle Style, bool& Lit) {
  const int S = Style;
  Lit = S >= shpRectangle3D && S <= shpPentagon3D;
  if (Lit) return static_cast<TKXShapeStyle>(S - shpRectangle3D);
  return S <= shpPentagon ? Style : shpRectangle;
}

// The box the outline runs through: B less half the pen on every side.
struct TBox {
  double L, T, R, B;
  double W() const { return R - L; }
  double H() const { return B - T; }
  TPt Map(TPt P) const { return {L + P.X * W(), T + P.Y * H()}; }
};

TBox PenBox(const TRect& B, int32_t Pen) {
  const double H = Pen / 2.0;
  TBox Box{B.Left + H, B.Top + H, B.Right - H, B.Bottom - H};
  if (Box.R < Box.L) Box.L = Box.R = (B.Left + B.Right) / 2.0;
  if (Box.B < Box.T) Box.T = Box.B = (B.Top + B.Bottom) / 2.0;
  return Box;
}

int32_t RimWidth(const TRect& B, int32_t Bevel) {
  return std::clamp(Bevel, 0, std::min(B.Width(), B.Height()) / 6);
}

// The outline of Base in Box as a polygon; the curved shapes are approximated closely.
std::vector<TPt> OutlinePolygon(TKXShapeStyle Base, const TBox& Box) {
  std::vector<TPt> P;
  const TShapeGeometry& G = Geometry(Base);
  if (!G.Outline.empty()) {
    for (const TPt& U : G.Outline)
      P.push_back(Box.Map(U));
    return P;
  }
  const double Cx = (Box.L + Box.R) / 2, Cy = (Box.T + Box.B) / 2;
  if (Base == shpEllipse) {
    for (int I = 0; I < 96; ++I) {
      const double A = I * 2 * Pi / 96;
      P.push_back({Cx + Box.W() / 2 * std::cos(A), Cy - Box.H() / 2 * std::sin(A)});
    }
    return P;
  }
  if (Base == shpRoundRect) {
    const double Rx = Box.W() / 10, Ry = Box.H() / 10;
    const TPt Centres[4] = {{Box.R - Rx, Box.T + Ry},
                            {Box.L + Rx, Box.T + Ry},
                            {Box.L + Rx, Box.B - Ry},
                            {Box.R - Rx, Box.B - Ry}};
    for (int C = 0; C < 4; ++C)
      for (int I = 0; I <= 12; ++I) {
        const double A = (C * 90 + I * 7.5) * Pi / 180;
        P.push_back({Centres[C].X + Rx * std::cos(A), Centres[C].Y - Ry * std::sin(A)});
      }
    return P;
  }
  return {{Box.L, Box.T}, {Box.R, Box.T}, {Box.R, Box.B}, {Box.L, Box.B}};
}

void AddPolygon(cairo_t* Cr, const std::vector<TPt>& P) {
  cairo_new_path(Cr);
  for (size_t I = 0; I < P.size(); ++I)
    (I == 0 ? cairo_move_to : cairo_line_to)(Cr, P[I].X, P[I].Y);
  cairo_close_path(Cr);
}

// Orientation-independent inward normals of the edges of P (zero for edges without length).
std::vector<TPt> InwardNormals(const std::vector<TPt>& P) {
  const size_t N = P.size();
  double Area = 0;
  for (size_t I = 0; I < N; ++I)
    Area += P[I].X * P[(I + 1) % N].Y - P[(I + 1) % N].X * P[I].Y;
  const double Inward = Area > 0 ? 1 : -1; // screen coordinates: y grows downward
  std::vector<TPt> Normal(N);
  for (size_t I = 0; I < N; ++I) {
    const TPt &A = P[I], &B = P[(I + 1) % N];
    const double Dx = B.X - A.X, Dy = B.Y - A.Y, Len = std::hypot(Dx, Dy);
    Normal[I] = Len > 0 ? TPt{-Dy / Len * Inward, Dx / Len * Inward} : TPt{0, 0};
  }
  return Normal;
}

// P with every edge moved inward by D, corners where the moved edges meet (mitred, but never
// further than 4 D from the old corner).
std::vector<TPt> Inset(const std::vector<TPt>& P, double D) {
  const size_t N = P.size();
  if (N < 3 || D == 0) return P;
  const std::vector<TPt> Normal = InwardNormals(P);
  std::vector<TPt> Q(N);
  for (size_t I = 0; I < N; ++I) {
    const TPt& N0 = Normal[(I + N - 1) % N];
    const TPt& N1 = Normal[I];
    const TPt M{N0.X + N1.X, N0.Y + N1.Y};
    const double Dot = M.X * N1.X + M.Y * N1.Y;
    const double Scale = Dot > 0.25 ? D / Dot : D * 4;
    Q[I] = {P[I].X + M.X * Scale, P[I].Y + M.Y * Scale};
  }
  return Q;
}

// The path the pen runs along: the ellipse in the box less half the pen, a polygon moved in
// by half the pen, so that the outside of the stroke is the shape in B.
void AddOutline(cairo_t* Cr, TKXShapeStyle Base, const TRect& B, int32_t Pen) {
  if (Base == shpEllipse) {
    const TBox Box = PenBox(B, Pen);
    cairo_new_path(Cr);
    cairo_save(Cr);
    cairo_translate(Cr, (Box.L + Box.R) / 2, (Box.T + Box.B) / 2);
    cairo_scale(Cr, std::max(Box.W(), 1e-6) / 2, std::max(Box.H(), 1e-6) / 2);
    cairo_arc(Cr, 0, 0, 1, 0, 2 * Pi);
    cairo_restore(Cr);
    cairo_close_path(Cr);
    return;
  }
  AddPolygon(Cr, Inset(OutlinePolygon(Base, PenBox(B, 0)), Pen / 2.0));
}

// The rim of a lit shape: the band of width D inside the outline, cut into one facet per
// edge, each shaded by how much it faces the light from the top left.
void DrawRim(cairo_t* Cr, bool Raster, const std::vector<TPt>& P, double D, TColor Light,
             TColor Dark) {
  const size_t N = P.size();
  if (N < 3 || D <= 0) return;
  const std::vector<TPt> Normal = InwardNormals(P);
  const std::vector<TPt> Q = Inset(P, D);
  cairo_save(Cr);
  if (Raster) {
    // A group on a bitmap is as large as the clip: keep it to the shape.
    double X0 = P[0].X, Y0 = P[0].Y, X1 = X0, Y1 = Y0;
    for (const TPt& V : P)
      X0 = std::min(X0, V.X), Y0 = std::min(Y0, V.Y), X1 = std::max(X1, V.X),
      Y1 = std::max(Y1, V.Y);
    cairo_new_path(Cr);
    cairo_rectangle(Cr, std::floor(X0) - 1, std::floor(Y0) - 1, std::ceil(X1 - X0) + 3,
                    std::ceil(Y1 - Y0) + 3);
    cairo_clip(Cr);
  }
  // The facets go into one group, which then fills only the band between the outline and
  // its inset, so that the strokes over the seams stay inside; a vector file holds the band
  // once rather than once per facet.
  cairo_push_group(Cr);
  cairo_set_line_width(Cr, 0.75);
  for (size_t I = 0; I < N; ++I) {
    const size_t J = (I + 1) % N;
    // The outward normal against the light from the top left: 1 faces it, -1 turns away.
    const double Facing = (Normal[I].X + Normal[I].Y) / std::sqrt(2.0);
    const double T = std::clamp((1 - Facing / std::sqrt(0.5)) / 2, 0.0, 1.0);
    SetSourceColor(Cr, InterpolateColor(Light, Dark, T));
    cairo_new_path(Cr);
    cairo_move_to(Cr, P[I].X, P[I].Y);
    cairo_line_to(Cr, P[J].X, P[J].Y);
    cairo_line_to(Cr, Q[J].X, Q[J].Y);
    cairo_line_to(Cr, Q[I].X, Q[I].Y);
    cairo_close_path(Cr);
    cairo_fill_preserve(Cr);
    cairo_stroke(Cr); // covers the hairline seams between antialiased facets
  }
  cairo_pop_group_to_source(Cr);
  AddPolygon(Cr, P);
  for (size_t I = 0; I < N; ++I)
    (I == 0 ? cairo_move_to : cairo_line_to)(Cr, Q[I].X, Q[I].Y);
  cairo_close_path(Cr);
  cairo_set_fill_rule(Cr, CAIRO_FILL_RULE_EVEN_ODD);
  cairo_fill(Cr);
  cairo_restore(Cr);
}

TRect InnerRect(const TRect& B, TKXShapeStyle Base, int32_t Pen, int32_t Rim) {
  if (B.IsEmpty()) return B;
  const TShapeGeometry& G = Geometry(Base);
  double L, T, R, Bo;
  if (Base == shpRectangle || Base == shpImage) {
    const int32_t In = Base == shpImage ? 0 : Pen + Rim;
    L = B.Left + In, T = B.Top + In, R = B.Right - In, Bo = B.Bottom - In;
  } else {
    // The inner rectangle of the unit shape touches its outline; moving each side in by the
    // pen and the rim clears them, whatever the slope of the outline there.
    const TBox Box = PenBox(B, 0);
    const TPt A = Box.Map(G.InnerTopLeft), Z = Box.Map(G.InnerBottomRight);
    const double In = Pen + Rim;
    L = A.X + In, T = A.Y + In, R = Z.X - In, Bo = Z.Y - In;
  }
  TRect Inner{static_cast<int32_t>(std::ceil(L - 1e-9)), static_cast<int32_t>(std::ceil(T - 1e-9)),
              static_cast<int32_t>(std::floor(R + 1e-9)),
              static_cast<int32_t>(std::floor(Bo + 1e-9))};
  const TPoint C{CanvasDiv(B.Left + B.Right, 2), CanvasDiv(B.Top + B.Bottom, 2)};
  if (Inner.Right < Inner.Left) Inner.Left = Inner.Right = C.X;
  if (Inner.Bottom < Inner.Top) Inner.Top = Inner.Bottom = C.Y;
  return Inner;
}

// A picture fitted into B, keeping its proportions, centred.
TRect FitPicture(const TRect& B, int32_t W, int32_t H) {
  if (W <= 0 || H <= 0) return B;
  const double S = std::min(double(B.Width()) / W, double(B.Height()) / H);
  const int32_t DW = std::max(1, CanvasRound(W * S)), DH = std::max(1, CanvasRound(H * S));
  const int32_t L = B.Left + CanvasDiv(B.Width() - DW, 2),
                T = B.Top + CanvasDiv(B.Height() - DH, 2);
  return {L, T, L + DW, T + DH};
}

} // namespace

int32_t ShapeBevelWidth(const TRect& R) {
  return static_cast<int32_t>(std::max(1.0, std::fabs(KXRectWidth(R)) / 20.0));
}

TRect ShapeInnerRect(const TRect& R, TKXShapeStyle Style, int32_t PenWidth, int32_t BevelWidth) {
  bool Lit;
  const TKXShapeStyle Base = BaseStyle(Style, Lit);
  const TRect B = Ordered(R);
  return InnerRect(B, Base, std::max(0, PenWidth), Lit ? RimWidth(B, BevelWidth) : 0);
}

TRect DrawShape(TCanvas* Canvas, const TRect& R, const TBitmap* Bitmap, TKXShapeStyle Style,
                bool Raised, TColor Highlight, TColor Shadow, int32_t BevelWidth, float Opacity) {
  bool Lit;
  TKXShapeStyle Base = BaseStyle(Style, Lit);
  const TRect B = Ordered(R);
  const int32_t Pen = PenWidthOf(Canvas);
  if (Base == shpImage && (!Bitmap || Bitmap->Empty())) Base = shpRectangle;
  const int32_t Rim = Lit ? RimWidth(B, BevelWidth) : 0;
  const TRect Inner = InnerRect(B, Base, Pen, Rim);
  if (B.IsEmpty() || !Visible(Opacity)) return Inner;
  TCanvasOpacity Layer(Canvas, Opacity);
  if (Base == shpImage) {
    const TRect Picture = FitPicture(B, Bitmap->Width(), Bitmap->Height());
    Canvas->StretchDraw(Picture, Bitmap);
    // A lit picture gets the rim of a lit rectangle over its edge, like a raised button.
    if (Lit && Rim > 0)
      DrawRim(Canvas->Handle(), Canvas->SurfaceKind() == skImage,
              OutlinePolygon(shpRectangle, PenBox(Picture, 0)), RimWidth(Picture, BevelWidth),
              Raised ? Highlight : Shadow, Raised ? Shadow : Highlight);
    return Inner;
  }
  if (!Lit || Rim == 0) {
    // The canvas's own shapes keep its pixel rules (and the legend's rounded box exactly).
    switch (Base) {
    case shpRectangle:
      Canvas->Rectangle(B);
      return Inner;
    case shpEllipse:
      Canvas->Ellipse(B);
      return Inner;
    case shpRoundRect:
      Canvas->RoundRect(B, CanvasDiv(B.Width(), 5), CanvasDiv(B.Height(), 5));
      return Inner;
    default:
      AddOutline(Canvas->Handle(), Base, B, Pen);
      Canvas->PaintPath(true, true, false);
      return Inner;
    }
  }
  cairo_t* Cr = Canvas->Handle();
  AddOutline(Cr, Base, B, Pen);
  Canvas->PaintPath(true, false, false);
  // The rim starts under the inner half of the pen, so that the outline covers its edge.
  DrawRim(Cr, Canvas->SurfaceKind() == skImage, OutlinePolygon(Base, PenBox(B, 0)), Pen + Rim,
          Raised ? Highlight : Shadow, Raised ? Shadow : Highlight);
  AddOutline(Cr, Base, B, Pen);
  Canvas->PaintPath(false, true, false);
  return Inner;
}

TRect DrawShape(TCanvas* Canvas, const TRect& R, const TImageList* Images, int32_t ImageIndex,
                TKXShapeStyle Style, TKXShapeStyle DefaultStyle, bool Raised, TColor Highlight,
                TColor Shadow, int32_t BevelWidth) {
  bool Lit;
  if (BaseStyle(Style, Lit) == shpImage) {
    if (const TBitmap* Image = Images ? Images->Image(ImageIndex) : nullptr)
      return DrawShape(Canvas, R, Image, Style, Raised, Highlight, Shadow, BevelWidth, 1.0f);
    Style = DefaultStyle;
  }
  return DrawShape(Canvas, R, static_cast<const TBitmap*>(nullptr), Style, Raised, Highlight,
                   Shadow, BevelWidth, 1.0f);
}

// --- Text ---

namespace {

// The text as shown, and the byte offsets of the characters that "&" underlines.
std::string StripPrefixes(std::string_view Text, bool Underline, std::vector<int32_t>& Marks) {
  std::string Out;
  Out.reserve(Text.size());
  for (size_t I = 0; I < Text.size(); ++I) {
    if (Text[I] != '&') {
      Out += Text[I];
      continue;
    }
    if (I + 1 >= Text.size()) break; // a trailing "&" shows nothing
    if (Text[I + 1] == '&') {
      Out += '&';
      ++I;
      continue;
    }
    if (Underline) Marks.push_back(static_cast<int32_t>(Out.size()));
  }
  return Out;
}

struct TLabelLayout {
  TSize Size;
  int32_t LogicalX = 0;
  bool Wrapped = false;
};

TLabelLayout LayOutLabel(TCanvas* Canvas, std::string_view Text, uint32_t Flags, const TRect& R) {
  TCanvas::TTextLayout L;
  L.SingleLine = (Flags & DT_SINGLELINE) != 0;
  std::string Shown;
  std::string_view Source = Text;
  if (!(Flags & DT_NOPREFIX)) {
    Shown = StripPrefixes(Text, !(Flags & DT_HIDEPREFIX), L.Underline);
    Source = Shown;
  }
  const int32_t Width = R.Width();
  const int32_t Height = R.Height();
  TLabelLayout Out;
  if (Width > 0) {
    if ((Flags & DT_WORDBREAK) && !L.SingleLine) {
      L.WrapWidth = Width;
      Out.Wrapped = true;
    }
    if (Flags & (DT_END_ELLIPSIS | DT_WORD_ELLIPSIS | DT_PATH_ELLIPSIS)) {
      L.WrapWidth = Width;
      Out.Wrapped = true;
      L.Ellipsize = (Flags & DT_PATH_ELLIPSIS) ? 2 : 3;
      if ((Flags & DT_WORDBREAK) && Height > 0) L.MaxHeight = Height;
    }
  }
  L.Align = (Flags & DT_CENTER) ? 1 : (Flags & DT_RIGHT) ? 2 : 0;
  Out.Size = Canvas->LayoutText(Source, L, &Out.LogicalX);
  return Out;
}

TPoint LabelOrigin(const TLabelLayout& L, uint32_t Flags, const TRect& R) {
  // In 64 bits: the rectangle may span the whole int32 plane.
  auto Clamp = [](int64_t V) {
    return static_cast<int32_t>(std::clamp<int64_t>(V, INT32_MIN, INT32_MAX));
  };
  TPoint P{R.Left, R.Top};
  if (!L.Wrapped) {
    if (Flags & DT_CENTER)
      P.X = Clamp(R.Left + (int64_t(R.Right) - R.Left - L.Size.cx) / 2);
    else if (Flags & DT_RIGHT)
      P.X = Clamp(int64_t(R.Right) - L.Size.cx);
  }
  if (Flags & DT_VCENTER)
    P.Y = Clamp(R.Top + (int64_t(R.Bottom) - R.Top - L.Size.cy) / 2);
  else if (Flags & DT_BOTTOM)
    P.Y = Clamp(int64_t(R.Bottom) - L.Size.cy);
  return P;
}

} // namespace

TRect TextLabelRect(TCanvas* Canvas, std::string_view Text, uint32_t Flags, const TRect& R) {
  const TLabelLayout L = LayOutLabel(Canvas, Text, Flags, R);
  return {R.Left, R.Top, R.Left + L.Size.cx, R.Top + L.Size.cy};
}

int32_t DrawTextLabel(TCanvas* Canvas, std::string_view Text, uint32_t Flags, const TRect& R) {
  const TLabelLayout L = LayOutLabel(Canvas, Text, Flags, R);
  if ((Flags & DT_CALCRECT) || Text.empty()) return L.Size.cy;
  const TPoint P = LabelOrigin(L, Flags, R);
  std::optional<TCanvasClip> Clip;
  if (!(Flags & DT_NOCLIP)) Clip.emplace(Canvas, R);
  const TRect Box{P.X + L.LogicalX, P.Y, P.X + L.LogicalX + L.Size.cx, P.Y + L.Size.cy};
  Canvas->PaintLayout(P.X, P.Y, Canvas->Brush()->Style() != bsClear ? &Box : nullptr);
  return L.Size.cy;
}

void RotateFont(TFont* Font, int32_t Angle) {
  Font->SetOrientation(Angle);
}

TSize GetRotatedTextExtent(TCanvas* Canvas, int32_t Angle, std::string_view Text) {
  TPoint Ignored;
  return GetRotatedTextExtent(Canvas, Angle, Text, Ignored);
}

TSize GetRotatedTextExtent(TCanvas* Canvas, int32_t Angle, std::string_view Text, TPoint& Offset) {
  const TSize S = Canvas->TextExtent(Text);
  Angle %= 360;
  if (Angle < 0) Angle += 360;
  // Whole quarter turns are exact; other angles go through the rotated corners.
  double C, Sn;
  switch (Angle) {
  case 0:
    C = 1, Sn = 0;
    break;
  case 90:
    C = 0, Sn = 1;
    break;
  case 180:
    C = -1, Sn = 0;
    break;
  case 270:
    C = 0, Sn = -1;
    break;
  default:
    C = std::cos(Angle * Pi / 180), Sn = std::sin(Angle * Pi / 180);
    break;
  }
  double MinX = 0, MaxX = 0, MinY = 0, MaxY = 0;
  for (const TPt& P :
       {TPt{double(S.cx), 0}, TPt{0, double(S.cy)}, TPt{double(S.cx), double(S.cy)}}) {
    // Counter-clockwise on a screen whose y grows downward.
    const double X = P.X * C + P.Y * Sn, Y = -P.X * Sn + P.Y * C;
    MinX = std::min(MinX, X), MaxX = std::max(MaxX, X);
    MinY = std::min(MinY, Y), MaxY = std::max(MaxY, Y);
  }
  Offset = {CanvasRound(-MinX), CanvasRound(-MinY)};
  return {CanvasRound(MaxX - MinX), CanvasRound(MaxY - MinY)};
}

// --- Arrows ---

namespace {

struct TArrowGeometry {
  double HalfWidth, Length;
};

// The head at Tip pointing along (Dx, Dy) (a unit vector).
void AddHead(cairo_t* Cr, TPt Tip, double Dx, double Dy, const TArrowGeometry& G, bool Closed) {
  const TPt Base{Tip.X - Dx * G.Length, Tip.Y - Dy * G.Length};
  const TPt Left{Base.X - Dy * G.HalfWidth, Base.Y + Dx * G.HalfWidth};
  const TPt Right{Base.X + Dy * G.HalfWidth, Base.Y - Dx * G.HalfWidth};
  cairo_new_path(Cr);
  cairo_move_to(Cr, Left.X, Left.Y);
  cairo_line_to(Cr, Tip.X, Tip.Y);
  cairo_line_to(Cr, Right.X, Right.Y);
  if (Closed) cairo_close_path(Cr);
}

// Where along the polyline the text goes, and the direction of the line there.
TPt TextAnchor(const std::vector<TPt>& P, int32_t Segment, double& Dx, double& Dy) {
  Dx = 1, Dy = 0;
  if (P.size() == 1) return P[0];
  auto Along = [&](size_t I, double F) {
    const double X = P[I + 1].X - P[I].X, Y = P[I + 1].Y - P[I].Y, L = std::hypot(X, Y);
    if (L > 0) Dx = X / L, Dy = Y / L;
    return TPt{P[I].X + X * F, P[I].Y + Y * F};
  };
  if (Segment >= 0 && size_t(Segment) + 1 < P.size()) return Along(size_t(Segment), 0.5);
  double Total = 0;
  for (size_t I = 0; I + 1 < P.size(); ++I)
    Total += std::hypot(P[I + 1].X - P[I].X, P[I + 1].Y - P[I].Y);
  double Half = Total / 2;
  for (size_t I = 0; I + 1 < P.size(); ++I) {
    const double L = std::hypot(P[I + 1].X - P[I].X, P[I + 1].Y - P[I].Y);
    if (Half <= L && L > 0) return Along(I, Half / L);
    Half -= L;
  }
  return Along(P.size() - 2, 1.0);
}

// Text beside the line at Anchor: above a line that runs more across, to the right of one
// that runs more up and down; transparent, in the canvas's font.
void DrawArrowText(TCanvas* Canvas, std::string_view Text, TPt Anchor, double Dx, double Dy) {
  const TSize S = Canvas->TextExtent(Text);
  int32_t X, Y;
  if (std::abs(Dx) >= std::abs(Dy)) {
    X = CanvasRound(Anchor.X - S.cx / 2.0);
    Y = CanvasRound(Anchor.Y) - S.cy - 2;
  } else {
    X = CanvasRound(Anchor.X) + 4;
    Y = CanvasRound(Anchor.Y - S.cy / 2.0);
  }
  Canvas->LayoutText(Text, TCanvas::TTextLayout{});
  Canvas->PaintLayout(X, Y, nullptr);
}

} // namespace

void DrawArrow(TCanvas* Canvas, int32_t X1, int32_t Y1, int32_t X2, int32_t Y2, int32_t HeadSize,
               std::string_view Text, TArrowOptions Options, int32_t ShaftWidth, float Opacity) {
  const TPoint P[2] = {{X1, Y1}, {X2, Y2}};
  DrawArrow(Canvas, P, HeadSize, Text, Options, ShaftWidth, -1, Opacity);
}

void DrawArrow(TCanvas* Canvas, std::span<const TPoint> Points, int32_t HeadSize,
               std::string_view Text, TArrowOptions Options, int32_t ShaftWidth,
               int32_t TextSegment, float Opacity) {
  if (Points.empty() || !Visible(Opacity)) return;
  std::vector<TPt> P;
  for (const TPoint& Q : Points) {
    const TPt D{double(TCanvas::Safe(Q.X)), double(TCanvas::Safe(Q.Y))};
    if (P.empty() || D.X != P.back().X || D.Y != P.back().Y) P.push_back(D);
  }
  TCanvasOpacity Layer(Canvas, Opacity);
  cairo_t* Cr = Canvas->Handle();
  const double Shaft = std::max(Canvas->EffectivePenWidth(), std::clamp(ShaftWidth, 0, 10000));
  const double Head = std::clamp(HeadSize, 0, 10000);
  const TArrowGeometry G{std::max(Head / 2, Shaft), std::max(Head, 1.0)};
  const bool Filled = Options.Contains(arFilledHead);
  // Odd shafts run through pixel centres, so that level arrows stay crisp.
  const double Off = int64_t(Shaft) % 2 == 1 ? 0.5 : 0.0;
  for (TPt& Q : P)
    Q.X += Off, Q.Y += Off;

  if (P.size() >= 2) {
    auto Unit = [](TPt A, TPt B, double& Dx, double& Dy) {
      const double L = std::hypot(B.X - A.X, B.Y - A.Y);
      Dx = (B.X - A.X) / L, Dy = (B.Y - A.Y) / L;
    };
    double Sx, Sy, Ex, Ey;
    Unit(P[1], P[0], Sx, Sy); // the start head points backward
    Unit(P[P.size() - 2], P.back(), Ex, Ey);
    // A filled head hides the end of the shaft: stop the shaft at the head's base, so that a
    // wide shaft does not poke through the tip.
    std::vector<TPt> Line = P;
    if (Filled && Options.Contains(arEndHead)) {
      const double Cut = std::min(
          G.Length, std::hypot(P.back().X - P[P.size() - 2].X, P.back().Y - P[P.size() - 2].Y));
      Line.back() = {P.back().X - Ex * Cut * 0.9, P.back().Y - Ey * Cut * 0.9};
    }
    if (Filled && Options.Contains(arStartHead)) {
      const double Cut = std::min(G.Length, std::hypot(P[1].X - P[0].X, P[1].Y - P[0].Y));
      Line.front() = {P[0].X - Sx * Cut * 0.9, P[0].Y - Sy * Cut * 0.9};
    }
    if (Canvas->ApplyPen()) {
      cairo_set_line_width(Cr, Shaft);
      cairo_new_path(Cr);
      for (size_t I = 0; I < Line.size(); ++I)
        (I == 0 ? cairo_move_to : cairo_line_to)(Cr, Line[I].X, Line[I].Y);
      cairo_stroke(Cr);
    }
    auto DrawHead = [&](TPt Tip, double Dx, double Dy) {
      AddHead(Cr, Tip, Dx, Dy, G, Filled);
      if (Filled) {
        Canvas->PaintPath(true, true, false);
      } else if (Canvas->ApplyPen()) {
        cairo_set_line_width(Cr, Shaft);
        cairo_stroke(Cr);
      }
      cairo_new_path(Cr);
    };
    if (Options.Contains(arEndHead)) DrawHead(P.back(), Ex, Ey);
    if (Options.Contains(arStartHead)) DrawHead(P.front(), Sx, Sy);
  }
  if (Options.Contains(arStartDot)) {
    const double Radius = std::max(2.0, std::max(Head, Shaft) / 4);
    cairo_new_path(Cr);
    cairo_arc(Cr, P[0].X, P[0].Y, Radius, 0, 2 * Pi);
    Canvas->PaintPath(true, true, false);
  }
  if (Options.Contains(arText) && !Text.empty()) {
    for (TPt& Q : P)
      Q.X -= Off, Q.Y -= Off;
    double Dx, Dy;
    const TPt Anchor = TextAnchor(P, TextSegment, Dx, Dy);
    DrawArrowText(Canvas, Text, Anchor, Dx, Dy);
  }
}

// --- Curves ---

namespace {

struct TCubic {
  TPt P0, C1, C2, P3;
};

TPt Lerp(TPt A, TPt B, double T) {
  return {A.X + (B.X - A.X) * T, A.Y + (B.Y - A.Y) * T};
}

// The curve as cubic pieces. Interpolating (Catmull-Rom with the tension Smoothness): piece i
// runs from point i to point i + 1. B-spline: uniform, with the end points tripled so that an
// open curve starts and ends on them; Smoothness blends it with the straight polygon.
std::vector<TCubic> Cubics(std::span<const TPoint> Points, bool Bezier, bool Closed,
                           double Smoothness) {
  std::vector<TPt> P;
  for (const TPoint& Q : Points) {
    const TPt D{double(TCanvas::Safe(Q.X)), double(TCanvas::Safe(Q.Y))};
    if (P.empty() || D.X != P.back().X || D.Y != P.back().Y) P.push_back(D);
  }
  if (Closed && P.size() > 2 && P.front().X == P.back().X && P.front().Y == P.back().Y)
    P.pop_back();
  const double S = std::isnan(Smoothness) ? 1.0 : std::clamp(Smoothness, 0.0, 1.0);
  std::vector<TCubic> Out;
  const size_t N = P.size();
  if (N < 2) return Out;
  if (N == 2) Closed = false;
  auto At = [&](long I) -> TPt {
    if (Closed) return P[size_t(((I % long(N)) + long(N)) % long(N))];
    return P[size_t(std::clamp(I, 0L, long(N) - 1))];
  };
  if (!Bezier) {
    const size_t Pieces = Closed ? N : N - 1;
    for (size_t I = 0; I < Pieces; ++I) {
      const TPt A = At(long(I)), B = At(long(I) + 1), Before = At(long(I) - 1),
                After = At(long(I) + 2);
      const TPt C1{A.X + (B.X - Before.X) * S / 6, A.Y + (B.Y - Before.Y) * S / 6};
      const TPt C2{B.X - (After.X - A.X) * S / 6, B.Y - (After.Y - A.Y) * S / 6};
      Out.push_back({A, C1, C2, B});
    }
    return Out;
  }
  std::vector<TPt> Q;
  if (Closed) {
    Q = P;
  } else {
    Q = {P.front(), P.front()};
    Q.insert(Q.end(), P.begin(), P.end());
    Q.push_back(P.back());
    Q.push_back(P.back());
  }
  const size_t M = Q.size();
  auto Qat = [&](size_t I) { return Q[I % M]; };
  const size_t Pieces = Closed ? M : M - 3;
  for (size_t I = 0; I < Pieces; ++I) {
    const TPt A = Qat(I), B = Qat(I + 1), C = Qat(I + 2), D = Qat(I + 3);
    TCubic K;
    K.P0 = {(A.X + 4 * B.X + C.X) / 6, (A.Y + 4 * B.Y + C.Y) / 6};
    K.C1 = {(2 * B.X + C.X) / 3, (2 * B.Y + C.Y) / 3};
    K.C2 = {(B.X + 2 * C.X) / 3, (B.Y + 2 * C.Y) / 3};
    K.P3 = {(B.X + 4 * C.X + D.X) / 6, (B.Y + 4 * C.Y + D.Y) / 6};
    // Smoothness 0 is the straight edge from B to C.
    K.P0 = Lerp(B, K.P0, S);
    K.C1 = Lerp(Lerp(B, C, 1.0 / 3), K.C1, S);
    K.C2 = Lerp(Lerp(B, C, 2.0 / 3), K.C2, S);
    K.P3 = Lerp(C, K.P3, S);
    if (K.P0.X == K.P3.X && K.P0.Y == K.P3.Y && K.C1.X == K.P0.X && K.C1.Y == K.P0.Y) continue;
    Out.push_back(K);
  }
  return Out;
}

TPt CubicAt(const TCubic& K, double T) {
  const double U = 1 - T;
  const double A = U * U * U, B = 3 * U * U * T, C = 3 * U * T * T, D = T * T * T;
  return {A * K.P0.X + B * K.C1.X + C * K.C2.X + D * K.P3.X,
          A * K.P0.Y + B * K.C1.Y + C * K.C2.Y + D * K.P3.Y};
}

} // namespace

std::vector<TPoint> BezierPolygonPoints(std::span<const TPoint> Points, bool Bezier, bool Closed,
                                        double Smoothness) {
  const std::vector<TCubic> Pieces = Cubics(Points, Bezier, Closed, Smoothness);
  std::vector<TPoint> Out;
  if (Pieces.empty()) {
    if (!Points.empty()) Out.push_back({TCanvas::Safe(Points[0].X), TCanvas::Safe(Points[0].Y)});
    return Out;
  }
  auto Exact = [](TPt P) { return TPoint{CanvasRound(P.X), CanvasRound(P.Y)}; };
  Out.push_back(Exact(Pieces[0].P0));
  for (const TCubic& K : Pieces) {
    const TPoint From = Exact(K.P0), To = Exact(K.P3);
    // About one point every three pixels of the control polygon, which stays within a
    // fraction of a pixel of the curve at chart sizes.
    const double Span = std::hypot(K.C1.X - K.P0.X, K.C1.Y - K.P0.Y) +
                        std::hypot(K.C2.X - K.C1.X, K.C2.Y - K.C1.Y) +
                        std::hypot(K.P3.X - K.C2.X, K.P3.Y - K.C2.Y);
    const int Steps = std::clamp(static_cast<int>(std::ceil(Span / 3)), 1, 256);
    for (int I = 1; I < Steps; ++I) {
      const TPoint Q = Exact(CubicAt(K, double(I) / Steps));
      if (Q == Out.back() || Q == From || Q == To) continue;
      Out.push_back(Q);
    }
    if (To != Out.back() || Bezier == false) Out.push_back(To);
  }
  return Out;
}

void DrawBezierPolygon(TCanvas* Canvas, std::span<const TPoint> Points, bool Bezier, bool Closed,
                       bool Filled, double Smoothness, float Opacity) {
  if (!Visible(Opacity)) return;
  const std::vector<TCubic> Pieces = Cubics(Points, Bezier, Closed, Smoothness);
  if (Pieces.empty()) return;
  TCanvasOpacity Layer(Canvas, Opacity);
  cairo_t* Cr = Canvas->Handle();
  auto Trace = [&](double Off) {
    cairo_new_path(Cr);
    cairo_move_to(Cr, Pieces[0].P0.X + Off, Pieces[0].P0.Y + Off);
    for (const TCubic& K : Pieces)
      cairo_curve_to(Cr, K.C1.X + Off, K.C1.Y + Off, K.C2.X + Off, K.C2.Y + Off, K.P3.X + Off,
                     K.P3.Y + Off);
    if (Closed || Filled) cairo_close_path(Cr);
  };
  // As a polygon: the fill on the points, an odd pen through pixel centres.
  if (Filled) {
    Trace(0);
    Canvas->PaintPath(true, false, true);
  }
  Trace(Canvas->EffectivePenWidth() % 2 == 1 ? 0.5 : 0.0);
  Canvas->PaintPath(false, true, true);
}

// --- Slices ---

namespace {

struct TEllipse {
  double Cx, Cy, Rx, Ry;
};

// The ellipse of R scaled by Radius; false when there is nothing to draw.
bool SliceEllipse(const TRect& R, double Radius, TEllipse& E) {
  const TRect B = Ordered(R);
  if (B.IsEmpty() || !(Radius > 0) || std::isinf(Radius)) return false;
  E = {(B.Left + B.Right) / 2.0, (B.Top + B.Bottom) / 2.0,
       ClampCanvasCoord(Radius * B.Width() / 2.0), ClampCanvasCoord(Radius * B.Height() / 2.0)};
  return E.Rx > 0 && E.Ry > 0;
}

// The angles in screen terms: From below To, the sweep at most a full turn; false for no
// sweep or numbers that are not.
bool SliceAngles(double Start, double End, double Offset, double& From, double& Sweep) {
  if (!std::isfinite(Start) || !std::isfinite(End) || !std::isfinite(Offset)) return false;
  From = std::min(Start, End) + Offset;
  Sweep = std::abs(End - Start);
  if (!(Sweep > 0)) return false;
  From = std::fmod(From, 360.0);
  Sweep = std::min(Sweep, 360.0);
  return std::isfinite(From);
}

// An arc of E from angle A0 to A1 (degrees, counter-clockwise on the screen).
void AddArc(cairo_t* Cr, const TEllipse& E, double Scale, double A0, double A1) {
  cairo_save(Cr);
  cairo_translate(Cr, E.Cx, E.Cy);
  cairo_scale(Cr, E.Rx * Scale, E.Ry * Scale);
  // Cairo's angles run clockwise on the screen.
  if (A1 >= A0)
    cairo_arc_negative(Cr, 0, 0, 1, -A0 * Pi / 180, -A1 * Pi / 180);
  else
    cairo_arc(Cr, 0, 0, 1, -A0 * Pi / 180, -A1 * Pi / 180);
  cairo_restore(Cr);
}

} // namespace

void DrawPieSlice(TCanvas* Canvas, const TRect& R, double StartAngle, double EndAngle,
                  double Radius, double Offset, float Opacity) {
  TEllipse E;
  double From, Sweep;
  if (!Visible(Opacity) || !SliceEllipse(R, Radius, E) ||
      !SliceAngles(StartAngle, EndAngle, Offset, From, Sweep))
    return;
  TCanvasOpacity Layer(Canvas, Opacity);
  cairo_t* Cr = Canvas->Handle();
  cairo_new_path(Cr);
  if (Sweep >= 360) {
    AddArc(Cr, E, 1, 0, 360);
  } else {
    cairo_move_to(Cr, E.Cx, E.Cy);
    AddArc(Cr, E, 1, From, From + Sweep);
  }
  cairo_close_path(Cr);
  Canvas->PaintPath(true, true, false);
}

void DrawDonutSlice(TCanvas* Canvas, const TRect& R, double StartAngle, double EndAngle,
                    double Offset, double InnerRadius, double OuterRadius, float Opacity) {
  if (std::isnan(InnerRadius) || std::isnan(OuterRadius)) return;
  const double Inner = std::max(0.0, std::min(InnerRadius, OuterRadius));
  const double Outer = std::max(InnerRadius, OuterRadius);
  if (Inner <= 0) {
    DrawPieSlice(Canvas, R, StartAngle, EndAngle, Outer, Offset, Opacity);
    return;
  }
  TEllipse E;
  double From, Sweep;
  if (Inner >= Outer || !Visible(Opacity) || !SliceEllipse(R, Outer, E) ||
      !SliceAngles(StartAngle, EndAngle, Offset, From, Sweep))
    return;
  const double Ratio = Inner / Outer;
  TCanvasOpacity Layer(Canvas, Opacity);
  cairo_t* Cr = Canvas->Handle();
  cairo_new_path(Cr);
  if (Sweep >= 360) {
    AddArc(Cr, E, 1, 0, 360);
    cairo_close_path(Cr);
    cairo_new_sub_path(Cr);
    AddArc(Cr, E, Ratio, 360, 0);
    cairo_close_path(Cr);
  } else {
    AddArc(Cr, E, 1, From, From + Sweep);
    AddArc(Cr, E, Ratio, From + Sweep, From);
    cairo_close_path(Cr);
  }
  Canvas->PaintPath(true, true, true);
}

// --- Gradients and colours ---

TColor InterpolateColor(TColor C1, TColor C2, double T) {
  const TColor A = ColorToRGB(C1), B = ColorToRGB(C2);
  T = std::isnan(T) ? 0.0 : std::clamp(T, 0.0, 1.0);
  auto Mix = [&](uint8_t X, uint8_t Y) {
    return static_cast<uint8_t>(std::lround(X + (double(Y) - X) * T));
  };
  return RGBToColor(Mix(GetRValue(A), GetRValue(B)), Mix(GetGValue(A), GetGValue(B)),
                    Mix(GetBValue(A), GetBValue(B)));
}

namespace {

// The colour at T (0..1) of Colors spread evenly.
TColor ColorAt(std::span<const TColor> Colors, double T) {
  if (Colors.size() == 1) return Colors[0];
  const double X = std::clamp(T, 0.0, 1.0) * double(Colors.size() - 1);
  const size_t I = std::min(size_t(X), Colors.size() - 2);
  return InterpolateColor(Colors[I], Colors[I + 1], X - double(I));
}

void AddStop(cairo_pattern_t* P, double At, TColor Color) {
  const TColor C = ColorToRGB(Color);
  cairo_pattern_add_color_stop_rgb(P, At, GetRValue(C) / 255.0, GetGValue(C) / 255.0,
                                   GetBValue(C) / 255.0);
}

// Stops along the pattern: smooth, or bands of Coarseness pixels over Length pixels, each in
// the colour of its middle. Mirrored gradients run the colours out and back.
void AddStops(cairo_pattern_t* P, std::span<const TColor> Colors, int32_t Coarseness, double Length,
              bool Mirror) {
  auto Colour = [&](double T) { return ColorAt(Colors, Mirror ? 1 - std::abs(2 * T - 1) : T); };
  if (Coarseness <= 1 || Length <= Coarseness) {
    const size_t N = Mirror ? 2 * Colors.size() - 1 : Colors.size();
    for (size_t I = 0; I < N; ++I) {
      const double T = N == 1 ? 0 : double(I) / double(N - 1);
      AddStop(P, T, Colour(T));
    }
    return;
  }
  const int Bands = std::clamp(static_cast<int>(std::ceil(Length / Coarseness)), 1, 1024);
  for (int I = 0; I < Bands; ++I) {
    const TColor C = Colour((I + 0.5) / Bands);
    AddStop(P, double(I) / Bands, C);
    AddStop(P, double(I + 1) / Bands, C);
  }
}

void FillGradient(TCanvas* Canvas, const TRect& R, std::span<const TColor> Colors,
                  TGradientDirection Direction, int32_t Coarseness, float Opacity) {
  const TRect B = Ordered(R);
  if (B.IsEmpty() || Colors.empty() || !Visible(Opacity)) return;
  const double L = B.Left, T = B.Top, Rt = B.Right, Bo = B.Bottom;
  const double W = B.Width(), H = B.Height();
  cairo_pattern_t* P = nullptr;
  double Length = W;
  bool Mirror = false;
  switch (Direction) {
  case gdLeftToRight:
    P = cairo_pattern_create_linear(L, 0, Rt, 0);
    break;
  case gdRightToLeft:
    P = cairo_pattern_create_linear(Rt, 0, L, 0);
    break;
  case gdBottomToTop:
    P = cairo_pattern_create_linear(0, Bo, 0, T), Length = H;
    break;
  case gdTopLeftToBottomRight:
    P = cairo_pattern_create_linear(L, T, Rt, Bo), Length = std::hypot(W, H);
    break;
  case gdBottomLeftToTopRight:
    P = cairo_pattern_create_linear(L, Bo, Rt, T), Length = std::hypot(W, H);
    break;
  case gdHorizontalMirror:
    P = cairo_pattern_create_linear(L, 0, Rt, 0), Mirror = true;
    break;
  case gdVerticalMirror:
    P = cairo_pattern_create_linear(0, T, 0, Bo), Length = H, Mirror = true;
    break;
  case gdRadial: {
    // A circle in a square of side 1 stretched over the rectangle reaches its corners.
    P = cairo_pattern_create_radial(0.5, 0.5, 0, 0.5, 0.5, std::sqrt(0.5));
    cairo_matrix_t M;
    cairo_matrix_init_scale(&M, 1 / W, 1 / H);
    cairo_matrix_translate(&M, -L, -T);
    cairo_pattern_set_matrix(P, &M);
    Length = std::hypot(W, H) / 2;
    break;
  }
  case gdTopToBottom:
  default:
    P = cairo_pattern_create_linear(0, T, 0, Bo), Length = H;
    break;
  }
  AddStops(P, Colors, Coarseness, Length, Mirror);
  cairo_t* Cr = Canvas->Handle();
  cairo_save(Cr);
  cairo_new_path(Cr);
  cairo_rectangle(Cr, L, T, W, H);
  cairo_clip(Cr);
  cairo_set_source(Cr, P);
  if (Opacity >= 1)
    cairo_paint(Cr);
  else
    cairo_paint_with_alpha(Cr, Opacity);
  cairo_restore(Cr);
  cairo_pattern_destroy(P);
}

} // namespace

void DirectionGradient(TCanvas* Canvas, const TRect& R, std::span<const TColor> Colors,
                       TGradientDirection Direction, int32_t Coarseness, float Opacity) {
  FillGradient(Canvas, R, Colors, Direction, Coarseness, Opacity);
}

void DirectionGradient(TCanvas* Canvas, const TRect& R, std::initializer_list<TColor> Colors,
                       TGradientDirection Direction, int32_t Coarseness, float Opacity) {
  FillGradient(Canvas, R, std::span<const TColor>(Colors.begin(), Colors.size()), Direction,
               Coarseness, Opacity);
}

void LineGradient(TCanvas* Canvas, const TRect& R, std::span<const TColor> Colors,
                  int32_t HighIndex, int32_t Coarseness, TGradientOrientation Orientation,
                  float Opacity) {
  if (HighIndex < 0) return;
  const size_t Count = std::min(Colors.size(), size_t(HighIndex) + 1);
  FillGradient(Canvas, R, Colors.first(Count),
               Orientation == grHorizontal ? gdLeftToRight : gdTopToBottom, Coarseness, Opacity);
}

} // namespace kx
