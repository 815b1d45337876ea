// Targa files against ImageMagick, netpbm and Pillow, both ways. Where Pixmill deliberately
// differs from the public format, the difference is checked instead:
// | Files                              | Pixmill                                 | Checked in |
// |------------------------------------|-----------------------------------------|------------|
// | 15/16-bit pixels and map entries   | the first byte is the high byte         | targa_test |
// | right-to-left rows (descriptor 16) | the first `width` bytes are reversed    | targa_test |
// | written with CreateTarga16         | half a row of pixels, each then a zero  | here       |
// | written 1-bit pictures             | type 3, 1 bit a pixel (nobody reads it) | targa_test |

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::RgbImage;

TEST(TargaOracle, BothWays) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick) && test::HavePillow(), "ImageMagick, Pillow");
  PXM_REQUIRE_ORACLE(test::HaveProgram("pamtotga"), "netpbm");
  // ImageMagick stores the rows of its grey files top first under a bottom-first header (and
  // reads them back so), so Pillow decodes every file.
  const std::string im = test::kMagick + " in.ppm ";
  const std::pair<std::string, uint32_t> writers[] = {
      {im + "-compress None", 0},
      {im + "-compress RLE", 0},
      {im + "-type TrueColorAlpha", 0},
      {im + "-type Palette -orient TopLeft -compress RLE", 200},
      {im + "-type Grayscale", 0},
      {"pamtotga -cmap in.ppm >", 200},
      {"pamtotga -rgb -norle in.ppm >", 0},
      {"ppmtopgm in.ppm | pamtotga -mono >", 0}};
  test::TempDir dir;
  for (uint32_t width : {1u, 7u, 33u}) {
    for (const auto& [writer, colours] : writers) {
      test::WritePpm(dir / "in.ppm", test::Scene(width, 5, colours), width, 5);
      ASSERT_TRUE(test::RunIn(dir.path(), writer + " out.tga")) << writer;
      RgbImage want;
      ASSERT_TRUE(test::PillowDecode(dir / "out.tga", want));
      EXPECT_TRUE(test::ReadsAs(dir / "out.tga", want)) << writer << ", width " << width;
    }
    for (auto [bits, colours] : {std::pair{4u, 16u}, {8u, 200u}, {24u, 0u}}) {
      const std::vector<Rgb> scene = test::Scene(width, 5, colours);
      ASSERT_EQ(test::WritePicture(test::PictureOf(scene, width, 5, bits), dir / "p.tga"), kOk);
      RgbImage magick, netpbm;
      ASSERT_TRUE(test::MagickDecode(dir / "p.tga", magick));
      ASSERT_TRUE(test::DecodeWith("tgatoppm " + dir / "p.tga", netpbm));
      EXPECT_TRUE(test::SameImage(scene, magick)) << bits << " bits, width " << width;
      EXPECT_TRUE(test::SameImage(scene, netpbm)) << bits << " bits, width " << width;
    }
  }
  // CreateTarga16: a standard 16-bit file whose pixel 2k is Pixmill's pixel k cut to five bits a
  // channel (ImageMagick rounds where Pixmill truncates) and whose odd pixels are black.
  ScopedSettings settings;
  settings->CreateTarga16 = 1;
  const std::vector<Rgb> scene = test::Scene(8, 5, 0);
  ASSERT_EQ(test::WritePicture(test::PictureOf(scene, 8, 5, 24), dir / "s.tga"), kOk);
  std::vector<Rgb> expected;
  auto five = [](uint8_t v) { return static_cast<uint8_t>(v / 8 * 255 / 31); };
  for (uint32_t i = 0; i < 40; ++i) {
    const Rgb& c = scene[i / 8 * 8 + i % 8 / 2];
    expected.push_back(i % 2 ? Rgb{0, 0, 0} : Rgb{five(c.red), five(c.green), five(c.blue)});
  }
  RgbImage magick;
  ASSERT_TRUE(test::MagickDecode(dir / "s.tga", magick));
  EXPECT_TRUE(test::SameImage(expected, magick, 1));
}

}  // namespace
}  // namespace pxm
