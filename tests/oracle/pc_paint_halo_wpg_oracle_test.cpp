// PC Paint (Pictor), Dr. Halo and WordPerfect Graphics files read as the programs that read them
// do: the public PC Paint samples and files built here byte for byte, through FFmpeg, ImageMagick
// and GraphicsMagick. Files Pixmill writes in these formats are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>

#include "formats/pc_palettes.h"
#include "support/decoded.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Le;
using test::Raw;

bool FfmpegDecode(const std::string& path, test::RgbImage& out) {
  return test::DecodeWith(
      "ffmpeg -v error -i " + test::ShellQuote(path) + " -f image2pipe -vcodec ppm -", out);
}
bool GmDecode(const std::string& path, test::RgbImage& out) {
  return test::DecodeWith("gm convert " + test::ShellQuote(path) + " ppm:-", out);
}

std::string Pic(uint32_t width, uint32_t height, int planeInfo, int paletteType,
                const std::string& palette, const std::string& data) {
  return Le(0x1234, 2) + Le(width, 2) + Le(height, 2) + Le(0, 4) + Raw({planeInfo, 0xFF, 'X'}) +
         Le(paletteType, 2) + Le(uint32_t(palette.size()), 2) + palette + data;
}

// The data in one block of plain bytes (the marker, 0xEE, never among them).
std::string Blocked(const std::string& data) {
  return Le(1, 2) + Le(uint32_t(data.size() + 5), 2) + Le(uint32_t(data.size()), 2) + Raw({0xEE}) +
         data;
}

TEST(PcPaintOracle, PublicSamplesAndEveryLayoutReadAsFfmpegReadsThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("ffmpeg"), "ffmpeg");
  std::vector<std::string> files;
  const std::string root = test::TestDataDir() + "/pictor";
  if (fs::is_directory(root))
    for (const std::string& f : test::FilesUnder(root)) files.push_back(f);
  EXPECT_TRUE(files.size() >= 7 || !fs::is_directory(root));
  // Layouts and palettes the samples lack: two planes of two bits, packed nibbles, three planes,
  // CGA, PCjr, EGA and VGA palettes on pictures of other depths, 8-bit data without blocks.
  // (FFmpeg shows other data kept without blocks black; no program is known to write such files.)
  test::TempDir dir;
  std::string p16;
  for (int i = 0; i < 48; ++i) p16 += Raw({(i * 5) % 64});
  const std::string built[] = {
      Pic(4, 2, 0x12, 0, "", Blocked(Raw({0x1B, 0xE4, 0x4E, 0xB1}))),
      Pic(4, 1, 0x04, 0, "", Blocked(Raw({0x12, 0x34}))),
      Pic(8, 2, 0x21, 0, "", Blocked(Raw({1, 2, 3, 4, 5, 6}))),
      Pic(8, 1, 0x01, 4, Raw({10, 20, 30, 40, 50, 60}), Blocked(Raw({0x55}))),
      Pic(8, 1, 0x01, 3, Raw({1, 2}) + std::string(14, '\0'), Blocked(Raw({0x55}))),
      Pic(4, 1, 0x02, 1, Raw({3, 0}), Blocked(Raw({0x1B}))),
      Pic(4, 1, 0x02, 2, Raw({1, 2, 3, 4}), Blocked(Raw({0x1B}))),
      Pic(8, 1, 0x08, 3, std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09", 9),
          Blocked(Raw({1, 2, 3, 4, 5, 6, 7, 8}))),
      Pic(16, 1, 0x31, 5, p16, Blocked(Raw({0x0F, 0xF0, 0x33, 0xCC, 0x55, 0xAA, 0x00, 0xFF}))),
      Pic(3, 2, 0x08, 0, "", Le(0, 2) + Raw({1, 2, 3, 12, 13, 14})),
  };
  for (size_t i = 0; i < std::size(built); ++i) {
    files.push_back(dir / ("built" + std::to_string(i) + ".pic"));
    test::WriteFileBytes(files.back(), built[i]);
  }
  for (const std::string& f : files) {
    test::RgbImage want;
    ASSERT_TRUE(FfmpegDecode(f, want)) << f;
    EXPECT_TRUE(test::ReadsAs(f, want)) << f;
  }
}

std::string Rec1(int type, const std::string& data) {
  std::string length =
      data.size() < 0xFF ? Raw({int(data.size())}) : "\xFF" + Le(uint32_t(data.size()), 2);
  return Raw({type}) + length + data;
}
std::string Rec2(int type, const std::string& data) {
  return Raw({1, type, 0}) +
         (data.size() < 0xFF ? Raw({int(data.size())}) : "\xFF" + Le(uint32_t(data.size()), 2)) +
         data;
}
std::string Prefix(int version) {
  return Raw({0xFF, 'W', 'P', 'C'}) + Le(16, 4) + Raw({1, 0x16, version, 0}) + Le(0, 4);
}

