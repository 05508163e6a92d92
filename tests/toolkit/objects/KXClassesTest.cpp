#include "kxcharts/toolkit/objects/KXClasses.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/KXTestSupport.h"

namespace kx {
namespace {

std::vector<std::string> Log;

// --- Components ---

// Records what it hears and keeps one pointer to another component.
class TWatcher : public TComponent {
  KX_CLASS(TWatcher, TComponent)
public:
  using TComponent::TComponent;
  TComponent* Ref = nullptr;
  bool DesigningAtStart = false;
  bool LoadingAtStart = false;
  bool DestroyingInBody = false;
  void AfterConstruction() override {
    inherited::AfterConstruction();
    DesigningAtStart = ComponentState().Contains(csDesigning);
    LoadingAtStart = ComponentState().Contains(csLoading);
    Log.push_back("after:" + Label());
  }
  void BeforeDestruction() override {
    DestroyingInBody = ComponentState().Contains(csDestroying);
    Log.push_back("before:" + Label() + (DestroyingInBody ? "(destroying)" : ""));
    inherited::BeforeDestruction();
  }
  void SetRef(TComponent* C) {
    if (Ref) RemoveFreeNotification(Ref);
    Ref = C;
    if (C) FreeNotification(C);
  }
  virtual std::string Label() const { return Name().empty() ? "?" : Name(); }

protected:
  void Notification(TComponent* AComponent, TOperation Operation) override {
    inherited::Notification(AComponent, Operation);
    Log.push_back(Label() + (Operation == opInsert ? " hears insert of " : " hears remove of ") +
                  (AComponent->Name().empty() ? "?" : AComponent->Name()));
    if (Operation == opRemove && AComponent == Ref) Ref = nullptr;
  }
};

class TSpecialWatcher : public TWatcher {
  KX_CLASS(TSpecialWatcher, TWatcher)
public:
  using TWatcher::TWatcher;
  std::string Label() const override { return "special"; }
};

class TAbstractComponent : public TComponent {
  KX_CLASS(TAbstractComponent, TComponent)
public:
  using TComponent::TComponent;
  virtual void Pure() = 0;
};

class TFailingComponent : public TComponent {
  KX_CLASS(TFailingComponent, TComponent)
public:
  using TComponent::TComponent;
  void AfterConstruction() override {
    inherited::AfterConstruction();
    throw Exception("refused");
  }
};

TWatcher* MakeWatcher(TComponent* Owner, const std::string& Name) {
  auto* W = New<TWatcher>(Owner);
  W->SetName(Name);
  return W;
}

TEST(Component, MetaclassRunsTwoPhaseConstructionWithVirtualDispatch) {
  Log.clear();
  TComponentClass Meta = ClassOf<TSpecialWatcher>();
  TComponent* C = Meta->Create(nullptr);
  EXPECT_EQ(C->ClassType(), ClassOf<TSpecialWatcher>());
  EXPECT_TRUE(C->InheritsFrom(ClassOf<TComponent>()));
  C->Free();
  EXPECT_EQ(Log, (std::vector<std::string>{"after:special", "before:special(destroying)"}));
  EXPECT_TRUE(ClassOf<TAbstractComponent>()->IsAbstract());
  EXPECT_THROW(ClassOf<TAbstractComponent>()->Create(nullptr), Exception);
}

TEST(Component, DesigningComesFromTheOwnerAndLoadingFromTheCaller) {
  TOwned<TWatcher> Form(New<TWatcher>(nullptr));
  Form->SetDesigning(true);
  auto* Child = New<TWatcher>(Form.get());
  EXPECT_TRUE(Child->DesigningAtStart);
  EXPECT_FALSE(Child->LoadingAtStart);

  auto* Read = static_cast<TWatcher*>(
      ClassOf<TWatcher>()->CreateWithState(Form.get(), TComponentState{csLoading, csReading}));
  EXPECT_TRUE(Read->LoadingAtStart);
  EXPECT_TRUE(Read->DesigningAtStart);

  auto* Plain = New<TWatcher>(nullptr);
  EXPECT_FALSE(Plain->DesigningAtStart);
  Form->InsertComponent(Plain); // adopted by a designing owner, it designs too
  EXPECT_TRUE(Plain->ComponentState().Contains(csDesigning));
}

TEST(Component, OwnerFreesItsComponentsLastFirstAndEachSeesItselfDestroying) {
  Log.clear();
  auto* Form = MakeWatcher(nullptr, "Form");
  auto* A = MakeWatcher(Form, "A");
  MakeWatcher(Form, "B");
  MakeWatcher(A, "A1");
  EXPECT_EQ(Form->ComponentCount(), 2);
  EXPECT_EQ(A->Components(0)->Name(), "A1");
  Log.clear();
  Form->Free();
  EXPECT_EQ(Log, (std::vector<std::string>{"before:Form(destroying)", "before:B(destroying)",
                                           "before:A(destroying)", "before:A1(destroying)"}));
}

TEST(Component, InsertAndRemoveAreBroadcastToTheWholeOwnerTree) {
  TOwned<TWatcher> Form(MakeWatcher(nullptr, "Form"));
  auto* A = MakeWatcher(Form.get(), "A");
  MakeWatcher(A, "A1");
  Log.clear();
  auto* B = New<TWatcher>(Form.get()); // unnamed at the moment of insertion
  EXPECT_EQ(Log, (std::vector<std::string>{"A1 hears insert of ?", "A hears insert of ?",
                                           "Form hears insert of ?", "after:?"}));
  B->SetName("B");
  Log.clear();
  Form->RemoveComponent(B);
  EXPECT_EQ(B->Owner(), nullptr);
  EXPECT_EQ(Form->ComponentCount(), 1);
  EXPECT_EQ(Log, (std::vector<std::string>{"A1 hears remove of B", "A hears remove of B",
                                           "Form hears remove of B"}));
  B->Free();
}

TEST(Component, FreeNotificationKeepsAReferrerAliveAndItsPointerCleared) {
  Log.clear();
  auto* Panel = MakeWatcher(nullptr, "Panel");
  auto* Chart = MakeWatcher(nullptr, "Chart");
  Chart->SetRef(Panel);
  Panel->Free();
  EXPECT_EQ(Chart->Ref, nullptr);
  EXPECT_EQ(std::count(Log.begin(), Log.end(), "Chart hears remove of Panel"), 1);

  // The other way round: the referrer goes first and leaves nothing behind in the other.
  auto* Panel2 = MakeWatcher(nullptr, "Panel2");
  Chart->SetRef(Panel2);
  Chart->Free();
  Log.clear();
  Panel2->Free();
  EXPECT_EQ(Log, (std::vector<std::string>{"before:Panel2(destroying)"}));
}

TEST(Component, SiblingsThatAreLinkedHearOfAFreedSiblingExactlyOnce) {
  TOwned<TWatcher> Form(MakeWatcher(nullptr, "Form"));
  auto* Panel = MakeWatcher(Form.get(), "Panel");
  auto* Chart = MakeWatcher(Form.get(), "Chart");
  Chart->SetRef(Panel);
  Form->FreeNotification(Panel); // the owner is linked too
  Log.clear();
  Panel->Free();
  EXPECT_EQ(Chart->Ref, nullptr);
  EXPECT_EQ(std::count(Log.begin(), Log.end(), "Chart hears remove of Panel"), 1);
  EXPECT_EQ(std::count(Log.begin(), Log.end(), "Form hears remove of Panel"), 1);
  EXPECT_EQ(Form->ComponentCount(), 1);
}

TEST(Component, MovingAReferencedComponentToAnotherOwnerStillNotifiesOnFree) {
  TOwned<TWatcher> FormA(MakeWatcher(nullptr, "FormA"));
  TOwned<TWatcher> FormB(MakeWatcher(nullptr, "FormB"));
  auto* Panel = MakeWatcher(FormA.get(), "Panel");
  auto* Chart = MakeWatcher(FormA.get(), "Chart");
  Chart->SetRef(Panel);
  FormB->InsertComponent(Panel);
  EXPECT_EQ(Chart->Ref, nullptr); // the move is a removal from FormA's tree
  Chart->SetRef(Panel);
  FormB.reset();
  EXPECT_EQ(Chart->Ref, nullptr);
}

TEST(Component, AHandlerThatFreesTheOwnerDuringANoticeLeavesNothingDangling) {
  // Chart is linked to Panel; when Panel goes, Chart's handler frees Panel's owner.
  struct TKiller : public TWatcher {
    using TWatcher::TWatcher;
    TComponent* Victim = nullptr;

  protected:
    void Notification(TComponent* AComponent, TOperation Operation) override {
      const bool Mine = Operation == opRemove && AComponent == Ref;
      TWatcher::Notification(AComponent, Operation);
      if (Mine && Victim) FreeAndNil(Victim);
    }
  };
  auto* Form = MakeWatcher(nullptr, "Form");
  auto* Panel = MakeWatcher(Form, "Panel");
  MakeWatcher(Form, "Other");
  auto* Chart = New<TKiller>(nullptr);
  Chart->SetRef(Panel);
  Chart->Victim = Form;
  Panel->Free();
  EXPECT_EQ(Chart->Victim, nullptr);
  Chart->Free();
}

TEST(Component, ANameMustBeAnIdentifierAndUniqueWithinTheOwner) {
  TOwned<TWatcher> Form(MakeWatcher(nullptr, "Form"));
  auto* A = MakeWatcher(Form.get(), "Alpha");
  auto* B = MakeWatcher(Form.get(), "");
  struct TCase {
    std::string Name;
    const char* Error;
  };
  const TCase Cases[] = {{"1st", "'1st' is not a valid component name"},
                         {"a b", "'a b' is not a valid component name"},
                         {"ALPHA", "A component named ALPHA already exists"},
                         {"_ok9", nullptr},
                         {"", nullptr}};
  for (const TCase& C : Cases) {
    try {
      B->SetName(C.Name);
      EXPECT_EQ(C.Error, nullptr) << C.Name;
      EXPECT_EQ(B->Name(), C.Name);
    } catch (const EComponentError& E) {
      ASSERT_NE(C.Error, nullptr) << C.Name;
      EXPECT_EQ(E.Message(), C.Error);
    }
  }
  A->SetName("ALPHA"); // a change of case of its own name is no clash
  EXPECT_EQ(Form->FindComponent("alpha"), A);
  EXPECT_EQ(Form->FindComponent(""), nullptr);
  // A stranger with a taken name cannot join.
  TOwned<TWatcher> Stranger(MakeWatcher(nullptr, "Alpha"));
  EXPECT_THROW(Form->InsertComponent(Stranger.get()), EComponentError);
  EXPECT_EQ(Stranger->Owner(), nullptr);
  EXPECT_THROW(A->InsertComponent(Form.get()), EComponentError); // no ownership cycles
}

TEST(Component, AfterConstructionThatThrowsLeavesTheOwnerClean) {
  TOwned<TWatcher> Form(MakeWatcher(nullptr, "Form"));
  EXPECT_THROW(New<TFailingComponent>(Form.get()), Exception);
  EXPECT_EQ(Form->ComponentCount(), 0);
}

// --- Class registry ---

TEST(ClassRegistry, FindsRegisteredClassesByNameAndRefusesANameClash) {
  RegisterClasses({ClassOf<TWatcher>(), ClassOf<TSpecialWatcher>()});
  EXPECT_EQ(FindClass("TSpecialWatcher"), ClassOf<TSpecialWatcher>());
  EXPECT_EQ(GetClass("TComponent"), ClassOf<TComponent>()); // ancestors come along
  EXPECT_EQ(GetClass("TNoSuchThing"), nullptr);
  EXPECT_EQ(test::MessageOf<EClassNotFound>([] { FindClass("TNoSuchThing"); }),
            "Class TNoSuchThing not found");
  static const TComponentMetaImpl<TWatcher> Impostor("TWatcher", ClassOf<TComponent>());
  EXPECT_THROW(RegisterClass(&Impostor), EFilerError);
  UnRegisterClass(ClassOf<TSpecialWatcher>());
  EXPECT_EQ(GetClass("TSpecialWatcher"), nullptr);
}

// --- Collections ---

class TJournalCollection;

class TNamedItem : public TCollectionItem {
  KX_CLASS(TNamedItem, TCollectionItem)
public:
  using TCollectionItem::TCollectionItem;
  std::string Text;
  void AfterConstruction() override;
  void Touch() { Changed(false); }
  void Assign(const TPersistent* Source) override {
    if (Source == this) return;
    if (auto* S = dynamic_cast<const TNamedItem*>(Source)) {
      if (S->Text == "refuse") throw EConvertError("refused");
      Text = S->Text;
      return;
    }
    inherited::Assign(Source);
  }

protected:
  std::string GetDisplayName() const override {
    return Text.empty() ? inherited::GetDisplayName() : Text;
  }
};

class TJournalCollection : public TCollection {
  KX_CLASS(TJournalCollection, TCollection)
public:
  TJournalCollection() : TCollection(ClassOf<TNamedItem>()) {}
  int32_t Limit = 0;
  bool Quiet = false;
  using TCollection::Changed;

protected:
  void Notify(TCollectionItem* Item, TCollectionNotification Action) override {
    if (Quiet) return;
    Log.push_back(GetEnumName(Action) + " id" + std::to_string(Item->ID()) + " at " +
                  std::to_string(Item->Index()));
    if (Action == cnAdded && Limit > 0 && Count() > Limit) Delete(0);
  }
  void Update(TCollectionItem* Item) override {
    if (Quiet) return;
    Log.push_back(Item ? "update id" + std::to_string(Item->ID()) : "update all");
  }
};

void TNamedItem::AfterConstruction() {
  inherited::AfterConstruction();
  Log.push_back("item body id" + std::to_string(ID()));
}

std::vector<int32_t> Ids(const TCollection& C) {
  std::vector<int32_t> R;
  for (TCollectionItem* I : C)
    R.push_back(I->ID());
  return R;
}

TEST(Collection, AnItemJoinsAndIsNotifiedBeforeItsOwnBodyRuns) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  Log.clear();
  TCollectionItem* A = C->Add();
  New<TNamedItem>(C.get()); // the same road when the item is made directly
  EXPECT_EQ(A->Collection(), C.get());
  EXPECT_EQ(Log, (std::vector<std::string>{"cnAdded id0 at 0", "update all", "item body id0",
                                           "cnAdded id1 at 1", "update all", "item body id1"}));
}

TEST(Collection, DeleteNotifiesExtractingAtItsIndexThenDeleting) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  C->Add();
  C->Add();
  C->Add();
  Log.clear();
  C->Delete(1);
  EXPECT_EQ(Log, (std::vector<std::string>{"cnExtracting id1 at 1", "cnDeleting id1 at -1",
                                           "update all"}));
  Log.clear();
  C->Items(0)->Free(); // freeing an item directly takes the same road
  EXPECT_EQ(Log, (std::vector<std::string>{"cnExtracting id0 at 0", "cnDeleting id0 at -1",
                                           "update all"}));
  EXPECT_EQ(Ids(*C), (std::vector<int32_t>{2}));
}

