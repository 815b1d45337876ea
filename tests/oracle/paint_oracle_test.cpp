// The public MacPaint, Microsoft Paint and GEM samples, read as their reference pictures and as
// other programs show them; SSTV files both ways with ImageMagick; and the checks of the places
// where these readers differ from FFmpeg and netpbm on purpose (D37-D39). The other files of
// these formats are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::ShellQuote;

std::string FfmpegDecode(const std::string& path) {
  return "ffmpeg -v error -i " + ShellQuote(path) + " -f image2pipe -vcodec ppm -";
}

Rgb Grey(int v) {
  return Rgb{uint8_t(v), uint8_t(v), uint8_t(v)};
}

TEST(PaintOracle, MicrosoftPaintSamplesAsTheirReferences) {
  const std::string root = test::TestDataDir() + "/msp/";
  if (!fs::is_directory(root)) GTEST_SKIP() << "no public test data";
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  for (const char* name : {"BLK", "BLU", "FLAG_B24", "GRN", "RED", "TRU256", "WHT", "YEL"}) {
    test::RgbImage want;
    ASSERT_TRUE(test::PillowDecode(root + "reference/" + name + ".png", want)) << name;
    EXPECT_TRUE(test::ReadsAs(root + name + ".MSP", want)) << name;
  }
  for (const char* name : {"mandel", "mexhat1"}) {
    test::RgbImage want;
    ASSERT_TRUE(test::PillowDecode(root + "reference/" + name + ".png", want)) << name;
    EXPECT_TRUE(test::ReadsAs(root + name + ".msp", want)) << name;
  }
  // The version 1 sample has no reference: Pillow's reading is the judge. Its copy with a
  // checksum of zero is refused, by Pillow as well.
  test::RgbImage want;
  ASSERT_TRUE(test::PillowDecode(root + "hopper.msp", want));
  EXPECT_TRUE(test::ReadsAs(root + "hopper.msp", want));
  test::Picture p;
  EXPECT_EQ(test::ReadPicture(root + "hopper_bad_checksum.msp", p), kCorruptedFile);
  EXPECT_FALSE(test::PillowDecode(root + "hopper_bad_checksum.msp", want));
}

TEST(PaintOracle, GemTigerAsNetpbmFFmpegAndItsReference) {
  const std::string tiger = test::TestDataDir() + "/gem-img/tiger.img";
  if (!fs::exists(tiger)) GTEST_SKIP() << "no public test data";
  PXM_REQUIRE_ORACLE(test::HaveProgram("gemtopnm"), "netpbm");
  PXM_REQUIRE_ORACLE(test::HaveProgram("ffmpeg"), "ffmpeg");
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  for (const std::string& command : {"gemtopnm " + ShellQuote(tiger), FfmpegDecode(tiger)}) {
    test::RgbImage want;
    ASSERT_TRUE(test::DecodeWith(command, want)) << command;
    EXPECT_TRUE(test::ReadsAs(tiger, want)) << command;
  }
  // The reference is the picture stretched to square pixels (169 by 372 microns): 152 rows
  // become 335. Each of its rows is one of Pixmill's, the nearest to its centre or a neighbour.
  test::RgbImage stretched;
  ASSERT_TRUE(test::PillowDecode(test::TestDataDir() + "/gem-img/reference/tiger.png", stretched));
  test::Picture p;
  ASSERT_EQ(test::ReadPicture(tiger, p), kOk);
  ASSERT_EQ(stretched.width, p.width);
  const std::vector<Rgb> colours = test::Colours(p);
  auto row = [&](const std::vector<Rgb>& c, uint32_t y) {
    return std::vector<Rgb>(c.begin() + y * p.width, c.begin() + (y + 1) * p.width);
  };
  for (uint32_t y = 0; y < stretched.height; ++y) {
    const uint32_t k = (2 * y + 1) * uint32_t(p.depth) / (2 * stretched.height);
    bool found = false;
    for (uint32_t n = k == 0 ? 0 : k - 1; n <= k + 1 && n < uint32_t(p.depth); ++n)
      found = found || row(colours, n) == row(stretched.pixels, y);
    EXPECT_TRUE(found) << "reference row " << y;
  }
}

TEST(PaintOracle, MacPaintSampleBehindItsMacBinaryHeader) {
  const std::string sample = test::TestDataDir() + "/macpaint/header.mac";
  if (!fs::exists(sample)) GTEST_SKIP() << "no public test data";
  PXM_REQUIRE_ORACLE(test::HaveProgram("macptopbm"), "netpbm");
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  test::RgbImage want;
  ASSERT_TRUE(test::DecodeWith("macptopbm -extraskip 128 " + ShellQuote(sample), want));
  EXPECT_TRUE(test::ReadsAs(sample, want));
  ASSERT_TRUE(test::MagickDecode(sample, want));
  EXPECT_TRUE(test::ReadsAs(sample, want));
}

