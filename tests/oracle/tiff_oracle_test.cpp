// TIFF files against libtiff's tools, ImageMagick and Pillow: Pixmill's files for every
// TiffOptions row opened by them with the same pixels; files they write, in every compression
// Pixmill reads, read pixel for pixel; and the public TIFF suites.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/image_store.h"
#include "core/row_format.h"
#include "core/sinks.h"
#include "formats/format_table.h"
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

bool HaveTiffTools() {
  return test::HaveProgram("tiffcp") && test::HaveProgram("tiffinfo") &&
         test::HaveProgram("tiffcmp");
}

// What Pixmill's file shows: one-bit pictures in black and white, the lighter of their two
// palette entries white.
std::vector<Rgb> Expected(const Picture& p) {
  std::vector<Rgb> colours = test::Colours(p);
  if (p.bits != 1) return colours;
  auto light = [](const Rgb& c) { return 30 * c.red + 59 * c.green + 11 * c.blue; };
  const bool firstIsWhite = light(p.palette[0]) > light(p.palette[1]);
  for (size_t i = 0; i < colours.size(); ++i) {
    const uint32_t v = p.Pixel(static_cast<uint32_t>(i % p.width), static_cast<int32_t>(i / p.width));
    const bool white = (v == 0) == firstIsWhite;
    colours[i] = white ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
  }
  return colours;
}

TEST(TiffOracle, EveryOptionsRowOpensInLibtiffToolsAndPillowWithTheSamePixels) {
  PXM_REQUIRE_ORACLE(HaveTiffTools(), "libtiff-tools");
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  test::TempDir dir;
  for (int row = 0; row <= 5; ++row)
    for (uint32_t bits : {1u, 4u, 8u, 24u})
      // One pixel; and rows of several strips at every depth (1 bit too), an odd width.
      for (auto [w, h] : {std::pair{1u, 1}, {2001u, 97}}) {
        SCOPED_TRACE(testing::Message() << "TiffOptions " << row << ", " << w << "x" << h << "x"
                                        << bits);
        ScopedSettings settings;
        settings->TiffOptions = row;
        const Picture p = test::Pattern(w, h, bits, w + bits);
        const std::string path = dir / "p.tif";
        ASSERT_EQ(test::WritePicture(p, path), kOk);
        std::string report;
        ASSERT_EQ(test::RunCapture("tiffinfo -D " + Q(path) + " 2>&1", report), 0);
        EXPECT_EQ(report.find("rror"), std::string::npos) << report;
        // libtiff decodes every strip to what its own uncompressed copy holds.
        ASSERT_EQ(test::Run("tiffcp -c none " + Q(path) + " " + Q(dir / "copy.tif")), 0);
        EXPECT_EQ(test::Run("tiffcmp " + Q(path) + " " + Q(dir / "copy.tif") + " >/dev/null"), 0);
        RgbImage got;
        ASSERT_TRUE(test::PillowDecode(path, got));
        EXPECT_TRUE(test::SameColours(Expected(p), got, w, static_cast<uint32_t>(h)));
      }
}

// Pixmill reads the file as ImageMagick decodes it.
testing::AssertionResult ReadsAsMagick(const std::string& path, int tolerance) {
  RgbImage want;
  if (!test::MagickDecode(path, want)) return testing::AssertionFailure() << "ImageMagick fails";
  Picture p;
  if (int code = test::ReadPicture(path, p)) return testing::AssertionFailure() << "code " << code;
  return test::SameColours(test::Colours(p), want, p.width, static_cast<uint32_t>(p.depth),
                           tolerance);
}

