#include "kxcharts/toolkit/objects/KXClasses.h"

#include <algorithm>
#include <limits>
#include <mutex>

#include "kxcharts/toolkit/objects/KXFiler.h"
#include "kxcharts/toolkit/objects/KXLists.h"

namespace kx {

static_assert(sizeof(TCollectionItem) <= 24, "a collection item must stay small");

namespace {

[[noreturn]] void IndexError(long long Index) {
  throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
}

void EraseOne(std::vector<TComponent*>& List, const TComponent* Item) {
  auto It = std::find(List.begin(), List.end(), Item);
  if (It != List.end()) List.erase(It);
}

char LowerAscii(char C) {
  return (C >= 'A' && C <= 'Z') ? static_cast<char>(C - 'A' + 'a') : C;
}

} // namespace

bool SameText(std::string_view A, std::string_view B) {
  if (A.size() != B.size()) return false;
  for (size_t I = 0; I < A.size(); ++I)
    if (LowerAscii(A[I]) != LowerAscii(B[I])) return false;
  return true;
}

bool IsValidIdent(std::string_view Ident) {
  if (Ident.empty()) return false;
  auto Alpha = [](char C) { return (C >= 'A' && C <= 'Z') || (C >= 'a' && C <= 'z') || C == '_'; };
  if (!Alpha(Ident[0])) return false;
  return std::all_of(Ident.begin() + 1, Ident.end(),
                     [&](char C) { return Alpha(C) || (C >= '0' && C <= '9'); });
}

// --- TComponent: life ---

TComponent::TComponent(TComponent* AOwner) : FOwner(AOwner) {
  // Visible to AfterConstruction() of every descendant.
  if (AOwner && AOwner->FComponentState.Contains(csDesigning)) FComponentState.Include(csDesigning);
}

TComponent::~TComponent() {
  while (!FFreeNotifies.empty()) {
    TComponent* Other = FFreeNotifies.back();
    FFreeNotifies.pop_back();
    EraseOne(Other->FFreeNotifies, this);
  }
  while (!FComponents.empty()) {
    TComponent* C = FComponents.back();
    FComponents.pop_back();
    C->FOwner = nullptr;
    C->Free();
  }
  if (FOwner) EraseOne(FOwner->FComponents, this);
}

void TComponent::AfterConstruction() {
  inherited::AfterConstruction();
  if (TComponent* O = FOwner) {
    FOwner = nullptr;
    O->InsertComponent(this);
  }
}

void TComponent::BeginDestruction() {
  inherited::BeginDestruction();
  FFreeing = true;
  Destroying();
}

void TComponent::BeforeDestruction() {
  Destroying();
  std::unordered_set<const TComponent*> Told;
  FToldOnFree = &Told;
  try {
    TellFreeNotifies();
    DestroyComponents();
    if (FOwner) FOwner->RemoveComponent(this);
    // Someone may have asked for a notice while the others were being told.
    TellFreeNotifies();
  } catch (...) {
    FToldOnFree = nullptr;
    throw;
  }
  FToldOnFree = nullptr;
  inherited::BeforeDestruction();
}

void TComponent::TellFreeNotifies() {
  // The link goes before the notice, so that a Notification override that forgets the
  // inherited call cannot make this loop forever.
  while (!FFreeNotifies.empty()) {
    TComponent* Other = FFreeNotifies.back();
    FFreeNotifies.pop_back();
    EraseOne(Other->FFreeNotifies, this);
    Deliver(Other, this, opRemove);
  }
}

void TComponent::Destroying() {
  if (FComponentState.Contains(csDestroying)) return;
  FComponentState.Include(csDestroying);
  for (TComponent* C : FComponents)
    C->Destroying();
}

void TComponent::DestroyComponents() {
  while (!FComponents.empty()) {
    TComponent* C = FComponents.back();
    FComponents.pop_back();
    C->FOwner = nullptr;
    // A component whose Free() is already under way further up the stack (a handler
    // freed its owner) finishes on its own.
    if (!C->FFreeing) C->Free();
  }
}

// --- TComponent: properties ---

TComponent* TComponent::Components(int32_t Index) const {
  if (Index < 0 || Index >= ComponentCount()) IndexError(Index);
  return FComponents[static_cast<size_t>(Index)];
}

int32_t TComponent::ComponentIndex() const {
  if (!FOwner) return -1;
  const auto& L = FOwner->FComponents;
  auto It = std::find(L.begin(), L.end(), this);
  return It == L.end() ? -1 : static_cast<int32_t>(It - L.begin());
}

void TComponent::SetComponentIndex(int32_t Value) {
  if (!FOwner) return;
  auto& L = FOwner->FComponents;
  const int32_t Cur = ComponentIndex();
  if (Cur < 0) return;
  Value = std::clamp<int32_t>(Value, 0, static_cast<int32_t>(L.size()) - 1);
  if (Cur == Value) return;
  L.erase(L.begin() + Cur);
  L.insert(L.begin() + Value, this);
}

void TComponent::SetName(const std::string& NewName) {
  if (FName == NewName) return;
  if (!NewName.empty() && !IsValidIdent(NewName))
    throw EComponentError("'" + NewName + "' is not a valid component name");
  if (FOwner)
    FOwner->ValidateRename(this, FName, NewName);
  else
    ValidateRename(nullptr, FName, NewName);
  FName = NewName;
}

void TComponent::ValidateRename(TComponent* AComponent, const std::string& CurName,
                                const std::string& NewName) {
  if (!AComponent || NewName.empty() || SameText(CurName, NewName)) return;
  TComponent* Other = FindComponent(NewName);
  if (Other && Other != AComponent)
    throw EComponentError("A component named " + NewName + " already exists");
}

TComponent* TComponent::FindComponent(std::string_view AName) const {
  if (AName.empty()) return nullptr;
  for (TComponent* C : FComponents)
    if (SameText(C->FName, AName)) return C;
  return nullptr;
}

void TComponent::SetDesigning(bool Value, bool SetChildren) {
  if (Value)
    FComponentState.Include(csDesigning);
  else
    FComponentState.Exclude(csDesigning);
  if (SetChildren)
    for (TComponent* C : FComponents)
      C->SetDesigning(Value, true);
}

void TComponent::Loaded() {
  FComponentState.Exclude(csLoading);
}

void TComponent::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Tag", this, &TComponent::Tag, &TComponent::SetTag, 0);
}

