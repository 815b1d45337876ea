#include "formats/msp.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;
using test::Raw;
using Bytes = std::vector<uint8_t>;

// A header with the right checksum (unless told otherwise).
std::string Header(int version, uint32_t width, uint32_t height, int checksumError = 0) {
  const uint32_t key1 = version == 1 ? 0x6144 : 0x694C, key2 = version == 1 ? 0x4D6E : 0x536E;
  const uint32_t words[12] = {key1, key2, width, height, 1, 1, 1, 1, width, height, 0, 0};
  std::string h;
  uint32_t sum = 0;
  for (uint32_t w : words) h += Le(w, 2), sum ^= w;
  return h + Le((sum ^ checksumError) & 0xFFFF, 2) + std::string(6, '\0');
}

TEST(MspRead, BothVersions) {
  test::TempDir dir;
  // Version 1: raw rows; a set bit is white, as in the store.
  test::Decoded d =
      test::DecodeBytes(dir, "p.msp", Header(1, 12, 2) + Raw({0xF0, 0x10, 0x0F, 0x20}));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Version 1 bitmap");
  EXPECT_EQ(d.rows.at(1), (Bytes{0x0F, 0x20}));
  // Version 2: a map of coded row lengths, then the rows. A run is cut at the row's end, a row
  // that stops short is white to its end, a row of no bytes is white.
  const std::string map = Le(6, 2) + Le(3, 2) + Le(0, 2) + Le(4, 2);
  const std::string rows = Raw({2, 0x12, 0x34, 0, 9, 0xAB}) + Raw({0, 2, 0x00}) + Raw({5, 1, 2, 3});
  d = test::DecodeBytes(dir, "p.msp", Header(2, 20, 4) + map + rows);
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Version 2 compressed bitmap");
  EXPECT_EQ(d.rows.at(0), (Bytes{0x12, 0x34, 0xAB}));
  EXPECT_EQ(d.rows.at(1), (Bytes{0x00, 0x00, 0xFF}));
  EXPECT_EQ(d.rows.at(2), (Bytes{0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(d.rows.at(3), (Bytes{1, 2, 3}));
  EXPECT_EQ(d.info.palette[0], (Rgb{0, 0, 0}));
  EXPECT_EQ(d.info.palette[1], (Rgb{255, 255, 255}));
}

TEST(MspRead, DamagedFiles) {
  test::TempDir dir;
  auto codes = [&](const std::string& bytes) {
    const test::Decoded d = test::DecodeBytes(dir, "p.msp", bytes);
    return std::pair(d.infoCode, d.readCode);
  };
  const std::string v1 = Header(1, 12, 2) + Raw({0xF0, 0x10, 0x0F, 0x20});
  EXPECT_EQ(codes(Header(1, 12, 2, 0x0100) + v1.substr(32)).first, kCorruptedFile);  // checksum
  EXPECT_EQ(codes("DanX" + v1.substr(4)).first, kCorruptedFile);
  EXPECT_EQ(codes(v1.substr(0, 35)).first, kCorruptedFile);  // raw rows cut short
  EXPECT_EQ(codes(Header(1, 0, 2)).first, kCorruptedFile);
  // The size rule: 65535 x 65535 declared in about 200 bytes, in either version.
  EXPECT_EQ(codes(Header(1, 65535, 65535) + std::string(170, '\0')).first, kCorruptedFile);
  EXPECT_EQ(codes(Header(2, 65535, 65535) + std::string(170, '\0')).first, kCorruptedFile);
  // A row map that promises more bytes than the file has.
  EXPECT_EQ(codes(Header(2, 8, 2) + Le(3, 2) + Le(9, 2) + Raw({1, 7, 1, 2})),
            std::pair(int(kOk), int(kReadError)));
}

TEST(MspWrite, VersionTwoWithARowMap) {
  test::TempDir dir;
  // Runs of three bytes or more, literals between them; bits past the picture are white.
  test::Picture p = test::Picture::Blank(36, 2, 1);
  for (uint32_t x = 0; x < 36; ++x) p.SetPixel(x, 0, 1);
  p.SetPixel(33, 1, 1);
  ASSERT_EQ(test::WritePicture(p, dir / "w.msp"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "w.msp"), Header(2, 36, 2) + Le(3, 2) + Le(5, 2) +
                                                    Raw({0, 5, 0xFF}) + Raw({0, 4, 0x00, 1, 0x4F}));
  for (auto [w, h] : {std::pair{1u, 1}, {9u, 3}, {2100u, 4}})
    EXPECT_TRUE(test::RoundTrips(test::Pattern(w, h, 1), dir / "r.msp", 1)) << w;
  EXPECT_EQ(test::WritePicture(test::Pattern(8, 8, 4), dir / "x.msp"), kUnsuitableImage);
  EXPECT_EQ(test::WritePicture(test::Pattern(65536, 1, 1), dir / "x.msp"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
