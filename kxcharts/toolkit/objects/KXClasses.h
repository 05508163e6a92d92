#pragma once
// Components (owned, named, told of each other's removal), collections of items, and the
// class registry from which streaming makes objects by class name.
//
// Components. A component made with an owner is freed by that owner. A component that
// keeps a pointer to another asks it for FreeNotification(); when either is freed (or
// taken out of its owner), the other hears Notification(AComponent, opRemove) and drops
// the pointer there. The links are kept both ways, so freeing any component at any time
// leaves no dangling pointer behind.
//
// Collections. A collection owns its items. Items are made through the collection
// (Add, Insert) or by New<TMyItem>(Collection); either way the item is complete before it
// joins and the collection's Notify(cnAdded) is the first to see it. Deleting an item
// notifies cnExtracting (while it still stands at its index) and then cnDeleting.
// An item's Index is read in O(1); adding at the end and deleting at either end are
// O(1) (amortised), which a live chart that drops its oldest value on every add needs.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

namespace kx {

class TComponent;
class TCollection;
class TCollectionItem;
class TReader;
class TWriter;
struct TReaderAccess;

// --- Enumerations and errors ---

enum TOperation : uint8_t { opInsert, opRemove };
KX_ENUM_NAMES(TOperation, "opInsert", "opRemove")

enum TComponentStateItem : uint8_t {
  csLoading,
  csReading,
  csWriting,
  csDestroying,
  csDesigning,
  csAncestor,
  csUpdating,
  csFixups,
  csFreeNotification,
  csInline,
  csDesignInstance
};
KX_ENUM_NAMES(TComponentStateItem, "csLoading", "csReading", "csWriting", "csDestroying",
              "csDesigning", "csAncestor", "csUpdating", "csFixups", "csFreeNotification",
              "csInline", "csDesignInstance")
using TComponentState = TSet<TComponentStateItem>;

enum TCollectionNotification : uint8_t { cnAdded, cnExtracting, cnDeleting };
KX_ENUM_NAMES(TCollectionNotification, "cnAdded", "cnExtracting", "cnDeleting")

// Where a text stands across its room, in the platform's member order (stored defaults are
// written as these numbers).
enum TAlignment : uint8_t { taLeftJustify, taRightJustify, taCenter };
KX_ENUM_NAMES(TAlignment, "taLeftJustify", "taRightJustify", "taCenter")
// The same down its room.
enum TVerticalAlignment : uint8_t { taAlignTop, taAlignBottom, taVerticalCenter };
KX_ENUM_NAMES(TVerticalAlignment, "taAlignTop", "taAlignBottom", "taVerticalCenter")

// Naming and ownership errors of components.
class EComponentError : public Exception {
public:
  using Exception::Exception;
};

// Errors of streaming and of the class registry.
class EFilerError : public Exception {
public:
  using Exception::Exception;
};

class EClassNotFound : public EFilerError {
public:
  using EFilerError::EFilerError;
};

// BeginUpdate() now and EndUpdate() when the scope ends, also when an exception passes.
// Works with anything that has the pair (collections, string lists, charts).
template <class T> class TUpdateScope {
public:
  explicit TUpdateScope(T& Target) : FTarget(Target) { FTarget.BeginUpdate(); }
  explicit TUpdateScope(T* Target) : TUpdateScope(*Target) {}
  TUpdateScope(const TUpdateScope&) = delete;
  TUpdateScope& operator=(const TUpdateScope&) = delete;
  // EndUpdate() may raise (its change notice reaches user handlers). On the normal path
  // that error passes on; while another exception is already unwinding, the first error
  // is the one the caller must see, so the second is dropped.
  ~TUpdateScope() noexcept(false) {
    if (std::uncaught_exceptions() > FUncaught) {
      try {
        FTarget.EndUpdate();
      } catch (...) {
      }
    } else {
      FTarget.EndUpdate();
    }
  }

private:
  T& FTarget;
  int FUncaught = std::uncaught_exceptions();
};

// --- Component metaclass ---

// The metaclass shape of the component family: the virtual constructor takes the owner.
class TComponentMeta : public TMetaClass {
public:
  using TMetaClass::TMetaClass;
  // Two-phase construction: the C++ constructor, then AfterConstruction().
  virtual TComponent* Create(TComponent* AOwner) const = 0;
  // The same with States included in ComponentState before AfterConstruction() runs;
  // a reader passes csLoading and csReading.
  virtual TComponent* CreateWithState(TComponent* AOwner, TComponentState States) const = 0;
};
using TComponentClass = const TComponentMeta*;

template <class T> class TComponentMetaImpl;

// --- TComponent ---

class TComponent : public TPersistent {
public:
  using inherited = TPersistent;
  template <class T> using MetaImplOf = TComponentMetaImpl<T>;
  static const TComponentMeta* StaticClass();
  const TMetaClass* ClassType() const override;

private:
  TComponent* FOwner = nullptr;
  std::string FName;
  intptr_t FTag = 0;
  TComponentState FComponentState;
  bool FFreeing = false;
  bool FSubComponent = false;
  std::vector<TComponent*> FComponents;
  // Symmetric: A is in B's list exactly when B is in A's.
  std::vector<TComponent*> FFreeNotifies;
  // While this component is being freed: those already told of it, so that nobody hears
  // of it twice (once by link, once through the owner tree).
  std::unordered_set<const TComponent*>* FToldOnFree = nullptr;

public:
  // Only stores the owner (and takes csDesigning from it); the owner adopts the component
  // in AfterConstruction().
  explicit TComponent(TComponent* AOwner);
  // A safety net for a component that was never freed through Free(): unlinks silently.
  ~TComponent() override;

