#pragma once
// The root of the object model: metaclasses (class references), TObject with its two-phase
// life, and TPersistent with Assign.
//
// Two-phase life. The classic object model calls virtual operations from constructors and
// destructors; C++ does not dispatch to the derived class there. So a C++ constructor only
// initialises members, the classic constructor body runs in AfterConstruction(), and the
// classic destructor body in BeforeDestruction(), while the whole object is still alive.
// Objects are made by New<T>(args...) and freed by Free() (or a TOwned<T> holder).
//
// Declaring a class. Every class of the object model names itself and its parent once:
//
//   class TKXLineChart : public TKXCustomLineChart {
//     KX_CLASS(TKXLineChart, TKXCustomLineChart)
//   public: ...
//
// which gives `inherited`, `StaticClass()` (its metaclass) and the `ClassType()` override.
// A family of classes that share a constructor shape (components take an owner, collection
// items a collection) declares its metaclass shape at its root with
// `template <class T> using MetaImplOf = ...;` and every descendant inherits it.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

class TObject;

// A class reference: name, parent, and (in the family shapes below) the virtual
// constructor and the class-level operations. Metaclasses are immutable and live for the
// whole process.
class TMetaClass {
public:
  TMetaClass(const char* Name, const TMetaClass* Parent) : FName(Name), FParent(Parent) {}
  TMetaClass(const TMetaClass&) = delete;
  TMetaClass& operator=(const TMetaClass&) = delete;
  virtual ~TMetaClass() = default;

  std::string_view ClassName() const { return FName; }
  const TMetaClass* ClassParent() const { return FParent; }
  bool InheritsFrom(const TMetaClass* Other) const {
    for (const TMetaClass* C = this; C; C = C->FParent)
      if (C == Other) return true;
    return false;
  }
  // True when the class cannot be instantiated through its metaclass.
  virtual bool IsAbstract() const = 0;

private:
  const char* FName;
  const TMetaClass* FParent;
};

// The metaclass shape of classes made without arguments (graphic objects, plain
// persistents).
class TObjectMeta : public TMetaClass {
public:
  using TMetaClass::TMetaClass;
  virtual TObject* Create() const = 0;
};
using TClass = const TMetaClass*;

template <class T> class TObjectMetaImpl;

// The plain event: "something about Sender changed". Empty means not assigned.
using TNotifyEvent = std::function<void(TObject* Sender)>;

class TObject {
public:
  template <class T> using MetaImplOf = TObjectMetaImpl<T>;

  TObject() = default;
  TObject(const TObject&) = delete;
  TObject& operator=(const TObject&) = delete;
  virtual ~TObject() = default;

  static const TObjectMeta* StaticClass();
  virtual const TMetaClass* ClassType() const { return StaticClass(); }
  std::string ClassName() const { return std::string(ClassType()->ClassName()); }
  bool InheritsFrom(const TMetaClass* AClass) const { return ClassType()->InheritsFrom(AClass); }

  // The classic constructor body; runs once the most derived object is complete.
  virtual void AfterConstruction() {}
  // The classic destructor body; runs while the most derived object is still whole.
  virtual void BeforeDestruction() {}

  // BeginDestruction(), BeforeDestruction(), then delete. The memory is released even when
  // one of them throws.
  void Free() {
    std::unique_ptr<TObject> Guard(this);
    BeginDestruction();
    BeforeDestruction();
  }

protected:
  // Runs first in Free(), before any BeforeDestruction() body. A family root marks its
  // objects as going here (components raise csDestroying, collection items leave their
  // collection), so that every body, the most derived first, already sees them so.
  virtual void BeginDestruction() {}
};

// Constructs, then runs AfterConstruction(); an object whose AfterConstruction() throws
// is torn down the same way as a freed one and the exception passes on.
template <class T, class... Args> T* New(Args&&... A) {
  std::unique_ptr<T> P(new T(std::forward<Args>(A)...));
  try {
    P->AfterConstruction();
  } catch (...) {
    P.release()->Free();
    throw;
  }
  return P.release();
}

template <class T> void FreeAndNil(T*& P) {
  T* Tmp = P;
  P = nullptr;
  if (Tmp) Tmp->Free();
}

struct TFreeDeleter {
  void operator()(TObject* P) const {
    if (P) P->Free();
  }
};
// An owning pointer that frees through Free(), for owned sub-objects.
template <class T> using TOwned = std::unique_ptr<T, TFreeDeleter>;
template <class T, class... Args> TOwned<T> MakeOwned(Args&&... A) {
  return TOwned<T>(New<T>(std::forward<Args>(A)...));
}

template <class T> class TObjectMetaImpl final : public TObjectMeta {
public:
  using TObjectMeta::TObjectMeta;
  bool IsAbstract() const override { return !Constructible; }
  TObject* Create() const override {
    if constexpr (Constructible)
      return New<T>();
    else
      throw Exception("Cannot create an instance of the abstract class " +
                      std::string(ClassName()));
  }

private:
  static constexpr bool Constructible =
      !std::is_abstract_v<T> && std::is_default_constructible_v<T>;
};

inline const TObjectMeta* TObject::StaticClass() {
  static const TObjectMetaImpl<TObject> Meta("TObject", nullptr);
  return &Meta;
}

template <class T> auto ClassOf() {
  return T::StaticClass();
}

// The dynamic class test and cast of the object model (`is` and `as`).
template <class T> bool Is(const TObject* Obj) {
  return Obj && Obj->InheritsFrom(T::StaticClass());
}

} // namespace kx

#define KX_CLASS(Class, Parent)                                                                    \
public:                                                                                            \
  using inherited = Parent;                                                                        \
  static const auto* StaticClass() {                                                               \
    static const typename Parent::template MetaImplOf<Class> Meta(#Class, Parent::StaticClass());  \
    return &Meta;                                                                                  \
  }                                                                                                \
  const ::kx::TMetaClass* ClassType() const override {                                             \
    return StaticClass();                                                                          \
  }                                                                                                \
                                                                                                   \
public:

namespace kx {

class TFiler;

class TPersistent : public TObject {
  KX_CLASS(TPersistent, TObject)

public:
  // Copies Source into this object. The base asks Source to do it (AssignTo) and raises
  // EConvertError for an impossible pair. Assigning an object to itself does nothing;
  // overrides keep that rule by testing Source == this first.
  virtual void Assign(const TPersistent* Source);

protected:
  // The other direction of Assign, for classes that know how to fill a foreign class.
  virtual void AssignTo(TPersistent* Dest) const;
  // Declares the stored properties of this class to a reader or writer (KXFiler.h).
  // Overrides call the inherited one first, then declare their own in their stored
  // order. The base declares none.
  virtual void DefineProperties(TFiler& Filer);
  friend class TFiler;
  // Raises "Cannot assign a <Source class, or nil> to a <this class>".
  [[noreturn]] void AssignError(const TPersistent* Source) const;
};

} // namespace kx
