// FITS files against netpbm and ImageMagick, both ways. Where Pixmill deliberately differs from
// the public format, the difference is checked instead:
// | Files                      | Pixmill                                          | Checked in |
// |----------------------------|--------------------------------------------------|------------|
// | any                        | the first stored row is the top one (as netpbm); | here       |
// |                            | ImageMagick has the pictures upside down         |            |
// | three axes (colour)        | the first plane, as grey                         | here       |
// | BITPIX 16, 24, 32, -32, 64 | each size by its own rule                        | fits_test  |

#include "core/error_codes.h"
#include "core/row_format.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

std::vector<Rgb> Grey(const std::vector<Rgb>& scene, uint32_t width, bool upsideDown,
                      bool redOnly = false) {
  std::vector<Rgb> out(scene.size());
  for (size_t i = 0; i < scene.size(); ++i) {
    const Rgb& c = scene[i];
    auto v = static_cast<uint8_t>(redOnly ? c.red : Luminance(c.red, c.green, c.blue));
    const size_t y = i / width, rows = scene.size() / width;
    out[(upsideDown ? rows - 1 - y : y) * width + i % width] = Rgb{v, v, v};
  }
  return out;
}

TEST(FitsOracle, BothWays) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("pnmtofits") && test::HaveProgram("fitstopnm"), "netpbm");
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  test::TempDir dir;
  for (uint32_t width : {1u, 7u, 33u}) {
    SCOPED_TRACE(width);
    const std::vector<Rgb> scene = test::Scene(width, 5, 0);
    test::WritePpm(dir / "in.ppm", scene, width, 5);
    ASSERT_TRUE(
        test::RunIn(dir.path(), "ppmtopgm in.ppm | pnmtofits >g.fits; pnmtofits in.ppm >c.fits; " +
                                    test::kMagick + " in.ppm -colorspace Gray -depth 8 m.fits"));
    // netpbm's grey file as netpbm decodes it; its colour file shows the red plane; ImageMagick's
    // grey file comes out upside down.
    test::RgbImage netpbm, magick;
    ASSERT_TRUE(test::DecodeWith("fitstopnm " + dir / "g.fits", netpbm));
    ASSERT_TRUE(test::MagickDecode(dir / "m.fits", magick));
    test::Picture c, m;
    ASSERT_EQ(test::ReadPicture(dir / "c.fits", c) + test::ReadPicture(dir / "m.fits", m), kOk);
    EXPECT_TRUE(test::ReadsAs(dir / "g.fits", netpbm));
    EXPECT_EQ(test::Colours(c), Grey(scene, width, false, true));
    EXPECT_EQ(test::Colours(m), Grey(magick.pixels, width, true, true));
    // Pixmill's files of every depth, read back by both.
    for (auto [bits, colours] : {std::pair{4u, 16u}, {8u, 200u}, {24u, 0u}}) {
      const std::vector<Rgb> s = test::Scene(width, 5, colours);
      ASSERT_EQ(test::WritePicture(test::PictureOf(s, width, 5, bits), dir / "p.fit"), kOk);
      ASSERT_TRUE(test::DecodeWith("fitstopnm " + dir / "p.fit", netpbm));
      ASSERT_TRUE(test::MagickDecode(dir / "p.fit", magick));
      EXPECT_TRUE(test::SameImage(Grey(s, width, false), netpbm)) << bits;
      EXPECT_TRUE(test::SameImage(Grey(s, width, true), magick)) << bits;
    }
  }
}

}  // namespace
}  // namespace pxm
