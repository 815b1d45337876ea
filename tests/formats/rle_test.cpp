#include "formats/rle.h"

#include <gtest/gtest.h>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "formats/rle_encode.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Bytes;
using test::Le;
using test::Raw;

uint32_t U32(const std::string& s, size_t at) {
  return LoadLe32(reinterpret_cast<const uint8_t*>(&s[at]));
}

// A run-length bitmap: the 40-byte header, a full colour table, the codes.
std::string RleFile(uint32_t width, uint32_t height, uint32_t bits, const std::string& codes) {
  const uint32_t colours = 1u << bits;
  const uint32_t offset = 54 + 4 * colours;
  return "BM" + Le(offset + static_cast<uint32_t>(codes.size()), 4) + Le(0, 4) + Le(offset, 4) +
         Le(40, 4) + Le(width, 4) + Le(height, 4) + Le(1, 2) + Le(bits, 2) +
         Le(bits == 8 ? 1 : 2, 4) + std::string(20, '\0') + std::string(4 * colours, '\x40') +
         codes;
}

TEST(RleEncode, RunsAbsoluteStretchesAndTheirPadding) {
  struct Case {
    const char* what;
    Bytes pixels;
    bool fourBit;
    Bytes codes;
  };
  const Case cases[] = {
      {"a run, then a last pixel alone", {5, 5, 5, 7}, false, {3, 5, 1, 7}},
      {"three different pixels go absolute, padded to a word",
       {1, 2, 3, 4, 4, 4},
       false,
       {0, 3, 1, 2, 3, 0, 3, 4}},
      // Absolute stretches need three pixels: 0, 1 and 0, 2 are escapes.
      {"two different pixels before a run", {1, 2, 9, 9, 9}, false, {1, 1, 1, 2, 3, 9}},
      {"two alternating colours are one 4-bit run", {1, 2, 1, 2, 1, 2, 1}, true, {7, 0x12}},
      // Absolute stretches of nibbles are even; the odd pixel out goes as a run.
      {"an odd absolute stretch of nibbles", {1, 2, 3, 4, 5}, true, {0, 4, 0x12, 0x34, 1, 0x50}},
      {"three nibbles go as runs", {1, 2, 3, 9, 9, 9, 9, 9, 9}, true, {2, 0x12, 1, 0x30, 6, 0x99}},
      {"a short 4-bit row", {6, 9}, true, {2, 0x69}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bytes out;
    EncodeRleRow(c.pixels, c.fourBit, out);
    EXPECT_EQ(out, c.codes);
  }
  // Runs stop at 255 pixels.
  Bytes out;
  EncodeRleRow(Bytes(300, 4), false, out);
  EXPECT_EQ(out, (Bytes{255, 4, 45, 4}));
}

TEST(RleWrite, DepthsChooseTheRunsAndPicturesComeBack) {
  test::TempDir dir;
  struct Case {
    uint32_t bits, fileBits, readBits;
  };
  for (const Case c : {Case{1, 4, 4}, {2, 4, 4}, {3, 4, 4}, {4, 4, 4}, {5, 8, 8}, {8, 8, 8}}) {
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {33u, 5}, {300u, 2}}) {
      SCOPED_TRACE(testing::Message() << c.bits << " bits, " << w << " x " << h);
      const test::Picture p = test::Pattern(w, h, c.bits);
      const std::string path = dir / "p.rle";
      ASSERT_TRUE(test::RoundTrips(p, path, c.readBits));
      const std::string f = test::ReadFileBytes(path);
      EXPECT_EQ(U32(f, 2), f.size());
      EXPECT_EQ(U32(f, 10), 54u + 4 * (1u << c.fileBits));
      EXPECT_EQ(LoadLe16(reinterpret_cast<const uint8_t*>(&f[28])), c.fileBits);
      EXPECT_EQ(U32(f, 30), c.fileBits == 8 ? 1u : 2u);
      EXPECT_EQ(U32(f, 34), f.size() - U32(f, 10));
      EXPECT_EQ(f.substr(f.size() - 2), Raw({0, 1}));  // the end mark closes the last row
    }
  }
  // One-bit pictures get black and white as their first two colours.
  test::Picture mono = test::Pattern(9, 2, 1);
  mono.palette[1] = Rgb{10, 20, 30};
  ASSERT_EQ(test::WritePicture(mono, dir / "m.rle"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "m.rle").substr(54, 8), Raw({0, 0, 0, 0, 255, 255, 255, 0}));
  EXPECT_EQ(test::WritePicture(test::Pattern(3, 3, 24), dir / "c.rle"), kUnsuitableImage);
}

TEST(RleRead, RunFilesAndWhatTheyDeclare) {
  test::TempDir dir;
  // A delta moves one row down, keeping the column; the end mark leaves the top row untouched.
  const test::Decoded d =
      test::DecodeBytes(dir, "d.rle", RleFile(4, 3, 8, Raw({2, 1, 0, 2, 0, 1, 1, 1, 0, 0, 0, 1})));
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.description, "Windows RLE8 bitmap");
  EXPECT_EQ(d.rows.at(2), (Bytes{1, 1, 0, 0}));
  EXPECT_EQ(d.rows.at(1), (Bytes{0, 0, 1, 0}));
  EXPECT_EQ(d.rows.count(0), 0u);
  EXPECT_EQ(
      test::DecodeBytes(dir, "f.rle", RleFile(3, 1, 4, Raw({3, 0x12, 0, 1}))).info.description,
      "Windows RLE4 bitmap");
  // A header declaring 65535 x 65535 in a file of 200 bytes is damage, whichever runs it has.
  for (uint32_t bits : {4u, 8u})
    EXPECT_EQ(test::DecodeBytes(dir, "b.rle", RleFile(65535, 65535, bits, std::string(120, '\1')))
                  .infoCode,
              kCorruptedFile)
        << bits;
  // A sink that stops the reader is a cancel here, unlike in plain bitmaps.
  EXPECT_EQ(
      test::DecodeBytes(dir, "s.rle", RleFile(2, 3, 8, Raw({2, 1, 0, 0, 2, 1, 0, 0})), 1).readCode,
      kCancelled);
}

}  // namespace
}  // namespace pxm
