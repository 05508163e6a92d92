#pragma once
// TKXValueSummary: what a repaint of many XY values needs to know without visiting them.
// It holds flat copies of each value's X and Y, whether the value draws plainly (visible,
// not selected, opacity above 0, scale 1, both numbers finite) and its colour; above them
// a tree of blocks of Fanout children that keeps, per block, the lowest and highest finite
// X and Y, whether a value that is not plain lies inside, and the one colour all its values
// share (if they do). Range questions then cost O(Fanout * log N) instead of O(N).
//
// The summary follows its collection by index and is brought up to date lazily (Sync),
// from what it was told since: values appended at the end are read once; a value removed at
// the front only moves the start, so a Limit sliding window costs O(1) per value; a change
// of one value re-reads that value; a removal, insert or move in the middle re-reads from
// there on. Blocks that reach outside the held values are never used whole, which is what
// lets the front and the end move without rebuilding.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKX2DChartValues;

class TKXValueSummary {
public:
  static constexpr int32_t Fanout = 16;
  // Fanout is 1 << FanoutBits: a block's leaves and position come from shifts and masks.
  static constexpr size_t FanoutBits = 4;
  static_assert(Fanout == 1 << FanoutBits);

  // --- Being told ---
  // Everything is stale: the next Sync reads every value.
  void Invalidate();
  // The values from Index on are stale (removed, inserted before or moved).
  void InvalidateFrom(int32_t Index);
  // The value at Index changed (a number, a flag, its colour).
  void ValueChanged(int32_t Index);
  // The value at Index is about to leave the collection.
  void Removing(int32_t Index);

  // Brings the summary up to date with Values (to Values->Count() values).
  void Sync(const TKX2DChartValues* Values);

  // --- Reading (indexes of the collection, after Sync) ---
  int32_t Count() const { return FCount; }
  double X(int32_t Index) const { return FX[Phys(Index)]; }
  double Y(int32_t Index) const { return FY[Phys(Index)]; }
  bool Plain(int32_t Index) const { return (FFlags[Phys(Index)] & NotPlain) == 0; }
  TColor Color(int32_t Index) const { return FColor[Phys(Index)]; }
  // The lowest and highest finite Y of the values From..To; false when there is none.
  bool MinMax(int32_t From, int32_t To, double& Lo, double& Hi) const;
  // The same for X.
  bool XMinMax(int32_t From, int32_t To, double& Lo, double& Hi) const;
  // The first index in From..To whose value is not plain; To + 1 when all are.
  int32_t NextNotPlain(int32_t From, int32_t To) const;
  // The first index in From..To whose colour is not Color; To + 1 when none.
  int32_t NextOtherColor(int32_t From, int32_t To, TColor Color) const;
  // Asks the cache for what a range ending at Index reads there (its X and Y, the leaves
  // before it in its block, the blocks above), so that a walk that jumps far ahead can
  // have it arrive while it works on what it holds.
  void Prefetch(int32_t Index) const;
  // The first (last) index in From..To with a finite Y that Test accepts; -1 when none.
  // Test(Lo, Hi) answers whether some Y between Lo and Hi (inclusive, Lo <= Hi) is
  // accepted, and must be exact for the Ys Lo and Hi themselves: the accepted Ys are those
  // outside an interval, say (which is what a monotone mapping to pixels other than one
  // pixel gives).
  template <class RangeTest> int32_t FirstWhere(int32_t From, int32_t To, RangeTest Test) const {
    return FindFirst(
        From, To,
        [&](size_t L, size_t N) {
          const TLevel& Lv = FLevels[L];
          return !(Lv.Flags[N] & NoFinite) && Test(Lv.Lo[N], Lv.Hi[N]);
        },
        [&](size_t P) { return !(FFlags[P] & NoFinite) && Test(FY[P], FY[P]); });
  }
  template <class RangeTest> int32_t LastWhere(int32_t From, int32_t To, RangeTest Test) const {
    return FindLast(
        From, To,
        [&](size_t L, size_t N) {
          const TLevel& Lv = FLevels[L];
          return !(Lv.Flags[N] & NoFinite) && Test(Lv.Lo[N], Lv.Hi[N]);
        },
        [&](size_t P) { return !(FFlags[P] & NoFinite) && Test(FY[P], FY[P]); });
  }

private:
  static constexpr uint8_t NotPlain = 1;
  static constexpr uint8_t MixedColor = 2;
  static constexpr uint8_t NoFinite = 4;  // no finite Y
  static constexpr uint8_t NoFiniteX = 8;

  // One level of blocks above the values.
  struct TLevel {
    std::vector<double> Lo, Hi, XLo, XHi;
    std::vector<uint8_t> Flags;
    std::vector<TColor> Color;
  };

