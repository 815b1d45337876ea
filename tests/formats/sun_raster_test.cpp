#include "formats/sun_raster.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/picture.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Be;
using test::Pattern;
using test::Picture;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Header(uint32_t width, uint32_t height, uint32_t depth, uint32_t length, uint32_t type,
                   uint32_t mapType, uint32_t mapLength) {
  return Be(0x59A66A95, 4) + Be(width, 4) + Be(height, 4) + Be(depth, 4) + Be(length, 4) +
         Be(type, 4) + Be(mapType, 4) + Be(mapLength, 4);
}

test::Decoded DecodeBytes(const test::TempDir& dir, const std::string& bytes, int abortOn = 0) {
  test::WriteFileBytes(dir / "s.ras", bytes);
  return test::Decode(dir / "s.ras", abortOn);
}

TEST(SunWrite, HeadersMapsAndPaddedRows) {
  test::TempDir dir;
  // Seven pixels of one bit take one byte, padded to two; set bits are black in the file.
  Picture mono = Picture::Blank(7, 2, 1);
  for (uint32_t x = 0; x < 7; x += 2) mono.SetPixel(x, 0, 1);
  ASSERT_EQ(test::WritePicture(mono, dir / "m.ras"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "m.ras"),
            Header(7, 2, 1, 4, 1, 0, 0) + Raw({0x55, 0xFF, 0xFF, 0xFF}));

  // A 3-bit picture is written with depth 8 and a 768-byte map of red, green and blue planes.
  Picture three = Pattern(3, 1, 3);
  ASSERT_EQ(test::WritePicture(three, dir / "t.ras"), kOk);
  const std::string t = test::ReadFileBytes(dir / "t.ras");
  ASSERT_EQ(t.size(), 32u + 768u + 4u);
  EXPECT_EQ(t.substr(0, 32), Header(3, 1, 8, 4, 1, 1, 768));
  for (size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(uint8_t(t[32 + i]), three.palette[i].red);
    EXPECT_EQ(uint8_t(t[32 + 256 + i]), three.palette[i].green);
    EXPECT_EQ(uint8_t(t[32 + 512 + i]), three.palette[i].blue);
  }
  EXPECT_EQ(t.substr(800), Raw({int(three.Pixel(0, 0)), int(three.Pixel(1, 0)),
                                int(three.Pixel(2, 0)), 0}));

  // 24 bits: blue, green, red, and the odd row padded.
  Picture rgb = Picture::Blank(5, 1, 24);
  for (uint32_t x = 0; x < 5; ++x) rgb.SetPixel(x, 0, 0x010203 * (x + 1));
  ASSERT_EQ(test::WritePicture(rgb, dir / "r.ras"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "r.ras"),
            Header(5, 1, 24, 16, 1, 0, 0) +
                Raw({3, 2, 1, 6, 4, 2, 9, 6, 3, 12, 8, 4, 15, 10, 5, 0}));
}

