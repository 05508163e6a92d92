// The gallery as a reader opens it: CTest has run the gallery program into a fresh folder
// (KX_GALLERY_DIR) before these tests; they read its index.html and every picture it names.
#include <algorithm>
#include <cctype>
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

#include "kxcharts/toolkit/KXBitmap.h"
#include "tests/support/KXBitmapProbe.h"

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
std::string SvgProblem(const std::string& Text) {
  std::vector<std::string> Open;
  std::string Root;
  size_t I = 0;
  bool RootClosed = false;
  const auto Skip = [&](const char* End) {
    const size_t At = Text.find(End, I);
    if (At == std::string::npos) return false;
    I = At + std::char_traits<char>::length(End);
    return true;
  };
  while (I < Text.size()) {
    if (Text[I] != '<') {
      if (Open.empty() && !std::isspace(static_cast<unsigned char>(Text[I])))
        return "text outside the root";
      ++I;
      continue;
    }
    if (Text.compare(I, 4, "<!--") == 0) {
      if (!Skip("-->")) return "an open comment";
    } else if (Text.compare(I, 9, "<![CDATA[") == 0) {
      if (Open.empty()) return "CDATA outside the root";
      if (!Skip("]]>")) return "an open CDATA section";
    } else if (Text.compare(I, 2, "<?") == 0) {
      if (!Skip("?>")) return "an open processing instruction";
    } else if (Text.compare(I, 2, "<!") == 0) {
      if (!Root.empty()) return "a declaration inside the document";
      if (!Skip(">")) return "an open declaration";
    } else {
      const bool Closing = Text[I + 1] == '/';
      size_t J = I + (Closing ? 2 : 1);
      const size_t NameStart = J;
      while (J < Text.size() && !std::isspace(static_cast<unsigned char>(Text[J])) &&
             Text[J] != '>' && Text[J] != '/')
        ++J;
      const std::string Name = Text.substr(NameStart, J - NameStart);
      if (Name.empty()) return "a tag without a name";
      // Attributes: name="value" or name='value', with the quotes matched.
      bool Empty = false;
      while (J < Text.size() && Text[J] != '>') {
        const char Ch = Text[J];
        if (Ch == '"' || Ch == '\'') {
          const size_t Q = Text.find(Ch, J + 1);
          if (Q == std::string::npos) return "an open quote in <" + Name + ">";
          J = Q + 1;
          continue;
        }
        if (Ch == '<') return "a '<' inside <" + Name + ">";
        Empty = Ch == '/' && J + 1 < Text.size() && Text[J + 1] == '>';
        ++J;
      }
      if (J >= Text.size()) return "an open tag <" + Name + ">";
      I = J + 1;
      if (Closing) {
        if (Open.empty() || Open.back() != Name) return "</" + Name + "> closes nothing open";
        Open.pop_back();
        if (Open.empty()) RootClosed = true;
        continue;
      }
      if (Open.empty()) {
        if (!Root.empty()) return "a second root <" + Name + ">";
        Root = Name;
      }
      if (!Empty)
        Open.push_back(Name);
      else if (Open.empty())
        RootClosed = true;
    }
  }
  if (Root != "svg") return "the root is <" + Root + ">, not <svg>";
  if (!Open.empty() || !RootClosed) return "<" + Open.back() + "> is never closed";
  return {};
}

// --- The checks themselves are checked on known good and bad input ---

TEST(GalleryChecks, TellValidPngAndSvgFromBrokenOnes) {
  const std::string Png = std::string("\x89PNG\r\n\x1a\n", 8) + std::string("\0\0\0\x0dIHDR", 8) +
                          std::string("\0\0\0\x02\0\0\0\x03", 8) + std::string(13, '\0');
  EXPECT_EQ(PngProblem(Png, 2, 3), "");
  EXPECT_NE(PngProblem(Png, 3, 3), "");
  EXPECT_NE(PngProblem("GIF89a" + Png, -1, -1), "");
  EXPECT_NE(PngProblem(Png.substr(0, 20), -1, -1), "");

  const struct {
    const char* Text;
    bool Good;
  } Svgs[] = {
      {"<?xml version=\"1.0\"?>\n<svg a=\"1\"><g><path d='M 0 0'/></g></svg>\n", true},
      {"<svg><style><![CDATA[ a<b ]]></style><!-- <x> --></svg>", true},
      {"<svg><g></svg>", false},
      {"<svg><g a=\"1></g></svg>", false},
      {"<html></html>", false},
      {"<svg></svg><svg></svg>", false},
      {"<svg>", false},
      {"", false},
  };
  for (const auto& S : Svgs)
    EXPECT_EQ(SvgProblem(S.Text).empty(), S.Good) << S.Text << ": " << SvgProblem(S.Text);
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