// --- TComponent: ownership ---

void TComponent::InsertComponent(TComponent* AComponent) {
  if (!AComponent || AComponent->FOwner == this) return;
  for (const TComponent* O = this; O; O = O->FOwner)
    if (O == AComponent)
      throw EComponentError("A component cannot own itself or one of its owners");
  ValidateRename(AComponent, std::string(), AComponent->FName);
  if (AComponent->FOwner) AComponent->FOwner->RemoveComponent(AComponent);
  FComponents.push_back(AComponent);
  AComponent->FOwner = this;
  if (FComponentState.Contains(csDesigning)) AComponent->SetDesigning(true);
  Deliver(this, AComponent, opInsert);
}

void TComponent::RemoveComponent(TComponent* AComponent) {
  if (!AComponent || AComponent->FOwner != this) return;
  Deliver(this, AComponent, opRemove);
  EraseOne(FComponents, AComponent);
  AComponent->FOwner = nullptr;
}

// --- TComponent: notifications ---

void TComponent::FreeNotification(TComponent* AComponent) {
  if (!AComponent || AComponent == this) return;
  // Search the shorter of the two lists: a list's nexus may hold thousands.
  const bool Linked =
      FFreeNotifies.size() <= AComponent->FFreeNotifies.size()
          ? std::find(FFreeNotifies.begin(), FFreeNotifies.end(), AComponent) != FFreeNotifies.end()
          : std::find(AComponent->FFreeNotifies.begin(), AComponent->FFreeNotifies.end(), this) !=
                AComponent->FFreeNotifies.end();
  if (!Linked) {
    FFreeNotifies.push_back(AComponent);
    AComponent->FFreeNotifies.push_back(this);
  }
  FComponentState.Include(csFreeNotification);
}

