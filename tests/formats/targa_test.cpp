#include "formats/targa.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/decoded.h"
#include "support/picture.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Be;
using test::Le;
using test::Pattern;
using test::Picture;
using test::Raw;
using Bytes = std::vector<uint8_t>;

// An 18-byte header; the identification field, colour map and data follow it.
std::string Header(int mapType, int type, int first, int length, int entrySize, int width,
                   int height, int pixelDepth, int descriptor, int idLength = 0) {
  return Raw({idLength, mapType, type}) + Le(first, 2) + Le(length, 2) + Raw({entrySize}) +
         Le(0, 4) + Le(width, 2) + Le(height, 2) + Raw({pixelDepth, descriptor});
}

test::Decoded DecodeBytes(const test::TempDir& dir, const std::string& bytes, int abortOn = 0) {
  test::WriteFileBytes(dir / "t.tga", bytes);
  return test::Decode(dir / "t.tga", abortOn);
}

TEST(TargaWrite, HeaderMapAndRowsOfEveryDepth) {
  struct Case {
    uint32_t bits;
    bool sixteen;
    std::string header;
    size_t mapBytes, rowBytes;
  };
  const Case cases[] = {
      {1, false, Header(0, 3, 0, 0, 0, 5, 3, 1, 32), 0, 1},
      {4, false, Header(1, 1, 0, 256, 24, 5, 3, 8, 32), 768, 5},
      {8, false, Header(1, 1, 0, 256, 24, 5, 3, 8, 32), 768, 5},
      {24, false, Header(0, 2, 0, 0, 0, 5, 3, 24, 32), 0, 15},
      {24, true, Header(0, 2, 0, 0, 0, 5, 3, 16, 32), 0, 10},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.bits << (c.sixteen ? " sixteen" : ""));
    ScopedSettings settings;
    settings->CreateTarga16 = c.sixteen;
    Picture p = Pattern(5, 3, c.bits);
    ASSERT_EQ(test::WritePicture(p, dir / "w.tga"), kOk);
    const std::string f = test::ReadFileBytes(dir / "w.tga");
    ASSERT_EQ(f.size(), 18 + c.mapBytes + 3 * c.rowBytes);
    EXPECT_EQ(f.substr(0, 18), c.header);
    for (size_t i = 0; i < c.mapBytes / 3; ++i) {
      const Rgb& e = p.palette[i];
      EXPECT_EQ(f.substr(18 + 3 * i, 3), Raw({e.blue, e.green, e.red})) << i;
    }
    // Top row first; one byte a pixel for every palette depth, B, G, R for truecolour.
    const size_t data = 18 + c.mapBytes;
    for (int32_t y = 0; y < 3; ++y) {
      const auto* row = reinterpret_cast<const uint8_t*>(&f[data + size_t(y) * c.rowBytes]);
      if (c.bits == 1) {
        EXPECT_EQ(row[0], p.rows[size_t(y)][0]);
      } else if (c.bits == 4 || c.bits == 8) {
        for (uint32_t x = 0; x < 5; ++x) EXPECT_EQ(row[x], p.Pixel(x, y));
      } else if (!c.sixteen) {
        for (uint32_t x = 0; x < 5; ++x)
          EXPECT_EQ((Rgb{row[3 * x + 2], row[3 * x + 1], row[3 * x]}), p.Colour(x, y));
      }
    }
  }
}

TEST(TargaWrite, SixteenBitRowsHoldTheFirstHalfOfThePixelsEachFollowedByZero) {
  ScopedSettings settings;
  settings->CreateTarga16 = 1;
  test::TempDir dir;
  Picture p = Picture::Blank(3, 1, 24);
  p.SetPixel(0, 0, 0xFF0000);  // 31 × 1024
  p.SetPixel(1, 0, 0x081018);  // 1 × 1024 + 2 × 32 + 3 = 0x0443
  p.SetPixel(2, 0, 0xFFFFFF);
  ASSERT_EQ(test::WritePicture(p, dir / "s.tga"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "s.tga").substr(18), Raw({0x00, 0x7C, 0, 0, 0x43, 0x04}));
}

