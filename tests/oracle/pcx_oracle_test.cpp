// PCX files against other programs: files written by netpbm and ImageMagick read by Pixmill as
// those programs decode them, Pixmill's files read back by them, and the public PCX samples.
//
// Where Pixmill's rules differ from the public format on purpose:
// | File                          | Pixmill                                  | Why                     |
// |-------------------------------|------------------------------------------|-------------------------|
// | 2 bits per pixel, one plane   | decoded as two planes of one bit         | how the program has     |
// |                               |                                          | always read such files  |
// | 1 bit with a coloured palette | black and white                          | one-bit pictures always |
// |                               |                                          | show black and white    |
// | ImageMagick reading Pixmill's  | (not compared)                           | ImageMagick shows index |
// | one-bit files                 |                                          | 0 white                 |
// | a line coded without any      | the next line repeats the last byte read | the run count is taken  |
// | count byte (literals only)    | and then fails with code 3, unless a     | down once more than it  |
// |                               | count byte follows at once               | stores, as it always was|
// Scenes for other programs' files therefore begin every row of a file taller than one row with
// 16 pixels of one colour, which every coder writes as a run.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"
#include "oracle/oracle_support.h"
#include "support/picture.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using oracle::kMagick;
using test::Picture;
using test::RgbImage;

const uint32_t kWidths[] = {1, 7, 8, 9, 31, 33};

// Rows of a file from another program must each hold a run (see the table above): narrow
// pictures are one row high, wider ones start every row with 16 pixels of one colour.
uint32_t HeightFor(uint32_t width) { return width < 16 ? 1 : 5; }
std::vector<Rgb> RunScene(uint32_t width, uint32_t height, uint32_t colours) {
  std::vector<Rgb> pixels = oracle::Scene(width, height, colours);
  if (width >= 16)
    for (uint32_t y = 0; y < height; ++y)
      for (uint32_t x = 1; x < 16; ++x) pixels[y * width + x] = pixels[y * width];
  return pixels;
}

bool NetpbmDecode(const std::string& path, RgbImage& out) {
  return oracle::DecodeWith("pcxtoppm " + test::ShellQuote(path), out);
}

testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want) {
  Picture p;
  if (int code = test::ReadPicture(path, p)) return testing::AssertionFailure() << "Pixmill answers " << code;
  return oracle::Same(test::Colours(p), want, p.width, static_cast<uint32_t>(p.depth));
}

uint8_t HeaderByte(const std::string& path, size_t at) {
  return static_cast<uint8_t>(test::ReadFileBytes(path).at(at));
}

TEST(PcxOracle, NetpbmFilesReadAsNetpbmDecodesThem) {
  PXM_ORACLE_REQUIRE(test::HaveProgram("ppmtopcx") && test::HaveProgram("pcxtoppm"), "netpbm");
  struct Variant {
    const char* options;
    uint32_t colours;
    int bitsPerPixel, planes;  // what the file must hold
  };
  const Variant variants[] = {
      {"-24bit", 0, 8, 3},   {"-8bit", 200, 8, 1},   {"", 256, 8, 1},
      {"-planes 1", 2, 1, 1}, {"-planes 2", 4, 1, 2}, {"-planes 3", 8, 1, 3},
      {"-planes 4", 16, 1, 4}, {"", 16, 1, 4},       {"-packed", 16, 4, 1},
  };
  test::TempDir dir;
  for (const Variant& v : variants)
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << "ppmtopcx " << v.options << ", " << v.colours
                                      << " colours, width " << width);
      const uint32_t height = HeightFor(width);
      oracle::WritePpm(dir / "in.ppm", RunScene(width, height, v.colours), width, height);
      const std::string out = dir / "out.pcx";
      ASSERT_EQ(test::Run("ppmtopcx " + std::string(v.options) + " " + test::ShellQuote(dir / "in.ppm") +
                          " >" + test::ShellQuote(out) + " 2>/dev/null"),
                0);
      // With fewer pixels than colours netpbm may choose a smaller layout.
      if (width * height >= v.colours) {
        ASSERT_EQ(HeaderByte(out, 3), v.bitsPerPixel);
        ASSERT_EQ(HeaderByte(out, 65), v.planes);
      }
      RgbImage want;
      ASSERT_TRUE(NetpbmDecode(out, want));
      // One-bit files show black and white in Pixmill, whatever colours the header gives.
      if (HeaderByte(out, 3) == 1 && HeaderByte(out, 65) == 1) {
        const Rgb first{HeaderByte(out, 16), HeaderByte(out, 17), HeaderByte(out, 18)};
        for (Rgb& c : want.pixels) c = c == first ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
      }
      EXPECT_TRUE(ReadsAs(out, want));
    }
}

