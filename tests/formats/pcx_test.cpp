#include "formats/pcx.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/error_codes.h"
#include "core/fixed_palette.h"
#include "formats/pcx_rle.h"
#include "support/decoded.h"
#include "support/picture_files.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::Bytes;
using test::Le;
using test::Picture;
using test::Raw;

// A 128-byte header; the coded rows follow it.
std::string Header(int version, int bitsPerPixel, int planes, int width, int depth,
                   int bytesPerLine, const std::string& palette48 = std::string(48, '\0')) {
  std::string h = Raw({10, version, 1, bitsPerPixel}) + Le(0, 4) +
                  Le(static_cast<uint32_t>(width - 1), 2) +
                  Le(static_cast<uint32_t>(depth - 1), 2) + Le(72, 4) + palette48 +
                  Raw({0, planes}) + Le(static_cast<uint32_t>(bytesPerLine), 2) + Le(1, 2);
  return h + std::string(128 - h.size(), '\0');
}

TEST(PcxEncode, RunsCountEqualNeighboursAndLookPastTheRow) {
  test::TempDir dir;
  auto encode = [&](Bytes row, Bytes after) {
    const size_t n = row.size();
    row.insert(row.end(), after.begin(), after.end());
    OutputFile out;
    EXPECT_TRUE(out.Create(dir / "o"));
    EXPECT_EQ(PcxEncodeRow(row.data(), n, out), kOk);
    EXPECT_TRUE(out.Commit());
    return test::ReadFileBytes(dir / "o");
  };
  EXPECT_EQ(encode({5, 5, 7}, {0, 0}), Raw({193, 5, 5, 7}));       // a run of one, then literals
  EXPECT_EQ(encode(Bytes(64, 9), {1, 0}), Raw({255, 9, 9}));       // 63 copies and the last again
  EXPECT_EQ(encode(Bytes(64, 9), {9, 0}), Raw({255, 9, 193, 9}));  // the byte after joins the run
  EXPECT_EQ(encode({200}, {0, 0}), Raw({193, 200}));               // a literal of 192 or more
  EXPECT_EQ(encode(Bytes(130, 0), {5, 0}), Raw({255, 0, 255, 0, 195, 0, 0}));
}

TEST(PcxRead, RunCountOutlivesTheRow) {
  test::TempDir dir;
  // Four pixels a row. Six 7s fill row 0 and start row 1; the count then stands at -1, so after
  // the literals of row 1, row 2 fills itself with the last byte read (2); the count byte C0
  // that follows stores nothing. Past the end of the file bytes read as 0.
  test::WriteFileBytes(dir / "a.pcx", Header(5, 8, 1, 4, 5, 4) +
                                          Raw({0xC6, 7, 1, 2, 0xC0, 9, 0xC2, 3, 5, 6, 0xC2, 8}));
  test::Decoded d = test::DecodeFile(dir / "a.pcx");
  ASSERT_EQ(d.readCode, kOk);
  const std::vector<Bytes> want = {
      {7, 7, 7, 7}, {7, 7, 1, 2}, {2, 2, 2, 2}, {3, 3, 5, 6}, {8, 8, 0, 0}};
  for (int32_t y = 0; y < 5; ++y) EXPECT_EQ(d.rows[y], want[static_cast<size_t>(y)]) << y;
  // A row start with no run pending leaves -1 too: after a row of literals the next row is
  // filled, and the literal read after it lands past its end.
  test::WriteFileBytes(dir / "b.pcx", Header(5, 8, 1, 2, 2, 2) + Raw({1, 2, 3, 4}));
  d = test::DecodeFile(dir / "b.pcx");
  EXPECT_EQ(d.readCode, kReadError);
  EXPECT_EQ(d.rows.size(), 1u);
}

