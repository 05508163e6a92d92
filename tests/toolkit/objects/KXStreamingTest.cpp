#include "kxcharts/toolkit/objects/KXStreaming.h"

#include <cmath>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "support/KXTestSupport.h"

namespace kx {

// Name tables live in namespace kx, beside their enumerations.
enum TStKind : uint8_t { stkPlain, stkRaised, stkSunken };
KX_ENUM_NAMES(TStKind, "stkPlain", "stkRaised", "stkSunken")
enum TStOption : uint8_t { stoGrid, stoTitle, stoLabels, stoReversed };
KX_ENUM_NAMES(TStOption, "stoGrid", "stoTitle", "stoLabels", "stoReversed")
using TStOptions = TSet<TStOption>;

namespace {

std::vector<std::string> Trace;

// --- A small family of streamed classes ---

class TStFont : public TPersistent {
  KX_CLASS(TStFont, TPersistent)
public:
  int32_t Size() const { return FSize; }
  void SetSize(int32_t V) { FSize = V; }
  const std::string& Name() const { return FName; }
  void SetName(const std::string& V) { FName = V; }
  TColor Color() const { return FColor; }
  void SetColor(TColor V) { FColor = V; }

protected:
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Size", this, &TStFont::Size, &TStFont::SetSize, 8);
    Filer.Property("Name", this, &TStFont::Name, &TStFont::SetName, std::string("DejaVu Sans"));
    Filer.Property("Color", this, &TStFont::Color, &TStFont::SetColor, clWindowText);
  }

private:
  int32_t FSize = 8;
  std::string FName = "DejaVu Sans";
  TColor FColor = clWindowText;
};

class TStPoint : public TGCollectionItem {
  KX_CLASS(TStPoint, TGCollectionItem)
public:
  using TGCollectionItem::TGCollectionItem;
  const std::string& Caption() const { return FCaption; }
  void SetCaption(const std::string& V) { FCaption = V; }
  double Value() const { return FValue; }
  void SetValue(double V) { FValue = V; }
  float Scale() const { return FScale; }
  void SetScale(float V) { FScale = V; }
  bool Visible() const { return FVisible; }
  void SetVisible(bool V) { FVisible = V; }
  TDateTime When() const { return FWhen; }
  void SetWhen(TDateTime V) { FWhen = V; }
  TStPoint* Target() const { return FTarget; }
  void SetTarget(TStPoint* V) {
    if (FTarget) RemoveFreeNotification(FTarget);
    FTarget = V;
    if (V) FreeNotification(V);
  }
  // Like a graph link: the target goes to the stream as its index, resolved in Loaded.
  void Loaded() override {
    if (FTargetIndex >= 0 && Collection())
      SetTarget(static_cast<TStPoint*>(Collection()->Items(FTargetIndex)));
  }

protected:
  void Notification(TGCollectionItem* Item) override {
    if (Item == FTarget) FTarget = nullptr;
  }
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Caption", this, &TStPoint::Caption, &TStPoint::SetCaption);
    Filer.Property("Value", this, &TStPoint::Value, &TStPoint::SetValue);
    Filer.Property("Scale", this, &TStPoint::Scale, &TStPoint::SetScale, 1.0f);
    Filer.Property("Visible", this, &TStPoint::Visible, &TStPoint::SetVisible, true);
    Filer.DateProperty("When", this, &TStPoint::When, &TStPoint::SetWhen);
    Filer.DefineProperty(
        "ValueIndex", [this](TReader& R) { FTargetIndex = static_cast<int32_t>(R.ReadInteger()); },
        [this](TWriter& W) { W.WriteInteger(FTarget->Index()); }, FTarget != nullptr);
  }

private:
  std::string FCaption;
  double FValue = 0;
  float FScale = 1;
  bool FVisible = true;
  TDateTime FWhen = 0;
  TStPoint* FTarget = nullptr;
  int32_t FTargetIndex = -1;
};

class TStPoints : public TGCollection {
  KX_CLASS(TStPoints, TGCollection)
public:
  explicit TStPoints(TPersistent* Owner) : TGCollection(Owner, ClassOf<TStPoint>()) {}
  int32_t Limit() const { return FLimit; }
  void SetLimit(int32_t V) {
    if (V > 1000) throw Exception("Limit too high");
    FLimit = V;
  }
  TStPoint* Items(int32_t I) const { return static_cast<TStPoint*>(TCollection::Items(I)); }

protected:
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Limit", this, &TStPoints::Limit, &TStPoints::SetLimit, 0);
  }

