// Sun raster files against other programs: files written by netpbm and ImageMagick read by
// Pixmill as those programs decode them, Pixmill's files read back by them, and the public
// samples.
//
// Where Pixmill deliberately differs from the public format, the difference is checked:
// | Files                   | Pixmill                                    | Why              |
// |-------------------------|--------------------------------------------|------------------|
// | type 3 (RGB order)      | read as run-length data, so a byte 128 is  | kept behaviour   |
// |                         | an escape; pictures without one read right |                  |
// | 32-bit rows             | squeezed by its own byte rule              | kept behaviour   |
// | run-length runs that    | cut at the row end, the rest dropped, so   | kept behaviour   |
// | cross a row end (netpbm | the rows after it slip                     |                  |
// | writes them)            |                                            |                  |

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/error_codes.h"
#include "support/oracle.h"
#include "support/programs.h"
#include "support/temp_dir.h"

namespace pxm {
namespace {

using test::kMagick;
using test::RgbImage;

const uint32_t kWidths[] = {1, 7, 8, 33};
constexpr uint32_t kHeight = 4;

bool RastDecode(const std::string& path, RgbImage& out) {
  return test::DecodeCommand("rasttopnm " + test::ShellQuote(path), out);
}

// A scene whose bytes are never 128, which a type-3 file must avoid to read as others read it.
std::vector<Rgb> NoEscapes(std::vector<Rgb> scene) {
  auto fix = [](uint8_t& v) { v = v == 128 ? 127 : v; };
  for (Rgb& c : scene) {
    fix(c.red);
    fix(c.green);
    fix(c.blue);
  }
  return scene;
}

// Whether every run of a run-length file ends inside its row (the file's own reading then agrees
// with the public one). `rowBytes` counts a row with its padding.
bool RunsStayInRows(const std::string& file, size_t dataStart, size_t rowBytes) {
  size_t inRow = 0;
  for (size_t i = dataStart; i < file.size(); ++i) {
    size_t n = 1;
    if (static_cast<uint8_t>(file[i]) == 128 && i + 1 < file.size()) {
      const auto count = static_cast<uint8_t>(file[i + 1]);
      n = count == 0 ? 1 : count + 1u;
      i += count == 0 ? 1 : 2;
    }
    if (inRow + n > rowBytes) return false;
    inRow = (inRow + n) % rowBytes;
  }
  return true;
}

TEST(SunRasterOracle, NetpbmFilesReadAsNetpbmDecodesThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram("pnmtorast") && test::HaveProgram("rasttopnm"), "netpbm");
  struct Variant {
    const char* filter;  // turns the scene into the kind of picture wanted
    uint32_t colours;
    bool grey;
  };
  const Variant variants[] = {
      {"ppmtopgm | pgmtopbm -threshold", 2, false},
      {"ppmtopgm", 256, true},
      {"cat", 200, false},
      {"cat", 0, false},
  };
  test::TempDir dir;
  int compared = 0;
  for (const char* coding : {"-standard", "-rle"})
    for (const Variant& v : variants)
      for (uint32_t width : kWidths) {
        SCOPED_TRACE(testing::Message() << coding << " " << v.filter << " " << v.colours
                                        << " colours, width " << width);
        test::WritePpm(dir / "in.ppm", test::Scene(width, kHeight, v.colours, v.grey), width,
                       kHeight);
        const std::string out = dir / "out.ras";
        ASSERT_EQ(test::Run("cat " + test::ShellQuote(dir / "in.ppm") + " | " + v.filter +
                            " | pnmtorast " + coding + " >" + test::ShellQuote(out) +
                            " 2>/dev/null"),
                  0);
        RgbImage want;
        ASSERT_TRUE(RastDecode(out, want));
        const std::string f = test::ReadFileBytes(out);
        const uint32_t depth = uint8_t(f[15]), mapLength = uint8_t(f[30]) * 256u + uint8_t(f[31]);
        const size_t rowBytes = depth == 1 ? (width + 7) / 8 : width * (depth / 8);
        if (std::string(coding) == "-rle" &&
            !RunsStayInRows(f, 32 + mapLength, rowBytes + rowBytes % 2))
          continue;
        EXPECT_TRUE(test::ReadsAs(out, want));
        ++compared;
      }
  EXPECT_GE(compared, 28);

