// GIF files against other programs: files written by ImageMagick and gifsicle read by Pixmill as
// those programs decode them (the chosen image of several too), Pixmill's files read back by
// ImageMagick and Pillow, and the public GIF suites.
//
// Where Pixmill's rules differ from the public format on purpose:
// clang-format off
// | Case                             | Pixmill                           | Why                     |
// |----------------------------------|-----------------------------------|-------------------------|
// | one-bit pictures                 | black and white, whatever the     | one-bit pictures always |
// |                                  | table                             | show black and white    |
// | an image with the global table   | the last local table read while   | the scan reads every    |
// | after images with local tables   | passing the earlier images        | table it passes         |
// | data ending before the last pixel| the rows so far, then code 3      | missing data is bad data|
// | transparency, screen placement,  | not applied: the image alone, at  | the program reads       |
// | frames of an animation           | its own size                      | images, not what a      |
// |                                  |                                   | viewer shows            |
// clang-format on

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "config/settings.h"
#include "core/error_codes.h"
#include "formats/format_table.h"
#include "oracle/oracle_support.h"
#include "support/picture.h"

namespace pxm {
namespace {

namespace fs = std::filesystem;
using oracle::kMagick;
using test::Picture;
using test::RgbImage;

// One-bit pictures show black and white: then only the partition of the pixels must agree.
testing::AssertionResult ReadsAs(const std::string& path, const RgbImage& want,
                                 uint32_t image = 0) {
  Picture p;
  if (int code = test::ReadPicture(path, p, nullptr, nullptr, image))
    return testing::AssertionFailure() << "Pixmill answers " << code;
  std::vector<Rgb> got = test::Colours(p);
  if (p.bits == 1 && want.pixels.size() == got.size()) {
    std::map<uint32_t, Rgb> seen;
    RgbImage mapped = want;
    for (size_t i = 0; i < got.size(); ++i) {
      const Rgb& c = want.pixels[i];
      const uint32_t key = (uint32_t{c.red} << 16) | (uint32_t{c.green} << 8) | c.blue;
      mapped.pixels[i] = seen.emplace(key, got[i]).first->second;
    }
    return oracle::Same(got, mapped, p.width, static_cast<uint32_t>(p.depth));
  }
  return oracle::Same(got, want, p.width, static_cast<uint32_t>(p.depth));
}

bool NetpbmDecode(const std::string& path, RgbImage& out, int image = 0) {
  return oracle::DecodeWith(
      "giftopnm --image=" + std::to_string(image + 1) + " " + test::ShellQuote(path), out);
}

TEST(GifOracle, ImageMagickFilesReadAsImageMagickDecodesThem) {
  PXM_ORACLE_REQUIRE(test::HaveProgram(kMagick), kMagick);
  test::TempDir dir;
  for (const char* options : {"", "-interlace GIF"})
    for (uint32_t colours : {2u, 4u, 16u, 200u})
      for (uint32_t width : {1u, 8u, 9u, 33u}) {
        SCOPED_TRACE(testing::Message()
                     << options << " " << colours << " colours, width " << width);
        oracle::WritePpm(dir / "in.ppm", oracle::Scene(width, 11, colours), width, 11);
        const std::string out = dir / "out.gif";
        ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(dir / "in.ppm") + " " + options + " " +
                            test::ShellQuote(out)),
                  0);
        RgbImage want;
        ASSERT_TRUE(oracle::MagickDecode(out, want));
        EXPECT_TRUE(ReadsAs(out, want));
      }
}

