#include "kxcharts/toolkit/objects/KXObjectRect.h"

#include <cmath>

#include <gtest/gtest.h>

namespace kx {
namespace {

TEST(ObjectRect, EachEffectiveChangeRaisesOneEvent) {
  auto R = MakeOwned<TKXObjectRect>(TRect{3, 4, 3, 4});
  int Changes = 0;
  R->SetOnChange([&](TObject* Sender) {
    EXPECT_EQ(Sender, R.get());
    ++Changes;
  });
  R->SetLeft(3);
  R->SetRect({3, 4, 3, 4});
  EXPECT_EQ(Changes, 0);
  R->SetLeft(-5); // sides are free numbers: no order, no clamp
  R->SetBottom(1);
  EXPECT_EQ(Changes, 2);
  R->SetRect({1, 2, 3, 4});
  EXPECT_EQ(Changes, 3);
  EXPECT_EQ(R->Rect(), (TRect{1, 2, 3, 4}));
}

TEST(ObjectRect, AssignCopiesTheSidesWithOneEvent) {
  auto A = MakeOwned<TKXObjectRect>(TRect{10, 10, 10, 10});
  auto B = MakeOwned<TKXObjectRect>();
  int Changes = 0;
  B->SetOnChange([&](TObject*) { ++Changes; });
  B->Assign(A.get());
  B->Assign(A.get());
  B->Assign(B.get());
  EXPECT_EQ(B->Rect(), A->Rect());
  EXPECT_EQ(Changes, 1);
  auto P = MakeOwned<TKXPosition>();
  EXPECT_THROW(B->Assign(P.get()), EConvertError);
  EXPECT_THROW(P->Assign(B.get()), EConvertError);
}

TEST(Position, ChangesAreReportedAndNaNIsStoredAsZero) {
  auto P = MakeOwned<TKXPosition>(NAN, 0.25);
  EXPECT_EQ(P->X(), 0);
  int Changes = 0;
  P->SetOnChange([&](TObject*) { ++Changes; });
  P->SetX(std::nan(""));
  P->SetY(0.25);
  EXPECT_EQ(Changes, 0);
  P->SetPosition(0.5, -0.5);
  P->SetX(0.75);
  EXPECT_EQ(Changes, 2);

  auto Q = MakeOwned<TKXPosition>();
  Q->Assign(P.get());
  EXPECT_EQ(Q->X(), 0.75);
  EXPECT_EQ(Q->Y(), -0.5);
}

} // namespace
} // namespace kx
