#include "formats/bmp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/bytes.h"
#include "core/error_codes.h"
#include "core/pixels.h"
#include "core/row_format.h"
#include "support/decoded.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Bytes;
using test::Le;
using test::Pattern;
using test::Picture;
using test::Raw;

const Rgb kBlack{0, 0, 0};
const Rgb kWhite{255, 255, 255};

uint32_t U32(const std::string& s, size_t at) {
  return LoadLe32(reinterpret_cast<const uint8_t*>(&s[at]));
}

// A file with the 40-byte Windows header; the colour table and rows follow it.
std::string WindowsFile(int32_t width, int32_t height, uint32_t bits, uint32_t compression,
                        const std::string& table, const std::string& rows) {
  uint32_t offset = 54 + static_cast<uint32_t>(table.size());
  return "BM" + Le(offset + static_cast<uint32_t>(rows.size()), 4) + Le(0, 4) + Le(offset, 4) +
         Le(40, 4) + Le(static_cast<uint32_t>(width), 4) + Le(static_cast<uint32_t>(height), 4) +
         Le(1, 2) + Le(bits, 2) + Le(compression, 4) + std::string(20, '\0') + table + rows;
}

// `count` Windows colour entries, entry i = (i, 2i, 3i) as red, green, blue.
std::string WindowsTable(int count) {
  std::string s;
  for (int i = 0; i < count; ++i) s += Raw({3 * i, 2 * i, i, 0});
  return s;
}

uint32_t FileBits(uint32_t bits) {
  return bits == 1 ? 1 : bits <= 4 ? 4 : bits <= 8 ? 8 : 24;
}

TEST(BmpWrite, HeadersColourTablesAndRowsOfEveryDepth) {
  struct Case {
    uint32_t bits, windowsOffset, os2Offset, rowBytes;
  };
  // Seven pixels a row: 1 and 4 bits fit one 32-bit word, 8 bits take two, 24 bits six.
  const Case cases[] = {{1, 62, 32, 4},    {2, 118, 74, 4},   {4, 118, 74, 4},
                        {5, 1078, 794, 8}, {8, 1078, 794, 8}, {24, 54, 26, 24}};
  test::TempDir dir;
  for (bool os2 : {false, true})
    for (const Case& c : cases) {
      SCOPED_TRACE(testing::Message() << "bits " << c.bits << (os2 ? " OS/2" : " Windows"));
      ScopedSettings settings;
      settings->WriteOS2Bitmaps = os2;
      Picture p = Pattern(7, 3, c.bits);
      ASSERT_EQ(test::WritePicture(p, dir / "w.bmp"), kOk);
      const std::string f = test::ReadFileBytes(dir / "w.bmp");
      const uint32_t fileBits = FileBits(c.bits);
      const uint32_t offset = os2 ? c.os2Offset : c.windowsOffset;
      ASSERT_EQ(f.size(), offset + 3 * c.rowBytes);
      EXPECT_EQ(f.substr(0, 2), "BM");
      EXPECT_EQ(U32(f, 2), f.size());
      EXPECT_EQ(U32(f, 6), 0u);
      EXPECT_EQ(U32(f, 10), offset);
      if (os2) {
        EXPECT_EQ(f.substr(14, 12), Le(12, 4) + Le(7, 2) + Le(3, 2) + Le(1, 2) + Le(fileBits, 2));
      } else {
        // Both colour counts say 2^bits, 16777216 for 24-bit files too.
        EXPECT_EQ(f.substr(14, 40), Le(40, 4) + Le(7, 4) + Le(3, 4) + Le(1, 2) + Le(fileBits, 2) +
                                        std::string(16, '\0') + Le(1u << fileBits, 4) +
                                        Le(1u << fileBits, 4));
      }
      const size_t table = os2 ? 26 : 54;
      const size_t entry = os2 ? 3 : 4;
      const uint32_t colours = fileBits == 24 ? 0 : 1u << fileBits;
      EXPECT_EQ(table + colours * entry, offset);
      for (uint32_t i = 0; i < colours; ++i) {
        // One-bit files get black then white whatever the palette (Pattern's is coloured).
        const Rgb& c1 = fileBits == 1 ? (i == 0 ? kBlack : kWhite) : p.palette[i];
        std::string want = Raw({c1.blue, c1.green, c1.red, 0}).substr(0, entry);
        EXPECT_EQ(f.substr(table + i * entry, entry), want) << "entry " << i;
      }
      for (uint32_t i = 0; i < 3; ++i) {
        const auto* row = reinterpret_cast<const uint8_t*>(&f[offset + i * c.rowBytes]);
        const auto y = static_cast<int32_t>(2 - i);  // bottom row first
        for (uint32_t x = 0; x < 7; ++x) {
          if (fileBits == 24)
            EXPECT_EQ((Rgb{row[3 * x + 2], row[3 * x + 1], row[3 * x]}), p.Colour(x, y));
          else
            EXPECT_EQ(PixelAt(row, x, fileBits), p.Pixel(x, y)) << x << "," << y;
        }
      }
    }
  ScopedSettings settings;
  settings->WriteOS2Bitmaps = 1;
  ASSERT_EQ(test::WritePicture(Pattern(33, 17, 1), dir / "a.bmp"), kOk);
  EXPECT_EQ(std::filesystem::file_size(dir / "a.bmp"), 32u + 8u * 17u);
}