void TComponent::RemoveFreeNotification(TComponent* AComponent) {
  if (!AComponent) return;
  Unlink(AComponent);
}

void TComponent::Unlink(TComponent* Other) {
  auto It = std::find(FFreeNotifies.begin(), FFreeNotifies.end(), Other);
  if (It == FFreeNotifies.end()) return;
  FFreeNotifies.erase(It);
  EraseOne(Other->FFreeNotifies, this);
}

void TComponent::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && AComponent) RemoveFreeNotification(AComponent);
  BroadcastToOwned(AComponent, Operation);
}

// While AComponent is being freed, each component hears of it once, whether by link or
// through the owner tree (a told component has passed the notice on to its own tree).
void TComponent::Deliver(TComponent* To, TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && AComponent->FToldOnFree &&
      !AComponent->FToldOnFree->insert(To).second)
    return;
  To->Notification(AComponent, Operation);
}

void TComponent::BroadcastToOwned(TComponent* AComponent, TOperation Operation) {
  // Handlers may free components of this list; walk from the end and clamp.
  size_t I = FComponents.size();
  while (I > 0) {
    --I;
    TComponent* C = FComponents[I];
    if (C != AComponent) Deliver(C, AComponent, Operation);
    if (I > FComponents.size()) I = FComponents.size();
  }
}

// --- TCollectionItem ---

TCollectionItem::TCollectionItem(TCollection* Collection) : FCollection(Collection) {}

TCollectionItem::~TCollectionItem() {
  // Freed without Free() while in a collection: leave it without telling anyone.
  if (FCollection) {
    TCollection* C = FCollection;
    C->RemoveSlot(C->IndexOfItem(this));
    FCollection = nullptr;
  }
}

void TCollectionItem::AfterConstruction() {
  inherited::AfterConstruction();
  if (TCollection* C = FCollection) {
    FCollection = nullptr;
    C->InsertItem(this);
    C->Changed();
  }
}

void TCollectionItem::BeginDestruction() {
  inherited::BeginDestruction();
  if (TCollection* C = FCollection) {
    C->ExtractItem(this);
    C->DeletingItem(this);
    C->Changed();
  }
}

void TCollectionItem::SetCollection(TCollection* Value) {
  if (FCollection == Value) return;
  if (Value && !InheritsFrom(Value->FItemClass))
    throw EListError("Cannot add a " + ClassName() + " to a collection of " +
                     std::string(Value->FItemClass->ClassName()));
  if (FCollection) FCollection->ExtractItem(this);
  if (Value) Value->InsertItem(this);
}

int32_t TCollectionItem::Index() const {
  return FCollection ? FCollection->IndexOfItem(this) : -1;
}

void TCollectionItem::SetIndex(int32_t Value) {
  if (!FCollection) return;
  const int32_t Cur = Index();
  if (Cur == Value) return;
  FCollection->CheckIndex(Value);
  FCollection->MoveSlot(Cur, Value);
  Changed(true);
}

void TCollectionItem::SetDisplayName(const std::string&) {
  Changed(false);
}

void TCollectionItem::Changed(bool AllItems) {
  if (FCollection && FCollection->FUpdateCount == 0) FCollection->Update(AllItems ? nullptr : this);
}

std::string TCollectionItem::GetDisplayName() const {
  return ClassName();
}

// --- TCollection: storage ---

TCollection::TCollection(TCollectionItemClass ItemClass) : FItemClass(ItemClass) {
  if (!ItemClass) throw Exception("A collection needs an item class");
}

TCollection::~TCollection() {
  while (Count() > 0) {
    TCollectionItem* Item = FSlots.back();
    FSlots.pop_back();
    if (!Item) continue;
    Item->FCollection = nullptr;
    Item->Free();
  }
}

void TCollection::CheckIndex(int32_t Index) const {
  if (Index < 0 || Index >= Count()) IndexError(Index);
}

TCollectionItem* TCollection::Items(int32_t Index) const {
  CheckIndex(Index);
  return At(static_cast<size_t>(Index));
}

