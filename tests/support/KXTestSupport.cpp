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

TOwned<TPartsForm> TPartsForm::Fresh() const {
  auto F = MakeOwned<TPartsForm>(nullptr);
  for (const auto& M : FMakers) {
    F->FMakers.push_back(M);
    F->FParts.push_back(M.second());
  }
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

void ExpectStored(const std::string& Json, std::initializer_list<const char*> Names) {
  for (const char* Name : Names)
    EXPECT_NE(Json.find("\"" + std::string(Name) + "\": "), std::string::npos)
        << Name << " is not stored in\n"
        << Json;
}

} // namespace kx::test
