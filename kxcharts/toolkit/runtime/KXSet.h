#pragma once
// TSet<E>: the platform's small sets (of an enumeration, or of a small integer range such as
// the dimensions 0..7 of a value). Bit n stands for member n, so the numeric defaults that
// stored properties are given read literally: TSet<TChartOption>::FromBits(1815).

#include <cstdint>
#include <initializer_list>

#include "kxcharts/toolkit/runtime/KXEnum.h"

namespace kx {

template <class E, int N = TEnumCount<E>> class TSet {
  static_assert(N > 0 && N <= 32, "a TSet holds 1 to 32 members");

public:
  using Element = E;
  using Bits_t = uint32_t;
  static constexpr int Size = N;
  static constexpr Bits_t Mask = N == 32 ? ~Bits_t(0) : ((Bits_t(1) << N) - 1);

  constexpr TSet() = default;
  constexpr TSet(std::initializer_list<E> Members) {
    for (E M : Members)
      Include(M);
  }

  // Bits that name no member are dropped.
  static constexpr TSet FromBits(uint64_t Bits) {
    TSet S;
    S.FBits = static_cast<Bits_t>(Bits) & Mask;
    return S;
  }
  constexpr Bits_t Bits() const { return FBits; }

  constexpr bool Contains(E M) const { return Valid(M) && (FBits & Bit(M)) != 0; }
  constexpr TSet& Include(E M) {
    if (Valid(M)) FBits |= Bit(M);
    return *this;
  }
  constexpr TSet& Exclude(E M) {
    if (Valid(M)) FBits &= ~Bit(M);
    return *this;
  }
  constexpr bool Empty() const { return FBits == 0; }
  constexpr int Count() const { return __builtin_popcount(FBits); }

  friend constexpr TSet operator+(TSet A, TSet B) { return FromBits(A.FBits | B.FBits); }
  friend constexpr TSet operator-(TSet A, TSet B) { return FromBits(A.FBits & ~B.FBits); }
  friend constexpr TSet operator*(TSet A, TSet B) { return FromBits(A.FBits & B.FBits); }
  friend constexpr TSet operator+(TSet A, E M) { return A.Include(M); }
  friend constexpr TSet operator-(TSet A, E M) { return A.Exclude(M); }
  constexpr TSet& operator+=(TSet B) { return *this = *this + B; }
  constexpr TSet& operator-=(TSet B) { return *this = *this - B; }
  constexpr TSet& operator*=(TSet B) { return *this = *this * B; }
  friend constexpr bool operator==(TSet A, TSet B) = default;
  // A <= B: every member of A is in B.
  friend constexpr bool operator<=(TSet A, TSet B) { return (A.FBits & ~B.FBits) == 0; }

  // Members in ascending order, for range-for.
  class iterator {
  public:
    constexpr iterator(Bits_t Rest) : FRest(Rest) {}
    constexpr E operator*() const { return static_cast<E>(__builtin_ctz(FRest)); }
    constexpr iterator& operator++() {
      FRest &= FRest - 1;
      return *this;
    }
    constexpr bool operator!=(const iterator& O) const { return FRest != O.FRest; }

  private:
    Bits_t FRest;
  };
  constexpr iterator begin() const { return iterator(FBits); }
  constexpr iterator end() const { return iterator(0); }

private:
  static constexpr bool Valid(E M) {
    const auto V = static_cast<long long>(M);
    return V >= 0 && V < N;
  }
  static constexpr Bits_t Bit(E M) { return Bits_t(1) << static_cast<int>(M); }

  Bits_t FBits = 0;
};

} // namespace kx