// Gives the slots at positions FromPos..ToPos-1 of FSlots the numbers of their positions.
void TCollection::Renumber(size_t FromPos, size_t ToPos) {
  for (size_t P = FromPos; P < ToPos; ++P)
    if (FSlots[P]) FSlots[P]->FSlot = FBase + static_cast<uint32_t>(P);
}

void TCollection::PushSlot(TCollectionItem* Item) {
  if (FSlots.size() - FStart >= static_cast<size_t>(std::numeric_limits<int32_t>::max()))
    throw EListError("A collection holds at most 2147483647 items");
  FSlots.push_back(Item);
  Item->FSlot = FBase + static_cast<uint32_t>(FSlots.size() - 1);
}

void TCollection::RemoveSlot(int32_t Index) {
  const size_t N = static_cast<size_t>(Count());
  const size_t I = static_cast<size_t>(Index);
  // Deferred items are found by slot number, which only a removal at either end keeps.
  if (I != 0 && I + 1 != N) MakeDeferredItems();
  const size_t P = FStart + I;
  if (I + 1 == N) {
    FSlots.pop_back();
  } else if (I < N / 2) {
    // Shift the front part one slot up; the front gap grows.
    std::move_backward(FSlots.begin() + static_cast<ptrdiff_t>(FStart),
                       FSlots.begin() + static_cast<ptrdiff_t>(P),
                       FSlots.begin() + static_cast<ptrdiff_t>(P + 1));
    FSlots[FStart] = nullptr;
    ++FStart;
    Renumber(FStart, P + 1);
  } else {
    FSlots.erase(FSlots.begin() + static_cast<ptrdiff_t>(P));
    Renumber(P, FSlots.size());
  }
  // Reclaim the front gap once it is half the array: each pointer moved here was paid
  // for by a delete at the front, so deleting there stays O(1) amortised.
  if (FStart > 0 && (FStart == FSlots.size() || (FStart >= 64 && FStart * 2 >= FSlots.size()))) {
    FSlots.erase(FSlots.begin(), FSlots.begin() + static_cast<ptrdiff_t>(FStart));
    FBase += static_cast<uint32_t>(FStart);
    FStart = 0;
  }
}

void TCollection::MoveSlot(int32_t From, int32_t To) {
  MakeDeferredItems();
  const auto B = FSlots.begin() + static_cast<ptrdiff_t>(FStart);
  if (From < To) {
    std::rotate(B + From, B + From + 1, B + To + 1);
    Renumber(FStart + static_cast<size_t>(From), FStart + static_cast<size_t>(To) + 1);
  } else {
    std::rotate(B + To, B + From, B + From + 1);
    Renumber(FStart + static_cast<size_t>(To), FStart + static_cast<size_t>(From) + 1);
  }
  ItemsMoved(std::min(From, To), std::max(From, To));
}

// --- TCollection: membership ---

void TCollection::InsertItem(TCollectionItem* Item) {
  if (!Item->InheritsFrom(FItemClass))
    throw EListError("Cannot add a " + Item->ClassName() + " to a collection of " +
                     std::string(FItemClass->ClassName()));
  PushSlot(Item);
  Item->FCollection = this;
  Item->FID = static_cast<int32_t>(FNextID++);
  Notify(Item, cnAdded);
}

void TCollection::ExtractItem(TCollectionItem* Item) {
  FRemoving = Item;
  try {
    Notify(Item, cnExtracting);
  } catch (...) {
    FRemoving = nullptr;
    throw;
  }
  FRemoving = nullptr;
  // The handler may have moved items about; the item's index is read afresh.
  if (Item->FCollection == this) {
    RemoveSlot(IndexOfItem(Item));
    Item->FCollection = nullptr;
  }
}

void TCollection::DeletingItem(TCollectionItem* Item) {
  Notify(Item, cnDeleting);
}

// --- TCollection: operations ---

TCollectionItem* TCollection::Add() {
  return FItemClass->Create(this);
}

