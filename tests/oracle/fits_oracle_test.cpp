// FITS files against other programs: files written by netpbm and ImageMagick read by Pixmill,
// Pixmill's files read back by them, and the public FITS samples.
//
// Where Pixmill deliberately differs from the public format, the difference is checked:
// | Files                          | Pixmill                                  | Why            |
// |--------------------------------|------------------------------------------|----------------|
// | any                            | the first stored row is the top row, as  | kept behaviour |
// |                                | netpbm has it; ImageMagick puts it at    |                |
// |                                | the bottom, so its pictures come out     |                |
// |                                | upside down                              |                |
// | three axes (colour)            | the first plane only, as grey            | kept behaviour |
// | BITPIX 16, 24, 32, -32, 64     | each size by its own rule (halved, a     | kept behaviour |
// |                                | 4-byte step for 16 bits, ...), checked   |                |
// |                                | by bytes in fits_test                    |                |

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/error_codes.h"
#include "core/row_format.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::kMagick;
using test::RgbImage;

const uint32_t kWidths[] = {1, 7, 33};
constexpr uint32_t kHeight = 5;

std::vector<Rgb> Grey(const std::vector<Rgb>& scene) {
  std::vector<Rgb> out;
  for (const Rgb& c : scene) {
    auto v = static_cast<uint8_t>(Luminance(c.red, c.green, c.blue));
    out.push_back(Rgb{v, v, v});
  }
  return out;
}

std::vector<Rgb> UpsideDown(const std::vector<Rgb>& pixels, uint32_t width) {
  std::vector<Rgb> out;
  for (size_t y = pixels.size() / width; y-- > 0;)
    out.insert(out.end(), pixels.begin() + y * width, pixels.begin() + (y + 1) * width);
  return out;
}

std::vector<Rgb> PixmillColours(const std::string& path) {
  test::Picture p;
  EXPECT_EQ(test::ReadPicture(path, p), kOk);
  return test::Colours(p);
}

TEST(FitsOracle, NetpbmFilesReadAsNetpbmDecodesThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("pnmtofits") && test::HaveProgram("fitstopnm"), "netpbm");
  test::TempDir dir;
  for (uint32_t width : kWidths) {
    SCOPED_TRACE(width);
    const std::vector<Rgb> scene = test::Scene(width, kHeight, 0);
    test::WritePpm(dir / "in.ppm", scene, width, kHeight);
    ASSERT_EQ(test::Run("ppmtopgm " + test::ShellQuote(dir / "in.ppm") + " | pnmtofits >" +
                        test::ShellQuote(dir / "g.fits") + " 2>/dev/null"),
              0);
    RgbImage want;
    ASSERT_TRUE(test::DecodeCommand("fitstopnm " + test::ShellQuote(dir / "g.fits"), want));
    EXPECT_TRUE(test::ReadsAs(dir / "g.fits", want));

    // A colour picture has three planes: Pixmill shows the first, red, as grey.
    ASSERT_EQ(test::Run("pnmtofits " + test::ShellQuote(dir / "in.ppm") + " >" +
                        test::ShellQuote(dir / "c.fits") + " 2>/dev/null"),
              0);
    std::vector<Rgb> red;
    for (const Rgb& c : scene) red.push_back(Rgb{c.red, c.red, c.red});
    EXPECT_EQ(PixmillColours(dir / "c.fits"), red);
  }
}

TEST(FitsOracle, ImageMagickFilesReadUpsideDown) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  test::TempDir dir;
  for (uint32_t width : kWidths) {
    SCOPED_TRACE(width);
    const std::vector<Rgb> scene = test::Scene(width, kHeight, 256, true);
    test::WritePpm(dir / "in.ppm", scene, width, kHeight);
    ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(dir / "in.ppm") +
                        " -colorspace Gray -depth 8 " + test::ShellQuote(dir / "m.fits")),
              0);
    RgbImage magick;
    ASSERT_TRUE(test::MagickDecode(dir / "m.fits", magick));
    EXPECT_TRUE(test::SameImage(scene, magick, width, kHeight));
    EXPECT_EQ(PixmillColours(dir / "m.fits"), UpsideDown(scene, width));
  }
}

TEST(FitsOracle, PixmillFilesReadBackByNetpbmAndImageMagick) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("fitstopnm"), "netpbm");
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  test::TempDir dir;
  for (auto [bits, colours] : {std::pair{4u, 16u}, {8u, 200u}, {24u, 0u}})
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      const std::vector<Rgb> scene = test::Scene(width, kHeight, colours);
      ASSERT_EQ(test::WritePicture(test::PictureOf(scene, width, kHeight, bits), dir / "p.fit"),
                kOk);
      RgbImage netpbm, magick;
      ASSERT_TRUE(test::DecodeCommand("fitstopnm " + test::ShellQuote(dir / "p.fit"), netpbm));
      ASSERT_TRUE(test::MagickDecode(dir / "p.fit", magick));
      EXPECT_TRUE(test::SameImage(Grey(scene), netpbm, width, kHeight));
      EXPECT_TRUE(test::SameImage(UpsideDown(Grey(scene), width), magick, width, kHeight));
    }
}

TEST(FitsOracle, PublicSamples) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test suites";
  PXM_REQUIRE_ORACLE(test::HaveProgram("fitstopnm"), "netpbm");
  RgbImage want;
  ASSERT_TRUE(test::DecodeCommand("fitstopnm " + root + "/fits/pillow/hopper.fits", want));
  EXPECT_TRUE(test::ReadsAs(root + "/fits/pillow/hopper.fits", want));
  // The other sizes are read by Pixmill's own rules; a primary header without axes holds no
  // picture.
  for (const char* file : {"1904-66_AZP.fits", "arange.fits", "blank.fits", "checksum.fits",
                           "fixed-1890.fits", "m13.fits", "scale.fits"}) {
    SCOPED_TRACE(file);
    test::Picture p;
    EXPECT_EQ(test::ReadPicture(root + "/fits/astropy/" + file, p), kOk);
  }
  test::Picture p;
  EXPECT_EQ(test::ReadPicture(root + "/fits/astropy/o4sp040b0_raw.fits", p), kNoBitmap);
}

}  // namespace
}  // namespace pxm
