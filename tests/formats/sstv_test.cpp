#include "formats/sstv.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Raw;
using Bytes = std::vector<uint8_t>;
constexpr size_t kFileBytes = 256 * 240 * 3;

TEST(HrzRead, SixBitSamples) {
  test::TempDir dir;
  std::string f(kFileBytes, '\0');
  f.replace(0, 6, Raw({63, 32, 1, 64, 200, 0}));
  f.replace(3 * 256 * 239 + 3 * 255, 3, Raw({10, 20, 30}));
  const test::Decoded d = test::DecodeBytes(dir, "s.hrz", f + "trailing bytes are ignored");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits), std::tuple(256u, 240, 24u));
  // Four steps a level; bytes beyond six bits are full intensity.
  EXPECT_EQ(Bytes(d.rows.at(0).begin(), d.rows.at(0).begin() + 6),
            (Bytes{252, 128, 4, 255, 255, 0}));
  EXPECT_EQ(d.Pixel(255, 239), 0x285078u);
  // No header: a shorter file is not a picture (the size rule's ~200-byte file too).
  EXPECT_EQ(test::DecodeBytes(dir, "s.hrz", f.substr(1)).infoCode, kCorruptedFile);
  EXPECT_EQ(test::DecodeBytes(dir, "s.hrz", f.substr(0, 200)).infoCode, kCorruptedFile);
}

TEST(HrzWrite, NearestLevelsAtTheOneSize) {
  test::TempDir dir;
  test::Picture rgb = test::Picture::Blank(256, 240, 24);
  rgb.SetPixel(0, 0, 0xFF8001);
  rgb.SetPixel(1, 0, 0x0205FD);
  ASSERT_EQ(test::WritePicture(rgb, dir / "w.hrz"), kOk);
  const std::string f = test::ReadFileBytes(dir / "w.hrz");
  ASSERT_EQ(f.size(), kFileBytes);
  EXPECT_EQ(f.substr(0, 6), Raw({63, 32, 0, 1, 1, 63}));
  // Palette pictures are written through their palette; six-bit levels come back as they were.
  test::Picture p = test::Pattern(256, 240, 8);
  for (Rgb& c : p.palette)
    c = Rgb{uint8_t(c.red & 0xFC), uint8_t(c.green & 0xFC), uint8_t(c.blue & 0xFC)};
  ASSERT_EQ(test::WritePicture(p, dir / "p.hrz"), kOk);
  test::Picture q;
  ASSERT_EQ(test::ReadPicture(dir / "p.hrz", q), kOk);
  EXPECT_EQ(test::Colours(q), test::Colours(p));
  EXPECT_EQ(test::WritePicture(test::Pattern(255, 240, 24), dir / "x.hrz"), kUnsuitableImage);
  EXPECT_EQ(test::WritePicture(test::Pattern(256, 241, 24), dir / "x.hrz"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