TEST(TiffOracle, ImageMagickAndTiffcpFilesReadPixelForPixel) {
  PXM_REQUIRE_ORACLE(HaveTiffTools(), "libtiff-tools");
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  struct Kind {
    const char* options;
    const char* compressions;  // tiffcp -c values that suit the kind
    int tolerance;             // quantized colours have 16-bit map values that are not whole
                               // multiples of 257: Pixmill keeps their high byte, ImageMagick
                               // rounds
  };
  const Kind kinds[] = {
      {"-threshold 50% -depth 1", "none packbits lzw g3 g3:2d g4", 0},
      {"-threshold 50% -depth 1 -define quantum:polarity=min-is-white", "none g4", 0},
      {"-type grayscale", "none packbits lzw", 0},
      {"-colors 12 -type palette", "none packbits lzw", 1},
      {"-type palette", "none packbits lzw", 0},
      {"-type truecolor", "none packbits lzw", 0}};
  test::TempDir dir;
  for (const Kind& k : kinds)
    for (const char* endian : {"lsb", "msb"})
      for (auto [w, h] : {std::pair{1u, 1u}, {13u, 7u}, {67u, 41u}}) {
        SCOPED_TRACE(testing::Message() << k.options << " " << endian << " " << w << "x" << h);
        std::vector<Rgb> scene;
        for (uint32_t i = 0; i < w * h; ++i) {
          const auto v = static_cast<uint8_t>((i * 37) ^ (i / w * 11));
          scene.push_back(Rgb{v, static_cast<uint8_t>(v * 3), static_cast<uint8_t>(255 - v)});
        }
        test::WritePpm(dir / "in.ppm", scene, w, h);
        const std::string made = dir / "im.tif";
        // Several strips of three rows each.
        ASSERT_EQ(test::Run(test::kMagick + " " + Q(dir / "in.ppm") + " " + k.options +
                            " -define tiff:endian=" + endian + " -define tiff:rows-per-strip=3" +
                            " -compress none " + Q(made)),
                  0);
        EXPECT_TRUE(ReadsAsMagick(made, k.tolerance));
        std::istringstream list(k.compressions);
        for (std::string c; list >> c;) {
          SCOPED_TRACE("tiffcp -c " + c);
          const std::string copy = dir / "cp.tif";
          ASSERT_EQ(test::Run("tiffcp -c " + c + " " + Q(made) + " " + Q(copy)), 0);
          EXPECT_TRUE(ReadsAsMagick(copy, k.tolerance));
        }
      }
}

// How Pixmill's reading of a suite file is checked, where it cannot simply equal ImageMagick's.
enum class Rule {
  kSame,          // ImageMagick's pixels exactly
  kNear,          // within one level: samples deeper than 8 bits and 16-bit colour maps, which
                  // ImageMagick rounds through its own 16-bit depth and Pixmill cuts to 8 bits
                  // once; CMYK, which the two convert with different rounding
  kGreyRamp,      // grey at 2 to 7 bits: level i shows as (256 / 2^bits) × i, Pixmill's own ramp
  kLibtiffRgba,   // as libtiff's own RGBA conversion (tiff2rgba) shows them: old-style JPEG and
                  // other pictures ImageMagick reads otherwise or not at all, and associated
                  // alpha, whose stored colours Pixmill and libtiff keep and ImageMagick
                  // divides by alpha
  kEightBit,      // 24-bit samples, which ImageMagick misreads: as the 8-bit file of the same
                  // picture shows, within one level
  kReadsOnly,     // read without error; no program here reads these as the format says:
                  // ImageMagick takes white-is-zero above one bit as black-is-zero, misplaces
                  // 24-bit samples, and shifts signed samples by depth as it pleases (Pixmill
                  // shows the most negative value black)
  kRefused,       // refused with the code given
};

struct SuiteCase {
  Rule rule;
  int code;             // for kRefused
  const char* names;    // paths under the test data folder, blank-separated
};