  // --- Properties ---
  TComponent* Owner() const { return FOwner; }
  const std::string& Name() const { return FName; }
  // Raises EComponentError for a name that is not an identifier ("'1x' is not a valid
  // component name") or that another component of the same owner has ("A component
  // named X already exists"); names compare without regard to ASCII case.
  void SetName(const std::string& NewName);
  intptr_t Tag() const { return FTag; }
  void SetTag(intptr_t Value) { FTag = Value; }
  TComponentState ComponentState() const { return FComponentState; }
  int32_t ComponentCount() const { return static_cast<int32_t>(FComponents.size()); }
  // Raises EListError outside 0..ComponentCount-1.
  TComponent* Components(int32_t Index) const;
  // Position in the owner's list; -1 without an owner.
  int32_t ComponentIndex() const;
  void SetComponentIndex(int32_t Value);
  // A sub-component is made by its owner itself (in AfterConstruction()), so a writer
  // does not store it as a component of its own: the owner makes it again when read.
  bool IsSubComponent() const { return FSubComponent; }
  void SetSubComponent(bool Value) { FSubComponent = Value; }

  // --- Operations ---
  // The owned component of that name (ASCII case ignored), or nullptr.
  TComponent* FindComponent(std::string_view AName) const;
  // Asks AComponent to call Notification(this, opRemove) when it goes, and the reverse.
  void FreeNotification(TComponent* AComponent);
  // Cancels FreeNotification both ways.
  void RemoveFreeNotification(TComponent* AComponent);
  // Adopts AComponent (taking it from its old owner), tells the tree opInsert.
  void InsertComponent(TComponent* AComponent);
  // Tells the tree opRemove, then lets AComponent go without freeing it.
  void RemoveComponent(TComponent* AComponent);
  // Frees every owned component, the last first.
  void DestroyComponents();
  // Raises csDestroying here and in every owned component.
  void Destroying();
  // Sets or clears csDesigning, in the owned components too when SetChildren is true.
  void SetDesigning(bool Value, bool SetChildren = true);

  void AfterConstruction() override;
  void BeforeDestruction() override;

