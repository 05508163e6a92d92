#include "kxcharts/toolkit/objects/KXObject.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/KXTestSupport.h"

namespace kx {
namespace {

std::vector<std::string> Journal;

class TBase : public TPersistent {
  KX_CLASS(TBase, TPersistent)
public:
  int Value = 0;
  void AfterConstruction() override { Journal.push_back("after:" + Describe()); }
  void BeforeDestruction() override { Journal.push_back("before:" + Describe()); }
  virtual std::string Describe() const { return "base"; }
  void Assign(const TPersistent* Source) override {
    if (Source == this) return;
    if (auto* B = dynamic_cast<const TBase*>(Source)) {
      Value = B->Value;
      return;
    }
    inherited::Assign(Source);
  }
};

class TDerived : public TBase {
  KX_CLASS(TDerived, TBase)
public:
  std::string Describe() const override { return "derived"; }
};

class TStranger : public TPersistent {
  KX_CLASS(TStranger, TPersistent)
};

class TThrowsOnStart : public TBase {
  KX_CLASS(TThrowsOnStart, TBase)
public:
  void AfterConstruction() override { throw Exception("no"); }
};

TEST(Object, AfterConstructionThatThrowsTearsDownAndPassesOn) {
  Journal.clear();
  EXPECT_THROW(New<TThrowsOnStart>(), Exception);
  EXPECT_EQ(Journal, (std::vector<std::string>{"before:base"}));
}

TEST(Object, MetaclassesKnowNamesParentsAndFactories) {
  const TObject* D = New<TDerived>();
  EXPECT_EQ(D->ClassName(), "TDerived");
  EXPECT_TRUE(D->InheritsFrom(ClassOf<TPersistent>()));
  EXPECT_FALSE(D->InheritsFrom(ClassOf<TStranger>()));
  EXPECT_EQ(ClassOf<TDerived>()->ClassParent(), ClassOf<TBase>());
  EXPECT_TRUE(Is<TBase>(D));
  EXPECT_FALSE(Is<TStranger>(D));
  EXPECT_FALSE(Is<TBase>(nullptr));
  const_cast<TObject*>(D)->Free();

  const TObjectMeta* Meta = ClassOf<TDerived>();
  TOwned<TObject> Made(Meta->Create());
  EXPECT_EQ(Made->ClassType(), ClassOf<TDerived>());
}

TEST(Persistent, AssignCopiesAndRejectsImpossiblePairs) {
  auto A = MakeOwned<TBase>();
  auto B = MakeOwned<TDerived>();
  B->Value = 7;
  A->Assign(B.get());
  EXPECT_EQ(A->Value, 7);

  auto S = MakeOwned<TStranger>();
  EXPECT_EQ(test::MessageOf<EConvertError>([&] { A->Assign(S.get()); }),
            "Cannot assign a TStranger to a TBase");
  EXPECT_EQ(test::MessageOf<EConvertError>([&] { S->Assign(nullptr); }),
            "Cannot assign a nil to a TStranger");
  S->Assign(S.get()); // to itself: nothing happens, nothing raised
}

} // namespace
} // namespace kx
