// The gallery as a reader opens it: CTest has run the gallery program into a fresh folder
// (KX_GALLERY_DIR) before these tests; they read its index.html and every picture it names.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

namespace fs = std::filesystem;

fs::path GalleryDir() {
  const char* Dir = std::getenv("KX_GALLERY_DIR");
  return Dir ? fs::path(Dir) : fs::path();
}

std::string ReadFile(const fs::path& Path) {
  std::ifstream In(Path, std::ios::binary);
  return {std::istreambuf_iterator<char>(In), std::istreambuf_iterator<char>()};
}

// One picture of the index: the file an <img> or a link names, and the size it gives.
struct TPicture {
  std::string File;
  int32_t Width = -1, Height = -1;
};

// The pictures the index names, in its order: every img src and every href, once each.
std::vector<TPicture> PicturesOf(const std::string& Html) {
  std::vector<TPicture> Out;
  std::set<std::string> Seen;
  const std::regex Img(R"re(<img src="([^"]+)" width="(\d+)" height="(\d+)")re");
  const std::regex Href(R"re(href="([^"]+)")re");
  for (std::sregex_iterator I(Html.begin(), Html.end(), Img), E; I != E; ++I)
    if (Seen.insert((*I)[1]).second)
      Out.push_back({(*I)[1], std::stoi((*I)[2]), std::stoi((*I)[3])});
  for (std::sregex_iterator I(Html.begin(), Html.end(), Href), E; I != E; ++I)
    if (Seen.insert((*I)[1]).second) Out.push_back({(*I)[1]});
  return Out;
}

uint32_t BigEndian32(const std::string& S, size_t At) {
  return (uint32_t(uint8_t(S[At])) << 24) | (uint32_t(uint8_t(S[At + 1])) << 16) |
         (uint32_t(uint8_t(S[At + 2])) << 8) | uint32_t(uint8_t(S[At + 3]));
}

// Empty when Data is a PNG (signature, then an IHDR chunk of 13 bytes first) of the size
// asked (-1: any); else what is wrong.
std::string PngProblem(const std::string& Data, int32_t Width, int32_t Height) {
  static const std::string Signature("\x89PNG\r\n\x1a\n", 8);
  if (Data.size() < 33 || Data.compare(0, 8, Signature) != 0) return "no PNG signature";
  if (BigEndian32(Data, 8) != 13 || Data.compare(12, 4, "IHDR") != 0) return "no IHDR first";
  const uint32_t W = BigEndian32(Data, 16), H = BigEndian32(Data, 20);
  if (W == 0 || H == 0) return "an empty image";
  if (Width >= 0 && (int64_t(W) != Width || int64_t(H) != Height))
    return "size " + std::to_string(W) + "x" + std::to_string(H) + ", the index says " +
           std::to_string(Width) + "x" + std::to_string(Height);
  return {};
}

// Empty when Text is well-formed XML whose root element is <svg>; else what is wrong. It
// checks what a broken writer breaks: the prolog, nesting, quoting, and one root.
// A real XML parser, so that a picture a browser would refuse is refused here too.
std::string SvgProblem(const std::string& Text) {
  xmlDocPtr Doc = xmlReadMemory(Text.data(), static_cast<int>(Text.size()), "picture.svg", nullptr,
                                XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  if (!Doc) {
    const xmlError* E = xmlGetLastError();
    return E && E->message ? E->message : "not well-formed XML";
  }
  const xmlNode* Root = xmlDocGetRootElement(Doc);
  std::string Problem;
  if (!Root || xmlStrcmp(Root->name, BAD_CAST "svg") != 0) Problem = "the root is not <svg>";
  xmlFreeDoc(Doc);
  return Problem;
}

// --- The gallery ---

class GalleryOutput : public testing::Test {
protected:
  void SetUp() override {
    Dir = GalleryDir();
    ASSERT_FALSE(Dir.empty()) << "KX_GALLERY_DIR is not set: run these tests through CTest";
    ASSERT_TRUE(fs::exists(Dir / "index.html")) << Dir;
    Html = ReadFile(Dir / "index.html");
    Pictures = PicturesOf(Html);
  }
  fs::path Dir;
  std::string Html;
  std::vector<TPicture> Pictures;
};

TEST_F(GalleryOutput, EveryPictureTheIndexNamesExistsAndIsAValidPngOrSvg) {
  ASSERT_GE(Pictures.size(), 8u);
  for (const TPicture& P : Pictures) {
    SCOPED_TRACE(P.File);
    ASSERT_TRUE(fs::is_regular_file(Dir / P.File));
    const std::string Data = ReadFile(Dir / P.File);
    const std::string Ext = fs::path(P.File).extension().string();
    if (Ext == ".png")
      EXPECT_EQ(PngProblem(Data, P.Width, P.Height), "");
    else if (Ext == ".svg")
      EXPECT_EQ(SvgProblem(Data), "");
    else
      ADD_FAILURE() << "neither a PNG nor an SVG";
  }
}

TEST_F(GalleryOutput, TheChartKindsComeFirstEachAsPngAndSvgWithACaption) {
  const std::vector<std::string> Kinds = {"line", "area", "line-alone", "dashboard"};
  ASSERT_GE(Pictures.size(), Kinds.size() * 2);
  for (size_t K = 0; K < Kinds.size(); ++K) {
    SCOPED_TRACE(Kinds[K]);
    EXPECT_EQ(Pictures[K].File, Kinds[K] + ".png") << "the kinds lead the index, in order";
    bool HasSvg = false;
    for (const TPicture& P : Pictures)
      HasSvg = HasSvg || P.File == Kinds[K] + ".svg";
    EXPECT_TRUE(HasSvg);
    const std::regex Caption("<img src=\"" + Kinds[K] +
                             R"re(\.png"[^>]*alt="([^"]+)"></a><figcaption>)re");
    std::smatch M;
    EXPECT_TRUE(std::regex_search(Html, M, Caption)) << "no caption";
  }
}

// The kind pictures show charts, not an empty panel: each holds many pixels far from every
// grey of the panel's face and frame (the charts' colours are all saturated).
TEST_F(GalleryOutput, TheKindPicturesShowCharts) {
  for (const char* Name : {"line.png", "area.png", "line-alone.png", "dashboard.png"}) {
    SCOPED_TRACE(Name);
    TOwned<TBitmap> Png = MakeOwned<TBitmap>();
    Png->LoadFromFile((Dir / Name).string());
    const int32_t Coloured = test::CountPixels(Png.get(), [](TColor C) {
      const int R = GetRValue(C), G = GetGValue(C), B = GetBValue(C);
      return std::max({R, G, B}) - std::min({R, G, B}) > 40;
    });
    EXPECT_GT(Coloured, 500);
  }
}

} // namespace
} // namespace kx