  // Construction with extra states, for the metaclass (see TComponentMeta).
  template <class T> static T* NewWithState(TComponent* AOwner, TComponentState States);

protected:
  // Hears that AComponent was inserted into or removed from the owner tree, or that a
  // component linked by FreeNotification goes. Overrides drop their pointers to
  // AComponent on opRemove and call the inherited one, which drops the link and passes
  // the notice on to the owned components.
  virtual void Notification(TComponent* AComponent, TOperation Operation);
  // Runs once the reader has set every property and resolved every reference. The base
  // clears csLoading.
  virtual void Loaded();
  // Checks a rename of AComponent (one of ours, or one joining us) from CurName to
  // NewName; raises EComponentError on a clash.
  virtual void ValidateRename(TComponent* AComponent, const std::string& CurName,
                              const std::string& NewName);
  void BeginDestruction() override;
  // Tag (default 0); the name is stored by the writer itself.
  void DefineProperties(TFiler& Filer) override;

private:
  friend class TReader;
  friend class TWriter;
  friend struct TReaderAccess;
  static void Deliver(TComponent* To, TComponent* AComponent, TOperation Operation);
  void BroadcastToOwned(TComponent* AComponent, TOperation Operation);
  void TellFreeNotifies();
  void Unlink(TComponent* Other);
};

// The virtual constructor of a component metaclass, over any metaclass shape Meta of the
// component family; a family with class-level operations derives from it and adds them.
template <class T, class Meta = TComponentMeta> class TComponentMetaOf : public Meta {
public:
  using Meta::Meta;
  bool IsAbstract() const override { return !Constructible; }
  TComponent* Create(TComponent* AOwner) const override { return CreateWithState(AOwner, {}); }
  TComponent* CreateWithState(TComponent* AOwner, TComponentState States) const override {
    if constexpr (Constructible)
      return TComponent::NewWithState<T>(AOwner, States);
    else
      throw Exception("Cannot create an instance of the abstract class " +
                      std::string(this->ClassName()));
  }

private:
  static constexpr bool Constructible =
      !std::is_abstract_v<T> && std::is_constructible_v<T, TComponent*>;
};

template <class T> class TComponentMetaImpl final : public TComponentMetaOf<T> {
public:
  using TComponentMetaOf<T>::TComponentMetaOf;
};

inline const TComponentMeta* TComponent::StaticClass() {
  static const TComponentMetaImpl<TComponent> Meta("TComponent", TPersistent::StaticClass());
  return &Meta;
}
inline const TMetaClass* TComponent::ClassType() const {
  return StaticClass();
}

template <class T> T* TComponent::NewWithState(TComponent* AOwner, TComponentState States) {
  std::unique_ptr<T> P(new T(AOwner));
  static_cast<TComponent*>(P.get())->FComponentState += States;
  try {
    P->AfterConstruction();
  } catch (...) {
    P.release()->Free();
    throw;
  }
  return P.release();
}

// --- Collection item metaclass ---

// The metaclass shape of the collection item family: the virtual constructor takes the
// collection the item joins (or nullptr for a free-standing item).
class TCollectionItemMeta : public TMetaClass {
public:
  using TMetaClass::TMetaClass;
  virtual TCollectionItem* Create(TCollection* Collection) const = 0;
};
using TCollectionItemClass = const TCollectionItemMeta*;

template <class T> class TCollectionItemMetaImpl;

// --- TCollectionItem ---

class TCollectionItem : public TPersistent {
public:
  using inherited = TPersistent;
  template <class T> using MetaImplOf = TCollectionItemMetaImpl<T>;
  static const TCollectionItemMeta* StaticClass();
  const TMetaClass* ClassType() const override;

private:
  // Kept to 24 bytes with the vtable pointer: a chart may hold millions of items.
  TCollection* FCollection = nullptr;
  int32_t FID = 0;
  // Position number in the collection's slot array; Index is derived from it.
  uint32_t FSlot = 0;

public:
  // Only remembers the collection; the item joins it in AfterConstruction().
  explicit TCollectionItem(TCollection* Collection);
  ~TCollectionItem() override;

  // --- Properties ---
  TCollection* Collection() const { return FCollection; }
  // Moves the item to another collection (or out of any, with nullptr). The collections'
  // Notify hears cnExtracting and cnAdded; nothing else is told (no Update), so a
  // collection can lift an item out and put it back without anyone seeing it.
  void SetCollection(TCollection* Value);
  // Unique in its collection; given when the item joins one.
  int32_t ID() const { return FID; }
  // Position in the collection, -1 without one. O(1).
  int32_t Index() const;
  // Moves the item to position Value (EListError outside the collection), then
  // Changed(true).
  void SetIndex(int32_t Value);
  std::string DisplayName() const { return GetDisplayName(); }
  virtual void SetDisplayName(const std::string& Value);

