// JPEG files against libjpeg's own programs (cjpeg and djpeg drive the same library with the
// same settings, so bytes and pixels must match exactly), against Pillow and ImageMagick, and
// against the public JPEG suite.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "support/oracles.h"
#include "support/picture.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using test::Picture;
using test::RgbImage;

std::string Q(const std::string& path) { return test::ShellQuote(path); }

bool HaveLibjpegPrograms() { return test::HaveProgram("cjpeg") && test::HaveProgram("djpeg"); }

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
  const Mode modes[] = {{"", 1, 1}, {"-colors 256 -onepass", 0, 1},
                        {"-colors 256 -onepass -dither none", 0, 0}};
  for (const Mode& m : modes) {
    SCOPED_TRACE(testing::Message() << "djpeg " << m.options);
    RgbImage want;
    ASSERT_TRUE(test::DecodeWith("djpeg -pnm " + std::string(m.options) + " " + Q(path), want));
    Picture p;
    ASSERT_EQ(ReadColours(path, m.readRgb, m.dither, p), kOk);
    EXPECT_TRUE(test::SameColours(test::Colours(p), want, p.width, static_cast<uint32_t>(p.depth)));
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
  const Case cases[] = {{1, 1, 24, 75},   {17, 9, 24, 75}, {64, 48, 24, 30}, {33, 20, 24, 100},
                        {23, 11, 8, 75},  {9, 5, 4, 50},   {31, 7, 1, 75},   {16, 16, 24, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.width << "x" << c.height << "x" << c.bits << " quality "
                                    << c.quality);
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

TEST(JpegOracle, CjpegFilesReadAsDjpegDecodesThem) {
  PXM_REQUIRE_ORACLE(HaveLibjpegPrograms(), "libjpeg-turbo-progs");
  test::TempDir dir;
  const char* variants[] = {"-quality 75",  "-quality 90 -sample 1x1", "-progressive",
                            "-grayscale",   "-optimize -restart 2",    "-arithmetic",
                            "-sample 2x1",  "-quality 20 -smooth 30",  "-rgb"};
  for (auto [w, h] : {std::pair{37u, 23u}, {1u, 1u}, {200u, 3u}})
    for (const char* v : variants) {
      SCOPED_TRACE(testing::Message() << "cjpeg " << v << " " << w << "x" << h);
      std::vector<Rgb> scene;
      for (uint32_t i = 0; i < w * h; ++i)
        scene.push_back(Rgb{static_cast<uint8_t>(i * 7), static_cast<uint8_t>(i * i / 5),
                            static_cast<uint8_t>(255 - (i * 3) % 256)});
      test::WritePpm(dir / "in.ppm", scene, w, h);
      ASSERT_EQ(test::Run("cjpeg " + std::string(v) + " " + Q(dir / "in.ppm") + " >" +
                          Q(dir / "c.jpg") + " 2>/dev/null"),
                0);
      ExpectReadsAsDjpeg(dir / "c.jpg");
    }
}

TEST(JpegOracle, PillowAndImageMagickReadPixmillFiles) {
  PXM_REQUIRE_ORACLE(HaveLibjpegPrograms(), "libjpeg-turbo-progs");
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  test::TempDir dir;
  for (uint32_t bits : {1u, 8u, 24u})
    for (auto [w, h] : {std::pair{1u, 1}, {45u, 19}}) {
      SCOPED_TRACE(testing::Message() << w << "x" << h << "x" << bits);
      ASSERT_EQ(test::WritePicture(test::Pattern(w, h, bits), dir / "p.jpg"), kOk);
      RgbImage want, got;
      ASSERT_TRUE(test::DecodeWith("djpeg -pnm " + Q(dir / "p.jpg"), want));
      ASSERT_TRUE(test::PillowDecode(dir / "p.jpg", got));
      EXPECT_TRUE(test::SameColours(got.pixels, want, got.width, got.height)) << "Pillow";
      ASSERT_TRUE(test::MagickDecode(dir / "p.jpg", got));
      EXPECT_TRUE(test::SameColours(got.pixels, want, got.width, got.height)) << "ImageMagick";
    }
}

// Where Pixmill deliberately reads otherwise than djpeg, and why.
struct Difference {
  const char* nameContains;
  const char* reason;
};
const Difference kDifferences[] = {
    // djpeg converts CMYK to RGB in its own output writer; the library's decoder has no such
    // conversion, so asking it for RGB (or for the quantizer's RGB palette) is its fatal error.
    {"cmyk", "CMYK files give \"Memory error\""},
};

// Every file of the public suite that djpeg decodes reads as djpeg decodes it, apart from the
// differences above; the files it refuses (12-bit, lossless, JPEG-LS) give "Memory error".
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
    const bool djpegReads = test::RunCapture("djpeg -ppm " + Q(path) + " 2>/dev/null", ignored) == 0;
    const Difference* difference = nullptr;
    for (const Difference& d : kDifferences)
      if (e.path().filename().string().find(d.nameContains) != std::string::npos) difference = &d;
    Picture p;
    if (difference) {
      SCOPED_TRACE(difference->reason);
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