const SuiteCase kSuiteCases[] = {
    {Rule::kNear, 0,
     "tiff-libtiff/rgb-3c-16b.tiff tiff-libtiff/palette-1c-8b.tiff "
     "tiff-libtiff/minisblack-1c-16b.tiff tiff-libtiff/palette-1c-4b.tiff "
     "tiff-libtiffpic/ladoga.tif "
     "tiff-libtiffpic/depth/flower-minisblack-10.tif tiff-libtiffpic/depth/flower-minisblack-12.tif "
     "tiff-libtiffpic/depth/flower-minisblack-16.tif tiff-libtiffpic/depth/flower-minisblack-32.tif "
     "tiff-libtiffpic/depth/flower-rgb-contig-12.tif tiff-libtiffpic/depth/flower-rgb-contig-14.tif "
     "tiff-libtiffpic/depth/flower-rgb-contig-16.tif tiff-libtiffpic/depth/flower-rgb-planar-10.tif "
     "tiff-libtiffpic/depth/flower-rgb-planar-14.tif tiff-libtiffpic/depth/flower-rgb-planar-16.tif "
     "tiff-libtiffpic/depth/flower-rgb-planar-32.tif tiff-libtiffpic/depth/flower-palette-02.tif "
     "tiff-libtiffpic/depth/flower-palette-08.tif "
     "tiff-libtiffpic/depth/flower-separated-planar-08.tif "
     "tiff-image-tiff/seq/seq-1c-10b-6d739fa2.tiff tiff-image-tiff/seq/seq-1c-10b-hpredict-6d739fa2.tiff "
     "tiff-image-tiff/seq/seq-1c-12b-47c39b31.tiff tiff-image-tiff/seq/seq-1c-12b-hpredict-47c39b31.tiff "
     "tiff-image-tiff/seq/seq-1c-16b-bigendian-68f373a0.tiff "
     "tiff-image-tiff/seq/seq-1c-16b-deflate-68f373a0.tiff "
     "tiff-image-tiff/seq/seq-1c-16b-lzw-68f373a0.tiff tiff-image-tiff/seq/seq-3c-7b-contig-2e4f43c5.tiff "
     "tiff-image-tiff/seq/seq-3c-10b-planar-c82e8ab6.tiff "
     "tiff-image-tiff/seq/seq-3c-12b-contig-e6f40b4a.tiff "
     "tiff-image-tiff/seq/seq-3c-12b-planar-e29e8e25.tiff "
     "tiff-image-tiff/seq/seq-3c-14b-contig-f4dcc6cc.tiff tiff-image-tiff/seq/seq-4c-8b-cmyk-352ac1da.tiff"},
    {Rule::kGreyRamp, 0,
     "tiff-libtiffpic/depth/flower-minisblack-02.tif tiff-libtiffpic/depth/flower-minisblack-06.tif "
     "tiff-image-tiff/seq/seq-1c-2b-58b25f76.tiff tiff-image-tiff/seq/seq-1c-3b-ef237c07.tiff "
     "tiff-image-tiff/seq/seq-1c-4b-fb92dcae.tiff tiff-image-tiff/seq/seq-1c-5b-73098d17.tiff "
     "tiff-image-tiff/seq/seq-1c-7b-9c61ba70.tiff"},
    {Rule::kLibtiffRgba, 0,
     "tiff-libtiff/ojpeg_single_strip_no_rowsperstrip.tiff "
     "tiff-libtiff/ojpeg_chewey_subsamp21_multi_strip.tiff tiff-libtiffpic/smallliz.tif "
     "tiff-libtiff/logluv-3c-16b.tiff tiff-image-tiff/g4/big_g4.tif "
     "tiff-libtiff/minisblack-2c-8b-alpha.tiff tiff-libtiff/32bpp-None.tiff "
     "tiff-libtiffpic/strike.tif tiff-image-tiff/seq/seq-4c-8b-rgba-50969cda.tiff"},
    {Rule::kEightBit, 0,
     "tiff-libtiffpic/depth/flower-rgb-contig-24.tif tiff-libtiffpic/depth/flower-rgb-planar-24.tif "
     "tiff-libtiffpic/depth/flower-minisblack-24.tif"},
    {Rule::kReadsOnly, 0,
     "tiff-image-tiff/seq/seq-1c-3b-miniswhite-ef237c07.tiff "
     "tiff-image-tiff/seq/seq-1c-5b-miniswhite-73098d17.tiff "
     "tiff-image-tiff/seq/seq-1c-6b-miniswhite-79cafbb6.tiff "
     "tiff-image-tiff/seq/seq-1c-7b-miniswhite-9c61ba70.tiff "
     "tiff-image-tiff/seq/seq-1c-10b-miniswhite-6d739fa2.tiff "
     "tiff-image-tiff/seq/seq-1c-12b-miniswhite-47c39b31.tiff "
     "tiff-image-tiff/seq/seq-1c-14b-miniswhite-e883657f.tiff "
     "tiff-image-tiff/seq/seq-1c-24b-miniswhite-072a9dc9.tiff "
     "tiff-image-tiff/seq/seq-1c-24b-072a9dc9.tiff tiff-image-tiff/seq/seq-1c-24b-hpredict-072a9dc9.tiff "
     "tiff-image-tiff/seq/seq-3c-24b-contig-27b9f8ce.tiff "
     "tiff-image-tiff/seq/seq-3c-24b-planar-6296c0c9.tiff tiff-image-tiff/seq/seq-1c-i8-f8446bbe.tiff "
     "tiff-image-tiff/seq/seq-1c-i16-63af2488.tiff tiff-image-tiff/seq/seq-1c-i32-99fddec2.tiff "
     "tiff-image-tiff/seq/seq-3c-i8-d7550ce4.tiff tiff-image-tiff/seq/seq-3c-i16-f7fcf423.tiff"},
    {Rule::kRefused, kCorruptedFile,
     // Tiled pictures have tile offsets, not strips; the 64-bit variant's header points at no
     // directory this reader knows; the first directory of the last holds no picture.
     "tiff-libtiffpic/quad-tile.tif tiff-image-tiff/seq/seq-1c-16b-tiled-68f373a0.tiff "
     "tiff-image-tiff/seq/seq-1c-8b-tiled-20f3db0c.tiff "
     "tiff-image-tiff/seq/seq-1c-8b-tiled-bigtiff-20f3db0c.tiff "
     "tiff-image-tiff/seq/seq-1c-8b-tiled-lzw-20f3db0c.tiff "
     "tiff-image-tiff/seq/seq-3c-8b-tiled-8743c999.tiff "
     "tiff-image-tiff/seq/seq-3c-16b-bigtiff-1b40ca6e.tiff tiff-libtiff/tiff_with_subifd_chain.tif"},
    {Rule::kRefused, kUnsupportedFormat,
     // Floating-point samples.
     "tiff-libtiff/test_float64_predictor2_be_lzw.tif "
     "tiff-libtiff/test_float64_predictor2_le_lzw.tif tiff-image-tiff/seq/seq-1c-64f-afa8560e.tiff "
     "tiff-image-tiff/seq/seq-3c-64f-9fff098a.tiff tiff-image-tiff/seq/seq-3c-32f-9a471c2b.tiff "
     "tiff-image-tiff/seq/seq-1c-32f-deflate-fpredict-390fe673.tiff"},
    {Rule::kRefused, kReadError,
     // libtiff itself cannot decode these (tiffcp and tiff2rgba fail on them too).
     "tiff-libtiff/testfax3_bug54_1dnoEOL.tif tiff-libtiffpic/depth/flower-separated-planar-16.tif "
     "tiff-libtiffpic/depth/flower-separated-contig-16.tif "
     "tiff-image-tiff/seq/seq-4c-16b-cmyk-c6e52592.tiff"},
};

