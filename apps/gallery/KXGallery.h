#pragma once
// The gallery's sheets: each one a picture with a file name, a caption, a size and a function
// that paints it on a canvas. The same function paints the PNG and the SVG.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"

namespace kx::gallery {

inline constexpr const char* DemoScreenshot = "demo.png";

struct TGallerySheet {
  std::string FileName; // without extension
  std::string Caption;
  int32_t Width = 800;
  int32_t Height = 600;
  std::function<void(TCanvas* Canvas, const TRect& Area)> Paint;
};

// Writes every sheet as FileName.png and FileName.svg into Folder (through SavePicture), and
// an index.html that shows them with their captions, and the screenshot of the interactive
// demo when Folder holds one (DemoScreenshot, written by `./kx demo --screenshot`). Raises an
// Exception naming the file that cannot be written.
void WriteGallery(const std::vector<TGallerySheet>& Sheets, const std::filesystem::path& Folder);

// Paints Panel at its own size with its top left at that of Area, through the panel's own
// painting (PaintTo): what a window showing the panel would show.
void PaintPanel(TCanvas* Canvas, TKXCustomChartPanel* Panel, const TRect& Area);

// The sheets of each area of the library, added in the order the index shows them. The
// chart kinds come first: one picture per kind, a chart alone and a dashboard.
void AddChartKindSheets(std::vector<TGallerySheet>& Sheets);
void AddPointSheets(std::vector<TGallerySheet>& Sheets);
void AddShapeKindSheets(std::vector<TGallerySheet>& Sheets);
void AddGraphSheets(std::vector<TGallerySheet>& Sheets);
void AddBarSheets(std::vector<TGallerySheet>& Sheets);
void AddBarFamilySheets(std::vector<TGallerySheet>& Sheets);
void AddPieSheets(std::vector<TGallerySheet>& Sheets);
void AddLargeDataSheets(std::vector<TGallerySheet>& Sheets);
void AddToolkitSheets(std::vector<TGallerySheet>& Sheets);
void AddControlsSheets(std::vector<TGallerySheet>& Sheets);
void AddElementsSheets(std::vector<TGallerySheet>& Sheets);
void AddLegendSheets(std::vector<TGallerySheet>& Sheets);
void AddLegendControlsSheets(std::vector<TGallerySheet>& Sheets);
void AddLineSheets(std::vector<TGallerySheet>& Sheets);
void AddAxisSheets(std::vector<TGallerySheet>& Sheets);
void AddPanelSheets(std::vector<TGallerySheet>& Sheets);
void AddInteractionSheets(std::vector<TGallerySheet>& Sheets);
void AddSavePictureSheets(std::vector<TGallerySheet>& Sheets);
void AddFunctionSheets(std::vector<TGallerySheet>& Sheets);
void AddThemeSheets(std::vector<TGallerySheet>& Sheets);

} // namespace kx::gallery
