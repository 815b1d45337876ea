// TIFF files against libtiff's own tools: Pixmill's files for every TiffOptions row in the
// compression the row names, every strip decoded by libtiff as its uncompressed copy holds; and
// the public TIFF suites read as other programs decode them, or by Pixmill's rules where they
// differ (D19, D20 of the differences table). Files of other programs and Pixmill's files read
// by others are in the oracle matrix.

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "core/image_store.h"
#include "core/row_format.h"
#include "core/sinks.h"
#include "formats/format_table.h"
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

bool HaveTiffTools() {
  return test::HaveProgram("tiffcp") && test::HaveProgram("tiffinfo") &&
         test::HaveProgram("tiffcmp");
}

TEST(TiffOracle, EveryOptionsRowInItsCompressionAndManyStrips) {
  PXM_REQUIRE_ORACLE(HaveTiffTools(), "libtiff-tools");
  PXM_REQUIRE_ORACLE(test::HavePillow(), "Pillow");
  // The compression of each TiffOptions row for 1-bit, 2- to 8-bit and 24-bit pictures, as
  // tiffinfo names it.
  const char* none = "None";
  const char* pack = "PackBits";
  const char* lzw = "LZW";
  const char* rows[6][3] = {{none, none, none}, {pack, none, none}, {pack, pack, none},
                            {lzw, lzw, none},   {lzw, lzw, lzw},    {"CCITT Group 4", lzw, lzw}};
  test::TempDir dir;
  for (int row = 0; row <= 5; ++row)
    for (uint32_t bits : {1u, 3u, 8u, 24u})
      // One pixel; and rows of several strips at every depth (1 bit too), an odd width.
      for (auto [w, h] : {std::pair{1u, 1}, {2001u, 97}}) {
        SCOPED_TRACE(testing::Message()
                     << "TiffOptions " << row << ", " << w << "x" << h << "x" << bits);
        ScopedSettings settings;
        settings->TiffOptions = row;
        const Picture p = test::Pattern(w, h, bits, w + bits);
        const std::string path = dir / "p.tif";
        ASSERT_EQ(test::WritePicture(p, path), kOk);
        std::string report;
        ASSERT_EQ(test::RunCapture("tiffinfo -D " + Q(path) + " 2>&1", report), 0);
        EXPECT_EQ(report.find("rror"), std::string::npos) << report;
        const char* scheme = rows[row][bits == 1 ? 0 : bits == 24 ? 2 : 1];
        EXPECT_NE(report.find("Compression Scheme: " + std::string(scheme) + "\n"),
                  std::string::npos)
            << report;
        EXPECT_NE(report.find("Software: Pixmill"), std::string::npos);
        // libtiff decodes every strip to what its own uncompressed copy holds.
        ASSERT_EQ(test::Run("tiffcp -c none " + Q(path) + " " + Q(dir / "copy.tif")), 0);
        EXPECT_EQ(test::Run("tiffcmp " + Q(path) + " " + Q(dir / "copy.tif") + " >/dev/null"), 0);
        // Pictures of many strips (the matrix's are of one) read back whole, as Pillow sees them.
        Picture back;
        RgbImage pillow;
        ASSERT_EQ(test::ReadPicture(path, back), kOk);
        ASSERT_TRUE(test::PillowDecode(path, pillow));
        EXPECT_TRUE(test::SameColours(back, pillow));
        if (bits != 1) {
          EXPECT_EQ(test::Colours(back), test::Colours(p));
        }
      }
}

// How Pixmill's reading of a suite file is checked, where it cannot simply equal ImageMagick's.
enum class Rule {
  kSame,         // ImageMagick's pixels exactly
  kNear,         // within one level: samples deeper than 8 bits and 16-bit colour maps, which
                 // ImageMagick rounds through its own 16-bit depth and Pixmill cuts to 8 bits
                 // once; CMYK, which the two convert with different rounding
  kGreyRamp,     // D19: grey at 2 to 7 bits: level i shows as (256 / 2^bits) × i
  kLibtiffRgba,  // as libtiff's own RGBA conversion (tiff2rgba) shows them: old-style JPEG and
                 // other pictures ImageMagick reads otherwise or not at all, and associated
                 // alpha, whose stored colours Pixmill and libtiff keep and ImageMagick
                 // divides by alpha
  kEightBit,     // 24-bit samples, which ImageMagick misreads: as the 8-bit file of the same
                 // picture shows, within one level
  kReadsOnly,    // read without error; no program here reads these as the format says:
                 // ImageMagick takes white-is-zero above one bit as black-is-zero, misplaces
                 // 24-bit samples, and shifts signed samples by depth as it pleases (Pixmill
                 // shows the most negative value black)
  kRefused,      // refused with the code given (D20: tiles, floating-point samples)
};