TEST(PaintOracle, SstvBothWaysWithImageMagick) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  test::TempDir dir;
  // ImageMagick writes the nearest six-bit level without a limit: 254 and 255 become 64, which
  // it reads back as black and Pixmill as white (D37). Below that both show the same.
  std::vector<Rgb> scene = test::Scene(256, 240, 0);
  for (Rgb& c : scene)
    for (uint8_t* v : {&c.red, &c.green, &c.blue}) *v = std::min<uint8_t>(*v, 253);
  scene[0] = Grey(255);
  test::WritePpm(dir / "scene.ppm", scene, 256, 240);
  ASSERT_TRUE(test::RunIn(dir.path(), test::kMagick + " scene.ppm HRZ:im.hrz"));
  ASSERT_EQ(test::ReadFileBytes(dir / "im.hrz").substr(0, 3), std::string(3, '\x40'));
  test::RgbImage want;
  ASSERT_TRUE(test::MagickDecode(dir / "im.hrz", want));
  EXPECT_EQ(want.pixels[0], Grey(0));
  want.pixels[0] = Grey(255);
  EXPECT_TRUE(test::ReadsAs(dir / "im.hrz", want));
  // Pixmill's file: ImageMagick shows what Pixmill reads back, the scene within two levels.
  ASSERT_EQ(test::WritePicture(test::PictureOf(scene, 256, 240, 24), dir / "px.hrz"), kOk);
  ASSERT_TRUE(test::MagickDecode(dir / "px.hrz", want));
  EXPECT_TRUE(test::ReadsAs(dir / "px.hrz", want));
  EXPECT_TRUE(test::SameColours(scene, 256, want, 3));
}

// A file Pixmill wrote at 4 or 8 planes, its XIMG palette taken out of the header.
std::string WithoutPalette(const std::string& file) {
  const auto* h = reinterpret_cast<const uint8_t*>(file.data());
  return file.substr(0, 2) + std::string{'\0', '\x08'} + file.substr(4, 12) +
         file.substr(2 * size_t{LoadBe16(h + 2)});
}

TEST(PaintDifferences, GemFilesWithoutAPalette) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("ffmpeg"), "ffmpeg");
  PXM_REQUIRE_ORACLE(test::HaveProgram("gemtopnm"), "netpbm");
  test::TempDir dir;
  // D38: eight planes are grey, white at 0 and black at 255; FFmpeg takes plane 0 for the
  // highest bit of its grey.
  test::Picture ramp = test::Picture::Blank(256, 1, 8);
  for (uint32_t x = 0; x < 256; ++x) ramp.SetPixel(x, 0, x);
  ASSERT_EQ(test::WritePicture(ramp, dir / "x8.img"), kOk);
  test::WriteFileBytes(dir / "g8.img", WithoutPalette(test::ReadFileBytes(dir / "x8.img")));
  test::Picture p;
  ASSERT_EQ(test::ReadPicture(dir / "g8.img", p), kOk);
  for (uint32_t v = 0; v < 256; ++v) EXPECT_EQ(p.Colour(v, 0), Grey(255 - int(v))) << v;
  test::RgbImage ffmpeg;
  ASSERT_TRUE(test::DecodeWith(FfmpegDecode(dir / "g8.img"), ffmpeg));
  EXPECT_EQ(ffmpeg.pixels[1], Grey(127));  // plane 0 set: the highest bit of the inverted grey
  // D39: four planes show the standard colours as FFmpeg does; netpbm shows half intensity as
  // 170 instead of 174, and shows the same colours for a file with an XIMG palette.
  test::Picture all = test::Picture::Blank(16, 1, 4);
  for (uint32_t x = 0; x < 16; ++x) all.SetPixel(x, 0, x);
  ASSERT_EQ(test::WritePicture(all, dir / "x4.img"), kOk);
  test::WriteFileBytes(dir / "s4.img", WithoutPalette(test::ReadFileBytes(dir / "x4.img")));
  ASSERT_TRUE(test::DecodeWith(FfmpegDecode(dir / "s4.img"), ffmpeg));
  EXPECT_TRUE(test::ReadsAs(dir / "s4.img", ffmpeg));
  test::RgbImage netpbm, netpbmXimg;
  ASSERT_TRUE(test::DecodeWith("gemtopnm " + ShellQuote(dir / "s4.img"), netpbm));
  ASSERT_TRUE(test::DecodeWith("gemtopnm " + ShellQuote(dir / "x4.img"), netpbmXimg));
  EXPECT_TRUE(test::ReadsAs(dir / "s4.img", netpbm, 4));
  EXPECT_FALSE(test::ReadsAs(dir / "s4.img", netpbm, 3));
  EXPECT_EQ(netpbmXimg.pixels, netpbm.pixels);
}

}  // namespace
}  // namespace pxm
