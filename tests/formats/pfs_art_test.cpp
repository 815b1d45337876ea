#include "formats/pfs_art.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;
using test::Raw;
using Bytes = std::vector<uint8_t>;

std::string Edges(uint32_t left, uint32_t right, uint32_t top, uint32_t bottom) {
  return Le(left, 2) + Le(right, 2) + Le(top, 2) + Le(bottom, 2);
}
std::string HighResolution(uint32_t width, uint32_t height) {
  return Le(0xFFFF, 2) + Le(300, 2) + Le(300, 2) + Le(width, 2) + Le(height, 2) + Le(1, 2);
}

TEST(ArtRead, BothKinds) {
  test::TempDir dir;
  // Edges 3..12 make 9 pixels: rows of two bytes, padded to even (no padding needed here).
  test::Decoded d =
      test::DecodeBytes(dir, "p.art", Edges(3, 12, 1, 3) + Raw({0xF0, 0x80, 0x0F, 0x00}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(std::tuple(d.info.width, d.info.depth, d.info.bits), std::tuple(9u, 2, 1u));
  EXPECT_EQ(d.rows.at(1), (Bytes{0x0F, 0x00}));
  // 17 pixels take three bytes, padded to four.
  d = test::DecodeBytes(dir, "p.art", Edges(0, 17, 0, 1) + Raw({1, 2, 0x80, 9}));
  EXPECT_EQ(d.rows.at(0), (Bytes{1, 2, 0x80}));
  // High resolution: rows packed one by one, their padding (here one byte) found from the total.
  for (const std::string& rows : {Raw({2, 0xAA, 0xBB, 0xCC, 0, 0x11}) + Raw({254, 0x22, 0, 7}),
                                  Raw({3, 0xAA, 0xBB, 0xCC, 0, 253, 0x22})}) {
    d = test::DecodeBytes(dir, "h.art", HighResolution(20, 2) + rows);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.description, "High resolution, packed rows");
    EXPECT_EQ(d.rows.at(0), (Bytes{0xAA, 0xBB, 0xCC}));
    EXPECT_EQ(d.rows.at(1), (Bytes{0x22, 0x22, 0x22}));
  }
}

TEST(ArtRead, DamagedFiles) {
  test::TempDir dir;
  auto codes = [&](const std::string& bytes) {
    const test::Decoded d = test::DecodeBytes(dir, "p.art", bytes);
    return std::pair(d.infoCode, d.readCode);
  };
  EXPECT_EQ(codes(Edges(5, 5, 0, 2) + "abcd").first, kCorruptedFile);  // no width
  EXPECT_EQ(codes(Edges(0, 9, 4, 1) + "abcd").first, kCorruptedFile);  // bottom above top
  EXPECT_EQ(codes(Edges(0, 9, 0, 2) + "abc").first, kCorruptedFile);   // rows cut short
  EXPECT_EQ(codes(Edges(0, 9, 0, 2).substr(0, 7)).first, kCorruptedFile);
  // The size rule: 65535 x 65535 in about 200 bytes, either kind.
  EXPECT_EQ(codes(Edges(0, 65535, 0, 65535) + std::string(192, '\0')).first, kCorruptedFile);
  EXPECT_EQ(codes(HighResolution(65535, 65535) + std::string(188, '\0')).first, kCorruptedFile);
  // Packed rows that unpack to more than two bytes of padding a row, or that run out.
  EXPECT_EQ(codes(HighResolution(8, 2) + Raw({252, 0, 252, 0})), std::pair(int(kOk), 2));
  EXPECT_EQ(codes(HighResolution(8, 2) + Raw({0, 1, 0, 2})).second, kOk);
  EXPECT_EQ(codes(HighResolution(8, 3) + Raw({1, 5, 5, 2})).second, kCorruptedFile);
}

TEST(ArtWrite, EdgesAndEvenRows) {
  test::TempDir dir;
  test::Picture p = test::Picture::Blank(9, 2, 1);
  p.SetPixel(0, 0, 1);
  p.SetPixel(8, 1, 1);
  ASSERT_EQ(test::WritePicture(p, dir / "w.art"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "w.art"), Edges(0, 9, 0, 2) + Raw({0x80, 0x00, 0x00, 0x80}));
  for (auto [w, h] : {std::pair{1u, 1}, {17u, 3}, {64u, 5}})
    EXPECT_TRUE(test::RoundTrips(test::Pattern(w, h, 1), dir / "r.art", 1)) << w;
  EXPECT_EQ(test::WritePicture(test::Pattern(8, 8, 8), dir / "x.art"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