TEST(PcxOracle, TwoBitPackedFilesAreReadAsTwoPlanes) {
  PXM_ORACLE_REQUIRE(test::HaveProgram("ppmtopcx"), "netpbm");
  test::TempDir dir;
  // One row of eight pixels 0 1 2 3 0 1 2 3: packed two bits a pixel it is 1B 1B. Taken as two
  // planes of one byte each, plane 0 = 1B and plane 1 = 1B: pixels 0 0 0 3 3 0 3 3.
  std::vector<Rgb> colours = oracle::Scene(4, 1, 4);
  std::vector<Rgb> row;
  for (int i = 0; i < 8; ++i) row.push_back(colours[static_cast<size_t>(i % 4)]);
  oracle::WritePpm(dir / "in.ppm", row, 8, 1);
  const std::string out = dir / "out.pcx";
  ASSERT_EQ(test::Run("ppmtopcx -packed " + test::ShellQuote(dir / "in.ppm") + " >" +
                      test::ShellQuote(out) + " 2>/dev/null"),
            0);
  ASSERT_EQ(HeaderByte(out, 3), 2);
  ASSERT_EQ(HeaderByte(out, 65), 1);
  Picture p;
  ASSERT_EQ(test::ReadPicture(out, p), kOk);
  ASSERT_EQ(p.bits, 2u);
  // The row packs into two equal bytes P P, which netpbm codes as the run C2 P. Taken as two
  // planes of two bytes, the line needs four bytes: P P and two past the end of the file, which
  // read as 0. The planes go in at the picture's stride of one byte, so plane 0 is P and plane 1
  // is 0: pixel x is bit 7 - x of P.
  const std::string bytes = test::ReadFileBytes(out);
  ASSERT_EQ(bytes.size(), 128u + 2u);
  ASSERT_EQ(static_cast<uint8_t>(bytes[128]), 0xC2);
  const auto packed = static_cast<uint8_t>(bytes[129]);
  for (uint32_t x = 0; x < 8; ++x) EXPECT_EQ(p.Pixel(x, 0), (packed >> (7 - x)) & 1u) << x;
}

TEST(PcxOracle, ALineOfLiteralsSpoilsTheNextLine) {
  PXM_ORACLE_REQUIRE(test::HaveProgram("ppmtopcx"), "netpbm");
  test::TempDir dir;
  // Two rows of four different dark colours: each row codes as four literals.
  oracle::WritePpm(dir / "in.ppm", oracle::Scene(4, 2, 8), 4, 2);
  ASSERT_EQ(test::Run("ppmtopcx -8bit " + test::ShellQuote(dir / "in.ppm") + " >" +
                      test::ShellQuote(dir / "out.pcx") + " 2>/dev/null"),
            0);
  ASSERT_EQ(test::ReadFileBytes(dir / "out.pcx").size(), 128u + 8u + 769u);
  Picture p;
  EXPECT_EQ(test::ReadPicture(dir / "out.pcx", p), kReadError);
}