TEST(Collection, ChangedIsSilentInsideBracketsAndOneUpdateEndsThem) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  auto* Item = static_cast<TNamedItem*>(C->Add());
  Log.clear();
  Item->Touch();
  EXPECT_EQ(Log, (std::vector<std::string>{"update id0"}));
  Log.clear();
  C->BeginUpdate();
  C->BeginUpdate();
  Item->Touch();
  C->Add();
  C->EndUpdate();
  Item->Touch();
  EXPECT_EQ(Log, (std::vector<std::string>{"cnAdded id1 at 1", "item body id1"}));
  C->EndUpdate();
  EXPECT_EQ(Log.back(), "update all");
  EXPECT_THROW(C->EndUpdate(), Exception);
}

// A random mix of every kind of change, moves by SetIndex among them, checked against a
// plain vector: positions, indexes and IDs must agree after each step, whatever the slot
// arithmetic does.
TEST(Collection, IndexesStayRightUnderARandomMixOfChanges) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  C->Quiet = true;
  std::vector<TCollectionItem*> Model;
  std::mt19937 Rng(42);
  for (int Step = 0; Step < 4000; ++Step) {
    const int N = static_cast<int>(Model.size());
    // Adds outweigh deletes, so the collection grows to hundreds, and deletes at the
    // front are frequent enough for the front gap to be reclaimed time and again.
    const int Op = static_cast<int>(Rng() % 9) - 2;
    auto Pick = [&](int Size) { return static_cast<int32_t>(Rng() % static_cast<unsigned>(Size)); };
    if (Op <= 1 || N < 2) {
      Model.push_back(C->Add());
    } else if (Op == 2 || Op == 6) {
      C->Delete(0);
      Model.erase(Model.begin());
    } else if (Op == 3) {
      const int32_t I = Pick(N);
      C->Delete(I);
      Model.erase(Model.begin() + I);
    } else if (Op == 4) {
      const int32_t I = Pick(N + 1);
      Model.insert(Model.begin() + I, C->Insert(I));
    } else {
      const int32_t From = Pick(N), To = Pick(N);
      Model[static_cast<size_t>(From)]->SetIndex(To);
      TCollectionItem* It = Model[static_cast<size_t>(From)];
      Model.erase(Model.begin() + From);
      Model.insert(Model.begin() + To, It);
    }
    ASSERT_EQ(C->Count(), static_cast<int32_t>(Model.size()));
    if (Step % 50 == 0 || Step > 3900)
      for (int32_t I = 0; I < C->Count(); ++I) {
        ASSERT_EQ(C->Items(I), Model[static_cast<size_t>(I)]) << "step " << Step;
        ASSERT_EQ(Model[static_cast<size_t>(I)]->Index(), I) << "step " << Step;
      }
  }
  EXPECT_GT(C->Count(), 200);
  TCollectionItem* Last = Model.back();
  EXPECT_EQ(C->FindItemID(Last->ID()), Last);
}