TCollectionItem* TCollection::Insert(int32_t Index) {
  if (Index < 0 || Index > Count()) IndexError(Index);
  TUpdateScope<TCollection> Scope(this);
  TCollectionItem* Item = Add();
  if (Item->FCollection == this) Item->SetIndex(std::min(Index, Count() - 1));
  return Item;
}

void TCollection::Delete(int32_t Index) {
  TCollectionItem* Item = Items(Index);
  if (Item == FRemoving)
    throw EInvalidOp("The item at index " + std::to_string(Index) + " is being deleted already");
  Item->Free();
}

void TCollection::Clear() {
  if (Count() == 0) return;
  TUpdateScope<TCollection> Scope(this);
  while (Count() > 0)
    Delete(Count() - 1);
}

void TCollection::Move(int32_t CurIndex, int32_t NewIndex) {
  Items(CurIndex)->SetIndex(NewIndex);
}

void TCollection::ExchangeItems(int32_t Index1, int32_t Index2) {
  CheckIndex(Index1);
  CheckIndex(Index2);
  if (Index1 == Index2) return;
  MakeDeferredItems();
  const size_t P1 = FStart + static_cast<size_t>(Index1);
  const size_t P2 = FStart + static_cast<size_t>(Index2);
  std::swap(FSlots[P1], FSlots[P2]);
  Renumber(P1, P1 + 1);
  Renumber(P2, P2 + 1);
  ItemsMoved(std::min(Index1, Index2), std::max(Index1, Index2));
}

void TCollection::SetItem(int32_t Index, const TCollectionItem* Value) {
  Items(Index)->Assign(Value);
}

TCollectionItem* TCollection::FindItemID(int32_t ID) const {
  for (size_t P = FStart; P < FSlots.size(); ++P)
    if (FSlots[P] && FSlots[P]->FID == ID) return FSlots[P];
  for (const TDeferredRun& Run : FDeferredRuns) {
    const auto Offset = static_cast<uint32_t>(ID) - static_cast<uint32_t>(Run.FirstID);
    if (Offset >= Run.Count) continue;
    const size_t Pos = static_cast<uint32_t>(Run.FirstSlot + Offset - FBase);
    if (Pos >= FStart && Pos < FSlots.size() && !FSlots[Pos])
      return const_cast<TCollection*>(this)->MakeDeferred(Pos);
  }
  return nullptr;
}

void TCollection::BeginUpdate() {
  ++FUpdateCount;
}

void TCollection::EndUpdate() {
  if (FUpdateCount <= 0) throw Exception("EndUpdate without BeginUpdate on a " + ClassName());
  --FUpdateCount;
  Changed();
}

void TCollection::Changed() {
  if (FUpdateCount == 0) Update(nullptr);
}

void TCollection::Notify(TCollectionItem*, TCollectionNotification) {}

void TCollection::Update(TCollectionItem*) {}

void TCollection::ItemsMoved(int32_t, int32_t) {}

void TCollection::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TCollection*>(Source)) {
    TUpdateScope<TCollection> Scope(this);
    Clear();
    try {
      for (int32_t I = 0; I < Src->Count(); ++I)
        Add()->Assign(Src->Items(I));
    } catch (...) {
      Clear();
      throw;
    }
    return;
  }
  inherited::Assign(Source);
}

void TCollection::BeforeDestruction() {
  // Nobody hears Update about a collection that is going; Notify still runs per item.
  ++FUpdateCount;
  while (Count() > 0) {
    if (FSlots.back()) {
      Delete(Count() - 1);
    } else {
      FSlots.pop_back();
      DeferredGone();
    }
  }
  inherited::BeforeDestruction();
}

// --- TCollection: deferred items ---

size_t TCollection::AddDeferred(size_t Count) {
  if (Count == 0) return FNextKey;
  const size_t Limit = static_cast<size_t>(std::numeric_limits<int32_t>::max());
  if (Count > Limit || static_cast<size_t>(this->Count()) > Limit - Count)
    throw EListError("A collection holds at most 2147483647 items");
  const size_t First = FSlots.size();
  FSlots.resize(First + Count, nullptr);
  const size_t Key = FNextKey;
  FDeferredRuns.push_back(
      {FBase + static_cast<uint32_t>(First), static_cast<int32_t>(FNextID), Key, Count});
  FNextID += static_cast<uint32_t>(Count);
  FNextKey += Count;
  FDeferredCount += Count;
  return Key;
}

