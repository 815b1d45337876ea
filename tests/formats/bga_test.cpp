#include "formats/bga.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "support/decoded.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Le;
using test::Pattern;
using test::Picture;

uint32_t U16(const std::string& s, size_t at) {
  return LoadLe16(reinterpret_cast<const uint8_t*>(&s[at]));
}
uint32_t U32(const std::string& s, size_t at) {
  return LoadLe32(reinterpret_cast<const uint8_t*>(&s[at]));
}

// One 40-byte array entry: array header, bitmap file header, core header.
std::string Entry(uint32_t next, uint32_t width, uint32_t height, uint32_t bits,
                  uint32_t dataOffset, uint32_t size = 40) {
  return "BA" + Le(size, 4) + Le(next, 4) + Le(0, 4) + "BM" + Le(26, 4) + Le(0, 4) +
         Le(dataOffset, 4) + Le(12, 4) + Le(width, 2) + Le(height, 2) + Le(1, 2) + Le(bits, 2);
}

// Pads a file being built out to `offset`.
void PadTo(std::string& file, size_t offset) {
  ASSERT_LE(file.size(), offset);
  file.resize(offset, '\0');
}

test::Decoded Decode(const std::string& path, uint32_t index, int abortOn = 0) {
  return test::DecodeFile(path, abortOn, index);
}

TEST(BgaWrite, EntryColourTableAndRows) {
  struct Case {
    uint32_t bits, fileBits, dataOffset, rowBytes;
  };
  // Data at 40 + 3 × 2^bits; seven pixels a row.
  const Case cases[] = {{1, 1, 46, 4}, {3, 4, 88, 4}, {6, 8, 808, 8}, {8, 8, 808, 8}};
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bits);
    Picture p = Pattern(7, 3, c.bits);
    ASSERT_EQ(test::WritePicture(p, dir / "a.bga"), kOk);
    std::string f = test::ReadFileBytes(dir / "a.bga");
    ASSERT_EQ(f.size(), c.dataOffset + 3 * c.rowBytes);
    EXPECT_EQ(f.substr(0, 40), "BA" + Le(40, 4) + Le(0, 4) + Le(0, 4) + "BM" + Le(26, 4) +
                                   Le(75, 2) + Le(75, 2) + Le(c.dataOffset, 4) + Le(12, 4) +
                                   Le(7, 2) + Le(3, 2) + Le(1, 2) + Le(c.fileBits, 2));
    Picture q;
    ImageInfo info;
    ASSERT_EQ(test::ReadPicture(dir / "a.bga", q, nullptr, &info), kOk);
    const auto* data = reinterpret_cast<const uint8_t*>(f.data());
    for (uint32_t i = 0; i < (1u << c.fileBits); ++i) {
      // A one-bit picture's palette becomes black and white first.
      Rgb want = c.bits == 1 ? (i ? Rgb{255, 255, 255} : Rgb{}) : p.palette[i];
      const uint8_t* e = data + 40 + 3 * i;
      EXPECT_EQ((Rgb{e[2], e[1], e[0]}), want) << i;
      EXPECT_EQ(q.palette[i], want) << i;
    }
    for (uint32_t i = 0; i < 3; ++i)
      for (uint32_t x = 0; x < 7; ++x)
        EXPECT_EQ(PixelAt(data + c.dataOffset + i * c.rowBytes, x, c.fileBits),
                  p.Pixel(x, static_cast<int32_t>(2 - i)));
    // Read back, the picture is the same.
    EXPECT_EQ(info.imageCount, 1u);
    EXPECT_EQ(info.description, "");
    EXPECT_EQ(info.bits, c.fileBits);
    for (int32_t y = 0; y < 3; ++y)
      for (uint32_t x = 0; x < 7; ++x) EXPECT_EQ(q.Pixel(x, y), p.Pixel(x, y));
  }
}

