// Targa files against other programs: files written by ImageMagick and netpbm read by Pixmill
// as those programs decode them, Pixmill's files read back by them, and the public Targa
// samples against their reference pictures.
//
// Where Pixmill deliberately differs from the public format, the difference is checked:
// | Files                              | Pixmill                                  | Why             |
// |------------------------------------|------------------------------------------|-----------------|
// | 15/16-bit pixels and map entries   | first byte taken as the high byte        | kept behaviour  |
// | right-to-left rows (descriptor 16) | the first `width` bytes reversed         | kept behaviour  |
// | written with CreateTarga16         | half a row of pixels, each then a zero   | kept behaviour  |
// | written 1-bit pictures             | type 3 with 1 bit a pixel, which neither | the layout is   |
// |                                    | ImageMagick nor netpbm reads             | checked by bytes|

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::kMagick;
using test::RgbImage;

const uint32_t kWidths[] = {1, 7, 33};
constexpr uint32_t kHeight = 5;

void MakeScene(const std::string& path, uint32_t width, uint32_t colours, bool grey = false) {
  test::WritePpm(path, test::Scene(width, kHeight, colours, grey), width, kHeight);
}

// ImageMagick stores the rows of its grey files top first while their header says bottom first,
// and its own reader goes along with that; Pillow decodes the files as their headers say.
TEST(TargaOracle, ImageMagickFilesReadAsPillowDecodesThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  struct Variant {
    const char* options;
    uint32_t colours;
    bool grey;
    int type, pixelDepth, descriptor;
  };
  const Variant variants[] = {
      {"-type TrueColor -compress None", 0, false, 2, 24, 0},
      {"-type TrueColor -compress RLE", 0, false, 10, 24, 0},
      {"-type TrueColorAlpha -compress None", 0, false, 2, 32, 8},
      {"-type TrueColorAlpha -compress RLE", 0, false, 10, 32, 8},
      {"-type Palette -compress None", 200, false, 1, 8, 0},
      {"-type Palette -compress RLE", 200, false, 9, 8, 0},
      {"-type Grayscale -compress None", 256, true, 3, 8, 0},
      {"-type Grayscale -compress RLE", 256, true, 11, 8, 0},
      {"-type TrueColor -orient TopLeft", 0, false, 2, 24, 32},
      {"-type Palette -orient TopLeft -compress RLE", 200, false, 9, 8, 32},
  };
  test::TempDir dir;
  for (const Variant& v : variants)
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << v.options << ", width " << width);
      MakeScene(dir / "in.ppm", width, v.colours, v.grey);
      const std::string out = dir / "out.tga";
      ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(dir / "in.ppm") + " " + v.options +
                          " " + test::ShellQuote(out)),
                0);
      // The file is the kind the variant means to test.
      const std::string h = test::ReadFileBytes(out).substr(0, 18);
      EXPECT_EQ(h[2], v.type);
      EXPECT_EQ(h[16], v.pixelDepth);
      EXPECT_EQ(h[17], v.descriptor);
      RgbImage want;
      ASSERT_TRUE(test::PillowDecode(out, want));
      EXPECT_TRUE(test::ReadsAs(out, want));
    }
}

TEST(TargaOracle, NetpbmFilesReadAsNetpbmDecodesThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("pamtotga") && test::HaveProgram("tgatoppm"), "netpbm");
  struct Variant {
    const char* options;
    uint32_t colours;
    bool grey;
  };
  const Variant variants[] = {{"-cmap", 200, false},      {"-cmap -norle", 200, false},
                              {"-rgb", 0, false},         {"-rgb -norle", 0, false},
                              {"-mono", 256, true},       {"-mono -norle", 256, true}};
  test::TempDir dir;
  for (const Variant& v : variants)
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << v.options << ", width " << width);
      MakeScene(dir / "in.ppm", width, v.colours, v.grey);
      const std::string in = v.grey ? "ppmtopgm " + test::ShellQuote(dir / "in.ppm") + " | "
                                    : "cat " + test::ShellQuote(dir / "in.ppm") + " | ";
      const std::string out = dir / "out.tga";
      ASSERT_EQ(test::Run(in + "pamtotga " + v.options + " >" + test::ShellQuote(out) +
                          " 2>/dev/null"),
                0);
      RgbImage want;
      ASSERT_TRUE(test::DecodeCommand("tgatoppm " + test::ShellQuote(out), want));
      EXPECT_TRUE(test::ReadsAs(out, want));
    }
}

