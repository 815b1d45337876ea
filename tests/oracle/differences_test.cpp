// The one table of the places where Pixmill's rules deliberately differ from the public formats,
// with the reason and what checks the difference instead of the oracle; and the checks of those
// differences that the matrix cannot express.

#include <gtest/gtest.h>

#include "config/settings.h"
#include "core/error_codes.h"
#include "oracle/matrix.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm::oracle {

const std::vector<Difference>& Differences() {
  static const std::vector<Difference> table = {
      {"D1", "BMP", "one-bit files", "the colour table is ignored: index 0 black, 1 white",
       "one-bit pictures always show black and white",
       "bmp_test, the BMP suites (pal1bg, Core_1_Bit)"},
      {"D2", "BMP", "files under 54 bytes (the smallest OS/2 files)", "refused as damaged (2)",
       "info always reads 54 header bytes", "the matrix (OS/2 rows at width 1)"},
      {"D3", "BMP", "headers longer than 40 bytes (V4, V5, OS/2 2.x)",
       "the colour table is taken at offset 54 whatever the header's size",
       "the table's place is fixed by the 40-byte header", "the BMP suites (pal8v4, pal8os2v2)"},
      {"D4", "BMP", "16-bit files",
       "pixel x is made from the word at byte 4x: file pixel 2x, five bits a channel times 8",
       "the unpacking steps four bytes a pixel", "bmp_test, the BMP suites (rgb16)"},
      {"D5", "BMP", "2-bit, 32-bit and bit-field files", "not read as the format says",
       "only 1, 4, 8, 16 and 24 bits have row rules; 32 bits go in 3-byte steps, 2 bits as 24",
       "bmp_test, the BMP suites (pal2, rgb32, rgb16-565)"},
      {"D6", "BMP", "top-down files (a negative height)", "refused (8)",
       "rows are read bottom first only", "bmp_test, the BMP suites"},
      {"D7", "BMP", "24-bit files Pixmill writes",
       "both colour counts say 2^24, so ImageMagick refuses them",
       "the count is 2^bits at every depth", "the matrix, bmp_test"},
      {"D8", "PCX", "2 bits a pixel in one plane", "read as two planes of one bit",
       "how such files were always read", "PcxDifferences"},
      {"D9", "PCX", "one bit with a coloured palette", "black and white",
       "one-bit pictures always show black and white", "the matrix (ppmtopcx -planes 1)"},
      {"D10", "PCX", "a line without a count byte",
       "the next line repeats the last byte read; reading fails (3) unless a count byte follows",
       "the run count is taken down once more than it is stored", "PcxDifferences, pcx_test"},
      {"D11", "GIF", "one-bit pictures", "black and white, whatever the table",
       "one-bit pictures always show black and white", "the matrix, gif_test"},
      {"D12", "GIF", "an image using the global table after images with local tables",
       "the last local table read", "the scan keeps every table it passes", "gif_test"},
      {"D13", "GIF", "data ending before the last pixel", "the rows so far, then code 3",
       "missing data is damage", "gif_test, the GIF suites (missing-pixels)"},
      {"D14", "GIF", "transparency, screen placement, frames of an animation",
       "not applied: the image alone at its own size", "Pixmill reads images, not a viewer's show",
       "the GIF suites (as giftopnm shows the image)"},
      {"D15", "PNG", "grey up to 8 bits, grey with alpha",
       "shown through the grey ramp, whose steps are luminance-weighted and end below white",
       "the ramp is made by integer weights", "the matrix, PngSuite"},
      {"D16", "PNG", "16-bit samples", "the high byte", "rows hold 8 bits a sample",
       "the matrix, PngSuite"},
      {"D17", "PNG", "alpha, tRNS, bKGD, gAMA", "not applied", "rows have no alpha",
       "the matrix, PngSuite"},
      {"D18", "JPG", "CMYK and YCCK files", "\"Memory error\" (6)",
       "libjpeg's decoder has no CMYK to RGB conversion (djpeg has its own)", "the JPEG suite"},
      {"D19", "TIF", "grey of 2 to 7 bits", "level i shows as (256 / 2^bits) x i",
       "Pixmill's own grey ramp", "the TIFF suites"},
      {"D20", "TIF", "tiled pictures; floating-point samples", "refused (2); refused (8)",
       "the reader reads strips of whole samples", "the TIFF suites, tiff_test (tiled)"},
      {"D21", "TIF", "colour maps Pixmill writes",
       "each value is the palette component shifted left 8, not multiplied by 257",
       "the writer's rule; readers that scale by 65535 (ImageMagick) show some a level off",
       "the matrix (ImageMagick within one level)"},
      {"D22", "TGA", "15- and 16-bit pixels and map entries", "the first byte is the high byte",
       "the byte order the program always read", "targa_test"},
      {"D23", "TGA", "right-to-left rows", "the first width bytes of the row are reversed",
       "bytes are reversed, not pixels", "targa_test"},
      {"D24", "TGA", "files written with CreateTarga16",
       "half a row of five-bit pixels, each followed by a black one",
       "four bytes a pixel are built, two written", "the matrix, targa_test"},
      {"D25", "TGA", "one-bit pictures written", "type 3 with 1 bit a pixel, which nobody reads",
       "the writer keeps the picture's depth", "targa_test"},
      {"D26", "RAS", "type 3 (ImageMagick's true colour)",
       "run-length data: only files without a byte 128 read as others read them",
       "type 3 shares the run-length reader", "the matrix"},
      {"D27", "RAS", "runs crossing a row end (netpbm)", "cut at the row end: later rows slip",
       "each row is unpacked on its own", "SunDifferences"},
      {"D28", "RAS", "32-bit rows", "squeezed by their own byte rule",
       "the rule the program always used", "sun_raster_test"},
      {"D29", "FIT", "row order",
       "the first stored row is the top one (as netpbm); ImageMagick shows the pictures upside "
       "down",
       "rows are read in file order", "the matrix"},
      {"D30", "FIT", "three axes (colour)", "the first plane, as grey", "only two axes are read",
       "the matrix"},
      {"D31", "FIT", "BITPIX 16, 24, 32, -32 and -64", "each by its own rule, not by value",
       "the program's own sample rules", "fits_test"},
      {"D32", "IFF", "widths not a multiple of 16", "plane rows not padded to 16 bits, either way",
       "rows are (width + 7) div 8 bytes", "IffDifferences (the matrix uses whole words)"},
      {"D33", "IFF", "one plane", "black and white", "one-bit pictures always show black and white",
       "iff_test"},
      {"D34", "UUE", "data lines ending in spaces (old encoders' zeros)",
       "relaxed decoding strips them and then skips the line as too short; strict decoding keeps "
       "them",
       "trailing spaces are taken for padding", "UueDifferences"},
      {"D35", "TGA", "colour maps whose first index is above 0",
       "the pixels are read as many map entries too early as the first index says",
       "the reader skips the map's length less its first index", "targa_test (map skip)"},
      {"D36", "IFF", "colour maps longer than 768 bytes",
       "the chunk walk goes on at the file offset length - 768, not after the map",
       "the walk's rule for maps of more than 256 entries", "iff_test (oversized map)"},
      {"D37", "HRZ", "bytes above 63 (ImageMagick writes 64 for 254 and 255)",
       "full intensity; ImageMagick wraps them round, showing 64 as black",
       "samples are six bits: a larger byte can only mean the most",
       "PaintOracle (SSTV), sstv_test"},
      {"D38", "IMG", "8 planes without a palette",
       "grey from white (0) to black (255), plane 0 the lowest bit; FFmpeg takes plane 0 for the "
       "highest",
       "planes hold the value's bits from the lowest, as in colour files", "PaintDifferences"},
      {"D39", "IMG", "4 planes without a palette (netpbm)",
       "the standard colours with FFmpeg's levels (174 for half intensity); netpbm shows 170, and "
       "ignores XIMG palettes",
       "FFmpeg is the reader that knows XIMG files", "PaintDifferences"},
      {"D40", "WPG", "files without a colour map",
       "the VGA's 256 default colours; one bit black and white",
       "the format's default map is the VGA's; ImageMagick and GraphicsMagick show it with green "
       "and blue exchanged (and four levels apart), and ImageMagick one bit in black and green",
       "WpgOracle.FilesWithoutAColourMap, wpg_test"},
      {"D41", "PCD", "colours (ImageMagick)",
       "the display equations, values past 255 held at 255: reference white is 247, where "
       "ImageMagick divides by the luma factor to keep the headroom (white 182)",
       "the published conversion for display", "PhotoCdOracle (ImageMagick times 1.3584)"},
      {"D42", "PCD", "the half turn of the attribute byte (ImageMagick, FFmpeg)",
       "turned half round; ImageMagick leaves it unturned, FFmpeg turns nothing",
       "the attribute's two bits name four turns", "photo_cd_test"},
  };
  return table;
}