TEST(PcxWrite, PlanesAndHeaders) {
  test::TempDir dir;
  // Three bits: pixels 1 2 3 4 5 and a 7 in the unused nibble after them, which the writer takes
  // as well: plane 0 = 1 0 1 0 1 (1), plane 1 = 0 1 1 0 0 (1), plane 2 = 0 0 0 1 1 (1).
  Picture p = Picture::Blank(5, 1, 3);
  p.rows[0] = {0x12, 0x34, 0x57, 0};
  std::string palette;
  for (int i = 0; i < 16; ++i) {
    p.palette[static_cast<size_t>(i)] = Rgb{static_cast<uint8_t>(i), 1, 2};
    palette += Raw({i, 1, 2});
  }
  ASSERT_EQ(test::WritePicture(p, dir / "a.pcx"), kOk);
  std::string want = Raw({10, 5, 1, 1}) + Le(0, 4) + Le(4, 2) + Le(0, 2) + Le(300, 2) + Le(300, 2) +
                     palette + Raw({0, 3}) + Le(1, 2) + Le(1, 2);
  EXPECT_EQ(test::ReadFileBytes(dir / "a.pcx"),
            want + std::string(128 - want.size(), '\0') + Raw({0xAC, 0x64, 0x1C}));
  test::Decoded d = test::DecodeFile(dir / "a.pcx");
  EXPECT_EQ(d.info.bits, 3u);
  EXPECT_EQ(d.rows[0], (Bytes{0x12, 0x34, 0x50, 0}));  // back as 4-bit pixels

  // 24 bits: three planes of 8 bits, palette info 0, each plane coded alone. Red 0A 0A C8 is a
  // run of one, a literal and C8 behind a count; green 0B 0B 0B a run of two and a literal.
  Picture c = Picture::Blank(3, 1, 24);
  c.palette = p.palette;
  for (uint32_t x = 0; x < 3; ++x)
    c.SetPixel(x, 0, std::vector<uint32_t>{0x0A0B0C, 0x0A0B0D, 0xC80B0E}[x]);
  ASSERT_EQ(test::WritePicture(c, dir / "c.pcx"), kOk);
  const std::string f = test::ReadFileBytes(dir / "c.pcx");
  EXPECT_EQ(f.substr(0, 4), Raw({10, 5, 1, 8}));
  EXPECT_EQ(f.substr(16, 48), palette);
  EXPECT_EQ(f.substr(64, 6), Raw({0, 3}) + Le(3, 2) + Le(0, 2));
  EXPECT_EQ(f.substr(128), Raw({193, 10, 10, 193, 200, 194, 11, 11, 12, 13, 14}));
}

TEST(PcxInfo, DepthPaletteAndSizeRules) {
  test::TempDir dir;
  std::string header48, trailer = Raw({12});
  for (int i = 0; i < 16; ++i) header48 += Raw({i, 2 * i, 3 * i});
  for (int i = 0; i < 256; ++i) trailer += Raw({255 - i, i, 1});
  const std::string body(40, '\1');
  struct Case {
    std::string file;
    uint32_t bits, unpacked;
    size_t entry;
    Rgb colour;
  };
  const Case cases[] = {
      {Header(5, 1, 1, 9, 2, 2, header48) + body, 1, 4, 1, {255, 255, 255}},  // black and white
      {Header(5, 1, 4, 9, 2, 2, header48) + body, 4, 4, 5, {5, 10, 15}},      // one plane's size
      {Header(3, 1, 4, 9, 2, 2, header48) + body, 4, 4, 6, {170, 170, 0}},    // the default
      {Header(2, 2, 1, 9, 2, 2, header48) + body, 2, 4, 3, {3, 6, 9}},
      {Header(5, 8, 1, 9, 2, 9, header48) + body + trailer, 8, 18, 200, {55, 200, 1}},
      {Header(4, 8, 1, 9, 2, 9, header48) + body + trailer, 8, 18, 2, {2, 4, 6}},  // version 4
      {Header(5, 8, 1, 9, 2, 9, header48) + std::string(900, '\1'),
       8,
       18,
       15,
       {15, 30, 45}},  // no mark
      {Header(5, 8, 3, 9, 2, 9, header48) + body, 24, 54, 77, ThumbGetPalette(0)[77]},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    test::WriteFileBytes(dir / "a.pcx", c.file);
    ImageInfo info;
    info.palette[200] = Rgb{1, 2, 3};
    ASSERT_EQ(PcxInfo(info, dir / "a.pcx", 0), kOk);
    EXPECT_EQ(info.bits, c.bits);
    EXPECT_EQ(info.width, 9u);
    EXPECT_EQ(info.depth, 2);
    EXPECT_EQ(info.unpackedSize, c.unpacked);
    EXPECT_EQ(info.palette[c.entry], c.colour);
    if (c.entry == 15) {
      EXPECT_EQ(info.palette[200], (Rgb{1, 2, 3}));  // beyond the header's 16
    }
  }
}

TEST(PcxRead, RefusalsAndTheirCodes) {
  test::TempDir dir;
  const std::string good = Header(5, 8, 1, 2, 2, 2) + Raw({0xC2, 1, 3, 4});
  const std::pair<std::string, int> cases[] = {
      {Raw({11}) + good.substr(1),
       kCorruptedFile},  // not the PCX mark; the version is not looked at
      {good.substr(0, 127), kCorruptedFile},
      {Header(5, 8, 1, 0, 2, 2), kCorruptedFile},  // no width
      {Header(5, 1, 0, 2, 2, 2), kCorruptedFile},  // no planes
  };
  for (const auto& [file, code] : cases) {
    test::WriteFileBytes(dir / "a.pcx", file);
    ImageInfo info;
    EXPECT_EQ(PcxInfo(info, dir / "a.pcx", 0), code);
    EXPECT_EQ(PcxRead(info, dir / "a.pcx"), code);
  }
  ImageInfo info;
  info.depth = 4;
  info.bits = 8;
  info.width = 40000;  // more than the header's signed 16 bits
  EXPECT_EQ(PcxWrite(info, dir / "w.pcx"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