const TCollection::TDeferredRun* TCollection::RunOfSlot(uint32_t Slot) const {
  // Runs follow one another in slot order; there are few of them.
  for (auto It = FDeferredRuns.rbegin(); It != FDeferredRuns.rend(); ++It)
    if (Slot - It->FirstSlot < It->Count) return &*It;
  return nullptr;
}

bool TCollection::DeferredKey(int32_t Index, size_t& Key) const {
  CheckIndex(Index);
  const size_t Pos = FStart + static_cast<size_t>(Index);
  if (FSlots[Pos]) return false;
  const uint32_t Slot = FBase + static_cast<uint32_t>(Pos);
  const TDeferredRun* Run = RunOfSlot(Slot);
  Key = Run->FirstKey + (Slot - Run->FirstSlot);
  return true;
}

TCollectionItem* TCollection::MakeDeferred(size_t Pos) {
  const uint32_t Slot = FBase + static_cast<uint32_t>(Pos);
  const TDeferredRun* Run = RunOfSlot(Slot);
  const uint32_t Offset = Slot - Run->FirstSlot;
  const int32_t ID = static_cast<int32_t>(static_cast<uint32_t>(Run->FirstID) + Offset);
  TCollectionItem* Item =
      MakeDeferredItem(static_cast<int32_t>(Pos - FStart), Run->FirstKey + Offset);
  if (!Item || Item->FCollection || !Item->InheritsFrom(FItemClass) || FSlots[Pos]) {
    if (Item && Item->FCollection == nullptr && Item != FSlots[Pos]) Item->Free();
    throw EListError("A deferred item of a " + ClassName() +
                     " was not made as one: " + "MakeDeferredItem must answer a new " +
                     std::string(FItemClass->ClassName()) + " outside any collection");
  }
  FSlots[Pos] = Item;
  Item->FCollection = this;
  Item->FSlot = Slot;
  Item->FID = ID;
  DeferredGone();
  return Item;
}

void TCollection::MakeDeferredItems() {
  for (size_t P = FStart; FDeferredCount > 0 && P < FSlots.size(); ++P)
    if (!FSlots[P]) MakeDeferred(P);
}

void TCollection::DeferredGone() {
  if (--FDeferredCount > 0) return;
  FDeferredRuns.clear();
  FNextKey = 0;
  DeferredItemsDone();
}

TCollectionItem* TCollection::MakeDeferredItem(int32_t Index, size_t) {
  throw EListError("The item at index " + std::to_string(Index) + " of a " + ClassName() +
                   " was deferred, but the collection has nothing to make it from");
}

void TCollection::DeferredItemsDone() {}

// --- Class registry ---

namespace {

TThreadList<TClass>& Registry() {
  static TThreadList<TClass> List;
  return List;
}

TClass FindRegistered(const std::vector<TClass>& List, std::string_view Name) {
  for (TClass C : List)
    if (C->ClassName() == Name) return C;
  return nullptr;
}

} // namespace

void RegisterClass(TClass AClass) {
  auto L = Registry().LockList();
  for (TClass C = AClass; C; C = C->ClassParent()) {
    TClass Known = FindRegistered(*L, C->ClassName());
    if (Known == C) break;
    if (Known)
      throw EFilerError("A class named " + std::string(C->ClassName()) + " already exists");
    L->push_back(C);
  }
}

void RegisterClasses(std::initializer_list<TClass> Classes) {
  for (TClass C : Classes)
    RegisterClass(C);
}

void UnRegisterClass(TClass AClass) {
  Registry().Remove(AClass);
}

TClass GetClass(std::string_view ClassName) {
  auto L = Registry().LockList();
  return FindRegistered(*L, ClassName);
}

TClass FindClass(std::string_view ClassName) {
  if (TClass C = GetClass(ClassName)) return C;
  throw EClassNotFound("Class " + std::string(ClassName) + " not found");
}

} // namespace kx