namespace {

using test::Picture;
using test::ShellQuote;

TEST(PcxDifferences, LiteralRowsAndTwoBitsInOnePlane) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("ppmtopcx"), "netpbm");
  test::TempDir dir;
  // D10: two rows of four different colours code as literals, so the second row fails.
  test::WritePpm(dir / "a.ppm", test::Scene(4, 2, 8), 4, 2);
  ASSERT_TRUE(test::RunIn(dir.path(), "ppmtopcx -8bit a.ppm >a.pcx"));
  Picture p;
  EXPECT_EQ(test::ReadPicture(dir / "a.pcx", p), kReadError);
  // D8: eight pixels 0 1 2 3 0 1 2 3 packed two bits each are P P, coded C2 P. As two planes the
  // line takes four bytes: P P and two read past the end (0). Planes go in at the picture's
  // stride of one byte, so plane 0 is P and plane 1 is 0: pixel x is bit 7 - x of P.
  std::vector<Rgb> row, colours = test::Scene(4, 1, 4);
  for (int i = 0; i < 8; ++i) row.push_back(colours[static_cast<size_t>(i % 4)]);
  test::WritePpm(dir / "b.ppm", row, 8, 1);
  ASSERT_TRUE(test::RunIn(dir.path(), "ppmtopcx -packed b.ppm >b.pcx"));
  const std::string bytes = test::ReadFileBytes(dir / "b.pcx");
  ASSERT_EQ(bytes.size(), 130u);
  ASSERT_EQ(bytes[3], 2);
  ASSERT_EQ(static_cast<uint8_t>(bytes[128]), 0xC2);
  ASSERT_EQ(test::ReadPicture(dir / "b.pcx", p), kOk);
  for (uint32_t x = 0; x < 8; ++x)
    EXPECT_EQ(p.Pixel(x, 0), (static_cast<uint8_t>(bytes[129]) >> (7 - x)) & 1u) << x;
}

