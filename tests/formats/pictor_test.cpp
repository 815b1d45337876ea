#include "formats/pictor.h"

#include <gtest/gtest.h>

#include "core/error_codes.h"
#include "formats/pc_palettes.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;
using test::Raw;
using Bytes = std::vector<uint8_t>;

// A PC Paint file: the header, the palette, then `data` (the block count word onwards).
std::string Pic(uint32_t width, uint32_t height, int planeInfo, int paletteType,
                const std::string& palette, const std::string& data) {
  return Le(0x1234, 2) + Le(width, 2) + Le(height, 2) + Le(0, 4) + Raw({planeInfo, 0xFF, 'X'}) +
         Le(paletteType, 2) + Le(uint32_t(palette.size()), 2) + palette + data;
}
std::string Unpacked(const std::string& bytes) {
  return Le(0, 2) + bytes;
}
// One block: packed size, unpacked size, marker, runs.
std::string Block(const std::string& packed, uint32_t unpacked, int marker) {
  return Le(uint32_t(packed.size() + 5), 2) + Le(unpacked, 2) + Raw({marker}) + packed;
}

TEST(PicRead, PlaneLayoutsPalettesAndBlocks) {
  struct Case {
    const char* what;
    std::string file;
    uint32_t bits;
    Bytes top;  // the top row as the store holds it
  };
  const Case cases[] = {
      // Rows are kept bottom first.
      {"8 bits, uncompressed",
       Pic(3, 2, 0x08, 0, "", Unpacked(Raw({1, 2, 3, 4, 5, 6}))),
       8,
       {4, 5, 6}},
      // Plane 0 gives the low bits: plane rows 0x1B and 0xE4 make 12, 9, 6, 3.
      {"two planes of two bits",
       Pic(4, 1, 0x12, 0, "", Unpacked(Raw({0x1B, 0xE4}))),
       4,
       {0xC9, 0x63, 0, 0}},
      {"four EGA planes",
       Pic(8, 1, 0x31, 0, "", Unpacked(Raw({0x55, 0x33, 0x0F, 0xFF}))),
       4,
       {0x89, 0xAB, 0xCD, 0xEF}},
      {"two bits", Pic(5, 1, 0x02, 0, "", Unpacked(Raw({0x1B, 0x80}))), 2, {0x01, 0x23, 0x20, 0}},
      {"one bit", Pic(9, 1, 0x01, 0, "", Unpacked(Raw({0x5A, 0x80}))), 1, {0x5A, 0x80}},
      // Rows and planes are not padded to whole bytes: the top row and the second plane begin
      // with the last bit of the first byte.
      {"rows run on", Pic(7, 2, 0x01, 0, "", Unpacked(Raw({0x01, 0x80}))), 1, {0xC0}},
      {"planes run on", Pic(7, 1, 0x11, 0, "", Unpacked(Raw({0x01, 0x80}))), 2, {0x22, 0, 0, 0}},
      // Marker 7: a literal, a short run, a long run with a 16-bit count, a literal marker as a
      // run of one; the next block's run is cut at its unpacked size, and a block whose packed
      // bytes end early is made up with zeros.
      {"blocks",
       Pic(12, 1, 0x08, 0, "",
           Le(3, 2) + Block(Raw({9, 7, 2, 5, 7, 0}) + Le(3, 2) + Raw({6, 7, 1, 7}), 7, 7) +
               Block(Raw({0, 4, 3}), 3, 0) + Block(Raw({8}), 2, 1)),
       8,
       {9, 5, 5, 6, 6, 6, 7, 3, 3, 3, 8, 0}},
  };
  test::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const test::Decoded d = test::DecodeBytes(dir, "p.pic", c.file);
    ASSERT_EQ(d.infoCode, kOk);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.bits, c.bits);
    EXPECT_EQ(d.rows.at(0), c.top);
  }
  EXPECT_EQ(test::DecodeBytes(dir, "p.pic", cases[0].file).order, (std::vector<int32_t>{1, 0}));
}

