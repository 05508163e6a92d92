// The gallery: renders every sheet the library can show as PNG and SVG and writes an
// index.html that shows them. Usage: kx_gallery OUTDIR
#include <iostream>

#include "gallery/KXGallery.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: kx_gallery OUTDIR\n";
    return 2;
  }
  std::vector<kx::gallery::TGallerySheet> Sheets;
  kx::gallery::AddChartKindSheets(Sheets);
  kx::gallery::AddPointSheets(Sheets);
  kx::gallery::AddShapeKindSheets(Sheets);
  kx::gallery::AddGraphSheets(Sheets);
  kx::gallery::AddBarSheets(Sheets);
  kx::gallery::AddBarFamilySheets(Sheets);
  kx::gallery::AddPieSheets(Sheets);
  kx::gallery::AddThemeSheets(Sheets);
  kx::gallery::AddLargeDataSheets(Sheets);
  kx::gallery::AddToolkitSheets(Sheets);
  kx::gallery::AddControlsSheets(Sheets);
  kx::gallery::AddElementsSheets(Sheets);
  kx::gallery::AddLegendSheets(Sheets);
  kx::gallery::AddLegendControlsSheets(Sheets);
  kx::gallery::AddLineSheets(Sheets);
  kx::gallery::AddAxisSheets(Sheets);
  kx::gallery::AddPanelSheets(Sheets);
  kx::gallery::AddInteractionSheets(Sheets);
  kx::gallery::AddSavePictureSheets(Sheets);
  kx::gallery::AddFunctionSheets(Sheets);
  try {
    kx::gallery::WriteGallery(Sheets, argv[1]);
  } catch (const std::exception& E) {
    std::cerr << "kx_gallery: " << E.what() << "\n";
    return 1;
  }
  return 0;
}