  // A flat picture is one run in netpbm's coding: Pixmill fills the first row from it and then
  // finds the data at an end.
  test::WritePpm(dir / "in.ppm", std::vector<Rgb>(64 * 4, Rgb{9, 9, 9}), 64, 4);
  ASSERT_EQ(test::Run("ppmtopgm " + test::ShellQuote(dir / "in.ppm") + " | pnmtorast -rle >" +
                      test::ShellQuote(dir / "flat.ras") + " 2>/dev/null"),
            0);
  test::Picture p;
  EXPECT_NE(test::ReadPicture(dir / "flat.ras", p), kOk);
}

// ImageMagick's reader loses the last pixel of the odd-width type-3 files its writer makes (the
// length word leaves out the row padding); netpbm decodes them as the layout says.
TEST(SunRasterOracle, ImageMagickFilesReadAsNetpbmDecodesThem) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("rasttopnm"), "netpbm");
  test::TempDir dir;
  for (auto [options, colours] : {std::pair{"-type Palette", 200u}, {"-type TrueColor", 0u}})
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << options << ", width " << width);
      // ImageMagick writes truecolour as type 3.
      test::WritePpm(dir / "in.ppm", NoEscapes(test::Scene(width, kHeight, colours)), width,
                     kHeight);
      const std::string out = dir / "out.ras";
      ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(dir / "in.ppm") + " " + options +
                          " SUN:" + test::ShellQuote(out)),
                0);
      RgbImage want;
      ASSERT_TRUE(RastDecode(out, want));
      EXPECT_TRUE(test::ReadsAs(out, want));
    }
}

TEST(SunRasterOracle, PixmillFilesReadBackByNetpbmAndImageMagick) {
  PXM_REQUIRE_ORACLE(test::HaveProgram(kMagick), kMagick);
  PXM_REQUIRE_ORACLE(test::HaveProgram("rasttopnm"), "netpbm");
  test::TempDir dir;
  for (auto [bits, colours] : {std::pair{1u, 2u}, {4u, 16u}, {8u, 200u}, {24u, 0u}})
    for (uint32_t width : kWidths) {
      SCOPED_TRACE(testing::Message() << bits << " bits, width " << width);
      const std::vector<Rgb> scene = test::Scene(width, kHeight, colours);
      test::Picture p = test::PictureOf(scene, width, kHeight, bits);
      ASSERT_EQ(test::WritePicture(p, dir / "p.ras"), kOk);
      RgbImage magick, netpbm;
      ASSERT_TRUE(test::MagickDecode(dir / "p.ras", magick));
      ASSERT_TRUE(RastDecode(dir / "p.ras", netpbm));
      EXPECT_TRUE(test::SameImage(scene, magick, width, kHeight));
      EXPECT_TRUE(test::SameImage(scene, netpbm, width, kHeight));
    }
}

TEST(SunRasterOracle, PublicSamplesReadAsNetpbmDecodesThem) {
  const std::string root = test::TestDataDir();
  if (root.empty()) GTEST_SKIP() << "no public test suites";
  PXM_REQUIRE_ORACLE(test::HaveProgram("rasttopnm"), "netpbm");
  for (const char* file : {"zigimg/sample-24bit-bgr-rle.ras", "zigimg/sample-8bit.ras",
                           "zigimg/sample-bgr24.ras", "zigimg/sample-blackwhite.ras"}) {
    SCOPED_TRACE(file);
    RgbImage want;
    ASSERT_TRUE(RastDecode(root + "/sunraster/" + file, want));
    EXPECT_TRUE(test::ReadsAs(root + "/sunraster/" + file, want));
  }
  // Type-3 photographs hold bytes of 128, which Pixmill takes for escapes: they are read to the
  // end all the same, or found short.
  for (const char* file : {"pillow/hopper.ras", "zigimg/sample-rgb24.ras"}) {
    SCOPED_TRACE(file);
    test::Picture p;
    const int code = test::ReadPicture(root + "/sunraster/" + file, p);
    EXPECT_TRUE(code == kOk || code == kReadError) << code;
  }
}

}  // namespace
}  // namespace pxm
