#include "gallery/KXGallery.h"

#include <fstream>

#include "kxcharts/toolkit/controls/KXSavePicture.h"

namespace kx::gallery {

namespace {

std::string Escaped(const std::string& Text) {
  std::string Out;
  for (char C : Text) {
    switch (C) {
    case '&':
      Out += "&amp;";
      break;
    case '<':
      Out += "&lt;";
      break;
    case '>':
      Out += "&gt;";
      break;
    case '"':
      Out += "&quot;";
      break;
    default:
      Out += C;
    }
  }
  return Out;
}

void PaintSheet(const TGallerySheet& Sheet, TCanvas* Canvas) {
  const TRect Area{0, 0, Sheet.Width, Sheet.Height};
  Canvas->Brush()->SetColor(clWhite);
  Canvas->FillRect(Area);
  Sheet.Paint(Canvas, Area);
}

} // namespace

void PaintPanel(TCanvas* Canvas, TKXCustomChartPanel* Panel, const TRect& Area) {
  Panel->PaintTo(Canvas, Area.Left, Area.Top);
  // A panel that has not laid itself out (no plot rectangle yet) paints its frame only; its
  // legend and charts are then drawn inside the frame, so that the picture still shows them.
  if (!Panel->ChartRect().IsEmpty()) return;
  for (TKXChartAxis* Axis :
       {Panel->BottomAxis(), Panel->TopAxis(), Panel->LeftAxis(), Panel->RightAxis()})
    Axis->UpdateAxisValues();
  const int32_t Margin = 40;
  TRect Plot{Area.Left + Margin, Area.Top + Margin / 2, Area.Left + Panel->Width() - Margin,
             Area.Top + Panel->Height() - Margin};
  TKXChartLegend* Legend = Panel->Legend();
  if (Legend->Visible() && Panel->Charts()->Count() > 1) {
    int32_t Longest = 0;
    const TRect Box = Legend->BoundsRect(Canvas, Plot, Longest);
    Legend->Draw(Canvas, Plot);
    Plot.Right = Box.Left - Margin / 2;
  }
  Panel->DrawCharts(Canvas, Plot);
}

void WriteGallery(const std::vector<TGallerySheet>& Sheets, const std::filesystem::path& Folder) {
  std::filesystem::create_directories(Folder);
  for (const TGallerySheet& Sheet : Sheets) {
    const TPicturePainter Paint = [&Sheet](TCanvas* Canvas) { PaintSheet(Sheet, Canvas); };
    for (const char* Extension : {".png", ".svg"})
      SavePicture(Paint, Sheet.Width, Sheet.Height, Folder / (Sheet.FileName + Extension));
  }
  const std::filesystem::path IndexPath = Folder / "index.html";
  std::ofstream Index(IndexPath);
  Index << "<!doctype html>\n<html><head><meta charset=\"utf-8\"><title>KX Charts gallery</title>\n"
           "<style>body{font-family:sans-serif;margin:2em;background:#f4f4f4}"
           "figure{background:#fff;padding:1em;margin:0 0 2em 0;display:inline-block;"
           "box-shadow:0 1px 4px #0002}figcaption{margin-top:.5em;color:#333}"
           "img{max-width:100%}</style></head>\n<body>\n<h1>KX Charts gallery</h1>\n";
  for (const TGallerySheet& Sheet : Sheets) {
    const std::string Name = Escaped(Sheet.FileName);
    Index << "<figure><a href=\"" << Name << ".svg\"><img src=\"" << Name << ".png\" width=\""
          << Sheet.Width << "\" height=\"" << Sheet.Height << "\" alt=\"" << Escaped(Sheet.Caption)
          << "\"></a><figcaption>" << Escaped(Sheet.Caption) << " (<a href=\"" << Name
          << ".png\">PNG</a>, <a href=\"" << Name << ".svg\">SVG</a>)</figcaption></figure>\n";
  }
  if (std::filesystem::exists(Folder / DemoScreenshot))
    Index << "<figure><img src=\"" << DemoScreenshot << "\" alt=\"The interactive demo\">"
          << "<figcaption>The interactive demo in a real window under Xvfb (./kx demo "
             "--screenshot)</figcaption></figure>\n";
  Index << "</body></html>\n";
  Index.close();
  if (!Index) throw Exception("Cannot write the file \"" + IndexPath.string() + "\"");
}

} // namespace kx::gallery