private:
  int32_t FLimit = 0;
};

class TStForm : public TComponent {
  KX_CLASS(TStForm, TComponent)
public:
  using TComponent::TComponent;
  const std::string& Caption() const { return FCaption; }
  void SetCaption(const std::string& V) { FCaption = V; }

protected:
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Caption", this, &TStForm::Caption, &TStForm::SetCaption);
  }

private:
  std::string FCaption;
};

// Records what the reader lets it see.
class TStTraced : public TComponent {
  KX_CLASS(TStTraced, TComponent)
public:
  using TComponent::TComponent;
  bool LoadingAtStart = false;
  void AfterConstruction() override {
    inherited::AfterConstruction();
    LoadingAtStart = ComponentState().Contains(csLoading);
  }

protected:
  void Loaded() override {
    inherited::Loaded();
    Trace.push_back("loaded " + Name());
  }
};

class TStPanel : public TStTraced {
  KX_CLASS(TStPanel, TStTraced)
public:
  using TStTraced::TStTraced;
  TColor Color() const { return FColor; }
  void SetColor(TColor V) { FColor = V; }
  TStFont* Font() const { return FFont.get(); }
  TStKind Kind() const { return FKind; }
  void SetKind(TStKind V) { FKind = V; }
  double Ratio() const { return FRatio; }
  void SetRatio(double V) { FRatio = V; }
  // A range and options that depend on each other, as an axis does: setting Minimum
  // switches automatic ranging off, so Options must be read after it.
  double Minimum() const { return FMinimum; }
  void SetMinimum(double V) {
    FMinimum = V;
    FOptions.Exclude(stoGrid);
  }
  TStOptions Options() const { return FOptions; }
  void SetOptions(TStOptions V) { FOptions = V; }
  TSet<uint8_t, 8> Dimensions() const { return FDimensions; }
  void SetDimensions(TSet<uint8_t, 8> V) { FDimensions = V; }

protected:
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Color", this, &TStPanel::Color, &TStPanel::SetColor, clBtnFace);
    Filer.Property("Font", this, &TStPanel::Font);
    Filer.Property("Kind", this, &TStPanel::Kind, &TStPanel::SetKind, stkRaised);
    Filer.Property("Ratio", this, &TStPanel::Ratio, &TStPanel::SetRatio);
    Filer.Property("Minimum", this, &TStPanel::Minimum, &TStPanel::SetMinimum);
    Filer.Property("Options", this, &TStPanel::Options, &TStPanel::SetOptions);
    Filer.Property("Dimensions", this, &TStPanel::Dimensions, &TStPanel::SetDimensions,
                   TSet<uint8_t, 8>{});
  }

private:
  TColor FColor = clBtnFace;
  TOwned<TStFont> FFont{New<TStFont>()};
  TStKind FKind = stkRaised;
  double FRatio = 0;
  double FMinimum = 0;
  TStOptions FOptions{stoGrid, stoTitle};
  TSet<uint8_t, 8> FDimensions;
};

class TStChart : public TStTraced {
  KX_CLASS(TStChart, TStTraced)
public:
  using TStTraced::TStTraced;
  TStPanel* Panel() const { return FPanel; }
  void SetPanel(TStPanel* V) {
    if (FPanel) RemoveFreeNotification(FPanel);
    FPanel = V;
    if (V) FreeNotification(V);
  }
  TStPoints* Values() const { return FValues.get(); }
  TStOptions Options() const { return FOptions; }
  void SetOptions(TStOptions V) { FOptions = V; }
  bool Preview() const { return FPreview; }
  void SetPreview(bool V) { FPreview = V; }
  bool PanelSetWhenLoaded = false;

protected:
  void Notification(TComponent* C, TOperation Op) override {
    inherited::Notification(C, Op);
    if (Op == opRemove && C == FPanel) FPanel = nullptr;
  }
  void Loaded() override {
    PanelSetWhenLoaded = FPanel != nullptr;
    inherited::Loaded();
    FValues->Loaded();
  }
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Panel", this, &TStChart::Panel, &TStChart::SetPanel);
    Filer.Property("Options", this, &TStChart::Options, &TStChart::SetOptions, TStOptions{stoGrid},
                   &TStChart::StoreOptions);
    Filer.Property("Preview", this, &TStChart::Preview, &TStChart::SetPreview, false);
    Filer.Property("Values", this, &TStChart::Values);
  }
  bool StoreOptions() const { return !FPreview; }