TEST(Collection, ALimitInNotifyDropsTheOldestWhileAdding) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  C->Limit = 3;
  for (int I = 0; I < 4; ++I)
    C->Add();
  EXPECT_EQ(Ids(*C), (std::vector<int32_t>{1, 2, 3}));
  TCollectionItem* Inserted = C->Insert(0);
  EXPECT_EQ(Inserted->Index(), 0);
  EXPECT_EQ(C->Count(), 3);
}

TEST(Collection, SettingCollectionToNilTakesTheItemOutWithoutAnUpdate) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  C->Add();
  TCollectionItem* Item = C->Add();
  C->Add();
  Log.clear();
  Item->SetCollection(nullptr);
  EXPECT_EQ(Item->Index(), -1);
  Item->SetCollection(C.get());
  EXPECT_EQ(Log, (std::vector<std::string>{"cnExtracting id1 at 1", "cnAdded id3 at 2"}));
  EXPECT_EQ(Item->Index(), 2);

  TOwned<TCollection> Other(New<TCollection>(ClassOf<TCollectionItem>()));
  TOwned<TCollectionItem> Plain(New<TCollectionItem>(nullptr));
  EXPECT_THROW(Plain->SetCollection(C.get()), EListError); // not a TNamedItem
  EXPECT_EQ(Plain->Collection(), nullptr);
  Item->SetCollection(Other.get()); // a TNamedItem is a TCollectionItem
  EXPECT_EQ(C->Count(), 2);
  EXPECT_EQ(Other->Count(), 1);
}

