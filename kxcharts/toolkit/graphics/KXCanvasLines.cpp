// TCanvas: lines and strokes, down to the boxes and stamps of ColumnPolyline and pen dashes.
#include "kxcharts/toolkit/graphics/KXCanvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "kxcharts/toolkit/graphics/KXCanvas_p.h"

namespace kx {

namespace {

// The smallest rectangle holding both; an empty one holds nothing.
TRect Union(const TRect& A, const TRect& B) {
  if (A.IsEmpty()) return B;
  if (B.IsEmpty()) return A;
  return {std::min(A.Left, B.Left), std::min(A.Top, B.Top), std::max(A.Right, B.Right),
          std::max(A.Bottom, B.Bottom)};
}

// The blend Cairo gives a span of an opaque colour over an image, two channels at a time:
// Src * A + Dst * (255 - A), each product rounded, the sum saturated.
uint32_t Mul8x2(uint32_t X, uint32_t A) {
  const uint32_t T = (X & 0xFF00FF) * A + 0x800080;
  return ((T + ((T >> 8) & 0xFF00FF)) >> 8) & 0xFF00FF;
}

uint32_t Add8x2(uint32_t X, uint32_t Y) {
  uint32_t T = X + Y;
  T |= 0x1000100 - ((T >> 8) & 0xFF00FF);
  return T & 0xFF00FF;
}

uint32_t Lerp(uint32_t Src, uint32_t A, uint32_t Dst) {
  return Add8x2(Mul8x2(Src, A), Mul8x2(Dst, 255 - A)) |
         (Add8x2(Mul8x2(Src >> 8, A), Mul8x2(Dst >> 8, 255 - A)) << 8);
}

} // namespace

// --- Lines ---

// Strokes the open path through Points (and Extra after them, when given) the way the
// integer canvas draws lines. Odd widths run through pixel centres; the first point is moved
// back and the last one in, by just enough that the end cap passes the corner of the end
// pixel: a line starts with its first pixel and stops before its end point, whatever its
// slope. Even widths run along pixel edges and cover the half-open span, like FillRect.
void TCanvas::OpenPathVertices(std::span<const TPoint> Points, const TPoint* Extra,
                               std::vector<TVertex>& Out) const {
  Out.clear();
  const size_t N = Points.size() + (Extra ? 1 : 0);
  auto At = [&](size_t I) {
    const TPoint P = I < Points.size() ? Points[I] : *Extra;
    return TPoint{Safe(P.X), Safe(P.Y)};
  };
  if (N < 2) return;
  const double Off = EffectivePenWidth() % 2 == 1 ? 0.5 : 0.0;
  auto Step = [](TPoint A, TPoint B, double& Ux, double& Uy) {
    const double Dx = double(B.X) - A.X, Dy = double(B.Y) - A.Y;
    const double Scale = (std::abs(Dx) + std::abs(Dy)) / (Dx * Dx + Dy * Dy);
    Ux = Dx * Scale;
    Uy = Dy * Scale;
  };
  // Find the first and last points that differ from their neighbours.
  const TPoint P0 = At(0);
  size_t Next = 1;
  while (Next < N && At(Next) == P0)
    ++Next;
  if (Next == N) return; // all points coincide: nothing to draw
  const TPoint PLast = At(N - 1);
  size_t Prev = N - 2;
  while (At(Prev) == PLast)
    --Prev;
  double Ux, Uy;
  Step(P0, At(Next), Ux, Uy);
  Out.push_back({P0.X + Off - Ux * Off, P0.Y + Off - Uy * Off});
  TPoint Last = P0;
  for (size_t I = Next; I + 1 < N; ++I) {
    const TPoint P = At(I);
    if (P == Last) continue;
    Out.push_back({P.X + Off, P.Y + Off});
    Last = P;
  }
  Step(At(Prev), PLast, Ux, Uy);
  Out.push_back({PLast.X + Off - Ux * Off, PLast.Y + Off - Uy * Off});
}

void TCanvas::StrokeOpen(std::span<const TPoint> Points, const TPoint* Extra) {
  if (!CanPaint() || FPen->Style() == psClear || FPen->Mode() == pmNop) return;
  std::vector<TVertex> V;
  OpenPathVertices(Points, Extra, V);
  if (V.empty()) return;
  if (V.size() == 2 && PatternedPixelLine(V[0], V[1])) return;
  cairo_new_path(FCairo);
  cairo_move_to(FCairo, V[0].X, V[0].Y);
  for (size_t I = 1; I < V.size(); ++I)
    cairo_line_to(FCairo, V[I].X, V[I].Y);
  PaintPath(false, true);
}

void TCanvas::LineTo(int32_t X, int32_t Y) {
  const TPoint From = FPenPos;
  const TPoint To{X, Y};
  FPenPos = To;
  StrokeOpen(std::span<const TPoint>(&From, 1), &To);
}

void TCanvas::Polyline(std::span<const TPoint> Points) {
  StrokeOpen(Points, nullptr);
}

bool TCanvas::PatternedPixelLine(const TVertex& From, const TVertex& To) {
  const std::span<const double> Pattern = DashPattern(FPen->Style());
  if (Pattern.empty() || EffectivePenWidth() != 1 || FPen->Mode() != pmCopy || RasterMode() ||
      FKind == skSvg || FKind == skPdf || (From.X != To.X && From.Y != To.Y))
    return false;
  // A dash of a one-pixel pen along a row or a column, laid from the line's start, covers
  // whole pixels: the dashes are boxes, painted at once instead of a stroke per dash.
  int32_t Period = 0;
  for (const double Length : Pattern)
    Period += static_cast<int32_t>(Length);
  const bool Horizontal = From.Y == To.Y;
  const double Along = Horizontal ? To.X - From.X : To.Y - From.Y;
  const auto Length = static_cast<int32_t>(std::abs(Along));
  const auto Start = static_cast<int32_t>(Horizontal ? From.X : From.Y);
  const auto Across = static_cast<int32_t>(std::floor(Horizontal ? From.Y : From.X));
  // Only the periods that reach the clip (the surface, or the safe square when its size is
  // unknown): a grid line across a huge rectangle would otherwise lay millions of dashes
  // off it. In 64 bits, as Start may lie far out.
  const int64_t Lo = Horizontal ? FClip.Left : FClip.Top, Hi = Horizontal ? FClip.Right : FClip.Bottom;
  const int64_t First = Along < 0 ? int64_t(Start) - Hi : Lo - Start;
  const int64_t Last = Along < 0 ? int64_t(Start) - Lo : Hi - Start;
  const int64_t From0 = std::max<int64_t>(0, First / Period * Period - Period);
  const int64_t To0 = std::min<int64_t>(Length, std::max<int64_t>(0, Last + 1));
  std::vector<TRect> Boxes;
  for (auto Period0 = static_cast<int32_t>(From0); Period0 < To0; Period0 += Period)
    for (size_t I = 0, At = 0; I < Pattern.size(); At += size_t(Pattern[I] + Pattern[I + 1]), I += 2) {
      const int32_t A = Period0 + int32_t(At), B = std::min(Length, A + int32_t(Pattern[I]));
      if (A >= B) break;
      // Backwards, the pixel at distance t from the start lies before it.
      const int32_t Lo = Along < 0 ? Start - B : Start + A, Hi = Along < 0 ? Start - A : Start + B;
      Boxes.push_back(Horizontal ? TRect{Lo, Across, Hi, Across + 1} : TRect{Across, Lo, Across + 1, Hi});
    }
  FillBoxes(Boxes, FPen->Color());
  return true;
}

// --- Stamped strokes ---

const TCanvas::TStamp* TCanvas::Stamp(std::span<const TVertex> Run) {
  // The joins of a dense line reach one pixel each way. Longer runs cross pixel rows that
  // Cairo covers in a way that depends on the rest of the path, and a wide pen on short
  // segments outlines shapes that are no part of the whole line's stroke.
  constexpr int32_t MaxReach = 1;
  if (Run.size() < 2 || Run.size() > 4 || (Run[0].X == Run[1].X && Run[0].Y == Run[1].Y) ||
      !WritesPixels())
    return nullptr;
  const TVertex& O = Run[1];
  uint64_t Key = uint64_t(EffectivePenWidth()) | uint64_t(cairo_get_antialias(FCairo)) << 8 |
                 uint64_t(Run.size()) << 12;
  int32_t L = 0, T = 0, R = 0, B = 0;
  for (size_t K = 0; K < Run.size(); ++K) {
    const double Dx = Run[K].X - O.X, Dy = Run[K].Y - O.Y;
    if (std::abs(Dx) > MaxReach || std::abs(Dy) > MaxReach || Dx != std::floor(Dx) ||
        Dy != std::floor(Dy))
      return nullptr;
    const auto X = static_cast<int32_t>(Dx), Y = static_cast<int32_t>(Dy);
    L = std::min(L, X), R = std::max(R, X), T = std::min(T, Y), B = std::max(B, Y);
    Key |= uint64_t((X + MaxReach) | (Y + MaxReach) << 6) << (16 + 12 * K);
  }
  if (!FStamps) FStamps = std::make_unique<TStamps>();
  auto It = FStamps->ByShape.find(Key);
  if (It == FStamps->ByShape.end()) {
    // A miter reaches the pen's width from its point; a pixel more for the edge's coverage.
    const int32_t Margin = EffectivePenWidth() + 1;
    TStamp S{L - Margin, T - Margin, R - L + 2 * Margin, B - T + 2 * Margin, {}};
    cairo_surface_t* Mask = cairo_image_surface_create(CAIRO_FORMAT_A8, S.Width, S.Height);
    cairo_t* M = cairo_create(Mask);
    cairo_set_antialias(M, cairo_get_antialias(FCairo));
    cairo_set_tolerance(M, cairo_get_tolerance(FCairo));
    cairo_set_line_width(M, EffectivePenWidth());
    SetLineEnds(M);
    cairo_move_to(M, Run[0].X - O.X - S.Left, Run[0].Y - O.Y - S.Top);
    for (size_t K = 1; K < Run.size(); ++K)
      cairo_line_to(M, Run[K].X - O.X - S.Left, Run[K].Y - O.Y - S.Top);
    cairo_stroke(M);
    cairo_destroy(M);
    cairo_surface_flush(Mask);
    const uint8_t* Data = cairo_image_surface_get_data(Mask);
    const int Stride = cairo_image_surface_get_stride(Mask);
    S.Cover.resize(size_t(S.Width) * S.Height);
    for (int32_t Y = 0; Y < S.Height; ++Y)
      std::memcpy(&S.Cover[size_t(Y) * S.Width], Data + ptrdiff_t(Y) * Stride, size_t(S.Width));
    cairo_surface_destroy(Mask);
    It = FStamps->ByShape.emplace(Key, std::move(S)).first;
  }
  return &It->second;
}

TRect TCanvas::BlendStamp(const TStamp& S, TPoint At) {
  const TRect Area =
      Intersect(DrawableArea(), TRect{At.X, At.Y, At.X + S.Width, At.Y + S.Height});
  if (Area.IsEmpty()) return Area;
  const uint32_t Pixel = OpaquePixel(FPen->Color());
  for (int32_t Y = Area.Top; Y < Area.Bottom; ++Y) {
    uint32_t* Row = PixelRow(Y);
    const uint8_t* Cover = S.Cover.data() + size_t(Y - At.Y) * S.Width;
    for (int32_t X = Area.Left; X < Area.Right; ++X)
      if (const uint32_t A = Cover[X - At.X]; A == 255)
        Row[X] = Pixel;
      else if (A > 0)
        Row[X] = Lerp(Pixel, A, Row[X]);
  }
  return Area;
}

// The widest pen that ColumnPolyline paints as boxes.
constexpr int32_t MaxColumnPen = 16;

void TCanvas::ColumnPolyline(std::span<const TPoint> Points) {
  // Odd pens run on pixel centres, so a box would end half way into a pixel, which the
  // stroke through it would blend a second time. The test whether a stroke would add
  // anything reads every box within the half width, in every column the stroke covers:
  // wide pens are left to the stroke. Files keep the line one path. Boxes and stamps are
  // the shapes of the canvas's own line ends, which a helper drawing on Handle() may have
  // changed.
  const int32_t Width = EffectivePenWidth();
  if (FKind == skSvg || FKind == skPdf || cairo_get_antialias(FCairo) == CAIRO_ANTIALIAS_NONE ||
      RasterMode() || cairo_get_line_cap(FCairo) != CAIRO_LINE_CAP_BUTT ||
      cairo_get_line_join(FCairo) != CAIRO_LINE_JOIN_MITER ||
      cairo_get_miter_limit(FCairo) != MiterLimit ||
      FPen->Style() != psSolid || FPen->Mode() != pmCopy || Width % 2 == 1 ||
      Width > MaxColumnPen) {
    Polyline(Points);
    return;
  }
  if (!CanPaint()) return;
  std::vector<TVertex> V;
  OpenPathVertices(Points, nullptr, V);
  if (V.empty()) return;
  const double Half = Width / 2.0;
  const auto Vertical = [&](size_t I) { return V[I].X == V[I + 1].X; }; // segment I..I+1

  // Even pens run along pixel edges, so the box of a vertical segment has whole pixels. A
  // chain of vertical segments on one X (a column of the reduced line) is one box.
  const auto H = static_cast<int32_t>(Width / 2);
  struct TChain {
    double X, Top, Bottom;
  };
  std::vector<TChain> Chains;
  for (size_t I = 0; I + 1 < V.size();) {
    if (!Vertical(I)) {
      ++I;
      continue;
    }
    TChain C{V[I].X, V[I].Y, V[I].Y};
    for (; I + 1 < V.size() && Vertical(I); ++I) {
      C.Top = std::min(C.Top, V[I + 1].Y);
      C.Bottom = std::max(C.Bottom, V[I + 1].Y);
    }
    Chains.push_back(C);
  }
  const auto ByX = [](const TChain& A, const TChain& B) { return A.X < B.X; };
  if (!std::is_sorted(Chains.begin(), Chains.end(), ByX))
    std::stable_sort(Chains.begin(), Chains.end(), ByX);
  std::vector<TRect> Boxes;
  Boxes.reserve(Chains.size() + Chains.size() / 2);
  for (const TChain& C : Chains) {
    const auto X = static_cast<int32_t>(C.X);
    Boxes.push_back({X - H, static_cast<int32_t>(C.Top), X + H, static_cast<int32_t>(C.Bottom)});
  }

  // Whether the boxes paint every pixel of columns From..To-1 between rows Top and Bottom:
  // in each column, the boxes of the chains within the half width, joined end to end.
  // The questions come about in the order of X: each search starts where the last ended.
  size_t Cursor = 0;
  const auto FirstFrom = [&](double X) {
    const auto Begin = Chains.begin();
    if (Cursor > 0 && Chains[Cursor - 1].X >= X) {
      Cursor = size_t(std::lower_bound(Begin, Begin + ptrdiff_t(Cursor), TChain{X, 0, 0}, ByX) - Begin);
    } else {
      for (int K = 0; K < 8 && Cursor < Chains.size() && Chains[Cursor].X < X; ++K)
        ++Cursor;
      if (Cursor < Chains.size() && Chains[Cursor].X < X)
        Cursor = size_t(std::lower_bound(Begin + ptrdiff_t(Cursor), Chains.end(), TChain{X, 0, 0}, ByX) -
                        Begin);
    }
    return Cursor;
  };
  std::vector<const TChain*> Near;
  const auto Painted = [&](int32_t From, int32_t To, double Top, double Bottom) {
    for (int32_t C = From; C < To; ++C) {
      Near.clear();
      for (size_t K = FirstFrom(C - Half + 1); K < Chains.size() && Chains[K].X <= C + Half; ++K)
        Near.push_back(&Chains[K]);
      double Reached = Top;
      for (bool Grew = true; Grew && Reached < Bottom;) {
        Grew = false;
        for (const TChain* N : Near)
          if (N->Top <= Reached && N->Bottom > Reached) {
            Reached = N->Bottom;
            Grew = true;
          }
      }
      if (Reached < Bottom) return false;
    }
    return true;
  };

  // The other segments, in unbroken runs, each led in and out by a pixel of the vertical
  // segment beside it: the joins there come out as the whole line's would, and the lead
  // lies inside that segment's box. A run whose stroke, joins included, lies wholly on
  // painted box pixels would add nothing: in a dense line that is most of them. A miter
  // reaches at most twice the half width from its point, and between a vertical segment
  // and another it ends on the vertical one's edge, so a run of one segment reaches no
  // further sideways than the half width.
  const auto Lead = [](const TVertex& From, const TVertex& Towards) {
    const double Dy = Towards.Y - From.Y;
    return TVertex{From.X, From.Y + std::clamp(Dy, -1.0, 1.0)};
  };
  const double Reach = 2 * Half;
  // A level segment between two vertical ones has whole-pixel edges, and so have the
  // square corners its miter joins add on the outer side of each turn (behind and beyond
  // the turn coming in, ahead and behind it going on): its stroke is boxes, which Cairo
  // would only cover fully. A level end of the whole line is left to the stroke, whose
  // butt end meets a turn closer than the half width in its own way.
  const auto FlatJoin = [&](const std::vector<TVertex>& R) {
    if (R.size() < 4 || R[0].Y == R[1].Y) return false;
    const auto X1 = static_cast<int32_t>(R[1].X), X2 = static_cast<int32_t>(R[2].X);
    const auto Y = static_cast<int32_t>(R[1].Y);
    const bool Right = X2 > X1;
    Boxes.push_back({std::min(X1, X2), Y - H, std::max(X1, X2), Y + H});
    const int32_t InX = Right ? X1 - H : X1, InY = R[1].Y > R[0].Y ? Y : Y - H;
    Boxes.push_back({InX, InY, InX + H, InY + H});
    const int32_t OutX = Right ? X2 : X2 - H, OutY = R[3].Y > R[2].Y ? Y - H : Y;
    Boxes.push_back({OutX, OutY, OutX + H, OutY + H});
    return true;
  };
  // The runs that need a stroke: a short one of one segment blends the coverage Cairo gave
  // its shape (stamped), unless it shares a pixel outside the boxes with another run, where
  // the stroke of both in one path covers that pixel once, and stamps would blend it twice.
  struct TStroke {
    size_t From, Count; // in Store
    TRect Reach;        // every pixel its stroke may touch
    const TStamp* Stamp;
    TPoint At;          // where the stamp's origin lies
  };
  std::vector<TVertex> Run, Store;
  std::vector<TStroke> Strokes;
  // Emptied between lines only: the runs of this one point into it.
  if (FStamps && FStamps->ByShape.size() >= TStamps::MaxShapes) FStamps->ByShape.clear();
  for (size_t I = 0; I + 1 < V.size();) {
    if (Vertical(I)) {
      ++I;
      continue;
    }
    Run.clear();
    Run.push_back(I > 0 ? Lead(V[I], V[I - 1]) : V[I]);
    Run.push_back(V[I]);
    size_t Segments = 0;
    while (I + 1 < V.size() && !Vertical(I)) {
      Run.push_back(V[I + 1]);
      ++I;
      ++Segments;
    }
    if (I + 1 < V.size()) Run.push_back(Lead(V[I], V[I + 1]));
    double L = Run[0].X, R = L, T = Run[0].Y, B = T;
    for (const TVertex& P : Run) {
      L = std::min(L, P.X), R = std::max(R, P.X);
      T = std::min(T, P.Y), B = std::max(B, P.Y);
    }
    const double Sideways = Segments == 1 ? Half : Reach;
    if (Painted(static_cast<int32_t>(std::floor(L - Sideways)),
                static_cast<int32_t>(std::ceil(R + Sideways)), T - Reach, B + Reach))
      continue;
    if (Segments == 1 && Run[1].Y == Run[2].Y && FlatJoin(Run)) continue;
    TStroke S{Store.size(), Run.size(),
              {static_cast<int32_t>(std::floor(L - Reach)) - 1,
               static_cast<int32_t>(std::floor(T - Reach)) - 1,
               static_cast<int32_t>(std::ceil(R + Reach)) + 1,
               static_cast<int32_t>(std::ceil(B + Reach)) + 1},
              Segments == 1 ? Stamp(Run) : nullptr,
              {static_cast<int32_t>(Run[1].X), static_cast<int32_t>(Run[1].Y)}};
    if (S.Stamp) {
      S.At = {S.At.X + S.Stamp->Left, S.At.Y + S.Stamp->Top};
      S.Reach = {S.At.X, S.At.Y, S.At.X + S.Stamp->Width, S.At.Y + S.Stamp->Height};
    }
    Store.insert(Store.end(), Run.begin(), Run.end());
    Strokes.push_back(S);
  }

  // Runs come about in the order of X: each is held against those to its right whose reach
  // begins before its own ends.
  std::vector<size_t> Order(Strokes.size());
  for (size_t K = 0; K < Order.size(); ++K)
    Order[K] = K;
  std::stable_sort(Order.begin(), Order.end(), [&](size_t A, size_t B) {
    return Strokes[A].Reach.Left < Strokes[B].Reach.Left;
  });
  const auto Covers = [](const TStroke& S, int32_t X, int32_t Y) {
    return !S.Stamp ||
           S.Stamp->Cover[size_t(Y - S.At.Y) * S.Stamp->Width + size_t(X - S.At.X)] > 0;
  };
  std::vector<bool> Stroked(Strokes.size(), false);
  for (size_t K = 0; K < Order.size(); ++K) {
    const TStroke& A = Strokes[Order[K]];
    if (!A.Stamp) Stroked[Order[K]] = true;
    for (size_t M = K + 1; M < Order.size(); ++M) {
      const TStroke& B = Strokes[Order[M]];
      if (B.Reach.Left >= A.Reach.Right) break;
      if (!A.Stamp && !B.Stamp) continue;
      const TRect Both = Intersect(A.Reach, B.Reach);
      bool Shared = false;
      for (int32_t Y = Both.Top; Y < Both.Bottom && !Shared; ++Y)
        for (int32_t X = Both.Left; X < Both.Right && !Shared; ++X)
          Shared = Covers(A, X, Y) && Covers(B, X, Y) && !Painted(X, X + 1, Y, Y + 1);
      if (Shared) Stroked[Order[K]] = Stroked[Order[M]] = true;
    }
  }

  cairo_new_path(FCairo);
  TRect Dirty;
  if (std::find(Stroked.begin(), Stroked.end(), false) != Stroked.end()) cairo_surface_flush(FSurface);
  for (size_t K = 0; K < Strokes.size(); ++K) {
    const TStroke& S = Strokes[K];
    if (!Stroked[K]) {
      Dirty = Union(Dirty, BlendStamp(*S.Stamp, S.At));
      continue;
    }
    cairo_move_to(FCairo, Store[S.From].X, Store[S.From].Y);
    for (size_t P = S.From + 1; P < S.From + S.Count; ++P)
      cairo_line_to(FCairo, Store[P].X, Store[P].Y);
  }
  if (!Dirty.IsEmpty())
    cairo_surface_mark_dirty_rectangle(FSurface, Dirty.Left, Dirty.Top, Dirty.Width(),
                                       Dirty.Height());
  PaintPath(false, true);
  FillBoxes(Boxes, FPen->Color());
}

void TCanvas::FillBoxes(std::span<const TRect> Boxes, TColor Color) {
  if (Boxes.empty() || !CanPaint()) return;
  if (!WritesPixels()) {
    cairo_new_path(FCairo);
    for (const TRect& B : Boxes)
      cairo_rectangle(FCairo, B.Left, B.Top, B.Width(), B.Height());
    PaintPathWith(true, Color, bsSolid, false, false);
    return;
  }
  // Whole pixels of an opaque colour come out of Cairo as the colour itself: writing them
  // spares its rasterizer, which sorts and sweeps even boxes that share no pixel.
  cairo_surface_flush(FSurface);
  const uint32_t Pixel = OpaquePixel(Color);
  const TRect Area = DrawableArea();
  TRect Dirty;
  for (const TRect& Box : Boxes) {
    const TRect B = Intersect(Box, Area);
    if (B.IsEmpty()) continue;
    for (int32_t Y = B.Top; Y < B.Bottom; ++Y)
      std::fill_n(PixelRow(Y) + B.Left, B.Width(), Pixel);
    Dirty = Union(Dirty, B);
  }
  if (!Dirty.IsEmpty())
    cairo_surface_mark_dirty_rectangle(FSurface, Dirty.Left, Dirty.Top, Dirty.Width(),
                                       Dirty.Height());
}

} // namespace kx
