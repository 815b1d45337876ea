#include "formats/sun_raster.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Be;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Header(uint32_t width, uint32_t height, uint32_t depth, uint32_t length, uint32_t type,
                   uint32_t mapType = 0, uint32_t mapLength = 0) {
  return Be(0x59A66A95, 4) + Be(width, 4) + Be(height, 4) + Be(depth, 4) + Be(length, 4) +
         Be(type, 4) + Be(mapType, 4) + Be(mapLength, 4);
}

TEST(SunWrite, HeadersMapsAndPaddedRows) {
  test::TempDir dir;
  // Seven pixels of one bit fill a byte padded to two; set bits are black in the file.
  test::Picture mono = test::Picture::Blank(7, 2, 1);
  for (uint32_t x = 0; x < 7; x += 2) mono.SetPixel(x, 0, 1);
  ASSERT_EQ(test::WritePicture(mono, dir / "m.ras"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "m.ras"),
            Header(7, 2, 1, 4, 1) + Raw({0x55, 0xFF, 0xFF, 0xFF}));
  // A 3-bit picture is written with depth 8 and a map of red, green and blue planes.
  test::Picture three = test::Pattern(3, 1, 3);
  ASSERT_EQ(test::WritePicture(three, dir / "t.ras"), kOk);
  const std::string t = test::ReadFileBytes(dir / "t.ras");
  EXPECT_EQ(t.substr(0, 32), Header(3, 1, 8, 4, 1, 1, 768));
  EXPECT_EQ(t.substr(800),
            Raw({int(three.Pixel(0, 0)), int(three.Pixel(1, 0)), int(three.Pixel(2, 0)), 0}));
  // 24 bits: blue, green, red, and the odd row padded.
  test::Picture rgb = test::Picture::Blank(3, 1, 24);
  for (uint32_t x = 0; x < 3; ++x) rgb.SetPixel(x, 0, 0x010203 * (x + 1));
  ASSERT_EQ(test::WritePicture(rgb, dir / "r.ras"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "r.ras"),
            Header(3, 1, 24, 10, 1) + Raw({3, 2, 1, 6, 4, 2, 9, 6, 3, 0}));
}

TEST(SunRead, LayoutsAndQuirks) {
  struct Case {
    const char* what;
    std::string file;
    Bytes row;  // the top row
    const char* description;
  };
  const Case cases[] = {
      // 128, 0 is one 128; 128, 4, 9 is five 9s, cut at the row end; the next row starts anew.
      {"escapes",
       Header(4, 2, 8, 0, 2) + Raw({128, 0, 128, 4, 9, 7, 128, 2, 5}),
       {128, 9, 9, 9},
       "Run length compressed bitmap"},
      {"swap", Header(1, 1, 24, 4, 1) + Raw({1, 2, 3, 0}), {3, 2, 1}, "Uncompressed bitmap"},
      // Type 3 is run-length data in red, green, blue order.
      {"type 3", Header(1, 1, 24, 4, 3) + Raw({1, 2, 3, 128, 0}), {1, 2, 3}, "RGB bitmap"},
      {"inverted", Header(10, 1, 1, 2, 1) + Raw({0x0F, 0x3F}), {0xF0, 0xC0}, "Uncompressed bitmap"},
      // 32 bits: the three bytes at 3i go to 4i for i = 1, 2; then blue and red swap.
      {"32 bits",
       Header(3, 1, 32, 12, 1) + Raw({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}),
       {3, 2, 1, 5, 4, 4, 6, 8, 6},
       "Uncompressed bitmap"},
      {"map",
       Header(2, 1, 8, 2, 1, 1, 6) + Raw({10, 20, 30, 40, 50, 60, 1, 0}),
       {1, 0},
       "Uncompressed bitmap"},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    test::Decoded d = test::DecodeBytes(dir, "s.ras", c.file);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.rows.at(0), c.row);
    EXPECT_EQ(d.info.description, c.description);
  }
  test::Decoded d = test::DecodeBytes(dir, "s.ras", cases[0].file);
  EXPECT_EQ(d.rows.at(1), (Bytes{7, 5, 5, 5}));
  d = test::DecodeBytes(dir, "s.ras", cases[5].file);
  EXPECT_EQ(d.info.palette[1], (Rgb{20, 40, 60}));
  EXPECT_EQ(d.info.palette[2], (Rgb{0, 0, 0}));
  EXPECT_EQ(
      test::DecodeBytes(dir, "s.ras", Header(1, 1, 8, 2, 1, 1, 0) + Raw({1, 0})).info.palette[77],
      (Rgb{77, 77, 77}));
  // Type 5 is described but not read.
  d = test::DecodeBytes(dir, "s.ras", Header(1, 1, 8, 2, 5) + Raw({1, 0}));
  EXPECT_EQ(d.info.description, "Unsupported compression type");
  EXPECT_EQ(d.readCode, kUnsupportedFormat);
}

TEST(SunRead, DamagedFiles) {
  test::TempDir dir;
  const std::string good = Header(3, 2, 8, 8, 1) + Raw({1, 2, 3, 0, 4, 5, 6, 0});
  auto info = [&](const std::string& bytes) {
    return test::DecodeBytes(dir, "s.ras", bytes).infoCode;
  };
  EXPECT_EQ(info(good.substr(0, 31)), kCorruptedFile);
  EXPECT_EQ(info(Raw({0x59, 0xA6, 0x6A, 0x96}) + good.substr(4)), kCorruptedFile);
  EXPECT_EQ(info(Header(3, 2, 16, 8, 1) + good.substr(32)), kCorruptedFile);  // no 16-bit layout
  EXPECT_EQ(info(good.substr(0, 39)), kCorruptedFile);  // rows the file cannot hold
  EXPECT_EQ(test::DecodeBytes(dir, "s.ras", Header(4, 2, 8, 0, 2) + Raw({128, 0, 128, 4})).readCode,
            kReadError);
}

}  // namespace
}  // namespace pxm
