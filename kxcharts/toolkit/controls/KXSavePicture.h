#pragma once
// Saving a picture in one call: what a control (a chart panel, a chart, a whole form) shows,
// or what a function paints, as PNG, SVG or PDF, into a file (the format follows the file
// name's extension) or into memory (for a server that answers with the bytes).
//
//   SavePicture(Panel, "sales.png");            // at the panel's own size
//   SavePicture(Panel, "sales.pdf", 1200, 800); // laid out at 1200 x 800 for the picture
//   std::vector<uint8_t> Svg = SavePictureToBytes(Panel, pkSvg);
//
// One pixel is one point in SVG and PDF, so the three formats show the same layout.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"

namespace kx {

enum TPictureKind : uint8_t { pkPng, pkSvg, pkPdf };
KX_ENUM_NAMES(TPictureKind, "pkPng", "pkSvg", "pkPdf")

// Paints a picture on Canvas, whose extent (Canvas->Width() x Canvas->Height()) is the
// picture's. A PNG starts opaque white; SVG and PDF start empty.
using TPicturePainter = std::function<void(TCanvas* Canvas)>;

// The kind of picture the extension of FileName names: .png, .svg or .pdf, in any case. Raises
// EInvalidGraphic naming the file and the extensions there are.
TPictureKind PictureKindOf(const std::filesystem::path& FileName);

// What Paint paints on a picture of Width x Height pixels, as Kind says or as the extension of
// FileName says. Raises EInvalidGraphic for a size below 1 x 1 or above what the kind
// holds (32767 either way; a PNG also at most 2^28 pixels), and naming the file when it
// cannot be written.
std::vector<uint8_t> SavePictureToBytes(const TPicturePainter& Paint, int32_t Width, int32_t Height,
                                        TPictureKind Kind);
void SavePicture(const TPicturePainter& Paint, int32_t Width, int32_t Height,
                 const std::filesystem::path& FileName);

// What Control shows, with everything placed on it, as a window showing it alone would show
// it. A Width or Height of 0 keeps the control's own; another size lays the control out at
// that size for the picture and gives it its own size back afterwards.
std::vector<uint8_t> SavePictureToBytes(TControl* Control, TPictureKind Kind, int32_t Width = 0,
                                        int32_t Height = 0);
void SavePicture(TControl* Control, const std::filesystem::path& FileName, int32_t Width = 0,
                 int32_t Height = 0);

} // namespace kx