TEST(SunRead, RunLengthEscapesAndRunsCutAtTheRowEnd) {
  test::TempDir dir;
  // 128, 0 is one byte 128; 128, 4, 9 five 9s, of which two pass the row end and are dropped.
  test::Decoded d = DecodeBytes(dir, Header(4, 2, 8, 0, 2, 1, 0) +
                                         Raw({128, 0, 128, 4, 9, 7, 128, 2, 5}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Run length compressed bitmap");
  EXPECT_EQ(d.info.palette[77], (Rgb{77, 77, 77}));  // a map type of 1 with no entries
  EXPECT_EQ(d.rows.at(0), (Bytes{128, 9, 9, 9}));
  EXPECT_EQ(d.rows.at(1), (Bytes{7, 5, 5, 5}));
  EXPECT_EQ(d.order, (std::vector<int32_t>{0, 1}));

  // Data ending inside a row.
  test::Decoded cut = DecodeBytes(dir, Header(4, 2, 8, 0, 2, 0, 0) + Raw({128, 0, 128, 4}));
  EXPECT_EQ(cut.infoCode, kOk);
  EXPECT_EQ(cut.readCode, kReadError);
}

TEST(SunRead, TypesDepthsAndMaps) {
  test::TempDir dir;
  // A standard file swaps blue and red; a type-3 file is run-length data in red, green, blue.
  test::Decoded d = DecodeBytes(dir, Header(1, 1, 24, 4, 1, 0, 0) + Raw({1, 2, 3, 0}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Uncompressed bitmap");
  EXPECT_EQ(d.Pixel(0, 0), 0x030201u);
  d = DecodeBytes(dir, Header(1, 1, 24, 4, 3, 0, 0) + Raw({1, 2, 3, 128, 0}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "RGB bitmap");
  EXPECT_EQ(d.Pixel(0, 0), 0x010203u);

  // Type 5: described, not read.
  d = DecodeBytes(dir, Header(1, 1, 8, 2, 5, 0, 0) + Raw({1, 0}));
  EXPECT_EQ(d.infoCode, kOk);
  EXPECT_EQ(d.info.description, "Unsupported compression type");
  EXPECT_EQ(d.readCode, kUnsupportedFormat);

  // Planes of two entries each; the rest of the palette is black. One-bit rows are inverted.
  d = DecodeBytes(dir, Header(2, 1, 8, 2, 1, 1, 6) + Raw({10, 20, 30, 40, 50, 60, 1, 0}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.palette[0], (Rgb{10, 30, 50}));
  EXPECT_EQ(d.info.palette[1], (Rgb{20, 40, 60}));
  EXPECT_EQ(d.info.palette[2], (Rgb{0, 0, 0}));
  EXPECT_EQ(d.rows.at(0), (Bytes{1, 0}));
  d = DecodeBytes(dir, Header(10, 1, 1, 2, 1, 0, 0) + Raw({0x0F, 0x3F}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 255, 255}));
  EXPECT_EQ(d.rows.at(0), (Bytes{0xF0, 0xC0}));

  // 32 bits: three bytes at 3i are copied to 4i for i = 1, 2, then blue and red are swapped.
  d = DecodeBytes(dir, Header(3, 1, 32, 12, 1, 0, 0) + Raw({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 24u);
  EXPECT_EQ(d.rows.at(0), (Bytes{3, 2, 1, 5, 4, 4, 6, 8, 6}));
}

TEST(SunRead, DamagedFilesAndAbort) {
  test::TempDir dir;
  const std::string good = Header(3, 2, 8, 8, 1, 0, 0) + Raw({1, 2, 3, 0, 4, 5, 6, 0});
  EXPECT_EQ(DecodeBytes(dir, good).readCode, kOk);
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, 31)).infoCode, kCorruptedFile);
  EXPECT_EQ(DecodeBytes(dir, Raw({0x59, 0xA6, 0x6A, 0x96}) + good.substr(4)).infoCode,
            kCorruptedFile);
  EXPECT_EQ(DecodeBytes(dir, Header(3, 2, 16, 8, 1, 0, 0) + good.substr(32)).infoCode,
            kCorruptedFile);  // no layout for 16 bits
  // Rows the file cannot hold are refused before a store is made for them.
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, 39)).infoCode, kCorruptedFile);
  EXPECT_EQ(DecodeBytes(dir, Header(3, 2, 8, 8, 1, 1, 768) + good.substr(32)).infoCode,
            kCorruptedFile);
  test::Decoded stopped = DecodeBytes(dir, good, 1);
  EXPECT_EQ(stopped.readCode, kCancelled);
  EXPECT_EQ(stopped.rows.size(), 1u);

  ImageInfo info;
  EXPECT_EQ(SunInfo(info, dir / "missing.ras", 0), kOpenError);
  EXPECT_EQ(SunRead(info, dir / "missing.ras"), kOpenError);
}

TEST(SunRoundTrip, EveryDepthAtAwkwardSizes) {
  test::TempDir dir;
  for (uint32_t bits : {1u, 3u, 4u, 8u, 24u})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {33u, 17}}) {
      SCOPED_TRACE(testing::Message() << w << "x" << h << "x" << bits);
      Picture p = Pattern(w, h, bits, w + bits);
      ASSERT_EQ(test::WritePicture(p, dir / "r.ras"), kOk);
      Picture q;
      ImageInfo info;
      ASSERT_EQ(test::ReadPicture(dir / "r.ras", q, nullptr, &info), kOk);
      EXPECT_EQ(info.bits, bits == 1 ? 1u : bits == 24 ? 24u : 8u);
      EXPECT_EQ(info.fileSize, int32_t(std::filesystem::file_size(dir / "r.ras")));
      for (int32_t y = 0; y < h; ++y)
        for (uint32_t x = 0; x < w; ++x) ASSERT_EQ(q.Pixel(x, y), p.Pixel(x, y)) << x << "," << y;
      if (bits > 1 && bits < 24) {
        for (uint32_t i = 0; i < (1u << bits); ++i) EXPECT_EQ(q.palette[i], p.palette[i]) << i;
      }
    }

  ImageInfo info;
  info.width = 4;
  info.depth = 4;
  info.bits = 24;
  info.getLine = [](std::span<uint8_t>, int32_t y) { return y == 1 ? 1 : 0; };
  EXPECT_EQ(SunWrite(info, dir / "a.ras"), kCancelled);
  EXPECT_FALSE(std::filesystem::exists(dir / "a.ras"));
  EXPECT_EQ(SunWrite(info, dir / "no/such/a.ras"), kCreateError);
}

}  // namespace
}  // namespace pxm
