#include "kxcharts/charts/KXValueSummary_p.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/charts/KXXYChartValues.h"

namespace kx {

// --- Being told ---

void TKXValueSummary::Invalidate() {
  FAll = true;
  FDirty.clear();
}

void TKXValueSummary::InvalidateFrom(int32_t Index) {
  if (FAll) return;
  FCount = std::clamp(Index, 0, FCount);
}

void TKXValueSummary::ValueChanged(int32_t Index) {
  if (FAll || Index < 0 || Index >= FCount) return;
  FDirty.push_back(Index);
  if (FDirty.size() > MaxDirty) {
    InvalidateFrom(*std::min_element(FDirty.begin(), FDirty.end()));
    FDirty.clear();
  }
}

void TKXValueSummary::Removing(int32_t Index) {
  if (FAll || Index < 0 || Index >= FCount) return;
  if (Index > 0) {
    InvalidateFrom(Index);
    return;
  }
  // The front moves on; the leaf stays behind as a dead slot until Compact.
  ++FBase;
  --FCount;
  std::erase(FDirty, 0);
  for (int32_t& D : FDirty)
    --D;
}

// --- Upkeep ---

void TKXValueSummary::ReadValue(const TKX2DChartValues* Values, int32_t Index) {
  double X = 0, Y = 0;
  TColor Color = clNone;
  // A value added in bulk and not made yet is read where it waits: visible, not selected,
  // opaque, at scale 1.
  bool Plain = Values->DeferredXY(Index, X, Y, Color);
  if (!Plain) {
    const TKX2DChartValue* V = Values->Items(Index);
    X = V->GetValue(Values->XDim());
    Y = V->GetValue(Values->YDim());
    Color = V->Color();
    Plain = V->Visible() && !V->Selected() && V->Opacity() > 0.0f && V->Scale() == 1.0f;
  }
  Plain = Plain && std::isfinite(X) && std::isfinite(Y);
  const uint8_t Flags =
      static_cast<uint8_t>((Plain ? 0 : NotPlain) | (std::isfinite(Y) ? 0 : NoFinite) |
                           (std::isfinite(X) ? 0 : NoFiniteX));
  const size_t P = Phys(Index);
  if (P == FX.size()) {
    FX.push_back(X);
    FY.push_back(Y);
    FFlags.push_back(Flags);
    FColor.push_back(Color);
  } else {
    FX[P] = X;
    FY[P] = Y;
    FFlags[P] = Flags;
    FColor[P] = Color;
  }
}

void TKXValueSummary::Sync(const TKX2DChartValues* Values) {
  const int32_t N = Values->Count();
  if (FAll) {
    FX.clear();
    FY.clear();
    FFlags.clear();
    FColor.clear();
    FLevels.clear();
    FDirty.clear();
    FBase = 0;
    FCount = 0;
    FAll = false;
  }
  FCount = std::min(FCount, N);
  // Dead slots at the front are reclaimed once they outnumber the live ones, so that a
  // sliding window pays O(1) per value for them.
  if (FBase >= 1024 && FBase >= static_cast<size_t>(FCount)) Compact();
  for (const int32_t I : FDirty) {
    if (I >= FCount) continue;
    ReadValue(Values, I);
    Rebuild(Phys(I), Phys(I));
  }
  FDirty.clear();
  const size_t End = Phys(FCount);
  if (End == FX.size() && FCount == N) return;
  FX.resize(End);
  FY.resize(End);
  FFlags.resize(End);
  FColor.resize(End);
  for (int32_t I = FCount; I < N; ++I)
    ReadValue(Values, I);
  FCount = N;
  if (End < FX.size())
    Rebuild(End, FX.size() - 1);
  else
    Rebuild(FX.size(), FX.size()); // only the level sizes
}

void TKXValueSummary::Compact() {
  const auto Cut = static_cast<std::ptrdiff_t>(FBase);
  FX.erase(FX.begin(), FX.begin() + Cut);
  FY.erase(FY.begin(), FY.begin() + Cut);
  FFlags.erase(FFlags.begin(), FFlags.begin() + Cut);
  FColor.erase(FColor.begin(), FColor.begin() + Cut);
  FBase = 0;
  FLevels.clear();
  if (!FX.empty()) Rebuild(0, FX.size() - 1);
}

void TKXValueSummary::Rebuild(size_t From, size_t To) {
  // The level sizes follow the number of leaves; blocks past the end are dropped.
  size_t Size = FX.size(), Levels = 0;
  for (size_t S = Size; S > 1; S = (S + Fanout - 1) / Fanout)
    ++Levels;
  FLevels.resize(Levels);
  for (size_t L = 0; L < Levels; ++L) {
    Size = (Size + Fanout - 1) / Fanout;
    TLevel& Lv = FLevels[L];
    for (std::vector<double>* Field : {&Lv.Lo, &Lv.Hi, &Lv.XLo, &Lv.XHi})
      Field->resize(Size);
    Lv.Flags.resize(Size);
    Lv.Color.resize(Size);
    if (From > To || From >= FX.size()) continue;
    From /= Fanout;
    To = std::min(To / Fanout, Size - 1);
    for (size_t N = From; N <= To; ++N)
      RebuildNode(L, N);
  }
}

namespace {
// The extent of the numbers taken so far; empty while Lo > Hi. Taken numbers are finite.
// Of equal numbers (-0 and 0) the leftmost by index is kept, as a walk from left to right
// keeps it.
struct TSpread {
  double Lo = INFINITY, Hi = -INFINITY;