TEST(WpgOracle, BitmapRecordsReadAsImageMagickAndGraphicsMagickReadThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("gm"), "GraphicsMagick");
  std::string map1, map2;
  for (int i = 0; i < 256; ++i) map1 += Raw({i, (i * 7) % 256, 255 - i});
  for (int i = 0; i < 256; ++i) map2 += Raw({(i * 3) % 256, i, (i * 11) % 256, 0xFF});
  const std::string m1 = Rec1(0x0E, Le(0, 2) + Le(256, 2) + map1);
  const std::string m2 = Rec2(0x0C, Le(0, 2) + Le(256, 2) + map2);
  auto bitmap1 = [](uint32_t w, uint32_t h, uint32_t depth, const std::string& data) {
    return Rec1(0x0B, Le(w, 2) + Le(h, 2) + Le(depth, 2) + Le(75, 4) + data);
  };
  auto bitmap2 = [](uint32_t w, uint32_t h, int code, int packed, const std::string& data) {
    return Rec2(0x0E, Le(w, 2) + Le(h, 2) + Raw({code, packed}) + data);
  };
  const std::string files[] = {
      Prefix(1) + m1 + bitmap1(5, 4, 8, Raw({0x83, 9, 2, 4, 5, 0, 2, 0x85, 1})) + Rec1(0x10, ""),
      Prefix(1) + m1 + bitmap1(9, 3, 1, Raw({0x82, 0x5A, 0x84, 0xF0, 0x80, 2})) + Rec1(0x10, ""),
      Prefix(1) + m1 + bitmap1(6, 2, 4, Raw({6, 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB})) +
          Rec1(0x10, ""),
      Prefix(1) + m1 + bitmap1(5, 2, 2, Raw({0x04, 0x1B, 0xE4, 0x4E, 0xB1})) + Rec1(0x10, ""),
      Prefix(2) + m2 + bitmap2(4, 3, 4, 1, Raw({0x81, 9, 0x01, 1, 2, 0xFE, 0, 0x7F, 1, 0xFF, 1})) +
          Rec2(0x02, ""),
      Prefix(2) +
          bitmap2(3, 2, 8, 1,
                  Raw({0x7D, 3, 0x81, 10, 20, 30, 0xFD, 0, 0x02, 7, 8, 9, 1, 2, 3, 4, 5, 6})) +
          Rec2(0x02, ""),
      Prefix(2) + m2 + bitmap2(4, 1, 3, 0, Raw({0x12, 0xAB})) + Rec2(0x02, ""),
  };
  test::TempDir dir;
  for (size_t i = 0; i < std::size(files); ++i) {
    SCOPED_TRACE(i);
    const std::string path = dir / ("f" + std::to_string(i) + ".wpg");
    test::WriteFileBytes(path, files[i]);
    test::RgbImage im, gm;
    ASSERT_TRUE(test::MagickDecode(path, im));
    EXPECT_TRUE(test::ReadsAs(path, im));
    // GraphicsMagick shows one bit in black and white whatever the map, and reads no 24-bit
    // bitmap.
    if (i == 1 || i == 5) continue;
    ASSERT_TRUE(GmDecode(path, gm));
    EXPECT_TRUE(test::ReadsAs(path, gm));
  }
}

// D40: without a colour map Pixmill shows the VGA's own default colours; both programs show them
// with green and blue exchanged (and four levels that differ from the VGA's besides).
TEST(WpgOracle, FilesWithoutAColourMap) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  test::TempDir dir;
  std::string all;
  for (int i = 0; i < 256; ++i) all += Raw({i});
  const std::string path = dir / "nomap.wpg";
  test::WriteFileBytes(path, Prefix(1) +
                                 Rec1(0x0B, Le(256, 2) + Le(1, 2) + Le(8, 2) + Le(75, 4) +
                                                Raw({127}) + all.substr(0, 127) + Raw({127}) +
                                                all.substr(127, 127) + Raw({2}) + all.substr(254)) +
                                 Rec1(0x10, ""));
  test::RgbImage im;
  ASSERT_TRUE(test::MagickDecode(path, im));
  const Palette vga = VgaDefaultPalette();
  int same = 0;
  for (size_t i = 0; i < 256; ++i)
    same += im.pixels[i] == Rgb{vga[i].red, vga[i].blue, vga[i].green};
  EXPECT_EQ(same, 252);
  const test::Decoded d = test::DecodeFile(path);
  EXPECT_EQ(d.info.palette, vga);
}

TEST(CutOracle, RowsAndPaletteFilesReadAsImageMagickAndGraphicsMagickReadThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("gm"), "GraphicsMagick");
  test::TempDir dir;
  const std::string rows[] = {Raw({0x83, 7, 0x02, 1, 200, 0}), Raw({0x85, 4, 0}),
                              Raw({0x01, 6, 0x84, 99, 0})};
  std::string cut = Le(5, 2) + Le(3, 2) + Le(0, 2);
  for (const std::string& r : rows) cut += Le(uint32_t(r.size()), 2) + r;
  // Levels up to 63, and 201 entries, two of them past the first 512-byte block.
  std::string pal = "AH" + Le(0, 4) + Raw({0x0A, 0}) + Le(0, 4) + Le(200, 2) + Le(63, 2) +
                    Le(63, 2) + Le(63, 2) + "Dr. Halo" + std::string(12, '\0');
  for (int i = 0; i <= 200; ++i) {
    if (pal.size() % 512 > 506) pal.resize(pal.size() + 512 - pal.size() % 512, '\0');
    pal += Le(i % 64, 2) + Le((i * 3) % 64, 2) + Le(63 - i % 64, 2);
  }
  for (bool withPalette : {false, true}) {
    SCOPED_TRACE(withPalette);
    test::WriteFileBytes(dir / "h.cut", cut);
    if (withPalette) test::WriteFileBytes(dir / "h.pal", pal);
    test::RgbImage im, gm;
    ASSERT_TRUE(test::MagickDecode(dir / "h.cut", im));
    ASSERT_TRUE(GmDecode(dir / "h.cut", gm));
    EXPECT_TRUE(test::ReadsAs(dir / "h.cut", im));
    EXPECT_TRUE(test::ReadsAs(dir / "h.cut", gm));
  }
}

}  // namespace
}  // namespace pxm
