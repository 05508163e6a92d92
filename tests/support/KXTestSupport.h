#pragma once
// Helpers shared by the test programs: odd numbers, the message of what a call raises,
// temporary folders, and a form that stores any parts for round trips.

#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx::test {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();

// The message of the E that Fn raises, or "no exception".
template <class E = Exception, class F> std::string MessageOf(F&& Fn) {
  try {
    Fn();
  } catch (const E& X) {
    return X.Message();
  }
  return "no exception";
}

// A fresh, empty folder under the system's temporary folder, removed when destroyed.
class TTempDir {
public:
  TTempDir();
  ~TTempDir();
  TTempDir(const TTempDir&) = delete;
  TTempDir& operator=(const TTempDir&) = delete;
  const std::filesystem::path& Path() const { return FPath; }
  std::filesystem::path operator/(const std::string& Name) const { return FPath / Name; }

private:
  std::filesystem::path FPath;
};

// A form that stores the parts it is given, each under its name, as a component stores
// the objects it owns: a part's stored form needs no holder class of its own. A form that
// the reader makes (for its rehearsal) gets the parts of the form last given one.
class TPartsForm : public TComponent {
  KX_CLASS(TPartsForm, TComponent)

public:
  using TComponent::TComponent;
  // Adds a part made as New<T>(Args...), stored as Name.
  template <class T, class... A> T* Add(const std::string& Name, A... Args) {
    T* Part = New<T>(Args...);
    Take(
        Name, [=] { return TOwned<TPersistent>(New<T>(Args...)); }, Part);
    return Part;
  }
  template <class T> T* Part(size_t I) const { return static_cast<T*>(FParts.at(I).get()); }
  // A form of fresh parts of the same making.
  TOwned<TPartsForm> Fresh() const;

  void AfterConstruction() override;

protected:
  void DefineProperties(TFiler& Filer) override;

private:
  using TMakers = std::vector<std::pair<std::string, std::function<TOwned<TPersistent>()>>>;
  void Take(const std::string& Name, std::function<TOwned<TPersistent>()> Make, TPersistent* Part);
  static TMakers& LastMakers();
  TMakers FMakers;
  std::vector<TOwned<TPersistent>> FParts;
};

// Form written and read back into a fresh form of the same parts, which must write the same
// document again: a property that reads back wrong writes back differently. Json gets the
// document.
TOwned<TPartsForm> RoundTrip(const TPartsForm* Form, std::string* Json = nullptr);

// The stored form of Part: the document of a form that holds it. Two parts whose stored
// forms are equal agree in every stored property (Assign copies them all).
std::string Stored(TPersistent* Part);

// Expects Json to hold a property of each name ("Name": ...): a round trip that writes the
// same document again proves that what is written reads back, not that it is written.
void ExpectStored(const std::string& Json, std::initializer_list<const char*> Names);

} // namespace kx::test
