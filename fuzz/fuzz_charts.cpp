// Feeds arbitrary bytes to the form reader as a form of real panels and charts (every chart
// class the library registers). Whatever loads is painted (each panel, each chart that
// stands alone), saved, read back into a fresh form and saved again: the two documents must
// be the same text and the two forms must paint the same pixels; the copy is then painted
// into the rectangle of the whole int32 plane. Nothing may leak (ASan),
// misbehave (UBSan), hang or grow without bound on the way.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "KXFuzzDefaults.h"
#include "kxcharts/KXChartModules.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

class TFzChartForm : public TComponent {
  KX_CLASS(TFzChartForm, TComponent)
public:
  using TComponent::TComponent;
};

constexpr int32_t PictureWidth = 160, PictureHeight = 120;

// Every panel and every chart without a panel, painted one after the other into a bitmap
// of a fixed size, whatever bounds the document gave them; the pixels in one row.
std::vector<uint32_t> Paint(TComponent* Form) {
  std::vector<uint32_t> Pixels;
  TOwned<TBitmap> Bitmap(MakeOwned<TBitmap>());
  Bitmap->SetSize(PictureWidth, PictureHeight);
  const TRect Whole{0, 0, PictureWidth, PictureHeight};
  for (int32_t I = 0; I < Form->ComponentCount(); ++I) {
    TComponent* C = Form->Components(I);
    Bitmap->Canvas()->Brush()->SetColor(clWhite);
    Bitmap->Canvas()->FillRect(Whole);
    if (auto* Panel = dynamic_cast<TKXCustomChartPanel*>(C)) {
      Panel->SetBounds(0, 0, PictureWidth, PictureHeight);
      Panel->Draw(Bitmap->Canvas(), Whole);
    } else if (auto* Chart = dynamic_cast<TKXCustomChart*>(C); Chart && !Chart->Panel()) {
      Chart->Draw(Bitmap->Canvas(), Whole);
    } else {
      continue;
    }
    for (int32_t Y = 0; Y < PictureHeight; Y += 3)
      for (int32_t X = 0; X < PictureWidth; X += 3)
        Pixels.push_back(static_cast<uint32_t>(Bitmap->Canvas()->Pixel(X, Y)));
  }
  return Pixels;
}

// The same, into the rectangle of the whole int32 plane: nothing may overflow.
void PaintWholePlane(TComponent* Form) {
  TOwned<TBitmap> Bitmap(MakeOwned<TBitmap>());
  Bitmap->SetSize(8, 8);
  const TRect Plane{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  for (int32_t I = 0; I < Form->ComponentCount(); ++I) {
    TComponent* C = Form->Components(I);
    if (auto* Panel = dynamic_cast<TKXCustomChartPanel*>(C))
      Panel->Draw(Bitmap->Canvas(), Plane);
    else if (auto* Chart = dynamic_cast<TKXCustomChart*>(C); Chart && !Chart->Panel())
      Chart->Draw(Bitmap->Canvas(), Plane);
  }
}

} // namespace
} // namespace kx

extern "C" int LLVMFuzzerInitialize(int* Argc, char*** Argv) {
  kx::fuzz::AddDefaultArguments(Argc, Argv, KX_FUZZ_DIR "/fuzz_charts.dict");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size) {
  using namespace kx;
  static const bool Started = [] {
    StartChartModules();
    RegisterClass(ClassOf<TFzChartForm>());
    return true;
  }();
  (void)Started;
  const std::string_view Input(reinterpret_cast<const char*>(Data), Size);
  // New charts take their colours from a counter of the process; each input starts it
  // afresh so that a form and its copy are given the same.
  ColorListIndex = 0;
  TOwned<TFzChartForm> Form(New<TFzChartForm>(nullptr));
  try {
    LoadFormFromString(Form.get(), Input);
  } catch (const Exception&) {
    return 0;
  }
  const std::vector<uint32_t> Pixels = Paint(Form.get());
  const std::string Written = SaveFormToString(Form.get());
  ColorListIndex = 0;
  TOwned<TFzChartForm> Again(New<TFzChartForm>(nullptr));
  LoadFormFromString(Again.get(), Written);
  if (SaveFormToString(Again.get()) != Written) std::abort();
  if (Paint(Again.get()) != Pixels) std::abort();
  PaintWholePlane(Again.get());
  return 0;
}
