// PCX files against other programs: files written by netpbm and ImageMagick read by Pixmill as
// netpbm decodes them, Pixmill's files read back by netpbm, ImageMagick and Pillow, and the
// public PCX samples.
//
// Where Pixmill's rules differ from the public format on purpose:
// clang-format off
// | Case                          | Pixmill                              | Why                    |
// |-------------------------------|--------------------------------------|------------------------|
// | 2 bits a pixel in one plane   | two planes of one bit                | how the program always |
// |                               |                                      | read such files        |
// | one bit, coloured palette     | black and white                      | one-bit pictures always|
// |                               |                                      | show black and white   |
// | a line without a count byte   | the next line repeats the last byte  | the run count is taken |
// |                               | read, then fails (3) unless a count  | down once more than it |
// |                               | byte follows at once                 | stores, as always      |
// clang-format on
// Scenes for files of other programs therefore begin every row of a file taller than one row with
// 16 pixels of one colour, which every coder writes as a run. (ImageMagick shows index 0 of
// one-bit files white whatever their header says, so it does not judge Pixmill's one-bit files.)

#include <gtest/gtest.h>

#include <filesystem>

#include "core/error_codes.h"
#include "oracle/oracle_support.h"
#include "support/picture.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

bool NetpbmDecode(const std::string& path, RgbImage& out) {
  return oracle::DecodeWith("pcxtoppm " + test::ShellQuote(path), out);
}

uint8_t Byte(const std::string& path, size_t at) {
  return static_cast<uint8_t>(test::ReadFileBytes(path).at(at));
}

// Pixmill reads the file as netpbm decodes it; one-bit files in black and white.
testing::AssertionResult ReadsAsNetpbm(const std::string& path) {
  RgbImage want;
  Picture p;
  if (!NetpbmDecode(path, want)) return testing::AssertionFailure() << "netpbm refuses it";
  if (int code = test::ReadPicture(path, p))
    return testing::AssertionFailure() << "Pixmill answers " << code;
  if (Byte(path, 3) == 1 && Byte(path, 65) == 1) {
    const Rgb first{Byte(path, 16), Byte(path, 17), Byte(path, 18)};
    for (Rgb& c : want.pixels) c = c == first ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
  }
  return oracle::Same(test::Colours(p), want, p.width, static_cast<uint32_t>(p.depth));
}

TEST(PcxOracle, NetpbmAndImageMagickFilesReadAsNetpbmDecodesThem) {
  PXM_ORACLE_REQUIRE(test::HaveProgram("ppmtopcx") && test::HaveProgram("pcxtoppm"), "netpbm");
  PXM_ORACLE_REQUIRE(test::HaveProgram(oracle::kMagick), oracle::kMagick);
  const std::pair<std::string, uint32_t> writers[] = {{"ppmtopcx -24bit", 0},
                                                      {"ppmtopcx -8bit", 200},
                                                      {"ppmtopcx", 256},
                                                      {"ppmtopcx -planes 1", 2},
                                                      {"ppmtopcx -planes 2", 4},
                                                      {"ppmtopcx -planes 3", 8},
                                                      {"ppmtopcx", 16},
                                                      {"ppmtopcx -packed", 16},
                                                      {"magick -type truecolor", 0},
                                                      {"magick -type palette", 200},
                                                      {"magick -type palette", 16}};
  test::TempDir dir;
  for (const auto& [writer, colours] : writers)
    for (uint32_t width : {1u, 7u, 9u, 31u, 33u}) {
      SCOPED_TRACE(testing::Message() << writer << ", " << colours << " colours, width " << width);
      const uint32_t height = width < 16 ? 1 : 5;
      std::vector<Rgb> scene = oracle::Scene(width, height, colours);
      for (uint32_t y = 0; y < height && width >= 16; ++y)
        std::fill_n(scene.begin() + y * width + 1, 15, scene[y * width]);
      oracle::WritePpm(dir / "in.ppm", scene, width, height);
      const std::string in = test::ShellQuote(dir / "in.ppm"),
                        out = test::ShellQuote(dir / "out.pcx");
      ASSERT_EQ(test::Run(writer.rfind("magick", 0) == 0
                              ? oracle::kMagick + " " + in + writer.substr(6) + " PCX:" + out
                              : writer + " " + in + " >" + out + " 2>/dev/null"),
                0);
      EXPECT_TRUE(ReadsAsNetpbm(dir / "out.pcx"));
    }
}

