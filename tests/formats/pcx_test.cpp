#include "formats/pcx.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/error_codes.h"
#include "core/file_io.h"
#include "formats/codec_test_util.h"
#include "formats/pcx_rle.h"
#include "support/picture.h"
#include "support/temp_dir.h"
#include "thumbs/fixed_palette.h"

namespace pxm {
namespace {

using test::Bytes;
using test::Le;
using test::Pattern;
using test::Picture;
using test::Raw;

test::Decoded Decode(const std::string& path, int abortOn = 0) {
  return test::DecodeWith(PcxInfo, PcxRead, path, abortOn);
}

// A 128-byte header; the coded rows follow it.
std::string Header(int version, int bitsPerPixel, int planes, int width, int depth,
                   int bytesPerLine, const std::string& palette48 = std::string(48, '\0')) {
  std::string h = Raw({10, version, 1, bitsPerPixel}) + Le(0, 2) + Le(0, 2) +
                  Le(static_cast<uint32_t>(width - 1), 2) + Le(static_cast<uint32_t>(depth - 1), 2) +
                  Le(72, 2) + Le(72, 2) + palette48 + Raw({0, planes}) +
                  Le(static_cast<uint32_t>(bytesPerLine), 2) + Le(1, 2);
  return h + std::string(128 - h.size(), '\0');
}

std::string Encode(Bytes data) {
  test::TempDir dir;
  const size_t n = data.size() - 2;  // the last two bytes are what follows the row
  {
    OutputFile out;
    EXPECT_TRUE(out.Create(dir / "o"));
    EXPECT_EQ(PcxEncodeRow(data.data(), n, out), kOk);
    EXPECT_TRUE(out.Commit());
  }
  return test::ReadFileBytes(dir / "o");
}

TEST(PcxEncode, RunsCountEqualNeighboursAndLookPastTheRow) {
  struct Case {
    const char* what;
    Bytes row;  // the bytes coded, then the two bytes after them
    std::string want;
  };
  auto repeat = [](size_t n, uint8_t b, Bytes after) {
    Bytes v(n, b);
    v.insert(v.end(), after.begin(), after.end());
    return v;
  };
  const Case cases[] = {
      {"two equal then another", {5, 5, 7, 0, 0}, Raw({193, 5, 5, 7})},
      {"64 equal, next differs", repeat(64, 9, {1, 0}), Raw({255, 9, 9})},
      {"64 equal, next equal too", repeat(64, 9, {9, 0}), Raw({255, 9, 193, 9})},
      {"a literal of 200", {200, 0, 0}, Raw({193, 200})},
      {"two of 200", {200, 200, 0, 0}, Raw({193, 200, 193, 200})},
      {"no runs", {1, 2, 3, 0, 0}, Raw({1, 2, 3})},
      {"130 zeros", repeat(130, 0, {5, 0}), Raw({255, 0, 255, 0, 195, 0, 0})},
  };
  for (const Case& c : cases) EXPECT_EQ(Encode(c.row), c.want) << c.what;
}

TEST(PcxRead, RunCountOutlivesTheRow) {
  test::TempDir dir;
  // Four 8-bit pixels a row. Six 7s fill row 0 and start row 1; the count then stands at -1,
  // and as row 1 ends in literals, row 2 fills itself with the last byte read (2); the count
  // byte C0 that follows stores nothing and clears that. Row 3 is plain literals.
  const std::string rows = Raw({0xC6, 7, 1, 2, 0xC0, 9, 3, 4, 5, 6});
  test::WriteFileBytes(dir / "a.pcx", Header(5, 8, 1, 4, 4, 4) + rows);
  test::Decoded d = Decode(dir / "a.pcx");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows[0], (Bytes{7, 7, 7, 7}));
  EXPECT_EQ(d.rows[1], (Bytes{7, 7, 1, 2}));
  EXPECT_EQ(d.rows[2], (Bytes{2, 2, 2, 2}));
  EXPECT_EQ(d.rows[3], (Bytes{3, 4, 5, 6}));

  // A literal after the filled row lands past its end: the row is bad.
  test::WriteFileBytes(dir / "b.pcx", Header(5, 8, 1, 4, 4, 4) + Raw({0xC6, 7, 1, 2, 3, 4}));
  d = Decode(dir / "b.pcx");
  EXPECT_EQ(d.readCode, kReadError);
  EXPECT_EQ(d.rows.size(), 2u);