TEST(BmpInfo, RecordAndEveryColourEntryOfWrittenFiles) {
  // Pixels at every depth and awkward widths go both ways in the oracle matrix; here every entry
  // of the colour table is in use, and the record of each depth.
  test::TempDir dir;
  Picture eight = Pattern(256, 2, 8), four = Pattern(16, 2, 4);
  for (uint32_t x = 0; x < 256; ++x) eight.SetPixel(x, 1, 255 - x);
  for (uint32_t x = 0; x < 16; ++x) four.SetPixel(x, 0, x);
  for (bool os2 : {false, true})
    for (const Picture& p :
         {eight, four, Pattern(9, 7, 1), Pattern(3, 3, 24)}) {  // OS/2: 54 bytes or more
      SCOPED_TRACE(testing::Message() << p.bits << " bits" << (os2 ? " OS/2" : ""));
      ScopedSettings settings;
      settings->WriteOS2Bitmaps = os2;
      ASSERT_EQ(test::WritePicture(p, dir / "r.bmp"), kOk);
      Picture q;
      ImageInfo info;
      ASSERT_EQ(test::ReadPicture(dir / "r.bmp", q, nullptr, &info), kOk);
      EXPECT_EQ(info.description, os2 ? "OS/2 bitmap" : "Windows bitmap");
      EXPECT_EQ(info.unpackedSize, (p.width + 7) / 8 * p.bits * static_cast<uint32_t>(p.depth));
      for (uint32_t x = 0; x < p.width; ++x) EXPECT_EQ(q.Pixel(x, 1), p.Pixel(x, 1)) << x;
      // One bit: black and white; palette files: their table; 24 bits: a grey ramp.
      for (uint32_t i = 0; i < (p.bits == 24 ? 256 : 1u << p.bits); ++i) {
        const auto v = static_cast<uint8_t>(i);
        const Rgb want = p.bits == 24  ? Rgb{v, v, v}
                         : p.bits == 1 ? (i ? kWhite : kBlack)
                                       : p.palette[i];
        EXPECT_EQ(q.palette[i], want) << i;
      }
    }
}

TEST(BmpRead, OneBitColourTableIsNotRead) {
  test::TempDir dir;
  // Ten pixels a row in four bytes; a red and blue table that must not show.
  test::WriteFileBytes(dir / "a.bmp", WindowsFile(10, 2, 1, 0, Raw({0, 0, 255, 0, 255, 0, 0, 0}),
                                                  Raw({0xA0, 0x40, 0, 0, 0x01, 0x80, 0, 0})));
  test::Decoded d = test::DecodeFile(dir / "a.bmp");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 1u);
  EXPECT_EQ(d.info.palette[0], kBlack);
  EXPECT_EQ(d.info.palette[1], kWhite);
  EXPECT_EQ(d.info.background, 0u);
  std::string bottom, top;
  for (uint32_t x = 0; x < 10; ++x) {
    bottom += static_cast<char>('0' + d.Pixel(x, 1));
    top += static_cast<char>('0' + d.Pixel(x, 0));
  }
  EXPECT_EQ(bottom, "1010000001");
  EXPECT_EQ(top, "0000000110");
}

TEST(BmpRead, SixteenAndThirtyTwoBitFilesAreUnpackedTheirOwnWay) {
  test::TempDir dir;
  // 16 bits, pixels 0xFC01, 0xFFFF, 0x07F0, 0x1234: output pixel x is made from the 32-bit word
  // at byte 4x, so it shows file pixels 0 and 2, each five-bit channel times 8, top bit ignored.
  test::WriteFileBytes(
      dir / "a.bmp",
      WindowsFile(4, 1, 16, 0, "", Raw({0x01, 0xFC, 0xFF, 0xFF, 0xF0, 0x07, 0x34, 0x12})));
  test::Decoded d = test::DecodeFile(dir / "a.bmp");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 24u);
  EXPECT_EQ(d.info.palette[200], (Rgb{200, 200, 200}));
  EXPECT_EQ(d.Pixel(0, 0), 0xF80008u);
  EXPECT_EQ(d.Pixel(1, 0), 0x08F880u);

  // 32 bits: each row is taken in 3-byte steps, bytes 0-2 and 3-5 read as blue, green, red.
  test::WriteFileBytes(dir / "b.bmp",
                       WindowsFile(2, 2, 32, 0, "",
                                   Raw({0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80, 0x01, 0x02,
                                        0x03, 0x04, 0x05, 0x06, 0x07, 0x08})));
  d = test::DecodeFile(dir / "b.bmp");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 24u);
  EXPECT_EQ(d.Pixel(0, 1), 0x302010u);
  EXPECT_EQ(d.Pixel(1, 1), 0x605040u);
  EXPECT_EQ(d.Pixel(0, 0), 0x030201u);
  EXPECT_EQ(d.Pixel(1, 0), 0x060504u);
}