  void AfterConstruction() override;

protected:
  // Tells the collection (Update) unless it is inside BeginUpdate/EndUpdate: with
  // AllItems, as a change of the whole collection (Update(nullptr)), else of this item.
  virtual void Changed(bool AllItems);
  // The text a designer or a list shows for the item; the base answers the class name.
  virtual std::string GetDisplayName() const;
  void BeginDestruction() override;

private:
  friend class TCollection;
};

template <class T> class TCollectionItemMetaImpl final : public TCollectionItemMeta {
public:
  using TCollectionItemMeta::TCollectionItemMeta;
  bool IsAbstract() const override { return !Constructible; }
  TCollectionItem* Create(TCollection* Collection) const override {
    if constexpr (Constructible)
      return New<T>(Collection);
    else
      throw Exception("Cannot create an instance of the abstract class " +
                      std::string(ClassName()));
  }

private:
  static constexpr bool Constructible =
      !std::is_abstract_v<T> && std::is_constructible_v<T, TCollection*>;
};

inline const TCollectionItemMeta* TCollectionItem::StaticClass() {
  static const TCollectionItemMetaImpl<TCollectionItem> Meta("TCollectionItem",
                                                             TPersistent::StaticClass());
  return &Meta;
}
inline const TMetaClass* TCollectionItem::ClassType() const {
  return StaticClass();
}

// --- Enumerator ---

// Walks a collection by index. It tolerates items being deleted or added during the walk
// (it reads Count afresh at each step), as the classic enumerator does.
template <class TItem> class TCollectionEnumeratorOf {
public:
  explicit TCollectionEnumeratorOf(const TCollection* Collection) : FCollection(Collection) {}

  bool MoveNext();
  TItem* Current() const;

  // An input iterator whose end is reached when the index meets the current Count.
  class iterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = TItem*;
    using difference_type = std::ptrdiff_t;
    using pointer = TItem**;
    using reference = TItem*;
    iterator(const TCollection* Collection, int32_t Index)
        : FCollection(Collection), FIndex(Index) {}
    TItem* operator*() const;
    iterator& operator++() {
      ++FIndex;
      return *this;
    }
    iterator operator++(int) {
      iterator Old = *this;
      ++FIndex;
      return Old;
    }
    bool operator!=(const iterator&) const;
    bool operator==(const iterator& Other) const { return !(*this != Other); }

  private:
    const TCollection* FCollection;
    int32_t FIndex;
  };
  iterator begin() const { return iterator(FCollection, 0); }
  iterator end() const { return iterator(FCollection, 0); }

private:
  const TCollection* FCollection;
  int32_t FIndex = -1;
};
using TCollectionEnumerator = TCollectionEnumeratorOf<TCollectionItem>;

// --- TCollection ---

// A collection can also hold items that are not made yet (deferred items, see AddDeferred):
// a descendant that takes many items at once keeps their data in its own compact form, and
// an item is made from it the first time anything asks for it (Items, the enumerator, a
// move, a delete). Until then it counts in Count, has its ID and its place, and costs what
// the descendant keeps for it.
class TCollection : public TPersistent {
  KX_CLASS(TCollection, TPersistent)

private:
  // The deferred items added in one AddDeferred: their slot numbers, IDs and keys run on
  // from the first.
  struct TDeferredRun {
    uint32_t FirstSlot;
    int32_t FirstID;
    size_t FirstKey;
    size_t Count;
  };