  // A row start with no run pending leaves -1 as well: after a row of literals only, the next
  // row repeats the last byte read.
  test::WriteFileBytes(dir / "d.pcx", Header(5, 8, 1, 2, 3, 2) + Raw({1, 2, 0xC0, 0, 3, 4}));
  d = Decode(dir / "d.pcx");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows[1], (Bytes{2, 2, 0, 0}));
  EXPECT_EQ(d.rows[2], (Bytes{3, 4, 0, 0}));
  test::WriteFileBytes(dir / "e.pcx", Header(5, 8, 1, 2, 2, 2) + Raw({1, 2, 3, 4}));
  EXPECT_EQ(Decode(dir / "e.pcx").readCode, kReadError);

  // Past the end of the file the reader sees zeros.
  test::WriteFileBytes(dir / "c.pcx", Header(5, 8, 1, 4, 2, 4) + Raw({0xC2, 8}));
  d = Decode(dir / "c.pcx");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.rows[0], (Bytes{8, 8, 0, 0}));
  EXPECT_EQ(d.rows[1], (Bytes{0, 0, 0, 0}));
}

TEST(PcxWrite, PlanesOfAThreeBitPicture) {
  test::TempDir dir;
  Picture p = Picture::Blank(5, 1, 3);
  // Pixels 1 2 3 4 5, and a 7 in the unused nibble after them: the writer takes both pixels of
  // the last byte, so it shows in bit 5 of every plane.
  p.rows[0] = {0x12, 0x34, 0x57, 0};
  for (uint32_t i = 0; i < 16; ++i) p.palette[i] = Rgb{static_cast<uint8_t>(i), 1, 2};
  ASSERT_EQ(test::WritePicture(p, dir / "a.pcx"), kOk);
  const std::string f = test::ReadFileBytes(dir / "a.pcx");
  std::string palette;
  for (int i = 0; i < 16; ++i) palette += Raw({i, 1, 2});
  std::string want = Raw({10, 5, 1, 1}) + Le(0, 4) + Le(4, 2) + Le(0, 2) + Le(300, 2) +
                     Le(300, 2) + palette + Raw({0, 3}) + Le(1, 2) + Le(1, 2);
  want += std::string(128 - want.size(), '\0');
  // Plane 0 = 1 0 1 0 1 (+1), plane 1 = 0 1 1 0 0 (+1), plane 2 = 0 0 0 1 1 (+1).
  want += Raw({0xAC, 0x64, 0x1C});
  EXPECT_EQ(f, want);

  test::Decoded d = Decode(dir / "a.pcx");
  ASSERT_EQ(d.readCode, kOk);
  EXPECT_EQ(d.info.bits, 3u);
  EXPECT_EQ(d.rows[0], (Bytes{0x12, 0x34, 0x50, 0}));  // back as 4-bit packed pixels
}

TEST(PcxWrite, TwentyFourAndEightBitLayouts) {
  test::TempDir dir;
  Picture p = Picture::Blank(3, 1, 24);
  p.SetPixel(0, 0, 0x0A0B0C);
  p.SetPixel(1, 0, 0x0A0B0D);
  p.SetPixel(2, 0, 0xC80B0E);
  for (uint32_t i = 0; i < 256; ++i) p.palette[i] = Rgb{static_cast<uint8_t>(i), 7, 9};
  ASSERT_EQ(test::WritePicture(p, dir / "a.pcx"), kOk);
  std::string f = test::ReadFileBytes(dir / "a.pcx");
  ASSERT_EQ(f.size(), 128u + 11u);
  EXPECT_EQ(f.substr(0, 4), Raw({10, 5, 1, 8}));
  EXPECT_EQ(f.substr(64, 6), Raw({0, 3}) + Le(3, 2) + Le(0, 2));  // three planes, no palette
  for (int i = 0; i < 16; ++i) EXPECT_EQ(f.substr(16 + 3 * static_cast<size_t>(i), 3), Raw({i, 7, 9}));
  // Red 0A 0A C8 (a run of one, a literal, then C8 as count and value), green 0B 0B 0B and
  // blue 0C 0D 0E; each plane is coded on its own and looks at the zero after it.
  EXPECT_EQ(f.substr(128), Raw({193, 10, 10, 193, 200, 194, 11, 11, 12, 13, 14}));

  Picture e = Picture::Blank(2, 1, 8);
  e.rows[0] = {4, 4, 4, 0};
  e.palette = p.palette;
  ASSERT_EQ(test::WritePicture(e, dir / "b.pcx"), kOk);
  f = test::ReadFileBytes(dir / "b.pcx");
  std::string trailer = Raw({12});
  for (int i = 0; i < 256; ++i) trailer += Raw({i, 7, 9});
  EXPECT_EQ(f.substr(65, 4), Raw({1}) + Le(2, 2) + Raw({1}));
  // The row is 4 4 and the padding after it is 4 0: the run test sees the third 4.
  EXPECT_EQ(f.substr(128), Raw({194, 4}) + trailer);
}