private:
  TStPanel* FPanel = nullptr;
  TOwned<TStPoints> FValues{New<TStPoints>(this)};
  TStOptions FOptions{stoGrid};
  bool FPreview = false;
};

// A descendant with another default for an inherited property.
class TStBarChart : public TStChart {
  KX_CLASS(TStBarChart, TStChart)
public:
  explicit TStBarChart(TComponent* Owner) : TStChart(Owner) { SetOptions({stoGrid, stoLabels}); }

protected:
  void DefineProperties(TFiler& Filer) override {
    Filer.Redefault("Options", TStOptions{stoGrid, stoLabels});
    inherited::DefineProperties(Filer);
  }
};

// A form that makes a component of its own, stored as a nested object.
class TStHeaderForm : public TStForm {
  KX_CLASS(TStHeaderForm, TStForm)
public:
  using TStForm::TStForm;
  TStPanel* Header() const { return FHeader; }
  void AfterConstruction() override {
    inherited::AfterConstruction();
    FHeader = New<TStPanel>(this);
    FHeader->SetName("Header");
    FHeader->SetSubComponent(true);
  }

protected:
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Header", this, &TStHeaderForm::Header);
  }

private:
  TStPanel* FHeader = nullptr;
};

void RegisterStreamedClasses() {
  RegisterClasses({ClassOf<TStForm>(), ClassOf<TStPanel>(), ClassOf<TStChart>(),
                   ClassOf<TStBarChart>(), ClassOf<TStFont>()});
}

template <class T> T* Make(TComponent* Owner, const std::string& Name) {
  T* C = New<T>(Owner);
  C->SetName(Name);
  return C;
}

// Form1 { Panel1, Chart1 (values, linked to Panel1), Bar1 }
TOwned<TStForm> BuildForm() {
  TOwned<TStForm> Form(Make<TStForm>(nullptr, "Form1"));
  Form->SetCaption("Sales");
  auto* Panel = Make<TStPanel>(Form.get(), "Panel1");
  Panel->SetColor(RGBToColor(0x12, 0x34, 0x56));
  Panel->Font()->SetSize(11);
  Panel->SetKind(stkSunken);
  Panel->SetRatio(0.1);
  Panel->SetMinimum(-5);
  Panel->SetOptions({stoGrid, stoReversed}); // after Minimum, which cleared stoGrid
  Panel->SetDimensions(TSet<uint8_t, 8>{0, 2});
  Panel->SetTag(7);
  auto* Chart = Make<TStChart>(Form.get(), "Chart1");
  Chart->SetPanel(Panel);
  Chart->SetOptions({stoTitle});
  Chart->Values()->SetLimit(100);
  auto* A = static_cast<TStPoint*>(Chart->Values()->Add());
  A->SetCaption("Ünïcode \"quoted\"");
  A->SetValue(std::nan(""));
  A->SetScale(0.1f);
  A->SetWhen(45000.75);
  auto* B = static_cast<TStPoint*>(Chart->Values()->Add());
  B->SetValue(-1e300);
  B->SetVisible(false);
  B->SetTarget(A);
  Make<TStBarChart>(Form.get(), "Bar1");
  return Form;
}

class Streaming : public ::testing::Test {
protected:
  void SetUp() override {
    RegisterStreamedClasses();
    Trace.clear();
  }
};

TEST_F(Streaming, AFormRoundTripsToTheSameDocument) {
  TOwned<TStForm> Form = BuildForm();
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TStForm> Copy(Make<TStForm>(nullptr, "Other"));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(Copy->Name(), "Form1");
  // A property that reads back wrong writes back differently.
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
}