TEST(PcxOracle, DeliberateDifferences) {
  PXM_ORACLE_REQUIRE(test::HaveProgram("ppmtopcx"), "netpbm");
  test::TempDir dir;
  // Two rows of four different colours: each row codes as literals, so the second fails.
  oracle::WritePpm(dir / "a.ppm", oracle::Scene(4, 2, 8), 4, 2);
  ASSERT_EQ(test::Run("ppmtopcx -8bit " + test::ShellQuote(dir / "a.ppm") + " >" +
                      test::ShellQuote(dir / "a.pcx") + " 2>/dev/null"),
            0);
  Picture p;
  EXPECT_EQ(test::ReadPicture(dir / "a.pcx", p), kReadError);
  // Eight pixels 0 1 2 3 0 1 2 3 packed two bits each are P P, coded C2 P. As two planes the line
  // takes four bytes: P P and two read past the end (0). Planes go in at the picture's stride of
  // one byte, so plane 0 is P and plane 1 is 0: pixel x is bit 7 - x of P.
  std::vector<Rgb> row, colours = oracle::Scene(4, 1, 4);
  for (int i = 0; i < 8; ++i) row.push_back(colours[static_cast<size_t>(i % 4)]);
  oracle::WritePpm(dir / "b.ppm", row, 8, 1);
  ASSERT_EQ(test::Run("ppmtopcx -packed " + test::ShellQuote(dir / "b.ppm") + " >" +
                      test::ShellQuote(dir / "b.pcx") + " 2>/dev/null"),
            0);
  const std::string bytes = test::ReadFileBytes(dir / "b.pcx");
  ASSERT_EQ(bytes.size(), 130u);
  ASSERT_EQ(Byte(dir / "b.pcx", 3), 2);
  ASSERT_EQ(Byte(dir / "b.pcx", 128), 0xC2);
  ASSERT_EQ(test::ReadPicture(dir / "b.pcx", p), kOk);
  for (uint32_t x = 0; x < 8; ++x)
    EXPECT_EQ(p.Pixel(x, 0), (static_cast<uint8_t>(bytes[129]) >> (7 - x)) & 1u) << x;
}

TEST(PcxOracle, PixmillFilesReadByNetpbmImageMagickAndPillow) {
  PXM_ORACLE_REQUIRE(test::HaveProgram(oracle::kMagick), oracle::kMagick);
  PXM_ORACLE_REQUIRE(test::HaveProgram("pcxtoppm"), "netpbm");
  PXM_ORACLE_REQUIRE(oracle::HavePillow(), "Pillow");
  test::TempDir dir;
  for (uint32_t bits : {1u, 2u, 3u, 4u, 6u, 8u, 24u})
    for (uint32_t width : {1u, 8u, 9u, 33u}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      Picture p = test::Pattern(width, 6, bits, width + bits);
      p.palette[0] = Rgb{0, 0, 0},
      p.palette[1] = Rgb{255, 255, 255};  // others colour one-bit files
      ASSERT_EQ(test::WritePicture(p, dir / "p.pcx"), kOk);
      const std::vector<Rgb> want = test::Colours(p);
      RgbImage got;
      ASSERT_TRUE(NetpbmDecode(dir / "p.pcx", got));
      EXPECT_TRUE(oracle::Same(want, got, width, 6)) << "netpbm";
      if (bits != 1) {
        ASSERT_TRUE(oracle::MagickDecode(dir / "p.pcx", got));
        EXPECT_TRUE(oracle::Same(want, got, width, 6)) << "ImageMagick";
      }
      if (bits != 3) {  // Pillow reads one-bit files of one, two or four planes
        ASSERT_TRUE(oracle::PillowDecode(dir / "p.pcx", got));
        EXPECT_TRUE(oracle::Same(want, got, width, 6)) << "Pillow";
      }
    }
}

TEST(PcxOracle, PublicSamples) {
  const std::string root = test::TestDataDir() + "/pcx/";
  if (!fs::is_directory(root)) GTEST_SKIP() << "no public test data";
  PXM_ORACLE_REQUIRE(test::HaveProgram("pcxtoppm"), "netpbm");
  // (Pillow takes the planes of p_4_planes.pcx in another order; netpbm and ImageMagick agree.)
  for (const char* name : {"pillow/pil184.pcx", "pillow/odd_stride.pcx", "pillow/p_4_planes.pcx",
                           "sdl_image/sample.pcx"})
    EXPECT_TRUE(ReadsAsNetpbm(root + name)) << name;
  // A fuzzer's file of 32 bits a pixel and no bytes a line cannot give its first line. The overrun
  // sample (read under a PCX name) is a 256-pixel line of two one-byte planes: by the rules, zeros.
  test::TempDir dir;
  fs::copy_file(root + "pillow/pcx_overrun2.bin", dir / "overrun.pcx");
  Picture p;
  EXPECT_EQ(test::ReadPicture(root + "pillow/ossfuzz-4836216264589312.pcx", p), kReadError);
  EXPECT_EQ(test::ReadPicture(dir / "overrun.pcx", p), kOk);
}

}  // namespace
}  // namespace pxm