TEST(PcxOracle, ImageMagickFilesReadAsImageMagickDecodesThem) {
  PXM_ORACLE_REQUIRE(test::HaveProgram(kMagick), kMagick);
  struct Variant {
    const char* options;
    uint32_t colours;
  };
  const Variant variants[] = {
      {"-type truecolor", 0}, {"-type palette", 200}, {"-type palette", 16}, {"-type bilevel", 2}};
  test::TempDir dir;
  for (const Variant& v : variants)
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << v.options << ", " << v.colours << " colours, width " << width);
      const uint32_t height = HeightFor(width);
      oracle::WritePpm(dir / "in.ppm", RunScene(width, height, v.colours), width, height);
      const std::string out = dir / "out.pcx";
      ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(dir / "in.ppm") + " " + v.options +
                          " PCX:" + test::ShellQuote(out)),
                0);
      RgbImage want;
      ASSERT_TRUE(oracle::MagickDecode(out, want));
      EXPECT_TRUE(ReadsAs(out, want));
    }
}

TEST(PcxOracle, PixmillFilesReadByImageMagickPillowAndNetpbm) {
  PXM_ORACLE_REQUIRE(test::HaveProgram(kMagick), kMagick);
  PXM_ORACLE_REQUIRE(test::HaveProgram("pcxtoppm"), "netpbm");
  PXM_ORACLE_REQUIRE(oracle::HavePillow(), "Pillow");
  test::TempDir dir;
  for (uint32_t bits : {1u, 2u, 3u, 4u, 6u, 8u, 24u})
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      Picture p = test::Pattern(width, 6, bits, width + bits);
      // Other programs colour one-bit files from the header; Pixmill shows black and white.
      if (bits == 1) p.palette[0] = Rgb{0, 0, 0}, p.palette[1] = Rgb{255, 255, 255};
      const std::string path = dir / "p.pcx";
      ASSERT_EQ(test::WritePicture(p, path), kOk);
      const std::vector<Rgb> want = test::Colours(p);
      RgbImage got;
      ASSERT_TRUE(NetpbmDecode(path, got));
      EXPECT_TRUE(oracle::Same(want, got, width, 6)) << "netpbm";
      // ImageMagick shows index 0 of one-bit files white, whatever the header says.
      if (bits != 1) {
        ASSERT_TRUE(oracle::MagickDecode(path, got));
        EXPECT_TRUE(oracle::Same(want, got, width, 6)) << "ImageMagick";
      }
      // Pillow reads one-bit files of one, two or four planes only.
      if (bits != 3) {
        ASSERT_TRUE(oracle::PillowDecode(path, got));
        EXPECT_TRUE(oracle::Same(want, got, width, 6)) << "Pillow";
      }
    }
}

TEST(PcxOracle, PublicSamplesReadAsNetpbmDecodesThem) {
  const std::string root = test::TestDataDir();
  if (root.empty() || !fs::is_directory(root + "/pcx")) GTEST_SKIP() << "no public test data";
  PXM_ORACLE_REQUIRE(test::HaveProgram("pcxtoppm"), "netpbm");
  // (Pillow takes the planes of p_4_planes.pcx in another order; netpbm and ImageMagick agree.)
  for (const char* name : {"pillow/pil184.pcx", "pillow/odd_stride.pcx", "pillow/p_4_planes.pcx",
                           "sdl_image/sample.pcx"}) {
    SCOPED_TRACE(name);
    const std::string path = root + "/pcx/" + name;
    RgbImage want;
    ASSERT_TRUE(NetpbmDecode(path, want));
    EXPECT_TRUE(ReadsAs(path, want));
  }
  // A fuzzer's file: 32 bits a pixel and no bytes a line, so the first line cannot come out
  // right. The overrun sample (its extension is not PCX, so it is read under another name) is a
  // 256-pixel two-plane line of one byte a plane: by the rules it reads, as zeros.
  test::TempDir dir;
  fs::copy_file(root + "/pcx/pillow/pcx_overrun2.bin", dir / "overrun.pcx");
  Picture p;
  EXPECT_EQ(test::ReadPicture(root + "/pcx/pillow/ossfuzz-4836216264589312.pcx", p), kReadError);
  EXPECT_EQ(test::ReadPicture(dir / "overrun.pcx", p), kOk);
}

}  // namespace
}  // namespace pxm
