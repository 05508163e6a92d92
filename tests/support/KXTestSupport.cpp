#include "support/KXTestSupport.h"

#include <atomic>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kx::test {

TTempDir::TTempDir() {
  static std::atomic<int> Counter{0};
  FPath = std::filesystem::temp_directory_path() /
          ("kxtest-" + std::to_string(::getpid()) + "-" + std::to_string(Counter++));
  std::filesystem::remove_all(FPath);
  std::filesystem::create_directories(FPath);
}

TTempDir::~TTempDir() {
  std::error_code Ignored;
  std::filesystem::remove_all(FPath, Ignored);
}

TPartsForm::TMakers& TPartsForm::LastMakers() {
  static TMakers Makers;
  return Makers;
}

void TPartsForm::Take(const std::string& Name, std::function<TOwned<TPersistent>()> Make,
                      TPersistent* Part) {
  FMakers.push_back({Name, std::move(Make)});
  FParts.emplace_back(Part);
  LastMakers() = FMakers;
}

void TPartsForm::AfterConstruction() {
  inherited::AfterConstruction();
  if (!ComponentState().Contains(csReading)) return;
  for (const auto& [Name, Make] : TMakers(LastMakers()))
    Take(Name, Make, Make().release());
}

TOwned<TPartsForm> TPartsForm::Fresh() const {
  auto F = MakeOwned<TPartsForm>(nullptr);
  for (const auto& [Name, Make] : FMakers)
    F->Take(Name, Make, Make().release());
  return F;
}

void TPartsForm::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  for (size_t I = 0; I < FParts.size(); ++I)
    Filer.Property(FMakers[I].first, this, [I](TPartsForm* F) { return F->FParts[I].get(); });
}

TOwned<TPartsForm> RoundTrip(const TPartsForm* Form, std::string* Json) {
  const std::string Text = SaveFormToString(const_cast<TPartsForm*>(Form));
  TOwned<TPartsForm> Copy = Form->Fresh();
  LoadFormFromString(Copy.get(), Text);
  EXPECT_EQ(SaveFormToString(Copy.get()), Text);
  if (Json) *Json = Text;
  return Copy;
}

namespace {

// A form that stores one part it does not own.
class THolderForm : public TComponent {
  KX_CLASS(THolderForm, TComponent)

public:
  using TComponent::TComponent;
  TPersistent* Part = nullptr;

protected:
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Part", this, [](THolderForm* F) { return F->Part; });
  }
};

} // namespace

std::string Stored(TPersistent* Part) {
  auto Form = MakeOwned<THolderForm>(nullptr);
  Form->Part = Part;
  return SaveFormToString(Form.get());
}

void ExpectStored(const std::string& Json, std::initializer_list<const char*> Names) {
  for (const char* Name : Names)
    EXPECT_NE(Json.find("\"" + std::string(Name) + "\": "), std::string::npos)
        << Name << " is not stored in\n"
        << Json;
}

} // namespace kx::test