TEST_F(Streaming, WritesNonDefaultsByNameAndLeavesDefaultsOut) {
  TOwned<TStForm> Form = BuildForm();
  const std::string Json = SaveFormToString(Form.get());
  // The bad-input table below finds the other written properties it edits.
  const char* Present[] = {
      "\"Class\": \"TStPanel\"", "\"Font\": {\n",      "\"Ratio\": 0.1", "\"Options\": [\n",
      "\"Dimensions\": [\n",     "\"Visible\": false", "\"Tag\": 7"};
  for (const char* P : Present)
    EXPECT_NE(Json.find(P), std::string::npos) << P << "\n" << Json;
  // Font name and colour at their defaults, Kind of Bar1, the bar chart's own default
  // Options, Preview false, Visible true, ValueIndex of a point without target, the tag
  // of the other components: none of them is written.
  const char* Absent[] = {"DejaVu Sans", "clWindowText", "stkRaised", "Preview"};
  for (const char* A : Absent)
    EXPECT_EQ(Json.find(A), std::string::npos) << A;
  const size_t Bar = Json.find("\"Bar1\"");
  ASSERT_NE(Bar, std::string::npos);
  EXPECT_EQ(Json.find("Options", Bar), std::string::npos) << "Bar1 writes its own default";
  EXPECT_EQ(Json.find("\"Visible\": true"), std::string::npos);
  // Only the point with a target writes ValueIndex.
  EXPECT_EQ(Json.find("\"ValueIndex\"", Json.find("ValueIndex") + 1), std::string::npos);
}

TEST_F(Streaming, AStoredPredicateKeepsAPropertyOut) {
  TOwned<TStForm> Form(Make<TStForm>(nullptr, "Form1"));
  auto* Chart = Make<TStChart>(Form.get(), "Chart1");
  Chart->SetOptions({stoTitle});
  Chart->SetPreview(true);
  EXPECT_EQ(SaveFormToString(Form.get()).find("stoTitle"), std::string::npos);
}

TEST_F(Streaming, TheReaderMakesAllThenLinksThenLoadsThenClearsLoading) {
  TOwned<TStForm> Form = BuildForm();
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TStForm> Copy(New<TStForm>(nullptr));
  Trace.clear();
  LoadFormFromString(Copy.get(), Json);
  // The rehearsal on a scratch form loads too; the real pass ends the trace.
  ASSERT_GE(Trace.size(), 3u);
  EXPECT_EQ(std::vector<std::string>(Trace.end() - 3, Trace.end()),
            (std::vector<std::string>{"loaded Panel1", "loaded Chart1", "loaded Bar1"}));
  auto* Chart = static_cast<TStChart*>(Copy->FindComponent("Chart1"));
  EXPECT_TRUE(Chart->LoadingAtStart);
  EXPECT_TRUE(Chart->PanelSetWhenLoaded); // a reference written after it is set before Loaded
  for (int32_t I = 0; I < Copy->ComponentCount(); ++I)
    EXPECT_FALSE(Copy->Components(I)->ComponentState().Contains(csLoading));
  EXPECT_FALSE(Copy->ComponentState().Contains(csReading));
  // Properties are read in declared order: Options after Minimum keeps the stored set.
  EXPECT_EQ(static_cast<TStPanel*>(Copy->FindComponent("Panel1"))->Options(),
            (TStOptions{stoGrid, stoReversed}));
}

TEST_F(Streaming, LoadingReplacesTheComponentsTheFormHad) {
  TOwned<TStForm> Form = BuildForm();
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TStForm> Target(Make<TStForm>(nullptr, "Form1"));
  Make<TStPanel>(Target.get(), "Panel1");
  Make<TStPanel>(Target.get(), "Extra");
  LoadFormFromString(Target.get(), Json);
  EXPECT_EQ(Target->FindComponent("Extra"), nullptr);
  EXPECT_EQ(Target->ComponentCount(), 3);
}

TEST_F(Streaming, ASubComponentIsStoredInsideItsOwnerAndKeptWhenLoading) {
  TOwned<TStHeaderForm> Form(Make<TStHeaderForm>(nullptr, "Form1"));
  Form->Header()->SetColor(clRed);
  Make<TStPanel>(Form.get(), "Body");
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"Header\": {\n      \"Color\": \"clRed\""), std::string::npos) << Json;
  EXPECT_EQ(Json.find("\"Name\": \"Header\""), std::string::npos);
  TOwned<TStHeaderForm> Copy(New<TStHeaderForm>(nullptr));
  TStPanel* Own = Copy->Header();
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(Copy->Header(), Own);
  EXPECT_EQ(Own->Color(), clRed);
  EXPECT_EQ(Copy->ComponentCount(), 2);
}