  // Numbers that lie right of all those taken before.
  void TakeOnRight(double CLo, double CHi) {
    Lo = CLo < Lo ? CLo : Lo;
    Hi = CHi > Hi ? CHi : Hi;
  }
  // Numbers that lie left of all those taken before.
  void TakeOnLeft(double CLo, double CHi) {
    Lo = Lo < CLo ? Lo : CLo;
    Hi = Hi > CHi ? Hi : CHi;
  }
};
} // namespace

void TKXValueSummary::RebuildNode(size_t Level, size_t Node) {
  TLevel& Lv = FLevels[Level];
  const size_t First = Node * Fanout;
  const size_t Below = Level == 0 ? FX.size() : FLevels[Level - 1].Lo.size();
  const size_t Last = std::min(First + Fanout, Below);
  TSpread Y, X;
  uint8_t Flags = 0;
  TColor Color = Level == 0 ? FColor[First] : FLevels[Level - 1].Color[First];
  for (size_t C = First; C < Last; ++C) {
    double CLo, CHi, CXLo, CXHi;
    uint8_t CFlags;
    TColor CColor;
    if (Level == 0) {
      CLo = CHi = FY[C];
      CXLo = CXHi = FX[C];
      CFlags = FFlags[C];
      CColor = FColor[C];
    } else {
      const TLevel& Down = FLevels[Level - 1];
      CLo = Down.Lo[C];
      CHi = Down.Hi[C];
      CXLo = Down.XLo[C];
      CXHi = Down.XHi[C];
      CFlags = Down.Flags[C];
      CColor = Down.Color[C];
    }
    Flags |= CFlags & (NotPlain | MixedColor);
    if (CColor != Color) Flags |= MixedColor;
    if (!(CFlags & NoFinite)) Y.TakeOnRight(CLo, CHi);
    if (!(CFlags & NoFiniteX)) X.TakeOnRight(CXLo, CXHi);
  }
  // A block without a finite number keeps 0 for it, flagged.
  const bool HasY = Y.Lo <= Y.Hi, HasX = X.Lo <= X.Hi;
  Lv.Lo[Node] = HasY ? Y.Lo : 0;
  Lv.Hi[Node] = HasY ? Y.Hi : 0;
  Lv.XLo[Node] = HasX ? X.Lo : 0;
  Lv.XHi[Node] = HasX ? X.Hi : 0;
  Lv.Flags[Node] = Flags | (HasY ? 0 : NoFinite) | (HasX ? 0 : NoFiniteX);
  Lv.Color[Node] = Color;
}

// --- Reading ---

// The range's blocks, bottom up: at each level the loose ends on the left (in order) and
// on the right (from the end back) are taken, and what lies between them is whole blocks
// of the level above. Shifts and masks find them, as Fanout is a power of two.
bool TKXValueSummary::Extent(int32_t From, int32_t To, const std::vector<double>& Coord,
                             std::vector<double> TLevel::*LoOf, std::vector<double> TLevel::*HiOf,
                             uint8_t Missing, double& Lo, double& Hi) const {
  if (From > To) return false;
  TSpread Left, Right;
  size_t A = Phys(From), B = Phys(To) + 1; // the items A..B-1 of the level
  for (size_t L = 0; A < B; ++L) {
    const double* CLo = L == 0 ? Coord.data() : (FLevels[L - 1].*LoOf).data();
    const double* CHi = L == 0 ? Coord.data() : (FLevels[L - 1].*HiOf).data();
    const uint8_t* CFlags = L == 0 ? FFlags.data() : FLevels[L - 1].Flags.data();
    // The top level has no blocks above it: everything left is taken there.
    const bool Top = L == FLevels.size();
    const size_t LeftEnd = Top ? B : std::min(B, (A + Fanout - 1) & ~size_t(Fanout - 1));
    for (; A < LeftEnd; ++A)
      if (!(CFlags[A] & Missing)) Left.TakeOnRight(CLo[A], CHi[A]);
    const size_t RightStart = std::max(A, B & ~size_t(Fanout - 1));
    while (B > RightStart) {
      --B;
      if (!(CFlags[B] & Missing)) Right.TakeOnLeft(CLo[B], CHi[B]);
    }
    A >>= FanoutBits;
    B >>= FanoutBits;
  }
  if (Right.Lo <= Right.Hi) Left.TakeOnRight(Right.Lo, Right.Hi);
  if (Left.Lo > Left.Hi) return false;
  Lo = Left.Lo;
  Hi = Left.Hi;
  return true;
}

void TKXValueSummary::Prefetch(int32_t Index) const {
  const size_t P = Phys(Index), Block = P & ~size_t(Fanout - 1);
  __builtin_prefetch(&FX[P]);
  __builtin_prefetch(&FY[P]);
  __builtin_prefetch(&FY[Block]); // a block's leaves take more than one cache line
  __builtin_prefetch(&FY[Block + (P - Block) / 2]);
  __builtin_prefetch(&FFlags[P]);
  size_t N = P;
  for (const TLevel& Lv : FLevels) {
    N >>= FanoutBits;
    if (N < 64) break; // the few blocks of the upper levels stay in the cache anyway
    __builtin_prefetch(&Lv.Lo[N]);
    __builtin_prefetch(&Lv.Hi[N]);
    __builtin_prefetch(&Lv.Flags[N]);
  }
}

bool TKXValueSummary::MinMax(int32_t From, int32_t To, double& Lo, double& Hi) const {
  return Extent(From, To, FY, &TLevel::Lo, &TLevel::Hi, NoFinite, Lo, Hi);
}

bool TKXValueSummary::XMinMax(int32_t From, int32_t To, double& Lo, double& Hi) const {
  return Extent(From, To, FX, &TLevel::XLo, &TLevel::XHi, NoFiniteX, Lo, Hi);
}

int32_t TKXValueSummary::NextNotPlain(int32_t From, int32_t To) const {
  const int32_t I = FindFirst(
      From, To, [&](size_t L, size_t N) { return (FLevels[L].Flags[N] & NotPlain) != 0; },
      [&](size_t P) { return (FFlags[P] & NotPlain) != 0; });
  return I < 0 ? To + 1 : I;
}

int32_t TKXValueSummary::NextOtherColor(int32_t From, int32_t To, TColor Color) const {
  const int32_t I = FindFirst(
      From, To,
      [&](size_t L, size_t N) {
        const TLevel& Lv = FLevels[L];
        return (Lv.Flags[N] & MixedColor) != 0 || Lv.Color[N] != Color;
      },
      [&](size_t P) { return FColor[P] != Color; });
  return I < 0 ? To + 1 : I;
}

} // namespace kx