  // Leaves by physical position; the first FBase are values removed at the front.
  std::vector<double> FX, FY;
  std::vector<uint8_t> FFlags;
  std::vector<TColor> FColor;
  std::vector<TLevel> FLevels;
  size_t FBase = 0;
  int32_t FCount = 0;
  bool FAll = true;
  // Values (by index) changed inside the held ones; past MaxDirty, all from the first.
  std::vector<int32_t> FDirty;
  static constexpr size_t MaxDirty = 4096;

  size_t Phys(int32_t Index) const { return FBase + static_cast<size_t>(Index); }
  void ReadValue(const TKX2DChartValues* Values, int32_t Index);
  // Recomputes the blocks over the leaves at physical positions From..To.
  void Rebuild(size_t From, size_t To);
  void RebuildNode(size_t Level, size_t Node);
  void Compact();
  // The extent of the finite Ys (or Xs) From..To: Coord holds the leaves, LoOf and HiOf the
  // blocks' fields, Missing the flag of a leaf or block with none.
  bool Extent(int32_t From, int32_t To, const std::vector<double>& Coord,
              std::vector<double> TLevel::*LoOf, std::vector<double> TLevel::*HiOf,
              uint8_t Missing, double& Lo, double& Hi) const;
  // The block test and the leaf test of a search: whether a match may lie inside.
  template <class NodeTest, class LeafTest>
  int32_t FindFirst(int32_t From, int32_t To, NodeTest Node, LeafTest Leaf) const;
  template <class NodeTest, class LeafTest>
  int32_t FindLast(int32_t From, int32_t To, NodeTest Node, LeafTest Leaf) const;
};

// --- Searches ---

// Walks From..To in the largest aligned blocks that fit, left to right, and goes down into
// the first block whose test passes. Each level is crossed at most twice.
template <class NodeTest, class LeafTest>
int32_t TKXValueSummary::FindFirst(int32_t From, int32_t To, NodeTest Node, LeafTest Leaf) const {
  if (From > To) return -1;
  const size_t B = Phys(To), Levels = FLevels.size();
  size_t P = Phys(From);
  while (P <= B) {
    // The level of the block of 1 << Shift leaves at P, plus one; 0 for a leaf.
    size_t Level = 0, Shift = 0;
    while (Level < Levels) {
      const size_t Up = size_t(1) << (Shift + FanoutBits);
      if ((P & (Up - 1)) != 0 || P + Up - 1 > B) break;
      Shift += FanoutBits;
      ++Level;
    }
    const bool Hit = Level == 0 ? Leaf(P) : Node(Level - 1, P >> Shift);
    if (Hit) {
      size_t Start = P;
      for (size_t L = Level; L > 0; --L) {
        Shift -= FanoutBits;
        const size_t Child = size_t(1) << Shift;
        bool Found = false;
        for (size_t C = 0; C < Fanout && !Found; ++C) {
          const size_t Q = Start + C * Child;
          if (L == 1 ? Leaf(Q) : Node(L - 2, Q >> Shift)) {
            Start = Q;
            Found = true;
          }
        }
        if (!Found) return -1; // a test that is not exact; no better answer exists
      }
      return static_cast<int32_t>(Start - FBase);
    }
    P += size_t(1) << Shift;
  }
  return -1;
}

template <class NodeTest, class LeafTest>
int32_t TKXValueSummary::FindLast(int32_t From, int32_t To, NodeTest Node, LeafTest Leaf) const {
  if (From > To) return -1;
  const size_t A = Phys(From), Levels = FLevels.size();
  size_t P = Phys(To) + 1; // one past the next position to look at
  while (P > A) {
    size_t Level = 0, Shift = 0;
    while (Level < Levels) {
      const size_t Up = size_t(1) << (Shift + FanoutBits);
      if ((P & (Up - 1)) != 0 || P < A + Up) break;
      Shift += FanoutBits;
      ++Level;
    }
    const size_t First = P - (size_t(1) << Shift);
    const bool Hit = Level == 0 ? Leaf(First) : Node(Level - 1, First >> Shift);
    if (Hit) {
      size_t Start = First;
      for (size_t L = Level; L > 0; --L) {
        Shift -= FanoutBits;
        const size_t Child = size_t(1) << Shift;
        bool Found = false;
        for (size_t C = Fanout; C-- > 0 && !Found;) {
          const size_t Q = Start + C * Child;
          if (L == 1 ? Leaf(Q) : Node(L - 2, Q >> Shift)) {
            Start = Q;
            Found = true;
          }
        }
        if (!Found) return -1;
      }
      return static_cast<int32_t>(Start - FBase);
    }
    P = First;
  }
  return -1;
}

} // namespace kx