TEST_F(Streaming, FilesAndStreamsCarryTheSameDocument) {
  test::TTempDir Dir;
  TOwned<TStForm> Form = BuildForm();
  SaveFormToFile(Form.get(), Dir / "form.json");
  TOwned<TStForm> FromFile(New<TStForm>(nullptr));
  LoadFormFromFile(FromFile.get(), Dir / "form.json");
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_EQ(SaveFormToString(FromFile.get()), Json);

  std::stringstream Stream;
  SaveFormToStream(Form.get(), Stream);
  TOwned<TStForm> FromStream(New<TStForm>(nullptr));
  LoadFormFromStream(FromStream.get(), Stream);
  EXPECT_EQ(SaveFormToString(FromStream.get()), Json);

  EXPECT_THROW(LoadFormFromFile(FromFile.get(), Dir / "missing.json"), EFilerError);
  // A form that cannot be written leaves the old file as it was.
  TOwned<TStPanel> Stranger(Make<TStPanel>(nullptr, "Stranger"));
  static_cast<TStChart*>(Form->FindComponent("Chart1"))->SetPanel(Stranger.get());
  EXPECT_EQ(
      test::MessageOf<EFilerError>([&] { SaveFormToFile(Form.get(), Dir / "form.json"); }),
      "Error writing Form1.Chart1.Panel: it refers to Stranger, which is not part of the form");
  TOwned<TStForm> Again(New<TStForm>(nullptr));
  LoadFormFromFile(Again.get(), Dir / "form.json");
  EXPECT_EQ(static_cast<TStChart*>(Again->FindComponent("Chart1"))->Panel()->Name(), "Panel1");
}

// Each bad document raises EFilerError with the given message, and the target form keeps
// its components and properties.
TEST_F(Streaming, BadInputRaisesAClearErrorAndLeavesTheFormAsItWas) {
  TOwned<TStForm> Good = BuildForm();
  const std::string Json = SaveFormToString(Good.get());
  auto Replace = [&](const std::string& From, const std::string& To) {
    std::string S = Json;
    const size_t At = S.find(From);
    EXPECT_NE(At, std::string::npos) << From;
    return At == std::string::npos ? S : S.replace(At, From.size(), To);
  };
  std::string Deep = "{\"Format\": \"kxcharts-form\", \"Version\": 1, \"Form\": ";
  for (int I = 0; I < 300; ++I)
    Deep += "[";
  struct TCase {
    std::string Document;
    std::string Message;
  };
  const std::vector<TCase> Cases = {
      {Json.substr(0, Json.size() / 2), "Malformed form document: "},
      {"[]", "Malformed form document: expected an object"},
      {Deep, "nested deeper than 256 levels"},
      {Replace("\"Version\": 1", "\"Version\": 2"), "Unsupported form document version 2"},
      {Replace("\"Class\": \"TStForm\"", "\"Class\": \"TStPanel\""),
       "Error reading Form1: the document holds a TStPanel, not a TStForm"},
      {Replace("\"Caption\": \"Sales\"", "\"Caption\": 5"),
       "Error reading Form1.Caption: expected a string, found an integer"},
      {Replace("\"Size\": 11", "\"Size\": 1e400"), "Malformed form document: "},
      {Replace("\"Size\": 11", "\"Size\": 99999999999"),
       "Error reading Form1.Panel1.Font.Size: 99999999999 is out of range (-2147483648 to "
       "2147483647)"},
      {Replace("\"Size\": 11", "\"Size\": 11.5"),
       "Error reading Form1.Panel1.Font.Size: expected an integer, found 11.5"},
      {Replace("\"Size\": 11", "\"Bogus\": 1"),
       "Error reading Form1.Panel1.Font: unknown property \"Bogus\""},
      {Replace("\"Kind\": \"stkSunken\"", "\"Kind\": \"stkWobbly\""),
       "Error reading Form1.Panel1.Kind: \"stkWobbly\" is not one of stkPlain, stkRaised, "
       "stkSunken"},
      {Replace("\"stoReversed\"", "\"stoUpsideDown\""),
       "Error reading Form1.Panel1.Options: \"stoUpsideDown\" is not one of stoGrid, stoTitle, "
       "stoLabels, stoReversed"},
      {Replace("\"Color\": \"#123456\"", "\"Color\": \"#12345\""),
       "Error reading Form1.Panel1.Color: \"#12345\" is not a colour name, #RRGGBB or 0xHHHHHHHH"},
      {Replace("\"Value\": \"NaN\"", "\"Value\": \"nan\""),
       "Error reading Form1.Chart1.Values[0].Value: expected a number, found the text \"nan\""},
      {Replace("\"Scale\": 0.1", "\"Scale\": 1e300"),
       "Error reading Form1.Chart1.Values[0].Scale: 1e+300 is out of range for a single"},
      {Replace("\"When\": \"2023-03-15T18:00:00.000\"", "\"When\": \"2023-02-30\""),
       "Error reading Form1.Chart1.Values[0].When: \"2023-02-30\" is not a date"},
      {Replace("\"Items\": [", "\"Items\": [7, "),
       "Error reading Form1.Chart1.Values[0]: expected an object, found an integer"},
      {Replace("\"Panel\": \"Panel1\"", "\"Panel\": \"Panel9\""),
       "Error reading Form1.Chart1.Panel: no component named Panel9"},
      {Replace("\"Panel\": \"Panel1\"", "\"Panel\": \"Bar1\""),
       "Error reading Form1.Chart1.Panel: Bar1 is a TStBarChart, not a TStPanel"},
      {Replace("\"Panel\": \"Panel1\"", "\"Panel\": 3"),
       "Error reading Form1.Chart1.Panel: expected a component name, found an integer"},
      {Replace("\"Class\": \"TStBarChart\"", "\"Class\": \"TStNothing\""),
       "Error reading Form1.Bar1: Class TStNothing not found"},
      {Replace("\"Class\": \"TStBarChart\"", "\"Class\": \"TStFont\""),
       "Error reading Form1.Bar1: TStFont is not a component class"},
      {Replace("\"Name\": \"Bar1\"", "\"Name\": \"Chart1\""),
       "Error reading Form1.Chart1: A component named Chart1 already exists"},
      {Replace("\"ValueIndex\": 0", "\"ValueIndex\": \"first\""),
       "Error reading Form1.Chart1.Values[1].ValueIndex: expected an integer, found a string"},
      {Replace("\"Limit\": 100", "\"Limit\": 1001"),
       "Error reading Form1.Chart1.Values.Limit: Limit too high"},
  };
  for (const TCase& C : Cases) {
    TOwned<TStForm> Target(Make<TStForm>(nullptr, "Before"));
    Target->SetCaption("unchanged");
    Make<TStPanel>(Target.get(), "Kept");
    const std::string Got =
        test::MessageOf<EFilerError>([&] { LoadFormFromString(Target.get(), C.Document); });
    EXPECT_NE(Got.find(C.Message), std::string::npos)
        << "expected: " << C.Message << "\n got: " << Got;
    EXPECT_EQ(Target->Name(), "Before");
    EXPECT_EQ(Target->Caption(), "unchanged");
    ASSERT_EQ(Target->ComponentCount(), 1);
    EXPECT_EQ(Target->Components(0)->Name(), "Kept");
    EXPECT_FALSE(Target->ComponentState().Contains(csLoading));
  }
}