TEST(PcxInfo, DepthPaletteAndSizeRules) {
  test::TempDir dir;
  std::string header48;
  for (int i = 0; i < 16; ++i) header48 += Raw({i, 2 * i, 3 * i});
  struct Case {
    const char* what;
    std::string file;
    uint32_t bits;
    uint32_t unpacked;
    int entry;       // a palette entry to look at
    Rgb colour;      // what it must hold
  };
  std::string trailer = Raw({12});
  for (int i = 0; i < 256; ++i) trailer += Raw({255 - i, i, 1});
  const std::string body(40, '\0');
  const Case cases[] = {
      {"1 bit shows black and white", Header(5, 1, 1, 9, 2, 2, header48) + body, 1, 4, 1,
       {255, 255, 255}},
      {"4 planes report one plane", Header(5, 1, 4, 9, 2, 2, header48) + body, 4, 4, 5,
       {5, 10, 15}},
      {"version 3 takes the default", Header(3, 1, 4, 9, 2, 2, header48) + body, 4, 4, 6,
       {170, 170, 0}},
      {"2 bits in one plane", Header(2, 2, 1, 9, 2, 2, header48) + body, 2, 4, 3, {3, 6, 9}},
      {"8 bits with the trailer", Header(5, 8, 1, 9, 2, 9, header48) + body + trailer, 8, 18, 200,
       {55, 200, 1}},
      {"8 bits, version 4: header", Header(4, 8, 1, 9, 2, 9, header48) + body + trailer, 8, 18, 2,
       {2, 4, 6}},
      {"24 bits", Header(5, 8, 3, 9, 2, 9, header48) + body, 24, 54, 77,
       ThumbGetPalette(0)[77]},
  };
  for (const Case& c : cases) {
    test::WriteFileBytes(dir / "a.pcx", c.file);
    ImageInfo info;
    info.background = 5;
    ASSERT_EQ(PcxInfo(info, dir / "a.pcx", 0), kOk) << c.what;
    EXPECT_EQ(info.bits, c.bits) << c.what;
    EXPECT_EQ(info.width, 9u);
    EXPECT_EQ(info.depth, 2);
    EXPECT_EQ(info.background, 0u);
    EXPECT_EQ(info.fileName, "a.pcx");
    EXPECT_EQ(info.fileSize, static_cast<int32_t>(c.file.size()));
    EXPECT_EQ(info.unpackedSize, c.unpacked) << c.what;
    EXPECT_EQ(info.palette[static_cast<size_t>(c.entry)], c.colour) << c.what;
  }

  // No trailer mark: the header's sixteen colours, the rest as they were.
  test::WriteFileBytes(dir / "a.pcx", Header(5, 8, 1, 9, 2, 9, header48) + std::string(900, '\1'));
  ImageInfo info;
  info.palette[200] = Rgb{1, 2, 3};
  ASSERT_EQ(PcxInfo(info, dir / "a.pcx", 0), kOk);
  EXPECT_EQ(info.palette[15], (Rgb{15, 30, 45}));
  EXPECT_EQ(info.palette[200], (Rgb{1, 2, 3}));
}