TEST(GifOracle, GifsicleFilesWithSeveralImagesCommentsAndExtensions) {
  PXM_ORACLE_REQUIRE(test::HaveProgram("gifsicle"), "gifsicle");
  PXM_ORACLE_REQUIRE(test::HaveProgram(kMagick), kMagick);
  test::TempDir dir;
  // Three frames of their own sizes and colours: gifsicle gives the later ones local tables.
  std::string frames;
  for (uint32_t i = 0; i < 3; ++i) {
    const uint32_t width = 5 + 6 * i, height = 4 + i;
    const std::string name = dir / ("f" + std::to_string(i));
    oracle::WritePpm(name + ".ppm", oracle::Scene(width, height, 4 + 60 * i, i), width, height);
    ASSERT_EQ(test::Run(kMagick + " " + test::ShellQuote(name + ".ppm") + " " +
                        test::ShellQuote(name + ".gif")),
              0);
    frames += " " + test::ShellQuote(name + ".gif");
  }
  const std::string multi = dir / "multi.gif";
  ASSERT_EQ(test::Run("gifsicle --no-warnings -i --loopcount=3 --comment 'made by gifsicle'" +
                      frames + " >" + test::ShellQuote(multi)),
            0);
  ScopedSettings settings;
  settings->MultipleImageGIF = 1;
  for (int image = 0; image < 3; ++image) {
    SCOPED_TRACE(image);
    RgbImage want;
    ASSERT_TRUE(oracle::MagickDecode(multi, want, image));
    EXPECT_TRUE(ReadsAs(multi, want, static_cast<uint32_t>(image)));
  }
  ImageInfo info;
  Picture p;
  ASSERT_EQ(test::ReadPicture(multi, p, nullptr, &info), kOk);
  EXPECT_EQ(info.imageCount, 3u);
  std::string text;
  EXPECT_EQ(info.readComments(info, multi, text), kOk);
  EXPECT_EQ(text, "made by gifsicle");
  // The block report names what gifsicle put in.
  std::vector<std::string> lines;
  ASSERT_EQ(FormatAt(FindFormat(multi)).listImages(info, multi, lines), kOk);
  const std::multiset<std::string> seen(lines.begin(), lines.end());
  for (auto [line, count] : {std::pair{"IMAGE BLOCK", 3u},
                             {"Interlaced:\t\t YES", 3u},
                             {"COMMENT BLOCK", 1u},
                             {"GIF APPLICATION identification string: NETSCAPE", 1u}})
    EXPECT_EQ(seen.count(line), count) << line;
}

TEST(GifOracle, PixmillFilesReadByImageMagickPillowAndNetpbm) {
  PXM_ORACLE_REQUIRE(test::HaveProgram(kMagick), kMagick);
  PXM_ORACLE_REQUIRE(test::HaveProgram("giftopnm"), "netpbm");
  PXM_ORACLE_REQUIRE(oracle::HavePillow(), "Pillow");
  test::TempDir dir;
  for (bool interlaced : {false, true})
    for (uint32_t bits : {1u, 2u, 3u, 4u, 6u, 8u})
      for (uint32_t width : {1u, 9u, 33u}) {
        SCOPED_TRACE(testing::Message()
                     << bits << " bits, width " << width << (interlaced ? ", interlaced" : ""));
        ScopedSettings settings;
        settings->WriteGIFInterlaced = interlaced;
        Picture p = test::Pattern(width, 13, bits, width + bits);
        const std::string path = dir / "p.gif";
        ASSERT_EQ(test::WritePicture(p, path), kOk);
        const std::vector<Rgb> want = test::Colours(p);
        RgbImage got;
        ASSERT_TRUE(oracle::MagickDecode(path, got));
        EXPECT_TRUE(oracle::Same(want, got, width, 13)) << "ImageMagick";
        ASSERT_TRUE(oracle::PillowDecode(path, got));
        EXPECT_TRUE(oracle::Same(want, got, width, 13)) << "Pillow";
        ASSERT_TRUE(NetpbmDecode(path, got));
        EXPECT_TRUE(oracle::Same(want, got, width, 13)) << "netpbm";
      }
}

TEST(GifOracle, PublicSuitesReadAsNetpbmDecodesThem) {
  const std::string root = test::TestDataDir();
  if (root.empty() || !fs::is_directory(root + "/gif-pygif")) GTEST_SKIP() << "no public test data";
  PXM_ORACLE_REQUIRE(test::HaveProgram("giftopnm"), "netpbm");
  // Files netpbm refuses (images outside the screen, bad data) need only an answer; these are
  // read differently on purpose (see the table above).
  const std::set<std::string> differ = {"missing-pixels.gif"};
  size_t compared = 0;
  for (const char* suite : {"gif-pygif", "gif-giflib", "gif-image-rs", "gif-peterdn"})
    for (const auto& e : fs::recursive_directory_iterator(root + "/" + suite)) {
      if (e.path().extension() != ".gif") continue;
      const std::string path = e.path().string();
      SCOPED_TRACE(path);
      RgbImage want;
      Picture p;
      if (!NetpbmDecode(path, want) || differ.count(e.path().filename().string())) {
        test::ReadPicture(path, p);
        continue;
      }
      EXPECT_TRUE(ReadsAs(path, want));
      ++compared;
    }
  EXPECT_GT(compared, 50u);
}

}  // namespace
}  // namespace pxm