  TCollectionItemClass FItemClass;
  // Item pointers by position; nullptr for a deferred item. The first FStart slots are free
  // (items deleted at the front), so deleting index 0 shifts nothing; they are reclaimed in
  // bulk. Slot numbers run modulo 2^32 from FBase, which is the slot number of FSlots[0].
  std::vector<TCollectionItem*> FSlots;
  size_t FStart = 0;
  uint32_t FBase = 0;
  uint32_t FNextID = 0;
  int32_t FUpdateCount = 0;
  // The item whose removal is being notified, so that a handler cannot delete it twice.
  const TCollectionItem* FRemoving = nullptr;
  std::vector<TDeferredRun> FDeferredRuns;
  size_t FDeferredCount = 0;
  size_t FNextKey = 0;

public:
  // Raises Exception for a missing item class.
  explicit TCollection(TCollectionItemClass ItemClass);
  // A safety net for a collection that was never freed through Free(): frees the items
  // without telling anyone.
  ~TCollection() override;

  // --- Properties ---
  int32_t Count() const { return static_cast<int32_t>(FSlots.size() - FStart); }
  // Raises EListError "List index out of bounds (N)" outside 0..Count-1.
  TCollectionItem* Items(int32_t Index) const;
  // Assigns Value to the item at Index.
  void SetItem(int32_t Index, const TCollectionItem* Value);
  TCollectionItemClass ItemClass() const { return FItemClass; }
  TPersistent* Owner() const { return GetOwner(); }
  int32_t UpdateCount() const { return FUpdateCount; }

  // --- Operations ---
  // Makes a new item of ItemClass at the end.
  TCollectionItem* Add();
  // Makes a new item and moves it to Index, in one BeginUpdate/EndUpdate bracket.
  TCollectionItem* Insert(int32_t Index);
  // Frees the item at Index: cnExtracting, cnDeleting, then Update.
  void Delete(int32_t Index);
  // Deletes every item, the last first, in one bracket.
  void Clear();
  // Moves the item at CurIndex to NewIndex.
  void Move(int32_t CurIndex, int32_t NewIndex);
  TCollectionItem* FindItemID(int32_t ID) const;
  // Brackets nest; Update runs once, with nullptr, when the last one closes. EndUpdate
  // without BeginUpdate raises.
  virtual void BeginUpdate();
  virtual void EndUpdate();

  TCollectionEnumerator GetEnumerator() const { return TCollectionEnumerator(this); }
  TCollectionEnumerator::iterator begin() const { return GetEnumerator().begin(); }
  TCollectionEnumerator::iterator end() const { return GetEnumerator().end(); }
  // The number of items added by AddDeferred that nothing has asked for yet.
  int32_t DeferredCount() const { return static_cast<int32_t>(FDeferredCount); }
  // Makes every deferred item now, first to last.
  void MakeDeferredItems();

  // From another collection: clears this one and adds a copy of each item, in one
  // bracket. Should an item refuse its copy, the collection is left empty.
  void Assign(const TPersistent* Source) override;
  // Deferred items that are still not made go unmade and unheard.
  void BeforeDestruction() override;

protected:
  virtual TPersistent* GetOwner() const { return nullptr; }
  // Hears every change of membership: cnAdded once an item has joined (also through
  // SetCollection), cnExtracting while an item still stands at its index before it
  // leaves, cnDeleting after that when the item is about to be freed. The base does
  // nothing.
  virtual void Notify(TCollectionItem* Item, TCollectionNotification Action);
  // Hears a change of Item, or of the whole collection when Item is nullptr; not called
  // inside BeginUpdate/EndUpdate. The base does nothing.
  virtual void Update(TCollectionItem* Item);
  // Update(nullptr) unless inside BeginUpdate/EndUpdate.
  void Changed();
  // Swaps the items at two positions in O(1) without telling anyone but ItemsMoved; a
  // descendant that sorts its items tells the change itself. Raises EListError for a bad
  // index.
  void ExchangeItems(int32_t Index1, int32_t Index2);
  // Hears that the items from index From to index To (inclusive, From <= To) changed
  // places (a move, an insert, an exchange), also inside BeginUpdate/EndUpdate, so that a
  // descendant keeping data by index can tell what went stale. The base does nothing.
  virtual void ItemsMoved(int32_t From, int32_t To);