TEST(TargaRead, SixteenBitValuesTakeTheirFirstByteAsTheHighByte) {
  test::TempDir dir;
  test::Decoded d = DecodeBytes(dir, Header(0, 2, 0, 0, 0, 3, 1, 16, 32) +
                                         Raw({0x7C, 0x00, 0x00, 0x7C, 0x14, 0xA5}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 24u);
  EXPECT_EQ(d.Pixel(0, 0), 0xFF0000u);  // 31 in bits 10-14
  // 0x007C: green 3 → 24, blue 28 → 230; 0x14A5: 5, 5, 5 → 41 each.
  EXPECT_EQ(d.Pixel(1, 0), 0x0018E6u);
  EXPECT_EQ(d.Pixel(2, 0), 0x292929u);
}

TEST(TargaRead, ColourMapFromItsFirstEntryAndTheReadersSkip) {
  test::TempDir dir;
  // First entry 2, length 10: eight 24-bit entries follow, then the pixels.
  std::string map;
  for (int k = 0; k < 8; ++k) map += Raw({k, 10 + k, 20 + k});
  test::Decoded d = DecodeBytes(dir, Header(1, 1, 2, 10, 24, 2, 1, 8, 32, 3) + "abc" + map +
                                         Raw({5, 9}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Uncompressed file");
  EXPECT_EQ(d.info.palette[0], (Rgb{0, 0, 0}));
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 255, 255}));
  for (int k = 0; k < 8; ++k)
    EXPECT_EQ(d.info.palette[size_t(2 + k)], (Rgb{uint8_t(20 + k), uint8_t(10 + k), uint8_t(k)}));
  EXPECT_EQ(d.rows.at(0), (Bytes{5, 9}));

  // 16- and 32-bit entries.
  d = DecodeBytes(dir, Header(1, 1, 0, 1, 16, 1, 1, 8, 32) + Raw({0x7C, 0x00, 0}));
  EXPECT_EQ(d.info.palette[0], (Rgb{255, 0, 0}));
  d = DecodeBytes(dir, Header(1, 1, 0, 1, 32, 1, 1, 8, 32) + Raw({1, 2, 3, 4, 0}));
  EXPECT_EQ(d.info.palette[0], (Rgb{3, 2, 1}));
}

TEST(TargaRead, RowOrderAndRightToLeft) {
  test::TempDir dir;
  const std::string rows = Raw({1, 2, 3, 4, 5, 6});
  struct Case {
    int descriptor;
    std::vector<int32_t> order;
    Bytes top;
  };
  for (const Case& c : {Case{0, {1, 0}, {4, 5, 6}}, Case{32, {0, 1}, {1, 2, 3}},
                        Case{48, {0, 1}, {3, 2, 1}}}) {
    SCOPED_TRACE(c.descriptor);
    test::Decoded d = DecodeBytes(dir, Header(0, 3, 0, 0, 0, 3, 2, 8, c.descriptor) + rows);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.background, 0u);
    EXPECT_EQ(d.info.palette[200], (Rgb{200, 200, 200}));  // grey without a map
    EXPECT_EQ(d.order, c.order);
    EXPECT_EQ(d.rows.at(0), c.top);
  }
  // Right to left reverses the first `width` bytes of a deeper row, not its pixels.
  test::Decoded d = DecodeBytes(dir, Header(0, 2, 0, 0, 0, 2, 1, 24, 48) + Raw({1, 2, 3, 4, 5, 6}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{2, 3, 1, 6, 5, 4}));
}

