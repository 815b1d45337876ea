#include "formats/gem_img.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Be;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Header(uint32_t planes, uint32_t width, uint32_t height, uint32_t patternBytes = 2,
                   uint32_t words = 8) {
  return Be(1, 2) + Be(words, 2) + Be(planes, 2) + Be(patternBytes, 2) + Be(85, 2) + Be(85, 2) +
         Be(width, 2) + Be(height, 2);
}
std::string Ximg(uint32_t planes, uint32_t width, uint32_t height,
                 const std::vector<uint32_t>& thousandths) {
  std::string palette;
  for (uint32_t v : thousandths) palette += Be(v, 2);
  return Header(planes, width, height, 1, 11 + uint32_t(thousandths.size())) + "XIMG" + Be(0, 2) +
         palette;
}

TEST(GemRead, ItemsOfOnePlane) {
  test::TempDir dir;
  // 24 pixels, three bytes a row. Row 0: a pattern run cut at the row end, then nothing more;
  // rows 1-3: one scanline shown three times (solid runs); row 4: a bit string whose excess is
  // dropped, then a solid run. A set bit is black: the store shows it as 0.
  const std::string data = Raw({0, 2, 0x0F, 0xF0}) + Raw({0, 0, 0xFF, 3, 0x81, 0x02}) +
                           Raw({0x80, 2, 0x12, 0x34, 0x80, 2, 0x56, 0x78});
  const test::Decoded d = test::DecodeBytes(dir, "g.img", Header(1, 24, 5) + data);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Bit image");
  EXPECT_EQ(d.rows.at(0), (Bytes{0xF0, 0x0F, 0xF0}));
  for (int y : {1, 2, 3}) EXPECT_EQ(d.rows.at(y), (Bytes{0x00, 0xFF, 0xFF})) << y;
  EXPECT_EQ(d.rows.at(4), (Bytes{0xED, 0xCB, 0xA9}));
}

TEST(GemRead, PlanesAndPalettes) {
  test::TempDir dir;
  // Four pixels with values 0..3 over planes 0 and 1 (bit strings), 4 pixels a row.
  const std::string twoPlanes = Raw({0x80, 1, 0x50, 0x80, 1, 0x30});
  test::Decoded d = test::DecodeBytes(dir, "g.img", Header(2, 4, 1) + twoPlanes);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{0x01, 0x23, 0, 0}));
  // Without a palette: the standard colours; an XIMG palette in thousandths otherwise.
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 0, 0}));
  EXPECT_EQ(d.info.palette[3], GemStandardPalette()[3]);
  d = test::DecodeBytes(dir, "g.img",
                        Ximg(2, 4, 1, {0, 0, 0, 1000, 500, 0, 2, 3, 4, 300, 600, 999}) + twoPlanes);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Extended bit image (XIMG)");
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 128, 0}));
  EXPECT_EQ(d.info.palette[3], (Rgb{77, 153, 255}));
  // Eight planes without a palette: grey, white at 0.
  std::string eight;
  for (int p = 0; p < 8; ++p) eight += Raw({0x80, 1, p == 0 ? 0x40 : p == 7 ? 0x20 : 0x00});
  d = test::DecodeBytes(dir, "g.img", Header(8, 3, 1) + eight);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{0, 1, 128}));
  EXPECT_EQ(d.info.palette[0], (Rgb{255, 255, 255}));
  EXPECT_EQ(d.info.palette[255], (Rgb{0, 0, 0}));
  // True colour: one row of red, green, blue, patterns a pixel long.
  d = test::DecodeBytes(dir, "g.img", Header(24, 3, 1, 3) + Raw({0, 2, 1, 2, 3, 0x80, 3, 7, 8, 9}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows.at(0), (Bytes{1, 2, 3, 1, 2, 3, 7, 8, 9}));
}

TEST(GemRead, DamagedFiles) {
  test::TempDir dir;
  auto codes = [&](const std::string& bytes) {
    const test::Decoded d = test::DecodeBytes(dir, "g.img", bytes);
    return std::pair(d.infoCode, d.readCode);
  };
  const std::string rows = Raw({0x82, 0x82});
  EXPECT_EQ(codes(Header(1, 16, 1) + rows).second, kOk);
  EXPECT_EQ(codes(Header(16, 16, 1) + rows).first, kUnsupportedFormat);
  for (uint32_t planes : {0u, 9u, 25u})
    EXPECT_EQ(codes(Header(planes, 16, 1) + rows).first, kCorruptedFile) << planes;
  EXPECT_EQ(codes(Header(1, 16, 1, 9) + rows).first, kCorruptedFile);       // pattern too long
  EXPECT_EQ(codes(Header(1, 16, 1, 2, 7) + rows).first, kCorruptedFile);    // header too short
  EXPECT_EQ(codes(Header(1, 16, 1, 2, 200) + rows).first, kCorruptedFile);  // header past the end
  EXPECT_EQ(codes(Header(1, 0, 1) + rows).first, kCorruptedFile);
  // The size rule: 65535 x 65535 at 24 planes in about 200 bytes.
  EXPECT_EQ(codes(Header(24, 65535, 65535, 3) + std::string(184, '\0')).first, kCorruptedFile);
  EXPECT_EQ(codes(Header(1, 16, 3) + rows).second, kReadError);  // data ends
  EXPECT_EQ(codes(Header(1, 16, 1) + Raw({0, 0, 0xFE, 2}) + rows).second, kReadError);
}

TEST(GemWrite, PlanesPalettesAndRoundTrips) {
  test::TempDir dir;
  // One plane: a bit string, then a white scanline (a solid run) shown twice.
  test::Picture p = test::Picture::Blank(20, 3, 1);
  for (uint32_t x = 0; x < 20; ++x) p.SetPixel(x, 1, 1), p.SetPixel(x, 2, 1);
  p.SetPixel(0, 0, 1);
  ASSERT_EQ(test::WritePicture(p, dir / "w.img"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "w.img"),
            Header(1, 20, 3, 1) + Raw({0x80, 3, 0x7F, 0xFF, 0xF0}) + Raw({0, 0, 0xFF, 2, 0x03}));
  // 4 and 8 planes carry their palette in an XIMG header.
  test::Picture four = test::Pattern(5, 2, 4);
  ASSERT_EQ(test::WritePicture(four, dir / "f.img"), kOk);
  const std::string f = test::ReadFileBytes(dir / "f.img");
  EXPECT_EQ(f.substr(0, 22), Header(4, 5, 2, 1, 59).substr(0, 16) + "XIMG" + Be(0, 2));
  // Pictures of 2 to 4 bits come back as 4 planes, of 5 to 8 as 8.
  for (auto [bits, planes] :
       {std::pair{1u, 1u}, {3u, 4u}, {4u, 4u}, {6u, 8u}, {8u, 8u}, {24u, 24u}})
    for (auto [w, h] : {std::pair{1u, 1}, {9u, 4}, {33u, 300}}) {
      test::Picture q = test::Pattern(w, h, bits);
      for (int32_t y = 5; y < h; y += 7) q.rows[size_t(y)] = q.rows[size_t(y - 1)];
      EXPECT_TRUE(test::RoundTrips(q, dir / "r.img", planes)) << bits << " " << w;
    }
  EXPECT_EQ(test::WritePicture(test::Pattern(32768, 1, 1), dir / "x.img"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