// A reference to a component without a name cannot be written: the message says which
// component it is and how to name it.
TEST_F(Streaming, AReferenceToAnUnnamedComponentSaysWhichAndHowToNameIt) {
  struct TCase {
    const char* Name;
    // Builds the root and answers the panel that its chart Chart1 is to refer to.
    std::function<TStPanel*(TOwned<TComponent>&)> Build;
    const char* Message;
  };
  const TCase Cases[] = {
      {"the root itself",
       [](TOwned<TComponent>& Root) {
         Root.reset(New<TStPanel>(nullptr));
         return static_cast<TStPanel*>(Root.get());
       },
       "Error writing TStPanel.Chart1.Panel: it refers to the form, a TStPanel without a "
       "name: give it a name with SetName before saving"},
      {"a panel of the form",
       [](TOwned<TComponent>& Root) {
         Root.reset(Make<TStForm>(nullptr, "Form1"));
         New<TStPanel>(Root.get());
         return New<TStPanel>(Root.get());
       },
       "Error writing Form1.Chart1.Panel: it refers to a TStPanel without a name (component 1 "
       "of Form1): give it a name with SetName before saving"},
      {"a panel in an unnamed panel",
       [](TOwned<TComponent>& Root) {
         Root.reset(Make<TStForm>(nullptr, "Form1"));
         return New<TStPanel>(New<TStPanel>(Root.get()));
       },
       "Error writing Form1.Chart1.Panel: it refers to a TStPanel without a name (component 0 "
       "of a TStPanel): give it a name with SetName before saving"},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TOwned<TComponent> Root;
    TStPanel* Target = C.Build(Root);
    Make<TStChart>(Root.get(), "Chart1")->SetPanel(Target);
    EXPECT_EQ(test::MessageOf<EFilerError>([&] { SaveFormToString(Root.get()); }), C.Message);
  }
}