TEST(BgaWrite, TwentyFourBitPicturesGetTwoToTheTwentyFourColourEntries) {
  test::TempDir dir;
  Picture p = Pattern(2, 2, 24);
  ASSERT_EQ(test::WritePicture(p, dir / "a.bga"), kOk);
  const uint32_t offset = 40 + 3 * 16777216;
  ASSERT_EQ(std::filesystem::file_size(dir / "a.bga"), offset + 2 * 8);
  // The file is 48 MB: only its entry and its rows are looked at.
  std::ifstream in(dir / "a.bga", std::ios::binary);
  std::string f(40, '\0');
  in.read(f.data(), 40);
  EXPECT_EQ(U32(f, 24), offset);
  EXPECT_EQ(U16(f, 38), 24u);
  uint8_t rows[16];
  in.seekg(offset);
  in.read(reinterpret_cast<char*>(rows), sizeof rows);
  EXPECT_EQ((Rgb{rows[2], rows[1], rows[0]}), p.Colour(0, 1));
  EXPECT_EQ((Rgb{rows[13], rows[12], rows[11]}), p.Colour(1, 0));

  Picture q;
  ASSERT_EQ(test::ReadPicture(dir / "a.bga", q), kOk);
  EXPECT_EQ(test::Colours(q), test::Colours(p));
}

// Three bitmaps chained: a one-bit 8×2 whose coloured table is not read, an eight-bit 3×2 and a
// 24-bit 2×1.
std::string ThreeEntryChain() {
  std::string f = Entry(54, 8, 2, 1, 46) + std::string("\x01\x02\x03\x04\x05\x06", 6);
  f += std::string("\xF0\0\0\0\x0F\0\0\0", 8);
  f += Entry(870, 3, 2, 8, 862);
  for (int i = 0; i < 256; ++i) f += {static_cast<char>(i), 7, static_cast<char>(255 - i)};
  f += std::string("\x01\x02\x03\0\x04\x05\x06\0", 8);
  f += Entry(0, 2, 1, 24, 910);
  f += std::string("\x10\x20\x30\x40\x50\x60\0\0", 8);
  return f;
}

TEST(BgaInfo, ChainsOfEntriesAndTheChosenImage) {
  test::TempDir dir;
  test::WriteFileBytes(dir / "c.bga", ThreeEntryChain());

  test::Decoded one = Decode(dir / "c.bga", 0);
  ASSERT_EQ(one.readCode, kOk);
  EXPECT_EQ(std::tuple(one.info.imageCount, one.info.bits, one.info.unpackedSize),
            std::tuple(3u, 1u, 2u));
  EXPECT_EQ(one.info.palette[1], (Rgb{255, 255, 255}));
  // Bottom row first.
  EXPECT_EQ(std::pair(one.rows[1][0], one.rows[0][0]), (std::pair<uint8_t, uint8_t>(0xF0, 0x0F)));

  test::Decoded eight = Decode(dir / "c.bga", 1);
  ASSERT_EQ(eight.readCode, kOk);
  EXPECT_EQ(std::tuple(eight.info.imageCount, eight.info.width, eight.info.bits),
            std::tuple(3u, 3u, 8u));
  EXPECT_EQ(eight.info.palette[2], (Rgb{253, 7, 2}));
  EXPECT_EQ(std::pair(eight.Pixel(2, 1), eight.Pixel(0, 0)), std::pair(3u, 4u));

  test::Decoded rgb = Decode(dir / "c.bga", 2);
  ASSERT_EQ(rgb.readCode, kOk);
  EXPECT_EQ(std::tuple(rgb.info.bits, rgb.Pixel(0, 0), rgb.Pixel(1, 0)),
            std::tuple(24u, 0x302010u, 0x605040u));

  test::Decoded none = Decode(dir / "c.bga", 3);
  EXPECT_EQ(none.infoCode, kNoBitmap);
  EXPECT_EQ(none.info.imageCount, 3u);
}