TEST(PcxRead, RefusalsAndTheirCodes) {
  test::TempDir dir;
  const std::string good = Header(5, 8, 1, 2, 2, 2) + Raw({0xC2, 1, 3, 4});
  struct Case {
    const char* what;
    std::string file;
    int infoCode;
    int readCode;
  };
  const Case cases[] = {
      {"good", good, kOk, kOk},
      {"not the PCX mark", Raw({11}) + good.substr(1), kCorruptedFile, kCorruptedFile},
      {"short header", good.substr(0, 127), kCorruptedFile, kCorruptedFile},
      {"inside-out rectangle", Header(5, 8, 1, 0, 2, 2), kCorruptedFile, kCorruptedFile},
      {"no planes", Header(5, 1, 0, 2, 2, 2), kCorruptedFile, kCorruptedFile},
  };
  for (const Case& c : cases) {
    test::WriteFileBytes(dir / "a.pcx", c.file);
    ImageInfo info;
    EXPECT_EQ(PcxInfo(info, dir / "a.pcx", 0), c.infoCode) << c.what;
    info.width = 2;
    info.depth = 2;
    info.putLine = [](std::span<uint8_t>, int32_t) { return 0; };
    EXPECT_EQ(PcxRead(info, dir / "a.pcx"), c.readCode) << c.what;
  }
  ImageInfo info;
  EXPECT_EQ(PcxInfo(info, dir / "none.pcx", 0), kOpenError);
  EXPECT_EQ(PcxRead(info, dir / "none.pcx"), kOpenError);

  test::WriteFileBytes(dir / "a.pcx", good);
  test::Decoded d = Decode(dir / "a.pcx", 1);
  EXPECT_EQ(d.readCode, kCancelled);
  EXPECT_EQ(d.rows.size(), 1u);
}

TEST(PcxRoundTrip, EveryDepthAtAwkwardSizes) {
  test::TempDir dir;
  std::vector<Picture> pictures;
  for (uint32_t bits : {1u, 2u, 3u, 4u, 5u, 8u, 24u})
    for (auto [w, h] : {std::pair{1u, 1}, {7u, 3}, {33u, 17}, {130u, 2}})
      pictures.push_back(Pattern(w, h, bits, w + bits));
  Picture all = Pattern(256, 2, 8);
  for (uint32_t x = 0; x < 256; ++x) all.SetPixel(x, 1, 255 - x);
  pictures.push_back(all);
  Picture flat = Picture::Blank(200, 3, 8);  // long runs across the 63-byte limit
  for (auto& row : flat.rows) std::fill(row.begin(), row.end(), 0xC5);
  pictures.push_back(flat);

  for (Picture& p : pictures) {
    SCOPED_TRACE(testing::Message() << p.width << "x" << p.depth << "x" << p.bits);
    // A row that codes to literals only would make the next row repeat its last byte: every
    // row here begins with two pixels of all ones, which always code with a count byte.
    const uint32_t ones = p.bits == 24 ? 0xFFFFFF : (1u << std::min(p.bits, 8u)) - 1;
    for (int32_t y = 0; y < p.depth; ++y)
      for (uint32_t x = 0; x < std::min(p.width, 2u); ++x) p.SetPixel(x, y, ones);
    ASSERT_EQ(test::WritePicture(p, dir / "r.pcx"), kOk);
    Picture q;
    ImageInfo info;
    ASSERT_EQ(test::ReadPicture(dir / "r.pcx", q, nullptr, &info), kOk);
    // Five to eight bits are written as eight.
    ASSERT_EQ(info.bits, p.bits >= 5 && p.bits <= 8 ? 8u : p.bits);
    for (int32_t y = 0; y < p.depth; ++y)
      for (uint32_t x = 0; x < p.width; ++x) ASSERT_EQ(q.Pixel(x, y), p.Pixel(x, y)) << x << "," << y;
    if (p.bits >= 5 && p.bits <= 8) {
      EXPECT_EQ(q.palette, p.palette);
    }
  }
}

TEST(PcxWrite, AbortAndRefusals) {
  test::TempDir dir;
  Picture p = Pattern(5, 4, 8);
  ImageInfo info;
  info.width = 5;
  info.depth = 4;
  info.bits = 8;
  int asked = 0;
  info.getLine = [&](std::span<uint8_t>, int32_t) { return ++asked == 3 ? 1 : 0; };
  EXPECT_EQ(PcxWrite(info, dir / "a.pcx"), kCancelled);
  EXPECT_FALSE(std::filesystem::exists(dir / "a.pcx"));
  EXPECT_EQ(PcxWrite(info, dir / "no/dir/a.pcx"), kCreateError);
  info.width = 40000;  // more than the header's signed 16 bits
  EXPECT_EQ(PcxWrite(info, dir / "a.pcx"), kUnsuitableImage);
}

}  // namespace
}  // namespace pxm
