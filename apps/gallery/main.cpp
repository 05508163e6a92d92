// The gallery: renders every sheet the library can show and writes an index.html that
// links them. Usage: kx_gallery OUTDIR
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: kx_gallery OUTDIR\n";
    return 2;
  }
  const std::filesystem::path Out = argv[1];
  std::filesystem::create_directories(Out);
  std::ofstream Index(Out / "index.html");
  Index << "<!doctype html>\n<html><head><meta charset=\"utf-8\"><title>KX Charts gallery</title>"
           "</head>\n<body>\n<h1>KX Charts gallery</h1>\n<p>Nothing to show yet.</p>\n"
           "</body></html>\n";
  if (!Index) {
    std::cerr << "kx_gallery: cannot write " << (Out / "index.html") << "\n";
    return 1;
  }
  return 0;
}