TEST(TargaRead, RunLengthPacketsRunOnAcrossRows) {
  test::TempDir dir;
  // A repeat of five 7s fills the first row and two pixels of the next; a literal 9 ends it.
  test::Decoded d = DecodeBytes(dir, Header(0, 11, 0, 0, 0, 3, 2, 8, 32) + Raw({0x84, 7, 0, 9}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Run length compressed file");
  EXPECT_EQ(d.rows.at(0), (Bytes{7, 7, 7}));
  EXPECT_EQ(d.rows.at(1), (Bytes{7, 7, 9}));

  // 32-bit values drop their fourth byte; a literal packet of two follows a repeat.
  d = DecodeBytes(dir, Header(0, 10, 0, 0, 0, 3, 1, 32, 32) +
                           Raw({0x80, 1, 2, 3, 4, 0x01, 5, 6, 7, 8, 9, 10, 11, 12}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{3, 2, 1, 7, 6, 5, 11, 10, 9}));
}

TEST(TargaRead, DamagedFilesAndAbort) {
  test::TempDir dir;
  const std::string good = Header(0, 3, 0, 0, 0, 3, 2, 8, 32) + Raw({1, 2, 3, 4, 5, 6});
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, 17)).infoCode, kCorruptedFile);
  EXPECT_EQ(DecodeBytes(dir, Raw({0, 0, 4}) + good.substr(3)).infoCode, kCorruptedFile);
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, 16) + Raw({40, 32}) + good.substr(18)).infoCode,
            kCorruptedFile);  // 40 bits a pixel
  // Uncompressed rows the file cannot hold are refused before a store is made for them.
  EXPECT_EQ(DecodeBytes(dir, good.substr(0, good.size() - 1)).infoCode, kCorruptedFile);
  // Packets that stop inside a row are a read error.
  test::Decoded cut = DecodeBytes(dir, Header(0, 11, 0, 0, 0, 3, 2, 8, 32) + Raw({0x84, 7, 0}));
  EXPECT_EQ(cut.infoCode, kOk);
  EXPECT_EQ(cut.readCode, kReadError);
  test::Decoded stopped = DecodeBytes(dir, good, 1);
  EXPECT_EQ(stopped.readCode, kCancelled);
  EXPECT_EQ(stopped.rows.size(), 1u);

  ImageInfo info;
  EXPECT_EQ(TargaInfo(info, dir / "missing.tga", 0), kOpenError);
  EXPECT_EQ(TargaRead(info, dir / "missing.tga"), kOpenError);
}

TEST(TargaRoundTrip, EveryDepthAtAwkwardSizes) {
  test::TempDir dir;
  for (uint32_t bits : {1u, 2u, 4u, 5u, 8u, 24u})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {33u, 17}}) {
      SCOPED_TRACE(testing::Message() << w << "x" << h << "x" << bits);
      Picture p = Pattern(w, h, bits, w + bits);
      ASSERT_EQ(test::WritePicture(p, dir / "r.tga"), kOk);
      Picture q;
      ImageInfo info;
      ASSERT_EQ(test::ReadPicture(dir / "r.tga", q, nullptr, &info), kOk);
      // Palette pictures come back as 8-bit ones with their colours.
      EXPECT_EQ(info.bits, bits == 1 ? 1u : bits == 24 ? 24u : 8u);
      EXPECT_EQ(info.fileName, "r.tga");
      EXPECT_EQ(info.fileSize, int32_t(std::filesystem::file_size(dir / "r.tga")));
      for (int32_t y = 0; y < h; ++y)
        for (uint32_t x = 0; x < w; ++x) ASSERT_EQ(q.Pixel(x, y), p.Pixel(x, y)) << x << "," << y;
      if (bits == 1) {
        EXPECT_EQ(q.palette[1], (Rgb{255, 255, 255}));
      } else if (bits < 24) {
        for (uint32_t i = 0; i < (1u << bits); ++i) EXPECT_EQ(q.palette[i], p.palette[i]) << i;
      }
    }

  // An abort from the source leaves no file.
  ImageInfo info;
  info.width = 4;
  info.depth = 4;
  info.bits = 8;
  info.getLine = [](std::span<uint8_t>, int32_t y) { return y == 2 ? 1 : 0; };
  EXPECT_EQ(TargaWrite(info, dir / "a.tga"), kCancelled);
  EXPECT_FALSE(std::filesystem::exists(dir / "a.tga"));
  EXPECT_EQ(TargaWrite(info, dir / "no/such/a.tga"), kCreateError);
}

}  // namespace
}  // namespace pxm
