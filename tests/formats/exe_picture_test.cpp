#include "formats/exe_picture.h"

#include <gtest/gtest.h>

#include <map>

#include "core/error_codes.h"
#include "core/names.h"
#include "support/decoded.h"

namespace pxm {
namespace {

using test::Le;

// A DOS program of `imageBytes` (its MZ header's page counts saying so), filled with a byte that
// starts no picture; `newHeader` goes into the word at 0x3C.
std::string DosProgram(uint32_t imageBytes, uint32_t newHeader = 0) {
  std::string p(imageBytes, '\x90');
  p.replace(0, 6, "MZ" + Le(imageBytes % 512, 2) + Le((imageBytes + 511) / 512, 2));
  p.replace(0x3C, 4, Le(newHeader, 4));
  return p;
}

// A Windows program: its DOS stub of 128 bytes, a PE header with two sections whose data ends at
// `end`, and filler up to there.
std::string WindowsProgram(uint32_t end) {
  std::string p = DosProgram(128, 128);
  std::string pe = "PE" + std::string(2, '\0') + Le(0x14C, 2) + Le(2, 2) + std::string(12, '\0') +
                   Le(0, 2) + Le(0, 2);
  for (uint32_t start : {512u, end - 256})
    pe += std::string(16, 'S') + Le(256, 4) + Le(start, 4) + std::string(16, '\0');
  p += pe;
  p.resize(end, '\x90');
  return p;
}

TEST(ExePicture, PicturesAfterTheProgramReadThroughTheirOwnFormats) {
  test::TempDir dir;
  const test::Picture picture = test::Pattern(13, 7, 8);
  std::map<std::string, std::string> files;
  for (const char* ext : {"pcx", "gif", "bmp"}) {
    ASSERT_EQ(test::WritePicture(picture, dir / (std::string("p.") + ext)), kOk);
    files[ext] = test::ReadFileBytes(dir / (std::string("p.") + ext));
  }
  struct Case {
    const char* what;
    std::string program;
    const char* ext;
    uint32_t offset;
  };
  const Case cases[] = {
      {"PCX where the DOS image ends", DosProgram(600), "pcx", 600},
      {"GIF at the next paragraph", DosProgram(600) + std::string(8, '\0'), "gif", 608},
      {"BMP at the next page", DosProgram(600) + std::string(424, '\0'), "bmp", 1024},
      {"a whole last page", DosProgram(1024), "gif", 1024},
      {"after a PE image", WindowsProgram(3000), "bmp", 3000},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string file = c.program + files[c.ext];
    const test::Decoded d = test::DecodeBytes(dir, "x.exe", file);
    ASSERT_EQ(d.readCode, kOk);
    EXPECT_EQ(d.info.fileSize, int32_t(file.size()));
    EXPECT_EQ(d.info.description.substr(0, 3), ToUpperAscii(c.ext));
    EXPECT_NE(d.info.description.find("at byte " + std::to_string(c.offset)), std::string::npos)
        << d.info.description;
    for (int32_t y = 0; y < picture.depth; ++y)
      for (uint32_t x = 0; x < picture.width; ++x)
        ASSERT_EQ(d.info.palette[d.Pixel(x, y)], picture.Colour(x, y)) << x << "," << y;
  }
}

TEST(ExePicture, ProgramsWithoutAPictureAndDamagedOnes) {
  test::TempDir dir;
  const test::Picture picture = test::Pattern(5, 3, 8);
  ASSERT_EQ(test::WritePicture(picture, dir / "p.pcx"), kOk);
  const std::string pcx = test::ReadFileBytes(dir / "p.pcx");
  // A BMP header declaring 65535 x 65535 at 24 bits in a stretch of some 200 bytes.
  const std::string hugeBmp = "BM" + std::string(12, '\0') + Le(40, 4) + Le(65535, 4) +
                              Le(65535, 4) + Le(1, 2) + Le(24, 2) + std::string(160, '\0');
  struct Case {
    const char* what;
    std::string file;
    int infoCode;
  };
  const Case cases[] = {
      {"not a program", "XZ" + DosProgram(600).substr(2) + pcx, kCorruptedFile},
      {"a program alone", DosProgram(600), kNoBitmap},
      {"a picture not where the program ends", DosProgram(600) + "abc" + pcx, kNoBitmap},
      {"pages past the end of the file", DosProgram(600).substr(0, 300) + pcx, kNoBitmap},
      {"a picture cut short", DosProgram(600) + pcx.substr(0, 100), kCorruptedFile},
      {"a huge picture in a small stretch", DosProgram(600) + hugeBmp, kCorruptedFile},
      {"a tiny file", "MZ", kCorruptedFile},
  };
  for (const Case& c : cases)
    EXPECT_EQ(test::DecodeBytes(dir, "x.exe", c.file).infoCode, c.infoCode) << c.what;
}

}  // namespace
}  // namespace pxm
