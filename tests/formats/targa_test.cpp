#include "formats/targa.h"

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Header(int mapType, int type, int first, int length, int entrySize, int width,
                   int height, int pixelDepth, int descriptor, int idLength = 0) {
  return Raw({idLength, mapType, type}) + Le(first, 2) + Le(length, 2) + Raw({entrySize}) +
         Le(0, 4) + Le(width, 2) + Le(height, 2) + Raw({pixelDepth, descriptor});
}

TEST(TargaWrite, HeaderAndRowLengthOfEveryDepth) {
  struct Case {
    uint32_t bits;
    bool sixteen;
    std::string header;
    size_t mapBytes, rowBytes;
  };
  const Case cases[] = {{1, false, Header(0, 3, 0, 0, 0, 5, 3, 1, 32), 0, 1},
                        {4, false, Header(1, 1, 0, 256, 24, 5, 3, 8, 32), 768, 5},
                        {24, false, Header(0, 2, 0, 0, 0, 5, 3, 24, 32), 0, 15},
                        {24, true, Header(0, 2, 0, 0, 0, 5, 3, 16, 32), 0, 10}};
  test::TempDir dir;
  for (const Case& c : cases) {
    ScopedSettings settings;
    settings->CreateTarga16 = c.sixteen;
    test::Picture p = test::Pattern(5, 3, c.bits);
    ASSERT_EQ(test::WritePicture(p, dir / "w.tga"), kOk);
    const std::string f = test::ReadFileBytes(dir / "w.tga");
    EXPECT_EQ(f.size(), 18 + c.mapBytes + 3 * c.rowBytes) << c.bits;
    EXPECT_EQ(f.substr(0, 18), c.header) << c.bits;
    const Rgb& e = p.palette[9];
    if (c.mapBytes) {
      EXPECT_EQ(f.substr(18 + 3 * 9, 3), Raw({e.blue, e.green, e.red}));
    }
  }
  // 16 bits: four bytes a pixel are built, two a pixel written, so the row holds pixel 0, a
  // zero pixel and pixel 1: 31 × 1024, then 1 × 1024 + 2 × 32 + 3.
  ScopedSettings settings;
  settings->CreateTarga16 = 1;
  test::Picture p = test::Picture::Blank(3, 1, 24);
  p.SetPixel(0, 0, 0xFF0000);
  p.SetPixel(1, 0, 0x081018);
  ASSERT_EQ(test::WritePicture(p, dir / "s.tga"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "s.tga").substr(18), Raw({0x00, 0x7C, 0, 0, 0x43, 0x04}));
}

TEST(TargaRead, LayoutsAndQuirks) {
  std::string map;  // first entry 2, length 10: eight entries, which the reader skips (D35)
  for (int k = 0; k < 8; ++k) map += Raw({k, 10 + k, 20 + k});
  struct Case {
    const char* what;
    std::string file;
    std::vector<Bytes> rows;  // top first
  };
  const Case cases[] = {
      {"bottom first",
       Header(0, 3, 0, 0, 0, 3, 2, 8, 0) + Raw({1, 2, 3, 4, 5, 6}),
       {{4, 5, 6}, {1, 2, 3}}},
      {"top first",
       Header(0, 3, 0, 0, 0, 3, 2, 8, 32) + Raw({1, 2, 3, 4, 5, 6}),
       {{1, 2, 3}, {4, 5, 6}}},
      // Bytes are reversed, not pixels: B,G,R 1,2,3 and 4,5,6 become 3,2,1,6,5,4, then 2,3,1,...
      {"right to left, 24 bits",
       Header(0, 2, 0, 0, 0, 2, 1, 24, 48) + Raw({1, 2, 3, 4, 5, 6}),
       {{2, 3, 1, 6, 5, 4}}},
      // The first byte is the high byte: 0x7C00 is pure red; 0x007C green 3, blue 28.
      {"16 bits",
       Header(0, 2, 0, 0, 0, 2, 1, 16, 32) + Raw({0x7C, 0, 0, 0x7C}),
       {{255, 0, 0, 0, 24, 230}}},
      {"map skip", Header(1, 1, 2, 10, 24, 2, 1, 8, 32, 3) + "abc" + map + Raw({5, 9}), {{5, 9}}},
      // A repeat of five fills a row and runs on into the next.
      {"packets",
       Header(0, 11, 0, 0, 0, 3, 2, 8, 32) + Raw({0x84, 7, 0, 9}),
       {{7, 7, 7}, {7, 7, 9}}},
      {"32-bit packets",
       Header(0, 10, 0, 0, 0, 2, 1, 32, 32) + Raw({0x81, 1, 2, 3, 4}),
       {{3, 2, 1, 3, 2, 1}}},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    test::Decoded d = test::DecodeBytes(dir, "t.tga", c.file);
    ASSERT_EQ(d.readCode, kOk);
    for (size_t y = 0; y < c.rows.size(); ++y) EXPECT_EQ(d.rows.at(int32_t(y)), c.rows[y]) << y;
  }
  test::Decoded d = test::DecodeBytes(dir, "t.tga", cases[4].file);
  EXPECT_EQ(d.info.description, "Uncompressed file");
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 255, 255}));
  EXPECT_EQ(d.info.palette[9], (Rgb{27, 17, 7}));  // entries 2-9 in slots 2-9
  EXPECT_EQ(test::DecodeBytes(dir, "t.tga", cases[0].file).info.palette[200], (Rgb{200, 200, 200}));
  EXPECT_EQ(test::DecodeBytes(dir, "t.tga", cases[5].file).info.description,
            "Run length compressed file");
}

TEST(TargaRead, DamagedFiles) {
  test::TempDir dir;
  const std::string good = Header(0, 3, 0, 0, 0, 3, 2, 8, 32) + Raw({1, 2, 3, 4, 5, 6});
  EXPECT_EQ(test::DecodeBytes(dir, "t.tga", good.substr(0, 17)).infoCode, kCorruptedFile);
  EXPECT_EQ(test::DecodeBytes(dir, "t.tga", Raw({0, 0, 4}) + good.substr(3)).infoCode,
            kCorruptedFile);
  // Rows the file cannot hold are refused before a store is made for them.
  EXPECT_EQ(test::DecodeBytes(dir, "t.tga", good.substr(0, 23)).infoCode, kCorruptedFile);
  EXPECT_EQ(test::DecodeBytes(dir, "t.tga", Header(0, 11, 0, 0, 0, 3, 2, 8, 32) + Raw({0x84, 7, 0}))
                .readCode,
            kReadError);
}

}  // namespace
}  // namespace pxm