std::map<std::string, const SuiteCase*> SuiteRules() {
  std::map<std::string, const SuiteCase*> rules;
  for (const SuiteCase& c : kSuiteCases) {
    std::istringstream in(c.names);
    for (std::string name; in >> name;) rules[name] = &c;
  }
  return rules;
}

std::vector<Rgb> GreyRamp(const RgbImage& magick, uint32_t bits) {
  const uint32_t top = (1u << bits) - 1;
  std::vector<Rgb> out;
  for (const Rgb& c : magick.pixels) {
    const auto level = static_cast<uint8_t>((256u >> bits) * ((c.red * top + 127) / 255));
    out.push_back(Rgb{level, level, level});
  }
  return out;
}

testing::AssertionResult Check(const std::string& path, const SuiteCase* rule) {
  Picture p;
  ImageInfo info;
  const int code = test::ReadPicture(path, p, nullptr, &info);
  const Rule r = rule ? rule->rule : Rule::kSame;
  if (r == Rule::kRefused) {
    if (code == rule->code) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "answers " << code << ", not " << rule->code;
  }
  if (code != kOk) return testing::AssertionFailure() << "answers " << code;
  const std::vector<Rgb> got = test::Colours(p);
  const auto height = static_cast<uint32_t>(p.depth);
  RgbImage want;
  switch (r) {
    case Rule::kReadsOnly: return testing::AssertionSuccess();
    case Rule::kLibtiffRgba: {
      test::TempDir dir;
      if (test::Run("tiff2rgba -n -c none " + Q(path) + " " + Q(dir / "rgb.tif") + " 2>/dev/null"))
        return testing::AssertionFailure() << "tiff2rgba fails";
      if (!test::PillowDecode(dir / "rgb.tif", want)) return testing::AssertionFailure();
      return test::SameColours(got, want, p.width, height);
    }
    case Rule::kEightBit: {
      std::string sibling = path;
      sibling.replace(sibling.rfind("-24"), 3, "-08");
      if (!test::MagickDecode(sibling, want)) return testing::AssertionFailure() << sibling;
      return test::SameColours(got, want, p.width, height, 1);
    }
    default: break;
  }
  if (!test::MagickDecode(path, want)) return testing::AssertionFailure() << "ImageMagick fails";
  if (r == Rule::kNear) return test::SameColours(got, want, p.width, height, 1);
  if (r == Rule::kGreyRamp) {
    RgbImage ramp = want;
    ramp.pixels = GreyRamp(want, info.bits);
    return test::SameColours(got, ramp, p.width, height);
  }
  return test::SameColours(got, want, p.width, height);
}

TEST(TiffOracle, PublicSuitesReadAsOtherProgramsDecodeThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("tiff2rgba"), "libtiff-tools");
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no test data";
  const auto rules = SuiteRules();
  int checked = 0;
  for (const char* suite : {"tiff-libtiff", "tiff-libtiffpic", "tiff-image-tiff", "tiff-zigimg"}) {
    if (!fs::is_directory(root + "/" + suite)) continue;
    for (const auto& e : fs::recursive_directory_iterator(root + "/" + suite)) {
      const std::string ext = e.path().extension().string();
      if (ext != ".tif" && ext != ".tiff") continue;
      const std::string name = fs::relative(e.path(), root).string();
      auto it = rules.find(name);
      EXPECT_TRUE(Check(e.path().string(), it == rules.end() ? nullptr : it->second)) << name;
      ++checked;
    }
  }
  EXPECT_GT(checked, 100);
}

}  // namespace
}  // namespace pxm