// The nesting limit counts brackets outside strings only, 256 levels below the document's
// object, whether the brackets close or not.
TEST_F(Streaming, NestingIsCountedOutsideStringsUpToTheLimit) {
  TOwned<TStForm> Good = BuildForm();
  const std::string Json = SaveFormToString(Good.get());
  auto Nested = [](int Levels, bool Closed) {
    std::string D = "{\"Format\": \"kxcharts-form\", \"Version\": 1, \"Form\": ";
    D += std::string(Levels, '[');
    if (Closed) D += std::string(Levels, ']') + "}";
    return D;
  };
  auto WithCaption = [&](const std::string& Caption) {
    std::string S = Json;
    const std::string From = "\"Caption\": \"Sales\"";
    return S.replace(S.find(From), From.size(), "\"Caption\": \"" + Caption + "\"");
  };
  struct TCase {
    std::string Document;
    std::string Message; // empty: the form loads, with Caption
    std::string Caption;
  };
  const std::string Brackets(1000, '[');
  const std::vector<TCase> Cases = {
      {Nested(256, true), "\"Form\" must be an object", ""},
      {Nested(257, true), "nested deeper than 256 levels", ""},
      {Nested(100000, false), "nested deeper than 256 levels", ""},
      {WithCaption(Brackets), "", Brackets},
      {WithCaption("\\\"" + Brackets + "\\\\"), "", "\"" + Brackets + "\\"},
      {WithCaption("{{}" + Brackets), "", "{{}" + Brackets},
  };
  for (const TCase& C : Cases) {
    TOwned<TStForm> Target(Make<TStForm>(nullptr, "Before"));
    if (C.Message.empty()) {
      LoadFormFromString(Target.get(), C.Document);
      EXPECT_EQ(Target->Caption(), C.Caption);
      continue;
    }
    const std::string Got =
        test::MessageOf<EFilerError>([&] { LoadFormFromString(Target.get(), C.Document); });
    EXPECT_NE(Got.find(C.Message), std::string::npos)
        << "expected: " << C.Message << "\n got: " << Got;
  }
}

// A collection of 50,000 items reads back whole. The parser's depth callback made this
// quadratic (a minute here); read in one pass it takes a fraction of that.
TEST_F(Streaming, AWideCollectionReadsBackWhole) {
  TOwned<TStForm> Good = BuildForm();
  std::string Json = SaveFormToString(Good.get());
  std::string Items = "\"Items\": [";
  for (int I = 0; I < 50000; ++I)
    Items += "{\"Value\": " + std::to_string(I) + "}, ";
  Json.replace(Json.find("\"Items\": ["), 10, Items);
  Json.replace(Json.find("\"Limit\": 100"), 12, "\"Limit\": 0");
  TOwned<TStForm> Copy(Make<TStForm>(nullptr, "Other"));
  LoadFormFromString(Copy.get(), Json);
  const auto* Values = static_cast<TStChart*>(Copy->FindComponent("Chart1"))->Values();
  ASSERT_EQ(Values->Count(), 50002);
  EXPECT_EQ(Values->Items(49999)->Value(), 49999.0);
  EXPECT_EQ(Values->Items(50001)->Value(), -1e300);
}

TEST_F(Streaming, ReferencesMayFormCyclesAndReachNestedComponents) {
  TOwned<TStForm> Form(Make<TStForm>(nullptr, "Form1"));
  auto* Outer = Make<TStPanel>(Form.get(), "Outer");
  auto* Inner = Make<TStPanel>(Outer, "Inner");
  auto* A = Make<TStChart>(Form.get(), "A");
  auto* B = Make<TStChart>(Inner, "B");
  A->SetPanel(Inner);
  B->SetPanel(Outer);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"Panel\": \"Outer.Inner\""), std::string::npos);
  TOwned<TStForm> Copy(New<TStForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* CopyInner = static_cast<TStPanel*>(Copy->FindComponent("Outer")->FindComponent("Inner"));
  ASSERT_NE(CopyInner, nullptr);
  EXPECT_EQ(static_cast<TStChart*>(Copy->FindComponent("A"))->Panel(), CopyInner);
  EXPECT_EQ(static_cast<TStChart*>(CopyInner->FindComponent("B"))->Panel(),
            Copy->FindComponent("Outer"));
}