TEST(TargaOracle, SixteenBitFilesReadWithTheirByteOrderTurned) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  test::TempDir dir;
  // A public 16-bit file and the same file with every pixel's two bytes swapped: Pixmill reads
  // the first as ImageMagick reads the second. Bytes below 128 keep the attribute bit clear in
  // both orders.
  const uint32_t width = 9;
  std::string pixels, swapped;
  uint32_t state = 12345;
  for (uint32_t i = 0; i < width * kHeight; ++i) {
    state = state * 1664525u + 1013904223u;
    const char lo = static_cast<char>((state >> 8) & 0x7F), hi = static_cast<char>((state >> 16) & 0x7F);
    pixels += {lo, hi};
    swapped += {hi, lo};
  }
  const std::string header = test::Raw({0, 0, 2}) + std::string(9, '\0') + test::Le(width, 2) +
                             test::Le(kHeight, 2) + test::Raw({16, 32});
  test::WriteFileBytes(dir / "a.tga", header + pixels);
  test::WriteFileBytes(dir / "b.tga", header + swapped);
  RgbImage want;
  ASSERT_TRUE(test::MagickDecode(dir / "b.tga", want));
  // ImageMagick rounds when it widens five bits; Pixmill truncates.
  EXPECT_TRUE(test::ReadsAs(dir / "a.tga", want, 1));
}

TEST(TargaOracle, PixmillFilesReadBackByImageMagickAndNetpbm) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("tgatoppm"), "netpbm");
  test::TempDir dir;
  for (auto [bits, colours] : {std::pair{4u, 16u}, {8u, 200u}, {24u, 0u}})
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      const std::vector<Rgb> scene = test::Scene(width, kHeight, colours);
      ASSERT_EQ(test::WritePicture(test::PictureOf(scene, width, kHeight, bits), dir / "p.tga"),
                kOk);
      RgbImage magick, netpbm;
      ASSERT_TRUE(test::MagickDecode(dir / "p.tga", magick));
      ASSERT_TRUE(test::DecodeCommand("tgatoppm " + test::ShellQuote(dir / "p.tga"), netpbm));
      EXPECT_TRUE(test::SameImage(scene, magick, width, kHeight));
      EXPECT_TRUE(test::SameImage(scene, netpbm, width, kHeight));
    }

  // CreateTarga16: others read a standard 16-bit file in which pixel 2k is Pixmill's pixel k,
  // cut to five bits a channel, and every odd pixel is black.
  ScopedSettings settings;
  settings->CreateTarga16 = 1;
  const uint32_t width = 8;
  const std::vector<Rgb> scene = test::Scene(width, kHeight, 0);
  ASSERT_EQ(test::WritePicture(test::PictureOf(scene, width, kHeight, 24), dir / "s.tga"), kOk);
  std::vector<Rgb> expected;
  auto five = [](uint8_t v) { return static_cast<uint8_t>((v / 8) * 255 / 31); };
  for (uint32_t y = 0; y < kHeight; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const Rgb& c = scene[y * width + x / 2];
      expected.push_back(x % 2 ? Rgb{0, 0, 0} : Rgb{five(c.red), five(c.green), five(c.blue)});
    }
  RgbImage magick;
  ASSERT_TRUE(test::MagickDecode(dir / "s.tga", magick));
  EXPECT_TRUE(test::SameImage(expected, magick, width, kHeight, 1));
}

TEST(TargaOracle, PublicSamplesReadAsTheirReferences) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test suites";
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  // Files whose pixels Pixmill reads its own way (see the table at the top).
  const std::vector<std::string> ownWay = {"_la_", "b5-", "top_right", "bottom_right"};
  std::ifstream map(root + "/tga/reference-map.tsv");
  std::string line;
  int compared = 0;
  while (std::getline(map, line)) {
    std::istringstream fields(line);
    std::string file, reference;
    if (line.empty() || line[0] == '#' || !(fields >> file >> reference)) continue;
    SCOPED_TRACE(file);
    const std::string path = root + "/tga/" + file;
    bool own = false;
    for (const std::string& part : ownWay) own = own || file.find(part) != std::string::npos;
    if (reference == "-" || own) {
      // Still read to the end without complaint, except the one cut short.
      test::Picture p;
      const int code = test::ReadPicture(path, p);
      if (file.find("truncated") == std::string::npos && file.find("p_8") == std::string::npos) {
        EXPECT_EQ(code, kOk);
      }
      continue;
    }
    RgbImage want;
    ASSERT_TRUE(test::PillowDecode(root + "/tga/" + reference, want));
    EXPECT_TRUE(test::ReadsAs(path, want));
    ++compared;
  }
  EXPECT_GE(compared, 15);

  // A packet that runs on into the next row, which the reference set has no picture for.
  RgbImage want;
  ASSERT_TRUE(test::PillowDecode(root + "/tga/pillow/cross_scan_line.tga", want));
  EXPECT_TRUE(test::ReadsAs(root + "/tga/pillow/cross_scan_line.tga", want));
}

}  // namespace
}  // namespace pxm
