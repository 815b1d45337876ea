#include "formats/corel_paint.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;

// A version 7-and-later header: the signature, the colour model, one block whose table sits
// right after the header, and that block's width, height, 64-pixel tiles and bits; `length`
// pads the file with the tiles' place.
std::string TiledFile(char version, uint32_t model, uint32_t width, uint32_t height,
                      size_t length = 4096) {
  std::string f = std::string("CPT") + version + "FILE" + Le(model, 4) + std::string(0x1C, '\0') +
                  Le(1, 4) + Le(0x10000, 4) + Le(0x9400, 4) + Le(0x13C, 4);
  f.resize(0x13C, '\0');
  f += Le(0x144, 4) + Le(0, 4) + Le(width, 4) + Le(height, 4) + Le(64, 4) + Le(64, 4) + Le(24, 4);
  f.resize(length, '\0');
  return f;
}

TEST(CorelPaint, TiffFilesOfVersionSixReadAsTiff) {
  test::TempDir dir;
  const test::Picture p = test::Pattern(11, 6, 8);
  ASSERT_EQ(test::WritePicture(p, dir / "p.tif"), kOk);
  const test::Decoded d = test::DecodeBytes(dir, "p.cpt", test::ReadFileBytes(dir / "p.tif"));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description.rfind("PHOTO-PAINT 6 (TIFF)", 0), 0u) << d.info.description;
  for (int32_t y = 0; y < p.depth; ++y)
    for (uint32_t x = 0; x < p.width; ++x) ASSERT_EQ(d.info.palette[d.Pixel(x, y)], p.Colour(x, y));
}

TEST(CorelPaint, LaterVersionsAreDescribedButNotRead) {
  struct Case {
    char version;
    uint32_t model;
    uint32_t bits;
    const char* description;
  };
  const Case cases[] = {{'9', 1, 24, "PHOTO-PAINT 9, RGB 24 bits, tiles not read"},
                        {'7', 5, 8, "PHOTO-PAINT 7, grey 8 bits, tiles not read"},
                        {'8', 6, 1, "PHOTO-PAINT 8, black and white, tiles not read"},
                        {'9', 3, 24, "PHOTO-PAINT 9, CMYK 32 bits, tiles not read"}};
  test::TempDir dir;
  for (const Case& c : cases) {
    const test::Decoded d =
        test::DecodeBytes(dir, "p.cpt", TiledFile(c.version, c.model, 300, 200));
    ASSERT_EQ(d.infoCode, kOk) << c.description;
    EXPECT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits), std::tuple(300u, 200, c.bits));
    EXPECT_EQ(d.info.description, c.description);
    EXPECT_EQ(d.readCode, kUnsupportedFunction);
  }
}

TEST(CorelPaint, DamagedAndForeignFiles) {
  test::TempDir dir;
  const std::string good = TiledFile('9', 1, 300, 200);
  std::string lostTable = good;
  lostTable.replace(0x34, 4, Le(90000, 4));
  struct Case {
    const char* what;
    std::string file;
  };
  const Case cases[] = {
      {"a Compact Pro archive", "\x01\x01" + std::string(400, '\0')},
      {"unknown colour model", TiledFile('9', 2, 300, 200)},
      {"block table past the end", lostTable},
      {"header cut short", good.substr(0, 0x100)},
      {"65535 x 65535 at 24 bits in 400 bytes", TiledFile('9', 1, 65535, 65535, 400)},
      {"no rows", TiledFile('7', 1, 300, 0)},
  };
  for (const Case& c : cases)
    EXPECT_EQ(test::DecodeBytes(dir, "p.cpt", c.file).infoCode, kCorruptedFile) << c.what;
}

}  // namespace
}  // namespace pxm
