#include "kxcharts/toolkit/chartkit/KXCommon.h"

namespace kx {

static_assert(sizeof(TGCollectionItem) <= 32, "a collection item must stay small");

// --- TGCollectionItem ---

TGCollectionItem::~TGCollectionItem() {
  while (FFreeNotifies && !FFreeNotifies->empty()) {
    TGCollectionItem* Other = FFreeNotifies->back();
    FFreeNotifies->pop_back();
    if (Other->FFreeNotifies) {
      auto& L = *Other->FFreeNotifies;
      L.erase(std::find(L.begin(), L.end(), this));
    }
  }
}

void TGCollectionItem::FreeNotification(TGCollectionItem* Item) {
  if (!Item || Item == this) return;
  if (FFreeNotifies &&
      std::find(FFreeNotifies->begin(), FFreeNotifies->end(), Item) != FFreeNotifies->end())
    return;
  if (!FFreeNotifies) FFreeNotifies = std::make_unique<std::vector<TGCollectionItem*>>();
  if (!Item->FFreeNotifies)
    Item->FFreeNotifies = std::make_unique<std::vector<TGCollectionItem*>>();
  FFreeNotifies->push_back(Item);
  Item->FFreeNotifies->push_back(this);
}

void TGCollectionItem::RemoveFreeNotification(TGCollectionItem* Item) {
  if (Item) Unlink(Item);
}

void TGCollectionItem::Unlink(TGCollectionItem* Other) {
  if (!FFreeNotifies) return;
  auto It = std::find(FFreeNotifies->begin(), FFreeNotifies->end(), Other);
  if (It == FFreeNotifies->end()) return;
  FFreeNotifies->erase(It);
  if (FFreeNotifies->empty()) FFreeNotifies.reset();
  auto& L = *Other->FFreeNotifies;
  L.erase(std::find(L.begin(), L.end(), this));
  if (L.empty()) Other->FFreeNotifies.reset();
}

void TGCollectionItem::Loaded() {}

void TGCollectionItem::Notification(TGCollectionItem*) {}

void TGCollectionItem::BeforeDestruction() {
  // Unlink before telling, so that a handler that asks again cannot loop forever here.
  while (FFreeNotifies && !FFreeNotifies->empty()) {
    TGCollectionItem* Other = FFreeNotifies->back();
    Unlink(Other);
    Other->Notification(this);
  }
  inherited::BeforeDestruction();
}

// --- TGCollection ---

TGCollection::TGCollection(TPersistent* AOwner, TCollectionItemClass ItemClass)
    : TOwnedCollection(AOwner, ItemClass) {
  if (!ItemClass->InheritsFrom(ClassOf<TGCollectionItem>()))
    throw Exception("A TGCollection holds TGCollectionItem descendants, not " +
                    std::string(ItemClass->ClassName()));
}

void TGCollection::Loaded() {
  for (int32_t I = 0; I < Count(); ++I)
    Items(I)->Loaded();
}

// --- ClonePersistentClass ---

TPersistent* ClonePersistentClass(const TPersistent* Source, TClass AClass) {
  if (!AClass || !AClass->InheritsFrom(ClassOf<TPersistent>()))
    throw EConvertError("Cannot clone into " +
                        (AClass ? std::string(AClass->ClassName()) : std::string("nil")) +
                        ": not a persistent class");
  TObject* Made = nullptr;
  if (const auto* M = dynamic_cast<const TObjectMeta*>(AClass))
    Made = M->Create();
  else if (const auto* M = dynamic_cast<const TComponentMeta*>(AClass))
    Made = M->Create(nullptr);
  else if (const auto* M = dynamic_cast<const TCollectionItemMeta*>(AClass))
    Made = M->Create(nullptr);
  else
    throw EConvertError("Cannot clone into " + std::string(AClass->ClassName()) +
                        ": its constructor needs arguments");
  TOwned<TPersistent> Result(static_cast<TPersistent*>(Made));
  Result->Assign(Source);
  return Result.release();
}

} // namespace kx
