#include "formats/format_table.h"

#include <gtest/gtest.h>

#include <utility>

#include "config/settings.h"
#include "core/error_codes.h"

namespace pxm {
namespace {

struct Row {
  const char* extension;
  const char* description;
  uint32_t maxBits;
  uint32_t caps;
};

// The rows users see, in their fixed order (the destination dialog's buttons and the
// configuration file both depend on the order).
constexpr Row kExpected[kFormatCount] = {
    {"MAC", "(MAC) MacPaint", 1, 1},
    {"IMG", "(IMG) GEM/Ventura", 24, 1},
    {"PCX", "(PCX) PC Paintbrush", 24, 1},
    {"GIF", "(GIF) CompuServe", 8, 261},
    {"TIF", "(TIF) TIFF", 24, 1},
    {"WPG", "(WPG) WordPerfect Graphics", 8, 1},
    {"PIC", "(PIC) Pictor or Pegasus", 24, 1},
    {"TGA", "(TGA) Targa", 24, 1},
    {"CUT", "(CUT) Dr. Halo", 8, 1},
    {"BMP", "(BMP) Windows", 24, 1},
    {"MSP", "(MSP) Microsoft Paint", 1, 1},
    {"LBM", "(LBM) Amiga", 8, 1},
    {"EXE", "(EXE) Self-displaying image", 8, 1},
    {"TXT", "(TXT) Text files", 24, 1},
    {"RLE", "(RLE) Windows", 8, 1},
    {"JPG", "(JPG) Jpeg", 24, 1},
    {"ART", "(ART) PFS:Publisher", 1, 1},
    {"IFF", "(IFF) Amiga", 24, 1},
    {"RAS", "(RAS) Sun raster", 24, 1},
    {"HRZ", "(HRZ) SSTV", 24, 1},
    {"DIB", "(DIB) Windows", 24, 1},
    {"ICO", "(ICO) Windows icon", 8, 1},
    {"AVI", "(AVI) Video for Windows", 24, 1053},
    {"CBD", "(CDB) Clipboard", 24, 35},
    {"CPT", "(CPT) Corel PhotoPAINT", 24, 129},
    {"FIT", "(FIT) Flex. Image Transport", 24, 1},
    {"CDR", "(CDR) Corel Draw Preview", 24, 261},
    {"BGA", "(BGA) OS/2 Warp", 24, 261},
    {"PNG", "(PNG) Portable Netwk Grphcs", 24, 1},
    {"MPG", "(MPG) MPEG video", 24, 521},
    {"MOV", "(MOV) QuickTime movies", 24, 25},
    {"FLI", "(FLI) FLIC animation", 8, 1037},
    {"FLC", "(FLC) FLIC animation", 8, 1037},
    {"PCD", "(PCD) Kodak Photo-CD", 24, 1},
    {"WMF", "(WMF) Windows Metafile", 24, 2},
    {"CLP", "(CLP) Windows Clipboard", 24, 2},
    {"UUE", "(UUE) UUEncoded graphics", 24, 1},
    {"JPE", "(JPE) Jpeg", 24, 1},
    {"DLL", "(DLL) Windows library", 24, 261},
    {"VBX", "(VBX) Windows library", 24, 261},
    {"FTS", "(FTS) Flex. Image Transport", 24, 1},
    {"", "", 0, 0},
};

TEST(FormatTable, RowsInOrderWithTheirLimitsAndCapabilities) {
  for (int row = 0; row < kFormatCount; ++row) {
    SCOPED_TRACE(row);
    const FormatEntry& e = FormatTable()[static_cast<size_t>(row)];
    EXPECT_STREQ(e.extension, kExpected[row].extension);
    EXPECT_EQ(e.description, kExpected[row].description);
    EXPECT_LE(e.description.size(), 27u);  // a 28-byte field with its terminator
    EXPECT_EQ(e.maxBits, kExpected[row].maxBits);
    EXPECT_EQ(e.caps, kExpected[row].caps);
    EXPECT_EQ(e.enabled, row == kFormatCount - 1 ? 0u : 1u);
  }
  EXPECT_EQ(FormatAt(kFormatCount - 1).info, nullptr);  // the spare row
}

TEST(FormatTable, SharedAndRefusingRows) {
  auto same = [](int a, int b) {
    return FormatAt(a).info == FormatAt(b).info && FormatAt(a).read == FormatAt(b).read &&
           FormatAt(a).write == FormatAt(b).write &&
           FormatAt(a).listImages == FormatAt(b).listImages;
  };
  // DIB/BMP, IFF/LBM, FLC/FLI, JPE/JPG, VBX/DLL, FTS/FIT; BGA has handlers of its own.
  for (auto [a, b] : {std::pair{20, 9}, {17, 11}, {32, 31}, {37, 15}, {39, 38}, {40, 25}})
    EXPECT_TRUE(same(a, b)) << a;
  EXPECT_NE(FormatAt(27).info, FormatAt(9).info);

  // AVI, WMF and CLP are listed but only ever answer "Unsupported function".
  ImageInfo info;
  for (int row : {22, 34, 35}) {
    EXPECT_EQ(FormatAt(row).info(info, "/nonexistent/x", 0), kUnsupportedFunction) << row;
    EXPECT_EQ(FormatAt(row).read(info, "/nonexistent/x"), kUnsupportedFunction) << row;
    EXPECT_EQ(FormatAt(row).write(info, "/nonexistent/x"), kUnsupportedFunction) << row;
  }
  // The clipboard can be written to but is not a file to read.
  EXPECT_EQ(FormatAt(23).info(info, "/nonexistent/x.cbd", 0), kUnsupportedFormat);
  EXPECT_EQ(FormatAt(23).read(info, "/nonexistent/x.cbd"), kUnsupportedFormat);
  EXPECT_TRUE(CanWrite(FormatAt(23)));
  EXPECT_FALSE(CanRead(FormatAt(23)));

  // A row number outside the table gets a row that refuses, never memory past the table.
  for (int row : {-1, kFormatCount, 1 << 30}) {
    EXPECT_STREQ(FormatAt(row).extension, "") << row;
    EXPECT_EQ(FormatAt(row).info(info, "/nonexistent/x.bmp", 0), kUnsupportedFormat) << row;
    EXPECT_EQ(FormatAt(row).read(info, "/nonexistent/x.bmp"), kUnsupportedFormat) << row;
    EXPECT_EQ(FormatAt(row).write(info, "/nonexistent/x.bmp"), kUnsupportedFunction) << row;
  }
}

TEST(FindFormat, ComparesThreeCharactersOfTheExtensionInAnyCase) {
  EXPECT_EQ(FindFormat("photo.jpeg"), 37);  // JPE
  EXPECT_EQ(FindFormat("PHOTO.JPG"), 15);
  EXPECT_EQ(FindFormat("photo.Jpe"), 37);
  EXPECT_EQ(FindFormat("scan.TIFF"), 4);
  EXPECT_EQ(FindFormat("x.cbd"), 23);
  EXPECT_EQ(FindFormat("/some/dir/a.b.Dib"), 20);
  EXPECT_EQ(FindFormat("arrows.bga"), 27);
  EXPECT_EQ(FindFormatByExtension("gif"), 3);

  EXPECT_EQ(FindFormat("a.jp"), -1);
  EXPECT_EQ(FindFormat("a."), -1);
  EXPECT_EQ(FindFormat("README"), -1);
  EXPECT_EQ(FindFormat("photo.xyz"), -1);
  EXPECT_EQ(FindFormat("/pictures.bmp/readme"), -1);  // a dot in a directory is no extension
}

TEST(FormatSwitch, OnlyALow16BitWordOfExactlyOneIsOn) {
  ScopedSettings settings;
  settings->formatEnabled[9] = 0x10001;
  settings->formatEnabled[3] = 2;
  EXPECT_TRUE(FormatEnabled(9));
  EXPECT_EQ(FormatSwitch(3), 2u);
  EXPECT_FALSE(FormatEnabled(3));
  EXPECT_EQ(FormatSwitch(kFormatCount), 0u);
}

}  // namespace
}  // namespace pxm