TEST(Collection, IndexErrorsNameTheIndex) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  C->Add();
  for (int32_t Bad : {-1, 1})
    EXPECT_EQ(test::MessageOf<EListError>([&] { C->Delete(Bad); }),
              "List index out of bounds (" + std::to_string(Bad) + ")");
  EXPECT_THROW(C->Insert(2), EListError);
  EXPECT_THROW(C->Items(0)->SetIndex(1), EListError);
}

TEST(Collection, AssignCopiesEveryItemAndEndsEmptyWhenAnItemRefuses) {
  TOwned<TJournalCollection> A(New<TJournalCollection>());
  TOwned<TJournalCollection> B(New<TJournalCollection>());
  A->Quiet = B->Quiet = true;
  static_cast<TNamedItem*>(A->Add())->Text = "x";
  static_cast<TNamedItem*>(A->Add())->Text = "y";
  B->Add();
  B->Assign(A.get());
  ASSERT_EQ(B->Count(), 2);
  EXPECT_EQ(B->Items(1)->DisplayName(), "y");
  EXPECT_EQ(B->Items(0)->Collection(), B.get());
  static_cast<TNamedItem*>(A->Add())->Text = "refuse";
  EXPECT_THROW(B->Assign(A.get()), EConvertError);
  EXPECT_EQ(B->Count(), 0);
  EXPECT_EQ(B->UpdateCount(), 0);
}