TEST(PicRead, PaletteTypes) {
  test::TempDir dir;
  auto palette = [&](int planeInfo, int type, const std::string& data) {
    return test::DecodeBytes(dir, "p.pic",
                             Pic(1, 1, planeInfo, type, data, Unpacked(std::string(4, 0))))
        .info.palette;
  };
  // No palette: black and white, the CGA's first four-colour set, the 16 CGA colours.
  EXPECT_EQ(palette(0x01, 0, "")[1], (Rgb{255, 255, 255}));
  EXPECT_EQ(palette(0x02, 0, "")[1], CgaColour(3));
  EXPECT_EQ(palette(0x08, 0, "")[6], (Rgb{0xAA, 0x55, 0}));
  EXPECT_EQ(palette(0x08, 0, "")[16], (Rgb{0, 0, 0}));
  // CGA: the set number picks the three colours after black; the border byte is not a colour.
  const Palette cga = palette(0x02, 1, Raw({4, 9}));
  EXPECT_EQ(cga[0], (Rgb{0, 0, 0}));
  EXPECT_EQ(cga[3], (Rgb{0xFF, 0xFF, 0x55}));
  EXPECT_EQ(palette(0x01, 1, Raw({1, 0}))[1], (Rgb{0, 0xAA, 0}));
  // PCjr and EGA colour numbers; VGA levels of six bits.
  EXPECT_EQ(palette(0x31, 2, Raw({0, 12}))[1], (Rgb{0xFF, 0x55, 0x55}));
  EXPECT_EQ(palette(0x31, 3, Raw({0, 0x14, 0x3F}))[1], (Rgb{0xAA, 0x55, 0}));
  EXPECT_EQ(palette(0x31, 3, Raw({0, 0x14, 0x3F}))[2], (Rgb{0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(palette(0x08, 4, Raw({0, 0, 0, 43, 16, 63}))[1], (Rgb{174, 65, 255}));
  EXPECT_EQ(palette(0x31, 5, Raw({0, 0, 0, 2, 38, 12}))[1], (Rgb{8, 154, 48}));
}

TEST(PicRead, DamagedAndForeignFiles) {
  test::TempDir dir;
  auto info = [&](const std::string& bytes) {
    return test::DecodeBytes(dir, "p.pic", bytes).infoCode;
  };
  const std::string good = Pic(3, 2, 0x08, 0, "", Unpacked(Raw({1, 2, 3, 4, 5, 6})));
  // The other program's PIC files do not start with 0x1234.
  EXPECT_EQ(info("\x01\x00" + good.substr(2)), kCorruptedFile);
  EXPECT_EQ(info(good.substr(0, 16)), kCorruptedFile);
  EXPECT_EQ(info(Pic(3, 2, 0x00, 0, "", Unpacked(""))), kCorruptedFile);      // planes of 0 bits
  EXPECT_EQ(info(Pic(3, 2, 0x03, 0, "", Unpacked(""))), kUnsupportedFormat);  // 3 bits a plane
  EXPECT_EQ(info(Pic(3, 2, 0x28, 0, "", Unpacked(""))), kUnsupportedFormat);  // three planes of 8
  EXPECT_EQ(info(Pic(3, 2, 0x08, 4, std::string(10, '\0'), "")), kCorruptedFile);
  // A header declaring the largest picture in a file of 200 bytes, packed or not.
  EXPECT_EQ(info(Pic(65535, 65535, 0x08, 0, "", Le(1, 2) + Block(std::string(170, 'a'), 175, 0))),
            kCorruptedFile);
  EXPECT_EQ(info(Pic(65535, 65535, 0x08, 0, "", Unpacked(std::string(180, 'a')))), kCorruptedFile);
  // Rows missing from the data: plain data too short for the picture, blocks that end early.
  EXPECT_EQ(info(good.substr(0, good.size() - 2)), kCorruptedFile);
  EXPECT_EQ(
      test::DecodeBytes(dir, "p.pic", Pic(3, 2, 0x08, 0, "", Le(1, 2) + Block("", 3, 0))).readCode,
      kReadError);
}

TEST(PicWrite, LayoutsByDepthAndRoundTrips) {
  test::TempDir dir;
  // Header fields by depth: plane info, video mode, palette type and size.
  struct Layout {
    uint32_t bits;
    int planeInfo, mode, type, size;
  };
  for (const Layout& l :
       {Layout{1, 0x01, 'E', 0, 0}, Layout{3, 0x31, 'M', 5, 48}, Layout{4, 0x31, 'M', 5, 48},
        Layout{6, 0x08, 'L', 4, 768}, Layout{8, 0x08, 'L', 4, 768}}) {
    SCOPED_TRACE(l.bits);
    for (auto [w, h] : {std::pair{1u, 1}, {9u, 5}, {33u, 3}, {300u, 40}}) {
      const test::Picture p = test::Pattern(w, h, l.bits);
      const std::string path = dir / "w.pic";
      ASSERT_EQ(test::WritePicture(p, path), kOk);
      const std::string file = test::ReadFileBytes(path);
      EXPECT_EQ(file.substr(10, 7), Raw({l.planeInfo, 0xFF, l.mode}) + Le(uint32_t(l.type), 2) +
                                        Le(uint32_t(l.size), 2));
      test::Picture back;
      ASSERT_EQ(test::ReadPicture(path, back), kOk);
      ASSERT_EQ(back.bits, l.bits == 1 ? 1u : l.bits <= 4 ? 4u : 8u);
      for (int32_t y = 0; y < h; ++y)
        for (uint32_t x = 0; x < w; ++x)
          ASSERT_EQ(back.Pixel(x, y), p.Pixel(x, y)) << x << "," << y;
      // The VGA keeps six bits a level.
      const Rgb c = p.palette[p.Pixel(0, 0)];
      if (l.bits > 1) {
        EXPECT_EQ(back.palette[p.Pixel(0, 0)],
                  (Rgb{VgaLevel(c.red >> 2), VgaLevel(c.green >> 2), VgaLevel(c.blue >> 2)}));
      }
    }
  }
  // Long runs go in one code of a 16-bit count.
  ASSERT_EQ(test::WritePicture(test::Picture::Blank(2000, 1, 8), dir / "b.pic"), kOk);
  EXPECT_EQ(test::ReadFileBytes(dir / "b.pic").substr(17 + 768),
            Le(1, 2) + Le(10, 2) + Le(2000, 2) + Raw({1, 1, 0}) + Le(2000, 2) + Raw({0}));
  EXPECT_EQ(test::WritePicture(test::Pattern(3, 3, 24), dir / "t.pic"), kTooManyColours);
}

}  // namespace
}  // namespace pxm