TEST(BgaInfo, EntriesThatCountButCannotBeRead) {
  test::TempDir dir;
  // A 92-byte entry counts as an image but is not decoded.
  std::string f = Entry(92, 4, 4, 8, 0, 92);
  PadTo(f, 92);
  f += Entry(0, 1, 1, 1, 138) + std::string("\0\0\0\xFF\xFF\xFF\x80\0\0\0", 10);
  test::WriteFileBytes(dir / "a.bga", f);
  test::Decoded first = Decode(dir / "a.bga", 0);
  EXPECT_EQ(first.infoCode, kNoBitmap);
  EXPECT_EQ(first.info.imageCount, 2u);
  test::Decoded second = Decode(dir / "a.bga", 1);
  EXPECT_EQ(second.readCode, kOk);
  EXPECT_EQ(second.Pixel(0, 0), 1u);

  auto infoCode = [&](const std::string& bytes) {
    test::WriteFileBytes(dir / "x.bga", bytes);
    test::Decoded d = Decode(dir / "x.bga", 0);
    EXPECT_EQ(d.info.imageCount, 0u);
    return d.infoCode;
  };
  EXPECT_EQ(infoCode(""), kNoBitmap);
  EXPECT_EQ(infoCode("BM" + std::string(60, '\0')), kNoBitmap);
  EXPECT_EQ(infoCode(Entry(0, 1, 1, 1, 46, 41) + std::string(10, '\0')), kNoBitmap);
  EXPECT_EQ(infoCode(Entry(0, 1, 1, 1, 46).substr(0, 13)), kNoBitmap);
}

TEST(BgaInfo, ChainsThatLoopBackCountEachEntryOnce) {
  test::TempDir dir;
  // The second entry names itself as the next.
  std::string self = Entry(100, 1, 1, 1, 40);
  PadTo(self, 100);
  self += Entry(100, 1, 1, 1, 140) + std::string(4, '\0');
  test::WriteFileBytes(dir / "self.bga", self);
  test::Decoded d = Decode(dir / "self.bga", 1);
  EXPECT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.imageCount, 2u);
  EXPECT_EQ(Decode(dir / "self.bga", 2).infoCode, kNoBitmap);

  // A loop over entries megabytes apart, back to the second one.
  const uint32_t far = 3u << 20;
  std::string wide = Entry(100, 1, 1, 1, 40);
  PadTo(wide, 100);
  wide += Entry(far, 1, 1, 1, 140) + std::string(4, '\0');
  PadTo(wide, far);
  wide += Entry(100, 1, 1, 1, far + 40) + std::string("\x80\0\0\0", 4);
  test::WriteFileBytes(dir / "wide.bga", wide);
  test::Decoded last = Decode(dir / "wide.bga", 2);
  EXPECT_EQ(last.readCode, kOk);
  EXPECT_EQ(last.info.imageCount, 3u);
  EXPECT_EQ(last.Pixel(0, 0), 1u);
  EXPECT_EQ(Decode(dir / "wide.bga", 3).infoCode, kNoBitmap);
}

TEST(BgaRead, RowsCutShortAreRefusedByInfoAndAReadError) {
  test::TempDir dir;
  ASSERT_EQ(test::WritePicture(Pattern(9, 4, 8), dir / "a.bga"), kOk);
  std::string f = test::ReadFileBytes(dir / "a.bga");
  test::WriteFileBytes(dir / "cut.bga", f.substr(0, f.size() - 1));
  EXPECT_EQ(Decode(dir / "cut.bga", 0).infoCode, kCorruptedFile);
  // A file cut after info saw it whole: the reader stops at the missing row.
  ImageInfo info;
  ASSERT_EQ(BgaInfo(info, dir / "a.bga", 0), kOk);
  info.putLine = [](std::span<uint8_t>, int32_t) { return 0; };
  EXPECT_EQ(BgaRead(info, dir / "cut.bga"), kReadError);
}

}  // namespace
}  // namespace pxm