TEST(Collection, RangeForSurvivesDeletionDuringTheWalk) {
  TOwned<TJournalCollection> C(New<TJournalCollection>());
  C->Quiet = true;
  for (int I = 0; I < 5; ++I)
    C->Add();
  int Seen = 0;
  for (TCollectionItem* Item : *C) {
    ++Seen;
    if (Item->Index() == 1) C->Clear();
  }
  EXPECT_EQ(Seen, 2);
  TCollectionEnumerator E = C->GetEnumerator();
  EXPECT_FALSE(E.MoveNext());
}

TEST(Collection, FreeingTheCollectionNotifiesEachItemButSendsNoUpdate) {
  auto* C = New<TJournalCollection>();
  C->Add();
  C->Add();
  Log.clear();
  C->Free();
  EXPECT_EQ(Log, (std::vector<std::string>{"cnExtracting id1 at 1", "cnDeleting id1 at -1",
                                           "cnExtracting id0 at 0", "cnDeleting id0 at -1"}));
}

TEST(Collection, DeletingAnItemThatIsBeingDeletedIsRefused) {
  struct TRecursive : public TJournalCollection {
    bool Tried = false;

  protected:
    void Notify(TCollectionItem* Item, TCollectionNotification Action) override {
      if (Action == cnExtracting && !Tried) {
        Tried = true;
        EXPECT_THROW(Delete(Item->Index()), EInvalidOp);
      }
    }
  };
  TOwned<TRecursive> C(New<TRecursive>());
  C->Add();
  C->Delete(0);
  EXPECT_TRUE(C->Tried);
  EXPECT_EQ(C->Count(), 0);
}

} // namespace
} // namespace kx
