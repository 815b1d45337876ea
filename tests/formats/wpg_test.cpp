#include "formats/wpg.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "formats/pc_palettes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;
using test::Raw;
using Bytes = std::vector<uint8_t>;
using Codes = std::pair<int, int>;

std::string Prefix(int version, int encryption = 0, int fileType = 0x16) {
  return Raw({0xFF, 'W', 'P', 'C'}) + Le(16, 4) + Raw({1, fileType, version, 0}) +
         Le(uint32_t(encryption), 2) + Le(0, 2);
}
std::string Length(size_t n) {
  return n < 0xFF ? Raw({int(n)}) : "\xFF" + Le(uint32_t(n), 2);
}
std::string Rec1(int type, const std::string& data) {
  return Raw({type}) + Length(data.size()) + data;
}
std::string Rec2(int type, const std::string& data) {
  return Raw({1, type, 0}) + Length(data.size()) + data;
}
std::string Bitmap1(uint32_t w, uint32_t h, uint32_t depth, const std::string& data) {
  return Rec1(0x0B, Le(w, 2) + Le(h, 2) + Le(depth, 2) + Le(75, 2) + Le(75, 2) + data);
}
std::string Bitmap2(uint32_t w, uint32_t h, int code, int packed, const std::string& data) {
  return Rec2(0x0E, Le(w, 2) + Le(h, 2) + Raw({code, packed}) + data);
}
std::string Wpg1(const std::string& records) {
  return Prefix(1) + Rec1(0x0F, Raw({1, 0}) + Le(0, 4)) + records + Rec1(0x10, "");
}
std::string Wpg2(const std::string& records) {
  return Prefix(2) + records + Rec2(0x02, "");
}

TEST(WpgRead, BitmapRecordsOfBothVersions) {
  struct Case {
    const char* what;
    std::string file;
    uint32_t bits;
    Bytes top, bottom;
  };
  const std::string map = Rec1(0x0E, Le(1, 2) + Le(2, 2) + Raw({10, 20, 30, 40, 50, 60}));
  const Case cases[] = {
      // Three bytes as they are; the row twice more; three bytes of 0xFF.
      {"version 1",
       Wpg1(map + Bitmap1(3, 4, 8, Raw({3, 1, 2, 3, 0, 2, 0x80, 3}))),
       8,
       {1, 2, 3},
       {255, 255, 255}},
      {"a run into the next row", Wpg1(Bitmap1(3, 2, 8, Raw({0x86, 5}))), 8, {5, 5, 5}, {5, 5, 5}},
      {"placed bitmap, the first of two",
       Wpg1(Rec1(0x14, std::string(10, '\0') + Le(2, 2) + Le(1, 2) + Le(8, 2) + Le(0, 4) +
                           Raw({2, 7, 8})) +
            Bitmap1(5, 5, 8, "")),
       8,
       {7, 8},
       {7, 8}},
      {"two bits", Wpg1(Bitmap1(4, 1, 2, Raw({1, 0x1B}))), 2, {0x01, 0x23, 0, 0}, {}},
      {"one bit", Wpg1(Bitmap1(9, 1, 1, Raw({2, 0x5A, 0x80}))), 1, {0x5A, 0x80}, {}},
      // A repeated sample, two as they are, then the row once more.
      {"version 2",
       Wpg2(Bitmap2(4, 2, 4, 1, Raw({0x81, 9, 0x01, 1, 2, 0xFE, 0}))),
       8,
       {9, 9, 1, 2},
       {9, 9, 1, 2}},
      // Samples of three bytes: one repeated twice, then twice again.
      {"version 2, 24 bits",
       Wpg2(Bitmap2(2, 2, 8, 1, Raw({0x7D, 3, 0x81, 10, 20, 30, 0xFD, 1}))),
       24,
       {10, 20, 30, 10, 20, 30},
       {10, 20, 30, 10, 20, 30}},
      {"version 2, stored",
       Wpg2(Bitmap2(2, 1, 8, 0, Raw({10, 20, 30, 40, 50, 60}))),
       24,
       {10, 20, 30, 40, 50, 60},
       {}},
      {"version 2, zero and 0xFF samples",
       Wpg2(Bitmap2(8, 1, 4, 1, Raw({0x7F, 3, 0xFF, 3}))),
       8,
       {0, 0, 0, 0, 255, 255, 255, 255},
       {}},
      {"version 2, 4 bits",
       Wpg2(Bitmap2(4, 1, 3, 1, Raw({0x81, 0x12}))),
       4,
       {0x12, 0x12, 0, 0},
       {}},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const test::Decoded d = test::DecodeBytes(dir, "g.wpg", c.file);
    ASSERT_EQ(d.infoCode, kOk);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.bits, c.bits);
    EXPECT_EQ(d.rows.at(0), c.top);
    if (!c.bottom.empty()) {
      EXPECT_EQ(d.rows.at(d.info.depth - 1), c.bottom);
    }
  }
  // Colour maps: version 1 entries of three bytes from their first index; version 2 entries of
  // four. Without one, one bit is black and white and the rest take the VGA's colours.
  Palette p = test::DecodeBytes(dir, "g.wpg", cases[0].file).info.palette;
  EXPECT_EQ(p[2], (Rgb{40, 50, 60}));
  EXPECT_EQ(p[0], VgaDefaultPalette()[0]);
  p = test::DecodeBytes(dir, "g.wpg",
                        Wpg2(Rec2(0x0C, Le(0, 2) + Le(2, 2) + Raw({1, 2, 3, 255, 4, 5, 6, 255})) +
                             Bitmap2(1, 1, 4, 0, Raw({1}))))
          .info.palette;
  EXPECT_EQ(p[1], (Rgb{4, 5, 6}));
  p = test::DecodeBytes(dir, "g.wpg", cases[4].file).info.palette;
  EXPECT_EQ(p[1], (Rgb{255, 255, 255}));
  p = test::DecodeBytes(dir, "g.wpg", cases[1].file).info.palette;
  EXPECT_EQ(p[1], (Rgb{0, 0, 168}));
  EXPECT_EQ(p[31], (Rgb{252, 252, 252}));
  EXPECT_EQ(p[32], (Rgb{0, 0, 252}));
  EXPECT_EQ(p[96], (Rgb{180, 252, 180}));
  EXPECT_EQ(p[255], (Rgb{0, 0, 0}));
}