TEST(BmpRead, RunLengthFileEndingEarlyOrCutShort) {
  test::TempDir dir;
  // Five wide, four high: a run and an absolute run, a delta over a row and two columns, a run,
  // then the end mark before the top row.
  const std::string rle = Raw({0x02, 0x07, 0x00, 0x03, 0x01, 0x02, 0x03, 0x00, 0x00, 0x00,  //
                               0x00, 0x02, 0x02, 0x01, 0x03, 0x09, 0x00, 0x00, 0x00, 0x01});
  test::WriteFileBytes(dir / "a.bmp", WindowsFile(5, 4, 8, 1, WindowsTable(256), rle));
  test::Decoded d = test::DecodeFile(dir / "a.bmp");
  ASSERT_EQ(d.infoCode, kOk);
  EXPECT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.palette[5], (Rgb{5, 10, 15}));
  // The top row is never delivered: the store keeps what it was created with.
  ASSERT_EQ(d.rows.size(), 3u);
  EXPECT_EQ(d.rows.count(0), 0u);
  EXPECT_EQ(Bytes(d.rows[3].begin(), d.rows[3].begin() + 5), (Bytes{7, 7, 1, 2, 3}));
  EXPECT_EQ(Bytes(d.rows[2].begin(), d.rows[2].begin() + 5), (Bytes{0, 0, 0, 0, 0}));
  EXPECT_EQ(Bytes(d.rows[1].begin(), d.rows[1].begin() + 5), (Bytes{0, 0, 9, 9, 9}));

  // Data that stops inside a row is a read error; info does not look at run-length data.
  test::WriteFileBytes(dir / "cut.bmp",
                       WindowsFile(5, 4, 8, 1, WindowsTable(256), rle.substr(0, 12)));
  test::Decoded cut = test::DecodeFile(dir / "cut.bmp");
  EXPECT_EQ(cut.infoCode, kOk);
  EXPECT_EQ(cut.readCode, kReadError);
}

TEST(BmpInfo, DamagedOrUnusualFiles) {
  test::TempDir dir;
  auto infoCode = [&](const std::string& bytes) {
    test::WriteFileBytes(dir / "x.bmp", bytes);
    return test::DecodeFile(dir / "x.bmp").infoCode;
  };
  const std::string good = WindowsFile(7, 3, 8, 0, WindowsTable(256), std::string(24, '\x05'));
  EXPECT_EQ(infoCode(good), kOk);
  EXPECT_EQ(infoCode(good.substr(0, 53)), kCorruptedFile);
  EXPECT_EQ(infoCode("BA" + good.substr(2)), kCorruptedFile);
  EXPECT_EQ(infoCode(good.substr(0, good.size() - 8)), kCorruptedFile);  // a row missing
  EXPECT_EQ(infoCode(WindowsFile(7, -3, 8, 0, WindowsTable(256), std::string(24, '\0'))),
            kUnsupportedFormat);  // top-down rows

  ImageInfo info;
  // The reader checks the header again, and the rows, which may have changed since info.
  test::WriteFileBytes(dir / "x.bmp", good);
  ASSERT_EQ(BmpInfo(info, dir / "x.bmp", 0), kOk);
  info.putLine = [](std::span<uint8_t>, int32_t) { return 0; };
  test::WriteFileBytes(dir / "x.bmp", good.substr(0, 40));
  EXPECT_EQ(BmpRead(info, dir / "x.bmp"), kReadError);
  test::WriteFileBytes(dir / "x.bmp", "XX" + good.substr(2));
  EXPECT_EQ(BmpRead(info, dir / "x.bmp"), kCorruptedFile);
  test::WriteFileBytes(dir / "x.bmp", good.substr(0, good.size() - 4));
  EXPECT_EQ(BmpRead(info, dir / "x.bmp"), kReadError);
}

}  // namespace
}  // namespace pxm