TEST(IffDifferences, PlaneRowsAreNotPaddedEitherWay) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("ppmtoilbm") && test::HaveProgram("ilbmtoppm"), "netpbm");
  test::TempDir dir;
  // netpbm pads a 20-pixel plane row to 4 bytes; Pixmill reads 3-byte rows from the same body,
  // and netpbm takes Pixmill's 3-byte rows for 4-byte ones.
  const std::vector<Rgb> scene = test::Scene(20, 4, 2);
  test::WritePpm(dir / "in.ppm", scene, 20, 4);
  ASSERT_TRUE(test::RunIn(dir.path(), "ppmtoilbm -nocompress in.ppm >n.iff"));
  const std::string f = test::ReadFileBytes(dir / "n.iff");
  Picture p;
  ASSERT_EQ(test::ReadPicture(dir / "n.iff", p), kOk);
  for (size_t y = 0; y < 4; ++y)
    EXPECT_EQ(std::string(p.rows[y].begin(), p.rows[y].begin() + 3),
              f.substr(f.find("BODY") + 8 + 3 * y, 3));
  ASSERT_EQ(test::WritePicture(test::PictureOf(scene, 20, 4, 1), dir / "p.iff"), kOk);
  test::RgbImage want;
  EXPECT_FALSE(test::DecodeWith("ilbmtoppm " + ShellQuote(dir / "p.iff"), want) &&
               test::SameColours(scene, 20, want));
}

TEST(SunDifferences, RunsAcrossRowEndsAreCut) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("pnmtorast"), "netpbm");
  test::TempDir dir;
  // A flat picture is one run in netpbm's coding: Pixmill fills the first row and finds no more.
  test::WritePpm(dir / "in.ppm", std::vector<Rgb>(64 * 4, Rgb{9, 9, 9}), 64, 4);
  ASSERT_TRUE(test::RunIn(dir.path(), "ppmtopgm in.ppm | pnmtorast -rle >f.ras"));
  Picture p;
  EXPECT_NE(test::ReadPicture(dir / "f.ras", p), kOk);
}

TEST(UueDifferences, SpacesForZerosNeedStrictDecoding) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("uuencode"), "sharutils");
  ScopedSettings settings;
  test::TempDir dir;
  // Old encoders wrote a space where uuencode writes "`"; zeros end many lines in them.
  Picture p = Picture::Blank(40, 6, 8), got;
  for (uint32_t x = 0; x < 40; x += 3) p.SetPixel(x, 2, x);
  ASSERT_EQ(test::WritePicture(p, dir / "z.tga"), kOk);
  ASSERT_TRUE(test::RunIn(dir.path(), "uuencode z.tga z.tga | tr '`' ' ' >s.uue"));
  settings->RelaxedUUE = 0;
  ASSERT_EQ(test::ReadPicture(dir / "s.uue", got), kOk);
  EXPECT_EQ(got.rows, p.rows);
  settings->RelaxedUUE = 1;
  EXPECT_NE(test::ReadPicture(dir / "s.uue", got), kOk);
}

}  // namespace
}  // namespace pxm::oracle
