// Sun raster files against netpbm and ImageMagick, both ways. Where Pixmill deliberately
// differs from the public format, the difference is checked instead:
// | Files                              | Pixmill                                | Checked in      |
// |------------------------------------|----------------------------------------|-----------------|
// | type 3 (ImageMagick's truecolour)  | run-length data: only pictures without | here            |
// |                                    | a byte 128 read as others read them    |                 |
// | runs crossing a row end (netpbm)   | cut at the row end: later rows slip    | here            |
// | 32-bit rows                        | squeezed by their own byte rule        | sun_raster_test |

#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::RgbImage;

TEST(SunRasterOracle, BothWays) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("pnmtorast") && test::HaveProgram("rasttopnm"), "netpbm");
  // ImageMagick's reader loses the last pixel of its own odd-width type-3 files, so netpbm
  // decodes every file. Random pictures seldom make a run that crosses a row end.
  const std::string im = test::kMagick + " in.ppm ";
  const std::pair<std::string, uint32_t> writers[] = {
      {"ppmtopgm in.ppm | pgmtopbm -threshold | pnmtorast -standard", 2},
      {"ppmtopgm in.ppm | pnmtorast -rle", 0},
      {"pnmtorast -standard in.ppm", 200},
      {"pnmtorast -rle in.ppm", 200},
      {"pnmtorast -rle in.ppm", 0},
      {im + "-type Palette SUN:-", 200},
      {im + "-type TrueColor SUN:-", 0}};
  test::TempDir dir;
  for (uint32_t width : {1u, 7u, 8u, 33u}) {
    for (const auto& [writer, colours] : writers) {
      std::vector<Rgb> scene = test::Scene(width, 4, colours);
      for (Rgb& c : scene)
        for (uint8_t* v : {&c.red, &c.green, &c.blue}) *v = *v == 128 ? 127 : *v;
      test::WritePpm(dir / "in.ppm", scene, width, 4);
      ASSERT_TRUE(test::RunIn(dir.path(), writer + " >out.ras")) << writer;
      RgbImage want;
      ASSERT_TRUE(test::DecodeWith("rasttopnm " + dir / "out.ras", want));
      EXPECT_TRUE(test::ReadsAs(dir / "out.ras", want)) << writer << ", width " << width;
    }
    for (auto [bits, colours] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 200u}, {24u, 0u}}) {
      const std::vector<Rgb> scene = test::Scene(width, 4, colours);
      ASSERT_EQ(test::WritePicture(test::PictureOf(scene, width, 4, bits), dir / "p.ras"), kOk);
      RgbImage magick, netpbm;
      ASSERT_TRUE(test::MagickDecode(dir / "p.ras", magick));
      ASSERT_TRUE(test::DecodeWith("rasttopnm " + dir / "p.ras", netpbm));
      EXPECT_TRUE(test::SameImage(scene, magick)) << bits << " bits, width " << width;
      EXPECT_TRUE(test::SameImage(scene, netpbm)) << bits << " bits, width " << width;
    }
  }
  // A flat picture is one run in netpbm's coding: Pixmill fills the first row and finds no more.
  test::WritePpm(dir / "in.ppm", std::vector<Rgb>(64 * 4, Rgb{9, 9, 9}), 64, 4);
  ASSERT_TRUE(test::RunIn(dir.path(), "ppmtopgm in.ppm | pnmtorast -rle >f.ras"));
  test::Picture p;
  EXPECT_NE(test::ReadPicture(dir / "f.ras", p), kOk);
}

}  // namespace
}  // namespace pxm
