// JPEG files against libjpeg's own programs, which drive the same library with the same
// settings: Pixmill's files byte for byte what cjpeg writes, and the public JPEG suite read as
// djpeg decodes it in each of Pixmill's ways of reading. Files of other programs and Pixmill's
// files read by others are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/picture_files.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

std::string Q(const std::string& path) {
  return test::ShellQuote(path);
}

bool HaveLibjpegPrograms() {
  return test::HaveProgram("cjpeg") && test::HaveProgram("djpeg");
}

// Pixmill's reading of a file with the given settings, as colours.
int ReadColours(const std::string& path, int readRgb, int dither, Picture& out) {
  ScopedSettings settings;
  settings->ReadJpegRgb = readRgb;
  settings->DitherOnJpegRead = dither;
  return test::ReadPicture(path, out);
}

// djpeg with `options` and Pixmill with the matching settings decode `path` alike.
void ExpectReadsAsDjpeg(const std::string& path) {
  struct Mode {
    const char* options;
    int readRgb, dither;
  };
  const Mode modes[] = {
      {"", 1, 1}, {"-colors 256 -onepass", 0, 1}, {"-colors 256 -onepass -dither none", 0, 0}};
  for (const Mode& m : modes) {
    SCOPED_TRACE(testing::Message() << "djpeg " << m.options);
    RgbImage want;
    ASSERT_TRUE(test::DecodeWith("djpeg -pnm " + std::string(m.options) + " " + Q(path), want));
    Picture p;
    ASSERT_EQ(ReadColours(path, m.readRgb, m.dither, p), kOk);
    EXPECT_TRUE(test::SameColours(p, want));
  }
}

TEST(JpegOracle, WrittenFilesAreByteForByteWhatCjpegWrites) {
  PXM_REQUIRE_ORACLE(HaveLibjpegPrograms(), "libjpeg-turbo-progs");
  test::TempDir dir;
  struct Case {
    uint32_t width;
    int32_t height;
    uint32_t bits;
    int quality;
  };
  const Case cases[] = {{1, 1, 24, 75},  {17, 9, 24, 75}, {64, 48, 24, 30}, {33, 20, 24, 100},
                        {23, 11, 8, 75}, {9, 5, 4, 50},   {31, 7, 1, 75},   {16, 16, 24, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << c.width << "x" << c.height << "x" << c.bits << " quality " << c.quality);
    ScopedSettings settings;
    settings->JpegCompressionFactor = c.quality;
    const Picture p = test::Pattern(c.width, c.height, c.bits, c.width);
    ASSERT_EQ(test::WritePicture(p, dir / "p.jpg"), kOk);
    // Palette pictures go in as the colours of their palette.
    test::WritePpm(dir / "p.ppm", test::Colours(p), c.width, static_cast<uint32_t>(c.height));
    ASSERT_EQ(test::Run("cjpeg -quality " + std::to_string(c.quality) + " " + Q(dir / "p.ppm") +
                        " >" + Q(dir / "c.jpg") + " 2>/dev/null"),
              0);
    EXPECT_TRUE(test::ReadFileBytes(dir / "p.jpg") == test::ReadFileBytes(dir / "c.jpg"));
  }
}

// Every file of the public suite that djpeg decodes reads as djpeg decodes it, apart from CMYK
// files (D18: djpeg converts them in its own output writer, the library has no such conversion,
// so asking it for RGB or the quantizer's palette is its fatal error); the files djpeg refuses
// (12-bit, lossless, JPEG-LS) give "Memory error" too.
TEST(JpegOracle, PublicSuiteReadsAsDjpegOrIsRefused) {
  PXM_REQUIRE_ORACLE(HaveLibjpegPrograms(), "libjpeg-turbo-progs");
  const std::string root = test::TestDataDir();
  if (root.empty() || !fs::is_directory(root + "/jpegsuite")) GTEST_SKIP() << "no jpegsuite";
  int decoded = 0, refused = 0, different = 0;
  for (const auto& e : fs::recursive_directory_iterator(root + "/jpegsuite")) {
    if (e.path().extension() != ".jpg") continue;
    const std::string path = e.path().string();
    SCOPED_TRACE(path);
    std::string ignored;
    const bool djpegReads =
        test::RunCapture("djpeg -ppm " + Q(path) + " 2>/dev/null", ignored) == 0;
    Picture p;
    if (e.path().filename().string().find("cmyk") != std::string::npos) {
      for (int rgb : {0, 1}) EXPECT_EQ(ReadColours(path, rgb, 1, p), kMemoryError);
      ++different;
    } else if (djpegReads) {
      ExpectReadsAsDjpeg(path);
      ++decoded;
    } else {
      EXPECT_EQ(ReadColours(path, 1, 1, p), kMemoryError);
      ++refused;
    }
  }
  EXPECT_GT(decoded, 50);
  EXPECT_GT(refused, 20);
  EXPECT_GT(different, 2);
}

}  // namespace
}  // namespace pxm
