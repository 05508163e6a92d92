// Feeds arbitrary bytes to the form reader. Every input must either load or raise a
// kx::Exception, with nothing leaked (ASan) and no undefined behaviour (UBSan); a form
// that loads must write a document that loads again and writes the same text.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "KXFuzzDefaults.h"
#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

enum TFzMode : uint8_t { fzmOff, fzmOn, fzmAuto };
KX_ENUM_NAMES(TFzMode, "fzmOff", "fzmOn", "fzmAuto")
enum TFzFlag : uint8_t { fzfA, fzfB, fzfC };
KX_ENUM_NAMES(TFzFlag, "fzfA", "fzfB", "fzfC")

namespace {

class TFzStyle : public TPersistent {
  KX_CLASS(TFzStyle, TPersistent)
public:
  TColor FColor = clBtnFace;
  int32_t FWidth = 1;

protected:
  void DefineProperties(TFiler& F) override {
    inherited::DefineProperties(F);
    F.Property(
        "Color", this, [](TFzStyle* S) { return S->FColor; },
        [](TFzStyle* S, TColor V) { S->FColor = V; }, clBtnFace);
    F.Property(
        "Width", this, [](TFzStyle* S) { return S->FWidth; },
        [](TFzStyle* S, int32_t V) { S->FWidth = V; }, 1);
  }
};

class TFzItem : public TGCollectionItem {
  KX_CLASS(TFzItem, TGCollectionItem)
public:
  using TGCollectionItem::TGCollectionItem;
  std::string FCaption;
  double FValue = 0;
  float FScale = 1;
  TDateTime FWhen = 0;
  TFzItem* FTarget = nullptr;
  int64_t FTargetIndex = -1;

  void SetTarget(TFzItem* V) {
    if (FTarget) RemoveFreeNotification(FTarget);
    FTarget = V;
    if (V) FreeNotification(V);
  }
  void Loaded() override {
    if (FTargetIndex >= 0 && FTargetIndex < Collection()->Count())
      SetTarget(static_cast<TFzItem*>(Collection()->Items(static_cast<int32_t>(FTargetIndex))));
  }

protected:
  void Notification(TGCollectionItem* Item) override {
    if (Item == FTarget) FTarget = nullptr;
  }
  void DefineProperties(TFiler& F) override {
    inherited::DefineProperties(F);
    F.Property(
        "Caption", this, [](TFzItem* I) { return I->FCaption; },
        [](TFzItem* I, const std::string& V) { I->FCaption = V; });
    F.Property(
        "Value", this, [](TFzItem* I) { return I->FValue; },
        [](TFzItem* I, double V) { I->FValue = V; });
    F.Property(
        "Scale", this, [](TFzItem* I) { return I->FScale; },
        [](TFzItem* I, float V) { I->FScale = V; }, 1.0f);
    F.DateProperty(
        "When", this, [](TFzItem* I) { return I->FWhen; },
        [](TFzItem* I, TDateTime V) { I->FWhen = V; });
    F.DefineProperty(
        "ValueIndex", [this](TReader& R) { FTargetIndex = R.ReadInteger(); },
        [this](TWriter& W) { W.WriteInteger(FTarget->Index()); }, FTarget != nullptr);
  }
};

class TFzItems : public TGCollection {
  KX_CLASS(TFzItems, TGCollection)
public:
  explicit TFzItems(TPersistent* Owner) : TGCollection(Owner, ClassOf<TFzItem>()) {}
  int32_t FLimit = 0;

protected:
  void DefineProperties(TFiler& F) override {
    inherited::DefineProperties(F);
    F.Property(
        "Limit", this, [](TFzItems* C) { return C->FLimit; },
        [](TFzItems* C, int32_t V) { C->FLimit = V; }, 0);
  }
};

class TFzNode : public TComponent {
  KX_CLASS(TFzNode, TComponent)
public:
  using TComponent::TComponent;
  TFzNode* FLink = nullptr;
  bool FEnabled = true;
  TFzMode FMode = fzmAuto;
  TSet<TFzFlag> FFlags{fzfA};
  TSet<uint8_t, 8> FDims;
  TOwned<TFzStyle> FStyle{New<TFzStyle>()};
  TOwned<TFzItems> FItems{New<TFzItems>(this)};

  void SetLink(TFzNode* V) {
    if (FLink) RemoveFreeNotification(FLink);
    FLink = V;
    if (V) FreeNotification(V);
  }

protected:
  void Notification(TComponent* C, TOperation Op) override {
    inherited::Notification(C, Op);
    if (Op == opRemove && C == FLink) FLink = nullptr;
  }
  void Loaded() override {
    inherited::Loaded();
    FItems->Loaded();
  }
  void DefineProperties(TFiler& F) override {
    inherited::DefineProperties(F);
    F.Property(
        "Link", this, [](TFzNode* N) { return N->FLink; },
        [](TFzNode* N, TFzNode* V) { N->SetLink(V); });
    F.Property(
        "Enabled", this, [](TFzNode* N) { return N->FEnabled; },
        [](TFzNode* N, bool V) { N->FEnabled = V; }, true);
    F.Property(
        "Mode", this, [](TFzNode* N) { return N->FMode; },
        [](TFzNode* N, TFzMode V) { N->FMode = V; }, fzmAuto);
    F.Property(
        "Flags", this, [](TFzNode* N) { return N->FFlags; },
        [](TFzNode* N, TSet<TFzFlag> V) { N->FFlags = V; }, TSet<TFzFlag>{fzfA});
    F.Property(
        "Dims", this, [](TFzNode* N) { return N->FDims; },
        [](TFzNode* N, TSet<uint8_t, 8> V) { N->FDims = V; }, TSet<uint8_t, 8>{});
    F.Property("Style", this, [](TFzNode* N) { return N->FStyle.get(); });
    F.Property("Values", this, [](TFzNode* N) { return N->FItems.get(); });
  }
};

class TFzForm : public TComponent {
  KX_CLASS(TFzForm, TComponent)
public:
  using TComponent::TComponent;
};

} // namespace
} // namespace kx

extern "C" int LLVMFuzzerInitialize(int* Argc, char*** Argv) {
  kx::fuzz::AddDefaultArguments(Argc, Argv, KX_FUZZ_DIR "/fuzz_reader.dict");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size) {
  using namespace kx;
  static const bool Registered = [] {
    RegisterClasses({ClassOf<TFzForm>(), ClassOf<TFzNode>(), ClassOf<TFzStyle>()});
    return true;
  }();
  (void)Registered;
  const std::string_view Input(reinterpret_cast<const char*>(Data), Size);
  TOwned<TFzForm> Form(New<TFzForm>(nullptr));
  try {
    LoadFormFromString(Form.get(), Input);
  } catch (const Exception&) {
    return 0;
  }
  const std::string Written = SaveFormToString(Form.get());
  TOwned<TFzForm> Again(New<TFzForm>(nullptr));
  LoadFormFromString(Again.get(), Written);
  if (SaveFormToString(Again.get()) != Written) std::abort();
  return 0;
}