  // --- Deferred items ---
  // Appends Count deferred items, each with its ID, and answers the key of the first; the
  // others have the keys that follow, and MakeDeferredItem gets an item's key when it is
  // made. No Notify and no Update: the descendant books the items and tells what it must.
  // Keys start again at 0 once every deferred item is made or gone (DeferredItemsDone).
  size_t AddDeferred(size_t Count);
  // Whether the item at Index is deferred, and its key then. Raises EListError outside
  // 0..Count-1.
  bool DeferredKey(int32_t Index, size_t& Key) const;
  // Makes the deferred item with Key, at Index now: a new item of the item class outside any
  // collection, with what the descendant kept for it. The collection then puts it in its
  // place without telling anyone (no Notify, no Update). The base raises: only a descendant
  // that adds deferred items has any to make.
  virtual TCollectionItem* MakeDeferredItem(int32_t Index, size_t Key);
  // The last deferred item was made or dropped: what was kept for them can go. The base
  // does nothing.
  virtual void DeferredItemsDone();

private:
  friend class TCollectionItem;
  TCollectionItem* At(size_t Index) const {
    TCollectionItem* Item = FSlots[FStart + Index];
    return Item ? Item : const_cast<TCollection*>(this)->MakeDeferred(FStart + Index);
  }
  // Makes the deferred item at position Pos of FSlots and puts it there.
  TCollectionItem* MakeDeferred(size_t Pos);
  const TDeferredRun* RunOfSlot(uint32_t Slot) const;
  // One deferred item fewer; the runs go with the last.
  void DeferredGone();
  void CheckIndex(int32_t Index) const;
  int32_t IndexOfItem(const TCollectionItem* Item) const {
    return static_cast<int32_t>(Item->FSlot - FBase - static_cast<uint32_t>(FStart));
  }
  void Renumber(size_t FromPos, size_t ToPos);
  void InsertItem(TCollectionItem* Item);
  void ExtractItem(TCollectionItem* Item);
  void DeletingItem(TCollectionItem* Item);
  void PushSlot(TCollectionItem* Item);
  void RemoveSlot(int32_t Index);
  void MoveSlot(int32_t From, int32_t To);
};

// --- TOwnedCollection ---

// A collection that names its owner (the chart of a value collection, the node of a
// link collection).
class TOwnedCollection : public TCollection {
  KX_CLASS(TOwnedCollection, TCollection)

private:
  TPersistent* FOwner;

public:
  TOwnedCollection(TPersistent* AOwner, TCollectionItemClass ItemClass)
      : TCollection(ItemClass), FOwner(AOwner) {}

protected:
  TPersistent* GetOwner() const override { return FOwner; }
};

// --- Enumerator bodies ---

template <class TItem> bool TCollectionEnumeratorOf<TItem>::MoveNext() {
  if (FIndex >= FCollection->Count()) return false;
  ++FIndex;
  return FIndex < FCollection->Count();
}
template <class TItem> TItem* TCollectionEnumeratorOf<TItem>::Current() const {
  return static_cast<TItem*>(FCollection->Items(FIndex));
}
template <class TItem> TItem* TCollectionEnumeratorOf<TItem>::iterator::operator*() const {
  return static_cast<TItem*>(FCollection->Items(FIndex));
}
template <class TItem>
bool TCollectionEnumeratorOf<TItem>::iterator::operator!=(const iterator&) const {
  return FIndex < FCollection->Count();
}

// --- Class registry ---

// Registers classes (with their ancestors) so that a reader can make them by name.
// Registering a class twice does nothing; another class under a taken name raises
// EFilerError "A class named X already exists". The registry takes any metaclass and is
// safe to use from several threads.
void RegisterClass(TClass AClass);
void RegisterClasses(std::initializer_list<TClass> Classes);
void UnRegisterClass(TClass AClass);
// The registered class of that name (exact case), or nullptr.
TClass GetClass(std::string_view ClassName);
// The same, raising EClassNotFound "Class X not found".
TClass FindClass(std::string_view ClassName);

// True for a valid component name: a letter or underscore, then letters, digits or
// underscores.
bool IsValidIdent(std::string_view Ident);
// ASCII case-insensitive equality, the platform's rule for component names.
bool SameText(std::string_view A, std::string_view B);

} // namespace kx