TEST_F(Streaming, ColoursAreWrittenByNameOrHexAndReadInEveryForm) {
  struct TCase {
    TColor Color;
    const char* Text;
  };
  const TCase Cases[] = {{clBtnFace, "clBtnFace"},
                         {clRed, "clRed"},
                         {RGBToColor(0x12, 0x34, 0x56), "#123456"},
                         {static_cast<TColor>(0x02123456), "0x02123456"},
                         {clNone, "clNone"}};
  for (const TCase& C : Cases) {
    TOwned<TStForm> Form(Make<TStForm>(nullptr, "F"));
    Make<TStPanel>(Form.get(), "P")->SetColor(C.Color);
    const std::string Json = SaveFormToString(Form.get());
    if (C.Color != clBtnFace) {
      EXPECT_NE(Json.find(std::string("\"Color\": \"") + C.Text + "\""), std::string::npos)
          << C.Text;
    }
    TOwned<TStForm> Copy(New<TStForm>(nullptr));
    LoadFormFromString(Copy.get(), Json);
    EXPECT_EQ(static_cast<TStPanel*>(Copy->FindComponent("P"))->Color(), C.Color) << C.Text;
  }
}

TEST(DateTimeText, ConvertsBothWaysAroundTheEpochAndTheEdges) {
  struct TCase {
    TDateTime Value;
    const char* Text;
  };
  const TCase Cases[] = {{0, "1899-12-30T00:00:00.000"},
                         {1.5, "1899-12-31T12:00:00.000"},
                         {-1.25, "1899-12-29T06:00:00.000"},
                         {45000.75, "2023-03-15T18:00:00.000"},
                         {36526.0 + 0.9999999999, "2000-01-02T00:00:00.000"},
                         {-693593, "0001-01-01T00:00:00.000"},
                         {2958465, "9999-12-31T00:00:00.000"}};
  for (const TCase& C : Cases) {
    EXPECT_EQ(DateTimeToISO(C.Value), C.Text);
    auto Back = ISOToDateTime(C.Text);
    ASSERT_TRUE(Back.has_value()) << C.Text;
    EXPECT_NEAR(*Back, C.Value, 1e-8) << C.Text;
  }
  EXPECT_EQ(DateTimeToISO(std::nan("")), "");
  EXPECT_EQ(DateTimeToISO(2958466), ""); // beyond year 9999
  for (const char* Bad : {"2023-13-01", "2023-02-29", "2024-02-30", "2023-01-01T24:00:00",
                          "2023-01-01T10:00", "2023-01-01T10:00:00.1234", "20230101"})
    EXPECT_FALSE(ISOToDateTime(Bad).has_value()) << Bad;
  EXPECT_TRUE(ISOToDateTime("2024-02-29").has_value());
}

TEST_F(Streaming, DeclarationMistakesAreReportedToTheClassAuthor) {
  struct TTwice : public TComponent {
    using TComponent::TComponent;

  protected:
    void DefineProperties(TFiler& Filer) override {
      TComponent::DefineProperties(Filer);
      Filer.Property("Tag", this, &TComponent::Tag, &TComponent::SetTag, 0);
    }
  };
  struct TReserved : public TComponent {
    using TComponent::TComponent;
    const std::string& Label() const { return Name(); }
    void SetLabel(const std::string&) {}

  protected:
    void DefineProperties(TFiler& Filer) override {
      TComponent::DefineProperties(Filer);
      Filer.Property("Name", this, &TReserved::Label, &TReserved::SetLabel);
    }
  };
  struct TLate : public TStChart {
    using TStChart::TStChart;

  protected:
    void DefineProperties(TFiler& Filer) override {
      TStChart::DefineProperties(Filer);
      Filer.Redefault("Options", TStOptions{});
    }
  };
  TOwned<TComponent> Twice(New<TTwice>(nullptr));
  EXPECT_THROW(SaveFormToString(Twice.get()), Exception);
  TOwned<TComponent> Late(New<TLate>(nullptr));
  EXPECT_THROW(SaveFormToString(Late.get()), Exception);
  TOwned<TComponent> Reserved(New<TReserved>(nullptr));
  EXPECT_THROW(SaveFormToString(Reserved.get()), Exception);
}

} // namespace
} // namespace kx
