// IFF files against netpbm, both ways (ImageMagick and GraphicsMagick have no IFF coder here).
// Where Pixmill deliberately differs from the public format, the difference is checked instead:
// | Files                       | Pixmill                                        | Checked in |
// |-----------------------------|------------------------------------------------|------------|
// | widths not a multiple of 16 | plane rows not padded to 16 bits, either way   | here       |
// | one plane                   | always black and white                         | iff_test   |

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

TEST(IffOracle, BothWays) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("ppmtoilbm") && test::HaveProgram("ilbmtoppm"), "netpbm");
  test::TempDir dir;
  test::RgbImage want;
  for (const char* coding : {"-compress", "-nocompress"})
    for (auto [planes, colours] :
         {std::pair{"", 2u}, {"", 16u}, {"-maxplanes 8", 200u}, {"-24force", 0u}}) {
      test::WritePpm(dir / "in.ppm", test::Scene(48, 4, colours), 48, 4);
      ASSERT_TRUE(test::RunIn(
          dir.path(), "ppmtoilbm " + std::string(coding) + " " + planes + " in.ppm >n.iff"));
      ASSERT_TRUE(test::DecodeWith("ilbmtoppm " + dir / "n.iff", want));
      EXPECT_TRUE(test::ReadsAs(dir / "n.iff", want)) << coding << " " << colours;
    }
  for (int mode = 0; mode < 4; ++mode)  // compressed or not, PBM or not
    for (auto [bits, colours] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 200u}, {24u, 0u}}) {
      ScopedSettings settings;
      settings->CreateIffCompressed = mode & 1;
      settings->CreateIffPBM = mode >> 1;
      const std::vector<Rgb> scene = test::Scene(48, 4, colours);
      ASSERT_EQ(test::WritePicture(test::PictureOf(scene, 48, 4, bits), dir / "p.iff"), kOk);
      ASSERT_TRUE(test::DecodeWith("ilbmtoppm " + dir / "p.iff", want));
      EXPECT_TRUE(test::SameImage(scene, want)) << bits << " bits, mode " << mode;
    }

  // netpbm pads a 20-pixel plane row to 4 bytes; Pixmill reads 3-byte rows from the same body,
  // and netpbm takes Pixmill's 3-byte rows for 4-byte ones.
  const std::vector<Rgb> scene = test::Scene(20, 4, 2);
  test::WritePpm(dir / "in.ppm", scene, 20, 4);
  ASSERT_TRUE(test::RunIn(dir.path(), "ppmtoilbm -nocompress in.ppm >n.iff"));
  const std::string f = test::ReadFileBytes(dir / "n.iff");
  test::Picture p;
  ASSERT_EQ(test::ReadPicture(dir / "n.iff", p), kOk);
  for (size_t y = 0; y < 4; ++y)
    EXPECT_EQ(std::string(p.rows[y].begin(), p.rows[y].begin() + 3),
              f.substr(f.find("BODY") + 8 + 3 * y, 3));
  ASSERT_EQ(test::WritePicture(test::PictureOf(scene, 20, 4, 1), dir / "p.iff"), kOk);
  EXPECT_FALSE(test::DecodeWith("ilbmtoppm " + dir / "p.iff", want) &&
               test::SameImage(scene, want));
}

}  // namespace
}  // namespace pxm