struct SuiteCase {
  Rule rule;
  int code;             // for kRefused
  const char* pattern;  // file names it applies to; the first case that matches holds
};

const SuiteCase kSuiteCases[] = {
    // Tiled pictures have tile offsets, not strips; the 64-bit variant's header points at no
    // directory this reader knows; the first directory of the last holds no picture.
    {Rule::kRefused, kCorruptedFile, "tiled|bigtiff|quad-tile|subifd_chain"},
    {Rule::kRefused, kUnsupportedFormat, "float64|-64f-|-32f"},  // floating-point samples
    // libtiff itself cannot decode these (tiffcp and tiff2rgba fail on them too).
    {Rule::kRefused, kReadError, "testfax3_bug54|separated-.*-16|4c-16b-cmyk"},
    {Rule::kReadsOnly, 0, "seq-1c-([3-9]|[12][0-9])b-miniswhite|seq-.*-24b-|-i(8|16|32)-"},
    {Rule::kEightBit, 0, "flower-.*-24\\.tif"},
    {Rule::kLibtiffRgba, 0,
     "ojpeg|smallliz|logluv|big_g4|2c-8b-alpha|32bpp-None\\.|strike|8b-rgba-50969cda"},
    {Rule::kGreyRamp, 0, "flower-minisblack-0[26]|seq-1c-[2-7]b-[0-9a-f]{8}"},
    {Rule::kNear, 0, "-16b|-1[024]b|-3c-7b|palette-1c|ladoga|flower-|cmyk"},
};

const SuiteCase* RuleFor(const std::string& name) {
  for (const SuiteCase& c : kSuiteCases)
    if (std::regex_search(name, std::regex(c.pattern))) return &c;
  return nullptr;
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
  RgbImage want;
  switch (r) {
    case Rule::kReadsOnly:
      return testing::AssertionSuccess();
    case Rule::kLibtiffRgba: {
      test::TempDir dir;
      if (test::Run("tiff2rgba -n -c none " + Q(path) + " " + Q(dir / "rgb.tif") + " 2>/dev/null"))
        return testing::AssertionFailure() << "tiff2rgba fails";
      if (!test::PillowDecode(dir / "rgb.tif", want)) return testing::AssertionFailure();
      return test::SameColours(got, p.width, want);
    }
    case Rule::kEightBit: {
      std::string sibling = path;
      sibling.replace(sibling.rfind("-24"), 3, "-08");
      if (!test::MagickDecode(sibling, want)) return testing::AssertionFailure() << sibling;
      return test::SameColours(got, p.width, want, 1);
    }
    default:
      break;
  }
  if (!test::MagickDecode(path, want)) return testing::AssertionFailure() << "ImageMagick fails";
  if (r == Rule::kNear) return test::SameColours(got, p.width, want, 1);
  if (r == Rule::kGreyRamp) {
    RgbImage ramp = want;
    ramp.pixels = GreyRamp(want, info.bits);
    return test::SameColours(got, p.width, ramp);
  }
  return test::SameColours(got, p.width, want);
}

TEST(TiffOracle, PublicSuitesReadAsOtherProgramsDecodeThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(test::kMagick), test::kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("tiff2rgba"), "libtiff-tools");
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no test data";
  int checked = 0;
  for (const char* suite : {"tiff-libtiff", "tiff-libtiffpic", "tiff-image-tiff", "tiff-zigimg"}) {
    if (!fs::is_directory(root + "/" + suite)) continue;
    for (const auto& e : fs::recursive_directory_iterator(root + "/" + suite)) {
      const std::string ext = e.path().extension().string();
      if (ext != ".tif" && ext != ".tiff") continue;
      const std::string name = e.path().filename().string();
      EXPECT_TRUE(Check(e.path().string(), RuleFor(name))) << name;
      ++checked;
    }
  }
  EXPECT_GT(checked, 100);
}

}  // namespace
}  // namespace pxm