TEST(WpgRead, DamagedAndUnreadableFiles) {
  test::TempDir dir;
  auto codes = [&](const std::string& bytes) {
    const test::Decoded d = test::DecodeBytes(dir, "g.wpg", bytes);
    return std::pair(d.infoCode, d.readCode);
  };
  const std::string bitmap = Bitmap1(3, 1, 8, Raw({3, 1, 2, 3}));
  EXPECT_EQ(codes("\xFFWPD" + Wpg1(bitmap).substr(4)).first, kCorruptedFile);
  EXPECT_EQ(codes(Prefix(1, 0, 0x17) + bitmap).first, kCorruptedFile);
  EXPECT_EQ(codes(Prefix(3) + bitmap).first, kUnsupportedFormat);
  EXPECT_EQ(codes(Prefix(1, 0x1234) + bitmap).first, kUnsupportedFormat);
  EXPECT_EQ(codes(Wpg1(Rec1(0x11, "%!PS"))).first, kNoBitmap);
  EXPECT_EQ(codes(Wpg1(Bitmap1(3, 1, 3, ""))).first, kUnsupportedFormat);
  EXPECT_EQ(codes(Wpg2(Bitmap2(3, 1, 5, 1, ""))).first, kUnsupportedFormat);
  EXPECT_EQ(codes(Wpg1(Rec1(0x0E, Le(0, 2) + Le(9, 2)) + "\x0B\xFF\x10")).first, kCorruptedFile);
  // Data ending early; a row repeat in the middle of a row; the XOR code.
  EXPECT_EQ(codes(Wpg1(Bitmap1(3, 2, 8, Raw({3, 1, 2, 3})))), Codes(kOk, kReadError));
  EXPECT_EQ(codes(Wpg1(Bitmap1(3, 2, 8, Raw({1, 5, 0, 1})))), Codes(kOk, kCorruptedFile));
  EXPECT_EQ(codes(Wpg2(Bitmap2(4, 2, 4, 1, Raw({0, 5, 0xFE, 0})))), Codes(kOk, kCorruptedFile));
  EXPECT_EQ(codes(Wpg2(Bitmap2(4, 2, 4, 1, Raw({0x7E, 0})))), Codes(kOk, kUnsupportedFormat));
  // The largest pictures the records can declare, in files of about 200 bytes.
  EXPECT_EQ(codes(Wpg1(Bitmap1(65535, 65535, 8, std::string(150, '\x7F')))).first, kCorruptedFile);
  EXPECT_EQ(codes(Wpg2(Bitmap2(65535, 65535, 8, 1, std::string(150, '\x7F')))).first,
            kCorruptedFile);
}

TEST(WpgWrite, OneBitmapRecordAndRoundTrips) {
  test::TempDir dir;
  test::Picture p = test::Picture::Blank(5, 300, 8);
  for (int32_t y = 0; y < 300; ++y)
    for (uint32_t x = 0; x < 5; ++x) p.SetPixel(x, y, x < 4 ? 7 : 3);
  ASSERT_EQ(test::WritePicture(p, dir / "w.wpg"), kOk);
  const std::string file = test::ReadFileBytes(dir / "w.wpg");
  EXPECT_EQ(file.substr(0, 24), Prefix(1) + Rec1(0x0F, Raw({1, 0}) + Le(80, 2) + Le(4800, 2)));
  EXPECT_EQ(file.substr(24, 10),
            Raw({0x0E, 0xFF}) + Le(0x8000, 2) + Le(772, 2) + Le(0, 2) + Le(256, 2));
  // A run, one byte as it is, then the row 299 times more in two repeat codes.
  const std::string data = Raw({0x84, 7, 1, 3, 0, 255, 0, 44});
  EXPECT_EQ(file.substr(24 + 10 + 768),
            Raw({0x0B, 0xFF}) + Le(0x8000, 2) + Le(uint32_t(10 + data.size()), 2) + Le(5, 2) +
                Le(300, 2) + Le(8, 2) + Le(75, 2) + Le(75, 2) + data + Raw({0x10, 0}));

  for (uint32_t bits : {1u, 3u, 4u, 8u})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {33u, 5}, {300u, 4}}) {
      SCOPED_TRACE(std::to_string(bits) + " bits, width " + std::to_string(w));
      EXPECT_TRUE(test::RoundTrips(test::Pattern(w, h, bits), dir / "r.wpg", bits == 3 ? 4 : bits));
    }
  EXPECT_EQ(test::WritePicture(test::Pattern(3, 3, 24), dir / "t.wpg"), kTooManyColours);
}

}  // namespace
}  // namespace pxm
