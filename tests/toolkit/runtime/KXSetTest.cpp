#include "kxcharts/toolkit/runtime/KXSet.h"

#include <vector>

#include <gtest/gtest.h>

namespace kx {

enum TFruit : uint8_t { frApple, frBanana, frCherry, frDate };
KX_ENUM_NAMES(TFruit, "frApple", "frBanana", "frCherry", "frDate")

enum TGapped : int8_t { gpLow = -1, gpMid = 2, gpHigh = 7 };
template <> struct TEnumInfo<TGapped> {
  static constexpr std::string_view Names[] = {"gpLow", "gpMid", "gpHigh"};
  static constexpr TGapped Values[] = {gpLow, gpMid, gpHigh};
};

using TFruits = TSet<TFruit>;

TEST(Set, FromBitsDropsBitsThatNameNoMember) {
  EXPECT_EQ(TFruits::FromBits(0xFF).Bits(), 0x0Fu);
  EXPECT_EQ(TFruits::FromBits(0b1010), (TFruits{frBanana, frDate}));
  EXPECT_TRUE(TFruits::FromBits(0xF0).Empty());
}

TEST(Set, OperatorsFollowSetAlgebra) {
  const TFruits A{frApple, frBanana}, B{frBanana, frCherry};
  EXPECT_EQ(A + B, (TFruits{frApple, frBanana, frCherry}));
  EXPECT_EQ(A - B, TFruits{frApple});
  EXPECT_EQ(A * B, TFruits{frBanana});
  EXPECT_TRUE(TFruits{frBanana} <= A);
  EXPECT_FALSE(B <= A);
  EXPECT_EQ((A + frDate).Count(), 3);
  EXPECT_EQ((A - frApple), TFruits{frBanana});
}

TEST(Set, IncludeAndExcludeIgnoreOutOfRangeMembers) {
  TFruits S;
  S.Include(static_cast<TFruit>(9)).Include(frCherry);
  EXPECT_EQ(S.Bits(), 0b100u);
  EXPECT_FALSE(S.Contains(static_cast<TFruit>(9)));
  S.Exclude(static_cast<TFruit>(200)).Exclude(frCherry);
  EXPECT_TRUE(S.Empty());
}

TEST(Set, IteratesMembersInAscendingOrder) {
  std::vector<int> Seen;
  for (TFruit F : TFruits{frDate, frApple, frCherry})
    Seen.push_back(F);
  EXPECT_EQ(Seen, (std::vector<int>{0, 2, 3}));
}

TEST(Set, IntegerRangeSetHoldsDimensions) {
  using TDims = TSet<uint8_t, 8>;
  TDims D{0, 7, 8};
  EXPECT_EQ(D.Bits(), 0x81u);
  EXPECT_EQ(TDims::FromBits(0x1FF).Count(), 8);
}

TEST(EnumNames, NamesAndValuesRoundTrip) {
  EXPECT_EQ(GetEnumName(frCherry), "frCherry");
  EXPECT_EQ(GetEnumName(static_cast<TFruit>(9)), "9");
  EXPECT_EQ(GetEnumValue<TFruit>("frDate"), frDate);
  EXPECT_FALSE(GetEnumValue<TFruit>("frdate").has_value());
  EXPECT_EQ(GetEnumName(gpHigh), "gpHigh");
  EXPECT_EQ(GetEnumValue<TGapped>("gpLow"), gpLow);
  EXPECT_EQ(GetEnumName(static_cast<TGapped>(3)), "3");
}

} // namespace kx
